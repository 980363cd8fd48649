// SPDX-License-Identifier: MIT
#include "bom/diff.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <numeric>
#include <string_view>
#include <utility>

#include "bom/index.h"
#include "bom/text.h"

namespace bom {

namespace {

std::size_t at(std::int32_t number) {
    return static_cast<std::size_t>(number);
}

const char* value(KOfflineTable* table, std::int32_t rec, std::int32_t field) {
    const char* text = KOfflineTable_GetFldValue(table, rec, field);
    return text ? text : "";
}

// ---- Items ---------------------------------------------------------------------------------------------------

/// The items of one side, in order of the value that they are matched by: runs of equal values.
class Sorted {
public:
    Sorted(const Side& side, MatchBy by)
        : table_(KOfflineDb_GetTable_BITM(side.db)),
          field_(by == MatchBy::kCode ? KOfflineDb_GetFld_BITM_CCODE(side.db) : KOfflineDb_GetFld_BITM_NID(side.db)) {
        items_.reserve(at(side.graph->items()));
        for (const Item item : sorted_records(table_, field_)) {
            if (side.holds(item)) items_.push_back(item);
        }
    }

    bool at_end() const { return begin_ == items_.size(); }
    const char* key() const { return value(table_, items_[begin_], field_); }

    /// Takes the run of the current key, in record order.
    std::span<const Item> take_run() {
        const char* const run_key = key();
        const std::size_t begin = begin_;
        do {
            ++begin_;
        } while (!at_end() && compare_folded(run_key, key()) == 0);
        std::sort(items_.begin() + static_cast<std::ptrdiff_t>(begin),
                  items_.begin() + static_cast<std::ptrdiff_t>(begin_));
        return {items_.data() + begin, begin_ - begin};
    }

private:
    KOfflineTable* table_;
    std::int32_t field_;
    std::vector<Item> items_;
    std::size_t begin_ = 0;
};

/// Which item of one side is which of the other.
struct Matches {
    std::vector<Item> after_of, before_of;

    Matches(const Side& before, const Side& after, MatchBy by)
        : after_of(at(before.graph->items()), kNone), before_of(at(after.graph->items()), kNone) {
        Sorted left(before, by), right(after, by);
        while (!left.at_end() && !right.at_end()) {
            const int order = compare_folded(left.key(), right.key());
            const auto from = order <= 0 ? left.take_run() : std::span<const Item>();
            const auto to = order >= 0 ? right.take_run() : std::span<const Item>();
            for (std::size_t i = 0; i < std::min(from.size(), to.size()); ++i) {
                after_of[at(from[i])] = to[i];
                before_of[at(to[i])] = from[i];
            }
        }
    }
};

/// A field in both tables; -1 where one lacks it.
struct FieldPair {
    std::int32_t before, after;
};

std::vector<FieldPair> pair_fields(KOfflineTable* before, KOfflineTable* after,
                                   std::initializer_list<const char*> left_out) {
    std::vector<FieldPair> pairs;
    const auto wanted = [&](KOfflineTable* table, std::int32_t field) {
        return std::none_of(left_out.begin(), left_out.end(),
                            [&](const char* name) { return KOfflineTable_GetFldIndex(table, name) == field; });
    };
    char name[33];
    for (std::int32_t field = 0; KOfflineTable_GetFldName(before, field, name); ++field) {
        if (wanted(before, field)) pairs.push_back({field, KOfflineTable_GetFldIndex(after, name)});
    }
    for (std::int32_t field = 0; KOfflineTable_GetFldName(after, field, name); ++field) {
        if (wanted(after, field) && KOfflineTable_GetFldIndex(before, name) < 0) pairs.push_back({-1, field});
    }
    return pairs;
}

// ---- Comparing -----------------------------------------------------------------------------------------------

class Comparison {
public:
    Comparison(const Side& before, const Side& after, MatchBy by)
        : before_(before),
          after_(after),
          items_before_(KOfflineDb_GetTable_BITM(before.db)),
          items_after_(KOfflineDb_GetTable_BITM(after.db)),
          lines_before_(KOfflineDb_GetTable_BBOM(before.db)),
          lines_after_(KOfflineDb_GetTable_BBOM(after.db)),
          quantity_before_(KOfflineDb_GetFld_BBOM_FCOUNT(before.db)),
          quantity_after_(KOfflineDb_GetFld_BBOM_FCOUNT(after.db)),
          item_fields_(pair_fields(items_before_, items_after_, {"NID"})),
          line_fields_(pair_fields(lines_before_, lines_after_, {"NID", "NPID", "NCID", "FCOUNT"})),
          matches_(before, after, by) {}

    std::vector<Change> run() {
        for (Item item = 0; item < before_.graph->items(); ++item) {
            if (!before_.holds(item)) continue;
            if (matches_.after_of[at(item)] == kNone) {
                remove(item);
            } else {
                compare_items(item, matches_.after_of[at(item)]);
            }
        }
        for (Item item = 0; item < after_.graph->items(); ++item) {
            if (after_.holds(item) && matches_.before_of[at(item)] == kNone) add(item);
        }
        return std::move(changes_);
    }

private:
    using Kind = Change::Kind;

    void remove(Item item) {
        changes_.push_back({Kind::kItemRemoved, item});
        for (const Line line : before_.graph->children(item)) {
            changes_.push_back({Kind::kLineRemoved, item, kNone, line});
        }
    }

    void add(Item item) {
        changes_.push_back({Kind::kItemAdded, kNone, item});
        for (const Line line : after_.graph->children(item)) {
            changes_.push_back({Kind::kLineAdded, kNone, item, kNone, line});
        }
    }

    void compare_items(Item before, Item after) {
        for (const FieldPair& pair : item_fields_) {
            if (std::strcmp(value(items_before_, before, pair.before), value(items_after_, after, pair.after)) == 0) {
                continue;
            }
            changes_.push_back({Kind::kFieldChanged, before, after, kNone, kNone, pair.before, pair.after});
        }
        const auto from = before_.graph->children(before), to = after_.graph->children(after);
        if (!equal_in_order(from, to)) return compare_lines(before, after, from, to);
        for (std::size_t i = 0; i < from.size() && !line_fields_.empty(); ++i) {
            compare_line_fields(before, after, from[i], to[i]);
        }
    }

    bool equal_in_order(std::span<const Line> from, std::span<const Line> to) const {
        return std::equal(from.begin(), from.end(), to.begin(), to.end(),
                          [this](Line a, Line b) { return key_before(a) == key_after(b) && same_quantity(a, b); });
    }

    /// What a line leads to, in one numbering for both sides: items that are new come below those that are not there.
    std::int32_t key_before(Line line) const { return before_.graph->child(line); }
    std::int32_t key_after(Line line) const {
        const Item child = after_.graph->child(line);
        if (child == kNone) return kNone;
        const Item before = matches_.before_of[at(child)];
        return before == kNone ? -2 - child : before;
    }

    std::string_view quantity_before(Line line) const {
        return quantity_before_ < 0 ? "1" : value(lines_before_, line, quantity_before_);
    }
    std::string_view quantity_after(Line line) const {
        return quantity_after_ < 0 ? "1" : value(lines_after_, line, quantity_after_);
    }

    static std::string as_number(std::string_view text) {
        const auto number = Decimal::parse(text);
        return number ? number->text() : std::string(text);
    }

    bool same_quantity(Line before, Line after) const {
        const std::string_view a = quantity_before(before), b = quantity_after(after);
        return a == b || as_number(a) == as_number(b);
    }

    /// A line while those of two items are compared.
    struct Entry {
        std::int32_t key;
        std::string quantity;
        Line line;
        auto operator<=>(const Entry&) const = default;
    };

    void compare_lines(Item before, Item after, std::span<const Line> from, std::span<const Line> to) {
        std::vector<Entry> left, right;
        for (const Line line : from) left.push_back({key_before(line), as_number(quantity_before(line)), line});
        for (const Line line : to) right.push_back({key_after(line), as_number(quantity_after(line)), line});
        take_equal(before, after, left, right);
        const auto by_line = [](const Entry& a, const Entry& b) {
            return std::pair(a.key, a.line) < std::pair(b.key, b.line);
        };
        std::sort(left.begin(), left.end(), by_line);
        std::sort(right.begin(), right.end(), by_line);
        pair_rest(before, after, left, right);
    }

    /// Pairs lines of equal quantity off.
    void take_equal(Item before, Item after, std::vector<Entry>& left, std::vector<Entry>& right) {
        std::sort(left.begin(), left.end());
        std::sort(right.begin(), right.end());
        std::vector<Entry> left_over, right_over;
        auto l = left.begin(), r = right.begin();
        while (l != left.end() && r != right.end()) {
            const auto order = std::tie(l->key, l->quantity) <=> std::tie(r->key, r->quantity);
            if (order < 0) {
                left_over.push_back(std::move(*l++));
            } else if (order > 0) {
                right_over.push_back(std::move(*r++));
            } else {
                compare_line_fields(before, after, (l++)->line, (r++)->line);
            }
        }
        std::move(l, left.end(), std::back_inserter(left_over));
        std::move(r, right.end(), std::back_inserter(right_over));
        left = std::move(left_over), right = std::move(right_over);
    }

    /// What is left of equal items differs in quantity; the rest came or went.
    void pair_rest(Item before, Item after, const std::vector<Entry>& left, const std::vector<Entry>& right) {
        std::vector<Change> added;
        auto l = left.begin();
        for (auto r = right.begin(); r != right.end(); ++r) {
            for (; l != left.end() && l->key < r->key; ++l) {
                changes_.push_back({Kind::kLineRemoved, before, after, l->line});
            }
            if (l == left.end() || l->key != r->key) {
                added.push_back({Kind::kLineAdded, before, after, kNone, r->line});
                continue;
            }
            changes_.push_back(
                {Kind::kQuantityChanged, before, after, l->line, r->line, quantity_before_, quantity_after_});
            compare_line_fields(before, after, l->line, r->line);
            ++l;
        }
        for (; l != left.end(); ++l) changes_.push_back({Kind::kLineRemoved, before, after, l->line});
        changes_.insert(changes_.end(), added.begin(), added.end());
    }

    void compare_line_fields(Item before, Item after, Line from, Line to) {
        for (const FieldPair& pair : line_fields_) {
            if (std::strcmp(value(lines_before_, from, pair.before), value(lines_after_, to, pair.after)) == 0) {
                continue;
            }
            changes_.push_back({Kind::kLineFieldChanged, before, after, from, to, pair.before, pair.after});
        }
    }

    const Side &before_, &after_;
    KOfflineTable *items_before_, *items_after_, *lines_before_, *lines_after_;
    std::int32_t quantity_before_, quantity_after_;
    std::vector<FieldPair> item_fields_, line_fields_;
    Matches matches_;
    std::vector<Change> changes_;
};

}  // namespace

std::vector<Change> compare(const Side& before, const Side& after, MatchBy by) {
    return Comparison(before, after, by).run();
}

}  // namespace bom
