// Output helpers of the xun tool: number formats that read back exactly,
// dimension texts, aligned text tables and a JSON writer.
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

// Rows of cells written with every column but the last padded to its widest
// cell (widths counted in UTF-8 characters), two blanks between columns.
// Control bytes in cells are written as \xNN (Printable).
void PrintTable(std::FILE* out, const std::vector<std::vector<std::string>>& rows);

// A JSON writer with two-blank indentation. Strings are escaped; bytes that
// are not valid UTF-8 are taken as Latin-1 characters, so the output is
// always valid UTF-8 JSON. Numbers that JSON cannot hold (NaN, infinities)
// are written as null.
class JsonWriter {
  public:
    explicit JsonWriter(std::FILE* out) : m_out(out) {}
    void BeginObject();
    void EndObject();
    void BeginArray();
    void EndArray();
    // The name of the next member of the current object.
    void Key(const std::string& name);
    void String(const std::string& value);
    void Number(double value);
    void Integer(long long value);
    void Null();
    void Bool(bool value);
    // Ends the document with a line break.
    void Finish();

  private:
    void BeforeValue();
    void Indent();

    std::FILE* m_out;
    // One entry per open container: the number of values written in it.
    std::vector<int> m_counts;
    bool m_afterKey = false;
};

// Escapes text as a JSON string literal, quotes included.
std::string JsonQuote(const std::string& text);

} // namespace xuntool
