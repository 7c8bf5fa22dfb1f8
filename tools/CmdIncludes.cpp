// xun includes: the include files and the allowed-units report; xun where:
// which data the other commands use.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "Common.h"
#include "Output.h"
#include "xun.h"

namespace xuntool {

namespace {

const char* const kWrittenFiles[] = {"xunDefine.c__", "xunDefine.f__", "xunDefine.p__",
                                     "xunDefine.cs", "xunAllowedUnits.HTML"};

} // namespace

int RunIncludes(const Args& args) {
    ParsedArgs parsed;
    int status = kExitOk;
    if (!ParseCommand("includes", args, {{"--out", true}}, 0, 0, parsed, status))
        return status;
    const std::string out = parsed.Value("--out");
    if (parsed.Has("--out") && out.empty())
        return UsageError("includes", "option '--out' needs a directory");
    DataLocation location;
    if (!LoadData("includes", parsed, location, status))
        return status;

    if (!out.empty()) {
        struct stat info;
        if (::stat(out.c_str(), &info) != 0 && ::mkdir(out.c_str(), 0777) != 0)
            return Fail(kExitFailed,
                        "cannot make directory '" + out + "': " + std::strerror(errno));
        if (::chdir(out.c_str()) != 0)
            return Fail(kExitFailed,
                        "cannot enter directory '" + out + "': " + std::strerror(errno));
    }
    const std::string where = out.empty() ? "the current directory" : "'" + out + "'";
    if (::access(".", W_OK) != 0)
        return Fail(kExitFailed, "cannot write into " + where + ": " + std::strerror(errno));
    // A file that cannot be opened stops the library's writer.
    SetStopContext("cannot write the include files into " + where);
    xunWriteItemTypeIncludes();
    SetStopContext("the library stopped");
    for (const char* name : kWrittenFiles)
        std::printf("%s\n", out.empty() ? name : JoinPath(out, name).c_str());
    return kExitOk;
}

int RunWhere(const Args& args) {
    ParsedArgs parsed;
    int status = kExitOk;
    if (!ParseCommand("where", args, {}, 0, 0, parsed, status))
        return status;
    DataLocation location;
    std::string error;
    if (!ResolveLocation(parsed, "", location, error))
        return Fail(kExitFailed, error);
    std::printf("setup file: %s\n", location.setupFile.c_str());
    std::printf("language files: %s\n",
                location.home.empty() ? "(none)" : (location.home + "/bin").c_str());
    return kExitOk;
}

} // namespace xuntool
