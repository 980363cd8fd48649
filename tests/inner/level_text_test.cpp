// SPDX-License-Identifier: MIT
#include "offline/db/level_text.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

/// A parse with the schema's options, whose nodes are noted as "depth/level value" and handed to `visit`.
struct Reader {
    const char* line_sep = "\n";
    const char* level_sep = ",";
    const char* mark = ".";
    const char* comment = "//";
    const char* trim = "\t \r\n";
    std::int32_t kind = KLEVEL_SOURCE_COPY;
    std::int32_t count_lines = 0;
    std::function<void(KLevelTextNode&)> visit;
    std::vector<std::string> lines;
    std::vector<KLevelTextNode> nodes;

    static std::int32_t note(KLevelTextNode* node) {
        auto& self = *static_cast<Reader*>(node->user);
        self.lines.push_back(std::to_string(node->depth) + "/" + std::to_string(node->level) + " " + node->value);
        self.nodes.push_back(*node);
        if (self.visit) self.visit(*node);
        return 77;
    }

    std::int32_t read_at(char* text) {
        return KLevelText_Parse(text, kind, line_sep, level_sep, mark, comment, trim, count_lines, note, this);
    }

    std::int32_t read(std::string text) { return read_at(text.data()); }

    std::string all() const {
        std::string joined;
        for (const std::string& line : lines) joined += (joined.empty() ? "" : "; ") + line;
        return joined;
    }
};

struct DepthCase {
    const char* fact;
    const char* mark;
    const char* text;
    const char* expected;
};

void PrintTo(const DepthCase& c, std::ostream* out) {
    *out << c.fact;
}

std::string fact_of(const testing::TestParamInfo<DepthCase>& c) {
    return c.param.fact;
}

class LevelTextDepth : public testing::TestWithParam<DepthCase> {};

TEST_P(LevelTextDepth, ReportsDepthAndNestingLevel) {
    Reader reader;
    reader.mark = GetParam().mark;
    EXPECT_EQ(reader.read(GetParam().text), 1);
    EXPECT_EQ(reader.all(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Marks, LevelTextDepth,
    testing::Values(
        DepthCase{"PartsAreCounted", ".", "1,a\n1.1,b\n1.2,c\n2,d", "0/0 a; 1/1 b; 1/1 c; 0/0 d"},
        DepthCase{"AJumpOfTwoDepthsIsOneLevel", ".", "1,a\n1.1.1,b\n1.2,c", "0/0 a; 2/1 b; 1/1 c"},
        DepthCase{"DepthIsRelativeToTheFirstLine", ".", "1.1,a\n1.1.1,b\n1,c\n1.1,d", "0/0 a; 1/1 b; 0/0 c; 1/1 d"},
        DepthCase{"TheTextBetweenDelimitersIsNotLookedAt", ".", "x,a\n.,b\ny.9,c", "0/0 a; 1/1 b; 1/1 c"},
        DepthCase{"ADelimiterMayBeLong", "->", "a,1\na->b,2\na->b->c,3", "0/0 1; 1/1 2; 2/2 3"},
        DepthCase{"NumbersAreSubtracted", "levelNo", "0,a\n1,b\n1,c\n0,d", "0/0 a; 1/1 b; 1/1 c; 0/0 d"},
        DepthCase{"WhatIsNoNumberLiesWhereTheLineBeforeLies", "LEVELNO", "0,a\n2,b\nx,c\n0,d\n-1,e\n1.5,f",
                  "0/0 a; 2/1 b; 2/1 c; 2/1 d; 2/1 e; 2/1 f"},
        DepthCase{"HugeNumbersGoNoDeeperThanTheLimit", "LEVELNO", "0,a\n99999999999,b\n0,c\n2147483647,d\n0,e",
                  "0/0 a; 0/0 c; 0/0 e"},
        DepthCase{"ARootTakesEverythingBelowIt", "ROOT.", "top,a\n1,b\n1.1,c\n2,d", "0/0 a; 1/1 b; 2/2 c; 1/1 d"},
        DepthCase{"ARootLineThatIsPassedOverIsNoRoot", "root.", "\n1,b\n1.1,c", "0/0 b; 1/1 c"},
        DepthCase{"TheWordRootAloneIsADelimiter", "ROOT", "1,a\n1ROOT1,b", "0/0 a; 1/1 b"},
        DepthCase{"WithoutAMarkLinesAreWhole", nullptr, "1,a\n 1.1,b // c\n", "0/0 1,a; 0/0 1.1,b"},
        DepthCase{"AnEmptyMarkIsNone", "", "1,a\n1.1,b", "0/0 1,a; 0/0 1.1,b"}),
    fact_of);

INSTANTIATE_TEST_SUITE_P(
    Lines, LevelTextDepth,
    testing::Values(DepthCase{"BlankAndCommentLinesChangeNothing", ".", "\n1,a\n\n  \t\n// x\n1.1,b\n,y\n1.1.1,c\n\n",
                              "0/0 a; 1/1 b; 2/2 c"},
                    DepthCase{"BothTextsAreTrimmed", ".", " 1 ,\t a \r\n\t1.1\t, b b \r", "0/0 a; 1/1 b b"},
                    DepthCase{"ALineWithoutSeparatorHasNoValue", ".", "1\n1.1,b", "0/0 ; 1/1 b"},
                    DepthCase{"TheValueKeepsFurtherSeparators", ".", "1,a,b,c", "0/0 a,b,c"},
                    DepthCase{"TheFirstCommentMarkerCuts", ".", "1,a//b//c\n1.1//,x\n1,c", "0/0 a; 1/1 ; 0/0 c"},
                    DepthCase{"NoLineIsReportedOfAnEmptyFirstLine", ".", "\n", ""}),
    fact_of);

TEST(LevelText, DescribesEachLineToItsProcedure) {
    Reader reader;
    reader.count_lines = 1;
    EXPECT_EQ(reader.read("x\n1,a\n\n//\n1.1,b\n\n"), 1);
    ASSERT_EQ(reader.nodes.size(), 3U);
    const KLevelTextNode& a = reader.nodes[1];
    EXPECT_EQ(a.line_no, 1);
    EXPECT_EQ(a.start, 2);
    EXPECT_EQ(a.end, 9) << "the span takes in the two lines passed over";
    EXPECT_EQ(a.line_count, 7);
    EXPECT_EQ(a.flags, 1U * KLEVEL_HAS_CHILDREN);
    EXPECT_STREQ(a.level_sep, ",");
    const KLevelTextNode& b = reader.nodes[2];
    EXPECT_EQ(b.line_no, 4);
    EXPECT_EQ(b.end, 17) << "the last span ends with the text";
    EXPECT_EQ(b.flags, 1U * KLEVEL_HAS_PARENT);
}

TEST(LevelText, HandsInheritedValuesToTheLinesBelow) {
    Reader reader;
    std::string seen;
    reader.visit = [&](KLevelTextNode& node) {
        seen += std::to_string(node.inherit) + " ";
        node.inherit = node.line_no + 10;
    };
    reader.read("1,a\n1.1.1,b\n1.1,c\n1.1.1,d\n2,e\n2.1,f");
    EXPECT_EQ(seen, "0 10 10 12 0 14 ");
}

TEST(LevelText, SkipsTheLinesBelow) {
    for (const char* text : {"1,skip\n1.1,x\n1.1.1,y\n1.2,z\n2,b\n2.1,c", "1,skip\n\n1.1,x\n//\n1.2,z\n\n2,b\n2.1,c",
                             "1,skip\n2,b\n2.1,c"}) {
        Reader reader;
        reader.visit = [](KLevelTextNode& node) {
            if (std::string(node.value) == "skip") node.result = KLEVEL_SKIP;
        };
        EXPECT_EQ(reader.read(text), 1);
        EXPECT_EQ(reader.all(), "0/0 skip; 0/0 b; 1/1 c") << text;
    }
}

TEST(LevelText, ASkippedRootEndsTheParse) {
    Reader reader;
    reader.mark = "ROOT.";
    reader.visit = [](KLevelTextNode& node) { node.result = KLEVEL_SKIP; };
    EXPECT_EQ(reader.read("0,a\n1,b\n2,c\n"), 1);
    EXPECT_EQ(reader.all(), "0/0 a");
}

TEST(LevelText, StopsWhereTheProcedureAsks) {
    Reader reader;
    reader.visit = [](KLevelTextNode& node) { node.result = node.line_no == 1 ? KLEVEL_STOP : 0; };
    EXPECT_EQ(reader.read("1,a\n1.1,b\n1.2,c"), 2);
    EXPECT_EQ(reader.all(), "0/0 a; 1/1 b");
}

TEST(LevelText, RestoresATextParsedInPlace) {
    const std::string before = "1,a // c\r\n\r\n1.1 , b,c\r\n//\r\n2\r\n";
    std::string text = before;
    Reader reader;
    reader.kind = 0;
    reader.line_sep = "\r\n";
    reader.visit = [](KLevelTextNode& node) { node.value[0] = '#'; };
    EXPECT_EQ(reader.read_at(text.data()), 1);
    EXPECT_EQ(text, before);
    EXPECT_EQ(reader.all(), "0/0 a; 1/1 b,c; 0/0 ");
}

TEST(LevelText, TellsEmptySourcesAndFailuresApart) {
    char empty[] = "", missing[] = "no such file";
    Reader reader;
    EXPECT_EQ(reader.read_at(empty), 0);
    EXPECT_EQ(reader.read_at(nullptr), 0);
    reader.kind = 3;
    EXPECT_EQ(reader.read_at(empty), 1);
    EXPECT_EQ(reader.read_at(nullptr), 1);
    reader.kind = KLEVEL_SOURCE_FILE;
    EXPECT_EQ(reader.read_at(missing), -1);
    EXPECT_EQ(reader.read_at(nullptr), -1);
    reader.kind = KLEVEL_SOURCE_COPY;
    reader.line_sep = "";
    EXPECT_EQ(reader.read("1,a"), -1);
    EXPECT_EQ(reader.all(), "");
}

TEST(LevelText, ReadsAFile) {
    char name[] = "level_text.txt";
    Reader reader;
    reader.kind = KLEVEL_SOURCE_FILE;
    std::ofstream(name, std::ios::binary) << "1,a\n1.1,b" << std::string(1, '\0') << "\n1.2,c";
    EXPECT_EQ(reader.read_at(name), 1);
    EXPECT_EQ(reader.all(), "0/0 a; 1/1 b") << "a zero byte ends the text";
    std::ofstream(name, std::ios::binary | std::ios::trunc).close();
    EXPECT_EQ(reader.read_at(name), 0);
    std::remove(name);
}

TEST(LevelText, CutsTextsAtTheirLimits) {
    Reader reader;
    reader.visit = [](KLevelTextNode& node) {
        EXPECT_EQ(std::string(node.level_text).size(), KLEVEL_LEVEL_SIZE - 1U);
        EXPECT_EQ(std::string(node.value).size(), KLEVEL_VALUE_SIZE - 1U);
    };
    const std::string line = std::string(5 << 20, 'x') + "," + std::string(5 << 20, 'y');
    EXPECT_EQ(reader.read(line + "\n" + line), 1);
    EXPECT_EQ(reader.lines.size(), 2U);
}

TEST(LevelText, GoesNoDeeperThanTheLimit) {
    Reader reader;
    std::string text, level = "1";
    for (int i = 0; i < 300; ++i, level += ".1") text += level + "," + std::to_string(i) + "\n";
    EXPECT_EQ(reader.read(text + "1.1,back"), 1);
    ASSERT_EQ(reader.lines.size(), 257U);
    EXPECT_EQ(reader.lines[255], "255/255 255");
    EXPECT_EQ(reader.lines[256], "1/1 back");
}

TEST(LevelText, ReadsAHundredThousandLinesInOneGo) {
    std::string text;
    for (int i = 0; i < 100000; ++i) text += i % 3 ? "1.1,b\n" : "1,a\n\n";
    Reader reader;
    EXPECT_EQ(reader.read(text), 1);
    EXPECT_EQ(reader.lines.size(), 100000U);
}

}  // namespace
