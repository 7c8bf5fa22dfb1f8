// The shape of every exported function (capi/*.cpp):
//
//   int xunSomething(int key, const char** text) {
//       return Guard("xunSomething", 0, [&] {
//           if (text == nullptr)                       // 1. argument checks,
//               return NullArgument("xunSomething", "text");
//           const CKVunit* unit = Units().FindByKey(key);   // 2. the C++ code,
//           if (unit == nullptr)
//               return UnknownUnit("xunSomething", key);    // 3. a failure recorded,
//           *text = unit->m_strDesc.c_str();                //    or the outputs
//           return 1;
//       });
//   }
//
// Guard is the one exception barrier: memory running out becomes a failed
// call (XUN_ERR_NO_MEMORY) and any other error of the C++ code a failed call
// with its reason (XUN_ERR_INTERNAL); nothing else crosses into C but the
// designed null-text exceptions of xunUnitNew, xunItemTypeNew and
// xunFilterNew, which those functions throw before their barrier. (Hooks
// that tests and fuzz targets install to turn assertions into exceptions
// throw types of their own, which pass on purpose.)
//
// A failure is recorded with xunFail_ (common/LastError.h); success leaves
// the record alone.
#pragma once

#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>

#include "common/Assert.h"
#include "common/LastError.h"
#include "registry/Registries.h"
#include "xun.h"

namespace xun {
namespace capi {

template <class Result, class Body>
Result Guard(const char* function, Result failed, Body&& body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        xunFail_(XUN_ERR_NO_MEMORY, "%s: out of memory", function);
    } catch (const XunAssertionFailed&) {
        throw;
    } catch (const std::exception& error) {
        xunFail_(XUN_ERR_INTERNAL, "%s: %s", function, error.what());
    }
    return failed;
}

// The process-wide registry.
inline CKVregistries& Registries() {
    return xunRegistries_();
}
inline CKVunitRegistry& Units() {
    return xunRegistries_().units;
}
inline CKVitemTypeRegistry& ItemTypes() {
    return xunRegistries_().itemTypes;
}
inline CKVfilterRegistry& Filters() {
    return xunRegistries_().filters;
}

// The designed exception for a null text given to the creating functions.
inline void RequireText(const char* text) {
    if (text == nullptr)
        throw std::logic_error("basic_string::_M_construct null not valid");
}

inline int NullArgument(const char* function, const char* argument) {
    return xunFail_(XUN_ERR_NULL_ARGUMENT, "%s: %s is null", function, argument);
}
inline int UnknownUnit(const char* function, long tag) {
    return xunFail_(XUN_ERR_UNKNOWN_UNIT, "%s: no unit has the tag %ld", function, tag);
}
inline int UnknownItemType(const char* function, long key) {
    return xunFail_(XUN_ERR_UNKNOWN_ITEM_TYPE, "%s: no item type has the key %ld", function, key);
}
inline int UnknownFilter(const char* function, long bit) {
    return xunFail_(XUN_ERR_UNKNOWN_FILTER, "%s: no filter has the bit 0x%lX", function,
                    static_cast<unsigned long>(bit));
}

// Joins the idents of a registry into one newly allocated text, each
// followed by ";", for the ...GetAll functions: 0 and *list untouched when
// there are none.
template <class Registry>
int JoinIdents(const char* function, const Registry& registry, const char* what, char** list) {
    if (list == nullptr)
        return NullArgument(function, "list");
    std::string text;
    for (const auto* object : registry) {
        text += object->m_strIdent;
        text += ';';
    }
    if (text.empty())
        return xunFail_(XUN_ERR_NOT_FOUND, "%s: no %s are registered", function, what);
    char* copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy == nullptr)
        throw std::bad_alloc();
    std::memcpy(copy, text.c_str(), text.size() + 1);
    *list = copy;
    return 1;
}

// A unit as messages name it: its tag, ident and dimension.
std::string UnitText(const CKVunit& unit);

// Records why a conversion between two units is refused (a result of
// xunFindConversion_) and returns 0.
int ConversionRefused(const char* function, int result, long fromTag, long toTag);

} // namespace capi
} // namespace xun
