// SPDX-License-Identifier: MIT
#include "offline/db/separator.h"
#include "offline/db/stream.h"
#include "tests/support/database.h"

using namespace vlt;

namespace {

TEST(Separator, LeavesTheResultAloneWhenNothingFitting) {
    const auto convert = [](std::string text, int names_to_chars) {
        char out[kSeparatorNamesSize] = "before";
        EXPECT_EQ(KOfflineDb_ConvertSeparator(text.data(), out, names_to_chars), 0);
        EXPECT_STREQ(out, "before");
    };
    for (const auto& text : {std::string(), std::string(" + &\t"), std::string(256, 'x'), std::string(300, '+')})
        convert(text, 1);
    convert(std::string(60, ' '), 0);
}

using Streams = DatabaseTest;

TEST_F(Streams, ReadWhatWasWrittenFromTheStartOnceTheSizeWasAsked) {
    for (const Place place : {Place::directory, Place::package}) {
        Database db;
        KOfflineStream stream;
        ASSERT_EQ(KOfflineDb_Load(db, Put(SmallDatabase(), place).c_str()), 1);
        ASSERT_EQ(KOfflineStream_Open(db, At("stream").c_str(), 1, &stream), 1);
        char text[] = "some text";
        EXPECT_EQ(KOfflineStream_Write(text, 9, &stream), 1);
        for (const std::int32_t nothing : {0, -1}) EXPECT_EQ(KOfflineStream_Write(text, nothing, &stream), 1);
        EXPECT_EQ(KOfflineStream_Write(nullptr, 5, &stream), 1);
        KOfflineStream_Close(db, &stream);
        ASSERT_EQ(KOfflineStream_Open(db, At("stream").c_str(), 0, &stream), 1);
        EXPECT_EQ(KOfflineStream_Read(text, 4, &stream), 4);
        std::int32_t size = -1;
        EXPECT_EQ(KOfflineStream_GetSize(&stream, &size), 1);
        EXPECT_EQ(size, 9);
        EXPECT_EQ(KOfflineStream_Read(text, 10, &stream), 9);
        EXPECT_EQ(KOfflineStream_Read(text, 10, &stream), 0);
        KOfflineStream_Close(db, &stream);
    }
}

}  // namespace
