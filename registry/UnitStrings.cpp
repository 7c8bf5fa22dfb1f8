#include "registry/UnitStrings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <string_view>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

#include "common/Assert.h"
#include "common/Contract.h"
#include "units/CfAtoms.h"
#include "units/UnitPrefixes.h"
#include "units/UnitString.h"
#include "xun.h"

using xun::contract::kUnitStringCacheBytes;
using xun::contract::kUnitStringCacheEntries;
using xun::contract::kUnitStringMaxLength;

namespace {

const int kBases = CKVdimension::kBaseCount;

// ---- Units as plain values -------------------------------------------------

// Whether the unit's own checks (CKVunit::AssertValid) hold, so that its
// dimension may be read: only such units are atoms or answers.
bool IsUsable(const CKVunit& unit) {
    return (unit.m_pDimParent == nullptr) != (unit.m_pDimTemp == nullptr) && unit.m_dFactor != 0.0;
}

XunUnitValue ValueOf(const CKVunit& unit) {
    XunUnitValue value;
    value.factor = unit.m_dFactor;
    value.offset = unit.m_dOffset;
    const CKVdimension& dim = unit.m_pDimParent != nullptr ? *unit.m_pDimParent : *unit.m_pDimTemp;
    for (int i = 0; i < kBases; ++i) {
        value.powers[i] = dim.GetPower(i + 1);
        value.dimFactors[i] = unit.m_dDimFactors[i];
    }
    return value;
}

// The dimension as a hash key: the exponents' bit patterns, -0 as 0.
struct DimKey {
    unsigned long long bits[kBases];
    bool operator==(const DimKey& other) const {
        return std::memcmp(bits, other.bits, sizeof bits) == 0;
    }
};

struct DimKeyHash {
    std::size_t operator()(const DimKey& key) const {
        unsigned long long h = 0;
        for (unsigned long long b : key.bits)
            h = (h ^ b) * 0x9E3779B97F4A7C15ull;
        return static_cast<std::size_t>(h ^ (h >> 29));
    }
};

bool KeyOf(const double powers[], DimKey& key) {
    for (int i = 0; i < kBases; ++i) {
        if (std::isnan(powers[i]))
            return false;
        const double normal = powers[i] == 0.0 ? 0.0 : powers[i];
        std::memcpy(&key.bits[i], &normal, sizeof normal);
    }
    return true;
}

std::string FoldCase(std::string_view text) {
    std::string folded(text);
    for (char& c : folded)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return folded;
}

bool IsAscii(std::string_view text) {
    for (char c : text)
        if (static_cast<unsigned char>(c) >= 0x80)
            return false;
    return true;
}

bool IsLowerWord(std::string_view text) {
    if (text.size() < 3)
        return false;
    for (char c : text)
        if (c < 'a' || c > 'z')
            return false;
    return true;
}

// A name written like a symbol, which takes a prefix by symbol: one token
// without digits (a prefix goes before an exponent: "dam3" is (dam)³), and
// short or not a plain word.
bool IsSymbolLike(std::string_view text) {
    if (text.empty())
        return false;
    for (std::size_t i = 0; i < text.size();) {
        unsigned long c = 0;
        const std::size_t length = xunDecodeUtf8_(text, i, c);
        if (length == 0 || !xunIsNameCodePoint_(c) || (c >= '0' && c <= '9'))
            return false;
        i += length;
    }
    return text.size() <= 3 || !IsLowerWord(text);
}

std::string Printable(std::string_view text) {
    std::string out;
    const std::size_t limit = 80;
    for (std::size_t i = 0; i < text.size() && out.size() < limit;) {
        unsigned long c = 0;
        const std::size_t length = xunDecodeUtf8_(text, i, c);
        if (length == 0 || c < 0x20 || c == 0x7F || (c >= 0x80 && c <= 0x9F)) {
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, "\\x%02X",
                          static_cast<unsigned>(static_cast<unsigned char>(text[i])));
            out += buffer;
            i += length == 0 ? 1 : length;
            continue;
        }
        out.append(text.substr(i, length));
        i += length;
    }
    if (out.size() >= limit)
        out += "...";
    return out;
}

std::string_view Trim(std::string_view text) {
    // Blanks as the parser knows them: ASCII white space, no-break and
    // other Unicode spaces.
    auto spaceAt = [&](std::size_t i, std::size_t& length) {
        unsigned long c = 0;
        length = xunDecodeUtf8_(text, i, c);
        return length != 0 && (c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' ||
                               c == '\f' || c == 0xA0 || (c >= 0x2000 && c <= 0x200A) ||
                               c == 0x202F || c == 0x205F || c == 0x3000);
    };
    std::size_t begin = 0;
    std::size_t length = 0;
    while (begin < text.size() && spaceAt(begin, length))
        begin += length;
    std::size_t end = text.size();
    while (end > begin) {
        std::size_t start = end - 1;
        while (start > begin && (static_cast<unsigned char>(text[start]) & 0xC0) == 0x80)
            --start;
        if (!spaceAt(start, length) || start + length != end)
            break;
        end = start;
    }
    return text.substr(begin, end - begin);
}

// ---- The index of a registry -----------------------------------------------

// The kinds of names in the order they are tried.
enum NameKind { kIdent = 0, kDescriptionOrAlias = 1, kAbbreviation = 2 };

struct Named {
    const CKVunit* unit;
    NameKind kind;
};

struct Spelled {
    const CKVunit* unit;
    std::string_view name;
};

struct Candidate {
    const CKVunit* unit;
    XunUnitValue value;
};

// A text met before: what xunParseUnit answered, and what it means.
struct Remembered {
    std::string text;
    const CKVunit* answer = nullptr; // xunParseUnit's unit (null: not asked yet)
    const CKVunit* named = nullptr;  // the unit found by name, if so
    XunUnitValue value;              // its meaning
};

struct TextSlot {
    unsigned long long generation;
    const std::string* text;
};

class StringIndex final : public CKVunitRegistryCache {
  public:
    unsigned long long generation = ~0ull;
    std::unordered_map<std::string_view, Named> names;
    std::unordered_map<std::string, std::vector<Spelled>> folded;
    std::unordered_map<std::string_view, const CKVunit*> symbolTargets;
    std::unordered_map<std::string_view, const CKVunit*> wordTargets;
    std::unordered_map<DimKey, std::vector<Candidate>, DimKeyHash> byDimension;
    std::vector<std::string_view> nameList;
    std::unordered_map<std::string_view, bool> listed;
    int maxWords = 1;
    // Names made here (plural forms): the views above point into them.
    std::deque<std::string> owned;

    std::unordered_map<std::string_view, std::unique_ptr<Remembered>> remembered;
    std::size_t rememberedBytes = 0;

    // Texts handed out by xunGetUnitText: kept as long as the registry
    // lives, also after a change made them stale. They are made again after
    // a change of the units, but not after a unit that xunParseUnit
    // registers: such a unit is found only by its own names, which render a
    // meaning that no other unit has, so no other unit's text can change.
    std::map<std::pair<long, int>, TextSlot> texts;
    unsigned long long textsGeneration = 0;
    std::deque<std::string> handedOut;
    // The texts being made (a text may need the texts of other units).
    std::vector<std::pair<long, int>> making;

    // The registry the index belongs to.
    const CKVunitRegistry* registry = nullptr;

    void Build(const CKVunitRegistry& units);
    void Add(const CKVunit& unit);

    const Named* FindName(std::string_view name) const {
        const auto it = names.find(name);
        return it == names.end() ? nullptr : &it->second;
    }
    Remembered* FindRemembered(std::string_view text) {
        const auto it = remembered.find(text);
        return it == remembered.end() ? nullptr : it->second.get();
    }
    Remembered& Remember(std::string_view text) {
        if (remembered.size() >= kUnitStringCacheEntries ||
            rememberedBytes + text.size() > kUnitStringCacheBytes) {
            remembered.clear();
            rememberedBytes = 0;
        }
        std::unique_ptr<Remembered> entry(new Remembered);
        entry->text.assign(text.data(), text.size());
        Remembered& ref = *entry;
        const std::string_view key(ref.text);
        remembered[key] = std::move(entry);
        rememberedBytes += text.size();
        return ref;
    }

  private:
    void AddName(std::string_view name, const CKVunit& unit, NameKind kind);
    void AddNames(const CKVunit& unit, NameKind only);
    void AddMeaning(const CKVunit& unit);
    void List(std::string_view name);
};

int CountWords(std::string_view name) {
    int words = 1;
    for (std::size_t i = 0; i < name.size(); ++i)
        if ((name[i] == ' ' || name[i] == '-') && i > 0 && i + 1 < name.size())
            ++words;
    return words;
}

void StringIndex::List(std::string_view name) {
    if (name.empty() || listed.count(name) != 0)
        return;
    listed.emplace(name, true);
    nameList.push_back(name);
}

// Units that xunParseUnit registered: their names are renderings of their
// meaning, which they are found by anyway. They are found by these names
// exactly, but take no prefix, match no other case and are nobody's near
// name, so that what a text means never depends on the texts read before.
bool IsParsed(const CKVunit& unit) {
    return unit.m_strIdent.compare(0, 4, "xun:") == 0;
}

void StringIndex::AddName(std::string_view name, const CKVunit& unit, NameKind kind) {
    const auto found = names.find(name);
    if (found == names.end())
        names.emplace(name, Named{&unit, kind});
    else if (kind < found->second.kind)
        found->second = Named{&unit, kind};
    if (IsParsed(unit))
        return;
    std::vector<Spelled>& same = folded[FoldCase(name)];
    bool present = false;
    for (const Spelled& spelled : same)
        present = present || spelled.unit == &unit;
    if (!present)
        same.push_back(Spelled{&unit, name});
    maxWords = std::min(16, std::max(maxWords, CountWords(name)));
}

void StringIndex::AddNames(const CKVunit& unit, NameKind only) {
    const bool targets = !IsParsed(unit);
    if (only == kIdent) {
        AddName(unit.m_strIdent, unit, kIdent);
        return;
    }
    if (only == kAbbreviation) {
        if (!unit.m_strAbbr.empty()) {
            AddName(unit.m_strAbbr, unit, kAbbreviation);
            if (targets && IsSymbolLike(unit.m_strAbbr))
                symbolTargets.emplace(unit.m_strAbbr, &unit);
        }
        return;
    }
    // The description by the singular/plural rule of xunGetUnitTag: the
    // description itself, with an "s" more, and with its final "s" less.
    const std::string& desc = unit.m_strDesc;
    owned.push_back(desc + "s");
    const std::string_view plural = owned.back();
    AddName(desc, unit, kDescriptionOrAlias);
    AddName(plural, unit, kDescriptionOrAlias);
    if (targets && IsLowerWord(desc)) {
        wordTargets.emplace(desc, &unit);
        wordTargets.emplace(plural, &unit);
    }
    if (!desc.empty() && desc.back() == 's') {
        const std::string_view singular = std::string_view(desc).substr(0, desc.size() - 1);
        AddName(singular, unit, kDescriptionOrAlias);
        if (targets && IsLowerWord(singular))
            wordTargets.emplace(singular, &unit);
    }
    for (const std::string& alias : unit.m_lstAlias) {
        AddName(alias, unit, kDescriptionOrAlias);
        if (targets && IsSymbolLike(alias))
            symbolTargets.emplace(alias, &unit);
        if (targets && IsLowerWord(alias))
            wordTargets.emplace(alias, &unit);
    }
}

void StringIndex::AddMeaning(const CKVunit& unit) {
    if (!IsParsed(unit)) {
        List(unit.m_strIdent);
        List(unit.m_strDesc);
        for (const std::string& alias : unit.m_lstAlias)
            List(alias);
        List(unit.m_strAbbr);
    }
    if (unit.m_lKey != 0 && IsUsable(unit)) {
        const XunUnitValue value = ValueOf(unit);
        DimKey key;
        if (KeyOf(value.powers, key))
            byDimension[key].push_back(Candidate{&unit, value});
    }
}

void StringIndex::Add(const CKVunit& unit) {
    AddNames(unit, kIdent);
    AddNames(unit, kDescriptionOrAlias);
    AddNames(unit, kAbbreviation);
    AddMeaning(unit);
}

void StringIndex::Build(const CKVunitRegistry& units) {
    names.clear();
    folded.clear();
    symbolTargets.clear();
    wordTargets.clear();
    byDimension.clear();
    nameList.clear();
    listed.clear();
    owned.clear();
    remembered.clear();
    rememberedBytes = 0;
    maxWords = 1;
    ++textsGeneration;
    // Kinds in the order they win: every ident before any description or
    // alias, those before any abbreviation; within a kind the first unit
    // in registration order.
    for (const CKVunit* unit : units)
        AddNames(*unit, kIdent);
    for (const CKVunit* unit : units)
        AddNames(*unit, kDescriptionOrAlias);
    for (const CKVunit* unit : units)
        AddNames(*unit, kAbbreviation);
    for (const CKVunit* unit : units)
        AddMeaning(*unit);
    generation = units.Generation();
}

StringIndex& IndexOf(CKVunitRegistry& units) {
    // The exact type, which is cheaper to ask than a dynamic_cast on every
    // call; another kind of derived data is replaced.
    CKVunitRegistryCache* cache = units.Cache();
    StringIndex* index = cache != nullptr && typeid(*cache) == typeid(StringIndex)
                             ? static_cast<StringIndex*>(cache)
                             : nullptr;
    if (index == nullptr) {
        std::unique_ptr<CKVunitRegistryCache> created(new StringIndex);
        index = static_cast<StringIndex*>(created.get());
        units.SetCache(std::move(created));
    }
    index->registry = &units;
    if (index->generation != units.Generation())
        index->Build(units);
    return *index;
}

// ---- Atoms -------------------------------------------------------------------

XunAtom AtomOf(const CKVunit& unit) {
    XunAtom atom;
    atom.value = ValueOf(unit);
    atom.key = unit.m_lKey;
    atom.prefix = -1;
    return atom;
}

// The atom of a prefix and a unit: the unit scaled as a number scales it
// (units/KVunit.h), which drops any offset.
XunAtom PrefixedAtom(const CKVunit& unit, std::size_t prefix) {
    XunAtom atom = AtomOf(unit);
    const int exponent = xunPrefixAt_(prefix).exponent;
    atom.value.factor = xunApplyPrefix_(atom.value.factor, exponent);
    int single = -1;
    int nonZero = 0;
    for (int i = 0; i < kBases; ++i)
        if (atom.value.powers[i] != 0.0) {
            single = i;
            ++nonZero;
        }
    if (nonZero == 1)
        atom.value.dimFactors[single] = xunApplyPrefix_(atom.value.dimFactors[single], exponent);
    atom.value.offset = 0.0;
    atom.prefix = static_cast<int>(prefix);
    return atom;
}

std::string MicroSign(std::string_view text) {
    std::string replaced(text);
    for (std::size_t at = replaced.find("\xCE\xBC"); at != std::string::npos;
         at = replaced.find("\xCE\xBC", at + 2))
        replaced.replace(at, 2, "\xC2\xB5");
    return replaced;
}

// The names of a registry as atoms: exact (and with the Greek mu read as
// the micro sign), then a prefix before an exact name; with foldCase, then a
// name that matches without case, when it names one unit.
class RegistryAtoms : public IUnitAtoms {
  public:
    RegistryAtoms(const StringIndex& index, bool foldCase) : m_index(index), m_foldCase(foldCase) {}

    XunAtomLookup FindAtom(std::string_view name, bool singleWord, XunAtom& atom) const override {
        if (const Named* named = m_index.FindName(name))
            return Use(*named->unit, atom);
        if (name.find("\xCE\xBC") != std::string_view::npos) {
            const std::string micro = MicroSign(name);
            if (const Named* named = m_index.FindName(micro))
                return Use(*named->unit, atom);
        }
        if (singleWord) {
            // A prefix by symbol before a symbol, by name before a name,
            // where the whole name is none.
            for (int byName = 0; byName < 2; ++byName) {
                const auto& targets = byName ? m_index.wordTargets : m_index.symbolTargets;
                for (std::size_t p = xunFindPrefix_(name, byName != 0, 0);
                     p != std::string_view::npos; p = xunFindPrefix_(name, byName != 0, p + 1)) {
                    const XunPrefix& prefix = xunPrefixAt_(p);
                    const std::size_t length = std::strlen(byName ? prefix.name : prefix.symbol);
                    const auto target = targets.find(name.substr(length));
                    if (target == targets.end() || !IsUsable(*target->second))
                        continue;
                    atom = PrefixedAtom(*target->second, p);
                    return XunAtomLookup::Found;
                }
            }
        }
        if (!m_foldCase)
            return XunAtomLookup::Unknown;
        const auto same = m_index.folded.find(FoldCase(name));
        if (same == m_index.folded.end())
            return XunAtomLookup::Unknown;
        if (same->second.size() > 1)
            return XunAtomLookup::Ambiguous;
        return Use(*same->second.front().unit, atom);
    }

    int MaxWords() const override { return m_index.maxWords; }

  private:
    static XunAtomLookup Use(const CKVunit& unit, XunAtom& atom) {
        if (!IsUsable(unit))
            return XunAtomLookup::Unknown;
        atom = AtomOf(unit);
        return XunAtomLookup::Found;
    }

    const StringIndex& m_index;
    bool m_foldCase;
};

// ---- Near names --------------------------------------------------------------

std::size_t EditDistance(const std::string& a, const std::string& b, std::size_t limit) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        std::size_t best = row[0];
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            row[j] =
                std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
            diagonal = above;
            best = std::min(best, row[j]);
        }
        if (best > limit)
            return limit + 1;
    }
    return row[b.size()];
}

// Up to three names of the registry nearest to name, case folded: the
// fewest single-byte edits, at most a third of the name's length (at least
// one) and fewer than its length; ties in registration order.
std::vector<std::string_view> NearNames(const StringIndex& index, std::string_view name) {
    const std::string query = FoldCase(name.substr(0, 64));
    const std::size_t limit = std::max<std::size_t>(1, query.size() / 3);
    struct Near {
        std::size_t distance;
        std::size_t order;
        std::string_view name;
    };
    std::vector<Near> found;
    std::vector<std::string> seen;
    for (std::size_t i = 0; i < index.nameList.size(); ++i) {
        const std::string_view candidate = index.nameList[i];
        const std::size_t size = candidate.size();
        if (size + limit < query.size() || size > query.size() + limit)
            continue;
        const std::string folded = FoldCase(candidate);
        if (folded == query)
            continue;
        const std::size_t distance = EditDistance(query, folded, limit);
        // A name that shares nothing with the one asked for is not near.
        if (distance > limit || distance >= query.size())
            continue;
        if (std::find(seen.begin(), seen.end(), folded) != seen.end())
            continue;
        seen.push_back(folded);
        found.push_back(Near{distance, i, candidate});
    }
    std::stable_sort(found.begin(), found.end(), [](const Near& a, const Near& b) {
        return a.distance != b.distance ? a.distance < b.distance : a.order < b.order;
    });
    std::vector<std::string_view> result;
    for (std::size_t i = 0; i < found.size() && i < 3; ++i)
        result.push_back(found[i].name);
    return result;
}

std::string ParseFailure(const StringIndex& index, std::string_view text,
                         const XunParseError& error) {
    std::string message = "'" + Printable(text) + "' stops making sense at byte " +
                          std::to_string(error.position + 1) + ": " + error.reason;
    if (!error.unknown.empty()) {
        const auto same = index.folded.find(FoldCase(error.unknown));
        if (same != index.folded.end() && same->second.size() > 1) {
            message += " (";
            for (std::size_t i = 0; i < same->second.size() && i < 3; ++i) {
                message += (i > 0 ? ", '" : "'") + Printable(same->second[i].name) + "' (" +
                           Printable(same->second[i].unit->m_strDesc) + ")";
            }
            message += "; write it in the right case)";
            return message;
        }
        const std::vector<std::string_view> near = NearNames(index, error.unknown);
        if (!near.empty()) {
            message += "; near names: ";
            for (std::size_t i = 0; i < near.size(); ++i)
                message += (i > 0 ? ", '" : "'") + Printable(near[i]) + "'";
        }
    }
    return message;
}

// ---- Reading a text ------------------------------------------------------------

struct Reading {
    const CKVunit* named = nullptr; // found by name
    XunParsedUnit parsed;           // else its meaning
};

// A text found as a name: the unit, unless it cannot be an answer.
int Named_(const CKVunit* unit, std::string_view trimmed, Reading& reading, std::string& message) {
    if (unit->m_lKey == 0) {
        message = "'" + Printable(trimmed) + "' names the unit '" + Printable(unit->m_strIdent) +
                  "' of key 0, which converts nothing";
        return XUN_ERR_NO_REAL_UNIT;
    }
    if (!IsUsable(*unit)) {
        message = "'" + Printable(trimmed) + "' names the unit '" + Printable(unit->m_strIdent) +
                  "', which has no valid dimension or the factor 0";
        return XUN_ERR_EXPRESSION;
    }
    reading.named = unit;
    return XUN_OK;
}

// The name step and the grammar: XUN_OK with reading.named or
// reading.parsed, else a failure.
int Read(const StringIndex& index, std::string_view text, Reading& reading, std::string& message) {
    const std::string_view trimmed = Trim(text);
    if (trimmed.empty()) {
        message = "the text is empty";
        return XUN_ERR_EXPRESSION;
    }
    // Case counts first: the text as a name, byte for byte (then with the
    // Greek mu read as the micro sign); then the text through the grammar
    // with names and prefixes as written. Only where that finds no name,
    // case is ignored: the text as a name that one unit has, then the
    // grammar with every name that is none as written matched without case.
    const Named* named = index.FindName(trimmed);
    if (named == nullptr && trimmed.find("\xCE\xBC") != std::string_view::npos)
        named = index.FindName(MicroSign(trimmed));
    if (named != nullptr)
        return Named_(named->unit, trimmed, reading, message);
    XunParseError error;
    const RegistryAtoms exact(index, false);
    if (!xunParseUnitString_(text, exact, XunParseOptions(), reading.parsed, error)) {
        if (error.code != XUN_ERR_NOT_FOUND) {
            message = ParseFailure(index, text, error);
            return error.code;
        }
        const auto same = index.folded.find(FoldCase(trimmed));
        if (same != index.folded.end() && same->second.size() == 1)
            return Named_(same->second.front().unit, trimmed, reading, message);
        const RegistryAtoms folding(index, true);
        if (!xunParseUnitString_(text, folding, XunParseOptions(), reading.parsed, error)) {
            message = ParseFailure(index, text, error);
            return error.code;
        }
    }
    // A single name as written (in parentheses, or spelled with other
    // blanks, in another case) is that unit itself.
    const XunParsedUnit& parsed = reading.parsed;
    if (parsed.bare && !parsed.shifted && parsed.terms.size() == 1 && parsed.terms[0].prefix < 0 &&
        parsed.terms[0].exponent == 1.0 && parsed.terms[0].key != 0) {
        const CKVunit* unit = index.registry->FindByKey(parsed.terms[0].key);
        if (unit != nullptr && IsUsable(*unit))
            reading.named = unit;
    }
    return XUN_OK;
}

// The first registered unit of equal meaning (exact, else within 1e-12)
// among the candidates of the dimension; null when none.
const CKVunit* Match(const StringIndex& index, const XunUnitValue& value) {
    DimKey key;
    if (!KeyOf(value.powers, key))
        return nullptr;
    const auto found = index.byDimension.find(key);
    if (found == index.byDimension.end())
        return nullptr;
    for (int exact = 1; exact >= 0; --exact)
        for (const Candidate& candidate : found->second)
            if (xunValuesAgree_(value, candidate.value, exact != 0))
                return candidate.unit;
    return nullptr;
}

// Reads a text and finds the registered unit it means, without registering
// anything: XUN_OK with unit (null when no registered unit means it).
int Resolve(const StringIndex& index, std::string_view text, Reading& reading, const CKVunit*& unit,
            std::string& message) {
    unit = nullptr;
    const int result = Read(index, text, reading, message);
    if (result != XUN_OK)
        return result;
    unit = reading.named != nullptr ? reading.named : Match(index, reading.parsed.value);
    return XUN_OK;
}

bool ResolvesTo(const StringIndex& index, std::string_view text, const CKVunit& unit) {
    Reading reading;
    const CKVunit* found = nullptr;
    std::string ignored;
    return Resolve(index, text, reading, found, ignored) == XUN_OK && found == &unit;
}

// ---- Texts of units ----------------------------------------------------------------

// An abbreviation in ASCII: superscripts as digits, the middle dot as '*',
// the micro signs as 'u', the degree and a few other signs by their ASCII
// names. Empty when a character has no ASCII form.
std::string Transliterate(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        unsigned long c = 0;
        const std::size_t length = xunDecodeUtf8_(text, i, c);
        if (length == 0)
            return std::string();
        i += length;
        if (c < 0x80) {
            out += static_cast<char>(c);
            continue;
        }
        switch (c) {
        case 0xB2:
            out += '2';
            break;
        case 0xB3:
            out += '3';
            break;
        case 0xB9:
            out += '1';
            break;
        case 0x2070:
            out += '0';
            break;
        case 0x207B:
        case 0x2212:
            out += '-';
            break;
        case 0x207A:
            out += '+';
            break;
        case 0xB7:
        case 0xD7:
        case 0x22C5:
            out += '*';
            break;
        case 0xB5:
        case 0x3BC:
            out += 'u';
            break;
        case 0xB0: {
            unsigned long next = 0;
            const std::size_t nextLength = xunDecodeUtf8_(text, i, next);
            const bool scale = nextLength == 1 && (next == 'C' || next == 'F' || next == 'R');
            const bool word = nextLength != 0 && xunIsNameCodePoint_(next);
            out += scale ? "deg" : word ? "deg " : "deg";
            break;
        }
        case 0x394:
            out += "delta ";
            break;
        case 0x3A9:
            out += "Ohm";
            break;
        case 0xC5:
            out += "Angstrom";
            break;
        case 0x2030:
            out += "permille";
            break;
        case 0x2032:
            out += "arcmin";
            break;
        case 0x2033:
            out += "arcsec";
            break;
        case 0xA0:
            out += ' ';
            break;
        default:
            if (c >= 0x2074 && c <= 0x2079) {
                out += static_cast<char>('4' + (c - 0x2074));
            } else if (c >= 0x2080 && c <= 0x2089) {
                out += static_cast<char>('0' + (c - 0x2080));
            } else {
                return std::string();
            }
        }
    }
    return out;
}

std::string Superscript(long value) {
    static const char* const kDigits[10] = {
        "\xE2\x81\xB0", "\xC2\xB9",     "\xC2\xB2",     "\xC2\xB3",     "\xE2\x81\xB4",
        "\xE2\x81\xB5", "\xE2\x81\xB6", "\xE2\x81\xB7", "\xE2\x81\xB8", "\xE2\x81\xB9"};
    std::string out = value < 0 ? "\xE2\x81\xBB" : "";
    const std::string digits = std::to_string(value < 0 ? -value : value);
    for (char d : digits)
        out += kDigits[d - '0'];
    return out;
}

// An exponent as written after '^': "2", "-1", "(1/3)", "0.4142". The text
// reads back to exactly the same double (dimensions compare exactly): a
// fraction only where its quotient is the exponent, else the shortest
// decimal that reads back ("0.6000000000000001" from 1.6 - 1, not "(3/5)").
std::string ExponentText(double exponent) {
    if (exponent == std::round(exponent))
        return std::to_string(static_cast<long>(exponent));
    for (int q = 2; q <= 12; ++q) {
        const double p = std::round(exponent * q);
        if (p / q == exponent)
            return "(" + std::to_string(static_cast<long>(p)) + "/" + std::to_string(q) + ")";
    }
    char text[32];
    const std::to_chars_result written = std::to_chars(text, text + sizeof text, exponent);
    return std::string(text, written.ptr);
}

// A number for a text: the fewest digits that stay within 1e-15 of it
// (relative to scale), so that "0.0037854117839999997" is written
// "0.003785411784"; every reading of it agrees with the unit within the
// tolerance of 1e-12.
std::string Readable(double value, double scale) {
    for (int digits = 1; digits <= 17; ++digits) {
        char buffer[64];
        std::snprintf(buffer, sizeof buffer, "%.*g", digits, value);
        const double read = std::strtod(buffer, nullptr);
        if (std::fabs(read - value) <= 1e-15 * scale)
            return xunShortestNumber_(read);
    }
    return xunShortestNumber_(value);
}

std::string Readable(double value) {
    return Readable(value, std::fabs(value));
}

// Whether a name must be put in parentheses to carry an exponent or stand
// in a product.
bool NeedsParentheses(std::string_view text, bool withExponent) {
    if (text.empty())
        return true;
    unsigned long last = 0;
    for (std::size_t i = 0; i < text.size();) {
        unsigned long c = 0;
        const std::size_t length = xunDecodeUtf8_(text, i, c);
        if (length == 0)
            return true;
        const bool superscript =
            c == 0xB2 || c == 0xB3 || c == 0xB9 || c == 0x2070 || (c >= 0x2074 && c <= 0x207B);
        if (!xunIsNameCodePoint_(c) && !superscript && c != '%')
            return true;
        last = c;
        i += length;
    }
    if (!withExponent)
        return false;
    return (last >= '0' && last <= '9') || last == 0xB2 || last == 0xB3 || last == 0xB9 ||
           last == 0x2070 || (last >= 0x2074 && last <= 0x2079);
}

const std::string& TextOf(StringIndex& index, const CKVunit& unit, int notation);

// The text of one atom: the unit's text with its prefix, or the prefix as a
// number where prefix and text together would read as another name.
std::string AtomText(StringIndex& index, const CKVunitRegistry& units, const XunTerm& term,
                     int notation) {
    const CKVunit* unit = units.FindByKey(term.key);
    if (unit == nullptr)
        return "?";
    const std::string text = TextOf(index, *unit, notation);
    if (term.prefix < 0)
        return text;
    const std::size_t prefix = static_cast<std::size_t>(term.prefix);
    if (!NeedsParentheses(text, false)) {
        const std::string joined =
            (notation == kXunNotationUnicode ? xunPrefixUnicodeSymbol_(prefix)
                                             : xunPrefixAsciiSymbol_(prefix)) +
            text;
        XunAtom atom;
        const RegistryAtoms atoms(index, false);
        if (atoms.FindAtom(joined, true, atom) == XunAtomLookup::Found &&
            xunValuesAgree_(atom.value, PrefixedAtom(*unit, prefix).value, false))
            return joined;
    }
    const double factor = xunApplyPrefix_(1.0, xunPrefixAt_(prefix).exponent);
    return xunShortestNumber_(factor) + " " + text;
}

std::string PowerText(const std::string& atom, double exponent, int notation) {
    const bool integral = exponent == std::round(exponent);
    if (exponent == 1.0)
        return NeedsParentheses(atom, false) ? "(" + atom + ")" : atom;
    const std::string base = NeedsParentheses(atom, true) ? "(" + atom + ")" : atom;
    if (integral && notation == kXunNotationUnicode)
        return base + Superscript(static_cast<long>(exponent));
    if (integral && base == atom)
        return base + std::to_string(static_cast<long>(exponent));
    return base + "^" + ExponentText(exponent);
}

// A parsed text in the ASCII or Unicode notation: the number, the atoms of
// positive power joined by '*' ('·'), a '/' and those of negative power, the
// offset after '@'.
std::string RenderTerms(StringIndex& index, const XunParsedUnit& parsed, int notation) {
    const CKVunitRegistry& units = *index.registry;
    const char* times = notation == kXunNotationUnicode ? "\xC2\xB7" : "*";
    std::string numerator, denominator;
    int below = 0;
    for (const XunTerm& term : parsed.terms) {
        const std::string atom = AtomText(index, units, term, notation);
        if (term.exponent > 0) {
            numerator +=
                (numerator.empty() ? "" : times) + PowerText(atom, term.exponent, notation);
        } else {
            denominator +=
                (denominator.empty() ? "" : times) + PowerText(atom, -term.exponent, notation);
            ++below;
        }
    }
    const bool hasNumber = parsed.numberPart != 1.0 || parsed.terms.empty();
    const std::string number = Readable(parsed.numberPart);
    std::string text;
    if (numerator.empty())
        text = denominator.empty() || hasNumber ? number : "1";
    else
        text = hasNumber ? number + " " + numerator : numerator;
    if (!denominator.empty())
        text += "/" + (below > 1 ? "(" + denominator + ")" : denominator);
    if (parsed.shifted)
        text += " @ " + xunShortestNumber_(parsed.shift);
    return text;
}

// The CF notation of a meaning in SI base units: "0.3048 m", "kg m-2 s-1",
// "K @ 273.15", "0.001" for a number.
std::string BaseCfText(const XunUnitValue& value) {
    static const char* const kSymbols[kBases] = {"m", "kg", "s", "K", "A", "mol", "cd"};
    std::string atoms;
    for (int i = 0; i < kBases; ++i) {
        const double p = value.powers[i];
        if (p == 0.0)
            continue;
        atoms += atoms.empty() ? "" : " ";
        atoms += kSymbols[i];
        if (p != 1.0)
            atoms +=
                p == std::round(p) ? std::to_string(static_cast<long>(p)) : "^" + ExponentText(p);
    }
    std::string text;
    if (atoms.empty())
        text = Readable(value.factor);
    else if (value.factor == 1.0)
        text = atoms;
    else
        text = Readable(value.factor) + " " + atoms;
    if (value.offset != 0.0) {
        // The number after '@' counts in the unit before it.
        const double scale = std::max(std::fabs(value.offset), std::fabs(value.factor));
        text += " @ " + Readable(value.offset / value.factor, scale / std::fabs(value.factor));
    }
    return text;
}

// A text in the strict CF reading, its names as UDUNITS-2 reads them: "kg
// m-2 s-1".
std::string RenderCf(const XunParsedUnit& parsed) {
    std::string text;
    if (parsed.numberPart != 1.0 || parsed.terms.empty())
        text = Readable(parsed.numberPart);
    for (const XunTerm& term : parsed.terms) {
        text += text.empty() ? "" : " ";
        text += xunCfAtomText_(term.key, term.prefix);
        if (term.exponent != 1.0)
            text += term.exponent == std::round(term.exponent)
                        ? std::to_string(static_cast<long>(term.exponent))
                        : "^" + ExponentText(term.exponent);
    }
    if (parsed.shifted)
        text += " @ " + Readable(parsed.shift);
    return text;
}

const std::string& Keep(StringIndex& index, const CKVunit& unit, int notation, std::string text) {
    index.handedOut.push_back(std::move(text));
    const std::string* kept = &index.handedOut.back();
    index.texts[std::make_pair(unit.m_lKey, notation)] = TextSlot{index.textsGeneration, kept};
    return *kept;
}

std::string AsciiText(StringIndex& index, const CKVunit& unit) {
    std::vector<std::string> candidates;
    if (!unit.m_strAbbr.empty())
        candidates.push_back(Transliterate(unit.m_strAbbr));
    std::vector<std::string> aliases;
    for (const std::string& alias : unit.m_lstAlias)
        if (IsAscii(alias))
            aliases.push_back(alias);
    std::stable_sort(
        aliases.begin(), aliases.end(),
        [](const std::string& a, const std::string& b) { return a.size() < b.size(); });
    candidates.insert(candidates.end(), aliases.begin(), aliases.end());
    if (IsAscii(unit.m_strDesc))
        candidates.push_back(unit.m_strDesc);
    for (const std::string& candidate : candidates)
        if (!candidate.empty() && ResolvesTo(index, candidate, unit))
            return candidate;
    return unit.m_strIdent;
}

std::string UnicodeText(StringIndex& index, const CKVunit& unit) {
    if (!unit.m_strAbbr.empty() && ResolvesTo(index, unit.m_strAbbr, unit))
        return unit.m_strAbbr;
    const std::string ascii = TextOf(index, unit, kXunNotationAscii);
    Reading reading;
    std::string ignored;
    if (Read(index, ascii, reading, ignored) == XUN_OK && reading.named == nullptr) {
        const std::string unicode = RenderTerms(index, reading.parsed, kXunNotationUnicode);
        if (ResolvesTo(index, unicode, unit))
            return unicode;
    }
    return ascii;
}

std::string CfText(StringIndex& index, const CKVunit& unit) {
    if (!IsUsable(unit))
        return unit.m_strIdent;
    const XunUnitValue value = ValueOf(unit);
    std::vector<std::string> candidates;
    if (!unit.m_strAbbr.empty())
        candidates.push_back(Transliterate(unit.m_strAbbr));
    candidates.push_back(unit.m_strDesc);
    for (const std::string& alias : unit.m_lstAlias)
        candidates.push_back(alias);
    XunParseOptions strict;
    strict.words = false;
    strict.asciiOnly = true;
    for (const std::string& candidate : candidates) {
        if (candidate.empty() || !IsAscii(candidate))
            continue;
        XunParsedUnit parsed;
        XunParseError error;
        if (!xunParseUnitString_(candidate, xunCfAtoms_(), strict, parsed, error) ||
            !xunValuesAgree_(parsed.value, value, false))
            continue;
        const std::string rendered = RenderCf(parsed);
        if (ResolvesTo(index, rendered, unit))
            return rendered;
        if (ResolvesTo(index, candidate, unit))
            return candidate;
    }
    return BaseCfText(value);
}

// The text of a registered unit in a notation, made on first need and kept
// with the index. A text that is asked for while it is being made (the
// texts of two units that need each other) is the unit's ident.
const std::string& TextOf(StringIndex& index, const CKVunit& unit, int notation) {
    const std::pair<long, int> slot(unit.m_lKey, notation);
    const auto found = index.texts.find(slot);
    if (found != index.texts.end() && found->second.generation == index.textsGeneration)
        return *found->second.text;
    if (std::find(index.making.begin(), index.making.end(), slot) != index.making.end())
        return unit.m_strIdent;
    index.making.push_back(slot);
    std::string text;
    try {
        if (notation == kXunNotationAscii)
            text = AsciiText(index, unit);
        else if (notation == kXunNotationUnicode)
            text = UnicodeText(index, unit);
        else
            text = CfText(index, unit);
    } catch (...) {
        index.making.pop_back();
        throw;
    }
    index.making.pop_back();
    return Keep(index, unit, notation, std::move(text));
}

} // namespace

// ---- The functions of the C interface --------------------------------------------

namespace {

// Registers a unit for a meaning that no registered unit has.
int Register(CKVunitRegistry& units, StringIndex& index, const XunParsedUnit& parsed,
             std::string_view text, const CKVunit*& unit, std::string& message) {
    std::string ascii = RenderTerms(index, parsed, kXunNotationAscii);
    std::string unicode = RenderTerms(index, parsed, kXunNotationUnicode);
    // The normalised text must read back to the meaning; where the names of
    // the atoms do not allow that, the meaning in SI base units is written.
    Reading check;
    std::string ignored;
    if (Read(index, ascii, check, ignored) != XUN_OK || check.named != nullptr ||
        !xunValuesAgree_(check.parsed.value, parsed.value, false)) {
        ascii = BaseCfText(parsed.value);
        unicode = ascii;
    }
    const std::string ident = "xun:" + ascii;
    if (const CKVunit* existing = units.FindByIdent(ident)) {
        if (IsUsable(*existing) && xunValuesAgree_(ValueOf(*existing), parsed.value, false)) {
            unit = existing;
            return XUN_OK;
        }
        message = "the ident '" + Printable(ident) + "' of the unit '" + Printable(text) +
                  "' is taken by a unit of another meaning";
        return XUN_ERR_TAKEN;
    }
    long key = 0;
    if (!units.NextRunTimeKey(key)) {
        message = "no key is left for a new unit (the largest key in use is the largest int)";
        return XUN_ERR_LIMIT;
    }
    const XunUnitValue& value = parsed.value;
    std::unique_ptr<CKVunit> created;
    try {
        // The value was checked at every step; the trap makes sure that no
        // invariant check of the unit model can end the process anyway.
        XunAssertionTrap trap;
        const CKVdimension dim(value.powers[0], value.powers[1], value.powers[2], value.powers[3],
                               value.powers[4], value.powers[5], value.powers[6]);
        created.reset(new CKVunit(value.factor, dim));
        created->AssertValid();
    } catch (const XunAssertionFailed&) {
        message = "the unit of '" + Printable(text) + "' does not pass the unit's checks";
        return XUN_ERR_INTERNAL;
    }
    for (int i = 0; i < kBases; ++i)
        created->m_dDimFactors[i] = value.dimFactors[i];
    created->m_dOffset = value.offset;
    created->m_strIdent = ident;
    // Not the text alone: the singular/plural rule of the name search would
    // read "kg*m" + "s" as the name of it, which is another unit's text.
    created->m_strDesc = ascii + " (parsed)";
    created->m_strAbbr = unicode;
    created->m_strExpr = std::string(Trim(text));
    created->m_lKey = key;
    const CKVunit* added = created.get();
    if (!units.Add(created, false)) {
        message =
            "the key " + std::to_string(key) + " or ident '" + Printable(ident) + "' is taken";
        return XUN_ERR_TAKEN;
    }
    // The index follows the registration instead of being built again.
    index.Add(*added);
    index.generation = units.Generation();
    unit = added;
    return XUN_OK;
}

bool TooLong(const char* text, std::size_t& length, std::string& message) {
    length = strnlen(text, kUnitStringMaxLength + 1);
    if (length <= kUnitStringMaxLength)
        return false;
    message = "'" + Printable(std::string_view(text, 40)) + "' stops making sense at byte " +
              std::to_string(kUnitStringMaxLength + 1) + ": the text is longer than " +
              std::to_string(kUnitStringMaxLength) + " bytes";
    return true;
}

std::string MeaningText(const XunUnitValue& value) {
    std::string text = "factor " + xunShortestNumber_(value.factor);
    if (value.offset != 0.0)
        text += ", offset " + xunShortestNumber_(value.offset);
    const CKVdimension dim(value.powers[0], value.powers[1], value.powers[2], value.powers[3],
                           value.powers[4], value.powers[5], value.powers[6]);
    return text + ", dimension " + xunDimensionText_(dim);
}

} // namespace

int xunParseUnitText_(CKVunitRegistry& units, const char* text, const CKVunit*& unit,
                      std::string& message) {
    std::size_t length = 0;
    if (TooLong(text, length, message))
        return XUN_ERR_LIMIT;
    const std::string_view view(text, length);
    StringIndex& index = IndexOf(units);
    Remembered* known = index.FindRemembered(view);
    if (known != nullptr && known->answer != nullptr) {
        unit = known->answer;
        return XUN_OK;
    }
    Reading reading;
    const CKVunit* found = nullptr;
    const int result = Resolve(index, view, reading, found, message);
    if (result != XUN_OK)
        return result;
    if (found == nullptr) {
        const int registered = Register(units, index, reading.parsed, view, found, message);
        if (registered != XUN_OK)
            return registered;
    }
    if (known == nullptr)
        known = &index.Remember(view);
    known->answer = found;
    known->named = reading.named;
    known->value = reading.named != nullptr ? ValueOf(*reading.named) : reading.parsed.value;
    unit = found;
    return XUN_OK;
}

int xunParseItemUnitText_(CKVregistries& registries, const CKVitemType& item, const char* text,
                          const CKVunit*& unit, std::string& message) {
    std::size_t length = 0;
    if (TooLong(text, length, message))
        return XUN_ERR_LIMIT;
    const std::string_view view(text, length);
    StringIndex& index = IndexOf(registries.units);
    const CKVunit* named = nullptr;
    XunUnitValue value;
    if (Remembered* known = index.FindRemembered(view)) {
        named = known->named;
        value = known->value;
    } else {
        Reading reading;
        const int result = Read(index, view, reading, message);
        if (result != XUN_OK)
            return result;
        named = reading.named;
        value = named != nullptr ? ValueOf(*named) : reading.parsed.value;
        Remembered& entry = index.Remember(view);
        entry.named = named;
        entry.value = value;
    }
    // The candidates: the allowed units, or every registered unit for the
    // any-unit item type.
    std::vector<const CKVunit*> candidates;
    if (item.m_nNumId == xun::contract::kAnyUnitItemType)
        candidates.assign(registries.units.begin(), registries.units.end());
    else
        candidates = item.GetUnitList();
    for (const CKVunit* candidate : candidates)
        if (candidate == named && candidate->m_lKey != 0) {
            unit = candidate;
            return XUN_OK;
        }
    bool sameDimension = false;
    for (int exact = 1; exact >= 0; --exact) {
        for (const CKVunit* candidate : candidates) {
            if (candidate->m_lKey == 0 || !IsUsable(*candidate))
                continue;
            const XunUnitValue other = ValueOf(*candidate);
            sameDimension = sameDimension || xunSameDimension_(value, other);
            if (xunValuesAgree_(value, other, exact != 0)) {
                unit = candidate;
                return XUN_OK;
            }
        }
    }
    if (!sameDimension && item.m_pDimension != nullptr) {
        const CKVdimension dim(value.powers[0], value.powers[1], value.powers[2], value.powers[3],
                               value.powers[4], value.powers[5], value.powers[6]);
        message = "'" + Printable(Trim(view)) + "' has the dimension " + xunDimensionText_(dim) +
                  ", item type " + std::to_string(item.m_nNumId) + " the dimension " +
                  xunDimensionText_(*item.m_pDimension);
        return XUN_ERR_DIMENSION;
    }
    message = "'" + Printable(Trim(view)) + "' (" + MeaningText(value) +
              ") is no allowed unit of item type " + std::to_string(item.m_nNumId);
    return XUN_ERR_NOT_FOUND;
}

int xunUnitText_(CKVunitRegistry& units, const CKVunit& unit, int notation, const char*& text) {
    if (notation != kXunNotationCf && notation != kXunNotationAscii &&
        notation != kXunNotationUnicode)
        return XUN_ERR_RANGE;
    StringIndex& index = IndexOf(units);
    text = TextOf(index, unit, notation).c_str();
    return XUN_OK;
}
