// SPDX-License-Identifier: MIT
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "exchange/error.h"
#include "exchange/import.h"
#include "exchange/json_text.h"
#include "exchange/table_filler.h"
#include "exchange/text.h"

namespace exchange {

namespace {

using nlohmann::json;

/// Fills a database from the events of a JSON parser. Where it stands is a path of keys, an empty one for an array:
///   schema fields BITM ""   a declared field          BITM "" NID   a value of a record in one object
///   schema root             a setting                 NID           a value of a record on a line of its own
/// and one key more, "hex", for bytes that are no UTF-8.
class Importer : public nlohmann::json_sax<json> {
public:
    explicit Importer(const OpenEmpty& open_empty) : open_empty_(open_empty) {}

    bool null() override { return true; }
    bool boolean(bool) override { throw Error("a value is neither text nor a number"); }
    bool number_integer(json::number_integer_t value) override { return take(std::to_string(value)); }
    bool number_unsigned(json::number_unsigned_t value) override { return take(std::to_string(value)); }
    bool number_float(json::number_float_t, const json::string_t& text) override { return take(text); }
    bool string(json::string_t& value) override { return take(value); }
    bool binary(json::binary_t&) override { return false; }

    bool start_object(std::size_t) override {
        path_.emplace_back();
        return true;
    }
    bool key(json::string_t& value) override {
        path_.back() = value;
        return true;
    }
    bool end_object() override {
        path_.pop_back();
        if (path_.size() == 1 && path_[0] == "schema") open();
        if (path_.empty() && !(record_.empty() && line_table_.empty())) add_record(line_table_);
        if (path_.size() == 2 && table_number(path_[0]) != kTableCount) add_record(path_[0]);
        return true;
    }
    bool start_array(std::size_t) override {
        path_.emplace_back();
        return true;
    }
    bool end_array() override {
        path_.pop_back();
        return true;
    }
    bool parse_error(std::size_t, const std::string&, const json::exception& error) override {
        const std::string text = error.what();
        throw Error(text.substr(text.find("] ") + 2));
    }

    void finish() {
        if (!db_) throw Error("there is no record and no schema");
        for (const auto& filler : fillers_) filler->finish();
        set_root(db_, schema_);
    }

private:
    bool is_hex() const {
        if (path_.back() != "hex" || path_.size() < 2) return false;
        if (path_[0] == "schema") return path_.size() > 2;
        return path_.size() == 2 || path_.size() == 4;
    }

    bool take(std::string value) {
        if (path_.empty()) throw Error("the file does not hold an object");
        if (value.find('\0') != value.npos) throw Error("the value of " + path_.back() + " holds a zero byte");
        if (!is_hex()) return take_value(path_, std::move(value));
        std::vector<std::string> path = path_;
        path.pop_back();
        return take_value(path, from_hex(value));
    }

    bool take_value(const std::vector<std::string>& path, std::string value) {
        if (path[0] == "schema" && path.size() > 1) {
            take_schema(path, std::move(value));
        } else if (path.size() == 1 && path[0] == "table") {
            line_table_ = std::move(value);
        } else if (path.size() == 1 || path.size() == 3) {
            record_.emplace_back(path.back(), std::move(value));
        } else {
            throw Error("the value of " + path.back() + " stands where none is expected");
        }
        return true;
    }

    void take_schema(const std::vector<std::string>& path, std::string value) {
        if (path[1] == "separator") given_.separator = separator_characters(value);
        if (path[1] == "root") given_.root_code = value;
        if (path[1] == "root_nid") given_.root_nid = value;
        if (path[1] != "fields" || path.size() != 4) return;
        const std::size_t table = table_number(path[2]);
        if (table == kTableCount) throw Error("the schema names the table '" + path[2] + "', which there is not");
        given_.fields[table].push_back(std::move(value));
        schema_given_ = true;
    }

    void open() {
        if (db_) throw Error("the schema stands behind records");
        schema_ = schema_given_ ? given_ : usual_schema();
        if (!given_.separator.empty()) schema_.separator = given_.separator;
        schema_.root_code = given_.root_code;
        schema_.root_nid = given_.root_nid;
        db_ = open_empty_(schema_);
        const Schema declared = schema_of(db_);
        for (std::size_t t = 0; t < kTableCount; ++t) {
            fillers_[t] = std::make_unique<TableFiller>(db_, t);
            const std::vector<std::string> names = column_names(declared.fields[t], kJsonReserved);
            for (std::size_t f = 0; f < names.size(); ++f) fields_[t][upper(names[f])] = f;
        }
    }

    /// Records of a table mostly have the same fields in the same order, so the last record is asked first.
    std::size_t field_of(std::size_t table, std::size_t place, const std::string& name) {
        auto& recent = recent_[table];
        if (place < recent.size() && recent[place].first == name) return recent[place].second;
        const auto [at, fresh] = fields_[table].try_emplace(upper(name), 0);
        if (fresh && schema_given_) throw Error(std::string(kTableNames[table]) + " has no field '" + name + "'");
        if (fresh) at->second = fillers_[table]->field(name);
        recent.resize(std::max(recent.size(), place + 1));
        recent[place] = {name, at->second};
        return at->second;
    }

    void add_record(const std::string& table_name) {
        const std::size_t table = table_number(table_name);
        if (table == kTableCount) throw Error("a record names the table '" + table_name + "', which there is not");
        if (!db_) open();
        for (std::size_t place = 0; place < record_.size(); ++place)
            fillers_[table]->set(field_of(table, place, record_[place].first), record_[place].second);
        fillers_[table]->add();
        record_.clear();
        line_table_.clear();
    }

    const OpenEmpty& open_empty_;
    std::vector<std::string> path_;
    Schema given_, schema_;
    bool schema_given_ = false;
    KOfflineDb* db_ = nullptr;
    std::string line_table_;
    std::vector<std::pair<std::string, std::string>> record_;
    std::array<std::unique_ptr<TableFiller>, kTableCount> fillers_;
    std::array<std::map<std::string, std::size_t>, kTableCount> fields_;
    std::array<std::vector<std::pair<std::string, std::size_t>>, kTableCount> recent_;
};

void import_lines(std::string_view text, Importer& importer) {
    for (std::int64_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.find_first_not_of(" \t\r") == line.npos) continue;
        try {
            json::sax_parse(line, &importer);
        } catch (const Error& error) {
            throw Error("line " + std::to_string(number) + ": " + error.what());
        }
    }
}

/// Whether a value ends with the first line and more follows.
bool is_lines(std::string_view text) {
    const std::size_t end = text.find('\n');
    return end != text.npos && text.find_first_not_of(" \t\r\n", end) != text.npos &&
           json::accept(text.substr(0, end));
}

}  // namespace

void import_json(std::string_view text, const OpenEmpty& open_empty) {
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    Importer importer(open_empty);
    if (is_lines(text))
        import_lines(text, importer);
    else
        json::sax_parse(text, &importer);
    importer.finish();
}

}  // namespace exchange
