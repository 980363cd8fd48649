// SPDX-License-Identifier: MIT
// Where the program is built without SQLite.
#include "exchange/error.h"
#include "exchange/export.h"
#include "exchange/import.h"

namespace exchange {

void export_sqlite(KOfflineDb*, const std::string&, const std::function<void()>&) {
    throw Error("this program was built without SQLite; write statements with --sql and give them to sqlite3");
}

void import_sqlite(const std::string&, const OpenEmpty&, const std::function<void()>&) {
    throw Error("this program was built without SQLite; bring the data as CSV or JSON");
}

}  // namespace exchange
