// SPDX-License-Identifier: MIT
#include "tool/items.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tool/failure.h"

namespace tool {

Items::Items(const Database& db)
    : db_(db),
      table_(KOfflineDb_GetTable_BITM(db.get())),
      nid_(KOfflineDb_GetFld_BITM_NID(db.get())),
      code_(KOfflineDb_GetFld_BITM_CCODE(db.get())),
      name_(KOfflineDb_GetFld_BITM_CNAME(db.get())),
      graph_(db.get()) {}

std::string Items::label(bom::Item item) const {
    std::string room;
    return std::string(label(item, room));
}

std::string_view Items::label(bom::Item item, std::string& room) const {
    const std::string_view text = db_.shown(raw(item, code_), room);
    if (!text.empty()) return text;
    room = "NID=" + db_.shown(raw(item, nid_));
    return room;
}

std::string Items::child_label(bom::Line line) const {
    if (graph_.child(line) != bom::kNone) return label(graph_.child(line));
    const KOfflineDb* db = db_.get();
    return "NID=" + db_.shown(db_.value(KOfflineDb_GetTable_BBOM(db_.get()), line, db->field_slots[6])) +
           " (no such item)";
}

std::string Items::quantity_text(bom::Line line) const {
    const std::int32_t field = KOfflineDb_GetFld_BBOM_FCOUNT(db_.get());
    return field < 0 ? "1" : db_.shown(db_.value(KOfflineDb_GetTable_BBOM(db_.get()), line, field));
}

std::string Items::path_text(std::span<const bom::Line> path) const {
    std::string text = label(graph_.parent(path[0]));
    for (const bom::Line line : path) text += " > " + child_label(line);
    return text;
}

/// All of them, in record order.
std::vector<bom::Item> Items::search(std::int32_t field, const std::string& key) const {
    const std::int32_t found = KOfflineTable_Search(table_, field, key.c_str(), nullptr, 0);
    std::vector<bom::Item> items(static_cast<std::size_t>(std::max(found, 0)));
    KOfflineTable_Search(table_, field, key.c_str(), items.data(), static_cast<std::int32_t>(items.size()));
    std::sort(items.begin(), items.end());
    return items;
}

bom::Item Items::find(const std::string& text) const {
    std::vector<bom::Item> items = search(code_, db_.typed(text));
    if (items.empty() && text.starts_with("NID=")) items = search(nid_, db_.typed(text.substr(4)));
    if (items.empty()) {
        throw Failure(db_.name(), "no item has the code " + shown_text(text) + "; `vlt db table DB BITM` lists them");
    }
    if (items.size() > 1) {
        warn(db_.name() + ": " + std::to_string(items.size()) + " items are called " + shown_text(text) +
             "; the first is taken");
    }
    return items[0];
}

std::vector<bom::Item> Items::tops(const std::string& code) const {
    if (!code.empty()) return {find(code)};
    std::vector<bom::Item> tops = graph_.tops();
    if (!tops.empty() || graph_.items() == 0) return tops;
    const bom::Cycles cycles = bom::find_cycles(graph_);
    throw Failure(db_.name(),
                  "every item lies on or below a cycle, so there is no top item; name one to begin with. A "
                  "cycle: " +
                      path_text(cycles.paths[0]));
}

void Items::put(Json& object, const char* key, std::string_view value) const {
    object[key] = db_.shown(value);
    if (!db_.names().is_text(value)) object[key + std::string("_hex")] = db_.names().hex(value);
}

void Items::put_item(Json& object, bom::Item item) const {
    put(object, "code", raw(item, code_));
    put(object, "name", raw(item, name_));
}

bool Items::warn_of(const bom::Cycles& cycles) const {
    for (const auto& path : cycles.paths) warn(db_.name() + ": cycle: " + path_text(path));
    for (const auto& tangle : cycles.tangles) {
        warn(db_.name() + ": " + std::to_string(tangle.items.size()) + " items, among them " +
             label(tangle.items[0]) + ", all go into each other; " + std::to_string(tangle.lines_left) +
             " lines lie on further cycles");
    }
    return !cycles.empty();
}

std::size_t text_width(std::string_view text) {
    const bool ascii = std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c < 0x7f; });
    return ascii ? text.size() : display_width(text);
}

void append_right(std::string& line, std::string_view text, std::size_t width) {
    const std::size_t used = text_width(text);
    if (used < width) line.append(width - used, ' ');
    line += text;
}

void append_left(std::string& line, std::string_view text, std::size_t width) {
    const std::size_t used = text_width(text);
    line += text;
    if (used < width) line.append(width - used, ' ');
}

Parameters ProductOptions::parameters(CodeIs code_is) {
    const Parameters required{"CODE", &code, "the code of an item, or NID=NUMBER", {.required = true}};
    const Parameters optional{"CODE", &code,
                              "the item to begin with; if not given, the root item, or all without a parent"};
    return {database.parameters(Access::read), code_is == CodeIs::required ? required : optional, json_option(json)};
}

}  // namespace tool
