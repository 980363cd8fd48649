/* SPDX-License-Identifier: MIT */
/*
 * vlt.h - the package store: a small file system inside one ordinary host file.
 *
 * A package holds stored files, flat-named, each a chain of 4096-byte blocks. Every change is written to the host
 * file before the call that makes it returns; closing flushes nothing.
 *
 * Conventions
 *
 * Results.   1 for success and 0 for failure, unless a function says otherwise. No function throws; running out of
 *            memory or disk space is an ordinary failure.
 * Handles.   A package handle is a positive number; a file handle is the package handle in its upper 16 bits and a
 *            slot number in its lower 16 bits. 0 is never a handle. A closed handle may come to name a later opening.
 *            The opening functions return a file handle as int32_t, all others take it as uint32_t: cast the result,
 *            `uint32_t file = (uint32_t)vlt_file_open(...)`, and compare it with 0 only, because the handle of a
 *            file in package 32768 or above is negative before the cast.
 * Names.     A package stores either narrow names (zero-terminated multibyte text, at most VLT_NAME_MAX bytes) or
 *            wide names (UTF-16, at most VLT_NAME_MAX code units), fixed at creation. vlt_ functions that take a
 *            name serve packages with narrow names, vltw_ functions packages with wide names; each refuses the
 *            other kind. Names keep their letters and are compared without regard to the case of A to Z. Any text
 *            is a name, the empty one included; '/' and '\' have no meaning in one.
 * Paths.     Paths of host files may use '/' or '\' on every system. They are narrow text in the system's code page
 *            (Windows) or whatever bytes the file system takes; there is no form with wide paths.
 * Sharing.   One process at a time. Two processes that have one package open overwrite each other's changes without
 *            notice; `exclusive` does not keep a second process out. In one process a path that is open already, in
 *            any letter case, gives a further handle of the same package. Only that text is compared: two spellings
 *            of one path ("a.vlt", "./a.vlt") are opened as two packages, which overwrite each other as two
 *            processes do, and where a host tells letter case apart, "A.vlt" beside an open "a.vlt" is "a.vlt".
 * Access.    Credentials are a convention between programs, not protection. Nothing is encrypted: whoever may read
 *            the host file can read the stored files and the credentials. A handle with the read credential alone
 *            opens no file for writing, but may delete files and set their times.
 * Times.     A time stamp is a double in local time: the date as the number YYYYMMDD, plus hhmmss / 1000000. 21 March
 *            2005 at 14:07:09 is 20050321.140709. 0.0 stands for no valid time.
 * Memory.    The library never hands out memory that the caller must free, vlt_alloc_mem apart.
 * Threads.   Functions on files (vlt_file_..., vltw_file_..., vlt_package_enum, vltw_package_enum) may be called from
 *            any number of threads; those on one package wait for each other, those on different packages run side
 *            by side. Functions that create, open or close packages must not run while any other call of the
 *            library is in progress.
 * Linking.   Link with libvlt.so, or with the import library of vlt.dll; functions are cdecl.
 */
#ifndef VLT_H
#define VLT_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#define VLT_CALL __cdecl
#define VLT_API extern
typedef wchar_t vlt_wchar;
#else
#define VLT_CALL
#define VLT_API __attribute__((visibility("default")))
#ifdef __cplusplus
typedef char16_t vlt_wchar;
#else
#include <uchar.h>
typedef char16_t vlt_wchar;
#endif
#endif

#ifdef __cplusplus
extern "C" {
#endif

enum {
    VLT_BLOCK_SIZE = 4096,  /* unit of all package storage, in bytes */
    VLT_NAME_MAX = 512,     /* characters of a stored name, without its terminator */
    VLT_CREDENTIAL_MAX = 16 /* bytes of a credential, without its terminator */
};

/* Modes of vlt_file_open. Reading is allowed in every mode. */
enum {
    VLT_MODE_WRITE = 0, /* made when missing; starts at 0; may write anywhere */
    VLT_MODE_READ = 1,  /* must exist; starts at 0; may not write */
    VLT_MODE_APPEND = 2 /* made when missing; starts at its end; may write at or beyond where it ended then */
};

/* Kinds that vlt_file_get_info and vlt_package_enum report. */
enum {
    VLT_ENTRY_FILE = 1, /* a stored file */
    VLT_ENTRY_OTHER = 2 /* an entry of another maker: listed, inspected and re-stamped, never opened or deleted */
};

/* Codes that vlt_package_open and vlt_package_open_ex store when they fail. */
enum {
    VLT_OPEN_NOT_A_PACKAGE = 1, /* the host file is not a package */
    VLT_OPEN_CREDENTIALS = 2,   /* neither credential matches */
    VLT_OPEN_NO_FILE = 3,       /* the host file cannot be opened */
    VLT_OPEN_ACCESS = 4,        /* an exclusive opening exists, or the host file may not be written */
    VLT_OPEN_ARGUMENT = 5       /* negative offset, read_only neither 0 nor 1, no path */
};

/* Codes that vlt_file_open and vltw_file_open store. */
enum {
    VLT_FILE_OK = 0,       /* no error */
    VLT_FILE_NO_SLOT = 1,  /* no room for another open file, or the truncation failed */
    VLT_FILE_REQUEST = 2,  /* unknown mode; truncate without VLT_MODE_WRITE; no such package; other name width */
    VLT_FILE_ACCESS = 3,   /* writing through a read-only handle, or in conflict with another open of the file */
    VLT_FILE_NOT_FOUND = 4 /* no such file to read, or the file cannot be made */
};

/* ---- Packages ------------------------------------------------------------------------------------------------ */

/*
 * Creates a package in a host file of its own; an existing file of that name is overwritten. A package that is open,
 * here or in another process, is ruined by that.
 *   path              the host file
 *   wide_names        0: narrow names; otherwise wide names
 *   size_mb           size in mebibytes, up to 1048575; 0 or less gives the smallest package, 8192 bytes.
 *                     A package grows beyond its size when it is full.
 *   read_credential   grants read-only access; null counts as empty; at most 16 bytes
 *   write_credential  grants read/write access; null or empty: everybody may write
 * Returns 1; 0 when a credential or the size is too long (the file is not touched then) or the file cannot be
 * written whole (it is removed then).
 */
VLT_API int32_t VLT_CALL vlt_package_create(const char* path, int32_t wide_names, int32_t size_mb,
                                            const char* read_credential, const char* write_credential);

/*
 * Opens a package that lies at an offset in its host file. A path that is open already, in any letter case, gives a
 * second handle that shares the first one's package: the host file is not opened again, and read_only_file,
 * exclusive and the offset are not used.
 *   path              the host file; it must exist
 *   read_only_file    not 0: the host file is opened for reading only, and the handle is read-only
 *   offset_low, offset_high  the two halves of the offset in bytes; never negative
 *   read_only         1: this handle may not write; 0: it may, if the write credential matches
 *   exclusive         not 0: no further opening of this path in this process while this one lasts (first openings
 *                     only)
 *   read_credential, write_credential  compared with those of the package; null counts as empty. With only the read
 *                     credential right, the handle is read-only.
 *   wide_names_out    null, or receives 1 when the package stores wide names, else 0
 *   error_out         null, or receives a VLT_OPEN_ code on failure; untouched on success
 * Returns a package handle, or 0. The handle is closed with vlt_package_close.
 */
VLT_API int32_t VLT_CALL vlt_package_open_ex(const char* path, int32_t read_only_file, uint32_t offset_low,
                                             int32_t offset_high, int32_t read_only, int32_t exclusive,
                                             const char* read_credential, const char* write_credential,
                                             int32_t* wide_names_out, int32_t* error_out);

/* vlt_package_open_ex with read_only_file 0 and offset 0. */
VLT_API int32_t VLT_CALL vlt_package_open(const char* path, int32_t read_only, int32_t exclusive,
                                          const char* read_credential, const char* write_credential,
                                          int32_t* wide_names_out, int32_t* error_out);

/* Returns 1 when the package stores wide names, 0 when narrow, -1 for a handle that is not open. */
VLT_API int32_t VLT_CALL vlt_package_is_unicode_files(int32_t package);

/*
 * Closes a package handle and the files opened through it. Other handles of the package stay usable.
 * Returns 1, or 0 for a handle that is not open.
 */
VLT_API int32_t VLT_CALL vlt_package_close(int32_t package);

/* Closes every package handle. Unloading the library does the same. */
VLT_API void VLT_CALL vlt_package_close_all(void);

/* Returns `size` uninitialised bytes of the library's heap, or null. Given back with vlt_free_mem. */
VLT_API void* VLT_CALL vlt_alloc_mem(size_t size);

/* Gives a block of vlt_alloc_mem back; null is ignored. */
VLT_API void VLT_CALL vlt_free_mem(void* pointer);

/* ---- Stored files, open -------------------------------------------------------------------------------------- */

/*
 * Opens a stored file. Any number of readers may share a file with at most one writer or appender, over all handles
 * of the package; an exclusive open shares with nobody.
 *   mode       a VLT_MODE_ value
 *   exclusive  not 0: no other open of the file may exist, now or while this one lasts
 *   truncate   not 0: the file is emptied; VLT_MODE_WRITE only
 *   error      null, or receives a VLT_FILE_ code: VLT_FILE_OK, or why the open failed
 * Returns a file handle, or 0. It is closed with vlt_file_close, or together with its package handle. A package
 * handle holds up to 65535 open files. When the host file fails while the entry of a truncated file
 * (VLT_FILE_NO_SLOT) or of a new one (VLT_FILE_NOT_FOUND) is written, that file is empty for this session, and for
 * good once its entry has been written: by any later change of the file that succeeds. An open that fails for want of
 * memory makes and empties nothing.
 */
VLT_API int32_t VLT_CALL vlt_file_open(int32_t package, const char* name, uint32_t mode, int32_t exclusive,
                                       int32_t truncate, uint32_t* error);
VLT_API int32_t VLT_CALL vltw_file_open(int32_t package, const vlt_wchar* name, uint32_t mode, int32_t exclusive,
                                        int32_t truncate, uint32_t* error);

/* Closes a file handle. Returns 1, also when it was closed before; 0 for a handle that cannot be one. */
VLT_API int32_t VLT_CALL vlt_file_close(uint32_t file);

/*
 * Reads up to `length` bytes at the position and moves the position past them; sets the file's accessed stamp, which
 * stays in memory while the package's first handle is read-only (once that is closed, the lowest of those left).
 * Returns how many bytes were read: fewer than asked at the end of the file; 0 at the end and on failure, and the
 * position stays. vlt_file_is_eof tells the two apart: 1 at the end, 0 after a failure.
 */
VLT_API int32_t VLT_CALL vlt_file_read(uint32_t file, void* buffer, int32_t length);

/*
 * Writes `length` bytes at the position and moves the position past them; the file and the package grow as needed;
 * sets the accessed and written stamps. Returns 1 when all bytes are in the host file; also for a null buffer or a
 * length below 1, which write nothing. 0 on failure: position and length stay, part of the bytes may be stored.
 */
VLT_API int32_t VLT_CALL vlt_file_write(uint32_t file, const void* buffer, int32_t length);

/* Moves the position, in bytes from the start; negative or beyond the end means the end. Returns 1 or 0. */
VLT_API int32_t VLT_CALL vlt_file_set_pos(uint32_t file, int64_t position);

/* Moves the position to the start. Returns 1 or 0. */
VLT_API int32_t VLT_CALL vlt_file_set_pos_bof(uint32_t file);

/* Moves the position to the end. Returns 1 or 0. */
VLT_API int32_t VLT_CALL vlt_file_set_pos_eof(uint32_t file);

/* Stores the position, in bytes from the start; 0 when it fails. Returns 1, or 0 for a bad handle or no result. */
VLT_API int32_t VLT_CALL vlt_file_get_pos(uint32_t file, int64_t* position);

/* Returns 1 at or beyond the end, 0 before it, -1 for a handle that is not open. */
VLT_API int32_t VLT_CALL vlt_file_is_eof(uint32_t file);

/* Returns 1 at the start, 0 elsewhere, -1 for a handle that cannot be one. */
VLT_API int32_t VLT_CALL vlt_file_is_bof(uint32_t file);

/* ---- Stored files, by name ----------------------------------------------------------------------------------- */

/*
 * Reports on a stored file without opening or changing it; null results are skipped.
 *   kind      VLT_ENTRY_FILE or VLT_ENTRY_OTHER
 *   size      length in bytes
 *   created, accessed, written  time stamps
 * Returns 1, or 0 when there is no such file; the results are untouched then.
 */
VLT_API int32_t VLT_CALL vlt_file_get_info(int32_t package, const char* name, uint32_t* kind, int64_t* size,
                                           double* created, double* accessed, double* written);
VLT_API int32_t VLT_CALL vltw_file_get_info(int32_t package, const vlt_wchar* name, uint32_t* kind, int64_t* size,
                                            double* created, double* accessed, double* written);

/*
 * Sets the three stamps of a stored file to the values given, whatever they are; the file may be open and the
 * handle read-only. Returns 1; 0 when there is no such file, or when its entry cannot be written: this session shows
 * the new stamps then, and the host file has them once a later change of the file has succeeded.
 */
VLT_API int32_t VLT_CALL vlt_file_set_time(int32_t package, const char* name, double created, double accessed,
                                           double written);
VLT_API int32_t VLT_CALL vltw_file_set_time(int32_t package, const vlt_wchar* name, double created, double accessed,
                                            double written);

/*
 * Deletes a stored file and frees its blocks, for a read-only handle too. Returns 1; 0 when there is no such file,
 * when it is open through any handle of the package (nothing changes then), or when the host file fails or may not be
 * written. After that last failure the file is empty or gone for this session, and for good once its entry has been
 * written.
 */
VLT_API int32_t VLT_CALL vlt_file_delete(int32_t package, const char* name);
VLT_API int32_t VLT_CALL vltw_file_delete(int32_t package, const vlt_wchar* name);

/*
 * Lists the stored files, one a call, in the order of the directory.
 *   cursor  0 (or less) for the first; then what the call before returned
 *   name    null, or room for VLT_NAME_MAX + 1 characters
 *   kind, size, created, accessed, written  as for vlt_file_get_info
 * Returns the next cursor; 0 when there is no further file (the results are untouched then), or for a bad handle.
 * Files may come and go between two calls.
 */
VLT_API int32_t VLT_CALL vlt_package_enum(int32_t package, int32_t cursor, char* name, uint32_t* kind, int64_t* size,
                                          double* created, double* accessed, double* written);
VLT_API int32_t VLT_CALL vltw_package_enum(int32_t package, int32_t cursor, vlt_wchar* name, uint32_t* kind,
                                           int64_t* size, double* created, double* accessed, double* written);

#ifdef __cplusplus
}
#endif

#endif
