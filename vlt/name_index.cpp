// SPDX-License-Identifier: MIT
#include "vlt/name_index.h"

bool vlt_name_index::set_limit(std::size_t entries) {
    std::size_t wanted = slots_.empty() ? 32 : slots_.size();
    while (wanted < 2 * entries) wanted *= 2;
    if (wanted == slots_.size()) return true;
    Array<Slot> old;
    if (!old.resize(wanted)) return false;
    old.swap(slots_);
    for (const Slot& slot : old)
        if (slot.entry != 0) add(slot.entry - 1, slot.hash);
    return true;
}

void vlt_name_index::add(std::int32_t entry, std::uint32_t hash) {
    std::size_t i = hash & mask();
    while (slots_[i].entry != 0) i = (i + 1) & mask();
    slots_[i] = {hash, entry + 1};
}

void vlt_name_index::remove(std::int32_t entry, std::uint32_t hash) {
    std::size_t hole = hash & mask();
    while (slots_[hole].entry != entry + 1) {
        if (slots_[hole].entry == 0) return;
        hole = (hole + 1) & mask();
    }
    // What follows moves up where a search for it would otherwise stop at the hole.
    for (std::size_t i = (hole + 1) & mask(); slots_[i].entry != 0; i = (i + 1) & mask()) {
        const std::size_t home = slots_[i].hash & mask();
        if (((i - home) & mask()) < ((i - hole) & mask())) continue;
        slots_[hole] = slots_[i];
        hole = i;
    }
    slots_[hole] = {};
}
