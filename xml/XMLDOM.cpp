#include "xml/XMLDOM.h"

#include <memory>
#include <new>

#include <sys/stat.h>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMNodeList.hpp>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/framework/URLInputSource.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLURL.hpp>
#include <xercesc/util/XMLUni.hpp>

using xercesc::DOMDocument;
using xercesc::DOMNamedNodeMap;
using xercesc::DOMNode;
using xercesc::DOMNodeList;
using xercesc::XMLPlatformUtils;
using xercesc::XMLString;

namespace MSXML2 {

namespace {

// Releases a buffer that XMLString::transcode allocated from the parser
// library's default memory manager, through that same manager (it allocates
// with operator new, so the C library's free would not match).
struct ParserBufferRelease_ {
    void operator()(void* buffer) const { XMLPlatformUtils::fgMemoryManager->deallocate(buffer); }
};
using ParserChars_ = std::unique_ptr<char, ParserBufferRelease_>;
using ParserWideChars_ = std::unique_ptr<XMLCh, ParserBufferRelease_>;

bool IsWildcardOrEmpty_(const CString& text) {
    return text.IsEmpty() || text == "*";
}

// Whether a parser string, converted to local text, would equal text: 1 yes,
// 0 no, -1 unknown. Decided without the converter as far as the string is
// ASCII, which every local character set of this platform maps to the same
// single bytes; a non-ASCII character before the answer is known leaves it
// to the converter (-1).
int EqualsAsLocalText_(const XMLCh* wide, const CString& text) {
    const char* bytes = text.GetString();
    const int length = text.GetLength();
    for (int i = 0;; ++i) {
        const XMLCh c = wide[i];
        if (c == 0)
            return i == length ? 1 : 0;
        if (c >= 0x80)
            return -1;
        if (i >= length || static_cast<unsigned char>(bytes[i]) != c)
            return 0;
    }
}

} // namespace

// ---------------------------------------------------------------------------
// IXMLDOMNamedNodeMap

CSmartPtr<IXMLDOMNode> IXMLDOMNamedNodeMap::getNamedItem(const CString& name) {
    CSmartPtr<IXMLDOMNode> result(new IXMLDOMNode);
    if (m_pMap == nullptr)
        return result;
    // A walk by index over the converted names (not the map's own lookup),
    // so that the name is compared as local text, exactly.
    const XMLSize_t count = m_pMap->getLength();
    for (XMLSize_t i = 0; i < count; ++i) {
        DOMNode* attribute = m_pMap->item(i);
        if (attribute == nullptr)
            continue;
        const XMLCh* attributeName = attribute->getNodeName();
        int equal = attributeName != nullptr ? EqualsAsLocalText_(attributeName, name)
                                             : (name.IsEmpty() ? 1 : 0);
        if (equal < 0)
            equal = IXMLDOMNode::wide2cstr(attributeName) == name ? 1 : 0;
        if (equal == 1) {
            result->m_pNode = attribute;
            break;
        }
    }
    return result;
}

// ---------------------------------------------------------------------------
// IXMLDOMNode

IXMLDOMNode::CAttributesProperty::operator CSmartPtr<IXMLDOMNamedNodeMap>() const {
    return m_pOwner->getattributes();
}

CSmartPtr<IXMLDOMNamedNodeMap> IXMLDOMNode::CAttributesProperty::operator->() const {
    return m_pOwner->getattributes();
}

IXMLDOMNode::CTextProperty::operator CString() const {
    return m_pOwner->gettext();
}

CSmartPtr<IXMLDOMNodeList> IXMLDOMNode::selectNodes(const CString& path) {
    CXPath xpath(path);
    xpath.Parse();
    CSmartPtr<IXMLDOMNodeList> list(new IXMLDOMNodeList);
    addNodes(&*list, &xpath, 0, m_pNode);
    return list;
}

void IXMLDOMNode::addNodes(IXMLDOMNodeList* list, CXPath* path, int level, DOMNode* node) {
    if (list == nullptr || path == nullptr || node == nullptr)
        return;
    const int depth = path->GetTagDepth();
    // A level outside the steps names no element that could be appended or
    // descended into.
    if (level < 0 || level >= depth)
        return;
    const CString attrName = path->GetToken(CXPathElement::Attribute);
    const CString attrValue = path->GetToken(CXPathElement::Value);

    // A depth-first walk in document order, with an explicit stack instead of
    // recursion so that deep documents cannot exhaust the call stack. Children
    // are reached through the sibling links: indexing the parser's child list
    // walks from the first child on every access.
    struct Step {
        DOMNode* next; // the next child to test
        int level;
        CString tag;
    };
    std::vector<Step> stack;
    stack.push_back(Step{node->getFirstChild(), level, path->GetTag(level)});
    while (!stack.empty()) {
        DOMNode* child = stack.back().next;
        if (child == nullptr) {
            stack.pop_back();
            continue;
        }
        stack.back().next = child->getNextSibling();
        const int childLevel = stack.back().level + 1;
        if (!checkNode(child, stack.back().tag, attrName, attrValue))
            continue;
        if (childLevel == depth)
            list->m_rawList.addNode(child);
        else if (child->hasChildNodes())
            stack.push_back(Step{child->getFirstChild(), childLevel, path->GetTag(childLevel)});
    }
}

bool IXMLDOMNode::checkNode(DOMNode* node, const CString& tag, const CString& attrName,
                            const CString& attrValue) {
    if (node == nullptr)
        return false;
    if (!(tag == "*") && !(wide2cstr(node->getNodeName()) == tag))
        return false;
    bool nameOk = IsWildcardOrEmpty_(attrName);
    bool valueOk = IsWildcardOrEmpty_(attrValue);
    // The first attribute that matches by name or by value decides alone.
    const DOMNamedNodeMap* map = node->getAttributes();
    if (map != nullptr) {
        const XMLSize_t count = map->getLength();
        for (XMLSize_t i = 0; i < count && !nameOk && !valueOk; ++i) {
            const DOMNode* attribute = map->item(i);
            if (attribute == nullptr)
                continue;
            nameOk = wide2cstr(attribute->getNodeName()) == attrName;
            valueOk = wide2cstr(attribute->getNodeValue()) == attrValue;
        }
    }
    return nameOk && valueOk;
}

CSmartPtr<IXMLDOMNamedNodeMap> IXMLDOMNode::getattributes() {
    return CSmartPtr<IXMLDOMNamedNodeMap>(
        new IXMLDOMNamedNodeMap(m_pNode != nullptr ? m_pNode->getAttributes() : nullptr));
}

CString IXMLDOMNode::gettext() {
    if (m_pNode == nullptr)
        return CString();
    return wide2cstr(m_pNode->getNodeValue());
}

CString IXMLDOMNode::wide2cstr(const XMLCh* text) {
    if (text == nullptr)
        return CString();
    // ASCII text (names, numbers, most values) converts to the same bytes in
    // every local character set of this platform: copied directly, without
    // the converter, which costs more than the rest of a load's attribute
    // reading together.
    char ascii[128];
    size_t length = 0;
    while (length < sizeof ascii && text[length] != 0 && text[length] < 0x80) {
        ascii[length] = static_cast<char>(text[length]);
        ++length;
    }
    if (length < sizeof ascii && text[length] == 0) {
        ascii[length] = '\0';
        return CString(ascii);
    }
    ParserChars_ converted(XMLString::transcode(text, XMLPlatformUtils::fgMemoryManager));
    return CString(converted.get());
}

// ---------------------------------------------------------------------------
// Node lists

CSmartPtr<IXMLDOMNode> IXMLDOMRawNodeList::operator[](long index) const {
    if (index < 0 || static_cast<size_t>(index) >= m_nodes.size())
        return CSmartPtr<IXMLDOMNode>(new IXMLDOMNode);
    return CSmartPtr<IXMLDOMNode>(new IXMLDOMNode(m_nodes[static_cast<size_t>(index)]));
}

IXMLDOMNodeList::CItemProperty::operator IXMLDOMRawNodeList&() const {
    return m_pOwner->getitem();
}

CSmartPtr<IXMLDOMNode> IXMLDOMNodeList::CItemProperty::operator[](long index) const {
    return m_pOwner->getitem()[index];
}

IXMLDOMNodeList::CLengthProperty::operator long() const {
    return m_pOwner->getlength();
}

CSmartPtr<IXMLDOMNode> IXMLDOMNodeList::Getitem(long index) {
    return m_rawList[index];
}

// ---------------------------------------------------------------------------
// CLineRecordingParser

long CLineRecordingParser::CurrentLine() const {
    const xercesc::XMLScanner* scanner = getScanner();
    const xercesc::Locator* locator = scanner != nullptr ? scanner->getLocator() : nullptr;
    return locator != nullptr ? static_cast<long>(locator->getLineNumber()) : 0;
}

long CLineRecordingParser::LineOf(const DOMNode* node) const {
    const auto it = m_lines.find(node);
    return it != m_lines.end() ? it->second : 0;
}

void CLineRecordingParser::startElement(const xercesc::XMLElementDecl& elemDecl,
                                        const unsigned int urlId, const XMLCh* const elemPrefix,
                                        const xercesc::RefVectorOf<xercesc::XMLAttr>& attrList,
                                        const XMLSize_t attrCount, const bool isEmpty,
                                        const bool isRoot) {
    const long start = m_lineAfterLastEvent;
    xercesc::XercesDOMParser::startElement(elemDecl, urlId, elemPrefix, attrList, attrCount,
                                           isEmpty, isRoot);
    if (m_bRecord) {
        // The new element is the current node until its content begins (an
        // empty element: until endElement, which follows at once).
        if (const DOMNode* element = getCurrentNode())
            m_lines[element] = start;
        m_lineAfterLastEvent = CurrentLine();
    }
}

void CLineRecordingParser::endElement(const xercesc::XMLElementDecl& elemDecl,
                                      const unsigned int urlId, const bool isRoot,
                                      const XMLCh* const elemPrefix) {
    xercesc::XercesDOMParser::endElement(elemDecl, urlId, isRoot, elemPrefix);
    if (m_bRecord)
        m_lineAfterLastEvent = CurrentLine();
}

void CLineRecordingParser::docCharacters(const XMLCh* const chars, const XMLSize_t length,
                                         const bool cdataSection) {
    xercesc::XercesDOMParser::docCharacters(chars, length, cdataSection);
    if (m_bRecord)
        m_lineAfterLastEvent = CurrentLine();
}

void CLineRecordingParser::ignorableWhitespace(const XMLCh* const chars, const XMLSize_t length,
                                               const bool cdataSection) {
    xercesc::XercesDOMParser::ignorableWhitespace(chars, length, cdataSection);
    if (m_bRecord)
        m_lineAfterLastEvent = CurrentLine();
}

void CLineRecordingParser::docComment(const XMLCh* const comment) {
    xercesc::XercesDOMParser::docComment(comment);
    if (m_bRecord)
        m_lineAfterLastEvent = CurrentLine();
}

// ---------------------------------------------------------------------------
// IXMLDOMDocument

void IXMLDOMDocument::CFatalErrorCounter::fatalError(const xercesc::SAXParseException& error) {
    if (m_nFatalErrors++ == 0) {
        m_strFirstError = IXMLDOMNode::wide2cstr(error.getMessage());
        m_nFirstErrorLine = static_cast<long>(error.getLineNumber());
    }
}

IXMLDOMDocument::IXMLDOMDocument() : m_parser(XMLPlatformUtils::fgMemoryManager) {
    m_parser.setErrorHandler(&m_errorCounter);
    m_parser.setSecurityManager(&m_securityManager);
    // Every external DTD and entity goes through the resolver, which never
    // lets the parser library open a network connection: what the resolver
    // does not resolve is not read at all.
    m_parser.setXMLEntityResolver(&m_entityResolver);
    m_parser.setDisableDefaultEntityResolution(true);
}

xercesc::InputSource*
IXMLDOMDocument::CLocalEntityResolver::resolveEntity(xercesc::XMLResourceIdentifier* resource) {
    const XMLCh* systemId = resource != nullptr ? resource->getSystemId() : nullptr;
    if (systemId == nullptr || *systemId == 0)
        return nullptr;
    // The parser library reads a text without a known scheme ("xun.dtd",
    // "/opt/x/xun.dtd") as a URL of the protocol Unknown: a path.
    xercesc::XMLURL url;
    if (xercesc::XMLURL::parse(systemId, url) && url.getProtocol() != xercesc::XMLURL::Unknown) {
        // A URL: only a file: URL without a host (or with localhost) names a
        // local file; its stream is then opened without the network.
        const XMLCh* host = url.getHost();
        const bool local =
            url.getProtocol() == xercesc::XMLURL::File &&
            (host == nullptr || *host == 0 ||
             XMLString::compareIString(host, xercesc::XMLUni::fgLocalHostString) == 0);
        if (!local)
            return nullptr;
        return new xercesc::URLInputSource(url, XMLPlatformUtils::fgMemoryManager);
    }
    // A path, relative to the location of the document that names it. A
    // local file input never uses the network, whatever the text holds.
    return new xercesc::LocalFileInputSource(resource->getBaseURI(), systemId,
                                             XMLPlatformUtils::fgMemoryManager);
}

IXMLDOMDocument::~IXMLDOMDocument() {
    if (m_pDoc != nullptr)
        m_pDoc->release();
    for (DOMDocument* doc : m_earlierDocs)
        doc->release();
}

bool IXMLDOMDocument::load(const CString& fileName) {
    try {
        // The current document stays alive for the wrappers that point into
        // it; this object releases it at its end.
        if (m_pDoc != nullptr) {
            m_earlierDocs.push_back(m_pDoc);
            m_pDoc = nullptr;
        }
        // A directory cannot be read as a document. The parser would find that
        // out as well, but loses a buffer on the way.
        struct stat status;
        if (::stat(fileName.GetString(), &status) == 0 && S_ISDIR(status.st_mode))
            return false;
        m_parser.setValidationScheme(xercesc::XercesDOMParser::Val_Always);
        m_parser.setDoNamespaces(true);
        m_errorCounter.resetErrors();
        m_parser.StartDocument();
        m_parser.parse(fileName.GetString());
        DOMDocument* doc = m_parser.adoptDocument();
        if (m_errorCounter.m_nFatalErrors != 0 || doc == nullptr ||
            doc->getDocumentElement() == nullptr) {
            // Nothing points into a document that failed; free it at once.
            if (doc != nullptr)
                doc->release();
            return false;
        }
        m_pDoc = doc;
        return true;
    } catch (const xercesc::OutOfMemoryException&) {
        // Memory running out is no property of the file: the caller hears
        // of it as the standard allocation exception.
        throw std::bad_alloc();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const xercesc::XMLException&) {
    } catch (const xercesc::DOMException&) {
    } catch (const xercesc::SAXException&) {
    } catch (...) {
    }
    return false;
}

CSmartPtr<IXMLDOMNode> IXMLDOMDocument::selectSingleNode(const CString& path) {
    if (m_pDoc == nullptr)
        return CSmartPtr<IXMLDOMNode>();
    CXPath xpath(path);
    xpath.Parse();
    const CString tag = xpath.GetToken(CXPathElement::Tag);
    const CString attrName = xpath.GetToken(CXPathElement::Attribute);
    const CString attrValue = xpath.GetToken(CXPathElement::Value);

    ParserWideChars_ tagName(
        XMLString::transcode(tag.GetString(), XMLPlatformUtils::fgMemoryManager));
    if (tagName == nullptr)
        return CSmartPtr<IXMLDOMNode>();
    // The list is walked until item() runs out instead of asking its length
    // first: the length of this live list walks the whole document, and the
    // walk can end at the first match.
    DOMNodeList* elements = m_pDoc->getElementsByTagName(tagName.get());
    if (elements == nullptr)
        return CSmartPtr<IXMLDOMNode>();
    for (XMLSize_t i = 0;; ++i) {
        DOMNode* element = elements->item(i);
        if (element == nullptr)
            break;
        if (IXMLDOMNode::checkNode(element, tag, attrName, attrValue))
            return CSmartPtr<IXMLDOMNode>(new IXMLDOMNode(element));
    }
    return CSmartPtr<IXMLDOMNode>();
}

} // namespace MSXML2
