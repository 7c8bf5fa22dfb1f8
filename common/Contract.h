// The contract values of the library, defined once: the texts of every
// assertion that ends the process (expression, source name, line and
// function text, exactly as the standard assertion message prints them),
// the reserved keys and bits, and the limits that replace fixed-size
// buffers. The library, the tool, the fuzz targets and the tests all use
// these definitions.
#pragma once

#include <cstddef>

// One assertion as the C library's assertion routine prints it:
//   <program>: <source>:<line>: <function>: Assertion `<expression>' failed.
struct XunAssertion {
    const char* expression;
    const char* source;
    unsigned line;
    const char* function;
};

namespace xun {
namespace contract {

// ---- Assertions -------------------------------------------------------------

// Units (source KVunit): exactly one of the two dimension pointers is set,
// and the factor is never 0.
inline constexpr XunAssertion kUnitOneDimension{"(m_pDimParent == 0) != (m_pDimTemp == 0)",
                                                "KVunit", 284, "void CKVunit::AssertValid() const"};
inline constexpr XunAssertion kUnitFactor{"m_dFactor", "KVunit", 285,
                                          "void CKVunit::AssertValid() const"};

// Item types (source KVitemType).
inline constexpr XunAssertion kAllowUnitDimension{"bOk", "KVitemType", 21,
                                                  "bool CKVitemType::AllowUnit(CKVunit &, bool)"};
inline constexpr XunAssertion kGetUnitNull{"Un", "KVitemType", 42,
                                           "const CKVunit *CKVitemType::GetUnit(long) const"};
inline constexpr XunAssertion kUserUnitNull{"Un", "KVitemType", 56,
                                            "int CKVitemType::GetItemUserUnit()"};
inline constexpr XunAssertion kItemKeyZero{"m_nNumId", "KVitemType", 61,
                                           "void CKVitemType::AssertValid() const"};
inline constexpr XunAssertion kItemNoDimension{"m_pDimension", "KVitemType", 62,
                                               "void CKVitemType::AssertValid() const"};

// The include writer (source KVitemType).
inline constexpr const char* kWriteIncludesFunction =
    "void CKVitemTypeList::WriteIncludes(const CKVunitList *, const CKVfilterList *)";
inline constexpr const char* kWriteAllowedUnitsFunction =
    "void CKVitemTypeList::WriteAllowedUnits()";
inline constexpr XunAssertion kIncludeFileOpen{"0", "KVitemType", 34, kWriteIncludesFunction};
inline constexpr XunAssertion kIncludeItemNull{"It", "KVitemType", 116, kWriteIncludesFunction};
inline constexpr XunAssertion kIncludeUnitNull{"Un", "KVitemType", 126, kWriteIncludesFunction};
inline constexpr XunAssertion kIncludeFilterNull{"Ft", "KVitemType", 136, kWriteIncludesFunction};
inline constexpr XunAssertion kReportFileOpen{"0", "KVitemType", 145, kWriteAllowedUnitsFunction};
inline constexpr XunAssertion kReportItemNull{"It", "KVitemType", 150, kWriteAllowedUnitsFunction};
inline constexpr XunAssertion kReportUnitNull{"Un", "KVitemType", 154, kWriteAllowedUnitsFunction};

// Filters (source ItemTypeTables).
inline constexpr XunAssertion kFilteredCountNull{"It", "ItemTypeTables", 114,
                                                 "int xunGetFilteredItemTypeCount(int)"};
inline constexpr XunAssertion kFilteredSeqNull{
    "It", "ItemTypeTables", 126, "int xunGetFilteredItemTypeSeq(int, int, int *, const char **)"};

// The setup loader: an item-type ident of a filter's Items names no item type.
inline constexpr XunAssertion kFilterItemUnknown{"ok", "ItemTypeTables", 3707,
                                                 "int xunSetupLoad(const char *)"};

// Language files (source KVLangFile).
inline constexpr XunAssertion kTypeKeyDuplicate{
    "m_TypeIterator == m_xunTypeMap.end()", "KVLangFile", 104, "bool CKVLangFile::SetTypeMap()"};
inline constexpr XunAssertion kTypeKeyMissing{"m_TypeIterator != m_xunTypeMap.end()", "KVLangFile",
                                              112, "string CKVLangFile::LoadTypeString(int)"};
inline constexpr XunAssertion kUnitKeyMissing{"m_UnitIterator != m_xunUnitMap.end()", "KVLangFile",
                                              163, "string CKVLangFile::LoadUnitString(int, int)"};

// ---- Reserved keys and bits -------------------------------------------------

// The any-unit item type: every registered unit is allowed for it.
inline constexpr long kAnyUnitItemType = 999;
// Units and item types created at run time get keys from these values up.
inline constexpr long kFirstRunTimeUnitKey = 100000;
inline constexpr long kFirstRunTimeItemTypeKey = 110000;
// The flyby filter (bit 31; negative when passed as int).
inline constexpr long kFlybyFilterBit = 0x80000000L;
// A filter of this bit value is left out when the next free bit is chosen.
inline constexpr long kSkippedFilterBit = 0x40000000L;
// The product filter's value before any xunSetProductFilter.
inline constexpr long kInitialProductFilter = 0x7FFFFFFFL;
// Keys of the eight temporary base units of the setup loader.
inline constexpr long kFirstBaseUnitKey = 1;
inline constexpr int kBaseUnitCount = 8;

// ---- Limits -----------------------------------------------------------------

// Path buffers of the load entry points (szDocName, szDllFileName, the
// base-group file name): paths of 260 bytes or more are refused (setup
// files) or cut (szDllFileName).
inline constexpr int kPathBufferSize = 260;
// Unit expressions: longer name or number tokens make an evaluation fail.
inline constexpr int kExprMaxNameLength = 127;
inline constexpr int kExprMaxNumberLength = 23;
// Language files: one read takes at most kLangLineBufferSize - 1
// characters; texts are cut to kLangTextBufferSize - 1 characters.
inline constexpr int kLangLineBufferSize = 250;
inline constexpr int kLangTextBufferSize = 104;
// The bounds of an XML document (a setup file): entity expansions; the
// characters of its text after entity expansion (attribute values, default
// ones included, and character data), at most the larger of a floor and a
// multiple of the bytes read (the file and the external files it names);
// the memory the XML parser may take for it, likewise; the nesting of
// elements; the attributes of one element. A document beyond any of them
// is refused, at the point where it passes the bound.
inline constexpr unsigned kXmlEntityExpansionLimit = 50000;
inline constexpr std::size_t kXmlTextFloor = std::size_t(1) << 20;
inline constexpr std::size_t kXmlTextPerByte = 8;
inline constexpr std::size_t kXmlMemoryFloor = std::size_t(64) << 20;
inline constexpr std::size_t kXmlMemoryPerByte = 64;
inline constexpr unsigned kXmlMaxDepth = 256;
inline constexpr unsigned kXmlMaxAttributes = 256;
// Messages kept by xunGetLastError (longer ones are cut).
inline constexpr std::size_t kLastErrorMessageSize = 1024;
// Unit strings (xunParseUnit, xunParseItemUnit): a longer text, deeper
// parentheses, a larger exponent (written, or of a dimension of the result)
// or a longer number fails with XUN_ERR_LIMIT. The texts a registry remembers
// (with what they resolved to) are forgotten all at once when there would be
// more than kUnitStringCacheEntries of them or more than
// kUnitStringCacheBytes of text.
inline constexpr std::size_t kUnitStringMaxLength = 1024;
inline constexpr int kUnitStringMaxDepth = 32;
inline constexpr double kUnitStringMaxExponent = 100;
inline constexpr std::size_t kUnitStringMaxNumberLength = 64;
inline constexpr std::size_t kUnitStringCacheEntries = 4096;
inline constexpr std::size_t kUnitStringCacheBytes = 1 << 20;
// The load cache (setup/LoadCache.h) keeps at most this many entries; the
// oldest go when a new one comes.
inline constexpr std::size_t kLoadCacheEntries = 64;

} // namespace contract
} // namespace xun
