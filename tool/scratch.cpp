// SPDX-License-Identifier: MIT
#include "tool/scratch.h"

#include <cstdio>
#include <random>

#include "tool/failure.h"

namespace tool {

namespace {

constexpr std::size_t kPiece = 1 << 20;

std::string random_name() {
    std::random_device random;
    char name[32];
    std::snprintf(name, sizeof name, ".vlt-%08x%08x", random(), random());
    return name;
}

fs::path new_folder(const fs::path& parent) {
    std::error_code error;
    fs::path path = parent / random_name();
    if (!fs::create_directory(path, error) || error)
        throw Failure(text_of(parent), "nothing can be written there; is the folder there, and may you write to it?");
    fs::permissions(path, fs::perms::owner_all, error);  // what a word protects may pass through it
    return path;
}

}  // namespace

ScratchFolder::ScratchFolder(const fs::path& parent) : path_(new_folder(parent)) {}

ScratchFolder::~ScratchFolder() {
    std::error_code error;
    fs::remove_all(path_, error);
}

fs::path folder_of(const fs::path& path) {
    const fs::path whole = path.has_filename() ? path : path.parent_path();
    return whole.has_parent_path() ? whole.parent_path() : fs::path(".");
}

fs::path temporary_folder() {
    std::error_code error;
    fs::path folder = fs::temp_directory_path(error);
    if (error) throw Failure("temporary files", "have no folder; set TMPDIR to one that may be written");
    return folder;
}

void make_folder(const fs::path& path) {
    std::error_code error;
    fs::create_directories(path, error);
    if (error) throw Failure(text_of(path), "the folder cannot be made: " + error.message());
}

std::string whole_file(const std::string& path) {
    HostFile file = path == "-" ? HostFile::standard_input() : HostFile::open(path_of(path));
    std::string bytes;
    for (std::size_t got = 1; got > 0;) {
        const std::size_t size = bytes.size();
        bytes.resize(size + kPiece);
        got = file.read(bytes.data() + size, kPiece);
        bytes.resize(size + got);
        check_interrupt();
    }
    return bytes;
}

void write_file(const fs::path& path, std::string_view bytes) {
    HostFile file = HostFile::create_new(path);
    for (; !bytes.empty(); bytes.remove_prefix(std::min(kPiece, bytes.size()))) {
        file.write(bytes.data(), std::min(kPiece, bytes.size()));
        check_interrupt();
    }
    file.close();
}

void check_free(const fs::path& path) {
    if (file_status(path).kind != FileStatus::Kind::missing)
        throw Failure(text_of(path), "exists already; give -f to replace it");
}

}  // namespace tool
