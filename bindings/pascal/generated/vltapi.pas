// SPDX-License-Identifier: MIT
// What the headers declare: vlt.h, offline.h. Made by bindings/generate.py; not edited by hand.
unit VltApi;

{$IFDEF FPC}
{$MODE DELPHI}
{$PACKRECORDS C}
{$ELSE}
{$ALIGN 8}
{$ENDIF}

interface

const
{$IFDEF MSWINDOWS}
  VltLibrary = 'vlt.dll';
{$ELSE}
  VltLibrary = 'libvlt.so';
{$ENDIF}

  VLT_BLOCK_SIZE = 4096; // unit of all package storage, in bytes
  VLT_NAME_MAX = 512; // characters of a stored name, without its terminator
  VLT_CREDENTIAL_MAX = 16; // bytes of a credential, without its terminator

  // Modes of vlt_file_open. Reading is allowed in every mode.
  VLT_MODE_WRITE = 0; // made when missing; starts at 0; may write anywhere
  VLT_MODE_READ = 1; // must exist; starts at 0; may not write
  VLT_MODE_APPEND = 2; // made when missing; starts at its end; may write at or beyond where it ended then

  // Kinds that vlt_file_get_info and vlt_package_enum report.
  VLT_ENTRY_FILE = 1; // a stored file
  VLT_ENTRY_OTHER = 2; // an entry of another maker: listed, inspected and re-stamped, never opened or deleted

  // Codes that vlt_package_open and vlt_package_open_ex store when they fail.
  VLT_OPEN_NOT_A_PACKAGE = 1; // the host file is not a package
  VLT_OPEN_CREDENTIALS = 2; // neither credential matches
  VLT_OPEN_NO_FILE = 3; // the host file cannot be opened
  VLT_OPEN_ACCESS = 4; // an exclusive opening exists, or the host file may not be written
  VLT_OPEN_ARGUMENT = 5; // negative offset, read_only neither 0 nor 1, no path

  // Codes that vlt_file_open and vltw_file_open store.
  VLT_FILE_OK = 0; // no error
  VLT_FILE_NO_SLOT = 1; // no room for another open file, or the truncation failed
  VLT_FILE_REQUEST = 2; // unknown mode; truncate without VLT_MODE_WRITE; no such package; other name width
  VLT_FILE_ACCESS = 3; // writing through a read-only handle, or in conflict with another open of the file
  VLT_FILE_NOT_FOUND = 4; // no such file to read, or the file cannot be made

  // Codes of KOfflineDb.error_code, with what error_text then holds.
  KOFFLINE_ERR_NONE = 0;
  KOFFLINE_ERR_MEMORY = 1; // no memory for a record, a field or a file; text unchanged
  KOFFLINE_ERR_FILE = 2; // a file cannot be opened, sized, read or written; its full name
  KOFFLINE_ERR_SEPARATOR = 3; // the schema sets no separator; text unchanged
  KOFFLINE_ERR_FIELD = 4; // a field that a table must have is missing; such as "BITM.CCODE"
  KOFFLINE_ERR_INDEX = 5; // an index was asked for on a field the table lacks; the name as asked for
  KOFFLINE_ERR_RECORD = 6; // a record cannot be given its NID, or cannot hold a value; text unchanged
  KOFFLINE_ERR_SCHEMA_WRITE = 7; // the schema cannot be composed; text unchanged
  KOFFLINE_ERR_TABLE = 8; // the schema does not declare a table that must exist; "BITM" or "BBOM"

type
  PKOfflineRecord = ^KOfflineRecord;
  PPKOfflineRecord = ^PKOfflineRecord;
  PKOfflineField = ^KOfflineField;
  PPKOfflineField = ^PKOfflineField;
  PKOfflineTable = ^KOfflineTable;
  PPKOfflineTable = ^PKOfflineTable;
  PKOfflineDb = ^KOfflineDb;
  PPKOfflineDb = ^PKOfflineDb;
  KOfflineRecord = record end; // the values of one record; opaque

  // One field of a table.
  KOfflineField = record
    field_name: array[0..32] of AnsiChar; // as declared, with the table's name and a point in front or without
    index: PInteger; // record numbers in ascending order of the field's value, or null
  end;

  // One table.
  KOfflineTable = record
    db: PKOfflineDb; // receives the error codes and opens the table's files
    table_name: array[0..31] of AnsiChar; // such as "BITM"
    fields: PKOfflineField; // null while the table has no field
    field_count: Integer; // number of fields
    indexes_stale: Integer; // 1 when the indexes may not match the records; the next indexed search mends that
    records: PPKOfflineRecord; // null until the first record is added
    record_capacity: Integer; // slots in `records`
    record_count: Integer; // number of records
    nid_watermark: Integer; // base of the NID given out last, which is one higher; -1: none yet
  end;

  // One database.
  KOfflineDb = record
    package: Integer; // handle of the package it was loaded from, which it owns; 0 for a directory
    path: array[0..259] of AnsiChar; // path of the last successful load or KOfflineDb_SaveAs; empty at first
    user_data_size: Integer; // bytes in user_data
    user_data: Pointer; // block of KOfflineDb_InitUserData, or null
    root_nid: Integer; // NID of the root item; -1: none chosen
    // field numbers for the KOfflineDb_GetFld_ functions, in their order; -1: no such field
    field_slots: array[0..26] of Integer;
    tables: array[0..5] of KOfflineTable; // BITM, BBOM, BDWG, BITDWG, BCAPP, BITCAP
    separator: array[0..15] of AnsiChar; // what stands between two values in the data files; empty at first
    check_in_rec: Integer; // a record number of the caller's; -1 at first
    error_code: Integer; // a KOFFLINE_ERR_ code
    error_text: array[0..255] of AnsiChar; // detail of the last failure that had one
  end;

// Creates a package in a host file of its own; an existing file of that name is overwritten. A package that is open,
// here or in another process, is ruined by that.
//   path              the host file
//   wide_names        0: narrow names; otherwise wide names
//   size_mb           size in mebibytes, up to 1048575; 0 or less gives the smallest package, 8192 bytes.
//                     A package grows beyond its size when it is full.
//   read_credential   grants read-only access; null counts as empty; at most 16 bytes
//   write_credential  grants read/write access; null or empty: everybody may write
// Returns 1; 0 when a credential or the size is too long (the file is not touched then) or the file cannot be
// written whole (it is removed then).
function vlt_package_create(path: PAnsiChar; wide_names: Integer; size_mb: Integer; read_credential: PAnsiChar;
  write_credential: PAnsiChar): Integer; cdecl; external VltLibrary;

// Opens a package that lies at an offset in its host file. A path that is open already, in any letter case, gives a
// second handle that shares the first one's package: the host file is not opened again, and read_only_file,
// exclusive and the offset are not used.
//   path              the host file; it must exist
//   read_only_file    not 0: the host file is opened for reading only, and the handle is read-only
//   offset_low, offset_high  the two halves of the offset in bytes; never negative
//   read_only         1: this handle may not write; 0: it may, if the write credential matches
//   exclusive         not 0: no further opening of this path in this process while this one lasts (first openings
//                     only)
//   read_credential, write_credential  compared with those of the package; null counts as empty. With only the read
//                     credential right, the handle is read-only.
//   wide_names_out    null, or receives 1 when the package stores wide names, else 0
//   error_out         null, or receives a VLT_OPEN_ code on failure; untouched on success
// Returns a package handle, or 0. The handle is closed with vlt_package_close.
function vlt_package_open_ex(path: PAnsiChar; read_only_file: Integer; offset_low: Cardinal; offset_high: Integer;
  read_only: Integer; exclusive: Integer; read_credential: PAnsiChar; write_credential: PAnsiChar;
  wide_names_out: PInteger; error_out: PInteger): Integer; cdecl; external VltLibrary;

// vlt_package_open_ex with read_only_file 0 and offset 0.
function vlt_package_open(path: PAnsiChar; read_only: Integer; exclusive: Integer; read_credential: PAnsiChar;
  write_credential: PAnsiChar; wide_names_out: PInteger; error_out: PInteger): Integer; cdecl; external VltLibrary;

// Returns 1 when the package stores wide names, 0 when narrow, -1 for a handle that is not open.
function vlt_package_is_unicode_files(package: Integer): Integer; cdecl; external VltLibrary;

// Closes a package handle and the files opened through it. Other handles of the package stay usable.
// Returns 1, or 0 for a handle that is not open.
function vlt_package_close(package: Integer): Integer; cdecl; external VltLibrary;

// Closes every package handle. Unloading the library does the same.
procedure vlt_package_close_all; cdecl; external VltLibrary;

// Returns `size` uninitialised bytes of the library's heap, or null. Given back with vlt_free_mem.
function vlt_alloc_mem(size: NativeUInt): Pointer; cdecl; external VltLibrary;

// Gives a block of vlt_alloc_mem back; null is ignored.
procedure vlt_free_mem(pointer_: Pointer); cdecl; external VltLibrary;

// Opens a stored file. Any number of readers may share a file with at most one writer or appender, over all handles
// of the package; an exclusive open shares with nobody.
//   mode       a VLT_MODE_ value
//   exclusive  not 0: no other open of the file may exist, now or while this one lasts
//   truncate   not 0: the file is emptied; VLT_MODE_WRITE only
//   error      null, or receives a VLT_FILE_ code: VLT_FILE_OK, or why the open failed
// Returns a file handle, or 0. It is closed with vlt_file_close, or together with its package handle. A package
// handle holds up to 65535 open files. When the host file fails while the entry of a truncated file
// (VLT_FILE_NO_SLOT) or of a new one (VLT_FILE_NOT_FOUND) is written, that file is empty for this session, and for
// good once its entry has been written: by any later change of the file that succeeds. An open that fails for want of
// memory makes and empties nothing.
function vlt_file_open(package: Integer; name: PAnsiChar; mode: Cardinal; exclusive: Integer; truncate: Integer;
  error: PCardinal): Integer; cdecl; external VltLibrary;

// Opens a stored file. Any number of readers may share a file with at most one writer or appender, over all handles
// of the package; an exclusive open shares with nobody.
//   mode       a VLT_MODE_ value
//   exclusive  not 0: no other open of the file may exist, now or while this one lasts
//   truncate   not 0: the file is emptied; VLT_MODE_WRITE only
//   error      null, or receives a VLT_FILE_ code: VLT_FILE_OK, or why the open failed
// Returns a file handle, or 0. It is closed with vlt_file_close, or together with its package handle. A package
// handle holds up to 65535 open files. When the host file fails while the entry of a truncated file
// (VLT_FILE_NO_SLOT) or of a new one (VLT_FILE_NOT_FOUND) is written, that file is empty for this session, and for
// good once its entry has been written: by any later change of the file that succeeds. An open that fails for want of
// memory makes and empties nothing.
function vltw_file_open(package: Integer; name: PWideChar; mode: Cardinal; exclusive: Integer; truncate: Integer;
  error: PCardinal): Integer; cdecl; external VltLibrary;

// Closes a file handle. Returns 1, also when it was closed before; 0 for a handle that cannot be one.
function vlt_file_close(file_: Cardinal): Integer; cdecl; external VltLibrary;

// Reads up to `length` bytes at the position and moves the position past them; sets the file's accessed stamp, which
// stays in memory while the package's first handle is read-only (once that is closed, the lowest of those left).
// Returns how many bytes were read: fewer than asked at the end of the file; 0 at the end and on failure, and the
// position stays. vlt_file_is_eof tells the two apart: 1 at the end, 0 after a failure.
function vlt_file_read(file_: Cardinal; buffer: Pointer; length: Integer): Integer; cdecl; external VltLibrary;

// Writes `length` bytes at the position and moves the position past them; the file and the package grow as needed;
// sets the accessed and written stamps. Returns 1 when all bytes are in the host file; also for a null buffer or a
// length below 1, which write nothing. 0 on failure: position and length stay, part of the bytes may be stored.
function vlt_file_write(file_: Cardinal; buffer: Pointer; length: Integer): Integer; cdecl; external VltLibrary;

// Moves the position, in bytes from the start; negative or beyond the end means the end. Returns 1 or 0.
function vlt_file_set_pos(file_: Cardinal; position: Int64): Integer; cdecl; external VltLibrary;

// Moves the position to the start. Returns 1 or 0.
function vlt_file_set_pos_bof(file_: Cardinal): Integer; cdecl; external VltLibrary;

// Moves the position to the end. Returns 1 or 0.
function vlt_file_set_pos_eof(file_: Cardinal): Integer; cdecl; external VltLibrary;

// Stores the position, in bytes from the start; 0 when it fails. Returns 1, or 0 for a bad handle or no result.
function vlt_file_get_pos(file_: Cardinal; position: PInt64): Integer; cdecl; external VltLibrary;

// Returns 1 at or beyond the end, 0 before it, -1 for a handle that is not open.
function vlt_file_is_eof(file_: Cardinal): Integer; cdecl; external VltLibrary;

// Returns 1 at the start, 0 elsewhere, -1 for a handle that cannot be one.
function vlt_file_is_bof(file_: Cardinal): Integer; cdecl; external VltLibrary;

// Reports on a stored file without opening or changing it; null results are skipped.
//   kind      VLT_ENTRY_FILE or VLT_ENTRY_OTHER
//   size      length in bytes
//   created, accessed, written  time stamps
// Returns 1, or 0 when there is no such file; the results are untouched then.
function vlt_file_get_info(package: Integer; name: PAnsiChar; kind: PCardinal; size: PInt64; created: PDouble;
  accessed: PDouble; written: PDouble): Integer; cdecl; external VltLibrary;

// Reports on a stored file without opening or changing it; null results are skipped.
//   kind      VLT_ENTRY_FILE or VLT_ENTRY_OTHER
//   size      length in bytes
//   created, accessed, written  time stamps
// Returns 1, or 0 when there is no such file; the results are untouched then.
function vltw_file_get_info(package: Integer; name: PWideChar; kind: PCardinal; size: PInt64; created: PDouble;
  accessed: PDouble; written: PDouble): Integer; cdecl; external VltLibrary;

// Sets the three stamps of a stored file to the values given, whatever they are; the file may be open and the
// handle read-only. Returns 1; 0 when there is no such file, or when its entry cannot be written: this session shows
// the new stamps then, and the host file has them once a later change of the file has succeeded.
function vlt_file_set_time(package: Integer; name: PAnsiChar; created: Double; accessed: Double;
  written: Double): Integer; cdecl; external VltLibrary;

// Sets the three stamps of a stored file to the values given, whatever they are; the file may be open and the
// handle read-only. Returns 1; 0 when there is no such file, or when its entry cannot be written: this session shows
// the new stamps then, and the host file has them once a later change of the file has succeeded.
function vltw_file_set_time(package: Integer; name: PWideChar; created: Double; accessed: Double;
  written: Double): Integer; cdecl; external VltLibrary;

// Deletes a stored file and frees its blocks, for a read-only handle too. Returns 1; 0 when there is no such file,
// when it is open through any handle of the package (nothing changes then), or when the host file fails or may not be
// written. After that last failure the file is empty or gone for this session, and for good once its entry has been
// written.
function vlt_file_delete(package: Integer; name: PAnsiChar): Integer; cdecl; external VltLibrary;

// Deletes a stored file and frees its blocks, for a read-only handle too. Returns 1; 0 when there is no such file,
// when it is open through any handle of the package (nothing changes then), or when the host file fails or may not be
// written. After that last failure the file is empty or gone for this session, and for good once its entry has been
// written.
function vltw_file_delete(package: Integer; name: PWideChar): Integer; cdecl; external VltLibrary;

// Lists the stored files, one a call, in the order of the directory.
//   cursor  0 (or less) for the first; then what the call before returned
//   name    null, or room for VLT_NAME_MAX + 1 characters
//   kind, size, created, accessed, written  as for vlt_file_get_info
// Returns the next cursor; 0 when there is no further file (the results are untouched then), or for a bad handle.
// Files may come and go between two calls.
function vlt_package_enum(package: Integer; cursor: Integer; name: PAnsiChar; kind: PCardinal; size: PInt64;
  created: PDouble; accessed: PDouble; written: PDouble): Integer; cdecl; external VltLibrary;

// Lists the stored files, one a call, in the order of the directory.
//   cursor  0 (or less) for the first; then what the call before returned
//   name    null, or room for VLT_NAME_MAX + 1 characters
//   kind, size, created, accessed, written  as for vlt_file_get_info
// Returns the next cursor; 0 when there is no further file (the results are untouched then), or for a bad handle.
// Files may come and go between two calls.
function vltw_package_enum(package: Integer; cursor: Integer; name: PWideChar; kind: PCardinal; size: PInt64;
  created: PDouble; accessed: PDouble; written: PDouble): Integer; cdecl; external VltLibrary;

// Makes an empty table in storage of any contents.
//   db    the database that receives the table's errors and opens its files; may be null for a table that is used
//         in memory only
//   name  null, or the table's name; at most 31 bytes are kept
procedure KOfflineTable_Constructor(table: PKOfflineTable; db: PKOfflineDb;
  name: PAnsiChar); cdecl; external VltLibrary;

// Gives back everything the table owns. It is not used again until it is constructed anew.
procedure KOfflineTable_Destructor(table: PKOfflineTable); cdecl; external VltLibrary;

// Removes every record and every index; the fields stay. NIDs given out so far are not given out again.
procedure KOfflineTable_Clear(table: PKOfflineTable); cdecl; external VltLibrary;

// Returns the database given to the constructor.
function KOfflineTable_GetOfflineDb(table: PKOfflineTable): PKOfflineDb; cdecl; external VltLibrary;

// Returns the table's name; the text is the table's.
function KOfflineTable_GetTblName(table: PKOfflineTable): PAnsiChar; cdecl; external VltLibrary;

// Adds a field at the end; every record is without a value for it.
//   name  at most 32 bytes
// Returns its number, or that of the field with this name that is there already; -1 for no name, an empty one, one
// that is too long, or when memory runs out (KOFFLINE_ERR_MEMORY).
function KOfflineTable_AddFld(table: PKOfflineTable; name: PAnsiChar): Integer; cdecl; external VltLibrary;

// Returns the number of fields.
function KOfflineTable_GetFldsCount(table: PKOfflineTable): Integer; cdecl; external VltLibrary;

// Returns the number of the first field with this name, or -1.
function KOfflineTable_GetFldIndex(table: PKOfflineTable; name: PAnsiChar): Integer; cdecl; external VltLibrary;

// Copies a field's name as it was declared.
//   name  null, or room for 33 bytes; empty when there is no such field
// Returns 1, or 0 for a field number out of range.
function KOfflineTable_GetFldName(table: PKOfflineTable; field: Integer;
  name: PAnsiChar): Integer; cdecl; external VltLibrary;

// Returns the number of records.
function KOfflineTable_GetRecsCount(table: PKOfflineTable): Integer; cdecl; external VltLibrary;

// Adds a record at the end from one line in the form of the data files: values in field order, trimmed of blanks
// and tabs, then unescaped as KOfflineDb_StrSwap does. Surplus values are ignored; fields beyond the last value have
// none. A record without NID, or with an empty one, is given the next free NID when the table has that field.
//   separator  what stands between two values; one or more characters
// Returns the record's number; -1 when memory runs out (KOFFLINE_ERR_MEMORY), or when the record cannot be given its
// NID or a value would begin beyond byte 32767 of the record (KOFFLINE_ERR_RECORD). The table is unchanged then.
function KOfflineTable_AddRec(table: PKOfflineTable; line: PAnsiChar;
  separator: PAnsiChar): Integer; cdecl; external VltLibrary;

// Changes one value. The empty text over a value leaves an empty value, and no value where there was none.
//   value  the text as it is, not escaped; null counts as empty
// Returns 1; 0 for a number out of range, when memory runs out (KOFFLINE_ERR_MEMORY) or when a value would begin
// beyond byte 32767 of the record (KOFFLINE_ERR_RECORD); nothing is changed then.
function KOfflineTable_SetFldValue(table: PKOfflineTable; rec: Integer; field: Integer;
  value: PAnsiChar): Integer; cdecl; external VltLibrary;

// Returns a value's text; null for a number out of range or a record without value for the field.
function KOfflineTable_GetFldValue(table: PKOfflineTable; rec: Integer;
  field: Integer): PAnsiChar; cdecl; external VltLibrary;

// Deletes a record; those after it move down by one, in the indexes too. Returns 1, or 0 for a number out of range.
function KOfflineTable_DelRec(table: PKOfflineTable; rec: Integer): Integer; cdecl; external VltLibrary;

// Adds a copy of a record at the end, with a NID of its own. Returns the copy's number; -1 for a number out of range,
// when memory runs out (KOFFLINE_ERR_MEMORY) or no NID can be given (KOFFLINE_ERR_RECORD).
function KOfflineTable_CopyRec(table: PKOfflineTable; rec: Integer): Integer; cdecl; external VltLibrary;

// Returns a record's NID; -1 when it has none, or none that is a whole number.
function KOfflineTable_GetRecNID(table: PKOfflineTable; rec: Integer): Integer; cdecl; external VltLibrary;

// Sets a record's NID; it is not compared with those of other records. Returns 1; 0 for a table without NID field
// or where KOfflineTable_SetFldValue fails.
function KOfflineTable_SetRecNID(table: PKOfflineTable; rec: Integer;
  nid: Integer): Integer; cdecl; external VltLibrary;

// Writes the records as a data file: a line a record, values in field order, escaped as KOfflineDb_StrSwap does,
// each line ended by CR LF.
//   path  with a package open in the table's database, the stored file named by the path's last component; else a
//         disk file. Made, or emptied when it is there.
// Returns 1; 0 when the file cannot be opened or written (KOFFLINE_ERR_FILE); it keeps what was written so far.
function KOfflineTable_WriteFile(table: PKOfflineTable; path: PAnsiChar;
  separator: PAnsiChar): Integer; cdecl; external VltLibrary;

// Builds the index of a field, or builds it anew; the field keeps it, through changes of the table, until the table
// is cleared or destroyed. A table that has held no record since then keeps the field without index.
// Returns 1; 0 for a field that the table lacks (KOFFLINE_ERR_INDEX) or when memory runs out (KOFFLINE_ERR_MEMORY).
function KOfflineTable_LoadIdx(table: PKOfflineTable; name: PAnsiChar): Integer; cdecl; external VltLibrary;

// Returns the index of a field as it is: record numbers in ascending order of the value, for the records that
// existed when it was last built or mended; null when there is none. A search on an indexed field makes it current.
function KOfflineTable_GetIndexRecs(table: PKOfflineTable; field: Integer): PInteger; cdecl; external VltLibrary;

// Finds the records whose value equals `key`, letter case of A to Z ignored: in index order on an indexed field, in
// record order by a scan otherwise. The empty key finds records with an empty value or without one.
//   recs      null, or room for `capacity` record numbers; the first matches are stored
// Returns how many records match, which may be more than `capacity`; -1 for a field number out of range, and on an
// indexed field when none match; 0 when none match in a scan.
function KOfflineTable_Search(table: PKOfflineTable; field: Integer; key: PAnsiChar; recs: PInteger;
  capacity: Integer): Integer; cdecl; external VltLibrary;

// Makes an empty database, its six tables included, in storage of any contents.
procedure KOfflineDb_Constructor(db: PKOfflineDb); cdecl; external VltLibrary;

// Destroys the tables, closes the package and gives the user data back.
procedure KOfflineDb_Destructor(db: PKOfflineDb); cdecl; external VltLibrary;

// Destroys and constructs: the database is as new.
procedure KOfflineDb_Reset(db: PKOfflineDb); cdecl; external VltLibrary;

// Gives the database a block of the caller's own; it lives until it is replaced, or the database destroyed or reset.
//   size  bytes, 0 or more
//   keep  not 0: the old block's contents are copied to the start of the new one, provided it is at least as large
// Returns the block, zero but for what was kept; null when memory runs out, and the old block stays.
function KOfflineDb_InitUserData(db: PKOfflineDb; size: Integer; keep: Integer): Pointer; cdecl; external VltLibrary;

// Returns the caller's block, or null.
//   size_out  null, or receives its size in bytes
function KOfflineDb_GetUserData(db: PKOfflineDb; size_out: PInteger): Pointer; cdecl; external VltLibrary;

// Returns the handle of the database's package; 0 when it lives in a directory or nothing is loaded.
function KOfflineDb_GetPackageHandle(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Copies the path of the last successful load or KOfflineDb_SaveAs.
//   dst  null, or room for 260 bytes
procedure KOfflineDb_GetPath(db: PKOfflineDb; dst: PAnsiChar); cdecl; external VltLibrary;

// Escapes or unescapes one value as the data files hold it: backslash, comma, tab, CR, LF and slash become a
// backslash followed by '\', 'c', 't', 'r', 'n', '/'.
//   dst        receives the text; may be `src` itself. When it fails, what was made before the failure.
//   dst_size   its room in bytes, the terminator included; negative: no limit
//   direction  0: unescapes; otherwise escapes
// Returns 1; 0 when the text does not fit or holds an escape that stands for nothing.
function KOfflineDb_StrSwap(src: PAnsiChar; dst: PAnsiChar; dst_size: Integer;
  direction: Integer): Integer; cdecl; external VltLibrary;

// Loads a database into a record that is newly constructed or reset. Fields that a table lacks and can do without
// are added to it; the NID, code and link fields are indexed.
//   path  a package file, which is opened for reading and writing and stays open, or a directory
// Returns 1; 0 with the reason in error_code, which stays KOFFLINE_ERR_NONE for a package that cannot be opened.
// What was loaded before the failure stays; the record is reset before it is loaded again.
// A load gives no credentials and needs a host file that it may write: a package with a read credential or in a
// read-only host file is not loaded, and one with a write credential only is loaded but not saved. Instead, open it
// with vlt_package_open, copy the seven files into a directory, load that, and copy them back after a save.
function KOfflineDb_Load(db: PKOfflineDb; path: PAnsiChar): Integer; cdecl; external VltLibrary;

// Writes the database to where it was loaded from or last saved to. Returns 1; 0 as KOfflineDb_SaveAs, or when there
// is no such place.
function KOfflineDb_Save(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Writes all seven files. A database that was loaded from a package is written into that package whatever the path;
// any other into the directory `path`, which must exist.
// Returns 1; 0 for no path or an empty one, when a file cannot be opened or a data file not written
// (KOFFLINE_ERR_FILE), or when the schema cannot be composed (KOFFLINE_ERR_SCHEMA_WRITE). Files written before the
// failure keep their new contents.
function KOfflineDb_SaveAs(db: PKOfflineDb; path: PAnsiChar): Integer; cdecl; external VltLibrary;

// Return a table of the database.
function KOfflineDb_GetTable_BITM(db: PKOfflineDb): PKOfflineTable; cdecl; external VltLibrary;

// Return a table of the database.
function KOfflineDb_GetTable_BBOM(db: PKOfflineDb): PKOfflineTable; cdecl; external VltLibrary;

// Return a table of the database.
function KOfflineDb_GetTable_BDWG(db: PKOfflineDb): PKOfflineTable; cdecl; external VltLibrary;

// Return a table of the database.
function KOfflineDb_GetTable_BITDWG(db: PKOfflineDb): PKOfflineTable; cdecl; external VltLibrary;

// Return a table of the database.
function KOfflineDb_GetTable_BCAPP(db: PKOfflineDb): PKOfflineTable; cdecl; external VltLibrary;

// Return a table of the database.
function KOfflineDb_GetTable_BITCAP(db: PKOfflineDb): PKOfflineTable; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BITM_NID(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BITM_CCODE(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BITM_CNAME(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BITM_CSRC(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BBOM_NID(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BBOM_NPID(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BBOM_NCID(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BBOM_FCOUNT(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BDWG_NID(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BDWG_CCODE(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BDWG_CFILE(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BDWG_CSRC(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BDWG_CASM(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BDWG_COFLNMODI(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BDWG_NOFLNITMID(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BITDWG_NID(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BITDWG_NPID(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BITDWG_NCID(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BCAPP_NID(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BCAPP_CCODE(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BCAPP_CFILE(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BCAPP_CSRC(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BCAPP_COFLNMODI(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BCAPP_NOFLNITMID(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BITCAP_NID(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BITCAP_NPID(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
// field. FCOUNT is looked for again while it is missing.
function KOfflineDb_GetFld_BITCAP_NCID(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".
function KOfflineDb_GetRecByNID_BITM(db: PKOfflineDb; nid: Integer): Integer; cdecl; external VltLibrary;

// Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".
function KOfflineDb_GetRecByNID_BBOM(db: PKOfflineDb; nid: Integer): Integer; cdecl; external VltLibrary;

// Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".
function KOfflineDb_GetRecByNID_BDWG(db: PKOfflineDb; nid: Integer): Integer; cdecl; external VltLibrary;

// Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".
function KOfflineDb_GetRecByNID_BITDWG(db: PKOfflineDb; nid: Integer): Integer; cdecl; external VltLibrary;

// Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".
function KOfflineDb_GetRecByNID_BCAPP(db: PKOfflineDb; nid: Integer): Integer; cdecl; external VltLibrary;

// Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".
function KOfflineDb_GetRecByNID_BITCAP(db: PKOfflineDb; nid: Integer): Integer; cdecl; external VltLibrary;

// Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.
function KOfflineDb_GetNIDByRec_BITM(db: PKOfflineDb; rec: Integer): Integer; cdecl; external VltLibrary;

// Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.
function KOfflineDb_GetNIDByRec_BBOM(db: PKOfflineDb; rec: Integer): Integer; cdecl; external VltLibrary;

// Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.
function KOfflineDb_GetNIDByRec_BDWG(db: PKOfflineDb; rec: Integer): Integer; cdecl; external VltLibrary;

// Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.
function KOfflineDb_GetNIDByRec_BITDWG(db: PKOfflineDb; rec: Integer): Integer; cdecl; external VltLibrary;

// Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.
function KOfflineDb_GetNIDByRec_BCAPP(db: PKOfflineDb; rec: Integer): Integer; cdecl; external VltLibrary;

// Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.
function KOfflineDb_GetNIDByRec_BITCAP(db: PKOfflineDb; rec: Integer): Integer; cdecl; external VltLibrary;

// Copy the code of a record, by its number: of an item, a drawing, a process plan.
//   dst  null, or room for the longest code of the table
// Return 1, with an empty code for a record that has none or does not exist; 0 with an empty code for a negative
// number or a table without codes.
function KOfflineDb_GetCCODEByRec(db: PKOfflineDb; rec: Integer; dst: PAnsiChar): Integer; cdecl; external VltLibrary;

// Copy the code of a record, by its number: of an item, a drawing, a process plan.
//   dst  null, or room for the longest code of the table
// Return 1, with an empty code for a record that has none or does not exist; 0 with an empty code for a negative
// number or a table without codes.
function KOfflineDb_GetCCODEByRec_BDWG(db: PKOfflineDb; rec: Integer;
  dst: PAnsiChar): Integer; cdecl; external VltLibrary;

// Copy the code of a record, by its number: of an item, a drawing, a process plan.
//   dst  null, or room for the longest code of the table
// Return 1, with an empty code for a record that has none or does not exist; 0 with an empty code for a negative
// number or a table without codes.
function KOfflineDb_GetCCODEByRec_BCAPP(db: PKOfflineDb; rec: Integer;
  dst: PAnsiChar): Integer; cdecl; external VltLibrary;

// Copy the code of a record, by its NID: of an item, a drawing, a process plan.
//   dst  null, or room for the longest code of the table
// Return 1, with an empty code for a record without one; 0 with an empty code when no record has this NID, or it is
// below 1.
function KOfflineDb_GetCCODEByNID(db: PKOfflineDb; nid: Integer; dst: PAnsiChar): Integer; cdecl; external VltLibrary;

// Copy the code of a record, by its NID: of an item, a drawing, a process plan.
//   dst  null, or room for the longest code of the table
// Return 1, with an empty code for a record without one; 0 with an empty code when no record has this NID, or it is
// below 1.
function KOfflineDb_GetCCODEByNID_BDWG(db: PKOfflineDb; nid: Integer;
  dst: PAnsiChar): Integer; cdecl; external VltLibrary;

// Copy the code of a record, by its NID: of an item, a drawing, a process plan.
//   dst  null, or room for the longest code of the table
// Return 1, with an empty code for a record without one; 0 with an empty code when no record has this NID, or it is
// below 1.
function KOfflineDb_GetCCODEByNID_BCAPP(db: PKOfflineDb; nid: Integer;
  dst: PAnsiChar): Integer; cdecl; external VltLibrary;

// Returns the NID of the item with this code; -1 when there is none, or no code is given.
function KOfflineDb_GetNIDByCCODE(db: PKOfflineDb; code: PAnsiChar): Integer; cdecl; external VltLibrary;

// Makes an item the root of the item tree; the choice is saved with the database.
//   rec  its record number in BITM
// Returns 1; 0 for an item without a NID of 1 or more, and the root stays.
function KOfflineDb_SetRootNode(db: PKOfflineDb; rec: Integer): Integer; cdecl; external VltLibrary;

// Lists the tops of the item tree: the root item alone, or the items without a parent when no root is chosen or the
// root item is gone.
//   recs  null, or room for `max` record numbers of BITM; the first tops are stored
// Returns how many there are, which may be more than `max`.
function KOfflineDb_GetRootNodes(db: PKOfflineDb; recs: PInteger; max: Integer): Integer; cdecl; external VltLibrary;

// Lists the items that have a NID and are the child of no bill-of-material line, in record order; every item when
// there is no such line at all.
//   recs  null, or room for `max` record numbers of BITM; the first items are stored
// Returns how many there are, which may be more than `max`.
function KOfflineDb_GetNoParentNodes(db: PKOfflineDb; recs: PInteger;
  max: Integer): Integer; cdecl; external VltLibrary;

// Keeps a record number for the caller; the library does not look at it.
procedure KOfflineDb_SetCheckInRec(db: PKOfflineDb; rec: Integer); cdecl; external VltLibrary;

// Returns the number kept by KOfflineDb_SetCheckInRec; -1 at first.
function KOfflineDb_GetCheckInRec(db: PKOfflineDb): Integer; cdecl; external VltLibrary;

// Copies a stored file to a disk file, which is made, or emptied when it is there. Returns 1 once both are open,
// even when the copy is cut short by a full disk; 0 when one cannot be opened. When it is the stored file, an empty
// disk file stays behind.
function KOfflineDb_GetPackageFile(db: PKOfflineDb; stored_name: PAnsiChar;
  disk_path: PAnsiChar): Integer; cdecl; external VltLibrary;

// Copies a disk file into the package; the stored file is made, or emptied when it is there. Mind the order of the
// arguments. Returns 1 once both are open, even when the copy is cut short; 0 when one cannot be opened.
function KOfflineDb_SavePackageFile(db: PKOfflineDb; disk_path: PAnsiChar;
  stored_name: PAnsiChar): Integer; cdecl; external VltLibrary;

// Returns 1 when the package holds this file, else 0.
function KOfflineDb_CheckPackageFileExist(db: PKOfflineDb;
  stored_name: PAnsiChar): Integer; cdecl; external VltLibrary;

implementation

end.
