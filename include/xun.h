/*
 * xun.h - the C interface of libxun, the engineering-unit library.
 *
 * Conventions
 * - Every function returns int: 1 for success (or true), 0 for failure (or
 *   false), unless its comment says otherwise. Results are stored through
 *   pointer arguments; a failed call leaves them unwritten unless noted.
 * - Units, item types and filters are addressed by numeric keys passed as
 *   int (a unit's key is also called its tag; a filter's key is its bit).
 *   "...Key" functions hand out the description text, "...KeyFromIdent" and
 *   "...Tag..." functions numeric keys.
 * - Returned const char* texts point into the library's own storage and stay
 *   valid while the object lives. Only the "...GetAll" functions return a
 *   newly allocated text, which the caller releases with free().
 * - The library keeps process-wide state and takes no locks: call it from
 *   one thread at a time.
 */
#ifndef XUN_H
#define XUN_H

#if defined(__GNUC__)
#define XUN_API __attribute__((visibility("default")))
#else
#define XUN_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Units: registry and queries ---------------------------------------- */

/* Idents of all units in registration order, each followed by ";", in a new
   text released with free(). No units: 0 and *list untouched. */
XUN_API int xunUnitGetAll(char** list);
/* Creates a unit from an expression over registered units; keys from 100000. */
XUN_API int xunUnitNew(const char* ident, const char* key, const char* abbreviation,
                       const char* expression);
XUN_API int xunGetUnitKey(int tag, const char** key);
XUN_API int xunGetUnitIdent(int tag, const char** ident);
XUN_API int xunGetUnitAbbreviation(int tag, const char** abbreviation);
/* Name matching on descriptions (with singular/plural rules) and aliases. */
XUN_API int xunGetUnitTag(const char* name, int* tag);
XUN_API int xunGetUnitTagFromIdent(const char* ident, int* tag);
/* Name matching restricted to the allowed units of an item type. */
XUN_API int xunGetItemUnitTag(int itemKey, const char* name, int* tag);
XUN_API int xunGetItemFirstEqvUnit(int itemKey, int* tag, const char** key);
XUN_API int xunUnitsEqv(int tag1, int tag2);
XUN_API int xunGetBaseUnit(int tag, int* baseTag, const char** baseKey);
/* Iteration: pass prevTag 0 to start, then the tag last returned. */
XUN_API int xunGetNextEqvUnit(int tag, int prevTag, int* nextTag, const char** nextKey);
XUN_API int xunGetNextUnit(int prevTag, int* nextTag, const char** nextKey);
/* powers and factors each receive 7 doubles. */
XUN_API int xunUnitGetParameters(int tag, double* factor, double* offset, double* powers,
                                 double* factors);

/* ---- Derived units ------------------------------------------------------- */

XUN_API int xunUnitPower(int unit, int* matchKey, int* eqvKey, double* factor, double power);
XUN_API int xunUnitMultiply(int unit1, int unit2, int* matchKey, int* eqvKey, double* factor);
XUN_API int xunUnitDivide(int unit1, int unit2, int* matchKey, int* eqvKey, double* factor);
XUN_API int xunUnitGetIntegrationFactor(int unit, int variable, int* resultKey, int* inverseKey,
                                        double* factor);
XUN_API int xunUnitGetDerivationFactor(int unit, int variable, int* resultKey, int* inverseKey,
                                       double* factor);

/* ---- Value conversion ---------------------------------------------------- */
/* Unit to unit: ((x * f1 + o1) - o2) / f2 in double precision. Array variants
   convert in place every element that differs from deleteValue. */

XUN_API int xunConvertUnit(int fromTag, int toTag, double* result, double value);
XUN_API int xunConvertItemArrayD(int fromTag, int toTag, double* values, int count,
                                 double deleteValue);
XUN_API int xunConvertItemArrayF(int fromTag, int toTag, float* values, int count,
                                 float deleteValue);
XUN_API int xunConvertUnitToBase(int tag, double* result, double value);
XUN_API int xunConvertUnitFromBase(int tag, double* result, double value);
XUN_API int xunConvertToUserUnit(int itemKey, int fromTag, double* result, double value);
XUN_API int xunConvertFromUserUnit(int itemKey, int toTag, double* result, double value);
XUN_API int xunConvertItemArrayToUserUnitD(int itemKey, int fromTag, double* values, int count,
                                           double deleteValue);
XUN_API int xunConvertItemArrayToUserUnitF(int itemKey, int fromTag, float* values, int count,
                                           float deleteValue);
XUN_API int xunConvertItemArrayFromUserUnitD(int itemKey, int toTag, double* values, int count,
                                             double deleteValue);
XUN_API int xunConvertItemArrayFromUserUnitF(int itemKey, int toTag, float* values, int count,
                                             float deleteValue);

/* ---- Item types ---------------------------------------------------------- */

XUN_API int xunItemTypeGetAll(char** list);
/* The third argument is reserved and ignored. Keys from 110000. */
XUN_API int xunItemTypeNew(const char* ident, const char* keyText, long reserved,
                           const char* unitIdent);
XUN_API int xunGetItemTypeCount(void);
XUN_API int xunGetItemTypeSeq(int seq, int* key, const char** keyText);
XUN_API int xunGetItemTypeIdent(int key, const char** ident);
XUN_API int xunGetItemTypeKey(int key, const char** keyText);
XUN_API int xunGetItemTypeKeyFromIdent(const char* ident, int* key);
XUN_API int xunGetItemTypeParams(int key, int* decimals, double* defaultValue);
/* Returns the count itself (0 for an unknown key). */
XUN_API int xunGetItemUnitCount(int key);
XUN_API int xunGetItemUnitSeq(int key, int seq, int* unitTag, const char** unitKey);
XUN_API int xunSetItemUserUnit(int key, int unitTag);
XUN_API int xunItemUnitEqv(int key, int unitTag);
XUN_API int xunGetItemUserUnit(int key, int* unitTag);
XUN_API int xunAddItemUnit(int key, int unitTag);
XUN_API int xunAddItemFilter(int key, int bits);

/* ---- Filters ------------------------------------------------------------- */

XUN_API int xunFilterGetAll(char** list);
XUN_API int xunFilterNew(const char* ident, const char* keyText);
XUN_API int xunGetFilterCount(void);
XUN_API int xunGetFilterSeq(int seq, int* key, const char** keyText);
XUN_API int xunGetFilterKey(int key, const char** keyText);
XUN_API int xunGetFilterIdent(int key, const char** ident);
XUN_API int xunGetFilterKeyFromIdent(const char* ident, int* key);
XUN_API int xunGetFilteredItemTypeCount(int filter);
XUN_API int xunGetFilteredItemTypeSeq(int filter, int seq, int* key, const char** keyText);
XUN_API int xunItemFilterEqv(int itemKey, int filter);
/* Returns the new product filter. */
XUN_API long xunSetProductFilter(int filter);
XUN_API long xunGetProductFilter(void);
/* Returns the flyby filter bit 0x80000000. */
XUN_API int xunGetFlybyFilter(void);

/* ---- Include files ------------------------------------------------------- */

/* Writes "xunDefine.c__", "xunDefine.f__", "xunDefine.p__", "xunDefine.cs" and
   "xunAllowedUnits.HTML" into the current directory. */
XUN_API void xunWriteItemTypeIncludes(void);

/* ---- Loading ------------------------------------------------------------- */

/* Loads the setup file, then the language files from $KORVANE_HOME/bin.
   path must not be null; an empty text selects $KORVANE_HOME/bin/XUN.xml. */
XUN_API void xunLoadItemTypeTables(const char* path);
XUN_API int xunSetupLoad(const char* path);
XUN_API int xunSetupLoadLinux(const char* path);
XUN_API void xunSetupUnload(void);
XUN_API int xunSetupWrite(void);
XUN_API void xunSetupGetPath(const char** path);
/* Presets user units of item types from a unit base-group file. */
XUN_API void LoadUnitBaseGroupFile(char* fileName);

#ifdef __cplusplus
} /* extern "C" */

/* These have C++ linkage: their exported symbols encode the argument types. */
XUN_API void xunUnloadItemTypeTables();
XUN_API int _fullpath(char* absPath, const char* relPath, int maxLength);
XUN_API int _splitpath(char* path, char* drive, char* dir, char* fname, char* ext);
XUN_API int _makepath(char* path, char* drive, char* dir, char* fname, char* ext);
#endif

#endif /* XUN_H */
