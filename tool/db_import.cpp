// SPDX-License-Identifier: MIT
// vlt db import
#include "tool/db_import.h"

#include <optional>

#include "exchange/error.h"

namespace tool {

namespace {

/// The folder of a `kdbmain.txt`, and a path without a slash at its end.
fs::path place_of(const std::string& text) {
    const fs::path path = path_of(text);
    if (path.filename() == exchange::kDatabaseFiles[0]) return folder_of(path);
    return path.has_filename() ? path : path.parent_path();
}

/// A folder where one stands, a package where a file does; else as the options or the name say.
bool becomes_package(const fs::path& path, const ImportOptions& options) {
    std::error_code error;
    if (fs::is_directory(path, error)) return false;
    if (file_status(path).kind != FileStatus::Kind::missing) return true;
    return options.package || (!options.folder && path.extension() == ".vlt");
}

void import_from(const ImportOptions& options, const exchange::OpenEmpty& open_empty) {
    const fs::path source = path_of(options.source);
    std::error_code error;
    if (fs::is_directory(source, error)) {
        const auto read = [&](const std::string& name) -> std::optional<std::string> {
            if (file_status(source / name).kind == FileStatus::Kind::missing) return {};
            return whole_file(text_of(source / name));
        };
        return exchange::import_csv(read, open_empty);
    }
    if (options.source != "-") {
        char beginning[16] = {};
        HostFile::open(source).read(beginning, sizeof beginning);
        if (std::string_view(beginning, sizeof beginning) == std::string_view("SQLite format 3\0", 16))
            return exchange::import_sqlite(options.source, open_empty, check_interrupt);
    }
    exchange::import_json(whole_file(options.source), open_empty);
}

int import_database(Program& program, const ImportOptions& options) {
    if (options.bom || options.make_template) return import_bill(program, options);
    if (options.source.empty() || options.database.empty())
        throw Failure("db import", "needs a SOURCE and a DB; `vlt help db import` tells how it is used");
    make_database(options, [&](const exchange::OpenEmpty& open_empty) { import_from(options, open_empty); });
    return kDone;
}

}  // namespace

Parameters ImportOptions::parameters() {
    const Rule notations{.choices = {"level", "dotted", "parent"}};
    return {{"SOURCE", &source, "what `vlt db export` made; - for JSON on standard input"},
            {"DB", &database, "a folder, or a package if its name ends with .vlt; is made"},
            {"--package", &package, "make a package, whatever its name"},
            {"--folder", &folder, "make a folder, whatever its name"},
            {"--bom", &bom, "SOURCE is one flat bill of material, as CAD and ERP systems export it"},
            {"--check", &check, "tell what disagrees in it, and write nothing"},
            {"--accept", &accept, "import it although lines are in doubt, as the findings say"},
            {"--template", &make_template, "print an empty bill with headings that are understood"},
            {"--notation", &notation, "level, dotted or parent; told by the columns if not given", notations},
            {"--map", &meanings,
             "MEANING=HEADING: the column of level, item, parent, code, name or quantity, or of a field"},
            {"--line-field", &line_headings, "HEADING of a column that belongs to the line, not the item"},
            {"--top", &top, "CODE of an assembly to be made above everything at the top"},
            {"--delimiter", &delimiter, "comma, semicolon or tab", {.choices = {"comma", "semicolon", "tab"}}},
            {"--decimal", &decimal, "comma or point", {.choices = {"comma", "point"}}},
            {"--from", &source_encoding, "code page of the bill, such as CP1252; UTF-8 if not given"},
            {"--json", &json, "the findings as one JSON object a line"},
            {"-f,--force", &force, "replace the database that stands there; its documents stay"},
            words.parameters(Access::write),
            {"--encoding", &encoding, "code page of the values in DB, such as CP932; UTF-8 if not given"},
            no_lock_option(no_lock),
            sync_option(sync)};
}

void make_database(const ImportOptions& options, const std::function<void(const exchange::OpenEmpty&)>& fill) {
    Destination destination;
    destination.path = place_of(options.database);
    destination.is_package = becomes_package(destination.path, options);
    destination.force = options.force;
    destination.sync = options.sync;
    check_destination(destination);
    destination.words = options.words;
    std::optional<HostLock> lock;
    if (!options.no_lock) lock_destination(destination, HostLock::Mode::exclusive, lock);
    bring_back(destination, lock);
    DatabaseCopy copy(options.database, options.encoding, scratch_place(destination));
    try {
        fill([&](const exchange::Schema& schema) { return copy.begin(schema); });
    } catch (const exchange::Error& error) {
        throw Failure(options.source, error.what());
    }
    check_interrupt();
    install_database(copy.save(), destination, lock);
}

void add_db_import_verb(Program& program) {
    program.add_verb("db import", "a database from CSV, JSON or SQLite, or from a flat bill of material",
                     import_database, R"(
        vlt db import product-csv copy.vlt
        vlt db export old.vlt --jsonl | vlt db import - new.vlt
        vlt db import --template > bill.csv
        vlt db import --bom bill.csv --check
        vlt db import --bom bill.csv --map quantity=Menge --top BK-700 product.vlt)");
}

}  // namespace tool
