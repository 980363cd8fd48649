// SPDX-License-Identifier: MIT
// Flat bills of material, as data: the cases of flat_bom_cases.txt.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "exchange/error.h"
#include "exchange/flat_bom.h"

namespace {

using namespace exchange;

struct Case {
    std::string name, options, file, expected;
};

void PrintTo(const Case& c, std::ostream* out) {
    *out << c.name;
}

std::vector<Case> cases() {
    std::ifstream in(TEST_SOURCE_DIR "/exchange/flat_bom_cases.txt", std::ios::binary);
    std::vector<Case> result;
    std::string* part = nullptr;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("== ")) {
            const std::size_t bar = std::min(line.find(" | "), line.size());
            result.push_back({line.substr(3, bar - 3), line.substr(std::min(bar + 3, line.size())), {}, {}});
            part = &result.back().file;
        } else if (line == "--") {
            part = &result.back().expected;
        } else if (part) {
            *part += line + '\n';
        }
    }
    return result;
}

std::string unescaped(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i] == '\\' ? text[++i] : '\0';
        if (c == 'x') {
            result += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            result += c == 't' ? '\t' : c == 'r' ? '\r' : c == 'n' ? '\n' : text[i];
        }
    }
    return result;
}

FlatOptions options_of(const std::string& text) {
    FlatOptions options;
    std::istringstream in(text);
    for (std::string word; in >> word;) {
        const std::string key = word.substr(0, word.find('=')), value = word.substr(word.find('=') + 1);
        if (key == "top")
            options.top = value;
        else if (key == "line")
            options.line_headings.push_back(value);
        else if (key == "notation")
            options.notation = Notation::dotted;
        else
            options.meanings[key] = value;
    }
    return options;
}

std::string fields(const std::vector<std::string>& names, const std::vector<std::string>& values) {
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) text += (i == 0 ? "[" : ",") + names[i] + "=" + values[i];
    return text.empty() ? text : text + "]";
}

std::string described(const FlatBom& bom) {
    const char* const notations[] = {"level", "dotted", "parent"};
    std::string text = notations[static_cast<std::size_t>(bom.notation)];
    text += bom.delimiter == '\t' ? std::string(" \\t\n") : std::string(" ") + bom.delimiter + "\n";
    for (const FlatItem& item : bom.items)
        text += item.code + (item.name.empty() ? "" : "=") + item.name + fields(bom.item_fields, item.values) + ' ';
    text.back() = '\n';
    for (const FlatLine& line : bom.lines)
        text += bom.items[line.parent].code + '>' + bom.items[line.child].code + '*' + line.quantity +
                fields(bom.line_fields, line.values) + ' ';
    text.back() = '\n';
    for (const Finding& finding : bom.findings)
        text += (finding.error ? "! " : "? ") + std::to_string(finding.line) + ' ' + finding.kind + ' ' +
                finding.code + '\n';
    return text;
}

class FlatBomFile : public testing::TestWithParam<Case> {};

TEST_P(FlatBomFile, IsReadAsExpected) {
    std::string read;
    try {
        read = described(read_flat_bom(unescaped(GetParam().file), options_of(GetParam().options)));
    } catch (const Error& error) {
        read = std::string("error: ") + error.what() + '\n';
    }
    const std::string expected = GetParam().expected;
    const std::string wanted = unescaped(expected.substr(0, expected.find_last_not_of('\n') + 1)) + '\n';
    EXPECT_EQ(unescaped(read), wanted);
}

INSTANTIATE_TEST_SUITE_P(Cases, FlatBomFile, testing::ValuesIn(cases()));

}  // namespace
