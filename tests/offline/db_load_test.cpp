// SPDX-License-Identifier: MIT
#include <algorithm>
#include <optional>

#include "tests/support/database.h"

namespace {

const std::string kSchema = "kdbmain.txt";

/// One change of the small database that it cannot be loaded with.
struct Failure {
    std::string file;
    std::string from;               // what is changed in that file; empty: all of it
    std::optional<std::string> to;  // none: the file is missing
    std::int32_t code;
    std::string text = "before";  // what error_text holds then; '@' stands for the path and a separator
};

std::vector<Failure> Failures() {
    std::vector<Failure> failures = {
        {kSchema, "", {}, KOFFLINE_ERR_FILE, "@kdbmain.txt"},
        {kSchema, "", "", KOFFLINE_ERR_FILE, "@kdbmain.txt"},
        {kSchema, "bitm", "foo", KOFFLINE_ERR_TABLE, "BITM"},
        {kSchema, "bbom", "foo", KOFFLINE_ERR_TABLE, "BBOM"},
        {kSchema, "", "1, ini", KOFFLINE_ERR_TABLE, "BITM"},
        {kSchema, "", "1, table, bitm\n1.1, field, NID\n", KOFFLINE_ERR_TABLE, "BITM"},  // lines end with CR LF
        {kSchema, "separator, TAB", "separator", KOFFLINE_ERR_SEPARATOR},
        {kSchema, "TAB", "+ &\t", KOFFLINE_ERR_SEPARATOR},
        {kSchema, "TAB", "0123456789abcdef", KOFFLINE_ERR_SEPARATOR},
        {"bitm.txt", "", {}, KOFFLINE_ERR_FILE, "@bitm.txt"},
        {"bbom.txt", "", {}, KOFFLINE_ERR_FILE, "@bbom.txt"},
        {"bitm.txt", "", "2147483647\tA\r\n\tB\r\n", KOFFLINE_ERR_RECORD}};  // the NIDs are used up
    const std::vector<std::string> required = {"BITM.NID",    "BITM.CCODE",  "BBOM.NID",   "BBOM.NPID",
                                               "BBOM.NCID",   "BDWG.NID",    "BDWG.CCODE", "BITDWG.NID",
                                               "BITDWG.NPID", "BITDWG.NCID", "BCAPP.NID",  "BCAPP.CCODE",
                                               "BITCAP.NID",  "BITCAP.NPID", "BITCAP.NCID"};
    for (const std::string& missing : required) {
        std::string schema = "1, ini\r\n1.1, separator, TAB\r\n";
        for (const std::string& field : required) {
            schema += "1, table, " + field.substr(0, field.find('.')) + "\r\n";
            if (field != missing) schema += "1.1, field, " + field + "\r\n";
        }
        failures.push_back({kSchema, "", schema, KOFFLINE_ERR_FIELD, missing});
    }
    return failures;
}

class Load : public DatabaseTest, public testing::WithParamInterface<Place> {
protected:
    std::int32_t LoadFrom(const Files& files) { return KOfflineDb_Load(db_, Put(files, GetParam()).c_str()); }

    /// Loads the small or the minimal database with this after its schema.
    std::int32_t LoadWith(Files files, const std::string& more) {
        KOfflineDb_Reset(db_);
        files[kSchema] += more;
        return LoadFrom(files);
    }

    Database db_;
};

INSTANTIATE_TEST_SUITE_P(Places, Load, testing::Values(Place::directory, Place::package));

TEST_P(Load, ReportsFailuresWithCodeAndText) {
    for (const Failure& failure : Failures()) {
        SCOPED_TRACE(failure.file + ": " + failure.from + " -> " + failure.to.value_or("none"));
        Files files = Changed(SmallDatabase(), failure.file, failure.from, failure.to.value_or(""));
        if (!failure.to) files.erase(failure.file);
        Remove("data");
        const std::string path = Put(files, GetParam());
        db_->error_code = 99;
        std::snprintf(db_->error_text, sizeof db_->error_text, "before");
        EXPECT_EQ(KOfflineDb_Load(db_, path.c_str()), 0);
        EXPECT_EQ(db_->error_code, failure.code);
        EXPECT_EQ(db_->error_text, failure.text[0] == '@' ? path + "\\" + failure.text.substr(1) : failure.text);
        EXPECT_EQ(db_->root_nid, -1);
        EXPECT_STREQ(db_->path, "");
        KOfflineDb_Reset(db_);
    }
}

TEST_P(Load, ReadsEveryTableAndBuildsFifteenIndexes) {
    ASSERT_EQ(LoadFrom(SmallDatabase()), 1) << db_->error_code << db_->error_text;
    EXPECT_EQ(db_->error_code, KOFFLINE_ERR_NONE);
    EXPECT_EQ(db_->package > 0, GetParam() == Place::package);
    const std::int32_t records[] = {4, 2, 1, 1, 1, 1};
    const std::int32_t indexes[] = {2, 3, 2, 3, 2, 3};
    for (int i = 0; i < 6; ++i) {
        const KOfflineField* fields = db_->tables[i].fields;
        EXPECT_EQ(std::count_if(fields, fields + db_->tables[i].field_count, [](auto& f) { return f.index; }),
                  indexes[i]);
        EXPECT_EQ(KOfflineTable_GetRecsCount(&db_->tables[i]), records[i]);
    }
    EXPECT_EQ(ValuesOf(KOfflineDb_GetTable_BITM(db_), "CCODE"), "BIKE FRAME WHEEL BELL");
}

TEST_P(Load, AddsFieldsThatAreMissingAndNeedsNoFilesOfOptionalTables) {
    ASSERT_EQ(LoadFrom(MinimalDatabase()), 1) << db_->error_text;
    const char* const fields[] = {
        "NID CCODE BITM.CNAME BITM.CSRC",
        "NID NPID NCID",
        "BDWG.NID BDWG.CCODE BDWG.CNAME BDWG.CSRC BDWG.CFILE BDWG.CASM BDWG.COFLNMODI BDWG.NOFLNITMID",
        "BITDWG.NID BITDWG.NPID BITDWG.NCID",
        "BCAPP.NID BCAPP.CCODE BCAPP.CNAME BCAPP.CSRC BCAPP.CFILE BCAPP.COFLNMODI BCAPP.NOFLNITMID",
        "BITCAP.NID BITCAP.NPID BITCAP.NCID"};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(FieldNames(&db_->tables[i]), fields[i]);
    KOfflineDb_Reset(db_);
    Files declared = SmallDatabase();
    for (const char* name : {"bdwg.txt", "bitdwg.txt", "bcapp.txt", "bitcap.txt"}) declared.erase(name);
    EXPECT_EQ(LoadFrom(declared), 1) << db_->error_text;
    for (int i = 2; i < 6; ++i) EXPECT_EQ(KOfflineTable_GetRecsCount(&db_->tables[i]), 0);
}

TEST_P(Load, TakesTheSchemaAsPeopleWriteIt) {
    Files files = MinimalDatabase();
    files[kSchema] =
        "// a schema\r\n"
        "1, INI // settings\r\n1.1, other, x\r\n1.1, Segment, semicolon\r\n1.1.1, separator, TAB\r\n1.1, root, it // "
        "em\r\n1.1, root\r\n"
        "1, odd\r\n1.1, field, X\r\n1.1.1, any\r\n"
        "1, table, foo\r\n1.1, field, Y\r\n"
        "1, TABLE, Bitm // items\r\n\r\n// fields\r\n1.1, FIELD\t,\tBITM.nid , number\r\n1.1, field,\r\n"
        "1.1, colour, red\r\n1.1.1, field, Z\r\n1.1, field, ccode\r\n"
        "1, table,\r\n1.1, field, lost\r\n"
        "1, table, bbom\r\n1.1, field, NID\r\n1.1, field, NPID\r\n"
        "1, table, BBOM\r\n1.1, field, NCID\r\n1.1, field, NCID\r\n"
        "1.1, field, a234567890b234567890c234567890d234567890\r\n";
    files["bitm.txt"] = "5; IT \r\n6;that";
    ASSERT_EQ(LoadFrom(files), 1) << db_->error_text;
    EXPECT_STREQ(db_->separator, ";");
    EXPECT_EQ(FieldNames(&db_->tables[0]), "BITM.nid ccode BITM.CNAME BITM.CSRC");
    EXPECT_EQ(FieldNames(&db_->tables[1]), "NID NPID NCID NCID a234567890b234567890c234567890d2");
    EXPECT_EQ(db_->root_nid, 5);
}

TEST_P(Load, FindsTheRootByItsCode) {
    for (const auto& [code, nid] : std::map<std::string, std::int32_t>{{"frame", 2}, {"none", -1}, {"", -1}}) {
        ASSERT_EQ(LoadWith(SmallDatabase(), "1.1, root, " + code), 1);
        EXPECT_EQ(db_->root_nid, nid) << code;
    }
}

TEST_P(Load, TakesDeepLevelsMegabytesAndAHundredThousandFields) {
    std::string deep, many, fields, level = "1";
    for (int i = 0; i < 300; ++i, level += ".1") deep += level + ", table, bitm\r\n";
    for (int i = 0; i < 100000; ++i) {
        many += i % 2 ? "1.1, field, F\r\n" : "1, table, foo\r\n";
        fields += "1.1, field, F" + std::to_string(i) + "\r\n";
    }
    const std::string line(3 << 20, 'x');
    for (const std::string& more : {deep, many, line + "," + line, "1, ini\r\n1.1," + line})
        EXPECT_EQ(LoadWith(MinimalDatabase(), more), 1) << more.substr(0, 99);
    EXPECT_EQ(LoadWith(MinimalDatabase(), "1, table, bitm\r\n" + fields), 1) << db_->error_text;
    EXPECT_EQ(KOfflineTable_GetFldsCount(&db_->tables[0]), 100004);
}

TEST_P(Load, TwiceWithoutResetAppendsTheFieldsAgain) {
    const std::string path = Put(SmallDatabase(), GetParam());
    for (int i = 0; i < 2; ++i) ASSERT_EQ(KOfflineDb_Load(db_, path.c_str()), 1);
    EXPECT_EQ(KOfflineTable_GetFldsCount(&db_->tables[1]), 8);
    EXPECT_EQ(ValuesOf(&db_->tables[0], "CCODE"), "BIKE FRAME WHEEL BELL");
    KOfflineTable* drawings = KOfflineDb_GetTable_BDWG(db_);
    KOfflineTable_AddRec(drawings, "2", "\t");
    vlt_file_delete(KOfflineDb_GetPackageHandle(db_), "bdwg.txt");
    Remove("data/bdwg.txt");
    ASSERT_EQ(KOfflineDb_Load(db_, path.c_str()), 1);
    EXPECT_EQ(KOfflineTable_GetFldsCount(drawings), 21);
    EXPECT_EQ(ValuesOf(drawings, "CFILE"), "bike.dwg -") << "records whose file is gone stay, with more fields";
    EXPECT_EQ(KOfflineTable_GetFldValue(drawings, 0, 20), nullptr);
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

TEST_F(LoadPath, ThatHoldsNoDatabaseIsReportedAsFarAsItFits) {
    const std::string fits(243, 'p'), too_long(245, 'p'), endless(5000, 'p'), wide = At("wide");
    ASSERT_EQ(vlt_package_create(wide.c_str(), 1, 0, nullptr, nullptr), 1);
    Write("plain", std::string(9000, 'x'));
    for (const auto& [path, text] :
         std::map<std::string, std::string>{{"", "\\kdbmain.txt"},
                                            {" \t", "\\kdbmain.txt"},
                                            {fits, fits + "\\kdbmain.txt"},
                                            {too_long, too_long + "\\kdbmain.t"},
                                            {endless, endless.substr(0, 255)},
                                            {std::string(5000, ' ') + "data", "\\kdbmain.txt"},
                                            {wide, wide + "\\kdbmain.txt"},
                                            {At("plain"), ""}}) {
        Database db;
        db->error_code = 5;
        EXPECT_EQ(KOfflineDb_Load(db, path.empty() ? nullptr : path.c_str()), 0);
        EXPECT_EQ(db->error_code, text.empty() ? KOFFLINE_ERR_NONE : KOFFLINE_ERR_FILE) << path;
        EXPECT_EQ(db->error_text, text);
        EXPECT_EQ(KOfflineDb_GetPackageHandle(db) == 0, path != wide);
    }
}

TEST_F(LoadPath, ToAFileThatIsThereButDoesNotOpenFails) {
    const std::string path = Put(SmallDatabase(), Place::package);
    const std::int32_t other = vlt_package_open(path.c_str(), 0, 0, nullptr, nullptr, nullptr, nullptr);
    EXPECT_GT(vlt_file_open(other, "bdwg.txt", VLT_MODE_READ, 1, 0, nullptr), 0);
    Database db;
    EXPECT_EQ(KOfflineDb_Load(db, path.c_str()), 0) << "a table without its records would be saved over them";
    EXPECT_EQ(db->error_code, KOFFLINE_ERR_FILE);
    EXPECT_EQ(db->error_text, path + "\\bdwg.txt");
    vlt_package_close(other);
    KOfflineDb_Reset(db);
    EXPECT_EQ(KOfflineDb_Load(db, path.c_str()), 1);
}

TEST_F(LoadPath, ToAPackageWithCredentialsIsWithoutAnyOfThem) {
    const std::string path = Put(SmallDatabase(), Place::package);
    std::string bytes = ReadText(path);
    bytes[36] = 0;  // the write credential is no longer empty
    WriteText(path, bytes);
    Database db;
    EXPECT_EQ(KOfflineDb_Load(db, path.c_str()), 1);
    EXPECT_EQ(KOfflineDb_Save(db), 0);
    KOfflineDb_Reset(db);
    bytes[20] = 0;  // nor is the read credential
    WriteText(path, bytes);
    EXPECT_EQ(KOfflineDb_Load(db, path.c_str()), 0);
    EXPECT_EQ(db->error_code, KOFFLINE_ERR_NONE);
}

}  // namespace
