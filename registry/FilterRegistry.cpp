#include "registry/FilterRegistry.h"

#include <atomic>
#include <climits>

#include "common/Contract.h"

namespace {
std::atomic<long> ProductFilter_{xun::contract::kInitialProductFilter};
} // namespace

bool CKVfilterRegistry::NextBit(long& bit) const {
    bit = 1;
    for (const CKVfilter* filter : m_table) {
        if (filter->m_lKey == xun::contract::kSkippedFilterBit)
            continue;
        while (bit <= filter->m_lKey) {
            if (bit > LONG_MAX / 2)
                return false;
            bit *= 2;
        }
    }
    return true;
}

long xunProductFilter_() {
    return ProductFilter_.load(std::memory_order_relaxed);
}

void xunSetProductFilter_(long filter) {
    ProductFilter_.store(filter, std::memory_order_relaxed);
}
