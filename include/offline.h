/* SPDX-License-Identifier: MIT */
/*
 * offline.h - the offline product-data database: six tables of text records over the package store of vlt.h.
 *
 *   BITM    items                          BBOM    bill-of-material lines: a parent item and a child item
 *   BDWG    drawings                       BITDWG  links from an item to a drawing
 *   BCAPP   process plans                  BITCAP  links from an item to a process plan
 *
 * A database lives in a package (seven stored files, beside any documents it refers to) or as the same seven files
 * in a directory: the schema "kdbmain.txt" and one data file a table, "bitm.txt" to "bitcap.txt".
 *
 * Conventions
 *
 * Results.   1 for success and 0 for failure, unless a function says otherwise; numbers that name something are -1
 *            when there is no such thing. No function throws; running out of memory is an ordinary failure.
 * Errors.    KOfflineDb.error_code holds the last failure of the database or one of its tables, error_text its
 *            detail; a failure without detail leaves the text of an earlier one. The start of a load sets the code
 *            to KOFFLINE_ERR_NONE; nothing else clears it, and the text is never cleared. Functions that say nothing
 *            of a code set none.
 * Storage.   The caller provides KOfflineDb and KOfflineTable records; the library owns what they point to and gives
 *            it back in the destructor. Fields of the records may be read, and are changed by functions only.
 *            Tables of a database are constructed and destroyed with it. Fields have their natural alignment; their
 *            sizes and offsets, for callers in other languages, stand in docs/windows.md.
 * Numbers.   Records and fields of a table are numbered from 0 in their order. Deleting a record renumbers those
 *            after it.
 * Values.    Every value is text. A record has a value for a field, possibly an empty one, or has none. Pointers to
 *            values are valid until that record changes, a field is added, or the table is cleared or destroyed.
 * NID.       The number that identifies a record, as decimal text in the field "NID". A record that is added without
 *            one is given the next free one.
 * Names.     Fields are found by what follows the first point of their name, letter case of A to Z ignored: "NID",
 *            "nid" and "BDWG.NID" are the same field. Codes and searched values ignore that letter case too.
 * Text.      Zero-terminated, in the process's multibyte character set: the current code page of the runtime library
 *            on Windows, the C locale elsewhere. Arguments that are too long for their place are cut or refused.
 * Paths.     As in vlt.h: '/' or '\' on every system. Blanks and tabs around the path of a database are ignored.
 * Files.     Data files and schema: up to 2 GiB - 1 bytes each; attached files may be longer. The schema's lines
 *            end with CR LF; with LF or CR alone the whole schema is one line, and the load fails with
 *            KOFFLINE_ERR_TABLE and, as a rule, "BITM". Data files are not CSV: quotes are letters like others,
 *            "//" begins a comment, and a byte order mark belongs to the first value. A save writes what the
 *            database holds: comments, and schema lines that the load skipped, are gone then.
 * Threads.   A database and its tables serve one thread at a time; even a search may rebuild an index. Different
 *            databases may be used side by side.
 */
#ifndef VLT_OFFLINE_H
#define VLT_OFFLINE_H

#include <stdint.h>

#include "vlt.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Codes of KOfflineDb.error_code, with what error_text then holds. */
enum {
    KOFFLINE_ERR_NONE = 0,
    KOFFLINE_ERR_MEMORY = 1,       /* no memory for a record, a field or a file; text unchanged */
    KOFFLINE_ERR_FILE = 2,         /* a file cannot be opened, sized, read or written; its full name */
    KOFFLINE_ERR_SEPARATOR = 3,    /* the schema sets no separator; text unchanged */
    KOFFLINE_ERR_FIELD = 4,        /* a field that a table must have is missing; such as "BITM.CCODE" */
    KOFFLINE_ERR_INDEX = 5,        /* an index was asked for on a field the table lacks; the name as asked for */
    KOFFLINE_ERR_RECORD = 6,       /* a record cannot be given its NID, or cannot hold a value; text unchanged */
    KOFFLINE_ERR_SCHEMA_WRITE = 7, /* the schema cannot be composed; text unchanged */
    KOFFLINE_ERR_TABLE = 8         /* the schema does not declare a table that must exist; "BITM" or "BBOM" */
};

typedef struct KOfflineDb KOfflineDb;
typedef struct KOfflineRecord KOfflineRecord; /* the values of one record; opaque */

/* One field of a table. */
typedef struct KOfflineField {
    char field_name[33]; /* as declared, with the table's name and a point in front or without */
    int32_t* index;      /* record numbers in ascending order of the field's value, or null */
} KOfflineField;

/* One table. */
typedef struct KOfflineTable {
    KOfflineDb* db;           /* receives the error codes and opens the table's files */
    char table_name[32];      /* such as "BITM" */
    KOfflineField* fields;    /* null while the table has no field */
    int32_t field_count;      /* number of fields */
    int32_t indexes_stale;    /* 1 when the indexes may not match the records; the next indexed search mends that */
    KOfflineRecord** records; /* null until the first record is added */
    int32_t record_capacity;  /* slots in `records` */
    int32_t record_count;     /* number of records */
    int32_t nid_watermark;    /* base of the NID given out last, which is one higher; -1: none yet */
} KOfflineTable;

/* One database. */
struct KOfflineDb {
    int32_t package;        /* handle of the package it was loaded from, which it owns; 0 for a directory */
    char path[260];         /* path of the last successful load or KOfflineDb_SaveAs; empty at first */
    int32_t user_data_size; /* bytes in user_data */
    void* user_data;        /* block of KOfflineDb_InitUserData, or null */
    int32_t root_nid;       /* NID of the root item; -1: none chosen */
    int32_t
        field_slots[27]; /* field numbers for the KOfflineDb_GetFld_ functions, in their order; -1: no such field */
    KOfflineTable tables[6]; /* BITM, BBOM, BDWG, BITDWG, BCAPP, BITCAP */
    char separator[16];      /* what stands between two values in the data files; empty at first */
    int32_t check_in_rec;    /* a record number of the caller's; -1 at first */
    int32_t error_code;      /* a KOFFLINE_ERR_ code */
    char error_text[256];    /* detail of the last failure that had one */
};

/* ---- Tables: life and fields --------------------------------------------------------------------------------- */

/*
 * Makes an empty table in storage of any contents.
 *   db    the database that receives the table's errors and opens its files; may be null for a table that is used
 *         in memory only
 *   name  null, or the table's name; at most 31 bytes are kept
 */
VLT_API void VLT_CALL KOfflineTable_Constructor(KOfflineTable* table, KOfflineDb* db, const char* name);

/* Gives back everything the table owns. It is not used again until it is constructed anew. */
VLT_API void VLT_CALL KOfflineTable_Destructor(KOfflineTable* table);

/* Removes every record and every index; the fields stay. NIDs given out so far are not given out again. */
VLT_API void VLT_CALL KOfflineTable_Clear(KOfflineTable* table);

/* Returns the database given to the constructor. */
VLT_API KOfflineDb* VLT_CALL KOfflineTable_GetOfflineDb(KOfflineTable* table);

/* Returns the table's name; the text is the table's. */
VLT_API const char* VLT_CALL KOfflineTable_GetTblName(KOfflineTable* table);

/*
 * Adds a field at the end; every record is without a value for it.
 *   name  at most 32 bytes
 * Returns its number, or that of the field with this name that is there already; -1 for no name, an empty one, one
 * that is too long, or when memory runs out (KOFFLINE_ERR_MEMORY).
 */
VLT_API int32_t VLT_CALL KOfflineTable_AddFld(KOfflineTable* table, const char* name);

/* Returns the number of fields. */
VLT_API int32_t VLT_CALL KOfflineTable_GetFldsCount(KOfflineTable* table);

/* Returns the number of the first field with this name, or -1. */
VLT_API int32_t VLT_CALL KOfflineTable_GetFldIndex(KOfflineTable* table, const char* name);

/*
 * Copies a field's name as it was declared.
 *   name  null, or room for 33 bytes; empty when there is no such field
 * Returns 1, or 0 for a field number out of range.
 */
VLT_API int32_t VLT_CALL KOfflineTable_GetFldName(KOfflineTable* table, int32_t field, char* name);

/* ---- Tables: records ----------------------------------------------------------------------------------------- */

/* Returns the number of records. */
VLT_API int32_t VLT_CALL KOfflineTable_GetRecsCount(KOfflineTable* table);

/*
 * Adds a record at the end from one line in the form of the data files: values in field order, trimmed of blanks
 * and tabs, then unescaped as KOfflineDb_StrSwap does. Surplus values are ignored; fields beyond the last value have
 * none. A record without NID, or with an empty one, is given the next free NID when the table has that field.
 *   separator  what stands between two values; one or more characters
 * Returns the record's number; -1 when memory runs out (KOFFLINE_ERR_MEMORY), or when the record cannot be given its
 * NID or a value would begin beyond byte 32767 of the record (KOFFLINE_ERR_RECORD). The table is unchanged then.
 */
VLT_API int32_t VLT_CALL KOfflineTable_AddRec(KOfflineTable* table, const char* line, const char* separator);

/*
 * Changes one value. The empty text over a value leaves an empty value, and no value where there was none.
 *   value  the text as it is, not escaped; null counts as empty
 * Returns 1; 0 for a number out of range, when memory runs out (KOFFLINE_ERR_MEMORY) or when a value would begin
 * beyond byte 32767 of the record (KOFFLINE_ERR_RECORD); nothing is changed then.
 */
VLT_API int32_t VLT_CALL KOfflineTable_SetFldValue(KOfflineTable* table, int32_t rec, int32_t field,
                                                   const char* value);

/* Returns a value's text; null for a number out of range or a record without value for the field. */
VLT_API const char* VLT_CALL KOfflineTable_GetFldValue(KOfflineTable* table, int32_t rec, int32_t field);

/* Deletes a record; those after it move down by one, in the indexes too. Returns 1, or 0 for a number out of range.
 */
VLT_API int32_t VLT_CALL KOfflineTable_DelRec(KOfflineTable* table, int32_t rec);

/*
 * Adds a copy of a record at the end, with a NID of its own. Returns the copy's number; -1 for a number out of range,
 * when memory runs out (KOFFLINE_ERR_MEMORY) or no NID can be given (KOFFLINE_ERR_RECORD).
 */
VLT_API int32_t VLT_CALL KOfflineTable_CopyRec(KOfflineTable* table, int32_t rec);

/* Returns a record's NID; -1 when it has none, or none that is a whole number. */
VLT_API int32_t VLT_CALL KOfflineTable_GetRecNID(KOfflineTable* table, int32_t rec);

/*
 * Sets a record's NID; it is not compared with those of other records. Returns 1; 0 for a table without NID field
 * or where KOfflineTable_SetFldValue fails.
 */
VLT_API int32_t VLT_CALL KOfflineTable_SetRecNID(KOfflineTable* table, int32_t rec, int32_t nid);

/*
 * Writes the records as a data file: a line a record, values in field order, escaped as KOfflineDb_StrSwap does,
 * each line ended by CR LF.
 *   path  with a package open in the table's database, the stored file named by the path's last component; else a
 *         disk file. Made, or emptied when it is there.
 * Returns 1; 0 when the file cannot be opened or written (KOFFLINE_ERR_FILE); it keeps what was written so far.
 */
VLT_API int32_t VLT_CALL KOfflineTable_WriteFile(KOfflineTable* table, const char* path, const char* separator);

/* ---- Tables: search ------------------------------------------------------------------------------------------ */

/*
 * Builds the index of a field, or builds it anew; the field keeps it, through changes of the table, until the table
 * is cleared or destroyed. A table that has held no record since then keeps the field without index.
 * Returns 1; 0 for a field that the table lacks (KOFFLINE_ERR_INDEX) or when memory runs out (KOFFLINE_ERR_MEMORY).
 */
VLT_API int32_t VLT_CALL KOfflineTable_LoadIdx(KOfflineTable* table, const char* name);

/*
 * Returns the index of a field as it is: record numbers in ascending order of the value, for the records that
 * existed when it was last built or mended; null when there is none. A search on an indexed field makes it current.
 */
VLT_API int32_t* VLT_CALL KOfflineTable_GetIndexRecs(KOfflineTable* table, int32_t field);

/*
 * Finds the records whose value equals `key`, letter case of A to Z ignored: in index order on an indexed field, in
 * record order by a scan otherwise. The empty key finds records with an empty value or without one.
 *   recs      null, or room for `capacity` record numbers; the first matches are stored
 * Returns how many records match, which may be more than `capacity`; -1 for a field number out of range, and on an
 * indexed field when none match; 0 when none match in a scan.
 */
VLT_API int32_t VLT_CALL KOfflineTable_Search(KOfflineTable* table, int32_t field, const char* key, int32_t* recs,
                                              int32_t capacity);

/* ---- Databases: life ----------------------------------------------------------------------------------------- */

/* Makes an empty database, its six tables included, in storage of any contents. */
VLT_API void VLT_CALL KOfflineDb_Constructor(KOfflineDb* db);

/* Destroys the tables, closes the package and gives the user data back. */
VLT_API void VLT_CALL KOfflineDb_Destructor(KOfflineDb* db);

/* Destroys and constructs: the database is as new. */
VLT_API void VLT_CALL KOfflineDb_Reset(KOfflineDb* db);

/*
 * Gives the database a block of the caller's own; it lives until it is replaced, or the database destroyed or reset.
 *   size  bytes, 0 or more
 *   keep  not 0: the old block's contents are copied to the start of the new one, provided it is at least as large
 * Returns the block, zero but for what was kept; null when memory runs out, and the old block stays.
 */
VLT_API void* VLT_CALL KOfflineDb_InitUserData(KOfflineDb* db, int32_t size, int32_t keep);

/*
 * Returns the caller's block, or null.
 *   size_out  null, or receives its size in bytes
 */
VLT_API void* VLT_CALL KOfflineDb_GetUserData(KOfflineDb* db, int32_t* size_out);

/* Returns the handle of the database's package; 0 when it lives in a directory or nothing is loaded. */
VLT_API int32_t VLT_CALL KOfflineDb_GetPackageHandle(KOfflineDb* db);

/*
 * Copies the path of the last successful load or KOfflineDb_SaveAs.
 *   dst  null, or room for 260 bytes
 */
VLT_API void VLT_CALL KOfflineDb_GetPath(KOfflineDb* db, char* dst);

/*
 * Escapes or unescapes one value as the data files hold it: backslash, comma, tab, CR, LF and slash become a
 * backslash followed by '\', 'c', 't', 'r', 'n', '/'.
 *   dst        receives the text; may be `src` itself. When it fails, what was made before the failure.
 *   dst_size   its room in bytes, the terminator included; negative: no limit
 *   direction  0: unescapes; otherwise escapes
 * Returns 1; 0 when the text does not fit or holds an escape that stands for nothing.
 */
VLT_API int32_t VLT_CALL KOfflineDb_StrSwap(const char* src, char* dst, int32_t dst_size, int32_t direction);

/* ---- Databases: load and save -------------------------------------------------------------------------------- */

/*
 * Loads a database into a record that is newly constructed or reset. Fields that a table lacks and can do without
 * are added to it; the NID, code and link fields are indexed.
 *   path  a package file, which is opened for reading and writing and stays open, or a directory
 * Returns 1; 0 with the reason in error_code, which stays KOFFLINE_ERR_NONE for a package that cannot be opened.
 * What was loaded before the failure stays; the record is reset before it is loaded again.
 * A load gives no credentials and needs a host file that it may write: a package with a read credential or in a
 * read-only host file is not loaded, and one with a write credential only is loaded but not saved. Instead, open it
 * with vlt_package_open, copy the seven files into a directory, load that, and copy them back after a save.
 */
VLT_API int32_t VLT_CALL KOfflineDb_Load(KOfflineDb* db, const char* path);

/*
 * Writes the database to where it was loaded from or last saved to. Returns 1; 0 as KOfflineDb_SaveAs, or when there
 * is no such place.
 */
VLT_API int32_t VLT_CALL KOfflineDb_Save(KOfflineDb* db);

/*
 * Writes all seven files. A database that was loaded from a package is written into that package whatever the path;
 * any other into the directory `path`, which must exist.
 * Returns 1; 0 for no path or an empty one, when a file cannot be opened or a data file not written
 * (KOFFLINE_ERR_FILE), or when the schema cannot be composed (KOFFLINE_ERR_SCHEMA_WRITE). Files written before the
 * failure keep their new contents.
 */
VLT_API int32_t VLT_CALL KOfflineDb_SaveAs(KOfflineDb* db, const char* path);

/* ---- Databases: tables and fields ---------------------------------------------------------------------------- */

/* Return a table of the database. */
VLT_API KOfflineTable* VLT_CALL KOfflineDb_GetTable_BITM(KOfflineDb* db);
VLT_API KOfflineTable* VLT_CALL KOfflineDb_GetTable_BBOM(KOfflineDb* db);
VLT_API KOfflineTable* VLT_CALL KOfflineDb_GetTable_BDWG(KOfflineDb* db);
VLT_API KOfflineTable* VLT_CALL KOfflineDb_GetTable_BITDWG(KOfflineDb* db);
VLT_API KOfflineTable* VLT_CALL KOfflineDb_GetTable_BCAPP(KOfflineDb* db);
VLT_API KOfflineTable* VLT_CALL KOfflineDb_GetTable_BITCAP(KOfflineDb* db);

/*
 * Return the number of a field in its table, as the load found it; 0 before a load, -1 when the table lacks the
 * field. FCOUNT is looked for again while it is missing.
 */
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BITM_NID(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BITM_CCODE(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BITM_CNAME(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BITM_CSRC(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BBOM_NID(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BBOM_NPID(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BBOM_NCID(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BBOM_FCOUNT(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BDWG_NID(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BDWG_CCODE(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BDWG_CFILE(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BDWG_CSRC(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BDWG_CASM(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BDWG_COFLNMODI(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BDWG_NOFLNITMID(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BITDWG_NID(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BITDWG_NPID(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BITDWG_NCID(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BCAPP_NID(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BCAPP_CCODE(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BCAPP_CFILE(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BCAPP_CSRC(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BCAPP_COFLNMODI(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BCAPP_NOFLNITMID(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BITCAP_NID(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BITCAP_NPID(KOfflineDb* db);
VLT_API int32_t VLT_CALL KOfflineDb_GetFld_BITCAP_NCID(KOfflineDb* db);

/* ---- Databases: lookup --------------------------------------------------------------------------------------- */

/* Return the number of the record with this NID, or -1. The NID is compared as decimal text: 7 does not find "007".
 */
VLT_API int32_t VLT_CALL KOfflineDb_GetRecByNID_BITM(KOfflineDb* db, int32_t nid);
VLT_API int32_t VLT_CALL KOfflineDb_GetRecByNID_BBOM(KOfflineDb* db, int32_t nid);
VLT_API int32_t VLT_CALL KOfflineDb_GetRecByNID_BDWG(KOfflineDb* db, int32_t nid);
VLT_API int32_t VLT_CALL KOfflineDb_GetRecByNID_BITDWG(KOfflineDb* db, int32_t nid);
VLT_API int32_t VLT_CALL KOfflineDb_GetRecByNID_BCAPP(KOfflineDb* db, int32_t nid);
VLT_API int32_t VLT_CALL KOfflineDb_GetRecByNID_BITCAP(KOfflineDb* db, int32_t nid);

/* Return the NID of a record; -1 when there is no such record, or it has no NID that is a whole number. */
VLT_API int32_t VLT_CALL KOfflineDb_GetNIDByRec_BITM(KOfflineDb* db, int32_t rec);
VLT_API int32_t VLT_CALL KOfflineDb_GetNIDByRec_BBOM(KOfflineDb* db, int32_t rec);
VLT_API int32_t VLT_CALL KOfflineDb_GetNIDByRec_BDWG(KOfflineDb* db, int32_t rec);
VLT_API int32_t VLT_CALL KOfflineDb_GetNIDByRec_BITDWG(KOfflineDb* db, int32_t rec);
VLT_API int32_t VLT_CALL KOfflineDb_GetNIDByRec_BCAPP(KOfflineDb* db, int32_t rec);
VLT_API int32_t VLT_CALL KOfflineDb_GetNIDByRec_BITCAP(KOfflineDb* db, int32_t rec);

/*
 * Copy the code of a record, by its number: of an item, a drawing, a process plan.
 *   dst  null, or room for the longest code of the table
 * Return 1, with an empty code for a record that has none or does not exist; 0 with an empty code for a negative
 * number or a table without codes.
 */
VLT_API int32_t VLT_CALL KOfflineDb_GetCCODEByRec(KOfflineDb* db, int32_t rec, char* dst);
VLT_API int32_t VLT_CALL KOfflineDb_GetCCODEByRec_BDWG(KOfflineDb* db, int32_t rec, char* dst);
VLT_API int32_t VLT_CALL KOfflineDb_GetCCODEByRec_BCAPP(KOfflineDb* db, int32_t rec, char* dst);

/*
 * Copy the code of a record, by its NID: of an item, a drawing, a process plan.
 *   dst  null, or room for the longest code of the table
 * Return 1, with an empty code for a record without one; 0 with an empty code when no record has this NID, or it is
 * below 1.
 */
VLT_API int32_t VLT_CALL KOfflineDb_GetCCODEByNID(KOfflineDb* db, int32_t nid, char* dst);
VLT_API int32_t VLT_CALL KOfflineDb_GetCCODEByNID_BDWG(KOfflineDb* db, int32_t nid, char* dst);
VLT_API int32_t VLT_CALL KOfflineDb_GetCCODEByNID_BCAPP(KOfflineDb* db, int32_t nid, char* dst);

/* Returns the NID of the item with this code; -1 when there is none, or no code is given. */
VLT_API int32_t VLT_CALL KOfflineDb_GetNIDByCCODE(KOfflineDb* db, const char* code);

/* ---- Databases: item tree ------------------------------------------------------------------------------------ */

/*
 * Makes an item the root of the item tree; the choice is saved with the database.
 *   rec  its record number in BITM
 * Returns 1; 0 for an item without a NID of 1 or more, and the root stays.
 */
VLT_API int32_t VLT_CALL KOfflineDb_SetRootNode(KOfflineDb* db, int32_t rec);

/*
 * Lists the tops of the item tree: the root item alone, or the items without a parent when no root is chosen or the
 * root item is gone.
 *   recs  null, or room for `max` record numbers of BITM; the first tops are stored
 * Returns how many there are, which may be more than `max`.
 */
VLT_API int32_t VLT_CALL KOfflineDb_GetRootNodes(KOfflineDb* db, int32_t* recs, int32_t max);

/*
 * Lists the items that have a NID and are the child of no bill-of-material line, in record order; every item when
 * there is no such line at all.
 *   recs  null, or room for `max` record numbers of BITM; the first items are stored
 * Returns how many there are, which may be more than `max`.
 */
VLT_API int32_t VLT_CALL KOfflineDb_GetNoParentNodes(KOfflineDb* db, int32_t* recs, int32_t max);

/* Keeps a record number for the caller; the library does not look at it. */
VLT_API void VLT_CALL KOfflineDb_SetCheckInRec(KOfflineDb* db, int32_t rec);

/* Returns the number kept by KOfflineDb_SetCheckInRec; -1 at first. */
VLT_API int32_t VLT_CALL KOfflineDb_GetCheckInRec(KOfflineDb* db);

/* ---- Databases: attached files ------------------------------------------------------------------------------- */

/*
 * Files that belong to a database and are stored in its package. The stored file is named by the last component of
 * stored_name; a database that was not loaded from a package has none, and each function returns 0.
 */

/*
 * Copies a stored file to a disk file, which is made, or emptied when it is there. Returns 1 once both are open,
 * even when the copy is cut short by a full disk; 0 when one cannot be opened. When it is the stored file, an empty
 * disk file stays behind.
 */
VLT_API int32_t VLT_CALL KOfflineDb_GetPackageFile(KOfflineDb* db, const char* stored_name, const char* disk_path);

/*
 * Copies a disk file into the package; the stored file is made, or emptied when it is there. Mind the order of the
 * arguments. Returns 1 once both are open, even when the copy is cut short; 0 when one cannot be opened.
 */
VLT_API int32_t VLT_CALL KOfflineDb_SavePackageFile(KOfflineDb* db, const char* disk_path, const char* stored_name);

/* Returns 1 when the package holds this file, else 0. */
VLT_API int32_t VLT_CALL KOfflineDb_CheckPackageFileExist(KOfflineDb* db, const char* stored_name);

#ifdef __cplusplus
}
#endif

#endif
