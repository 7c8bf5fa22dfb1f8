#include "Output.h"

#include <cstdlib>

namespace xuntool {

const char* const kDimensionNames[7] = {"length",  "mass",      "time",    "temperature",
                                        "current", "substance", "luminous"};

namespace {

const char* const kDimensionSymbols[7] = {"L", "M", "T", "\xCE\x98", "I", "N", "J"};

std::string Format(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

} // namespace

size_t Utf8SequenceLength(const std::string& text, size_t i) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (c < 0x80)
        return 1;
    size_t length = 0;
    unsigned long code = 0;
    if (c >= 0xC2 && c <= 0xDF) {
        length = 2;
        code = c & 0x1F;
    } else if (c >= 0xE0 && c <= 0xEF) {
        length = 3;
        code = c & 0x0F;
    } else if (c >= 0xF0 && c <= 0xF4) {
        length = 4;
        code = c & 0x07;
    } else {
        return 0;
    }
    if (i + length > text.size())
        return 0;
    for (size_t k = 1; k < length; ++k) {
        const unsigned char next = static_cast<unsigned char>(text[i + k]);
        if ((next & 0xC0) != 0x80)
            return 0;
        code = (code << 6) | (next & 0x3F);
    }
    if ((length == 3 && code < 0x800) || (length == 4 && code < 0x10000) || code > 0x10FFFF ||
        (code >= 0xD800 && code <= 0xDFFF))
        return 0;
    return length;
}

namespace {

// Characters on screen: a UTF-8 sequence counts once, any other byte once.
size_t DisplayWidth(const std::string& text) {
    size_t width = 0;
    for (size_t i = 0; i < text.size(); ++width) {
        const size_t length = Utf8SequenceLength(text, i);
        i += length == 0 ? 1 : length;
    }
    return width;
}

} // namespace

std::string FormatDouble(double value) {
    return Format("%.17g", value);
}

std::string FormatFloat(float value) {
    return Format("%.9g", static_cast<double>(value));
}

std::string FormatShortest(double value) {
    for (int digits = 1; digits < 17; ++digits) {
        char format[16];
        std::snprintf(format, sizeof format, "%%.%dg", digits);
        const std::string text = Format(format, value);
        if (std::strtod(text.c_str(), nullptr) == value)
            return text;
    }
    return FormatDouble(value);
}

std::string FilterBitText(int bit) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned int>(bit));
    return text;
}

std::string DimensionText(const double powers[7]) {
    std::string text;
    for (int i = 0; i < 7; ++i) {
        if (powers[i] == 0.0)
            continue;
        if (!text.empty())
            text += ' ';
        text += kDimensionSymbols[i];
        if (powers[i] != 1.0)
            text += FormatShortest(powers[i]);
    }
    return text.empty() ? "1" : text;
}

int Fail(int status, const std::string& message) {
    std::fflush(stdout);
    std::fprintf(stderr, "xun: %s\n", message.c_str());
    return status;
}

std::string Printable(const std::string& text, size_t limit) {
    std::string result;
    const size_t end = text.size() < limit ? text.size() : limit;
    for (size_t i = 0; i < end; ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c < 0x20 || c == 0x7F) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", c);
            result += escaped;
        } else {
            result += static_cast<char>(c);
        }
    }
    if (end < text.size())
        result += "...";
    return result;
}

std::string Quote(const std::string& text) {
    return "'" + Printable(text) + "'";
}

void PrintTable(std::FILE* out, const std::vector<std::vector<std::string>>& rows) {
    std::vector<size_t> widths;
    for (const std::vector<std::string>& row : rows)
        for (size_t column = 0; column + 1 < row.size(); ++column) {
            if (widths.size() <= column)
                widths.resize(column + 1, 0);
            const size_t width = DisplayWidth(Printable(row[column], std::string::npos));
            if (width > widths[column])
                widths[column] = width;
        }
    for (const std::vector<std::string>& row : rows) {
        std::string line;
        for (size_t column = 0; column < row.size(); ++column) {
            const std::string cell = Printable(row[column], std::string::npos);
            line += cell;
            if (column + 1 < row.size())
                line.append(widths[column] - DisplayWidth(cell) + 2, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        std::fprintf(out, "%s\n", line.c_str());
    }
}

} // namespace xuntool
