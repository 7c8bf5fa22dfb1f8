#include "setup/SetupLoader.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <unordered_map>

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNodeList.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "SmartPtr"
#include "common/Assert.h"
#include "setup/IncludeNames.h"
#include "setup/LoadCache.h"
#include "setup/Installation.h"
#include "units/KVexpr.h"
#include "xml/CString.h"
#include "xml/XMLDOM.h"

using MSXML2::CSmartPtr;
using MSXML2::IXMLDOMDocument;
using MSXML2::IXMLDOMNamedNodeMap;
using MSXML2::IXMLDOMNode;
using MSXML2::IXMLDOMNodeList;
using namespace xun::contract;

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

std::string Quote(const char* text) {
    return std::string("'") + text + "'";
}

std::string Quote(const std::string& text) {
    return "'" + text + "'";
}

std::string FilterBitText(long key) {
    char text[32];
    std::snprintf(text, sizeof text, "0x%lX", static_cast<unsigned long>(key));
    return text;
}

std::string NumberText(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

// Whether only blanks follow the end of a number.
bool OnlyBlanks(const char* rest) {
    for (; *rest != '\0'; ++rest)
        if (*rest != ' ' && *rest != '\t' && *rest != '\n' && *rest != '\r')
            return false;
    return true;
}

// The eight temporary base units, keys 1 to 8, over the shared dimensions.
struct BaseUnitDef {
    const char* name;
    const CKVdimension& (*dim)();
};
const BaseUnitDef kBaseUnits[kBaseUnitCount] = {
    {"NonDimensional", &CKVdimension::GetNonDim},
    {"Length", &CKVdimension::GetLength},
    {"Mass", &CKVdimension::GetMass},
    {"Time", &CKVdimension::GetTime},
    {"Temperature", &CKVdimension::GetTemp},
    {"ElectricCurrent", &CKVdimension::GetCurr},
    {"AmountOfSubstance", &CKVdimension::GetSubs},
    {"LuminousIntensity", &CKVdimension::GetLumi},
};

class SetupLoader {
  public:
    SetupLoader(CKVregistries& registries, CXunLoadReport& report, const std::string& fileName)
        : m_registries(registries), m_units(registries.units), m_report(report), m_file(fileName) {}

    // 1 when the document was loaded and processed, 0 when it could not be.
    int Run();
    // Why the document was refused when it passed a bound of the XML layer;
    // empty otherwise.
    const std::string& Refusal() const { return m_refusal; }
    std::size_t ExternalFilesRead() const {
        return m_document ? m_document->ExternalFilesRead() : 0;
    }

  private:
    long LineOf(const NodePtr& node) const {
        return m_document ? m_document->LineOf(node->m_pNode) : 0;
    }

    // Reads a key as the loader does (base 10, or 0 for the automatic base
    // of filter keys), and reports a text that does not read whole or a
    // key that the interface's int cannot carry.
    long ReadKey(const Attribute& text, long line, int base);
    void FirstRowLacks(const Attribute& text, long row, long line, const char* name,
                       const char* value);

    void RegisterBaseUnits(long line);
    void RemoveBaseUnits();
    void LoadUnits(const NodePtr& group);
    void LoadItemTypes(const NodePtr& group);
    void LoadFilters(const NodePtr& group);
    void ReportUnreadGroups(const NodePtr& units, const NodePtr& items, const NodePtr& filters);
    template <class Registry, class KeyText>
    void ReportSharedInterfaceKeys(const Registry& registry, const char* kind, const char* key,
                                   KeyText keyText);
    // The names that the include files would get.
    struct ConstantName {
        const char* kind;
        std::string ident;
        const void* object;
    };
    template <class Registry, class Text>
    void ReportIncludeNames(const Registry& registry, const char* kind, const char* textName,
                            Text text, std::unordered_map<std::string, ConstantName>& names);

    CKVregistries& m_registries;
    CKVunitRegistry& m_units;
    CXunLoadReport& m_report;
    const std::string& m_file;
    CSmartPtr<IXMLDOMDocument> m_document;
    std::string m_refusal;
    // Where each object of this load was defined (observed loads only).
    std::unordered_map<const void*, long> m_lines;
};

long SetupLoader::ReadKey(const Attribute& text, long line, int base) {
    const char* begin = text.c_str();
    char* end = nullptr;
    long value = 0;
    if (base == 0) {
        value = static_cast<long>(std::strtoul(begin, &end, 0));
        const unsigned long bits = static_cast<unsigned long>(value);
        if (m_report.Observed() && bits > 0xFFFFFFFFul)
            m_report.Warning(m_file, line,
                             "KvId " + Quote(begin) +
                                 " does not fit in 32 bits: the interface sees " +
                                 FilterBitText(static_cast<long>(bits & 0xFFFFFFFFul)));
    } else {
        value = std::strtol(begin, &end, 10);
        if (m_report.Observed() && (value < INT_MIN || value > INT_MAX))
            m_report.Warning(m_file, line,
                             "KvId " + Quote(begin) +
                                 " does not fit in 32 bits: the interface sees " +
                                 std::to_string(static_cast<int>(value)));
    }
    if (m_report.Observed() && (end == begin || !OnlyBlanks(end)))
        m_report.Warning(m_file, line,
                         "KvId " + Quote(begin) + " reads as " +
                             (base == 0 ? FilterBitText(value) : std::to_string(value)));
    return value;
}

void SetupLoader::FirstRowLacks(const Attribute& text, long row, long line, const char* name,
                                const char* value) {
    if (row == 0 && !text.present && m_report.Observed())
        m_report.Warning(m_file, line,
                         std::string("no ") + name + " on the first row of the group: " + value +
                             " is used");
}

void SetupLoader::RegisterBaseUnits(long line) {
    std::unique_ptr<CKVunit> units[kBaseUnitCount];
    for (int k = 0; k < kBaseUnitCount; ++k) {
        units[k].reset(new CKVunit(kBaseUnits[k].name, kBaseUnits[k].name, k + 1, 1.0, 0.0,
                                   kBaseUnits[k].dim()));
        units[k]->m_strIdent = kBaseUnits[k].name;
    }
    // Either way the base units end up first, in key order. A base unit that
    // is refused (its key or ident already taken by a unit registered
    // earlier) is not registered.
    const bool empty = m_units.Count() == 0;
    for (int i = 0; i < kBaseUnitCount; ++i) {
        const int k = empty ? i : kBaseUnitCount - 1 - i;
        if (!m_units.Add(units[k], !empty) && m_report.Observed())
            m_report.Dropped(m_file, line,
                             "the base unit " + Quote(kBaseUnits[k].name) +
                                 " cannot be registered while units are read: its key or ident "
                                 "is taken by a unit registered before");
    }
}

void SetupLoader::RemoveBaseUnits() {
    // Whatever is registered under the keys 1 to 8 leaves again.
    for (long k = kFirstBaseUnitKey; k < kFirstBaseUnitKey + kBaseUnitCount; ++k)
        if (const CKVunit* unit = m_units.FindByKey(k))
            m_units.Remove(unit);
}

void SetupLoader::LoadUnits(const NodePtr& group) {
    RegisterBaseUnits(LineOf(group));
    NodeListPtr rows = group->selectNodes(CString(kRows));
    long key = 0;
    for (long i = 0; i < rows->getlength(); ++i) {
        const NodePtr rowNode = rows->Getitem(i);
        const long line = LineOf(rowNode);
        const RowAttributes row(rowNode);
        const Attribute ident = row.Read("Ident");
        const Attribute keyText = row.Read("KvId");
        FirstRowLacks(keyText, i, line, "KvId", "the key 0");
        if (keyText.present)
            key = ReadKey(keyText, line, 10);
        const Attribute desc = row.Read("Desc");
        const Attribute abbr = row.Read("Abbr");
        const Attribute alias = row.Read("Alias");
        const Attribute expr = row.Read("Expr");
        const std::string what =
            m_report.Observed() ? "unit " + Quote(ident.c_str()) + ": " : std::string();

        CKVunit* rawUnit = nullptr;
        double* rawValue = nullptr;
        bool ok = false;
        if (m_report.CheckOnly()) {
            // What ends a load here (a unit arithmetic whose factor becomes
            // 0) is reported, and the row skipped.
            try {
                XunAssertionTrap trap;
                ok = xunEvaluateExpression_(expr.c_str(), m_units, &rawUnit, &rawValue);
            } catch (const XunAssertionFailed& failed) {
                m_report.Fatal(*failed.assertion, m_file, line,
                               what + "expression " + Quote(expr.c_str()) +
                                   (failed.assertion == &kUnitFactor ? " gives the factor 0"
                                                                     : " breaks a unit invariant") +
                                   "; loading would stop");
                continue;
            }
        } else {
            ok = xunEvaluateExpression_(expr.c_str(), m_units, &rawUnit, &rawValue);
        }
        std::unique_ptr<CKVunit> unit(rawUnit);
        delete rawValue;
        if (!ok) {
            std::string printed = "Error reading unit\n";
            printed += ident.c_str();
            printed += "\nUnsuccessful parsing of the expression\n";
            printed += expr.c_str();
            m_report.Message(
                stdout, printed, m_file, line,
                m_report.Observed()
                    ? what +
                          (expr.present ? "expression " + Quote(expr.c_str()) + " does not evaluate"
                                        : std::string("no Expr")) +
                          "; the row is skipped"
                    : std::string());
            continue;
        }
        if (!unit) {
            if (m_report.Observed())
                m_report.Dropped(m_file, line,
                                 what + "expression " + Quote(expr.c_str()) +
                                     " gives a number, not a unit; the row is skipped");
            continue;
        }
        if (m_report.Observed() &&
            (!std::isfinite(unit->m_dFactor) || !std::isfinite(unit->m_dOffset)))
            m_report.Warning(m_file, line,
                             what + "expression " + Quote(expr.c_str()) + " gives the factor " +
                                 NumberText(unit->m_dFactor) + " and the offset " +
                                 NumberText(unit->m_dOffset) + "; its conversions give no number");
        unit->m_strIdent = ident.c_str();
        unit->m_strDesc = desc.c_str();
        unit->m_strAbbr = abbr.c_str();
        if (alias.present)
            unit->SetAlias(alias.c_str());
        unit->m_strExpr = expr.c_str();
        unit->m_lKey = key;
        const CKVunit* added = unit.get();
        if (m_units.Add(unit, false)) {
            if (m_report.Observed()) {
                m_lines[added] = line;
                m_report.Added(m_file, line, what + "key " + std::to_string(key));
                if (key == 0)
                    m_report.Warning(m_file, line,
                                     what + "the key 0 makes the unit unusable for conversions");
            }
            continue;
        }
        // Already registered under this key and ident: refresh the texts.
        unit.reset();
        const CKVunit* byKey = m_units.FindByKey(key);
        const CKVunit* byIdent = m_units.FindByIdent(ident.c_str());
        if (byKey != nullptr && byKey == byIdent) {
            m_units.SetTexts(*byKey, desc.c_str(), abbr.c_str());
            if (m_report.Observed())
                m_report.Refreshed(m_file, line, what + "description and abbreviation");
            continue;
        }
        if (!m_report.Observed())
            continue;
        const std::string carried =
            keyText.present ? "" : " (KvId carried over from the row above)";
        const bool baseKey = key >= kFirstBaseUnitKey && key < kFirstBaseUnitKey + kBaseUnitCount;
        auto lineOf = [this](const void* object) {
            const auto it = m_lines.find(object);
            return it != m_lines.end() ? " (line " + std::to_string(it->second) + ")"
                                       : std::string(" (registered before this load)");
        };
        if (byKey != nullptr && baseKey && m_lines.count(byKey) == 0)
            m_report.Dropped(m_file, line,
                             what + "key " + std::to_string(key) + " is taken by the base unit " +
                                 Quote(byKey->m_strIdent) +
                                 " while units are read; the row is dropped" + carried);
        else if (byKey != nullptr)
            m_report.Dropped(m_file, line,
                             what + "key " + std::to_string(key) + " is already used by unit " +
                                 Quote(byKey->m_strIdent) + lineOf(byKey) + "; the row is dropped" +
                                 carried);
        else if (byIdent != nullptr && byIdent->m_lKey >= kFirstBaseUnitKey &&
                 byIdent->m_lKey < kFirstBaseUnitKey + kBaseUnitCount &&
                 m_lines.count(byIdent) == 0)
            m_report.Dropped(m_file, line,
                             what + "the ident names a base unit while units are read; the row "
                                    "is dropped");
        else
            m_report.Dropped(m_file, line,
                             what + "the ident is already used by unit key " +
                                 std::to_string(byIdent != nullptr ? byIdent->m_lKey : 0) +
                                 lineOf(byIdent) + "; the row is dropped");
    }
    RemoveBaseUnits();
}

void SetupLoader::LoadItemTypes(const NodePtr& group) {
    NodeListPtr rows = group->selectNodes(CString(kRows));
    long key = 0;
    int decimals = -1;
    double defaultValue = 0.0;
    for (long i = 0; i < rows->getlength(); ++i) {
        const NodePtr rowNode = rows->Getitem(i);
        const long line = LineOf(rowNode);
        const RowAttributes row(rowNode);
        const Attribute ident = row.Read("Ident");
        const std::string what =
            m_report.Observed() ? "item type " + Quote(ident.c_str()) + ": " : std::string();
        const Attribute keyText = row.Read("KvId");
        FirstRowLacks(keyText, i, line, "KvId", "the key 0");
        if (keyText.present)
            key = ReadKey(keyText, line, 10);
        const Attribute desc = row.Read("Desc");
        const Attribute decimalsText = row.Read("Decimals");
        FirstRowLacks(decimalsText, i, line, "Decimals", "-1");
        if (decimalsText.present) {
            char* end = nullptr;
            const long value = std::strtol(decimalsText.c_str(), &end, 10);
            decimals = static_cast<int>(value);
            if (m_report.Observed() &&
                (end == decimalsText.c_str() || !OnlyBlanks(end) || value != decimals))
                m_report.Warning(m_file, line,
                                 "Decimals " + Quote(decimalsText.c_str()) + " reads as " +
                                     std::to_string(decimals));
        }
        const Attribute defaultText = row.Read("DefaultValue");
        FirstRowLacks(defaultText, i, line, "DefaultValue", "0");
        if (defaultText.present) {
            char* end = nullptr;
            defaultValue = std::strtod(defaultText.c_str(), &end);
            if (m_report.Observed() && (end == defaultText.c_str() || !OnlyBlanks(end)))
                m_report.Warning(m_file, line,
                                 "DefaultValue " + Quote(defaultText.c_str()) + " reads as " +
                                     NumberText(defaultValue));
            else if (m_report.Observed() && !std::isfinite(defaultValue))
                m_report.Warning(m_file, line,
                                 "DefaultValue " + Quote(defaultText.c_str()) +
                                     " is not a finite number");
        }
        const Attribute defaultUnitIdent = row.Read("DefaultUnit");
        if (!defaultUnitIdent.present) {
            if (m_report.Observed())
                m_report.Dropped(m_file, line, what + "no DefaultUnit; the row is skipped");
            continue;
        }
        const CKVunit* defaultUnit = m_units.FindByIdent(defaultUnitIdent.c_str());
        if (defaultUnit == nullptr) {
            if (m_report.Observed())
                m_report.Dropped(m_file, line,
                                 what + "unknown DefaultUnit " + Quote(defaultUnitIdent.c_str()) +
                                     "; the row is skipped");
            continue;
        }

        // The item type owns a copy of its default unit's dimension.
        double p[CKVdimension::kBaseCount];
        defaultUnit->GetDim().GetPowers(p[0], p[1], p[2], p[3], p[4], p[5], p[6]);
        std::unique_ptr<CKVdimension> dim(
            new CKVdimension(p[0], p[1], p[2], p[3], p[4], p[5], p[6]));
        std::unique_ptr<CKVitemType> item(new CKVitemType(desc.c_str(), key, ident.c_str(), *dim));
        CKVitemType* target = item.get();
        if (m_registries.itemTypes.Add(item, dim)) {
            if (m_report.Observed()) {
                m_lines[target] = line;
                m_report.Added(m_file, line, what + "key " + std::to_string(key));
                if (key == 0)
                    m_report.Warning(m_file, line, what + "the key 0 is not a valid item key");
            }
        } else {
            item.reset();
            dim.reset();
            target = m_registries.itemTypes.FindByKey(key);
            CKVitemType* byIdent = m_registries.itemTypes.FindByIdent(ident.c_str());
            if (target == nullptr || target != byIdent) {
                if (m_report.Observed()) {
                    auto lineOf = [this](const void* object) {
                        const auto it = m_lines.find(object);
                        return it != m_lines.end() ? " (line " + std::to_string(it->second) + ")"
                                                   : std::string(" (registered before this load)");
                    };
                    if (target != nullptr)
                        m_report.Dropped(
                            m_file, line,
                            what + "key " + std::to_string(key) + " is already used by item type " +
                                Quote(target->m_strIdent) + lineOf(target) +
                                "; the row is dropped" +
                                (keyText.present ? "" : " (KvId carried over from the row above)"));
                    else
                        m_report.Dropped(m_file, line,
                                         what + "the ident is already used by item key " +
                                             std::to_string(byIdent->m_nNumId) + lineOf(byIdent) +
                                             "; the row is dropped");
                }
                continue;
            }
            target->m_strKey = desc.c_str();
            if (m_report.Observed())
                m_report.Refreshed(m_file, line, what + "description, decimals, default value");
        }
        target->m_nDecimals = decimals;
        target->m_dDefault = defaultValue;
        if (!defaultUnit->IsEqv(*target->m_pDimension)) {
            // A refreshed item type keeps its dimension: AllowUnit stops here.
            m_report.Fatal(kAllowUnitDimension, m_file, line,
                           what + "DefaultUnit " + Quote(defaultUnitIdent.c_str()) +
                               " has the dimension " + xunDimensionText_(defaultUnit->GetDim()) +
                               ", but the item type has " +
                               xunDimensionText_(*target->m_pDimension) + "; loading would stop");
            continue;
        }
        target->AllowUnit(*defaultUnit, true);

        const Attribute allowed = row.Read("AllowedUnits");
        if (!allowed.present) {
            if (m_report.Observed()) {
                const Attribute userUnit = row.Read("UserUnit");
                if (userUnit.present)
                    m_report.Dropped(m_file, line,
                                     what + "UserUnit " + Quote(userUnit.c_str()) +
                                         " is ignored without AllowedUnits");
            }
            continue;
        }
        ForEachToken(allowed.text, [&](const CString& token) {
            const CKVunit* unit = m_units.FindByIdent(token.GetString());
            if (unit == nullptr) {
                if (m_report.Observed())
                    m_report.Dropped(m_file, line,
                                     what + "unknown unit " + Quote(token.GetString()) +
                                         " in AllowedUnits; it is skipped");
                return;
            }
            if (!unit->IsEqv(*target->m_pDimension)) {
                m_report.Fatal(
                    kAllowUnitDimension, m_file, line,
                    what + "allowed unit " + Quote(token.GetString()) + " has the dimension " +
                        xunDimensionText_(unit->GetDim()) + ", but the item type has " +
                        xunDimensionText_(*target->m_pDimension) + "; loading would stop");
                return;
            }
            target->AllowUnit(*unit, false);
        });
        const Attribute userUnit = row.Read("UserUnit");
        if (!userUnit.present)
            continue;
        const CKVunit* user = m_units.FindByIdent(userUnit.c_str());
        if (user == nullptr) {
            if (m_report.Observed())
                m_report.Dropped(m_file, line,
                                 what + "unknown UserUnit " + Quote(userUnit.c_str()) +
                                     "; it is ignored");
            continue;
        }
        // No dimension check here, unlike xunSetItemUserUnit.
        target->SetItemUserUnit(static_cast<int>(user->m_lKey));
        if (m_report.Observed() && !user->IsEqv(*target->m_pDimension))
            m_report.Warning(m_file, line,
                             what + "UserUnit " + Quote(userUnit.c_str()) + " has the dimension " +
                                 xunDimensionText_(user->GetDim()) + ", but the item type has " +
                                 xunDimensionText_(*target->m_pDimension) +
                                 "; conversions to the user unit fail");
    }
}

void SetupLoader::LoadFilters(const NodePtr& group) {
    NodeListPtr rows = group->selectNodes(CString(kRows));
    long key = 0;
    for (long i = 0; i < rows->getlength(); ++i) {
        const NodePtr rowNode = rows->Getitem(i);
        const long line = LineOf(rowNode);
        const RowAttributes row(rowNode);
        const Attribute ident = row.Read("Ident");
        const std::string what =
            m_report.Observed() ? "filter " + Quote(ident.c_str()) + ": " : std::string();
        const Attribute keyText = row.Read("KvId");
        FirstRowLacks(keyText, i, line, "KvId", "the key 0");
        if (keyText.present)
            key = ReadKey(keyText, line, 0);
        const Attribute desc = row.Read("Desc");

        std::unique_ptr<CKVfilter> filter(new CKVfilter(desc.c_str(), key));
        filter->m_strIdent = ident.c_str();
        const CKVfilter* added = filter.get();
        if (m_registries.filters.Add(filter)) {
            if (m_report.Observed()) {
                m_lines[added] = line;
                m_report.Added(m_file, line, what + "bit " + FilterBitText(key));
            }
        } else {
            CKVfilter* byKey = m_registries.filters.FindByKey(key);
            CKVfilter* byIdent = m_registries.filters.FindByIdent(ident.c_str());
            if (byKey != nullptr && byKey == byIdent) {
                byKey->m_strKey = desc.c_str();
                if (m_report.Observed())
                    m_report.Refreshed(m_file, line, what + "description");
            } else if (m_report.Observed()) {
                auto lineOf = [this](const void* object) {
                    const auto it = m_lines.find(object);
                    return it != m_lines.end() ? " (line " + std::to_string(it->second) + ")"
                                               : std::string(" (registered before this load)");
                };
                const std::string rest =
                    "; the row is dropped, but its Items still get bit " + FilterBitText(key) +
                    (keyText.present ? "" : " (KvId carried over from the row above)");
                if (byKey != nullptr)
                    m_report.Dropped(m_file, line,
                                     what + "key " + FilterBitText(key) +
                                         " is already used by filter " + Quote(byKey->m_strIdent) +
                                         lineOf(byKey) + rest);
                else
                    m_report.Dropped(m_file, line,
                                     what + "the ident is already used by filter key " +
                                         FilterBitText(byIdent->m_lKey) + lineOf(byIdent) + rest);
            }
        }
        if (m_report.Observed() && key == 0)
            m_report.Warning(m_file, line,
                             what + "the key 0 sets no bit: its item types join no filter");

        const Attribute items = row.Read("Items");
        if (!items.present)
            continue;
        ForEachToken(items.text, [&](const CString& token) {
            // Item types are never removed and their idents are unique, so
            // the ident map finds exactly the listed item type of that ident.
            CKVitemType* item = m_registries.itemTypes.FindByIdent(token.GetString());
            if (item == nullptr) {
                m_report.Fatal(kFilterItemUnknown, m_file, line,
                               what + "unknown item type " + Quote(token.GetString()) +
                                   " in Items; loading would stop");
                return;
            }
            item->SetFilter(item->GetFilter() | key);
        });
    }
}

// Groups that a load does not read: every Group element named like one of
// the three groups but not the one a load selects (a second group of a
// kind, or one whose first attribute is not Name, which the path predicate
// then does not match), and R elements of a read group that are not rows
// (not a child of a Rows child of the group).
void SetupLoader::ReportUnreadGroups(const NodePtr& units, const NodePtr& items,
                                     const NodePtr& filters) {
    xercesc::DOMDocument* document = m_document->m_pDoc;
    XMLCh groupTag[] = {'G', 'r', 'o', 'u', 'p', 0};
    XMLCh nameTag[] = {'N', 'a', 'm', 'e', 0};
    // The lists are walked until item() runs out: the length of such a live
    // list walks the whole document each time it is asked, while stepping
    // on from the item before costs constant time.
    xercesc::DOMNodeList* groups = document->getElementsByTagName(groupTag);
    for (XMLSize_t i = 0; groups != nullptr && groups->item(i) != nullptr; ++i) {
        auto* element = static_cast<xercesc::DOMElement*>(groups->item(i));
        const CString name = IXMLDOMNode::wide2cstr(element->getAttribute(nameTag));
        const NodePtr* selected = name == "Units"     ? &units
                                  : name == "Items"   ? &items
                                  : name == "Filters" ? &filters
                                                      : nullptr;
        if (selected == nullptr || (*selected && (*selected)->m_pNode == element))
            continue;
        const long line = m_document->LineOf(element);
        if (*selected)
            m_report.Dropped(m_file, line,
                             "another Group " + Quote(name.GetString()) +
                                 ": only the first one is read; its rows define nothing");
        else
            m_report.Dropped(m_file, line,
                             "Group " + Quote(name.GetString()) +
                                 " is not found by a load: its first attribute is not Name, so "
                                 "//Group[@Name=\"" +
                                 name.GetString() +
                                 "\"] does not match it; its rows define nothing");
    }
    for (const NodePtr* group : {&units, &items, &filters}) {
        if (!*group)
            continue;
        NodeListPtr rows = (*group)->selectNodes(CString(kRows));
        std::unordered_map<const xercesc::DOMNode*, bool> read;
        for (long i = 0; i < rows->getlength(); ++i)
            read[rows->Getitem(i)->m_pNode] = true;
        XMLCh rowTag[] = {'R', 0};
        auto* element = static_cast<xercesc::DOMElement*>((*group)->m_pNode);
        xercesc::DOMNodeList* all = element->getElementsByTagName(rowTag);
        for (XMLSize_t i = 0; all != nullptr && all->item(i) != nullptr; ++i) {
            const xercesc::DOMNode* r = all->item(i);
            if (read.count(r) == 0)
                m_report.Dropped(m_file, m_document->LineOf(r),
                                 "this R element is not a row (rows are the R children of a Rows "
                                 "child of the Group); it defines nothing");
        }
    }
}

// The int that a key reaches the interface as, as a key text takes it: a
// filter bit as its 32 bits, a key as the signed int.
long InterfaceValue(long key, const char* noun) {
    const int value = static_cast<int>(key);
    return std::strcmp(noun, "bit") == 0 ? static_cast<long>(static_cast<unsigned>(value)) : value;
}

// Keys cross the interface as int: a key that does not fit reaches it as its
// low 32 bits, which may be the key of another object. Every object of this
// load whose key does so is reported with the first registered object that
// shares its int (each pair with the first of its int: the interface cannot
// tell them apart).
template <class Registry, class KeyText>
void SetupLoader::ReportSharedInterfaceKeys(const Registry& registry, const char* kind,
                                            const char* key, KeyText keyText) {
    std::unordered_map<int, const void*> first;
    first.reserve(registry.Count());
    for (const auto* object : registry) {
        const long value = XunKeyOf(*object);
        const auto found = first.emplace(static_cast<int>(value), object);
        if (found.second || m_lines.count(object) == 0)
            continue;
        const auto* other = static_cast<decltype(object)>(found.first->second);
        const auto line = m_lines.find(other);
        m_report.Warning(
            m_file, m_lines[object],
            std::string(kind) + " " + Quote(XunIdentOf(*object)) + ": KvId " + keyText(value) +
                " reaches the interface as the " + key + " " + keyText(InterfaceValue(value, key)) +
                ", as does the KvId " + keyText(XunKeyOf(*other)) + " of " + kind + " " +
                Quote(XunIdentOf(*other)) +
                (line != m_lines.end() ? " (line " + std::to_string(line->second) + ")"
                                       : std::string(" (registered before this load)")) +
                ": the interface cannot tell the two apart");
    }
}

// A text in a report line: line breaks shown as \n.
std::string OneLine(const std::string& text) {
    std::string line;
    for (char c : text)
        line += c == '\n' ? std::string("\\n") : c == '\r' ? std::string("\\r") : std::string(1, c);
    return line;
}

// xunWriteItemTypeIncludes writes every ident as the name of a constant in
// C, Pascal, Fortran and C#, and every description into the comment beside
// it, as they are. Every object of this load whose ident is no valid name in
// one of them, whose text breaks the comment, or whose ident names the same
// constant as an object before it (item types, units and filters share the
// names of the C, Pascal and Fortran files; the last two ignore case) is
// reported.
template <class Registry, class Text>
void SetupLoader::ReportIncludeNames(const Registry& registry, const char* kind,
                                     const char* textName, Text text,
                                     std::unordered_map<std::string, ConstantName>& names) {
    for (const auto* object : registry) {
        const std::string& ident = XunIdentOf(*object);
        const auto found = names.emplace(xunFoldedName_(ident), ConstantName{kind, ident, object});
        const auto line = m_lines.find(object);
        if (line == m_lines.end())
            continue;
        const std::string what = std::string(kind) + " " + Quote(OneLine(ident)) + ": ";
        const std::string nameProblem = xunConstantNameProblem_(ident);
        if (!nameProblem.empty())
            m_report.Warning(m_file, line->second,
                             what + "the ident is " + nameProblem +
                                 "; the include files would carry it as it is");
        const std::string textProblem = xunCommentTextProblem_(text(*object));
        if (!textProblem.empty())
            m_report.Warning(m_file, line->second,
                             what + "the " + textName + " " + Quote(OneLine(text(*object))) + " " +
                                 textProblem);
        if (found.second || !nameProblem.empty())
            continue;
        const ConstantName& other = found.first->second;
        const auto otherLine = m_lines.find(other.object);
        m_report.Warning(
            m_file, line->second,
            what + "the ident names the same constant as " + other.kind + " " +
                Quote(OneLine(other.ident)) +
                (otherLine != m_lines.end() ? " (line " + std::to_string(otherLine->second) + ")"
                                            : std::string(" (registered before this load)")) +
                " in the " +
                (other.ident == ident ? "C, Pascal and Fortran include files"
                                      : "Pascal and Fortran include files, which ignore case"));
    }
}

// Whether the XML parser library may be used: its first initialisation in
// the process either completed, or ran out of memory part way. In the
// second case the library counts itself initialised and will never finish,
// so no document can be parsed any more; loads then fail instead of
// crashing inside the parser.
enum class ParserState { Untried, Ready, Broken };
std::atomic<ParserState> ParserState_{ParserState::Untried};
// The character-set environment (xunCharacterSetEnvironment_) when this
// library first initialised the parser: the parser converts texts into the
// character set it found then, for the rest of the process.
std::string ParserCharacterSet_;

// What the parser library calls when it cannot go on (for example when
// memory runs out while it initialises). Its own handler would end the
// host's process; this one makes the load fail instead.
struct ParserPanic {
    xercesc::PanicHandler::PanicReasons reason;
};
class ThrowingPanicHandler : public xercesc::PanicHandler {
  public:
    void panic(const PanicReasons reason) override { throw ParserPanic{reason}; }
};

void InitializeParser(CXunLoadReport& report, const std::string& file) {
    if (ParserState_.load() == ParserState::Broken)
        throw std::runtime_error("the XML parser library could not be initialised in this "
                                 "process (memory ran out while it was)");
    static ThrowingPanicHandler panicHandler;
    try {
        xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr,
                                              &panicHandler,
                                              xercesc::XMLPlatformUtils::fgMemoryManager);
        if (ParserState_.load() == ParserState::Untried)
            ParserCharacterSet_ = xunCharacterSetEnvironment_();
        ParserState_.store(ParserState::Ready);
    } catch (const xercesc::XMLException&) {
        report.Message(stdout, "Error initializing Xerces\n", file, 0,
                       "the XML parser cannot be initialised");
    } catch (const xercesc::OutOfMemoryException&) {
        if (ParserState_.load() != ParserState::Ready)
            ParserState_.store(ParserState::Broken);
        throw std::bad_alloc();
    } catch (const std::bad_alloc&) {
        if (ParserState_.load() != ParserState::Ready)
            ParserState_.store(ParserState::Broken);
        throw;
    } catch (const ParserPanic& panic) {
        if (ParserState_.load() != ParserState::Ready)
            ParserState_.store(ParserState::Broken);
        throw std::runtime_error(std::string("the XML parser library could not be initialised: ") +
                                 xercesc::PanicHandler::getPanicReasonString(panic.reason));
    }
}

int SetupLoader::Run() {
    InitializeParser(m_report, m_file);
    m_document = CSmartPtr<IXMLDOMDocument>(new IXMLDOMDocument());
    m_document->m_bLoadOption1 = false;
    m_document->m_bLoadOption2 = true;
    m_document->m_bLoadOption3 = true;
    m_document->RecordLines(m_report.Observed());
    if (!m_document->load(CString(m_file.c_str()))) {
        const std::string error = m_document->FirstError().GetString();
        const long line = m_document->FirstErrorLine();
        std::string why;
        switch (m_document->LoadFailure()) {
        case IXMLDOMDocument::Failure::Unreadable:
            why = error + "; a load refuses it";
            break;
        case IXMLDOMDocument::Failure::Bound:
            m_refusal = error;
            why = error + "; a load refuses the file";
            break;
        default:
            why = error.empty() ? "the file cannot be read as XML; a load refuses it"
                                : "not well-formed XML: " + error + "; a load refuses the file";
            break;
        }
        m_report.Message(stderr, "Document '" + m_file + "' not parsed successfully. \n", m_file,
                         line, m_report.Observed() ? why : std::string());
        return 0;
    }
    const NodePtr units = m_document->selectSingleNode(CString(kUnitsGroup));
    const NodePtr items = m_document->selectSingleNode(CString(kItemsGroup));
    const NodePtr filters = m_document->selectSingleNode(CString(kFiltersGroup));
    if (m_report.Observed())
        ReportUnreadGroups(units, items, filters);
    if (units)
        LoadUnits(units);
    if (items)
        LoadItemTypes(items);
    if (filters)
        LoadFilters(filters);
    if (m_report.Observed()) {
        auto number = [](long key) { return std::to_string(key); };
        ReportSharedInterfaceKeys(m_units, "unit", "tag", number);
        ReportSharedInterfaceKeys(m_registries.itemTypes, "item type", "key", number);
        ReportSharedInterfaceKeys(m_registries.filters, "filter", "bit", FilterBitText);
        std::unordered_map<std::string, ConstantName> names;
        auto key = [](const auto& object) -> const std::string& { return object.m_strKey; };
        auto desc = [](const CKVunit& unit) -> const std::string& { return unit.m_strDesc; };
        ReportIncludeNames(m_registries.itemTypes, "item type", "description", key, names);
        ReportIncludeNames(m_units, "unit", "description", desc, names);
        ReportIncludeNames(m_registries.filters, "filter", "description", key, names);
    }
    return 1;
}

} // namespace

std::string xunSetupFileName_(const char* path) {
    return (path != nullptr && path[0] != '\0') ? std::string(path)
                                                : xunInstallDir_() + "XUN" + ".xml";
}

int xunLoadSetupFile_(CKVregistries& registries, const char* path, CXunLoadReport& report,
                      std::string& fileName, std::string* refusal, std::size_t* externalFiles) {
    fileName = xunSetupFileName_(path);
    if (externalFiles != nullptr)
        *externalFiles = 0;
    // The numeric locale of the host, restored after a successful load (and
    // after a check in every case).
    const char* current = std::setlocale(LC_NUMERIC, nullptr);
    const std::string savedLocale = current != nullptr ? current : "C";
    const char savedSymbol = szDecimalSymbol;
    std::setlocale(LC_NUMERIC, "C");
    struct Restore {
        const CXunLoadReport& report;
        const std::string& locale;
        char symbol;
        ~Restore() {
            if (report.CheckOnly()) {
                std::setlocale(LC_NUMERIC, locale.c_str());
                szDecimalSymbol = symbol;
            }
        }
    } restore{report, savedLocale, savedSymbol};

    // The name of the loaded file is kept in a 260-byte buffer: a longer path
    // is refused like a file that cannot be read.
    if (fileName.size() >= static_cast<size_t>(kPathBufferSize)) {
        report.Message(stderr, "Document '" + fileName + "' not parsed successfully. \n", fileName,
                       0,
                       "the path has " + std::to_string(fileName.size()) +
                           " bytes; a load refuses paths of 260 bytes or more");
        return 0;
    }
    int result = 0;
    try {
        SetupLoader loader(registries, report, fileName);
        result = loader.Run();
        if (refusal != nullptr)
            *refusal = loader.Refusal();
        if (externalFiles != nullptr)
            *externalFiles = loader.ExternalFilesRead();
    } catch (const xercesc::XMLException&) {
        result = 0;
    } catch (const xercesc::OutOfMemoryException&) {
        throw std::bad_alloc();
    }
    if (result == 0 || report.CheckOnly())
        return result;
    xunCopyPath_(szDocName, fileName.c_str());
    std::setlocale(LC_NUMERIC, savedLocale.c_str());
    return 1;
}

namespace {
// Whether the last load of the process-wide registry was clean: into an
// empty registry, printing nothing, reading no file but the setup file.
std::atomic<bool> LastLoadWasClean_{false};
} // namespace

bool xunLastSetupLoadWasClean_() {
    return LastLoadWasClean_.load();
}

bool xunPrepareLoadCache_(CXunLoadCache& cache, const std::string& fileName,
                          const std::vector<std::string>& beside) {
    // The cache holds what a load put into an empty registry; the character
    // set the parser converts texts into is part of the key: the one it was
    // initialised with, or (not yet initialised) the one it will be.
    const CKVregistries& registries = xunRegistries_();
    return registries.units.Count() == 0 && registries.itemTypes.Count() == 0 &&
           registries.filters.Count() == 0 && ParserState_.load() != ParserState::Broken &&
           cache.Prepare(fileName, beside,
                         ParserState_.load() == ParserState::Ready ? ParserCharacterSet_
                                                                   : xunCharacterSetEnvironment_(),
                         szDecimalSymbol);
}

bool xunLoadFromCache_(const CXunLoadCache& cache, const std::string& fileName) {
    const char* current = std::setlocale(LC_NUMERIC, nullptr);
    const std::string savedLocale = current != nullptr ? current : "C";
    std::setlocale(LC_NUMERIC, "C");
    // Quiet: when the parser cannot be initialised, the parse that follows
    // says so.
    CXunLoadReport quiet(nullptr, true);
    InitializeParser(quiet, fileName);
    std::unique_ptr<CKVregistries> cached;
    char symbol = szDecimalSymbol;
    if (quiet.MessageCount() == 0 && ParserState_.load() == ParserState::Ready)
        cached = cache.Find(symbol);
    std::setlocale(LC_NUMERIC, savedLocale.c_str());
    if (!cached)
        return false;
    xunReplaceRegistries_(std::move(cached));
    szDecimalSymbol = symbol;
    xunCopyPath_(szDocName, fileName.c_str());
    xunSetLastLoadWasCached_(true);
    return true;
}

int xunLoadProcessSetupFile_(const char* path, std::string& fileName, std::string* refusal) {
    fileName = xunSetupFileName_(path);
    LastLoadWasClean_.store(false);
    xunSetLastLoadWasCached_(false);
    CXunLoadCache cache;
    const bool cacheable = xunPrepareLoadCache_(cache, fileName, {});
    if (cacheable && xunLoadFromCache_(cache, fileName)) {
        LastLoadWasClean_.store(true);
        return 1;
    }
    CXunLoadReport report;
    std::size_t externalFiles = 0;
    const int result =
        xunLoadSetupFile_(xunRegistries_(), path, report, fileName, refusal, &externalFiles);
    if (cacheable && result == 1 && report.MessageCount() == 0 && externalFiles == 0 &&
        cache.Unchanged()) {
        LastLoadWasClean_.store(true);
        cache.Store(xunRegistries_(), szDecimalSymbol);
    }
    return result;
}
