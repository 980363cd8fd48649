// SPDX-License-Identifier: MIT
#include "tool/sealed.h"

#include <algorithm>

#include "inspect/scan.h"
#include "inspect/stored_bytes.h"

namespace tool {

namespace {

using inspect::Entry;

inspect::Sink hasher(Hash& hash, Progress& progress) {
    return [&](const std::uint8_t* bytes, std::size_t count) {
        hash.add(bytes, count);
        progress.advance(count);
    };
}

/// Whether a stored file may hold the sums, by its size alone: two copies of some pages.
bool may_hold_sums(const Entry& entry) {
    return entry.kind == inspect::kStoredFile && entry.size > 0 && entry.size % (2 * inspect::kBlock) == 0;
}

bool is_sums_page(const inspect::Package& package, std::int32_t block) {
    std::uint8_t bytes[inspect::kBlock];
    SumsReader reader;
    if (!package.map().Inside(block) || !package.ReadBlock(block, bytes)) return false;
    reader.see_block(bytes);
    return reader.result().has_value();
}

/// The entry that bears the name; or else one that does not, but whose file begins like sums.
std::optional<Entry> entry_of_sums(const Inspected& inspected) {
    std::optional<Entry> named, alike;
    inspected.package.ForEachEntry([&](const Entry& entry) {
        if (named || entry.kind != inspect::kStoredFile) return;
        if (inspected.stored(entry.name) == kSumsName)
            named = entry;
        else if (!alike && may_hold_sums(entry) && is_sums_page(inspected.package, entry.start()))
            alike = entry;
    });
    return named ? named : alike;
}

}  // namespace

Sum sum_of(const inspect::Package& package, const Entry& entry, Progress& progress) {
    Sum sum{.name = stored_name(entry.name, package.wide()),
            .hash = {},
            .size = entry.size,
            .written = entry.written,
            .runs = {},
            .all_runs = true};
    inspect::ChainRuns runs(package.map(), entry.start(),
                            std::min<std::int64_t>(entry.blocks(), package.block_count()));
    for (inspect::Run run; sum.all_runs && runs.Next(run, package.block_count());) {
        sum.all_runs = sum.runs.size() < 100;
        if (sum.all_runs) sum.runs.push_back(run);
    }
    Hash hash;
    if (ReadStored(package, entry.start(), entry.size, hasher(hash, progress)) == entry.size) sum.hash = hash.text();
    return sum;
}

FoundSums find_sums(const Inspected& inspected, bool search, Progress& progress) {
    FoundSums found;
    SumsReader reader;
    const auto entry = entry_of_sums(inspected);
    if (entry) {
        found.entry = entry->index;
        found.renamed = inspected.stored(entry->name) != kSumsName;
        std::uint8_t bytes[inspect::kBlock];
        for (const std::int32_t block : inspected.package.map().Chain(entry->start())) {
            inspected.package.ReadBlock(block, bytes);
            reader.see_block(bytes);
        }
        found.damaged = !reader.complete() || (entry->size > 0 && reader.first_id().empty());
    }
    const std::string id = reader.first_id();
    if (found.damaged || (search && !entry))
        inspect::ReadAllBlocks(inspected.package, [&](std::int32_t, const std::uint8_t* bytes, std::int32_t count) {
            for (std::int32_t i = 0; i < count; ++i) reader.see_block(bytes + i * inspect::kBlock);
            progress.advance(0);
        });
    found.sums = reader.result(id);
    if (entry && entry->size == 0 && !found.sums) found.sums.emplace();
    return found;
}

SealedFiles::SealedFiles(const Inspected& inspected, const Sums& sums, Progress& progress)
    : inspected_(inspected), package_(inspected.package), sums_(sums), progress_(progress), claims_(package_) {
    package_.ForEachEntry([&](const Entry& entry) {
        if (entry.kind != inspect::kStoredFile) return;
        const std::string name = folded(inspected_.stored(entry.name));
        if (sums_.by_name.count(name))
            entries_.emplace(name, entry);
        else
            unsealed_.push_back(entry);
    });
    for (const auto& [name, sum] : sums_.by_name)
        if (const Entry* renamed = entries_.count(name) ? nullptr : find_renamed(sum))
            renamed_.insert(renamed->index);
}

const Entry* SealedFiles::find(const std::string& name) const {
    const auto found = entries_.find(folded(name));
    return found == entries_.end() ? nullptr : &found->second;
}

/// Whether one name can have become the other by damage to a few of its bytes.
bool similar(const std::string& one, const std::string& other) {
    if (one.size() != other.size()) return false;
    std::size_t differing = 0;
    for (std::size_t i = 0; i < one.size(); ++i) differing += one[i] != other[i];
    return differing <= 3 && differing < one.size();
}

/// The entry whose name was damaged, and perhaps more of it: nothing else gives a file another name. At least two of
/// what else it says still hold.
const Entry* SealedFiles::find_renamed(const Sum& sum) const {
    for (const Entry& entry : unsealed_) {
        const bool same_start = !sum.runs.empty() && entry.start() == sum.runs.front().block;
        const bool alike = similar(inspected_.stored(entry.name), sum.name);
        if (same_start + (entry.size == sum.size && sum.size > 0) + (entry.written == sum.written) + alike >= 2 &&
            (same_start || alike))
            return &entry;
    }
    return nullptr;
}

bool SealedFiles::chain_matches(const Entry& entry, const Sum& sum) const {
    if (entry.size != sum.size) return false;
    Hash hash;
    return ReadStored(package_, entry.start(), sum.size, hasher(hash, progress_)) == sum.size &&
           hash.text() == sum.hash;
}

bool SealedFiles::runs_match(const Sum& sum) const {
    if (!sum.all_runs) return false;
    Hash hash;
    return ReadRuns(package_, sum.runs, sum.size, hasher(hash, progress_)) == sum.size && hash.text() == sum.hash;
}

/// Whether some of its blocks are in use, but no chain leads to them; or the map does not tell.
bool SealedFiles::blocks_lost(const Sum& sum) const {
    for (const inspect::Run& run : sum.runs)
        for (std::int32_t block = run.block; block < run.block + run.count; ++block) {
            if (!package_.map().Inside(block)) return false;
            const bool known = block < package_.map().word_count();
            if ((package_.map().Used(block) || !known) && !claims_.Held(block)) return true;
        }
    return false;
}

bool SealedFiles::knows(const Entry& entry) const {
    return sums_.by_name.count(folded(inspected_.stored(entry.name))) != 0 || renamed_.count(entry.index) != 0;
}

SealedFile SealedFiles::compare(const Sum& sum) const {
    const Entry* entry = find(sum.name);
    if (!entry) return compare_without_entry(sum);
    SealedFile file{.state = SealedFile::State::intact, .entry = *entry, .in_runs = false, .entry_fault = {}};
    if (chain_matches(*entry, sum)) return file;
    const bool same_time = entry->written == sum.written;
    if (!same_time && entry->written != 0 && inspect::IsStamp(entry->written)) {
        file.state = SealedFile::State::changed;
        return file;
    }
    if (!same_time)
        file.entry_fault = "its time of writing is none";
    else if (entry->size != sum.size)
        file.entry_fault =
            "its size is " + std::to_string(entry->size) + ", but was sealed as " + std::to_string(sum.size);
    file.in_runs = runs_match(sum);
    if (!file.in_runs) file.state = SealedFile::State::damaged;
    return file;
}

SealedFile SealedFiles::compare_without_entry(const Sum& sum) const {
    SealedFile file;
    if (const Entry* renamed = find_renamed(sum)) {
        file.entry = *renamed;
        file.entry_fault = "its name stands as '" + inspected_.shown(renamed->name) + "'";
    } else if (blocks_lost(sum)) {
        file.entry_fault = "its directory entry is lost";
    } else {
        file.state = SealedFile::State::removed;
        return file;
    }
    file.in_runs = runs_match(sum);
    if (!file.in_runs) file.state = SealedFile::State::damaged;
    return file;
}

}  // namespace tool
