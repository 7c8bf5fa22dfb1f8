#include "Location.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

#include "Output.h"
#include "setup/Installation.h"
#include "units/KVassert.h"
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

std::string StopContext_ = "the library stopped";
bool ThrowOnStop_ = false;

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

std::string FindHome(const ParsedArgs& args) {
    if (args.Has("--home"))
        return WithoutTrailingSlashes(args.Value("--home"));
    const char* env = std::getenv("KORVANE_HOME");
    if (env != nullptr && env[0] != '\0')
        return env;
    // A setup file of one's own goes with no other installation's language
    // files, whose keys it would not match.
    if (args.Has("--setup"))
        return "";
    const std::string installed = InstalledDataDir();
    if (!installed.empty() && IsFile(installed + "/bin/XUN.xml"))
        return installed;
    if (RunsFromBuildTree() && IsFile(std::string(XUN_SOURCE_DATA_DIR) + "/bin/XUN.xml"))
        return XUN_SOURCE_DATA_DIR;
    return "";
}

void StopHook(const char* expr, const char* source, unsigned line, const char* /*function*/) {
    LibraryStop stop{expr != nullptr ? expr : "", source != nullptr ? source : "", line};
    if (ThrowOnStop_)
        throw stop;
    std::fflush(stdout);
    std::fprintf(stderr, "xun: %s: %s\n", StopContext_.c_str(), stop.Reason().c_str());
    std::fflush(stderr);
    std::_Exit(kExitFailed);
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

} // namespace

std::string LibraryStop::Reason() const {
    if (source == "KVLangFile")
        return "a language file lacks a key of the setup file or repeats a key";
    if (source == "ItemTypeTables" && expression == "ok")
        return "a filter names an unknown item type";
    if (expression == "bOk")
        return "an item type allows a unit of another dimension";
    if (expression == "m_dFactor")
        return "a unit expression gives the factor 0";
    if (source == "KVitemType" && expression == "0")
        return "a file cannot be written";
    return "the library stopped on its check '" + expression + "' (" + source + ")";
}

void SetStopContext(const std::string& context) {
    StopContext_ = context;
}

ThrowOnLibraryStop::ThrowOnLibraryStop() : m_previous(ThrowOnStop_) {
    ThrowOnStop_ = true;
}

ThrowOnLibraryStop::~ThrowOnLibraryStop() {
    ThrowOnStop_ = m_previous;
}

void InstallStopHook() {
    xunSetAssertHook_(&StopHook);
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

bool ResolveLocation(const ParsedArgs& args, const std::string& setupArgument,
                     DataLocation& location, std::string& error) {
    location.home = FindHome(args);
    if (!setupArgument.empty() || args.Has("--setup")) {
        location.setupFile = !setupArgument.empty() ? setupArgument : args.Value("--setup");
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

int LoadLocation(const DataLocation& location) {
    const std::string& file = location.setupFile;
    struct stat status;
    if (::stat(file.c_str(), &status) != 0)
        return Fail(kExitFailed, "cannot read setup file '" + file + "': " + std::strerror(errno));
    if (S_ISDIR(status.st_mode))
        return Fail(kExitFailed, "cannot read setup file '" + file + "': it is a directory");
    std::FILE* probe = std::fopen(file.c_str(), "r");
    if (probe == nullptr)
        return Fail(kExitFailed, "cannot read setup file '" + file + "': " + std::strerror(errno));
    std::fclose(probe);
    // The library keeps the name in a buffer of 260 bytes.
    if (file.size() >= static_cast<size_t>(kXunPathBufferSize))
        return Fail(kExitFailed, "the setup file name '" + file + "' is longer than " +
                                     std::to_string(kXunPathBufferSize - 1) + " bytes");

    if (!location.home.empty())
        setenv("KORVANE_HOME", location.home.c_str(), 1);
    SetStopContext("cannot load '" + file + "'");
    {
        StdoutToStderr redirect;
        xunLoadItemTypeTables(location.setupGiven ? file.c_str() : "");
    }
    SetStopContext("the library stopped");
    const char* loaded = nullptr;
    xunSetupGetPath(&loaded);
    if (loaded == nullptr || loaded[0] == '\0')
        return Fail(kExitFailed,
                    "cannot load setup file '" + file + "': it is not well-formed XML");
    return kExitOk;
}

} // namespace xuntool
