// SPDX-License-Identifier: MIT
// The offline database beside a plain loader with hash maps (the practical limit) and SQLite in memory.
//
//   db_bench [quick] [directory of a database, such as the Debian graph of the demo]

#include <sqlite3.h>

#include <unistd.h>

#include "measure.h"
#include "offline.h"
#include "plain_loader.h"

namespace fs = std::filesystem;
using bench::Contender;
using bench::seconds_of;

namespace {

fs::path folder;
int rounds = 5;

void need(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "db_bench: %s failed\n", what);
    std::exit(1);
}

long resident_mib() {
    long pages = 0, resident = 0;
    if (std::FILE* f = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = 0;
        std::fclose(f);
    }
    return resident * ::sysconf(_SC_PAGESIZE) >> 20;
}

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

/// The same data in SQLite, in memory.
class Sqlite {
public:
    Sqlite() { need(sqlite3_open(":memory:", &db_) == SQLITE_OK, "sqlite3_open"); }
    ~Sqlite() {
        for (sqlite3_stmt* s : statements_) sqlite3_finalize(s);
        sqlite3_close(db_);
    }
    void load(const fs::path& path) {
        run("BEGIN");
        for (int t = 0; t < 6; ++t) {
            const auto& fields = bench::schema_fields[t];
            std::string create = std::string("CREATE TABLE ") + bench::schema_tables[t] + "(", marks;
            for (const char* f : fields) create += std::string(f) + " TEXT COLLATE NOCASE,", marks += "?,";
            create.back() = ')', marks.pop_back();
            run(create);
            sqlite3_stmt* insert =
                prepare(std::string("INSERT INTO ") + bench::schema_tables[t] + " VALUES(" + marks + ")");
            bench::PlainTable table;
            table.load(path / (std::string(bench::schema_tables[t]) + ".txt"), static_cast<int>(fields.size()));
            for (std::size_t v = 0; v < table.values.size(); ++v) {
                const auto at = static_cast<int>(v % fields.size());
                sqlite3_bind_text(insert, at + 1, table.values[v].data(), static_cast<int>(table.values[v].size()),
                                  SQLITE_STATIC);
                if (at + 1 == static_cast<int>(fields.size())) step(insert);
            }
            for (const char* f : fields)
                if (!std::strcmp(f, "NID") || !std::strcmp(f, "NPID") || !std::strcmp(f, "NCID") ||
                    !std::strcmp(f, "CCODE"))
                    run(std::string("CREATE INDEX ") + bench::schema_tables[t] + f + " ON " +
                        bench::schema_tables[t] + "(" + f + ")");
        }
        run("COMMIT");
    }
    sqlite3_stmt* prepare(const std::string& sql) {
        sqlite3_stmt* s = nullptr;
        need(sqlite3_prepare_v2(db_, sql.c_str(), -1, &s, nullptr) == SQLITE_OK, sql.c_str());
        statements_.push_back(s);
        return s;
    }
    void step(sqlite3_stmt* s) {
        need(sqlite3_step(s) == SQLITE_DONE, "an insert");
        sqlite3_reset(s);
    }
    void run(const std::string& sql) {
        need(sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, sql.c_str());
    }
    int count(sqlite3_stmt* s, const char* key) {
        int rows = 0;
        sqlite3_bind_text(s, 1, key, -1, SQLITE_STATIC);
        while (sqlite3_step(s) == SQLITE_ROW) ++rows;
        sqlite3_reset(s);
        return rows;
    }

private:
    sqlite3* db_ = nullptr;
    std::vector<sqlite3_stmt*> statements_;
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

void search_rows(const std::string& n, int items, const fs::path& data, const char* const (&goals)[2]) {
    bench::PlainProduct plain;
    plain.load(data);
    Library library(data);
    Sqlite sqlite;
    sqlite.load(data);
    const int searches = std::max(200000, items / 4);
    struct Row {
        const char* work;
        KOfflineTable* table;
        int table_slot, field;
        const char* format;
        const char* select;
        const char* goal;
    };
    const Row rows[] = {
        {"Q1 search by NID, ", KOfflineDb_GetTable_BITM(&library.db), 0, 0, "%d",
         "SELECT rowid FROM bitm WHERE NID=?1", goals[0]},
        {"Q2 search by CCODE, ", KOfflineDb_GetTable_BITM(&library.db), 0, 1, "Part-%08X",
         "SELECT rowid FROM bitm WHERE CCODE=?1", goals[1]},
        {"Q3 children of a node, ", KOfflineDb_GetTable_BBOM(&library.db), 1, 1, "%d",
         "SELECT rowid FROM bbom WHERE NPID=?1", "1.50"},
    };
    for (const Row& row : rows) {
        const auto keys = random_keys(items, searches, row.format);
        const bench::FieldMap& map = plain.tables[row.table_slot].map(row.field);
        sqlite3_stmt* select = sqlite.prepare(row.select);
        long sum = 0;
        std::int32_t found[64];
        double later = 0;
        database_row(row.work + n,
                     {{"plain",
                       [&] {
                           return seconds_of([&] {
                               for (const auto& k : keys)
                                   for (int r = map.find(k); r >= 0; r = map.next[static_cast<std::size_t>(r)])
                                       sum += r;
                           });
                       }},
                      {"library",
                       [&] {
                           return later = seconds_of([&] {
                                      for (const auto& k : keys)
                                          sum += KOfflineTable_Search(row.table, row.field, k.c_str(), found, 64);
                                  });
                       }},
                      {"SQLite",
                       [&] {
                           return seconds_of([&] {
                               for (const auto& k : keys) sum += sqlite.count(select, k.c_str());
                           });
                       }}},
                     rounds, row.goal);
        if (row.table_slot == 0 && row.field == 0) {
            const double first = first_search(data);
            std::printf("F1 first search after a load: %.2f us, later ones %.3f us: %.0fx (goal 20)\n", first * 1e6,
                        later / searches * 1e6, first / (later / searches));
        }
        need(sum != 0, "a search");
    }
}

void load_rows(const std::string& n, const fs::path& data, bool with_sqlite) {
    std::vector<Contender> contenders = {{"plain",
                                          [&] {
                                              return seconds_of([&] {
                                                  bench::PlainProduct p;
                                                  p.load(data);
                                              });
                                          }},
                                         {"library", [&] { return seconds_of([&] { Library l(data); }); }}};
    if (with_sqlite)
        contenders.push_back({"SQLite", [&] {
                                  return seconds_of([&] {
                                      Sqlite s;
                                      s.load(data);
                                  });
                              }});
    database_row("L1 load with 15 indexes, " + n, contenders, rounds, "1.30");

    bench::PlainProduct plain;
    plain.load(data);
    Library library(data);
    const fs::path out = folder / "out";
    fs::create_directories(out);
    database_row(
        "S1 save, " + n,
        {{"plain", [&] { return seconds_of([&] { plain.save(out); }); }},
         {"library",
          [&] {
              return seconds_of([&] { need(KOfflineDb_SaveAs(&library.db, out.c_str()) == 1, "KOfflineDb_SaveAs"); });
          }}},
        rounds, "1.30");
}

void add_row(const std::string& n, int items, const fs::path& data) {
    Library library(data);
    Sqlite sqlite;
    sqlite.load(data);
    sqlite3_stmt* insert = sqlite.prepare("INSERT INTO bitm VALUES(?1,?2,'New','M')");
    sqlite3_stmt* select = sqlite.prepare("SELECT rowid FROM bitm WHERE NID=?1");
    KOfflineTable* table = KOfflineDb_GetTable_BITM(&library.db);
    int next = items, next_sqlite = items;
    const auto m = bench::medians(
        {{"SQLite",
          [&] {
              return seconds_of([&] {
                  for (int i = 0; i < 1000; ++i) {
                      const std::string nid = std::to_string(++next_sqlite), code = "New-" + nid;
                      sqlite3_bind_text(insert, 1, nid.c_str(), -1, SQLITE_STATIC);
                      sqlite3_bind_text(insert, 2, code.c_str(), -1, SQLITE_STATIC);
                      sqlite.step(insert);
                      need(sqlite.count(select, nid.c_str()) == 1, "finding it");
                  }
              });
          }},
         {"library",
          [&] {
              return seconds_of([&] {
                  for (int i = 0; i < 1000; ++i) {
                      const std::string nid = std::to_string(++next), line = nid + "\tNew-" + nid + "\tNew\tM";
                      need(KOfflineTable_AddRec(table, line.c_str(), "\t") >= 0, "KOfflineTable_AddRec");
                      need(KOfflineDb_GetRecByNID_BITM(&library.db, next) >= 0, "finding it");
                  }
              });
          }}},
        rounds);
    bench::print_row("A1 1000 records added and found, " + n, m[0], "library, to SQLite", m[1] / m[0], "6.00");
}

void delete_row(const std::string& n, const fs::path& data) {
    Library library(data);
    KOfflineTable* table = KOfflineDb_GetTable_BITM(&library.db);
    const auto records = static_cast<std::size_t>(KOfflineTable_GetRecsCount(table));
    std::vector<void*> pointers(records);
    std::vector<int> index[2] = {std::vector<int>(records), std::vector<int>(records)};
    database_row("DelRec of record 0, " + n,
                 {{"memmove",
                   [&] {
                       return seconds_of([&] {
                           for (int i = 0; i < 20; ++i) {
                               std::memmove(pointers.data(), pointers.data() + 1, (records - 1) * sizeof(void*));
                               for (auto& x : index)
                                   std::memmove(x.data(), x.data() + 1, (records - 1) * sizeof(int));
                           }
                       });
                   }},
                  {"library",
                   [&] {
                       return seconds_of([&] {
                           for (int i = 0; i < 20; ++i)
                               need(KOfflineTable_DelRec(table, 0) == 1, "KOfflineTable_DelRec");
                       });
                   }}},
                 rounds, "3.00");
}

/// Time to index a field of records whose values are hard for a quicksort.
void worst_rows(int records) {
    const int half = records / 2;
    struct Shape {
        const char* name;
        std::function<int(int)> value;
    };
    std::mt19937 random(9);
    std::vector<int> any(static_cast<std::size_t>(records));
    for (int& v : any) v = static_cast<int>(random() & 0x3FFFFFFF);
    std::vector<Shape> shapes = {{"random distinct values", [&](int i) { return any[static_cast<std::size_t>(i)]; }}};
    for (const int d : {1, 2, 3, 10, 1000})
        shapes.push_back({nullptr, [&any, d](int i) { return any[static_cast<std::size_t>(i)] % d; }});
    const char* const names[] = {"1 value", "2 values", "3 values", "10 values", "1000 values"};
    for (int i = 0; i < 5; ++i) shapes[static_cast<std::size_t>(i) + 1].name = names[i];
    shapes.push_back({"sorted", [](int i) { return i; }});
    shapes.push_back({"reversed", [=](int i) { return records - i; }});
    shapes.push_back({"organ-pipe", [=](int i) { return i < half ? i : records - i; }});
    double reference = 0;
    for (const Shape& shape : shapes) {
        KOfflineDb db;
        KOfflineDb_Constructor(&db);
        KOfflineTable* table = KOfflineDb_GetTable_BITM(&db);
        KOfflineTable_AddFld(table, "V");
        char text[16];
        for (int i = 0; i < records; ++i) {
            std::snprintf(text, sizeof text, "%09d", shape.value(i));
            need(KOfflineTable_AddRec(table, text, "\t") == i, "KOfflineTable_AddRec");
        }
        const auto m = bench::medians(
            {{"",
              [&] {
                  return seconds_of([&] { need(KOfflineTable_LoadIdx(table, "V") == 1, "KOfflineTable_LoadIdx"); });
              }}},
            3);
        if (reference == 0) reference = m[0];
        bench::print_row(std::string("index over ") + std::to_string(records) + ": " + shape.name, reference,
                         "library", m[0] / reference, "3.00");
        KOfflineDb_Destructor(&db);
    }
}

void memory_row(const std::string& n, const fs::path& data) {
    const long before = resident_mib();
    Library library(data);
    std::printf("memory after loading %s items: %ld MiB (goal 480 for 1M)\n", n.c_str(), resident_mib() - before);
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
    fs::remove_all(folder);
}
