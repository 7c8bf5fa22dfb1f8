// Fuzz target: the language-file reader. The first byte chooses the kind of
// file (even: a type file, odd: a unit file); the rest is the file, written
// to a temporary file and opened with OpenLangTypeFile or OpenLangUnitFile.
// Every key read must then be found with the text it was read with, no text
// may be longer than 103 characters, and a key the file does not hold must
// stop the lookup with the reader's assertion.
#include <climits>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "FuzzSupport.h"
#include "langfile/KVLangFile.h"

namespace {

const size_t kMaxText = 103;

template <class Map> int AbsentKey(const Map& map) {
    int key = INT_MIN;
    while (map.count(key) != 0)
        ++key;
    return key;
}

void ReadTypeFile(std::vector<char>& name) {
    CKVLangFile file;
    bool opened = false;
    bool stopped = false;
    try {
        opened = file.OpenLangTypeFile(name.data());
    } catch (const XunFuzzAssertion&) {
        stopped = true; // a duplicate key
    }
    if (!opened && !stopped) {
        if (file.m_pTypeFile != nullptr || !file.m_xunTypeMap.empty())
            xunFuzzFail("a type file that did not open left a stream or entries");
        return;
    }
    for (const auto& entry : file.m_xunTypeMap) {
        if (entry.second.size() > kMaxText)
            xunFuzzFail("a type text longer than 103 characters");
        if (file.LoadTypeString(entry.first) != entry.second)
            xunFuzzFail("LoadTypeString differs from the entry read");
    }
    try {
        file.LoadTypeString(AbsentKey(file.m_xunTypeMap));
        xunFuzzFail("the lookup of an absent type key did not stop");
    } catch (const XunFuzzAssertion&) {
    }
    file.CloseLangTypeFile();
}

void ReadUnitFile(std::vector<char>& name) {
    CKVLangFile file;
    const bool opened = file.OpenLangUnitFile(name.data());
    if (!opened) {
        if (file.m_pUnitFile != nullptr || !file.m_xunUnitMap.empty())
            xunFuzzFail("a unit file that did not open left a stream or entries");
        return;
    }
    for (const auto& entry : file.m_xunUnitMap) {
        if (entry.second.first.size() > kMaxText || entry.second.second.size() > kMaxText)
            xunFuzzFail("a unit text longer than 103 characters");
        if (file.LoadUnitString(entry.first, 1) != entry.second.first ||
            file.LoadUnitString(entry.first, 2) != entry.second.second ||
            file.LoadUnitString(entry.first, 0) != entry.second.second)
            xunFuzzFail("LoadUnitString differs from the entry read");
    }
    try {
        file.LoadUnitString(AbsentKey(file.m_xunUnitMap), 1);
        xunFuzzFail("the lookup of an absent unit key did not stop");
    } catch (const XunFuzzAssertion&) {
    }
    file.CloseLangUnitFile();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    xunFuzzInit();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1)
        return 0;
    const bool unitFile = (data[0] & 1) != 0;
    const std::string path = xunFuzzWriteFile("input.lan", data + 1, size - 1);
    std::vector<char> name(path.c_str(), path.c_str() + path.size() + 1);
    if (unitFile)
        ReadUnitFile(name);
    else
        ReadTypeFile(name);
    return 0;
}
