// SPDX-License-Identifier: MIT
// The library for Delphi and Free Pascal: packages whose stored files are streams, and databases with their tables.
// It needs generated/vltapi.pas, which declares the functions of the library as they are. Packages and databases are
// made and freed while no other call of the library is in progress. With Free Pascal on systems other than Windows,
// a program that uses wide names with letters beyond ASCII also uses the unit cwstring.
unit Vlt;

{$IFDEF FPC}{$MODE DELPHI}{$ENDIF}

interface

uses
  SysUtils, Classes, VltApi;

type
  // A call of the library failed; Code is what the library stored, 0 where it tells nothing.
  EVlt = class(Exception)
  private
    FCode: Integer;
  public
    constructor Create(const Text: string; Code: Integer = 0);
    property Code: Integer read FCode;
  end;

  // One line of a package's directory; times are as the library has them (see vlt.h).
  TVltEntry = record
    Name: string;
    IsFile: Boolean;
    Size: Int64;
    Created, Accessed, Written: Double;
  end;

  TVltRecordNumbers = array of Integer;

  // An open package. It is freed after its streams.
  TVltPackage = class
  private
    FHandle: Integer;
    FWideNames: Boolean;
  public
    // Opens a package, to read only or to write as far as the credentials allow.
    constructor Create(const Path: string; ReadOnly: Boolean = False; const ReadCredential: string = '';
      const WriteCredential: string = '');
    // Makes a package, over a file that is there, and opens it.
    constructor CreateNew(const Path: string; WideNames: Boolean = False; SizeMb: Integer = 0;
      const ReadCredential: string = ''; const WriteCredential: string = '');
    destructor Destroy; override;
    // Goes through the directory: Cursor is 0 at first; False when there is no further entry.
    function Next(var Cursor: Integer; out Entry: TVltEntry): Boolean;
    function Contains(const Name: string): Boolean;
    procedure Delete(const Name: string);
    property Handle: Integer read FHandle;
    property WideNames: Boolean read FWideNames;
  end;

  // A stored file as a stream. What is written is in the host file when Write returns.
  TVltStream = class(TStream)
  private
    FHandle: Cardinal;
    FName: string;
  protected
    function GetSize: Int64; override;
  public
    // Mode is a VLT_MODE_ constant. Truncate empties the file.
    constructor Create(Package: TVltPackage; const Name: string; Mode: Cardinal; Truncate: Boolean = False;
      Exclusive: Boolean = False);
    destructor Destroy; override;
    function Read(var Buffer; Count: LongInt): LongInt; override;
    function Write(const Buffer; Count: LongInt): LongInt; override;
    // Beyond the end means the end: a file is made longer by writing alone.
    function Seek(const Offset: Int64; Origin: TSeekOrigin): Int64; override;
    property Name: string read FName;
  end;

  TVltDatabase = class;

  // One table of a database: records are numbered from 0, fields are found by their names.
  TVltTable = class
  private
    FDatabase: TVltDatabase;
    FTable: PKOfflineTable;
    function Field(const Name: string): Integer;
    function GetCount: Integer;
    function GetValue(Rec: Integer; const FieldName: string): string;
    procedure SetValue(Rec: Integer; const FieldName, Text: string);
  public
    constructor Create(Database: TVltDatabase; Table: PKOfflineTable);
    // Adds a record with the next free NID and returns its number.
    function Add: Integer;
    // Deletes a record; those after it move down by one.
    procedure Delete(Rec: Integer);
    // A record's NID; -1 when it has none.
    function Nid(Rec: Integer): Integer;
    // The records whose field has this value, letter case of A to Z ignored; in their order.
    function Search(const FieldName, Text: string): TVltRecordNumbers;
    property Count: Integer read GetCount;
    // A value's text, empty also where the record has none.
    property Values[Rec: Integer; const FieldName: string]: string read GetValue write SetValue; default;
  end;

  // A loaded database. It serves one thread at a time.
  TVltDatabase = class
  private
    FRecord: PKOfflineDb;
    FTables: array[0..5] of TVltTable;
    function GetTable(Index: Integer): TVltTable;
    procedure RaiseNoted(const Unnoted: string);
  public
    // Loads a database from a package file, which stays open, or from a folder.
    constructor Create(const Path: string);
    destructor Destroy; override;
    // Writes the database to where it came from, or into another folder.
    procedure Save(const Folder: string = '');
    // The record number of the item with this NID or this code; -1 when there is none.
    function ItemByNid(Nid: Integer): Integer;
    function ItemByCode(const Code: string): Integer;
    // The record numbers of the tops of the item tree.
    function Roots: TVltRecordNumbers;
    property Items: TVltTable index 0 read GetTable;
    property Lines: TVltTable index 1 read GetTable;
    property Drawings: TVltTable index 2 read GetTable;
    property ItemDrawings: TVltTable index 3 read GetTable;
    property Plans: TVltTable index 4 read GetTable;
    property ItemPlans: TVltTable index 5 read GetTable;
  end;

implementation

const
  OpeningTexts: array[1..5] of string = ('not a package', 'neither credential matches',
    'the host file cannot be opened', 'open exclusively elsewhere, or the host file may not be written',
    'no path, or a negative offset');
  FileTexts: array[1..4] of string = ('too many open files, or the file could not be emptied',
    'the package is closed', 'the package is read-only, or the file is open elsewhere',
    'there is no such file, or it cannot be made');
  DatabaseTexts: array[1..8] of string = ('no memory', 'a file cannot be opened, read or written',
    'the schema sets no separator', 'a field that a table must have is missing', 'there is no such field to index',
    'a record cannot be given its NID, or cannot hold a value', 'the schema cannot be composed',
    'the schema does not declare a table that must exist');

function TextOf(const Texts: array of string; Code: Integer): string;
begin
  if (Code > 0) and (Code <= Length(Texts)) then
    Result := Texts[Code - 1]
  else
    Result := 'failed';
end;

procedure SortNumbers(var Numbers: TVltRecordNumbers; First, Last: Integer);
var
  Low, High, Middle, Other: Integer;
begin
  while First < Last do
  begin
    Low := First;
    High := Last;
    Middle := Numbers[First + (Last - First) div 2];
    repeat
      while Numbers[Low] < Middle do Inc(Low);
      while Numbers[High] > Middle do Dec(High);
      if Low <= High then
      begin
        Other := Numbers[Low];
        Numbers[Low] := Numbers[High];
        Numbers[High] := Other;
        Inc(Low);
        Dec(High);
      end;
    until Low > High;
    SortNumbers(Numbers, First, High);
    First := Low;
  end;
end;

{ EVlt }

constructor EVlt.Create(const Text: string; Code: Integer);
begin
  inherited Create(Text);
  FCode := Code;
end;

{ TVltPackage }

constructor TVltPackage.Create(const Path: string; ReadOnly: Boolean; const ReadCredential, WriteCredential: string);
var
  Wide, Error: Integer;
begin
  inherited Create;
  Wide := 0;
  Error := 0;
  FHandle := vlt_package_open_ex(PAnsiChar(AnsiString(Path)), Ord(ReadOnly), 0, 0, Ord(ReadOnly), 0,
    PAnsiChar(AnsiString(ReadCredential)), PAnsiChar(AnsiString(WriteCredential)), @Wide, @Error);
  if FHandle = 0 then
    raise EVlt.Create(Path + ': ' + TextOf(OpeningTexts, Error), Error);
  FWideNames := Wide <> 0;
end;

constructor TVltPackage.CreateNew(const Path: string; WideNames: Boolean; SizeMb: Integer;
  const ReadCredential, WriteCredential: string);
begin
  if vlt_package_create(PAnsiChar(AnsiString(Path)), Ord(WideNames), SizeMb, PAnsiChar(AnsiString(ReadCredential)),
    PAnsiChar(AnsiString(WriteCredential))) = 0 then
    raise EVlt.Create(Path + ': the package cannot be made');
  Create(Path, False, ReadCredential, WriteCredential);
end;

destructor TVltPackage.Destroy;
begin
  if FHandle <> 0 then
    vlt_package_close(FHandle);
  inherited Destroy;
end;

function TVltPackage.Next(var Cursor: Integer; out Entry: TVltEntry): Boolean;
var
  Narrow: array[0..VLT_NAME_MAX] of AnsiChar;
  Wide: array[0..VLT_NAME_MAX] of WideChar;
  Kind: Cardinal;
begin
  if FWideNames then
    Cursor := vltw_package_enum(FHandle, Cursor, @Wide[0], @Kind, @Entry.Size, @Entry.Created, @Entry.Accessed,
      @Entry.Written)
  else
    Cursor := vlt_package_enum(FHandle, Cursor, @Narrow[0], @Kind, @Entry.Size, @Entry.Created, @Entry.Accessed,
      @Entry.Written);
  Result := Cursor <> 0;
  if not Result then
    Exit;
  Entry.IsFile := Kind = VLT_ENTRY_FILE;
  if FWideNames then
    Entry.Name := string(UnicodeString(PWideChar(@Wide[0])))
  else
    Entry.Name := string(AnsiString(PAnsiChar(@Narrow[0])));
end;

function TVltPackage.Contains(const Name: string): Boolean;
begin
  if FWideNames then
    Result := vltw_file_get_info(FHandle, PWideChar(UnicodeString(Name)), nil, nil, nil, nil, nil) = 1
  else
    Result := vlt_file_get_info(FHandle, PAnsiChar(AnsiString(Name)), nil, nil, nil, nil, nil) = 1;
end;

procedure TVltPackage.Delete(const Name: string);
var
  Deleted: Integer;
begin
  if FWideNames then
    Deleted := vltw_file_delete(FHandle, PWideChar(UnicodeString(Name)))
  else
    Deleted := vlt_file_delete(FHandle, PAnsiChar(AnsiString(Name)));
  if Deleted = 0 then
    raise EVlt.Create(Name + ': there is no such file, or it is open');
end;

{ TVltStream }

constructor TVltStream.Create(Package: TVltPackage; const Name: string; Mode: Cardinal; Truncate, Exclusive: Boolean);
var
  Error: Cardinal;
begin
  inherited Create;
  FName := Name;
  Error := 0;
  if Package.WideNames then
    FHandle := Cardinal(vltw_file_open(Package.Handle, PWideChar(UnicodeString(Name)), Mode, Ord(Exclusive),
      Ord(Truncate), @Error))
  else
    FHandle := Cardinal(vlt_file_open(Package.Handle, PAnsiChar(AnsiString(Name)), Mode, Ord(Exclusive),
      Ord(Truncate), @Error));
  if FHandle = 0 then
    raise EVlt.Create(Name + ': ' + TextOf(FileTexts, Error), Error);
end;

destructor TVltStream.Destroy;
begin
  if FHandle <> 0 then
    vlt_file_close(FHandle);
  inherited Destroy;
end;

function TVltStream.Read(var Buffer; Count: LongInt): LongInt;
begin
  Result := vlt_file_read(FHandle, @Buffer, Count);
end;

function TVltStream.Write(const Buffer; Count: LongInt): LongInt;
begin
  Result := 0;
  if vlt_file_write(FHandle, @Buffer, Count) = 1 then
    Result := Count;
end;

function TVltStream.Seek(const Offset: Int64; Origin: TSeekOrigin): Int64;
var
  Start: Int64;
begin
  Start := 0;
  if Origin = soEnd then
    vlt_file_set_pos_eof(FHandle);
  if Origin <> soBeginning then
    vlt_file_get_pos(FHandle, @Start);
  if Start + Offset < 0 then
    raise EVlt.Create(FName + ': a negative position');
  vlt_file_set_pos(FHandle, Start + Offset);
  vlt_file_get_pos(FHandle, @Result);
end;

function TVltStream.GetSize: Int64;
var
  Here: Int64;
begin
  Here := Seek(Int64(0), soCurrent);
  Result := Seek(Int64(0), soEnd);
  Seek(Here, soBeginning);
end;

{ TVltTable }

constructor TVltTable.Create(Database: TVltDatabase; Table: PKOfflineTable);
begin
  inherited Create;
  FDatabase := Database;
  FTable := Table;
end;

function TVltTable.Field(const Name: string): Integer;
begin
  Result := KOfflineTable_GetFldIndex(FTable, PAnsiChar(AnsiString(Name)));
  if Result < 0 then
    raise EVlt.Create('there is no field ' + Name);
end;

function TVltTable.GetCount: Integer;
begin
  Result := KOfflineTable_GetRecsCount(FTable);
end;

function TVltTable.GetValue(Rec: Integer; const FieldName: string): string;
begin
  Result := string(AnsiString(KOfflineTable_GetFldValue(FTable, Rec, Field(FieldName))));
end;

procedure TVltTable.SetValue(Rec: Integer; const FieldName, Text: string);
begin
  if KOfflineTable_SetFldValue(FTable, Rec, Field(FieldName), PAnsiChar(AnsiString(Text))) = 0 then
    FDatabase.RaiseNoted('there is no such record');
end;

function TVltTable.Add: Integer;
begin
  Result := KOfflineTable_AddRec(FTable, '', FDatabase.FRecord^.separator);
  if Result < 0 then
    FDatabase.RaiseNoted('the record cannot be added');
end;

procedure TVltTable.Delete(Rec: Integer);
begin
  if KOfflineTable_DelRec(FTable, Rec) = 0 then
    raise EVlt.Create('there is no such record');
end;

function TVltTable.Nid(Rec: Integer): Integer;
begin
  Result := KOfflineTable_GetRecNID(FTable, Rec);
end;

function TVltTable.Search(const FieldName, Text: string): TVltRecordNumbers;
var
  Number, Found: Integer;
begin
  Number := Field(FieldName);
  Found := KOfflineTable_Search(FTable, Number, PAnsiChar(AnsiString(Text)), nil, 0);
  if Found < 0 then
    Found := 0;
  Result := nil;
  SetLength(Result, Found);
  KOfflineTable_Search(FTable, Number, PAnsiChar(AnsiString(Text)), PInteger(Result), Found);
  SortNumbers(Result, 0, Found - 1);
end;

{ TVltDatabase }

constructor TVltDatabase.Create(const Path: string);
var
  Table: Integer;
begin
  inherited Create;
  FRecord := AllocMem(SizeOf(KOfflineDb));
  KOfflineDb_Constructor(FRecord);
  if KOfflineDb_Load(FRecord, PAnsiChar(AnsiString(Path))) = 0 then
    RaiseNoted(Path + ' cannot be opened');
  for Table := 0 to 5 do
    FTables[Table] := TVltTable.Create(Self, @FRecord^.tables[Table]);
end;

destructor TVltDatabase.Destroy;
var
  Table: Integer;
begin
  for Table := 0 to 5 do
    FTables[Table].Free;
  if FRecord <> nil then
  begin
    KOfflineDb_Destructor(FRecord);
    FreeMem(FRecord);
  end;
  inherited Destroy;
end;

function TVltDatabase.GetTable(Index: Integer): TVltTable;
begin
  Result := FTables[Index];
end;

procedure TVltDatabase.RaiseNoted(const Unnoted: string);
begin
  if FRecord^.error_code = KOFFLINE_ERR_NONE then
    raise EVlt.Create(Unnoted);
  raise EVlt.Create(TextOf(DatabaseTexts, FRecord^.error_code) + ': ' +
    string(AnsiString(PAnsiChar(@FRecord^.error_text[0]))), FRecord^.error_code);
end;

procedure TVltDatabase.Save(const Folder: string);
var
  Saved: Integer;
begin
  if Folder = '' then
    Saved := KOfflineDb_Save(FRecord)
  else
    Saved := KOfflineDb_SaveAs(FRecord, PAnsiChar(AnsiString(Folder)));
  if Saved = 0 then
    RaiseNoted('there is no place to save to');
end;

function TVltDatabase.ItemByNid(Nid: Integer): Integer;
begin
  Result := KOfflineDb_GetRecByNID_BITM(FRecord, Nid);
end;

function TVltDatabase.ItemByCode(const Code: string): Integer;
begin
  Result := ItemByNid(KOfflineDb_GetNIDByCCODE(FRecord, PAnsiChar(AnsiString(Code))));
end;

function TVltDatabase.Roots: TVltRecordNumbers;
var
  Count: Integer;
begin
  Count := KOfflineDb_GetRootNodes(FRecord, nil, 0);
  Result := nil;
  SetLength(Result, Count);
  KOfflineDb_GetRootNodes(FRecord, PInteger(Result), Count);
end;

end.
