// SPDX-License-Identifier: MIT
#include "tests/support/table.h"

#include <utility>

Table::Table(std::initializer_list<const char*> fields, const std::vector<std::string>& lines) {
    KOfflineDb_Constructor(&db_);
    KOfflineTable_Constructor(&table_, &db_, "TABLE");
    for (const char* field : fields) KOfflineTable_AddFld(&table_, field);
    for (const std::string& line : lines) Add(line);
}

Table::~Table() {
    KOfflineTable_Destructor(&table_);
    KOfflineDb_Destructor(&db_);
}

void Table::Add(const std::string& line) {
    const int next = KOfflineTable_GetRecsCount(&table_);
    EXPECT_EQ(KOfflineTable_AddRec(&table_, line.c_str(), "\t"), next);
}

void Table::Set(int record, int field, const char* value) {
    EXPECT_EQ(KOfflineTable_SetFldValue(&table_, record, field, value), 1);
}

std::string Table::Row(int record) {
    std::string row;
    for (int field = 0; field < KOfflineTable_GetFldsCount(&table_); ++field) {
        const char* value = Get(record, field);
        row += std::string(field ? "|" : "") + (value ? value : "-");
    }
    return row;
}

std::vector<std::string> Table::Rows() {
    std::vector<std::string> rows;
    for (int record = 0; record < KOfflineTable_GetRecsCount(&table_); ++record) rows.push_back(Row(record));
    return rows;
}

std::vector<std::int32_t> Table::Index(const char* field) {
    const std::int32_t* index = KOfflineTable_GetIndexRecs(&table_, KOfflineTable_GetFldIndex(&table_, field));
    return index ? std::vector<std::int32_t>(index, index + table_.record_count) : std::vector<std::int32_t>();
}

std::vector<std::int32_t> Table::Find(const char* field, const char* key) {
    std::vector<std::int32_t> found(100);
    const int result = KOfflineTable_Search(&table_, KOfflineTable_GetFldIndex(&table_, field), key, found.data(),
                                            static_cast<int>(found.size()));
    if (result < 1) return {result};
    found.resize(static_cast<std::size_t>(result));
    return found;
}

int Table::TakeError() {
    return std::exchange(db_.error_code, KOFFLINE_ERR_NONE);
}
