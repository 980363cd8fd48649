// SPDX-License-Identifier: MIT
// The items of a database as the verbs on bills of material name and print them.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "bom/cycles.h"
#include "bom/graph.h"
#include "tool/database.h"
#include "tool/program.h"

namespace tool {

class Items {
public:
    explicit Items(const Database& db);

    const Database& database() const { return db_; }
    const bom::Graph& graph() const { return graph_; }

    /// As text for people; empty for bom::kNone.
    std::string code(bom::Item item) const { return db_.shown(raw(item, code_)); }
    std::string name(bom::Item item) const { return db_.shown(raw(item, name_)); }

    /// What an item is called where it must be called something: its code, or its NID.
    std::string label(bom::Item item) const;

    /// Name and label without a copy where none is needed; `room` takes the text otherwise.
    std::string_view name(bom::Item item, std::string& room) const { return db_.shown(raw(item, name_), room); }
    std::string_view label(bom::Item item, std::string& room) const;

    /// What a line leads to: the item's label, or the NID that no item has.
    std::string child_label(bom::Line line) const;

    /// What a line says of its quantity, be it a number or not.
    std::string quantity_text(bom::Line line) const;

    /// "A > B > A"
    std::string path_text(std::span<const bom::Line> path) const;

    /// The item with this code, or this NID where the text is "NID=12"; the first of several, with a warning. Fails
    /// when there is none.
    bom::Item find(const std::string& text) const;

    /// Where a product begins: the item with the code, or all tops for an empty one. Fails where there is none,
    /// naming a cycle.
    std::vector<bom::Item> tops(const std::string& code) const;

    /// Adds a text of the database to an object; what is no UTF-8 also as KEY_hex.
    void put(Json& object, const char* key, std::string_view value) const;
    /// Adds `code` and `name`.
    void put_item(Json& object, bom::Item item) const;

    /// Warnings about cycles; returns whether there were any.
    bool warn_of(const bom::Cycles& cycles) const;

private:
    std::string_view raw(bom::Item item, std::int32_t field) const {
        return item == bom::kNone ? std::string_view() : db_.value(table_, item, field);
    }
    std::vector<bom::Item> search(std::int32_t field, const std::string& key) const;

    const Database& db_;
    KOfflineTable* table_;
    std::int32_t nid_, code_, name_;
    bom::Graph graph_;
};

/// Appends a text, filled with blanks to a width on its left or right.
void append_right(std::string& line, std::string_view text, std::size_t width);
void append_left(std::string& line, std::string_view text, std::size_t width);

/// display_width for many texts that are mostly ASCII.
std::size_t text_width(std::string_view text);

/// What the verbs on bills of material are given.
struct ProductOptions {
    DatabaseOptions database;
    std::string code;
    bool json = false;

    enum class CodeIs { required, optional };
    Parameters parameters(CodeIs code_is);
};

}  // namespace tool
