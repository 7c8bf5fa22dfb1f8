// End-to-end tests of xun report's command line; the page itself is tested
// in a browser by test_report_html.py.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "tools/tool_runner.h"

using xuntest::Xun;

namespace {

TEST(ToolReport, NeedsAnHtmlFile) {
    EXPECT_TOOL(Xun({"--home", "home", "report"}), 2, "",
                "xun: report needs --html FILE\nTry 'xun report --help'.\n");
    EXPECT_TOOL(Xun({"--home", "home", "report", "--html="}), 2, "",
                "xun: option '--html' needs a file name\nTry 'xun report --help'.\n");
}

TEST(ToolReport, UnwritableFile) {
    EXPECT_TOOL(Xun({"--home", "home", "report", "--html", "no/such/dir/page.html"}), 1, "",
                "xun: cannot write 'no/such/dir/page.html': No such file or directory\n");
}

// The page holds the tables as JSON in a script element, where no text of
// the tables may end the element.
TEST(ToolReport, WritesOnePage) {
    const std::string dir = xuntest::MakeTempDir();
    ASSERT_FALSE(dir.empty());
    // A description that would end the script element and open a comment.
    std::ifstream original(xuntest::FixtureDir() + "/home/bin/XUN.xml");
    std::stringstream setupText;
    setupText << original.rdbuf();
    std::string setup = setupText.str();
    const std::string foot = "Desc=\"foot\"";
    ASSERT_NE(setup.find(foot), std::string::npos);
    setup.replace(setup.find(foot), foot.size(), "Desc=\"foot &lt;/script&gt;&lt;!--\"");
    const std::string setupFile = dir + "/XUN.xml";
    std::ofstream(setupFile) << setup;
    const std::string file = dir + "/units.html";
    EXPECT_TOOL(Xun({"--setup", setupFile, "report", "--html", file}), 0, "", "");
    std::ifstream in(file);
    std::stringstream text;
    text << in.rdbuf();
    const std::string page = text.str();
    EXPECT_EQ(page.compare(0, 15, "<!DOCTYPE html>"), 0);
    const std::string open = "<script type=\"application/json\" id=\"xun-tables\">";
    const size_t begin = page.find(open);
    ASSERT_NE(begin, std::string::npos);
    const size_t end = page.find("</script>", begin);
    ASSERT_NE(end, std::string::npos);
    const std::string json = page.substr(begin + open.size(), end - begin - open.size());
    EXPECT_TRUE(xuntest::IsValidJson(json));
    EXPECT_EQ(json.find('<'), std::string::npos);
    EXPECT_NE(json.find("\"ident\":\"UnitFoot\""), std::string::npos);
    EXPECT_NE(json.find("\"description\":\"foot \\u003c/script>\\u003c!--\""), std::string::npos);
    EXPECT_NE(json.find("\"factor\":0.3048"), std::string::npos);
    EXPECT_NE(json.find("\"ident\":\"FilterHydrology\""), std::string::npos);
    std::remove(file.c_str());
    std::remove(setupFile.c_str());
    std::remove(dir.c_str());
}

} // namespace
