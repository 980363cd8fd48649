// SPDX-License-Identifier: MIT
#include "tool/sums.h"

#include <xxhash.h>

#include <fmt/format.h>
#include <algorithm>
#include <charconv>
#include <new>

#include "tool/names.h"

namespace tool {

namespace {

constexpr std::size_t kPage = inspect::kBlock;
constexpr std::size_t kLongestRuns = 900;  // characters; a line must fit into a page with the longest name

XXH3_state_t* state_of(void* state) {
    return static_cast<XXH3_state_t*>(state);
}

std::string check_of(std::string_view rest) {
    return fmt::format("{:08x}", XXH32(rest.data(), rest.size(), 0));
}

/// A name without characters that end a line.
std::string escaped(std::string_view name) {
    std::string text;
    for (const char c : name) {
        if (c == '\\' || c == '\n' || c == '\r')
            text += fmt::format("\\{:02x}", static_cast<unsigned char>(c));
        else
            text += c;
    }
    return text;
}

std::string unescaped(std::string_view text) {
    std::string name;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned value = static_cast<unsigned char>(text[i]);
        if (text[i] == '\\' && i + 2 < text.size()) {
            std::from_chars(text.data() + i + 1, text.data() + i + 3, value, 16);
            i += 2;
        }
        name += static_cast<char>(value);
    }
    return name;
}

/// "3+5,20+1" for two runs; a comma at the end when there are more, "-" for none.
std::string runs_text(const Sum& sum) {
    std::string text;
    for (const inspect::Run& run : sum.runs) {
        const std::string next = fmt::format("{}{}+{}", text.empty() ? "" : ",", run.block, run.count);
        if (text.size() + next.size() > kLongestRuns) return text + ",";
        text += next;
    }
    if (text.empty()) return sum.all_runs ? "-" : ",";
    return sum.all_runs ? text : text + ",";
}

void parse_runs(std::string_view text, Sum& sum) {
    sum.all_runs = !text.empty() && text.back() != ',';
    for (const char *at = text.data(), *end = at + text.size(); at < end;) {
        inspect::Run run;
        const auto block = std::from_chars(at, end, run.block);
        if (block.ec != std::errc() || block.ptr == end || *block.ptr != '+') return;
        const auto count = std::from_chars(block.ptr + 1, end, run.count);
        if (count.ec != std::errc()) return;
        sum.runs.push_back(run);
        at = count.ptr + 1;
    }
}

std::string line_of(const Sum& sum, const std::string& id, std::uint32_t generation) {
    const std::string rest = fmt::format("{} {} {} {} {} {} {}", id, generation, sum.hash, sum.size, sum.written,
                                         runs_text(sum), escaped(sum.name));
    return check_of(rest) + " " + rest + "\n";
}

/// The next word of a line, which is taken off it.
std::string_view take_word(std::string_view& line) {
    const std::size_t end = std::min(line.find(' '), line.size());
    const std::string_view word = line.substr(0, end);
    line.remove_prefix(std::min(end + 1, line.size()));
    return word;
}

template <typename Number>
bool take_number(std::string_view& line, Number& value) {
    const std::string_view word = take_word(line);
    return std::from_chars(word.data(), word.data() + word.size(), value).ec == std::errc();
}

}  // namespace

Hash::Hash() : state_(XXH3_createState()) {
    if (!state_) throw std::bad_alloc();
    XXH3_128bits_reset(state_of(state_));
}

Hash::~Hash() {
    XXH3_freeState(state_of(state_));
}

void Hash::add(const void* bytes, std::size_t count) {
    XXH3_128bits_update(state_of(state_), bytes, count);
}

std::string Hash::text() const {
    const XXH128_hash_t hash = XXH3_128bits_digest(state_of(state_));
    return fmt::format("{:016x}{:016x}", hash.high64, hash.low64);
}

/// Lines do not go over the end of a page, so that a page says what it says wherever it is found.
std::string Sums::text() const {
    std::string text;
    for (int copy = 0; copy < 2; ++copy) {
        for (const auto& [folded_name, sum] : by_name) {
            const std::string line = line_of(sum, id, generation);
            const std::size_t left = kPage - text.size() % kPage;
            if (line.size() > left) text.append(left, '\n');
            text += line;
        }
        text.append((kPage - text.size() % kPage) % kPage, '\n');
    }
    return text;
}

void SumsReader::see_block(const std::uint8_t* bytes) {
    std::string_view page(reinterpret_cast<const char*>(bytes), kPage);
    while (!page.empty()) {
        const std::size_t end = std::min(page.find('\n'), page.size());
        if (end > 0 && !see_line(page.substr(0, end))) ++broken_;
        page.remove_prefix(std::min(end + 1, page.size()));
    }
}

bool SumsReader::see_line(std::string_view line) {
    const std::string_view check = take_word(line);
    if (check.size() != 8 || check != check_of(line)) return false;
    const std::string id(take_word(line));
    std::uint32_t generation = 0;
    Sum sum;
    if (!take_number(line, generation)) return false;
    sum.hash = take_word(line);
    if (!take_number(line, sum.size) || !take_number(line, sum.written)) return false;
    parse_runs(take_word(line), sum);
    sum.name = unescaped(line);
    if (first_id_.empty()) first_id_ = id;
    ++lines_;
    Sums& sums = found_[id];
    if (generation > sums.generation) sums = {id, generation, {}};
    if (generation == sums.generation) sums.by_name.insert_or_assign(folded(sum.name), std::move(sum));
    return true;
}

bool SumsReader::complete() const {
    std::size_t names = 0;
    for (const auto& [id, sums] : found_) names += sums.by_name.size();
    return broken_ == 0 && lines_ == 2 * names;
}

std::optional<Sums> SumsReader::result(const std::string& id) const {
    const auto wanted = found_.find(id);
    if (wanted != found_.end()) return wanted->second;
    const auto most = std::max_element(found_.begin(), found_.end(), [](const auto& a, const auto& b) {
        return a.second.by_name.size() < b.second.by_name.size();
    });
    if (most == found_.end()) return std::nullopt;
    return most->second;
}

}  // namespace tool
