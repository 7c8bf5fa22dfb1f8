#include "SetupCheck.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>

#include <sys/stat.h>

#include "Location.h"
#include "Output.h"
#include "SetupFile.h"
#include "XmlLines.h"
#include "registry/UnitRegistry.h"
#include "units/KVexpr.h"
#include "xml/CString.h"
#include "xun.h"

using MSXML2::CSmartPtr;
using MSXML2::IXMLDOMNode;

namespace xuntool {

namespace {

typedef CSmartPtr<IXMLDOMNode> Row;

const char* const kBaseNames[8] = {
    "NonDimensional",    "Length",           "Mass", "Time", "Temperature", "ElectricCurrent",
    "AmountOfSubstance", "LuminousIntensity"};

std::string DimensionOf(const CKVdimension& dim) {
    double p[7];
    dim.GetPowers(p[0], p[1], p[2], p[3], p[4], p[5], p[6]);
    return DimensionText(p);
}

// Whether only blanks follow the end of a number.
bool OnlyBlanks(const char* rest) {
    for (; *rest != '\0'; ++rest)
        if (*rest != ' ' && *rest != '\t' && *rest != '\n' && *rest != '\r')
            return false;
    return true;
}

std::string FilterKeyText(long key) {
    char text[32];
    std::snprintf(text, sizeof text, "0x%lX", static_cast<unsigned long>(key));
    return text;
}

// Calls visit(token) for each ";"-separated token of a list until the first
// empty one, as the loader splits AllowedUnits and Items.
template <class Visit> void ForEachToken(const std::string& list, Visit visit) {
    const CString text(list.c_str());
    int position = 0;
    for (CString token = text.Tokenize(";", position); !token.IsEmpty();
         token = text.Tokenize(";", position))
        visit(std::string(token.GetString()));
}

class Checker {
  public:
    Checker(const std::string& path, Report& report, SetupContents& contents)
        : m_path(path), m_report(report), m_contents(contents) {}

    bool Run();

  private:
    void Add(long line, const std::string& message) { m_report.Add(m_path, line, message); }

    // Reads a decimal key or number the way the loader does and reports a
    // text that does not read whole, or a key that does not fit the int of
    // the C interface.
    long ReadKey(const RowAttribute& text, long line, int base);
    void CheckFirstRow(const RowAttribute& text, long row, long line, const char* name,
                       const char* value);

    void CheckUnits();
    void CheckItemTypes();
    void CheckFilters();

    std::string m_path;
    Report& m_report;
    SetupContents& m_contents;
    SetupFile m_file;
    std::unique_ptr<LineMap> m_lines;

    // Item types and filters as a load would register them.
    struct Item {
        long key;
        std::string ident;
        long line;
        std::unique_ptr<CKVdimension> dim;
    };
    std::vector<std::unique_ptr<Item>> m_items;
    std::map<long, Item*> m_itemByKey;
    std::map<std::string, Item*> m_itemByIdent;
    std::map<long, const Defined*> m_filterByKey;
    std::map<std::string, const Defined*> m_filterByIdent;
};

long Checker::ReadKey(const RowAttribute& text, long line, int base) {
    const char* begin = text.text.c_str();
    char* end = nullptr;
    long value = 0;
    errno = 0;
    if (base == 0) {
        value = static_cast<long>(std::strtoul(begin, &end, 0));
        const unsigned long bits = static_cast<unsigned long>(value);
        if (bits > 0xFFFFFFFFul)
            Add(line, "KvId " + Quote(text.text) + " does not fit in 32 bits: the interface sees " +
                          FilterKeyText(static_cast<long>(bits & 0xFFFFFFFFul)));
    } else {
        value = std::strtol(begin, &end, 10);
        if (value < INT_MIN || value > INT_MAX)
            Add(line, "KvId " + Quote(text.text) + " does not fit in 32 bits: the interface sees " +
                          std::to_string(static_cast<int>(value)));
    }
    if (end == begin || !OnlyBlanks(end))
        Add(line, "KvId " + Quote(text.text) + " reads as " +
                      (base == 0 ? FilterKeyText(value) : std::to_string(value)));
    return value;
}

void Checker::CheckFirstRow(const RowAttribute& text, long row, long line, const char* name,
                            const char* value) {
    if (row == 0 && !text.present)
        Add(line,
            std::string("no ") + name + " on the first row of the group: " + value + " is used");
}

bool Checker::Run() {
    struct stat status;
    std::FILE* probe = std::fopen(m_path.c_str(), "r");
    if (probe == nullptr) {
        Fail(kExitFailed, "cannot read setup file '" + m_path + "': " + std::strerror(errno));
        return false;
    }
    std::fclose(probe);
    if (::stat(m_path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) {
        Fail(kExitFailed, "cannot read setup file '" + m_path + "': it is a directory");
        return false;
    }
    if (!SetupFile::InitializeParser()) {
        Fail(kExitFailed, "cannot initialise the XML parser");
        return false;
    }
    const XmlScan scan = ScanXml(m_path);
    if (!scan.readable) {
        Fail(kExitFailed, "cannot read setup file '" + m_path + "'");
        return false;
    }
    if (!scan.wellFormed) {
        Add(scan.errorLine,
            "not well-formed XML: " + scan.errorMessage + "; a load refuses the file");
        return false;
    }
    if (!m_file.Load(m_path)) {
        Add(1, "the file cannot be read as XML; a load refuses it");
        return false;
    }
    m_lines.reset(new LineMap(scan, m_file.Document()));
    CheckUnits();
    CheckItemTypes();
    CheckFilters();
    return true;
}

void Checker::CheckUnits() {
    if (!m_file.HasGroup("Units"))
        return;
    // The loader's eight temporary base units, first in the registry.
    for (int k = 0; k < 8; ++k) {
        CKVunit* unit = new CKVunit(kBaseNames[k], kBaseNames[k], k + 1, 1.0, 0.0,
                                    k == 0   ? CKVdimension::GetNonDim()
                                    : k == 1 ? CKVdimension::GetLength()
                                    : k == 2 ? CKVdimension::GetMass()
                                    : k == 3 ? CKVdimension::GetTime()
                                    : k == 4 ? CKVdimension::GetTemp()
                                    : k == 5 ? CKVdimension::GetCurr()
                                    : k == 6 ? CKVdimension::GetSubs()
                                             : CKVdimension::GetLumi());
        unit->m_strIdent = kBaseNames[k];
        if (!AddUnit_(*unit, 0))
            delete unit;
    }
    std::map<const CKVunit*, long> lines;
    long key = 0;
    long index = 0;
    for (const Row& row : m_file.Rows("Units")) {
        const long line = m_lines->LineOf(row->m_pNode);
        const long rowIndex = index++;
        const RowAttribute ident = SetupFile::Read(row, "Ident");
        const RowAttribute keyText = SetupFile::Read(row, "KvId");
        CheckFirstRow(keyText, rowIndex, line, "KvId", "the key 0");
        if (keyText.present)
            key = ReadKey(keyText, line, 10);
        const RowAttribute desc = SetupFile::Read(row, "Desc");
        const RowAttribute abbr = SetupFile::Read(row, "Abbr");
        const RowAttribute alias = SetupFile::Read(row, "Alias");
        const RowAttribute expr = SetupFile::Read(row, "Expr");
        const std::string what = "unit " + Quote(ident.text) + ": ";
        if (!expr.present) {
            Add(line, what + "no Expr; the row is skipped");
            continue;
        }
        CKVunit* rawUnit = nullptr;
        double* rawValue = nullptr;
        bool ok = false;
        try {
            ThrowOnLibraryStop guard;
            ok = bEvaluateExpression(expr.text.c_str(), &rawUnit, &rawValue);
        } catch (const LibraryStop& stop) {
            Add(line,
                what + "expression " + Quote(expr.text) +
                    (stop.expression == "m_dFactor" ? " gives the factor 0"
                                                    : " stops the library: " + stop.Reason()) +
                    "; loading would stop");
            continue;
        }
        std::unique_ptr<CKVunit> unit(rawUnit);
        delete rawValue;
        if (!ok) {
            Add(line,
                what + "expression " + Quote(expr.text) + " does not evaluate; the row is skipped");
            continue;
        }
        if (!unit) {
            Add(line, what + "expression " + Quote(expr.text) +
                          " gives a number, not a unit; the row is skipped");
            continue;
        }
        if (!std::isfinite(unit->m_dFactor) || !std::isfinite(unit->m_dOffset))
            Add(line, what + "expression " + Quote(expr.text) + " gives the factor " +
                          FormatDouble(unit->m_dFactor) + " and the offset " +
                          FormatDouble(unit->m_dOffset) + "; its conversions give no number");
        unit->m_strIdent = ident.text;
        unit->m_strDesc = desc.text;
        unit->m_strAbbr = abbr.text;
        if (alias.present)
            unit->SetAlias(alias.text);
        unit->m_strExpr = expr.text;
        unit->m_lKey = key;
        if (AddUnit_(*unit, 0)) {
            lines[unit.get()] = line;
            if (key == 0)
                Add(line, what + "the key 0 makes the unit unusable for conversions");
            unit.release();
            continue;
        }
        const CKVunit* byKey = xunFindUnitByKey_(key);
        const CKVunit* byIdent = xunFindUnitByIdent_(ident.text);
        if (byKey != nullptr && byKey == byIdent)
            continue; // a refresh of the unit's texts
        const std::string carried =
            keyText.present ? "" : " (KvId carried over from the row above)";
        if (byKey != nullptr && key >= 1 && key <= 8 && lines.count(byKey) == 0)
            Add(line, what + "key " + std::to_string(key) + " is taken by the base unit " +
                          Quote(byKey->m_strIdent) + " while units are read; the row is dropped" +
                          carried);
        else if (byKey != nullptr)
            Add(line, what + "key " + std::to_string(key) + " is already used by unit " +
                          Quote(byKey->m_strIdent) + " (line " + std::to_string(lines[byKey]) +
                          "); the row is dropped" + carried);
        else if (lines.count(byIdent) == 0)
            Add(line,
                what + "the ident names a base unit while units are read; the row is dropped");
        else
            Add(line, what + "the ident is already used by unit key " +
                          std::to_string(byIdent->m_lKey) + " (line " +
                          std::to_string(lines[byIdent]) + "); the row is dropped");
    }
    // The base units leave again, as in the loader.
    for (long k = 1; k <= 8; ++k) {
        CKVunit* unit = xunFindUnitByKey_(k);
        if (unit == nullptr || lines.count(unit) != 0)
            continue;
        xunRemoveUnit_(unit);
        delete unit;
    }
    for (const CKVunit* unit : UnitList_)
        if (unit != nullptr)
            m_contents.units.push_back(Defined{unit->m_lKey, unit->m_strIdent, lines[unit]});
}

void Checker::CheckItemTypes() {
    if (!m_file.HasGroup("Items"))
        return;
    long key = 0;
    long index = 0;
    for (const Row& row : m_file.Rows("Items")) {
        const long line = m_lines->LineOf(row->m_pNode);
        const long rowIndex = index++;
        const RowAttribute ident = SetupFile::Read(row, "Ident");
        const std::string what = "item type " + Quote(ident.text) + ": ";
        const RowAttribute keyText = SetupFile::Read(row, "KvId");
        CheckFirstRow(keyText, rowIndex, line, "KvId", "the key 0");
        if (keyText.present)
            key = ReadKey(keyText, line, 10);
        const RowAttribute decimals = SetupFile::Read(row, "Decimals");
        CheckFirstRow(decimals, rowIndex, line, "Decimals", "-1");
        if (decimals.present) {
            char* end = nullptr;
            const long value = std::strtol(decimals.text.c_str(), &end, 10);
            if (end == decimals.text.c_str() || !OnlyBlanks(end))
                Add(line, "Decimals " + Quote(decimals.text) + " reads as " +
                              std::to_string(static_cast<int>(value)));
        }
        const RowAttribute defaultValue = SetupFile::Read(row, "DefaultValue");
        CheckFirstRow(defaultValue, rowIndex, line, "DefaultValue", "0");
        if (defaultValue.present) {
            char* end = nullptr;
            const double value = std::strtod(defaultValue.text.c_str(), &end);
            if (end == defaultValue.text.c_str() || !OnlyBlanks(end))
                Add(line, "DefaultValue " + Quote(defaultValue.text) + " reads as " +
                              FormatShortest(value));
        }
        const RowAttribute defaultUnitIdent = SetupFile::Read(row, "DefaultUnit");
        if (!defaultUnitIdent.present) {
            Add(line, what + "no DefaultUnit; the row is skipped");
            continue;
        }
        const CKVunit* defaultUnit = xunFindUnitByIdent_(defaultUnitIdent.text);
        if (defaultUnit == nullptr) {
            Add(line, what + "unknown DefaultUnit " + Quote(defaultUnitIdent.text) +
                          "; the row is skipped");
            continue;
        }

        Item* byKey = m_itemByKey.count(key) ? m_itemByKey[key] : nullptr;
        Item* byIdent = m_itemByIdent.count(ident.text) ? m_itemByIdent[ident.text] : nullptr;
        Item* target = nullptr;
        if (byKey == nullptr && byIdent == nullptr) {
            double p[7];
            defaultUnit->GetDim().GetPowers(p[0], p[1], p[2], p[3], p[4], p[5], p[6]);
            m_items.emplace_back(new Item{key, ident.text, line,
                                          std::unique_ptr<CKVdimension>(new CKVdimension(
                                              p[0], p[1], p[2], p[3], p[4], p[5], p[6]))});
            target = m_items.back().get();
            m_itemByKey[key] = target;
            m_itemByIdent[ident.text] = target;
            m_contents.items.push_back(Defined{key, ident.text, line});
            if (key == 0)
                Add(line, what + "the key 0 is not a valid item key");
        } else if (byKey != nullptr && byKey == byIdent) {
            target = byKey;
            if (!defaultUnit->IsEqv(*target->dim)) {
                Add(line, what + "DefaultUnit " + Quote(defaultUnitIdent.text) +
                              " has the dimension " + DimensionOf(defaultUnit->GetDim()) +
                              ", but the item type (line " + std::to_string(target->line) +
                              ") has " + DimensionOf(*target->dim) + "; loading would stop");
                continue;
            }
        } else {
            if (byKey != nullptr)
                Add(line, what + "key " + std::to_string(key) + " is already used by item type " +
                              Quote(byKey->ident) + " (line " + std::to_string(byKey->line) +
                              "); the row is dropped" +
                              (keyText.present ? "" : " (KvId carried over from the row above)"));
            else
                Add(line, what + "the ident is already used by item key " +
                              std::to_string(byIdent->key) + " (line " +
                              std::to_string(byIdent->line) + "); the row is dropped");
            continue;
        }

        const RowAttribute allowed = SetupFile::Read(row, "AllowedUnits");
        const RowAttribute userUnit = SetupFile::Read(row, "UserUnit");
        if (!allowed.present) {
            if (userUnit.present)
                Add(line,
                    what + "UserUnit " + Quote(userUnit.text) + " is ignored without AllowedUnits");
            continue;
        }
        ForEachToken(allowed.text, [&](const std::string& token) {
            int tag = 0;
            const CKVunit* unit = nullptr;
            if (xunGetUnitTagFromIdent(token.c_str(), &tag))
                unit = xunFindUnitByKey_(tag);
            if (unit == nullptr)
                Add(line,
                    what + "unknown unit " + Quote(token) + " in AllowedUnits; it is skipped");
            else if (!unit->IsEqv(*target->dim))
                Add(line, what + "allowed unit " + Quote(token) + " has the dimension " +
                              DimensionOf(unit->GetDim()) + ", but the item type has " +
                              DimensionOf(*target->dim) + "; loading would stop");
        });
        if (!userUnit.present)
            continue;
        int tag = 0;
        if (!xunGetUnitTagFromIdent(userUnit.text.c_str(), &tag)) {
            Add(line, what + "unknown UserUnit " + Quote(userUnit.text) + "; it is ignored");
            continue;
        }
        const CKVunit* user = xunFindUnitByIdent_(userUnit.text);
        if (user != nullptr && !user->IsEqv(*target->dim))
            Add(line, what + "UserUnit " + Quote(userUnit.text) + " has the dimension " +
                          DimensionOf(user->GetDim()) + ", but the item type has " +
                          DimensionOf(*target->dim) + "; conversions to the user unit fail");
    }
}

void Checker::CheckFilters() {
    if (!m_file.HasGroup("Filters"))
        return;
    std::vector<std::unique_ptr<Defined>> filters;
    long key = 0;
    long index = 0;
    for (const Row& row : m_file.Rows("Filters")) {
        const long line = m_lines->LineOf(row->m_pNode);
        const long rowIndex = index++;
        const RowAttribute ident = SetupFile::Read(row, "Ident");
        const std::string what = "filter " + Quote(ident.text) + ": ";
        const RowAttribute keyText = SetupFile::Read(row, "KvId");
        CheckFirstRow(keyText, rowIndex, line, "KvId", "the key 0");
        if (keyText.present)
            key = ReadKey(keyText, line, 0);
        const Defined* byKey = m_filterByKey.count(key) ? m_filterByKey[key] : nullptr;
        const Defined* byIdent =
            m_filterByIdent.count(ident.text) ? m_filterByIdent[ident.text] : nullptr;
        if (byKey == nullptr && byIdent == nullptr) {
            filters.emplace_back(new Defined{key, ident.text, line});
            m_filterByKey[key] = filters.back().get();
            m_filterByIdent[ident.text] = filters.back().get();
            m_contents.filters.push_back(*filters.back());
        } else if (byKey != byIdent) {
            const std::string rest =
                "; the row is dropped, but its Items still get bit " + FilterKeyText(key) +
                (keyText.present ? "" : " (KvId carried over from the row above)");
            if (byKey != nullptr)
                Add(line, what + "key " + FilterKeyText(key) + " is already used by filter " +
                              Quote(byKey->ident) + " (line " + std::to_string(byKey->line) + ")" +
                              rest);
            else
                Add(line, what + "the ident is already used by filter key " +
                              FilterKeyText(byIdent->key) + " (line " +
                              std::to_string(byIdent->line) + ")" + rest);
        }
        if (key == 0)
            Add(line, what + "the key 0 sets no bit: its item types join no filter");
        const RowAttribute items = SetupFile::Read(row, "Items");
        if (!items.present)
            continue;
        ForEachToken(items.text, [&](const std::string& token) {
            if (m_itemByIdent.count(token) == 0)
                Add(line,
                    what + "unknown item type " + Quote(token) + " in Items; loading would stop");
        });
    }
}

} // namespace

bool CheckSetup(const std::string& path, Report& report, SetupContents& contents) {
    Checker checker(path, report, contents);
    return checker.Run();
}

} // namespace xuntool
