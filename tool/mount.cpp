// SPDX-License-Identifier: MIT
// vlt mount: the files of a package as a file system, by libfuse3.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>

#include "tool/fuse_library.h"
#include "tool/mount_files.h"
#include "tool/program.h"

namespace tool {

namespace {

struct MountOptions {
    PackageOptions package;
    std::string folder, access = "ro";

    Access access_mode() const { return access == "rw" ? Access::write : Access::read; }

    Parameters parameters() {
        const Rule modes{.choices = {"ro", "rw"}};
        return {package.parameters(Access::read),
                {"FOLDER", &folder, "an empty folder", {.required = true}},
                {"-o", &access, "ro: nothing can be changed, as if not given; rw: files can be written", modes},
                {"--sync", &package.sync, "when it ends, wait until everything is on the disk"}};
    }
};

/// Runs an operation; what the library fails at is told on stderr, and to the caller as `error`.
template <typename Operation>
int run(int error, Operation operation) {
    try {
        return operation(*static_cast<MountFiles*>(FuseLibrary::get().fuse_get_context()->private_data));
    } catch (const std::bad_alloc&) {
        return -ENOMEM;
    } catch (const std::exception& failure) {
        warn(failure.what());
        return -error;
    }
}

void* init(fuse_conn_info* connection, fuse_config* config) {
    connection->want &= ~static_cast<unsigned>(FUSE_CAP_ATOMIC_O_TRUNC);  // files are emptied by `truncate`
    config->kernel_cache = 1;                                             // nobody else changes the package
    return FuseLibrary::get().fuse_get_context()->private_data;
}

int list(const char* path, void* buffer, fuse_fill_dir_t fill, off_t, fuse_file_info*, fuse_readdir_flags) {
    return run(EIO, [&](MountFiles& files) {
        const auto add = [&](const std::string& name) { fill(buffer, name.c_str(), nullptr, 0, {}); };
        add(".");
        add("..");
        return files.list(path + 1, add);
    });
}

int rename(const char* from, const char* to, unsigned flags) {
    if ((flags & ~static_cast<unsigned>(RENAME_NOREPLACE)) != 0) return -EINVAL;
    return run(ENOSPC, [&](MountFiles& files) { return files.rename(from + 1, to + 1, flags == 0); });
}

/// Modes and owners are not stored: setting those of what is there does nothing.
int accept(const char* path) {
    return run(EIO, [&](MountFiles& files) {
        struct stat unused {};
        return files.attributes(path + 1, unused);
    });
}

fuse_operations operations() {
    fuse_operations table{};
    table.init = init;
    table.getattr = [](const char* path, struct stat* result, fuse_file_info*) {
        return run(EIO, [&](MountFiles& files) { return files.attributes(path + 1, *result); });
    };
    table.readdir = list;
    table.read = [](const char* path, char* buffer, std::size_t length, off_t position, fuse_file_info*) {
        return run(EIO, [&](MountFiles& files) { return files.read(path + 1, buffer, length, position); });
    };
    table.statfs = [](const char*, struct statvfs* result) {
        return run(EIO, [&](MountFiles& files) { return files.space(*result); });
    };
    table.create = [](const char* path, mode_t, fuse_file_info*) {
        return run(ENOSPC, [&](MountFiles& files) { return files.create(path + 1); });
    };
    table.write = [](const char* path, const char* data, std::size_t length, off_t position, fuse_file_info*) {
        return run(ENOSPC, [&](MountFiles& files) { return files.write(path + 1, data, length, position); });
    };
    table.truncate = [](const char* path, off_t size, fuse_file_info*) {
        return run(ENOSPC, [&](MountFiles& files) { return files.resize(path + 1, size); });
    };
    table.unlink = [](const char* path) {
        return run(EIO, [&](MountFiles& files) { return files.remove(path + 1); });
    };
    table.rename = rename;
    table.mkdir = [](const char* path, mode_t) {
        return run(EIO, [&](MountFiles& files) { return files.make_folder(path + 1); });
    };
    table.rmdir = [](const char* path) {
        return run(EIO, [&](MountFiles& files) { return files.remove_folder(path + 1); });
    };
    table.utimens = [](const char* path, const timespec times[2], fuse_file_info*) {
        return run(EIO, [&](MountFiles& files) { return files.set_times(path + 1, times[0], times[1]); });
    };
    table.chmod = [](const char* path, mode_t, fuse_file_info*) { return accept(path); };
    table.chown = [](const char* path, uid_t, gid_t, fuse_file_info*) { return accept(path); };
    table.fsync = [](const char*, int, fuse_file_info*) {
        return run(EIO, [&](MountFiles& files) { return sync_file(path_of(files.package().path())), 0; });
    };
    return table;
}

/// What libfuse said last, without the line's end.
std::string& said_last() {
    static std::string text;
    return text;
}

__attribute__((format(printf, 2, 0))) void note(fuse_log_level, const char* format, va_list arguments) {
    char text[512];
    std::vsnprintf(text, sizeof text, format, arguments);
    said_last() = text;
    while (!said_last().empty() && said_last().back() == '\n') said_last().pop_back();
}

/// A text as one of the options behind `-o`, which commas part.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) result += c == ',' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    return result;
}

/// The file system, while it stands in a folder.
class Mounting {
public:
    Mounting(MountFiles& files, const MountOptions& options) {
        library_.fuse_set_log_func(note);
        std::string words[] = {"vlt", "-o" + options.access + ",subtype=vlt,fsname=" + escaped(options.package.path)};
        char* pointers[] = {words[0].data(), words[1].data(), nullptr};
        fuse_args arguments = FUSE_ARGS_INIT(2, pointers);
        const fuse_operations table = operations();
        fuse_ = library_.fuse_new(&arguments, &table, sizeof table, &files);
        if (fuse_ && library_.fuse_mount(fuse_, options.folder.c_str()) == 0) return;
        if (fuse_) library_.fuse_destroy(fuse_);
        throw Failure(options.folder, "nothing can be mounted there (" + said_last() +
                                          "); that takes /dev/fuse and, unless you are root, fusermount3");
    }
    ~Mounting() {
        library_.fuse_unmount(fuse_);
        library_.fuse_destroy(fuse_);
    }
    Mounting(const Mounting&) = delete;
    Mounting& operator=(const Mounting&) = delete;

    /// Answers until the folder is unmounted, or the program is asked to end.
    bool serve() {
        // The library takes over those signals only that nobody has taken.
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, SIG_DFL);
        if (library_.fuse_set_signal_handlers(library_.fuse_get_session(fuse_)) != 0) return false;
        const bool served = library_.fuse_loop(fuse_) >= 0;
        library_.fuse_remove_signal_handlers(library_.fuse_get_session(fuse_));
        return served;
    }

private:
    const FuseLibrary& library_ = FuseLibrary::get();
    struct fuse* fuse_;
};

/// The package may not lie in the folder, which would hide it; nor may anything else.
void check_folder(const std::string& folder) {
    std::error_code error;
    const bool empty = fs::is_directory(path_of(folder), error) && fs::is_empty(path_of(folder), error);
    if (!empty || error) throw Failure(folder, "not an empty folder; make one for the files to appear in");
}

int mount(Program&, const MountOptions& options) {
    check_folder(options.folder);
    FuseLibrary::get();  // before the package is locked
    Package package(options.package, options.access_mode());
    MountFiles files(package, options.access_mode());
    check_interrupt();
    const bool served = Mounting(files, options).serve();
    files.close();
    package.close();
    if (!served)
        throw Failure(options.folder, "the connection to the system broke; `fusermount3 -u` frees the folder");
    return files.left_out() ? kFindings : kDone;
}

}  // namespace

void add_mount_verb(Program& program) {
    program.add_verb("mount", "shows the stored files in a folder, until `fusermount3 -u FOLDER` or Ctrl-C", mount,
                     R"(
        mkdir plans && vlt mount plans.vlt plans &
        grep -r gear plans; fusermount3 -u plans
        vlt mount -o rw plans.vlt plans)");
}

}  // namespace tool
