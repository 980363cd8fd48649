// SPDX-License-Identifier: MIT
// vlt db import
#include "tool/db_import.h"

#include <optional>

#include "exchange/error.h"
#include "tool/db_verbs.h"

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

void declare_bill_options(Verb verb, ImportOptions& options) {
    verb.add_flag("--bom", options.bom, "SOURCE is one flat bill of material, as CAD and ERP systems export it");
    verb.add_flag("--check", options.check, "tell what disagrees in it, and write nothing");
    verb.add_flag("--accept", options.accept, "import it although lines are in doubt, as the findings say");
    verb.add_flag("--template", options.make_template, "print an empty bill with headings that are understood");
    verb.add_option("--notation", options.notation, "level, dotted or parent; told by the columns if not given")
        .choices({"level", "dotted", "parent"});
    verb.add_option("--map", options.meanings,
                    "MEANING=HEADING: the column of level, item, parent, code, name or quantity, or of a field")
        .each();
    verb.add_option("--line-field", options.line_headings,
                    "HEADING of a column that belongs to the line, not the item")
        .each();
    verb.add_option("--top", options.top, "CODE of an assembly to be made above everything at the top");
    verb.add_option("--delimiter", options.delimiter, "comma, semicolon or tab")
        .choices({"comma", "semicolon", "tab"});
    verb.add_option("--decimal", options.decimal, "comma or point").choices({"comma", "point"});
    verb.add_option("--from", options.source_encoding, "code page of the bill, such as CP1252; UTF-8 if not given");
    verb.add_flag("--json", options.json, "the findings as one JSON object a line");
}

}  // namespace

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

void add_db_import_verb(Program& program, Verb group) {
    auto options = std::make_shared<ImportOptions>();
    Verb verb = group.add_verb("import", "a database from CSV, JSON or SQLite, or from a flat bill of material",
                               "vlt db import product-csv copy.vlt\n"
                               "vlt db export old.vlt --jsonl | vlt db import - new.vlt\n"
                               "vlt db import --template > bill.csv\n"
                               "vlt db import --bom bill.csv --check\n"
                               "vlt db import --bom bill.csv --map quantity=Menge --top BK-700 product.vlt");
    verb.add_option("SOURCE", options->source, "what `vlt db export` made; - for JSON on standard input");
    verb.add_option("DB", options->database, "a folder, or a package if its name ends with .vlt; is made");
    verb.add_flag("--package", options->package, "make a package, whatever its name");
    verb.add_flag("--folder", options->folder, "make a folder, whatever its name");
    declare_bill_options(verb, *options);
    verb.add_flag("-f,--force", options->force, "replace the database that stands there; its documents stay");
    options->words.declare(verb, Access::write);
    verb.add_option("--encoding", options->encoding,
                    "code page of the values in DB, such as CP932; UTF-8 if not given");
    verb.add_flag("--no-lock", options->no_lock, "go ahead although another process uses the package");
    verb.add_flag("--sync", options->sync, "wait until everything is on the disk");
    program.on_run(verb, options, import_database);
}

}  // namespace tool
