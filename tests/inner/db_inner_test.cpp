// SPDX-License-Identifier: MIT
#include <cstring>
#include <map>
#include <utility>

#include "offline/db/file_names.h"
#include "offline/db/schema.h"
#include "offline/db/stream.h"
#include "tests/support/database.h"

namespace {

TEST(Separator, IsConvertedBothWays) {
    const std::map<std::pair<int, std::string>, std::string> cases = {
        {{1, "tab"}, "\t"},           {{1, " Comma + TAB & blank"}, ",\t "},
        {{1, "+TAB++x y+"}, "\tx y"}, {{1, "Tabs"}, "Tabs"},
        {{0, "\t"}, "TAB"},           {{0, ",\t"}, "COMMA+TAB"},
        {{0, "|\t"}, "|+TAB"},        {{0, "\t|;"}, "TAB|+SEMICOLON"},
        {{0, "  "}, "BLANK+BLANK"}};
    for (const auto& [in, expected] : cases) {
        std::string text = in.second;
        char out[kSeparatorNamesSize] = "before";
        EXPECT_EQ(KOfflineDb_ConvertSeparator(text.data(), out, in.first), 1) << in.second;
        EXPECT_EQ(out, expected) << in.second;
    }
}

TEST(Separator, LeavesTheResultAloneWhenNothingFitting) {
    for (std::string text : {std::string(), std::string(" + &\t"), std::string(256, 'x'), std::string(300, '+')}) {
        char out[kSeparatorNamesSize] = "before";
        EXPECT_EQ(KOfflineDb_ConvertSeparator(text.data(), out, 1), 0);
        EXPECT_STREQ(out, "before");
    }
    std::string blanks(60, ' ');
    char out[kSeparatorNamesSize] = "before";
    EXPECT_EQ(KOfflineDb_ConvertSeparator(blanks.data(), out, 0), 0);
    EXPECT_STREQ(out, "before");
}

TEST(FileNames, LastComponentFollowsTheLastSeparator) {
    for (const char* path : {"bitm.txt", "a/b/bitm.txt", "C:\\data\\x\\bitm.txt", "\\bitm.txt", "a\\b/bitm.txt"}) {
        EXPECT_STREQ(last_component(path), "bitm.txt") << path;
    }
    for (const char* path : {"", "/", "a/", "a/b\\"}) EXPECT_STREQ(last_component(path), "") << path;
}

class Streams : public DatabaseTest, public testing::WithParamInterface<Place> {
protected:
    void SetUp() override { ASSERT_EQ(KOfflineDb_Load(db_, Put(SmallDatabase(), GetParam()).c_str()), 1); }

    bool Open(bool for_writing) { return KOfflineStream_Open(db_, At("stream").c_str(), for_writing, &stream_); }

    Database db_;
    KOfflineStream stream_;
};

INSTANTIATE_TEST_SUITE_P(Places, Streams, testing::Values(Place::directory, Place::package));

TEST_P(Streams, ReadWhatWasWritten) {
    EXPECT_FALSE(Open(false));
    ASSERT_TRUE(Open(true));
    char text[] = "some text";
    EXPECT_EQ(KOfflineStream_Write(text, 9, &stream_), 1);
    EXPECT_EQ(KOfflineStream_Write(text, 0, &stream_), 1);
    EXPECT_EQ(KOfflineStream_Write(text, -1, &stream_), 1);
    EXPECT_EQ(KOfflineStream_Write(nullptr, 5, &stream_), 1);
    KOfflineStream_Close(db_, &stream_);
    ASSERT_TRUE(Open(false));
    std::int32_t size = -1;
    EXPECT_EQ(KOfflineStream_GetSize(&stream_, &size), 1);
    EXPECT_EQ(size, 9);
    EXPECT_EQ(KOfflineStream_Read(text, 4, &stream_), 4);
    EXPECT_EQ(KOfflineStream_GetSize(&stream_, &size), 1);
    EXPECT_EQ(KOfflineStream_Read(text, 10, &stream_), 9) << "from the start again";
    EXPECT_EQ(KOfflineStream_Read(text, 10, &stream_), 0);
    KOfflineStream_Close(db_, &stream_);
    ASSERT_TRUE(Open(true)) << "empties the file";
    KOfflineStream_Close(db_, &stream_);
    ASSERT_TRUE(Open(false));
    EXPECT_EQ(KOfflineStream_GetSize(&stream_, &size), 1);
    EXPECT_EQ(size, 0);
    KOfflineStream_Close(db_, &stream_);
}

}  // namespace
