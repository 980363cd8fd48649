// SPDX-License-Identifier: MIT
#include "tests/support/database.h"

#include <filesystem>

namespace fs = std::filesystem;

std::string Lines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\r\n";
    return text;
}

Files SmallDatabase() {
    return {
        {"kdbmain.txt", Lines({"1, table, bitm",         "1.1, field, NID",
                               "1.1, field, CCODE",      "1.1, field, CNAME",
                               "1.1, field, CSRC",       "1, table, bbom",
                               "1.1, field, NID",        "1.1, field, NPID",
                               "1.1, field, NCID",       "1.1, field, FCOUNT",
                               "1, table, bdwg",         "1.1, field, NID",
                               "1.1, field, CCODE",      "1.1, field, CFILE",
                               "1.1, field, CSRC",       "1.1, field, CASM",
                               "1.1, field, COFLNMODI",  "1.1, field, NOFLNITMID",
                               "1, table, bitdwg",       "1.1, field, NID",
                               "1.1, field, NPID",       "1.1, field, NCID",
                               "1, table, bcapp",        "1.1, field, NID",
                               "1.1, field, CCODE",      "1.1, field, CFILE",
                               "1.1, field, CSRC",       "1.1, field, COFLNMODI",
                               "1.1, field, NOFLNITMID", "1, table, bitcap",
                               "1.1, field, NID",        "1.1, field, NPID",
                               "1.1, field, NCID",       "1, ini",
                               "1.1, separator, TAB"})},
        {"bitm.txt", Lines({"1\tBIKE\tBicycle\tmade", "2\tFRAME\tFrame\tmade", "3\tWHEEL\tWheel\tmade",
                            "4\tBELL\tBell\tbought"})},
        {"bbom.txt", Lines({"1\t1\t2\t1", "2\t1\t3\t2"})},
        {"bdwg.txt", Lines({"1\tD-1\tbike.dwg\tcad\t\t\t"})},
        {"bitdwg.txt", Lines({"1\t1\t1"})},
        {"bcapp.txt", Lines({"7\tP-7\tplan.txt\thand\t\t"})},
        {"bitcap.txt", Lines({"1\t3\t7"})},
    };
}

Files MinimalDatabase() {
    return {{"kdbmain.txt",
             Lines({"1, table, bitm", "1.1, field, NID", "1.1, field, CCODE", "1, table, bbom", "1.1, field, NID",
                    "1.1, field, NPID", "1.1, field, NCID", "1, ini", "1.1, separator, TAB"})},
            {"bitm.txt", ""},
            {"bbom.txt", ""}};
}

DatabaseTest::DatabaseTest() {
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(test.test_suite_name()) + "." + test.name();
    for (char& c : name) c = c == '/' ? '_' : c;
    folder_ = name;
    fs::remove_all(folder_);
    fs::create_directories(folder_);
}

DatabaseTest::~DatabaseTest() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void DatabaseTest::Write(const std::string& name, const std::string& contents) const {
    WriteText(At(name), contents);
}

std::string DatabaseTest::Read(const std::string& name) const {
    return ReadText(At(name));
}

bool DatabaseTest::Exists(const std::string& name) const {
    return fs::exists(At(name));
}

void DatabaseTest::Remove(const std::string& name) const {
    fs::remove(At(name));
}

void DatabaseTest::MakeDirectory(const std::string& name) const {
    fs::create_directories(At(name));
}

std::string DatabaseTest::Put(const Files& files, Place place) const {
    const std::string path = At(place == Place::package ? "data.vlt" : "data");
    EXPECT_TRUE(PutFiles(path, files, place));
    return path;
}

std::string FieldNames(KOfflineTable* table) {
    std::string names;
    char name[33];
    for (std::int32_t i = 0; KOfflineTable_GetFldName(table, i, name); ++i) {
        if (i) names += ' ';
        names += name;
    }
    return names;
}

std::string ValuesOf(KOfflineTable* table, const char* field) {
    std::string values;
    const std::int32_t number = KOfflineTable_GetFldIndex(table, field);
    for (std::int32_t rec = 0; rec < KOfflineTable_GetRecsCount(table); ++rec) {
        const char* value = KOfflineTable_GetFldValue(table, rec, number);
        if (rec) values += ' ';
        values += value ? value : "-";
    }
    return values;
}
