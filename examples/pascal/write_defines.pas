{ Loads the default installation and writes the include files, xunDefine.p__
  among them, into the current directory. }
program write_defines;

uses
  xun;

begin
  xunLoadItemTypeTables('');
  if xunGetItemTypeCount = 0 then
  begin
    writeln('nothing loaded: is KORVANE_HOME set to an installation?');
    halt(1);
  end;
  xunWriteItemTypeIncludes;
end.
