#include "Names.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "Output.h"
#include "xun.h"

namespace xuntool {

namespace {

// Whether text holds no zero byte, which no name of the C interface can
// contain.
bool IsCText(const std::string& text) {
    return !text.empty() && std::strlen(text.c_str()) == text.size();
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

bool FindUnit(const std::string& text, int& tag, std::string& reason) {
    if (std::strlen(text.c_str()) != text.size()) {
        reason = "a zero byte is no part of a unit";
        return false;
    }
    if (xunParseUnit(text.c_str(), &tag) == 1)
        return true;
    const char* message = nullptr;
    xunGetLastError(&message);
    reason = Text(message);
    // The library's message names the function and quotes the text; the
    // tool quotes the text itself.
    const std::string prefix = "xunParseUnit: ";
    if (reason.compare(0, prefix.size(), prefix) == 0)
        reason.erase(0, prefix.size());
    const std::string::size_type stops = reason.find(" stops making sense ");
    if (stops != std::string::npos)
        reason.erase(0, stops + std::strlen(" stops making sense "));
    return false;
}

bool FindRegisteredUnit(const std::string& text, int& tag) {
    if (!IsCText(text))
        return false;
    const char* desc = nullptr;
    if (xunGetItemTypeKey(999, &desc))
        return xunParseItemUnit(999, text.c_str(), &tag) == 1;
    return xunGetUnitTagFromIdent(text.c_str(), &tag) == 1 ||
           xunGetUnitTag(text.c_str(), &tag) == 1;
}

bool IsTemporaryUnit(int tag) {
    const char* ident = nullptr;
    return xunGetUnitIdent(tag, &ident) && ident != nullptr && std::strncmp(ident, "xun:", 4) == 0;
}

std::string UnknownUnit(const std::string& text, const std::string& reason) {
    return "cannot read the unit '" + Printable(text) + "': " + reason;
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
