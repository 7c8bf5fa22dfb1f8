// xun convert: one value from the command line, or the numbers of standard
// input in blocks through the library's array conversions, or - with no
// numbers at all - the conversion's formula.
#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <unistd.h>
#include <vector>

#include "Location.h"
#include "Names.h"
#include "Numbers.h"
#include "Output.h"
#include "xun.h"

namespace xuntool {

namespace {

// Numbers converted per call of the array functions.
const size_t kBlockSize = 65536;
// A longer token or field is no number; in messages it is cut.
const size_t kMaxTokenLength = 4096;
// Text without numbers is written on once this much of it is waiting.
const size_t kPassOnSize = 1 << 16;
// A block is converted before it is full when this much text waits with it.
const size_t kMaxWaiting = 1 << 24;

int ConvertArray(int from, int to, std::vector<double>& values, double deleteValue) {
    return xunConvertItemArrayD(from, to, values.data(), static_cast<int>(values.size()),
                                deleteValue);
}

int ConvertArray(int from, int to, std::vector<float>& values, float deleteValue) {
    return xunConvertItemArrayF(from, to, values.data(), static_cast<int>(values.size()),
                                deleteValue);
}

// Without --delete a block is converted with a marker that none of its
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

template <class T> std::string NotANumber(NumberRead read, const char* text, size_t length) {
    const std::string token(text, length);
    if (read == NumberRead::kOutOfRange)
        return (sizeof(T) == sizeof(float) ? "number out of range for single precision: '"
                                           : "number out of range: '") +
               Printable(token) + "'";
    return "not a number: '" + Printable(token) + "'";
}

// The options of convert that say how numbers are read and written.
struct Settings {
    NumberFormat format;
    bool hasDelete = false;
    std::string deleteText;
    bool strict = false;
    size_t column = 0; // 0: every token or field
    bool hasDelimiter = false;
    char delimiter = ',';
};

// Reads the standard input and writes it on with its numbers converted.
//
// The input is read per line. Without a delimiter the tokens of a line are
// its runs of characters other than blanks (space, tab, CR, VT, FF); with a
// delimiter its fields are the texts between delimiters, and the number of
// a field is what is left after trimming blanks. A token or field (the
// column'th of its line when a column is chosen) that reads as a number is
// replaced by the converted number; everything else - blanks, delimiters,
// other columns, texts that are no numbers, numbers equal to the marker -
// is copied byte for byte.
//
// Numbers wait in a block with the text around them until the block is
// full; then one call of the array function converts the block and the text
// is written with the results in place.
template <class T> class StreamConverter {
  public:
    StreamConverter(int from, int to, const Settings& settings, T deleteValue)
        : m_from(from), m_to(to), m_settings(settings), m_delete(deleteValue),
          m_inField(settings.hasDelimiter) {
        m_values.reserve(kBlockSize);
        m_spans.reserve(kBlockSize);
        m_out.reserve(2 * kPassOnSize);
    }

    // Reads standard input to its end. On a terminal every line is
    // converted and written as soon as it is typed.
    int Run(bool terminal) {
        std::vector<char> buffer(1 << 16);
        for (;;) {
            const ssize_t count = ::read(0, buffer.data(), buffer.size());
            if (count < 0 && errno == EINTR)
                continue;
            if (count < 0)
                return Fail(kExitFailed, "cannot read standard input");
            if (count == 0)
                break;
            m_sawInput = true;
            m_text.append(buffer.data(), static_cast<size_t>(count));
            if (int status = Scan(false))
                return status;
            if (terminal) {
                if (!Convert(m_done))
                    return Refused();
                WriteOut(true);
                std::fflush(stdout);
            }
        }
        if (int status = Scan(true))
            return status;
        if (!Convert(m_text.size()))
            return Refused();
        WriteOut(true);
        return kExitOk;
    }

    bool SawInput() const { return m_sawInput; }

  private:
    struct Span {
        size_t begin;
        size_t end;
        bool marker; // equal to the missing-value marker: copied as it was
    };

    static bool IsBlank(char c) {
        return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
    }

    // Goes through the text not yet scanned; at the end of the input the
    // last token or field ends there too.
    int Scan(bool atEnd) {
        const char* text = m_text.data();
        const size_t size = m_text.size();
        const bool delimited = m_settings.hasDelimiter;
        const char delimiter = m_settings.delimiter;
        for (size_t i = m_scanned; i < size; ++i) {
            const char c = text[i];
            if (delimited ? (c == delimiter || c == '\n') : (IsBlank(c) || c == '\n')) {
                if (m_inField) {
                    if (int status = EndField(m_fieldBegin, i))
                        return status;
                    m_inField = delimited;
                    m_fieldBegin = i + 1;
                }
                if (c == '\n') {
                    ++m_line;
                    m_field = 1;
                }
            } else if (!m_inField) {
                m_inField = true;
                m_fieldBegin = i;
            }
        }
        m_scanned = size;
        if (atEnd && m_inField && m_fieldBegin < size) {
            if (int status = EndField(m_fieldBegin, size))
                return status;
            m_inField = delimited;
            m_fieldBegin = size;
        }
        // A field longer than any number is none: it is written on as it
        // comes (or, with --strict, ends the run when it is to be read).
        if (m_inField && !m_longField && size - m_fieldBegin > kMaxTokenLength) {
            if (m_settings.strict && Selected())
                return NoNumber(m_fieldBegin, NumberRead::kNotANumber, m_fieldBegin,
                                m_fieldBegin + kMaxTokenLength);
            m_longField = true;
        }
        // The text before the current field is complete. Without numbers
        // waiting it is written on as soon as there is enough of it; with
        // numbers, a block of few numbers in much text is converted early.
        m_done = m_inField && !m_longField ? m_fieldBegin : size;
        if (m_done - m_writtenFrom >= (m_values.empty() ? kPassOnSize : kMaxWaiting)) {
            if (!Convert(m_done))
                return Refused();
            WriteOut(false);
        }
        Compact();
        return kExitOk;
    }

    // Whether the current field is one to convert.
    bool Selected() const { return m_settings.column == 0 || m_field == m_settings.column; }

    // Ends the run at a text that is no number (with --strict): writes what
    // comes before begin and says where and what it is.
    int NoNumber(size_t begin, NumberRead read, size_t tokenBegin, size_t tokenEnd) {
        if (!Convert(begin))
            return Refused();
        WriteOut(true);
        return Fail(kExitFailed,
                    "standard input, line " + std::to_string(m_line) + ": " +
                        NotANumber<T>(read, m_text.data() + tokenBegin, tokenEnd - tokenBegin));
    }

    // The current token or field ends.
    int EndField(size_t begin, size_t end) {
        const bool selected = Selected();
        ++m_field;
        if (m_longField) {
            m_longField = false;
            return kExitOk;
        }
        if (!selected)
            return kExitOk;
        const size_t fieldBegin = begin;
        if (m_settings.hasDelimiter) {
            while (begin < end && IsBlank(m_text[begin]))
                ++begin;
            while (end > begin && IsBlank(m_text[end - 1]))
                --end;
        }
        T value = T(0);
        const NumberRead read = ReadNumber(m_text.data() + begin, end - begin, value);
        if (read != NumberRead::kNumber)
            return m_settings.strict ? NoNumber(fieldBegin, read, begin, end) : kExitOk;
        m_spans.push_back(Span{begin, end, m_settings.hasDelete && value == m_delete});
        m_values.push_back(value);
        if (m_values.size() >= kBlockSize && !Convert(end))
            return Refused();
        return kExitOk;
    }

    // Converts the waiting numbers and puts the text up to until, with the
    // results in place, into the output.
    bool Convert(size_t until) {
        if (!m_values.empty()) {
            const T marker = m_settings.hasDelete ? m_delete : UnusedMarker(m_values);
            if (!ConvertArray(m_from, m_to, m_values, marker))
                return false;
        }
        const char* text = m_text.data();
        size_t from = m_writtenFrom;
        char number[kNumberTextSize];
        for (size_t k = 0; k < m_spans.size(); ++k) {
            const Span& span = m_spans[k];
            if (span.marker)
                continue;
            m_out.append(text + from, span.begin - from);
            m_out.append(number, FormatNumber(m_values[k], m_settings.format, number));
            from = span.end;
            if (m_out.size() >= kPassOnSize)
                WriteOut(false);
        }
        m_out.append(text + from, until - from);
        m_writtenFrom = until;
        m_spans.clear();
        m_values.clear();
        return true;
    }

    // Drops the written text from the front of the buffer once it is at
    // least half of it.
    void Compact() {
        if (m_writtenFrom < kPassOnSize || 2 * m_writtenFrom < m_text.size())
            return;
        const size_t shift = m_writtenFrom;
        m_text.erase(0, shift);
        for (Span& span : m_spans) {
            span.begin -= shift;
            span.end -= shift;
        }
        m_scanned -= shift;
        m_done -= shift;
        m_fieldBegin = m_fieldBegin >= shift ? m_fieldBegin - shift : 0;
        m_writtenFrom = 0;
    }

    void WriteOut(bool all) {
        if (!all && m_out.size() < kPassOnSize)
            return;
        std::fwrite(m_out.data(), 1, m_out.size(), stdout);
        m_out.clear();
    }

    int Refused() {
        WriteOut(true);
        return Fail(kExitFailed, "the library refused the conversion: " + LibraryReason());
    }

    int m_from;
    int m_to;
    const Settings& m_settings;
    T m_delete;
    std::string m_text;      // input not yet written, from its first byte not yet written
    std::string m_out;       // output not yet written
    std::vector<T> m_values; // the numbers waiting in the block
    std::vector<Span> m_spans;
    size_t m_scanned = 0;     // bytes of m_text looked at
    size_t m_done = 0;        // bytes of m_text whose tokens and fields have ended
    size_t m_writtenFrom = 0; // bytes of m_text put into the output
    bool m_inField;           // within a token; with a delimiter always (a field may be empty)
    size_t m_fieldBegin = 0;
    size_t m_field = 1; // of the current token or field in its line, from 1
    bool m_longField = false;
    long m_line = 1;
    bool m_sawInput = false;
};

// Parses --digits, --column, --delimiter and the other options into
// settings; a usage error otherwise.
bool ReadSettings(const Invocation& call, bool hasValue, Settings& settings, int& status) {
    if (call.Has("--exact") && call.Has("--digits")) {
        status = UsageError(call.command, "--exact and --digits exclude each other");
        return false;
    }
    settings.format.exact = call.Has("--exact");
    settings.format.digits = call.Has("--float") ? FLT_DIG : DBL_DIG;
    if (call.Has("--digits")) {
        const std::string text = call.Value("--digits");
        char* end = nullptr;
        const long digits = std::strtol(text.c_str(), &end, 10);
        if (text.empty() || text[0] < '0' || text[0] > '9' || *end != '\0' || digits < 1 ||
            digits > 17) {
            status = UsageError(call.command, "--digits takes a number from 1 to 17, not '" +
                                                  Printable(text) + "'");
            return false;
        }
        settings.format.digits = static_cast<int>(digits);
    }
    settings.strict = call.Has("--strict");
    if (call.Has("--column")) {
        const std::string text = call.Value("--column");
        char* end = nullptr;
        errno = 0;
        const long column = std::strtol(text.c_str(), &end, 10);
        if (text.empty() || text[0] < '0' || text[0] > '9' || *end != '\0' || column < 1 ||
            errno == ERANGE) {
            status = UsageError(call.command, "--column takes a column number from 1, not '" +
                                                  Printable(text) + "'");
            return false;
        }
        settings.column = static_cast<size_t>(column);
    }
    if (call.Has("--delimiter")) {
        const std::string text = call.Value("--delimiter");
        if (text == "\\t" || text == "tab")
            settings.delimiter = '\t';
        else if (text.size() == 1 && text[0] != '\n' && text[0] != '\0')
            settings.delimiter = text[0];
        else {
            status = UsageError(call.command, "--delimiter takes one character (or \\t), not '" +
                                                  Printable(text) + "'");
            return false;
        }
        settings.hasDelimiter = true;
    }
    if (hasValue) {
        for (const char* option : {"--strict", "--column", "--delimiter"})
            if (call.Has(option)) {
                status = UsageError(call.command, std::string(option) +
                                                      " applies to numbers from standard input");
                return false;
            }
    }
    settings.hasDelete = call.Has("--delete");
    settings.deleteText = call.Value("--delete");
    return true;
}

// "x[TO] = x[FROM] * a + b": the factor and offset of the conversion,
// a = f1 / f2 and b = (o1 - o2) / f2, in the number format of the results.
// A factor whose inverse is shorter to write is written as a division.
std::string Formula(int from, int to, const std::string& fromName, const std::string& toName,
                    const NumberFormat& format) {
    const UnitInfo a = GetUnitInfo(from);
    const UnitInfo b = GetUnitInfo(to);
    const double factor = a.factor / b.factor;
    const double offset = (a.offset - b.offset) / b.factor;
    std::string text = "x[" + Printable(toName) + "] = x[" + Printable(fromName) + "]";
    const std::string times = NumberText(factor, format);
    const std::string divide = NumberText(1.0 / factor, format);
    if (times != "1")
        text += divide.size() < times.size() ? " / " + divide : " * " + times;
    if (offset != 0.0) {
        const std::string magnitude = NumberText(std::fabs(offset), format);
        text += (offset < 0 ? " - " : " + ") + magnitude;
    }
    return text;
}

template <class T>
int ConvertValues(int from, int to, const Settings& settings, const std::string* value,
                  const std::string& formula) {
    T deleteValue = T(0);
    if (settings.hasDelete) {
        const std::string& text = settings.deleteText;
        const NumberRead read = ReadNumber(text.data(), text.size(), deleteValue);
        if (read != NumberRead::kNumber)
            return Fail(kExitFailed, "--delete: " + NotANumber<T>(read, text.data(), text.size()));
    }
    if (value != nullptr) {
        T number = T(0);
        const NumberRead read = ReadNumber(value->data(), value->size(), number);
        if (read != NumberRead::kNumber)
            return Fail(kExitFailed, NotANumber<T>(read, value->data(), value->size()));
        if (settings.hasDelete && number == deleteValue) {
            std::printf("%s\n", value->c_str());
            return kExitOk;
        }
        std::vector<T> block(1, number);
        const T marker = settings.hasDelete ? deleteValue : UnusedMarker(block);
        if (!ConvertArray(from, to, block, marker))
            return Fail(kExitFailed, "the library refused the conversion: " + LibraryReason());
        char text[kNumberTextSize];
        const size_t length = FormatNumber(block[0], settings.format, text);
        std::printf("%.*s\n", static_cast<int>(length), text);
        return kExitOk;
    }

    // With no numbers given, the formula is what there is to show: at once
    // on a terminal (before numbers are typed), else when the input was
    // empty.
    const bool terminal = isatty(0);
    if (terminal) {
        std::printf("%s\n", formula.c_str());
        std::fflush(stdout);
        std::fprintf(stderr, "xun: reading numbers from standard input (end with Ctrl-D)\n");
    }
    StreamConverter<T> stream(from, to, settings, deleteValue);
    const int status = stream.Run(terminal);
    if (status == kExitOk && !terminal && !stream.SawInput())
        std::printf("%s\n", formula.c_str());
    return status;
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

bool IsWholeNumber(const std::string& text) {
    return !text.empty() && LeadingNumberLength(text) == text.size();
}

// Splits "10ft", "1.5e3m3/s" or "10 ft" into the number and the unit; false
// when text does not start with a number followed by a unit.
bool SplitValueAndUnit(const std::string& text, std::string& value, std::string& unit) {
    const size_t length = LeadingNumberLength(text);
    if (length == 0)
        return false;
    size_t start = length;
    while (start < text.size() && text[start] == ' ')
        ++start;
    if (start == text.size())
        return false;
    value = text.substr(0, length);
    unit = text.substr(start);
    return true;
}

} // namespace

int RunConvert(const Invocation& call) {
    const std::vector<std::string>& p = call.args;
    // The arguments: VALUE FROM TO, VALUE+FROM TO (one token: "10ft"), or
    // FROM TO. A value or a value with its unit and nothing after it lacks
    // the unit to convert to.
    std::string value;
    std::string fromName;
    std::string toName;
    bool hasValue = false;
    std::string splitValue;
    std::string splitUnit;
    if (p.size() == 1)
        return UsageError(call.command, "missing the unit to convert to");
    if (p.size() == 3) {
        hasValue = true;
        value = p[0];
        fromName = p[1];
        toName = p[2];
    } else if (IsWholeNumber(p[0])) {
        return UsageError(call.command, "missing the unit to convert to");
    } else {
        fromName = p[0];
        toName = p[1];
    }

    Settings settings;
    int status = kExitOk;
    if (!ReadSettings(call, hasValue, settings, status))
        return status;
    DataLocation location;
    if (!LoadData(call, location, status))
        return status;
    if (!hasValue && SplitValueAndUnit(p[0], splitValue, splitUnit)) {
        // "1/s" is a unit; "10ft" is the value 10 in ft: a text that starts
        // with a number is a value with its unit when the rest reads as a
        // unit.
        int tag = 0;
        std::string ignored;
        if (FindUnit(splitUnit, tag, ignored)) {
            hasValue = true;
            value = splitValue;
            fromName = splitUnit;
            if (!ReadSettings(call, hasValue, settings, status))
                return status;
        }
    }

    int from = 0;
    int to = 0;
    std::string reason;
    if (!FindUnit(fromName, from, reason))
        return Fail(kExitFailed, UnknownUnit(fromName, reason));
    if (!FindUnit(toName, to, reason))
        return Fail(kExitFailed, UnknownUnit(toName, reason));
    if (!xunUnitsEqv(from, to))
        return Refused(from, to, fromName, toName);
    const std::string* given = hasValue ? &value : nullptr;
    const std::string formula = Formula(from, to, fromName, toName, settings.format);
    if (call.Has("--float"))
        return ConvertValues<float>(from, to, settings, given, formula);
    return ConvertValues<double>(from, to, settings, given, formula);
}

} // namespace xuntool
