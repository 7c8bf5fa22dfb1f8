#include "langfile/KVLangFile.h"

#include <cstring>

#include "units/KVassert.h"

namespace {

// One read takes at most 249 characters and keeps the newline; a longer line
// is split and its remainder comes with the next read.
const int kLineBufferSize = 250;

// Texts are shorter than 104 characters. They are scanned with the field width
// 103, so a longer text is cut to its first 103 characters instead of running
// past the buffer. The width in the formats below must stay kTextBufferSize - 1.
const int kTextBufferSize = 104;
static_assert(kTextBufferSize == 104, "the scan formats give the text width 103");

// Reads the next line into `line`. A failed read (end of file or read error)
// returns false and leaves `line` exactly as it was.
bool ReadLine_(FILE* file, char (&line)[kLineBufferSize]) {
    char next[kLineBufferSize];
    if (std::fgets(next, kLineBufferSize, file) == nullptr)
        return false;
    std::memcpy(line, next, std::strlen(next) + 1);
    return true;
}

// Only the first three characters count, case-sensitively ("ENDING" closes
// the list too).
bool IsEndLine_(const char* line) {
    return std::strncmp(line, "END", 3) == 0;
}

// Scan "<key> <blanks> \"<text>" into key and text with the C library's
// scanning: leading blanks are skipped, the text runs to the next double quote
// or to the end of the line (newline included). What does not match leaves its
// variable as it was: a line without a key keeps both, a line without a quote
// or with an empty text "" keeps the text. Keys outside the int range are
// stored as the C library's conversion stores them (its low 32 bits).
//
// Type keys as "%i" reads them: decimal, 0x... hexadecimal or 0... octal.
void ScanTypeEntry_(const char* line, int& key, char (&text)[kTextBufferSize]) {
    std::sscanf(line, "%i \"%103[^\"]", &key, text);
}

// Unit keys are decimal only.
void ScanUnitEntry_(const char* line, int& key, char (&text)[kTextBufferSize]) {
    std::sscanf(line, "%d \"%103[^\"]", &key, text);
}

// Opens path and reads the two header lines. On success the stream is
// returned through `stream`; otherwise the file is closed again and `stream`
// is left as it was.
bool OpenWithHeader_(const char* path, FILE*& stream) {
    if (path == nullptr)
        return false;
    FILE* file = std::fopen(path, "r");
    if (file == nullptr)
        return false;
    char line[kLineBufferSize] = {};
    if (!ReadLine_(file, line) || !ReadLine_(file, line)) {
        std::fclose(file);
        return false;
    }
    stream = file;
    return true;
}

} // namespace

CKVLangFile::CKVLangFile()
    : m_pUnitFile(nullptr), m_pTypeFile(nullptr), m_TypeIterator(m_xunTypeMap.end()),
      m_UnitIterator(m_xunUnitMap.end()) {}

CKVLangFile::~CKVLangFile() {
    m_xunTypeMap.clear();
    m_xunUnitMap.clear();
}

bool CKVLangFile::OpenLangTypeFile(char* path) {
    if (!OpenWithHeader_(path, m_pTypeFile))
        return false;
    SetTypeMap();
    return true;
}

bool CKVLangFile::SetTypeMap() {
    if (m_pTypeFile == nullptr)
        return false;
    char line[kLineBufferSize] = {};
    // Key and text carry over from line to line: a line that does not scan
    // repeats the previous entry (and so fails the duplicate check).
    int key = 0;
    char text[kTextBufferSize] = {};
    for (;;) {
        if (!ReadLine_(m_pTypeFile, line))
            return false;
        if (IsEndLine_(line))
            return true;
        ScanTypeEntry_(line, key, text);
        m_TypeIterator = m_xunTypeMap.find(key);
        XUN_ASSERT(m_TypeIterator == m_xunTypeMap.end(), "m_TypeIterator == m_xunTypeMap.end()",
                   "KVLangFile", __LINE__, "bool CKVLangFile::SetTypeMap()");
        m_xunTypeMap.insert(std::make_pair(key, std::string(text)));
    }
}

std::string CKVLangFile::LoadTypeString(int key) {
    m_TypeIterator = m_xunTypeMap.find(key);
    XUN_ASSERT(m_TypeIterator != m_xunTypeMap.end(), "m_TypeIterator != m_xunTypeMap.end()",
               "KVLangFile", __LINE__, "string CKVLangFile::LoadTypeString(int)");
    return m_TypeIterator->second;
}

bool CKVLangFile::CloseLangTypeFile() {
    // The pointer stays as it was: a second close of the same object would
    // close the stream again, so every caller closes once.
    if (m_pTypeFile != nullptr)
        std::fclose(m_pTypeFile);
    return true;
}

bool CKVLangFile::OpenLangUnitFile(char* path) {
    if (!OpenWithHeader_(path, m_pUnitFile))
        return false;
    SetUnitMap();
    return true;
}

bool CKVLangFile::SetUnitMap() {
    if (m_pUnitFile == nullptr)
        return false;
    char line[kLineBufferSize] = {};
    // One key variable for both lines of a pair, so the key of an entry is
    // the number on its second line; key and texts carry over from line to
    // line, so a line that does not scan shifts the pairing of later lines.
    int key = 0;
    char first[kTextBufferSize] = {};
    char second[kTextBufferSize] = {};
    for (;;) {
        if (!ReadLine_(m_pUnitFile, line))
            return false;
        if (IsEndLine_(line))
            return true;
        ScanUnitEntry_(line, key, first);
        // The second line is neither checked for END nor for the end of the
        // file: a failed read leaves the first line in the buffer, which is
        // then scanned a second time (both texts equal).
        ReadLine_(m_pUnitFile, line);
        ScanUnitEntry_(line, key, second);
        // The first entry of a key wins; later ones are dropped silently.
        m_UnitIterator = m_xunUnitMap.find(key);
        if (m_UnitIterator == m_xunUnitMap.end())
            m_xunUnitMap.insert(
                std::make_pair(key, std::make_pair(std::string(first), std::string(second))));
    }
}

std::string CKVLangFile::LoadUnitString(int key, int which) {
    m_UnitIterator = m_xunUnitMap.find(key);
    XUN_ASSERT(m_UnitIterator != m_xunUnitMap.end(), "m_UnitIterator != m_xunUnitMap.end()",
               "KVLangFile", __LINE__, "string CKVLangFile::LoadUnitString(int, int)");
    return which == 1 ? m_UnitIterator->second.first : m_UnitIterator->second.second;
}

bool CKVLangFile::CloseLangUnitFile() {
    if (m_pUnitFile != nullptr)
        std::fclose(m_pUnitFile);
    return true;
}
