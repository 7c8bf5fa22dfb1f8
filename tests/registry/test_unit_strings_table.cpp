// Every line of the table of unit strings (tests/data/unit-strings.txt)
// through xunParseUnit over the default installation: the unit, the meaning
// or the failure it expects; and every unit of the installation in the
// table with its text in each notation, as xunGetUnitText writes it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "unit_strings_table.h"
#include "units/KVdim.h"
#include "xun.h"

namespace {

void LoadDefaultInstallation() {
    setenv("KORVANE_HOME", (std::string(std::getenv("XUN_TEST_DATA")) + "/../../data").c_str(), 1);
    testing::internal::CaptureStdout();
    xunLoadItemTypeTables("");
    testing::internal::GetCapturedStdout();
}

std::string Ident(int tag) {
    const char* ident = nullptr;
    return xunGetUnitIdent(tag, &ident) == 1 ? ident : "?";
}

const std::map<std::string, int> kCodes = {
    {"EXPRESSION", XUN_ERR_EXPRESSION}, {"NOT_FOUND", XUN_ERR_NOT_FOUND},
    {"LIMIT", XUN_ERR_LIMIT},           {"NO_REAL_UNIT", XUN_ERR_NO_REAL_UNIT},
    {"TAKEN", XUN_ERR_TAKEN},           {"DIMENSION", XUN_ERR_DIMENSION}};

// What the case expects against what xunParseUnit did: "" when they agree.
std::string Check(const xuntest::UnitStringCase& c) {
    int tag = -1;
    const int ok = xunParseUnit(c.text.c_str(), &tag);
    const char* message = nullptr;
    const int code = ok ? XUN_OK : xunGetLastError(&message);
    if (c.kind == '!') {
        if (ok)
            return "resolves to " + Ident(tag) + ", expected a failure";
        if (tag != 0)
            return "a failure left the tag " + std::to_string(tag);
        const auto wanted = kCodes.find(c.code);
        if (wanted == kCodes.end())
            return "unknown code " + c.code;
        if (code != wanted->second)
            return "fails with code " + std::to_string(code) + " (" + message + "), expected " +
                   c.code;
        if (std::string(message).find(c.message) == std::string::npos)
            return std::string("fails with '") + message + "', expected '" + c.message + "'";
        return "";
    }
    if (!ok)
        return std::string("fails: ") + message;
    if (c.kind == '=')
        return Ident(tag) == c.ident ? "" : "resolves to " + Ident(tag) + ", expected " + c.ident;
    double factor = 0, offset = 0, powers[7], factors[7];
    xunUnitGetParameters(tag, &factor, &offset, powers, factors);
    const std::string dimension = xunDimensionText_(
        CKVdimension(powers[0], powers[1], powers[2], powers[3], powers[4], powers[5], powers[6]));
    std::string problem;
    if (!(std::fabs(factor - c.factor) <= 1e-12 * std::fabs(c.factor)))
        problem += "factor " + std::to_string(factor) + " ";
    if (!(std::fabs(offset - c.offset) <= 1e-12 * std::max(std::fabs(c.offset), std::fabs(factor))))
        problem += "offset " + std::to_string(offset) + " ";
    if (dimension != c.dimension)
        problem += "dimension " + dimension + " ";
    return problem.empty() ? "" : problem + "(" + Ident(tag) + ")";
}

TEST(UnitStringTable, EveryLineResolvesAsItSays) {
    LoadDefaultInstallation();
    std::string error;
    const std::vector<xuntest::UnitStringCase> cases = xuntest::ReadUnitStringTable(error);
    ASSERT_EQ(error, "");
    EXPECT_GE(cases.size(), 400u);
    std::map<char, int> kinds;
    for (const xuntest::UnitStringCase& c : cases) {
        EXPECT_EQ(Check(c), "") << "unit-strings.txt:" << c.line << ": '" << c.written << "'";
        ++kinds[c.kind];
    }
    std::printf("%zu lines: %d registered units, %d meanings, %d failures\n", cases.size(),
                kinds['='], kinds['~'], kinds['!']);
}

// The table lists every unit of the installation with the text of each
// notation; a unit added to the installation must be added here (the
// failure prints its lines).
TEST(UnitStringTable, EveryUnitHasItsTextInEachNotation) {
    LoadDefaultInstallation();
    std::string error;
    const std::vector<xuntest::UnitStringCase> cases = xuntest::ReadUnitStringTable(error);
    ASSERT_EQ(error, "");
    // (ident, notation) -> the text the table gives.
    std::map<std::pair<std::string, std::string>, std::string> listed;
    for (const xuntest::UnitStringCase& c : cases) {
        for (const char* notation : {"cf", "ascii", "unicode"})
            if (c.Has(notation))
                listed[{c.ident, notation}] = c.text;
        if (!c.Note("cf-of").empty())
            listed[{c.Note("cf-of"), "cf"}] = c.text;
    }
    const std::pair<const char*, int> notations[] = {
        {"cf", XUN_NOTATION_CF}, {"ascii", XUN_NOTATION_ASCII}, {"unicode", XUN_NOTATION_UNICODE}};
    int tag = 0;
    const char* key = nullptr;
    std::string missing;
    for (int previous = 0; xunGetNextUnit(previous, &tag, &key) == 1; previous = tag) {
        const std::string ident = Ident(tag);
        for (const auto& notation : notations) {
            const char* text = nullptr;
            ASSERT_EQ(xunGetUnitText(tag, notation.second, &text), 1);
            const auto found = listed.find({ident, notation.first});
            if (found == listed.end())
                missing += std::string(text) + "\t= " + ident + "\t" + notation.first + "\n";
            else
                EXPECT_EQ(found->second, text) << ident << " " << notation.first;
        }
    }
    EXPECT_EQ(missing, "") << "add these lines to tests/data/unit-strings.txt";
}

} // namespace
