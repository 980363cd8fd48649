// SPDX-License-Identifier: MIT
// The bicycle of the examples: a whole product, loaded, saved and taken apart. What is compared here is the same on
// every target, byte for byte.
#include <filesystem>
#include <fstream>

#include "tests/support/database.h"

namespace {

const std::string kBicycle = std::string(TEST_SOURCE_DIR) + "/../examples/bicycle";

/// The bicycle's files as a save writes them: without comments and empty lines.
Files SavedBicycle() {
    Files files;
    for (const auto& entry : std::filesystem::directory_iterator(kBicycle)) {
        if (entry.is_directory()) continue;
        std::string& contents = files[entry.path().filename().string()];
        std::ifstream file(entry.path(), std::ios::binary);
        for (std::string line; std::getline(file, line);) {
            if (line != "\r" && line.rfind("//", 0) != 0) contents += line + "\n";
        }
    }
    return files;
}

class Bicycle : public DatabaseTest, public testing::WithParamInterface<Place> {
protected:
    void SetUp() override {
        path_ = Put(SavedBicycle(), GetParam());
        ASSERT_EQ(KOfflineDb_Load(db_, path_.c_str()), 1) << db_->error_text;
    }

    /// How many of a part an item consists of.
    int Count(std::int32_t item, std::int32_t part) {
        if (item == part) return 1;
        KOfflineTable* lines = KOfflineDb_GetTable_BBOM(db_);
        std::int32_t recs[32];
        const std::int32_t found =
            KOfflineTable_Search(lines, KOfflineDb_GetFld_BBOM_NPID(db_), std::to_string(item).c_str(), recs, 32);
        int total = 0;
        for (std::int32_t i = 0; i < found; ++i) {
            const auto value = [&](std::int32_t field) {
                return std::stoi(KOfflineTable_GetFldValue(lines, recs[i], field));
            };
            total += value(KOfflineDb_GetFld_BBOM_FCOUNT(db_)) * Count(value(KOfflineDb_GetFld_BBOM_NCID(db_)), part);
        }
        return total;
    }

    Database db_;
    std::string path_;
};

INSTANTIATE_TEST_SUITE_P(Places, Bicycle, testing::Values(Place::directory, Place::package));

TEST_P(Bicycle, IsSavedAsItWasLoaded) {
    ASSERT_EQ(KOfflineDb_Save(db_), 1);
    EXPECT_EQ(Stored(db_, path_), SavedBicycle());
}

TEST_P(Bicycle, NeedsTheRightNumberOfBearings) {
    std::int32_t root = -1;
    ASSERT_EQ(KOfflineDb_GetRootNodes(db_, &root, 1), 1);
    const std::int32_t bicycle = KOfflineDb_GetNIDByRec_BITM(db_, root);
    EXPECT_EQ(bicycle, KOfflineDb_GetNIDByCCODE(db_, "bk-700"));
    EXPECT_EQ(Count(bicycle, KOfflineDb_GetNIDByCCODE(db_, "cm-900")), 14);
    EXPECT_EQ(Count(bicycle, KOfflineDb_GetNIDByCCODE(db_, "WH-230")), 64);
}

}  // namespace
