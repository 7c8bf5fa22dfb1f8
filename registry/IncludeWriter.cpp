// The include writer: the registries as constant definitions for C, Pascal,
// Fortran and C#, and the allowed-units report.
#include <cstdio>
#include <string>

#include "registry/IncludeWriter.h"

#include "common/Assert.h"

using namespace xun::contract;

namespace {

// The writer's source name, written into the headers.
const char kSource[] = "KVitemType";

// The build stamp: the date ("Mmm dd yyyy") and time ("hh:mm:ss") at which
// this file was compiled.
const std::string& CreationLine() {
    static const std::string line =
        std::string("Created on ") + __DATE__ + " at " + __TIME__ + " by " + "UNIX";
    return line;
}

// The four include files, written together entry by entry.
class IncludeFiles {
  public:
    IncludeFiles()
        : m_c(std::fopen("xunDefine.c__", "w")), m_pascal(std::fopen("xunDefine.p__", "w")),
          m_fortran(std::fopen("xunDefine.f__", "w")), m_cs(std::fopen("xunDefine.cs", "w")) {
        XUN_ASSERT(m_c != nullptr && m_pascal != nullptr && m_fortran != nullptr && m_cs != nullptr,
                   kIncludeFileOpen);
    }
    ~IncludeFiles() {
        std::fclose(m_c);
        std::fclose(m_pascal);
        std::fclose(m_fortran);
        std::fclose(m_cs);
    }
    IncludeFiles(const IncludeFiles&) = delete;
    IncludeFiles& operator=(const IncludeFiles&) = delete;

    void Headers() {
        const std::string t1 = std::string("Korvane item type definitions from ") + kSource;
        const char* t2 = CreationLine().c_str();
        std::fprintf(m_c, "/* %s */\n/* %s */\n/* %s */\n\n", "xunDefine.c__", t1.c_str(), t2);
        std::fprintf(m_pascal, "(* %s *)\n(* %s *)\n(* %s *)\n\n", "xunDefine.p__", t1.c_str(), t2);
        std::fprintf(m_fortran, "!     %s\n!     %s\n!     %s\n\n", "xunDefine.f__", t1.c_str(),
                     t2);
        std::fputs("using System.Runtime.InteropServices;\n\nnamespace Ostrel.Generic.Korvane\n{\n",
                   m_cs);
        EnumPreamble("///.NET XUN Item definitions", "5C2E7A00-91D4-4b3f-A6E8-3D0F71B94C2A",
                     "xunItem");
        std::fprintf(m_c, "#ifndef %s\n#define %s\n\n", "_KORVANE_ITEMDEFINES_",
                     "_KORVANE_ITEMDEFINES_");
    }

    // Opens a C# enum; its first entry has no leading separator.
    void EnumPreamble(const char* summary, const char* guid, const char* name) {
        std::fprintf(m_cs,
                     "\t///<summary>\n\t%s\n\t///</summary>\n\t[ComVisible(true)]\n"
                     "\t[Guid(\"%s\")]\n\tpublic enum %s\n\t{\n",
                     summary, guid, name);
        m_firstInEnum = true;
    }

    void CloseEnum() { std::fputs("\n\t}\n", m_cs); }
    void CsNewline() { std::fputs("\n", m_cs); }

    void Banner(const char* text) {
        std::fprintf(m_c, "\n/* %s */\n", text);
        std::fprintf(m_pascal, "\n(* %s *)\n", text);
        std::fprintf(m_fortran, "\n!     %s\n", text);
    }

    void Entry(const std::string& name, long value, const std::string& comment) {
        const int v = static_cast<int>(value);
        const char* n = name.c_str();
        const char* d = comment.c_str();
        std::fprintf(m_c, "#define %-20s %10d /* %s */\n", n, v, d);
        std::fprintf(m_pascal, "CONST   %-16s = %d; (* %s *)\n", n, v, d);
        std::fprintf(m_fortran, "integer, parameter :: %-20s = %10d  ! %s\n", n, v, d);
        if (!m_firstInEnum)
            std::fputs(",\n", m_cs);
        m_firstInEnum = false;
        std::fprintf(m_cs, "\t\t///<summary>\n\t\t/// %s\n\t\t///</summary>\n\t\t%-20s = %10d", d,
                     n, v);
    }

    void Trailers() {
        std::fputs("\n#endif\n", m_c);
        CloseEnum();
        const char* end = "===== End of file =====";
        std::fprintf(m_c, "\n/* %s */\n", end);
        std::fprintf(m_pascal, "\n(* %s *)\n", end);
        std::fprintf(m_fortran, "\n!     %s\n", end);
        std::fprintf(m_cs, "}\n/* %s */\n", end);
    }

  private:
    FILE* m_c;
    FILE* m_pascal;
    FILE* m_fortran;
    FILE* m_cs;
    bool m_firstInEnum = true;
};

} // namespace

void xunWriteIncludes_(const CKVregistries& registries, bool withUnits, bool withFilters) {
    IncludeFiles files;
    files.Headers();
    for (const CKVitemType* item : registries.itemTypes) {
        XUN_ASSERT(item != nullptr, kIncludeItemNull);
        files.Entry(item->m_strIdent, item->m_nNumId, item->m_strKey);
    }
    files.CloseEnum();
    if (withUnits) {
        files.Banner("===== Engineering units =====");
        files.CsNewline();
        files.EnumPreamble("///.NET XUN Unit definitions", "5C2E7A01-91D4-4b3f-A6E8-3D0F71B94C2A",
                           "xunUnit");
        for (const CKVunit* unit : registries.units) {
            XUN_ASSERT(unit != nullptr, kIncludeUnitNull);
            files.Entry(unit->m_strIdent, unit->m_lKey, unit->m_strDesc);
        }
    }
    // Closed also without units, which leaves an extra closing brace.
    files.CloseEnum();
    if (withFilters) {
        files.Banner("===== Filters =====");
        files.EnumPreamble("///.NET XUN Filter definitions", "5C2E7A02-91D4-4b3f-A6E8-3D0F71B94C2A",
                           "xunFilter");
        for (const CKVfilter* filter : registries.filters) {
            XUN_ASSERT(filter != nullptr, kIncludeFilterNull);
            files.Entry(filter->m_strIdent, static_cast<long>(*filter), filter->m_strKey);
        }
    }
    files.Trailers();
}

void xunWriteAllowedUnits_(const CKVregistries& registries) {
    FILE* report = std::fopen("xunAllowedUnits.HTML", "w");
    XUN_ASSERT(report != nullptr, kReportFileOpen);
    std::fputs("<Pre>\n", report);
    std::fprintf(report, "%s\n", "Definitions of the Korvane item types and allowed units.");
    std::fprintf(report, "%s\n\n", CreationLine().c_str());
    for (const CKVitemType* item : registries.itemTypes) {
        XUN_ASSERT(item != nullptr, kReportItemNull);
        std::fprintf(report, "\nitem: %-20s %10d   %s \n", item->m_strIdent.c_str(),
                     static_cast<int>(item->m_nNumId), item->m_strKey.c_str());
        for (const CKVunit* unit : item->GetUnitList()) {
            XUN_ASSERT(unit != nullptr, kReportUnitNull);
            std::fprintf(report, "      %-20s %10d   %s \n", unit->m_strIdent.c_str(),
                         static_cast<int>(unit->m_lKey), unit->m_strDesc.c_str());
        }
    }
    std::fclose(report);
}
