// Exported load entry points, path functions and the unit base-group file.
#include "capi/Api.h"
#include "langfile/UnitBaseGroup.h"
#include "setup/Installation.h"
#include "setup/LoadTables.h"
#include "setup/SetupLoader.h"

using namespace xun::capi;

extern "C" {

int xunSetupLoad(const char* path) {
    return Guard("xunSetupLoad", 0, [&] {
        std::string fileName, refusal;
        if (!xunLoadProcessSetupFile_(path, fileName, &refusal)) {
            if (!refusal.empty())
                return xunFail_(XUN_ERR_LIMIT, "xunSetupLoad: the setup file '%s' is refused: %s",
                                fileName.c_str(), refusal.c_str());
            return xunFail_(XUN_ERR_FILE,
                            "xunSetupLoad: the setup file '%s' cannot be read or is not "
                            "well-formed XML",
                            fileName.c_str());
        }
        return 1;
    });
}

int xunSetupLoadLinux(const char* path) {
    return xunSetupLoad(path);
}

void xunLoadItemTypeTables(const char* path) {
    Guard("xunLoadItemTypeTables", 0, [&] {
        // A null path is taken as the empty text: the default setup file.
        const char* text = path != nullptr ? path : "";
        xunCopyPath_(szDllFileName, text);
        // The whole load from the load cache; what fails there (memory
        // running out, from its first allocation on) fails as in
        // xunSetupLoad, whose part of the load it takes.
        CXunTablesCache tables;
        const int cached = Guard("xunSetupLoad", -1, [&] { return tables.Load(text) ? 1 : 0; });
        if (cached != 0)
            return cached == 1 ? 1 : 0;
        // Through the exported symbol, as a host would call it.
        if (!xunSetupLoad(text))
            return 0;
        CXunLoadReport report;
        xunApplyLanguageFiles_(Registries(), xunInstallDir_(), report);
        tables.Store(report);
        return 1;
    });
}

void xunSetupUnload(void) {}

int xunSetupWrite(void) {
    return 1;
}

void xunSetupGetPath(const char** path) {
    if (path == nullptr) {
        NullArgument("xunSetupGetPath", "path");
        return;
    }
    *path = szDocName;
}

void LoadUnitBaseGroupFile(char* fileName) {
    Guard("LoadUnitBaseGroupFile", 0, [&] {
        CXunLoadReport report;
        if (!xunApplyBaseGroupFile_(Registries(), fileName, report))
            return xunFail_(XUN_ERR_FILE, "LoadUnitBaseGroupFile: the file '%s' is not loaded",
                            fileName != nullptr ? fileName : "");
        return 1;
    });
}

} // extern "C"

void xunUnloadItemTypeTables() {}

// The path functions check no lengths, as their drive-and-directory
// counterparts: callers pass buffers of 260 bytes.
int _fullpath(char* absPath, const char* /*relPath*/, int /*maxLength*/) {
    return Guard("_fullpath", 0, [&] {
        if (absPath == nullptr)
            return NullArgument("_fullpath", "absPath");
        return xunWriteInstallDir_(absPath);
    });
}

int _splitpath(char* /*path*/, char* /*drive*/, char* dir, char* /*fname*/, char* /*ext*/) {
    return Guard("_splitpath", 0, [&] {
        if (dir == nullptr)
            return NullArgument("_splitpath", "dir");
        return xunWriteInstallDir_(dir);
    });
}

int _makepath(char* path, char* /*drive*/, char* dir, char* fname, char* ext) {
    return Guard("_makepath", 0, [&] {
        if (path == nullptr)
            return NullArgument("_makepath", "path");
        return xunWriteMadePath_(path, dir, fname, ext);
    });
}
