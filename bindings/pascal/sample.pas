// SPDX-License-Identifier: MIT
// sample FOLDER PACKAGE: packs the database of a folder, lists the package, prints the bill of material.
program Sample;

{$IFDEF FPC}{$MODE DELPHI}{$ENDIF}
{$APPTYPE CONSOLE}

uses
  SysUtils, Classes, Vlt, VltApi;

const
  Files: array[1..7] of string = ('kdbmain.txt', 'bitm.txt', 'bbom.txt', 'bdwg.txt', 'bitdwg.txt', 'bcapp.txt',
    'bitcap.txt');

procedure PackFile(Package: TVltPackage; const Folder, Name: string);
var
  Source: TFileStream;
  Target: TVltStream;
begin
  Source := TFileStream.Create(Folder + '/' + Name, fmOpenRead);
  Target := TVltStream.Create(Package, Name, VLT_MODE_WRITE, True);
  try
    Target.CopyFrom(Source, 0);
  finally
    Target.Free;
    Source.Free;
  end;
end;

procedure Pack(const Folder, Path: string);
var
  Package: TVltPackage;
  Entry: TVltEntry;
  Number, Cursor: Integer;
begin
  Package := TVltPackage.CreateNew(Path, False, 1);
  try
    for Number := Low(Files) to High(Files) do
      PackFile(Package, Folder, Files[Number]);
    Cursor := 0;
    while Package.Next(Cursor, Entry) do
      WriteLn(Entry.Name, ' ', Entry.Size);
  finally
    Package.Free;
  end;
end;

procedure PrintItem(Db: TVltDatabase; Item: Integer; const Quantity: string; Level: Integer);
var
  Found: TVltRecordNumbers;
  At, Line: Integer;
begin
  WriteLn(StringOfChar(' ', 2 * Level), Quantity, ' x ', Db.Items[Item, 'CCODE'], ' ', Db.Items[Item, 'CNAME']);
  Found := Db.Lines.Search('NPID', IntToStr(Db.Items.Nid(Item)));
  for At := 0 to Length(Found) - 1 do
  begin
    Line := Found[At];
    if Level < 100 then
      PrintItem(Db, Db.ItemByNid(StrToInt(Db.Lines[Line, 'NCID'])), Db.Lines[Line, 'FCOUNT'], Level + 1);
  end;
end;

var
  Db: TVltDatabase;
  Roots: TVltRecordNumbers;
  At: Integer;

begin
  Pack(ParamStr(1), ParamStr(2));
  Db := TVltDatabase.Create(ParamStr(2));
  try
    Roots := Db.Roots;
    for At := 0 to Length(Roots) - 1 do
      PrintItem(Db, Roots[At], '1', 0);
  finally
    Db.Free;
  end;
end.
