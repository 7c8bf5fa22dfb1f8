// Fuzz target: the keyword-file reader and the unit base-group file. The
// input is written to a temporary file and read with lrxLoadFile; every
// section and keyword whose name the input holds is then looked up by name
// and number and its parameters read. The same file then goes through
// LoadUnitBaseGroupFile over the units and item types of a loaded
// installation.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "FuzzSupport.h"
#include "langfile/KeywordFile.h"
#include "xun.h"

namespace {

// At most this many names and numbers are tried per input, so that a large
// input does not spend its time on lookups.
const size_t kMaxNames = 16;
const int kMaxNumber = 8;

std::string Trim(const std::string& text) {
    const size_t begin = text.find_first_not_of(" \t\r");
    if (begin == std::string::npos)
        return std::string();
    const size_t end = text.find_last_not_of(" \t\r");
    return text.substr(begin, end - begin + 1);
}

// The names the input could define: the text between '[' and ']' of a line
// and the text before the first '=' of a line, trimmed.
std::set<std::string> CandidateNames(const uint8_t* data, size_t size) {
    std::set<std::string> names = {"Item_Unit", "Data"};
    const std::string text(reinterpret_cast<const char*>(data), size);
    size_t begin = 0;
    while (begin < text.size() && names.size() < kMaxNames) {
        size_t end = text.find('\n', begin);
        if (end == std::string::npos)
            end = text.size();
        const std::string line = Trim(text.substr(begin, end - begin));
        if (!line.empty() && line[0] == '[') {
            const size_t close = line.find(']');
            if (close != std::string::npos)
                names.insert(Trim(line.substr(1, close - 1)));
        } else {
            const size_t equals = line.find('=');
            if (equals != std::string::npos)
                names.insert(Trim(line.substr(0, equals)));
        }
        begin = end + 1;
    }
    return names;
}

void ReadParameters(const CLrxKeyword* keyword) {
    for (int p = 0; p <= kMaxNumber; ++p) {
        const CLrxParam* param = lrxParamByNum(keyword, p);
        if (p == 0 && param != nullptr)
            xunFuzzFail("parameter 0 exists");
        const ELrxParamType type = lrxGetParamType(param);
        const int integer = lrxGetInt(param);
        lrxGetReal(param);
        const char* text = lrxGetText(param);
        if ((type == LRX_PARAM_TEXT) != (text != nullptr))
            xunFuzzFail("a text parameter without text, or text of another kind");
        if (text != nullptr && std::strchr(text, '"') != nullptr)
            xunFuzzFail("a text parameter holds a double quote");
        if (type != LRX_PARAM_INT && integer != 0)
            xunFuzzFail("an integer value of a parameter that is no integer");
        if (param == nullptr && type != LRX_PARAM_NONE)
            xunFuzzFail("a type for a missing parameter");
    }
}

void Walk(const CLrxFile* file, const std::set<std::string>& names) {
    for (const std::string& sectionName : names) {
        if (lrxTargetByNameNum(file, sectionName.c_str(), 0) != nullptr)
            xunFuzzFail("section number 0 exists");
        for (int s = 1; s <= kMaxNumber; ++s) {
            const CLrxSection* section = lrxTargetByNameNum(file, sectionName.c_str(), s);
            if (section == nullptr)
                break;
            for (const std::string& keywordName : names) {
                for (int k = 1; k <= kMaxNumber; ++k) {
                    const CLrxKeyword* keyword =
                        lrxKeywordByNameNum(section, keywordName.c_str(), k);
                    if (keyword == nullptr)
                        break;
                    ReadParameters(keyword);
                }
            }
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    xunFuzzInit();
    xunFuzzLoadInstallation();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string path = xunFuzzWriteFile("input.kw", data, size);
    CLrxFile* file = lrxLoadFile(path.c_str(), 1);
    const char* error = lrxGetErrorGlb();
    if (error == nullptr || (file != nullptr) != (error[0] == '\0'))
        xunFuzzFail("the error text does not match the outcome of the load");
    if (file != nullptr) {
        Walk(file, CandidateNames(data, size));
        lrxClose(&file);
        if (file != nullptr)
            xunFuzzFail("lrxClose left the handle set");
    }

    std::vector<char> name(path.c_str(), path.c_str() + path.size() + 1);
    try {
        LoadUnitBaseGroupFile(name.data());
    } catch (const XunFuzzAssertion&) {
    }
    return 0;
}
