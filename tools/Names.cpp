#include "Names.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "xun.h"

namespace xuntool {

namespace {

std::set<int> TemporaryUnits_;

// Whether text holds no zero byte, which no name of the C interface can
// contain.
bool IsCText(const std::string& text) {
    return !text.empty() && std::strlen(text.c_str()) == text.size();
}

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

// An expression whose factor comes out as 0 makes xunUnitNew end the
// process (the library's unit invariant), and the interface has no call
// that evaluates an expression without that risk. So the expression is made
// in a child process first, with its output thrown away; the parent makes it
// only when the child came through.
bool SurvivesUnitNew(const std::string& ident, const std::string& expression) {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child < 0)
        return false;
    if (child == 0) {
        const int null = ::open("/dev/null", O_WRONLY);
        if (null >= 0) {
            ::dup2(null, 1);
            ::dup2(null, 2);
        }
        xunUnitNew(ident.c_str(), expression.c_str(), expression.c_str(), expression.c_str());
        ::_exit(0);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            return false;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Evaluates name as a unit expression into a new unit with an ident that no
// unit has yet; its description and abbreviation are the expression too.
bool FindByExpression(const std::string& name, int& tag) {
    std::string ident;
    int existing = 0;
    for (int n = 1;; ++n) {
        ident = "xun-expression-" + std::to_string(n);
        if (!xunGetUnitTagFromIdent(ident.c_str(), &existing))
            break;
    }
    if (!SurvivesUnitNew(ident, name) ||
        !xunUnitNew(ident.c_str(), name.c_str(), name.c_str(), name.c_str()) ||
        !xunGetUnitTagFromIdent(ident.c_str(), &tag))
        return false;
    TemporaryUnits_.insert(tag);
    return true;
}

// Parses a whole text as a decimal int; false for anything else, for an
// empty text and outside the int range.
bool ParseDecimalInt(const std::string& text, int& value) {
    const char first = text[0];
    if (!(first == '-' || first == '+' || (first >= '0' && first <= '9')))
        return false;
    errno = 0;
    char* end = nullptr;
    const long long parsed = std::strtoll(text.c_str(), &end, 10);
    if (errno != 0 || end == nullptr || *end != '\0' || parsed < INT_MIN || parsed > INT_MAX)
        return false;
    value = static_cast<int>(parsed);
    return true;
}

} // namespace

std::string Text(const char* text) {
    return text != nullptr ? text : "";
}

UnitInfo GetUnitInfo(int tag) {
    UnitInfo info;
    info.tag = tag;
    const char* text = nullptr;
    if (xunGetUnitIdent(tag, &text))
        info.ident = Text(text);
    if (xunGetUnitKey(tag, &text))
        info.description = Text(text);
    if (xunGetUnitAbbreviation(tag, &text))
        info.abbreviation = Text(text);
    double factors[7];
    xunUnitGetParameters(tag, &info.factor, &info.offset, info.powers, factors);
    return info;
}

UnitMatch FindUnit(const std::string& name, int& tag, bool allowExpression) {
    if (!IsCText(name))
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
    if (!IsCText(name))
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
    int number = 0;
    const char* desc = nullptr;
    if (ParseDecimalInt(name, number) && xunGetItemTypeKey(number, &desc)) {
        key = number;
        return true;
    }
    return false;
}

bool FindFilter(const std::string& name, int& key) {
    if (!IsCText(name))
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
    if (name[0] < '0' || name[0] > '9')
        return false;
    errno = 0;
    char* end = nullptr;
    const unsigned long long number = std::strtoull(name.c_str(), &end, 0);
    const int bit = static_cast<int>(static_cast<unsigned int>(number));
    const char* desc = nullptr;
    if (errno == 0 && end != nullptr && *end == '\0' && number <= 0xFFFFFFFFull &&
        xunGetFilterKey(bit, &desc)) {
        key = bit;
        return true;
    }
    return false;
}

} // namespace xuntool
