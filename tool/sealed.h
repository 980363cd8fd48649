// SPDX-License-Identifier: MIT
// The files of a package beside the sums that `vlt seal` has kept of them.
#pragma once

#include <unordered_map>
#include <unordered_set>

#include "inspect/claims.h"
#include "tool/inspected.h"
#include "tool/progress.h"
#include "tool/sums.h"

namespace tool {

/// The sum of what is stored in an entry; its runs are those of its chain. A file whose bytes are not all there has
/// no hash.
Sum sum_of(const inspect::Package& package, const inspect::Entry& entry, Progress& progress);

/// The sums that a package holds, and how they were found.
struct FoundSums {
    std::optional<Sums> sums;
    int entry = -1;        // of the file that holds them
    bool renamed = false;  // which does not bear its name
    bool damaged = false;  // and of whose bytes some are changed
};

/// Looks for the sums where they should be; and where those are damaged, or `search` says so, in every block.
FoundSums find_sums(const Inspected& inspected, bool search, Progress& progress);

/// A file that was sealed, as it is now.
struct SealedFile {
    enum class State {
        intact,   // its bytes are those that were sealed
        changed,  // it was written afterwards
        removed,  // it was removed afterwards
        damaged,  // its bytes are others, though nobody has written it
    };
    State state = State::intact;
    std::optional<inspect::Entry> entry;
    bool in_runs = false;     // its bytes lie where they were sealed, and its chain does not lead there
    std::string entry_fault;  // what is wrong with its directory entry, if anything is
};

class SealedFiles {
public:
    SealedFiles(const Inspected& inspected, const Sums& sums, Progress& progress);

    SealedFile compare(const Sum& sum) const;
    /// Whether an entry is that of a sealed file, under its own name or under a damaged one.
    bool knows(const inspect::Entry& entry) const;

private:
    const inspect::Entry* find(const std::string& name) const;
    const inspect::Entry* find_renamed(const Sum& sum) const;
    bool chain_matches(const inspect::Entry& entry, const Sum& sum) const;
    bool runs_match(const Sum& sum) const;
    bool blocks_lost(const Sum& sum) const;
    SealedFile compare_without_entry(const Sum& sum) const;

    const Inspected& inspected_;
    const inspect::Package& package_;
    const Sums& sums_;
    Progress& progress_;
    inspect::Claims claims_;
    std::unordered_map<std::string, inspect::Entry> entries_;  // of sealed files, by folded name
    std::vector<inspect::Entry> unsealed_;                     // the others
    std::unordered_set<int> renamed_;                          // those of them that are of sealed files all the same
};

}  // namespace tool
