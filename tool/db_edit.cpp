// SPDX-License-Identifier: MIT
// vlt db edit
#include <nlohmann/json.hpp>
#include <optional>

#include "exchange/schema.h"
#include "exchange/text.h"
#include "tool/database.h"
#include "tool/database_copy.h"
#include "tool/program.h"

namespace tool {

namespace {

struct EditOptions {
    DatabaseOptions database;
    std::string table = "BITM", root;
    std::vector<std::string> fields, adds, sets, lines, line_deletions, deletions;
    bool dry_run = false, json = false;

    Parameters parameters() {
        return {database.parameters(Access::write),
                {"--table", &table, "BITM (items), BDWG (drawings) or BCAPP (plans); BITM if not given"},
                {"--add-field", &fields, "a new FIELD of the table"},
                {"--add", &adds, "a new record with this CODE"},
                {"--set", &sets, "CODE:FIELD=VALUE"},
                {"--line", &lines, "PARENT:CHILD=QUANTITY: a line from an item to a record, added or changed"},
                {"--delete-line", &line_deletions, "PARENT:CHILD: every line between the two"},
                {"--delete", &deletions, "the record of this CODE, with the lines that name it"},
                {"--root", &root, "CODE of the root item"},
                {"--dry-run", &dry_run, "tell what would change, and change nothing"},
                {"--json", &json, "the changes as one JSON object a line"}};
    }
};

/// A change that was made, in the words of every verb that tells of differences.
struct Change {
    std::string kind, code, field, before, after;
};

/// What a table of records with codes is linked by.
struct Family {
    std::size_t records, links;
};
Family family_of(const std::string& name) {
    const std::size_t table = exchange::table_number(name);
    if (table == exchange::kBitm) return {table, exchange::kBbom};
    if (table == exchange::kBdwg) return {table, exchange::kBitdwg};
    if (table == exchange::kBcapp) return {table, exchange::kBitcap};
    throw Failure(name, "has no codes; --table takes BITM, BDWG or BCAPP");
}

class Editor {
public:
    Editor(KOfflineDb* db, const std::string& name, Family family)
        : db_(db),
          name_(name),
          family_(family),
          table_(exchange::table_of(db, family.records)),
          links_(exchange::table_of(db, family.links)) {}

    const std::vector<Change>& changes() const { return changes_; }

    void add_field(const std::string& field) {
        if (KOfflineTable_GetFldIndex(table_, field.c_str()) >= 0)
            throw Failure(name_, "has the field " + field + " already");
        exchange::check_field_name(field);
        if (KOfflineTable_AddFld(table_, field.c_str()) < 0) throw Failure(name_, "no memory for the field " + field);
        changes_.push_back({"field", "", field, "", ""});
    }

    void add_record(const std::string& code) {
        check_value(code);
        if (code.empty() || find(table_, code) >= 0) throw Failure(name_, "has '" + shown_text(code) + "' already");
        const std::int32_t record = new_record(table_);
        put(table_, record, "CCODE", code);
        changes_.push_back({"added", code, "", "", ""});
    }

    /// "CODE:FIELD=VALUE"; a code may hold colons, a field does not.
    void set(const std::string& text) {
        const std::size_t equals = text.find('='), colon = text.rfind(':', equals);
        if (equals == text.npos || colon == text.npos) throw Failure(text, "not understood; write CODE:FIELD=VALUE");
        const std::string code = text.substr(0, colon), field = text.substr(colon + 1, equals - colon - 1);
        const std::string value(exchange::trimmed(text.substr(equals + 1)));
        check_settable(field, code, value);
        change(table_, need(table_, code), code, field, value);
    }

    /// "PARENT:CHILD=QUANTITY", or without a quantity.
    void set_line(const std::string& text) {
        const std::size_t equals = text.rfind('=');
        const auto ends = ends_of(text.substr(0, equals));
        std::optional<std::string> quantity;
        if (equals != text.npos) quantity = exchange::trimmed(std::string_view(text).substr(equals + 1));
        const auto found = lines_between(ends);
        if (found.size() > 1)
            throw Failure(name_,
                          "has " + std::to_string(found.size()) + " lines " + ends.text + "; delete them first");
        std::int32_t line = found.empty() ? -1 : found.front();
        if (line < 0) {
            line = new_record(links_);
            put(links_, line, "NPID", nid(parents(), ends.parent));
            put(links_, line, "NCID", nid(table_, ends.child));
            changes_.push_back({"line added", ends.text, "", "", ""});
        }
        if (quantity) change(links_, line, ends.text, "FCOUNT", *quantity);
    }

    void delete_line(const std::string& text) {
        const auto ends = ends_of(text);
        const auto found = lines_between(ends);
        if (found.empty()) throw Failure(name_, "has no line " + shown_text(text));
        for (auto line = found.rbegin(); line != found.rend(); ++line) {
            KOfflineTable_DelRec(links_, *line);
            changes_.push_back({"line deleted", ends.text, "", "", ""});
        }
    }

    /// Deletes a record and every line and link that names it.
    void delete_record(const std::string& code) {
        const std::int32_t record = need(table_, code);
        const std::string number = nid(table_, record);
        if (family_.records == exchange::kBitm && KOfflineTable_GetRecNID(table_, record) == db_->root_nid)
            throw Failure(name_, "'" + shown_text(code) + "' is the root; choose another one with --root");
        for (const std::size_t table : {exchange::kBbom, exchange::kBitdwg, exchange::kBitcap}) {
            if (family_.records != exchange::kBitm && table != family_.links) continue;
            if (family_.records == exchange::kBitm) delete_links(table, "NPID", number, code);
            if (table == family_.links) delete_links(table, "NCID", number, code);
        }
        KOfflineTable_DelRec(table_, record);
        changes_.push_back({"deleted", code, "", "", ""});
    }

    void set_root(const std::string& code) {
        if (!KOfflineDb_SetRootNode(db_, need(parents(), code)))
            throw Failure(name_, "'" + shown_text(code) + "' has no NID of 1 or more and cannot be the root");
        changes_.push_back({"root", code, "", "", ""});
    }

private:
    struct Ends {
        std::int32_t parent, child;
        std::string text;
    };

    KOfflineTable* parents() const { return exchange::table_of(db_, exchange::kBitm); }

    static std::int32_t field_of(KOfflineTable* table, const std::string& field) {
        return KOfflineTable_GetFldIndex(table, field.c_str());
    }

    std::int32_t find(KOfflineTable* table, const std::string& code) const {
        if (code.empty()) return -1;
        std::int32_t record = -1;
        const std::int32_t count = KOfflineTable_Search(table, field_of(table, "CCODE"), code.c_str(), &record, 1);
        if (count > 1)
            throw Failure(name_,
                          "has " + std::to_string(count) + " records with the code '" + shown_text(code) + "'");
        return count == 1 ? record : -1;
    }

    std::int32_t need(KOfflineTable* table, const std::string& code) const {
        const std::int32_t record = find(table, code);
        if (record < 0)
            throw Failure(name_, std::string(KOfflineTable_GetTblName(table)) + " has no '" + shown_text(code) + "'");
        return record;
    }

    std::string value(KOfflineTable* table, std::int32_t record, const std::string& field) const {
        const char* const text = KOfflineTable_GetFldValue(table, record, field_of(table, field));
        return text ? text : "";
    }
    std::string nid(KOfflineTable* table, std::int32_t record) const { return value(table, record, "NID"); }

    std::int32_t new_record(KOfflineTable* table) const {
        const std::int32_t record = KOfflineTable_AddRec(table, "", db_->separator);
        if (record < 0) throw Failure(name_, database_error_text(db_->error_code, ""));
        return record;
    }

    void put(KOfflineTable* table, std::int32_t record, const std::string& field, const std::string& text) const {
        if (!KOfflineTable_SetFldValue(table, record, field_of(table, field), text.c_str()))
            throw Failure(name_, "a value of " + field + " is too long, or there is no such field");
    }

    void change(KOfflineTable* table, std::int32_t record, const std::string& code, const std::string& field,
                const std::string& text) {
        check_value(text);
        if (field_of(table, field) < 0)
            throw Failure(name_, "there is no field " + shown_text(field) + "; --add-field makes one");
        const std::string before = value(table, record, field);
        if (before == text) return;
        put(table, record, field, text);
        changes_.push_back({"changed", code, field, before, text});
    }

    /// Commas and tabs are escaped; any other separator would split the value when it is read.
    void check_value(const std::string& text) const {
        const std::string_view separator = db_->separator;
        if (separator.find_first_not_of(",\t") != separator.npos && text.find(separator[0]) != text.npos)
            throw Failure(name_, "'" + shown_text(text) + "' holds the separator of the data files");
    }

    void check_settable(const std::string& field, const std::string& code, const std::string& value) const {
        const std::string key = exchange::upper(exchange::plain_name(field));
        if (key == "NID") throw Failure(name_, "the NID of a record cannot be set: lines name it");
        if (key == "CCODE" && exchange::lower(code) != exchange::lower(value) && find(table_, value) >= 0)
            throw Failure(name_, "has '" + shown_text(value) + "' already");
    }

    /// A code may hold colons, so every one of them may be the border between two codes.
    Ends ends_of(const std::string& text) const {
        std::optional<Ends> found;
        for (std::size_t colon = text.find(':'); colon != text.npos; colon = text.find(':', colon + 1)) {
            const std::int32_t parent = find(parents(), text.substr(0, colon)),
                               child = find(table_, text.substr(colon + 1));
            if (parent < 0 || child < 0) continue;
            if (found) throw Failure(text, "can be read as several pairs of codes");
            found = Ends{parent, child, text};
        }
        if (!found) throw Failure(text, "not two codes that there are; write PARENT:CHILD");
        return *found;
    }

    std::vector<std::int32_t> lines_between(const Ends& ends) const {
        const std::string parent = nid(parents(), ends.parent), child = nid(table_, ends.child);
        const std::int32_t parent_field = field_of(links_, "NPID");
        std::vector<std::int32_t> lines;
        for (std::int32_t line = 0; line < KOfflineTable_GetRecsCount(links_); ++line) {
            const char* const text = KOfflineTable_GetFldValue(links_, line, parent_field);
            if (text && parent == text && value(links_, line, "NCID") == child) lines.push_back(line);
        }
        return lines;
    }

    void delete_links(std::size_t number, const char* end, const std::string& nid_text, const std::string& code) {
        KOfflineTable* const table = exchange::table_of(db_, number);
        const std::int32_t field = field_of(table, end);
        for (std::int32_t record; KOfflineTable_Search(table, field, nid_text.c_str(), &record, 1) > 0;) {
            changes_.push_back({"line deleted", code, exchange::kTableNames[number], nid(table, record), ""});
            KOfflineTable_DelRec(table, record);
        }
    }

    KOfflineDb* db_;
    std::string name_;
    Family family_;
    KOfflineTable *table_, *links_;
    std::vector<Change> changes_;
};

void apply(Editor& editor, const EditOptions& options) {
    for (const std::string& field : options.fields) editor.add_field(field);
    for (const std::string& code : options.adds) editor.add_record(code);
    for (const std::string& text : options.sets) editor.set(text);
    for (const std::string& text : options.lines) editor.set_line(text);
    if (!options.root.empty()) editor.set_root(options.root);
    for (const std::string& text : options.line_deletions) editor.delete_line(text);
    for (const std::string& code : options.deletions) editor.delete_record(code);
}

std::string sentence(const Change& change) {
    std::string text = change.kind;
    for (const std::string& part : {change.code, change.field})
        if (!part.empty()) text += " " + shown_text(part);
    if (change.kind == "changed")
        text += ": '" + shown_text(change.before) + "' -> '" + shown_text(change.after) + "'";
    return text;
}

void print(const std::vector<Change>& changes, bool json, Output& out) {
    for (const Change& change : changes) {
        if (json)
            out.json({{"kind", change.kind},
                      {"code", change.code},
                      {"field", change.field},
                      {"before", change.before},
                      {"after", change.after},
                      {"text", sentence(change)}});
        else
            out.line(sentence(change));
    }
}

int edit(Program& program, const EditOptions& options) {
    const DatabasePlace place(options.database);
    Destination destination;
    destination.path = place.path;
    destination.is_package = place.is_package;
    destination.force = true;
    destination.sync = options.database.sync;
    destination.words = options.database.words;
    std::optional<HostLock> lock;
    if (!options.database.no_lock)
        lock_destination(destination, options.dry_run ? HostLock::Mode::shared : HostLock::Mode::exclusive, lock);
    if (!options.dry_run) bring_back(destination, lock);

    DatabaseCopy copy(options.database.path, options.database.encoding,
                      options.dry_run ? temporary_folder() : scratch_place(destination));
    {
        const DatabaseFiles files(options.database);
        copy.load([&](const std::string& name) { return files.read(name); }, true);
    }
    Editor editor(copy.get(), options.database.path, family_of(options.table));
    apply(editor, options);
    print(editor.changes(), options.json, program.out());
    if (options.dry_run || editor.changes().empty()) return kDone;
    install_database(copy.save(), destination, lock);
    if (!options.json)
        program.out().line(place.is_package ? "saved into a copy of the package, which took its place"
                                            : "saved beside the old files, then exchanged for them");
    return kDone;
}

}  // namespace

void add_db_edit_verb(Program& program) {
    program.add_verb("db edit", "changes, adds and deletes records and lines, named by their codes", edit, R"(
        vlt db edit product.vlt --set 'WH-230:CMAT=steel' --dry-run
        vlt db edit product.vlt --add BL-1 --set 'BL-1:CNAME=Bell' --line 'BK-700:BL-1=1'
        vlt db edit product.vlt --table BDWG --add D-9 --line 'BK-700:D-9'
        vlt db edit product.vlt --delete ST-450 --root BK-700)");
}

}  // namespace tool
