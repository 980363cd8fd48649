// SPDX-License-Identifier: MIT
#include "tests/support/database.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

void WriteFile(const fs::path& path, const std::string& contents) {
    std::ofstream(path, std::ios::binary) << contents;
}

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void StoreFile(std::int32_t package, const std::string& name, const std::string& contents) {
    const std::int32_t file = vlt_file_open(package, name.c_str(), VLT_MODE_WRITE, 0, 1, nullptr);
    ASSERT_GT(file, 0);
    const auto length = static_cast<std::int32_t>(contents.size());
    EXPECT_EQ(vlt_file_write(static_cast<std::uint32_t>(file), contents.data(), length), 1);
    vlt_file_close(static_cast<std::uint32_t>(file));
}

std::string StoredFile(std::int32_t package, const char* name, std::int64_t size) {
    std::string contents(static_cast<std::size_t>(size), ' ');
    const std::int32_t file = vlt_file_open(package, name, VLT_MODE_READ, 0, 0, nullptr);
    vlt_file_read(static_cast<std::uint32_t>(file), contents.data(), static_cast<std::int32_t>(size));
    vlt_file_close(static_cast<std::uint32_t>(file));
    return contents;
}

Files StoredInPackage(std::int32_t package) {
    Files files;
    char name[VLT_NAME_MAX + 1];
    std::int64_t size = 0;
    for (std::int32_t at = 0;
         (at = vlt_package_enum(package, at, name, nullptr, &size, nullptr, nullptr, nullptr)) > 0;) {
        files[name] = StoredFile(package, name, size);
    }
    return files;
}

}  // namespace

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
    WriteFile(At(name), contents);
}

std::string DatabaseTest::Read(const std::string& name) const {
    return ReadFile(At(name));
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
    if (place == Place::directory) {
        fs::create_directories(path);
        for (const auto& [name, contents] : files) WriteFile(path + "/" + name, contents);
        return path;
    }
    EXPECT_EQ(vlt_package_create(path.c_str(), 0, 0, nullptr, nullptr), 1);
    const std::int32_t package = vlt_package_open(path.c_str(), 0, 0, nullptr, nullptr, nullptr, nullptr);
    for (const auto& [name, contents] : files) StoreFile(package, name, contents);
    vlt_package_close(package);
    return path;
}

Files DatabaseTest::Stored(KOfflineDb* db, const std::string& path) {
    if (db->package > 0) return StoredInPackage(db->package);
    Files files;
    for (const auto& entry : fs::directory_iterator(path)) {
        files[entry.path().filename().string()] = ReadFile(entry.path());
    }
    return files;
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
