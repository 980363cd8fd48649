// SPDX-License-Identifier: MIT
// The sums of a sealed package, and the stored file that holds them; docs/package-format.md tells its form.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "inspect/block_map.h"

namespace tool {

/// The stored file that holds the sums of the others.
inline constexpr char kSumsName[] = ".vlt-sums";

/// An XXH128 as `xxh128sum` prints it.
class Hash {
public:
    Hash();
    ~Hash();
    Hash(const Hash&) = delete;
    Hash& operator=(const Hash&) = delete;
    void add(const void* bytes, std::size_t count);
    std::string text() const;

private:
    void* state_;
};

/// What is known of a stored file.
struct Sum {
    std::string name;  // stored form, see names.h
    std::string hash;
    std::int64_t size = 0;
    double written = 0;
    std::vector<inspect::Run> runs;  // where its bytes lay
    bool all_runs = false;           // whether these are all of them
};

/// The sums of a package, by name without regard to letter case. Each sealing counts up `generation`; `id` tells the
/// sums of this package from those of a package that is stored in it.
struct Sums {
    std::string id;
    std::uint32_t generation = 0;
    std::map<std::string, Sum> by_name;

    /// The bytes of the stored file.
    std::string text() const;
};

/// Gathers sums from blocks, in any order, of which some may be damaged: every line has a sum of its own, and stands
/// in the file twice.
class SumsReader {
public:
    /// Looks through a block for lines.
    void see_block(const std::uint8_t* bytes);
    /// The sums of the last sealing of a package; nothing when there are none. Without an id, those with most lines.
    std::optional<Sums> result(const std::string& id = {}) const;
    /// Whether every line that was seen is one, and stood there twice.
    bool complete() const;
    /// The id of the lines that came first.
    const std::string& first_id() const { return first_id_; }

private:
    bool see_line(std::string_view line);

    std::map<std::string, Sums> found_;  // by id
    std::string first_id_;
    std::size_t lines_ = 0, broken_ = 0;
};

}  // namespace tool
