// SPDX-License-Identifier: MIT
// Information, time setting, deletion and enumeration of stored files.
#include "tests/support/store_fixture.h"

namespace {

class ByName : public BothNames {
protected:
    void SetUp() override { Create(0, GetParam()); }

    std::vector<std::string> List() {
        std::vector<std::string> names;
        FileInfo info;
        for (std::int32_t cursor = 0; (cursor = Enumerate(package, cursor, &info)) != 0;) names.push_back(info.name);
        return names;
    }
};
INSTANTIATE_BOTH_NAMES(ByName);

using NameList = std::vector<std::string>;

TEST_P(ByName, InformationChangesNothing) {
    Write("a", 5000);
    EXPECT_EQ(1, SetTime(package, "a", 20050321.140709, -0.5, 0.0));
    const Bytes host = ReadHostFile(path);
    const FileInfo info = Info("A");
    EXPECT_EQ((FileInfo{VLT_ENTRY_FILE, 5000, 20050321.140709, -0.5, 0.0, ""}), info);
    FileInfo missing;
    EXPECT_EQ(0, GetInfo(package, "b", &missing));
    EXPECT_EQ(FileInfo{}, missing) << "the results are untouched";
    List();
    EXPECT_EQ(host, ReadHostFile(path));
    Reopen();
    EXPECT_EQ(info, Info("a"));
}

TEST_P(ByName, TimesMayBeSetOnAnOpenFileAndThroughAReadOnlyHandle) {
    Write("a", 10);
    const std::uint32_t file = OpenFor("a", VLT_MODE_WRITE, {.exclusive = true});
    EXPECT_EQ(1, SetTime(Open({.read_only = 1}), "a", 0.0, 0.0, 0.0));
    EXPECT_EQ(0, SetTime(package, "b", 1, 1, 1));
    ReadFrom(file, 1);
    const FileInfo info = Info("a");
    EXPECT_TRUE(info.created == 0.0 && info.accessed > 0.0 && info.written == 0.0);
}

TEST_P(ByName, DeletionFreesTheBlocksAndTheEntry) {
    for (const char* name : {"a", "b", "c", "d"}) Write(name, 10000);
    EXPECT_EQ(0, Delete(package, "e"));
    EXPECT_EQ(1, Delete(Open({.read_only = 1}), "B")) << "through a read-only handle too";
    EXPECT_EQ(0, Delete(package, "b"));
    EXPECT_EQ(1, Delete(package, "c"));
    EXPECT_EQ(1 + (GetParam() == Names::wide ? 2 : 1) + 2 * 3, Image().UsedBlocks())
        << "header, directory, two files";
    EXPECT_EQ((NameList{"a", "d"}), List());
    FileInfo info;
    EXPECT_EQ(4, Enumerate(package, 1, &info));
    EXPECT_EQ(0, Enumerate(package, 4, &info));
    Reopen();
    Write("e", 1);
    EXPECT_EQ((NameList{"a", "e", "d"}), List());
    EXPECT_TRUE(Intact("a", 10000) && Intact("d", 10000));
}

TEST_P(ByName, EnumerationTakesAnyCursorAndSkipsNullResults) {
    EXPECT_EQ(NameList{}, List());
    Write("a", 1);
    Write("b", 2);
    FileInfo info;
    for (const std::int32_t cursor : {0, -1, INT32_MIN}) EXPECT_EQ(1, Enumerate(package, cursor, &info)) << cursor;
    EXPECT_EQ("a", info.name);
    FileInfo untouched;
    for (const std::int32_t cursor : {2, 3, 7, 1000, INT32_MAX})
        EXPECT_EQ(0, Enumerate(package, cursor, &untouched)) << cursor;
    EXPECT_EQ(FileInfo{}, untouched);
    const auto with_nulls = [&](std::int32_t cursor) {
        return GetParam() == Names::wide
                   ? vltw_package_enum(package, cursor, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr)
                   : vlt_package_enum(package, cursor, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    };
    EXPECT_EQ(1, with_nulls(0));
    EXPECT_EQ(2, with_nulls(1));
    EXPECT_EQ(0, with_nulls(2));
}

TEST_P(ByName, AnEntryOfAnotherMakerIsListedAndStampedButNeverOpened) {
    Write("other", 5000);
    Write("a", 10);
    vlt_package_close_all();
    SetField(0, 0, 2, 1);  // kind
    Reopen();
    EXPECT_EQ(2u, Info("OTHER").kind);
    EXPECT_EQ((NameList{"other", "a"}), List());
    EXPECT_EQ(1, SetTime(package, "other", 1, 2, 3));
    EXPECT_EQ(2, Image().entries[0].accessed);
    EXPECT_EQ(VLT_FILE_NOT_FOUND, OpenError(package, "other", VLT_MODE_READ));
    EXPECT_EQ(0, Delete(package, "other"));
    Write("other", 20);  // a file of the same name, beside it
    EXPECT_EQ((NameList{"other", "a", "other"}), List());
    EXPECT_EQ(5000, Info("other").size) << "the first of the two";
    EXPECT_EQ(Pattern("other", 20), ReadFrom(OpenFor("other", VLT_MODE_READ), 99));
    vlt_package_close_all();
    SetField(0, 0, 3, 1);  // any other kind is a free entry
    SetField(0, 1, 0, 4);
    leniency.leaked_blocks = true;
    Reopen();
    EXPECT_EQ((NameList{"a", "other"}), List());
    EXPECT_EQ(1, Delete(package, "other"));
    Write("b", 0);
    EXPECT_EQ((NameList{"b", "a"}), List());
}

}  // namespace
