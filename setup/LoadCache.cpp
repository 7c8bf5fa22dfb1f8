#include "setup/LoadCache.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <climits>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <list>
#include <stdexcept>

#include <dirent.h>
#include <fcntl.h>
#include <langinfo.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#define XXH_INLINE_ALL
#include <xxhash.h>

#include "common/Contract.h"
#include "common/RegularFile.h"

static_assert(sizeof(long) == 8 && sizeof(double) == 8, "the entry format assumes LP64");

namespace {

std::atomic<bool> LastLoadWasCached_{false};

// The header of an entry: magic, key, payload size, payload checksum.
const char kMagic[8] = {'X', 'U', 'N', 'L', 'O', 'A', 'D', '1'};
const std::size_t kHeaderSize = 8 + 16 + 8 + 8;

// The shared base dimensions a unit may borrow (base units and what is
// named after them); an entry names them by their place here, from 1.
using DimensionGetter = const CKVdimension& (*)();
const DimensionGetter kSharedDimensions[] = {
    &CKVdimension::GetNonDim, &CKVdimension::GetLength, &CKVdimension::GetMass,
    &CKVdimension::GetTime,   &CKVdimension::GetTemp,   &CKVdimension::GetCurr,
    &CKVdimension::GetSubs,   &CKVdimension::GetLumi,
};
const int kSharedDimensionCount = sizeof kSharedDimensions / sizeof kSharedDimensions[0];

// ---- the payload ------------------------------------------------------------

class Writer {
  public:
    explicit Writer(std::string& out) : m_out(out) {}
    void U8(unsigned value) { m_out.push_back(static_cast<char>(value)); }
    void U64(std::uint64_t value) {
        char bytes[8];
        std::memcpy(bytes, &value, 8);
        m_out.append(bytes, 8);
    }
    void I64(long value) { U64(static_cast<std::uint64_t>(value)); }
    void I32(int value) { U64(static_cast<std::uint64_t>(static_cast<std::int64_t>(value))); }
    void F64(double value) {
        std::uint64_t bits;
        std::memcpy(&bits, &value, 8);
        U64(bits);
    }
    void Text(const std::string& text) {
        U64(text.size());
        m_out.append(text);
    }
    void Powers(const CKVdimension& dim) {
        for (int i = 1; i <= CKVdimension::kBaseCount; ++i)
            F64(dim.GetPower(i));
    }

  private:
    std::string& m_out;
};

// Reads what Writer wrote; any read past the end or any value out of range
// throws Bad, which makes the whole payload unusable.
struct Bad {};
class Reader {
  public:
    Reader(const unsigned char* bytes, std::size_t size) : m_at(bytes), m_end(bytes + size) {}
    std::size_t Left() const { return static_cast<std::size_t>(m_end - m_at); }
    unsigned U8() {
        Need(1);
        return *m_at++;
    }
    std::uint64_t U64() {
        Need(8);
        std::uint64_t value;
        std::memcpy(&value, m_at, 8);
        m_at += 8;
        return value;
    }
    long I64() { return static_cast<long>(U64()); }
    int I32() {
        const auto value = static_cast<std::int64_t>(U64());
        if (value < INT_MIN || value > INT_MAX)
            throw Bad{};
        return static_cast<int>(value);
    }
    double F64() {
        const std::uint64_t bits = U64();
        double value;
        std::memcpy(&value, &bits, 8);
        return value;
    }
    std::string Text() {
        const std::uint64_t size = U64();
        if (size > Left())
            throw Bad{};
        std::string text(reinterpret_cast<const char*>(m_at), static_cast<std::size_t>(size));
        m_at += size;
        return text;
    }
    // A count of records of at least minBytes each: never more than the
    // bytes left can hold, so that nothing is reserved for a forged count.
    std::size_t Count(std::size_t minBytes) {
        const std::uint64_t count = U64();
        if (count > Left() / minBytes)
            throw Bad{};
        return static_cast<std::size_t>(count);
    }
    void Powers(double (&p)[CKVdimension::kBaseCount]) {
        for (double& power : p)
            power = F64();
    }

  private:
    void Need(std::size_t bytes) const {
        if (Left() < bytes)
            throw Bad{};
    }
    const unsigned char* m_at;
    const unsigned char* m_end;
};

// The smallest record of each kind, in bytes (empty texts, no lists).
const std::size_t kMinUnitBytes = 5 * 8 + 8 + 2 + 9 * 8;
const std::size_t kMinItemBytes = 9 * 8 + 1;
const std::size_t kMinFilterBytes = 3 * 8;
const std::size_t kMinAliasBytes = 8;
const std::size_t kMinKeyBytes = 8;

int SharedDimensionIndex(const CKVdimension* dim) {
    for (int i = 0; i < kSharedDimensionCount; ++i)
        if (dim == &kSharedDimensions[i]())
            return i + 1;
    return -1;
}

std::unique_ptr<CKVunit> DecodeUnit(Reader& in) {
    std::string ident = in.Text();
    std::string desc = in.Text();
    std::string abbr = in.Text();
    std::string expr = in.Text();
    std::list<std::string> aliases;
    for (std::size_t n = in.Count(kMinAliasBytes); n > 0; --n)
        aliases.push_back(in.Text());
    const long key = in.I64();
    const unsigned parent = in.U8();
    const unsigned owned = in.U8();
    double powers[CKVdimension::kBaseCount] = {};
    if (owned == 1)
        in.Powers(powers);
    const double factor = in.F64();
    const double offset = in.F64();
    double dimFactors[CKVdimension::kBaseCount];
    in.Powers(dimFactors);
    // A registered unit borrows a shared dimension or owns one, never both
    // or neither, and its factor is not 0 (what CKVunit::AssertValid
    // requires): anything else is no entry a load wrote.
    if (parent > static_cast<unsigned>(kSharedDimensionCount) || owned > 1 ||
        (parent != 0) == (owned == 1) || factor == 0.0)
        throw Bad{};
    std::unique_ptr<CKVunit> unit(
        new CKVunit(desc, abbr, key, factor, offset, CKVdimension::GetNonDim()));
    unit->m_pDimParent = parent != 0 ? &kSharedDimensions[parent - 1]() : nullptr;
    if (owned == 1)
        unit->m_pDimTemp = new CKVdimension(powers[0], powers[1], powers[2], powers[3], powers[4],
                                            powers[5], powers[6]);
    std::memcpy(unit->m_dDimFactors, dimFactors, sizeof dimFactors);
    unit->m_strIdent = std::move(ident);
    unit->m_strExpr = std::move(expr);
    unit->m_lstAlias = std::move(aliases);
    return unit;
}

void DecodeItemType(Reader& in, CKVregistries& registries) {
    std::string desc = in.Text();
    const long key = in.I64();
    std::string ident = in.Text();
    const long userUnit = in.I64();
    const long filter = in.I64();
    const int fileItem = in.I32();
    const int decimals = in.I32();
    const double defaultValue = in.F64();
    const unsigned hasDimension = in.U8();
    if (hasDimension > 1)
        throw Bad{};
    std::unique_ptr<CKVdimension> dimension;
    if (hasDimension == 1) {
        double p[CKVdimension::kBaseCount];
        in.Powers(p);
        dimension.reset(new CKVdimension(p[0], p[1], p[2], p[3], p[4], p[5], p[6]));
    }
    std::unique_ptr<CKVitemType> item(
        new CKVitemType(desc, key, ident, dimension ? *dimension : CKVdimension::GetNonDim()));
    if (!dimension)
        item->m_pDimension = nullptr;
    item->m_lUserUnit = userUnit;
    item->m_lFilter = filter;
    item->m_nFileItem = fileItem;
    item->m_nDecimals = decimals;
    item->m_dDefault = defaultValue;
    const std::size_t allowed = in.Count(kMinKeyBytes);
    item->m_lstUnits.reserve(allowed);
    for (std::size_t n = 0; n < allowed; ++n) {
        const CKVunit* unit = registries.units.FindByKey(in.I64());
        if (unit == nullptr || item->m_pDimension == nullptr || !unit->IsEqv(*item->m_pDimension))
            throw Bad{};
        item->m_lstUnits.push_back(unit);
    }
    if (!registries.itemTypes.Add(item, dimension))
        throw Bad{};
}

// ---- where entries live -------------------------------------------------------

// The GNU build id of the object this code is linked into: a rebuilt
// library never reads the entries of another build.
struct BuildIdSearch {
    const void* address;
    std::string id;
};

int FindBuildId(struct dl_phdr_info* info, size_t, void* data) {
    auto* search = static_cast<BuildIdSearch*>(data);
    const auto address = reinterpret_cast<ElfW(Addr)>(search->address);
    bool contains = false;
    for (int i = 0; i < info->dlpi_phnum && !contains; ++i) {
        const ElfW(Phdr)& segment = info->dlpi_phdr[i];
        const ElfW(Addr) start = info->dlpi_addr + segment.p_vaddr;
        contains =
            segment.p_type == PT_LOAD && address >= start && address < start + segment.p_memsz;
    }
    if (!contains)
        return 0;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = info->dlpi_phdr[i];
        if (segment.p_type != PT_NOTE)
            continue;
        const char* note = reinterpret_cast<const char*>(info->dlpi_addr + segment.p_vaddr);
        const char* end = note + segment.p_memsz;
        while (note + sizeof(ElfW(Nhdr)) <= end) {
            ElfW(Nhdr) header;
            std::memcpy(&header, note, sizeof header);
            const char* name = note + sizeof header;
            const char* desc = name + ((header.n_namesz + 3) & ~3u);
            const char* next = desc + ((header.n_descsz + 3) & ~3u);
            if (next > end)
                break;
            if (header.n_type == NT_GNU_BUILD_ID && header.n_namesz == 4 &&
                std::memcmp(name, "GNU", 4) == 0 && header.n_descsz > 0) {
                search->id.assign(desc, header.n_descsz);
                return 1;
            }
            note = next;
        }
    }
    return 1;
}

const std::string& BuildId() {
    static const std::string id = [] {
        BuildIdSearch search{reinterpret_cast<const void*>(&FindBuildId), std::string()};
        dl_iterate_phdr(&FindBuildId, &search);
        return search.id;
    }();
    return id;
}

std::string Hex(const unsigned char* bytes, std::size_t size) {
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
    }
    return text;
}

bool IsEntryName(const char* name) {
    const std::size_t length = std::strlen(name);
    if (length != 32 + 5 || std::strcmp(name + 32, ".load") != 0)
        return false;
    for (int i = 0; i < 32; ++i)
        if (!std::isxdigit(static_cast<unsigned char>(name[i])))
            return false;
    return true;
}

// Makes the folder and the ones above it (only the current user may enter
// the new ones).
bool MakeFolder(const std::string& folder) {
    for (std::size_t slash = folder.find('/', 1);; slash = folder.find('/', slash + 1)) {
        const std::string part = folder.substr(0, slash);
        if (::mkdir(part.c_str(), 0700) != 0 && errno != EEXIST)
            return false;
        if (slash == std::string::npos)
            break;
    }
    struct stat status;
    return ::stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool WriteAll(int fd, const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(fd, bytes, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

// Removes the oldest entries while there are more than the limit.
void Evict(const std::string& folder) {
    DIR* dir = ::opendir(folder.c_str());
    if (dir == nullptr)
        return;
    std::vector<std::pair<struct timespec, std::string>> entries;
    while (const dirent* item = ::readdir(dir)) {
        if (!IsEntryName(item->d_name))
            continue;
        struct stat status;
        const std::string path = folder + "/" + item->d_name;
        if (::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode))
            entries.emplace_back(status.st_mtim, path);
    }
    ::closedir(dir);
    if (entries.size() <= xun::contract::kLoadCacheEntries)
        return;
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
        return a.first.tv_sec != b.first.tv_sec ? a.first.tv_sec < b.first.tv_sec
                                                : a.first.tv_nsec < b.first.tv_nsec;
    });
    for (std::size_t i = 0; i + xun::contract::kLoadCacheEntries < entries.size(); ++i)
        ::unlink(entries[i].second.c_str());
}

} // namespace

std::string xunCharacterSetEnvironment_() {
    std::string text;
    auto add = [&text](const char* value) {
        text += value != nullptr ? std::string("=") + value : std::string("-");
        text += '\0';
    };
    add(std::setlocale(LC_CTYPE, nullptr));
    add(nl_langinfo(CODESET));
    add(std::getenv("LC_ALL"));
    add(std::getenv("LC_CTYPE"));
    add(std::getenv("LANG"));
    return text;
}

bool xunLastLoadWasCached_() {
    return LastLoadWasCached_.load();
}

void xunSetLastLoadWasCached_(bool cached) {
    LastLoadWasCached_.store(cached);
}

bool xunEncodeRegistries_(const CKVregistries& registries, char decimalSymbol, std::string& out) {
    out.clear();
    Writer w(out);
    w.U8(static_cast<unsigned char>(decimalSymbol));
    w.U64(registries.units.Count());
    for (const CKVunit* unit : registries.units) {
        int parent = 0;
        if (unit->m_pDimParent != nullptr &&
            (parent = SharedDimensionIndex(unit->m_pDimParent)) < 0)
            return false;
        if ((parent != 0) == (unit->m_pDimTemp != nullptr) || unit->m_dFactor == 0.0)
            return false;
        w.Text(unit->m_strIdent);
        w.Text(unit->m_strDesc);
        w.Text(unit->m_strAbbr);
        w.Text(unit->m_strExpr);
        w.U64(unit->m_lstAlias.size());
        for (const std::string& alias : unit->m_lstAlias)
            w.Text(alias);
        w.I64(unit->m_lKey);
        w.U8(static_cast<unsigned>(parent));
        w.U8(unit->m_pDimTemp != nullptr ? 1 : 0);
        if (unit->m_pDimTemp != nullptr)
            w.Powers(*unit->m_pDimTemp);
        w.F64(unit->m_dFactor);
        w.F64(unit->m_dOffset);
        for (double factor : unit->m_dDimFactors)
            w.F64(factor);
    }
    w.U64(registries.itemTypes.Count());
    for (const CKVitemType* item : registries.itemTypes) {
        w.Text(item->m_strKey);
        w.I64(item->m_nNumId);
        w.Text(item->m_strIdent);
        w.I64(item->m_lUserUnit);
        w.I64(item->m_lFilter);
        w.I32(item->m_nFileItem);
        w.I32(item->m_nDecimals);
        w.F64(item->m_dDefault);
        w.U8(item->m_pDimension != nullptr ? 1 : 0);
        if (item->m_pDimension != nullptr)
            w.Powers(*item->m_pDimension);
        w.U64(item->m_lstUnits.size());
        for (const CKVunit* unit : item->m_lstUnits)
            w.I64(unit->m_lKey);
    }
    w.U64(registries.filters.Count());
    for (const CKVfilter* filter : registries.filters) {
        w.Text(filter->m_strKey);
        w.Text(filter->m_strIdent);
        w.I64(filter->m_lKey);
    }
    return true;
}

std::unique_ptr<CKVregistries> xunDecodeRegistries_(const unsigned char* bytes, std::size_t size,
                                                    char& decimalSymbol) {
    try {
        Reader in(bytes, size);
        std::unique_ptr<CKVregistries> registries(new CKVregistries());
        decimalSymbol = static_cast<char>(in.U8());
        for (std::size_t n = in.Count(kMinUnitBytes); n > 0; --n) {
            std::unique_ptr<CKVunit> unit = DecodeUnit(in);
            if (!registries->units.Add(unit, false))
                return nullptr;
        }
        for (std::size_t n = in.Count(kMinItemBytes); n > 0; --n)
            DecodeItemType(in, *registries);
        for (std::size_t n = in.Count(kMinFilterBytes); n > 0; --n) {
            std::string desc = in.Text();
            std::string ident = in.Text();
            std::unique_ptr<CKVfilter> filter(new CKVfilter(desc, in.I64()));
            filter->m_strIdent = std::move(ident);
            if (!registries->filters.Add(filter))
                return nullptr;
        }
        if (in.Left() != 0)
            return nullptr;
        registries->CheckInvariants();
        return registries;
    } catch (const Bad&) {
    } catch (const std::logic_error&) {
    }
    return nullptr;
}

std::string CXunLoadCache::Folder() {
    if (const char* dir = std::getenv("XUN_CACHE_DIR")) {
        if (*dir == '\0' || std::strcmp(dir, "off") == 0)
            return std::string();
        return dir;
    }
    const char* xdg = std::getenv("XDG_CACHE_HOME");
    if (xdg != nullptr && xdg[0] == '/')
        return std::string(xdg) + "/libxun";
    const char* home = std::getenv("HOME");
    if (home != nullptr && home[0] == '/')
        return std::string(home) + "/.cache/libxun";
    return std::string();
}

bool CXunLoadCache::Prepare(const std::string& fileName, const std::vector<std::string>& beside,
                            const std::string& characterSet, char decimalSymbol) {
    m_folder = Folder();
    // A name the XML layer could read as a URL is left to it.
    if (m_folder.empty() || BuildId().empty() || fileName.find(':') != std::string::npos ||
        fileName.size() >= static_cast<std::size_t>(xun::contract::kPathBufferSize))
        return false;
    m_files.assign(1, fileName);
    m_files.insert(m_files.end(), beside.begin(), beside.end());
    if (!HashFiles(m_contents) || m_contents[0].empty())
        return false;
    XXH3_state_t* state = XXH3_createState();
    if (state == nullptr)
        return false;
    static const char kTag[] = "libxun load cache 1";
    XXH3_128bits_reset(state);
    XXH3_128bits_update(state, kTag, sizeof kTag);
    const std::string& id = BuildId();
    XXH3_128bits_update(state, id.data(), id.size());
    const std::uint64_t characterSetSize = characterSet.size();
    XXH3_128bits_update(state, &characterSetSize, sizeof characterSetSize);
    XXH3_128bits_update(state, characterSet.data(), characterSet.size());
    XXH3_128bits_update(state, &decimalSymbol, 1);
    const std::uint64_t files = m_contents.size();
    XXH3_128bits_update(state, &files, sizeof files);
    for (const std::string& content : m_contents) {
        const std::uint64_t size = content.size();
        XXH3_128bits_update(state, &size, sizeof size);
        XXH3_128bits_update(state, content.data(), content.size());
    }
    XXH128_canonical_t key;
    XXH128_canonicalFromHash(&key, XXH3_128bits_digest(state));
    XXH3_freeState(state);
    std::memcpy(m_key, key.digest, sizeof m_key);
    return true;
}

bool CXunLoadCache::HashFiles(std::vector<std::string>& contents) const {
    contents.clear();
    std::vector<char> buffer(std::size_t(1) << 16);
    for (const std::string& path : m_files) {
        // Each file as a reader of the library sees it: one that cannot be
        // opened as a regular file is skipped by it (the empty content),
        // one that opens is read whole (its content hash, 16 bytes).
        std::string reason;
        std::FILE* file = xunOpenRegularFile_(path.c_str(), "rb", reason);
        if (file == nullptr) {
            contents.emplace_back();
            continue;
        }
        XXH3_state_t* state = XXH3_createState();
        bool ok = state != nullptr && XXH3_128bits_reset(state) == XXH_OK;
        std::size_t got;
        while (ok && (got = std::fread(buffer.data(), 1, buffer.size(), file)) > 0)
            ok = XXH3_128bits_update(state, buffer.data(), got) == XXH_OK;
        ok = ok && !std::ferror(file);
        std::fclose(file);
        if (ok) {
            XXH128_canonical_t hash;
            XXH128_canonicalFromHash(&hash, XXH3_128bits_digest(state));
            contents.emplace_back(reinterpret_cast<const char*>(hash.digest), sizeof hash.digest);
        }
        XXH3_freeState(state);
        if (!ok)
            return false;
    }
    return true;
}

std::string CXunLoadCache::EntryPath() const {
    return m_folder + "/" + Hex(m_key, sizeof m_key) + ".load";
}

std::unique_ptr<CKVregistries> CXunLoadCache::Find(char& decimalSymbol) const {
    const std::string path = EntryPath();
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY | O_NOFOLLOW);
    if (fd < 0)
        return nullptr;
    std::vector<unsigned char> bytes;
    struct stat status;
    bool ok = ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode) &&
              status.st_uid == ::geteuid() && status.st_size >= static_cast<off_t>(kHeaderSize);
    if (ok) {
        try {
            bytes.resize(static_cast<std::size_t>(status.st_size));
        } catch (const std::exception&) {
            ok = false;
        }
    }
    std::size_t got = 0;
    while (ok && got < bytes.size()) {
        const ssize_t n = ::read(fd, bytes.data() + got, bytes.size() - got);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            ok = false;
        else
            got += static_cast<std::size_t>(n);
    }
    ::close(fd);
    if (!ok)
        return nullptr;
    std::uint64_t payloadSize, checksum;
    std::memcpy(&payloadSize, bytes.data() + 24, 8);
    std::memcpy(&checksum, bytes.data() + 32, 8);
    const unsigned char* payload = bytes.data() + kHeaderSize;
    if (std::memcmp(bytes.data(), kMagic, 8) != 0 ||
        std::memcmp(bytes.data() + 8, m_key, 16) != 0 ||
        payloadSize != bytes.size() - kHeaderSize ||
        XXH3_64bits(payload, static_cast<std::size_t>(payloadSize)) != checksum)
        return nullptr;
    try {
        return xunDecodeRegistries_(payload, static_cast<std::size_t>(payloadSize), decimalSymbol);
    } catch (const std::exception&) {
        return nullptr;
    }
}

bool CXunLoadCache::Unchanged() const {
    std::vector<std::string> contents;
    return HashFiles(contents) && contents == m_contents;
}

void CXunLoadCache::Store(const CKVregistries& registries, char decimalSymbol) const {
    try {
        std::string payload;
        if (!xunEncodeRegistries_(registries, decimalSymbol, payload) || !MakeFolder(m_folder))
            return;
        std::string entry(kMagic, sizeof kMagic);
        entry.append(reinterpret_cast<const char*>(m_key), sizeof m_key);
        const std::uint64_t size = payload.size();
        const std::uint64_t checksum = XXH3_64bits(payload.data(), payload.size());
        entry.append(reinterpret_cast<const char*>(&size), 8);
        entry.append(reinterpret_cast<const char*>(&checksum), 8);
        entry += payload;
        // Written beside and renamed into place: a reader sees the whole
        // entry or none.
        std::string temporary = m_folder + "/.entry-XXXXXX";
        const int fd = ::mkostemp(&temporary[0], O_CLOEXEC);
        if (fd < 0)
            return;
        const bool written = WriteAll(fd, entry.data(), entry.size());
        if (::close(fd) != 0 || !written || ::rename(temporary.c_str(), EntryPath().c_str()) != 0) {
            ::unlink(temporary.c_str());
            return;
        }
        Evict(m_folder);
    } catch (const std::exception&) {
    }
}
