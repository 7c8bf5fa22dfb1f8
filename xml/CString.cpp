#include "xml/CString.h"

#include <cstring>
#include <stdexcept>

namespace {

// Length of a text that may be null, checked against the length limit of the
// class together with what the object already holds.
size_t CheckedLength_(const char* text, size_t existing) {
    if (text == nullptr)
        return 0;
    const size_t length = std::strlen(text);
    if (length > static_cast<size_t>(CString::kMaxLength) - existing)
        throw std::length_error("CString: text longer than INT_MAX - 1 bytes");
    return length;
}

} // namespace

CString::CString(const char* text) {
    m_str.assign(text == nullptr ? "" : text, CheckedLength_(text, 0));
}

CString& CString::operator=(const char* text) {
    const size_t length = CheckedLength_(text, 0);
    // std::string::assign copes with a source inside its own buffer.
    m_str.assign(text == nullptr ? "" : text, length);
    return *this;
}

CString& CString::operator+=(const char* text) {
    const size_t length = CheckedLength_(text, m_str.size());
    if (length != 0)
        m_str.append(text, length);
    return *this;
}

int CString::Find(const char* sub, int start) const {
    if (sub == nullptr)
        return -1;
    if (start < 0)
        start = 0;
    if (start > GetLength())
        return -1;
    // The C library's search runs in linear time, whatever the texts.
    const char* found = std::strstr(m_str.c_str() + start, sub);
    return found == nullptr ? -1 : static_cast<int>(found - m_str.c_str());
}

int CString::Compare(const char* text) const {
    const int result = std::strcmp(m_str.c_str(), text == nullptr ? "" : text);
    return result < 0 ? -1 : (result > 0 ? 1 : 0);
}

CString CString::Tokenize(const char* delimiters, int& position) const {
    const int length = GetLength();
    if (delimiters == nullptr)
        delimiters = "";
    if (position >= 0 && position < length) {
        const char* text = m_str.c_str();
        const int start = position + static_cast<int>(std::strspn(text + position, delimiters));
        if (start < length) {
            const int run = static_cast<int>(std::strcspn(text + start, delimiters));
            // start + run <= length <= INT_MAX - 1, so the sum cannot overflow.
            position = start + run + 1;
            CString token;
            token.m_str.assign(text + start, static_cast<size_t>(run));
            return token;
        }
    }
    position = -1;
    return CString();
}

char CString::operator[](int index) const {
    if (index < 0 || index >= GetLength())
        return '\0';
    return m_str[static_cast<size_t>(index)];
}
