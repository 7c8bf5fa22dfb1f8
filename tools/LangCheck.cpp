#include "LangCheck.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "Location.h"
#include "langfile/KVLangFile.h"

namespace xuntool {

namespace {

// The reader's limits: lines are read 249 characters at a time, texts are
// cut after 103 characters.
const int kLineBufferSize = 250;
const size_t kMaxTextLength = 103;

// One read of the reader: at most 249 characters, with the physical line on
// which it starts.
struct Chunk {
    std::string text;
    long line;
};

class LineReader {
  public:
    explicit LineReader(std::FILE* file) : m_file(file) {}

    // The next read, as the library's reader makes it; false at the end.
    bool Next(Chunk& chunk, bool& startsLongLine) {
        char buffer[kLineBufferSize];
        if (std::fgets(buffer, kLineBufferSize, m_file) == nullptr)
            return false;
        chunk.text = buffer;
        chunk.line = m_line;
        const bool complete = !chunk.text.empty() && chunk.text.back() == '\n';
        startsLongLine = !complete && !m_inLongLine && !std::feof(m_file);
        if (complete) {
            ++m_line;
            m_inLongLine = false;
        } else if (startsLongLine) {
            m_inLongLine = true;
        }
        m_lastLine = chunk.line;
        return true;
    }

    long LastLine() const { return m_lastLine; }

  private:
    std::FILE* m_file;
    long m_line = 1;
    long m_lastLine = 0;
    bool m_inLongLine = false;
};

// The keys that a load would know from a file, with the line of each, and
// the line of the list's end.
struct LangKeys {
    std::map<int, long> lines;
    long endLine = 0;
};

bool IsEnd(const std::string& text) {
    return text.compare(0, 3, "END") == 0;
}

class FileCheck {
  public:
    FileCheck(const std::string& path, Report& report) : m_path(path), m_report(report) {}

    // Opens the file and skips its two header lines as the reader does;
    // false (after a note) when a load would skip the file.
    bool Open() {
        m_file = std::fopen(m_path.c_str(), "r");
        if (m_file == nullptr) {
            std::fflush(stdout);
            std::fprintf(stderr,
                         "xun: note: cannot read '%s': %s; a load keeps the setup file's texts\n",
                         m_path.c_str(), std::strerror(errno));
            return false;
        }
        m_reader.reset(new LineReader(m_file));
        Chunk chunk;
        bool longLine = false;
        for (int i = 0; i < 2; ++i) {
            if (!m_reader->Next(chunk, longLine)) {
                std::fflush(stdout);
                std::fprintf(stderr, "xun: note: '%s' has fewer than two lines; a load skips it\n",
                             m_path.c_str());
                std::fclose(m_file);
                m_file = nullptr;
                return false;
            }
        }
        return true;
    }

    ~FileCheck() {
        if (m_file != nullptr)
            std::fclose(m_file);
    }
    FileCheck(const FileCheck&) = delete;
    FileCheck& operator=(const FileCheck&) = delete;

    // Messages wait in Hold mode until Flush, which reports them in line
    // order (the two lines of a unit entry are judged together).
    void Add(long line, const std::string& message) {
        if (m_holding)
            m_held.push_back(std::make_pair(line, message));
        else
            m_report.Add(m_path, line, message);
    }
    void Hold() { m_holding = true; }
    void Flush() {
        std::stable_sort(m_held.begin(), m_held.end(),
                         [](const std::pair<long, std::string>& a,
                            const std::pair<long, std::string>& b) { return a.first < b.first; });
        for (const std::pair<long, std::string>& message : m_held)
            m_report.Add(m_path, message.first, message.second);
        m_held.clear();
        m_holding = false;
    }

    // Reports a long line, and what is wrong with the quoted text of an
    // entry line whose key was read: scanned is the number of fields the
    // reader's scan filled.
    void CheckText(const Chunk& chunk, int scanned, int key, bool longLine, const char* format) {
        if (longLine)
            Add(chunk.line, "line longer than 249 characters: the rest is read as another line");
        if (scanned < 1)
            return;
        if (scanned == 1) {
            Add(chunk.line, "key " + std::to_string(key) +
                                " has no quoted text and takes the text of the entry above");
            return;
        }
        int ignored = 0;
        int start = -1;
        std::sscanf(chunk.text.c_str(), format, &ignored, &start);
        if (start < 0)
            return;
        const size_t close = chunk.text.find('"', static_cast<size_t>(start));
        const size_t length =
            (close == std::string::npos ? chunk.text.size() : close) - static_cast<size_t>(start);
        if (close == std::string::npos)
            Add(chunk.line, "the text has no closing quote: it runs to the end of the line, "
                            "line break included");
        if (length > kMaxTextLength)
            Add(chunk.line, "the text is longer than 103 characters and is cut");
    }

    // The line for messages about the whole list: the END line, else the
    // last line.
    long EndLine() const { return m_endLine != 0 ? m_endLine : m_reader->LastLine(); }

    std::string m_path;
    Report& m_report;
    std::FILE* m_file = nullptr;
    std::unique_ptr<LineReader> m_reader;
    long m_endLine = 0;
    bool m_holding = false;
    std::vector<std::pair<long, std::string>> m_held;
};

// A type file ("xuntype.lan", "xunfilter.lan"): one entry line per key,
// "%i" keys, a repeated key stops the reader. Returns the keys that a load
// would know (empty when the file is skipped) through keys.
bool CheckTypeFile(const std::string& path, Report& report, LangKeys& result) {
    std::map<int, long>& keys = result.lines;
    FileCheck check(path, report);
    if (!check.Open())
        return false;
    int key = 0;
    char text[104] = {};
    bool stops = false;
    Chunk chunk;
    bool longLine = false;
    while (check.m_reader->Next(chunk, longLine)) {
        if (IsEnd(chunk.text)) {
            check.m_endLine = chunk.line;
            break;
        }
        const int scanned = std::sscanf(chunk.text.c_str(), "%i \"%103[^\"]", &key, text);
        check.CheckText(chunk, scanned, key, longLine, "%i \"%n");
        std::map<int, long>::const_iterator first = keys.find(key);
        if (scanned < 1) {
            if (first != keys.end()) {
                check.Add(chunk.line, "the line does not read as KEY \"TEXT\" and repeats key " +
                                          std::to_string(key) + " of line " +
                                          std::to_string(first->second) + "; loading would stop");
                stops = true;
                continue;
            }
            check.Add(chunk.line, "the line does not read as KEY \"TEXT\"; it is stored as key " +
                                      std::to_string(key));
        } else if (first != keys.end()) {
            check.Add(chunk.line, "duplicate key " + std::to_string(key) + " (first on line " +
                                      std::to_string(first->second) + "); loading would stop");
            stops = true;
            continue;
        }
        keys[key] = chunk.line;
    }
    if (check.m_endLine == 0)
        check.Add(check.EndLine(), "the list does not end with END");
    const long endLine = check.EndLine();
    if (!stops) {
        // Nothing stops the library's reader here: let it read the file, and
        // take the keys from it.
        CKVLangFile file;
        std::vector<char> name(path.c_str(), path.c_str() + path.size() + 1);
        if (file.OpenLangTypeFile(name.data())) {
            std::map<int, long> read;
            for (const std::pair<const int, std::string>& entry : file.m_xunTypeMap)
                read[entry.first] = keys.count(entry.first) ? keys[entry.first] : endLine;
            keys.swap(read);
            file.CloseLangTypeFile();
        }
    }
    result.endLine = endLine;
    return true;
}

// The unit file: two lines per entry, "%d" keys, the key of an entry is the
// number on its second line, and the first entry of a key wins.
bool CheckUnitFile(const std::string& path, Report& report, LangKeys& result) {
    std::map<int, long>& keys = result.lines;
    FileCheck check(path, report);
    if (!check.Open())
        return false;
    int key = 0;
    char first[104] = {};
    char second[104] = {};
    std::map<int, long> lines;
    Chunk a;
    Chunk b;
    bool longA = false;
    bool longB = false;
    while (check.m_reader->Next(a, longA)) {
        if (IsEnd(a.text)) {
            check.m_endLine = a.line;
            break;
        }
        check.Hold();
        const int scannedA = std::sscanf(a.text.c_str(), "%d \"%103[^\"]", &key, first);
        const int keyA = key;
        check.CheckText(a, scannedA, key, longA, "%d \"%n");
        if (scannedA < 1)
            check.Add(a.line, "the line does not read as KEY \"TEXT\": it keeps key " +
                                  std::to_string(key) +
                                  " and the pairing of the lines below shifts");
        const bool hasB = check.m_reader->Next(b, longB);
        if (!hasB) {
            check.Add(a.line, "the file ends inside the entry of key " + std::to_string(key) +
                                  ": its second text is taken from this line");
            b = a;
            longB = false;
        }
        const int scannedB = std::sscanf(b.text.c_str(), "%d \"%103[^\"]", &key, second);
        if (hasB) {
            check.CheckText(b, scannedB, key, longB, "%d \"%n");
            if (scannedB < 1 && IsEnd(b.text))
                check.Add(b.line, "END stands on the second line of an entry and does not end "
                                  "the list");
            else if (scannedB < 1)
                check.Add(b.line, "the line does not read as KEY \"TEXT\": it keeps key " +
                                      std::to_string(key) +
                                      " and the pairing of the lines below shifts");
        }
        if (scannedA >= 1 && scannedB >= 1 && keyA != key)
            check.Add(a.line, "the two lines of this entry carry the keys " + std::to_string(keyA) +
                                  " and " + std::to_string(key) + ": it is stored under " +
                                  std::to_string(key));
        std::map<int, long>::const_iterator earlier = lines.find(key);
        if (earlier != lines.end()) {
            check.Add(a.line, "duplicate unit key " + std::to_string(key) + " (first on line " +
                                  std::to_string(earlier->second) + "); this entry is ignored");
        } else {
            lines[key] = a.line;
        }
        check.Flush();
    }
    if (check.m_endLine == 0)
        check.Add(check.EndLine(), "the list does not end with END");
    const long endLine = check.EndLine();
    // The keys as the library's reader finds them.
    CKVLangFile file;
    std::vector<char> name(path.c_str(), path.c_str() + path.size() + 1);
    if (file.OpenLangUnitFile(name.data())) {
        for (const std::pair<const int, std::pair<std::string, std::string>>& entry :
             file.m_xunUnitMap)
            keys[entry.first] = lines.count(entry.first) ? lines[entry.first] : endLine;
        file.CloseLangUnitFile();
    }
    result.endLine = endLine;
    return true;
}

void CheckMissing(const std::string& path, const LangKeys& keys, const char* kind,
                  const std::vector<Defined>& defined, const std::string& setupName,
                  Report& report) {
    for (const Defined& d : defined) {
        const int key = static_cast<int>(d.key);
        if (keys.lines.count(key) != 0)
            continue;
        report.Add(path, keys.endLine,
                   std::string("no text for ") + kind + " " + std::to_string(key) + " " +
                       Quote(d.ident) + " (" + setupName + ":" + std::to_string(d.line) +
                       "); loading would stop");
    }
}

} // namespace

void CheckLanguageFiles(const std::string& dir, const std::string& setupName,
                        const SetupContents& contents, Report& report) {
    const std::string typePath = JoinPath(dir, "xuntype.lan");
    const std::string unitPath = JoinPath(dir, "xununit.lan");
    const std::string filterPath = JoinPath(dir, "xunfilter.lan");
    LangKeys types;
    if (CheckTypeFile(typePath, report, types))
        CheckMissing(typePath, types, "item type", contents.items, setupName, report);
    LangKeys units;
    if (CheckUnitFile(unitPath, report, units))
        CheckMissing(unitPath, units, "unit", contents.units, setupName, report);
    LangKeys filters;
    if (CheckTypeFile(filterPath, report, filters))
        CheckMissing(filterPath, filters, "filter", contents.filters, setupName, report);
}

} // namespace xuntool
