// The attack table, XML: documents that expand far beyond their size or
// nest or spread without bound. Each is refused at the point where it
// passes a bound of the XML layer (common/Contract.h), through the designed
// failure path - "Document '...' not parsed successfully." on standard
// error, result 0, nothing registered - with XUN_ERR_LIMIT and the bound in
// the message, and xunSetupCheck names the bound. Documents within the
// bounds load as before.
#include <gtest/gtest.h>

#include <string>

#include "common/Contract.h"
#include "hostile_support.h"
#include "registry_access.h"
#include "xun.h"

namespace {

using hostile::Check;
using hostile::CheckResult;
using hostile::HostileTest;
using hostile::Load;
using hostile::LoadResult;

using namespace xun::contract;

class HostileXml : public HostileTest {
  protected:
    // A load refused by a bound of the XML layer.
    void ExpectRefused(const std::string& path, const std::string& reason) {
        const LoadResult load = Load(path);
        EXPECT_EQ(load.result, 0);
        EXPECT_EQ(load.err, "Document '" + path + "' not parsed successfully. \n");
        EXPECT_EQ(load.code, XUN_ERR_LIMIT);
        EXPECT_NE(load.message.find(reason), std::string::npos) << load.message;
        EXPECT_EQ(xuntest::Registries().units.Count(), 0u);
        const CheckResult check = Check(path);
        EXPECT_EQ(check.result, -1);
        EXPECT_EQ(check.code, XUN_ERR_LIMIT);
        ASSERT_EQ(check.lines.size(), 1u);
        EXPECT_NE(check.lines[0].find("[message] "), std::string::npos) << check.lines[0];
        EXPECT_NE(check.lines[0].find(reason), std::string::npos) << check.lines[0];
        const std::string end = "; a load refuses the file";
        EXPECT_EQ(check.lines[0].compare(check.lines[0].size() - end.size(), end.size(), end), 0)
            << check.lines[0];
    }
};

std::string Repeat(const std::string& text, size_t count) {
    std::string repeated;
    repeated.reserve(text.size() * count);
    for (size_t i = 0; i < count; ++i)
        repeated += text;
    return repeated;
}

const std::string kTenKilobyteEntity =
    "<!DOCTYPE XUN [<!ENTITY e \"" + std::string(10000, 'x') + "\">]>\n";
const std::string kMeter =
    "<R Ident=\"UnitMeter\" KvId=\"1000\" Desc=\"meter\" Expr=\"Length\"/>\n";

// One internal entity of 10 KB used 40,000 times in one attribute: 130 KB
// that would expand to 400 million characters (several GB in memory). The
// parser builds an attribute value whole before anything sees it, so the
// bound on the parser's memory refuses it, at 64 MiB.
TEST_F(HostileXml, EntityExpandedIntoOneAttributeIsRefused) {
    const std::string path =
        Write("one_attribute.xml", kTenKilobyteEntity + "<XUN><Group Name=\"Units\"><Rows>\n" +
                                       kMeter + "<R Ident=\"UnitBig\" KvId=\"1001\" Desc=\"" +
                                       Repeat("&e;", 40000) +
                                       "\" Expr=\"UnitMeter\"/>\n</Rows></Group></XUN>\n");
    ExpectRefused(path, "the XML parser needs more than " + std::to_string(kXmlMemoryFloor) +
                            " bytes for the document");
}

// The same entity in 300 rows: 3 million characters, beyond the text bound
// of a 21 KB file (the larger of 1 MiB and 8 per byte).
TEST_F(HostileXml, EntityInManyAttributesIsRefusedByTheTextBound) {
    std::string rows = kMeter;
    for (int k = 1; k <= 300; ++k)
        rows += "<R Ident=\"U" + std::to_string(k) + "\" KvId=\"" + std::to_string(1000 + k) +
                "\" Desc=\"&e;\" Expr=\"UnitMeter\"/>\n";
    const std::string path =
        Write("many_attributes.xml", kTenKilobyteEntity + "<XUN><Group Name=\"Units\"><Rows>\n" +
                                         rows + "</Rows></Group></XUN>\n");
    ExpectRefused(path, "the text of the document after entity expansion passes " +
                            std::to_string(kXmlTextFloor) + " characters");
}

// In content the expansion reaches the document piece by piece: the text
// bound stops it early.
TEST_F(HostileXml, EntityInContentIsRefusedByTheTextBound) {
    const std::string path =
        Write("content.xml", kTenKilobyteEntity + "<XUN><Note>" + Repeat("&e;", 40000) +
                                 "</Note><Group Name=\"Units\"><Rows>\n" + kMeter +
                                 "</Rows></Group></XUN>\n");
    ExpectRefused(path, "the text of the document after entity expansion passes");
}

// Default attributes multiply without any entity: a 1,000-character default
// on 20,000 rows is 20 million characters from a 100 KB file.
TEST_F(HostileXml, DefaultAttributesAreCountedToo) {
    const std::string path =
        Write("defaults.xml", "<!DOCTYPE XUN [<!ATTLIST R Alias CDATA \"" + std::string(1000, 'a') +
                                  "\">]>\n<XUN><Group Name=\"Units\"><Rows>\n" + kMeter +
                                  Repeat("<R/>", 20000) + "</Rows></Group></XUN>\n");
    ExpectRefused(path, "the text of the document after entity expansion passes");
}

// The classic nested expansion (ten levels of ten references) passes the
// count of expansions.
TEST_F(HostileXml, NestedExpansionIsRefusedByTheCount) {
    ExpectRefused(hostile::Data() + "/xml/entity_bomb.xml",
                  "the document expands more than " + std::to_string(kXmlEntityExpansionLimit) +
                      " entity references");
}

// Entities within the bounds expand as they always did.
TEST_F(HostileXml, ExpansionWithinTheBoundsLoads) {
    std::string rows = kMeter;
    for (int k = 1; k <= 50; ++k)
        rows += "<R Ident=\"U" + std::to_string(k) + "\" KvId=\"" + std::to_string(1000 + k) +
                "\" Desc=\"&e;\" Expr=\"UnitMeter\"/>\n";
    const std::string path =
        Write("within.xml", kTenKilobyteEntity + "<XUN><Group Name=\"Units\"><Rows>\n" + rows +
                                "</Rows></Group></XUN>\n");
    const LoadResult load = Load(path);
    ASSERT_EQ(load.result, 1) << load.message;
    EXPECT_EQ(load.err, "");
    ASSERT_NE(xuntest::UnitByKey(1050), nullptr);
    EXPECT_EQ(xuntest::UnitByKey(1050)->m_strDesc, std::string(10000, 'x'));
    EXPECT_EQ(Check(path).result, 0);
}

// 100,000 nested elements (700 KB): refused at the 257th level, at once
// (the parser's time per element grows with the depth).
TEST_F(HostileXml, DeepNestingIsRefused) {
    const std::string path =
        Write("deep.xml", "<XUN>" + Repeat("<a>", 100000) + Repeat("</a>", 100000) + "</XUN>\n");
    ExpectRefused(path, "element 'a' is nested 257 levels deep; the limit is 256");
}

// Rows 256 levels deep load: the groups are found at any depth.
TEST_F(HostileXml, NestingUpToTheLimitLoads) {
    // XUN, 252 wrappers, Group, Rows, R: R is at level 256.
    const std::string path =
        Write("deep_enough.xml", "<XUN>" + Repeat("<a>", 252) + "<Group Name=\"Units\"><Rows>" +
                                     kMeter + "</Rows></Group>" + Repeat("</a>", 252) + "</XUN>\n");
    const LoadResult load = Load(path);
    ASSERT_EQ(load.result, 1) << load.message;
    EXPECT_NE(xuntest::UnitByKey(1000), nullptr);
}

// One element with 100,000 attributes (1.5 MB): refused before the document
// takes it (the document builder's time is quadratic in them).
TEST_F(HostileXml, ManyAttributesAreRefused) {
    std::string attributes;
    for (int k = 0; k < 100000; ++k)
        attributes += " a" + std::to_string(k) + "=\"1\"";
    const std::string path =
        Write("attributes.xml", "<XUN><Group Name=\"Units\"" + attributes + "><Rows>" + kMeter +
                                    "</Rows></Group></XUN>\n");
    ExpectRefused(path, "element 'Group' has 100001 attributes; the limit is 256");
}

TEST_F(HostileXml, AttributesUpToTheLimitLoad) {
    std::string attributes;
    for (int k = 0; k < 251; ++k)
        attributes += " a" + std::to_string(k) + "=\"1\"";
    // Ident, KvId, Desc, Expr and Abbr: 256 in all.
    const std::string path =
        Write("attributes_enough.xml", "<XUN><Group Name=\"Units\"><Rows><R Ident=\"UnitMeter\" "
                                       "KvId=\"1000\" Desc=\"meter\" Expr=\"Length\" Abbr=\"m\"" +
                                           attributes + "/></Rows></Group></XUN>\n");
    const LoadResult load = Load(path);
    ASSERT_EQ(load.result, 1) << load.message;
    EXPECT_NE(xuntest::UnitByKey(1000), nullptr);
}

} // namespace
