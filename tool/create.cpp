// SPDX-License-Identifier: MIT
// vlt create
#include "tool/package.h"
#include "tool/program.h"

namespace tool {

namespace {

constexpr std::int64_t kMebibyte = 1 << 20;

struct CreateOptions {
    std::string path, size = "0";
    Credentials words;
    bool wide = false, force = false, sync = false;

    Parameters parameters() {
        return {{"PACKAGE", &path, "the host file; must not exist", {.required = true}},
                {"--size", &size, "room to begin with, such as 64M; a package grows when it is full"},
                {"--wide", &wide, "names in UTF-16 instead of bytes"},
                {"--read-word", &words.read, "word that lets read"},
                {"--write-word", &words.write, "word that lets write"},
                {"-f,--force", &force, "replace the file if it exists"},
                sync_option(sync)};
    }
};

int create(Program&, const CreateOptions& options) {
    const fs::path path = path_of(options.path);
    const std::int64_t size = size_of_text(options.size);
    check_word(options.words.read);
    check_word(options.words.write);
    if (size / kMebibyte > 1048575) throw Failure(options.path, "too large; a package has less than 1 TiB");
    const bool exists = fs::exists(fs::symlink_status(path));
    if (exists && !options.force) throw Failure(options.path, "exists already; give -f to replace it");
    {
        std::optional<HostLock> lock;
        if (exists) lock.emplace(path, HostLock::Mode::exclusive);
        // Sizes are whole mebibytes; the next one holds what was asked for.
        const auto mebibytes = static_cast<std::int32_t>((size + kMebibyte - 1) / kMebibyte);
        if (!vlt_package_create(library_path(path).c_str(), options.wide, mebibytes, options.words.read.c_str(),
                                options.words.write.c_str()))
            throw Failure(options.path, "cannot be created; is the folder there and writable, and room on the disk?");
    }
    if (options.sync) sync_file(path);
    return kDone;
}

}  // namespace

void add_create_verb(Program& program) {
    program.add_verb("create", "makes a new, empty package", create, R"(
        vlt create notes.vlt
        vlt create --size 64M --write-word secret plans.vlt)");
}

}  // namespace tool
