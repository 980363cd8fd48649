// SPDX-License-Identifier: MIT
// What the program asks of the operating system. Text is UTF-8 everywhere; on POSIX systems paths are bytes as they
// are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

namespace fs = std::filesystem;

/// A path or a part of one as the system has it. Much cheaper to make and to copy than a path, which knows its parts.
using PathText = fs::path::string_type;

// ---- Program and terminal ----

/// The arguments after the program's name, as UTF-8. Also makes the standard streams carry bytes unchanged.
std::vector<std::string> program_arguments(int argc, char** argv);

/// The value of an environment variable, or nothing.
std::optional<std::string> environment(const char* name);

/// The number of this process.
unsigned long process_number();

bool is_terminal(std::FILE* stream);

/// Columns of the terminal that `stream` is; 80 where that cannot be told.
int terminal_width(std::FILE* stream);

/// Asks for a word on the terminal without showing what is typed; nothing when there is no terminal.
std::optional<std::string> ask_hidden(const std::string& question);

/// Calls `handler` from now on when the user wants the program to end (Ctrl-C, a request to terminate).
void handle_interrupt(void (*handler)());

// ---- Paths and times ----

fs::path path_of(const std::string& text);
std::string text_of(const fs::path& path);

/// The path as the library's functions take it. Fails with `Failure` where the system's code page cannot name it.
std::string library_path(const fs::path& path);

/// The local date and time of seconds since 1970, and back (-1: there is none).
std::tm local_time(std::int64_t seconds);
std::int64_t seconds_of(std::tm local);

// ---- Files ----

/// What a walk through folders must know of a file. Links are not followed.
struct FileStatus {
    enum class Kind { missing, file, folder, link, other } kind = Kind::missing;
    std::int64_t size = 0;
    std::int64_t written = 0;  // seconds since 1970
};
FileStatus file_status(const fs::path& path);

/// A file that is read or written from its start to its end. Every function fails with `Failure`.
class HostFile {
public:
    static HostFile open(const fs::path& path);
    /// Makes a file that must not exist yet; nothing that stands there, not even a link, is followed or emptied.
    static HostFile create_new(const fs::path& path);
    static HostFile standard_input();
    HostFile(HostFile&& other) noexcept;
    ~HostFile();

    FileStatus status() const;
    std::size_t read(void* buffer, std::size_t length);
    void write(const void* data, std::size_t length);
    void set_written(std::int64_t seconds);
    /// Does nothing when it is closed already.
    void close();
    void close_quietly() noexcept;

private:
    friend class HostFolder;
    HostFile(PathText path, std::intptr_t handle) : path_(std::move(path)), handle_(handle) {}
    PathText path_;
    std::intptr_t handle_;
};

/// A folder whose files are given by the last part of their path: the system need not follow the whole of it again
/// for each file. The folder itself may be moved meanwhile.
class HostFolder {
public:
    /// Fails with `Failure` where there is no folder that may be entered.
    explicit HostFolder(const fs::path& path);
    HostFolder(HostFolder&& other) noexcept;
    ~HostFolder();

    FileStatus status(const PathText& name) const;
    HostFile open(const PathText& name) const;
    HostFile create_new(const PathText& name) const;
    /// As `move_file`, within the folder.
    void move(const PathText& from, const PathText& to, bool replace) const;
    void remove(const PathText& name) const noexcept;
    PathText path_of(const PathText& name) const;

private:
    PathText path_;
    std::intptr_t handle_;
};

/// Puts a file under the name `to`; fails with `Failure` if something stands there, unless `replace`.
void move_file(const fs::path& from, const fs::path& to, bool replace);

/// Gives a file the owner and the permissions of another one, as far as the system lets.
void copy_access(const fs::path& from, const fs::path& to);

/// Waits until the bytes of a file are on the disk, and the folder's entry of it as well.
void sync_file(const fs::path& path);

/// The advisory lock on a host file: any number of readers, or one writer.
class HostLock {
public:
    enum class Mode { shared, exclusive };
    /// Fails with `Failure`, naming the holder, when another process holds it.
    HostLock(const fs::path& path, Mode mode);
    ~HostLock();
    HostLock(const HostLock&) = delete;
    HostLock& operator=(const HostLock&) = delete;

private:
    std::intptr_t handle_;
};

// ---- Code pages ----

/// Converts between a code page and UTF-8, a character at a time; for any number of threads at once.
class CodePage {
public:
    /// Fails with `Failure` for a name that the system does not know.
    explicit CodePage(const std::string& name);
    ~CodePage();

    /// Appends the first character of `bytes` to `text`; returns how many bytes it has, 0 when they are none.
    std::size_t decode(std::string_view bytes, std::string& text) const;
    /// Appends a text as bytes of the code page; false when it has characters that the code page lacks.
    bool encode(std::string_view text, std::string& bytes) const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace tool
