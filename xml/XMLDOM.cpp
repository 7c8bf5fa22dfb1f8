#include "xml/XMLDOM.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMNodeList.hpp>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/framework/XMLErrorCodes.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/BinInputStream.hpp>
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

#include "common/Contract.h"
#include "common/RegularFile.h"

using xercesc::DOMDocument;
using xercesc::DOMNamedNodeMap;
using xercesc::DOMNode;
using xercesc::DOMNodeList;
using xercesc::XMLPlatformUtils;
using xercesc::XMLString;

using namespace xun::contract;

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

// A stream over bytes it owns (a file read whole).
class COwnedBytesStream : public xercesc::BinInputStream {
  public:
    explicit COwnedBytesStream(std::vector<unsigned char>&& bytes) : m_bytes(std::move(bytes)) {}
    XMLFilePos curPos() const override { return m_position; }
    XMLSize_t readBytes(XMLByte* const toFill, const XMLSize_t maxToRead) override {
        const XMLSize_t count = std::min<XMLSize_t>(maxToRead, m_bytes.size() - m_position);
        if (count > 0)
            std::memcpy(toFill, m_bytes.data() + m_position, count);
        m_position += count;
        return count;
    }
    const XMLCh* getContentType() const override { return nullptr; }

  private:
    std::vector<unsigned char> m_bytes;
    std::size_t m_position = 0;
};

// An input source over the bytes of a file read whole, under the system id
// the parser library would give the file (relative references inside it are
// resolved against that id). Its one stream takes the bytes over.
class CBytesInputSource : public xercesc::InputSource {
  public:
    CBytesInputSource(const XMLCh* systemId, std::vector<unsigned char>&& bytes)
        : xercesc::InputSource(systemId, XMLPlatformUtils::fgMemoryManager),
          m_bytes(std::move(bytes)) {}
    xercesc::BinInputStream* makeStream() const override {
        return new COwnedBytesStream(std::move(m_bytes));
    }

  private:
    mutable std::vector<unsigned char> m_bytes;
};

// Where the parser library would read a system id from: a local path and
// the full system id it would give it, or nothing (a URL of the network, or
// of another host: never opened).
struct LocalSource {
    bool local = false;
    std::string path;                  // in the local character set
    std::basic_string<XMLCh> systemId; // the full id, for relative references inside
};

// Replaces every %xx of a file URL's path by its byte, as the parser library
// does before it opens the file.
std::string PercentDecoded(const std::string& text) {
    std::string decoded;
    decoded.reserve(text.size());
    auto hex = [](char c) {
        return c >= '0' && c <= '9'   ? c - '0'
               : c >= 'a' && c <= 'f' ? c - 'a' + 10
               : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                      : -1;
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && hex(text[i + 1]) >= 0 &&
            hex(text[i + 2]) >= 0) {
            decoded += static_cast<char>(hex(text[i + 1]) * 16 + hex(text[i + 2]));
            i += 2;
        } else {
            decoded += text[i];
        }
    }
    return decoded;
}

std::string LocalText(const XMLCh* text) {
    return IXMLDOMNode::wide2cstr(text).GetString();
}

// The source of a system id (relative to baseId when given), as the parser
// library reads it: a text without a known scheme ("xun.dtd",
// "/opt/x/xun.dtd") is a path; a file: URL without a host (or with
// localhost) names a local file; any other URL names nothing local.
LocalSource SourceOf(const XMLCh* baseId, const XMLCh* systemId) {
    LocalSource source;
    xercesc::XMLURL url;
    if (xercesc::XMLURL::parse(systemId, url) && url.getProtocol() != xercesc::XMLURL::Unknown) {
        const XMLCh* host = url.getHost();
        source.local = url.getProtocol() == xercesc::XMLURL::File &&
                       (host == nullptr || *host == 0 ||
                        XMLString::compareIString(host, xercesc::XMLUni::fgLocalHostString) == 0);
        if (source.local) {
            source.path = PercentDecoded(LocalText(url.getPath()));
            source.systemId = url.getURLText();
        }
        return source;
    }
    // The full path as the parser library makes it (relative to the base's
    // folder, or to the working directory); nothing is opened here.
    std::unique_ptr<xercesc::LocalFileInputSource> named(
        baseId != nullptr
            ? new xercesc::LocalFileInputSource(baseId, systemId, XMLPlatformUtils::fgMemoryManager)
            : new xercesc::LocalFileInputSource(systemId, XMLPlatformUtils::fgMemoryManager));
    source.local = true;
    source.systemId = named->getSystemId();
    source.path = LocalText(named->getSystemId());
    return source;
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
// Reading files, the bounds of a parse

void CParseBounds::Start(std::size_t fileBytes) {
    m_bytesRead = fileBytes;
    m_files.clear();
    m_depth = 0;
    m_characters = 0;
}

void CParseBounds::AddFile(const std::string& path, std::size_t bytes) {
    if (m_files.insert(path).second)
        m_bytesRead += bytes;
}

std::size_t CParseBounds::TextLimit() const {
    return std::max(kXmlTextFloor, kXmlTextPerByte * m_bytesRead);
}

std::size_t CParseBounds::MemoryLimit() const {
    return std::max(kXmlMemoryFloor, kXmlMemoryPerByte * m_bytesRead);
}

void CParseBounds::EnterElement(const XMLCh* name, std::size_t attributes, std::size_t characters) {
    if (m_depth >= kXmlMaxDepth)
        throw Exceeded{"element '" + LocalText(name) + "' is nested " +
                       std::to_string(m_depth + 1) + " levels deep; the limit is " +
                       std::to_string(kXmlMaxDepth)};
    if (attributes > kXmlMaxAttributes)
        throw Exceeded{"element '" + LocalText(name) + "' has " + std::to_string(attributes) +
                       " attributes; the limit is " + std::to_string(kXmlMaxAttributes)};
    ++m_depth;
    AddText(characters);
}

void CParseBounds::AddText(std::size_t characters) {
    m_characters += characters;
    if (m_characters > TextLimit())
        throw Exceeded{"the text of the document after entity expansion passes " +
                       std::to_string(TextLimit()) +
                       " characters, its limit (the larger of 1 MiB and 8 per byte of the "
                       "files read)"};
}

void CBoundedMemoryManager::Bound(std::size_t limit) {
    m_base = m_held;
    m_limit = limit;
    m_bounded = true;
    m_refused = false;
}

xercesc::MemoryManager* CBoundedMemoryManager::getExceptionMemoryManager() {
    return XMLPlatformUtils::fgMemoryManager;
}

namespace {
// Each block carries its size in front, kept at the alignment of any type.
constexpr std::size_t kBlockHeader = alignof(std::max_align_t) > sizeof(std::size_t)
                                         ? alignof(std::max_align_t)
                                         : sizeof(std::size_t);
} // namespace

void* CBoundedMemoryManager::allocate(XMLSize_t size) {
    if (m_bounded && m_held - m_base + size > m_limit) {
        m_refused = true;
        throw xercesc::OutOfMemoryException();
    }
    void* block = nullptr;
    try {
        block = ::operator new(size + kBlockHeader);
    } catch (const std::bad_alloc&) {
        throw xercesc::OutOfMemoryException();
    }
    *static_cast<std::size_t*>(block) = size;
    m_held += size;
    return static_cast<char*>(block) + kBlockHeader;
}

void CBoundedMemoryManager::deallocate(void* p) {
    if (p == nullptr)
        return;
    void* block = static_cast<char*>(p) - kBlockHeader;
    m_held -= *static_cast<std::size_t*>(block);
    // What was held before the bound and is freed during it makes room.
    if (m_held < m_base)
        m_base = m_held;
    ::operator delete(block);
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
    // Checked before the element goes into the document: the document
    // builder takes time quadratic in the attributes of an element.
    std::size_t characters = 0;
    const XMLSize_t attributes = std::min<XMLSize_t>(attrCount, kXmlMaxAttributes + 1);
    for (XMLSize_t i = 0; i < attributes; ++i)
        characters += XMLString::stringLen(attrList.elementAt(i)->getValue());
    m_lastElementLine = CurrentLine();
    try {
        m_bounds.EnterElement(elemDecl.getFullName(), attrCount, characters);
    } catch (CParseBounds::Exceeded& exceeded) {
        exceeded.line = m_lastElementLine;
        throw;
    }
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
    m_bounds.LeaveElement();
    xercesc::XercesDOMParser::endElement(elemDecl, urlId, isRoot, elemPrefix);
    if (m_bRecord)
        m_lineAfterLastEvent = CurrentLine();
}

void CLineRecordingParser::docCharacters(const XMLCh* const chars, const XMLSize_t length,
                                         const bool cdataSection) {
    AddText(length);
    xercesc::XercesDOMParser::docCharacters(chars, length, cdataSection);
    if (m_bRecord)
        m_lineAfterLastEvent = CurrentLine();
}

void CLineRecordingParser::ignorableWhitespace(const XMLCh* const chars, const XMLSize_t length,
                                               const bool cdataSection) {
    AddText(length);
    xercesc::XercesDOMParser::ignorableWhitespace(chars, length, cdataSection);
    if (m_bRecord)
        m_lineAfterLastEvent = CurrentLine();
}

void CLineRecordingParser::AddText(std::size_t characters) {
    try {
        m_bounds.AddText(characters);
    } catch (CParseBounds::Exceeded& exceeded) {
        exceeded.line = CurrentLine();
        throw;
    }
}

void CLineRecordingParser::error(const unsigned int errCode, const XMLCh* const msgDomain,
                                 const xercesc::XMLErrorReporter::ErrTypes errType,
                                 const XMLCh* const errorText, const XMLCh* const systemId,
                                 const XMLCh* const publicId, const XMLFileLoc lineNum,
                                 const XMLFileLoc colNum) {
    if (errType >= xercesc::XMLErrorReporter::ErrType_Fatal && m_firstFatalCode == 0 &&
        msgDomain != nullptr && XMLString::equals(msgDomain, xercesc::XMLUni::fgXMLErrDomain))
        m_firstFatalCode = errCode;
    xercesc::XercesDOMParser::error(errCode, msgDomain, errType, errorText, systemId, publicId,
                                    lineNum, colNum);
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

IXMLDOMDocument::IXMLDOMDocument() : m_parser(&m_memory, m_bounds) {
    m_parser.setErrorHandler(&m_errorCounter);
    m_securityManager.setEntityExpansionLimit(kXmlEntityExpansionLimit);
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
    // A path resolves against the location of the document that names it.
    const LocalSource source = SourceOf(resource->getBaseURI(), systemId);
    std::vector<unsigned char> bytes;
    std::string reason;
    if (!source.local)
        reason = "the external file '" + LocalText(systemId) +
                 "' cannot be read (a URL, not a local file)";
    else if (!xunReadRegularFile_(source.path.c_str(), bytes, reason))
        reason = "the external file '" + source.path + "' cannot be read (" + reason + ")";
    if (!reason.empty()) {
        if (m_firstFailure.empty())
            m_firstFailure = reason;
        return nullptr;
    }
    // The bytes of each file read count once towards the document's bounds.
    ++m_filesRead;
    m_bounds.AddFile(source.path, bytes.size());
    m_memory.Raise(m_bounds.MemoryLimit());
    return new CBytesInputSource(source.systemId.c_str(), std::move(bytes));
}

IXMLDOMDocument::~IXMLDOMDocument() {
    if (m_pDoc != nullptr)
        m_pDoc->release();
    for (DOMDocument* doc : m_earlierDocs)
        doc->release();
}

void IXMLDOMDocument::Fail(Failure failure, const CString& text, long line) {
    m_failure = failure;
    m_failureText = text;
    m_failureLine = line;
}

bool IXMLDOMDocument::load(const CString& fileName) {
    m_failure = Failure::None;
    m_failureText = CString();
    m_failureLine = 0;
    try {
        // The current document stays alive for the wrappers that point into
        // it; this object releases it at its end.
        if (m_pDoc != nullptr) {
            m_earlierDocs.push_back(m_pDoc);
            m_pDoc = nullptr;
        }
        // The file is read here, whole and only when it is a regular file:
        // the parser never opens a FIFO, a device or a URL of the network.
        ParserWideChars_ wideName(
            XMLString::transcode(fileName.GetString(), XMLPlatformUtils::fgMemoryManager));
        const LocalSource source = SourceOf(nullptr, wideName.get());
        std::vector<unsigned char> bytes;
        std::string reason;
        if (!source.local) {
            Fail(Failure::Unreadable, CString("the file cannot be read (a URL, not a local file)"),
                 0);
            return false;
        }
        if (!xunReadRegularFile_(source.path.c_str(), bytes, reason)) {
            Fail(Failure::Unreadable, CString(("the file cannot be read (" + reason + ")").c_str()),
                 0);
            return false;
        }
        m_bounds.Start(bytes.size());
        m_entityResolver.m_firstFailure.clear();
        m_entityResolver.m_filesRead = 0;
        m_parser.setValidationScheme(xercesc::XercesDOMParser::Val_Always);
        m_parser.setDoNamespaces(true);
        m_errorCounter.resetErrors();
        m_parser.StartDocument();
        const CBytesInputSource input(source.systemId.c_str(), std::move(bytes));
        struct Unbound {
            CBoundedMemoryManager& memory;
            ~Unbound() { memory.Unbound(); }
        } unbound{m_memory};
        m_memory.Bound(m_bounds.MemoryLimit());
        try {
            m_parser.parse(input);
        } catch (const CParseBounds::Exceeded& exceeded) {
            Fail(Failure::Bound, CString(exceeded.reason.c_str()), exceeded.line);
            return false;
        } catch (const xercesc::OutOfMemoryException&) {
            if (!m_memory.Refused())
                throw;
            Fail(Failure::Bound,
                 CString(("the XML parser needs more than " +
                          std::to_string(m_bounds.MemoryLimit()) +
                          " bytes for the document, its limit (the larger of 64 MiB and 64 per "
                          "byte of the files read)")
                             .c_str()),
                 m_parser.LastElementLine());
            return false;
        }
        DOMDocument* doc = m_parser.adoptDocument();
        if (m_errorCounter.m_nFatalErrors != 0 || doc == nullptr ||
            doc->getDocumentElement() == nullptr) {
            // Nothing points into a document that failed; free it at once.
            if (doc != nullptr)
                doc->release();
            if (m_parser.FirstFatalCode() == xercesc::XMLErrs::EntityExpansionLimitExceeded)
                Fail(Failure::Bound,
                     CString(("the document expands more than " +
                              std::to_string(kXmlEntityExpansionLimit) +
                              " entity references, the limit")
                                 .c_str()),
                     m_errorCounter.m_nFirstErrorLine);
            else if (!m_entityResolver.m_firstFailure.empty())
                Fail(Failure::Unreadable, CString(m_entityResolver.m_firstFailure.c_str()),
                     m_errorCounter.m_nFirstErrorLine);
            else
                Fail(Failure::NotWellFormed, m_errorCounter.m_strFirstError,
                     m_errorCounter.m_nFirstErrorLine);
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
    if (m_failure == Failure::None)
        Fail(Failure::NotWellFormed, m_errorCounter.m_strFirstError,
             m_errorCounter.m_nFirstErrorLine);
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
