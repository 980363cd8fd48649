// SPDX-License-Identifier: MIT
// Generated product data: items, about four bill-of-material lines an item, drawings and process plans for a tenth of
// the items; a few items have many children, most have few, and some parts are used everywhere.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace bench {

/// A text file that is being written.
class TextFile {
public:
    explicit TextFile(const std::filesystem::path& path) : file_(std::fopen(path.string().c_str(), "wb")) {
        if (!file_) std::exit(1);
    }
    ~TextFile() { std::fclose(file_); }
    template <typename... Values>
    void line(const char* format, Values... values) {
        std::fprintf(file_, format, values...);
        std::fputs("\r\n", file_);
    }

private:
    std::FILE* file_;
};

inline const char* const schema_tables[6] = {"bitm", "bbom", "bdwg", "bitdwg", "bcapp", "bitcap"};
inline const std::vector<const char*> schema_fields[6] = {
    {"NID", "CCODE", "CNAME", "CSRC"},
    {"NID", "NPID", "NCID", "FCOUNT"},
    {"NID", "CCODE", "CNAME", "CSRC", "CFILE", "CASM", "COFLNMODI", "NOFLNITMID"},
    {"NID", "NPID", "NCID"},
    {"NID", "CCODE", "CNAME", "CSRC", "CFILE", "COFLNMODI", "NOFLNITMID"},
    {"NID", "NPID", "NCID"}};

inline void write_schema(const std::filesystem::path& folder) {
    TextFile schema(folder / "kdbmain.txt");
    for (int t = 0; t < 6; ++t) {
        schema.line("1, table, %s", schema_tables[t]);
        for (const char* field : schema_fields[t]) schema.line("1.1, field, %s", field);
    }
    schema.line("1, ini");
    schema.line("1.1, separator, TAB");
}

/// Writes a database directory of that many items.
inline void write_product(const std::filesystem::path& folder, int items) {
    std::filesystem::create_directories(folder);
    write_schema(folder);
    std::mt19937 random(11);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const auto skewed = [&](int n) { return std::min(std::min(below(n), below(n)), below(n)); };
    TextFile bitm(folder / "bitm.txt"), bbom(folder / "bbom.txt"), bdwg(folder / "bdwg.txt"),
        bitdwg(folder / "bitdwg.txt"), bcapp(folder / "bcapp.txt"), bitcap(folder / "bitcap.txt");
    int line = 0;
    for (int i = 1; i <= items; ++i) {
        bitm.line("%d\tPart-%08X\tName of item %d\tM", i, static_cast<unsigned>(i) * 2654435761u, i);
        const int children = below(8) == 0 ? 8 + below(48) : below(2);
        for (int c = 0; c < children; ++c) bbom.line("%d\t%d\t%d\t%d", ++line, i, 1 + skewed(items), 1 + below(9));
        if (i % 10 != 0) continue;
        bdwg.line("%d\tDwg-%07d\tDrawing %d\tC\tdrawing-%d.dwg\t\t0\t%d", i / 10, i, i, i, i);
        bitdwg.line("%d\t%d\t%d", i / 10, i, i / 10);
        bcapp.line("%d\tPlan-%07d\tPlan %d\tC\tplan-%d.txt\t0\t%d", i / 10, i, i, i, i);
        bitcap.line("%d\t%d\t%d", i / 10, i, i / 10);
    }
}

}  // namespace bench
