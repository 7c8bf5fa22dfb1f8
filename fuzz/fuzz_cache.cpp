// Fuzz target: the payload of a load-cache entry. The input is decoded as
// the registries it would describe; what decodes must keep the registries'
// invariants and encode back to the very same bytes (an entry has one
// form), and anything else must be refused without reading past the input.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "FuzzSupport.h"
#include "setup/LoadCache.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    xunFuzzInit();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    char symbol = ' ';
    std::unique_ptr<CKVregistries> registries = xunDecodeRegistries_(data, size, symbol);
    if (registries == nullptr)
        return 0;
    registries->CheckInvariants();
    std::string encoded;
    if (!xunEncodeRegistries_(*registries, symbol, encoded))
        xunFuzzFail("decoded registries do not encode");
    if (encoded.size() != size || std::memcmp(encoded.data(), data, size) != 0)
        xunFuzzFail("decoded registries encode to other bytes");
    return 0;
}
