// SPDX-License-Identifier: MIT
// Long random sequences of operations: after each, the table is what the reference says, stale indexes included.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "offline.h"
#include "tests/support/reference_table.h"

namespace {

constexpr int kFields = 4;  // NID, few values, many values, no index
constexpr int kIndexed = 3;
constexpr int kNoTies = 1000000;  // so many different values that hardly any two are equal

struct Mixture {
    const char* name;
    unsigned seed;
    int records;  // added before anything else
    int steps;
    int distinct;  // values to choose from
    int add, copy, set, del, load, search;
};

std::string NameOf(const testing::TestParamInfo<Mixture>& info) {
    return info.param.name;
}

class RandomTable : public testing::TestWithParam<Mixture> {
protected:
    RandomTable() : random_(GetParam().seed) {
        KOfflineTable_Constructor(&table_, nullptr, "T");
        for (const char* name : {"T.NID", "FEW", "MANY", "PLAIN"}) KOfflineTable_AddFld(&table_, name);
    }
    ~RandomTable() override { KOfflineTable_Destructor(&table_); }

    std::uint32_t Below(std::size_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

    bool HasTies() const { return GetParam().distinct < kNoTies; }
    std::string RandomNid() { return std::to_string(Below(HasTies() ? 1500 : 1000000000)); }

    /// A value of mixed letter case; some begin alike for more than eight bytes, some are prefixes of others.
    std::string RandomValue() {
        const std::uint32_t pick = Below(static_cast<std::size_t>(GetParam().distinct));
        std::string text = (pick % 3 ? "" : "Common-Prefix-") + std::to_string(pick * 7919 % 1000003);
        if (pick % 61 == 1) text = std::string(300, 'x') + text;
        if (HasTies() && pick % 5 == 0) text = text.substr(0, 3);
        for (char& c : text) c = Below(2) ? c : static_cast<char>(std::toupper(c));
        return HasTies() && pick == 0 ? "" : text;
    }

    void Add() {
        std::vector<ReferenceTable::Value> values;
        std::string line;
        for (int field = 0; field < kFields && (!HasTies() || Below(20)); ++field) {
            values.push_back(field ? RandomValue() : Below(3) ? "" : RandomNid());
            line += (field ? "\t " : "") + *values.back();
        }
        if (values.empty()) values.push_back("");
        ASSERT_EQ(KOfflineTable_AddRec(&table_, line.c_str(), "\t"), static_cast<int>(reference_.records().size()));
        reference_.Add(values);
    }

    void Step() {
        const Mixture& mix = GetParam();
        const std::size_t count = reference_.records().size();
        auto pick = static_cast<int>(
            Below(static_cast<std::size_t>(mix.add + mix.copy + mix.set + mix.del + mix.load + mix.search)));
        if ((pick -= mix.add) < 0 || count == 0) return Add();
        const auto record = static_cast<std::int32_t>(Below(count));
        if ((pick -= mix.copy) < 0) {
            ASSERT_EQ(KOfflineTable_CopyRec(&table_, record), static_cast<int>(count));
            return reference_.Copy(static_cast<std::size_t>(record));
        }
        if ((pick -= mix.set) < 0) return Set(record);
        if ((pick -= mix.del) < 0) {
            ASSERT_EQ(KOfflineTable_DelRec(&table_, record), 1);
            return reference_.Delete(static_cast<std::size_t>(record));
        }
        if ((pick -= mix.load) < 0) return Load(static_cast<int>(Below(kIndexed)));
        Search();
    }

    void Set(std::int32_t record) {
        const auto field = static_cast<int>(1 + Below(kFields - 1));
        const std::string value = RandomValue();
        ASSERT_EQ(KOfflineTable_SetFldValue(&table_, record, field, value.c_str()), 1);
        reference_.Set(static_cast<std::size_t>(record), field, value);
    }

    void Load(int field) {
        char name[33];
        KOfflineTable_GetFldName(&table_, field, name);
        ASSERT_EQ(KOfflineTable_LoadIdx(&table_, name), 1);
        reference_.LoadIndex(field);
    }

    void Search() {
        const auto field = static_cast<int>(Below(kFields));
        const std::string key = (Below(10) ? "" : "0") + (field ? RandomValue() : RandomNid());
        std::vector<std::int32_t> expected;
        const int result = reference_.Search(field, key, &expected);
        std::vector<std::int32_t> found(expected.size() + 1);
        ASSERT_EQ(KOfflineTable_Search(&table_, field, key.c_str(), found.data(), static_cast<int>(found.size())),
                  result);
        found.resize(expected.size());
        ASSERT_EQ(found, expected);
    }

    void Compare() {
        const auto count = static_cast<std::int32_t>(reference_.records().size());
        ASSERT_EQ(KOfflineTable_GetRecsCount(&table_), count);
        ASSERT_EQ(table_.indexes_stale, reference_.stale());
        for (int field = 0; field < kFields; ++field) {
            const std::int32_t* index = KOfflineTable_GetIndexRecs(&table_, field);
            const auto expected = reference_.indexes().find(field);
            ASSERT_EQ(index != nullptr, expected != reference_.indexes().end());
            if (!index) continue;
            for (std::size_t i = 0; i < expected->second.size(); ++i) ASSERT_EQ(index[i], expected->second[i]) << i;
        }
    }

    void CompareValues() {
        for (std::size_t record = 0; record < reference_.records().size(); ++record) {
            for (int field = 0; field < kFields; ++field) {
                const auto& expected = reference_.records()[record][static_cast<std::size_t>(field)];
                const char* value = KOfflineTable_GetFldValue(&table_, static_cast<int>(record), field);
                ASSERT_EQ(value != nullptr, expected.has_value()) << record << " " << field;
                ASSERT_EQ(value ? value : "", expected.value_or(""));
            }
        }
    }

    KOfflineTable table_;
    ReferenceTable reference_{kFields};
    std::mt19937 random_;
};

TEST_P(RandomTable, IsWhatTheReferenceSays) {
    for (int i = 0; i < GetParam().records; ++i) ASSERT_NO_FATAL_FAILURE(Add());
    for (int step = 0; step < GetParam().steps; ++step) {
        ASSERT_NO_FATAL_FAILURE(Step()) << "step " << step;
        ASSERT_NO_FATAL_FAILURE(Compare()) << "step " << step;
    }
    CompareValues();
}

INSTANTIATE_TEST_SUITE_P(Mixtures, RandomTable,
                         testing::Values(Mixture{"Everything", 1, 40, 3000, 30, 3, 1, 3, 3, 1, 6},
                                         Mixture{"Small", 7, 0, 2000, 20, 3, 1, 3, 4, 1, 6},
                                         Mixture{"Ties", 2, 300, 1500, 4, 2, 1, 1, 4, 1, 6},
                                         Mixture{"NoTies", 3, 300, 1500, kNoTies, 4, 0, 0, 2, 1, 6},
                                         Mixture{"MostlySearches", 4, 700, 2500, 900, 1, 0, 1, 1, 1, 300},
                                         Mixture{"SearchesWithoutTies", 5, 700, 2500, kNoTies, 1, 0, 0, 1, 1, 300},
                                         Mixture{"ManyAdditionsASearch", 6, 500, 2000, kNoTies, 60, 0, 0, 9, 1, 3}),
                         NameOf);

}  // namespace
