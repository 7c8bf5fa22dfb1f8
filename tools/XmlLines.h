// Line numbers for the elements of a setup file.
//
// The library's DOM keeps no positions, so the file is read a second time
// with a SAX2 reader that records, for every element in document order, the
// line on which its start tag begins. The elements of the DOM are matched to
// these records by their document order.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMNode.hpp>

namespace xuntool {

struct XmlScan {
    bool readable = true;   // false: the file cannot be opened
    bool wellFormed = true; // false: the reader stopped on a fatal error
    long errorLine = 0;
    std::string errorMessage;
    std::vector<long> lines; // start line of each element, in document order
    std::vector<std::string> names;
};

// Reads the file with the parser platform initialised. The start line of a
// start tag that spans several lines is found in the file's bytes (UTF-8 or
// a single-byte encoding); where that fails, the line on which the tag ends
// is taken.
XmlScan ScanXml(const std::string& path);

class LineMap {
  public:
    LineMap(const XmlScan& scan, xercesc::DOMDocument* document);
    // The line of an element of the document; 0 when unknown.
    long LineOf(const xercesc::DOMNode* node) const;

  private:
    std::map<const xercesc::DOMNode*, long> m_lines;
};

} // namespace xuntool
