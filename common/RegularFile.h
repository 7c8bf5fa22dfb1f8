// Opening and reading files that the library reads as data (setup files,
// the DTDs and entities they name, language files, base-group files): only
// regular files are read. A FIFO, a device, a directory or a socket is
// refused before anything is read, with a reason, and the opening never
// waits on one (an ordinary open of a FIFO waits until a writer comes).
#pragma once

#include <cstdio>
#include <string>
#include <vector>

// Opens a regular file as std::fopen(path, mode) would (mode "r" or "rb").
// Null with the reason otherwise: the system's error text ("No such file or
// directory"), or "a FIFO, not a regular file" and the like; notRegular
// (when given) tells the second case. A null path is refused too.
std::FILE* xunOpenRegularFile_(const char* path, const char* mode, std::string& reason,
                               bool* notRegular = nullptr);

// Reads a whole regular file: true with its bytes, false with the reason as
// above. Throws std::bad_alloc when memory runs out.
bool xunReadRegularFile_(const char* path, std::vector<unsigned char>& bytes, std::string& reason);
