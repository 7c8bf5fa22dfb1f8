// Installation paths and the globals of the load entry points.
#pragma once

#include <string>

// Size of the path buffers of the load entry points.
const int kXunPathBufferSize = 260;

// The text given to the last xunLoadItemTypeTables call.
extern char szDllFileName[kXunPathBufferSize];
// The full name of the last setup file loaded successfully; empty before.
extern char szDocName[kXunPathBufferSize];

// $KORVANE_HOME followed by "/bin/", read afresh on every call. An unset
// variable gives what the C library's formatting prints for a null text.
std::string xunInstallDir_();

// Copies text into a path buffer, cut to fit (the buffer always ends with a
// terminating zero). Returns false when the text had to be cut.
bool xunCopyPath_(char (&buffer)[kXunPathBufferSize], const char* text);
