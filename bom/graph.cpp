// SPDX-License-Identifier: MIT
#include "bom/graph.h"

namespace bom {

bool Decimals::push_back(const char* text) {
    packed_.push_back(Decimal::parse_packed(text));
    if (packed_.back() != Decimal::kNotPacked) return true;
    const auto number = Decimal::parse(text);
    const Decimal counted = number.value_or(Decimal(1));
    packed_.back() = counted.packed();
    if (packed_.back() == Decimal::kNotPacked) long_.emplace(static_cast<std::int32_t>(packed_.size()) - 1, counted);
    return number.has_value();
}

Graph::Graph(KOfflineDb* db) {
    const auto items = at(KOfflineTable_GetRecsCount(KOfflineDb_GetTable_BITM(db)));
    child_begin_.resize(items + 1);
    has_parent_.resize(items);
    read_lines(db);
    group(parent_, child_begin_, child_lines_);
    if (db->root_nid > 0) root_ = KOfflineDb_GetRecByNID_BITM(db, db->root_nid);
}

void Graph::read_lines(KOfflineDb* db) {
    const NidMap items(KOfflineDb_GetTable_BITM(db), KOfflineDb_GetFld_BITM_NID(db));
    KOfflineTable* table = KOfflineDb_GetTable_BBOM(db);
    const std::int32_t parent = KOfflineDb_GetFld_BBOM_NPID(db), child = KOfflineDb_GetFld_BBOM_NCID(db);
    const std::int32_t quantity = KOfflineDb_GetFld_BBOM_FCOUNT(db);
    const Line lines = KOfflineTable_GetRecsCount(table);
    parent_.reserve(at(lines)), child_.reserve(at(lines)), quantity_.reserve(at(lines));
    for (Line line = 0; line < lines; ++line) {
        parent_.push_back(items.find(KOfflineTable_GetFldValue(table, line, parent)));
        child_.push_back(items.find(KOfflineTable_GetFldValue(table, line, child)));
        if (child_.back() != kNone) has_parent_[at(child_.back())] = 1;
        const char* text = KOfflineTable_GetFldValue(table, line, quantity);
        const bool is_number = quantity_.push_back(text ? text : "");
        if (!is_number && quantity >= 0) without_quantity_.push_back(line);
    }
}

void Graph::group(const std::vector<Item>& ends, std::vector<Line>& begin, std::vector<Line>& lines) {
    for (const Item end : ends) {
        if (end != kNone) ++begin[at(end)];
    }
    Line total = 0;
    for (Line& count : begin) total += count, count = total;
    lines.resize(at(total));
    for (auto line = static_cast<Line>(ends.size()); line-- > 0;) {
        if (ends[at(line)] != kNone) lines[at(--begin[at(ends[at(line)])])] = line;
    }
}

void Graph::group_parents() const {
    parent_begin_.resize(child_begin_.size());
    group(child_, parent_begin_, parent_lines_);
}

std::vector<Item> Graph::without_parents() const {
    std::vector<Item> tops;
    for (Item item = 0; item < items(); ++item) {
        if (!has_parent_[at(item)]) tops.push_back(item);
    }
    return tops;
}

}  // namespace bom
