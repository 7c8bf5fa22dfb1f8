// Fuzz target: the location-path parser (CXPath) and the selections of the
// DOM wrapper that use it. The input is the path text (up to its first NUL
// byte). Besides surviving any text, the parser must keep its rules: no
// element is empty or holds a delimiter, every element's text occurs in the
// path, a second Parse gives the same list, a copy starts empty, and the
// accessors agree with the list.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "FuzzSupport.h"
#include "SmartPtr"
#include "xml/CString.h"
#include "xml/XMLDOM.h"
#include "xml/XPath.h"

using MSXML2::CSmartPtr;
using MSXML2::IXMLDOMDocument;
using MSXML2::IXMLDOMNode;
using MSXML2::IXMLDOMNodeList;

namespace {

const char kDelimiters[] = "/*[]@\"=";

// The document the paths select from; lives as long as the process.
IXMLDOMDocument* Document_ = nullptr;

bool SameElements(const CXPath& a, const CXPath& b) {
    if (a.m_elements.size() != b.m_elements.size())
        return false;
    for (size_t i = 0; i < a.m_elements.size(); ++i)
        if (a.m_elements[i].m_type != b.m_elements[i].m_type ||
            a.m_elements[i].m_strText != b.m_elements[i].m_strText)
            return false;
    return true;
}

void CheckParser(const CString& text) {
    CXPath path(text);
    if (!path.m_elements.empty())
        xunFuzzFail("a path has elements before Parse");
    path.Parse();
    int tags = 0;
    for (const CXPathElement& element : path.m_elements) {
        if (element.m_strText.IsEmpty())
            xunFuzzFail("an empty element");
        if (std::strpbrk(element.m_strText.GetString(), kDelimiters) != nullptr)
            xunFuzzFail("an element holds a delimiter");
        if (text.Find(element.m_strText.GetString(), 0) < 0)
            xunFuzzFail("an element that the path does not hold");
        if (element.m_type == CXPathElement::Tag)
            ++tags;
        else if (element.m_type != CXPathElement::Attribute &&
                 element.m_type != CXPathElement::Value)
            xunFuzzFail("an element of an unknown type");
    }
    if (path.GetTagDepth() != tags)
        xunFuzzFail("GetTagDepth differs from the number of tags");
    const int count = static_cast<int>(path.m_elements.size());
    if (!path.GetTag(-1).IsEmpty() || !path.GetTag(count).IsEmpty())
        xunFuzzFail("GetTag outside the list is not empty");
    for (int i = 0; i < count; ++i)
        if (path.GetTag(i) != path.m_elements[static_cast<size_t>(i)].m_strText)
            xunFuzzFail("GetTag differs from the list");
    for (int type = CXPathElement::Tag; type <= CXPathElement::Value; ++type) {
        CString last;
        for (const CXPathElement& element : path.m_elements)
            if (element.m_type == type)
                last = element.m_strText.GetString();
        if (path.GetToken(static_cast<CXPathElement::Type>(type)) != last)
            xunFuzzFail("GetToken is not the last element of its type");
    }

    CXPath again(path);
    if (!again.m_elements.empty())
        xunFuzzFail("a copied path has elements before Parse");
    again.Parse();
    if (!SameElements(path, again))
        xunFuzzFail("a copied path parses differently");
    path.Parse();
    if (!SameElements(path, again))
        xunFuzzFail("a second Parse gives another list");
    CXPath assigned;
    assigned = path;
    if (!assigned.m_elements.empty())
        xunFuzzFail("an assigned path has elements before Parse");
}

void Select(const CString& text) {
    CSmartPtr<IXMLDOMNode> found = Document_->selectSingleNode(text);
    if (found) {
        found->gettext();
        CSmartPtr<IXMLDOMNodeList> below = found->selectNodes(text);
        for (long i = 0; i < below->getlength(); ++i)
            below->Getitem(i)->getattributes()->getNamedItem(CString("Ident"))->gettext();
    }
    CSmartPtr<IXMLDOMNode> root(new IXMLDOMNode(Document_->m_pDoc->getDocumentElement()));
    CSmartPtr<IXMLDOMNodeList> nodes = root->selectNodes(text);
    for (long i = 0; i < nodes->getlength(); ++i) {
        CSmartPtr<IXMLDOMNode> node = nodes->Getitem(i);
        node->gettext();
        node->getattributes()->getNamedItem(text)->gettext();
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    xunFuzzInit();
    xercesc::XMLPlatformUtils::Initialize();
    Document_ = new IXMLDOMDocument;
    Document_->_smart_ptr_addref(); // held for the whole process
    if (!Document_->load(CString(XUN_SOURCE_DIR "/fuzz/fixture/XUN.xml")))
        xunFuzzFail("the fixture document does not load");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const CString text(bytes.c_str());
    CheckParser(text);
    Select(text);
    return 0;
}
