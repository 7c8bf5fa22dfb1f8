// The setup loader: reads the XML setup file and fills the unit, item-type
// and filter registries in three passes (units, item types, filters). A
// second load adds what is new and refreshes what is already registered.
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>

#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "SmartPtr"
#include "registry/FilterRegistry.h"
#include "registry/ItemTypeRegistry.h"
#include "registry/UnitRegistry.h"
#include "setup/Installation.h"
#include "units/KVassert.h"
#include "units/KVexpr.h"
#include "xml/CString.h"
#include "xml/XMLDOM.h"
#include "xun.h"

using MSXML2::CSmartPtr;
using MSXML2::IXMLDOMDocument;
using MSXML2::IXMLDOMNamedNodeMap;
using MSXML2::IXMLDOMNode;
using MSXML2::IXMLDOMNodeList;

namespace {

typedef CSmartPtr<IXMLDOMNode> NodePtr;
typedef CSmartPtr<IXMLDOMNodeList> NodeListPtr;

const char kUnitsGroup[] = "//Group[@Name=\"Units\"]";
const char kItemsGroup[] = "//Group[@Name=\"Items\"]";
const char kFiltersGroup[] = "//Group[@Name=\"Filters\"]";
const char kRows[] = "Rows/R";

// One attribute of a row: its text, empty when the attribute is absent. An
// attribute written with an empty value is the same as a missing one: the
// XML layer gives both the same empty text, so "given" means "not empty".
struct Attribute {
    CString text;
    bool present = false;

    const char* c_str() const { return text.GetString(); }
};

// The attributes of one row, taken from the row once and read by name.
class RowAttributes {
  public:
    explicit RowAttributes(const NodePtr& row) : m_attributes(row->getattributes()) {}

    Attribute Read(const char* name) const {
        Attribute attribute;
        NodePtr node = m_attributes->getNamedItem(CString(name));
        if (node && node->m_pNode != nullptr) {
            attribute.text = node->gettext();
            attribute.present = !attribute.text.IsEmpty();
        }
        return attribute;
    }

  private:
    CSmartPtr<IXMLDOMNamedNodeMap> m_attributes;
};

// Calls visit(token) for each ";"-separated token of a list, until the first
// empty token.
template <class Visit> void ForEachToken(const CString& list, Visit visit) {
    int position = 0;
    for (CString token = list.Tokenize(";", position); !token.IsEmpty();
         token = list.Tokenize(";", position))
        visit(token);
}

// The numeric locale of the host, restored when a load ends.
std::string SaveNumericLocale() {
    const char* current = std::setlocale(LC_NUMERIC, nullptr);
    std::string saved = current != nullptr ? current : "C";
    std::setlocale(LC_NUMERIC, "C");
    return saved;
}

void InitializeParser() {
    try {
        xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr,
                                              nullptr, xercesc::XMLPlatformUtils::fgMemoryManager);
    } catch (const xercesc::XMLException&) {
        std::printf("Error initializing Xerces\n");
    }
}

// The eight temporary base units, keys 1 to 8, over the shared dimensions.
struct BaseUnitDef {
    const char* name;
    const CKVdimension& (*dim)();
};
const BaseUnitDef kBaseUnits[] = {
    {"NonDimensional", &CKVdimension::GetNonDim},
    {"Length", &CKVdimension::GetLength},
    {"Mass", &CKVdimension::GetMass},
    {"Time", &CKVdimension::GetTime},
    {"Temperature", &CKVdimension::GetTemp},
    {"ElectricCurrent", &CKVdimension::GetCurr},
    {"AmountOfSubstance", &CKVdimension::GetSubs},
    {"LuminousIntensity", &CKVdimension::GetLumi},
};
const int kBaseUnitCount = 8;

void RegisterBaseUnits() {
    CKVunit* units[kBaseUnitCount];
    for (int k = 0; k < kBaseUnitCount; ++k) {
        units[k] = new CKVunit(kBaseUnits[k].name, kBaseUnits[k].name, k + 1, 1.0, 0.0,
                               kBaseUnits[k].dim());
        units[k]->m_strIdent = kBaseUnits[k].name;
    }
    // Either way the base units end up first, in key order. A base unit that
    // is refused (its ident already taken by a unit registered earlier) is
    // abandoned as it is.
    if (UnitList_.empty()) {
        for (int k = 0; k < kBaseUnitCount; ++k)
            AddUnit_(*units[k], 0);
    } else {
        for (int k = kBaseUnitCount - 1; k >= 0; --k)
            AddUnit_(*units[k], 1);
    }
}

void RemoveBaseUnits() {
    for (long k = 1; k <= kBaseUnitCount; ++k) {
        CKVunit* unit = xunFindUnitByKey_(k);
        if (unit == nullptr)
            continue;
        xunRemoveUnit_(unit);
        delete unit;
    }
}

void LoadUnits(const NodePtr& group) {
    RegisterBaseUnits();
    NodeListPtr rows = group->selectNodes(CString(kRows));
    long key = 0;
    for (long i = 0; i < rows->getlength(); ++i) {
        const RowAttributes row(rows->Getitem(i));
        const Attribute ident = row.Read("Ident");
        const Attribute keyText = row.Read("KvId");
        if (keyText.present)
            key = std::strtol(keyText.c_str(), nullptr, 10);
        const Attribute desc = row.Read("Desc");
        const Attribute abbr = row.Read("Abbr");
        const Attribute alias = row.Read("Alias");
        const Attribute expr = row.Read("Expr");

        CKVunit* rawUnit = nullptr;
        double* rawValue = nullptr;
        const bool ok = bEvaluateExpression(expr.c_str(), &rawUnit, &rawValue);
        std::unique_ptr<CKVunit> unit(rawUnit);
        delete rawValue;
        if (!ok) {
            std::printf("Error reading unit\n%s\nUnsuccessful parsing of the expression\n%s",
                        ident.c_str(), expr.c_str());
            continue;
        }
        if (!unit)
            continue;
        unit->m_strIdent = ident.c_str();
        unit->m_strDesc = desc.c_str();
        unit->m_strAbbr = abbr.c_str();
        if (alias.present)
            unit->SetAlias(alias.c_str());
        unit->m_strExpr = expr.c_str();
        unit->m_lKey = key;
        if (AddUnit_(*unit, 0)) {
            unit.release();
            continue;
        }
        // Already registered under this key and ident: refresh the texts.
        unit.reset();
        CKVunit* byKey = xunFindUnitByKey_(key);
        if (byKey != nullptr && byKey == xunFindUnitByIdent_(ident.c_str())) {
            byKey->m_strDesc = desc.c_str();
            byKey->m_strAbbr = abbr.c_str();
        }
    }
    RemoveBaseUnits();
}

void LoadItemTypes(const NodePtr& group) {
    NodeListPtr rows = group->selectNodes(CString(kRows));
    long key = 0;
    int decimals = -1;
    double defaultValue = 0.0;
    for (long i = 0; i < rows->getlength(); ++i) {
        const RowAttributes row(rows->Getitem(i));
        const Attribute ident = row.Read("Ident");
        const Attribute keyText = row.Read("KvId");
        if (keyText.present)
            key = std::strtol(keyText.c_str(), nullptr, 10);
        const Attribute desc = row.Read("Desc");
        const Attribute decimalsText = row.Read("Decimals");
        if (decimalsText.present)
            decimals = static_cast<int>(std::strtol(decimalsText.c_str(), nullptr, 10));
        const Attribute defaultText = row.Read("DefaultValue");
        if (defaultText.present)
            defaultValue = std::strtod(defaultText.c_str(), nullptr);
        const Attribute defaultUnitIdent = row.Read("DefaultUnit");
        if (!defaultUnitIdent.present)
            continue;
        CKVunit* defaultUnit = xunFindUnitByIdent_(defaultUnitIdent.c_str());
        if (defaultUnit == nullptr)
            continue;

        // The item type owns a copy of its default unit's dimension.
        double p[CKVdimension::kBaseCount];
        defaultUnit->GetDim().GetPowers(p[0], p[1], p[2], p[3], p[4], p[5], p[6]);
        CKVdimension* dim = new CKVdimension(p[0], p[1], p[2], p[3], p[4], p[5], p[6]);
        CKVitemType* item = new CKVitemType(desc.c_str(), key, ident.c_str(), *dim);
        CKVitemType* target = item;
        if (!AddItemType_(key, *item)) {
            delete item;
            delete dim;
            target = xunFindItemTypeByKey_(key);
            if (target == nullptr || target != xunFindItemTypeByIdent_(ident.c_str()))
                continue;
            target->m_strKey = desc.c_str();
        }
        target->m_nDecimals = decimals;
        target->m_dDefault = defaultValue;
        target->AllowUnit(*defaultUnit, true);

        const Attribute allowed = row.Read("AllowedUnits");
        if (!allowed.present)
            continue;
        ForEachToken(allowed.text, [target](const CString& token) {
            int tag = 0;
            if (!xunGetUnitTagFromIdent(token.GetString(), &tag))
                return;
            if (CKVunit* unit = xunFindUnitByKey_(tag))
                target->AllowUnit(*unit, false);
        });
        const Attribute userUnit = row.Read("UserUnit");
        int tag = 0;
        if (userUnit.present && xunGetUnitTagFromIdent(userUnit.c_str(), &tag))
            target->SetItemUserUnit(tag);
    }
}

void LoadFilters(const NodePtr& group) {
    NodeListPtr rows = group->selectNodes(CString(kRows));
    long key = 0;
    for (long i = 0; i < rows->getlength(); ++i) {
        const RowAttributes row(rows->Getitem(i));
        const Attribute ident = row.Read("Ident");
        const Attribute keyText = row.Read("KvId");
        if (keyText.present)
            key = static_cast<long>(std::strtoul(keyText.c_str(), nullptr, 0));
        const Attribute desc = row.Read("Desc");

        CKVfilter* filter = new CKVfilter(desc.c_str(), key);
        filter->m_strIdent = ident.c_str();
        if (!AddFilter_(*filter)) {
            CKVfilter* byKey = xunFindFilterByKey_(key);
            if (byKey != nullptr && byKey == xunFindFilterByIdent_(ident.c_str()))
                byKey->m_strKey = desc.c_str();
            delete filter;
        }

        const Attribute items = row.Read("Items");
        if (!items.present)
            continue;
        ForEachToken(items.text, [key](const CString& token) {
            // Item types are never removed and their idents are unique, so
            // the ident map finds exactly the listed item type of that ident.
            CKVitemType* item = xunFindItemTypeByIdent_(token.GetString());
            if (item != nullptr)
                item->SetFilter(item->GetFilter() | key);
            XUN_ASSERT(item != nullptr, "ok", "ItemTypeTables", 3707,
                       "int xunSetupLoad(const char *)");
        });
    }
}

int LoadDocument(const std::string& path) {
    InitializeParser();
    CSmartPtr<IXMLDOMDocument> document(new IXMLDOMDocument());
    document->m_bLoadOption1 = false;
    document->m_bLoadOption2 = true;
    document->m_bLoadOption3 = true;
    if (!document->load(CString(path.c_str()))) {
        std::fprintf(stderr, "Document '%s' not parsed successfully. \n", path.c_str());
        return 0;
    }
    if (NodePtr units = document->selectSingleNode(CString(kUnitsGroup)))
        LoadUnits(units);
    if (NodePtr items = document->selectSingleNode(CString(kItemsGroup)))
        LoadItemTypes(items);
    if (NodePtr filters = document->selectSingleNode(CString(kFiltersGroup)))
        LoadFilters(filters);
    return 1;
}

} // namespace

extern "C" {

int xunSetupLoad(const char* path) {
    const std::string fileName = (path != nullptr && path[0] != '\0')
                                     ? std::string(path)
                                     : xunInstallDir_() + "XUN" + ".xml";
    const std::string savedLocale = SaveNumericLocale();
    // The name of the loaded file is kept in a 260-byte buffer: a longer path
    // is refused like a file that cannot be read.
    if (fileName.size() >= static_cast<size_t>(kXunPathBufferSize)) {
        std::fprintf(stderr, "Document '%s' not parsed successfully. \n", fileName.c_str());
        return 0;
    }
    int result = 0;
    try {
        result = LoadDocument(fileName);
    } catch (const xercesc::XMLException&) {
        result = 0;
    } catch (const xercesc::OutOfMemoryException&) {
        result = 0;
    } catch (const std::exception&) {
        result = 0;
    }
    if (result == 0)
        return 0;
    xunCopyPath_(szDocName, fileName.c_str());
    std::setlocale(LC_NUMERIC, savedLocale.c_str());
    return 1;
}

int xunSetupLoadLinux(const char* path) {
    return xunSetupLoad(path);
}

} // extern "C"
