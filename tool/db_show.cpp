// SPDX-License-Identifier: MIT
// vlt db show
#include <nlohmann/json.hpp>

#include "bom/check.h"
#include "bom/links.h"
#include "bom/text.h"
#include "tool/items.h"

namespace tool {

namespace {

struct ShowOptions : ProductOptions {
    Parameters parameters() { return ProductOptions::parameters(CodeIs::required); }
};

/// One item and all that belongs to it.
class ItemView {
public:
    ItemView(const Items& items, bom::Item item)
        : items_(items), db_(items.database()), item_(item), documents_(db_.files().documents()) {}

    void print(Output& out) const {
        out.line(out.coloured(items_.label(item_), Colour::bold) + "  " + items_.name(item_));
        KOfflineTable* table = KOfflineDb_GetTable_BITM(db_.get());
        std::size_t width = 0;
        for (std::int32_t field = 0; field < table->field_count; ++field) {
            width = std::max(width, text_width(db_.shown(field_key(table, field))));
        }
        for (std::int32_t field = 0; field < table->field_count; ++field) {
            std::string line = "  ";
            append_left(line, db_.shown(field_key(table, field)), width);
            out.line(line + "  " + db_.shown(db_.value(table, item_, field)));
        }
        print_lines(out, "goes into", items_.graph().parents(item_), true);
        print_lines(out, "consists of", items_.graph().children(item_), false);
        print_records(out, "drawings", KOfflineDb_GetTable_BDWG(db_.get()), bom::ItemLinks::drawings(db_.get()));
        print_records(out, "process plans", KOfflineDb_GetTable_BCAPP(db_.get()), bom::ItemLinks::plans(db_.get()));
    }

    void print_json(Output& out) const {
        Json object, fields = Json::object();
        items_.put_item(object, item_);
        KOfflineTable* table = KOfflineDb_GetTable_BITM(db_.get());
        for (std::int32_t field = 0; field < table->field_count; ++field) {
            items_.put(fields, db_.shown(field_key(table, field)).c_str(), db_.value(table, item_, field));
        }
        object["fields"] = fields;
        object["parents"] = json_lines(items_.graph().parents(item_), true);
        object["children"] = json_lines(items_.graph().children(item_), false);
        object["drawings"] = json_records(KOfflineDb_GetTable_BDWG(db_.get()), bom::ItemLinks::drawings(db_.get()));
        object["plans"] = json_records(KOfflineDb_GetTable_BCAPP(db_.get()), bom::ItemLinks::plans(db_.get()));
        out.json(object);
    }

private:
    bom::Item end(bom::Line line, bool up) const {
        return up ? items_.graph().parent(line) : items_.graph().child(line);
    }

    void print_lines(Output& out, const char* title, std::span<const bom::Line> lines, bool up) const {
        if (lines.empty()) return;
        out.line(out.coloured(title, Colour::bold));
        for (const bom::Line line : lines) {
            std::string text;
            append_right(text, items_.quantity_text(line), 8);
            if (end(line, up) == bom::kNone)
                text += "  " + (up ? std::string("(no such item)") : items_.child_label(line));
            else
                text += "  " + items_.label(end(line, up)) + "  " + items_.name(end(line, up));
            out.line(text);
        }
    }

    Json json_lines(std::span<const bom::Line> lines, bool up) const {
        Json array = Json::array();
        for (const bom::Line line : lines) {
            Json object;
            items_.put_item(object, end(line, up));
            object["quantity"] = items_.quantity_text(line);
            array.push_back(object);
        }
        return array;
    }

    std::string_view value(KOfflineTable* table, std::int32_t rec, const char* field) const {
        return db_.value(table, rec, KOfflineTable_GetFldIndex(table, field));
    }

    /// The size of a record's document; -1 where it is not stored.
    std::int64_t document_size(KOfflineTable* table, std::int32_t rec) const {
        const std::string name = bom::document_name(std::string(value(table, rec, "CFILE")));
        for (const Document& document : documents_) {
            if (bom::compare_folded(document.name.c_str(), name.c_str()) == 0) return document.size;
        }
        return -1;
    }

    void print_records(Output& out, const char* title, KOfflineTable* table, const bom::ItemLinks& links) const {
        if (links.of(item_).empty()) return;
        out.line(out.coloured(title, Colour::bold));
        for (const std::int32_t rec : links.of(item_)) {
            std::string text =
                "  " + db_.shown(value(table, rec, "CCODE")) + "  " + db_.shown(value(table, rec, "CNAME"));
            const std::string document = db_.shown(value(table, rec, "CFILE"));
            const std::int64_t size = document_size(table, rec);
            if (!document.empty()) {
                text += "  " + document +
                        (size < 0 ? " (not stored)" : " (" + size_text(static_cast<double>(size)) + ")");
            }
            out.line(text);
        }
    }

    Json json_records(KOfflineTable* table, const bom::ItemLinks& links) const {
        Json array = Json::array();
        for (const std::int32_t rec : links.of(item_)) {
            const std::int64_t size = document_size(table, rec);
            Json object;
            items_.put(object, "code", value(table, rec, "CCODE"));
            items_.put(object, "name", value(table, rec, "CNAME"));
            items_.put(object, "document", value(table, rec, "CFILE"));
            object["size"] = size < 0 ? Json(nullptr) : Json(size);
            array.push_back(object);
        }
        return array;
    }

    const Items& items_;
    const Database& db_;
    bom::Item item_;
    std::vector<Document> documents_;
};

int print_item(Program& program, const ShowOptions& options) {
    const Database db(options.database, Access::read);
    const Items items(db);
    const ItemView view(items, items.find(options.code));
    options.json ? view.print_json(program.out()) : view.print(program.out());
    return kDone;
}

}  // namespace

void add_db_show_verb(Program& program) {
    program.add_verb("db show", "an item with all that belongs to it", print_item, R"(
        vlt db show product.vlt WH-200
        vlt db show examples/bicycle bk-700 --json)");
}

}  // namespace tool
