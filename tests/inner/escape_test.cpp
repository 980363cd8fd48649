// SPDX-License-Identifier: MIT
#include "offline/tables/escape.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "offline.h"

namespace {

constexpr int kDecode = 0;
constexpr int kEncode = 1;
constexpr int kRoom = 64;

struct Swap {
    const char* table;
    const char* input;
    int direction;
    int size;
    int result;
    const char* output;
};

class Swaps : public testing::TestWithParam<Swap> {};

TEST_P(Swaps, GiveTheResultAndTheOutputMadeSoFar) {
    const Swap& swap = GetParam();
    std::vector<char> output(kRoom, '?');
    EXPECT_EQ(KText_Swap(swap.input, '\\', swap.table, '|', ':', output.data(), swap.size, swap.direction),
              swap.result);
    EXPECT_STREQ(output.data(), swap.output);
}

constexpr const char* kOwn = KOFFLINE_ESCAPE_TABLE;

INSTANTIATE_TEST_SUITE_P(
    Encoding, Swaps,
    testing::Values(Swap{kOwn, "a,b", kEncode, kRoom, 0, "a\\cb"},
                    Swap{kOwn, "C:\\tmp", kEncode, kRoom, 0, "C:\\\\tmp"},
                    Swap{kOwn, "//", kEncode, kRoom, 0, "\\/\\/"},
                    Swap{kOwn, "\r\n\t", kEncode, kRoom, 0, "\\r\\n\\t"}, Swap{kOwn, "; ", kEncode, kRoom, 0, "; "},
                    Swap{kOwn, "", kEncode, kRoom, 0, ""}, Swap{kOwn, nullptr, kEncode, kRoom, 0, ""},
                    Swap{kOwn, "ab", kEncode, -1, 0, "ab"}, Swap{kOwn, "ab", kEncode, 3, 0, "ab"},
                    Swap{kOwn, "ab", kEncode, 2, 2, ""}, Swap{kOwn, "ab,c", kEncode, 4, 2, "ab"},
                    Swap{kOwn, "ab,cd", kEncode, 6, 2, "ab\\c"},
                    Swap{"long:xy|s:x|m:a:b", "xyxa:b", kEncode, kRoom, 0, "\\long\\s\\m"},
                    Swap{"never:", "ab", kEncode, kRoom, 0, "ab"}));

INSTANTIATE_TEST_SUITE_P(Decoding, Swaps,
                         testing::Values(Swap{kOwn, "a\\cb\\\\c", kDecode, kRoom, 0, "a,b\\c"},
                                         Swap{kOwn, "a\\qb", kDecode, kRoom, -2, "a"},
                                         Swap{kOwn, "abc\\", kDecode, kRoom, -4, "abc"},
                                         Swap{kOwn, "\\c\\C", kDecode, kRoom, -3, ","},
                                         Swap{kOwn, "\\c", kDecode, 2, 0, ","}, Swap{kOwn, "\\c", kDecode, 1, 2, ""},
                                         Swap{kOwn, "a\\cbc", kDecode, 4, 2, "a,"},
                                         Swap{"a:1|ab:2", "\\ab\\b", kDecode, kRoom, -4, "1b"},
                                         Swap{"a:long plain text", "\\a", kDecode, kRoom, 0, "long plain text"},
                                         Swap{"a:1|broken|b:2", "\\a\\b", kDecode, kRoom, -3, "1"},
                                         Swap{"", "\\\\", kDecode, kRoom, 0, "\\"}));

TEST(Escape, EqualSeparatorsOrNoOutputAreRefused) {
    char output[] = "untouched";
    EXPECT_EQ(KText_Swap("a", '\\', "c:,", ':', ':', output, kRoom, kEncode), 1);
    EXPECT_EQ(KText_Swap("", '\\', "c:,", '|', ':', output, 0, kEncode), 0);
    EXPECT_EQ(KText_Swap("a", '\\', "c:,", '|', ':', output, 0, kEncode), 2);
    EXPECT_STREQ(output, "untouched");
    EXPECT_EQ(KOfflineDb_StrSwap("a", nullptr, kRoom, kEncode), 0);
}

TEST(Escape, AValueWithoutSpecialCharactersFitsWholeOrNotAtAll) {
    const std::string value(1500, 'x');
    std::string output(1024, '?');
    EXPECT_EQ(KOfflineDb_StrSwap(value.c_str(), output.data(), 1024, kEncode), 0);
    EXPECT_STREQ(output.c_str(), "");
}

TEST(Escape, TheOutputMayOverwriteTheInput) {
    for (const std::size_t length : {std::size_t{10}, std::size_t{300}}) {
        std::string text(length, ',');
        text.resize(2 * length + 1);
        EXPECT_EQ(KOfflineDb_StrSwap(text.c_str(), text.data(), static_cast<int>(text.size()), kEncode), 1);
        EXPECT_EQ(text.substr(0, 4), "\\c\\c");
        EXPECT_EQ(KOfflineDb_StrSwap(text.c_str(), text.data(), static_cast<int>(text.size()), kDecode), 1);
        EXPECT_EQ(text.c_str(), std::string(length, ','));
    }
}

TEST(Escape, TheFastDecoderGivesWhatTheEngineGives) {
    std::mt19937 random(7);
    constexpr char letters[] = "\\\\\\ctrn/q,ab";
    for (int round = 0; round < 5000; ++round) {
        std::string text(random() % 12, 0);
        for (char& c : text) c = letters[random() % (sizeof letters - 1)];
        std::vector<char> expected(text.size() + 1);
        KOfflineDb_StrSwap(text.c_str(), expected.data(), static_cast<int>(expected.size()), kDecode);
        for (const bool ascii_is_whole : {true, false}) {
            std::string fast = text;
            const std::size_t length = escape_decode(fast.data(), fast.size(), ascii_is_whole);
            ASSERT_STREQ(fast.c_str(), expected.data()) << text;
            ASSERT_EQ(length, std::string(expected.data()).size()) << text;
        }
    }
}

TEST(Escape, EveryCodeStandsForItsCharacterAndNothingElseIsEscaped) {
    std::string special;
    for (int c = 1; c < 256; ++c) {
        if (escape_code(static_cast<char>(c))) special += static_cast<char>(c);
    }
    EXPECT_EQ(special, "\t\n\r,/\\");
    std::vector<char> encoded(2 * special.size() + 1);
    ASSERT_EQ(KOfflineDb_StrSwap(special.c_str(), encoded.data(), static_cast<int>(encoded.size()), kEncode), 1);
    for (std::size_t i = 0; i < special.size(); ++i) EXPECT_EQ(encoded[2 * i + 1], escape_code(special[i]));
}

}  // namespace
