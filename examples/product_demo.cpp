// SPDX-License-Identifier: MIT
// A product database from end to end: packs one with its documents, prints its bill of material, finds and adds
// items, saves, reloads, and takes the documents out again. Then the same on a database of real size, with timings.
//
//     product_demo PRODUCT WORK [LARGE]
//
// PRODUCT is a database folder with its documents in PRODUCT/docs, LARGE another database folder. What is made goes
// into WORK, a new or an empty folder. Ends with 0 when everything came out as it should, with 1 otherwise.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "offline.h"
#include "vlt.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kDatabaseFiles[] = {"kdbmain.txt", "bitm.txt",  "bbom.txt",  "bdwg.txt",
                                          "bitdwg.txt",  "bcapp.txt", "bitcap.txt"};

// ---- Printing and checking -----------------------------------------------------------------------------------

int failures = 0;

/// Prints what was done, and whether it came out as it should.
bool check(bool good, const std::string& what) {
    std::printf("  %s %s\n", good ? "✓" : "✗ FAILED:", what.c_str());
    if (!good) ++failures;
    return good;
}

void title(const char* text) {
    std::printf("\n%s\n", text);
}

/// Fills or cuts a text to a width, counting characters of UTF-8 rather than bytes.
std::string padded(std::string text, std::size_t width) {
    std::size_t characters = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((static_cast<unsigned char>(text[i]) & 0xC0) == 0x80) continue;
        if (characters++ == width) text.resize(i);
    }
    return characters < width ? text.append(width - characters, ' ') : text;
}

/// Milliseconds since it was made.
class Stopwatch {
public:
    double milliseconds() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start_).count();
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

std::string contents(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// ---- A database ----------------------------------------------------------------------------------------------

/// A database for one scope.
class Database {
public:
    Database() { KOfflineDb_Constructor(&record_); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database() { KOfflineDb_Destructor(&record_); }

    operator KOfflineDb*() { return &record_; }

    bool load(const fs::path& path) {
        const bool loaded = KOfflineDb_Load(&record_, path.string().c_str()) == 1;
        return check(loaded, "load " + path.filename().string() + (loaded ? "" : ": " + error()));
    }

    bool save() {
        const bool saved = KOfflineDb_Save(&record_) == 1;
        return check(saved, "save" + (saved ? "" : ": " + error()));
    }

    std::string error() const { return std::to_string(record_.error_code) + " " + record_.error_text; }

private:
    KOfflineDb record_;
};

std::string value(KOfflineTable* table, std::int32_t rec, std::int32_t field) {
    const char* text = KOfflineTable_GetFldValue(table, rec, field);
    return text ? text : "";
}

/// The matching records, in record order.
std::vector<std::int32_t> search(KOfflineTable* table, std::int32_t field, const std::string& key) {
    std::vector<std::int32_t> recs(16);
    std::int32_t found;
    while ((found = KOfflineTable_Search(table, field, key.c_str(), recs.data(),
                                         static_cast<std::int32_t>(recs.size()))) >
           static_cast<std::int32_t>(recs.size())) {
        recs.resize(static_cast<std::size_t>(found));
    }
    recs.resize(static_cast<std::size_t>(std::max(found, 0)));
    std::sort(recs.begin(), recs.end());
    return recs;
}

/// "BK-700  City bicycle"
std::string item_text(KOfflineDb* db, std::int32_t rec) {
    KOfflineTable* items = KOfflineDb_GetTable_BITM(db);
    return value(items, rec, KOfflineDb_GetFld_BITM_CCODE(db)) + "  " +
           value(items, rec, KOfflineDb_GetFld_BITM_CNAME(db));
}

// ---- The indented bill of material ---------------------------------------------------------------------------

/// Prints items and what they consist of. Data may be cyclic: an item is not followed below itself.
class TreePrinter {
public:
    TreePrinter(KOfflineDb* db, std::size_t max_depth, std::size_t max_lines)
        : db_(db), lines_(KOfflineDb_GetTable_BBOM(db)), max_depth_(max_depth), left_(max_lines) {}

    void print() {
        std::printf("\n  %s %8s %8s\n", padded("", 64).c_str(), "in one", "in all");
        std::int32_t root = -1;
        if (KOfflineDb_GetRootNodes(db_, &root, 1) >= 1) print_item(root, "", "", 1, 1);
        if (cycles_) std::printf("  (↺ an item below itself, %zu times: not followed)\n", cycles_);
        if (left_out_) std::printf("  (%zu further items below the depth or the length of this print)\n", left_out_);
    }

private:
    void print_item(std::int32_t rec, const std::string& lead, const std::string& below, double count, double total) {
        if (left_ == 0) {
            ++left_out_;
            return;
        }
        --left_;
        const bool again = std::find(path_.begin(), path_.end(), rec) != path_.end();
        const std::string text = lead + item_text(db_, rec) + (again ? "  ↺" : "");
        std::printf("  %s %8g %8g\n", padded(text, 64).c_str(), count, total);
        if (again) {
            ++cycles_;
        } else {
            path_.push_back(rec);
            print_parts(rec, below, total);
            path_.pop_back();
        }
    }

    void print_parts(std::int32_t rec, const std::string& below, double total) {
        const std::string nid = std::to_string(KOfflineDb_GetNIDByRec_BITM(db_, rec));
        const std::vector<std::int32_t> parts = search(lines_, KOfflineDb_GetFld_BBOM_NPID(db_), nid);
        if (path_.size() > max_depth_) {
            left_out_ += parts.size();
            return;
        }
        for (const std::int32_t line : parts) {
            const bool last = line == parts.back();
            const double count = std::atof(value(lines_, line, KOfflineDb_GetFld_BBOM_FCOUNT(db_)).c_str());
            const int child = std::atoi(value(lines_, line, KOfflineDb_GetFld_BBOM_NCID(db_)).c_str());
            const std::int32_t child_rec = KOfflineDb_GetRecByNID_BITM(db_, child);
            if (child_rec < 0) continue;
            print_item(child_rec, below + (last ? "└─ " : "├─ "), below + (last ? "   " : "│  "), count,
                       count * total);
        }
    }

    KOfflineDb* db_;
    KOfflineTable* lines_;
    std::size_t max_depth_, left_, left_out_ = 0, cycles_ = 0;
    std::vector<std::int32_t> path_;
};

// ---- The small product ---------------------------------------------------------------------------------------

bool store(std::int32_t package, const fs::path& source) {
    const std::string bytes = contents(source);
    const std::string name = source.filename().string();
    const std::int32_t opened = vlt_file_open(package, name.c_str(), VLT_MODE_WRITE, 0, 1, nullptr);
    if (opened < 1) return false;
    const auto file = static_cast<std::uint32_t>(opened);
    const std::int32_t written = vlt_file_write(file, bytes.data(), static_cast<std::int32_t>(bytes.size()));
    return vlt_file_close(file) == 1 && written == 1;
}

/// A new package with the seven files of the database in `folder`.
bool pack_database(const fs::path& folder, const fs::path& target) {
    if (vlt_package_create(target.string().c_str(), 0, 0, nullptr, nullptr) != 1) return false;
    const std::int32_t package = vlt_package_open(target.string().c_str(), 0, 0, nullptr, nullptr, nullptr, nullptr);
    if (package < 1) return false;
    bool stored = true;
    for (const char* name : kDatabaseFiles) stored = stored && store(package, folder / name);
    return vlt_package_close(package) == 1 && stored;
}

/// The documents that drawings and process plans refer to.
std::vector<std::string> documents(KOfflineDb* db) {
    std::vector<std::string> names;
    const auto collect = [&](KOfflineTable* table, std::int32_t field) {
        for (std::int32_t rec = 0; rec < KOfflineTable_GetRecsCount(table); ++rec) {
            names.push_back(value(table, rec, field));
        }
    };
    collect(KOfflineDb_GetTable_BDWG(db), KOfflineDb_GetFld_BDWG_CFILE(db));
    collect(KOfflineDb_GetTable_BCAPP(db), KOfflineDb_GetFld_BCAPP_CFILE(db));
    return names;
}

void attach_documents(KOfflineDb* db, const fs::path& folder) {
    std::size_t attached = 0;
    const std::vector<std::string> names = documents(db);
    for (const std::string& name : names) {
        attached += KOfflineDb_SavePackageFile(db, (folder / name).string().c_str(), name.c_str()) == 1 &&
                    KOfflineDb_CheckPackageFileExist(db, name.c_str()) == 1;
    }
    check(attached == names.size(), "attach " + std::to_string(attached) + " documents");
}

void extract_documents(KOfflineDb* db, const fs::path& folder, const fs::path& target) {
    fs::create_directories(target);
    for (const std::string& name : documents(db)) {
        const bool taken = KOfflineDb_GetPackageFile(db, name.c_str(), (target / name).string().c_str()) == 1;
        const std::string bytes = contents(target / name);
        check(taken && bytes == contents(folder / name),
              padded(name, 20) + std::to_string(bytes.size()) + " bytes, as they went in");
    }
}

/// Finds items by codes as people type them.
void find_items(KOfflineDb* db, const std::vector<std::string>& codes) {
    for (const std::string& code : codes) {
        const std::int32_t nid = KOfflineDb_GetNIDByCCODE(db, code.c_str());
        const std::int32_t rec = KOfflineDb_GetRecByNID_BITM(db, nid);
        check(rec >= 0, padded(code, 8) + " → item " + std::to_string(nid) + ": " + item_text(db, rec));
    }
}

/// Adds an item and the line that makes it part of the root item.
void add_item(KOfflineDb* db, const char* code, const char* name, const char* count) {
    KOfflineTable* items = KOfflineDb_GetTable_BITM(db);
    const std::int32_t item = KOfflineTable_AddRec(items, "", db->separator);
    KOfflineTable_SetFldValue(items, item, KOfflineDb_GetFld_BITM_CCODE(db), code);
    KOfflineTable_SetFldValue(items, item, KOfflineDb_GetFld_BITM_CNAME(db), name);
    KOfflineTable* lines = KOfflineDb_GetTable_BBOM(db);
    const std::int32_t line = KOfflineTable_AddRec(lines, "", db->separator);
    const std::string parent = std::to_string(db->root_nid);
    const std::string child = std::to_string(KOfflineDb_GetNIDByRec_BITM(db, item));
    KOfflineTable_SetFldValue(lines, line, KOfflineDb_GetFld_BBOM_NPID(db), parent.c_str());
    KOfflineTable_SetFldValue(lines, line, KOfflineDb_GetFld_BBOM_NCID(db), child.c_str());
    check(KOfflineTable_SetFldValue(lines, line, KOfflineDb_GetFld_BBOM_FCOUNT(db), count) == 1,
          "add " + item_text(db, item) + ", item " + child + ", to item " + parent);
}

void show_small_product(const fs::path& product, const fs::path& work) {
    const fs::path package = work / "product.vlt";
    title("A package that holds a database and its documents");
    check(pack_database(product, package), "pack the seven files of " + product.filename().string());
    {
        Database db;
        if (!db.load(package)) return;
        attach_documents(db, product / "docs");
        title("Its bill of material");
        TreePrinter(db, 9, 200).print();
        title("Items found by their codes, whatever the letter case");
        find_items(db, {"bk-700", "wh-230", "Cm-900"});
        title("A change, saved and loaded again");
        add_item(db, "EQ-830", "Basket, 20 l / front", "1");
        db.save();
    }
    Database db;
    if (!db.load(package)) return;
    find_items(db, {"eq-830"});
    TreePrinter(db, 1, 200).print();
    title("The documents, out of the package again");
    extract_documents(db, product / "docs", work / "documents");
}

// ---- The database of real size -------------------------------------------------------------------------------

constexpr int kSearches = 1000000;

/// Numbers that look random and are the same in every run.
class Numbers {
public:
    std::int32_t below(std::int32_t end) {
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        return static_cast<std::int32_t>((state_ >> 33) % static_cast<std::uint64_t>(end));
    }

private:
    std::uint64_t state_ = 1;
};

void time_searches_by_nid(KOfflineDb* db) {
    const std::int32_t items = KOfflineTable_GetRecsCount(KOfflineDb_GetTable_BITM(db));
    Numbers numbers;
    std::vector<std::int32_t> nids(kSearches);
    for (std::int32_t& nid : nids) nid = 1 + numbers.below(items);
    int found = 0;
    const Stopwatch watch;
    for (const std::int32_t nid : nids) found += KOfflineDb_GetRecByNID_BITM(db, nid) >= 0;
    const double taken = watch.milliseconds();
    check(found == kSearches, "one million searches by NID: " + std::to_string(taken).substr(0, 6) + " ms");
}

/// The codes of random items, every second letter in the other case.
std::vector<std::string> some_codes(KOfflineDb* db) {
    KOfflineTable* table = KOfflineDb_GetTable_BITM(db);
    const std::int32_t items = KOfflineTable_GetRecsCount(table);
    Numbers numbers;
    std::vector<std::string> codes(kSearches);
    for (std::string& code : codes) {
        code = value(table, numbers.below(items), KOfflineDb_GetFld_BITM_CCODE(db));
        for (std::size_t i = 0; i < code.size(); i += 2) {
            if (code[i] >= 'a' && code[i] <= 'z') code[i] = static_cast<char>(code[i] - 'a' + 'A');
        }
    }
    return codes;
}

void time_searches_by_code(KOfflineDb* db) {
    const std::vector<std::string> codes = some_codes(db);
    int found = 0;
    const Stopwatch watch;
    for (const std::string& code : codes) found += KOfflineDb_GetNIDByCCODE(db, code.c_str()) > 0;
    const double taken = watch.milliseconds();
    check(found == kSearches, "one million searches by CCODE: " + std::to_string(taken).substr(0, 6) + " ms");
}

void time_save(Database& db, const fs::path& from, const fs::path& to) {
    fs::create_directories(to);
    const Stopwatch watch;
    const bool saved = KOfflineDb_SaveAs(db, to.string().c_str()) == 1;
    const double taken = watch.milliseconds();
    check(saved, "save: " + std::to_string(taken).substr(0, 6) + " ms");
    for (const char* name : {"bitm.txt", "bbom.txt"}) {
        check(contents(from / name) == contents(to / name), std::string(name) + " is as it was, byte for byte");
    }
}

void show_large_database(const fs::path& large, const fs::path& work) {
    title("A database of real size");
    Database db;
    const Stopwatch watch;
    if (!db.load(large)) return;
    std::printf("    %d items, %d lines: %.1f ms\n", KOfflineTable_GetRecsCount(KOfflineDb_GetTable_BITM(db)),
                KOfflineTable_GetRecsCount(KOfflineDb_GetTable_BBOM(db)), watch.milliseconds());
    time_searches_by_nid(db);
    time_searches_by_code(db);
    time_save(db, large, work / "saved");
    TreePrinter(db, 3, 40).print();
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 3) {
        std::fputs("product_demo PRODUCT WORK [LARGE]\n", stderr);
        return 2;
    }
    const fs::path work = arguments[2];
    fs::create_directories(work);
    if (!fs::is_empty(work)) {
        std::fprintf(stderr, "%s is not empty, and nothing of it is overwritten\n", arguments[2]);
        return 2;
    }
    show_small_product(arguments[1], work);
    if (count > 3) show_large_database(arguments[3], work);
    std::printf("\n%s\n",
                failures ? "Something did not come out as it should." : "Everything came out as it should.");
    return failures ? 1 : 0;
}
