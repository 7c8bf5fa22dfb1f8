#include "langfile/KVLangFile.h"

#include <algorithm>
#include <cstring>

#include "common/Assert.h"
#include "common/RegularFile.h"

using namespace xun::contract;

namespace {

// One read takes at most 249 characters and keeps the newline; a longer line
// is split and its remainder comes with the next read.
const int kLineBufferSize = kLangLineBufferSize;

// Texts are shorter than 104 characters. They are scanned with the field width
// 103, so a longer text is cut to its first 103 characters instead of running
// past the buffer. The width in the formats below must stay kTextBufferSize - 1.
const int kTextBufferSize = kLangTextBufferSize;
static_assert(kTextBufferSize == 104, "the scan formats give the text width 103");

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
// stored as the C library's conversion stores them (its low 32 bits). Returns
// the number of fields filled.
//
// Type keys as "%i" reads them: decimal, 0x... hexadecimal or 0... octal.
int ScanTypeEntry_(const char* line, int& key, char (&text)[kTextBufferSize]) {
    return std::sscanf(line, "%i \"%103[^\"]", &key, text);
}

// Unit keys are decimal only.
int ScanUnitEntry_(const char* line, int& key, char (&text)[kTextBufferSize]) {
    return std::sscanf(line, "%d \"%103[^\"]", &key, text);
}

} // namespace

// What one read gave beside its text: the physical line it starts on, and
// whether it is the first part of a line longer than one read.
struct CKVLangFile::Read {
    long line = 0;
    bool startsLongLine = false;
};

CKVLangFile::CKVLangFile()
    : m_pUnitFile(nullptr), m_pTypeFile(nullptr), m_TypeIterator(m_xunTypeMap.end()),
      m_UnitIterator(m_xunUnitMap.end()) {}

CKVLangFile::~CKVLangFile() {
    m_xunTypeMap.clear();
    m_xunUnitMap.clear();
}

void CKVLangFile::SetReport(CXunLoadReport* report, const std::string& fileName) {
    m_pReport = report;
    m_strFileName = fileName;
}

// Reads the next line into `line`. A failed read (end of file or read error)
// returns false and leaves `line` exactly as it was.
bool CKVLangFile::ReadLine(FILE* file, char (&line)[kLineBufferSize], Read& read) {
    char next[kLineBufferSize];
    if (std::fgets(next, kLineBufferSize, file) == nullptr)
        return false;
    const size_t length = std::strlen(next);
    std::memcpy(line, next, length + 1);
    read.line = m_nNextLine;
    const bool complete = length > 0 && next[length - 1] == '\n';
    read.startsLongLine = !complete && !m_bInLongLine && !std::feof(file);
    if (complete) {
        ++m_nNextLine;
        m_bInLongLine = false;
    } else if (read.startsLongLine) {
        m_bInLongLine = true;
    }
    m_nLastLine = read.line;
    return true;
}

void CKVLangFile::Report(long line, const std::string& message, bool warning) {
    if (m_pReport == nullptr || !m_pReport->Observed())
        return;
    if (m_bHolding) {
        m_held.push_back(std::make_pair(line, message));
        return;
    }
    if (warning)
        m_pReport->Warning(m_strFileName, line, message);
    else
        m_pReport->Dropped(m_strFileName, line, message);
}

// Reports a long line, and what is wrong with the quoted text of an entry
// line whose key was read: scanned is the number of fields the scan filled.
void CKVLangFile::CheckText(const char* line, long lineNumber, int scanned, int key, bool longLine,
                            const char* format) {
    if (m_pReport == nullptr || !m_pReport->Observed())
        return;
    if (longLine)
        Report(lineNumber, "line longer than 249 characters: the rest is read as another line");
    if (scanned < 1)
        return;
    if (scanned == 1) {
        Report(lineNumber, "key " + std::to_string(key) +
                               " has no quoted text and takes the text of the entry above");
        return;
    }
    int ignored = 0;
    int start = -1;
    std::sscanf(line, format, &ignored, &start);
    if (start < 0)
        return;
    const char* text = line + start;
    const char* close = std::strchr(text, '"');
    const size_t length = close != nullptr ? static_cast<size_t>(close - text) : std::strlen(text);
    if (close == nullptr)
        Report(lineNumber, "the text has no closing quote: it runs to the end of the line, "
                           "line break included");
    if (length > static_cast<size_t>(kTextBufferSize - 1))
        Report(lineNumber, "the text is longer than 103 characters and is cut");
}

namespace {

// Opens path; null when it cannot be opened or is no regular file (a null
// path counts as such): a FIFO or a device is never read.
FILE* Open_(const char* path) {
    std::string reason;
    return xunOpenRegularFile_(path, "r", reason);
}

} // namespace

bool CKVLangFile::OpenWithHeader(char* path, FILE*& stream) {
    FILE* file = Open_(path);
    if (file == nullptr)
        return false;
    char line[kLineBufferSize] = {};
    Read read;
    if (!ReadLine(file, line, read) || !ReadLine(file, line, read)) {
        std::fclose(file);
        return false;
    }
    stream = file;
    return true;
}

bool CKVLangFile::OpenLangTypeFile(char* path) {
    if (!OpenWithHeader(path, m_pTypeFile))
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
    Read read;
    for (;;) {
        if (!ReadLine(m_pTypeFile, line, read)) {
            Report(EndLine(), "the list does not end with END");
            return false;
        }
        if (IsEndLine_(line)) {
            m_nEndLine = read.line;
            return true;
        }
        const int scanned = ScanTypeEntry_(line, key, text);
        CheckText(line, read.line, scanned, key, read.startsLongLine, "%i \"%n");
        m_TypeIterator = m_xunTypeMap.find(key);
        if (m_TypeIterator != m_xunTypeMap.end()) {
            if (m_pReport != nullptr) {
                const std::string first = std::to_string(m_keyLines[key]);
                m_pReport->Fatal(kTypeKeyDuplicate, m_strFileName, read.line,
                                 scanned < 1
                                     ? "the line does not read as KEY \"TEXT\" and repeats key " +
                                           std::to_string(key) + " of line " + first +
                                           "; loading would stop"
                                     : "duplicate key " + std::to_string(key) + " (first on line " +
                                           first + "); loading would stop");
                // Only a check comes back here: the entry is skipped.
                continue;
            }
            XUN_ASSERT(false, kTypeKeyDuplicate);
        }
        if (scanned < 1)
            Report(read.line, "the line does not read as KEY \"TEXT\"; it is stored as key " +
                                  std::to_string(key));
        m_xunTypeMap.insert(std::make_pair(key, std::string(text)));
        m_keyLines[key] = read.line;
    }
}

std::string CKVLangFile::LoadTypeString(int key) {
    m_TypeIterator = m_xunTypeMap.find(key);
    XUN_ASSERT(m_TypeIterator != m_xunTypeMap.end(), kTypeKeyMissing);
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
    if (!OpenWithHeader(path, m_pUnitFile))
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
    Read a, b;
    for (;;) {
        if (!ReadLine(m_pUnitFile, line, a)) {
            Report(EndLine(), "the list does not end with END");
            return false;
        }
        if (IsEndLine_(line)) {
            m_nEndLine = a.line;
            return true;
        }
        // The reports of one entry come out in line order.
        m_bHolding = m_pReport != nullptr && m_pReport->Observed();
        const int scannedA = ScanUnitEntry_(line, key, first);
        const int keyA = key;
        CheckText(line, a.line, scannedA, key, a.startsLongLine, "%d \"%n");
        if (scannedA < 1)
            Report(a.line, "the line does not read as KEY \"TEXT\": it keeps key " +
                               std::to_string(key) + " and the pairing of the lines below shifts");
        // The second line is neither checked for END nor for the end of the
        // file: a failed read leaves the first line in the buffer, which is
        // then scanned a second time (both texts equal).
        const bool hasB = ReadLine(m_pUnitFile, line, b);
        if (!hasB)
            Report(a.line, "the file ends inside the entry of key " + std::to_string(key) +
                               ": its second text is taken from this line");
        const int scannedB = ScanUnitEntry_(line, key, second);
        if (hasB) {
            CheckText(line, b.line, scannedB, key, b.startsLongLine, "%d \"%n");
            if (scannedB < 1 && IsEndLine_(line))
                Report(b.line, "END stands on the second line of an entry and does not end the "
                               "list");
            else if (scannedB < 1)
                Report(b.line, "the line does not read as KEY \"TEXT\": it keeps key " +
                                   std::to_string(key) +
                                   " and the pairing of the lines below shifts");
        }
        if (scannedA >= 1 && scannedB >= 1 && keyA != key)
            Report(a.line, "the two lines of this entry carry the keys " + std::to_string(keyA) +
                               " and " + std::to_string(key) + ": it is stored under " +
                               std::to_string(key));
        // The first entry of a key wins; later ones are dropped silently.
        m_UnitIterator = m_xunUnitMap.find(key);
        if (m_UnitIterator == m_xunUnitMap.end()) {
            m_xunUnitMap.insert(
                std::make_pair(key, std::make_pair(std::string(first), std::string(second))));
            m_keyLines[key] = a.line;
        } else {
            Report(a.line, "duplicate unit key " + std::to_string(key) + " (first on line " +
                               std::to_string(m_keyLines[key]) + "); this entry is ignored");
        }
        if (m_bHolding) {
            m_bHolding = false;
            std::stable_sort(
                m_held.begin(), m_held.end(),
                [](const std::pair<long, std::string>& x, const std::pair<long, std::string>& y) {
                    return x.first < y.first;
                });
            for (const std::pair<long, std::string>& held : m_held)
                Report(held.first, held.second);
            m_held.clear();
        }
    }
}

std::string CKVLangFile::LoadUnitString(int key, int which) {
    m_UnitIterator = m_xunUnitMap.find(key);
    XUN_ASSERT(m_UnitIterator != m_xunUnitMap.end(), kUnitKeyMissing);
    return which == 1 ? m_UnitIterator->second.first : m_UnitIterator->second.second;
}

bool CKVLangFile::CloseLangUnitFile() {
    if (m_pUnitFile != nullptr)
        std::fclose(m_pUnitFile);
    return true;
}
