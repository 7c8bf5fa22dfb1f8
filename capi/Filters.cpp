// Exported filter functions: creation at run time, lookups, the item types
// of a filter, the product filter and the flyby filter.
#include "capi/Api.h"
#include "registry/ItemTypeQueries.h"

using namespace xun::capi;

namespace {

template <class Text>
int FilterText(const char* function, int key, const char** out, const char* name, Text text) {
    return Guard(function, 0, [&] {
        if (out == nullptr)
            return NullArgument(function, name);
        const CKVfilter* filter = Filters().FindByKey(key);
        if (filter == nullptr)
            return UnknownFilter(function, key);
        *out = text(*filter);
        return 1;
    });
}

} // namespace

extern "C" {

int xunFilterGetAll(char** list) {
    return Guard("xunFilterGetAll", 0,
                 [&] { return JoinIdents("xunFilterGetAll", Filters(), "filters", list); });
}

int xunFilterNew(const char* ident, const char* keyText) {
    RequireText(ident);
    RequireText(keyText);
    return Guard("xunFilterNew", 0, [&] {
        long bit = 0;
        if (!Filters().NextBit(bit))
            return xunFail_(XUN_ERR_LIMIT, "xunFilterNew: no bit is left for a new filter");
        std::unique_ptr<CKVfilter> filter(new CKVfilter(keyText, bit));
        filter->m_strIdent = ident;
        if (!Filters().Add(filter))
            return xunFail_(XUN_ERR_TAKEN, "xunFilterNew: the ident '%s' is already registered",
                            ident);
        return 1;
    });
}

int xunGetFilterCount(void) {
    return static_cast<int>(Filters().Count());
}

int xunGetFilterSeq(int seq, int* key, const char** keyText) {
    return Guard("xunGetFilterSeq", 0, [&] {
        if (key == nullptr)
            return NullArgument("xunGetFilterSeq", "key");
        if (keyText == nullptr)
            return NullArgument("xunGetFilterSeq", "keyText");
        if (seq < 1 || static_cast<size_t>(seq) > Filters().Count())
            return xunFail_(XUN_ERR_RANGE, "xunGetFilterSeq: %d is not in 1..%zu", seq,
                            Filters().Count());
        const CKVfilter* filter = Filters().At(static_cast<size_t>(seq - 1));
        *key = static_cast<int>(filter->m_lKey);
        *keyText = filter->m_strKey.c_str();
        return 1;
    });
}

int xunGetFilterKey(int key, const char** keyText) {
    return FilterText("xunGetFilterKey", key, keyText, "keyText",
                      [](const CKVfilter& filter) { return filter.m_strKey.c_str(); });
}

int xunGetFilterIdent(int key, const char** ident) {
    return FilterText("xunGetFilterIdent", key, ident, "ident",
                      [](const CKVfilter& filter) { return filter.m_strIdent.c_str(); });
}

int xunGetFilterKeyFromIdent(const char* ident, int* key) {
    return Guard("xunGetFilterKeyFromIdent", 0, [&] {
        if (ident == nullptr)
            return NullArgument("xunGetFilterKeyFromIdent", "ident");
        if (key == nullptr)
            return NullArgument("xunGetFilterKeyFromIdent", "key");
        const CKVfilter* filter = Filters().FindByIdent(ident);
        if (filter == nullptr)
            return xunFail_(XUN_ERR_UNKNOWN_FILTER,
                            "xunGetFilterKeyFromIdent: no filter has the ident '%s'", ident);
        *key = static_cast<int>(filter->m_lKey);
        return 1;
    });
}

int xunGetFilteredItemTypeCount(int filter) {
    return static_cast<int>(xunFilteredItemTypeCount_(ItemTypes(), filter));
}

int xunGetFilteredItemTypeSeq(int filter, int seq, int* key, const char** keyText) {
    return Guard("xunGetFilteredItemTypeSeq", 0, [&] {
        if (key == nullptr)
            return NullArgument("xunGetFilteredItemTypeSeq", "key");
        if (keyText == nullptr)
            return NullArgument("xunGetFilteredItemTypeSeq", "keyText");
        // The position test follows every item type, counted or not: seq 0
        // names the first item type when that one is not counted itself.
        if (const CKVitemType* It = xunFilteredItemTypeAt_(ItemTypes(), filter, seq)) {
            *key = static_cast<int>(It->m_nNumId);
            *keyText = It->m_strKey.c_str();
            return 1;
        }
        return xunFail_(XUN_ERR_RANGE, "xunGetFilteredItemTypeSeq: filter 0x%X has no item type %d",
                        static_cast<unsigned>(filter), seq);
    });
}

int xunItemFilterEqv(int itemKey, int filter) {
    return Guard("xunItemFilterEqv", 0, [&] {
        const CKVitemType* item = ItemTypes().FindByKey(itemKey);
        if (item == nullptr)
            return UnknownItemType("xunItemFilterEqv", itemKey);
        return item->IsMemberOf(static_cast<long>(filter)) ? 1 : 0;
    });
}

long xunSetProductFilter(int filter) {
    xunSetProductFilter_(filter);
    return xunProductFilter_();
}

long xunGetProductFilter(void) {
    return xunProductFilter_();
}

int xunGetFlybyFilter(void) {
    return static_cast<int>(xun::contract::kFlybyFilterBit);
}

} // extern "C"
