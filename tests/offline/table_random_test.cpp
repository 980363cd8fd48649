// SPDX-License-Identifier: MIT
// Long random sequences of operations: after each, the table is what the reference says, stale indexes included.
#include <array>
#include <cctype>
#include <random>

#include "tests/support/database.h"
#include "tests/support/table_script.h"

namespace {

using Random = std::mt19937;

constexpr int kNoTies = 1000000;  // so many different values that hardly any two are equal

struct Mixture {
    const char* name;
    char shape;                            // 4: a NID and three other fields; 10: four without NID
    int records;                           // added before anything else
    int steps;                             // after that
    int distinct;                          // values to choose from
    std::array<int, kTableCalls> weights;  // of the calls, in their order
};

const Mixture kMixtures[] = {
    {"everything", 4, 40, 3000, 30, {300, 100, 300, 300, 100, 600, 20, 1, 1, 20}},
    {"small", 4, 0, 2000, 20, {300, 100, 300, 400, 100, 600, 20, 1, 5, 20}},
    {"ties", 4, 300, 1500, 4, {200, 100, 100, 400, 100, 600, 10, 0, 0, 5}},
    {"no ties", 4, 300, 1500, kNoTies, {400, 0, 0, 200, 100, 600, 0, 0, 0, 5}},
    {"mostly searches", 4, 700, 2500, 900, {10, 0, 10, 10, 10, 3000, 0, 0, 0, 5}},
    {"searches without ties", 4, 700, 2500, kNoTies, {10, 0, 0, 10, 10, 3000, 0, 0, 0, 0}},
    {"no field", 0, 10, 1000, 30, {300, 100, 300, 300, 100, 600, 20, 5, 1, 20}},
    {"no NID", 10, 40, 1000, 30, {300, 100, 300, 300, 100, 600, 20, 1, 1, 20}},
    {"many additions a search", 4, 500, 2000, kNoTies, {600, 0, 0, 90, 10, 30, 0, 0, 0, 0}},
};

int Below(int limit, Random& random) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

/// A value of mixed letter case; some begin alike for more than eight bytes, some are prefixes of others.
std::string Value(int distinct, Random& random) {
    const int pick = Below(distinct, random);
    std::string text = (pick % 3 ? "" : "Common-Prefix-") + std::to_string(pick * 7919LL % 1000003);
    if (pick % 61 == 1) text = std::string(300, 'x') + text;
    if (pick % 13 == 5) text += " \\c/\\\\//,\\";
    if (distinct < kNoTies && pick % 5 == 0) text = text.substr(0, pick ? 3 : 0);
    for (char& c : text) c = Below(2, random) ? c : static_cast<char>(std::toupper(c));
    return text;
}

std::string Nid(int distinct, Random& random) {
    return std::to_string(Below(distinct < kNoTies ? 1500 : 1000000000, random));
}

std::string Line(int distinct, Random& random) {
    std::string line = Below(3, random) ? "" : Nid(distinct, random);
    for (int field = 1; field < 4 && (distinct == kNoTies || Below(20, random)); ++field)
        line += "\t " + Value(distinct, random);
    return line;
}

std::string Call(int call, int distinct, Random& random) {
    int field = Below(3, random);  // of an index; one field stays without
    if (call != kIndex) field = Below(8, random) ? 1 + Below(4, random) : Below(256, random);
    const bool of_nid = field == 1 || Below(4, random) == 0;
    std::string text = of_nid ? Nid(distinct, random) : Value(distinct, random);
    if (of_nid && call == kFind && Below(8, random) == 0) text = "0" + text;
    if (call == kAdd) text = Line(distinct, random);
    const bool is_long = call == kSet && distinct < 100 && Below(50, random) == 0;
    if (call != kAdd) call += is_long ? kLong : Below(4, random) == 0 ? kHeld : 0;
    std::string bytes;
    for (const int byte : {call, Below(256, random), Below(256, random), field}) bytes += static_cast<char>(byte);
    return bytes + text + '\x1f';
}

TEST_F(DatabaseTest, ARandomTableIsWhatTheReferenceSays) {
    for (const Mixture& mix : kMixtures) {
        Random random(static_cast<unsigned>(&mix - kMixtures + 1));
        std::discrete_distribution<int> next(mix.weights.begin(), mix.weights.end());
        std::string script{mix.shape, 0, '\x1e'};
        for (int i = 0; i < mix.records + mix.steps; ++i)
            script += Call(i < mix.records ? kAdd : next(random), mix.distinct, random);
        const Input input(reinterpret_cast<const std::uint8_t*>(script.data()), script.size());
        EXPECT_EQ(RunTableScript(input, At("table.txt")), "") << mix.name;
    }
}

}  // namespace
