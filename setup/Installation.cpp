#include "setup/Installation.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "xun.h"

char szDllFileName[kXunPathBufferSize];
char szDocName[kXunPathBufferSize];

namespace {

// What the C library's formatting prints for a null text.
const char* Printable(const char* text) {
    return text != nullptr ? text : "(null)";
}

// Writes text into out and returns the number of characters written. The
// callers of these functions pass buffers of 260 bytes; nothing is checked,
// as with their drive-and-directory counterparts.
int WriteText(char* out, const std::string& text) {
    std::memcpy(out, text.c_str(), text.size() + 1);
    return static_cast<int>(text.size());
}

} // namespace

std::string xunInstallDir_() {
    return std::string(Printable(std::getenv("KORVANE_HOME"))) + "/bin/";
}

bool xunCopyPath_(char (&buffer)[kXunPathBufferSize], const char* text) {
    const size_t length = std::strlen(text);
    const size_t kept = length < sizeof buffer ? length : sizeof buffer - 1;
    std::memcpy(buffer, text, kept);
    buffer[kept] = '\0';
    return kept == length;
}

int _fullpath(char* absPath, const char* /*relPath*/, int /*maxLength*/) {
    return WriteText(absPath, xunInstallDir_());
}

int _splitpath(char* /*path*/, char* /*drive*/, char* dir, char* /*fname*/, char* /*ext*/) {
    return WriteText(dir, xunInstallDir_());
}

int _makepath(char* path, char* /*drive*/, char* dir, char* fname, char* ext) {
    return WriteText(path, std::string(Printable(dir)) + Printable(fname) + Printable(ext));
}

void xunUnloadItemTypeTables() {}

extern "C" {

void xunSetupUnload(void) {}

int xunSetupWrite(void) {
    return 1;
}

void xunSetupGetPath(const char** path) {
    *path = szDocName;
}

} // extern "C"
