// SPDX-License-Identifier: MIT
#include "offline/tables/escape.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/support/escape_properties.h"

using namespace vlt;

namespace {

constexpr int kDecode = 0;
constexpr int kEncode = 1;
constexpr int kRoom = 64;

constexpr const char* kOwn = KOFFLINE_ESCAPE_TABLE;

struct Swap {
    const char* input;
    int direction;
    int result;
    const char* output;  // what was made so far
    int size = kRoom;
    const char* table = kOwn;
};

constexpr Swap kSwaps[] = {
    {"a,b", kEncode, 0, "a\\cb"},
    {"C:\\tmp", kEncode, 0, "C:\\\\tmp"},
    {"//", kEncode, 0, "\\/\\/"},
    {"\r\n\t", kEncode, 0, "\\r\\n\\t"},
    {"; ", kEncode, 0, "; "},
    {"", kEncode, 0, ""},
    {nullptr, kEncode, 0, ""},
    {"ab", kEncode, 0, "ab", -1},
    {"ab", kEncode, 0, "ab", 3},
    {"ab", kEncode, 2, "", 2},
    {"ab,c", kEncode, 2, "ab", 4},
    {"ab,cd", kEncode, 2, "ab\\c", 6},
    {"xyxa:b", kEncode, 0, "\\long\\s\\m", kRoom, "long:xy|s:x|m:a:b"},
    {"ab", kEncode, 0, "ab", kRoom, "never:"},
    {"a\\cb\\\\c", kDecode, 0, "a,b\\c"},
    {"a\\qb", kDecode, -2, "a"},
    {"abc\\", kDecode, -4, "abc"},
    {"\\c\\C", kDecode, -3, ","},
    {"\\c", kDecode, 0, ",", 2},
    {"\\c", kDecode, 2, "", 1},
    {"a\\cbc", kDecode, 2, "a,", 4},
    {"\\ab\\b", kDecode, -4, "1b", kRoom, "a:1|ab:2"},
    {"\\a", kDecode, 0, "long plain text", kRoom, "a:long plain text"},
    {"\\a\\b", kDecode, -3, "1", kRoom, "a:1|broken|b:2"},
    {"\\\\", kDecode, 0, "\\", kRoom, ""},
};

TEST(Escape, GivesTheResultAndTheOutputMadeSoFar) {
    for (const Swap& swap : kSwaps) {
        SCOPED_TRACE(&swap - kSwaps);
        std::vector<char> output(kRoom, '?');
        EXPECT_EQ(KText_Swap(swap.input, '\\', swap.table, '|', ':', output.data(), swap.size, swap.direction),
                  swap.result);
        EXPECT_STREQ(output.data(), swap.output);
    }
}

TEST(Escape, EqualSeparatorsOrNoOutputAreRefused) {
    char output[] = "untouched";
    EXPECT_EQ(KText_Swap("a", '\\', "c:,", ':', ':', output, kRoom, kEncode), 1);
    EXPECT_EQ(KText_Swap("", '\\', "c:,", '|', ':', output, 0, kEncode), 0);
    EXPECT_EQ(KText_Swap("a", '\\', "c:,", '|', ':', output, 0, kEncode), 2);
    EXPECT_STREQ(output, "untouched");
    EXPECT_EQ(KOfflineDb_StrSwap("a", nullptr, kRoom, kEncode), 0);
}

TEST(Escape, AnyTextComesBackAndBuffersAndDecodersAgree) {
    std::mt19937 random(7);
    std::vector<std::string> texts{std::string(300, ','), std::string(1500, 'x')};
    while (texts.size() < 5000) {
        std::string& text = texts.emplace_back(random() % 12, 0);
        for (char& c : text) c = "\\\\\\ctrn/q,ab\t\n"[random() % 14];
    }
    for (const std::string& text : texts) {
        ASSERT_EQ(EscapeFault(text, false), "") << text;
        for (const int direction : {kDecode, kEncode})
            ASSERT_EQ(SmallBufferFault(text, random() % (2 * text.size() + 2), direction), "") << text;
    }
}

}  // namespace
