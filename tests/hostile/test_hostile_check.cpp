// The attack table, checks: what a load takes without a word, refuses or
// ends on, xunSetupCheck (and so `xun check`) reports, and the names that
// the include files of the four languages would carry as they are.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hostile_support.h"
#include "xun.h"

namespace {

using hostile::Check;
using hostile::CheckResult;
using hostile::HostileTest;

class HostileCheck : public HostileTest {};

const char kMeter[] = "<R Ident=\"UnitMeter\" KvId=\"1000\" Desc=\"meter\" Abbr=\"m\" "
                      "Expr=\"Length\"/>\n";

std::string Units(const std::string& rows) {
    return "<XUN>\n<Group Name=\"Units\"><Rows>\n" + rows + "</Rows></Group>\n";
}

// Values a load reads as something else or cannot use: Decimals beyond 32
// bits, a default value that is no finite number, a default unit whose
// dimension has NaN exponents (a load ends on it).
TEST_F(HostileCheck, ValuesALoadMisreadsOrEndsOnAreReported) {
    const std::string path = Write(
        "values.xml",
        Units(std::string(kMeter) + "<R Ident=\"UnitOdd\" KvId=\"1001\" Desc=\"odd\" Abbr=\"o\" "
                                    "Expr=\"UnitMeter^(0/0)\"/>\n") +
            "<Group Name=\"Items\"><Rows>\n"
            "<R Ident=\"ItemA\" KvId=\"100\" Desc=\"A\" Decimals=\"4294967299\" "
            "DefaultValue=\"nan\" DefaultUnit=\"UnitMeter\"/>\n"
            "<R Ident=\"ItemB\" KvId=\"101\" Desc=\"B\" DefaultValue=\"-inf\" "
            "DefaultUnit=\"UnitMeter\"/>\n"
            "<R Ident=\"ItemC\" KvId=\"102\" Desc=\"C\" DefaultUnit=\"UnitOdd\"/>\n"
            "</Rows></Group>\n</XUN>\n");
    const CheckResult check = Check(path);
    EXPECT_EQ(check.result, 1);
    EXPECT_EQ(check.lines,
              (std::vector<std::string>{
                  "7: [warning] Decimals '4294967299' reads as 3",
                  "7: [warning] DefaultValue 'nan' is not a finite number",
                  "8: [warning] DefaultValue '-inf' is not a finite number",
                  "9: [FATAL] item type 'ItemC': DefaultUnit 'UnitOdd' has the dimension L-nan "
                  "M-nan T-nan \u0398-nan I-nan N-nan J-nan, but the item type has L-nan M-nan "
                  "T-nan \u0398-nan I-nan N-nan J-nan; loading would stop"}));
}

// Idents that are no valid constant names in C, Pascal, Fortran or C#, texts
// that break the comments beside them, and idents that name the same
// constant as another's.
TEST_F(HostileCheck, NamesTheIncludeFilesCannotCarryAreReported) {
    const std::string path = Write(
        "names.xml",
        Units(std::string(kMeter) +
              "<R Ident=\"Unit&#10;#include &quot;evil.h&quot;\" KvId=\"1001\" Desc=\"a\" "
              "Expr=\"UnitMeter*2\"/>\n"
              "<R Ident=\"2Fast\" KvId=\"1002\" Desc=\"b\" Expr=\"UnitMeter*3\"/>\n"
              "<R Ident=\"Unit-X\" KvId=\"1003\" Desc=\"c\" Expr=\"UnitMeter*4\"/>\n"
              "<R Ident=\"_Under\" KvId=\"1004\" Desc=\"d\" Expr=\"UnitMeter*5\"/>\n"
              "<R Ident=\"BEGIN\" KvId=\"1005\" Desc=\"e\" Expr=\"UnitMeter*6\"/>\n"
              "<R Ident=\"int\" KvId=\"1006\" Desc=\"f\" Expr=\"UnitMeter*7\"/>\n"
              "<R Ident=\"itemlevel\" KvId=\"1007\" Desc=\"g */ h\" Expr=\"UnitMeter*8\"/>\n"
              "<R Ident=\"UnitLong\" KvId=\"1008\" Desc=\"i&#10;j\" Expr=\"UnitMeter*9\"/>\n") +
            "<Group Name=\"Items\"><Rows>\n"
            "<R Ident=\"ItemLevel\" KvId=\"100\" Desc=\"Level *) x\" Decimals=\"2\" "
            "DefaultValue=\"0\" DefaultUnit=\"UnitMeter\"/>\n"
            "</Rows></Group>\n"
            "<Group Name=\"Filters\"><Rows>\n"
            "<R Ident=\"UnitMeter\" KvId=\"0x1\" Desc=\"F\" Items=\"ItemLevel\"/>\n"
            "</Rows></Group>\n</XUN>\n");
    const CheckResult check = Check(path);
    EXPECT_EQ(check.result, 0);
    const std::string carried = "; the include files would carry it as it is";
    const std::string all = "not a valid constant name in C, Pascal, Fortran and C#: ";
    EXPECT_EQ(
        check.lines,
        (std::vector<std::string>{
            "14: [warning] item type 'ItemLevel': the description 'Level *) x' contains '*)', "
            "which ends the comment of the Pascal include file",
            "4: [warning] unit 'Unit\\n#include \"evil.h\"': the ident is " + all +
                "it contains a line break" + carried,
            "5: [warning] unit '2Fast': the ident is " + all + "it starts with a digit" + carried,
            "6: [warning] unit 'Unit-X': the ident is " + all + "it contains '-'" + carried,
            "7: [warning] unit '_Under': the ident is not a valid constant name in Fortran: it "
            "starts with '_'" +
                carried,
            "8: [warning] unit 'BEGIN': the ident is not a valid constant name in Pascal: it is a "
            "keyword" +
                carried,
            "9: [warning] unit 'int': the ident is not a valid constant name in C and C#: it is a "
            "keyword" +
                carried,
            "10: [warning] unit 'itemlevel': the description 'g */ h' contains '*/', which ends "
            "the comment of the C include file",
            "10: [warning] unit 'itemlevel': the ident names the same constant as item type "
            "'ItemLevel' (line 14) in the Pascal and Fortran include files, which ignore case",
            "11: [warning] unit 'UnitLong': the description 'i\\nj' contains a line break, which "
            "ends the comments of the Fortran and C# include files",
            "17: [warning] filter 'UnitMeter': the ident names the same constant as unit "
            "'UnitMeter' (line 3) in the C, Pascal and Fortran include files"}));
    // Names within the rules give no warning: the installation's own.
    EXPECT_EQ(Check(hostile::Data() + "/../../data/bin/XUN.xml").lines.size(), 0u);
}

} // namespace
