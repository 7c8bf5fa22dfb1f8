// Language files (".lan"): localised display texts of item types, filters and
// units, kept apart from the setup file.
//
// A type file (item types, filters) holds one text per key, a unit file two
// texts per key (description and abbreviation). Both start with two header
// lines of free text; then come the entry lines, each a key, blanks and a text
// between double quotes; a line beginning with END closes the list:
//
//     item-type texts
//     language: German
//     10 "Wasserstand"
//     0x20 "Druck"
//     END
//
// Type files take keys as the C library's "%i" reads them (decimal, 0x...
// hexadecimal, 0... octal) and stop the process on a duplicate key. Unit files
// take decimal keys, use two lines per entry (first text, second text; the key
// of the entry is the number on the second line) and keep the first entry of
// a key. Lines are read 249 characters at a time; a longer line is split and
// its remainder read as the next line. There are no comment or blank lines: a
// line that does not scan leaves the key and text of the previous line in
// place (before the first entry line these are the key 0 and the empty text),
// so in a type file it repeats the previous key and stops the process, and in
// a unit file it shifts the pairing of all later lines. An empty text ("")
// keeps the previous entry's text the same way.
//
// Texts must be shorter than 104 characters; a longer one is cut to its first
// 103 characters. Texts are taken byte for byte, never converted.
#pragma once

#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "common/LoadReport.h"

class CKVLangFile {
  public:
    CKVLangFile();
    // Empties both maps. The streams are not closed here: closing is the
    // owner's job (CloseLangTypeFile, CloseLangUnitFile).
    virtual ~CKVLangFile();
    // A copy would share the streams and close them twice.
    CKVLangFile(const CKVLangFile&) = delete;
    CKVLangFile& operator=(const CKVLangFile&) = delete;

    // Opens a type file for reading, skips its two header lines and reads the
    // entries with SetTypeMap. False when the file cannot be opened or has
    // fewer than two lines (a null path counts as a file that cannot be
    // opened); the stream is then closed again, m_pTypeFile is left as it was
    // and the map stays as it was. Otherwise true, whether or not the list
    // ended with END.
    bool OpenLangTypeFile(char* path);
    // Reads type entries up to END (true) or to the end of the file (false).
    // A key that is already present stops the process with an assertion.
    // False at once when no type file is open (m_pTypeFile null).
    bool SetTypeMap();
    // The text of key; a key the file does not hold stops the process with an
    // assertion.
    std::string LoadTypeString(int key);
    // Closes m_pTypeFile when it is set and returns true. The pointer is left
    // as it was, so the object must not be closed twice, nor read from after
    // closing (each object reads one file and is closed once).
    bool CloseLangTypeFile();

    // The same for unit files, on m_pUnitFile and m_xunUnitMap. SetUnitMap
    // keeps the first entry of a key and drops later ones silently.
    bool OpenLangUnitFile(char* path);
    bool SetUnitMap();
    // which == 1 gives the first text of the entry, every other value the
    // second. A key the file does not hold stops the process.
    std::string LoadUnitString(int key, int which);
    bool CloseLangUnitFile();

    // Reports what the readers meet to report (a check, or an observed
    // load), naming the file fileName; before the open functions. Then a
    // duplicate type key is reported as the end of the process (which, but
    // in a check, it is) and, in a check, skipped.
    void SetReport(CXunLoadReport* report, const std::string& fileName);
    // Whether the open file holds a text for key, so that a caller can tell
    // before LoadTypeString or LoadUnitString would stop the process.
    bool HasTypeKey(int key) const { return m_xunTypeMap.count(key) != 0; }
    bool HasUnitKey(int key) const { return m_xunUnitMap.count(key) != 0; }
    // The line of the END line, else the last line read (for reports about
    // the whole list).
    long EndLine() const { return m_nEndLine != 0 ? m_nEndLine : m_nLastLine; }

    FILE* m_pUnitFile;
    FILE* m_pTypeFile;
    std::map<int, std::string> m_xunTypeMap;
    std::map<int, std::string>::iterator m_TypeIterator;
    std::map<int, std::pair<std::string, std::string>> m_xunUnitMap;
    std::map<int, std::pair<std::string, std::string>>::iterator m_UnitIterator;

  private:
    struct Read;
    // Opens path and reads its two header lines; on success the stream goes
    // to stream, otherwise the file is closed again and stream left as it was.
    bool OpenWithHeader(char* path, FILE*& stream);
    bool ReadLine(FILE* file, char (&line)[xun::contract::kLangLineBufferSize], Read& read);
    void CheckText(const char* line, long lineNumber, int scanned, int key, bool longLine,
                   const char* format);
    void Report(long line, const std::string& message, bool warning = false);

    CXunLoadReport* m_pReport = nullptr;
    std::string m_strFileName;
    long m_nNextLine = 1; // the physical line the next read starts on
    bool m_bInLongLine = false;
    long m_nLastLine = 0;
    long m_nEndLine = 0;
    // Where each key was read (for reports).
    std::map<int, long> m_keyLines;
    // Reports of one unit entry, given out in line order once it is read.
    bool m_bHolding = false;
    std::vector<std::pair<long, std::string>> m_held;
};
