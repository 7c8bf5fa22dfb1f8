/*
 * xun.h - the C interface of libxun, the engineering-unit library.
 *
 * Conventions (docs/conventions.md has the full per-function table)
 * - Every function returns int: 1 for success (or true), 0 for failure (or
 *   false), unless its comment says otherwise. Results are stored through
 *   pointer arguments. A failed call leaves them unwritten, except where a
 *   comment below says what it writes ("On failure: ...").
 * - A failed call records why: xunGetLastError gives the code (XUN_ERR_...)
 *   and a message naming the offending key, name, file or dimension, for the
 *   calling thread. Successful calls leave the record as it was. A predicate
 *   (xunUnitsEqv, xunItemUnitEqv, xunItemFilterEqv) that answers "no" has
 *   not failed; it records a reason only when an argument names nothing.
 * - Null pointers: a null output pointer or a null text makes the call fail
 *   with XUN_ERR_NULL_ARGUMENT (nothing is written), except where noted:
 *   xunSetupLoad(NULL) loads the default file, xunLoadItemTypeTables(NULL)
 *   is xunLoadItemTypeTables(""), LoadUnitBaseGroupFile(NULL) uses the
 *   default (empty) name, an array may be null when its count is below 1,
 *   and a null text given to xunUnitNew, xunItemTypeNew or xunFilterNew
 *   throws the C++ exception std::logic_error("basic_string::_M_construct
 *   null not valid"), which ends a C host's process.
 * - Running out of memory makes a call fail with XUN_ERR_NO_MEMORY.
 * - Units, item types and filters are addressed by numeric keys passed as
 *   int (a unit's key is also called its tag; a filter's key is its bit).
 *   "...Key" functions hand out the description text, "...KeyFromIdent" and
 *   "...Tag..." functions numeric keys.
 * - Sequence numbers ("...Seq" functions) count from 1.
 * - Returned const char* texts point into the library's own storage and stay
 *   valid while the object lives (until a load or a language file replaces
 *   that text). Only the "...GetAll" functions return a newly allocated
 *   text, which the caller releases with free().
 * - Threads: the library takes no locks. These must run alone, with no
 *   other call of the library at the same time: the loads and unloads
 *   (xunLoadItemTypeTables, xunSetupLoad, xunSetupLoadLinux, xunSetupUnload,
 *   xunUnloadItemTypeTables, LoadUnitBaseGroupFile), the checks
 *   (xunSetupCheck, xunBaseGroupCheck: they switch the process's numeric
 *   locale), the writers (xunSetupWrite, xunWriteItemTypeIncludes) and every
 *   call that adds or changes something (xunUnitNew, xunItemTypeNew,
 *   xunFilterNew, xunSetItemUserUnit, xunAddItemUnit, xunAddItemFilter,
 *   xunSetProductFilter). Every other function only reads - lookups, name
 *   searches, walks, sequences, counts, lists, parameters, derived units,
 *   conversions, xunSetupGetPath and the last-error record - and may run
 *   from any number of threads at once: a walk's and a sequence's memory,
 *   like the last-error record, is the calling thread's own.
 * - Some behaviours look odd and are kept on purpose; the descriptions in
 *   docs/ say which.
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

/* ---- Errors -------------------------------------------------------------- */

#define XUN_OK 0                    /* no failure recorded */
#define XUN_ERR_NULL_ARGUMENT 1     /* a required pointer argument is null */
#define XUN_ERR_UNKNOWN_UNIT 2      /* no unit has that tag or ident */
#define XUN_ERR_UNKNOWN_ITEM_TYPE 3 /* no item type has that key or ident */
#define XUN_ERR_UNKNOWN_FILTER 4    /* no filter has that bit or ident */
#define XUN_ERR_NO_REAL_UNIT 5      /* the unit has key 0 */
#define XUN_ERR_DIMENSION 6         /* the units (or unit and item type) differ in dimension */
#define XUN_ERR_NOT_FOUND 7         /* nothing found: no unit matches the name, nothing to list */
#define XUN_ERR_RANGE 8             /* a sequence number or count out of range */
#define XUN_ERR_END 9               /* a walk has no further element */
#define XUN_ERR_TAKEN 10            /* the ident (or key) is already registered */
#define XUN_ERR_EXPRESSION 11       /* the expression does not give a unit */
#define XUN_ERR_FILE 12             /* a file cannot be read or parsed */
#define XUN_ERR_NO_MEMORY 13        /* memory ran out */
#define XUN_ERR_LIMIT 14            /* a limit of the library (keys, path length, XML bounds) */
#define XUN_ERR_INTERNAL 15         /* an unexpected internal error */

/* The code of the last failed call on the calling thread (XUN_OK when none
   since the start or the last xunClearLastError), and, when message is not
   null, its message ("" when none), valid until the next failure on the
   thread. Never fails. */
XUN_API int xunGetLastError(const char** message);
/* Resets the calling thread's record to XUN_OK and "". */
XUN_API void xunClearLastError(void);

/* The library's version text, for example "1.0.0". */
XUN_API const char* xunVersion(void);

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
/* The expression text the unit was defined by ("" for none). */
XUN_API int xunGetUnitExpression(int tag, const char** expression);
/* The seq-th alias of the unit (from 1), in the order they were added. */
XUN_API int xunGetUnitAlias(int tag, int seq, const char** alias);
/* Name matching on descriptions (with singular/plural rules) and aliases.
   On failure: *tag = 0 (or the key 0 of a unit found with key 0). */
XUN_API int xunGetUnitTag(const char* name, int* tag);
XUN_API int xunGetUnitTagFromIdent(const char* ident, int* tag);
/* Name matching (descriptions only) restricted to the allowed units of an
   item type (every unit for item type 999). On failure: *tag = 0. */
XUN_API int xunGetItemUnitTag(int itemKey, const char* name, int* tag);
XUN_API int xunGetItemFirstEqvUnit(int itemKey, int* tag, const char** key);
/* 1 when both units exist, have non-zero keys and equal dimensions. */
XUN_API int xunUnitsEqv(int tag1, int tag2);
XUN_API int xunGetBaseUnit(int tag, int* baseTag, const char** baseKey);
/* Walks: pass prevTag 0 to start, then the tag last returned; 0 at the end
   (XUN_ERR_END). A walk visits every unit once and ends, also where keys do
   not fit an int: the calling thread remembers the unit it was handed last
   (one memory per function). */
XUN_API int xunGetNextEqvUnit(int tag, int prevTag, int* nextTag, const char** nextKey);
XUN_API int xunGetNextUnit(int prevTag, int* nextTag, const char** nextKey);
/* powers and factors each receive 7 doubles. */
XUN_API int xunUnitGetParameters(int tag, double* factor, double* offset, double* powers,
                                 double* factors);

/* ---- Unit strings -------------------------------------------------------- */
/* Units as people and data files write them: "kg m-2 s-1", "m³/s", "ft^3/s",
   "kg/(m2*s)", "cubic feet per second", "K @ 273.15" (docs/unit-strings.md
   has the grammar, the rules and the limits). */

/* The notations of xunGetUnitText. */
#define XUN_NOTATION_CF                                                                            \
    1 /* UDUNITS-2/CF, for CF units attributes: "m3 s-1", "0.3048 m", "K @ 273.15" */
#define XUN_NOTATION_ASCII 2   /* plain ASCII: "m3/s", "kg/(m2*s)", "degC" */
#define XUN_NOTATION_UNICODE 3 /* Unicode (UTF-8): "m³/s", "kg/(m²·s)", "°C" */

/* The unit a text means: first a registered unit by name (ident,
   description with the singular/plural rule, alias, abbreviation), else the
   first registered unit of equal dimension, factor and offset, else a unit
   registered for the text (key from 100000, ident "xun:" followed by the
   text's normalised form), which later texts of that meaning find. Never
   ends the process. On failure: *tag = 0; the last error says where the
   text stops making sense and, for an unknown name, names up to three near
   names. */
XUN_API int xunParseUnit(const char* text, int* tag);
/* The same, but the answer is one of the item type's allowed units (any
   registered unit for item type 999); registers nothing. On failure:
   *tag = 0. */
XUN_API int xunParseItemUnit(int itemKey, const char* text, int* tag);
/* A text of the unit in a notation (XUN_NOTATION_...), which xunParseUnit
   reads back to a unit of the same meaning (to this unit, unless an earlier
   unit means the same and the notation has no name for this one). */
XUN_API int xunGetUnitText(int tag, int notation, const char** text);

/* ---- Derived units ------------------------------------------------------- */
/* On failure (and before the search): *factor = 1, *matchKey = 0,
 *eqvKey = 0; for the integration and derivation factors *resultKey = unit,
 *inverseKey = 0, *factor = 1. */

XUN_API int xunUnitPower(int unit, int* matchKey, int* eqvKey, double* factor, double power);
XUN_API int xunUnitMultiply(int unit1, int unit2, int* matchKey, int* eqvKey, double* factor);
XUN_API int xunUnitDivide(int unit1, int unit2, int* matchKey, int* eqvKey, double* factor);
XUN_API int xunUnitGetIntegrationFactor(int unit, int variable, int* resultKey, int* inverseKey,
                                        double* factor);
XUN_API int xunUnitGetDerivationFactor(int unit, int variable, int* resultKey, int* inverseKey,
                                       double* factor);

/* ---- Value conversion ---------------------------------------------------- */
/* Unit to unit: ((x * f1 + o1) - o2) / f2 in double precision. Array variants
   convert in place every element that differs from deleteValue (a NaN
   deleteValue converts nothing); a failed array call leaves the array as it
   was. */

/* On failure: *result = value. */
XUN_API int xunConvertUnit(int fromTag, int toTag, double* result, double value);
XUN_API int xunConvertItemArrayD(int fromTag, int toTag, double* values, int count,
                                 double deleteValue);
XUN_API int xunConvertItemArrayF(int fromTag, int toTag, float* values, int count,
                                 float deleteValue);
XUN_API int xunConvertUnitToBase(int tag, double* result, double value);
XUN_API int xunConvertUnitFromBase(int tag, double* result, double value);
/* On failure after the item type is found: *result = value. */
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
/* Returns the count itself. */
XUN_API int xunGetItemTypeCount(void);
XUN_API int xunGetItemTypeSeq(int seq, int* key, const char** keyText);
XUN_API int xunGetItemTypeIdent(int key, const char** ident);
XUN_API int xunGetItemTypeKey(int key, const char** keyText);
XUN_API int xunGetItemTypeKeyFromIdent(const char* ident, int* key);
XUN_API int xunGetItemTypeParams(int key, int* decimals, double* defaultValue);
/* Returns the count itself (0 for an unknown key, which is recorded). */
XUN_API int xunGetItemUnitCount(int key);
XUN_API int xunGetItemUnitSeq(int key, int seq, int* unitTag, const char** unitKey);
XUN_API int xunSetItemUserUnit(int key, int unitTag);
XUN_API int xunItemUnitEqv(int key, int unitTag);
/* *unitTag may be -1: no user unit and no allowed unit. */
XUN_API int xunGetItemUserUnit(int key, int* unitTag);
XUN_API int xunAddItemUnit(int key, int unitTag);
XUN_API int xunAddItemFilter(int key, int bits);

/* ---- Filters ------------------------------------------------------------- */

XUN_API int xunFilterGetAll(char** list);
XUN_API int xunFilterNew(const char* ident, const char* keyText);
/* Returns the count itself. */
XUN_API int xunGetFilterCount(void);
XUN_API int xunGetFilterSeq(int seq, int* key, const char** keyText);
XUN_API int xunGetFilterKey(int key, const char** keyText);
XUN_API int xunGetFilterIdent(int key, const char** ident);
XUN_API int xunGetFilterKeyFromIdent(const char* ident, int* key);
/* Returns the count itself. */
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
   "xunAllowedUnits.HTML" into the current directory. A file that cannot be
   opened ends the process (assertion "0"). */
XUN_API void xunWriteItemTypeIncludes(void);

/* ---- Loading ------------------------------------------------------------- */

/* Loads the setup file, then the language files from $KORVANE_HOME/bin.
   An empty text (or NULL) selects $KORVANE_HOME/bin/XUN.xml. Records
   XUN_ERR_FILE when the setup file cannot be loaded. Problems in the files
   are printed, or end the process, as designed: xunSetupCheck finds them
   beforehand.
   A load of a setup file into the empty registry of a process that printed
   nothing is remembered in the load cache (XUN_CACHE_DIR, else
   $XDG_CACHE_HOME/libxun, else $HOME/.cache/libxun; XUN_CACHE_DIR "off"
   turns it off); a later process that loads the same bytes under the same
   locale takes the registry from there, with the same effects, instead of
   parsing the XML again (xunLoadItemTypeTables: with the language files,
   whose contents are part of its entry's key). */
XUN_API void xunLoadItemTypeTables(const char* path);
/* 1 when the setup file was loaded (NULL or "": the default file). */
XUN_API int xunSetupLoad(const char* path);
XUN_API int xunSetupLoadLinux(const char* path);
XUN_API void xunSetupUnload(void);
XUN_API int xunSetupWrite(void);
XUN_API void xunSetupGetPath(const char** path);
/* Presets user units of item types from a unit base-group file. */
XUN_API void LoadUnitBaseGroupFile(char* fileName);

/* ---- Checking files before loading them ----------------------------------- */

/* Severities of the problems reported by the checks. */
#define XUN_CHECK_DROPPED 1 /* a load drops or ignores something without a word */
#define XUN_CHECK_MESSAGE 2 /* a load prints this message and goes on */
#define XUN_CHECK_FATAL 3   /* a load would end the process here */
#define XUN_CHECK_WARNING 4 /* a load takes it as written, but it will not work as meant */

/* Receives one problem: the file and line it was found at (line 0 when it
   concerns the file as a whole), its severity and a message. The texts are
   valid during the call only. */
typedef void (*xunCheckReport)(void* user, const char* file, int line, int severity,
                               const char* message);

/* Runs the whole load of xunLoadItemTypeTables - the setup file (NULL or
   "": the default file), then, when langDir is not null, the language files
   "xuntype.lan", "xununit.lan" and "xunfilter.lan" of the folder langDir -
   into scratch registries that start as a copy of the current ones, and
   reports every problem through report (which may be null). Never prints,
   never ends the process, never changes the registries. Returns the number
   of problems that would end the process (0: the load is safe), or -1 when
   the setup file cannot be read or is not well-formed XML (reported too;
   XUN_ERR_FILE recorded). */
XUN_API int xunSetupCheck(const char* setupPath, const char* langDir, xunCheckReport report,
                          void* user);
/* The same for a unit base-group file (LoadUnitBaseGroupFile): its syntax,
   and every assignment that names an unknown item type or unit or a unit of
   another dimension (dropped by a load). Returns 0, or -1 when the file
   cannot be read or has a syntax error. */
XUN_API int xunBaseGroupCheck(const char* path, xunCheckReport report, void* user);

#ifdef __cplusplus
} /* extern "C" */

/* These have C++ linkage: their exported symbols encode the argument types. */
XUN_API void xunUnloadItemTypeTables();
XUN_API int _fullpath(char* absPath, const char* relPath, int maxLength);
XUN_API int _splitpath(char* path, char* drive, char* dir, char* fname, char* ext);
XUN_API int _makepath(char* path, char* drive, char* dir, char* fname, char* ext);
#endif

#endif /* XUN_H */
