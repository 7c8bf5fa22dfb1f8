#include "Numbers.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace xuntool {

namespace {

// Longer texts are no numbers for the reader (the longest useful number
// text is far shorter).
const size_t kMaxNumberText = 4096;

template <class T> size_t Format(T value, const NumberFormat& format, char* out) {
    const std::to_chars_result result =
        format.exact ? std::to_chars(out, out + kNumberTextSize, value)
                     : std::to_chars(out, out + kNumberTextSize, value, std::chars_format::general,
                                     format.digits);
    return static_cast<size_t>(result.ptr - out);
}

double StrToReal(const char* text, char** end, double*) {
    return std::strtod(text, end);
}

float StrToReal(const char* text, char** end, float*) {
    return std::strtof(text, end);
}

template <class T> NumberRead Read(const char* text, size_t length, T& value) {
    // std::from_chars reads decimal texts as strtod does, correctly rounded,
    // and fast; what it leaves (a sign '+', hexadecimal, a value out of
    // range, blanks) goes to the C library.
    const std::from_chars_result quick = std::from_chars(text, text + length, value);
    if (quick.ec == std::errc() && quick.ptr == text + length)
        return NumberRead::kNumber;
    if (length == 0 || length > kMaxNumberText || std::memchr(text, 0, length) != nullptr)
        return NumberRead::kNotANumber;
    char copy[kMaxNumberText + 1];
    std::memcpy(copy, text, length);
    copy[length] = '\0';
    errno = 0;
    char* end = nullptr;
    value = StrToReal(copy, &end, static_cast<T*>(nullptr));
    if (end != copy + length)
        return NumberRead::kNotANumber;
    if (errno == ERANGE && std::isinf(value))
        return NumberRead::kOutOfRange;
    return NumberRead::kNumber;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

size_t FormatNumber(double value, const NumberFormat& format, char* out) {
    return Format(value, format, out);
}

size_t FormatNumber(float value, const NumberFormat& format, char* out) {
    return Format(value, format, out);
}

std::string NumberText(double value, const NumberFormat& format) {
    char text[kNumberTextSize];
    return std::string(text, FormatNumber(value, format, text));
}

NumberRead ReadNumber(const char* text, size_t length, double& value) {
    return Read(text, length, value);
}

NumberRead ReadNumber(const char* text, size_t length, float& value) {
    return Read(text, length, value);
}

size_t LeadingNumberLength(const std::string& text) {
    size_t i = 0;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        ++i;
    size_t digits = 0;
    while (i < text.size() && IsDigit(text[i])) {
        ++i;
        ++digits;
    }
    if (i < text.size() && text[i] == '.') {
        ++i;
        while (i < text.size() && IsDigit(text[i])) {
            ++i;
            ++digits;
        }
    }
    if (digits == 0)
        return 0;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        size_t k = i + 1;
        if (k < text.size() && (text[k] == '+' || text[k] == '-'))
            ++k;
        if (k < text.size() && IsDigit(text[k])) {
            while (k < text.size() && IsDigit(text[k]))
                ++k;
            i = k;
        }
    }
    return i;
}

} // namespace xuntool
