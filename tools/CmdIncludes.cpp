// xun includes: the include files and the allowed-units report; xun where:
// which data the other commands use.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "Location.h"
#include "Output.h"
#include "xun.h"

namespace xuntool {

namespace {

const char* const kWrittenFiles[] = {"xunDefine.c__", "xunDefine.f__", "xunDefine.p__",
                                     "xunDefine.cs", "xunAllowedUnits.HTML"};

} // namespace

int RunIncludes(const Invocation& call) {
    DataLocation location;
    int status = kExitOk;
    if (!LoadData(call, location, status))
        return status;

    const std::string out = call.Value("--out");
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
    // The library's writer ends the process when it cannot open one of its
    // files: each of them is opened here first, so that it can say which
    // one and why.
    for (const char* name : kWrittenFiles) {
        std::FILE* file = std::fopen(name, "a");
        if (file == nullptr)
            return Fail(kExitFailed,
                        "cannot write '" + JoinPath(out, name) + "': " + std::strerror(errno));
        std::fclose(file);
    }
    xunWriteItemTypeIncludes();
    for (const char* name : kWrittenFiles)
        std::printf("%s\n", JoinPath(out, name).c_str());
    return kExitOk;
}

int RunWhere(const Invocation& call) {
    DataLocation location;
    std::string error;
    if (!ResolveLocation(call, "", location, error))
        return Fail(kExitFailed, error);
    std::printf("setup file: %s\n", location.setupFile.c_str());
    std::printf("language files: %s\n",
                location.home.empty() ? "(none)" : (location.home + "/bin").c_str());
    return kExitOk;
}

} // namespace xuntool
