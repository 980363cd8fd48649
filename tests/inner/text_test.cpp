// SPDX-License-Identifier: MIT
#include "offline/tables/text.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

std::string Trim(std::string text, const char* leading, const char* trailing) {
    return KText_Trim(text.data(), leading, trailing);
}

TEST(Text, TrimRemovesTheBytesOfEachSetAtItsOwnEnd) {
    EXPECT_EQ(Trim(" \tx \t", " ", " \t"), "\tx");
    EXPECT_EQ(Trim(" \tx y \t", " \t", " \t"), "x y");
    EXPECT_EQ(Trim(" x ", nullptr, ""), " x ");
    EXPECT_EQ(Trim(" x ", " ", nullptr), "x ");
    EXPECT_EQ(Trim("  ", nullptr, " "), "");
    EXPECT_EQ(Trim("  ", " ", " "), "");
    EXPECT_EQ(KText_Trim(nullptr, " ", " "), nullptr);
}

TEST(Text, NumbersAreDigitsAfterAnySignsAndBlanksAndPointsMakeThemFractions) {
    for (const char* integer : {"12", "-12", "+ -3", "0", "  7"}) EXPECT_EQ(KText_IsNumber(integer), 1) << integer;
    for (const char* fraction : {"1.5", "1.2.3", ".", "-."}) EXPECT_EQ(KText_IsNumber(fraction), 2) << fraction;
    for (const char* other : {"", "-", " ", "1e5", "12 ", "\t1", "abc", "1.x", "0x1"}) {
        EXPECT_EQ(KText_IsNumber(other), 0) << other;
    }
    EXPECT_EQ(KText_IsNumber(nullptr), 0);
}

TEST(Text, NumbersStayAtTheEndsOfTheirRange) {
    EXPECT_EQ(text_to_int("  -4"), -4);
    EXPECT_EQ(text_to_int("+ 3"), 0) << "only one sign is read";
    EXPECT_EQ(text_to_int("007"), 7);
    EXPECT_EQ(text_to_int("2147483647"), INT_MAX);
    EXPECT_EQ(text_to_int("2147483648"), INT_MAX);
    EXPECT_EQ(text_to_int("-2147483648"), INT_MIN);
    EXPECT_EQ(text_to_int("-99999999999999999999999999"), INT_MIN);
}

TEST(Text, FindingSomethingAbsentOrNothingGivesNone) {
    const char* text = "a--b";
    EXPECT_EQ(KText_FindChar(text, '-'), text + 1);
    EXPECT_EQ(KText_FindChar(text, 'c'), nullptr);
    EXPECT_EQ(KText_FindChar(text, '\0'), nullptr);
    EXPECT_EQ(KText_FindChar(nullptr, 'a'), nullptr);
    EXPECT_EQ(KText_Find(text, "-b"), text + 2);
    EXPECT_EQ(KText_Find(text, "-c"), nullptr);
    EXPECT_EQ(KText_Find(text, "--bc"), nullptr);
    EXPECT_EQ(KText_Find(text, ""), text);
    EXPECT_EQ(*KText_NextChar(""), 0);
}

}  // namespace
