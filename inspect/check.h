// SPDX-License-Identifier: MIT
// Every rule that a package must keep, and what breaks one.
#pragma once

#include <functional>
#include <string>

#include "inspect/package.h"

namespace inspect {

enum class Severity {
    note,    // harmless: what a call that was cut off can leave, or no fault at all
    damage,  // something cannot be read as it was written, or may not be written any more
};

enum class Kind {
    // Damage.
    magic,       // no package: too short, or without a package's first bytes
    header,      // the header chain
    directory,   // the directory chain, or bytes behind the last entry
    map_word,    // a word with bits that mean nothing, or for a block that does not exist
    chain,       // a file's chain leads out of the package, loops, or has fewer blocks than its size asks for
    shared,      // a block that two chains lead to
    free_block,  // a block that the map calls free holds bytes of the header, the directory or a file
    size,        // a size below zero
    name,        // a name that another file bears, or that has no end
    contents,    // bytes that are not those that were sealed; by whoever has sums
    entry,       // an entry that does not say what was sealed; likewise
    // Notes.
    lost,       // a block is in use, but nobody's
    surplus,    // a file holds more blocks than its size asks for
    short_map,  // the map has no words for the last blocks: they are not used yet
    torn_word,  // a free block's word is not zero, or a surplus block looks free
    stamp,      // a stamp that is no time of any day
    changed,    // a file was written after it was sealed; likewise, as are the next two
    removed,    // a file was removed after it was sealed
    unsealed,   // a file has no sum
};

const char* KindName(Kind kind);
Severity SeverityOf(Kind kind);

struct Finding {
    Kind kind;
    std::string text = {};
    int entry = -1;            // of the file that it is about, if it is about one
    std::u16string file = {};  // its name
    std::int32_t block = -1;   // index of the block that it is about, if it is about one
    std::int32_t blocks = 1;   // and so many from there on
};

using Report = std::function<void(const Finding&)>;

/// Tells every broken rule. Blocks in a row that break one rule for one reason make one finding.
void Check(const Package& package, const Report& report);

}  // namespace inspect
