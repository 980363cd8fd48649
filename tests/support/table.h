// SPDX-License-Identifier: MIT
// A small language for tests of tables: a table of its own, and its records as text.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "offline.h"

/// A table, with a database to report failures to, that is constructed and destroyed by scope.
class Table {
public:
    explicit Table(std::initializer_list<const char*> fields, const std::vector<std::string>& lines = {});
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;
    ~Table();

    operator KOfflineTable*() { return &table_; }
    KOfflineTable* operator->() { return &table_; }

    /// Adds a record of values between tabs.
    void Add(const std::string& line);
    void Set(int record, int field, const char* value);
    const char* Get(int record, int field) { return KOfflineTable_GetFldValue(&table_, record, field); }

    /// The values of a record between bars; "-" for no value.
    std::string Row(int record);
    std::vector<std::string> Rows();

    /// The index of a field, as far as there are records.
    std::vector<std::int32_t> Index(const char* field);

    /// What a search finds; the result itself when it finds nothing.
    std::vector<std::int32_t> Find(const char* field, const char* key);

    int error() const { return db_.error_code; }
    std::string error_text() const { return db_.error_text; }
    int TakeError();

private:
    KOfflineDb db_;
    KOfflineTable table_;
};
