// CXPath: splits a location path of the small subset the DOM wrapper accepts
// ("//Group[@Name=\"Units\"]", "Rows/R") into typed tokens.
//
// The parser checks nothing: it classifies the runs of text between the
// delimiter characters / * [ ] @ " = by the character before them and drops
// what it cannot classify. Any text parses.
#pragma once

#include <vector>

#include "xml/CString.h"

class CXPathElement {
  public:
    enum Type : int {
        Tag = 0,       // an element name of a step
        Attribute = 1, // an attribute name in a predicate
        Value = 2      // a quoted value in a predicate
    };

    CXPathElement(Type type, const CString& text);
    CXPathElement(const CXPathElement& other);
    CXPathElement& operator=(const CXPathElement& other);
    virtual ~CXPathElement();

    Type m_type;
    CString m_strText; // never empty
};

class CXPath {
  public:
    CXPath();
    explicit CXPath(const CString& path);
    // A copy takes only the path text: its element list starts empty and is
    // filled by its own Parse. The assignment does the same.
    CXPath(const CXPath& other);
    CXPath& operator=(const CXPath& other);
    virtual ~CXPath();

    // Rebuilds the element list from the path text.
    void Parse();

    // The text of the last element of the given type; empty when there is
    // none.
    CString GetToken(CXPathElement::Type type) const;

    // The number of Tag elements.
    int GetTagDepth() const;

    // The text of the element at position index of the whole list, counting
    // elements of every type (so in Group[@Name="Units"]/R position 1 is the
    // attribute Name); empty for a negative index or one beyond the last
    // element.
    CString GetTag(int index) const;

    CString m_strPath;
    std::vector<CXPathElement> m_elements; // in order of appearance; empty until Parse
};
