#include "xml/XPath.h"

namespace {

// Slash, asterisk, opening and closing bracket, at sign, double quote and
// equals sign. Blanks are not delimiters.
const char* const kPathDelimiters_ = "/*[]@\"=";

} // namespace

CXPathElement::CXPathElement(Type type, const CString& text) : m_type(type), m_strText(text) {}

CXPathElement::CXPathElement(const CXPathElement& other)
    : m_type(other.m_type), m_strText(other.m_strText) {}

CXPathElement& CXPathElement::operator=(const CXPathElement& other) {
    m_type = other.m_type;
    m_strText = other.m_strText;
    return *this;
}

CXPathElement::~CXPathElement() = default;

CXPath::CXPath() = default;

CXPath::CXPath(const CString& path) : m_strPath(path) {}

CXPath::CXPath(const CXPath& other) : m_strPath(other.m_strPath) {}

CXPath& CXPath::operator=(const CXPath& other) {
    // Only the path travels; the elements of an earlier Parse are dropped, so
    // an assigned path (even one assigned to itself) has no elements until
    // its own Parse runs.
    m_strPath = other.m_strPath;
    m_elements.clear();
    return *this;
}

CXPath::~CXPath() = default;

void CXPath::Parse() {
    m_elements.clear();
    int position = 0;
    int searchIndex = -1;
    for (;;) {
        const CString token = m_strPath.Tokenize(kPathDelimiters_, position);
        if (token.IsEmpty())
            break;
        // The token is looked for from one character after the start of the
        // previous token, not from where the tokenizer found it: a token whose
        // text also occurs inside the previous token is found there and is
        // classified by the character before that occurrence (in Rows/ows the
        // second token is found after the letter R and dropped).
        searchIndex = m_strPath.Find(token.GetString(), searchIndex + 1);
        if (searchIndex <= 0) {
            m_elements.emplace_back(CXPathElement::Tag, token);
            continue;
        }
        switch (m_strPath[searchIndex - 1]) {
        case '"':
            m_elements.emplace_back(CXPathElement::Value, token);
            break;
        case '/':
            m_elements.emplace_back(CXPathElement::Tag, token);
            break;
        case '@':
            m_elements.emplace_back(CXPathElement::Attribute, token);
            break;
        default:
            // After a bracket, an asterisk, an equals sign (an unquoted value)
            // or any other character: not classified, dropped.
            break;
        }
    }
}

CString CXPath::GetToken(CXPathElement::Type type) const {
    for (auto it = m_elements.rbegin(); it != m_elements.rend(); ++it) {
        if (it->m_type == type)
            return it->m_strText;
    }
    return CString();
}

int CXPath::GetTagDepth() const {
    int depth = 0;
    for (const CXPathElement& element : m_elements) {
        if (element.m_type == CXPathElement::Tag)
            ++depth;
    }
    return depth;
}

CString CXPath::GetTag(int index) const {
    if (index < 0 || static_cast<size_t>(index) >= m_elements.size())
        return CString();
    return m_elements[static_cast<size_t>(index)].m_strText;
}
