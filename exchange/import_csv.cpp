// SPDX-License-Identifier: MIT
#include <algorithm>

#include "exchange/csv.h"
#include "exchange/error.h"
#include "exchange/export.h"
#include "exchange/import_rows.h"

namespace exchange {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Adds the file's name to a failure.
template <typename Work>
auto in_file(const std::string& name, Work work) {
    try {
        return work();
    } catch (const Error& error) {
        throw Error(name + ": " + error.what());
    }
}

class CsvRows : public Rows {
public:
    CsvRows(std::string name, std::string text) : name_(std::move(name)), text_(std::move(text)), reader_(text_) {
        if (text_.find('\0') != text_.npos) throw Error(name_ + ": holds a zero byte");
        read_heading();
    }

    const std::vector<std::string>& columns() const override { return columns_; }

    bool next(std::vector<std::string_view>& values) override {
        if (!in_file(name_, [&] { return reader_.next(values); })) return false;
        if (values.size() == columns_.size()) return true;
        throw Error(name_ + ": line " + std::to_string(reader_.line()) + ": " + std::to_string(values.size()) +
                    " values under " + std::to_string(columns_.size()) + " names");
    }

private:
    void read_heading() {
        std::vector<std::string_view> names;
        if (!in_file(name_, [&] { return reader_.next(names); }))
            throw Error(name_ + ": lacks the line with the names of the fields");
        columns_.assign(names.begin(), names.end());
        if (columns_.front().starts_with(kByteOrderMark)) columns_.front().erase(0, kByteOrderMark.size());
    }

    std::string name_, text_;
    CsvReader reader_;
    std::vector<std::string> columns_;
};

std::vector<SchemaRow> read_schema(std::string text) {
    CsvRows rows(kSchemaCsv, std::move(text));
    if (rows.columns().size() != 3)
        throw Error(std::string(kSchemaCsv) + ": has other columns than kind, table, value");
    std::vector<SchemaRow> result;
    for (std::vector<std::string_view> values; rows.next(values);)
        result.push_back({std::string(values[0]), std::string(values[1]), std::string(values[2])});
    return result;
}

}  // namespace

void import_csv(const ReadFile& read_file, const OpenEmpty& open_empty) {
    RowSource source;
    if (auto text = read_file(kSchemaCsv)) source.schema = read_schema(std::move(*text));
    for (std::size_t t = 0; t < kTableCount; ++t)
        if (auto text = read_file(csv_name(t)))
            source.tables[t] = std::make_unique<CsvRows>(csv_name(t), std::move(*text));
    import_rows(std::move(source), {}, open_empty);
}

}  // namespace exchange
