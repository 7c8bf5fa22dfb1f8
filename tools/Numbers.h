// Numbers of xun convert: how they are read from a text and written back.
#pragma once

#include <cstddef>
#include <string>

namespace xuntool {

// How converted numbers are written.
struct NumberFormat {
    // Shortest text that reads back as the same value (std::to_chars);
    // otherwise at most digits significant digits, trailing zeros dropped
    // (as printf's %.Ng writes them).
    bool exact = false;
    int digits = 15;
};

// Room for any number text that FormatNumber writes.
const size_t kNumberTextSize = 64;

// Writes value into out (kNumberTextSize bytes) and returns its length.
size_t FormatNumber(double value, const NumberFormat& format, char* out);
size_t FormatNumber(float value, const NumberFormat& format, char* out);
std::string NumberText(double value, const NumberFormat& format);

// A number text as strtod and strtof read it in the C locale (decimal and
// hexadecimal floating point, nan, inf), the whole of text[0, length).
enum class NumberRead { kNumber, kNotANumber, kOutOfRange };
NumberRead ReadNumber(const char* text, size_t length, double& value);
NumberRead ReadNumber(const char* text, size_t length, float& value);

// The length of the decimal number that text starts with ("10" of "10ft",
// "1.5e3" of "1.5e3m3/s", "5" of "5eV"): an optional sign, digits with at
// most one decimal point, and an exponent when digits follow its 'e'; 0
// when text does not start with one.
size_t LeadingNumberLength(const std::string& text);

} // namespace xuntool
