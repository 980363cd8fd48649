// SPDX-License-Identifier: MIT
// The practical limit: what a good programmer writes for one known product file set when nothing but speed counts.
// Each file is read whole and cut in place; the values stay in it; every indexed field gets a hash map.
#pragma once

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "product_data.h"

namespace bench {

/// Letters folded, as codes are compared.
struct FoldedHash {
    std::size_t operator()(std::string_view text) const {
        std::size_t hash = 1469598103934665603ull;
        for (const char c : text)
            hash = (hash ^ static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c + 32 : c)) * 1099511628211ull;
        return hash;
    }
};
struct FoldedEqual {
    bool operator()(std::string_view a, std::string_view b) const {
        return a.size() == b.size() && ::strncasecmp(a.data(), b.data(), a.size()) == 0;
    }
};

/// Records by the value of one field; records of equal value are chained in an array.
struct FieldMap {
    std::unordered_map<std::string_view, int, FoldedHash, FoldedEqual> first;
    std::vector<int> next;

    void build(const std::vector<std::string_view>& values, int width, int field) {
        const int records = static_cast<int>(values.size()) / width;
        first.reserve(static_cast<std::size_t>(records));
        next.assign(static_cast<std::size_t>(records), -1);
        for (int r = 0; r < records; ++r) {
            const auto [at, fresh] = first.try_emplace(values[static_cast<std::size_t>(r * width + field)], r);
            if (!fresh) next[static_cast<std::size_t>(r)] = std::exchange(at->second, r);
        }
    }
    int find(std::string_view key) const {
        const auto at = first.find(key);
        return at == first.end() ? -1 : at->second;
    }
};

struct PlainTable {
    std::string text;
    int width = 0;
    std::vector<std::string_view> values;
    std::vector<std::pair<int, FieldMap>> maps;

    void load(const std::filesystem::path& path, int fields) {
        width = fields;
        std::ifstream file(path, std::ios::binary | std::ios::ate);
        text.resize(static_cast<std::size_t>(file.tellg()));
        file.seekg(0);
        file.read(text.data(), static_cast<std::streamsize>(text.size()));
        const char* at = text.data();
        for (const char* end = at + text.size(); at < end;) {
            const char* stop = static_cast<const char*>(std::memchr(at, '\r', static_cast<std::size_t>(end - at)));
            for (int f = 0; f < width; ++f) {
                const auto* tab =
                    static_cast<const char*>(std::memchr(at, '\t', static_cast<std::size_t>(stop - at)));
                const char* cut = tab && f + 1 < width ? tab : stop;
                values.emplace_back(at, static_cast<std::size_t>(cut - at));
                at = cut < stop ? cut + 1 : stop;
            }
            at = stop + 2;
        }
    }
    void index(std::initializer_list<int> fields) {
        for (const int f : fields) maps.emplace_back(f, FieldMap()), maps.back().second.build(values, width, f);
    }
    const FieldMap& map(int field) const {
        for (const auto& [f, m] : maps)
            if (f == field) return m;
        std::abort();
    }
    void save(const std::filesystem::path& path) const {
        std::string out;
        out.reserve(text.size() + 16);
        for (std::size_t v = 0; v < values.size(); ++v) {
            for (const char c : values[v]) switch (c) {
                    case '\\':
                        out += "\\\\";
                        break;
                    case ',':
                        out += "\\c";
                        break;
                    case '/':
                        out += "\\/";
                        break;
                    default:
                        out += c;
                }
            out += (v + 1) % static_cast<std::size_t>(width) ? "\t" : "\r\n";
        }
        std::ofstream(path, std::ios::binary).write(out.data(), static_cast<std::streamsize>(out.size()));
    }
};

struct PlainProduct {
    PlainTable tables[6];

    void load(const std::filesystem::path& folder) {
        static constexpr std::initializer_list<int> indexed[6] = {{0, 1},    {0, 1, 2}, {0, 1},
                                                                  {0, 1, 2}, {0, 1},    {0, 1, 2}};
        for (int t = 0; t < 6; ++t) {
            tables[t].load(folder / (std::string(schema_tables[t]) + ".txt"),
                           static_cast<int>(schema_fields[t].size()));
            tables[t].index(indexed[t]);
        }
    }
    void save(const std::filesystem::path& folder) const {
        write_schema(folder);
        for (int t = 0; t < 6; ++t) tables[t].save(folder / (std::string(schema_tables[t]) + ".txt"));
    }
};

}  // namespace bench
