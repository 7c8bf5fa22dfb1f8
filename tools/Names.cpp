#include "Names.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <set>

#include "Location.h"
#include "xun.h"

namespace xuntool {

namespace {

std::set<int> TemporaryUnits_;

bool FindByAbbreviation(const std::string& name, int& tag) {
    int next = 0;
    const char* desc = nullptr;
    for (int previous = 0; xunGetNextUnit(previous, &next, &desc); previous = next) {
        const char* abbreviation = nullptr;
        if (xunGetUnitAbbreviation(next, &abbreviation) && abbreviation != nullptr &&
            name == abbreviation) {
            tag = next;
            return true;
        }
    }
    return false;
}

// Evaluates name as a unit expression into a new unit with an ident that no
// unit has yet.
bool FindByExpression(const std::string& name, int& tag) {
    std::string ident;
    int existing = 0;
    for (int n = 1;; ++n) {
        ident = "xun-expression-" + std::to_string(n);
        if (!xunGetUnitTagFromIdent(ident.c_str(), &existing))
            break;
    }
    try {
        // A factor of 0 would stop the library; it only makes the name unknown.
        ThrowOnLibraryStop guard;
        if (!xunUnitNew(ident.c_str(), name.c_str(), name.c_str(), name.c_str()))
            return false;
    } catch (const LibraryStop&) {
        return false;
    }
    if (!xunGetUnitTagFromIdent(ident.c_str(), &tag))
        return false;
    TemporaryUnits_.insert(tag);
    return true;
}

} // namespace

bool ParseInt(const std::string& text, int base, long long& value) {
    if (text.empty() || std::strlen(text.c_str()) != text.size())
        return false;
    const char first = text[0];
    if (!(first == '-' || first == '+' || (first >= '0' && first <= '9')))
        return false;
    errno = 0;
    char* end = nullptr;
    const long long parsed = std::strtoll(text.c_str(), &end, base);
    if (errno != 0 || end == nullptr || *end != '\0' || parsed < INT_MIN || parsed > INT_MAX)
        return false;
    value = parsed;
    return true;
}

UnitMatch FindUnit(const std::string& name, int& tag, bool allowExpression) {
    if (name.empty() || std::strlen(name.c_str()) != name.size())
        return UnitMatch::None;
    if (xunGetUnitTagFromIdent(name.c_str(), &tag))
        return UnitMatch::Ident;
    if (xunGetUnitTag(name.c_str(), &tag))
        return UnitMatch::Description;
    if (FindByAbbreviation(name, tag))
        return UnitMatch::Abbreviation;
    if (allowExpression && FindByExpression(name, tag))
        return UnitMatch::Expression;
    return UnitMatch::None;
}

bool IsTemporaryUnit(int tag) {
    return TemporaryUnits_.count(tag) != 0;
}

bool FindItemType(const std::string& name, int& key) {
    if (name.empty() || std::strlen(name.c_str()) != name.size())
        return false;
    if (xunGetItemTypeKeyFromIdent(name.c_str(), &key))
        return true;
    const int count = xunGetItemTypeCount();
    for (int seq = 1; seq <= count; ++seq) {
        int candidate = 0;
        const char* desc = nullptr;
        if (xunGetItemTypeSeq(seq, &candidate, &desc) && desc != nullptr && name == desc) {
            key = candidate;
            return true;
        }
    }
    long long number = 0;
    const char* desc = nullptr;
    if (ParseInt(name, 10, number) && xunGetItemTypeKey(static_cast<int>(number), &desc)) {
        key = static_cast<int>(number);
        return true;
    }
    return false;
}

bool FindFilter(const std::string& name, int& key) {
    if (name.empty() || std::strlen(name.c_str()) != name.size())
        return false;
    if (xunGetFilterKeyFromIdent(name.c_str(), &key))
        return true;
    const int count = xunGetFilterCount();
    for (int seq = 1; seq <= count; ++seq) {
        int candidate = 0;
        const char* desc = nullptr;
        if (xunGetFilterSeq(seq, &candidate, &desc) && desc != nullptr && name == desc) {
            key = candidate;
            return true;
        }
    }
    // Bit values up to 0xFFFFFFFF are written as unsigned numbers.
    errno = 0;
    char* end = nullptr;
    const char first = name[0];
    if (first >= '0' && first <= '9') {
        const unsigned long long number = std::strtoull(name.c_str(), &end, 0);
        const char* desc = nullptr;
        if (errno == 0 && end != nullptr && *end == '\0' && number <= 0xFFFFFFFFull &&
            xunGetFilterKey(static_cast<int>(static_cast<unsigned int>(number)), &desc)) {
            key = static_cast<int>(static_cast<unsigned int>(number));
            return true;
        }
    }
    return false;
}

} // namespace xuntool
