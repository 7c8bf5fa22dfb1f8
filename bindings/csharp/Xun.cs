// C# interface to libxun: every function of xun.h as a [DllImport] of
// libxun.so.1, and managed wrappers that give strings, bool results and
// conversions of arrays in place. The constants are the enums of the
// xunDefine.cs that the library writes (xunWriteItemTypeIncludes, or
// `xun includes`): compile both files together, for example
//
//     mcs -out:app.exe app.cs Xun.cs xunDefine.cs
//
// The declarations carry the C names and C types: texts in are string
// (marshalled as NUL-terminated UTF-8), texts out are IntPtr into the
// library's storage (Xun.Text copies one), results are int (1 success or
// true, 0 failure or false). The C type long is 64 bits on the platforms the
// library is built for: it is long here. The four functions that xun.h
// declares with C++ linkage are bound by their encoded symbol names.
//
// The wrappers (names without the xun prefix) return bool for success and
// predicates, the text of a text getter (null on failure), and convert
// arrays in place: the marshaller pins a double[] or float[] and hands the
// library its elements, without copying them.
using System;
using System.Runtime.InteropServices;
using System.Text;

namespace Ostrel.Generic.Korvane
{
    public static class Xun
    {
        public const string Library = "libxun.so.1";

        // Error codes of xunGetLastError.
        public const int XUN_OK = 0;
        public const int XUN_ERR_NULL_ARGUMENT = 1;
        public const int XUN_ERR_UNKNOWN_UNIT = 2;
        public const int XUN_ERR_UNKNOWN_ITEM_TYPE = 3;
        public const int XUN_ERR_UNKNOWN_FILTER = 4;
        public const int XUN_ERR_NO_REAL_UNIT = 5;
        public const int XUN_ERR_DIMENSION = 6;
        public const int XUN_ERR_NOT_FOUND = 7;
        public const int XUN_ERR_RANGE = 8;
        public const int XUN_ERR_END = 9;
        public const int XUN_ERR_TAKEN = 10;
        public const int XUN_ERR_EXPRESSION = 11;
        public const int XUN_ERR_FILE = 12;
        public const int XUN_ERR_NO_MEMORY = 13;
        public const int XUN_ERR_LIMIT = 14;
        public const int XUN_ERR_INTERNAL = 15;
        // Severities of the problems reported by the checks.
        public const int XUN_CHECK_DROPPED = 1;
        public const int XUN_CHECK_MESSAGE = 2;
        public const int XUN_CHECK_FATAL = 3;
        public const int XUN_CHECK_WARNING = 4;

        // Receives one problem of a check; the texts are valid during the call
        // only (Xun.Text copies them).
        [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
        public delegate void CheckReport(IntPtr user, IntPtr file, int line, int severity,
                                         IntPtr message);

        // ---- Errors and version
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetLastError(out IntPtr message);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void xunClearLastError();
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr xunVersion();

        // ---- Units: registry and queries
        // list receives a new text: release it with Xun.Free (or use UnitGetAll).
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunUnitGetAll(out IntPtr list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunUnitNew([MarshalAs(UnmanagedType.LPUTF8Str)] string ident,
                                            [MarshalAs(UnmanagedType.LPUTF8Str)] string key,
                                            [MarshalAs(UnmanagedType.LPUTF8Str)] string abbreviation,
                                            [MarshalAs(UnmanagedType.LPUTF8Str)] string expression);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetUnitKey(int tag, out IntPtr key);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetUnitIdent(int tag, out IntPtr ident);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetUnitAbbreviation(int tag, out IntPtr abbreviation);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetUnitExpression(int tag, out IntPtr expression);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetUnitAlias(int tag, int seq, out IntPtr alias);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetUnitTag([MarshalAs(UnmanagedType.LPUTF8Str)] string name,
                                               out int tag);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetUnitTagFromIdent(
            [MarshalAs(UnmanagedType.LPUTF8Str)] string ident, out int tag);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunParseUnit([MarshalAs(UnmanagedType.LPUTF8Str)] string text,
                                              out int tag);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunParseItemUnit(int itemKey,
                                                  [MarshalAs(UnmanagedType.LPUTF8Str)] string text,
                                                  out int tag);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetUnitText(int tag, int notation, out IntPtr text);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetItemUnitTag(int itemKey,
                                                   [MarshalAs(UnmanagedType.LPUTF8Str)] string name,
                                                   out int tag);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetItemFirstEqvUnit(int itemKey, out int tag, out IntPtr key);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunUnitsEqv(int tag1, int tag2);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetBaseUnit(int tag, out int baseTag, out IntPtr baseKey);
        // Walks: pass prevTag 0 to start, then the tag last returned; 0 at the end.
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetNextEqvUnit(int tag, int prevTag, out int nextTag,
                                                   out IntPtr nextKey);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetNextUnit(int prevTag, out int nextTag, out IntPtr nextKey);
        // powers and factors each receive 7 doubles.
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunUnitGetParameters(int tag, out double factor, out double offset,
                                                      [Out] double[] powers,
                                                      [Out] double[] factors);

        // ---- Derived units
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunUnitPower(int unit, out int matchKey, out int eqvKey,
                                              out double factor, double power);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunUnitMultiply(int unit1, int unit2, out int matchKey,
                                                 out int eqvKey, out double factor);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunUnitDivide(int unit1, int unit2, out int matchKey,
                                               out int eqvKey, out double factor);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunUnitGetIntegrationFactor(int unit, int variable,
                                                             out int resultKey, out int inverseKey,
                                                             out double factor);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunUnitGetDerivationFactor(int unit, int variable,
                                                            out int resultKey, out int inverseKey,
                                                            out double factor);

        // ---- Value conversion
        // The array functions convert count values in place; elements equal to
        // deleteValue stay as they are.
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunConvertUnit(int fromTag, int toTag, out double result,
                                                double value);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunConvertItemArrayD(int fromTag, int toTag,
                                                      [In, Out] double[] values, int count,
                                                      double deleteValue);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunConvertItemArrayF(int fromTag, int toTag,
                                                      [In, Out] float[] values, int count,
                                                      float deleteValue);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunConvertUnitToBase(int tag, out double result, double value);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunConvertUnitFromBase(int tag, out double result, double value);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunConvertToUserUnit(int itemKey, int fromTag, out double result,
                                                      double value);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunConvertFromUserUnit(int itemKey, int toTag, out double result,
                                                        double value);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunConvertItemArrayToUserUnitD(int itemKey, int fromTag,
                                                                [In, Out] double[] values,
                                                                int count, double deleteValue);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunConvertItemArrayToUserUnitF(int itemKey, int fromTag,
                                                                [In, Out] float[] values,
                                                                int count, float deleteValue);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunConvertItemArrayFromUserUnitD(int itemKey, int toTag,
                                                                  [In, Out] double[] values,
                                                                  int count, double deleteValue);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunConvertItemArrayFromUserUnitF(int itemKey, int toTag,
                                                                  [In, Out] float[] values,
                                                                  int count, float deleteValue);

        // ---- Item types
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunItemTypeGetAll(out IntPtr list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunItemTypeNew([MarshalAs(UnmanagedType.LPUTF8Str)] string ident,
                                                [MarshalAs(UnmanagedType.LPUTF8Str)] string keyText,
                                                long reserved,
                                                [MarshalAs(UnmanagedType.LPUTF8Str)] string unitIdent);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetItemTypeCount();
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetItemTypeSeq(int seq, out int key, out IntPtr keyText);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetItemTypeIdent(int key, out IntPtr ident);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetItemTypeKey(int key, out IntPtr keyText);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetItemTypeKeyFromIdent(
            [MarshalAs(UnmanagedType.LPUTF8Str)] string ident, out int key);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetItemTypeParams(int key, out int decimals,
                                                      out double defaultValue);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetItemUnitCount(int key);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetItemUnitSeq(int key, int seq, out int unitTag,
                                                   out IntPtr unitKey);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunSetItemUserUnit(int key, int unitTag);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunItemUnitEqv(int key, int unitTag);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetItemUserUnit(int key, out int unitTag);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunAddItemUnit(int key, int unitTag);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunAddItemFilter(int key, int bits);

        // ---- Filters
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunFilterGetAll(out IntPtr list);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunFilterNew([MarshalAs(UnmanagedType.LPUTF8Str)] string ident,
                                              [MarshalAs(UnmanagedType.LPUTF8Str)] string keyText);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetFilterCount();
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetFilterSeq(int seq, out int key, out IntPtr keyText);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetFilterKey(int key, out IntPtr keyText);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetFilterIdent(int key, out IntPtr ident);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetFilterKeyFromIdent(
            [MarshalAs(UnmanagedType.LPUTF8Str)] string ident, out int key);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetFilteredItemTypeCount(int filter);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetFilteredItemTypeSeq(int filter, int seq, out int key,
                                                           out IntPtr keyText);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunItemFilterEqv(int itemKey, int filter);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long xunSetProductFilter(int filter);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long xunGetProductFilter();
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunGetFlybyFilter();

        // ---- Include files
        // Writes xunDefine.cs (and the other include files) into the current directory.
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void xunWriteItemTypeIncludes();

        // ---- Loading
        // Loads the setup file, then the language files; "" loads $KORVANE_HOME/bin/XUN.xml.
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void xunLoadItemTypeTables(
            [MarshalAs(UnmanagedType.LPUTF8Str)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunSetupLoad([MarshalAs(UnmanagedType.LPUTF8Str)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunSetupLoadLinux(
            [MarshalAs(UnmanagedType.LPUTF8Str)] string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void xunSetupUnload();
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunSetupWrite();
        // The full name of the setup file loaded last (empty before the first load).
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void xunSetupGetPath(out IntPtr path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void LoadUnitBaseGroupFile(
            [MarshalAs(UnmanagedType.LPUTF8Str)] string fileName);

        // ---- Checking files before loading them
        // setupPath and langDir may be null; report may be null.
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunSetupCheck([MarshalAs(UnmanagedType.LPUTF8Str)] string setupPath,
                                               [MarshalAs(UnmanagedType.LPUTF8Str)] string langDir,
                                               CheckReport report, IntPtr user);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int xunBaseGroupCheck([MarshalAs(UnmanagedType.LPUTF8Str)] string path,
                                                   CheckReport report, IntPtr user);

        // ---- C++ linkage
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl,
                   EntryPoint = "_Z23xunUnloadItemTypeTablesv")]
        public static extern void xunUnloadItemTypeTables();
        // The char* buffers are byte arrays of NUL-terminated texts.
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl,
                   EntryPoint = "_Z9_fullpathPcPKci")]
        public static extern int _fullpath([In, Out] byte[] absPath,
                                           [MarshalAs(UnmanagedType.LPUTF8Str)] string relPath,
                                           int maxLength);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl,
                   EntryPoint = "_Z10_splitpathPcS_S_S_S_")]
        public static extern int _splitpath([In, Out] byte[] path, [In, Out] byte[] drive,
                                            [In, Out] byte[] dir, [In, Out] byte[] fname,
                                            [In, Out] byte[] ext);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl,
                   EntryPoint = "_Z9_makepathPcS_S_S_S_")]
        public static extern int _makepath([In, Out] byte[] path, [In, Out] byte[] drive,
                                           [In, Out] byte[] dir, [In, Out] byte[] fname,
                                           [In, Out] byte[] ext);

        [DllImport("libc.so.6", CallingConvention = CallingConvention.Cdecl, EntryPoint = "free")]
        private static extern void CFree(IntPtr pointer);

        // ---- Helpers

        // A copy of a NUL-terminated UTF-8 text of the library (null for a null pointer).
        public static string Text(IntPtr text)
        {
            if (text == IntPtr.Zero)
                return null;
            int length = 0;
            while (Marshal.ReadByte(text, length) != 0)
                ++length;
            byte[] bytes = new byte[length];
            Marshal.Copy(text, bytes, 0, length);
            return Encoding.UTF8.GetString(bytes);
        }

        // Releases a new text of a "GetAll" function.
        public static void Free(IntPtr text)
        {
            CFree(text);
        }

        static string TextOf(int result, IntPtr text)
        {
            return result != 0 ? Text(text) : null;
        }

        static string OwnedTextOf(int result, IntPtr text)
        {
            if (result == 0)
                return null;
            string copy = Text(text);
            CFree(text);
            return copy;
        }

        // ---- Wrappers: errors, version, loading

        // The code of the last failure on the calling thread, and its message.
        public static int LastError(out string message)
        {
            IntPtr text;
            int code = xunGetLastError(out text);
            message = Text(text) ?? "";
            return code;
        }

        public static string LastErrorMessage
        {
            get {
                string message;
                LastError(out message);
                return message;
            }
        }

        public static string Version
        {
            get { return Text(xunVersion()); }
        }

        // Loads the setup file (default: $KORVANE_HOME/bin/XUN.xml), then the
        // language files beside it.
        public static void Load(string path = "")
        {
            xunLoadItemTypeTables(path ?? "");
        }

        public static bool SetupLoad(string path)
        {
            return xunSetupLoad(path) != 0;
        }

        public static string SetupPath
        {
            get {
                IntPtr text;
                xunSetupGetPath(out text);
                return Text(text) ?? "";
            }
        }

        // ---- Wrappers: units

        // Idents of all units, each followed by ';' (null when there are none).
        public static string UnitGetAll()
        {
            IntPtr list;
            return OwnedTextOf(xunUnitGetAll(out list), list);
        }

        public static bool UnitNew(string ident, string key, string abbreviation, string expression)
        {
            return xunUnitNew(ident, key, abbreviation, expression) != 0;
        }

        public static string UnitKey(int tag)
        {
            IntPtr text;
            return TextOf(xunGetUnitKey(tag, out text), text);
        }

        public static string UnitIdent(int tag)
        {
            IntPtr text;
            return TextOf(xunGetUnitIdent(tag, out text), text);
        }

        public static string UnitAbbreviation(int tag)
        {
            IntPtr text;
            return TextOf(xunGetUnitAbbreviation(tag, out text), text);
        }

        public static string UnitExpression(int tag)
        {
            IntPtr text;
            return TextOf(xunGetUnitExpression(tag, out text), text);
        }

        public static string UnitAlias(int tag, int seq)
        {
            IntPtr text;
            return TextOf(xunGetUnitAlias(tag, seq, out text), text);
        }

        public static bool UnitTag(string name, out int tag)
        {
            return xunGetUnitTag(name, out tag) != 0;
        }

        // A unit string as people and data files write it ("m3 s-1", "ft^3/s").
        public static bool ParseUnit(string text, out int tag)
        {
            return xunParseUnit(text, out tag) != 0;
        }

        // The same, answered only by an allowed unit of the item type.
        public static bool ParseItemUnit(int itemKey, string text, out int tag)
        {
            return xunParseItemUnit(itemKey, text, out tag) != 0;
        }

        // A text of the unit in a notation (1 CF, 2 ASCII, 3 Unicode).
        public static string UnitText(int tag, int notation)
        {
            IntPtr text;
            return TextOf(xunGetUnitText(tag, notation, out text), text);
        }

        public static bool UnitTagFromIdent(string ident, out int tag)
        {
            return xunGetUnitTagFromIdent(ident, out tag) != 0;
        }

        public static bool ItemUnitTag(int itemKey, string name, out int tag)
        {
            return xunGetItemUnitTag(itemKey, name, out tag) != 0;
        }

        public static string ItemFirstEqvUnit(int itemKey, out int tag)
        {
            IntPtr text;
            return TextOf(xunGetItemFirstEqvUnit(itemKey, out tag, out text), text);
        }

        public static bool UnitsEqv(int tag1, int tag2)
        {
            return xunUnitsEqv(tag1, tag2) != 0;
        }

        public static string BaseUnit(int tag, out int baseTag)
        {
            IntPtr text;
            return TextOf(xunGetBaseUnit(tag, out baseTag, out text), text);
        }

        public static string NextEqvUnit(int tag, int prevTag, out int nextTag)
        {
            IntPtr text;
            return TextOf(xunGetNextEqvUnit(tag, prevTag, out nextTag, out text), text);
        }

        public static string NextUnit(int prevTag, out int nextTag)
        {
            IntPtr text;
            return TextOf(xunGetNextUnit(prevTag, out nextTag, out text), text);
        }

        // ---- Wrappers: derived units

        public static bool UnitPower(int unit, double power, out int matchKey, out int eqvKey,
                                     out double factor)
        {
            return xunUnitPower(unit, out matchKey, out eqvKey, out factor, power) != 0;
        }

        public static bool UnitMultiply(int unit1, int unit2, out int matchKey, out int eqvKey,
                                        out double factor)
        {
            return xunUnitMultiply(unit1, unit2, out matchKey, out eqvKey, out factor) != 0;
        }

        public static bool UnitDivide(int unit1, int unit2, out int matchKey, out int eqvKey,
                                      out double factor)
        {
            return xunUnitDivide(unit1, unit2, out matchKey, out eqvKey, out factor) != 0;
        }

        // ---- Wrappers: conversion

        public static bool ConvertUnit(int fromTag, int toTag, double value, out double result)
        {
            return xunConvertUnit(fromTag, toTag, out result, value) != 0;
        }

        // Converts every element of values in place, except those equal to
        // deleteValue.
        public static bool ConvertArray(int fromTag, int toTag, double[] values, double deleteValue)
        {
            return xunConvertItemArrayD(fromTag, toTag, values, values.Length, deleteValue) != 0;
        }

        public static bool ConvertArray(int fromTag, int toTag, float[] values, float deleteValue)
        {
            return xunConvertItemArrayF(fromTag, toTag, values, values.Length, deleteValue) != 0;
        }

        public static bool ConvertToUserUnit(int itemKey, int fromTag, double value,
                                             out double result)
        {
            return xunConvertToUserUnit(itemKey, fromTag, out result, value) != 0;
        }

        public static bool ConvertFromUserUnit(int itemKey, int toTag, double value,
                                               out double result)
        {
            return xunConvertFromUserUnit(itemKey, toTag, out result, value) != 0;
        }

        public static bool ConvertArrayToUserUnit(int itemKey, int fromTag, double[] values,
                                                  double deleteValue)
        {
            return xunConvertItemArrayToUserUnitD(itemKey, fromTag, values, values.Length,
                                                  deleteValue) != 0;
        }

        public static bool ConvertArrayToUserUnit(int itemKey, int fromTag, float[] values,
                                                  float deleteValue)
        {
            return xunConvertItemArrayToUserUnitF(itemKey, fromTag, values, values.Length,
                                                  deleteValue) != 0;
        }

        public static bool ConvertArrayFromUserUnit(int itemKey, int toTag, double[] values,
                                                    double deleteValue)
        {
            return xunConvertItemArrayFromUserUnitD(itemKey, toTag, values, values.Length,
                                                    deleteValue) != 0;
        }

        public static bool ConvertArrayFromUserUnit(int itemKey, int toTag, float[] values,
                                                    float deleteValue)
        {
            return xunConvertItemArrayFromUserUnitF(itemKey, toTag, values, values.Length,
                                                    deleteValue) != 0;
        }

        // ---- Wrappers: item types

        public static string ItemTypeGetAll()
        {
            IntPtr list;
            return OwnedTextOf(xunItemTypeGetAll(out list), list);
        }

        public static bool ItemTypeNew(string ident, string keyText, string unitIdent)
        {
            return xunItemTypeNew(ident, keyText, 0, unitIdent) != 0;
        }

        public static string ItemTypeSeq(int seq, out int key)
        {
            IntPtr text;
            return TextOf(xunGetItemTypeSeq(seq, out key, out text), text);
        }

        public static string ItemTypeIdent(int key)
        {
            IntPtr text;
            return TextOf(xunGetItemTypeIdent(key, out text), text);
        }

        public static string ItemTypeKey(int key)
        {
            IntPtr text;
            return TextOf(xunGetItemTypeKey(key, out text), text);
        }

        public static bool ItemTypeKeyFromIdent(string ident, out int key)
        {
            return xunGetItemTypeKeyFromIdent(ident, out key) != 0;
        }

        // The description of the seq-th allowed unit of an item type (from 1).
        public static string ItemUnitSeq(int key, int seq, out int unitTag)
        {
            IntPtr text;
            return TextOf(xunGetItemUnitSeq(key, seq, out unitTag, out text), text);
        }

        public static bool SetItemUserUnit(int key, int unitTag)
        {
            return xunSetItemUserUnit(key, unitTag) != 0;
        }

        public static bool ItemUnitEqv(int key, int unitTag)
        {
            return xunItemUnitEqv(key, unitTag) != 0;
        }

        public static bool ItemUserUnit(int key, out int unitTag)
        {
            return xunGetItemUserUnit(key, out unitTag) != 0;
        }

        // ---- Wrappers: filters

        public static string FilterGetAll()
        {
            IntPtr list;
            return OwnedTextOf(xunFilterGetAll(out list), list);
        }

        public static bool FilterNew(string ident, string keyText)
        {
            return xunFilterNew(ident, keyText) != 0;
        }

        public static string FilterSeq(int seq, out int key)
        {
            IntPtr text;
            return TextOf(xunGetFilterSeq(seq, out key, out text), text);
        }

        public static string FilterKey(int key)
        {
            IntPtr text;
            return TextOf(xunGetFilterKey(key, out text), text);
        }

        public static string FilterIdent(int key)
        {
            IntPtr text;
            return TextOf(xunGetFilterIdent(key, out text), text);
        }

        public static bool FilterKeyFromIdent(string ident, out int key)
        {
            return xunGetFilterKeyFromIdent(ident, out key) != 0;
        }

        public static string FilteredItemTypeSeq(int filter, int seq, out int key)
        {
            IntPtr text;
            return TextOf(xunGetFilteredItemTypeSeq(filter, seq, out key, out text), text);
        }

        public static bool ItemFilterEqv(int itemKey, int filter)
        {
            return xunItemFilterEqv(itemKey, filter) != 0;
        }
    }
}
