// The null policy of the C interface: every pointer argument of every
// exported function, null in turn. A null output pointer or null text never
// crashes: the call fails with XUN_ERR_NULL_ARGUMENT, names the argument,
// and writes no other output - except where the interface says otherwise
// (the designed exceptions of xunUnitNew, xunItemTypeNew and xunFilterNew;
// the null paths that mean the default file; arrays with counts below 1;
// the *tag = 0 of the name searches and the initial outputs of the derived
// units, which are written first).
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "xun.h"

namespace {

std::string Data() {
    const char* root = std::getenv("XUN_TEST_DATA");
    return std::string(root != nullptr ? root : "tests/data");
}

const char* const kUntouched = "untouched";

class NullArguments : public testing::Test {
  protected:
    void SetUp() override {
        testing::internal::CaptureStdout();
        ASSERT_EQ(xunSetupLoad((Data() + "/setup/basic.xml").c_str()), 1);
        testing::internal::GetCapturedStdout();
    }

    // Runs the call and expects a failure (result 0, or -1 where given) for
    // the null argument named.
    static void ExpectNullRefused(const char* what, const std::function<long()>& call,
                                  const char* argument, long failed = 0) {
        xunClearLastError();
        EXPECT_EQ(call(), failed) << what;
        const char* message = nullptr;
        EXPECT_EQ(xunGetLastError(&message), XUN_ERR_NULL_ARGUMENT) << what;
        EXPECT_NE(std::string(message).find(std::string(argument) + " is null"), std::string::npos)
            << what << ": " << message;
    }
};

TEST_F(NullArguments, TextOutputsOfLookups) {
    int tag = 7;
    const char* text = kUntouched;
    ExpectNullRefused(
        "xunGetUnitKey", [] { return xunGetUnitKey(1000, nullptr); }, "key");
    ExpectNullRefused(
        "xunGetUnitIdent", [] { return xunGetUnitIdent(1000, nullptr); }, "ident");
    ExpectNullRefused(
        "xunGetUnitAbbreviation", [] { return xunGetUnitAbbreviation(1000, nullptr); },
        "abbreviation");
    ExpectNullRefused(
        "xunGetUnitExpression", [] { return xunGetUnitExpression(1000, nullptr); }, "expression");
    ExpectNullRefused(
        "xunGetUnitText", [] { return xunGetUnitText(1000, XUN_NOTATION_CF, nullptr); }, "text");
    ExpectNullRefused(
        "xunGetUnitAlias", [] { return xunGetUnitAlias(1000, 1, nullptr); }, "alias");
    ExpectNullRefused(
        "xunGetItemTypeIdent", [] { return xunGetItemTypeIdent(100, nullptr); }, "ident");
    ExpectNullRefused(
        "xunGetItemTypeKey", [] { return xunGetItemTypeKey(100, nullptr); }, "keyText");
    ExpectNullRefused(
        "xunGetFilterKey", [] { return xunGetFilterKey(1, nullptr); }, "keyText");
    ExpectNullRefused(
        "xunGetFilterIdent", [] { return xunGetFilterIdent(1, nullptr); }, "ident");
    ExpectNullRefused(
        "xunGetItemTypeSeq key", [&] { return xunGetItemTypeSeq(1, nullptr, &text); }, "key");
    ExpectNullRefused(
        "xunGetItemTypeSeq keyText", [&] { return xunGetItemTypeSeq(1, &tag, nullptr); },
        "keyText");
    ExpectNullRefused(
        "xunGetFilterSeq key", [&] { return xunGetFilterSeq(1, nullptr, &text); }, "key");
    ExpectNullRefused(
        "xunGetFilterSeq keyText", [&] { return xunGetFilterSeq(1, &tag, nullptr); }, "keyText");
    ExpectNullRefused(
        "xunGetItemUnitSeq unitTag", [&] { return xunGetItemUnitSeq(100, 1, nullptr, &text); },
        "unitTag");
    ExpectNullRefused(
        "xunGetItemUnitSeq unitKey", [&] { return xunGetItemUnitSeq(100, 1, &tag, nullptr); },
        "unitKey");
    ExpectNullRefused(
        "xunGetFilteredItemTypeSeq key",
        [&] { return xunGetFilteredItemTypeSeq(1, 1, nullptr, &text); }, "key");
    ExpectNullRefused(
        "xunGetFilteredItemTypeSeq keyText",
        [&] { return xunGetFilteredItemTypeSeq(1, 1, &tag, nullptr); }, "keyText");
    ExpectNullRefused(
        "xunGetBaseUnit baseTag", [&] { return xunGetBaseUnit(1000, nullptr, &text); }, "baseTag");
    ExpectNullRefused(
        "xunGetBaseUnit baseKey", [&] { return xunGetBaseUnit(1000, &tag, nullptr); }, "baseKey");
    ExpectNullRefused(
        "xunGetNextUnit nextTag", [&] { return xunGetNextUnit(0, nullptr, &text); }, "nextTag");
    ExpectNullRefused(
        "xunGetNextUnit nextKey", [&] { return xunGetNextUnit(0, &tag, nullptr); }, "nextKey");
    ExpectNullRefused(
        "xunGetNextEqvUnit nextTag", [&] { return xunGetNextEqvUnit(1000, 0, nullptr, &text); },
        "nextTag");
    ExpectNullRefused(
        "xunGetNextEqvUnit nextKey", [&] { return xunGetNextEqvUnit(1000, 0, &tag, nullptr); },
        "nextKey");
    ExpectNullRefused(
        "xunGetItemFirstEqvUnit tag", [&] { return xunGetItemFirstEqvUnit(100, nullptr, &text); },
        "tag");
    ExpectNullRefused(
        "xunGetItemFirstEqvUnit key", [&] { return xunGetItemFirstEqvUnit(100, &tag, nullptr); },
        "key");
    // Nothing was written through the other pointers.
    EXPECT_EQ(tag, 7);
    EXPECT_EQ(text, kUntouched);
}

TEST_F(NullArguments, NumberOutputs) {
    int number = 7;
    double value = 7.0;
    double powers[7], factors[7];
    ExpectNullRefused(
        "xunGetUnitTagFromIdent tag", [] { return xunGetUnitTagFromIdent("UnitMeter", nullptr); },
        "tag");
    ExpectNullRefused(
        "xunGetItemTypeKeyFromIdent key",
        [] { return xunGetItemTypeKeyFromIdent("ItemWaterLevel", nullptr); }, "key");
    ExpectNullRefused(
        "xunGetFilterKeyFromIdent key",
        [] { return xunGetFilterKeyFromIdent("FilterHydro", nullptr); }, "key");
    ExpectNullRefused(
        "xunGetItemTypeParams decimals", [&] { return xunGetItemTypeParams(100, nullptr, &value); },
        "decimals");
    ExpectNullRefused(
        "xunGetItemTypeParams defaultValue",
        [&] { return xunGetItemTypeParams(100, &number, nullptr); }, "defaultValue");
    ExpectNullRefused(
        "xunGetItemUserUnit", [] { return xunGetItemUserUnit(100, nullptr); }, "unitTag");
    ExpectNullRefused(
        "xunUnitGetParameters factor",
        [&] { return xunUnitGetParameters(1000, nullptr, &value, powers, factors); }, "factor");
    ExpectNullRefused(
        "xunUnitGetParameters offset",
        [&] { return xunUnitGetParameters(1000, &value, nullptr, powers, factors); }, "offset");
    ExpectNullRefused(
        "xunUnitGetParameters powers",
        [&] { return xunUnitGetParameters(1000, &value, &value, nullptr, factors); }, "powers");
    ExpectNullRefused(
        "xunUnitGetParameters factors",
        [&] { return xunUnitGetParameters(1000, &value, &value, powers, nullptr); }, "factors");
    ExpectNullRefused(
        "xunConvertUnit", [] { return xunConvertUnit(1000, 1001, nullptr, 1.0); }, "result");
    ExpectNullRefused(
        "xunConvertUnitToBase", [] { return xunConvertUnitToBase(1000, nullptr, 1.0); }, "result");
    ExpectNullRefused(
        "xunConvertUnitFromBase", [] { return xunConvertUnitFromBase(1000, nullptr, 1.0); },
        "result");
    ExpectNullRefused(
        "xunConvertToUserUnit", [] { return xunConvertToUserUnit(100, 1001, nullptr, 1.0); },
        "result");
    ExpectNullRefused(
        "xunConvertFromUserUnit", [] { return xunConvertFromUserUnit(100, 1001, nullptr, 1.0); },
        "result");
    EXPECT_EQ(number, 7);
    EXPECT_EQ(value, 7.0);
}

TEST_F(NullArguments, NameSearchesWriteTheTagZero) {
    int tag = 7;
    ExpectNullRefused(
        "xunGetUnitTag name", [&] { return xunGetUnitTag(nullptr, &tag); }, "name");
    EXPECT_EQ(tag, 0);
    ExpectNullRefused(
        "xunGetUnitTag tag", [] { return xunGetUnitTag("meter", nullptr); }, "tag");
    tag = 7;
    ExpectNullRefused(
        "xunGetItemUnitTag name", [&] { return xunGetItemUnitTag(100, nullptr, &tag); }, "name");
    EXPECT_EQ(tag, 0);
    ExpectNullRefused(
        "xunGetItemUnitTag tag", [] { return xunGetItemUnitTag(100, "meter", nullptr); }, "tag");
    tag = 7;
    ExpectNullRefused(
        "xunParseUnit text", [&] { return xunParseUnit(nullptr, &tag); }, "text");
    EXPECT_EQ(tag, 0);
    ExpectNullRefused(
        "xunParseUnit tag", [] { return xunParseUnit("m", nullptr); }, "tag");
    tag = 7;
    ExpectNullRefused(
        "xunParseItemUnit text", [&] { return xunParseItemUnit(100, nullptr, &tag); }, "text");
    EXPECT_EQ(tag, 0);
    ExpectNullRefused(
        "xunParseItemUnit tag", [] { return xunParseItemUnit(100, "m", nullptr); }, "tag");
    ExpectNullRefused(
        "xunGetUnitTagFromIdent ident", [&] { return xunGetUnitTagFromIdent(nullptr, &tag); },
        "ident");
    ExpectNullRefused(
        "xunGetItemTypeKeyFromIdent ident",
        [&] { return xunGetItemTypeKeyFromIdent(nullptr, &tag); }, "ident");
    ExpectNullRefused(
        "xunGetFilterKeyFromIdent ident", [&] { return xunGetFilterKeyFromIdent(nullptr, &tag); },
        "ident");
}

TEST_F(NullArguments, DerivedUnits) {
    int key = 7;
    double factor = 7.0;
    ExpectNullRefused(
        "xunUnitPower matchKey", [&] { return xunUnitPower(1000, nullptr, &key, &factor, 2.0); },
        "matchKey");
    ExpectNullRefused(
        "xunUnitPower eqvKey", [&] { return xunUnitPower(1000, &key, nullptr, &factor, 2.0); },
        "eqvKey");
    ExpectNullRefused(
        "xunUnitPower factor", [&] { return xunUnitPower(1000, &key, &key, nullptr, 2.0); },
        "factor");
    ExpectNullRefused(
        "xunUnitMultiply", [&] { return xunUnitMultiply(1000, 1000, nullptr, &key, &factor); },
        "matchKey");
    ExpectNullRefused(
        "xunUnitDivide", [&] { return xunUnitDivide(1000, 1100, &key, &key, nullptr); }, "factor");
    ExpectNullRefused(
        "xunUnitGetIntegrationFactor",
        [&] { return xunUnitGetIntegrationFactor(1300, 1101, nullptr, &key, &factor); },
        "resultKey");
    ExpectNullRefused(
        "xunUnitGetDerivationFactor",
        [&] { return xunUnitGetDerivationFactor(1300, 1101, &key, nullptr, &factor); },
        "inverseKey");
    // Refused before anything is written.
    EXPECT_EQ(key, 7);
    EXPECT_EQ(factor, 7.0);
}

TEST_F(NullArguments, Arrays) {
    ExpectNullRefused(
        "xunConvertItemArrayD", [] { return xunConvertItemArrayD(1000, 1001, nullptr, 3, -1.0); },
        "values");
    ExpectNullRefused(
        "xunConvertItemArrayF", [] { return xunConvertItemArrayF(1000, 1001, nullptr, 3, -1.0f); },
        "values");
    ExpectNullRefused(
        "xunConvertItemArrayToUserUnitD",
        [] { return xunConvertItemArrayToUserUnitD(100, 1001, nullptr, 1, -1.0); }, "values");
    ExpectNullRefused(
        "xunConvertItemArrayToUserUnitF",
        [] { return xunConvertItemArrayToUserUnitF(100, 1001, nullptr, 1, -1.0f); }, "values");
    ExpectNullRefused(
        "xunConvertItemArrayFromUserUnitD",
        [] { return xunConvertItemArrayFromUserUnitD(100, 1001, nullptr, 1, -1.0); }, "values");
    ExpectNullRefused(
        "xunConvertItemArrayFromUserUnitF",
        [] { return xunConvertItemArrayFromUserUnitF(100, 1001, nullptr, 1, -1.0f); }, "values");
    // A null array with a count below 1 converts nothing and succeeds.
    xunClearLastError();
    EXPECT_EQ(xunConvertItemArrayD(1000, 1001, nullptr, 0, -1.0), 1);
    EXPECT_EQ(xunConvertItemArrayF(1000, 1001, nullptr, -4, -1.0f), 1);
    EXPECT_EQ(xunGetLastError(nullptr), XUN_OK);
}

TEST_F(NullArguments, Lists) {
    ExpectNullRefused(
        "xunUnitGetAll", [] { return xunUnitGetAll(nullptr); }, "list");
    ExpectNullRefused(
        "xunItemTypeGetAll", [] { return xunItemTypeGetAll(nullptr); }, "list");
    ExpectNullRefused(
        "xunFilterGetAll", [] { return xunFilterGetAll(nullptr); }, "list");
}

TEST_F(NullArguments, PathsAndVoidFunctions) {
    char buffer[260];
    ExpectNullRefused(
        "_fullpath", [] { return static_cast<long>(_fullpath(nullptr, "x", 260)); }, "absPath");
    ExpectNullRefused(
        "_splitpath",
        [&] { return static_cast<long>(_splitpath(buffer, buffer, nullptr, buffer, buffer)); },
        "dir");
    ExpectNullRefused(
        "_makepath",
        [&] { return static_cast<long>(_makepath(nullptr, buffer, buffer, buffer, buffer)); },
        "path");
    xunClearLastError();
    xunSetupGetPath(nullptr);
    EXPECT_EQ(xunGetLastError(nullptr), XUN_ERR_NULL_ARGUMENT);
    // Null parts of a made path print as the C library prints a null text.
    EXPECT_EQ(_makepath(buffer, nullptr, nullptr, const_cast<char*>("b"), nullptr), 13);
    EXPECT_STREQ(buffer, "(null)b(null)");
    // xunGetLastError takes a null message pointer.
    EXPECT_EQ(xunGetLastError(nullptr), XUN_ERR_NULL_ARGUMENT);
}

TEST_F(NullArguments, NullPathsMeanTheDefaultFile) {
    setenv("KORVANE_HOME", (Data() + "/setup/home").c_str(), 1);
    testing::internal::CaptureStdout();
    EXPECT_EQ(xunSetupLoad(nullptr), 1);
    EXPECT_EQ(xunSetupLoadLinux(nullptr), 1);
    xunLoadItemTypeTables(nullptr);
    testing::internal::GetCapturedStdout();
    const char* path = nullptr;
    xunSetupGetPath(&path);
    EXPECT_EQ(std::string(path), Data() + "/setup/home/bin/XUN.xml");
    // The default base-group file name is empty: nothing is loaded.
    xunClearLastError();
    LoadUnitBaseGroupFile(nullptr);
    EXPECT_EQ(xunGetLastError(nullptr), XUN_ERR_FILE);
    EXPECT_EQ(xunBaseGroupCheck(nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(xunSetupCheck(nullptr, nullptr, nullptr, nullptr), 0);
}

TEST_F(NullArguments, CreatingFunctionsThrowTheDesignedException) {
    const char* message = "basic_string::_M_construct null not valid";
    for (int i = 0; i < 4; ++i) {
        const char* args[4] = {"UnitNew", "new unit", "nu", "UnitMeter*2"};
        args[i] = nullptr;
        try {
            xunUnitNew(args[0], args[1], args[2], args[3]);
            ADD_FAILURE() << "xunUnitNew with argument " << i << " null did not throw";
        } catch (const std::logic_error& error) {
            EXPECT_STREQ(error.what(), message);
        }
    }
    for (int i = 0; i < 3; ++i) {
        const char* args[3] = {"ItemNew", "new item", "UnitMeter"};
        args[i] = nullptr;
        EXPECT_THROW(xunItemTypeNew(args[0], args[1], 0, args[2]), std::logic_error) << i;
    }
    EXPECT_THROW(xunFilterNew(nullptr, "x"), std::logic_error);
    EXPECT_THROW(xunFilterNew("FilterNew", nullptr), std::logic_error);
    // Nothing was created.
    int tag = 0;
    EXPECT_EQ(xunGetUnitTagFromIdent("UnitNew", &tag), 0);
    EXPECT_EQ(xunGetItemTypeCount(), 3);
    EXPECT_EQ(xunGetFilterCount(), 2);
}

} // namespace
