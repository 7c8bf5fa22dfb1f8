// Output helpers of the xun tool: exit statuses, number formats that read
// back exactly, dimension texts and aligned text tables.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace xuntool {

// Exit statuses of every command.
const int kExitOk = 0;
const int kExitFailed = 1; // unknown name, failed conversion, unreadable file, problems found
const int kExitUsage = 2;  // bad command line

// "%.17g": reads back as the same double.
std::string FormatDouble(double value);
// "%.9g": reads back as the same float.
std::string FormatFloat(float value);
// The shortest "%.Ng" text that reads back as the same double (for exponents).
std::string FormatShortest(double value);
// A filter bit as 0x%08X.
std::string FilterBitText(int bit);

// Names of the seven base dimensions in exponent order, for JSON keys and
// long listings: length, mass, time, temperature, current, substance,
// luminous.
extern const char* const kDimensionNames[7];

// A dimension as base symbols with their exponents, e.g. "L T-1", "L3",
// "M L-1 T-2" in the order L M T Θ I N J; "1" when dimensionless.
std::string DimensionText(const double powers[7]);

// Prints "xun: message" on standard error and returns status.
int Fail(int status, const std::string& message);

// A text for messages: the bytes as they are, but control bytes and bytes
// 0x7F as \xNN, and cut after limit bytes with "..." appended.
std::string Printable(const std::string& text, size_t limit = 80);

// 'text' for messages, quoted and made printable.
std::string Quote(const std::string& text);

// The length of the valid UTF-8 sequence at text[i], or 0 when the bytes
// there are not one (overlong forms, surrogates and values above U+10FFFF
// count as invalid). The one UTF-8 reader of the tool: table widths and JSON
// strings both use it.
size_t Utf8SequenceLength(const std::string& text, size_t i);

// Rows of cells written with every column but the last padded to its widest
// cell (widths counted in UTF-8 characters), two blanks between columns.
// Control bytes in cells are written as \xNN (Printable).
void PrintTable(std::FILE* out, const std::vector<std::vector<std::string>>& rows);

} // namespace xuntool
