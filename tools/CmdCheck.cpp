// xun check: every problem of a setup file and its language files.
#include <cstdio>
#include <string>

#include <sys/stat.h>

#include "Common.h"
#include "LangCheck.h"
#include "Output.h"
#include "SetupCheck.h"

namespace xuntool {

int RunCheck(const Args& args) {
    ParsedArgs parsed;
    int status = kExitOk;
    if (!ParseCommand("check", args, {{"--lang", true}}, 0, 1, parsed, status))
        return status;
    const std::string setupArgument = parsed.positionals.empty() ? "" : parsed.positionals[0];
    if (!setupArgument.empty() && parsed.Has("--setup"))
        return UsageError("check", "give the setup file either as SETUP or with --setup");
    if (parsed.Has("--lang") && parsed.Value("--lang").empty())
        return UsageError("check", "option '--lang' needs a directory");
    DataLocation location;
    std::string error;
    if (!ResolveLocation(parsed, setupArgument, location, error))
        return Fail(kExitFailed, error);
    // An empty directory stands for the current one (file names without a
    // directory part in messages).
    std::string langDir = parsed.Value("--lang");
    if (!parsed.Has("--lang"))
        langDir = location.setupGiven ? DirectoryOf(location.setupFile) : location.home + "/bin";
    struct stat info;
    const std::string statDir = langDir.empty() ? "." : langDir;
    if (::stat(statDir.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
        return Fail(kExitFailed, "cannot read the language-file directory '" + langDir + "'");

    Report report;
    SetupContents contents;
    if (CheckSetup(location.setupFile, report, contents))
        CheckLanguageFiles(langDir, location.setupFile, contents, report);
    else if (report.Count() == 0)
        return kExitFailed; // the file cannot be read; CheckSetup said so
    if (report.Count() == 0)
        return kExitOk;
    std::fflush(stdout);
    std::fprintf(stderr, "xun: %d problem%s found\n", report.Count(),
                 report.Count() == 1 ? "" : "s");
    return kExitFailed;
}

} // namespace xuntool
