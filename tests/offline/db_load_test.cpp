// SPDX-License-Identifier: MIT
#include "tests/support/database.h"

namespace {

/// Replaces the one occurrence of a text, or takes a file away.
Files Changed(Files files, const std::string& name, const std::string& from, const std::string& to) {
    std::string& text = files[name];
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) text.replace(at, from.size(), to);
    return files;
}

Files Without(Files files, const std::string& name) {
    files.erase(name);
    return files;
}

Files With(Files files, const std::string& name, const std::string& contents) {
    files[name] = contents;
    return files;
}

Files WithoutField(const std::string& table, const std::string& field) {
    Files files = SmallDatabase();
    std::string& schema = files["kdbmain.txt"];
    const std::string line = "1.1, field, " + field + "\r\n";
    schema.erase(schema.find(line, schema.find("table, " + table)), line.size());
    return files;
}

struct Failure {
    const char* fact;
    Files files;
    std::int32_t code;
    std::string text;  ///< what error_text holds; '@' stands for the path and a separator; empty: unchanged
};

std::vector<Failure> Failures() {
    const Files small = SmallDatabase();
    std::vector<Failure> failures = {
        {"NoSchema", Without(small, "kdbmain.txt"), KOFFLINE_ERR_FILE, "@kdbmain.txt"},
        {"EmptySchema", With(small, "kdbmain.txt", ""), KOFFLINE_ERR_FILE, "@kdbmain.txt"},
        {"NoItemTable", Changed(small, "kdbmain.txt", "bitm", "foo"), KOFFLINE_ERR_TABLE, "BITM"},
        {"NoBomTable", Changed(small, "kdbmain.txt", "bbom", "foo"), KOFFLINE_ERR_TABLE, "BBOM"},
        {"NoTableBeforeNoSeparator", With(small, "kdbmain.txt", "1, ini"), KOFFLINE_ERR_TABLE, "BITM"},
        {"LinesEndedByLfAreOneLine", With(small, "kdbmain.txt", "1, table, bitm\n1.1, field, NID\n"),
         KOFFLINE_ERR_TABLE, "BITM"},
        {"NoSeparator", Changed(small, "kdbmain.txt", "separator, TAB", "separator"), KOFFLINE_ERR_SEPARATOR, ""},
        {"SeparatorTooLong", Changed(small, "kdbmain.txt", "TAB", "0123456789abcdef"), KOFFLINE_ERR_SEPARATOR, ""},
        {"NoItemFile", Without(small, "bitm.txt"), KOFFLINE_ERR_FILE, "@bitm.txt"},
        {"NoBomFile", Without(small, "bbom.txt"), KOFFLINE_ERR_FILE, "@bbom.txt"},
        {"NidsUsedUp", With(small, "bitm.txt", Lines({"2147483647\tA", "\tB"})), KOFFLINE_ERR_RECORD, ""}};
    const std::vector<std::pair<const char*, const char*>> required = {
        {"BITM", "NID"},  {"BITM", "CCODE"},  {"BBOM", "NID"},   {"BBOM", "NPID"},   {"BBOM", "NCID"},
        {"BDWG", "NID"},  {"BDWG", "CCODE"},  {"BITDWG", "NID"}, {"BITDWG", "NPID"}, {"BITDWG", "NCID"},
        {"BCAPP", "NID"}, {"BCAPP", "CCODE"}, {"BITCAP", "NID"}, {"BITCAP", "NPID"}, {"BITCAP", "NCID"}};
    for (const auto& [table, field] : required) {
        std::string lower = table;
        for (char& c : lower) c = static_cast<char>(c + 32);
        const std::string name = std::string(table) + "." + field;
        failures.push_back({"NoRequiredField", WithoutField(lower, field), KOFFLINE_ERR_FIELD, name});
    }
    return failures;
}

class LoadFailure : public DatabaseTest, public testing::WithParamInterface<Place> {};

TEST_P(LoadFailure, IsReportedWithCodeAndText) {
    for (const Failure& failure : Failures()) {
        SCOPED_TRACE(std::string(failure.fact) + " " + failure.text);
        const std::string path = Put(failure.files, GetParam());
        Database db;
        db->error_code = 99;
        std::snprintf(db->error_text, sizeof db->error_text, "before");
        EXPECT_EQ(KOfflineDb_Load(db, path.c_str()), 0);
        EXPECT_EQ(db->error_code, failure.code);
        std::string expected = failure.text.empty() ? "before" : failure.text;
        if (expected[0] == '@') expected = path + "\\" + expected.substr(1);
        EXPECT_STREQ(db->error_text, expected.c_str());
        EXPECT_EQ(db->root_nid, -1);
        EXPECT_STREQ(db->path, "");
        KOfflineDb_Reset(db);
        for (const auto& [name, contents] : failure.files) Remove("data/" + name);
    }
}

class Load : public DatabaseTest, public testing::WithParamInterface<Place> {
protected:
    std::int32_t LoadFrom(KOfflineDb* db, const Files& files) {
        return KOfflineDb_Load(db, Put(files, GetParam()).c_str());
    }
};

INSTANTIATE_TEST_SUITE_P(Places, LoadFailure, testing::Values(Place::directory, Place::package));
INSTANTIATE_TEST_SUITE_P(Places, Load, testing::Values(Place::directory, Place::package));

TEST_P(Load, ReadsEveryTableAndBuildsFifteenIndexes) {
    Database db;
    ASSERT_EQ(LoadFrom(db, SmallDatabase()), 1) << db->error_code << db->error_text;
    EXPECT_EQ(db->error_code, KOFFLINE_ERR_NONE);
    EXPECT_EQ(db->package > 0, GetParam() == Place::package);
    const std::int32_t records[] = {4, 2, 1, 1, 1, 1};
    const int indexes[] = {2, 3, 2, 3, 2, 3};
    for (int i = 0; i < 6; ++i) {
        int found = 0;
        for (std::int32_t f = 0; f < db->tables[i].field_count; ++f)
            found += db->tables[i].fields[f].index != nullptr;
        EXPECT_EQ(found, indexes[i]) << db->tables[i].table_name;
        EXPECT_EQ(KOfflineTable_GetRecsCount(&db->tables[i]), records[i]);
    }
    EXPECT_EQ(ValuesOf(KOfflineDb_GetTable_BITM(db), "CCODE"), "BIKE FRAME WHEEL BELL");
}

TEST_P(Load, GivesUndeclaredTablesTheirFieldsAndAddsMissingOnes) {
    Database db;
    ASSERT_EQ(LoadFrom(db, MinimalDatabase()), 1) << db->error_text;
    EXPECT_EQ(FieldNames(&db->tables[0]), "NID CCODE BITM.CNAME BITM.CSRC");
    EXPECT_EQ(FieldNames(&db->tables[1]), "NID NPID NCID");
    EXPECT_EQ(FieldNames(&db->tables[2]),
              "BDWG.NID BDWG.CCODE BDWG.CNAME BDWG.CSRC BDWG.CFILE BDWG.CASM BDWG.COFLNMODI BDWG.NOFLNITMID");
    EXPECT_EQ(FieldNames(&db->tables[3]), "BITDWG.NID BITDWG.NPID BITDWG.NCID");
    EXPECT_EQ(FieldNames(&db->tables[4]),
              "BCAPP.NID BCAPP.CCODE BCAPP.CNAME BCAPP.CSRC BCAPP.CFILE BCAPP.COFLNMODI BCAPP.NOFLNITMID");
    EXPECT_EQ(FieldNames(&db->tables[5]), "BITCAP.NID BITCAP.NPID BITCAP.NCID");
    const std::vector<std::int32_t> slots = {0, 1, 2, 3, 0, 1, 2, -1, 0, 1, 4, 3, 5, 6,
                                             7, 0, 1, 2, 0, 1, 4, 3,  5, 6, 0, 1, 2};
    EXPECT_EQ(std::vector<std::int32_t>(db->field_slots, db->field_slots + 27), slots);
}

TEST_P(Load, TakesTheSchemaAsPeopleWriteIt) {
    Files files = MinimalDatabase();
    files["kdbmain.txt"] = Lines({"// a schema",
                                  "1, INI // settings",
                                  "1.1, other, x",
                                  "1.1, Segment, semicolon",
                                  "1.1, root, it // em",
                                  "1.1, root",
                                  "1, odd",
                                  "1.1, field, X",
                                  "1.1.1, any",
                                  "1, table, foo",
                                  "1.1, field, Y",
                                  "1, TABLE, Bitm // items",
                                  "",
                                  "// fields",
                                  "1.1, FIELD, BITM.nid, number",
                                  "1.1, field,",
                                  "1.1, colour, red",
                                  "1.1.1, field, Z",
                                  "1.1, field, ccode",
                                  "1, table,",
                                  "1.1, field, lost",
                                  "1, table, bbom",
                                  "1.1, field, NID",
                                  "1.1, field, NPID",
                                  "1, table, BBOM",
                                  "1.1, field, NCID",
                                  "1.1, field, NCID",
                                  "1.1, field, a234567890b234567890c234567890d234567890"});
    files["bitm.txt"] = "5; IT \r\n6;that";
    Database db;
    ASSERT_EQ(LoadFrom(db, files), 1) << db->error_text;
    EXPECT_STREQ(db->separator, ";");
    EXPECT_EQ(FieldNames(&db->tables[0]), "BITM.nid ccode BITM.CNAME BITM.CSRC");
    EXPECT_EQ(FieldNames(&db->tables[1]), "NID NPID NCID NCID a234567890b234567890c234567890d2");
    EXPECT_EQ(db->root_nid, 5);
}

TEST_P(Load, TakesAMissingOptionalFileForAnEmptyTable) {
    Files files = SmallDatabase();
    for (const char* name : {"bdwg.txt", "bitdwg.txt", "bcapp.txt", "bitcap.txt"}) files.erase(name);
    files["bitm.txt"] = "";
    Database db;
    EXPECT_EQ(LoadFrom(db, files), 1) << db->error_text;
    for (int i : {0, 2, 3, 4, 5}) EXPECT_EQ(KOfflineTable_GetRecsCount(&db->tables[i]), 0);
}

TEST_P(Load, FindsTheRootByItsCode) {
    for (const auto& [code, nid] : std::map<std::string, std::int32_t>{{"frame", 2}, {"none", -1}, {"", -1}}) {
        Database db;
        ASSERT_EQ(LoadFrom(db, Changed(SmallDatabase(), "kdbmain.txt", "TAB\r\n", "TAB\r\n1.1, root, " + code)), 1);
        EXPECT_EQ(db->root_nid, nid) << code;
    }
}

TEST_P(Load, SurvivesGarbage) {
    std::string noise(300000, 0);
    std::uint32_t state = 1;
    for (char& c : noise) c = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
    std::string deep, many, level = "1";
    for (int i = 0; i < 300; ++i, level += ".1") deep += level + ", table, bitm\r\n";
    for (int i = 0; i < 100000; ++i) many += i % 2 ? "1.1, field, F\r\n" : "1, table, foo\r\n";
    const std::string schema = MinimalDatabase()["kdbmain.txt"];
    const std::string line(3 << 20, 'x');
    for (const std::string& text :
         {noise, std::string(1, '\0') + schema, line, deep, line + "," + line, schema + line, schema + deep,
          schema + many, schema + noise, schema + "\r\n1, ini\r\n1.1," + line}) {
        Database db;
        LoadFrom(db, With(MinimalDatabase(), "kdbmain.txt", text));
    }
    for (const std::string& text : {noise, line, std::string(1, '\0') + "1\tA", line + "\t" + line, deep}) {
        Database db;
        LoadFrom(db, With(With(SmallDatabase(), "bitm.txt", text), "bbom.txt", text));
        KOfflineDb_GetRootNodes(db, nullptr, 0);
    }
}

TEST_P(Load, TakesASchemaOfAHundredThousandFields) {
    Files files = MinimalDatabase();
    std::string& schema = files["kdbmain.txt"];
    schema += "1, table, bitm\r\n";
    for (int i = 0; i < 100000; ++i) schema += "1.1, field, F" + std::to_string(i) + "\r\n";
    Database db;
    EXPECT_EQ(LoadFrom(db, files), 1) << db->error_text;
    EXPECT_EQ(KOfflineTable_GetFldsCount(&db->tables[0]), 100004);
}

TEST_P(Load, TwiceWithoutResetAppendsTheFieldsAgain) {
    const std::string path = Put(SmallDatabase(), GetParam());
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, path.c_str()), 1);
    ASSERT_EQ(KOfflineDb_Load(db, path.c_str()), 1);
    EXPECT_EQ(KOfflineTable_GetFldsCount(&db->tables[1]), 8);
    EXPECT_EQ(ValuesOf(&db->tables[0], "CCODE"), "BIKE FRAME WHEEL BELL");
}

using LoadPath = DatabaseTest;

TEST_F(LoadPath, MayEndInASeparatorAndStandInBlanks) {
    const std::string path = Put(SmallDatabase());
    for (const std::string& variant : {path, path + "/", path + "\\", " \t" + path + "  ", " " + path + "/ "}) {
        Database db;
        EXPECT_EQ(KOfflineDb_Load(db, variant.c_str()), 1) << variant;
        char kept[260];
        KOfflineDb_GetPath(db, kept);
        EXPECT_EQ(kept, variant);
        EXPECT_EQ(KOfflineDb_Save(db), 1) << variant;
    }
}

TEST_F(LoadPath, ThatCannotFormAFileNameIsReportedAsFarAsItFits) {
    const std::string fits(243, 'p'), too_long(245, 'p'), endless(5000, 'p');
    for (const auto& [path, text] :
         std::map<std::string, std::string>{{"", "\\kdbmain.txt"},
                                            {" \t", "\\kdbmain.txt"},
                                            {fits, fits + "\\kdbmain.txt"},
                                            {too_long, too_long + "\\kdbmain.t"},
                                            {endless, endless.substr(0, 255)},
                                            {std::string(5000, ' ') + "data", "\\kdbmain.txt"}}) {
        Database db;
        EXPECT_EQ(KOfflineDb_Load(db, path.c_str()), 0);
        EXPECT_EQ(db->error_code, KOFFLINE_ERR_FILE);
        EXPECT_EQ(db->error_text, text);
    }
    Database db;
    EXPECT_EQ(KOfflineDb_Load(db, nullptr), 0);
    EXPECT_EQ(db->error_code, KOFFLINE_ERR_FILE);
}

TEST_F(LoadPath, NamingAFileThatIsNoPackageFailsWithoutACode) {
    Write("plain", std::string(9000, 'x'));
    Database db;
    db->error_code = 5;
    EXPECT_EQ(KOfflineDb_Load(db, At("plain").c_str()), 0);
    EXPECT_EQ(db->error_code, KOFFLINE_ERR_NONE);
    EXPECT_EQ(KOfflineDb_GetPackageHandle(db), 0);
}

TEST_F(LoadPath, NamingAPackageOfWideNamesFailsAtTheSchema) {
    ASSERT_EQ(vlt_package_create(At("wide").c_str(), 1, 0, nullptr, nullptr), 1);
    Database db;
    EXPECT_EQ(KOfflineDb_Load(db, At("wide").c_str()), 0);
    EXPECT_EQ(db->error_code, KOFFLINE_ERR_FILE);
    EXPECT_EQ(db->error_text, At("wide") + "\\kdbmain.txt");
}

TEST_F(LoadPath, OfAPackageLeavesDiskFilesAlone) {
    Files files = SmallDatabase();
    const std::string path = Put(Without(files, "bdwg.txt"), Place::package);
    MakeDirectory("data");
    Write("data/bdwg.txt", "9\tX");
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, path.c_str()), 1);
    EXPECT_EQ(KOfflineTable_GetRecsCount(KOfflineDb_GetTable_BDWG(db)), 0);
}

TEST_F(LoadPath, OfAnotherDatabaseClosesThePackageHeld) {
    const std::string package = Put(SmallDatabase(), Place::package), directory = Put(SmallDatabase());
    Database db;
    ASSERT_EQ(KOfflineDb_Load(db, package.c_str()), 1);
    const std::int32_t held = KOfflineDb_GetPackageHandle(db);
    EXPECT_EQ(vlt_package_is_unicode_files(held), 0);
    EXPECT_EQ(KOfflineDb_Load(db, directory.c_str()), 1);
    EXPECT_EQ(KOfflineDb_GetPackageHandle(db), 0);
    EXPECT_EQ(vlt_package_is_unicode_files(held), -1);
}

}  // namespace
