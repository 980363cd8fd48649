// SPDX-License-Identifier: MIT
#include "offline/db/level_text.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

using namespace vlt;

namespace {

using namespace std::string_view_literals;

/// A parse with the schema's options, whose lines are noted as "depth/level value"; "skip" and "stop" ask for that.
struct Reader {
    const char* mark = ".";
    std::int32_t kind = KLEVEL_SOURCE_COPY;
    const char* line_sep = "\n";
    std::int32_t count_lines = 0;
    std::string seen{};
    std::vector<KLevelTextNode> nodes{};
    std::vector<std::string> levels{};

    static std::int32_t note(KLevelTextNode* node) {
        auto& self = *static_cast<Reader*>(node->user);
        const std::string value = node->value,
                          place = std::to_string(node->depth) + "/" + std::to_string(node->level);
        self.seen += (self.nodes.empty() ? "" : "; ") + place + " " + value;
        self.nodes.push_back(*node);
        self.levels.push_back(node->level_text);
        node->inherit = node->line_no + 10;
        if (value == "skip") node->result = KLEVEL_SKIP;
        if (value == "stop") node->result = KLEVEL_STOP;
        node->value[0] = '#';
        return 77;
    }

    std::int32_t read_at(char* text) {
        return KLevelText_Parse(text, kind, line_sep, ",", mark, "//", "\t \r\n", count_lines, note, this);
    }

    std::int32_t read(std::string_view text) {
        std::string source(text);
        if (kind == KLEVEL_SOURCE_FILE) {
            source = "level_text.txt";
            std::ofstream(source, std::ios::binary) << text;
        }
        const std::string before = source;
        const std::int32_t result = read_at(source.data());
        EXPECT_EQ(source, before) << "a text parsed in place is restored";
        if (kind == KLEVEL_SOURCE_FILE) std::remove(source.c_str());
        return result;
    }
};

struct Case {
    const char* fact;
    const char* mark;
    std::string_view text;
    const char* expected;
    std::int32_t result = 1;
    const char* line_sep = "\n";
};

constexpr Case kCases[] = {
    {"AJumpOfTwoDepthsIsOneLevel", ".", "1,a\n1.1.1,b\n1.2,c", "0/0 a; 2/1 b; 1/1 c"},
    {"DepthIsRelativeToTheFirstLine", ".", "1.1,a\n1.1.1,b\n1,c\n1.1,d", "0/0 a; 1/1 b; 0/0 c; 1/1 d"},
    {"TheTextBetweenDelimitersIsNotLookedAt", ".", "x,a\n.,b\ny.9,c", "0/0 a; 1/1 b; 1/1 c"},
    {"ADelimiterMayBeLong", "->", "a,1\na->b,2\na->b->c,3", "0/0 1; 1/1 2; 2/2 3"},
    {"NumbersAreSubtracted", "levelNo", "0,a\n1,b\n1,c\n0,d", "0/0 a; 1/1 b; 1/1 c; 0/0 d"},
    {"WhatIsNoNumberLiesWhereTheLineBeforeLies", "LEVELNO", "0,a\n2,b\nx,c\n0,d\n-1,e\n1.5,f",
     "0/0 a; 2/1 b; 2/1 c; 2/1 d; 2/1 e; 2/1 f"},
    {"HugeNumbersGoNoDeeperThanTheLimit", "LEVELNO", "0,a\n99999999999,b\n0,c\n2147483647,d\n0,e",
     "0/0 a; 0/0 c; 0/0 e"},
    {"ARootTakesEverythingBelowIt", "ROOT.", "top,a\n1,b\n1.1,c\n2,d", "0/0 a; 1/1 b; 2/2 c; 1/1 d"},
    {"ARootLineThatIsPassedOverIsNoRoot", "root.", "\n1,b\n1.1,c", "0/0 b; 1/1 c"},
    {"TheWordRootAloneIsADelimiter", "ROOT", "1,a\n1ROOT1,b", "0/0 a; 1/1 b"},
    {"WithoutAMarkLinesAreWhole", nullptr, "1,a\n 1.1,b // c\n", "0/0 1,a; 0/0 1.1,b"},
    {"AnEmptyMarkIsNone", "", "1,a\n1.1,b", "0/0 1,a; 0/0 1.1,b"},
    {"BlankAndCommentLinesChangeNothing", ".", "\n1,a\n\n  \t\n// x\n1.1,b\n,y\n1.1.1,c\n\n", "0/0 a; 1/1 b; 2/2 c"},
    {"BothTextsAreTrimmed", ".", " 1 ,\t a \r\n\t1.1\t, b b \r", "0/0 a; 1/1 b b"},
    {"TheValueKeepsFurtherSeparators", ".", "1,a,b,c", "0/0 a,b,c"},
    {"TheFirstCommentMarkerCuts", ".", "1,a//b//c\n1.1//,x\n1,c", "0/0 a; 1/1 ; 0/0 c"},
    {"NoLineIsReportedOfAnEmptyFirstLine", ".", "\n", ""},
    {"AZeroByteEndsTheText", ".", "1,a\n1.1,b\0\n1.2,c"sv, "0/0 a; 1/1 b"},
    {"ALineSeparatorMayBeLong", ".", "1,a // c\r\n\r\n1.1 , b,c\r\n//\r\n2\r\n", "0/0 a; 1/1 b,c; 0/0 ", 1, "\r\n"},
    {"LinesBelowAreSkipped", ".", "1,skip\n1.1,x\n1.1.1,y\n1.2,z\n2,b\n2.1,c", "0/0 skip; 0/0 b; 1/1 c"},
    {"WithLinesPassedOver", ".", "1,skip\n\n1.1,x\n//\n1.2,z\n\n2,b\n2.1,c", "0/0 skip; 0/0 b; 1/1 c"},
    {"ThereMayBeNoneBelow", ".", "1,skip\n2,b\n2.1,c", "0/0 skip; 0/0 b; 1/1 c"},
    {"ASkippedRootEndsTheParse", "ROOT.", "0,skip\n1,b\n2,c\n", "0/0 skip"},
    {"AProcedureMayStopTheParse", ".", "1,a\n1.1,stop\n1.2,c", "0/0 a; 1/1 stop", 2},
};

TEST(LevelText, ReportsDepthAndNestingLevelOfATextInPlaceCopiedOrInAFile) {
    for (const Case& c : kCases)
        for (const std::int32_t kind : {0, 0 + KLEVEL_SOURCE_COPY, 0 + KLEVEL_SOURCE_FILE}) {
            Reader reader{c.mark, kind, c.line_sep};
            EXPECT_EQ(reader.read(c.text), c.result) << c.fact << kind;
            EXPECT_EQ(reader.seen, c.expected) << c.fact << kind;
        }
}

TEST(LevelText, DescribesEachLineAndHandsInheritedValuesDown) {
    Reader reader;
    reader.count_lines = 1;
    EXPECT_EQ(reader.read("x\n1,a\n\n//\n1.1.1,b\n1.1,c\n1.1.1,d\n2,e\n2.1,f\n\n"), 1);
    std::string described;  // number, span with the lines passed over, flags, what is inherited
    for (const KLevelTextNode& node : reader.nodes) {
        for (const std::int32_t number : {node.line_no, node.start, node.end, static_cast<std::int32_t>(node.flags)})
            described += std::to_string(number) + " ";
        described += std::to_string(node.inherit) + "; ";
        EXPECT_EQ(node.line_count, 11);
        EXPECT_STREQ(node.level_sep, ",");
    }
    EXPECT_EQ(described,
              "0 0 1 0 0; 1 2 9 1 0; 4 10 17 2 11; 5 18 23 3 11; 6 24 31 2 15; 7 32 35 1 0; 8 36 43 2 17; ");
}

TEST(LevelText, TellsEmptySourcesAndFailuresApart) {
    char empty[] = "", missing[] = "no such file", text[] = "1,a";
    EXPECT_EQ((Reader{".", KLEVEL_SOURCE_COPY}.read_at(empty)), 0);
    EXPECT_EQ((Reader{".", KLEVEL_SOURCE_COPY}.read_at(nullptr)), 0);
    EXPECT_EQ((Reader{".", KLEVEL_SOURCE_FILE}.read("")), 0);
    EXPECT_EQ((Reader{".", 3}.read_at(empty)), 1);
    EXPECT_EQ((Reader{".", 3}.read_at(nullptr)), 1);
    EXPECT_EQ((Reader{".", KLEVEL_SOURCE_FILE}.read_at(missing)), -1);
    EXPECT_EQ((Reader{".", KLEVEL_SOURCE_FILE}.read_at(nullptr)), -1);
    EXPECT_EQ((Reader{".", KLEVEL_SOURCE_COPY, ""}.read_at(text)), -1);
}

TEST(LevelText, CutsTextsAtTheirLimits) {
    Reader reader;
    const std::string line = std::string(5 << 20, 'x') + "," + std::string(5 << 20, 'y');
    EXPECT_EQ(reader.read(line + "\n" + line), 1);
    const std::string level(KLEVEL_LEVEL_SIZE - 1, 'x'), value(KLEVEL_VALUE_SIZE - 1, 'y');
    EXPECT_EQ(reader.levels, std::vector<std::string>(2, level));
    EXPECT_EQ(reader.seen, "0/0 " + value + "; 0/0 " + value);
}

TEST(LevelText, GoesNoDeeperThanTheLimit) {
    Reader reader;
    std::string text, level = "1";
    for (int i = 0; i < 300; ++i, level += ".1") text += level + "," + std::to_string(i) + "\n";
    EXPECT_EQ(reader.read(text + "1.1,back"), 1);
    EXPECT_EQ(reader.nodes.size(), 257U);
    EXPECT_TRUE(reader.seen.ends_with("; 255/255 255; 1/1 back")) << reader.seen;
}

}  // namespace
