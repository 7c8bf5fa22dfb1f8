// xun convert: one value from the command line, or numbers from standard
// input in blocks through the library's array conversions.
#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <unistd.h>
#include <vector>

#include "Location.h"
#include "Names.h"
#include "Output.h"
#include "xun.h"

namespace xuntool {

namespace {

// Numbers converted per call of the array functions.
const size_t kBlockSize = 65536;
// A longer token is not a number (the longest useful number text is far
// shorter); it is reported cut.
const size_t kMaxTokenLength = 4096;

// The whole token as a number; false for anything else and for a finite text
// that overflows.
template <class T> bool ParseNumber(const std::string& token, T& value, std::string& error);

template <> bool ParseNumber<double>(const std::string& token, double& value, std::string& error) {
    errno = 0;
    char* end = nullptr;
    value = std::strtod(token.c_str(), &end);
    if (token.empty() || end != token.c_str() + token.size()) {
        error = "not a number: '" + Printable(token) + "'";
        return false;
    }
    if (errno == ERANGE && std::isinf(value)) {
        error = "number out of range: '" + Printable(token) + "'";
        return false;
    }
    return true;
}

template <> bool ParseNumber<float>(const std::string& token, float& value, std::string& error) {
    errno = 0;
    char* end = nullptr;
    value = std::strtof(token.c_str(), &end);
    if (token.empty() || end != token.c_str() + token.size()) {
        error = "not a number: '" + Printable(token) + "'";
        return false;
    }
    if (errno == ERANGE && std::isinf(value)) {
        error = "number out of range for single precision: '" + Printable(token) + "'";
        return false;
    }
    return true;
}

int ConvertArray(int from, int to, std::vector<double>& values, double deleteValue) {
    return xunConvertItemArrayD(from, to, values.data(), static_cast<int>(values.size()),
                                deleteValue);
}

int ConvertArray(int from, int to, std::vector<float>& values, float deleteValue) {
    return xunConvertItemArrayF(from, to, values.data(), static_cast<int>(values.size()),
                                deleteValue);
}

std::string Format(double value) {
    return FormatDouble(value);
}

std::string Format(float value) {
    return FormatFloat(value);
}

// Without --delete the block is converted with a marker that none of its
// numbers equals, so that every number is converted.
template <class T> T UnusedMarker(const std::vector<T>& values) {
    T marker = std::numeric_limits<T>::lowest();
    for (bool clash = true; clash;) {
        clash = false;
        for (T value : values)
            if (value == marker) {
                marker = std::nextafter(marker, T(0));
                clash = true;
                break;
            }
    }
    return marker;
}

template <class T> class Converter {
  public:
    Converter(int from, int to, bool hasDelete, T deleteValue)
        : m_from(from), m_to(to), m_hasDelete(hasDelete), m_delete(deleteValue) {}

    // Converts and prints the block; false when the library refuses.
    bool Flush(std::vector<T>& block) {
        if (block.empty())
            return true;
        const T marker = m_hasDelete ? m_delete : UnusedMarker(block);
        if (!ConvertArray(m_from, m_to, block, marker))
            return false;
        for (T value : block) {
            const std::string text = Format(value);
            std::fwrite(text.c_str(), 1, text.size(), stdout);
            std::fputc('\n', stdout);
        }
        block.clear();
        return true;
    }

  private:
    int m_from;
    int m_to;
    bool m_hasDelete;
    T m_delete;
};

template <class T>
int ConvertValues(int from, int to, const Invocation& call, const std::string* value) {
    bool hasDelete = call.Has("--delete");
    T deleteValue = T(0);
    std::string error;
    if (hasDelete && !ParseNumber<T>(call.Value("--delete"), deleteValue, error))
        return Fail(kExitFailed, "--delete: " + error);
    Converter<T> converter(from, to, hasDelete, deleteValue);
    std::vector<T> block;
    auto refused = [] {
        return Fail(kExitFailed, "the library refused the conversion: " + LibraryReason());
    };
    if (value != nullptr) {
        T number = T(0);
        if (!ParseNumber<T>(*value, number, error))
            return Fail(kExitFailed, error);
        block.push_back(number);
        return converter.Flush(block) ? kExitOk : refused();
    }

    if (isatty(0))
        std::fprintf(stderr, "xun: reading numbers from standard input (end with Ctrl-D)\n");
    static char output[1 << 16];
    std::setvbuf(stdout, output, _IOFBF, sizeof output);
    block.reserve(kBlockSize);
    std::vector<char> buffer(1 << 16);
    std::string token;
    bool tokenTooLong = false;
    long line = 1;
    long tokenLine = 1;
    // Ends the current token: parses it into the block, converting the block
    // when it is full.
    auto endToken = [&]() -> int {
        if (token.empty())
            return kExitOk;
        T number = T(0);
        if (tokenTooLong || !ParseNumber<T>(token, number, error)) {
            if (tokenTooLong)
                error = "not a number: '" + Printable(token) + "'";
            if (!converter.Flush(block))
                return refused();
            return Fail(kExitFailed,
                        "standard input, line " + std::to_string(tokenLine) + ": " + error);
        }
        token.clear();
        block.push_back(number);
        if (block.size() >= kBlockSize && !converter.Flush(block))
            return refused();
        return kExitOk;
    };
    for (;;) {
        const size_t count = std::fread(buffer.data(), 1, buffer.size(), stdin);
        for (size_t i = 0; i < count; ++i) {
            const char c = buffer[i];
            if (c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r') {
                if (int status = endToken())
                    return status;
                if (c == '\n')
                    ++line;
                continue;
            }
            if (token.empty())
                tokenLine = line;
            if (token.size() < kMaxTokenLength)
                token += c;
            else
                tokenTooLong = true;
        }
        if (count < buffer.size())
            break;
    }
    if (std::ferror(stdin))
        return Fail(kExitFailed, "cannot read standard input");
    if (int status = endToken())
        return status;
    return converter.Flush(block) ? kExitOk : refused();
}

// Why the library refuses to convert between two units: the dimensions
// (named by the units as the user typed them), else the library's reason.
int Refused(int from, int to, const std::string& fromName, const std::string& toName) {
    double ignored = 0.0;
    xunClearLastError();
    xunConvertUnit(from, to, &ignored, 0.0);
    if (xunGetLastError(nullptr) != XUN_ERR_DIMENSION)
        return Fail(kExitFailed, "cannot convert '" + Printable(fromName) + "' to '" +
                                     Printable(toName) + "': " + LibraryReason());
    const UnitInfo a = GetUnitInfo(from);
    const UnitInfo b = GetUnitInfo(to);
    return Fail(kExitFailed, "cannot convert '" + Printable(fromName) + "' (dimension " +
                                 DimensionText(a.powers) + ") to '" + Printable(toName) +
                                 "' (dimension " + DimensionText(b.powers) +
                                 "): the dimensions differ");
}

} // namespace

int RunConvert(const Invocation& call) {
    DataLocation location;
    int status = kExitOk;
    if (!LoadData(call, location, status))
        return status;
    const std::vector<std::string>& p = call.args;
    const bool hasValue = p.size() == 3;
    const std::string& fromName = p[hasValue ? 1 : 0];
    const std::string& toName = p[hasValue ? 2 : 1];

    int from = 0;
    int to = 0;
    std::string reason;
    if (!FindUnit(fromName, from, reason))
        return Fail(kExitFailed, UnknownUnit(fromName, reason));
    if (!FindUnit(toName, to, reason))
        return Fail(kExitFailed, UnknownUnit(toName, reason));
    if (!xunUnitsEqv(from, to))
        return Refused(from, to, fromName, toName);
    const std::string* value = hasValue ? &p[0] : nullptr;
    if (call.Has("--float"))
        return ConvertValues<float>(from, to, call, value);
    return ConvertValues<double>(from, to, call, value);
}

} // namespace xuntool
