// SPDX-License-Identifier: MIT
#include "exchange/table_filler.h"

#include <cctype>
#include <cstdlib>
#include <limits>

#include "exchange/error.h"
#include "exchange/text.h"

namespace exchange {

namespace {

constexpr std::string_view kEscaped = "\\,\t\r\n/";
constexpr std::size_t kLongestNid = 10;

/// The number that a NID of digits says; 0 for any other, which no automatic NID comes near.
std::int64_t number_of(std::string_view nid) {
    if (nid.empty() || nid.size() > kLongestNid) return 0;
    std::int64_t number = 0;
    for (const char c : nid) {
        if (c < '0' || c > '9') return 0;
        number = number * 10 + (c - '0');
    }
    return number <= std::numeric_limits<std::int32_t>::max() ? number : 0;
}

bool has_edge_blank(std::string_view value) {
    return !value.empty() && trimmed(value).size() != value.size();
}

}  // namespace

TableFiller::TableFiller(KOfflineDb* db, std::size_t table)
    : db_(db),
      table_(table_of(db, table)),
      table_number_(table),
      nid_field_(KOfflineTable_GetFldIndex(table_, "NID")),
      separator_is_escaped_(std::string_view(db->separator).find_first_not_of(",\t") == std::string_view::npos),
      values_(static_cast<std::size_t>(KOfflineTable_GetFldsCount(table_))) {}

void TableFiller::add() {
    line_.clear();
    for (const std::string_view& value : values_) {
        if (&value != &values_.front()) line_ += db_->separator;
        append_value(value);
    }
    if (!separator_is_escaped_) check_line();
    const std::int32_t record = KOfflineTable_AddRec(table_, line_.c_str(), db_->separator);
    if (record < 0) fail(db_->error_code == KOFFLINE_ERR_MEMORY ? "no memory" : "too long, or no NID can be given");
    keep_blanks(record);
    note_nid(record);
    for (std::string_view& value : values_) value = {};
}

void TableFiller::append_value(std::string_view value) {
    const std::size_t special = value.find_first_of(kEscaped);
    if (special == value.npos) {
        line_ += value;
        return;
    }
    plain_ = value;
    escaped_.resize(2 * value.size() + 1);
    if (!KOfflineDb_StrSwap(plain_.c_str(), escaped_.data(), static_cast<std::int32_t>(escaped_.size()), 1))
        fail("a value cannot be escaped");
    line_ += escaped_.c_str();
}

/// A separator that is not escaped must not occur within a value, nor come about where two values meet.
void TableFiller::check_line() const {
    std::string_view rest = line_;
    const std::string_view separator = db_->separator;
    std::size_t pieces = 1;
    for (std::size_t at; (at = rest.find(separator)) != rest.npos; ++pieces)
        rest.remove_prefix(at + separator.size());
    if (pieces != values_.size()) fail("a value holds the separator '" + separator_names(separator) + "'");
}

/// A line drops the blanks around its values; a record may have them.
void TableFiller::keep_blanks(std::int32_t record) {
    for (std::size_t f = 0; f < values_.size(); ++f) {
        if (!has_edge_blank(values_[f])) continue;
        plain_ = values_[f];
        if (!KOfflineTable_SetFldValue(table_, record, static_cast<std::int32_t>(f), plain_.c_str()))
            fail("no memory");
    }
}

void TableFiller::note_nid(std::int32_t record) {
    if (nid_field_ < 0) return;
    const std::string_view nid = values_[static_cast<std::size_t>(nid_field_)];
    if (trimmed(nid).empty()) given_.push_back(record);
    greatest_nid_ = std::max(greatest_nid_, number_of(nid));
}

void TableFiller::finish() {
    if (given_.empty() || greatest_nid_ < KOfflineTable_GetRecNID(table_, given_.front())) return;
    if (greatest_nid_ + static_cast<std::int64_t>(given_.size()) > std::numeric_limits<std::int32_t>::max())
        fail("no NID can be given");
    std::int64_t nid = greatest_nid_;
    for (const std::int32_t record : given_)
        KOfflineTable_SetRecNID(table_, record, static_cast<std::int32_t>(++nid));
}

std::size_t TableFiller::field(const std::string& name) {
    check_field_name(name);
    const std::int32_t number = KOfflineTable_AddFld(table_, name.c_str());
    if (number < 0) fail("no memory for the field " + name);
    if (values_.size() <= static_cast<std::size_t>(number)) values_.resize(static_cast<std::size_t>(number) + 1);
    return static_cast<std::size_t>(number);
}

void TableFiller::fail(const std::string& why) const {
    throw Error("record " + std::to_string(KOfflineTable_GetRecsCount(table_) + 1) + " of " +
                kTableNames[table_number_] + ": " + why);
}

void set_root(KOfflineDb* db, const Schema& schema) {
    if (schema.root_code.empty() && schema.root_nid.empty()) return;
    KOfflineTable* const items = table_of(db, kBitm);
    std::int32_t record = -1;
    if (const std::int64_t nid = number_of(schema.root_nid); nid > 0) {
        record = KOfflineDb_GetRecByNID_BITM(db, static_cast<std::int32_t>(nid));
        const char* const code = KOfflineTable_GetFldValue(items, record, KOfflineDb_GetFld_BITM_CCODE(db));
        if ((code ? code : "") != schema.root_code) record = -1;
    }
    if (record < 0) record = KOfflineDb_GetRecByNID_BITM(db, KOfflineDb_GetNIDByCCODE(db, schema.root_code.c_str()));
    if (!KOfflineDb_SetRootNode(db, record))
        throw Error("there is no item '" + schema.root_code + "' to be the root");
}

}  // namespace exchange
