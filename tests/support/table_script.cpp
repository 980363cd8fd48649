// SPDX-License-Identifier: MIT
#include "tests/support/table_script.h"

#include <iterator>

#include "tests/support/database_files.h"
#include "tests/support/reference_table.h"

namespace {

constexpr std::size_t kLongestFile = 400;  // sorting equal values takes time that grows with their number squared
constexpr int kFewRecords = 40;            // the rows of more are compared at the end
constexpr std::int32_t kUntouched = -5;
const char* const kFields[] = {"T.NID", "CCODE", "x", "NPID", "T.CNAME"};
const char* const kSeparators[] = {"\t", ",", ";;", "|", " ", "", "a\\"};

class TableScript {
public:
    TableScript(const std::string& path, TableReader reader, const char* separator, bool double_bytes)
        : path_(path), reader_(reader), separator_(separator), expected_{separator, double_bytes} {
        KOfflineTable_Constructor(&table_, nullptr, "T");
    }
    ~TableScript() { KOfflineTable_Destructor(&table_); }

    bool AddField(int number) {
        const char* name = kFields[number % 5];
        return KOfflineTable_AddFld(&table_, name) == expected_.AddFld(name);
    }

    bool Read() {
        return !reader_ || reader_(&table_, path_.c_str(), separator_) == expected_.ReadFile(ReadText(path_));
    }

    bool WriteAndRead() {
        return KOfflineTable_WriteFile(&table_, path_.c_str(), separator_) == 1 &&
               ReadText(path_) == expected_.WriteFile() && Read();
    }

    /// Makes a call; false when its result is not the expected one.
    bool Step(Input* input) {
        const int byte = input->Byte(), call = byte % 16 % kTableCalls;
        const int record = static_cast<int>(input->Number(2)) % (expected_.Count() + 2) - 1;
        const int name = input->Byte(), field = name % (expected_.Fields() + 2) - 1;
        std::string copy = input->CText('\x1f') + std::string(byte >= kLong ? 32750 : 0, 'v');
        const char* text = copy.c_str();
        if (byte & kHeld && byte < kLong) {
            text = KOfflineTable_GetFldValue(&table_, expected_.Count() - 1 - record, field);
            copy = text ? text : "";
        }
        switch (call) {
            case kAdd:
                return KOfflineTable_AddRec(&table_, text, separator_) == expected_.AddRec(copy);
            case kCopy:
                return KOfflineTable_CopyRec(&table_, record) == expected_.CopyRec(record);
            case kSet:
                return KOfflineTable_SetFldValue(&table_, record, field, text) ==
                       expected_.SetFldValue(record, field, copy);
            case kDelete:
                return KOfflineTable_DelRec(&table_, record) == expected_.DelRec(record);
            case kIndex:
                return KOfflineTable_LoadIdx(&table_, kFields[name % 5]) == expected_.LoadIdx(kFields[name % 5]);
            case kFind:
                return Search(field, text, copy, record);
            case kNid:
                return SetNid(record, ReferenceTable::Number(copy));
            case kField:
                return AddField(name);
            case kClear:
                KOfflineTable_Clear(&table_);
                expected_.Clear();
                return true;
            default:
                return WriteAndRead();
        }
    }

    bool IsAsExpected(bool with_rows) {
        bool same = KOfflineTable_GetRecsCount(&table_) == expected_.Count() &&
                    KOfflineTable_GetFldsCount(&table_) == expected_.Fields() &&
                    table_.indexes_stale == expected_.stale && table_.nid_watermark == expected_.nid_watermark;
        for (int field = -1; field <= expected_.Fields() && same; ++field) {
            const std::int32_t* index = KOfflineTable_GetIndexRecs(&table_, field);
            const auto found = expected_.indexes.find(field);
            same = found == expected_.indexes.end()
                       ? !index
                       : index && std::equal(found->second.begin(), found->second.end(), index);
        }
        for (int record = 0; record < expected_.Count() && same && (with_rows || expected_.Count() < kFewRecords);
             ++record)
            same = HasRow(record);
        return same;
    }

private:
    /// What is no number stands for the one that the numbering has come to.
    bool SetNid(int record, int number) {
        const int nid = number < 0 ? expected_.nid_watermark : number;
        return KOfflineTable_SetRecNID(&table_, record, nid) == expected_.SetRecNID(record, nid);
    }

    bool Search(int field, const char* key, const std::string& copy, int capacity) {
        ReferenceTable::Records first;
        const int result = expected_.Search(field, copy, &first);
        first.resize(std::min(first.size(), static_cast<std::size_t>(std::max(capacity, 0))));
        first.resize(expected_.rows.size() + 1, kUntouched);
        ReferenceTable::Records found(first.size(), kUntouched);
        return KOfflineTable_Search(&table_, field, key, found.data(), capacity) == result && found == first;
    }

    bool HasRow(int record) {
        bool same = KOfflineTable_GetRecNID(&table_, record) == expected_.GetRecNID(record);
        for (int field = 0; field < expected_.Fields() && same; ++field) {
            const char* value = KOfflineTable_GetFldValue(&table_, record, field);
            same = value ? expected_.At(record, field) == value : !expected_.At(record, field);
        }
        return same;
    }

    const std::string path_;
    const TableReader reader_;
    const char* const separator_;
    ReferenceTable expected_;
    KOfflineTable table_;
};

}  // namespace

std::string RunTableScript(Input input, const std::string& path, TableReader reader, bool double_bytes) {
    const int shape = input.Byte();
    TableScript script(path, reader, kSeparators[input.Byte() % std::size(kSeparators)], double_bytes);
    for (int field = 0; field < shape % 6; ++field) script.AddField(field + shape / 6);
    WriteText(path, input.Text('\x1e').substr(0, kLongestFile));
    if (!script.Read()) return "the data file";
    int calls = 0;
    for (; !input.empty(); ++calls) {
        if (!script.Step(&input)) return "the result of call " + std::to_string(calls);
        if (!script.IsAsExpected(input.empty())) return "the table after call " + std::to_string(calls);
    }
    return script.WriteAndRead() && script.IsAsExpected(true) ? "" : "the files";
}
