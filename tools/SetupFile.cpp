#include "SetupFile.h"

#include <cstdlib>

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>

#include "xml/CString.h"

using MSXML2::CSmartPtr;
using MSXML2::IXMLDOMDocument;
using MSXML2::IXMLDOMNamedNodeMap;
using MSXML2::IXMLDOMNode;
using MSXML2::IXMLDOMNodeList;

namespace xuntool {

SetupFile::SetupFile() {}

bool SetupFile::InitializeParser() {
    try {
        xercesc::XMLPlatformUtils::Initialize();
    } catch (const xercesc::XMLException&) {
        return false;
    }
    return true;
}

bool SetupFile::Load(const std::string& path) {
    if (!InitializeParser())
        return false;
    m_document = CSmartPtr<IXMLDOMDocument>(new IXMLDOMDocument());
    return m_document->load(CString(path.c_str()));
}

CSmartPtr<IXMLDOMNode> SetupFile::Group(const char* name) {
    if (!m_document)
        return CSmartPtr<IXMLDOMNode>();
    const std::string path = std::string("//Group[@Name=\"") + name + "\"]";
    return m_document->selectSingleNode(CString(path.c_str()));
}

bool SetupFile::HasGroup(const char* name) {
    return static_cast<bool>(Group(name));
}

std::vector<CSmartPtr<IXMLDOMNode>> SetupFile::Rows(const char* name) {
    std::vector<CSmartPtr<IXMLDOMNode>> rows;
    CSmartPtr<IXMLDOMNode> group = Group(name);
    if (!group)
        return rows;
    CSmartPtr<IXMLDOMNodeList> list = group->selectNodes(CString("Rows/R"));
    for (long i = 0; i < list->getlength(); ++i)
        rows.push_back(list->Getitem(i));
    return rows;
}

RowAttribute SetupFile::Read(const CSmartPtr<IXMLDOMNode>& row, const char* name) {
    RowAttribute attribute;
    CSmartPtr<IXMLDOMNamedNodeMap> attributes = row->getattributes();
    CSmartPtr<IXMLDOMNode> node = attributes->getNamedItem(CString(name));
    if (node && node->m_pNode != nullptr) {
        attribute.text = node->gettext().GetString();
        attribute.present = !attribute.text.empty();
    }
    return attribute;
}

xercesc::DOMDocument* SetupFile::Document() const {
    return m_document ? m_document->m_pDoc : nullptr;
}

bool FindUnitRow(const std::string& setupPath, const std::string& ident, long key,
                 RowAttribute& alias, RowAttribute& expression) {
    SetupFile file;
    if (!file.Load(setupPath))
        return false;
    long rowKey = 0;
    for (const CSmartPtr<IXMLDOMNode>& row : file.Rows("Units")) {
        const RowAttribute keyText = SetupFile::Read(row, "KvId");
        if (keyText.present)
            rowKey = std::strtol(keyText.text.c_str(), nullptr, 10);
        if (rowKey != key || SetupFile::Read(row, "Ident").text != ident)
            continue;
        alias = SetupFile::Read(row, "Alias");
        expression = SetupFile::Read(row, "Expr");
        return true;
    }
    return false;
}

std::vector<std::string> SplitAliases(const std::string& list) {
    std::vector<std::string> names;
    size_t start = 0;
    while (start <= list.size()) {
        size_t end = list.find(';', start);
        if (end == std::string::npos)
            end = list.size();
        if (end > start)
            names.push_back(list.substr(start, end - start));
        start = end + 1;
    }
    return names;
}

} // namespace xuntool
