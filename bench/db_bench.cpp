// SPDX-License-Identifier: MIT
// The offline database beside a plain loader with hash maps (the practical limit) and SQLite in memory.
//
//   db_bench [quick] [directory of a database, such as the Debian graph of the demo]

#include "measure.h"
#include "offline.h"
#include "sqlite_database.h"
#include "tests/support/colliding_values.h"

namespace fs = std::filesystem;
using bench::Contender;
using bench::need;
using bench::seconds_of;
using bench::Sqlite;
using bench::timed;

namespace {

fs::path folder;
int rounds = 5;

/// A loaded database of the library.
class Library {
public:
    Library() { KOfflineDb_Constructor(&db); }
    explicit Library(const fs::path& path) : Library() { load(path); }
    Library(const Library&) = delete;
    ~Library() { KOfflineDb_Destructor(&db); }
    void load(const fs::path& path) { need(KOfflineDb_Load(&db, path.c_str()) == 1, "KOfflineDb_Load"); }
    KOfflineDb db;
};

/// Prints the library's multiple of the plain loader, and how many times faster than SQLite it is.
void database_row(const std::string& work, const std::vector<Contender>& plain_library_sqlite, int n,
                  const std::string& goal) {
    const auto m = bench::medians(plain_library_sqlite, n);
    bench::print_row(work, m[0], "library", m[1] / m[0], goal);
    if (m.size() > 2)
        std::printf("%-44s %11s  %-26s %8.1fx %9s\n", "", "", "  faster than SQLite", m[2] / m[1], "5-6");
}

std::vector<std::string> random_keys(int items, int count, const char* format) {
    std::mt19937 random(5);
    std::vector<std::string> keys;
    char text[64];
    for (int i = 0; i < count; ++i) {
        const auto nid = static_cast<unsigned>(1 + random() % static_cast<unsigned>(items));
        std::snprintf(text, sizeof text, format, format[1] == 'd' ? nid : nid * 2654435761u);
        keys.push_back(text);
        if (i % 2)
            for (char& c : keys.back()) c = static_cast<char>(std::toupper(c));
    }
    return keys;
}

/// Wall time of the first search in a database just loaded, the median over several loads. The code has run before,
/// in another database.
double first_search(const fs::path& data) {
    Library other(data);
    std::int32_t found = 0;
    std::vector<double> times;
    for (int i = 0; i < 5; ++i) {
        Library fresh(data);
        KOfflineTable_Search(KOfflineDb_GetTable_BITM(&other.db), 0, "1", &found, 1);
        const double start = bench::wall_seconds();
        need(KOfflineTable_Search(KOfflineDb_GetTable_BITM(&fresh.db), 0, "777", &found, 1) == 1, "a first search");
        times.push_back(bench::wall_seconds() - start);
    }
    return bench::median(times);
}

/// A kind of search: the same one on the library's table, the plain loader's map and SQLite.
struct Search {
    const char* work;
    KOfflineTable* table;
    int table_slot, field;
    const char* format;
    const char* select;
    const char* goal;
};

/// Prints the row of a search for these keys; returns the library's seconds in the last round.
double search_row(const Search& row, const std::string& n, const std::vector<std::string>& keys,
                  const bench::FieldMap& map, Sqlite& sqlite) {
    sqlite3_stmt* select = sqlite.prepare(row.select);
    long sum = 0;
    std::int32_t found[64];
    double last = 0;
    const auto plain = [&] {
        for (const auto& k : keys)
            for (int r = map.find(k); r >= 0; r = map.next[static_cast<std::size_t>(r)]) sum += r;
    };
    const auto library = [&] {
        for (const auto& k : keys) sum += KOfflineTable_Search(row.table, row.field, k.c_str(), found, 64);
    };
    const auto in_sqlite = [&] {
        for (const auto& k : keys) sum += sqlite.count(select, k.c_str());
    };
    const auto seconds = [&] {
        last = seconds_of(library);
        return last;
    };
    database_row(row.work + n, {timed("plain", plain), {"library", seconds}, timed("SQLite", in_sqlite)}, rounds,
                 row.goal);
    need(sum != 0, "a search");
    return last;
}

void search_rows(const std::string& n, int items, const fs::path& data, const char* const (&goals)[2]) {
    bench::PlainProduct plain;
    plain.load(data);
    Library library(data);
    Sqlite sqlite;
    sqlite.load(data);
    KOfflineTable* bitm = KOfflineDb_GetTable_BITM(&library.db);
    KOfflineTable* bbom = KOfflineDb_GetTable_BBOM(&library.db);
    const Search rows[] = {
        {"Q1 search by NID, ", bitm, 0, 0, "%d", "SELECT rowid FROM bitm WHERE NID=?1", goals[0]},
        {"Q2 search by CCODE, ", bitm, 0, 1, "Part-%08X", "SELECT rowid FROM bitm WHERE CCODE=?1", goals[1]},
        {"Q3 children of a node, ", bbom, 1, 1, "%d", "SELECT rowid FROM bbom WHERE NPID=?1", "1.50"},
    };
    const int searches = std::max(200000, items / 4);
    for (const Search& row : rows) {
        const double all = search_row(row, n, random_keys(items, searches, row.format),
                                      plain.tables[row.table_slot].map(row.field), sqlite);
        if (&row != rows) continue;
        const double first = first_search(data), later = all / searches;
        std::printf("F1 first search after a load: %.2f us, later ones %.3f us: %.0fx (goal 20)\n", first * 1e6,
                    later * 1e6, first / later);
    }
}

void load_rows(const std::string& n, const fs::path& data, bool with_sqlite) {
    bench::PlainProduct plain;
    const auto load_plain = [&] { bench::PlainProduct().load(data); };
    const auto load_library = [&] { Library loaded(data); };
    const auto load_sqlite = [&] { Sqlite().load(data); };
    std::vector<Contender> contenders = {timed("plain", load_plain), timed("library", load_library)};
    if (with_sqlite) contenders.push_back(timed("SQLite", load_sqlite));
    database_row("L1 load with 15 indexes, " + n, contenders, rounds, "1.30");

    plain.load(data);
    Library library(data);
    const fs::path out = folder / "out";
    fs::create_directories(out);
    const auto save = [&] { need(KOfflineDb_SaveAs(&library.db, out.c_str()) == 1, "KOfflineDb_SaveAs"); };
    database_row("S1 save, " + n, {timed("plain", [&] { plain.save(out); }), timed("library", save)}, rounds, "1.30");
}

void add_row(const std::string& n, int items, const fs::path& data) {
    Library library(data);
    Sqlite sqlite;
    sqlite.load(data);
    sqlite3_stmt* insert = sqlite.prepare("INSERT INTO bitm VALUES(?1,?2,'New','M')");
    sqlite3_stmt* select = sqlite.prepare("SELECT rowid FROM bitm WHERE NID=?1");
    KOfflineTable* table = KOfflineDb_GetTable_BITM(&library.db);
    int next = items, next_sqlite = items;
    const auto add_to_sqlite = [&] {
        for (int i = 0; i < 1000; ++i) {
            const std::string nid = std::to_string(++next_sqlite), code = "New-" + nid;
            sqlite3_bind_text(insert, 1, nid.c_str(), -1, SQLITE_STATIC);
            sqlite3_bind_text(insert, 2, code.c_str(), -1, SQLITE_STATIC);
            sqlite.step(insert);
            need(sqlite.count(select, nid.c_str()) == 1, "finding it");
        }
    };
    const auto add_to_library = [&] {
        for (int i = 0; i < 1000; ++i) {
            const std::string nid = std::to_string(++next), line = nid + "\tNew-" + nid + "\tNew\tM";
            need(KOfflineTable_AddRec(table, line.c_str(), "\t") >= 0, "KOfflineTable_AddRec");
            need(KOfflineDb_GetRecByNID_BITM(&library.db, next) >= 0, "finding it");
        }
    };
    const auto m = bench::medians({timed("SQLite", add_to_sqlite), timed("library", add_to_library)}, rounds);
    bench::print_row("A1 1000 records added and found, " + n, m[0], "library, to SQLite", m[1] / m[0], "6.00");
}

void delete_row(const std::string& n, const fs::path& data) {
    Library library(data);
    KOfflineTable* table = KOfflineDb_GetTable_BITM(&library.db);
    const auto records = static_cast<std::size_t>(KOfflineTable_GetRecsCount(table));
    std::vector<void*> pointers(records);
    std::vector<int> index[2] = {std::vector<int>(records), std::vector<int>(records)};
    const auto move = [&] {
        for (int i = 0; i < 20; ++i) {
            std::memmove(pointers.data(), pointers.data() + 1, (records - 1) * sizeof(void*));
            for (auto& x : index) std::memmove(x.data(), x.data() + 1, (records - 1) * sizeof(int));
        }
    };
    const auto remove = [&] {
        for (int i = 0; i < 20; ++i) need(KOfflineTable_DelRec(table, 0) == 1, "KOfflineTable_DelRec");
    };
    database_row("DelRec of record 0, " + n, {timed("memmove", move), timed("library", remove)}, rounds, "3.00");
}

/// The median time to index a field of records with these values.
double index_seconds(int records, const std::function<int(int)>& value) {
    Library library;
    KOfflineTable* table = KOfflineDb_GetTable_BITM(&library.db);
    KOfflineTable_AddFld(table, "V");
    char text[16];
    for (int i = 0; i < records; ++i) {
        std::snprintf(text, sizeof text, "%09d", value(i));
        need(KOfflineTable_AddRec(table, text, "\t") == i, "KOfflineTable_AddRec");
    }
    const auto index = [&] { need(KOfflineTable_LoadIdx(table, "V") == 1, "KOfflineTable_LoadIdx"); };
    return bench::medians({timed("library", index)}, 3)[0];
}

/// Indexes over values that are hard for a quicksort.
void worst_rows(int records) {
    std::mt19937 random(9);
    std::vector<int> any(static_cast<std::size_t>(records));
    for (int& v : any) v = static_cast<int>(random() & 0x3FFFFFFF);
    const auto one_of = [&](int values) {
        return [&any, values](int i) { return any[static_cast<std::size_t>(i)] % values; };
    };
    const struct {
        const char* name;
        std::function<int(int)> value;
    } shapes[] = {{"random distinct values", one_of(1 << 30)},
                  {"1 value", one_of(1)},
                  {"2 values", one_of(2)},
                  {"3 values", one_of(3)},
                  {"10 values", one_of(10)},
                  {"1000 values", one_of(1000)},
                  {"sorted", [](int i) { return i; }},
                  {"reversed", [=](int i) { return records - i; }},
                  {"organ-pipe", [=](int i) { return i < records / 2 ? i : records - i; }}};
    double reference = 0;
    for (const auto& shape : shapes) {
        const double seconds = index_seconds(records, shape.value);
        if (reference == 0) reference = seconds;
        bench::print_row("index over " + std::to_string(records) + ": " + shape.name, reference, "library",
                         seconds / reference, "3.00");
    }
}

/// Writes a database whose items have these texts as NIDs, each of them the child of one line.
void write_hostile(const fs::path& path, const std::vector<std::string>& values) {
    fs::create_directories(path);
    bench::write_schema(path);
    bench::TextFile bitm(path / "bitm.txt"), bbom(path / "bbom.txt");
    int line = 0;
    for (const std::string& value : values) {
        bitm.line("%s\tcode", value.c_str());
        bbom.line("%d\t1\t%s\t1", ++line, value.c_str());
    }
}

/// Time to load a database and to look every item up among the children, for values made to be slow.
void hostile_rows(int count, const char* n) {
    const auto repeated = [&](std::size_t length, bool alike) {
        std::vector<std::string> values;
        for (int i = 0; i < count; ++i) {
            std::string value = std::to_string(alike ? 7 : i + 1000000);
            values.push_back(std::string(length, i % 2 && length ? 'y' : 'x') + value);
        }
        return values;
    };
    const std::size_t text = 400;
    std::vector<std::string> random = repeated(0, false);
    std::mt19937 letters(4);
    for (std::string& value : random)
        while (value.size() < text + 7) value.insert(value.begin(), static_cast<char>('a' + letters() % 26));
    struct Shape {
        const char* name;
        std::vector<std::string> honest, hostile;
    };
    std::vector<Shape> shapes;
    const auto add = [&](const char* name, auto honest, auto hostile) {
        shapes.push_back({name, std::move(honest), std::move(hostile)});
    };
    const auto n_values = static_cast<std::size_t>(count);
    add("sharing a slot and a tag", ValuesOfEightBytes(n_values, false), ValuesOfEightBytes(n_values, true));
    add("that are one value", ValuesOfEightBytes(n_values, false), repeated(6, true));
    if (count < 500000) add("alike for 400 bytes", std::move(random), repeated(text, false));
    for (const Shape& shape : shapes) {
        write_hostile(folder / "honest", shape.honest);
        write_hostile(folder / "hostile", shape.hostile);
        const auto work = [&](const char* name) {
            return seconds_of([&] {
                Library library(folder / name);
                KOfflineDb_GetNoParentNodes(&library.db, nullptr, 0);
            });
        };
        const auto m =
            bench::medians({{"honest", [&] { return work("honest"); }}, {"", [&] { return work("hostile"); }}}, 3);
        bench::print_row(std::string("H1 ") + n + " values " + shape.name, m[0], "library, to honest values",
                         m[1] / m[0], "3.00");
    }
}

void memory_row(const std::string& n, const fs::path& data) {
    const long before = bench::resident_kib() / 1024;
    Library library(data);
    std::printf("memory after loading %s items: %ld MiB (goal 480 for 1M)\n", n.c_str(),
                bench::resident_kib() / 1024 - before);
}

}  // namespace

int main(int argc, char** argv) {
    bool quick = false;
    fs::path graph;
    for (int i = 1; i < argc; ++i) std::strcmp(argv[i], "quick") == 0 ? void(quick = true) : void(graph = argv[i]);
    folder = fs::temp_directory_path() / ("db_bench." + std::to_string(::getpid()));
    if (quick) rounds = 3;
    struct Size {
        const char* name;
        int items;
        const char* goals[2];
    };
    std::vector<Size> sizes = {{"10k", 10000, {"1.30", "1.60"}}, {"100k", 100000, {"0.80", "1.40"}}};
    if (!quick) sizes.push_back({"1M", 1000000, {"1.00", "1.40"}});
    for (const Size& size : sizes) bench::write_product(folder / size.name, size.items);
    memory_row(sizes.back().name, folder / sizes.back().name);
    bench::print_heading("reference");
    for (const Size& size : sizes) {
        load_rows(size.name, folder / size.name, true);
        search_rows(size.name, size.items, folder / size.name, size.goals);
    }
    if (!graph.empty()) load_rows("Debian graph", graph, false);
    add_row("100k", 100000, folder / "100k");
    delete_row(sizes.back().name, folder / sizes.back().name);
    worst_rows(quick ? 100000 : 1000000);
    hostile_rows(120000, "120k");
    if (!quick) hostile_rows(1000000, "1M");
    fs::remove_all(folder);
}
