// The last-error record: every failed call records its code and a message
// that names what was wrong; successful calls leave the record; it belongs
// to the calling thread; xunClearLastError resets it. And the version text.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include "xun.h"

namespace {

std::string Data() {
    const char* root = std::getenv("XUN_TEST_DATA");
    return std::string(root != nullptr ? root : "tests/data");
}

class LastError : public testing::Test {
  protected:
    void SetUp() override {
        testing::internal::CaptureStdout();
        ASSERT_EQ(xunSetupLoad((Data() + "/setup/basic.xml").c_str()), 1);
        testing::internal::GetCapturedStdout();
        xunClearLastError();
    }
};

std::string Message() {
    const char* message = nullptr;
    xunGetLastError(&message);
    return message;
}

TEST_F(LastError, NoneAtTheStart) {
    const char* message = "untouched";
    EXPECT_EQ(xunGetLastError(&message), XUN_OK);
    EXPECT_STREQ(message, "");
}

TEST_F(LastError, EachFailureNamesWhatWasWrong) {
    const char* text = nullptr;
    int tag = 0;
    double value = 0;
    auto expect = [](int result, int code, const std::string& message) {
        EXPECT_EQ(result, 0) << message;
        const char* recorded = nullptr;
        EXPECT_EQ(xunGetLastError(&recorded), code) << message;
        EXPECT_EQ(std::string(recorded).compare(0, message.size(), message), 0)
            << recorded << "\nexpected: " << message;
    };
    expect(xunGetUnitKey(4711, &text), XUN_ERR_UNKNOWN_UNIT,
           "xunGetUnitKey: no unit has the tag 4711");
    expect(xunGetItemTypeKey(4711, &text), XUN_ERR_UNKNOWN_ITEM_TYPE,
           "xunGetItemTypeKey: no item type has the key 4711");
    expect(xunGetFilterKey(64, &text), XUN_ERR_UNKNOWN_FILTER,
           "xunGetFilterKey: no filter has the bit 0x40");
    expect(xunGetUnitTag("furlong", &tag), XUN_ERR_NOT_FOUND,
           "xunGetUnitTag: no unit is described or aliased as 'furlong'");
    expect(xunConvertUnit(1000, 1100, &value, 1.0), XUN_ERR_DIMENSION,
           "xunConvertUnit: cannot convert unit 1000 'UnitMeter' (dimension L) to unit 1100 "
           "'UnitSecond' (dimension T): the dimensions differ");
    expect(xunGetItemTypeSeq(0, &tag, &text), XUN_ERR_RANGE, "xunGetItemTypeSeq: 0 is not in 1..3");
    expect(xunUnitNew("UnitX", "x", "x", "Length"), XUN_ERR_EXPRESSION,
           "xunUnitNew: the expression 'Length' does not give a unit");
    expect(xunUnitNew("UnitMeter", "again", "m", "UnitKilometer/1000"), XUN_ERR_TAKEN,
           "xunUnitNew: the ident 'UnitMeter' is already registered");
    expect(xunSetItemUserUnit(100, 1100), XUN_ERR_DIMENSION,
           "xunSetItemUserUnit: unit 1100 'UnitSecond' (dimension T) cannot be the user unit of "
           "item type 100 (dimension L)");
    testing::internal::CaptureStderr();
    expect(xunSetupLoad((Data() + "/setup/malformed.xml").c_str()), XUN_ERR_FILE,
           "xunSetupLoad: the setup file '" + Data() + "/setup/malformed.xml' cannot be read");
    testing::internal::GetCapturedStderr();
    expect(xunUnitDivide(1000, 1201, &tag, &tag, &value), XUN_ERR_NOT_FOUND,
           "xunUnitDivide: no registered unit has the derived dimension");
    expect(xunUnitGetIntegrationFactor(1000, 1300, &tag, &tag, &value), XUN_ERR_DIMENSION,
           "xunUnitGetIntegrationFactor: the variable 1300 is not of a single base dimension");
    expect(xunGetNextUnit(4711, &tag, &text), XUN_ERR_UNKNOWN_UNIT,
           "xunGetNextUnit: no unit has the tag 4711");
    expect(xunGetNextUnit(1300, &tag, &text), XUN_ERR_END, "xunGetNextUnit: no unit after 1300");
    expect(xunGetUnitAlias(1000, 2, &text), XUN_ERR_RANGE,
           "xunGetUnitAlias: unit 1000 has 1 aliases, not 2");
    expect(xunAddItemUnit(100, 1001), XUN_ERR_TAKEN, "xunAddItemUnit: item type 100 already");
    expect(xunItemUnitEqv(4711, 1000), XUN_ERR_UNKNOWN_ITEM_TYPE,
           "xunItemUnitEqv: no item type has the key 4711");
}

TEST_F(LastError, SuccessLeavesTheRecordAndFalseAnswersAreNoFailures) {
    const char* text = nullptr;
    EXPECT_EQ(xunGetUnitKey(4711, &text), 0);
    EXPECT_EQ(xunGetLastError(nullptr), XUN_ERR_UNKNOWN_UNIT);
    EXPECT_EQ(xunGetUnitKey(1000, &text), 1);
    EXPECT_EQ(xunGetLastError(nullptr), XUN_ERR_UNKNOWN_UNIT);
    EXPECT_EQ(Message(), "xunGetUnitKey: no unit has the tag 4711");
    xunClearLastError();
    // "Not equivalent" and "not a member" are answers, not failures.
    EXPECT_EQ(xunUnitsEqv(1000, 1100), 0);
    EXPECT_EQ(xunItemUnitEqv(100, 1100), 0);
    EXPECT_EQ(xunItemFilterEqv(101, 1), 0);
    EXPECT_EQ(xunGetLastError(nullptr), XUN_OK);
    // An unknown argument of a predicate is.
    EXPECT_EQ(xunUnitsEqv(1000, 4711), 0);
    EXPECT_EQ(xunGetLastError(nullptr), XUN_ERR_UNKNOWN_UNIT);
}

TEST_F(LastError, EachThreadHasItsOwn) {
    const char* text = nullptr;
    EXPECT_EQ(xunGetUnitKey(4711, &text), 0);
    int otherCode = -1;
    std::string otherMessage;
    std::thread other([&] {
        otherCode = xunGetLastError(nullptr);
        int tag = 0;
        xunGetUnitTag("furlong", &tag);
        otherMessage = Message();
    });
    other.join();
    EXPECT_EQ(otherCode, XUN_OK);
    EXPECT_EQ(otherMessage, "xunGetUnitTag: no unit is described or aliased as 'furlong'");
    EXPECT_EQ(Message(), "xunGetUnitKey: no unit has the tag 4711");
}

TEST_F(LastError, LongMessagesAreCut) {
    const std::string name(5000, 'q');
    int tag = 0;
    EXPECT_EQ(xunGetUnitTag(name.c_str(), &tag), 0);
    const std::string message = Message();
    EXPECT_EQ(message.size(), 1023u);
    EXPECT_EQ(message.substr(message.size() - 3), "...");
}

TEST_F(LastError, LoadItemTypeTablesRecordsAFailedLoad) {
    testing::internal::CaptureStderr();
    xunLoadItemTypeTables((Data() + "/setup/no_such_file.xml").c_str());
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(xunGetLastError(nullptr), XUN_ERR_FILE);
}

TEST(Version, IsTheTextOfTheVersionFile) {
    std::ifstream file(Data() + "/../../VERSION");
    std::string version;
    std::getline(file, version);
    ASSERT_FALSE(version.empty());
    EXPECT_STREQ(xunVersion(), version.c_str());
}

} // namespace
