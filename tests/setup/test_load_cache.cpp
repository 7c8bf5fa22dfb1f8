// The load cache: a load taken from it has the effects of a load that
// parses the file - compared field by field and through the interface, each
// load in a fresh child process - and any change of what the outcome depends
// on (the file's bytes, the locale, the decimal symbol) parses again.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include <dirent.h>
#include <ftw.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "common/Assert.h"
#include "common/Contract.h"
#include "registry_access.h"
#include "setup/Installation.h"
#include "setup/LoadCache.h"
#include "units/KVexpr.h"
#include "xun.h"

namespace {

std::string Hex(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%a", value);
    return text;
}

std::string DimText(const CKVdimension* dim) {
    if (dim == nullptr)
        return "none";
    std::string text;
    for (int i = 1; i <= CKVdimension::kBaseCount; ++i)
        text += Hex(dim->GetPower(i)) + ",";
    return text;
}

std::string SharedName(const CKVdimension* dim) {
    const CKVdimension* shared[] = {&CKVdimension::GetNonDim(), &CKVdimension::GetLength(),
                                    &CKVdimension::GetMass(),   &CKVdimension::GetTime(),
                                    &CKVdimension::GetTemp(),   &CKVdimension::GetCurr(),
                                    &CKVdimension::GetSubs(),   &CKVdimension::GetLumi()};
    if (dim == nullptr)
        return "null";
    for (int i = 0; i < 8; ++i)
        if (dim == shared[i])
            return "shared" + std::to_string(i);
    return "other";
}

// Everything a load leaves behind: every field of every object, the keys
// the registries hand out next, the globals a load sets, and what the
// interface answers.
std::string Dump() {
    std::ostringstream out;
    const CKVregistries& r = xuntest::Registries();
    for (const CKVunit* u : r.units) {
        out << "unit " << u->m_lKey << " [" << u->m_strIdent << "] [" << u->m_strDesc << "] ["
            << u->m_strAbbr << "] [" << u->m_strExpr << "] aliases";
        for (const std::string& alias : u->m_lstAlias)
            out << " [" << alias << "]";
        out << " parent " << SharedName(u->m_pDimParent) << " own " << DimText(u->m_pDimTemp)
            << " f " << Hex(u->m_dFactor) << " o " << Hex(u->m_dOffset) << " dimf";
        for (double f : u->m_dDimFactors)
            out << " " << Hex(f);
        out << "\n";
    }
    for (const CKVitemType* i : r.itemTypes) {
        out << "item " << i->m_nNumId << " [" << i->m_strIdent << "] [" << i->m_strKey << "] user "
            << i->m_lUserUnit << " filter " << i->m_lFilter << " file " << i->m_nFileItem << " dec "
            << i->m_nDecimals << " def " << Hex(i->m_dDefault) << " dim "
            << DimText(i->m_pDimension) << " units";
        for (const CKVunit* u : i->m_lstUnits)
            out << " " << u->m_lKey;
        out << "\n";
    }
    for (const CKVfilter* f : r.filters)
        out << "filter " << f->m_lKey << " [" << f->m_strIdent << "] [" << f->m_strKey << "]\n";
    long next = 0;
    out << "next unit " << r.units.NextRunTimeKey(next) << " " << next;
    out << " next item " << r.itemTypes.NextRunTimeKey(next) << " " << next;
    out << " next bit " << r.filters.NextBit(next) << " " << next << "\n";
    const char* path = nullptr;
    xunSetupGetPath(&path);
    out << "doc [" << (path != nullptr ? path : "(null)") << "] decimal [" << szDecimalSymbol
        << "] numeric [" << std::setlocale(LC_NUMERIC, nullptr) << "] error "
        << xunGetLastError(nullptr) << "\n";
    // Through the interface: the walk, conversions to base units, the item
    // types in order, a unit string and a new unit's key.
    int tag = 0, nextTag = 0;
    const char* key = nullptr;
    while (xunGetNextUnit(tag, &nextTag, &key) == 1 && nextTag != 0) {
        double base = 0;
        const int ok = xunConvertUnitToBase(nextTag, &base, 1.25);
        out << nextTag << "=" << (key != nullptr ? key : "") << ":" << ok << ":" << Hex(base)
            << " ";
        tag = nextTag;
    }
    out << "\nitems " << xunGetItemTypeCount() << ":";
    for (int seq = 1; seq <= xunGetItemTypeCount(); ++seq) {
        int itemKey = 0;
        const char* text = nullptr;
        xunGetItemTypeSeq(seq, &itemKey, &text);
        out << " " << itemKey << "=" << (text != nullptr ? text : "");
    }
    int parsed = 0;
    out << "\nparse " << xunParseUnit("km/h", &parsed) << " " << parsed;
    out << " new " << xunUnitNew("CacheProbe", "probe", "pr", "UnitMeter*2") << "\n";
    return out.str();
}

struct Child {
    std::string dump;
    bool cached = false;
};

// Runs a load in a fresh child process: KORVANE_HOME and XUN_CACHE_DIR set,
// then prepare(), then xunLoadItemTypeTables(path) (path may be null) with
// the home's language files; returns the child's dump and whether its load
// came from the cache.
Child LoadInChild(
    const std::string& home, const std::string& cacheDir,
    const std::function<void()>& prepare = [] {}, const char* path = "") {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        close(ends[0]);
        setenv("KORVANE_HOME", home.c_str(), 1);
        setenv("XUN_CACHE_DIR", cacheDir.c_str(), 1);
        prepare();
        xunLoadItemTypeTables(path);
        const std::string text =
            std::string(xunLastLoadWasCached_() ? "cached\n" : "parsed\n") + Dump();
        size_t done = 0;
        while (done < text.size()) {
            const ssize_t n = write(ends[1], text.data() + done, text.size() - done);
            if (n <= 0)
                _exit(3);
            done += static_cast<size_t>(n);
        }
        _exit(0);
    }
    close(ends[1]);
    std::string text;
    char buffer[65536];
    ssize_t n;
    while ((n = read(ends[0], buffer, sizeof buffer)) > 0)
        text.append(buffer, static_cast<size_t>(n));
    close(ends[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    Child child;
    const size_t firstLine = text.find('\n');
    child.cached = text.compare(0, firstLine, "cached") == 0;
    child.dump = firstLine == std::string::npos ? text : text.substr(firstLine + 1);
    return child;
}

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteFile(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
}

std::vector<std::string> Entries(const std::string& dir) {
    std::vector<std::string> names;
    if (DIR* d = opendir(dir.c_str())) {
        while (const dirent* e = readdir(d))
            if (std::strlen(e->d_name) == 37)
                names.push_back(dir + "/" + e->d_name);
        closedir(d);
    }
    return names;
}

class LoadCache : public testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/xun-load-cache-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_root = pattern;
        m_cache = m_root + "/cache";
        // A copy of the default installation that a test may change.
        m_home = m_root + "/home";
        mkdir(m_home.c_str(), 0700);
        mkdir((m_home + "/bin").c_str(), 0700);
        const std::string data = std::string(std::getenv("XUN_TEST_DATA")) + "/../../data/bin/";
        for (const char* name : {"XUN.xml", "xuntype.lan", "xununit.lan", "xunfilter.lan"})
            WriteFile(m_home + "/bin/" + name, ReadFile(data + name));
        ASSERT_GT(ReadFile(Setup()).size(), 100000u);
    }
    void TearDown() override {
        const std::string command = "rm -rf '" + m_root + "'";
        EXPECT_EQ(std::system(command.c_str()), 0);
    }
    std::string Setup() const { return m_home + "/bin/XUN.xml"; }
    // The dump of a load without the cache.
    std::string Parsed(const std::function<void()>& prepare = [] {}) {
        const Child child = LoadInChild(m_home, "off", prepare);
        EXPECT_FALSE(child.cached);
        return child.dump;
    }

    std::string m_root, m_cache, m_home;
};

TEST_F(LoadCache, ALoadFromTheCacheEqualsALoadThatParses) {
    const std::string parsed = Parsed();
    EXPECT_NE(parsed.find("[UnitPerMille]"), std::string::npos);
    EXPECT_NE(parsed.find("doc [" + Setup() + "]"), std::string::npos);
    EXPECT_TRUE(Entries(m_cache).empty());
    const Child first = LoadInChild(m_home, m_cache);
    EXPECT_FALSE(first.cached);
    EXPECT_EQ(first.dump, parsed);
    // One entry for the setup file, one for it with the language files.
    ASSERT_EQ(Entries(m_cache).size(), 2u);
    const Child second = LoadInChild(m_home, m_cache);
    EXPECT_TRUE(second.cached);
    EXPECT_EQ(second.dump, parsed);
    // A path given to the load, the same bytes: the same entry.
    const Child named = LoadInChild(
        m_home, m_cache, [] {}, Setup().c_str());
    EXPECT_TRUE(named.cached);
    EXPECT_EQ(named.dump, parsed);
    // A null path is the default file, as without the cache.
    const Child null = LoadInChild(
        m_home, m_cache, [] {}, nullptr);
    EXPECT_TRUE(null.cached);
    EXPECT_EQ(null.dump, parsed);
    EXPECT_EQ(Entries(m_cache).size(), 2u);
    // The setup file alone (xunSetupLoad, no language files) is the other
    // entry: the child ends with status 5 unless that load came from it.
    LoadInChild(m_home, m_cache, [] {
        const std::string file = std::string(std::getenv("KORVANE_HOME")) + "/bin/XUN.xml";
        if (xunSetupLoad(file.c_str()) != 1 || !xunLastLoadWasCached_())
            _exit(5);
    });
    EXPECT_EQ(Entries(m_cache).size(), 2u);
}

TEST_F(LoadCache, AChangedFileIsParsedAgain) {
    LoadInChild(m_home, m_cache);
    const std::string before = Parsed();
    std::string text = ReadFile(Setup());
    // An alias: the language files leave it as the setup file has it.
    const size_t at = text.find("Alias=\"permille;");
    ASSERT_NE(at, std::string::npos);
    text.replace(at, 16, "Alias=\"permillE;");
    WriteFile(Setup(), text);
    const std::string after = Parsed();
    EXPECT_NE(after, before);
    const Child changed = LoadInChild(m_home, m_cache);
    EXPECT_FALSE(changed.cached);
    EXPECT_EQ(changed.dump, after);
    const Child again = LoadInChild(m_home, m_cache);
    EXPECT_TRUE(again.cached);
    EXPECT_EQ(again.dump, after);
    EXPECT_EQ(Entries(m_cache).size(), 4u);
}

TEST_F(LoadCache, AChangedLanguageFileIsReadAgain) {
    LoadInChild(m_home, m_cache);
    ASSERT_EQ(Entries(m_cache).size(), 2u);
    const std::string units = m_home + "/bin/xununit.lan";
    std::string text = ReadFile(units);
    const size_t at = text.find("\"per mille\"");
    ASSERT_NE(at, std::string::npos);
    text.replace(at, 11, "\"per millE\"");
    WriteFile(units, text);
    const std::string changed = Parsed();
    EXPECT_NE(changed.find("[per millE]"), std::string::npos);
    // The setup file's entry still serves; the language files are read and a
    // third entry holds the whole load.
    EXPECT_EQ(LoadInChild(m_home, m_cache).dump, changed);
    EXPECT_EQ(Entries(m_cache).size(), 3u);
    EXPECT_EQ(LoadInChild(m_home, m_cache).dump, changed);
    // A language file that is gone is a key of its own.
    unlink(units.c_str());
    const std::string without = Parsed();
    EXPECT_EQ(without.find("[per millE]"), std::string::npos);
    EXPECT_EQ(LoadInChild(m_home, m_cache).dump, without);
    const Child again = LoadInChild(m_home, m_cache);
    EXPECT_TRUE(again.cached);
    EXPECT_EQ(again.dump, without);
    EXPECT_EQ(Entries(m_cache).size(), 4u);
}

TEST_F(LoadCache, TheLocaleOfTheTextsIsPartOfTheKey) {
    // The XML parser converts texts into the locale's character set: the
    // abbreviation of the per-mille unit differs between these two.
    auto utf8 = [] {
        setenv("LC_ALL", "C.UTF-8", 1);
        std::setlocale(LC_ALL, "");
    };
    auto plain = [] {
        setenv("LC_ALL", "C", 1);
        std::setlocale(LC_ALL, "");
    };
    const std::string parsedUtf8 = Parsed(utf8);
    const std::string parsedPlain = Parsed(plain);
    EXPECT_NE(parsedUtf8, parsedPlain);
    for (int round = 0; round < 2; ++round) {
        const Child a = LoadInChild(m_home, m_cache, utf8);
        EXPECT_EQ(a.cached, round == 1);
        EXPECT_EQ(a.dump, parsedUtf8);
        const Child b = LoadInChild(m_home, m_cache, plain);
        EXPECT_EQ(b.cached, round == 1);
        EXPECT_EQ(b.dump, parsedPlain);
    }
}

TEST_F(LoadCache, TheDecimalSymbolIsPartOfTheKey) {
    if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr)
        GTEST_SKIP() << "no German locale (set LOCPATH to the build's locale folder)";
    std::setlocale(LC_NUMERIC, "C");
    // A setup file without decimal numbers, which loads whatever the
    // evaluator's decimal symbol.
    WriteFile(Setup(),
              ReadFile(std::string(std::getenv("XUN_TEST_DATA")) + "/setup/nolang/bin/XUN.xml"));
    for (const char* name : {"xuntype.lan", "xununit.lan", "xunfilter.lan"})
        unlink((m_home + "/bin/" + name).c_str());
    // A failed xunUnitNew under a decimal-comma locale fixes the evaluator's
    // decimal symbol before the load, and leaves the registry empty.
    auto comma = [] {
        std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
        if (xunUnitNew("Nothing", "n", "n", "NoSuchUnit*2") != 0 || szDecimalSymbol != ',')
            _exit(4);
    };
    const std::string parsedComma = Parsed(comma);
    const std::string parsed = Parsed();
    EXPECT_NE(parsedComma.find("decimal [,]"), std::string::npos);
    EXPECT_NE(parsed.find("decimal [.]"), std::string::npos);
    EXPECT_NE(parsedComma, parsed);
    const Child stored = LoadInChild(m_home, m_cache);
    EXPECT_FALSE(stored.cached);
    ASSERT_EQ(Entries(m_cache).size(), 2u);
    // The same bytes with the other symbol: not the stored entry.
    const Child other = LoadInChild(m_home, m_cache, comma);
    EXPECT_FALSE(other.cached);
    EXPECT_EQ(other.dump, parsedComma);
    const Child again = LoadInChild(m_home, m_cache);
    EXPECT_TRUE(again.cached);
    EXPECT_EQ(again.dump, parsed);
}

TEST_F(LoadCache, ABrokenEntryIsIgnoredAndWrittenAgain) {
    const std::string parsed = Parsed();
    LoadInChild(m_home, m_cache);
    ASSERT_EQ(Entries(m_cache).size(), 2u);
    // Both entries broken alike (the whole load's and the setup file's).
    const std::vector<std::string> entries = Entries(m_cache);
    std::vector<std::string> goods;
    for (const std::string& entry : entries)
        goods.push_back(ReadFile(entry));
    const std::string& good = goods[0];
    std::vector<std::string> broken = {
        good.substr(0, good.size() / 2), // cut short
        good.substr(0, 20),              // inside the header
        std::string(),                   // empty
        std::string(good.size(), 'x'),   // garbage
        good + "x",                      // one byte more
    };
    for (size_t at :
         {size_t(0), size_t(9), size_t(30), size_t(41), good.size() / 2, good.size() - 1}) {
        std::string flipped = good;
        flipped[at] = static_cast<char>(flipped[at] ^ 0x20);
        broken.push_back(flipped);
    }
    for (size_t i = 0; i < broken.size(); ++i) {
        for (const std::string& entry : entries)
            WriteFile(entry, broken[i]);
        const Child child = LoadInChild(m_home, m_cache);
        EXPECT_FALSE(child.cached) << i;
        EXPECT_EQ(child.dump, parsed) << i;
        for (size_t e = 0; e < entries.size(); ++e)
            EXPECT_EQ(ReadFile(entries[e]), goods[e]) << i;
    }
    // One of them broken: the other serves (the setup file's, then the
    // language files are read; or the whole load's).
    for (size_t e = 0; e < entries.size(); ++e) {
        WriteFile(entries[e], broken[0]);
        const Child child = LoadInChild(m_home, m_cache);
        EXPECT_TRUE(child.cached) << e;
        EXPECT_EQ(child.dump, parsed) << e;
        WriteFile(entries[e], goods[e]);
    }
    // A symbolic link in an entry's place is not followed.
    const std::string elsewhere = m_root + "/elsewhere";
    for (size_t e = 0; e < entries.size(); ++e) {
        unlink(entries[e].c_str());
        WriteFile(elsewhere + std::to_string(e), goods[e]);
        ASSERT_EQ(symlink((elsewhere + std::to_string(e)).c_str(), entries[e].c_str()), 0);
    }
    const Child linked = LoadInChild(m_home, m_cache);
    EXPECT_FALSE(linked.cached);
    EXPECT_EQ(linked.dump, parsed);
}

TEST_F(LoadCache, TheFolderComesFromTheEnvironment) {
    const std::string parsed = Parsed();
    // XUN_CACHE_DIR unset: $XDG_CACHE_HOME/libxun when that is an absolute
    // path, else $HOME/.cache/libxun; with neither, no cache.
    const std::string xdg = m_root + "/xdg";
    const std::string home = m_root + "/user";
    auto environment = [](const char* xdgValue, const char* homeValue) {
        return [xdgValue, homeValue] {
            unsetenv("XUN_CACHE_DIR");
            if (xdgValue != nullptr)
                setenv("XDG_CACHE_HOME", xdgValue, 1);
            else
                unsetenv("XDG_CACHE_HOME");
            if (homeValue != nullptr)
                setenv("HOME", homeValue, 1);
            else
                unsetenv("HOME");
        };
    };
    for (int round = 0; round < 2; ++round) {
        const Child child = LoadInChild(m_home, "", environment(xdg.c_str(), home.c_str()));
        EXPECT_EQ(child.cached, round == 1);
        EXPECT_EQ(child.dump, parsed);
    }
    EXPECT_EQ(Entries(xdg + "/libxun").size(), 2u);
    EXPECT_TRUE(Entries(home + "/.cache/libxun").empty());
    for (int round = 0; round < 2; ++round) {
        const Child child = LoadInChild(m_home, "", environment("relative", home.c_str()));
        EXPECT_EQ(child.cached, round == 1);
        EXPECT_EQ(child.dump, parsed);
    }
    EXPECT_EQ(Entries(home + "/.cache/libxun").size(), 2u);
    const Child none = LoadInChild(m_home, "", environment(nullptr, nullptr));
    EXPECT_FALSE(none.cached);
    EXPECT_EQ(none.dump, parsed);
    EXPECT_EQ(Entries(xdg + "/libxun").size(), 2u);
    EXPECT_EQ(Entries(home + "/.cache/libxun").size(), 2u);
}

TEST_F(LoadCache, AnEntryOfAnotherUserIsNotRead) {
    if (geteuid() != 0)
        GTEST_SKIP() << "giving an entry to another user needs root";
    const std::string parsed = Parsed();
    LoadInChild(m_home, m_cache);
    const std::vector<std::string> entries = Entries(m_cache);
    ASSERT_EQ(entries.size(), 2u);
    for (const std::string& entry : entries)
        ASSERT_EQ(chown(entry.c_str(), 65534, 65534), 0);
    const Child child = LoadInChild(m_home, m_cache);
    EXPECT_FALSE(child.cached);
    EXPECT_EQ(child.dump, parsed);
    // Written again, as the current user's.
    struct stat status;
    for (const std::string& entry : entries) {
        ASSERT_EQ(stat(entry.c_str(), &status), 0);
        EXPECT_EQ(status.st_uid, 0u);
    }
    EXPECT_TRUE(LoadInChild(m_home, m_cache).cached);
}

TEST_F(LoadCache, AFileThatCannotBeReadFailsAsWithoutTheCache) {
    // The child ends with status 6 unless the failure is the one recorded
    // without the cache.
    auto missing = [] {
        const std::string file = std::string(std::getenv("KORVANE_HOME")) + "/bin/none.xml";
        testing::internal::CaptureStderr();
        const int loaded = xunSetupLoad(file.c_str());
        const std::string printed = testing::internal::GetCapturedStderr();
        const char* message = nullptr;
        if (loaded != 0 || xunGetLastError(&message) != XUN_ERR_FILE ||
            std::string(message) != "xunSetupLoad: the setup file '" + file +
                                        "' cannot be read or is not well-formed XML" ||
            printed != "Document '" + file + "' not parsed successfully. \n")
            _exit(6);
    };
    LoadInChild(m_home, "off", missing);
    LoadInChild(m_home, m_cache, missing);
    // Only the default load that follows in the child was stored.
    EXPECT_EQ(Entries(m_cache).size(), 2u);
}

TEST_F(LoadCache, OnlyCleanLoadsIntoAnEmptyRegistryAreStored) {
    // A load that prints a message.
    std::string text = ReadFile(Setup());
    const size_t at = text.find("Expr=\"UnitFraction/1000\"");
    ASSERT_NE(at, std::string::npos);
    std::string printing = text;
    printing.replace(at, 24, "Expr=\"NoSuchUnit/1000\"  ");
    WriteFile(Setup(), printing);
    LoadInChild(m_home, m_cache);
    EXPECT_TRUE(Entries(m_cache).empty());
    WriteFile(Setup(), text);
    // A load into a registry that is not empty.
    const Child second = LoadInChild(m_home, m_cache, [] {
        if (xunFilterNew("EarlyFilter", "early") == 0)
            _exit(4);
    });
    EXPECT_FALSE(second.cached);
    EXPECT_TRUE(Entries(m_cache).empty());
    // The cache turned off.
    LoadInChild(m_home, "");
    LoadInChild(m_home, "off");
    EXPECT_TRUE(Entries(m_cache).empty());
    // A folder that cannot be made (below a regular file): the load goes on
    // as if there were no cache.
    const std::string parsedHere = Parsed();
    const std::string blocked = m_root + "/file";
    WriteFile(blocked, "x");
    const Child unwritable = LoadInChild(m_home, blocked + "/cache");
    EXPECT_FALSE(unwritable.cached);
    EXPECT_EQ(unwritable.dump, parsedHere);
    // A document that names an external DTD.
    std::string external = text;
    const size_t doctype = external.find("<!DOCTYPE XUN [");
    ASSERT_NE(doctype, std::string::npos);
    external.replace(doctype, 15, "<!DOCTYPE XUN SYSTEM \"empty.dtd\" [");
    WriteFile(m_home + "/bin/empty.dtd", "");
    WriteFile(Setup(), external);
    const std::string parsed = Parsed();
    EXPECT_NE(parsed.find("[UnitPerMille]"), std::string::npos);
    EXPECT_EQ(LoadInChild(m_home, m_cache).dump, parsed);
    EXPECT_TRUE(Entries(m_cache).empty());
}

TEST_F(LoadCache, KeepsAtMostTheLimitOfEntries) {
    const std::string text = ReadFile(Setup());
    const size_t at = text.find("Desc=\"per mille\"");
    ASSERT_NE(at, std::string::npos);
    const int files = static_cast<int>(xun::contract::kLoadCacheEntries) + 6;
    for (int i = 0; i < files; ++i) {
        std::string changed = text;
        changed.insert(at + 15, " " + std::to_string(i));
        WriteFile(Setup(), changed);
        LoadInChild(m_home, m_cache);
    }
    EXPECT_EQ(Entries(m_cache).size(), xun::contract::kLoadCacheEntries);
    // The newest one is among them.
    EXPECT_TRUE(LoadInChild(m_home, m_cache).cached);
}

// The payload: what decodes encodes to the same bytes, and bytes that are
// no payload decode to nothing (without reading past them).
TEST(LoadCachePayload, DecodesWhatItEncodesAndNothingElse) {
    setenv("KORVANE_HOME", (std::string(std::getenv("XUN_TEST_DATA")) + "/../../data").c_str(), 1);
    setenv("XUN_CACHE_DIR", "off", 1);
    xunLoadItemTypeTables("");
    std::string payload;
    ASSERT_TRUE(xunEncodeRegistries_(xuntest::Registries(), '.', payload));
    char symbol = ' ';
    const auto* bytes = reinterpret_cast<const unsigned char*>(payload.data());
    std::unique_ptr<CKVregistries> decoded = xunDecodeRegistries_(bytes, payload.size(), symbol);
    ASSERT_NE(decoded, nullptr);
    EXPECT_EQ(symbol, '.');
    std::string again;
    ASSERT_TRUE(xunEncodeRegistries_(*decoded, symbol, again));
    EXPECT_EQ(again, payload);
    // Every shorter prefix is refused; so is any byte more.
    for (size_t size = 0; size < payload.size(); size += 1 + size / 64)
        EXPECT_EQ(xunDecodeRegistries_(bytes, size, symbol), nullptr) << size;
    std::string longer = payload + '\0';
    EXPECT_EQ(xunDecodeRegistries_(reinterpret_cast<const unsigned char*>(longer.data()),
                                   longer.size(), symbol),
              nullptr);
    // A forged count or length is refused before anything is reserved.
    std::string forged = payload;
    std::memset(&forged[1], 0xFF, 8);
    EXPECT_EQ(xunDecodeRegistries_(reinterpret_cast<const unsigned char*>(forged.data()),
                                   forged.size(), symbol),
              nullptr);
    // Changed bytes either are refused or decode into registries whose
    // invariants hold (and encode back to the same bytes).
    for (size_t at = 0; at < payload.size(); at += 97) {
        std::string changed = payload;
        changed[at] = static_cast<char>(changed[at] ^ 0x41);
        std::unique_ptr<CKVregistries> result = xunDecodeRegistries_(
            reinterpret_cast<const unsigned char*>(changed.data()), changed.size(), symbol);
        if (result != nullptr) {
            EXPECT_NO_THROW(result->CheckInvariants());
            std::string encoded;
            ASSERT_TRUE(xunEncodeRegistries_(*result, symbol, encoded));
            EXPECT_EQ(encoded, changed) << at;
        }
    }
}

std::vector<std::string>* Found_ = nullptr;

int CollectSetupFile(const char* path, const struct stat*, int type, struct FTW*) {
    const std::string name = path;
    const bool xml = name.size() > 4 && name.compare(name.size() - 4, 4, ".xml") == 0;
    if (type == FTW_F && (xml || name.find("/corpus/setup/") != std::string::npos))
        Found_->push_back(name);
    return 0;
}

// Every setup file of the tests and of the setup fuzz target's corpus that
// loads: its registries encoded and decoded answer everything as the loaded
// ones do (compared by the same dump, with the decoded registry in place of
// the loaded one).
TEST(LoadCachePayload, EverySetupFileOfTheTestsRoundTrips) {
    setenv("XUN_CACHE_DIR", "off", 1);
    const std::string data = std::getenv("XUN_TEST_DATA");
    std::vector<std::string> files;
    Found_ = &files;
    nftw(data.c_str(), &CollectSetupFile, 16, FTW_PHYS);
    nftw((data + "/../../fuzz/corpus/setup").c_str(), &CollectSetupFile, 16, FTW_PHYS);
    ASSERT_GT(files.size(), 60u);
    int roundTrips = 0;
    for (const std::string& file : files) {
        xunResetRegistries_();
        int loaded = 0;
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        try {
            XunAssertionTrap trap;
            loaded = xunSetupLoad(file.c_str());
        } catch (const XunAssertionFailed&) {
            loaded = 0;
        }
        testing::internal::GetCapturedStdout();
        testing::internal::GetCapturedStderr();
        std::string payload;
        if (loaded != 1 || !xunEncodeRegistries_(xuntest::Registries(), szDecimalSymbol, payload))
            continue;
        char symbol = ' ';
        std::unique_ptr<CKVregistries> decoded = xunDecodeRegistries_(
            reinterpret_cast<const unsigned char*>(payload.data()), payload.size(), symbol);
        ASSERT_NE(decoded, nullptr) << file;
        EXPECT_EQ(symbol, szDecimalSymbol) << file;
        // (Each dump starts from no last error: the first one's calls leave
        // one behind.)
        xunClearLastError();
        const std::string loadedDump = Dump();
        xunReplaceRegistries_(std::move(decoded));
        xunClearLastError();
        EXPECT_EQ(Dump(), loadedDump) << file;
        ++roundTrips;
    }
    EXPECT_GT(roundTrips, 40) << files.size();
}

} // namespace
