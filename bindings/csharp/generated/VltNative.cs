// SPDX-License-Identifier: MIT
// What the headers declare: vlt.h, offline.h. Made by bindings/generate.py; not edited by hand.
//
// Narrow text goes through the platform's multibyte character set, wide text as UTF-16. A record is passed as the
// address of memory that stays where it is; a text that is returned belongs to the library.
using System;
using System.Runtime.InteropServices;
using Pointer = System.IntPtr;

namespace VltNative
{
    public static class Api
    {
        public const string Library = "vlt";

        public const int VLT_BLOCK_SIZE = 4096; // unit of all package storage, in bytes
        public const int VLT_NAME_MAX = 512; // characters of a stored name, without its terminator
        public const int VLT_CREDENTIAL_MAX = 16; // bytes of a credential, without its terminator

        // Modes of vlt_file_open. Reading is allowed in every mode.
        public const int VLT_MODE_WRITE = 0; // made when missing; starts at 0; may write anywhere
        public const int VLT_MODE_READ = 1; // must exist; starts at 0; may not write
        // made when missing; starts at its end; may write at or beyond where it ended then
        public const int VLT_MODE_APPEND = 2;

        // Kinds that vlt_file_get_info and vlt_package_enum report.
        public const int VLT_ENTRY_FILE = 1; // a stored file
        // an entry of another maker: listed, inspected and re-stamped, never opened or deleted
        public const int VLT_ENTRY_OTHER = 2;

        // Codes that vlt_package_open and vlt_package_open_ex store when they fail.
        public const int VLT_OPEN_NOT_A_PACKAGE = 1; // the host file is not a package
        public const int VLT_OPEN_CREDENTIALS = 2; // neither credential matches
        public const int VLT_OPEN_NO_FILE = 3; // the host file cannot be opened
        public const int VLT_OPEN_ACCESS = 4; // an exclusive opening exists, or the host file may not be written
        public const int VLT_OPEN_ARGUMENT = 5; // negative offset, read_only neither 0 nor 1, no path

        // Codes that vlt_file_open and vltw_file_open store.
        public const int VLT_FILE_OK = 0; // no error
        public const int VLT_FILE_NO_SLOT = 1; // no room for another open file, or the truncation failed
        // unknown mode; truncate without VLT_MODE_WRITE; no such package; other name width
        public const int VLT_FILE_REQUEST = 2;
        // writing through a read-only handle, or in conflict with another open of the file
        public const int VLT_FILE_ACCESS = 3;
        public const int VLT_FILE_NOT_FOUND = 4; // no such file to read, or the file cannot be made

        // Codes of KOfflineDb.error_code, with what error_text then holds.
        public const int KOFFLINE_ERR_NONE = 0;
        public const int KOFFLINE_ERR_MEMORY = 1; // no memory for a record, a field or a file; text unchanged
        public const int KOFFLINE_ERR_FILE = 2; // a file cannot be opened, sized, read or written; its full name
        public const int KOFFLINE_ERR_SEPARATOR = 3; // the schema sets no separator; text unchanged
        public const int KOFFLINE_ERR_FIELD = 4; // a field that a table must have is missing; such as "BITM.CCODE"
        // an index was asked for on a field the table lacks; the name as asked for
        public const int KOFFLINE_ERR_INDEX = 5;
        // a record cannot be given its NID, or cannot hold a value; text unchanged
        public const int KOFFLINE_ERR_RECORD = 6;
        public const int KOFFLINE_ERR_SCHEMA_WRITE = 7; // the schema cannot be composed; text unchanged
        // the schema does not declare a table that must exist; "BITM" or "BBOM"
        public const int KOFFLINE_ERR_TABLE = 8;

        /// <summary>
        /// Creates a package in a host file of its own; an existing file of that name is overwritten. A package that is open,
        /// here or in another process, is ruined by that.
        ///   path              the host file
        ///   wide_names        0: narrow names; otherwise wide names
        ///   size_mb           size in mebibytes, up to 1048575; 0 or less gives the smallest package, 8192 bytes.
        ///                     A package grows beyond its size when it is full.
        ///   read_credential   grants read-only access; null counts as empty; at most 16 bytes
        ///   write_credential  grants read/write access; null or empty: everybody may write
        /// Returns 1; 0 when a credential or the size is too long (the file is not touched then) or the file cannot be
        /// written whole (it is removed then).
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_package_create([MarshalAs(UnmanagedType.LPStr)] string path, int wide_names,
            int size_mb, [MarshalAs(UnmanagedType.LPStr)] string read_credential,
            [MarshalAs(UnmanagedType.LPStr)] string write_credential);

        /// <summary>
        /// Opens a package that lies at an offset in its host file. A path that is open already, in any letter case, gives a
        /// second handle that shares the first one's package: the host file is not opened again, and read_only_file,
        /// exclusive and the offset are not used.
        ///   path              the host file; it must exist
        ///   read_only_file    not 0: the host file is opened for reading only, and the handle is read-only
        ///   offset_low, offset_high  the two halves of the offset in bytes; never negative
        ///   read_only         1: this handle may not write; 0: it may, if the write credential matches
        ///   exclusive         not 0: no further opening of this path in this process while this one lasts (first openings
        ///                     only)
        ///   read_credential, write_credential  compared with those of the package; null counts as empty. With only the read
        ///                     credential right, the handle is read-only.
        ///   wide_names_out    null, or receives 1 when the package stores wide names, else 0
        ///   error_out         null, or receives a VLT_OPEN_ code on failure; untouched on success
        /// Returns a package handle, or 0. The handle is closed with vlt_package_close.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_package_open_ex([MarshalAs(UnmanagedType.LPStr)] string path, int read_only_file,
            uint offset_low, int offset_high, int read_only, int exclusive,
            [MarshalAs(UnmanagedType.LPStr)] string read_credential,
            [MarshalAs(UnmanagedType.LPStr)] string write_credential, out int wide_names_out, out int error_out);

        /// <summary>vlt_package_open_ex with read_only_file 0 and offset 0.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_package_open([MarshalAs(UnmanagedType.LPStr)] string path, int read_only,
            int exclusive, [MarshalAs(UnmanagedType.LPStr)] string read_credential,
            [MarshalAs(UnmanagedType.LPStr)] string write_credential, out int wide_names_out, out int error_out);

        /// <summary>Returns 1 when the package stores wide names, 0 when narrow, -1 for a handle that is not open.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_package_is_unicode_files(int package);

        /// <summary>
        /// Closes a package handle and the files opened through it. Other handles of the package stay usable.
        /// Returns 1, or 0 for a handle that is not open.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_package_close(int package);

        /// <summary>Closes every package handle. Unloading the library does the same.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern void vlt_package_close_all();

        /// <summary>Returns `size` uninitialised bytes of the library's heap, or null. Given back with vlt_free_mem.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern Pointer vlt_alloc_mem(UIntPtr size);

        /// <summary>Gives a block of vlt_alloc_mem back; null is ignored.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern void vlt_free_mem(Pointer pointer);

        /// <summary>
        /// Opens a stored file. Any number of readers may share a file with at most one writer or appender, over all handles
        /// of the package; an exclusive open shares with nobody.
        ///   mode       a VLT_MODE_ value
        ///   exclusive  not 0: no other open of the file may exist, now or while this one lasts
        ///   truncate   not 0: the file is emptied; VLT_MODE_WRITE only
        ///   error      null, or receives a VLT_FILE_ code: VLT_FILE_OK, or why the open failed
        /// Returns a file handle, or 0. It is closed with vlt_file_close, or together with its package handle. A package
        /// handle holds up to 65535 open files. When the host file fails while the entry of a truncated file
        /// (VLT_FILE_NO_SLOT) or of a new one (VLT_FILE_NOT_FOUND) is written, that file is empty for this session, and for
        /// good once its entry has been written: by any later change of the file that succeeds. An open that fails for want of
        /// memory makes and empties nothing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_file_open(int package, [MarshalAs(UnmanagedType.LPStr)] string name, uint mode,
            int exclusive, int truncate, out uint error);

        /// <summary>
        /// Opens a stored file. Any number of readers may share a file with at most one writer or appender, over all handles
        /// of the package; an exclusive open shares with nobody.
        ///   mode       a VLT_MODE_ value
        ///   exclusive  not 0: no other open of the file may exist, now or while this one lasts
        ///   truncate   not 0: the file is emptied; VLT_MODE_WRITE only
        ///   error      null, or receives a VLT_FILE_ code: VLT_FILE_OK, or why the open failed
        /// Returns a file handle, or 0. It is closed with vlt_file_close, or together with its package handle. A package
        /// handle holds up to 65535 open files. When the host file fails while the entry of a truncated file
        /// (VLT_FILE_NO_SLOT) or of a new one (VLT_FILE_NOT_FOUND) is written, that file is empty for this session, and for
        /// good once its entry has been written: by any later change of the file that succeeds. An open that fails for want of
        /// memory makes and empties nothing.
        /// </summary>
        [DllImport(Library, CharSet = CharSet.Unicode, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vltw_file_open(int package, [MarshalAs(UnmanagedType.LPWStr)] string name, uint mode,
            int exclusive, int truncate, out uint error);

        /// <summary>Closes a file handle. Returns 1, also when it was closed before; 0 for a handle that cannot be one.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_file_close(uint file);

        /// <summary>
        /// Reads up to `length` bytes at the position and moves the position past them; sets the file's accessed stamp, which
        /// stays in memory while the package's first handle is read-only (once that is closed, the lowest of those left).
        /// Returns how many bytes were read: fewer than asked at the end of the file; 0 at the end and on failure, and the
        /// position stays. vlt_file_is_eof tells the two apart: 1 at the end, 0 after a failure.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_file_read(uint file, ref byte buffer, int length);

        /// <summary>
        /// Writes `length` bytes at the position and moves the position past them; the file and the package grow as needed;
        /// sets the accessed and written stamps. Returns 1 when all bytes are in the host file; also for a null buffer or a
        /// length below 1, which write nothing. 0 on failure: position and length stay, part of the bytes may be stored.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_file_write(uint file, ref byte buffer, int length);

        /// <summary>Moves the position, in bytes from the start; negative or beyond the end means the end. Returns 1 or 0.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_file_set_pos(uint file, long position);

        /// <summary>Moves the position to the start. Returns 1 or 0.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_file_set_pos_bof(uint file);

        /// <summary>Moves the position to the end. Returns 1 or 0.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_file_set_pos_eof(uint file);

        /// <summary>Stores the position, in bytes from the start; 0 when it fails. Returns 1, or 0 for a bad handle or no result.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_file_get_pos(uint file, out long position);

        /// <summary>Returns 1 at or beyond the end, 0 before it, -1 for a handle that is not open.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_file_is_eof(uint file);

        /// <summary>Returns 1 at the start, 0 elsewhere, -1 for a handle that cannot be one.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_file_is_bof(uint file);

        /// <summary>
        /// Reports on a stored file without opening or changing it; null results are skipped.
        ///   kind      VLT_ENTRY_FILE or VLT_ENTRY_OTHER
        ///   size      length in bytes
        ///   created, accessed, written  time stamps
        /// Returns 1, or 0 when there is no such file; the results are untouched then.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_file_get_info(int package, [MarshalAs(UnmanagedType.LPStr)] string name,
            out uint kind, out long size, out double created, out double accessed, out double written);

        /// <summary>
        /// Reports on a stored file without opening or changing it; null results are skipped.
        ///   kind      VLT_ENTRY_FILE or VLT_ENTRY_OTHER
        ///   size      length in bytes
        ///   created, accessed, written  time stamps
        /// Returns 1, or 0 when there is no such file; the results are untouched then.
        /// </summary>
        [DllImport(Library, CharSet = CharSet.Unicode, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vltw_file_get_info(int package, [MarshalAs(UnmanagedType.LPWStr)] string name,
            out uint kind, out long size, out double created, out double accessed, out double written);

        /// <summary>
        /// Sets the three stamps of a stored file to the values given, whatever they are; the file may be open and the
        /// handle read-only. Returns 1; 0 when there is no such file, or when its entry cannot be written: this session shows
        /// the new stamps then, and the host file has them once a later change of the file has succeeded.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_file_set_time(int package, [MarshalAs(UnmanagedType.LPStr)] string name,
            double created, double accessed, double written);

        /// <summary>
        /// Sets the three stamps of a stored file to the values given, whatever they are; the file may be open and the
        /// handle read-only. Returns 1; 0 when there is no such file, or when its entry cannot be written: this session shows
        /// the new stamps then, and the host file has them once a later change of the file has succeeded.
        /// </summary>
        [DllImport(Library, CharSet = CharSet.Unicode, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vltw_file_set_time(int package, [MarshalAs(UnmanagedType.LPWStr)] string name,
            double created, double accessed, double written);

        /// <summary>
        /// Deletes a stored file and frees its blocks, for a read-only handle too. Returns 1; 0 when there is no such file,
        /// when it is open through any handle of the package (nothing changes then), or when the host file fails or may not be
        /// written. After that last failure the file is empty or gone for this session, and for good once its entry has been
        /// written.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_file_delete(int package, [MarshalAs(UnmanagedType.LPStr)] string name);

        /// <summary>
        /// Deletes a stored file and frees its blocks, for a read-only handle too. Returns 1; 0 when there is no such file,
        /// when it is open through any handle of the package (nothing changes then), or when the host file fails or may not be
        /// written. After that last failure the file is empty or gone for this session, and for good once its entry has been
        /// written.
        /// </summary>
        [DllImport(Library, CharSet = CharSet.Unicode, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vltw_file_delete(int package, [MarshalAs(UnmanagedType.LPWStr)] string name);

        /// <summary>
        /// Lists the stored files, one a call, in the order of the directory.
        ///   cursor  0 (or less) for the first; then what the call before returned
        ///   name    null, or room for VLT_NAME_MAX + 1 characters
        ///   kind, size, created, accessed, written  as for vlt_file_get_info
        /// Returns the next cursor; 0 when there is no further file (the results are untouched then), or for a bad handle.
        /// Files may come and go between two calls.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vlt_package_enum(int package, int cursor, [Out] byte[] name, out uint kind,
            out long size, out double created, out double accessed, out double written);

        /// <summary>
        /// Lists the stored files, one a call, in the order of the directory.
        ///   cursor  0 (or less) for the first; then what the call before returned
        ///   name    null, or room for VLT_NAME_MAX + 1 characters
        ///   kind, size, created, accessed, written  as for vlt_file_get_info
        /// Returns the next cursor; 0 when there is no further file (the results are untouched then), or for a bad handle.
        /// Files may come and go between two calls.
        /// </summary>
        [DllImport(Library, CharSet = CharSet.Unicode, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int vltw_package_enum(int package, int cursor, [Out] char[] name, out uint kind,
            out long size, out double created, out double accessed, out double written);

        /// <summary>
        /// Makes an empty table in storage of any contents.
        ///   db    the database that receives the table's errors and opens its files; may be null for a table that is used
        ///         in memory only
        ///   name  null, or the table's name; at most 31 bytes are kept
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern void KOfflineTable_Constructor(Pointer table, Pointer db,
            [MarshalAs(UnmanagedType.LPStr)] string name);

        /// <summary>Gives back everything the table owns. It is not used again until it is constructed anew.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern void KOfflineTable_Destructor(Pointer table);

        /// <summary>Removes every record and every index; the fields stay. NIDs given out so far are not given out again.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern void KOfflineTable_Clear(Pointer table);

        /// <summary>Returns the database given to the constructor.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern Pointer KOfflineTable_GetOfflineDb(Pointer table);

        /// <summary>Returns the table's name; the text is the table's.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern Pointer KOfflineTable_GetTblName(Pointer table);

        /// <summary>
        /// Adds a field at the end; every record is without a value for it.
        ///   name  at most 32 bytes
        /// Returns its number, or that of the field with this name that is there already; -1 for no name, an empty one, one
        /// that is too long, or when memory runs out (KOFFLINE_ERR_MEMORY).
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineTable_AddFld(Pointer table, [MarshalAs(UnmanagedType.LPStr)] string name);

        /// <summary>Returns the number of fields.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineTable_GetFldsCount(Pointer table);

        /// <summary>Returns the number of the first field with this name, or -1.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineTable_GetFldIndex(Pointer table,
            [MarshalAs(UnmanagedType.LPStr)] string name);

        /// <summary>
        /// Copies a field's name as it was declared.
        ///   name  null, or room for 33 bytes; empty when there is no such field
        /// Returns 1, or 0 for a field number out of range.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineTable_GetFldName(Pointer table, int field, [Out] byte[] name);

        /// <summary>Returns the number of records.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineTable_GetRecsCount(Pointer table);

        /// <summary>
        /// Adds a record at the end from one line in the form of the data files: values in field order, trimmed of blanks
        /// and tabs, then unescaped as KOfflineDb_StrSwap does. Surplus values are ignored; fields beyond the last value have
        /// none. A record without NID, or with an empty one, is given the next free NID when the table has that field.
        ///   separator  what stands between two values; one or more characters
        /// Returns the record's number; -1 when memory runs out (KOFFLINE_ERR_MEMORY), or when the record cannot be given its
        /// NID or a value would begin beyond byte 32767 of the record (KOFFLINE_ERR_RECORD). The table is unchanged then.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineTable_AddRec(Pointer table, [MarshalAs(UnmanagedType.LPStr)] string line,
            [MarshalAs(UnmanagedType.LPStr)] string separator);

        /// <summary>
        /// Changes one value. The empty text over a value leaves an empty value, and no value where there was none.
        ///   value  the text as it is, not escaped; null counts as empty
        /// Returns 1; 0 for a number out of range, when memory runs out (KOFFLINE_ERR_MEMORY) or when a value would begin
        /// beyond byte 32767 of the record (KOFFLINE_ERR_RECORD); nothing is changed then.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineTable_SetFldValue(Pointer table, int rec, int field,
            [MarshalAs(UnmanagedType.LPStr)] string value);

        /// <summary>Returns a value's text; null for a number out of range or a record without value for the field.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern Pointer KOfflineTable_GetFldValue(Pointer table, int rec, int field);

        /// <summary>Deletes a record; those after it move down by one, in the indexes too. Returns 1, or 0 for a number out of range.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineTable_DelRec(Pointer table, int rec);

        /// <summary>
        /// Adds a copy of a record at the end, with a NID of its own. Returns the copy's number; -1 for a number out of range,
        /// when memory runs out (KOFFLINE_ERR_MEMORY) or no NID can be given (KOFFLINE_ERR_RECORD).
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineTable_CopyRec(Pointer table, int rec);

        /// <summary>Returns a record's NID; -1 when it has none, or none that is a whole number.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineTable_GetRecNID(Pointer table, int rec);

        /// <summary>
        /// Sets a record's NID; it is not compared with those of other records. Returns 1; 0 for a table without NID field
        /// or where KOfflineTable_SetFldValue fails.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineTable_SetRecNID(Pointer table, int rec, int nid);

        /// <summary>
        /// Writes the records as a data file: a line a record, values in field order, escaped as KOfflineDb_StrSwap does,
        /// each line ended by CR LF.
        ///   path  with a package open in the table's database, the stored file named by the path's last component; else a
        ///         disk file. Made, or emptied when it is there.
        /// Returns 1; 0 when the file cannot be opened or written (KOFFLINE_ERR_FILE); it keeps what was written so far.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineTable_WriteFile(Pointer table, [MarshalAs(UnmanagedType.LPStr)] string path,
            [MarshalAs(UnmanagedType.LPStr)] string separator);

        /// <summary>
        /// Builds the index of a field, or builds it anew; the field keeps it, through changes of the table, until the table
        /// is cleared or destroyed. A table that has held no record since then keeps the field without index.
        /// Returns 1; 0 for a field that the table lacks (KOFFLINE_ERR_INDEX) or when memory runs out (KOFFLINE_ERR_MEMORY).
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineTable_LoadIdx(Pointer table, [MarshalAs(UnmanagedType.LPStr)] string name);

        /// <summary>
        /// Returns the index of a field as it is: record numbers in ascending order of the value, for the records that
        /// existed when it was last built or mended; null when there is none. A search on an indexed field makes it current.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern Pointer KOfflineTable_GetIndexRecs(Pointer table, int field);

        /// <summary>
        /// Finds the records whose value equals `key`, letter case of A to Z ignored: in index order on an indexed field, in
        /// record order by a scan otherwise. The empty key finds records with an empty value or without one.
        ///   recs      null, or room for `capacity` record numbers; the first matches are stored
        /// Returns how many records match, which may be more than `capacity`; -1 for a field number out of range, and on an
        /// indexed field when none match; 0 when none match in a scan.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineTable_Search(Pointer table, int field,
            [MarshalAs(UnmanagedType.LPStr)] string key, [Out] int[] recs, int capacity);

        /// <summary>Makes an empty database, its six tables included, in storage of any contents.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern void KOfflineDb_Constructor(Pointer db);

        /// <summary>Destroys the tables, closes the package and gives the user data back.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern void KOfflineDb_Destructor(Pointer db);

        /// <summary>Destroys and constructs: the database is as new.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern void KOfflineDb_Reset(Pointer db);

        /// <summary>
        /// Gives the database a block of the caller's own; it lives until it is replaced, or the database destroyed or reset.
        ///   size  bytes, 0 or more
        ///   keep  not 0: the old block's contents are copied to the start of the new one, provided it is at least as large
        /// Returns the block, zero but for what was kept; null when memory runs out, and the old block stays.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern Pointer KOfflineDb_InitUserData(Pointer db, int size, int keep);

        /// <summary>
        /// Returns the caller's block, or null.
        ///   size_out  null, or receives its size in bytes
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern Pointer KOfflineDb_GetUserData(Pointer db, out int size_out);

        /// <summary>Returns the handle of the database's package; 0 when it lives in a directory or nothing is loaded.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetPackageHandle(Pointer db);

        /// <summary>
        /// Copies the path of the last successful load or KOfflineDb_SaveAs.
        ///   dst  null, or room for 260 bytes
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern void KOfflineDb_GetPath(Pointer db, [Out] byte[] dst);

        /// <summary>
        /// Escapes or unescapes one value as the data files hold it: backslash, comma, tab, CR, LF and slash become a
        /// backslash followed by '\', 'c', 't', 'r', 'n', '/'.
        ///   dst        receives the text; may be `src` itself. When it fails, what was made before the failure.
        ///   dst_size   its room in bytes, the terminator included; negative: no limit
        ///   direction  0: unescapes; otherwise escapes
        /// Returns 1; 0 when the text does not fit or holds an escape that stands for nothing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_StrSwap([MarshalAs(UnmanagedType.LPStr)] string src, [Out] byte[] dst,
            int dst_size, int direction);

        /// <summary>
        /// Loads a database into a record that is newly constructed or reset. Fields that a table lacks and can do without
        /// are added to it; the NID, code and link fields are indexed.
        ///   path  a package file, which is opened for reading and writing and stays open, or a directory
        /// Returns 1; 0 with the reason in error_code, which stays KOFFLINE_ERR_NONE for a package that cannot be opened.
        /// What was loaded before the failure stays; the record is reset before it is loaded again.
        /// A load gives no credentials and needs a host file that it may write: a package with a read credential or in a
        /// read-only host file is not loaded, and one with a write credential only is loaded but not saved. Instead, open it
        /// with vlt_package_open, copy the seven files into a directory, load that, and copy them back after a save.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_Load(Pointer db, [MarshalAs(UnmanagedType.LPStr)] string path);

        /// <summary>
        /// Writes the database to where it was loaded from or last saved to. Returns 1; 0 as KOfflineDb_SaveAs, or when there
        /// is no such place.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_Save(Pointer db);

        /// <summary>
        /// Writes all seven files. A database that was loaded from a package is written into that package whatever the path;
        /// any other into the directory `path`, which must exist.
        /// Returns 1; 0 for no path or an empty one, when a file cannot be opened or a data file not written
        /// (KOFFLINE_ERR_FILE), or when the schema cannot be composed (KOFFLINE_ERR_SCHEMA_WRITE). Files written before the
        /// failure keep their new contents.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_SaveAs(Pointer db, [MarshalAs(UnmanagedType.LPStr)] string path);

        /// <summary>Return a table of the database.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern Pointer KOfflineDb_GetTable_BITM(Pointer db);

        /// <summary>Return a table of the database.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern Pointer KOfflineDb_GetTable_BBOM(Pointer db);

        /// <summary>Return a table of the database.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern Pointer KOfflineDb_GetTable_BDWG(Pointer db);

        /// <summary>Return a table of the database.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern Pointer KOfflineDb_GetTable_BITDWG(Pointer db);

        /// <summary>Return a table of the database.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern Pointer KOfflineDb_GetTable_BCAPP(Pointer db);

        /// <summary>Return a table of the database.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern Pointer KOfflineDb_GetTable_BITCAP(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BITM_NID(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BITM_CCODE(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BITM_CNAME(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BITM_CSRC(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BBOM_NID(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BBOM_NPID(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BBOM_NCID(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BBOM_FCOUNT(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BDWG_NID(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BDWG_CCODE(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BDWG_CFILE(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BDWG_CSRC(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BDWG_CASM(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BDWG_COFLNMODI(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BDWG_NOFLNITMID(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BITDWG_NID(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BITDWG_NPID(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BITDWG_NCID(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BCAPP_NID(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BCAPP_CCODE(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BCAPP_CFILE(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BCAPP_CSRC(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BCAPP_COFLNMODI(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BCAPP_NOFLNITMID(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BITCAP_NID(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BITCAP_NPID(Pointer db);

        /// <summary>
        /// Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
        /// field. FCOUNT is looked for again while it is missing.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetFld_BITCAP_NCID(Pointer db);

        /// <summary>Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetRecByNID_BITM(Pointer db, int nid);

        /// <summary>Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetRecByNID_BBOM(Pointer db, int nid);

        /// <summary>Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetRecByNID_BDWG(Pointer db, int nid);

        /// <summary>Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetRecByNID_BITDWG(Pointer db, int nid);

        /// <summary>Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetRecByNID_BCAPP(Pointer db, int nid);

        /// <summary>Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetRecByNID_BITCAP(Pointer db, int nid);

        /// <summary>Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetNIDByRec_BITM(Pointer db, int rec);

        /// <summary>Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetNIDByRec_BBOM(Pointer db, int rec);

        /// <summary>Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetNIDByRec_BDWG(Pointer db, int rec);

        /// <summary>Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetNIDByRec_BITDWG(Pointer db, int rec);

        /// <summary>Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetNIDByRec_BCAPP(Pointer db, int rec);

        /// <summary>Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetNIDByRec_BITCAP(Pointer db, int rec);

        /// <summary>
        /// Copy the code of a record, by its number: of an item, a drawing, a process plan.
        ///   dst  null, or room for the longest code of the table
        /// Return 1, with an empty code for a record that has none or does not exist; 0 with an empty code for a negative
        /// number or a table without codes.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetCCODEByRec(Pointer db, int rec, [Out] byte[] dst);

        /// <summary>
        /// Copy the code of a record, by its number: of an item, a drawing, a process plan.
        ///   dst  null, or room for the longest code of the table
        /// Return 1, with an empty code for a record that has none or does not exist; 0 with an empty code for a negative
        /// number or a table without codes.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetCCODEByRec_BDWG(Pointer db, int rec, [Out] byte[] dst);

        /// <summary>
        /// Copy the code of a record, by its number: of an item, a drawing, a process plan.
        ///   dst  null, or room for the longest code of the table
        /// Return 1, with an empty code for a record that has none or does not exist; 0 with an empty code for a negative
        /// number or a table without codes.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetCCODEByRec_BCAPP(Pointer db, int rec, [Out] byte[] dst);

        /// <summary>
        /// Copy the code of a record, by its NID: of an item, a drawing, a process plan.
        ///   dst  null, or room for the longest code of the table
        /// Return 1, with an empty code for a record without one; 0 with an empty code when no record has this NID, or it is
        /// below 1.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetCCODEByNID(Pointer db, int nid, [Out] byte[] dst);

        /// <summary>
        /// Copy the code of a record, by its NID: of an item, a drawing, a process plan.
        ///   dst  null, or room for the longest code of the table
        /// Return 1, with an empty code for a record without one; 0 with an empty code when no record has this NID, or it is
        /// below 1.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetCCODEByNID_BDWG(Pointer db, int nid, [Out] byte[] dst);

        /// <summary>
        /// Copy the code of a record, by its NID: of an item, a drawing, a process plan.
        ///   dst  null, or room for the longest code of the table
        /// Return 1, with an empty code for a record without one; 0 with an empty code when no record has this NID, or it is
        /// below 1.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetCCODEByNID_BCAPP(Pointer db, int nid, [Out] byte[] dst);

        /// <summary>Returns the NID of the item with this code; -1 when there is none, or no code is given.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetNIDByCCODE(Pointer db, [MarshalAs(UnmanagedType.LPStr)] string code);

        /// <summary>
        /// Makes an item the root of the item tree; the choice is saved with the database.
        ///   rec  its record number in BITM
        /// Returns 1; 0 for an item without a NID of 1 or more, and the root stays.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_SetRootNode(Pointer db, int rec);

        /// <summary>
        /// Lists the tops of the item tree: the root item alone, or the items without a parent when no root is chosen or the
        /// root item is gone.
        ///   recs  null, or room for `max` record numbers of BITM; the first tops are stored
        /// Returns how many there are, which may be more than `max`.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetRootNodes(Pointer db, [Out] int[] recs, int max);

        /// <summary>
        /// Lists the items that have a NID and are the child of no bill-of-material line, in record order; every item when
        /// there is no such line at all.
        ///   recs  null, or room for `max` record numbers of BITM; the first items are stored
        /// Returns how many there are, which may be more than `max`.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetNoParentNodes(Pointer db, [Out] int[] recs, int max);

        /// <summary>Keeps a record number for the caller; the library does not look at it.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern void KOfflineDb_SetCheckInRec(Pointer db, int rec);

        /// <summary>Returns the number kept by KOfflineDb_SetCheckInRec; -1 at first.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetCheckInRec(Pointer db);

        /// <summary>
        /// Copies a stored file to a disk file, which is made, or emptied when it is there. Returns 1 once both are open,
        /// even when the copy is cut short by a full disk; 0 when one cannot be opened. When it is the stored file, an empty
        /// disk file stays behind.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_GetPackageFile(Pointer db,
            [MarshalAs(UnmanagedType.LPStr)] string stored_name, [MarshalAs(UnmanagedType.LPStr)] string disk_path);

        /// <summary>
        /// Copies a disk file into the package; the stored file is made, or emptied when it is there. Mind the order of the
        /// arguments. Returns 1 once both are open, even when the copy is cut short; 0 when one cannot be opened.
        /// </summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_SavePackageFile(Pointer db,
            [MarshalAs(UnmanagedType.LPStr)] string disk_path, [MarshalAs(UnmanagedType.LPStr)] string stored_name);

        /// <summary>Returns 1 when the package holds this file, else 0.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true,
            BestFitMapping = false, ThrowOnUnmappableChar = true)]
        public static extern int KOfflineDb_CheckPackageFileExist(Pointer db,
            [MarshalAs(UnmanagedType.LPStr)] string stored_name);
    }

    /// <summary>One field of a table.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct KOfflineField
    {
        // as declared, with the table's name and a point in front or without
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 33)] public byte[] field_name;
        public Pointer index; // record numbers in ascending order of the field's value, or null
    }

    /// <summary>One table.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct KOfflineTable
    {
        public Pointer db; // receives the error codes and opens the table's files
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 32)] public byte[] table_name; // such as "BITM"
        public Pointer fields; // null while the table has no field
        public int field_count; // number of fields
        public int indexes_stale; // 1 when the indexes may not match the records; the next indexed search mends that
        public Pointer records; // null until the first record is added
        public int record_capacity; // slots in `records`
        public int record_count; // number of records
        public int nid_watermark; // base of the NID given out last, which is one higher; -1: none yet
    }

    /// <summary>One database.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct KOfflineDb
    {
        public int package; // handle of the package it was loaded from, which it owns; 0 for a directory
        // path of the last successful load or KOfflineDb_SaveAs; empty at first
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 260)] public byte[] path;
        public int user_data_size; // bytes in user_data
        public Pointer user_data; // block of KOfflineDb_InitUserData, or null
        public int root_nid; // NID of the root item; -1: none chosen
        // field numbers for the KOfflineDb_GetFld_ functions, in their order; -1: no such field
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 27)] public int[] field_slots;
        // BITM, BBOM, BDWG, BITDWG, BCAPP, BITCAP
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 6)] public KOfflineTable[] tables;
        // what stands between two values in the data files; empty at first
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 16)] public byte[] separator;
        public int check_in_rec; // a record number of the caller's; -1 at first
        public int error_code; // a KOFFLINE_ERR_ code
        // detail of the last failure that had one
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 256)] public byte[] error_text;
    }
}
