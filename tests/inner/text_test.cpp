// SPDX-License-Identifier: MIT
#include "offline/tables/text.h"

#include <gtest/gtest.h>

#include <climits>

using namespace vlt;

namespace {

TEST(Text, NumbersStayAtTheEndsOfTheirRange) {
    EXPECT_EQ(text_to_int("  -4"), -4);
    EXPECT_EQ(text_to_int("+ 3"), 0) << "only one sign is read";
    EXPECT_EQ(text_to_int("007"), 7);
    EXPECT_EQ(text_to_int("2147483647"), INT_MAX);
    EXPECT_EQ(text_to_int("2147483648"), INT_MAX);
    EXPECT_EQ(text_to_int("-2147483648"), INT_MIN);
    EXPECT_EQ(text_to_int("-99999999999999999999999999"), INT_MIN);
}

}  // namespace
