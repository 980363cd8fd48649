// SPDX-License-Identifier: MIT
// Writes the first inputs of every target: fuzz_seeds FOLDER BICYCLE, the second being the example database.
#include <filesystem>
#include <vector>

#include "fuzz/package_script.h"
#include "tests/support/database_files.h"
#include "tests/support/store_script.h"

namespace {

std::string folder, bicycle;

void Write(const std::string& target, const std::string& name, const std::string& bytes) {
    std::filesystem::create_directories(folder + "/" + target);
    WriteText(folder + "/" + target + "/" + name, bytes);
}

std::string Chars(std::initializer_list<int> values) {
    return std::string(values.begin(), values.end());
}

std::string Times(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

/// The kind of an input, then texts that each end with a zero.
std::string Texts(int kind, const std::vector<std::string>& texts) {
    std::string all = Chars({kind});
    for (const std::string& text : texts) all += text + '\0';
    return all;
}

void WritePackageSeeds() {
    const auto call = [](int kind, int handle, int name, int how, int number) {
        return Chars({kind, handle, name, how, number & 255, number >> 8, 0});
    };
    const std::string write_new =
        call(kOpenPackage, 0, 0, 0, 0) + call(kOpenFile, 0, 3, 0, 0) + call(kWrite, 0, 0, 0, 5000);
    const std::string append =
        call(kOpenFile, 0, 0, 2, 0) + call(kWrite, 1, 0, 0, 9000) + call(kCloseFile, 1, 0, 0, 0);
    const std::string read = call(kOpenFile, 0, 1, 1, 0) + call(kSeek, 0, 0, 16, 0) + call(kRead, 0, 0, 0, 8000);
    const std::string names =
        call(kInfo, 0, 0, 0, 0) + call(kSetTime, 0, 1, 0, 0) + call(kTick, 0, 0, 3, 0) + call(kDelete, 0, 2, 0, 0);
    const std::string truncate =
        call(kOpenFile, 0, 0, 0x40, 0) + call(kWrite, 0, 0, 0, 900) + call(kReopen, 0, 0, 0, 0);
    const std::string share = call(kOpenPackage, 0, 0, 1, 0) + call(kOpenFile, 1, 1, 1, 0) +
                              call(kClosePackage, 0, 0, 0, 0) + call(kWrite, 0, 0, 0, 257);
    const std::string full = call(kFillDisk, 0, 0, 1, 0) + write_new + append;
    const std::string odd = call(kReopen, 0, 0, 130, 0) + read + names + call(kReopen, 0, 0, 144, 0) + truncate;
    const std::string scripts[] = {write_new + append + read, names + truncate + read, share + names + odd,
                                   full + names, Times(14, append) + read};
    const std::string patches[] = {"",
                                   Chars({kPatchWord, 3, 3, 0, 0, 128}),
                                   Chars({kPatchEntry, 0, 2, 7}),
                                   Chars({kPatchEntry, 1, 1, 4}),
                                   Chars({kPatchBytes, 0, 0, 0, 5}) + "wvlt\1",
                                   Chars({kPatchLength, 0, 0x30, 0})};
    for (int base = 0; base <= kBaseFull; ++base)
        for (std::size_t patch = 0; patch < std::size(patches); ++patch)
            for (std::size_t script = 0; script < std::size(scripts); ++script)
                if (base == kBaseFull ? patch == 0 && script % 3 == 0 : patch == 0 || patch % 5 == script)
                    for (const char* target : {"package", "inspect"})
                        Write(target,
                              std::to_string(base) + "-" + std::to_string(patch) + "-" + std::to_string(script),
                              Chars({base}) + patches[patch] + Chars({kPatchEnd}) + scripts[script]);
}

void WriteTextSeeds() {
    Write("schema", "bicycle", Chars({0}) + ReadText(bicycle + "/kdbmain.txt"));
    Write("schema", "points",
          Texts(5, {"\n", ",", ".", "#", " ", "1, a\n1.1.1, b # c\n\n1.2, skip\n1.2.1, d\n1, e"}));
    Write("schema", "numbers", Texts(1, {";", " ", "LEVELNO", "", "", "0 a;1 b;2 c;9 d;300 e;2 f;x g;1 stop;0 i"}));
    Write("schema", "root", Texts(1, {";", " ", "ROOT.", "", "", "1 a;1 b;1.1 c;" + Times(300, ".")}));
    const std::string find = Chars({5, 0, 0, 1}) + "1\x1f" + Chars({21, 3, 0, 2, 0x1f});
    const std::string index = Chars({4, 0, 0, 0, 0x1f, 4, 0, 0, 1, 0x1f});
    const std::string change = Chars({0, 0, 0, 0}) + "7,x\\cy,\x1f" + Chars({2, 2, 0, 2}) + "Q\x1f" +
                               Chars({18, 1, 0, 2, 0x1f, 0xfc, 1, 0, 3, 0x1f, 1, 2, 0, 0, 0x1f, 3, 1, 0, 0, 0x1f});
    const std::string reshape = Chars({6, 2, 0, 0}) + "41\x1f" + Chars({7, 0, 0, 4, 0x1f, 9, 0, 0, 0, 0x1f});
    Write("table", "items",
          Chars({0, 5, 1}) + ReadText(bicycle + "/bitm.txt").substr(0, 400) + "\x1e" + index + find + reshape);
    Write("table", "small",
          Chars({0, 3, 1}) + "1,a,b\r\n,A , c\\n\n2,,// d\r3,z,a,b,c\r\n//\n4\x1e" + index + change + find + reshape +
              Chars({8, 0, 0, 0, 0x1f}));
    Write("table", "ties",
          Chars({0, 2, 1}) + Times(40, ",a\n,B\n") + "\x1e" + index +
              Times(3, Times(5, find) + Chars({3, 4, 0, 0, 0x1f})));
    Write("table", "double", Chars({1, 3, 3}) + "1|a\x81||\x81\\t|\\t\x1e" + change + find + reshape);
    Write("escape", "path", Chars({0, 9, 0}) + "C:\\temp\\a/b,c\td\r\n");
    Write("escape", "codes", Chars({4, 99, 0}) + "a\\c\\t\\r\\n\\/\\\\b\\q");
    Write("escape", "rules", Chars({1, '%', '|', '=', 64, 0}) + Texts(1, {"lt=<|gt=>|x=yz", "a<b>%yz"}));
}

void WriteDatabaseSeeds() {
    std::string files, short_files;
    for (const char* name :
         {"kdbmain.txt", "bitm.txt", "bbom.txt", "bdwg.txt", "bitdwg.txt", "bcapp.txt", "bitcap.txt"}) {
        const std::string contents = ReadText(bicycle + "/" + name);
        files += contents + "\x1e";
        short_files += (name[0] == 'k' ? contents : contents.substr(0, 90)) + "\x1e";
    }
    const std::string least =
        "1, table, bitm\r\n1.1, field, NID\r\n1.1, field, CCODE\r\n1, table, bbom\r\n"
        "1.1, field, NID\r\n1.1, field, NPID\r\n1.1, field, NCID\r\n1, ini\r\n"
        "1.1, separator, COMMA\r\n1.1, root, a\r\n\x1e"
        "1,a\r\n2,b\r\n\x1e"
        "1,1,2\r\n\x1e\x1e\x1e\x1e\x1e\x1e";
    for (const auto& [name, bytes] : Files{{"bicycle", files}, {"short", short_files}, {"least", least}})
        for (int kind = 0; kind < 2; ++kind)
            Write("database", name + "-" + std::to_string(kind), Chars({kind}) + bytes);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    folder = argv[1];
    bicycle = argv[2];
    WritePackageSeeds();
    WriteTextSeeds();
    WriteDatabaseSeeds();
    return 0;
}
