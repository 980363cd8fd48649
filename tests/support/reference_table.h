// SPDX-License-Identifier: MIT
// A table as it is defined, with nothing derived: what the library's tables must be indistinguishable from. Its
// functions return what the calls of the same name return.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <numeric>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "offline.h"

class ReferenceTable {
public:
    using Value = std::optional<std::string>;
    using Row = std::vector<Value>;
    using Records = std::vector<std::int32_t>;

    /// With double bytes, a byte from 0x81 on leads a character of two.
    ReferenceTable(std::string separator, bool double_bytes)
        : separator_(std::move(separator)), double_bytes_(double_bytes) {}

    std::vector<Row> rows;
    std::map<int, Records> indexes;
    bool stale = false;
    int nid_watermark = -1;

    int Count() const { return static_cast<int>(rows.size()); }
    int Fields() const { return static_cast<int>(names_.size()); }
    int Field(const std::string& name) const {
        const auto found = std::find(names_.begin(), names_.end(), Key(name));
        return found == names_.end() ? -1 : static_cast<int>(found - names_.begin());
    }
    const Value& At(int record, int field) const { return rows.data()[record].data()[field]; }

    /// What the text of a NID says.
    static int Number(const std::string& text) {
        const std::size_t digits = text.find_first_not_of("+- ");
        if (digits == std::string::npos || text.find_first_not_of("0123456789", digits) != std::string::npos)
            return -1;
        return static_cast<int>(std::clamp<long long>(std::strtoll(text.c_str(), nullptr, 10), INT_MIN, INT_MAX));
    }

    int AddFld(const std::string& name) {
        const int field = Field(name);
        if (field >= 0) return field;
        names_.push_back(Key(name));
        for (Row& row : rows) row.emplace_back();
        return Fields() - 1;
    }

    int AddRec(const std::string& line) {
        Row row(names_.size());
        std::size_t begin = 0;
        for (Value& value : row) {
            if (begin > kFarthest) return -1;
            const std::size_t end = FindSeparator(line, begin);
            value = Swapped(Trimmed(line.substr(begin, end - begin), " \t"), 0);
            if (end == line.size()) break;
            begin = end + separator_.size();
        }
        return Append(row, false);
    }

    int CopyRec(int record) { return Within(record, Count()) ? Append(Row(rows.data()[record]), true) : -1; }

    bool SetFldValue(int record, int field, const std::string& value) {
        if (!Within(record, Count()) || !Within(field, Fields()) || !Change(&rows.data()[record], field, value))
            return false;
        stale |= indexes.count(field) != 0;
        return true;
    }

    int GetRecNID(int record) const { return Field("NID") < 0 ? -1 : Number(At(record, Field("NID")).value_or("")); }

    bool SetRecNID(int record, int nid) {
        if (!SetFldValue(record, Field("NID"), std::to_string(nid))) return false;
        if (nid_watermark >= 0 && nid >= nid_watermark) nid_watermark = nid + (nid < INT_MAX);
        return true;
    }

    bool DelRec(int record) {
        if (!Within(record, Count())) return false;
        if (nid_watermark < 0) NextBase();
        rows.erase(rows.begin() + record);
        for (auto& [field, index] : indexes) {
            std::erase(index, record);
            for (std::int32_t& entry : index) entry -= entry > record;
        }
        return true;
    }

    void Clear() {
        rows.clear();
        indexes.clear();
        held_records_ = false;
    }

    bool LoadIdx(const std::string& name) {
        const int field = Field(name);
        if (field >= 0 && held_records_) indexes[field] = Sorted(field);
        return field >= 0;
    }

    /// Stores the record numbers that a search finds with enough room.
    int Search(int field, const std::string& key, Records* found) {
        found->clear();
        if (!Within(field, Fields())) return -1;
        const bool indexed = indexes.count(field) != 0;
        if (indexed && stale) {
            for (auto& [each, index] : indexes) index = Sorted(each);
            stale = false;
        }
        for (int i = 0; i < Count(); ++i) {
            const std::int32_t record = indexed ? indexes[field].data()[i] : i;
            if (Folded(At(record, field).value_or("")) == Folded(key)) found->push_back(record);
        }
        return found->empty() && indexed ? -1 : static_cast<int>(found->size());
    }

    /// The bytes that are written.
    std::string WriteFile() const {
        std::string text;
        for (const Row& row : rows) {
            for (std::size_t field = 0; field < row.size(); ++field) {
                text += (field ? separator_ : "") + Swapped(row[field].value_or(""), 1);
            }
            text += "\r\n";
        }
        return text;
    }

    bool ReadFile(const std::string& bytes) {
        Clear();
        std::string text = bytes.c_str();
        std::replace(text.begin(), text.end(), '\r', '\n');
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            line = Trimmed(line.substr(0, line.rfind("//")), " ");
            if (!line.empty() && AddRec(line) < 0) return false;
        }
        return true;
    }

private:
    static constexpr std::size_t kFarthest = 32766;  // where the last value may begin

    static bool Within(int number, int count) { return number >= 0 && number < count; }
    static std::string Folded(std::string text) {
        for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        return text;
    }
    static std::string Key(const std::string& name) { return Folded(name.substr(name.find('.') + 1)); }

    static std::string Trimmed(std::string text, const char* in_front) {
        text.erase(text.find_last_not_of(" \t") + 1);
        return text.erase(0, text.find_first_not_of(in_front));
    }

    /// The general engine of escaping, which data files and lines do without.
    static std::string Swapped(const std::string& text, int direction) {
        if (text.find_first_of("\\,\t\r\n/") == std::string::npos) return text;
        std::string output(2 * text.size() + 1, '\0');
        KOfflineDb_StrSwap(text.c_str(), output.data(), static_cast<int>(output.size()), direction);
        return output.c_str();
    }

    std::size_t FindSeparator(const std::string& line, std::size_t at) const {
        if (separator_.empty()) return line.size();
        while (at < line.size() && line.compare(at, separator_.size(), separator_) != 0) {
            at += double_bytes_ && static_cast<unsigned char>(line[at]) >= 0x81 && at + 1 < line.size() ? 2 : 1;
        }
        return std::min(at, line.size());
    }

    /// A value no longer than the old one goes to its place; any other moves those behind it, which must fit.
    static bool Change(Row* row, int field, const std::string& value) {
        Row changed = *row;
        Value& held = changed.data()[field];
        const bool moves = value.size() > held.value_or("").size();
        if (held || moves) held = value;
        std::size_t begin = 0;
        for (const Value& each : changed) {
            if (moves && each && begin > kFarthest) return false;
            if (each) begin += each->size() + 1;
        }
        *row = changed;
        return true;
    }

    int Append(Row row, bool new_nid) {
        const int nid = Field("NID"), watermark = nid_watermark;
        if (nid >= 0 && (new_nid || row.data()[nid].value_or("").empty())) {
            const int base = NextBase();
            const bool given = base < INT_MAX && Change(&row, nid, std::to_string(base + 1));
            if (!given) nid_watermark = watermark;
            if (!given) return -1;
        }
        rows.push_back(row);
        stale = held_records_ = true;
        return Count() - 1;
    }

    int NextBase() {
        if (nid_watermark >= 0) return nid_watermark += nid_watermark < INT_MAX;
        nid_watermark = Field("NID") < 0 ? -1 : 0;
        for (int record = 0; record < Count(); ++record) nid_watermark = std::max(nid_watermark, GetRecNID(record));
        return nid_watermark;
    }

    Records Sorted(int field) const {
        std::vector<std::string> keys;
        for (const Row& row : rows) keys.push_back(Folded(row.data()[field].value_or("")));
        Records order(rows.size());
        std::iota(order.begin(), order.end(), 0);
        Sort(keys.data(), order.begin(), order.end());
        return order;
    }

    /// The sort that fixes the order of equal keys, written recursively: the order of the parts does not matter.
    static void Sort(const std::string* keys, Records::iterator lo, Records::iterator hi) {
        const auto less = [&](std::int32_t left, std::int32_t right) { return keys[left] < keys[right]; };
        if (hi - lo <= 8) {
            for (; lo < hi; --hi) std::iter_swap(std::max_element(lo, hi, less), hi - 1);
            return;
        }
        std::iter_swap(lo, lo + (hi - lo) / 2);
        auto left = lo + 1, right = hi - 1;
        while (true) {
            while (left < hi && !less(*lo, *left)) ++left;
            while (right > lo && !less(*right, *lo)) --right;
            if (right < left) break;
            std::iter_swap(left++, right--);
        }
        std::iter_swap(lo, right);
        Sort(keys, lo, right);
        Sort(keys, left, hi);
    }

    const std::string separator_;
    const bool double_bytes_;
    std::vector<std::string> names_;
    bool held_records_ = false;
};
