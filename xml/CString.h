// CString: the text class of the XML access layer, the location-path parser,
// the setup loader and the base-group file reader.
//
// A small value class over a NUL-terminated char text. It never holds an
// embedded NUL byte (every text enters through a NUL-terminated char*), so its
// text can always be handed on as a plain C string of GetLength() bytes.
//
// Null pointers are accepted wherever a text is taken and read as the empty
// text; indexes outside the text never read outside it.
//
// Limit: a text holds at most kMaxLength (INT_MAX - 1) bytes, so that every
// index and every tokenizer position fits an int. A construction, assignment
// or append that would exceed it throws std::length_error and leaves the
// object unchanged.
#pragma once

#include <climits>
#include <string>

class CString {
  public:
    static constexpr int kMaxLength = INT_MAX - 1;

    CString() = default;
    // A null text gives the empty text.
    CString(const char* text);

    // Assigns a copy of the text (null: the empty text). The argument may
    // point into this object's own text.
    CString& operator=(const char* text);
    // Appends the text (null: nothing). The argument may point into this
    // object's own text.
    CString& operator+=(const char* text);

    // Index of the first occurrence of sub at or after start, -1 when there
    // is none. A negative start searches from the beginning; a start beyond
    // the end finds nothing. An empty sub is found at start (when start lies
    // within the text or at its end). A null sub finds nothing.
    int Find(const char* sub, int start = 0) const;

    // Three-way byte comparison (bytes compare as unsigned char): -1, 0 or 1.
    // A null text compares as the empty text.
    int Compare(const char* text) const;

    bool IsEmpty() const { return m_str.empty(); }

    // Starting at position, skips delimiter characters and returns the
    // longest following run of non-delimiter characters; position then lies
    // one past the delimiter that ends the run (one past the end of the text
    // when the run ends the text). When no run remains (also for a negative
    // position or one at or beyond the end) it returns the empty text and sets
    // position to -1, so that further calls keep returning the empty text.
    // Empty fields between consecutive delimiters are never returned. A null
    // or empty delimiter set makes the rest of the text one run.
    CString Tokenize(const char* delimiters, int& position) const;

    // The text, NUL-terminated; valid until the object changes or ends.
    const char* GetString() const { return m_str.c_str(); }

    // The number of bytes of the text, without the terminating NUL.
    int GetLength() const { return static_cast<int>(m_str.size()); }

    // The byte at index; index == GetLength() gives the terminating NUL, and
    // any index outside the text gives '\0' as well.
    char operator[](int index) const;

    // Exact, case-sensitive equality, byte by byte, with equal lengths.
    friend bool operator==(const CString& a, const CString& b) { return a.m_str == b.m_str; }
    friend bool operator!=(const CString& a, const CString& b) { return a.m_str != b.m_str; }
    friend bool operator==(const CString& a, const char* b) { return a.Compare(b) == 0; }
    friend bool operator!=(const CString& a, const char* b) { return a.Compare(b) != 0; }

  private:
    std::string m_str;
};
