// xun report --html FILE: one self-contained page to browse an
// installation: item types by filter with their allowed units, every unit
// with its names and definition, a search box and a converter.
//
// The page holds the tables as JSON (what xun show --json writes for each
// unit, item type and filter) and draws itself from them with the script
// of ReportPage.cpp; it loads nothing from elsewhere.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "Json.h"
#include "Location.h"
#include "Names.h"
#include "Output.h"
#include "ReportPage.h"
#include "Show.h"
#include "xun.h"

namespace xuntool {

namespace {

// The tables of the loaded installation.
Json CollectTables(const DataLocation& location) {
    Json units = Json::array();
    int tag = 0;
    const char* desc = nullptr;
    for (int previous = 0; xunGetNextUnit(previous, &tag, &desc); previous = tag)
        ShowUnit(tag, &units);
    Json items = Json::array();
    const int itemCount = xunGetItemTypeCount();
    for (int seq = 1; seq <= itemCount; ++seq) {
        int key = 0;
        if (xunGetItemTypeSeq(seq, &key, &desc))
            ShowItemType(key, &items);
    }
    Json filters = Json::array();
    const int filterCount = xunGetFilterCount();
    for (int seq = 1; seq <= filterCount; ++seq) {
        int bit = 0;
        if (xunGetFilterSeq(seq, &bit, &desc))
            ShowFilter(bit, &filters);
    }
    Json tables{{"version", xunVersion()},
                {"setup", JsonText(location.setupFile)},
                {"units", units},
                {"itemTypes", items},
                {"filters", filters}};
    return tables;
}

// JSON inside a script element: '<' written as \u003c, so that no text of
// the tables can end the element or open a comment.
std::string ScriptJson(const Json& document) {
    const std::string text = document.dump();
    std::string safe;
    safe.reserve(text.size());
    for (char c : text) {
        if (c == '<')
            safe += "\\u003c";
        else
            safe += c;
    }
    return safe;
}

} // namespace

int RunReport(const Invocation& call) {
    if (!call.Has("--html"))
        return UsageError(call.command, "report needs --html FILE");
    const std::string file = call.Value("--html");
    if (file.empty())
        return UsageError(call.command, "option '--html' needs a file name");
    DataLocation location;
    int status = kExitOk;
    if (!LoadData(call, location, status))
        return status;
    const std::string page = ReportPage(ScriptJson(CollectTables(location)));
    std::FILE* out = std::fopen(file.c_str(), "wb");
    if (out == nullptr)
        return Fail(kExitFailed, "cannot write '" + Printable(file) + "': " + std::strerror(errno));
    const bool written = std::fwrite(page.data(), 1, page.size(), out) == page.size();
    if (std::fclose(out) != 0 || !written)
        return Fail(kExitFailed, "cannot write '" + Printable(file) + "'");
    return kExitOk;
}

} // namespace xuntool
