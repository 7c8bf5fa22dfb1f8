// xun check: every problem of a setup file and its language files (and of a
// unit base-group file), as the library's checks report them.
#include <cstdio>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Location.h"
#include "Names.h"
#include "Output.h"
#include "xun.h"

namespace xuntool {

namespace {

const char* SeverityName(int severity) {
    switch (severity) {
    case XUN_CHECK_FATAL:
        return "fatal";
    case XUN_CHECK_MESSAGE:
        return "message";
    case XUN_CHECK_DROPPED:
        return "dropped";
    case XUN_CHECK_WARNING:
        return "warning";
    default:
        return "problem";
    }
}

// Prints each problem as it is reported: FILE:LINE: SEVERITY: MESSAGE.
struct Printer {
    int count = 0;

    static void Report(void* user, const char* file, int line, int severity, const char* message) {
        ++static_cast<Printer*>(user)->count;
        const std::string text =
            ProblemText(file, line, std::string(SeverityName(severity)) + ": " + Text(message));
        std::printf("%s\n", text.c_str());
    }
};

// Sends standard output and standard error to /dev/null while it lives.
class Silence {
  public:
    Silence() {
        std::fflush(nullptr);
        const int null = ::open("/dev/null", O_WRONLY);
        for (int fd = 1; fd <= 2; ++fd) {
            m_saved[fd - 1] = ::dup(fd);
            if (null >= 0)
                ::dup2(null, fd);
        }
        if (null >= 0)
            ::close(null);
    }
    ~Silence() {
        std::fflush(nullptr);
        for (int fd = 1; fd <= 2; ++fd)
            if (m_saved[fd - 1] >= 0) {
                ::dup2(m_saved[fd - 1], fd);
                ::close(m_saved[fd - 1]);
            }
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

  private:
    int m_saved[2];
};

// Checks a base-group file against what the setup file defines: it is
// loaded for that (its problems are reported already, so the load is kept
// quiet), unless the check found something that would end the load.
void CheckBaseGroup(const std::string& setupFile, int fatal, const std::string& file,
                    Printer& printer) {
    if (fatal != 0) {
        std::fflush(stdout);
        std::fprintf(stderr,
                     "xun: note: '%s' is not checked: the setup file cannot be loaded as it is\n",
                     file.c_str());
        return;
    }
    int loaded = 0;
    {
        Silence quiet;
        loaded = xunSetupLoad(setupFile.c_str());
    }
    if (!loaded) {
        Fail(kExitFailed, "cannot load setup file '" + setupFile + "': " + LibraryReason());
        ++printer.count;
        return;
    }
    const int before = printer.count;
    if (xunBaseGroupCheck(file.c_str(), &Printer::Report, &printer) < 0 &&
        printer.count == before) {
        Fail(kExitFailed, "cannot check '" + file + "': " + LibraryReason());
        ++printer.count;
    }
}

} // namespace

int RunCheck(const Invocation& call) {
    const std::string setupArgument = call.args.empty() ? "" : call.args[0];
    if (!setupArgument.empty() && call.Has("--setup"))
        return UsageError(call.command, "give the setup file either as SETUP or with --setup");
    DataLocation location;
    std::string error;
    if (!ResolveLocation(call, setupArgument, location, error))
        return Fail(kExitFailed, error);
    // An empty directory stands for the current one (file names without a
    // directory part in messages).
    std::string langDir = call.Value("--lang");
    if (!call.Has("--lang"))
        langDir = location.setupGiven ? DirectoryOf(location.setupFile) : location.home + "/bin";
    struct stat info;
    const std::string statDir = langDir.empty() ? "." : langDir;
    if (::stat(statDir.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
        return Fail(kExitFailed, "cannot read the language-file directory '" + langDir + "'");
    if (int status = CheckReadable(location.setupFile))
        return status;

    Printer printer;
    const int fatal =
        xunSetupCheck(location.setupFile.c_str(), langDir.c_str(), &Printer::Report, &printer);
    if (fatal < 0 && printer.count == 0)
        return Fail(kExitFailed,
                    "cannot check setup file '" + location.setupFile + "': " + LibraryReason());
    if (call.Has("--base-group"))
        CheckBaseGroup(location.setupFile, fatal, call.Value("--base-group"), printer);
    if (printer.count == 0)
        return kExitOk;
    std::fflush(stdout);
    std::fprintf(stderr, "xun: %d problem%s found\n", printer.count, printer.count == 1 ? "" : "s");
    return kExitFailed;
}

} // namespace xuntool
