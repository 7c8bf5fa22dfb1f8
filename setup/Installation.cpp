#include "setup/Installation.h"

#include <cstdlib>
#include <cstring>

char szDllFileName[xun::contract::kPathBufferSize];
char szDocName[xun::contract::kPathBufferSize];

namespace {

// What the C library's formatting prints for a null text.
const char* Printable(const char* text) {
    return text != nullptr ? text : "(null)";
}

int WriteText(char* out, const std::string& text) {
    std::memcpy(out, text.c_str(), text.size() + 1);
    return static_cast<int>(text.size());
}

} // namespace

std::string xunInstallDir_() {
    return std::string(Printable(std::getenv("KORVANE_HOME"))) + "/bin/";
}

bool xunCopyPath_(char (&buffer)[xun::contract::kPathBufferSize], const char* text) {
    const size_t length = std::strlen(text);
    const size_t kept = length < sizeof buffer ? length : sizeof buffer - 1;
    std::memcpy(buffer, text, kept);
    buffer[kept] = '\0';
    return kept == length;
}

int xunWriteInstallDir_(char* out) {
    return WriteText(out, xunInstallDir_());
}

int xunWriteMadePath_(char* out, const char* dir, const char* fname, const char* ext) {
    return WriteText(out, std::string(Printable(dir)) + Printable(fname) + Printable(ext));
}
