// Exported unit-string functions: a unit from a text as people and data
// files write it, and a text of a unit in three notations
// (docs/unit-strings.md).
#include <string>

#include "capi/Api.h"
#include "registry/UnitStrings.h"

using namespace xun::capi;

namespace {

// Runs the body under an assertion trap: no invariant check of the unit
// model can end the process from here, whatever the text (the parser checks
// every value before a unit is built; this is the second line).
template <class Body> int Trapped(const char* function, Body&& body) {
    try {
        XunAssertionTrap trap;
        return body();
    } catch (const XunAssertionFailed& failed) {
        return xunFail_(XUN_ERR_INTERNAL, "%s: an invariant check failed (%s)", function,
                        failed.assertion->expression);
    }
}

// Stores the tag of the unit parse(unit, message) finds, under the trap;
// when it finds none, its error code and message are the function's failure.
template <class Parse> int ParsedTag(const char* function, int* tag, Parse&& parse) {
    return Trapped(function, [&] {
        const CKVunit* unit = nullptr;
        std::string message;
        const int result = parse(unit, message);
        if (result != XUN_OK)
            return xunFail_(result, "%s: %s", function, message.c_str());
        *tag = static_cast<int>(unit->m_lKey);
        return 1;
    });
}

} // namespace

extern "C" {

int xunParseUnit(const char* text, int* tag) {
    return Guard("xunParseUnit", 0, [&] {
        if (tag == nullptr)
            return NullArgument("xunParseUnit", "tag");
        *tag = 0;
        if (text == nullptr)
            return NullArgument("xunParseUnit", "text");
        return ParsedTag("xunParseUnit", tag, [&](const CKVunit*& unit, std::string& message) {
            return xunParseUnitText_(Units(), text, unit, message);
        });
    });
}

int xunParseItemUnit(int itemKey, const char* text, int* tag) {
    return Guard("xunParseItemUnit", 0, [&] {
        if (tag == nullptr)
            return NullArgument("xunParseItemUnit", "tag");
        *tag = 0;
        if (text == nullptr)
            return NullArgument("xunParseItemUnit", "text");
        const CKVitemType* item = ItemTypes().FindByKey(itemKey);
        if (item == nullptr)
            return UnknownItemType("xunParseItemUnit", itemKey);
        return ParsedTag("xunParseItemUnit", tag, [&](const CKVunit*& unit, std::string& message) {
            return xunParseItemUnitText_(Registries(), *item, text, unit, message);
        });
    });
}

int xunGetUnitText(int tag, int notation, const char** text) {
    return Guard("xunGetUnitText", 0, [&] {
        if (text == nullptr)
            return NullArgument("xunGetUnitText", "text");
        const CKVunit* unit = Units().FindByKey(tag);
        if (unit == nullptr)
            return UnknownUnit("xunGetUnitText", tag);
        return Trapped("xunGetUnitText", [&] {
            const char* result = nullptr;
            if (xunUnitText_(Units(), *unit, notation, result) != XUN_OK)
                return xunFail_(XUN_ERR_RANGE,
                                "xunGetUnitText: the notation %d is none of XUN_NOTATION_CF (1), "
                                "XUN_NOTATION_ASCII (2) and XUN_NOTATION_UNICODE (3)",
                                notation);
            *text = result;
            return 1;
        });
    });
}

} // extern "C"
