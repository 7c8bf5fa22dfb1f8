// Installation paths and the globals of the load entry points.
#pragma once

#include <string>

#include "common/Contract.h"

// The text given to the last xunLoadItemTypeTables call.
extern char szDllFileName[xun::contract::kPathBufferSize];
// The full name of the last setup file loaded successfully; empty before.
extern char szDocName[xun::contract::kPathBufferSize];

// $KORVANE_HOME followed by "/bin/", read afresh on every call. An unset
// variable gives what the C library's formatting prints for a null text.
std::string xunInstallDir_();

// Copies text into a path buffer, cut to fit (the buffer always ends with a
// terminating zero). Returns false when the text had to be cut.
bool xunCopyPath_(char (&buffer)[xun::contract::kPathBufferSize], const char* text);

// What the path functions write: the installation directory, or the
// concatenation of directory, name and extension (null parts read as the C
// library's formatting prints a null text). Returns the characters written;
// nothing is checked, as with their drive-and-directory counterparts.
int xunWriteInstallDir_(char* out);
int xunWriteMadePath_(char* out, const char* dir, const char* fname, const char* ext);
