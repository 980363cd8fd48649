// SPDX-License-Identifier: MIT
// The layout of the public records, which programs in other languages are built for: no field moves, on 32 bits or
// on 64. docs/windows.md prints the same numbers.
#include <cstddef>

#include "include/offline.h"

namespace {

/// The one of two numbers that belongs to the pointers of this target.
constexpr std::size_t by_pointer(std::size_t bits_32, std::size_t bits_64) {
    return sizeof(void*) == 4 ? bits_32 : bits_64;
}

static_assert(sizeof(KOfflineField) == by_pointer(40, 48));
static_assert(offsetof(KOfflineField, field_name) == 0);
static_assert(offsetof(KOfflineField, index) == by_pointer(36, 40));

static_assert(sizeof(KOfflineTable) == by_pointer(64, 80));
static_assert(offsetof(KOfflineTable, db) == 0);
static_assert(offsetof(KOfflineTable, table_name) == by_pointer(4, 8));
static_assert(offsetof(KOfflineTable, fields) == by_pointer(36, 40));
static_assert(offsetof(KOfflineTable, field_count) == by_pointer(40, 48));
static_assert(offsetof(KOfflineTable, indexes_stale) == by_pointer(44, 52));
static_assert(offsetof(KOfflineTable, records) == by_pointer(48, 56));
static_assert(offsetof(KOfflineTable, record_capacity) == by_pointer(52, 64));
static_assert(offsetof(KOfflineTable, record_count) == by_pointer(56, 68));
static_assert(offsetof(KOfflineTable, nid_watermark) == by_pointer(60, 72));

static_assert(sizeof(KOfflineDb) == by_pointer(1048, 1152));
static_assert(offsetof(KOfflineDb, package) == 0);
static_assert(offsetof(KOfflineDb, path) == 4);
static_assert(offsetof(KOfflineDb, user_data_size) == 264);
static_assert(offsetof(KOfflineDb, user_data) == by_pointer(268, 272));
static_assert(offsetof(KOfflineDb, root_nid) == by_pointer(272, 280));
static_assert(offsetof(KOfflineDb, field_slots) == by_pointer(276, 284));
static_assert(offsetof(KOfflineDb, tables) == by_pointer(384, 392));
static_assert(offsetof(KOfflineDb, separator) == by_pointer(768, 872));
static_assert(offsetof(KOfflineDb, check_in_rec) == by_pointer(784, 888));
static_assert(offsetof(KOfflineDb, error_code) == by_pointer(788, 892));
static_assert(offsetof(KOfflineDb, error_text) == by_pointer(792, 896));

}  // namespace
