#include "Location.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

#include "Output.h"
#include "xun.h"

#ifndef XUN_INSTALLED_DATA_DIR
#error "XUN_INSTALLED_DATA_DIR must name the installed data directory"
#endif
#ifndef XUN_SOURCE_DATA_DIR
#error "XUN_SOURCE_DATA_DIR must name the repository's data directory"
#endif
#ifndef XUN_BUILD_DIR
#error "XUN_BUILD_DIR must name the build tree"
#endif

namespace xuntool {

namespace {

bool IsFile(const std::string& path) {
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string RealPath(const std::string& path) {
    char resolved[PATH_MAX];
    if (::realpath(path.c_str(), resolved) == nullptr)
        return "";
    return resolved;
}

// Whether this program runs from the build tree it was compiled in.
bool RunsFromBuildTree() {
    const std::string exe = RealPath("/proc/self/exe");
    const std::string build = RealPath(XUN_BUILD_DIR);
    return !exe.empty() && !build.empty() && exe.compare(0, build.size() + 1, build + "/") == 0;
}

// The installed data directory: XUN_INSTALLED_DATA_DIR, which is relative to
// the directory of this program unless it is absolute.
std::string InstalledDataDir() {
    const std::string dir = XUN_INSTALLED_DATA_DIR;
    if (!dir.empty() && dir[0] == '/')
        return dir;
    const std::string exe = RealPath("/proc/self/exe");
    if (exe.empty())
        return "";
    const std::string bin = exe.substr(0, exe.rfind('/'));
    return RealPath(bin + "/" + dir);
}

std::string WithoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path[path.size() - 1] == '/')
        path.erase(path.size() - 1);
    return path;
}

std::string FindHome(const Invocation& call) {
    if (call.Has("--home"))
        return WithoutTrailingSlashes(call.Value("--home"));
    const char* env = std::getenv("KORVANE_HOME");
    if (env != nullptr && env[0] != '\0')
        return env;
    // A setup file of one's own goes with no other installation's language
    // files, whose keys it would not match.
    if (call.Has("--setup"))
        return "";
    const std::string installed = InstalledDataDir();
    if (!installed.empty() && IsFile(installed + "/bin/XUN.xml"))
        return installed;
    if (RunsFromBuildTree() && IsFile(std::string(XUN_SOURCE_DATA_DIR) + "/bin/XUN.xml"))
        return XUN_SOURCE_DATA_DIR;
    return "";
}

// Sends standard output to standard error while it lives.
class StdoutToStderr {
  public:
    StdoutToStderr() {
        std::fflush(stdout);
        m_saved = ::dup(1);
        if (m_saved >= 0)
            ::dup2(2, 1);
    }
    ~StdoutToStderr() {
        std::fflush(stdout);
        if (m_saved >= 0) {
            ::dup2(m_saved, 1);
            ::close(m_saved);
        }
    }
    StdoutToStderr(const StdoutToStderr&) = delete;
    StdoutToStderr& operator=(const StdoutToStderr&) = delete;

  private:
    int m_saved;
};

// The first problems that the check of a load reports: the first of all,
// and the first that would end the process.
struct FirstProblems {
    std::string any;
    std::string fatal;

    static void Remember(void* user, const char* file, int line, int severity,
                         const char* message) {
        FirstProblems& first = *static_cast<FirstProblems*>(user);
        if (first.any.empty())
            first.any = message;
        if (severity == XUN_CHECK_FATAL && first.fatal.empty())
            first.fatal = ProblemText(file, line, message);
    }
};

} // namespace

std::string ProblemText(const char* file, int line, const std::string& message) {
    std::string text = file != nullptr ? file : "";
    if (line > 0)
        text += ":" + std::to_string(line);
    return text + ": " + message;
}

std::string LibraryReason() {
    const char* message = nullptr;
    xunGetLastError(&message);
    std::string reason = message != nullptr ? message : "";
    // Messages start with the function's name: "xunSetupCheck: ...".
    const size_t colon = reason.find(": ");
    if (reason.compare(0, 3, "xun") == 0 && colon != std::string::npos && reason.find(' ') > colon)
        reason.erase(0, colon + 2);
    return reason.empty() ? "the library gives no reason" : reason;
}

std::string DirectoryOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return "";
    if (slash == 0)
        return "/";
    return path.substr(0, slash);
}

std::string JoinPath(const std::string& dir, const std::string& name) {
    if (dir.empty())
        return name;
    if (dir[dir.size() - 1] == '/')
        return dir + name;
    return dir + "/" + name;
}

bool ResolveLocation(const Invocation& call, const std::string& setupArgument,
                     DataLocation& location, std::string& error) {
    location.home = FindHome(call);
    if (!setupArgument.empty() || call.Has("--setup")) {
        location.setupFile = !setupArgument.empty() ? setupArgument : call.Value("--setup");
        location.setupGiven = true;
        if (location.setupFile.empty()) {
            error = "the setup file name is empty";
            return false;
        }
        return true;
    }
    if (location.home.empty()) {
        error = "no installation found: give --home DIR or --setup FILE, or set KORVANE_HOME";
        return false;
    }
    location.setupFile = location.home + "/bin/XUN.xml";
    return true;
}

int CheckReadable(const std::string& file) {
    // Nothing is opened here: opening a FIFO waits for a writer. The library
    // reads regular files only, and says why it refuses anything else.
    struct stat status;
    if (::stat(file.c_str(), &status) != 0)
        return Fail(kExitFailed, "cannot read setup file '" + file + "': " + std::strerror(errno));
    if (S_ISDIR(status.st_mode))
        return Fail(kExitFailed, "cannot read setup file '" + file + "': it is a directory");
    if (!S_ISREG(status.st_mode))
        return Fail(kExitFailed, "cannot read setup file '" + file +
                                     "': it is not a regular file (" +
                                     (S_ISFIFO(status.st_mode)  ? "a FIFO or pipe"
                                      : S_ISCHR(status.st_mode) ? "a character device"
                                      : S_ISBLK(status.st_mode) ? "a block device"
                                                                : "a socket") +
                                     ")");
    if (::access(file.c_str(), R_OK) != 0)
        return Fail(kExitFailed, "cannot read setup file '" + file + "': " + std::strerror(errno));
    return kExitOk;
}

int LoadLocation(const DataLocation& location) {
    const std::string& file = location.setupFile;
    if (int status = CheckReadable(file))
        return status;
    // The library reads the language files from $KORVANE_HOME/bin.
    if (!location.home.empty())
        ::setenv("KORVANE_HOME", location.home.c_str(), 1);
    else
        ::unsetenv("KORVANE_HOME");
    const std::string langDir = location.home + "/bin";
    FirstProblems first;
    const int fatal = xunSetupCheck(file.c_str(), location.home.empty() ? nullptr : langDir.c_str(),
                                    &FirstProblems::Remember, &first);
    if (fatal < 0)
        return Fail(kExitFailed, "cannot load setup file '" + file +
                                     "': " + (first.any.empty() ? LibraryReason() : first.any));
    if (fatal > 0)
        return Fail(kExitFailed, "cannot load '" + file + "': " + first.fatal);
    {
        StdoutToStderr redirect;
        xunLoadItemTypeTables(location.setupGiven ? file.c_str() : "");
    }
    const char* loaded = nullptr;
    xunSetupGetPath(&loaded);
    if (loaded == nullptr || loaded[0] == '\0')
        return Fail(kExitFailed, "cannot load setup file '" + file + "': " + LibraryReason());
    return kExitOk;
}

bool LoadData(const Invocation& call, DataLocation& location, int& status) {
    std::string error;
    if (!ResolveLocation(call, "", location, error)) {
        status = Fail(kExitFailed, error);
        return false;
    }
    status = LoadLocation(location);
    return status == kExitOk;
}

} // namespace xuntool
