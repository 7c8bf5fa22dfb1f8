#include "Output.h"

#include <cmath>
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

// Length of the valid UTF-8 sequence at text[i], or 0 when the bytes there
// are not one (overlong forms, surrogates and values above U+10FFFF count as
// invalid).
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

size_t DisplayWidth(const std::string& text) {
    size_t width = 0;
    for (size_t i = 0; i < text.size();) {
        const size_t length = Utf8SequenceLength(text, i);
        i += length == 0 ? 1 : length;
        ++width;
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
            if (column + 1 < row.size() && widths[column] >= DisplayWidth(cell))
                line.append(widths[column] - DisplayWidth(cell) + 2, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        std::fprintf(out, "%s\n", line.c_str());
    }
}

std::string JsonQuote(const std::string& text) {
    std::string result = "\"";
    for (size_t i = 0; i < text.size();) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        const size_t length = Utf8SequenceLength(text, i);
        if (length == 0) {
            // Not UTF-8: the byte read as a Latin-1 character.
            result += static_cast<char>(0xC0 | (c >> 6));
            result += static_cast<char>(0x80 | (c & 0x3F));
            ++i;
            continue;
        }
        if (length > 1) {
            result.append(text, i, length);
            i += length;
            continue;
        }
        ++i;
        switch (c) {
        case '"':
            result += "\\\"";
            break;
        case '\\':
            result += "\\\\";
            break;
        case '\n':
            result += "\\n";
            break;
        case '\r':
            result += "\\r";
            break;
        case '\t':
            result += "\\t";
            break;
        case '\b':
            result += "\\b";
            break;
        case '\f':
            result += "\\f";
            break;
        default:
            if (c < 0x20 || c == 0x7F) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
                result += escaped;
            } else {
                result += static_cast<char>(c);
            }
        }
    }
    return result + "\"";
}

void JsonWriter::Indent() {
    std::fputc('\n', m_out);
    for (size_t i = 0; i < m_counts.size(); ++i)
        std::fputs("  ", m_out);
}

void JsonWriter::BeforeValue() {
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (m_counts.empty())
        return;
    if (m_counts.back()++ > 0)
        std::fputc(',', m_out);
    Indent();
}

void JsonWriter::BeginObject() {
    BeforeValue();
    std::fputc('{', m_out);
    m_counts.push_back(0);
}

void JsonWriter::EndObject() {
    const bool empty = m_counts.back() == 0;
    m_counts.pop_back();
    if (!empty)
        Indent();
    std::fputc('}', m_out);
}

void JsonWriter::BeginArray() {
    BeforeValue();
    std::fputc('[', m_out);
    m_counts.push_back(0);
}

void JsonWriter::EndArray() {
    const bool empty = m_counts.back() == 0;
    m_counts.pop_back();
    if (!empty)
        Indent();
    std::fputc(']', m_out);
}

void JsonWriter::Key(const std::string& name) {
    BeforeValue();
    std::fprintf(m_out, "%s: ", JsonQuote(name).c_str());
    m_afterKey = true;
}

void JsonWriter::String(const std::string& value) {
    BeforeValue();
    std::fputs(JsonQuote(value).c_str(), m_out);
}

void JsonWriter::Number(double value) {
    if (!std::isfinite(value)) {
        Null();
        return;
    }
    BeforeValue();
    std::fputs(FormatDouble(value).c_str(), m_out);
}

void JsonWriter::Integer(long long value) {
    BeforeValue();
    std::fprintf(m_out, "%lld", value);
}

void JsonWriter::Null() {
    BeforeValue();
    std::fputs("null", m_out);
}

void JsonWriter::Bool(bool value) {
    BeforeValue();
    std::fputs(value ? "true" : "false", m_out);
}

void JsonWriter::Finish() {
    std::fputc('\n', m_out);
}

} // namespace xuntool
