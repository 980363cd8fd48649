// SPDX-License-Identifier: MIT
// Databases in a double-byte character set, whose trail bytes include those of '\', '|' and of letters.
#include "tests/support/database.h"
#include "tests/support/double_byte.h"

namespace {

class DoubleByteDatabase : public DatabaseTest {
protected:
    void SetUp() override {
        if (!scope_.entered()) GTEST_SKIP() << "no double-byte character set here";
    }

    DoubleByteScope scope_;
};

constexpr char kBackslashTrail[] = "\x95\x5C";
constexpr char kBarTrail[] = "\x95\x7C";

TEST_F(DoubleByteDatabase, StoredNamesMayHoldABackslashAsTrailByte) {
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, Put(SmallDatabase(), Place::package).c_str()), 1);
    Write("in", "contents");
    const std::string name = std::string(kBackslashTrail) + ".txt";
    ASSERT_EQ(KOfflineDb_SavePackageFile(db, At("in").c_str(), ("docs\\" + name).c_str()), 1);
    EXPECT_EQ(vlt_file_get_info(db->package, name.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(KOfflineDb_CheckPackageFileExist(db, name.c_str()), 1);
}

TEST_F(DoubleByteDatabase, SeparatorsAreFoundBetweenCharactersOnly) {
    Files files = SmallDatabase();
    std::string& schema = files["kdbmain.txt"];
    schema.replace(schema.find("TAB"), 3, std::string("|+tab\r\n1.1, root, ") + kBarTrail);
    files["bitm.txt"] = std::string("1|\t") + kBarTrail + "|\tname" + kBackslashTrail + "|\tmade\r\n";
    files["bbom.txt"] = files["bdwg.txt"] = files["bitdwg.txt"] = files["bcapp.txt"] = files["bitcap.txt"] = "";
    const std::string path = Put(files);
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, path.c_str()), 1) << db->error_text;
    EXPECT_EQ(db->root_nid, 1);
    EXPECT_EQ(ValuesOf(KOfflineDb_GetTable_BITM(db), "CCODE"), kBarTrail);
    EXPECT_EQ(ValuesOf(KOfflineDb_GetTable_BITM(db), "CNAME"), std::string("name") + kBackslashTrail);
    ASSERT_EQ(KOfflineDb_Save(db), 1);
    Files stored = Stored(db, path);
    EXPECT_EQ(stored["bitm.txt"], files["bitm.txt"]);
    EXPECT_NE(stored["kdbmain.txt"].find("|+TAB\r\n"), std::string::npos);
}

}  // namespace
