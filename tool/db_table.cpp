// SPDX-License-Identifier: MIT
// vlt db table
#include <algorithm>
#include <nlohmann/json.hpp>
#include <numeric>
#include <optional>
#include <sstream>

#include "bom/decimal.h"
#include "bom/text.h"
#include "exchange/csv.h"
#include "tool/failure.h"
#include "tool/items.h"

namespace tool {

namespace {

struct TableOptions {
    DatabaseOptions database;
    std::string table, fields, sort;
    std::vector<std::string> conditions;
    std::int32_t limit = -1;
    bool csv = false, json = false, reverse = false;

    Parameters parameters() {
        return {database.parameters(Access::read),
                {"TABLE", &table, "BITM, BBOM, BDWG, BITDWG, BCAPP or BITCAP", {.required = true}},
                {"CONDITION", &conditions, "FIELD=VALUE: records with this value, whatever its letter case"},
                {"--fields", &fields, "the fields to print, with commas between; all if not given"},
                {"--sort", &sort, "the field to sort by, numbers by size; record order if not given"},
                reverse_option(reverse),
                {"--limit", &limit, "records at most"},
                json_option(json),
                {"--csv", &csv, "as CSV: RFC 4180, UTF-8"}};
    }
};

/// Some records and some fields of a table.
class Selection {
public:
    Selection(const Database& db, const TableOptions& options) : db_(db), table_(table_of(options.table)) {
        std::istringstream names(options.fields);
        for (std::string name; std::getline(names, name, ',');) fields_.push_back(field_of(name));
        if (fields_.empty()) {
            fields_.resize(static_cast<std::size_t>(KOfflineTable_GetFldsCount(table_)));
            std::iota(fields_.begin(), fields_.end(), 0);
        }
        select(options.conditions);
        if (!options.sort.empty()) sort(field_of(options.sort));
        if (options.reverse) std::reverse(records_.begin(), records_.end());
        if (options.limit >= 0) records_.resize(std::min(records_.size(), static_cast<std::size_t>(options.limit)));
    }

    std::string name(std::int32_t field) const { return db_.shown(field_key(table_, field)); }
    const char* value(std::int32_t rec, std::int32_t field) const {
        return KOfflineTable_GetFldValue(table_, rec, field);
    }
    std::string_view text(std::int32_t rec, std::int32_t field) const { return db_.value(table_, rec, field); }
    const std::vector<std::int32_t>& fields() const { return fields_; }
    const std::vector<std::int32_t>& records() const { return records_; }
    const Database& database() const { return db_; }

private:
    KOfflineTable* table_of(const std::string& name) const {
        for (KOfflineTable& table : db_.get()->tables) {
            if (bom::compare_folded(table.table_name, name.c_str()) == 0) return &table;
        }
        throw Failure(name, "no such table; there are BITM, BBOM, BDWG, BITDWG, BCAPP and BITCAP");
    }

    std::int32_t field_of(const std::string& name) const {
        const std::int32_t field = KOfflineTable_GetFldIndex(table_, db_.typed(name).c_str());
        if (field >= 0) return field;
        throw Failure(db_.name(), std::string(table_->table_name) + " has no field " + shown_text(name) +
                                      "; `vlt db info` lists the fields");
    }

    void select(const std::vector<std::string>& conditions) {
        records_.resize(static_cast<std::size_t>(KOfflineTable_GetRecsCount(table_)));
        std::iota(records_.begin(), records_.end(), 0);
        for (const std::string& condition : conditions) {
            const std::size_t equals = condition.find('=');
            if (equals == condition.npos) throw Failure(condition, "not a condition; write FIELD=VALUE");
            const std::int32_t field = field_of(condition.substr(0, equals));
            const std::string wanted = db_.typed(condition.substr(equals + 1));
            std::erase_if(records_, [&](std::int32_t rec) {
                return bom::compare_folded(text(rec, field).data() ? text(rec, field).data() : "", wanted.c_str()) !=
                       0;
            });
        }
    }

    /// Numbers by size, before all other texts.
    void sort(std::int32_t field) {
        struct Key {
            std::optional<bom::Decimal> number;
            const char* text;
            std::int32_t rec;
        };
        std::vector<Key> keys;
        for (const std::int32_t rec : records_) {
            const char* text = value(rec, field);
            keys.push_back({bom::Decimal::parse(text ? text : ""), text ? text : "", rec});
        }
        std::stable_sort(keys.begin(), keys.end(), [](const Key& a, const Key& b) {
            if (a.number && b.number) return *a.number < *b.number;
            if (a.number || b.number) return a.number.has_value();
            return bom::compare_folded(a.text, b.text) < 0;
        });
        for (std::size_t i = 0; i < keys.size(); ++i) records_[i] = keys[i].rec;
    }

    const Database& db_;
    KOfflineTable* table_;
    std::vector<std::int32_t> fields_, records_;
};

void print_text(const Selection& selection, Output& out) {
    std::vector<std::size_t> widths;
    for (const std::int32_t field : selection.fields()) {
        std::size_t width = text_width(selection.name(field));
        for (const std::int32_t rec : selection.records()) {
            width = std::max(width, text_width(selection.database().shown(selection.text(rec, field))));
        }
        widths.push_back(width);
    }
    std::string line;
    const auto print = [&](auto cell, Colour colour) {
        line.clear();
        for (std::size_t i = 0; i < widths.size(); ++i) {
            const bool last = i + 1 == widths.size();
            append_left(line, cell(selection.fields()[i]), last ? 0 : widths[i]);
            if (!last) line += "  ";
        }
        colour == Colour::none ? out.line(line) : out.line(out.coloured(line, colour));
    };
    print([&](std::int32_t field) { return selection.name(field); }, Colour::bold);
    for (const std::int32_t rec : selection.records()) {
        print([&](std::int32_t field) { return selection.database().shown(selection.text(rec, field)); },
              Colour::none);
    }
}

void print_csv(const Selection& selection, Output& out) {
    exchange::Output csv([&](std::string_view text) { out.bytes(text); });
    const auto print = [&](auto cell) {
        for (std::size_t i = 0; i < selection.fields().size(); ++i) {
            if (i > 0) csv.add(',');
            exchange::add_csv(csv, cell(selection.fields()[i]).c_str());
        }
        csv.add("\r\n");
        csv.end_record();
    };
    const Names& names = selection.database().names();
    print([&](std::int32_t field) { return selection.name(field); });
    for (const std::int32_t rec : selection.records()) {
        print([&](std::int32_t field) { return names.plain(selection.text(rec, field)); });
    }
    csv.flush();
}

void print_json(const Selection& selection, Output& out) {
    const Database& db = selection.database();
    for (const std::int32_t rec : selection.records()) {
        Json object = Json::object();
        for (const std::int32_t field : selection.fields()) {
            const char* value = selection.value(rec, field);
            object[selection.name(field)] = value ? Json(db.shown(value)) : Json(nullptr);
            if (value && !db.names().is_text(value)) object[selection.name(field) + "_hex"] = db.names().hex(value);
        }
        out.json(object);
    }
}

int print_table(Program& program, const TableOptions& options) {
    const Database db(options.database, Access::read);
    const Selection selection(db, options);
    if (options.json)
        print_json(selection, program.out());
    else if (options.csv)
        print_csv(selection, program.out());
    else
        print_text(selection, program.out());
    return kDone;
}

}  // namespace

void add_db_table_verb(Program& program) {
    program.add_verb("db table", "records of a table", print_table, R"(
        vlt db table product.vlt BITM CSRC=made --fields CCODE,CNAME
        vlt db table examples/bicycle bbom --sort FCOUNT --reverse --limit 5
        vlt db table product.vlt BITM --csv > items.csv)");
}

}  // namespace tool
