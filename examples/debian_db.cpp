// SPDX-License-Identifier: MIT
// Turns a Debian package index into a database of real size: packages become items, what they depend on becomes
// their bill of material, cycles included.
//
//     apt-cache dumpavail | debian_db FOLDER [ROOT]
//
// FOLDER is made and receives the seven files of the database; ROOT is the package at the root of the item tree. The
// files are plain text and written here by hand, so the library is not needed for it.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Package {
    std::string name, description, section, version, size;
    std::string depends;   // the text of Pre-Depends and Depends
    std::string provides;  // other names that a dependency may use for it
};

using Numbers = std::unordered_map<std::string, std::size_t>;

/// A value as the data files hold it: the characters that structure a file are escaped.
std::string escaped(std::string_view value) {
    std::string text;
    for (const char c : value) {
        switch (c) {
            case '\\':
                text += "\\\\";
                break;
            case ',':
                text += "\\c";
                break;
            case '\t':
                text += "\\t";
                break;
            case '\r':
                text += "\\r";
                break;
            case '\n':
                text += "\\n";
                break;
            case '/':
                text += "\\/";
                break;
            default:
                text += c;
        }
    }
    return text;
}

/// A data file: a line a record, values separated by TAB.
class DataFile {
public:
    explicit DataFile(const fs::path& path) : file_(path, std::ios::binary) {}

    template <typename... Values>
    void record(const Values&... values) {
        const char* separator = "";
        ((file_ << separator << escaped(values), separator = "\t"), ...);
        file_ << "\r\n";
        ++records_;
    }

    std::size_t records() const { return records_; }
    bool close() {
        file_.close();
        return !file_.fail();
    }

private:
    std::ofstream file_;
    std::size_t records_ = 0;
};

/// Takes the field `name` of an index line, or leaves `value` alone.
void take(const std::string& line, std::string_view name, std::string& value) {
    if (line.size() < name.size() + 2 || line.compare(0, name.size(), name) != 0) return;
    if (line[name.size()] != ':') return;
    const std::size_t begin = line.find_first_not_of(" \t", name.size() + 1);
    if (begin == std::string::npos) return;
    const std::size_t end = line.find_last_not_of(" \t");  // a reader trims values, so blanks there would be lost
    value += (value.empty() ? "" : ", ") + line.substr(begin, end + 1 - begin);
}

/// Reads the index; of several versions of a package the first counts.
std::vector<Package> read_index(std::istream& in) {
    std::vector<Package> packages;
    Numbers seen;
    Package package;
    const auto finish = [&] {
        if (!package.name.empty() && seen.emplace(package.name, 0).second) packages.push_back(std::move(package));
        package = Package();
    };
    for (std::string line; std::getline(in, line);) {
        if (line.empty()) finish();
        take(line, "Package", package.name);
        take(line, "Description", package.description);
        take(line, "Section", package.section);
        take(line, "Version", package.version);
        take(line, "Installed-Size", package.size);
        take(line, "Pre-Depends", package.depends);
        take(line, "Depends", package.depends);
        take(line, "Provides", package.provides);
    }
    finish();
    return packages;
}

/// The package names of a list such as "libc6 (>= 2.34), awk | mawk"; of alternatives the first.
std::vector<std::string> names_of(const std::string& list) {
    std::vector<std::string> names;
    for (std::size_t at = 0; at < list.size();) {
        const std::size_t end = std::min(list.find(',', at), list.size());
        const std::size_t begin = std::min(list.find_first_not_of(' ', at), end);
        const std::size_t stop = std::min(list.find_first_of(" (|:", begin), end);
        if (begin < stop) names.push_back(list.substr(begin, stop - begin));
        at = end + 1;
    }
    return names;
}

/// Every name that a dependency may use, with the number of its package; packages come before what they provide.
Numbers number(const std::vector<Package>& packages) {
    Numbers numbers;
    for (std::size_t i = 0; i < packages.size(); ++i) numbers.emplace(packages[i].name, i + 1);
    for (std::size_t i = 0; i < packages.size(); ++i) {
        for (const std::string& name : names_of(packages[i].provides)) numbers.emplace(name, i + 1);
    }
    return numbers;
}

bool write_schema(const fs::path& path, const std::string& root) {
    std::ofstream file(path, std::ios::binary);
    for (const char* line :
         {"1, table, bitm", "1.1, field, NID", "1.1, field, CCODE", "1.1, field, CNAME", "1.1, field, CSRC",
          "1.1, field, CVERSION", "1.1, field, NSIZE", "1, table, bbom", "1.1, field, NID", "1.1, field, NPID",
          "1.1, field, NCID", "1.1, field, FCOUNT", "1, ini", "1.1, separator, TAB"}) {
        file << line << "\r\n";
    }
    if (!root.empty()) file << "1.1, root, " << root << "\r\n";
    file.close();
    return !file.fail();
}

bool write_items(DataFile file, const std::vector<Package>& packages) {
    for (const Package& package : packages) {
        file.record(std::to_string(file.records() + 1), package.name, package.description, package.section,
                    package.version, package.size);
    }
    std::printf("%zu items\n", file.records());
    return file.close();
}

bool write_lines(DataFile file, const std::vector<Package>& packages) {
    const Numbers numbers = number(packages);
    for (std::size_t i = 0; i < packages.size(); ++i) {
        Numbers taken;  // a package may name another several times, with different versions
        for (const std::string& name : names_of(packages[i].depends)) {
            const auto found = numbers.find(name);
            if (found == numbers.end() || !taken.emplace(name, 0).second) continue;
            file.record(std::to_string(file.records() + 1), std::to_string(i + 1), std::to_string(found->second),
                        "1");
        }
    }
    std::printf("%zu lines\n", file.records());
    return file.close();
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::fputs("apt-cache dumpavail | debian_db FOLDER [ROOT]\n", stderr);
        return 2;
    }
    const fs::path folder = arguments[1];
    fs::create_directories(folder);
    std::ios::sync_with_stdio(false);
    const std::vector<Package> packages = read_index(std::cin);
    bool written = write_schema(folder / "kdbmain.txt", count > 2 ? arguments[2] : "");
    written = write_items(DataFile(folder / "bitm.txt"), packages) && written;
    written = write_lines(DataFile(folder / "bbom.txt"), packages) && written;
    for (const char* empty : {"bdwg.txt", "bitdwg.txt", "bcapp.txt", "bitcap.txt"}) {
        written = DataFile(folder / empty).close() && written;
    }
    if (!written || packages.empty()) std::fputs("the database could not be written\n", stderr);
    return written && !packages.empty() ? 0 : 1;
}
