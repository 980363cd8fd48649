// SPDX-License-Identifier: MIT
// vlt db export
#include <optional>

#include "exchange/error.h"
#include "exchange/export.h"
#include "exchange/text.h"
#include "tool/database.h"
#include "tool/database_copy.h"
#include "tool/new_file.h"
#include "tool/program.h"
#include "tool/progress.h"
#include "tool/scratch.h"

namespace tool {

namespace {

struct ExportOptions {
    DatabaseOptions database;
    std::string csv, sqlite, sql, output = "-";
    bool json = false, jsonl = false, force = false, quiet = false;

    Parameters parameters() {
        return {database.parameters(Access::read),
                {"--csv", &csv, "a folder for schema.csv and a file a table, which is made if need be"},
                {"--json", &json, "one JSON object with all tables"},
                {"--jsonl", &jsonl, "the schema, then one JSON object a record, on a line each"},
                {"--sqlite", &sqlite, "a file of SQLite with keys and a view `bom` of the lines"},
                {"--sql", &sql, "the same as statements; - for standard output"},
                {"-o,--output", &output, "where JSON goes; standard output if not given"},
                {"-f,--force", &force, "replace files that exist"},
                quiet_option(quiet)};
    }
};

/// The database to export, with its text in UTF-8: loaded from its place, or from a copy where it has an encoding.
class Source {
public:
    explicit Source(const DatabaseOptions& options) {
        if (options.encoding.empty()) {
            database_.emplace(options, Access::read);
            return;
        }
        const DatabasePlace place(options);
        if (place.is_package && !options.no_lock) lock_.emplace(place.path, HostLock::Mode::shared);
        const DatabaseFiles files(options);
        copy_.emplace(options.path, options.encoding, temporary_folder());
        copy_->load([&](const std::string& name) { return files.read(name); }, false);
    }
    KOfflineDb* get() { return copy_ ? copy_->get() : database_->get(); }

private:
    std::optional<Database> database_;
    std::optional<HostLock> lock_;
    std::optional<DatabaseCopy> copy_;
};

/// Counts what is written, and notices text that is no UTF-8.
class Watch {
public:
    explicit Watch(bool quiet) : progress_("export", 0, quiet) {}

    void operator()(std::string_view text) {
        progress_.advance(text.size());
        is_text_ = is_text_ && exchange::is_utf8(text);
    }
    void report(const std::string& database) {
        progress_.clear();
        if (!is_text_)
            warn(database + ": has values that are not UTF-8, written as they are; --encoding says what they are in");
    }

private:
    Progress progress_;
    bool is_text_ = true;
};

/// Writes to a file that appears when it is whole, or to standard output for "-".
template <typename Work>
void write_text(Program& program, const std::string& path, bool force, Watch& watch, Work work) {
    std::optional<NewFile> file;
    if (path != "-") {
        if (!force) check_free(path_of(path));
        file.emplace(folder_of(path_of(path)));
    }
    exchange::Output output([&](std::string_view text) {
        watch(text);
        file ? file->file().write(text.data(), text.size()) : program.out().bytes(text);
    });
    work(output);
    if (file) file->move_to(path_of(path).filename().native(), force);
}

void write_csv(KOfflineDb* db, const ExportOptions& options, Watch& watch) {
    const fs::path folder = path_of(options.csv);
    const bool there = file_status(folder).kind != FileStatus::Kind::missing;
    std::vector<std::string> names = {exchange::kSchemaCsv};
    for (std::size_t t = 0; t < exchange::kTableCount; ++t) names.push_back(exchange::csv_name(t));
    for (const std::string& name : names)
        if (!options.force) check_free(folder / name);
    const ScratchFolder scratch(there ? folder : folder_of(folder));
    make_folder(scratch / "csv");
    exchange::export_csv(db, [&](const std::string& name) -> exchange::Sink {
        auto file = std::make_shared<HostFile>(HostFile::create_new(scratch / "csv" / name));
        return [file, &watch](std::string_view text) {
            watch(text);
            file->write(text.data(), text.size());
        };
    });
    if (!there) return move_file(scratch / "csv", folder, false);
    for (const std::string& name : names) move_file(scratch / "csv" / name, folder / name, options.force);
}

void write_sqlite(KOfflineDb* db, const ExportOptions& options) {
    const fs::path path = path_of(options.sqlite);
    if (!options.force) check_free(path);
    const ScratchFolder scratch(folder_of(path));
    exchange::export_sqlite(db, text_of(scratch / "sqlite"), check_interrupt);
    move_file(scratch / "sqlite", path, options.force);
}

int export_database(Program& program, const ExportOptions& options) {
    if (options.json + options.jsonl + !options.csv.empty() + !options.sql.empty() + !options.sqlite.empty() != 1)
        throw Failure("db export", "needs one of --csv, --json, --jsonl, --sqlite and --sql");
    Source source(options.database);
    Watch watch(options.quiet);
    const auto write = [&](const std::string& path, void (*work)(KOfflineDb*, exchange::Output&)) {
        write_text(program, path, options.force, watch,
                   [&](exchange::Output& output) { work(source.get(), output); });
    };
    try {
        if (!options.csv.empty()) write_csv(source.get(), options, watch);
        if (!options.sqlite.empty()) write_sqlite(source.get(), options);
        if (!options.sql.empty()) write(options.sql, exchange::export_sql);
        if (options.json) write(options.output, exchange::export_json);
        if (options.jsonl) write(options.output, exchange::export_jsonl);
    } catch (const exchange::Error& error) {
        throw Failure(options.database.path, error.what());
    }
    watch.report(options.database.path);
    return kDone;
}

}  // namespace

void add_db_export_verb(Program& program) {
    program.add_verb("db export", "the data as CSV, JSON, SQLite or SQL", export_database, R"(
        vlt db export product.vlt --csv product-csv
        vlt db export examples/bicycle --jsonl | jq -r 'select(.table == "BITM") | .CCODE'
        vlt db export product.vlt --sqlite product.db
        sqlite3 product.db 'SELECT * FROM bom')");
}

}  // namespace tool
