// SPDX-License-Identifier: MIT
// What the directory keeps beside its image.
#pragma once

#include <cstdint>

#include "base/array.h"
#include "base/index_set.h"
#include "vlt/name_index.h"

namespace vlt {

/// How an entry of the image stands to the one in the host file.
enum class EntryState : std::uint8_t {
    stored,          // equal
    stamped_here,    // a stamp of reading was not written, on purpose
    writing_failed,  // unknown
    never_written,   // the entry of a new file could not be written: the host file may not have it
};

/// What is known of the entries besides their bytes.
struct KnownEntries {
    explicit KnownEntries(Images& images) : names(images) {}

    NameIndex names;               // the entries in use, by name; empty until the first lookup
    bool entries_counted = false;  // the free entries have been found; until then `free_entries` is empty
    IndexSet free_entries;
    Array<EntryState> states;  // of every entry
};

}  // namespace vlt
