{ Pascal interface to libxun: the C functions used from Pascal, with the C
  calling convention. Texts passed to the library are PChar ('UnitMeter' as a
  literal converts by itself); texts handed out by the library point into its
  own storage. Link with -Fl<libdir> (the unit names the library 'xun'). }
unit xun;

{$mode objfpc}{$H+}

interface

uses
  ctypes;

const
  XunLibrary = 'xun';

{ Loads the setup file, then the language files; '' loads $KORVANE_HOME/bin/XUN.xml. }
procedure xunLoadItemTypeTables(path: PChar); cdecl; external XunLibrary;
function xunSetupLoad(path: PChar): cint; cdecl; external XunLibrary;
{ The full name of the setup file loaded last (empty before the first load). }
procedure xunSetupGetPath(out path: PChar); cdecl; external XunLibrary;
{ Writes xunDefine.p__ (and the other include files) into the current directory. }
procedure xunWriteItemTypeIncludes; cdecl; external XunLibrary;

function xunGetUnitTagFromIdent(ident: PChar; out tag: cint): cint; cdecl; external XunLibrary;
function xunGetUnitTag(name: PChar; out tag: cint): cint; cdecl; external XunLibrary;
function xunGetUnitKey(tag: cint; out key: PChar): cint; cdecl; external XunLibrary;
function xunGetUnitAbbreviation(tag: cint; out abbreviation: PChar): cint; cdecl;
  external XunLibrary;
function xunUnitsEqv(tag1, tag2: cint): cint; cdecl; external XunLibrary;

function xunConvertUnit(fromTag, toTag: cint; out res: cdouble; value: cdouble): cint; cdecl;
  external XunLibrary;
function xunConvertUnitToBase(tag: cint; out res: cdouble; value: cdouble): cint; cdecl;
  external XunLibrary;
function xunConvertUnitFromBase(tag: cint; out res: cdouble; value: cdouble): cint; cdecl;
  external XunLibrary;
{ Convert count values in place; elements equal to deleteValue stay. }
function xunConvertItemArrayD(fromTag, toTag: cint; values: pcdouble; count: cint;
  deleteValue: cdouble): cint; cdecl; external XunLibrary;
function xunConvertItemArrayF(fromTag, toTag: cint; values: pcfloat; count: cint;
  deleteValue: cfloat): cint; cdecl; external XunLibrary;

function xunGetItemTypeCount: cint; cdecl; external XunLibrary;
function xunGetItemTypeKeyFromIdent(ident: PChar; out key: cint): cint; cdecl;
  external XunLibrary;
function xunGetItemTypeKey(key: cint; out keyText: PChar): cint; cdecl; external XunLibrary;
function xunGetItemUserUnit(key: cint; out unitTag: cint): cint; cdecl; external XunLibrary;
function xunSetItemUserUnit(key, unitTag: cint): cint; cdecl; external XunLibrary;
function xunConvertToUserUnit(itemKey, fromTag: cint; out res: cdouble; value: cdouble): cint;
  cdecl; external XunLibrary;
function xunConvertFromUserUnit(itemKey, toTag: cint; out res: cdouble; value: cdouble): cint;
  cdecl; external XunLibrary;

implementation

end.
