// The exported filter functions: creation, lookups, the item types of a
// filter, the product filter and the flyby filter.
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <vector>

#include "registry_fixture.h"
#include "registry_access.h"

namespace {

using xuntest::RegisterFilter;
using xuntest::RegisterItemType;

const char* const kUntouched = "untouched";

// Item types 501..505 with masks and file-item flags:
//   501 mask 1, file item        502 mask 3, not a file item
//   503 mask 2, file item        504 mask 0, file item
//   505 mask 1 | flyby, file item; 506 mask flyby, not a file item
void RegisterFilteredItems() {
    struct Row {
        const char* ident;
        long key;
        long mask;
        int fileItem;
    };
    const Row rows[] = {{"A", 501, 1, 1}, {"B", 502, 3, 0},           {"C", 503, 2, 1},
                        {"D", 504, 0, 1}, {"E", 505, 0x80000001L, 1}, {"F", 506, 0x80000000L, 0}};
    for (const Row& row : rows) {
        CKVitemType* item = RegisterItemType(row.ident, row.key, CKVdimension::GetLength());
        item->m_strKey = std::string("item ") + row.ident;
        item->SetFilter(row.mask);
        item->FileItem(row.fileItem);
    }
}

std::vector<int> FilteredKeys(int filter) {
    std::vector<int> keys;
    int key = -7;
    const char* text = kUntouched;
    for (int seq = 1; xunGetFilteredItemTypeSeq(filter, seq, &key, &text); ++seq)
        keys.push_back(key);
    return keys;
}

TEST(FilterQueries, FirstNewFilterGetsBitOne) {
    ASSERT_EQ(xunFilterNew("Water", "water"), 1);
    int key = -7;
    ASSERT_EQ(xunGetFilterKeyFromIdent("Water", &key), 1);
    EXPECT_EQ(key, 1);
    ASSERT_EQ(xunFilterNew("Air", "air"), 1);
    ASSERT_EQ(xunGetFilterKeyFromIdent("Air", &key), 1);
    EXPECT_EQ(key, 2);
    EXPECT_EQ(xunGetFilterCount(), 2);
}

TEST(FilterQueries, NextBitLeavesOutBit30) {
    RegisterFilter("One", 1);
    RegisterFilter("Two", 2);
    RegisterFilter("Special", 0x40000000L);
    ASSERT_EQ(xunFilterNew("Next", "next"), 1);
    int key = -7;
    ASSERT_EQ(xunGetFilterKeyFromIdent("Next", &key), 1);
    EXPECT_EQ(key, 4);
}

TEST(FilterQueries, NextBitIsAboveEveryBitValueSeen) {
    RegisterFilter("One", 1);
    RegisterFilter("Two", 2);
    RegisterFilter("Five", 5);
    ASSERT_EQ(xunFilterNew("Next", "next"), 1);
    int key = -7;
    ASSERT_EQ(xunGetFilterKeyFromIdent("Next", &key), 1);
    EXPECT_EQ(key, 8);
    // Registration order does not matter: the largest bit value decides.
    RegisterFilter("Big", 64);
    RegisterFilter("Small", 16);
    ASSERT_EQ(xunFilterNew("After", "after"), 1);
    ASSERT_EQ(xunGetFilterKeyFromIdent("After", &key), 1);
    EXPECT_EQ(key, 128);
}

TEST(FilterQueries, NextBitCanCollideWithBit30) {
    // Bit 30 never pushes the counter, so it can be handed out again; the
    // registration then fails on the taken bit value.
    RegisterFilter("Special", 0x40000000L);
    RegisterFilter("Bit29", 0x20000000L);
    EXPECT_EQ(xunFilterNew("Next", "next"), 0);
    EXPECT_EQ(xunGetFilterCount(), 2);
    int key = -7;
    EXPECT_EQ(xunGetFilterKeyFromIdent("Next", &key), 0);
    EXPECT_EQ(key, -7);
}

TEST(FilterQueries, NextBitAboveTheFlybyBitLeavesTheIntRange) {
    RegisterFilter("Flyby", 0x80000000L);
    ASSERT_EQ(xunFilterNew("Next", "next"), 1);
    EXPECT_NE(xuntest::FilterByKey(0x100000000L), nullptr);
    int key = -7;
    ASSERT_EQ(xunGetFilterKeyFromIdent("Next", &key), 1);
    EXPECT_EQ(key, 0);
}

TEST(FilterQueries, NoBitIsLeftAboveTheLargestPowerOfTwo) {
    RegisterFilter("Top", 0x4000000000000000L);
    EXPECT_EQ(xunFilterNew("Next", "next"), 0);
    EXPECT_EQ(xunGetFilterCount(), 1);
}

TEST(FilterQueries, NewFilterWithTakenIdentFails) {
    ASSERT_EQ(xunFilterNew("Water", "water"), 1);
    EXPECT_EQ(xunFilterNew("Water", "water again"), 0);
    EXPECT_EQ(xunGetFilterCount(), 1);
    const char* text = kUntouched;
    ASSERT_EQ(xunGetFilterKey(1, &text), 1);
    EXPECT_STREQ(text, "water");
    text = kUntouched;
    EXPECT_EQ(xunGetFilterKey(2, &text), 0);
    EXPECT_EQ(text, kUntouched);
}

TEST(FilterQueriesDeathTest, NewFilterWithNullTextThrows) {
    // A host calling through the C interface cannot catch the exception: it
    // terminates the process, as a noexcept frame does here.
    auto call = [](const char* ident, const char* keyText) noexcept {
        xunFilterNew(ident, keyText);
    };
    EXPECT_DEATH(call(nullptr, "water"), "basic_string::_M_construct null not valid");
    EXPECT_DEATH(call("Water", nullptr), "basic_string::_M_construct null not valid");
}

TEST(FilterQueries, GetAll) {
    char sentinel = 'x';
    char* list = &sentinel;
    EXPECT_EQ(xunFilterGetAll(&list), 0);
    EXPECT_EQ(list, &sentinel);
    RegisterFilter("Water", 4);
    RegisterFilter("Air", 1);
    ASSERT_EQ(xunFilterGetAll(&list), 1);
    EXPECT_STREQ(list, "Water;Air;");
    std::free(list);
}

TEST(FilterQueries, SequenceInRegistrationOrder) {
    int key = -7;
    const char* text = kUntouched;
    EXPECT_EQ(xunGetFilterSeq(1, &key, &text), 0);
    RegisterFilter("Water", 4, "water");
    RegisterFilter("Air", 1, "air");
    ASSERT_EQ(xunGetFilterSeq(1, &key, &text), 1);
    EXPECT_EQ(key, 4);
    EXPECT_STREQ(text, "water");
    ASSERT_EQ(xunGetFilterSeq(2, &key, &text), 1);
    EXPECT_EQ(key, 1);
    EXPECT_STREQ(text, "air");
    key = -7;
    text = kUntouched;
    EXPECT_EQ(xunGetFilterSeq(0, &key, &text), 0);
    EXPECT_EQ(xunGetFilterSeq(3, &key, &text), 0);
    EXPECT_EQ(xunGetFilterSeq(-1, &key, &text), 0);
    EXPECT_EQ(key, -7);
    EXPECT_EQ(text, kUntouched);
}

TEST(FilterQueries, KeyIdentAndKeyFromIdent) {
    RegisterFilter("Water", 4, "water");
    RegisterFilter("Flyby", 0x80000000L, "flyby");
    const char* text = kUntouched;
    ASSERT_EQ(xunGetFilterKey(4, &text), 1);
    EXPECT_STREQ(text, "water");
    ASSERT_EQ(xunGetFilterIdent(4, &text), 1);
    EXPECT_STREQ(text, "Water");
    int key = -7;
    ASSERT_EQ(xunGetFilterKeyFromIdent("Flyby", &key), 1);
    EXPECT_EQ(key, INT_MIN);
    // Bit 31 as an int widens to a negative key, which is another filter.
    text = kUntouched;
    EXPECT_EQ(xunGetFilterKey(xunGetFlybyFilter(), &text), 0);
    EXPECT_EQ(xunGetFilterIdent(8, &text), 0);
    EXPECT_EQ(text, kUntouched);
    key = -7;
    EXPECT_EQ(xunGetFilterKeyFromIdent("water", &key), 0);
    EXPECT_EQ(xunGetFilterKeyFromIdent(nullptr, &key), 0);
    EXPECT_EQ(key, -7);
}

TEST(FilterQueries, FilteredCountLeavesOutItemsThatAreNoFileItems) {
    EXPECT_EQ(xunGetFilteredItemTypeCount(1), 0);
    EXPECT_EQ(xunGetFilteredItemTypeCount(xunGetFlybyFilter()), 0);
    RegisterFilteredItems();
    EXPECT_EQ(xunGetFilteredItemTypeCount(1), 2); // 501, 505 (502 is no file item)
    EXPECT_EQ(xunGetFilteredItemTypeCount(2), 1); // 503
    EXPECT_EQ(xunGetFilteredItemTypeCount(3), 3); // 501, 503, 505
    EXPECT_EQ(xunGetFilteredItemTypeCount(8), 0);
    EXPECT_EQ(xunGetFilteredItemTypeCount(0), 0);
    EXPECT_EQ(xunGetFilteredItemTypeCount(0x7FFFFFFF), 3);
    // A negative filter counts every member, file item or not.
    EXPECT_EQ(xunGetFilteredItemTypeCount(xunGetFlybyFilter()), 2); // 505, 506
    EXPECT_EQ(xunGetFilteredItemTypeCount(-1), 5);                  // all but 504
}

TEST(FilterQueries, FilteredSequence) {
    RegisterFilteredItems();
    EXPECT_EQ(FilteredKeys(1), (std::vector<int>{501, 505}));
    EXPECT_EQ(FilteredKeys(3), (std::vector<int>{501, 503, 505}));
    EXPECT_EQ(FilteredKeys(xunGetFlybyFilter()), (std::vector<int>{505, 506}));
    EXPECT_EQ(FilteredKeys(-1), (std::vector<int>{501, 502, 503, 505, 506}));
    EXPECT_EQ(FilteredKeys(8), std::vector<int>{});

    int key = -7;
    const char* text = kUntouched;
    ASSERT_EQ(xunGetFilteredItemTypeSeq(2, 1, &key, &text), 1);
    EXPECT_EQ(key, 503);
    EXPECT_STREQ(text, "item C");
    key = -7;
    text = kUntouched;
    EXPECT_EQ(xunGetFilteredItemTypeSeq(1, 3, &key, &text), 0);
    EXPECT_EQ(xunGetFilteredItemTypeSeq(xunGetFlybyFilter(), 3, &key, &text), 0);
    EXPECT_EQ(xunGetFilteredItemTypeSeq(1, -1, &key, &text), 0);
    EXPECT_EQ(key, -7);
    EXPECT_EQ(text, kUntouched);
}

// Each thread remembers where its last filtered question left off, so that a
// walk seq = 1, 2, ... costs O(n) in all. Whatever changes in between - an
// item type added, a mask or file-item flag changed - the answers stay those
// of a walk from the start.
TEST(FilterQueries, FilteredSequenceFollowsChangesBetweenSteps) {
    RegisterFilteredItems();
    int key = -7;
    const char* text = nullptr;
    ASSERT_EQ(xunGetFilteredItemTypeSeq(1, 1, &key, &text), 1);
    EXPECT_EQ(key, 501);
    // 503 joins filter 1: it is now the second, ahead of 505.
    ASSERT_EQ(xunAddItemFilter(503, 1), 1);
    ASSERT_EQ(xunGetFilteredItemTypeSeq(1, 2, &key, &text), 1);
    EXPECT_EQ(key, 503);
    EXPECT_EQ(xunGetFilteredItemTypeCount(1), 3);
    // 501 leaves the file items: 503 becomes the first.
    xuntest::ItemByKey(501)->FileItem(0);
    EXPECT_EQ(xunGetFilteredItemTypeCount(1), 2);
    ASSERT_EQ(xunGetFilteredItemTypeSeq(1, 2, &key, &text), 1);
    EXPECT_EQ(key, 505);
    ASSERT_EQ(xunGetFilteredItemTypeSeq(1, 1, &key, &text), 1);
    EXPECT_EQ(key, 503);
    // A new member at the end.
    CKVitemType* late = RegisterItemType("G", 507, CKVdimension::GetLength());
    late->SetFilter(1);
    EXPECT_EQ(xunGetFilteredItemTypeCount(1), 3);
    EXPECT_EQ(FilteredKeys(1), (std::vector<int>{503, 505, 507}));
    // Backwards and repeated questions give the same answers.
    for (int seq : {3, 3, 2, 1, 3}) {
        ASSERT_EQ(xunGetFilteredItemTypeSeq(1, seq, &key, &text), 1);
        EXPECT_EQ(key, (std::vector<int>{503, 505, 507})[static_cast<size_t>(seq - 1)]);
    }
    EXPECT_EQ(xunGetFilteredItemTypeSeq(1, 4, &key, &text), 0);
}

// Other filters in between do not disturb a walk.
TEST(FilterQueries, FilteredSequencesOfTwoFiltersInterleaved) {
    RegisterFilteredItems();
    std::vector<int> first, second;
    int key = -7;
    const char* text = nullptr;
    for (int seq = 1; seq <= 5; ++seq) {
        if (xunGetFilteredItemTypeSeq(3, seq, &key, &text))
            first.push_back(key);
        if (xunGetFilteredItemTypeSeq(-1, seq, &key, &text))
            second.push_back(key);
    }
    EXPECT_EQ(first, (std::vector<int>{501, 503, 505}));
    EXPECT_EQ(second, (std::vector<int>{501, 502, 503, 505, 506}));
}

TEST(FilterQueries, FilteredSequenceOnAnEmptyRegistry) {
    int key = -7;
    const char* text = kUntouched;
    EXPECT_EQ(xunGetFilteredItemTypeSeq(1, 0, &key, &text), 0);
    EXPECT_EQ(xunGetFilteredItemTypeSeq(1, 1, &key, &text), 0);
    EXPECT_EQ(key, -7);
    EXPECT_EQ(text, kUntouched);
}

TEST(FilterQueries, FilteredSequenceZeroNamesAnUncountedFirstItem) {
    RegisterFilteredItems();
    int key = -7;
    const char* text = kUntouched;
    // 501 is counted in filter 1: the counter is 1 after it, never 0 again.
    EXPECT_EQ(xunGetFilteredItemTypeSeq(1, 0, &key, &text), 0);
    EXPECT_EQ(key, -7);
    // 501 is not counted in filter 2: seq 0 matches right after it.
    ASSERT_EQ(xunGetFilteredItemTypeSeq(2, 0, &key, &text), 1);
    EXPECT_EQ(key, 501);
    EXPECT_STREQ(text, "item A");
    ASSERT_EQ(xunGetFilteredItemTypeSeq(xunGetFlybyFilter(), 0, &key, &text), 1);
    EXPECT_EQ(key, 501);
}

TEST(FilterQueries, ItemFilterEqv) {
    RegisterFilteredItems();
    EXPECT_EQ(xunItemFilterEqv(501, 1), 1);
    EXPECT_EQ(xunItemFilterEqv(501, 2), 0);
    EXPECT_EQ(xunItemFilterEqv(502, 2), 1); // the file-item flag plays no part
    EXPECT_EQ(xunItemFilterEqv(504, -1), 0);
    EXPECT_EQ(xunItemFilterEqv(506, xunGetFlybyFilter()), 1);
    EXPECT_EQ(xunItemFilterEqv(501, xunGetFlybyFilter()), 0);
    // The widened filter shares bits 32 to 63 with a mask that has them.
    xuntest::ItemByKey(504)->SetFilter(0x100000000L);
    EXPECT_EQ(xunItemFilterEqv(504, xunGetFlybyFilter()), 1);
    EXPECT_EQ(xunItemFilterEqv(504, 0x7FFFFFFF), 0);
    // An unknown item type is no member of anything.
    EXPECT_EQ(xunItemFilterEqv(599, -1), 0);
}

TEST(FilterQueries, ProductFilter) {
    EXPECT_EQ(xunGetProductFilter(), 0x7FFFFFFFL);
    EXPECT_EQ(xunSetProductFilter(-1), -1L);
    EXPECT_EQ(xunGetProductFilter(), -1L);
    EXPECT_EQ(xunSetProductFilter(xunGetFlybyFilter()), -0x80000000L);
    EXPECT_EQ(xunGetProductFilter(), -0x80000000L);
    EXPECT_EQ(xunSetProductFilter(6), 6L);
    EXPECT_EQ(xunGetProductFilter(), 6L);
}

TEST(FilterQueries, FlybyFilterIsBit31) {
    EXPECT_EQ(xunGetFlybyFilter(), INT_MIN);
    EXPECT_EQ(static_cast<unsigned>(xunGetFlybyFilter()), 0x80000000u);
}

} // namespace
