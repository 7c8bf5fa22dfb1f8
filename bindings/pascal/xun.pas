{ Pascal interface to libxun: every function of xun.h with the C calling
  convention, and helpers that give Pascal strings and Boolean values.

  Texts passed to the library are PChar ('UnitMeter' as a literal converts by
  itself; PChar(s) for a string s). Texts handed out by the library point into
  its own storage: xunStr copies one into a Pascal string. Integer results
  are 1 for success (or true) and 0 for failure (or false).

  The helpers end in "Str" (a text getter's text as a string, '' on failure,
  and the success in the optional Boolean ok) or give Boolean results; the
  "GetAll" helpers release the library's new text. The four functions that
  xun.h declares with C++ linkage are bound by their encoded symbol names,
  under names starting with xun (a Pascal name may start with an
  underscore, but these keep the library's prefix): xunUnloadItemTypeTables,
  xunFullPath, xunSplitPath and xunMakePath.

  Link with -Fl<libdir> (the unit names the library 'xun'). }
unit xun;

{$mode objfpc}{$H+}

interface

uses
  ctypes;

const
  XunLibrary = 'xun';

  { Error codes of xunGetLastError. }
  XUN_OK = 0;
  XUN_ERR_NULL_ARGUMENT = 1;
  XUN_ERR_UNKNOWN_UNIT = 2;
  XUN_ERR_UNKNOWN_ITEM_TYPE = 3;
  XUN_ERR_UNKNOWN_FILTER = 4;
  XUN_ERR_NO_REAL_UNIT = 5;
  XUN_ERR_DIMENSION = 6;
  XUN_ERR_NOT_FOUND = 7;
  XUN_ERR_RANGE = 8;
  XUN_ERR_END = 9;
  XUN_ERR_TAKEN = 10;
  XUN_ERR_EXPRESSION = 11;
  XUN_ERR_FILE = 12;
  XUN_ERR_NO_MEMORY = 13;
  XUN_ERR_LIMIT = 14;
  XUN_ERR_INTERNAL = 15;
  { Severities of the problems reported by the checks. }
  XUN_CHECK_DROPPED = 1;
  XUN_CHECK_MESSAGE = 2;
  XUN_CHECK_FATAL = 3;
  XUN_CHECK_WARNING = 4;

type
  { Receives one problem of a check; the texts are valid during the call only. }
  TXunCheckReport = procedure(user: Pointer; fileName: PChar; line, severity: cint;
    message: PChar); cdecl;

{ ---- Errors and version }
function xunGetLastError(out message: PChar): cint; cdecl; external XunLibrary;
procedure xunClearLastError; cdecl; external XunLibrary;
function xunVersion: PChar; cdecl; external XunLibrary;

{ ---- Units: registry and queries }
{ list receives a new text: release it with xunFree (or use xunUnitGetAllStr). }
function xunUnitGetAll(out list: PChar): cint; cdecl; external XunLibrary;
function xunUnitNew(ident, key, abbreviation, expression: PChar): cint; cdecl;
  external XunLibrary;
function xunGetUnitKey(tag: cint; out key: PChar): cint; cdecl; external XunLibrary;
function xunGetUnitIdent(tag: cint; out ident: PChar): cint; cdecl; external XunLibrary;
function xunGetUnitAbbreviation(tag: cint; out abbreviation: PChar): cint; cdecl;
  external XunLibrary;
function xunGetUnitExpression(tag: cint; out expression: PChar): cint; cdecl;
  external XunLibrary;
function xunGetUnitAlias(tag, seq: cint; out alias: PChar): cint; cdecl; external XunLibrary;
function xunGetUnitTag(name: PChar; out tag: cint): cint; cdecl; external XunLibrary;
function xunGetUnitTagFromIdent(ident: PChar; out tag: cint): cint; cdecl; external XunLibrary;
function xunParseUnit(text: PChar; out tag: cint): cint; cdecl; external XunLibrary;
function xunParseItemUnit(itemKey: cint; text: PChar; out tag: cint): cint; cdecl;
  external XunLibrary;
function xunGetUnitText(tag, notation: cint; out text: PChar): cint; cdecl; external XunLibrary;
function xunGetItemUnitTag(itemKey: cint; name: PChar; out tag: cint): cint; cdecl;
  external XunLibrary;
function xunGetItemFirstEqvUnit(itemKey: cint; out tag: cint; out key: PChar): cint; cdecl;
  external XunLibrary;
function xunUnitsEqv(tag1, tag2: cint): cint; cdecl; external XunLibrary;
function xunGetBaseUnit(tag: cint; out baseTag: cint; out baseKey: PChar): cint; cdecl;
  external XunLibrary;
{ Walks: pass prevTag 0 to start, then the tag last returned; 0 at the end. }
function xunGetNextEqvUnit(tag, prevTag: cint; out nextTag: cint; out nextKey: PChar): cint;
  cdecl; external XunLibrary;
function xunGetNextUnit(prevTag: cint; out nextTag: cint; out nextKey: PChar): cint; cdecl;
  external XunLibrary;
{ powers and factors each receive 7 doubles. }
function xunUnitGetParameters(tag: cint; out factor, offset: cdouble; powers, factors: pcdouble):
  cint; cdecl; external XunLibrary;

{ ---- Derived units }
function xunUnitPower(unitTag: cint; out matchKey, eqvKey: cint; out factor: cdouble;
  power: cdouble): cint; cdecl; external XunLibrary;
function xunUnitMultiply(unit1, unit2: cint; out matchKey, eqvKey: cint; out factor: cdouble):
  cint; cdecl; external XunLibrary;
function xunUnitDivide(unit1, unit2: cint; out matchKey, eqvKey: cint; out factor: cdouble):
  cint; cdecl; external XunLibrary;
function xunUnitGetIntegrationFactor(unitTag, variable: cint; out resultKey, inverseKey: cint;
  out factor: cdouble): cint; cdecl; external XunLibrary;
function xunUnitGetDerivationFactor(unitTag, variable: cint; out resultKey, inverseKey: cint;
  out factor: cdouble): cint; cdecl; external XunLibrary;

{ ---- Value conversion }
{ The array functions convert count values in place; elements equal to
  deleteValue stay as they are. }
function xunConvertUnit(fromTag, toTag: cint; out res: cdouble; value: cdouble): cint; cdecl;
  external XunLibrary;
function xunConvertItemArrayD(fromTag, toTag: cint; values: pcdouble; count: cint;
  deleteValue: cdouble): cint; cdecl; external XunLibrary;
function xunConvertItemArrayF(fromTag, toTag: cint; values: pcfloat; count: cint;
  deleteValue: cfloat): cint; cdecl; external XunLibrary;
function xunConvertUnitToBase(tag: cint; out res: cdouble; value: cdouble): cint; cdecl;
  external XunLibrary;
function xunConvertUnitFromBase(tag: cint; out res: cdouble; value: cdouble): cint; cdecl;
  external XunLibrary;
function xunConvertToUserUnit(itemKey, fromTag: cint; out res: cdouble; value: cdouble): cint;
  cdecl; external XunLibrary;
function xunConvertFromUserUnit(itemKey, toTag: cint; out res: cdouble; value: cdouble): cint;
  cdecl; external XunLibrary;
function xunConvertItemArrayToUserUnitD(itemKey, fromTag: cint; values: pcdouble; count: cint;
  deleteValue: cdouble): cint; cdecl; external XunLibrary;
function xunConvertItemArrayToUserUnitF(itemKey, fromTag: cint; values: pcfloat; count: cint;
  deleteValue: cfloat): cint; cdecl; external XunLibrary;
function xunConvertItemArrayFromUserUnitD(itemKey, toTag: cint; values: pcdouble; count: cint;
  deleteValue: cdouble): cint; cdecl; external XunLibrary;
function xunConvertItemArrayFromUserUnitF(itemKey, toTag: cint; values: pcfloat; count: cint;
  deleteValue: cfloat): cint; cdecl; external XunLibrary;

{ ---- Item types }
function xunItemTypeGetAll(out list: PChar): cint; cdecl; external XunLibrary;
function xunItemTypeNew(ident, keyText: PChar; reserved: clong; unitIdent: PChar): cint; cdecl;
  external XunLibrary;
function xunGetItemTypeCount: cint; cdecl; external XunLibrary;
function xunGetItemTypeSeq(seq: cint; out key: cint; out keyText: PChar): cint; cdecl;
  external XunLibrary;
function xunGetItemTypeIdent(key: cint; out ident: PChar): cint; cdecl; external XunLibrary;
function xunGetItemTypeKey(key: cint; out keyText: PChar): cint; cdecl; external XunLibrary;
function xunGetItemTypeKeyFromIdent(ident: PChar; out key: cint): cint; cdecl;
  external XunLibrary;
function xunGetItemTypeParams(key: cint; out decimals: cint; out defaultValue: cdouble): cint;
  cdecl; external XunLibrary;
function xunGetItemUnitCount(key: cint): cint; cdecl; external XunLibrary;
function xunGetItemUnitSeq(key, seq: cint; out unitTag: cint; out unitKey: PChar): cint; cdecl;
  external XunLibrary;
function xunSetItemUserUnit(key, unitTag: cint): cint; cdecl; external XunLibrary;
function xunItemUnitEqv(key, unitTag: cint): cint; cdecl; external XunLibrary;
function xunGetItemUserUnit(key: cint; out unitTag: cint): cint; cdecl; external XunLibrary;
function xunAddItemUnit(key, unitTag: cint): cint; cdecl; external XunLibrary;
function xunAddItemFilter(key, bits: cint): cint; cdecl; external XunLibrary;

{ ---- Filters }
function xunFilterGetAll(out list: PChar): cint; cdecl; external XunLibrary;
function xunFilterNew(ident, keyText: PChar): cint; cdecl; external XunLibrary;
function xunGetFilterCount: cint; cdecl; external XunLibrary;
function xunGetFilterSeq(seq: cint; out key: cint; out keyText: PChar): cint; cdecl;
  external XunLibrary;
function xunGetFilterKey(key: cint; out keyText: PChar): cint; cdecl; external XunLibrary;
function xunGetFilterIdent(key: cint; out ident: PChar): cint; cdecl; external XunLibrary;
function xunGetFilterKeyFromIdent(ident: PChar; out key: cint): cint; cdecl;
  external XunLibrary;
function xunGetFilteredItemTypeCount(filter: cint): cint; cdecl; external XunLibrary;
function xunGetFilteredItemTypeSeq(filter, seq: cint; out key: cint; out keyText: PChar): cint;
  cdecl; external XunLibrary;
function xunItemFilterEqv(itemKey, filter: cint): cint; cdecl; external XunLibrary;
function xunSetProductFilter(filter: cint): clong; cdecl; external XunLibrary;
function xunGetProductFilter: clong; cdecl; external XunLibrary;
function xunGetFlybyFilter: cint; cdecl; external XunLibrary;

{ ---- Include files }
{ Writes xunDefine.p__ (and the other include files) into the current directory. }
procedure xunWriteItemTypeIncludes; cdecl; external XunLibrary;

{ ---- Loading }
{ Loads the setup file, then the language files; '' loads $KORVANE_HOME/bin/XUN.xml. }
procedure xunLoadItemTypeTables(path: PChar); cdecl; external XunLibrary;
function xunSetupLoad(path: PChar): cint; cdecl; external XunLibrary;
function xunSetupLoadLinux(path: PChar): cint; cdecl; external XunLibrary;
procedure xunSetupUnload; cdecl; external XunLibrary;
function xunSetupWrite: cint; cdecl; external XunLibrary;
{ The full name of the setup file loaded last (empty before the first load). }
procedure xunSetupGetPath(out path: PChar); cdecl; external XunLibrary;
procedure LoadUnitBaseGroupFile(fileName: PChar); cdecl; external XunLibrary;

{ ---- Checking files before loading them }
function xunSetupCheck(setupPath, langDir: PChar; report: TXunCheckReport; user: Pointer): cint;
  cdecl; external XunLibrary;
function xunBaseGroupCheck(path: PChar; report: TXunCheckReport; user: Pointer): cint; cdecl;
  external XunLibrary;

{ ---- C++ linkage }
procedure xunUnloadItemTypeTables; cdecl; external XunLibrary
  name '_Z23xunUnloadItemTypeTablesv';
function xunFullPath(absPath: PChar; relPath: PChar; maxLength: cint): cint; cdecl;
  external XunLibrary name '_Z9_fullpathPcPKci';
function xunSplitPath(path, drive, dir, fname, ext: PChar): cint; cdecl;
  external XunLibrary name '_Z10_splitpathPcS_S_S_S_';
function xunMakePath(path, drive, dir, fname, ext: PChar): cint; cdecl;
  external XunLibrary name '_Z9_makepathPcS_S_S_S_';

{ ---- Helpers }
{ A copy of a text of the library ('' for nil). }
function xunStr(text: PChar): string;
{ Releases a new text of a "GetAll" function. }
procedure xunFree(text: PChar);
{ The message of the last failure on the calling thread; code receives its code. }
function xunLastErrorStr(out code: cint): string;
function xunLastErrorStr: string;
function xunVersionStr: string;
function xunUnitGetAllStr(out ok: Boolean): string;
function xunUnitGetAllStr: string;
function xunItemTypeGetAllStr(out ok: Boolean): string;
function xunItemTypeGetAllStr: string;
function xunFilterGetAllStr(out ok: Boolean): string;
function xunFilterGetAllStr: string;
function xunGetUnitKeyStr(tag: cint; out ok: Boolean): string;
function xunGetUnitKeyStr(tag: cint): string;
function xunGetUnitIdentStr(tag: cint; out ok: Boolean): string;
function xunGetUnitIdentStr(tag: cint): string;
function xunGetUnitAbbreviationStr(tag: cint; out ok: Boolean): string;
function xunGetUnitAbbreviationStr(tag: cint): string;
function xunGetUnitExpressionStr(tag: cint; out ok: Boolean): string;
function xunGetUnitExpressionStr(tag: cint): string;
function xunGetUnitTextStr(tag, notation: cint; out ok: Boolean): string;
function xunGetUnitTextStr(tag, notation: cint): string;
function xunGetUnitAliasStr(tag, seq: cint; out ok: Boolean): string;
function xunGetUnitAliasStr(tag, seq: cint): string;
function xunGetItemFirstEqvUnitStr(itemKey: cint; out tag: cint; out ok: Boolean): string;
function xunGetBaseUnitStr(tag: cint; out baseTag: cint; out ok: Boolean): string;
function xunGetNextEqvUnitStr(tag, prevTag: cint; out nextTag: cint; out ok: Boolean): string;
function xunGetNextUnitStr(prevTag: cint; out nextTag: cint; out ok: Boolean): string;
function xunGetItemTypeSeqStr(seq: cint; out key: cint; out ok: Boolean): string;
function xunGetItemTypeIdentStr(key: cint; out ok: Boolean): string;
function xunGetItemTypeIdentStr(key: cint): string;
function xunGetItemTypeKeyStr(key: cint; out ok: Boolean): string;
function xunGetItemTypeKeyStr(key: cint): string;
function xunGetItemUnitSeqStr(key, seq: cint; out unitTag: cint; out ok: Boolean): string;
function xunGetFilterSeqStr(seq: cint; out key: cint; out ok: Boolean): string;
function xunGetFilterKeyStr(key: cint; out ok: Boolean): string;
function xunGetFilterKeyStr(key: cint): string;
function xunGetFilterIdentStr(key: cint; out ok: Boolean): string;
function xunGetFilterIdentStr(key: cint): string;
function xunGetFilteredItemTypeSeqStr(filter, seq: cint; out key: cint; out ok: Boolean): string;
function xunSetupGetPathStr: string;
{ Boolean forms of the predicates. }
function xunUnitsEqvB(tag1, tag2: cint): Boolean;
function xunItemUnitEqvB(key, unitTag: cint): Boolean;
function xunItemFilterEqvB(itemKey, filter: cint): Boolean;

implementation

function xunStr(text: PChar): string;
begin
  if text = nil then
    Result := ''
  else
    Result := string(text);
end;

procedure c_free(p: Pointer); cdecl; external 'c' name 'free';

procedure xunFree(text: PChar);
begin
  c_free(text);
end;

function TextOf(r: cint; text: PChar; out ok: Boolean): string;
begin
  ok := r <> 0;
  if ok then
    Result := xunStr(text)
  else
    Result := '';
end;

function OwnedTextOf(r: cint; text: PChar; out ok: Boolean): string;
begin
  Result := TextOf(r, text, ok);
  if ok then
    c_free(text);
end;

function xunLastErrorStr(out code: cint): string;
var
  message: PChar;
begin
  code := xunGetLastError(message);
  Result := xunStr(message);
end;

function xunLastErrorStr: string;
var
  code: cint;
begin
  Result := xunLastErrorStr(code);
end;

function xunVersionStr: string;
begin
  Result := xunStr(xunVersion());
end;

function xunUnitGetAllStr(out ok: Boolean): string;
var
  list: PChar = nil;
begin
  Result := OwnedTextOf(xunUnitGetAll(list), list, ok);
end;

function xunUnitGetAllStr: string;
var
  ok: Boolean;
begin
  Result := xunUnitGetAllStr(ok);
end;

function xunItemTypeGetAllStr(out ok: Boolean): string;
var
  list: PChar = nil;
begin
  Result := OwnedTextOf(xunItemTypeGetAll(list), list, ok);
end;

function xunItemTypeGetAllStr: string;
var
  ok: Boolean;
begin
  Result := xunItemTypeGetAllStr(ok);
end;

function xunFilterGetAllStr(out ok: Boolean): string;
var
  list: PChar = nil;
begin
  Result := OwnedTextOf(xunFilterGetAll(list), list, ok);
end;

function xunFilterGetAllStr: string;
var
  ok: Boolean;
begin
  Result := xunFilterGetAllStr(ok);
end;

function xunGetUnitKeyStr(tag: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  Result := TextOf(xunGetUnitKey(tag, text), text, ok);
end;

function xunGetUnitKeyStr(tag: cint): string;
var
  ok: Boolean;
begin
  Result := xunGetUnitKeyStr(tag, ok);
end;

function xunGetUnitIdentStr(tag: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  Result := TextOf(xunGetUnitIdent(tag, text), text, ok);
end;

function xunGetUnitIdentStr(tag: cint): string;
var
  ok: Boolean;
begin
  Result := xunGetUnitIdentStr(tag, ok);
end;

function xunGetUnitAbbreviationStr(tag: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  Result := TextOf(xunGetUnitAbbreviation(tag, text), text, ok);
end;

function xunGetUnitAbbreviationStr(tag: cint): string;
var
  ok: Boolean;
begin
  Result := xunGetUnitAbbreviationStr(tag, ok);
end;

function xunGetUnitExpressionStr(tag: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  Result := TextOf(xunGetUnitExpression(tag, text), text, ok);
end;

function xunGetUnitExpressionStr(tag: cint): string;
var
  ok: Boolean;
begin
  Result := xunGetUnitExpressionStr(tag, ok);
end;

function xunGetUnitTextStr(tag, notation: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  Result := TextOf(xunGetUnitText(tag, notation, text), text, ok);
end;

function xunGetUnitTextStr(tag, notation: cint): string;
var
  ok: Boolean;
begin
  Result := xunGetUnitTextStr(tag, notation, ok);
end;

function xunGetUnitAliasStr(tag, seq: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  Result := TextOf(xunGetUnitAlias(tag, seq, text), text, ok);
end;

function xunGetUnitAliasStr(tag, seq: cint): string;
var
  ok: Boolean;
begin
  Result := xunGetUnitAliasStr(tag, seq, ok);
end;

function xunGetItemFirstEqvUnitStr(itemKey: cint; out tag: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  tag := 0;
  Result := TextOf(xunGetItemFirstEqvUnit(itemKey, tag, text), text, ok);
end;

function xunGetBaseUnitStr(tag: cint; out baseTag: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  baseTag := 0;
  Result := TextOf(xunGetBaseUnit(tag, baseTag, text), text, ok);
end;

function xunGetNextEqvUnitStr(tag, prevTag: cint; out nextTag: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  nextTag := 0;
  Result := TextOf(xunGetNextEqvUnit(tag, prevTag, nextTag, text), text, ok);
end;

function xunGetNextUnitStr(prevTag: cint; out nextTag: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  nextTag := 0;
  Result := TextOf(xunGetNextUnit(prevTag, nextTag, text), text, ok);
end;

function xunGetItemTypeSeqStr(seq: cint; out key: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  key := 0;
  Result := TextOf(xunGetItemTypeSeq(seq, key, text), text, ok);
end;

function xunGetItemTypeIdentStr(key: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  Result := TextOf(xunGetItemTypeIdent(key, text), text, ok);
end;

function xunGetItemTypeIdentStr(key: cint): string;
var
  ok: Boolean;
begin
  Result := xunGetItemTypeIdentStr(key, ok);
end;

function xunGetItemTypeKeyStr(key: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  Result := TextOf(xunGetItemTypeKey(key, text), text, ok);
end;

function xunGetItemTypeKeyStr(key: cint): string;
var
  ok: Boolean;
begin
  Result := xunGetItemTypeKeyStr(key, ok);
end;

function xunGetItemUnitSeqStr(key, seq: cint; out unitTag: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  unitTag := 0;
  Result := TextOf(xunGetItemUnitSeq(key, seq, unitTag, text), text, ok);
end;

function xunGetFilterSeqStr(seq: cint; out key: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  key := 0;
  Result := TextOf(xunGetFilterSeq(seq, key, text), text, ok);
end;

function xunGetFilterKeyStr(key: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  Result := TextOf(xunGetFilterKey(key, text), text, ok);
end;

function xunGetFilterKeyStr(key: cint): string;
var
  ok: Boolean;
begin
  Result := xunGetFilterKeyStr(key, ok);
end;

function xunGetFilterIdentStr(key: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  Result := TextOf(xunGetFilterIdent(key, text), text, ok);
end;

function xunGetFilterIdentStr(key: cint): string;
var
  ok: Boolean;
begin
  Result := xunGetFilterIdentStr(key, ok);
end;

function xunGetFilteredItemTypeSeqStr(filter, seq: cint; out key: cint; out ok: Boolean): string;
var
  text: PChar = nil;
begin
  key := 0;
  Result := TextOf(xunGetFilteredItemTypeSeq(filter, seq, key, text), text, ok);
end;

function xunSetupGetPathStr: string;
var
  text: PChar = nil;
begin
  xunSetupGetPath(text);
  Result := xunStr(text);
end;

function xunUnitsEqvB(tag1, tag2: cint): Boolean;
begin
  Result := xunUnitsEqv(tag1, tag2) <> 0;
end;

function xunItemUnitEqvB(key, unitTag: cint): Boolean;
begin
  Result := xunItemUnitEqv(key, unitTag) <> 0;
end;

function xunItemFilterEqvB(itemKey, filter: cint): Boolean;
begin
  Result := xunItemFilterEqv(itemKey, filter) <> 0;
end;

end.
