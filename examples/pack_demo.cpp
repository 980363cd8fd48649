// SPDX-License-Identifier: MIT
// Packs a folder of real files into a new package, lists it, shows how its blocks are used, closes it, reopens it,
// extracts everything to another folder and compares byte for byte.
//
//     pack_demo FOLDER WORK [LEFT_OUT...]
//
// The package and the extracted files go into WORK. Folders LEFT_OUT are not packed. Ends with 0 when every byte came
// back, with 1 otherwise.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "vlt.h"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kPiece = 32 * 1024;
constexpr std::size_t kBarWidth = 40;
constexpr std::size_t kListed = 24;  // of a longer listing, this many lines are printed

/// A file of the folder, and the name it is stored under.
struct Source {
    fs::path path;
    std::string name;
    std::uint64_t size;
};

// ---- Printing ------------------------------------------------------------------------------------------------

std::string readable_size(double bytes) {
    const char* const units[] = {"B", "KiB", "MiB", "GiB", "TiB"};
    std::size_t unit = 0;
    for (; bytes >= 1024 && unit < 4; ++unit) bytes /= 1024;
    char text[32];
    std::snprintf(text, sizeof text, unit ? "%.1f %s" : "%.0f %s", bytes, units[unit]);
    return text;
}

std::string readable_size(std::uint64_t bytes) {
    return readable_size(static_cast<double>(bytes));
}

/// A bar that grows to the right as work is done, so that it reads the same on a terminal and in a log.
class Progress {
public:
    Progress(const char* title, std::uint64_t total) : total_(std::max<std::uint64_t>(total, 1)) {
        std::printf("\n%-9s", title);
    }

    void advance(std::uint64_t amount) {
        done_ += amount;
        const auto wanted = std::min<std::uint64_t>(kBarWidth, done_ * kBarWidth / total_);
        for (; drawn_ < wanted; ++drawn_) std::fputs("█", stdout);
        std::fflush(stdout);
    }

    void finish(std::size_t files) {
        for (; drawn_ < kBarWidth; ++drawn_) std::fputs("█", stdout);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start_;
        std::printf("  %zu files, %s, %.2f s\n", files, readable_size(done_).c_str(), taken.count());
    }

private:
    std::uint64_t total_, done_ = 0, drawn_ = 0;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// Tells what went wrong and gives the demo's failure value.
bool failed(const char* what, const std::string& name) {
    std::printf("\n  FAILED: %s %s\n", what, name.c_str());
    return false;
}

// ---- The folder ----------------------------------------------------------------------------------------------

std::string folded(std::string name) {
    for (char& c : name)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
    return name;
}

/// The length of a file; 0 when there is none.
std::uint64_t size_of(const fs::path& path) {
    std::error_code error;
    const auto size = fs::file_size(path, error);
    return error ? 0 : size;
}

/// Names are stored as UTF-8.
std::string text_of(const fs::path& path) {
    const auto text = path.generic_u8string();
    return {text.begin(), text.end()};
}

fs::path path_of(const std::string& name) {
    return fs::path(std::u8string(name.begin(), name.end()));
}

/// Collects the regular files below a folder.
class Collector {
public:
    Collector(const fs::path& folder, const std::vector<fs::path>& left_out) : folder_(folder), left_out_(left_out) {
        std::error_code error;
        fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
        for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
            if (is_left_out(entry->path()))
                entry.disable_recursion_pending();
            else if (!entry->is_directory(error))
                take(*entry);
        }
        std::sort(files.begin(), files.end(), [](const Source& a, const Source& b) { return a.name < b.name; });
    }

    std::vector<Source> files;
    std::size_t passed_over = 0;  // links, devices, files that may not be read
    std::uint64_t bytes = 0;

private:
    bool is_left_out(const fs::path& path) const {
        return std::any_of(left_out_.begin(), left_out_.end(), [&](const fs::path& other) {
            std::error_code error;
            return fs::equivalent(path, other, error);
        });
    }

    void take(const fs::directory_entry& entry) {
        std::error_code error;
        const std::string name = free_name(text_of(entry.path().lexically_relative(folder_)));
        const bool plain = !entry.is_symlink(error) && entry.is_regular_file(error);
        if (!plain || name.size() > VLT_NAME_MAX || !std::ifstream(entry.path(), std::ios::binary)) {
            ++passed_over;
            return;
        }
        names_.insert(folded(name));
        files.push_back({entry.path(), name, size_of(entry.path())});
        bytes += files.back().size;
    }

    /// Stored names are compared without regard to letter case, so "readme" beside "README" needs another name.
    std::string free_name(const std::string& name) const {
        std::string candidate = name;
        for (int n = 2; names_.count(folded(candidate)); ++n) candidate = name + "~" + std::to_string(n);
        return candidate;
    }

    const fs::path& folder_;
    const std::vector<fs::path>& left_out_;
    std::set<std::string> names_;
};

double stamp_of(const fs::path& path) {
    std::error_code error;
    const auto time = fs::last_write_time(path, error);
    if (error) return 0.0;
    const auto system = std::chrono::file_clock::to_sys(time);
    const auto since_epoch = std::chrono::duration_cast<std::chrono::seconds>(system.time_since_epoch());
    const auto seconds = static_cast<std::time_t>(since_epoch.count());
    const std::tm* const local = std::localtime(&seconds);
    if (!local) return 0.0;
    const int date = (local->tm_year + 1900) * 10000 + (local->tm_mon + 1) * 100 + local->tm_mday;
    return date + (local->tm_hour * 10000 + local->tm_min * 100 + local->tm_sec) / 1000000.0;
}

// ---- Packing, listing, extracting, comparing -----------------------------------------------------------------

bool pack_file(int32_t package, const Source& source, Progress& progress) {
    std::ifstream in(source.path, std::ios::binary);
    const auto file =
        static_cast<std::uint32_t>(vlt_file_open(package, source.name.c_str(), VLT_MODE_WRITE, 1, 1, nullptr));
    bool good = in && file;
    std::vector<char> piece(kPiece);
    while (good && in.read(piece.data(), kPiece).gcount() > 0) {
        good = vlt_file_write(file, piece.data(), static_cast<int32_t>(in.gcount())) == 1;
        progress.advance(static_cast<std::uint64_t>(in.gcount()));
    }
    if (file) vlt_file_close(file);
    const double stamp = stamp_of(source.path);
    good = good && vlt_file_set_time(package, source.name.c_str(), stamp, stamp, stamp) == 1;
    return good || failed("cannot store", source.name);
}

bool pack(int32_t package, const Collector& folder) {
    Progress progress("Pack", folder.bytes);
    for (const Source& source : folder.files)
        if (!pack_file(package, source, progress)) return false;
    progress.finish(folder.files.size());
    return true;
}

void print_entry(const char* name, std::int64_t size, double stamp) {
    const auto date = static_cast<int>(stamp);
    const auto time = static_cast<int>(std::lround((stamp - date) * 1000000));
    std::printf("%13s  %04d-%02d-%02d %02d:%02d:%02d  %s\n", readable_size(static_cast<double>(size)).c_str(),
                date / 10000, date / 100 % 100, date % 100, time / 10000, time / 100 % 100, time % 100, name);
}

/// Lists the package; true when it holds as many files as were packed.
bool list(int32_t package, std::size_t expected) {
    std::printf("\nList %13s  %-19s  %s\n", "size", "written", "name");
    char name[VLT_NAME_MAX + 1];
    std::int64_t size = 0;
    double written = 0;
    std::size_t count = 0;
    int32_t cursor = 0;
    while ((cursor = vlt_package_enum(package, cursor, name, nullptr, &size, nullptr, nullptr, &written)) != 0)
        if (++count <= kListed) {
            std::printf("     ");
            print_entry(name, size, written);
        }
    if (count > kListed) std::printf("%18s  and %zu more\n", "...", count - kListed);
    return count == expected || failed("the listing has another number of files:", std::to_string(count));
}

bool extract_file(int32_t package, const std::string& name, const fs::path& target, Progress& progress) {
    std::error_code error;
    fs::create_directories(target.parent_path(), error);
    std::ofstream out(target, std::ios::binary);
    const auto file = static_cast<std::uint32_t>(vlt_file_open(package, name.c_str(), VLT_MODE_READ, 0, 0, nullptr));
    std::vector<char> piece(kPiece);
    int32_t length;
    while (file && (length = vlt_file_read(file, piece.data(), static_cast<int32_t>(kPiece))) > 0) {
        out.write(piece.data(), length);
        progress.advance(static_cast<std::uint64_t>(length));
    }
    if (file) vlt_file_close(file);
    out.close();
    return (file && out) || failed("cannot extract", name);
}

bool extract(int32_t package, const Collector& folder, const fs::path& target) {
    Progress progress("Extract", folder.bytes);
    for (const Source& source : folder.files)
        if (!extract_file(package, source.name, target / path_of(source.name), progress)) return false;
    progress.finish(folder.files.size());
    return true;
}

bool same_bytes(const fs::path& left, const fs::path& right, Progress& progress) {
    std::ifstream a(left, std::ios::binary), b(right, std::ios::binary);
    std::vector<char> piece_a(kPiece), piece_b(kPiece);
    if (!a || !b) return false;
    do {
        const auto got = a.read(piece_a.data(), kPiece).gcount();
        if (b.read(piece_b.data(), kPiece).gcount() != got) return false;
        if (std::memcmp(piece_a.data(), piece_b.data(), static_cast<std::size_t>(got)) != 0) return false;
        progress.advance(static_cast<std::uint64_t>(got));
    } while (a);
    return true;
}

bool compare(const Collector& folder, const fs::path& target) {
    Progress progress("Compare", folder.bytes);
    for (const Source& source : folder.files)
        if (!same_bytes(source.path, target / path_of(source.name), progress))
            return failed("the bytes differ:", source.name);
    progress.finish(folder.files.size());
    return true;
}

// ---- The blocks ----------------------------------------------------------------------------------------------

/// What each block of a package is used for, read from the host file itself.
class BlockUse {
public:
    explicit BlockUse(const fs::path& path) : in_(path, std::ios::binary) {
        kinds_.assign(static_cast<std::size_t>(size_of(path) / VLT_BLOCK_SIZE), kFree);
        read_header();
        for (std::size_t block = 0; block < kinds_.size(); ++block)
            if (word(block) & 0x80000000u) kinds_[block] = kFile;
        mark(0, kHeader);
        mark(1, kDirectory);
    }

    void print() const {
        const auto count = [&](char kind) { return std::count(kinds_.begin(), kinds_.end(), kind); };
        std::printf("\nBlocks   %zu of 4 KiB:  H header %td   D directory %td   █ files %td   ░ free %td\n",
                    kinds_.size(), count(kHeader), count(kDirectory), count(kFile), count(kFree));
        constexpr std::size_t rows = 8, columns = 64;
        const std::size_t cell = std::max<std::size_t>(1, (kinds_.size() + rows * columns - 1) / (rows * columns));
        for (std::size_t block = 0, column = 0; block < kinds_.size(); block += cell, ++column) {
            if (column % columns == 0) std::printf("%s         ", column ? "\n" : "");
            print_cell(block, std::min(block + cell, kinds_.size()));
        }
        if (cell > 1)
            std::printf("\n         each sign stands for up to %zu blocks, ▓ for blocks of several kinds", cell);
        std::printf("\n");
    }

private:
    static constexpr char kFree = '.', kFile = 'F', kHeader = 'H', kDirectory = 'D';

    /// The header run holds the map, and the map tells where the header run goes on.
    void read_header() {
        std::size_t block = 0;
        for (std::size_t steps = 0; block < kinds_.size() && steps < kinds_.size(); ++steps) {
            char bytes[VLT_BLOCK_SIZE];
            in_.seekg(static_cast<std::streamoff>(block) * VLT_BLOCK_SIZE).read(bytes, sizeof bytes);
            header_.insert(header_.end(), bytes, bytes + sizeof bytes);
            const std::uint32_t next = word(block) & 0x0fffffffu;
            if (next == 0) return;
            block = next - 1;
        }
    }

    /// The map word of a block: bit 31 for a used block, below it the number of the next block of its chain.
    std::uint32_t word(std::size_t block) const {
        const std::size_t at = 101 + 4 * block;
        if (at + 4 > header_.size()) return 0;
        std::uint32_t value = 0;
        for (std::size_t i = 4; i-- > 0;) value = value << 8 | static_cast<unsigned char>(header_[at + i]);
        return value;
    }

    void mark(std::size_t block, char kind) {
        for (std::size_t steps = 0; block < kinds_.size() && steps < kinds_.size(); ++steps) {
            kinds_[block] = kind;
            const std::uint32_t next = word(block) & 0x0fffffffu;
            if (next == 0) return;
            block = next - 1;
        }
    }

    void print_cell(std::size_t from, std::size_t to) const {
        const char kind = kinds_[from];
        const bool alike =
            std::all_of(kinds_.begin() + static_cast<std::ptrdiff_t>(from),
                        kinds_.begin() + static_cast<std::ptrdiff_t>(to), [&](char other) { return other == kind; });
        std::fputs(!alike ? "▓" : kind == kFile ? "█" : kind == kFree ? "░" : kind == kHeader ? "H" : "D", stdout);
    }

    std::ifstream in_;
    std::vector<char> header_;
    std::vector<char> kinds_;
};

// ---- The demo ------------------------------------------------------------------------------------------------

int32_t open_package(const std::string& path) {
    int32_t error = 0;
    const int32_t package = vlt_package_open(path.c_str(), 0, 0, nullptr, nullptr, nullptr, &error);
    if (!package) failed("cannot open the package, code", std::to_string(error));
    return package;
}

/// Fills the package, lists it and closes it.
bool fill(const std::string& path, const Collector& folder) {
    const int32_t package = open_package(path);
    if (!package) return false;
    const bool good = pack(package, folder) && list(package, folder.files.size());
    return vlt_package_close(package) == 1 && good;
}

/// Opens the package again and takes everything out.
bool take_out(const std::string& path, const Collector& folder, const fs::path& target) {
    const int32_t package = open_package(path);
    if (!package) return false;
    const bool good = extract(package, folder, target);
    return vlt_package_close(package) == 1 && good;
}

bool run(const fs::path& source, const fs::path& work, const std::vector<fs::path>& left_out) {
    const Collector folder(source, left_out);
    const std::string path = text_of(work / "demo.vlt");
    std::printf("Folder   %s: %zu files, %s", text_of(source).c_str(), folder.files.size(),
                readable_size(folder.bytes).c_str());
    if (folder.passed_over) std::printf(" (%zu links and unreadable files passed over)", folder.passed_over);
    if (folder.files.empty()) return failed("nothing to pack in", text_of(source));
    if (!vlt_package_create(path.c_str(), 0, 0, nullptr, nullptr)) return failed("cannot create", path);
    const auto small = size_of(work / "demo.vlt");
    if (!fill(path, folder)) return false;
    std::printf("\nGrown    from %s to %s: %s\n", readable_size(small).c_str(),
                readable_size(size_of(work / "demo.vlt")).c_str(), path.c_str());
    BlockUse(work / "demo.vlt").print();
    return take_out(path, folder, work / "extracted") && compare(folder, work / "extracted");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::printf("usage: pack_demo FOLDER WORK [LEFT_OUT...]\n");
        return 1;
    }
    std::error_code error;
    const fs::path source = fs::canonical(argv[1], error);
    if (error || !fs::is_directory(source)) return failed("no such folder:", argv[1]), 1;
    const fs::path work = argv[2];
    fs::remove_all(work / "extracted", error);  // of an earlier run
    fs::create_directories(work, error);
    if (error) return failed("cannot make the folder", argv[2]), 1;
    std::vector<fs::path> left_out(argv + 2, argv + argc);
    if (!run(source, work, left_out)) return 1;
    std::printf("\nEvery file came back byte for byte.\n");
    return 0;
}
