// The setup file read through the library's XML layer, the way the setup
// loader reads it: the first element matching //Group[@Name="..."], its rows
// "Rows/R" in document order, and attributes read one by one.
#pragma once

#include <string>
#include <vector>

#include <SmartPtr>

#include "xml/XMLDOM.h"

namespace xuntool {

// One attribute of a row: its text, or the empty text when it is absent.
struct RowAttribute {
    std::string text;
    bool present = false;
};

class SetupFile {
  public:
    SetupFile();

    // Initialises the parser platform (the library never terminates it).
    static bool InitializeParser();

    // Parses the file (initialising the parser platform); false when the
    // XML layer cannot load it.
    bool Load(const std::string& path);

    // Whether the group exists, and its rows.
    bool HasGroup(const char* name);
    std::vector<MSXML2::CSmartPtr<MSXML2::IXMLDOMNode>> Rows(const char* name);

    static RowAttribute Read(const MSXML2::CSmartPtr<MSXML2::IXMLDOMNode>& row, const char* name);

    // The parsed document (null before a successful load).
    xercesc::DOMDocument* Document() const;

  private:
    MSXML2::CSmartPtr<MSXML2::IXMLDOMNode> Group(const char* name);

    MSXML2::CSmartPtr<MSXML2::IXMLDOMDocument> m_document;
};

// The Alias and Expr attributes of the units row that defined a loaded unit:
// the first row with this Ident whose KvId (carried over from the rows above
// when it is absent, as the loader does) is the unit's key. False when the
// file has no such row.
bool FindUnitRow(const std::string& setupPath, const std::string& ident, long key,
                 RowAttribute& alias, RowAttribute& expression);

// The ";"-separated names of an Alias attribute, as the library splits it.
std::vector<std::string> SplitAliases(const std::string& list);

} // namespace xuntool
