// The DOM wrapper: a small document-object interface over the Xerces-C DOM
// parser, through which the setup loader reads its XML file.
//
// A document parses a file and finds one element by a location path; nodes
// select children by a relative path and expose their attributes and text;
// node lists and attribute maps hold what was found. Every result is a new
// wrapper object handed out in a CSmartPtr. All text crosses this interface as
// CString in the process's local character set.
//
// The document wrapper owns the parser and every document it parsed; node,
// list and map wrappers point into those documents and must not be used after
// the document wrapper is gone (nothing checks this). The parser platform must
// be initialised (xercesc::XMLPlatformUtils::Initialize) before a document is
// created or any text is converted.
//
// The wrappers never change a document. Apart from load, which reports every
// failure through its result, their operations throw only when memory runs
// out.
//
// A document is bounded (the limits of common/Contract.h): load reads only
// regular files, never a FIFO or a device and never the network; and it
// refuses a document that expands beyond its bounds - entity expansions,
// text after expansion, the parser's memory, nesting, attributes per element
// - at the point where it passes one, in time linear in what was read.
#pragma once

#include <SmartPtr>

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLEntityResolver.hpp>

#include "xml/CString.h"
#include "xml/XPath.h"

namespace MSXML2 {

class IXMLDOMNode;
class IXMLDOMNodeList;
class IXMLDOMNamedNodeMap;

// An attribute map of an element. m_pMap is null for a node without
// attributes and for a wrapper made without a node.
class IXMLDOMNamedNodeMap : public CSmartPtrAble {
  public:
    IXMLDOMNamedNodeMap() = default;
    explicit IXMLDOMNamedNodeMap(xercesc::DOMNamedNodeMap* map) : m_pMap(map) {}

    // A new node wrapper for the first attribute, in the map's order, whose
    // converted name equals name exactly; its m_pNode is null when none does
    // or when the map is null.
    CSmartPtr<IXMLDOMNode> getNamedItem(const CString& name);

    xercesc::DOMNamedNodeMap* m_pMap = nullptr; // not owned
};

// A node of a document (element, attribute, text, ...), or a wrapper without
// a node (m_pNode null), which is what a missing attribute gives.
class IXMLDOMNode : public CSmartPtrAble {
  public:
    // Reading node->attributes yields getattributes() of the owning node:
    //   node->attributes->getNamedItem("Name")
    //   CSmartPtr<IXMLDOMNamedNodeMap> map = node->attributes;
    class CAttributesProperty {
      public:
        explicit CAttributesProperty(IXMLDOMNode* owner) : m_pOwner(owner) {}
        CAttributesProperty(const CAttributesProperty&) = delete;
        CAttributesProperty& operator=(const CAttributesProperty&) = delete;
        operator CSmartPtr<IXMLDOMNamedNodeMap>() const;
        CSmartPtr<IXMLDOMNamedNodeMap> operator->() const;

      private:
        IXMLDOMNode* m_pOwner;
    };

    // Reading node->text yields gettext() of the owning node:
    //   CString value = node->text;
    class CTextProperty {
      public:
        explicit CTextProperty(IXMLDOMNode* owner) : m_pOwner(owner) {}
        CTextProperty(const CTextProperty&) = delete;
        CTextProperty& operator=(const CTextProperty&) = delete;
        operator CString() const;

      private:
        IXMLDOMNode* m_pOwner;
    };

    IXMLDOMNode() = default;
    explicit IXMLDOMNode(xercesc::DOMNode* node) : m_pNode(node) {}

    // The children of this node that match the path, one level of children
    // per step ("Rows/R": the R children of the Rows children), in document
    // order. Never a null holder; the list may be empty.
    CSmartPtr<IXMLDOMNodeList> selectNodes(const CString& path);

    // The worker of selectNodes: appends to list the children of node that
    // match step level of the parsed path, or descends into them for the next
    // step. The same attribute predicate (the last of the path) applies at
    // every step. Does nothing for a null node, list or path and for a level
    // outside 0 .. GetTagDepth() - 1.
    void addNodes(IXMLDOMNodeList* list, CXPath* path, int level, xercesc::DOMNode* node);

    // The match test: the node's name equals tag (or tag is "*"), and the
    // first attribute, in the map's order, that matches attrName by name or
    // attrValue by value decides the predicate alone: both must match on it.
    // An empty or "*" attrName or attrValue matches anything. A predicate with
    // a name but no value therefore never matches. False for a null node.
    static bool checkNode(xercesc::DOMNode* node, const CString& tag, const CString& attrName,
                          const CString& attrValue);

    // Always a new map wrapper: the node's attribute map (null for a node
    // without attributes), or null when this wrapper has no node.
    CSmartPtr<IXMLDOMNamedNodeMap> getattributes();

    // The converted node value (for an attribute: its value); the empty text
    // when the wrapper has no node or the node has no value (an element).
    CString gettext();

    // Converts a parser string into a CString of the local character set;
    // null gives the empty text.
    static CString wide2cstr(const XMLCh* text);

    xercesc::DOMNode* m_pNode = nullptr; // not owned
    CAttributesProperty attributes{this};
    CTextProperty text{this};
};

// A growable array of parser nodes, not owned.
class IXMLDOMRawNodeList {
  public:
    IXMLDOMRawNodeList() = default;
    IXMLDOMRawNodeList(const IXMLDOMRawNodeList&) = default;
    IXMLDOMRawNodeList& operator=(const IXMLDOMRawNodeList&) = default;
    virtual ~IXMLDOMRawNodeList() = default;

    void addNode(xercesc::DOMNode* node) { m_nodes.push_back(node); }
    long getlength() const { return static_cast<long>(m_nodes.size()); }

    // A new node wrapper for entry index; an index outside the list gives a
    // wrapper without a node.
    CSmartPtr<IXMLDOMNode> operator[](long index) const;

    std::vector<xercesc::DOMNode*> m_nodes;
};

class IXMLDOMNodeList : public CSmartPtrAble {
  public:
    // list->item[i] yields the node wrapper of entry i (getitem()[i]).
    class CItemProperty {
      public:
        explicit CItemProperty(IXMLDOMNodeList* owner) : m_pOwner(owner) {}
        CItemProperty(const CItemProperty&) = delete;
        CItemProperty& operator=(const CItemProperty&) = delete;
        operator IXMLDOMRawNodeList&() const;
        CSmartPtr<IXMLDOMNode> operator[](long index) const;

      private:
        IXMLDOMNodeList* m_pOwner;
    };

    // list->length yields getlength().
    class CLengthProperty {
      public:
        explicit CLengthProperty(IXMLDOMNodeList* owner) : m_pOwner(owner) {}
        CLengthProperty(const CLengthProperty&) = delete;
        CLengthProperty& operator=(const CLengthProperty&) = delete;
        operator long() const;

      private:
        IXMLDOMNodeList* m_pOwner;
    };

    IXMLDOMNodeList() = default;

    // A new node wrapper for entry index; an index outside the list gives a
    // wrapper without a node.
    CSmartPtr<IXMLDOMNode> Getitem(long index);
    IXMLDOMRawNodeList& getitem() { return m_rawList; }
    long getlength() const { return m_rawList.getlength(); }

    IXMLDOMRawNodeList m_rawList;
    CItemProperty item{this};
    CLengthProperty length{this};
};

// The bounds of one parse: elements nested, attributes per element, the
// characters of the document's text after entity expansion, and the bytes
// the parser may hold - the last two grow with the bytes read, the file and
// each external file it names (counted once). Passing one throws
// CParseBounds::Exceeded, which ends the parse.
class CParseBounds {
  public:
    struct Exceeded {
        std::string reason;
        long line = 0; // where the parse stood, 0 when unknown
    };

    // Starts the bounds of a parse of a file of fileBytes bytes.
    void Start(std::size_t fileBytes);
    // Counts the bytes of an external file (a DTD or an entity) once.
    void AddFile(const std::string& path, std::size_t bytes);

    // An element starts (with this many attributes, their values and the
    // defaulted ones of this many characters) or ends; text is read.
    void EnterElement(const XMLCh* name, std::size_t attributes, std::size_t characters);
    void LeaveElement() {
        if (m_depth > 0)
            --m_depth;
    }
    void AddText(std::size_t characters);

    std::size_t TextLimit() const;
    std::size_t MemoryLimit() const;

  private:
    std::size_t m_bytesRead = 0;
    std::unordered_set<std::string> m_files;
    std::size_t m_depth = 0;
    std::size_t m_characters = 0;
};

// The memory manager of a document's parser: it allocates as the parser
// library's own does, counts what it holds, and while a bound is set refuses
// (as running out of memory: xercesc::OutOfMemoryException) any allocation
// that would hold more than the bound above what was held when it was set.
class CBoundedMemoryManager : public xercesc::MemoryManager {
  public:
    // Sets the bound: at most limit bytes more than are held now.
    void Bound(std::size_t limit);
    // Moves the bound of the current parse to limit bytes above its start.
    void Raise(std::size_t limit) { m_limit = limit; }
    void Unbound() { m_bounded = false; }
    // Whether the bound refused an allocation since it was set.
    bool Refused() const { return m_refused; }

    xercesc::MemoryManager* getExceptionMemoryManager() override;
    void* allocate(XMLSize_t size) override;
    void deallocate(void* p) override;

  private:
    std::size_t m_held = 0;
    std::size_t m_base = 0;
    std::size_t m_limit = 0;
    bool m_bounded = false;
    bool m_refused = false;
};

// The parser of a document, which can also note the line on which each
// element starts (for reports about a file; off unless asked for), counts
// what the parse's bounds count, and notes the code of the first fatal
// error.
class CLineRecordingParser : public xercesc::XercesDOMParser {
  public:
    CLineRecordingParser(xercesc::MemoryManager* memoryManager, CParseBounds& bounds)
        : xercesc::XercesDOMParser(nullptr, memoryManager, nullptr), m_bounds(bounds) {}

    // Turns the noting of lines on or off for the next parses.
    void RecordLines(bool on) { m_bRecord = on; }
    // The line on which an element of the last parse starts; 0 when unknown.
    long LineOf(const xercesc::DOMNode* node) const;
    // Called before each parse.
    void StartDocument() {
        m_lineAfterLastEvent = 1;
        m_lastElementLine = 0;
        m_firstFatalCode = 0;
    }
    // The code (xercesc::XMLErrs) of the first fatal error of the last parse;
    // 0 when none.
    unsigned FirstFatalCode() const { return m_firstFatalCode; }
    // The line on which the last element of the last parse ended its start
    // tag; 0 when none.
    long LastElementLine() const { return m_lastElementLine; }

    void startElement(const xercesc::XMLElementDecl& elemDecl, const unsigned int urlId,
                      const XMLCh* const elemPrefix,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attrList,
                      const XMLSize_t attrCount, const bool isEmpty, const bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& elemDecl, const unsigned int urlId,
                    const bool isRoot, const XMLCh* const elemPrefix) override;
    void docCharacters(const XMLCh* const chars, const XMLSize_t length,
                       const bool cdataSection) override;
    void ignorableWhitespace(const XMLCh* const chars, const XMLSize_t length,
                             const bool cdataSection) override;
    void docComment(const XMLCh* const comment) override;
    void error(const unsigned int errCode, const XMLCh* const msgDomain,
               const xercesc::XMLErrorReporter::ErrTypes errType, const XMLCh* const errorText,
               const XMLCh* const systemId, const XMLCh* const publicId, const XMLFileLoc lineNum,
               const XMLFileLoc colNum) override;

  private:
    // The line the scanner stands on (during a parse only); 0 when unknown.
    long CurrentLine() const;
    // Counts text towards the bounds.
    void AddText(std::size_t characters);

    CParseBounds& m_bounds;
    long m_lastElementLine = 0;
    bool m_bRecord = false;
    // The line where the scanner stood after the last event: an element's
    // start tag begins there (the scanner reports it only at its end).
    long m_lineAfterLastEvent = 1;
    std::unordered_map<const xercesc::DOMNode*, long> m_lines;
    unsigned m_firstFatalCode = 0;
};

class IXMLDOMDocument : public CSmartPtrAble {
  public:
    // Requires an initialised parser platform.
    IXMLDOMDocument();
    // Releases the current document and every earlier one.
    ~IXMLDOMDocument() override;

    // Notes the line on which each element starts in the documents loaded
    // from now on (see LineOf); off after construction.
    void RecordLines(bool on) { m_parser.RecordLines(on); }
    // The line on which an element of a loaded document starts; 0 when
    // lines were not recorded.
    long LineOf(const xercesc::DOMNode* node) const { return m_parser.LineOf(node); }

    // Parses the file with the validation scheme "always" and namespace
    // processing, and takes the document over. Returns true when the file
    // was read and is well-formed XML; false when it cannot be read (it is
    // no regular file, or a URL of the network: such is never opened), is
    // not well formed (a fatal parser error), passes one of its bounds or
    // gives no document (Failure says which). External DTDs and entities are
    // read from local regular files only: a document that names one by a
    // network URL, or names a FIFO or a device, fails to load. Validity
    // errors (for a document without any grammar: every element and
    // attribute) are neither reported nor a failure. Throws only
    // std::bad_alloc, when memory runs out.
    //
    // A later load replaces the current document; the earlier document stays
    // alive, so wrappers that point into it remain usable, and is released
    // with this object. After a failed load there is no current document.
    bool load(const CString& fileName);

    // The first element, in document order and at any depth, whose name is
    // the last Tag of the path and which passes checkNode with the path's last
    // Attribute and Value. The structure of the path plays no part. A null
    // holder when nothing matches or no document is loaded.
    CSmartPtr<IXMLDOMNode> selectSingleNode(const CString& path);

    // Settings kept for the setup loader, which sets them to false, true,
    // true; nothing here reads them.
    bool m_bLoadOption1 = false;
    bool m_bLoadOption2 = false;
    bool m_bLoadOption3 = false;

  private:
    // Counts the fatal errors of a parse (a file that cannot be read or is
    // not well formed) and keeps every message to itself.
    class CFatalErrorCounter : public xercesc::ErrorHandler {
      public:
        void warning(const xercesc::SAXParseException&) override {}
        void error(const xercesc::SAXParseException&) override {}
        void fatalError(const xercesc::SAXParseException& error) override;
        void resetErrors() override {
            m_nFatalErrors = 0;
            m_strFirstError = CString();
            m_nFirstErrorLine = 0;
        }
        int m_nFatalErrors = 0;
        CString m_strFirstError;
        long m_nFirstErrorLine = 0;
    };

  public:
    // Why the last load failed: the file cannot be read (or is no regular
    // file), it is not well-formed XML, or it passes a bound of the
    // document (common/Contract.h).
    enum class Failure { None, Unreadable, NotWellFormed, Bound };
    Failure LoadFailure() const { return m_failure; }
    // The reason in words - "the file cannot be read (...)", "the external
    // file '...' cannot be read (...)", the bound passed, or the parser's
    // message of the first fatal error for a document that is not well
    // formed ("" when the parser gave none) - and its line (0 when none or
    // unknown): for reports about a file a load refuses.
    const CString& FirstError() const { return m_failureText; }
    long FirstErrorLine() const { return m_failureLine; }
    // The external files (DTDs, entities) the last load read besides the
    // document itself.
    std::size_t ExternalFilesRead() const { return m_entityResolver.m_filesRead; }

  private:
    // Reads external DTDs and external entities from local files only. The
    // parser library would otherwise fetch a system identifier such as
    // "http://host/xun.dtd" over the network whenever a document names one:
    // such an identifier (any URL other than a file: URL of this machine) is
    // not resolved, which the parser reports as a fatal error, so the load
    // fails. Plain paths resolve against the document's own location, as
    // before.
    //
    // A local file is read whole by xunReadRegularFile_ (never a FIFO or a
    // device) and counted in the document's bounds; what cannot be read is
    // not resolved, and the first reason is kept.
    class CLocalEntityResolver : public xercesc::XMLEntityResolver {
      public:
        explicit CLocalEntityResolver(CParseBounds& bounds, CBoundedMemoryManager& memory)
            : m_bounds(bounds), m_memory(memory) {}
        xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* resource) override;
        std::string m_firstFailure;
        std::size_t m_filesRead = 0;

      private:
        CParseBounds& m_bounds;
        CBoundedMemoryManager& m_memory;
    };

    void Fail(Failure failure, const CString& text, long line);

    // Declared first: the parser and every document allocate from it.
    CBoundedMemoryManager m_memory;
    CParseBounds m_bounds;
    Failure m_failure = Failure::None;
    CString m_failureText;
    long m_failureLine = 0;
    CFatalErrorCounter m_errorCounter;
    CLocalEntityResolver m_entityResolver{m_bounds, m_memory};
    // Bounds entity expansion, so that a small file cannot expand into an
    // unbounded document.
    xercesc::SecurityManager m_securityManager;
    std::vector<xercesc::DOMDocument*> m_earlierDocs; // owned, from earlier loads

  public:
    CLineRecordingParser m_parser;
    xercesc::DOMDocument* m_pDoc = nullptr; // owned; null until a successful load
};

} // namespace MSXML2
