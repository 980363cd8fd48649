// SPDX-License-Identifier: MIT
#include "tests/support/database_files.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

bool StoreFile(std::int32_t package, const std::string& name, const std::string& contents) {
    const auto file = static_cast<std::uint32_t>(vlt_file_open(package, name.c_str(), VLT_MODE_WRITE, 0, 1, nullptr));
    const auto length = static_cast<std::int32_t>(contents.size());
    const bool stored = vlt_file_write(file, contents.data(), length) == 1;
    return vlt_file_close(file) == 1 && stored;
}

std::string StoredFile(std::int32_t package, const char* name, std::int64_t size) {
    std::string contents(static_cast<std::size_t>(size), ' ');
    const std::int32_t file = vlt_file_open(package, name, VLT_MODE_READ, 0, 0, nullptr);
    vlt_file_read(static_cast<std::uint32_t>(file), contents.data(), static_cast<std::int32_t>(size));
    vlt_file_close(static_cast<std::uint32_t>(file));
    return contents;
}

bool PutIntoPackage(const std::string& path, const Files& files) {
    bool done = vlt_package_create(path.c_str(), 0, 0, nullptr, nullptr) == 1;
    const std::int32_t package = vlt_package_open(path.c_str(), 0, 0, nullptr, nullptr, nullptr, nullptr);
    for (const auto& [name, contents] : files) done = StoreFile(package, name, contents) && done;
    return vlt_package_close(package) == 1 && done;
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

std::string ReadText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteText(const std::string& path, const std::string& contents) {
    std::ofstream(path, std::ios::binary) << contents;
}

bool PutFiles(const std::string& path, const Files& files, Place place) {
    if (place == Place::package) return PutIntoPackage(path, files);
    fs::create_directories(path);
    for (const auto& [name, contents] : files) WriteText(path + "/" + name, contents);
    return true;
}

Files StoredFiles(KOfflineDb* db, const std::string& path) {
    if (db->package > 0) return StoredInPackage(db->package);
    Files files;
    for (const auto& entry : fs::directory_iterator(path)) {
        files[entry.path().filename().string()] = ReadText(entry.path().string());
    }
    return files;
}
