// SPDX-License-Identifier: MIT
#include "tool/page_data.h"

#include <algorithm>
#include <map>

#include "bom/links.h"
#include "tool/database.h"
#include "tool/names.h"

namespace tool {

namespace {

/// What a table says of its records, as columns or one record at a time.
class Values {
public:
    Values(const Database& db, KOfflineTable* table) : db_(db), table_(table) {}

    std::int32_t count() const { return KOfflineTable_GetRecsCount(table_); }
    std::int32_t field(const char* name) const { return KOfflineTable_GetFldIndex(table_, name); }

    /// Null where there is no such field, no value, or an empty one.
    Json value(std::int32_t rec, std::int32_t field) const {
        const std::string_view value = field < 0 ? std::string_view() : db_.value(table_, rec, field);
        return value.empty() ? Json() : Json(db_.shown(value));
    }

    Json column(std::int32_t field) const {
        Json values = Json::array();
        for (std::int32_t rec = 0; rec < count(); ++rec) values.push_back(value(rec, field));
        return values;
    }

    /// The fields that the page has no place of its own for.
    std::vector<std::int32_t> other_fields() const {
        std::vector<std::int32_t> fields;
        for (std::int32_t f = 0; f < KOfflineTable_GetFldsCount(table_); ++f) {
            if (f != field("NID") && f != field("CCODE") && f != field("CNAME")) fields.push_back(f);
        }
        return fields;
    }

    std::string field_name(std::int32_t field) const { return shown_text(field_key(table_, field)); }

private:
    const Database& db_;
    KOfflineTable* table_;
};

Json items_of(const Values& values, const std::vector<std::int32_t>& fields) {
    Json columns = Json::array();
    for (const std::int32_t field : fields) columns.push_back(values.column(field));
    return {{"code", values.column(values.field("CCODE"))},
            {"name", values.column(values.field("CNAME"))},
            {"values", std::move(columns)}};
}

/// The lines whose two ends are items; stores how many are not.
Json lines_of(const Items& items, std::int32_t* left_out) {
    Json parents = Json::array(), children = Json::array(), quantities = Json::array();
    const bom::Graph& graph = items.graph();
    for (bom::Line line = 0; line < graph.lines(); ++line) {
        if (graph.parent(line) == bom::kNone || graph.child(line) == bom::kNone) {
            ++*left_out;
            continue;
        }
        parents.push_back(graph.parent(line));
        children.push_back(graph.child(line));
        quantities.push_back(items.quantity_text(line));
    }
    return {{"parent", std::move(parents)}, {"child", std::move(children)}, {"quantity", std::move(quantities)}};
}

/// Drawings and process plans, the documents that they name, and which item has which.
class Papers {
public:
    Papers(const Items& items, const PageDocuments& rules, PageData& page)
        : items_(items), db_(items.database()), rules_(rules), page_(page), stored_(db_.files().documents()) {}

    void add() {
        page_.product["papers"] = Json::array();
        page_.product["links"] = {{"item", Json::array()}, {"paper", Json::array()}};
        page_.product["documents"] = Json::array();
        add_table("drawing", KOfflineDb_GetTable_BDWG(db_.get()), bom::ItemLinks::drawings(db_.get()));
        add_table("process plan", KOfflineDb_GetTable_BCAPP(db_.get()), bom::ItemLinks::plans(db_.get()));
    }

private:
    void add_table(const char* kind, KOfflineTable* table, const bom::ItemLinks& links) {
        const Values values(db_, table);
        const std::size_t first = page_.product["papers"].size();
        for (std::int32_t rec = 0; rec < values.count(); ++rec) add_paper(kind, table, values, rec);
        Json& lists = page_.product["links"];
        for (bom::Item item = 0; item < items_.graph().items(); ++item) {
            for (const std::int32_t rec : links.of(item)) {
                lists["item"].push_back(item);
                lists["paper"].push_back(first + static_cast<std::size_t>(rec));
            }
        }
    }

    void add_paper(const char* kind, KOfflineTable* table, const Values& values, std::int32_t rec) {
        const std::int32_t file = values.field("CFILE");
        Json fields = Json::array();
        for (const std::int32_t field : values.other_fields()) {
            const Json value = values.value(rec, field);
            if (field != file && !value.is_null()) fields.push_back({values.field_name(field), value});
        }
        const std::string name(file < 0 ? std::string_view() : db_.value(table, rec, file));
        page_.product["papers"].push_back({{"kind", kind},
                                           {"code", values.value(rec, values.field("CCODE"))},
                                           {"name", values.value(rec, values.field("CNAME"))},
                                           {"fields", std::move(fields)},
                                           {"document", name.empty() ? -1 : document(name)}});
    }

    /// The number of the document that a record names; its folder does not count.
    int document(const std::string& named) {
        const std::string name = named.substr(named.find_last_of("/\\") + 1);
        const auto [at, added] = numbers_.try_emplace(folded(name), static_cast<int>(numbers_.size()));
        if (added) page_.product["documents"].push_back(describe(name));
        return at->second;
    }

    Json describe(const std::string& name) {
        const auto stored = std::find_if(stored_.begin(), stored_.end(), [&](const Document& document) {
            return folded(document.name) == folded(name);
        });
        Json object{{"name", db_.shown(name)}};
        if (stored == stored_.end()) {
            object["missing"] = "not stored";
        } else if (!rules_.wanted || stored->size > rules_.largest) {
            object["missing"] = size_text(static_cast<double>(stored->size)) + ", not in this page";
        } else {
            object["element"] = document_id(page_.documents.size());
            page_.documents.push_back(*stored);
        }
        return object;
    }

    const Items& items_;
    const Database& db_;
    const PageDocuments& rules_;
    PageData& page_;
    std::vector<Document> stored_;
    std::map<std::string, int> numbers_;  // by folded name
};

}  // namespace

std::string document_id(std::size_t number) {
    return "document-" + std::to_string(number);
}

PageData page_data(const Items& items, const PageDocuments& documents) {
    const Values values(items.database(), KOfflineDb_GetTable_BITM(items.database().get()));
    const std::vector<std::int32_t> fields = values.other_fields();
    PageData page;
    page.product["root"] = items.graph().root();
    page.product["fields"] = Json::array();
    for (const std::int32_t field : fields) page.product["fields"].push_back(values.field_name(field));
    page.product["items"] = items_of(values, fields);
    std::int32_t left_out = 0;
    page.product["lines"] = lines_of(items, &left_out);
    page.product["left_out"] = left_out;
    Papers(items, documents, page).add();
    return page;
}

}  // namespace tool
