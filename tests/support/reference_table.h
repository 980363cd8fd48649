// SPDX-License-Identifier: MIT
// A table as it is defined, with nothing derived: what the library's tables must be indistinguishable from.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

class ReferenceTable {
public:
    using Value = std::optional<std::string>;

    /// Field 0 is the NID.
    explicit ReferenceTable(int fields) : fields_(fields) {}

    void Add(const std::vector<Value>& values);
    void Copy(std::size_t record);
    void Set(std::size_t record, int field, const std::string& value);
    void Delete(std::size_t record);
    void LoadIndex(int field);

    /// What a search returns, and the record numbers it would store with enough room.
    int Search(int field, const std::string& key, std::vector<std::int32_t>* found);

    const std::vector<std::vector<Value>>& records() const { return records_; }
    const std::map<int, std::vector<std::int32_t>>& indexes() const { return indexes_; }
    bool stale() const { return stale_; }

private:
    void GiveNid(std::vector<Value>* values);
    int NextNidBase();
    std::vector<std::int32_t> Sorted(int field) const;

    int fields_;
    int watermark_ = -1;
    bool stale_ = false;
    std::vector<std::vector<Value>> records_;
    std::map<int, std::vector<std::int32_t>> indexes_;
};
