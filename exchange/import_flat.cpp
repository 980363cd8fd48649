// SPDX-License-Identifier: MIT
#include <algorithm>

#include "exchange/flat_bom.h"
#include "exchange/table_filler.h"
#include "exchange/text.h"

namespace exchange {

namespace {

/// Adds the fields that a table lacks.
void declare(std::vector<std::string>& fields, const std::vector<std::string>& wanted) {
    for (const std::string& name : wanted)
        if (std::none_of(fields.begin(), fields.end(),
                         [&](const std::string& field) { return upper(field) == upper(name); }))
            fields.push_back(name);
}

std::vector<std::size_t> numbers_of(TableFiller& filler, const std::vector<std::string>& names) {
    std::vector<std::size_t> numbers;
    for (const std::string& name : names) numbers.push_back(filler.field(name));
    return numbers;
}

void add_record(TableFiller& filler, const std::vector<std::size_t>& fields, const std::vector<std::string>& values,
                const std::vector<std::size_t>& more_fields, const std::vector<std::string>& more_values) {
    for (std::size_t i = 0; i < fields.size(); ++i) filler.set(fields[i], values[i]);
    for (std::size_t i = 0; i < more_fields.size(); ++i) filler.set(more_fields[i], more_values[i]);
    filler.add();
}

}  // namespace

void import_flat_bom(const FlatBom& bom, const OpenEmpty& open_empty) {
    Schema schema = usual_schema();
    declare(schema.fields[kBitm], bom.item_fields);
    declare(schema.fields[kBbom], bom.line_fields);
    if (bom.tops.size() == 1) schema.root_nid = std::to_string(bom.tops.front() + 1);
    if (bom.tops.size() == 1) schema.root_code = bom.items[bom.tops.front()].code;
    KOfflineDb* const db = open_empty(schema);

    TableFiller items(db, kBitm), lines(db, kBbom);
    const auto item_fields = numbers_of(items, {"NID", "CCODE", "CNAME"}),
               item_more = numbers_of(items, bom.item_fields);
    for (const FlatItem& item : bom.items) {
        const std::size_t nid = static_cast<std::size_t>(&item - bom.items.data()) + 1;
        add_record(items, item_fields, {std::to_string(nid), item.code, item.name}, item_more, item.values);
    }
    const auto line_fields = numbers_of(lines, {"NID", "NPID", "NCID", "FCOUNT"}),
               line_more = numbers_of(lines, bom.line_fields);
    for (const FlatLine& line : bom.lines) {
        const std::size_t nid = static_cast<std::size_t>(&line - bom.lines.data()) + 1;
        add_record(
            lines, line_fields,
            {std::to_string(nid), std::to_string(line.parent + 1), std::to_string(line.child + 1), line.quantity},
            line_more, line.values);
    }
    set_root(db, schema);
}

}  // namespace exchange
