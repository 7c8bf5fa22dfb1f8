#include "langfile/KeywordFile.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <map>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "common/RegularFile.h"

class CLrxParam {
  public:
    ELrxParamType m_eType = LRX_PARAM_NONE;
    int m_nValue = 0;      // integer parameters
    double m_dValue = 0.0; // real parameters, and integers as doubles
    std::string m_strText; // text parameters, without the quotes
};

class CLrxKeyword {
  public:
    std::string m_strName;
    std::vector<CLrxParam> m_Params;
    int m_nLine = 0; // the line of the file it stands on
};

// Positions of the elements of each name, in file order: the num-th element
// called name is at m_Index[name][num - 1]. The transparent comparison lets
// lookups by a plain text run without building a string (they never throw).
typedef std::map<std::string, std::vector<size_t>, std::less<>> CLrxNameIndex;

class CLrxSection {
  public:
    std::string m_strName;
    std::vector<CLrxKeyword> m_Keywords;
    CLrxNameIndex m_Index;
};

class CLrxFile {
  public:
    std::vector<CLrxSection> m_Sections;
    CLrxNameIndex m_Index;
};

namespace {

// The outcome of the last load. LrxErrorText_ points either into LrxError_ or,
// when even the message could not be stored, at a fixed text.
std::string LrxError_;
const char* LrxErrorText_ = "";
// Whether the last load failed because memory ran out.
bool LrxOutOfMemory_ = false;

void SetError_(const std::string& text) noexcept {
    try {
        LrxError_ = text;
        LrxErrorText_ = LrxError_.c_str();
    } catch (...) {
        LrxErrorText_ = "out of memory";
    }
}

// A syntax error of one line: the reason, reported with the file name and the
// line number.
struct LrxSyntaxError_ {
    std::string reason;
};

bool IsBlank_(char c) {
    return c == ' ' || c == '\t';
}
bool IsDigit_(char c) {
    return c >= '0' && c <= '9';
}

bool IsNameChar_(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || IsDigit_(c) || c == '_' ||
           c == '-' || c == '.';
}

bool IsName_(const std::string& text) {
    if (text.empty())
        return false;
    for (char c : text)
        if (!IsNameChar_(c))
            return false;
    return true;
}

// Removes leading and trailing blanks and tabs.
std::string Trim_(const std::string& text) {
    size_t begin = 0;
    size_t end = text.size();
    while (begin < end && IsBlank_(text[begin]))
        ++begin;
    while (end > begin && IsBlank_(text[end - 1]))
        --end;
    return text.substr(begin, end - begin);
}

// The line as the grammar sees it: a trailing carriage return goes, then the
// blanks and tabs at both ends.
std::string TrimLine_(std::string line) {
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return Trim_(line);
}

std::string ParamReason_(size_t number, const char* what) {
    return "parameter " + std::to_string(number) + ": " + what;
}

// Skips the digits from position i on; returns the position after them.
size_t SkipDigits_(const std::string& text, size_t i) {
    while (i < text.size() && IsDigit_(text[i]))
        ++i;
    return i;
}

// Reads an unquoted parameter: an integer (sign and digits only) or a real
// (sign, digits with a decimal point and/or an exponent).
CLrxParam NumberParam_(const std::string& text, size_t number) {
    size_t i = 0;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        ++i;
    const size_t mantissa = i;
    i = SkipDigits_(text, i);
    size_t digits = i - mantissa;
    bool isReal = false;
    if (i < text.size() && text[i] == '.') {
        isReal = true;
        const size_t fraction = i + 1;
        i = SkipDigits_(text, fraction);
        digits += i - fraction;
    }
    if (digits > 0 && i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        isReal = true;
        ++i;
        if (i < text.size() && (text[i] == '+' || text[i] == '-'))
            ++i;
        const size_t exponent = i;
        i = SkipDigits_(text, i);
        if (i == exponent)
            digits = 0; // an exponent needs digits
    }
    if (digits == 0 || i != text.size())
        throw LrxSyntaxError_{ParamReason_(number, "not a number or a quoted text")};

    // from_chars does not take a leading '+' and never looks at the locale.
    const char* first = text.data() + (text[0] == '+' ? 1 : 0);
    const char* last = text.data() + text.size();
    CLrxParam param;
    if (isReal) {
        double value = 0.0;
        const std::from_chars_result result = std::from_chars(first, last, value);
        if (result.ec == std::errc::result_out_of_range)
            throw LrxSyntaxError_{ParamReason_(number, "real out of range")};
        if (result.ec != std::errc() || result.ptr != last)
            throw LrxSyntaxError_{ParamReason_(number, "not a number or a quoted text")};
        param.m_eType = LRX_PARAM_REAL;
        param.m_dValue = value;
    } else {
        int value = 0;
        const std::from_chars_result result = std::from_chars(first, last, value);
        if (result.ec == std::errc::result_out_of_range)
            throw LrxSyntaxError_{ParamReason_(number, "integer out of range")};
        if (result.ec != std::errc() || result.ptr != last)
            throw LrxSyntaxError_{ParamReason_(number, "not a number or a quoted text")};
        param.m_eType = LRX_PARAM_INT;
        param.m_nValue = value;
        param.m_dValue = value;
    }
    return param;
}

// Splits the text after '=' into parameters at the commas outside quotes.
std::vector<CLrxParam> ParseParams_(const std::string& text) {
    std::vector<CLrxParam> params;
    if (Trim_(text).empty())
        return params; // "Keyword =": no parameters
    size_t i = 0;
    for (;;) {
        const size_t number = params.size() + 1;
        while (i < text.size() && IsBlank_(text[i]))
            ++i;
        if (i < text.size() && text[i] == '"') {
            const size_t close = text.find('"', i + 1);
            if (close == std::string::npos)
                throw LrxSyntaxError_{ParamReason_(number, "text without closing quote")};
            CLrxParam param;
            param.m_eType = LRX_PARAM_TEXT;
            param.m_strText = text.substr(i + 1, close - i - 1);
            params.push_back(param);
            i = close + 1;
            while (i < text.size() && IsBlank_(text[i]))
                ++i;
            if (i < text.size() && text[i] != ',')
                throw LrxSyntaxError_{ParamReason_(number, "characters after the closing quote")};
        } else {
            const size_t comma = std::min(text.find(',', i), text.size());
            const std::string item = Trim_(text.substr(i, comma - i));
            if (item.empty())
                throw LrxSyntaxError_{"parameter " + std::to_string(number) + " is empty"};
            params.push_back(NumberParam_(item, number));
            i = comma;
        }
        if (i >= text.size())
            return params;
        ++i; // past the comma: another parameter must follow
    }
}

void AddToIndex_(CLrxNameIndex& index, const std::string& name, size_t position) {
    index[name].push_back(position);
}

// Adds one line (already trimmed) to the file being read.
void ParseLine_(CLrxFile& file, const std::string& line, size_t lineNumber) {
    if (line.empty() || line[0] == '#' || line[0] == ';')
        return;
    if (line[0] == '[') {
        const size_t close = line.find(']');
        if (close == std::string::npos)
            throw LrxSyntaxError_{"section name without closing ']'"};
        if (close + 1 != line.size())
            throw LrxSyntaxError_{"characters after the closing ']'"};
        const std::string name = Trim_(line.substr(1, close - 1));
        if (!IsName_(name))
            throw LrxSyntaxError_{"invalid section name"};
        CLrxSection section;
        section.m_strName = name;
        file.m_Sections.push_back(section);
        AddToIndex_(file.m_Index, name, file.m_Sections.size() - 1);
        return;
    }
    const size_t equals = line.find('=');
    if (equals == std::string::npos)
        throw LrxSyntaxError_{"neither a section nor a keyword"};
    CLrxKeyword keyword;
    keyword.m_strName = Trim_(line.substr(0, equals));
    if (!IsName_(keyword.m_strName))
        throw LrxSyntaxError_{"invalid keyword name"};
    if (file.m_Sections.empty())
        throw LrxSyntaxError_{"keyword before the first section"};
    keyword.m_Params = ParseParams_(line.substr(equals + 1));
    keyword.m_nLine = static_cast<int>(lineNumber);
    CLrxSection& section = file.m_Sections.back();
    section.m_Keywords.push_back(keyword);
    AddToIndex_(section.m_Index, keyword.m_strName, section.m_Keywords.size() - 1);
}

// The element number num (from 1) of the given name, or null.
template <class Element>
const Element* FindByNameNum_(const std::vector<Element>& elements, const CLrxNameIndex& index,
                              const char* name, int num) noexcept {
    if (name == nullptr || num < 1)
        return nullptr;
    const CLrxNameIndex::const_iterator found = index.find(name);
    if (found == index.end() || static_cast<size_t>(num) > found->second.size())
        return nullptr;
    return &elements[found->second[static_cast<size_t>(num) - 1]];
}

// Reads and parses the whole file. Returns null and sets the error on failure.
CLrxFile* Load_(const std::string& name) {
    // A FIFO, a device or a directory is not read at all.
    std::string reason;
    bool notRegular = false;
    FILE* stream = xunOpenRegularFile_(name.c_str(), "rb", reason, &notRegular);
    if (stream == nullptr) {
        SetError_(name + (notRegular ? ": cannot read the file" : ": cannot open the file"));
        return nullptr;
    }
    std::string content;
    char chunk[16384];
    size_t count = 0;
    while ((count = std::fread(chunk, 1, sizeof chunk, stream)) > 0)
        content.append(chunk, count);
    const bool failed = std::ferror(stream) != 0;
    std::fclose(stream);
    if (failed) {
        SetError_(name + ": cannot read the file");
        return nullptr;
    }

    CLrxFile file;
    size_t lineNumber = 0;
    size_t begin = 0;
    while (begin < content.size()) {
        ++lineNumber;
        size_t end = content.find('\n', begin);
        if (end == std::string::npos)
            end = content.size();
        try {
            ParseLine_(file, TrimLine_(content.substr(begin, end - begin)), lineNumber);
        } catch (const LrxSyntaxError_& error) {
            SetError_(name + ":" + std::to_string(lineNumber) + ": " + error.reason);
            return nullptr;
        }
        begin = end + 1;
    }
    CLrxFile* loaded = new CLrxFile(std::move(file));
    SetError_("");
    return loaded;
}

} // namespace

CLrxFile* lrxLoadFile(const char* name, int mode) noexcept {
    LrxOutOfMemory_ = false;
    if (name == nullptr) {
        SetError_("no file name given");
        return nullptr;
    }
    try {
        if (mode != 1) {
            SetError_(std::string(name) + ": unsupported mode " + std::to_string(mode));
            return nullptr;
        }
        return Load_(name);
    } catch (...) {
        // Only memory exhaustion gets here; the message itself may not fit.
        LrxOutOfMemory_ = true;
        try {
            SetError_(std::string(name) + ": out of memory");
        } catch (...) {
            LrxErrorText_ = "out of memory";
        }
        return nullptr;
    }
}

const CLrxSection* lrxTargetByNameNum(const CLrxFile* file, const char* name, int num) noexcept {
    if (file == nullptr)
        return nullptr;
    return FindByNameNum_(file->m_Sections, file->m_Index, name, num);
}

const CLrxKeyword* lrxKeywordByNameNum(const CLrxSection* section, const char* name,
                                       int num) noexcept {
    if (section == nullptr)
        return nullptr;
    return FindByNameNum_(section->m_Keywords, section->m_Index, name, num);
}

const CLrxParam* lrxParamByNum(const CLrxKeyword* keyword, int num) noexcept {
    if (keyword == nullptr || num < 1 || static_cast<size_t>(num) > keyword->m_Params.size())
        return nullptr;
    return &keyword->m_Params[static_cast<size_t>(num) - 1];
}

int lrxGetInt(const CLrxParam* param) noexcept {
    if (param == nullptr || param->m_eType != LRX_PARAM_INT)
        return 0;
    return param->m_nValue;
}

ELrxParamType lrxGetParamType(const CLrxParam* param) noexcept {
    return param == nullptr ? LRX_PARAM_NONE : param->m_eType;
}

double lrxGetReal(const CLrxParam* param) noexcept {
    if (param == nullptr || param->m_eType == LRX_PARAM_TEXT)
        return 0.0;
    return param->m_dValue;
}

const char* lrxGetText(const CLrxParam* param) noexcept {
    if (param == nullptr || param->m_eType != LRX_PARAM_TEXT)
        return nullptr;
    return param->m_strText.c_str();
}

void lrxClose(CLrxFile** file) noexcept {
    if (file == nullptr)
        return;
    delete *file;
    *file = nullptr;
}

const char* lrxGetErrorGlb() noexcept {
    return LrxErrorText_;
}

int lrxKeywordLine(const CLrxKeyword* keyword) noexcept {
    return keyword != nullptr ? keyword->m_nLine : 0;
}

bool lrxOutOfMemory() noexcept {
    return LrxOutOfMemory_;
}
