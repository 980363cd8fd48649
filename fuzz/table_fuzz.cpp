// SPDX-License-Identifier: MIT
// A data file, then changes of its table and searches. The values are compared with a plain copy of the table, the
// searches with a scan of that copy, and what is written with what comes back.
#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

#include "base/ascii_case.h"
#include "fuzz/support.h"
#include "include/offline.h"
#include "offline/tables/data_file.h"
#include "tests/support/database_files.h"

namespace {

using Value = std::optional<std::string>;
using Row = std::vector<Value>;

constexpr std::size_t kLongestFile =
    400;  // sorting equal values takes time that grows with the square of their number
constexpr std::size_t kMostRecords = 40;  // of more only the end is compared
const char* const kFields[] = {"NID", "CCODE", "T.CNAME", "NPID", "x"};
const char* const kSeparators[] = {"\t", ",", ";;", "|", " ", "", "a\\"};

class Tables {
public:
    explicit Tables(Input& input) : input_(input), double_bytes_(input.Flag()) {
        UseDoubleBytes(double_bytes_);
        KOfflineTable_Constructor(&table_, nullptr, "T");
        const std::uint8_t shape = input.Byte();
        for (std::uint8_t field = 0; field <= shape % std::size(kFields); ++field)
            KOfflineTable_AddFld(&table_, kFields[(field + shape / 8) % std::size(kFields)]);
        separator_ = kSeparators[input.Byte() % std::size(kSeparators)];
    }
    ~Tables() { KOfflineTable_Destructor(&table_); }

    void Run() {
        const std::string calls = input_.Text('\x1e'), contents = input_.Rest().substr(0, kLongestFile);
        const std::string data = Scratch("data.txt");
        WriteText(data, contents);
        KOfflineTable_ReadFile(&table_, data.c_str(), separator_);
        rows_ = Rows();
        Input script(reinterpret_cast<const std::uint8_t*>(calls.data()), calls.size());
        for (int i = 0; !script.empty() && i < 50; ++i) {
            Step(script);
            if (rows_.size() < kMostRecords || script.empty()) Require(rows_ == Rows());
        }
        CheckFiles();
    }

private:
    std::int32_t Records() { return KOfflineTable_GetRecsCount(&table_); }
    std::int32_t Fields() { return KOfflineTable_GetFldsCount(&table_); }

    Row RowOf(std::int32_t rec) {
        Row row;
        for (std::int32_t field = 0; field < Fields(); ++field) {
            const char* value = KOfflineTable_GetFldValue(&table_, rec, field);
            row.push_back(value ? Value(value) : std::nullopt);
        }
        return row;
    }
    std::vector<Row> Rows() {
        std::vector<Row> rows;
        for (std::int32_t rec = 0; rec < Records(); ++rec) rows.push_back(RowOf(rec));
        return rows;
    }

    std::int32_t AnyRecord(Input& script) { return script.Byte() % (Records() + 2) - 1; }
    std::int32_t AnyField(Input& script) { return script.Byte() % (Fields() + 2) - 1; }
    bool Has(std::int32_t rec, std::int32_t field) {
        return rec >= 0 && rec < Records() && field >= 0 && field < Fields();
    }

    /// A value of the table or a new one.
    std::string AnyValue(Input& script) {
        const std::uint8_t pick = script.Byte();
        if (pick & 1 || rows_.empty()) return script.CText('\x1f') + std::string(pick == 255 ? 33000 : 0, 'v');
        const Row& row = rows_[pick / 2 % rows_.size()];
        return row.empty() ? "" : row[script.Byte() % row.size()].value_or("");
    }

    void Step(Input& script) {
        switch (script.Byte() % 10) {
            case 0:
                return Add(script.CText('\x1f'));
            case 1:
            case 2:
                return Set(AnyRecord(script), AnyField(script), AnyValue(script));
            case 3:
                return Delete(AnyRecord(script));
            case 4:
                return Copy(AnyRecord(script));
            case 5:
                return Index(kFields[script.Byte() % std::size(kFields)]);
            case 6:
            case 7:
                return Search(AnyField(script), AnyValue(script), script.Byte() % 8);
            case 8:
                return Number(AnyRecord(script), script);
            case 9:
                return Reshape(script.Byte());
        }
    }

    void Add(const std::string& line) {
        const std::int32_t rec = KOfflineTable_AddRec(&table_, line.c_str(), separator_);
        if (rec < 0) return;
        Require(rec == static_cast<std::int32_t>(rows_.size()));
        rows_.push_back(RowOf(rec));
        if (std::strlen(separator_) == 1 && !double_bytes_) CheckSplit(line, rows_.back());
    }

    /// The values by the rules of a line, one after the other.
    void CheckSplit(const std::string& line, const Row& row) {
        std::size_t begin = 0;
        for (std::size_t field = 0; field < row.size() && begin <= line.size(); ++field) {
            const std::size_t end = std::min(line.find(separator_[0], begin), line.size());
            std::string piece = line.substr(begin, end - begin);
            piece.erase(piece.find_last_not_of(" \t") + 1);
            piece.erase(0, std::min(piece.find_first_not_of(" \t"), piece.size()));
            KOfflineDb_StrSwap(piece.c_str(), piece.data(), static_cast<std::int32_t>(piece.size()) + 1, 0);
            const bool numbered = KOfflineTable_GetFldIndex(&table_, "NID") == static_cast<std::int32_t>(field);
            if (!numbered || piece[0]) Require(row[field] == piece.c_str());
            begin = end + 1;
        }
    }

    void Set(std::int32_t rec, std::int32_t field, const std::string& value) {
        const bool done = KOfflineTable_SetFldValue(&table_, rec, field, value.c_str()) == 1;
        Require(!done || Has(rec, field));
        if (!done) return;
        Value& held = rows_[static_cast<std::size_t>(rec)][static_cast<std::size_t>(field)];
        if (held || !value.empty()) held = value;
    }

    void Delete(std::int32_t rec) {
        Require(KOfflineTable_DelRec(&table_, rec) == (rec >= 0 && rec < static_cast<std::int32_t>(rows_.size())));
        if (rec >= 0 && rec < static_cast<std::int32_t>(rows_.size())) rows_.erase(rows_.begin() + rec);
    }

    void Copy(std::int32_t rec) {
        const std::int32_t copy = KOfflineTable_CopyRec(&table_, rec);
        if (copy < 0) return;
        const std::int32_t nid = KOfflineTable_GetFldIndex(&table_, "NID");
        Row row = rows_[static_cast<std::size_t>(rec)];
        if (nid >= 0) row[static_cast<std::size_t>(nid)] = KOfflineTable_GetFldValue(&table_, copy, nid);
        rows_.push_back(row);
    }

    void Index(const char* name) {
        const std::int32_t field = KOfflineTable_GetFldIndex(&table_, name);
        Require(KOfflineTable_LoadIdx(&table_, name) == (field >= 0));
    }

    void Search(std::int32_t field, const std::string& key, std::int32_t capacity) {
        const std::int32_t total = Records();
        std::vector<std::int32_t> found(static_cast<std::size_t>(total) + 1, -5), expected;
        const std::int32_t count = KOfflineTable_Search(&table_, field, key.c_str(), found.data(), total);
        if (field < 0 || field >= Fields()) return Require(count == -1);
        for (std::int32_t rec = 0; rec < total; ++rec)
            if (equals_fold(
                    rows_[static_cast<std::size_t>(rec)][static_cast<std::size_t>(field)].value_or("").c_str(),
                    key.c_str()))
                expected.push_back(rec);
        const bool indexed = KOfflineTable_GetIndexRecs(&table_, field) != nullptr;
        Require(count == (expected.empty() && indexed ? -1 : static_cast<std::int32_t>(expected.size())));
        found.resize(expected.size());
        const std::vector<std::int32_t> in_order = found;
        if (indexed) std::sort(found.begin(), found.end());
        Require(found == expected);
        std::vector<std::int32_t> first(static_cast<std::size_t>(capacity));
        Require(KOfflineTable_Search(&table_, field, key.c_str(), first.data(), capacity) == count);
        Require(std::equal(first.begin(), first.begin() + std::min<std::int32_t>(capacity, std::max(count, 0)),
                           in_order.begin()));
    }

    void Number(std::int32_t rec, Input& script) {
        const auto nid = static_cast<std::int32_t>(script.Number(script.Flag() ? 4 : 1));
        if (KOfflineTable_SetRecNID(&table_, rec, nid) != 1) return;
        Require(KOfflineTable_GetRecNID(&table_, rec) == nid);
        rows_[static_cast<std::size_t>(rec)] = RowOf(rec);
    }

    void Reshape(std::uint8_t how) {
        if (how % 8 == 0) {
            KOfflineTable_Clear(&table_);
            rows_.clear();
        } else if (how % 2) {
            const std::int32_t fields = Fields();
            KOfflineTable_AddFld(&table_, kFields[how / 2 % std::size(kFields)]);
            if (Fields() > fields)
                for (Row& row : rows_) row.push_back(std::nullopt);
        } else {
            CheckFiles();
            rows_ = Rows();
        }
    }

    /// Written, read and written until what is written stays the same, which takes two turns.
    void CheckFiles() {
        const std::string out = Scratch("out.txt");
        Require(KOfflineTable_WriteFile(&table_, out.c_str(), separator_) == 1);
        const std::vector<Row> before = Rows();
        if (!KOfflineTable_ReadFile(&table_, out.c_str(), separator_)) return;
        const bool plain = (!std::strcmp(separator_, "\t") || !std::strcmp(separator_, ",")) && !double_bytes_;
        KOfflineTable_WriteFile(&table_, out.c_str(), separator_);
        const std::string first = ReadText(out);
        if (!plain || !KOfflineTable_ReadFile(&table_, out.c_str(), separator_)) return;
        KOfflineTable_WriteFile(&table_, out.c_str(), separator_);
        Require(ReadText(out) == first);
    }

    Input& input_;
    const bool double_bytes_;
    const char* separator_;
    KOfflineTable table_;
    std::vector<Row> rows_;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Tables(input).Run();
    ResetHost();
    return 0;
}
