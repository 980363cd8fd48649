// SPDX-License-Identifier: MIT
// The tables and the well-known fields of a database, in the order of KOfflineDb.tables and KOfflineDb.field_slots.
// The lists are macros because the names of exported C functions are made from them; all else uses the tables below.
#pragma once

#include <cstdint>

#include "include/offline.h"

namespace vlt {

/// ENTRY(table, its name in lower case)
#define KOFFLINE_TABLES(ENTRY) \
    ENTRY(BITM, bitm)          \
    ENTRY(BBOM, bbom)          \
    ENTRY(BDWG, bdwg)          \
    ENTRY(BITDWG, bitdwg)      \
    ENTRY(BCAPP, bcapp)        \
    ENTRY(BITCAP, bitcap)

/// ENTRY(table, field, what a load does when the schema lacks the field)
#define KOFFLINE_FIELDS(ENTRY)      \
    ENTRY(BITM, NID, required)      \
    ENTRY(BITM, CCODE, required)    \
    ENTRY(BITM, CNAME, added)       \
    ENTRY(BITM, CSRC, added)        \
    ENTRY(BBOM, NID, required)      \
    ENTRY(BBOM, NPID, required)     \
    ENTRY(BBOM, NCID, required)     \
    ENTRY(BBOM, FCOUNT, optional)   \
    ENTRY(BDWG, NID, required)      \
    ENTRY(BDWG, CCODE, required)    \
    ENTRY(BDWG, CFILE, added)       \
    ENTRY(BDWG, CSRC, added)        \
    ENTRY(BDWG, CASM, added)        \
    ENTRY(BDWG, COFLNMODI, added)   \
    ENTRY(BDWG, NOFLNITMID, added)  \
    ENTRY(BITDWG, NID, required)    \
    ENTRY(BITDWG, NPID, required)   \
    ENTRY(BITDWG, NCID, required)   \
    ENTRY(BCAPP, NID, required)     \
    ENTRY(BCAPP, CCODE, required)   \
    ENTRY(BCAPP, CFILE, added)      \
    ENTRY(BCAPP, CSRC, added)       \
    ENTRY(BCAPP, COFLNMODI, added)  \
    ENTRY(BCAPP, NOFLNITMID, added) \
    ENTRY(BITCAP, NID, required)    \
    ENTRY(BITCAP, NPID, required)   \
    ENTRY(BITCAP, NCID, required)

/// Positions in KOfflineDb.tables.
enum TableSlot : std::int32_t {
#define KOFFLINE_ENTRY(table, lower_case) TABLE_##table,
    KOFFLINE_TABLES(KOFFLINE_ENTRY)
#undef KOFFLINE_ENTRY
        TABLE_COUNT
};

/// Positions in KOfflineDb.field_slots.
enum FieldSlot : std::int32_t {
#define KOFFLINE_ENTRY(table, field, rule) SLOT_##table##_##field,
    KOFFLINE_FIELDS(KOFFLINE_ENTRY)
#undef KOFFLINE_ENTRY
        SLOT_COUNT
};

enum class FieldRule {
    required,  // a load fails without it, and gives it an index, for lookups rely on both
    added,     // a load adds it
    optional   // the slot may stay empty
};

struct WellKnownField {
    TableSlot table;
    const char* name;       // as it is looked up
    const char* full_name;  // as it is added and reported: table name, point, name
    FieldRule rule;
};

inline constexpr const char* kTableNames[] = {
#define KOFFLINE_ENTRY(table, lower_case) #table,
    KOFFLINE_TABLES(KOFFLINE_ENTRY)
#undef KOFFLINE_ENTRY
};

/// The names as a schema is written with them.
inline constexpr const char* kSchemaNames[] = {
#define KOFFLINE_ENTRY(table, lower_case) #lower_case,
    KOFFLINE_TABLES(KOFFLINE_ENTRY)
#undef KOFFLINE_ENTRY
};

inline constexpr const char* kDataFiles[] = {
#define KOFFLINE_ENTRY(table, lower_case) #lower_case ".txt",
    KOFFLINE_TABLES(KOFFLINE_ENTRY)
#undef KOFFLINE_ENTRY
};

inline constexpr WellKnownField kWellKnownFields[] = {
#define KOFFLINE_ENTRY(table, field, rule) {TABLE_##table, #field, #table "." #field, FieldRule::rule},
    KOFFLINE_FIELDS(KOFFLINE_ENTRY)
#undef KOFFLINE_ENTRY
};

static_assert(SLOT_COUNT == sizeof(KOfflineDb::field_slots) / sizeof(std::int32_t));
static_assert(TABLE_COUNT == sizeof(KOfflineDb::tables) / sizeof(KOfflineTable));

}  // namespace vlt
