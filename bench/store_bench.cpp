// SPDX-License-Identifier: MIT
// The package store beside the limit (positioned reads and writes of the same bytes in one host file), SQLite blobs
// without journal and sync, and the host's own file system with a file each.
//
//   store_bench [quick] [folder]

#include <sqlite3.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <thread>
#include <unordered_map>

#include "measure.h"
#include "vlt.h"

namespace fs = std::filesystem;
using bench::Contender;
using bench::need;
using bench::seconds_of;
using bench::timed;

namespace {

constexpr int piece = 32 * 1024;
constexpr int small_file = 8 * 1024;
constexpr int random_piece = 4 * 1024;

fs::path folder;
int rounds = 9;

const std::vector<char>& payload() {
    static const std::vector<char> bytes = [] {
        std::vector<char> b(piece);
        std::mt19937 random(1);
        for (char& c : b) c = static_cast<char>(random());
        return b;
    }();
    return bytes;
}

std::vector<std::int64_t> random_offsets(std::int64_t size, int count) {
    std::mt19937_64 random(7);
    std::vector<std::int64_t> offsets(static_cast<std::size_t>(count));
    for (auto& offset : offsets)
        offset = static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(size / random_piece)) * random_piece;
    return offsets;
}

std::vector<int> shuffled(int count) {
    std::vector<int> order(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) order[static_cast<std::size_t>(i)] = i;
    std::shuffle(order.begin(), order.end(), std::mt19937(3));
    return order;
}

/// Names that the callers have at hand, made before anything is measured.
const std::string& name_of(int i) {
    static std::vector<std::string> names;
    while (names.size() <= static_cast<std::size_t>(i))
        names.push_back("drawing-" + std::to_string(names.size()) + ".dwg");
    return names[static_cast<std::size_t>(i)];
}

/// A host file written with plain calls: the limit.
class Raw {
public:
    explicit Raw(const char* name, std::int64_t size = 0) : path_(folder / (std::to_string(made_++) + name)) {
        fd_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0644);
        need(fd_ >= 0, "creating a raw file");
        for (std::int64_t at = 0; at < size; at += piece) write(at, piece);
    }
    ~Raw() {
        ::close(fd_);
        fs::remove(path_);
    }
    void write(std::int64_t at, int length) {
        need(::pwrite(fd_, payload().data(), static_cast<std::size_t>(length), at) == length, "pwrite");
    }
    void read(std::int64_t at, int length) {
        char buffer[piece];
        need(::pread(fd_, buffer, static_cast<std::size_t>(length), at) == length, "pread");
    }

private:
    static inline int made_ = 0;
    fs::path path_;
    int fd_;
};

/// A package, created anew.
class Package {
public:
    Package(const char* name, int size_mb) : path_(folder / (std::to_string(made_++) + name)) {
        need(vlt_package_create(path_.c_str(), 0, size_mb, nullptr, nullptr) == 1, "vlt_package_create");
        open();
    }
    ~Package() {
        vlt_package_close(handle_);
        fs::remove(path_);
    }
    void open() {
        need((handle_ = vlt_package_open(path_.c_str(), 0, 0, nullptr, nullptr, nullptr, nullptr)) > 0,
             "vlt_package_open");
    }
    void close() { vlt_package_close(handle_); }
    const fs::path& path() const { return path_; }

    std::uint32_t open_file(const std::string& name, std::uint32_t mode) {
        const auto file = vlt_file_open(handle_, name.c_str(), mode, 0, 0, nullptr);
        need(file > 0, "vlt_file_open");
        return static_cast<std::uint32_t>(file);
    }
    void need_file(const std::string& name) {
        need(vlt_file_get_info(handle_, name.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr) == 1,
             "vlt_file_get_info");
    }
    void append(std::uint32_t file, std::int64_t size) {
        for (std::int64_t at = 0; at < size; at += piece)
            need(vlt_file_write(file, payload().data(), piece) == 1, "vlt_file_write");
    }
    void write_small_files(int count) {
        for (int i = 0; i < count; ++i) {
            const std::uint32_t file = open_file(name_of(i), VLT_MODE_WRITE);
            need(vlt_file_write(file, payload().data(), small_file) == 1, "vlt_file_write");
            vlt_file_close(file);
        }
    }
    void delete_small_files(int count) {
        for (int i = 0; i < count; ++i) need(vlt_file_delete(handle_, name_of(i).c_str()) == 1, "vlt_file_delete");
    }
    void read_small_files(const std::vector<int>& order) {
        char buffer[small_file];
        for (const int i : order) {
            const std::uint32_t file = open_file(name_of(i), VLT_MODE_READ);
            need(vlt_file_read(file, buffer, small_file) == small_file, "vlt_file_read");
            vlt_file_close(file);
        }
    }
    void at_offsets(std::uint32_t file, const std::vector<std::int64_t>& offsets, bool write) {
        char buffer[random_piece];
        for (const std::int64_t offset : offsets) {
            vlt_file_set_pos(file, offset);
            need(write ? vlt_file_write(file, payload().data(), random_piece) == 1
                       : vlt_file_read(file, buffer, random_piece) == random_piece,
                 "a random transfer");
        }
    }

private:
    static inline int made_ = 0;
    fs::path path_;
    std::int32_t handle_ = 0;
};

/// Files as blobs of one SQLite database, with journal and sync off.
class Blobs {
public:
    explicit Blobs(const char* name) : path_(folder / name) {
        fs::remove(path_);
        need(sqlite3_open(path_.c_str(), &db_) == SQLITE_OK, "sqlite3_open");
        run("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA locking_mode=EXCLUSIVE; PRAGMA page_size=4096;"
            "CREATE TABLE f(name TEXT PRIMARY KEY, data BLOB)");
        sqlite3_prepare_v2(db_, "INSERT OR REPLACE INTO f VALUES(?1,?2)", -1, &insert_, nullptr);
        sqlite3_prepare_v2(db_, "SELECT data FROM f WHERE name=?1", -1, &select_, nullptr);
        sqlite3_prepare_v2(db_, "DELETE FROM f WHERE name=?1", -1, &delete_, nullptr);
    }
    ~Blobs() {
        for (sqlite3_stmt* s : {insert_, select_, delete_}) sqlite3_finalize(s);
        sqlite3_close(db_);
        fs::remove(path_);
    }
    void put_zeros(const std::string& name, std::int64_t size) {
        bind(insert_, name);
        sqlite3_bind_zeroblob64(insert_, 2, static_cast<sqlite3_uint64>(size));
        step(insert_);
    }
    void put(const std::string& name) {
        bind(insert_, name);
        sqlite3_bind_blob(insert_, 2, payload().data(), small_file, SQLITE_STATIC);
        step(insert_);
    }
    void get(const std::string& name) {
        bind(select_, name);
        char buffer[small_file];
        need(sqlite3_step(select_) == SQLITE_ROW, "select");
        std::memcpy(buffer, sqlite3_column_blob(select_, 0), small_file);
        sqlite3_reset(select_);
    }
    void drop(const std::string& name) {
        bind(delete_, name);
        step(delete_);
    }
    /// One stored blob for incremental transfers.
    sqlite3_blob* blob() {
        sqlite3_blob* b = nullptr;
        need(sqlite3_blob_open(db_, "main", "f", "data", 1, 1, &b) == SQLITE_OK, "sqlite3_blob_open");
        return b;
    }

private:
    void run(const char* sql) { need(sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql); }
    void bind(sqlite3_stmt* s, const std::string& name) {
        sqlite3_bind_text(s, 1, name.c_str(), -1, SQLITE_TRANSIENT);
    }
    void step(sqlite3_stmt* s) {
        need(sqlite3_step(s) == SQLITE_DONE, "a statement");
        sqlite3_reset(s);
    }
    fs::path path_;
    sqlite3* db_ = nullptr;
    sqlite3_stmt *insert_ = nullptr, *select_ = nullptr, *delete_ = nullptr;
};

/// The host's own file system, a file each.
class Files {
public:
    Files() : path_(folder / "files") { fs::create_directories(path_); }
    ~Files() { fs::remove_all(path_); }
    void put(const std::string& name) {
        const int fd = ::open((path_ / name).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        need(fd >= 0 && ::write(fd, payload().data(), small_file) == small_file, "writing a file");
        ::close(fd);
    }
    void get(const std::string& name) {
        char buffer[small_file];
        const int fd = ::open((path_ / name).c_str(), O_RDONLY);
        need(fd >= 0 && ::read(fd, buffer, small_file) == small_file, "reading a file");
        ::close(fd);
    }
    void drop(const std::string& name) { ::unlink((path_ / name).c_str()); }

private:
    fs::path path_;
};

void raw_pieces(Raw& raw, std::int64_t size, bool write) {
    for (std::int64_t at = 0; at < size; at += piece) write ? raw.write(at, piece) : raw.read(at, piece);
}

double package_write(std::int64_t size, bool has_room) {
    Package package("w.vlt", has_room ? static_cast<int>(size >> 20) + 2 : 1);
    const std::uint32_t file = package.open_file("big", VLT_MODE_WRITE);
    return seconds_of([&] { package.append(file, size); });
}

void package_read(std::uint32_t file, std::vector<char>& buffer) {
    vlt_file_set_pos_bof(file);
    while (vlt_file_read(file, buffer.data(), piece) > 0) {
    }
}

/// One blob of SQLite that is written and read in pieces.
class LargeBlob {
public:
    LargeBlob(const char* name, std::int64_t size) : blobs_(name), size_(size) {
        blobs_.put_zeros("big", size);
        blob_ = blobs_.blob();
    }
    ~LargeBlob() { sqlite3_blob_close(blob_); }
    void write() {
        for (std::int64_t at = 0; at < size_; at += piece)
            need(sqlite3_blob_write(blob_, payload().data(), piece, static_cast<int>(at)) == SQLITE_OK, "blob write");
    }
    void read(std::vector<char>& buffer) {
        for (std::int64_t at = 0; at < size_; at += piece)
            need(sqlite3_blob_read(blob_, buffer.data(), piece, static_cast<int>(at)) == SQLITE_OK, "blob read");
    }

private:
    Blobs blobs_;
    std::int64_t size_;
    sqlite3_blob* blob_ = nullptr;
};

void large_write_rows(const std::string& mib, std::int64_t size, Raw& raw) {
    const auto blob = [&] {
        LargeBlob target("w.db", size);
        return seconds_of([&] { target.write(); });
    };
    bench::row("W1 " + mib + " in 32 KiB pieces, room is there",
               {timed("raw", [&] { raw_pieces(raw, size, true); }),
                {"library", [&] { return package_write(size, true); }},
                {"SQLite blob", blob}},
               rounds, "1.60");
    const auto raw_growing = [&] {
        Raw grows("g.bin");
        return seconds_of([&] { raw_pieces(grows, size, true); });
    };
    bench::row("W2 " + mib + " into a package that grows",
               {{"raw, growing", raw_growing}, {"library", [&] { return package_write(size, false); }}}, rounds,
               "1.30");
}

void large_read_rows(std::int64_t size, int lookups, Raw& raw) {
    Package package("r.vlt", static_cast<int>(size >> 20) + 2);
    const std::uint32_t file = package.open_file("big", VLT_MODE_WRITE);
    package.append(file, size);
    LargeBlob blob("r.db", size);
    std::vector<char> buffer(piece);
    bench::row(
        "R1 read it in 32 KiB pieces",
        {timed("raw", [&] { raw_pieces(raw, size, false); }), timed("library", [&] { package_read(file, buffer); }),
         timed("SQLite blob", [&] { blob.read(buffer); })},
        rounds, "1.10");
    const auto offsets = random_offsets(size, lookups);
    for (const bool write : {false, true}) {
        const auto raw_random = [&] {
            for (const auto o : offsets) write ? raw.write(o, random_piece) : raw.read(o, random_piece);
        };
        bench::row(write ? "U1 random 4 KiB overwrites" : "R2 random 4 KiB reads",
                   {timed("raw", raw_random), timed("library", [&] { package.at_offsets(file, offsets, write); })},
                   rounds, "1.15");
    }
}

void large_file_rows(std::int64_t size, int lookups) {
    Raw raw("raw.bin", size);
    large_write_rows(std::to_string(size >> 20) + " MiB", size, raw);
    large_read_rows(size, lookups, raw);
}

/// A package with room for that many small files.
int small_files_room(int count) {
    return count * (small_file + 1024) / 1048576 + 2;
}

void raw_small_files(Raw& raw, int count) {
    for (int i = 0; i < count; ++i) raw.write(std::int64_t{i} * small_file, small_file);
}

/// Puts that many files into a store, one that has `put`.
template <typename Store>
void put_all(Store& store, int count) {
    for (int i = 0; i < count; ++i) store.put(name_of(i));
}

template <typename Store>
void get_all(Store& store, const std::vector<int>& order) {
    for (const int i : order) store.get(name_of(i));
}

template <typename Store>
void replace_all(Store& store, int count) {
    for (int i = 0; i < count; ++i) store.drop(name_of(i));
    put_all(store, count);
}

void small_write_row(int count, Raw& raw) {
    const auto library = [&] {
        Package p("s.vlt", small_files_room(count));
        return seconds_of([&] { p.write_small_files(count); });
    };
    const auto blobs = [&] {
        Blobs b("s.db");
        return seconds_of([&] { put_all(b, count); });
    };
    const auto files = [&] {
        Files f;
        return seconds_of([&] { put_all(f, count); });
    };
    bench::row("W3 " + std::to_string(count) + " files of 8 KiB",
               {timed("raw", [&] { raw_small_files(raw, count); }),
                {"library", library},
                {"SQLite blobs", blobs},
                {"files", files}},
               rounds, "3.00");
}

/// Opens and closes a package beside reading the blocks that an opening has to read.
void open_row(Package& package, int count) {
    const int header_blocks = (101 + 4 * small_files_room(count) * 256 + 4095) / 4096;
    const int blocks = header_blocks + count * 550 / 4096 + 1;
    const auto read_blocks = [&] {
        const int fd = ::open(package.path().c_str(), O_RDONLY);
        std::vector<char> image(static_cast<std::size_t>(blocks) * 4096);
        for (int i = 0; i < blocks; ++i)
            need(::pread(fd, image.data() + std::int64_t{i} * 4096, 4096, std::int64_t{i} * 4096) == 4096, "pread");
        ::close(fd);
    };
    const auto open_and_close = [&] {
        package.open();
        package.close();
    };
    package.close();
    bench::row("O1 open and close that package",
               {timed("raw block reads", read_blocks), timed("library", open_and_close)}, rounds * 3, "2.00");
    package.open();
}

void small_file_rows(int count) {
    Raw raw("raw.bin", std::int64_t{count} * small_file);
    small_write_row(count, raw);

    Package package("s.vlt", small_files_room(count));
    package.write_small_files(count);
    Blobs blobs("s.db");
    Files files;
    put_all(blobs, count);
    put_all(files, count);
    const auto order = shuffled(count);
    const auto raw_reads = [&] {
        for (const int i : order) raw.read(std::int64_t{i} * small_file, small_file);
    };
    bench::row(
        "R3 open, read, close them in random order",
        {timed("raw", raw_reads), timed("library", [&] { package.read_small_files(order); }),
         timed("SQLite blobs", [&] { get_all(blobs, order); }), timed("files", [&] { get_all(files, order); })},
        rounds, "1.20");
    const auto library = [&] {
        package.delete_small_files(count);
        package.write_small_files(count);
    };
    bench::row("D1 delete them and write them again",
               {timed("raw", [&] { raw_small_files(raw, count); }), timed("library", library),
                timed("SQLite blobs", [&] { replace_all(blobs, count); }),
                timed("files", [&] { replace_all(files, count); })},
               rounds, "3.50");
    open_row(package, count);
}

// ---- Names that were made to be slow -----------------------------------------------------------------------------

constexpr int name_count = 65536, chunk = 8;

std::uint32_t hash_on(std::uint32_t hash, const std::string& text) {
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    return hash;
}

std::string random_text(std::mt19937& random, int length) {
    std::string text;
    for (int i = 0; i < length; ++i) text += static_cast<char>('a' + random() % 26);
    return text;
}

/// Two texts that take a hash from one state to the same next one.
std::pair<std::string, std::string> collision(std::uint32_t state) {
    std::mt19937 random(9);
    for (std::unordered_map<std::uint32_t, std::string> seen;;) {
        const std::string text = random_text(random, chunk);
        const auto [at, is_new] = seen.emplace(hash_on(state, text), text);
        if (!is_new && at->second != text) return {at->second, text};
    }
}

/// Names that share the hash of the library's name index: one of two texts at each of 16 places.
std::vector<std::string> crafted_names() {
    std::vector<std::string> names(name_count);
    std::uint32_t state = 2166136261u;
    for (int place = 0; 1 << place < name_count; ++place) {
        const auto [a, b] = collision(state);
        for (std::size_t i = 0; i < names.size(); ++i) names[i] += i >> place & 1 ? b : a;
        state = hash_on(state, a);
    }
    return names;
}

/// As many names of the same length.
std::vector<std::string> honest_names() {
    std::mt19937 random(5);
    std::vector<std::string> names(name_count);
    for (std::string& name : names) name = random_text(random, 16 * chunk);
    return names;
}

/// A package with an empty file for each name.
struct NamedFiles {
    explicit NamedFiles(std::vector<std::string> given) : names(std::move(given)), package("n.vlt", 40) {
        made = seconds_of([&] {
            for (const std::string& name : names) vlt_file_close(package.open_file(name, VLT_MODE_WRITE));
        });
    }
    /// Opens the package and looks the first names up.
    double look_up(int count) {
        package.close();
        return seconds_of([&] {
            package.open();
            for (int i = 0; i < count; ++i) package.need_file(names[static_cast<std::size_t>(i)]);
        });
    }
    std::vector<std::string> names;
    Package package;
    double made = 0;
};

void name_rows() {
    NamedFiles honest(honest_names()), crafted(crafted_names());
    const std::string n = std::to_string(name_count);
    bench::print_row("N1 make " + n + " files", honest.made, "names that share a hash", crafted.made / honest.made,
                     "3.00");
    for (const int count : {1, name_count})
        bench::row(count == 1 ? "N2 find the first of them after opening" : "N3 find each of them after opening",
                   {{"honest names", [&, count] { return honest.look_up(count); }},
                    {"names that share a hash", [&, count] { return crafted.look_up(count); }}},
                   rounds, "3.00");
}

/// How much dearer one operation is at the larger of two sizes, for the library and for the raw calls: caches and the
/// host's file system make both dearer.
void growth_row(const char* work, const std::vector<Contender>& at_small, double small_count,
                const std::vector<Contender>& at_large, double large_count) {
    const auto small = bench::medians(at_small, 5), large = bench::medians(at_large, 5);
    for (std::size_t i = 0; i < small.size(); ++i)
        bench::print_row(i == 0 ? work : "", small[i], at_small[i].name,
                         (large[i] / large_count) / (small[i] / small_count), i == 0 ? "1.30" : "");
}

/// A large file in a package and in a raw file.
struct LargeFile {
    explicit LargeFile(std::int64_t bytes)
        : size(bytes),
          package("l.vlt", static_cast<int>(bytes >> 20) + 2),
          raw("l.bin", bytes),
          buffer(piece),
          offsets(random_offsets(bytes, 20000)),
          file(package.open_file("big", VLT_MODE_WRITE)) {
        package.append(file, size);
    }
    std::vector<Contender> read() {
        return {timed("library, larger", [this] { package_read(file, buffer); }),
                timed("raw, larger", [this] { raw_pieces(raw, size, false); })};
    }
    std::vector<Contender> read_random() {
        const auto raw_random = [this] {
            for (const auto o : offsets) raw.read(o, random_piece);
        };
        return {timed("library, larger", [this] { package.at_offsets(file, offsets, false); }),
                timed("raw, larger", raw_random)};
    }
    std::int64_t size;
    Package package;
    Raw raw;
    std::vector<char> buffer;
    std::vector<std::int64_t> offsets;
    std::uint32_t file;
};

/// Many small files in a package and in a raw file.
struct SmallFiles {
    explicit SmallFiles(int files)
        : count(files), order(shuffled(files)), raw("f.bin", std::int64_t{files} * small_file) {}
    std::vector<Contender> write() {
        const auto library = [this] {
            Package p("f.vlt", small_files_room(count));
            return seconds_of([&] { p.write_small_files(count); });
        };
        return {{"library, larger", library}, timed("raw, larger", [this] { raw_small_files(raw, count); })};
    }
    std::vector<Contender> read(Package& p) {
        const auto raw_reads = [this] {
            for (const int i : order) raw.read(std::int64_t{i} * small_file, small_file);
        };
        return {timed("library, larger", [this, &p] { p.read_small_files(order); }), timed("raw, larger", raw_reads)};
    }
    int count;
    std::vector<int> order;
    Raw raw;
};

void growth_rows(bool quick) {
    const std::int64_t small = 16 << 20, large = (quick ? 256LL : 1024LL) << 20;
    const auto write = [](std::int64_t size) {
        return std::vector<Contender>{{"library, larger", [size] { return package_write(size, true); }}};
    };
    growth_row("growth of W1", write(small), static_cast<double>(small), write(large), static_cast<double>(large));
    {
        LargeFile a(small);
        LargeFile b(large);
        growth_row("growth of R1", a.read(), static_cast<double>(small), b.read(), static_cast<double>(large));
        growth_row("growth of R2", a.read_random(), 1, b.read_random(), 1);
    }
    SmallFiles few(1000), many(quick ? 10000 : 100000);
    growth_row("growth of W3", few.write(), few.count, many.write(), many.count);
    Package p("p.vlt", small_files_room(few.count)), q("q.vlt", small_files_room(many.count));
    p.write_small_files(few.count);
    q.write_small_files(many.count);
    growth_row("growth of R3", few.read(p), few.count, many.read(q), many.count);
}

/// Speed-up of two threads over one, in wall time: the same work twice, one after the other or side by side.
template <typename Work>
double speed_up(Work work) {
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        double start = bench::wall_seconds();
        work(0);
        work(1);
        const double one = bench::wall_seconds() - start;
        start = bench::wall_seconds();
        std::thread other([&] { work(1); });
        work(0);
        other.join();
        ratios.push_back(one / (bench::wall_seconds() - start));
    }
    return bench::median(ratios);
}

void thread_row() {
    const std::int64_t size = 64 << 20;
    Raw raw[2] = {Raw("t0.bin", size), Raw("t1.bin", size)};
    Package package[2] = {{"t0.vlt", 66}, {"t1.vlt", 66}};
    std::uint32_t file[2];
    for (int i = 0; i < 2; ++i) {
        file[i] = package[i].open_file("big", VLT_MODE_WRITE);
        package[i].append(file[i], size);
    }
    const double limit = speed_up([&](int i) { raw_pieces(raw[i], size, false); });
    const double reached = speed_up([&](int i) {
        std::vector<char> buffer(piece);
        vlt_file_set_pos_bof(file[i]);
        while (vlt_file_read(file[i], buffer.data(), piece) > 0) {
        }
    });
    std::printf("two threads on two packages: raw speed-up %.2f, library %.2f, share reached %.2f (goal 0.90)\n",
                limit, reached, reached / limit);
}

void memory_row() {
    Package package("m.vlt", 258);
    const std::uint32_t file = package.open_file("big", VLT_MODE_WRITE);
    const long before = bench::resident_kib();
    package.append(file, 256 << 20);
    std::printf("memory taken while a 256 MiB file was written: %ld KiB (goal 4096)\n",
                bench::resident_kib() - before);
}

}  // namespace

int main(int argc, char** argv) {
    bool quick = false;
    folder = fs::temp_directory_path() / ("store_bench." + std::to_string(::getpid()));
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "quick") == 0)
            quick = true;
        else
            folder = fs::path(argv[i]) / ("store_bench." + std::to_string(::getpid()));
    }
    if (quick) rounds = 3;
    fs::create_directories(folder);
    name_of(quick ? 10000 : 100000);
    memory_row();
    bench::print_heading("reference");
    large_file_rows(quick ? 64 << 20 : 256 << 20, quick ? 20000 : 100000);
    small_file_rows(quick ? 2000 : 10000);
    name_rows();
    growth_rows(quick);
    thread_row();
    fs::remove_all(folder);
}
