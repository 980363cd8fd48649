// SPDX-License-Identifier: MIT
#include "tests/support/database.h"

#include <filesystem>

namespace fs = std::filesystem;

std::string Lines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\r\n";
    return text;
}

Files Changed(Files files, const std::string& name, const std::string& from, const std::string& to) {
    std::string& text = files[name];
    text.replace(text.find(from), from.empty() ? text.npos : from.size(), to);
    return files;
}

/// Declares tables with their fields, and TAB as the separator.
static std::string Schema(const std::vector<std::pair<std::string, std::vector<std::string>>>& tables) {
    std::string text;
    for (const auto& [table, fields] : tables) {
        text += "1, table, " + table + "\r\n";
        for (const std::string& field : fields) text += "1.1, field, " + field + "\r\n";
    }
    return text + Lines({"1, ini", "1.1, separator, TAB"});
}

Files SmallDatabase() {
    return {
        {"kdbmain.txt", Schema({{"bitm", {"NID", "CCODE", "CNAME", "CSRC"}},
                                {"bbom", {"NID", "NPID", "NCID", "FCOUNT"}},
                                {"bdwg", {"NID", "CCODE", "CFILE", "CSRC", "CASM", "COFLNMODI", "NOFLNITMID"}},
                                {"bitdwg", {"NID", "NPID", "NCID"}},
                                {"bcapp", {"NID", "CCODE", "CFILE", "CSRC", "COFLNMODI", "NOFLNITMID"}},
                                {"bitcap", {"NID", "NPID", "NCID"}}})},
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
    return {{"kdbmain.txt", Schema({{"bitm", {"NID", "CCODE"}}, {"bbom", {"NID", "NPID", "NCID"}}})},
            {"bitm.txt", ""},
            {"bbom.txt", ""}};
}

DatabaseTest::DatabaseTest() {
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::string(test.test_suite_name()) + "." + test.name();
    for (char& c : folder_) c = c == '/' ? '_' : c;
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
    fs::remove_all(At(name));
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
