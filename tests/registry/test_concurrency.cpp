// After loading, every function that only reads - lookups, conversions,
// walks, sequences, lists - may be called from several threads at once: they
// write nothing shared but their outputs (a walk's and a sequence's memory is
// the calling thread's own). Here several threads run all of them at the
// same time over the default installation and must see exactly what one
// thread sees alone. Built with -DXUN_TSAN=ON, ThreadSanitizer checks the
// same runs for data races.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "registry/FilterRegistry.h"
#include "registry/ItemTypeRegistry.h"
#include "registry/UnitRegistry.h"
#include "xun.h"
#include "registry_access.h"

namespace {

// A running FNV-1a digest of everything a round of calls returns.
class Digest {
  public:
    void Add(const void* data, size_t size) {
        const unsigned char* bytes = static_cast<const unsigned char*>(data);
        for (size_t i = 0; i < size; ++i) {
            m_value ^= bytes[i];
            m_value *= 0x100000001B3ull;
        }
    }
    void Add(int value) { Add(&value, sizeof value); }
    void Add(long value) { Add(&value, sizeof value); }
    void Add(double value) { Add(&value, sizeof value); }
    void Add(float value) { Add(&value, sizeof value); }
    void Add(const char* text) {
        if (text == nullptr)
            Add(-1);
        else
            Add(text, std::strlen(text) + 1);
    }
    uint64_t Value() const { return m_value; }

  private:
    uint64_t m_value = 0xCBF29CE484222325ull;
};

// The keys of the loaded installation, collected once on the main thread.
struct Keys {
    std::vector<int> units;
    std::vector<std::string> unitIdents;
    std::vector<std::string> unitNames;
    std::vector<int> items;
    std::vector<std::string> itemIdents;
    std::vector<int> filters;
    std::vector<std::string> filterIdents;
};

Keys CollectKeys() {
    Keys keys;
    for (const CKVunit* unit : xuntest::Registries().units) {
        keys.units.push_back(static_cast<int>(unit->m_lKey));
        keys.unitIdents.push_back(unit->m_strIdent);
        keys.unitNames.push_back(unit->m_strDesc + "s");
    }
    for (const CKVitemType* item : xuntest::Registries().itemTypes) {
        keys.items.push_back(static_cast<int>(item->m_nNumId));
        keys.itemIdents.push_back(item->m_strIdent);
    }
    for (const CKVfilter* filter : xuntest::Registries().filters) {
        keys.filters.push_back(static_cast<int>(static_cast<long>(*filter)));
        keys.filterIdents.push_back(filter->m_strIdent);
    }
    keys.unitNames.push_back("no such unit");
    keys.units.push_back(424242); // unknown
    keys.items.push_back(999);    // every unit
    keys.items.push_back(434343); // unknown
    return keys;
}

// One round of every read-only call, with arguments picked from the keys by
// the round number; returns the digest of all results.
uint64_t Round(const Keys& keys, unsigned round) {
    Digest d;
    auto pick = [round](size_t n, unsigned salt) {
        return static_cast<size_t>((round * 2654435761u + salt * 40503u) % n);
    };
    const int u1 = keys.units[pick(keys.units.size(), 1)];
    const int u2 = keys.units[pick(keys.units.size(), 2)];
    const int item = keys.items[pick(keys.items.size(), 3)];
    const int filter = keys.filters[pick(keys.filters.size(), 4)];
    const double value = static_cast<double>(round % 1000) * 0.37 - 100.0;
    const char* text = nullptr;
    int tag = -1, tag2 = -1;
    double x = 0, y = 0;

    // Units.
    d.Add(xunGetUnitKey(u1, &text));
    d.Add(text);
    d.Add(xunGetUnitIdent(u1, &text));
    d.Add(text);
    d.Add(xunGetUnitAbbreviation(u2, &text));
    d.Add(text);
    tag = -1;
    d.Add(xunGetUnitTag(keys.unitNames[pick(keys.unitNames.size(), 5)].c_str(), &tag));
    d.Add(tag);
    tag = -1;
    d.Add(xunGetUnitTagFromIdent(keys.unitIdents[pick(keys.unitIdents.size(), 6)].c_str(), &tag));
    d.Add(tag);
    tag = -1;
    d.Add(xunGetItemUnitTag(item, keys.unitNames[pick(keys.unitNames.size(), 7)].c_str(), &tag));
    d.Add(tag);
    tag = -1;
    text = nullptr;
    d.Add(xunGetItemFirstEqvUnit(item, &tag, &text));
    d.Add(tag);
    d.Add(text);
    d.Add(xunUnitsEqv(u1, u2));
    tag = -1;
    text = nullptr;
    if (u1 != 424242) {
        d.Add(xunGetBaseUnit(u1, &tag, &text));
        d.Add(tag);
        d.Add(text);
    }
    double powers[7] = {}, factors[7] = {};
    d.Add(xunUnitGetParameters(u2, &x, &y, powers, factors));
    d.Add(powers, sizeof powers);
    d.Add(factors, sizeof factors);
    if (round % 64 == 0) {
        char* all = nullptr;
        d.Add(xunUnitGetAll(&all));
        d.Add(all);
        std::free(all);
    }
    // Derived units.
    int match = 0, eqv = 0, inverse = 0;
    double factor = 0;
    d.Add(xunUnitPower(u1, &match, &eqv, &factor, 2.0));
    d.Add(match);
    d.Add(eqv);
    d.Add(factor);
    d.Add(xunUnitMultiply(u1, u2, &match, &eqv, &factor));
    d.Add(match);
    d.Add(eqv);
    d.Add(factor);
    d.Add(xunUnitDivide(u1, u2, &match, &eqv, &factor));
    d.Add(match);
    d.Add(eqv);
    d.Add(factor);
    d.Add(xunUnitGetIntegrationFactor(u1, u2, &match, &inverse, &factor));
    d.Add(match);
    d.Add(inverse);
    d.Add(factor);
    d.Add(xunUnitGetDerivationFactor(u1, u2, &match, &inverse, &factor));
    d.Add(match);
    d.Add(inverse);
    d.Add(factor);

    // Conversions.
    d.Add(xunConvertUnit(u1, u2, &x, value));
    d.Add(x);
    x = 0;
    d.Add(xunConvertUnitToBase(u1, &x, value));
    d.Add(x);
    x = 0;
    d.Add(xunConvertUnitFromBase(u2, &x, value));
    d.Add(x);
    x = 0;
    d.Add(xunConvertToUserUnit(item, u1, &x, value));
    d.Add(x);
    x = 0;
    d.Add(xunConvertFromUserUnit(item, u2, &x, value));
    d.Add(x);
    double doubles[67];
    float floats[67];
    for (int i = 0; i < 67; ++i) {
        doubles[i] = i % 9 == 4 ? -9999.0 : value + i * 1.5;
        floats[i] = static_cast<float>(doubles[i]);
    }
    d.Add(xunConvertItemArrayD(u1, u2, doubles, 67, -9999.0));
    d.Add(xunConvertItemArrayF(u2, u1, floats, 67, -9999.0f));
    d.Add(xunConvertItemArrayToUserUnitD(item, u1, doubles, 67, -9999.0));
    d.Add(xunConvertItemArrayToUserUnitF(item, u2, floats, 67, -9999.0f));
    d.Add(xunConvertItemArrayFromUserUnitD(item, u2, doubles, 67, -9999.0));
    d.Add(xunConvertItemArrayFromUserUnitF(item, u1, floats, 67, -9999.0f));
    d.Add(doubles, sizeof doubles);
    d.Add(floats, sizeof floats);

    // Item types.
    d.Add(xunGetItemTypeCount());
    tag = -1;
    text = nullptr;
    d.Add(xunGetItemTypeSeq(static_cast<int>(pick(keys.items.size(), 8)), &tag, &text));
    d.Add(tag);
    d.Add(text);
    text = nullptr;
    d.Add(xunGetItemTypeIdent(item, &text));
    d.Add(text);
    text = nullptr;
    d.Add(xunGetItemTypeKey(item, &text));
    d.Add(text);
    tag = -1;
    d.Add(
        xunGetItemTypeKeyFromIdent(keys.itemIdents[pick(keys.itemIdents.size(), 9)].c_str(), &tag));
    d.Add(tag);
    int decimals = -7;
    double defaultValue = 0;
    d.Add(xunGetItemTypeParams(item, &decimals, &defaultValue));
    d.Add(decimals);
    d.Add(defaultValue);
    d.Add(xunGetItemUnitCount(item));
    tag = -1;
    text = nullptr;
    d.Add(xunGetItemUnitSeq(item, 1 + static_cast<int>(round % 5), &tag, &text));
    d.Add(tag);
    d.Add(text);
    d.Add(xunItemUnitEqv(item, u1));
    tag = -1;
    d.Add(xunGetItemUserUnit(item, &tag));
    d.Add(tag);
    if (round % 64 == 1) {
        char* all = nullptr;
        d.Add(xunItemTypeGetAll(&all));
        d.Add(all);
        std::free(all);
    }

    // Filters.
    d.Add(xunGetFilterCount());
    tag = -1;
    text = nullptr;
    d.Add(xunGetFilterSeq(1 + static_cast<int>(round % 8), &tag, &text));
    d.Add(tag);
    d.Add(text);
    text = nullptr;
    d.Add(xunGetFilterKey(filter, &text));
    d.Add(text);
    text = nullptr;
    d.Add(xunGetFilterIdent(filter, &text));
    d.Add(text);
    tag2 = -1;
    d.Add(xunGetFilterKeyFromIdent(keys.filterIdents[pick(keys.filterIdents.size(), 10)].c_str(),
                                   &tag2));
    d.Add(tag2);
    d.Add(xunGetFilteredItemTypeCount(filter));
    tag = -1;
    text = nullptr;
    d.Add(xunGetFilteredItemTypeSeq(filter, 1 + static_cast<int>(round % 4), &tag, &text));
    d.Add(tag);
    d.Add(text);
    if (item != 434343)
        d.Add(xunItemFilterEqv(item, filter));
    d.Add(xunGetProductFilter());
    d.Add(xunGetFlybyFilter());
    const char* path = nullptr;
    xunSetupGetPath(&path);
    d.Add(path);
    return d.Value();
}

TEST(Concurrency, LookupsAndConversionsFromSeveralThreads) {
    setenv("KORVANE_HOME", (std::string(std::getenv("XUN_TEST_DATA")) + "/../../data").c_str(), 1);
    testing::internal::CaptureStdout();
    xunLoadItemTypeTables("");
    testing::internal::GetCapturedStdout();
    ASSERT_GT(xuntest::Registries().units.Count(), 300u);
    const Keys keys = CollectKeys();

    const unsigned kRounds = 1500;
    std::vector<uint64_t> expected(kRounds);
    for (unsigned round = 0; round < kRounds; ++round)
        expected[round] = Round(keys, round);

    const size_t units = xuntest::Registries().units.Count(),
                 items = xuntest::Registries().itemTypes.Count(),
                 filters = xuntest::Registries().filters.Count();

    const unsigned kThreads = 4;
    std::vector<unsigned> mismatches(kThreads, 0);
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            // Each thread starts elsewhere, so that different calls overlap.
            for (unsigned i = 0; i < kRounds; ++i) {
                const unsigned round = (i + t * kRounds / kThreads) % kRounds;
                if (Round(keys, round) != expected[round])
                    ++mismatches[t];
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (unsigned t = 0; t < kThreads; ++t)
        EXPECT_EQ(mismatches[t], 0u) << "thread " << t;

    // Nothing was added on the way.
    EXPECT_EQ(xuntest::Registries().units.Count(), units);
    EXPECT_EQ(xuntest::Registries().itemTypes.Count(), items);
    EXPECT_EQ(xuntest::Registries().filters.Count(), filters);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
}

// Complete walks and sequences: every unit by xunGetNextUnit, the units of
// one dimension by xunGetNextEqvUnit, every item type, filter and allowed
// unit by sequence number, and the item types of one filter.
uint64_t Walks(const Keys& keys, unsigned round) {
    Digest d;
    int tag = 0;
    const char* text = nullptr;
    unsigned steps = 0;
    for (int prev = 0; xunGetNextUnit(prev, &tag, &text); prev = tag, ++steps) {
        d.Add(tag);
        d.Add(text);
    }
    d.Add(static_cast<int>(steps));
    d.Add(xunGetLastError(nullptr));
    const int reference = keys.units[round % (keys.units.size() - 1)];
    steps = 0;
    for (int prev = 0; xunGetNextEqvUnit(reference, prev, &tag, &text); prev = tag, ++steps) {
        d.Add(tag);
        d.Add(text);
    }
    d.Add(static_cast<int>(steps));
    const int items = xunGetItemTypeCount();
    d.Add(items);
    for (int seq = 1; seq <= items + 1; ++seq) {
        d.Add(xunGetItemTypeSeq(seq, &tag, &text));
        d.Add(tag);
        d.Add(text);
    }
    const int filters = xunGetFilterCount();
    for (int seq = 1; seq <= filters + 1; ++seq) {
        d.Add(xunGetFilterSeq(seq, &tag, &text));
        d.Add(tag);
        d.Add(text);
    }
    const int filter = keys.filters[round % keys.filters.size()];
    const int filtered = xunGetFilteredItemTypeCount(filter);
    d.Add(filtered);
    for (int seq = 1; seq <= filtered + 1; ++seq) {
        d.Add(xunGetFilteredItemTypeSeq(filter, seq, &tag, &text));
        d.Add(tag);
        d.Add(text);
    }
    const int item = keys.items[round % (keys.items.size() - 2)];
    const int allowed = xunGetItemUnitCount(item);
    d.Add(allowed);
    for (int seq = 1; seq <= allowed + 1; ++seq) {
        d.Add(xunGetItemUnitSeq(item, seq, &tag, &text));
        d.Add(tag);
        d.Add(text);
    }
    return d.Value();
}

// 1,000 times: a unit is added (alone, as changes must be), then four new
// threads walk at once, right after the change, and each must see what one
// thread sees alone afterwards.
TEST(Concurrency, WalksAndSequencesFromFourThreadsAfterEachChange) {
    setenv("KORVANE_HOME", (std::string(std::getenv("XUN_TEST_DATA")) + "/../../data").c_str(), 1);
    testing::internal::CaptureStdout();
    xunLoadItemTypeTables("");
    testing::internal::GetCapturedStdout();
    ASSERT_GT(xuntest::Registries().units.Count(), 300u);
    const Keys keys = CollectKeys();
    const size_t units = xuntest::Registries().units.Count();

    const unsigned kRounds = 1000, kThreads = 4;
    unsigned mismatches = 0;
    for (unsigned round = 0; round < kRounds; ++round) {
        const std::string ident = "UnitAdded" + std::to_string(round);
        ASSERT_EQ(xunUnitNew(ident.c_str(), ident.c_str(), "a", "UnitMeter*2"), 1);
        std::vector<uint64_t> seen(kThreads);
        std::vector<std::thread> threads;
        for (unsigned t = 0; t < kThreads; ++t)
            threads.emplace_back([&, t] { seen[t] = Walks(keys, round); });
        for (std::thread& thread : threads)
            thread.join();
        const uint64_t expected = Walks(keys, round);
        for (unsigned t = 0; t < kThreads; ++t)
            mismatches += seen[t] != expected;
    }
    EXPECT_EQ(mismatches, 0u);
    EXPECT_EQ(xuntest::Registries().units.Count(), units + kRounds);
    EXPECT_EQ(xuntest::BrokenInvariant(), "");
}

} // namespace
