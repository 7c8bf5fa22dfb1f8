#include "XmlLines.h"

#include <fstream>
#include <iterator>
#include <memory>

#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "xml/XMLDOM.h"

namespace xuntool {

namespace {

std::string Narrow(const XMLCh* text) {
    return MSXML2::IXMLDOMNode::wide2cstr(text).GetString();
}

struct TagEnd {
    long line;
    long column;
};

class Recorder : public xercesc::DefaultHandler {
  public:
    void setDocumentLocator(const xercesc::Locator* const locator) override { m_locator = locator; }
    void startElement(const XMLCh* const, const XMLCh* const, const XMLCh* const qname,
                      const xercesc::Attributes&) override {
        long line = 0;
        long column = 0;
        if (m_locator != nullptr) {
            line = static_cast<long>(m_locator->getLineNumber());
            column = static_cast<long>(m_locator->getColumnNumber());
        }
        m_ends.push_back(TagEnd{line, column});
        m_names.push_back(Narrow(qname));
    }
    void warning(const xercesc::SAXParseException&) override {}
    void error(const xercesc::SAXParseException&) override {}
    void fatalError(const xercesc::SAXParseException& e) override {
        if (m_wellFormed) {
            m_wellFormed = false;
            m_errorLine = static_cast<long>(e.getLineNumber());
            m_errorMessage = Narrow(e.getMessage());
        }
        throw e;
    }

    const xercesc::Locator* m_locator = nullptr;
    std::vector<TagEnd> m_ends;
    std::vector<std::string> m_names;
    bool m_wellFormed = true;
    long m_errorLine = 0;
    std::string m_errorMessage;
};

// Byte offsets at which the lines of the file begin; "\r\n", "\r" and "\n"
// each end a line, as the XML reader counts them. A UTF-8 byte-order mark is
// not part of the first line.
std::vector<size_t> LineStarts(const std::string& bytes) {
    std::vector<size_t> starts;
    starts.push_back(bytes.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0);
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\r') {
            if (i + 1 < bytes.size() && bytes[i + 1] == '\n')
                ++i;
            starts.push_back(i + 1);
        } else if (bytes[i] == '\n') {
            starts.push_back(i + 1);
        }
    }
    return starts;
}

// Number of UTF-16 units of the character at bytes[i] and its length in
// bytes: a valid UTF-8 sequence counts as one character, any other byte as a
// character of its own.
void CharacterAt(const std::string& bytes, size_t i, size_t& length, long& units) {
    const unsigned char c = static_cast<unsigned char>(bytes[i]);
    length = 1;
    units = 1;
    size_t expected = 0;
    if (c >= 0xC2 && c <= 0xDF)
        expected = 2;
    else if (c >= 0xE0 && c <= 0xEF)
        expected = 3;
    else if (c >= 0xF0 && c <= 0xF4)
        expected = 4;
    if (expected == 0 || i + expected > bytes.size())
        return;
    for (size_t k = 1; k < expected; ++k)
        if ((static_cast<unsigned char>(bytes[i + k]) & 0xC0) != 0x80)
            return;
    length = expected;
    units = expected == 4 ? 2 : 1;
}

// The line on which the start tag that ends at (line, column) begins: the
// column is that of the character after the closing '>'; the tag begins at
// the last '<' before it (a start tag holds no other '<').
long StartLine(const std::string& bytes, const std::vector<size_t>& starts, const TagEnd& end) {
    if (end.line < 1 || static_cast<size_t>(end.line) > starts.size() || end.column < 2)
        return end.line;
    size_t position = starts[static_cast<size_t>(end.line) - 1];
    for (long units = 1; units < end.column;) {
        if (position >= bytes.size() || bytes[position] == '\n' || bytes[position] == '\r')
            return end.line;
        size_t length = 0;
        long width = 0;
        CharacterAt(bytes, position, length, width);
        position += length;
        units += width;
    }
    if (position == 0 || bytes[position - 1] != '>')
        return end.line;
    long line = end.line;
    for (size_t i = position - 1; i-- > 0;) {
        const char c = bytes[i];
        if (c == '<')
            return line;
        if (c == '\n' || (c == '\r' && (i + 1 >= bytes.size() || bytes[i + 1] != '\n')))
            --line;
    }
    return end.line;
}

} // namespace

XmlScan ScanXml(const std::string& path) {
    XmlScan scan;
    std::ifstream stream(path.c_str(), std::ios::binary);
    if (!stream) {
        scan.readable = false;
        return scan;
    }
    const std::string bytes((std::istreambuf_iterator<char>(stream)),
                            std::istreambuf_iterator<char>());

    Recorder recorder;
    xercesc::SecurityManager security;
    std::unique_ptr<xercesc::SAX2XMLReader> reader(xercesc::XMLReaderFactory::createXMLReader());
    // The settings of the library's DOM parser: namespaces, validation
    // "always" (without a grammar it only reports errors, which are ignored).
    reader->setFeature(xercesc::XMLUni::fgSAX2CoreNameSpaces, true);
    reader->setFeature(xercesc::XMLUni::fgSAX2CoreValidation, true);
    reader->setFeature(xercesc::XMLUni::fgXercesDynamic, false);
    reader->setProperty(xercesc::XMLUni::fgXercesSecurityManager, &security);
    reader->setContentHandler(&recorder);
    reader->setErrorHandler(&recorder);
    try {
        reader->parse(path.c_str());
    } catch (const xercesc::SAXParseException&) {
    } catch (const xercesc::XMLException& e) {
        if (recorder.m_wellFormed) {
            recorder.m_wellFormed = false;
            recorder.m_errorLine = 1;
            recorder.m_errorMessage = Narrow(e.getMessage());
        }
    } catch (...) {
        if (recorder.m_wellFormed) {
            recorder.m_wellFormed = false;
            recorder.m_errorLine = 1;
            recorder.m_errorMessage = "the file cannot be read";
        }
    }
    scan.wellFormed = recorder.m_wellFormed;
    scan.errorLine = recorder.m_errorLine;
    scan.errorMessage = recorder.m_errorMessage;
    const std::vector<size_t> starts = LineStarts(bytes);
    for (const TagEnd& end : recorder.m_ends)
        scan.lines.push_back(StartLine(bytes, starts, end));
    scan.names = recorder.m_names;
    return scan;
}

LineMap::LineMap(const XmlScan& scan, xercesc::DOMDocument* document) {
    if (document == nullptr)
        return;
    // Elements in document order, without recursion (the depth of a file is
    // not bounded).
    size_t index = 0;
    const xercesc::DOMNode* node = document->getFirstChild();
    while (node != nullptr) {
        if (node->getNodeType() == xercesc::DOMNode::ELEMENT_NODE) {
            if (index < scan.lines.size() && scan.names[index] == Narrow(node->getNodeName()))
                m_lines[node] = scan.lines[index];
            ++index;
        }
        if (node->getFirstChild() != nullptr) {
            node = node->getFirstChild();
            continue;
        }
        while (node != nullptr && node->getNextSibling() == nullptr)
            node = node->getParentNode();
        if (node != nullptr)
            node = node->getNextSibling();
    }
}

long LineMap::LineOf(const xercesc::DOMNode* node) const {
    std::map<const xercesc::DOMNode*, long>::const_iterator it = m_lines.find(node);
    return it != m_lines.end() ? it->second : 0;
}

} // namespace xuntool
