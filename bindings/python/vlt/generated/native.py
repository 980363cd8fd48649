# SPDX-License-Identifier: MIT
"""What the headers declare: vlt.h, offline.h. Made by bindings/generate.py; not edited by hand.

Text arguments take `bytes` or None, never `str`; wide text is an array of 16-bit units.
"""
from ctypes import POINTER, Structure, c_char, c_char_p, c_double, c_int32, c_int64, c_size_t
from ctypes import c_uint16, c_uint32, c_void_p

from .._library import declare as _declare

VLT_BLOCK_SIZE = 4096  # unit of all package storage, in bytes
VLT_NAME_MAX = 512  # characters of a stored name, without its terminator
VLT_CREDENTIAL_MAX = 16  # bytes of a credential, without its terminator

# Modes of vlt_file_open. Reading is allowed in every mode.
VLT_MODE_WRITE = 0  # made when missing; starts at 0; may write anywhere
VLT_MODE_READ = 1  # must exist; starts at 0; may not write
VLT_MODE_APPEND = 2  # made when missing; starts at its end; may write at or beyond where it ended then

# Kinds that vlt_file_get_info and vlt_package_enum report.
VLT_ENTRY_FILE = 1  # a stored file
VLT_ENTRY_OTHER = 2  # an entry of another maker: listed, inspected and re-stamped, never opened or deleted

# Codes that vlt_package_open and vlt_package_open_ex store when they fail.
VLT_OPEN_NOT_A_PACKAGE = 1  # the host file is not a package
VLT_OPEN_CREDENTIALS = 2  # neither credential matches
VLT_OPEN_NO_FILE = 3  # the host file cannot be opened
VLT_OPEN_ACCESS = 4  # an exclusive opening exists, or the host file may not be written
VLT_OPEN_ARGUMENT = 5  # negative offset, read_only neither 0 nor 1, no path

# Codes that vlt_file_open and vltw_file_open store.
VLT_FILE_OK = 0  # no error
VLT_FILE_NO_SLOT = 1  # no room for another open file, or the truncation failed
VLT_FILE_REQUEST = 2  # unknown mode; truncate without VLT_MODE_WRITE; no such package; other name width
VLT_FILE_ACCESS = 3  # writing through a read-only handle, or in conflict with another open of the file
VLT_FILE_NOT_FOUND = 4  # no such file to read, or the file cannot be made

# Codes of KOfflineDb.error_code, with what error_text then holds.
KOFFLINE_ERR_NONE = 0
KOFFLINE_ERR_MEMORY = 1  # no memory for a record, a field or a file; text unchanged
KOFFLINE_ERR_FILE = 2  # a file cannot be opened, sized, read or written; its full name
KOFFLINE_ERR_SEPARATOR = 3  # the schema sets no separator; text unchanged
KOFFLINE_ERR_FIELD = 4  # a field that a table must have is missing; such as "BITM.CCODE"
KOFFLINE_ERR_INDEX = 5  # an index was asked for on a field the table lacks; the name as asked for
KOFFLINE_ERR_RECORD = 6  # a record cannot be given its NID, or cannot hold a value; text unchanged
KOFFLINE_ERR_SCHEMA_WRITE = 7  # the schema cannot be composed; text unchanged
KOFFLINE_ERR_TABLE = 8  # the schema does not declare a table that must exist; "BITM" or "BBOM"


class KOfflineRecord(Structure):
    """the values of one record; opaque"""


class KOfflineField(Structure):
    """One field of a table."""


class KOfflineTable(Structure):
    """One table."""


class KOfflineDb(Structure):
    """One database."""


KOfflineField._fields_ = [
    ("field_name", c_char * 33),  # as declared, with the table's name and a point in front or without
    ("index", POINTER(c_int32)),  # record numbers in ascending order of the field's value, or null
]


KOfflineTable._fields_ = [
    ("db", POINTER(KOfflineDb)),  # receives the error codes and opens the table's files
    ("table_name", c_char * 32),  # such as "BITM"
    ("fields", POINTER(KOfflineField)),  # null while the table has no field
    ("field_count", c_int32),  # number of fields
    ("indexes_stale", c_int32),  # 1 when the indexes may not match the records; the next indexed search mends that
    ("records", POINTER(POINTER(KOfflineRecord))),  # null until the first record is added
    ("record_capacity", c_int32),  # slots in `records`
    ("record_count", c_int32),  # number of records
    ("nid_watermark", c_int32),  # base of the NID given out last, which is one higher; -1: none yet
]


KOfflineDb._fields_ = [
    ("package", c_int32),  # handle of the package it was loaded from, which it owns; 0 for a directory
    ("path", c_char * 260),  # path of the last successful load or KOfflineDb_SaveAs; empty at first
    ("user_data_size", c_int32),  # bytes in user_data
    ("user_data", c_void_p),  # block of KOfflineDb_InitUserData, or null
    ("root_nid", c_int32),  # NID of the root item; -1: none chosen
    # field numbers for the KOfflineDb_GetFld_ functions, in their order; -1: no such field
    ("field_slots", c_int32 * 27),
    ("tables", KOfflineTable * 6),  # BITM, BBOM, BDWG, BITDWG, BCAPP, BITCAP
    ("separator", c_char * 16),  # what stands between two values in the data files; empty at first
    ("check_in_rec", c_int32),  # a record number of the caller's; -1 at first
    ("error_code", c_int32),  # a KOFFLINE_ERR_ code
    ("error_text", c_char * 256),  # detail of the last failure that had one
]

vlt_package_create = _declare("vlt_package_create", c_int32, ("path", c_char_p), ("wide_names", c_int32),
    ("size_mb", c_int32), ("read_credential", c_char_p), ("write_credential", c_char_p),
    doc="""Creates a package in a host file of its own; an existing file of that name is overwritten. A package that is open,
    here or in another process, is ruined by that.
      path              the host file
      wide_names        0: narrow names; otherwise wide names
      size_mb           size in mebibytes, up to 1048575; 0 or less gives the smallest package, 8192 bytes.
                        A package grows beyond its size when it is full.
      read_credential   grants read-only access; null counts as empty; at most 16 bytes
      write_credential  grants read/write access; null or empty: everybody may write
    Returns 1; 0 when a credential or the size is too long (the file is not touched then) or the file cannot be
    written whole (it is removed then).
    """)

vlt_package_open_ex = _declare("vlt_package_open_ex", c_int32, ("path", c_char_p), ("read_only_file", c_int32),
    ("offset_low", c_uint32), ("offset_high", c_int32), ("read_only", c_int32), ("exclusive", c_int32),
    ("read_credential", c_char_p), ("write_credential", c_char_p), ("wide_names_out", POINTER(c_int32)),
    ("error_out", POINTER(c_int32)),
    doc="""Opens a package that lies at an offset in its host file. A path that is open already, in any letter case, gives a
    second handle that shares the first one's package: the host file is not opened again, and read_only_file,
    exclusive and the offset are not used.
      path              the host file; it must exist
      read_only_file    not 0: the host file is opened for reading only, and the handle is read-only
      offset_low, offset_high  the two halves of the offset in bytes; never negative
      read_only         1: this handle may not write; 0: it may, if the write credential matches
      exclusive         not 0: no further opening of this path in this process while this one lasts (first openings
                        only)
      read_credential, write_credential  compared with those of the package; null counts as empty. With only the read
                        credential right, the handle is read-only.
      wide_names_out    null, or receives 1 when the package stores wide names, else 0
      error_out         null, or receives a VLT_OPEN_ code on failure; untouched on success
    Returns a package handle, or 0. The handle is closed with vlt_package_close.
    """)

vlt_package_open = _declare("vlt_package_open", c_int32, ("path", c_char_p), ("read_only", c_int32),
    ("exclusive", c_int32), ("read_credential", c_char_p), ("write_credential", c_char_p),
    ("wide_names_out", POINTER(c_int32)), ("error_out", POINTER(c_int32)),
    doc="""vlt_package_open_ex with read_only_file 0 and offset 0.""")

vlt_package_is_unicode_files = _declare("vlt_package_is_unicode_files", c_int32, ("package", c_int32),
    doc="""Returns 1 when the package stores wide names, 0 when narrow, -1 for a handle that is not open.""")

vlt_package_close = _declare("vlt_package_close", c_int32, ("package", c_int32),
    doc="""Closes a package handle and the files opened through it. Other handles of the package stay usable.
    Returns 1, or 0 for a handle that is not open.
    """)

vlt_package_close_all = _declare("vlt_package_close_all", None,
    doc="""Closes every package handle. Unloading the library does the same.""")

vlt_alloc_mem = _declare("vlt_alloc_mem", c_void_p, ("size", c_size_t),
    doc="""Returns `size` uninitialised bytes of the library's heap, or null. Given back with vlt_free_mem.""")

vlt_free_mem = _declare("vlt_free_mem", None, ("pointer", c_void_p),
    doc="""Gives a block of vlt_alloc_mem back; null is ignored.""")

vlt_file_open = _declare("vlt_file_open", c_int32, ("package", c_int32), ("name", c_char_p), ("mode", c_uint32),
    ("exclusive", c_int32), ("truncate", c_int32), ("error", POINTER(c_uint32)),
    doc="""Opens a stored file. Any number of readers may share a file with at most one writer or appender, over all handles
    of the package; an exclusive open shares with nobody.
      mode       a VLT_MODE_ value
      exclusive  not 0: no other open of the file may exist, now or while this one lasts
      truncate   not 0: the file is emptied; VLT_MODE_WRITE only
      error      null, or receives a VLT_FILE_ code: VLT_FILE_OK, or why the open failed
    Returns a file handle, or 0. It is closed with vlt_file_close, or together with its package handle. A package
    handle holds up to 65535 open files. When the host file fails while the entry of a truncated file
    (VLT_FILE_NO_SLOT) or of a new one (VLT_FILE_NOT_FOUND) is written, that file is empty for this session, and for
    good once its entry has been written: by any later change of the file that succeeds. An open that fails for want of
    memory makes and empties nothing.
    """)

vltw_file_open = _declare("vltw_file_open", c_int32, ("package", c_int32), ("name", POINTER(c_uint16)),
    ("mode", c_uint32), ("exclusive", c_int32), ("truncate", c_int32), ("error", POINTER(c_uint32)),
    doc="""Opens a stored file. Any number of readers may share a file with at most one writer or appender, over all handles
    of the package; an exclusive open shares with nobody.
      mode       a VLT_MODE_ value
      exclusive  not 0: no other open of the file may exist, now or while this one lasts
      truncate   not 0: the file is emptied; VLT_MODE_WRITE only
      error      null, or receives a VLT_FILE_ code: VLT_FILE_OK, or why the open failed
    Returns a file handle, or 0. It is closed with vlt_file_close, or together with its package handle. A package
    handle holds up to 65535 open files. When the host file fails while the entry of a truncated file
    (VLT_FILE_NO_SLOT) or of a new one (VLT_FILE_NOT_FOUND) is written, that file is empty for this session, and for
    good once its entry has been written: by any later change of the file that succeeds. An open that fails for want of
    memory makes and empties nothing.
    """)

vlt_file_close = _declare("vlt_file_close", c_int32, ("file", c_uint32),
    doc="""Closes a file handle. Returns 1, also when it was closed before; 0 for a handle that cannot be one.""")

vlt_file_read = _declare("vlt_file_read", c_int32, ("file", c_uint32), ("buffer", c_void_p), ("length", c_int32),
    doc="""Reads up to `length` bytes at the position and moves the position past them; sets the file's accessed stamp, which
    stays in memory while the package's first handle is read-only (once that is closed, the lowest of those left).
    Returns how many bytes were read: fewer than asked at the end of the file; 0 at the end and on failure, and the
    position stays. vlt_file_is_eof tells the two apart: 1 at the end, 0 after a failure.
    """)

vlt_file_write = _declare("vlt_file_write", c_int32, ("file", c_uint32), ("buffer", c_void_p), ("length", c_int32),
    doc="""Writes `length` bytes at the position and moves the position past them; the file and the package grow as needed;
    sets the accessed and written stamps. Returns 1 when all bytes are in the host file; also for a null buffer or a
    length below 1, which write nothing. 0 on failure: position and length stay, part of the bytes may be stored.
    """)

vlt_file_set_pos = _declare("vlt_file_set_pos", c_int32, ("file", c_uint32), ("position", c_int64),
    doc="""Moves the position, in bytes from the start; negative or beyond the end means the end. Returns 1 or 0.""")

vlt_file_set_pos_bof = _declare("vlt_file_set_pos_bof", c_int32, ("file", c_uint32),
    doc="""Moves the position to the start. Returns 1 or 0.""")

vlt_file_set_pos_eof = _declare("vlt_file_set_pos_eof", c_int32, ("file", c_uint32),
    doc="""Moves the position to the end. Returns 1 or 0.""")

vlt_file_get_pos = _declare("vlt_file_get_pos", c_int32, ("file", c_uint32), ("position", POINTER(c_int64)),
    doc="""Stores the position, in bytes from the start; 0 when it fails. Returns 1, or 0 for a bad handle or no result.""")

vlt_file_is_eof = _declare("vlt_file_is_eof", c_int32, ("file", c_uint32),
    doc="""Returns 1 at or beyond the end, 0 before it, -1 for a handle that is not open.""")

vlt_file_is_bof = _declare("vlt_file_is_bof", c_int32, ("file", c_uint32),
    doc="""Returns 1 at the start, 0 elsewhere, -1 for a handle that cannot be one.""")

vlt_file_get_info = _declare("vlt_file_get_info", c_int32, ("package", c_int32), ("name", c_char_p),
    ("kind", POINTER(c_uint32)), ("size", POINTER(c_int64)), ("created", POINTER(c_double)),
    ("accessed", POINTER(c_double)), ("written", POINTER(c_double)),
    doc="""Reports on a stored file without opening or changing it; null results are skipped.
      kind      VLT_ENTRY_FILE or VLT_ENTRY_OTHER
      size      length in bytes
      created, accessed, written  time stamps
    Returns 1, or 0 when there is no such file; the results are untouched then.
    """)

vltw_file_get_info = _declare("vltw_file_get_info", c_int32, ("package", c_int32), ("name", POINTER(c_uint16)),
    ("kind", POINTER(c_uint32)), ("size", POINTER(c_int64)), ("created", POINTER(c_double)),
    ("accessed", POINTER(c_double)), ("written", POINTER(c_double)),
    doc="""Reports on a stored file without opening or changing it; null results are skipped.
      kind      VLT_ENTRY_FILE or VLT_ENTRY_OTHER
      size      length in bytes
      created, accessed, written  time stamps
    Returns 1, or 0 when there is no such file; the results are untouched then.
    """)

vlt_file_set_time = _declare("vlt_file_set_time", c_int32, ("package", c_int32), ("name", c_char_p),
    ("created", c_double), ("accessed", c_double), ("written", c_double),
    doc="""Sets the three stamps of a stored file to the values given, whatever they are; the file may be open and the
    handle read-only. Returns 1; 0 when there is no such file, or when its entry cannot be written: this session shows
    the new stamps then, and the host file has them once a later change of the file has succeeded.
    """)

vltw_file_set_time = _declare("vltw_file_set_time", c_int32, ("package", c_int32), ("name", POINTER(c_uint16)),
    ("created", c_double), ("accessed", c_double), ("written", c_double),
    doc="""Sets the three stamps of a stored file to the values given, whatever they are; the file may be open and the
    handle read-only. Returns 1; 0 when there is no such file, or when its entry cannot be written: this session shows
    the new stamps then, and the host file has them once a later change of the file has succeeded.
    """)

vlt_file_delete = _declare("vlt_file_delete", c_int32, ("package", c_int32), ("name", c_char_p),
    doc="""Deletes a stored file and frees its blocks, for a read-only handle too. Returns 1; 0 when there is no such file,
    when it is open through any handle of the package (nothing changes then), or when the host file fails or may not be
    written. After that last failure the file is empty or gone for this session, and for good once its entry has been
    written.
    """)

vltw_file_delete = _declare("vltw_file_delete", c_int32, ("package", c_int32), ("name", POINTER(c_uint16)),
    doc="""Deletes a stored file and frees its blocks, for a read-only handle too. Returns 1; 0 when there is no such file,
    when it is open through any handle of the package (nothing changes then), or when the host file fails or may not be
    written. After that last failure the file is empty or gone for this session, and for good once its entry has been
    written.
    """)

vlt_package_enum = _declare("vlt_package_enum", c_int32, ("package", c_int32), ("cursor", c_int32),
    ("name", POINTER(c_char)), ("kind", POINTER(c_uint32)), ("size", POINTER(c_int64)), ("created", POINTER(c_double)),
    ("accessed", POINTER(c_double)), ("written", POINTER(c_double)),
    doc="""Lists the stored files, one a call, in the order of the directory.
      cursor  0 (or less) for the first; then what the call before returned
      name    null, or room for VLT_NAME_MAX + 1 characters
      kind, size, created, accessed, written  as for vlt_file_get_info
    Returns the next cursor; 0 when there is no further file (the results are untouched then), or for a bad handle.
    Files may come and go between two calls.
    """)

vltw_package_enum = _declare("vltw_package_enum", c_int32, ("package", c_int32), ("cursor", c_int32),
    ("name", POINTER(c_uint16)), ("kind", POINTER(c_uint32)), ("size", POINTER(c_int64)),
    ("created", POINTER(c_double)), ("accessed", POINTER(c_double)), ("written", POINTER(c_double)),
    doc="""Lists the stored files, one a call, in the order of the directory.
      cursor  0 (or less) for the first; then what the call before returned
      name    null, or room for VLT_NAME_MAX + 1 characters
      kind, size, created, accessed, written  as for vlt_file_get_info
    Returns the next cursor; 0 when there is no further file (the results are untouched then), or for a bad handle.
    Files may come and go between two calls.
    """)

KOfflineTable_Constructor = _declare("KOfflineTable_Constructor", None, ("table", POINTER(KOfflineTable)),
    ("db", POINTER(KOfflineDb)), ("name", c_char_p),
    doc="""Makes an empty table in storage of any contents.
      db    the database that receives the table's errors and opens its files; may be null for a table that is used
            in memory only
      name  null, or the table's name; at most 31 bytes are kept
    """)

KOfflineTable_Destructor = _declare("KOfflineTable_Destructor", None, ("table", POINTER(KOfflineTable)),
    doc="""Gives back everything the table owns. It is not used again until it is constructed anew.""")

KOfflineTable_Clear = _declare("KOfflineTable_Clear", None, ("table", POINTER(KOfflineTable)),
    doc="""Removes every record and every index; the fields stay. NIDs given out so far are not given out again.""")

KOfflineTable_GetOfflineDb = _declare("KOfflineTable_GetOfflineDb", POINTER(KOfflineDb),
    ("table", POINTER(KOfflineTable)),
    doc="""Returns the database given to the constructor.""")

KOfflineTable_GetTblName = _declare("KOfflineTable_GetTblName", c_char_p, ("table", POINTER(KOfflineTable)),
    doc="""Returns the table's name; the text is the table's.""")

KOfflineTable_AddFld = _declare("KOfflineTable_AddFld", c_int32, ("table", POINTER(KOfflineTable)), ("name", c_char_p),
    doc="""Adds a field at the end; every record is without a value for it.
      name  at most 32 bytes
    Returns its number, or that of the field with this name that is there already; -1 for no name, an empty one, one
    that is too long, or when memory runs out (KOFFLINE_ERR_MEMORY).
    """)

KOfflineTable_GetFldsCount = _declare("KOfflineTable_GetFldsCount", c_int32, ("table", POINTER(KOfflineTable)),
    doc="""Returns the number of fields.""")

KOfflineTable_GetFldIndex = _declare("KOfflineTable_GetFldIndex", c_int32, ("table", POINTER(KOfflineTable)),
    ("name", c_char_p),
    doc="""Returns the number of the first field with this name, or -1.""")

KOfflineTable_GetFldName = _declare("KOfflineTable_GetFldName", c_int32, ("table", POINTER(KOfflineTable)),
    ("field", c_int32), ("name", POINTER(c_char)),
    doc="""Copies a field's name as it was declared.
      name  null, or room for 33 bytes; empty when there is no such field
    Returns 1, or 0 for a field number out of range.
    """)

KOfflineTable_GetRecsCount = _declare("KOfflineTable_GetRecsCount", c_int32, ("table", POINTER(KOfflineTable)),
    doc="""Returns the number of records.""")

KOfflineTable_AddRec = _declare("KOfflineTable_AddRec", c_int32, ("table", POINTER(KOfflineTable)), ("line", c_char_p),
    ("separator", c_char_p),
    doc="""Adds a record at the end from one line in the form of the data files: values in field order, trimmed of blanks
    and tabs, then unescaped as KOfflineDb_StrSwap does. Surplus values are ignored; fields beyond the last value have
    none. A record without NID, or with an empty one, is given the next free NID when the table has that field.
      separator  what stands between two values; one or more characters
    Returns the record's number; -1 when memory runs out (KOFFLINE_ERR_MEMORY), or when the record cannot be given its
    NID or a value would begin beyond byte 32767 of the record (KOFFLINE_ERR_RECORD). The table is unchanged then.
    """)

KOfflineTable_SetFldValue = _declare("KOfflineTable_SetFldValue", c_int32, ("table", POINTER(KOfflineTable)),
    ("rec", c_int32), ("field", c_int32), ("value", c_char_p),
    doc="""Changes one value. The empty text over a value leaves an empty value, and no value where there was none.
      value  the text as it is, not escaped; null counts as empty
    Returns 1; 0 for a number out of range, when memory runs out (KOFFLINE_ERR_MEMORY) or when a value would begin
    beyond byte 32767 of the record (KOFFLINE_ERR_RECORD); nothing is changed then.
    """)

KOfflineTable_GetFldValue = _declare("KOfflineTable_GetFldValue", c_char_p, ("table", POINTER(KOfflineTable)),
    ("rec", c_int32), ("field", c_int32),
    doc="""Returns a value's text; null for a number out of range or a record without value for the field.""")

KOfflineTable_DelRec = _declare("KOfflineTable_DelRec", c_int32, ("table", POINTER(KOfflineTable)), ("rec", c_int32),
    doc="""Deletes a record; those after it move down by one, in the indexes too. Returns 1, or 0 for a number out of range.""")

KOfflineTable_CopyRec = _declare("KOfflineTable_CopyRec", c_int32, ("table", POINTER(KOfflineTable)), ("rec", c_int32),
    doc="""Adds a copy of a record at the end, with a NID of its own. Returns the copy's number; -1 for a number out of range,
    when memory runs out (KOFFLINE_ERR_MEMORY) or no NID can be given (KOFFLINE_ERR_RECORD).
    """)

KOfflineTable_GetRecNID = _declare("KOfflineTable_GetRecNID", c_int32, ("table", POINTER(KOfflineTable)),
    ("rec", c_int32),
    doc="""Returns a record's NID; -1 when it has none, or none that is a whole number.""")

KOfflineTable_SetRecNID = _declare("KOfflineTable_SetRecNID", c_int32, ("table", POINTER(KOfflineTable)),
    ("rec", c_int32), ("nid", c_int32),
    doc="""Sets a record's NID; it is not compared with those of other records. Returns 1; 0 for a table without NID field
    or where KOfflineTable_SetFldValue fails.
    """)

KOfflineTable_WriteFile = _declare("KOfflineTable_WriteFile", c_int32, ("table", POINTER(KOfflineTable)),
    ("path", c_char_p), ("separator", c_char_p),
    doc="""Writes the records as a data file: a line a record, values in field order, escaped as KOfflineDb_StrSwap does,
    each line ended by CR LF.
      path  with a package open in the table's database, the stored file named by the path's last component; else a
            disk file. Made, or emptied when it is there.
    Returns 1; 0 when the file cannot be opened or written (KOFFLINE_ERR_FILE); it keeps what was written so far.
    """)

KOfflineTable_LoadIdx = _declare("KOfflineTable_LoadIdx", c_int32, ("table", POINTER(KOfflineTable)),
    ("name", c_char_p),
    doc="""Builds the index of a field, or builds it anew; the field keeps it, through changes of the table, until the table
    is cleared or destroyed. A table that has held no record since then keeps the field without index.
    Returns 1; 0 for a field that the table lacks (KOFFLINE_ERR_INDEX) or when memory runs out (KOFFLINE_ERR_MEMORY).
    """)

KOfflineTable_GetIndexRecs = _declare("KOfflineTable_GetIndexRecs", POINTER(c_int32),
    ("table", POINTER(KOfflineTable)), ("field", c_int32),
    doc="""Returns the index of a field as it is: record numbers in ascending order of the value, for the records that
    existed when it was last built or mended; null when there is none. A search on an indexed field makes it current.
    """)

KOfflineTable_Search = _declare("KOfflineTable_Search", c_int32, ("table", POINTER(KOfflineTable)), ("field", c_int32),
    ("key", c_char_p), ("recs", POINTER(c_int32)), ("capacity", c_int32),
    doc="""Finds the records whose value equals `key`, letter case of A to Z ignored: in index order on an indexed field, in
    record order by a scan otherwise. The empty key finds records with an empty value or without one.
      recs      null, or room for `capacity` record numbers; the first matches are stored
    Returns how many records match, which may be more than `capacity`; -1 for a field number out of range, and on an
    indexed field when none match; 0 when none match in a scan.
    """)

KOfflineDb_Constructor = _declare("KOfflineDb_Constructor", None, ("db", POINTER(KOfflineDb)),
    doc="""Makes an empty database, its six tables included, in storage of any contents.""")

KOfflineDb_Destructor = _declare("KOfflineDb_Destructor", None, ("db", POINTER(KOfflineDb)),
    doc="""Destroys the tables, closes the package and gives the user data back.""")

KOfflineDb_Reset = _declare("KOfflineDb_Reset", None, ("db", POINTER(KOfflineDb)),
    doc="""Destroys and constructs: the database is as new.""")

KOfflineDb_InitUserData = _declare("KOfflineDb_InitUserData", c_void_p, ("db", POINTER(KOfflineDb)), ("size", c_int32),
    ("keep", c_int32),
    doc="""Gives the database a block of the caller's own; it lives until it is replaced, or the database destroyed or reset.
      size  bytes, 0 or more
      keep  not 0: the old block's contents are copied to the start of the new one, provided it is at least as large
    Returns the block, zero but for what was kept; null when memory runs out, and the old block stays.
    """)

KOfflineDb_GetUserData = _declare("KOfflineDb_GetUserData", c_void_p, ("db", POINTER(KOfflineDb)),
    ("size_out", POINTER(c_int32)),
    doc="""Returns the caller's block, or null.
      size_out  null, or receives its size in bytes
    """)

KOfflineDb_GetPackageHandle = _declare("KOfflineDb_GetPackageHandle", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Returns the handle of the database's package; 0 when it lives in a directory or nothing is loaded.""")

KOfflineDb_GetPath = _declare("KOfflineDb_GetPath", None, ("db", POINTER(KOfflineDb)), ("dst", POINTER(c_char)),
    doc="""Copies the path of the last successful load or KOfflineDb_SaveAs.
      dst  null, or room for 260 bytes
    """)

KOfflineDb_StrSwap = _declare("KOfflineDb_StrSwap", c_int32, ("src", c_char_p), ("dst", POINTER(c_char)),
    ("dst_size", c_int32), ("direction", c_int32),
    doc="""Escapes or unescapes one value as the data files hold it: backslash, comma, tab, CR, LF and slash become a
    backslash followed by '\\', 'c', 't', 'r', 'n', '/'.
      dst        receives the text; may be `src` itself. When it fails, what was made before the failure.
      dst_size   its room in bytes, the terminator included; negative: no limit
      direction  0: unescapes; otherwise escapes
    Returns 1; 0 when the text does not fit or holds an escape that stands for nothing.
    """)

KOfflineDb_Load = _declare("KOfflineDb_Load", c_int32, ("db", POINTER(KOfflineDb)), ("path", c_char_p),
    doc="""Loads a database into a record that is newly constructed or reset. Fields that a table lacks and can do without
    are added to it; the NID, code and link fields are indexed.
      path  a package file, which is opened for reading and writing and stays open, or a directory
    Returns 1; 0 with the reason in error_code, which stays KOFFLINE_ERR_NONE for a package that cannot be opened.
    What was loaded before the failure stays; the record is reset before it is loaded again.
    A load gives no credentials and needs a host file that it may write: a package with a read credential or in a
    read-only host file is not loaded, and one with a write credential only is loaded but not saved. Instead, open it
    with vlt_package_open, copy the seven files into a directory, load that, and copy them back after a save.
    """)

KOfflineDb_Save = _declare("KOfflineDb_Save", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Writes the database to where it was loaded from or last saved to. Returns 1; 0 as KOfflineDb_SaveAs, or when there
    is no such place.
    """)

KOfflineDb_SaveAs = _declare("KOfflineDb_SaveAs", c_int32, ("db", POINTER(KOfflineDb)), ("path", c_char_p),
    doc="""Writes all seven files. A database that was loaded from a package is written into that package whatever the path;
    any other into the directory `path`, which must exist.
    Returns 1; 0 for no path or an empty one, when a file cannot be opened or a data file not written
    (KOFFLINE_ERR_FILE), or when the schema cannot be composed (KOFFLINE_ERR_SCHEMA_WRITE). Files written before the
    failure keep their new contents.
    """)

KOfflineDb_GetTable_BITM = _declare("KOfflineDb_GetTable_BITM", POINTER(KOfflineTable), ("db", POINTER(KOfflineDb)),
    doc="""Return a table of the database.""")

KOfflineDb_GetTable_BBOM = _declare("KOfflineDb_GetTable_BBOM", POINTER(KOfflineTable), ("db", POINTER(KOfflineDb)),
    doc="""Return a table of the database.""")

KOfflineDb_GetTable_BDWG = _declare("KOfflineDb_GetTable_BDWG", POINTER(KOfflineTable), ("db", POINTER(KOfflineDb)),
    doc="""Return a table of the database.""")

KOfflineDb_GetTable_BITDWG = _declare("KOfflineDb_GetTable_BITDWG", POINTER(KOfflineTable),
    ("db", POINTER(KOfflineDb)),
    doc="""Return a table of the database.""")

KOfflineDb_GetTable_BCAPP = _declare("KOfflineDb_GetTable_BCAPP", POINTER(KOfflineTable), ("db", POINTER(KOfflineDb)),
    doc="""Return a table of the database.""")

KOfflineDb_GetTable_BITCAP = _declare("KOfflineDb_GetTable_BITCAP", POINTER(KOfflineTable),
    ("db", POINTER(KOfflineDb)),
    doc="""Return a table of the database.""")

KOfflineDb_GetFld_BITM_NID = _declare("KOfflineDb_GetFld_BITM_NID", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BITM_CCODE = _declare("KOfflineDb_GetFld_BITM_CCODE", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BITM_CNAME = _declare("KOfflineDb_GetFld_BITM_CNAME", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BITM_CSRC = _declare("KOfflineDb_GetFld_BITM_CSRC", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BBOM_NID = _declare("KOfflineDb_GetFld_BBOM_NID", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BBOM_NPID = _declare("KOfflineDb_GetFld_BBOM_NPID", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BBOM_NCID = _declare("KOfflineDb_GetFld_BBOM_NCID", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BBOM_FCOUNT = _declare("KOfflineDb_GetFld_BBOM_FCOUNT", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BDWG_NID = _declare("KOfflineDb_GetFld_BDWG_NID", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BDWG_CCODE = _declare("KOfflineDb_GetFld_BDWG_CCODE", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BDWG_CFILE = _declare("KOfflineDb_GetFld_BDWG_CFILE", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BDWG_CSRC = _declare("KOfflineDb_GetFld_BDWG_CSRC", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BDWG_CASM = _declare("KOfflineDb_GetFld_BDWG_CASM", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BDWG_COFLNMODI = _declare("KOfflineDb_GetFld_BDWG_COFLNMODI", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BDWG_NOFLNITMID = _declare("KOfflineDb_GetFld_BDWG_NOFLNITMID", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BITDWG_NID = _declare("KOfflineDb_GetFld_BITDWG_NID", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BITDWG_NPID = _declare("KOfflineDb_GetFld_BITDWG_NPID", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BITDWG_NCID = _declare("KOfflineDb_GetFld_BITDWG_NCID", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BCAPP_NID = _declare("KOfflineDb_GetFld_BCAPP_NID", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BCAPP_CCODE = _declare("KOfflineDb_GetFld_BCAPP_CCODE", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BCAPP_CFILE = _declare("KOfflineDb_GetFld_BCAPP_CFILE", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BCAPP_CSRC = _declare("KOfflineDb_GetFld_BCAPP_CSRC", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BCAPP_COFLNMODI = _declare("KOfflineDb_GetFld_BCAPP_COFLNMODI", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BCAPP_NOFLNITMID = _declare("KOfflineDb_GetFld_BCAPP_NOFLNITMID", c_int32,
    ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BITCAP_NID = _declare("KOfflineDb_GetFld_BITCAP_NID", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BITCAP_NPID = _declare("KOfflineDb_GetFld_BITCAP_NPID", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetFld_BITCAP_NCID = _declare("KOfflineDb_GetFld_BITCAP_NCID", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
    field. FCOUNT is looked for again while it is missing.
    """)

KOfflineDb_GetRecByNID_BITM = _declare("KOfflineDb_GetRecByNID_BITM", c_int32, ("db", POINTER(KOfflineDb)),
    ("nid", c_int32),
    doc="""Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".""")

KOfflineDb_GetRecByNID_BBOM = _declare("KOfflineDb_GetRecByNID_BBOM", c_int32, ("db", POINTER(KOfflineDb)),
    ("nid", c_int32),
    doc="""Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".""")

KOfflineDb_GetRecByNID_BDWG = _declare("KOfflineDb_GetRecByNID_BDWG", c_int32, ("db", POINTER(KOfflineDb)),
    ("nid", c_int32),
    doc="""Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".""")

KOfflineDb_GetRecByNID_BITDWG = _declare("KOfflineDb_GetRecByNID_BITDWG", c_int32, ("db", POINTER(KOfflineDb)),
    ("nid", c_int32),
    doc="""Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".""")

KOfflineDb_GetRecByNID_BCAPP = _declare("KOfflineDb_GetRecByNID_BCAPP", c_int32, ("db", POINTER(KOfflineDb)),
    ("nid", c_int32),
    doc="""Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".""")

KOfflineDb_GetRecByNID_BITCAP = _declare("KOfflineDb_GetRecByNID_BITCAP", c_int32, ("db", POINTER(KOfflineDb)),
    ("nid", c_int32),
    doc="""Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".""")

KOfflineDb_GetNIDByRec_BITM = _declare("KOfflineDb_GetNIDByRec_BITM", c_int32, ("db", POINTER(KOfflineDb)),
    ("rec", c_int32),
    doc="""Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.""")

KOfflineDb_GetNIDByRec_BBOM = _declare("KOfflineDb_GetNIDByRec_BBOM", c_int32, ("db", POINTER(KOfflineDb)),
    ("rec", c_int32),
    doc="""Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.""")

KOfflineDb_GetNIDByRec_BDWG = _declare("KOfflineDb_GetNIDByRec_BDWG", c_int32, ("db", POINTER(KOfflineDb)),
    ("rec", c_int32),
    doc="""Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.""")

KOfflineDb_GetNIDByRec_BITDWG = _declare("KOfflineDb_GetNIDByRec_BITDWG", c_int32, ("db", POINTER(KOfflineDb)),
    ("rec", c_int32),
    doc="""Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.""")

KOfflineDb_GetNIDByRec_BCAPP = _declare("KOfflineDb_GetNIDByRec_BCAPP", c_int32, ("db", POINTER(KOfflineDb)),
    ("rec", c_int32),
    doc="""Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.""")

KOfflineDb_GetNIDByRec_BITCAP = _declare("KOfflineDb_GetNIDByRec_BITCAP", c_int32, ("db", POINTER(KOfflineDb)),
    ("rec", c_int32),
    doc="""Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.""")

KOfflineDb_GetCCODEByRec = _declare("KOfflineDb_GetCCODEByRec", c_int32, ("db", POINTER(KOfflineDb)), ("rec", c_int32),
    ("dst", POINTER(c_char)),
    doc="""Copy the code of a record, by its number: of an item, a drawing, a process plan.
      dst  null, or room for the longest code of the table
    Return 1, with an empty code for a record that has none or does not exist; 0 with an empty code for a negative
    number or a table without codes.
    """)

KOfflineDb_GetCCODEByRec_BDWG = _declare("KOfflineDb_GetCCODEByRec_BDWG", c_int32, ("db", POINTER(KOfflineDb)),
    ("rec", c_int32), ("dst", POINTER(c_char)),
    doc="""Copy the code of a record, by its number: of an item, a drawing, a process plan.
      dst  null, or room for the longest code of the table
    Return 1, with an empty code for a record that has none or does not exist; 0 with an empty code for a negative
    number or a table without codes.
    """)

KOfflineDb_GetCCODEByRec_BCAPP = _declare("KOfflineDb_GetCCODEByRec_BCAPP", c_int32, ("db", POINTER(KOfflineDb)),
    ("rec", c_int32), ("dst", POINTER(c_char)),
    doc="""Copy the code of a record, by its number: of an item, a drawing, a process plan.
      dst  null, or room for the longest code of the table
    Return 1, with an empty code for a record that has none or does not exist; 0 with an empty code for a negative
    number or a table without codes.
    """)

KOfflineDb_GetCCODEByNID = _declare("KOfflineDb_GetCCODEByNID", c_int32, ("db", POINTER(KOfflineDb)), ("nid", c_int32),
    ("dst", POINTER(c_char)),
    doc="""Copy the code of a record, by its NID: of an item, a drawing, a process plan.
      dst  null, or room for the longest code of the table
    Return 1, with an empty code for a record without one; 0 with an empty code when no record has this NID, or it is
    below 1.
    """)

KOfflineDb_GetCCODEByNID_BDWG = _declare("KOfflineDb_GetCCODEByNID_BDWG", c_int32, ("db", POINTER(KOfflineDb)),
    ("nid", c_int32), ("dst", POINTER(c_char)),
    doc="""Copy the code of a record, by its NID: of an item, a drawing, a process plan.
      dst  null, or room for the longest code of the table
    Return 1, with an empty code for a record without one; 0 with an empty code when no record has this NID, or it is
    below 1.
    """)

KOfflineDb_GetCCODEByNID_BCAPP = _declare("KOfflineDb_GetCCODEByNID_BCAPP", c_int32, ("db", POINTER(KOfflineDb)),
    ("nid", c_int32), ("dst", POINTER(c_char)),
    doc="""Copy the code of a record, by its NID: of an item, a drawing, a process plan.
      dst  null, or room for the longest code of the table
    Return 1, with an empty code for a record without one; 0 with an empty code when no record has this NID, or it is
    below 1.
    """)

KOfflineDb_GetNIDByCCODE = _declare("KOfflineDb_GetNIDByCCODE", c_int32, ("db", POINTER(KOfflineDb)),
    ("code", c_char_p),
    doc="""Returns the NID of the item with this code; -1 when there is none, or no code is given.""")

KOfflineDb_SetRootNode = _declare("KOfflineDb_SetRootNode", c_int32, ("db", POINTER(KOfflineDb)), ("rec", c_int32),
    doc="""Makes an item the root of the item tree; the choice is saved with the database.
      rec  its record number in BITM
    Returns 1; 0 for an item without a NID of 1 or more, and the root stays.
    """)

KOfflineDb_GetRootNodes = _declare("KOfflineDb_GetRootNodes", c_int32, ("db", POINTER(KOfflineDb)),
    ("recs", POINTER(c_int32)), ("max", c_int32),
    doc="""Lists the tops of the item tree: the root item alone, or the items without a parent when no root is chosen or the
    root item is gone.
      recs  null, or room for `max` record numbers of BITM; the first tops are stored
    Returns how many there are, which may be more than `max`.
    """)

KOfflineDb_GetNoParentNodes = _declare("KOfflineDb_GetNoParentNodes", c_int32, ("db", POINTER(KOfflineDb)),
    ("recs", POINTER(c_int32)), ("max", c_int32),
    doc="""Lists the items that have a NID and are the child of no bill-of-material line, in record order; every item when
    there is no such line at all.
      recs  null, or room for `max` record numbers of BITM; the first items are stored
    Returns how many there are, which may be more than `max`.
    """)

KOfflineDb_SetCheckInRec = _declare("KOfflineDb_SetCheckInRec", None, ("db", POINTER(KOfflineDb)), ("rec", c_int32),
    doc="""Keeps a record number for the caller; the library does not look at it.""")

KOfflineDb_GetCheckInRec = _declare("KOfflineDb_GetCheckInRec", c_int32, ("db", POINTER(KOfflineDb)),
    doc="""Returns the number kept by KOfflineDb_SetCheckInRec; -1 at first.""")

KOfflineDb_GetPackageFile = _declare("KOfflineDb_GetPackageFile", c_int32, ("db", POINTER(KOfflineDb)),
    ("stored_name", c_char_p), ("disk_path", c_char_p),
    doc="""Copies a stored file to a disk file, which is made, or emptied when it is there. Returns 1 once both are open,
    even when the copy is cut short by a full disk; 0 when one cannot be opened. When it is the stored file, an empty
    disk file stays behind.
    """)

KOfflineDb_SavePackageFile = _declare("KOfflineDb_SavePackageFile", c_int32, ("db", POINTER(KOfflineDb)),
    ("disk_path", c_char_p), ("stored_name", c_char_p),
    doc="""Copies a disk file into the package; the stored file is made, or emptied when it is there. Mind the order of the
    arguments. Returns 1 once both are open, even when the copy is cut short; 0 when one cannot be opened.
    """)

KOfflineDb_CheckPackageFileExist = _declare("KOfflineDb_CheckPackageFileExist", c_int32, ("db", POINTER(KOfflineDb)),
    ("stored_name", c_char_p),
    doc="""Returns 1 when the package holds this file, else 0.""")
