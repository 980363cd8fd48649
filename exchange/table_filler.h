// SPDX-License-Identifier: MIT
// Adds records to a table of a database as they would be loaded from its files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/schema.h"

namespace exchange {

class TableFiller {
public:
    TableFiller(KOfflineDb* db, std::size_t table);

    /// The value of a field in the next record; it must stay until the record is added. Others are empty.
    void set(std::size_t field, std::string_view value) { values_[field] = value; }

    /// Adds the record. One without NID is given one. Fails with `Error` for a value that the data files cannot hold.
    void add();

    /// After the last record: NIDs that were given while later records brought the same are given anew, above all.
    void finish();

    /// The number of a field, which is added when the table lacks it.
    std::size_t field(const std::string& name);

private:
    void append_value(std::string_view value);
    void check_line() const;
    void keep_blanks(std::int32_t record);
    void note_nid(std::int32_t record);
    [[noreturn]] void fail(const std::string& why) const;

    KOfflineDb* db_;
    KOfflineTable* table_;
    std::size_t table_number_;
    std::int32_t nid_field_;
    bool separator_is_escaped_;
    std::vector<std::string_view> values_;
    std::string line_, plain_, escaped_;
    std::int64_t greatest_nid_ = 0;    // of those that records brought
    std::vector<std::int32_t> given_;  // records that were given their NID
};

/// Makes an item the root, by its NID where that item has the code too, else by the code.
void set_root(KOfflineDb* db, const Schema& schema);

}  // namespace exchange
