// Fuzz target: the setup loader. The input is an XML document, written to a
// temporary file and loaded with xunSetupLoad into empty registries; a
// document that loads without an assertion is loaded a second time (the
// refresh of what is already registered). The queries then walk what was
// loaded, and the registries are emptied again for the next input, so that
// every input starts from the same state. What loads must also survive the
// load cache's encoding: decoded, it encodes to the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "FuzzSupport.h"
#include "registry/Registries.h"
#include "setup/LoadCache.h"
#include "units/KVexpr.h"
#include "xun.h"

namespace {

// Bounds the walk over a large registry.
const size_t kMaxWalked = 64;

void FreeList(char* list) {
    std::free(list);
}

void WalkUnits() {
    std::vector<int> tags;
    for (const CKVunit* unit : xunRegistries_().units)
        if (tags.size() < kMaxWalked)
            tags.push_back(static_cast<int>(unit->m_lKey));
    for (int tag : tags) {
        const char* text = nullptr;
        int other = 0;
        double result = 0;
        xunGetUnitKey(tag, &text);
        xunGetUnitIdent(tag, &text);
        xunGetUnitAbbreviation(tag, &text);
        xunConvertUnitToBase(tag, &result, 2.5);
        xunConvertUnitFromBase(tag, &result, 2.5);
        if (xunGetBaseUnit(tag, &other, &text) == 1)
            xunConvertUnit(tag, other, &result, 2.5);
        xunGetNextEqvUnit(tag, 0, &other, &text);
    }
    char* list = nullptr;
    if (xunUnitGetAll(&list) == 1)
        FreeList(list);
}

void WalkItemTypes() {
    std::vector<int> keys;
    for (const CKVitemType* item : xunRegistries_().itemTypes)
        if (keys.size() < kMaxWalked)
            keys.push_back(static_cast<int>(item->m_nNumId));
    for (int key : keys) {
        const char* text = nullptr;
        int decimals = 0, tag = 0;
        double value = 0;
        xunGetItemTypeIdent(key, &text);
        xunGetItemTypeKey(key, &text);
        xunGetItemTypeParams(key, &decimals, &value);
        const int count = xunGetItemUnitCount(key);
        for (int seq = 1; seq <= count && seq <= static_cast<int>(kMaxWalked); ++seq)
            if (xunGetItemUnitSeq(key, seq, &tag, &text) == 1)
                xunConvertToUserUnit(key, tag, &value, 1.25);
        xunGetItemUserUnit(key, &tag);
    }
    char* list = nullptr;
    if (xunItemTypeGetAll(&list) == 1)
        FreeList(list);
}

void WalkFilters() {
    std::vector<int> bits;
    for (const CKVfilter* filter : xunRegistries_().filters)
        if (bits.size() < kMaxWalked)
            bits.push_back(static_cast<int>(filter->m_lKey));
    for (int bit : bits) {
        const char* text = nullptr;
        int key = 0;
        xunGetFilterKey(bit, &text);
        xunGetFilterIdent(bit, &text);
        const int count = xunGetFilteredItemTypeCount(bit);
        for (int seq = 1; seq <= count && seq <= static_cast<int>(kMaxWalked); ++seq)
            xunGetFilteredItemTypeSeq(bit, seq, &key, &text);
    }
    char* list = nullptr;
    if (xunFilterGetAll(&list) == 1)
        FreeList(list);
}

// What the load cache would store of the registries decodes into registries
// that encode to the same bytes.
void RoundTrip() {
    std::string payload;
    if (!xunEncodeRegistries_(xunRegistries_(), szDecimalSymbol, payload))
        return;
    char symbol = ' ';
    std::unique_ptr<CKVregistries> decoded = xunDecodeRegistries_(
        reinterpret_cast<const unsigned char*>(payload.data()), payload.size(), symbol);
    if (decoded == nullptr)
        xunFuzzFail("loaded registries do not decode from their own encoding");
    std::string again;
    if (!xunEncodeRegistries_(*decoded, symbol, again) || again != payload)
        xunFuzzFail("decoded registries encode to other bytes");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    xunFuzzInit();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string path = xunFuzzWriteFile("setup.xml", data, size);
    bool complete = false;
    try {
        complete = xunSetupLoad(path.c_str()) == 1;
    } catch (const XunFuzzAssertion&) {
    }
    if (complete) {
        RoundTrip();
        try {
            xunSetupLoad(path.c_str());
        } catch (const XunFuzzAssertion&) {
        }
    }
    try {
        WalkUnits();
        WalkItemTypes();
        WalkFilters();
    } catch (const XunFuzzAssertion&) {
    }
    xunFuzzClearRegistries();
    return 0;
}
