// SPDX-License-Identifier: MIT
#include "vlt/file_table.h"

#include <algorithm>

bool vlt_file_table::provide() {
    if (free_.count() > 0) return true;
    const auto old_size = slots_.size();
    const auto new_size = std::min<std::size_t>(old_size + VLT_FILE_TABLE_STEP, VLT_FILE_SLOTS_MAX);
    if (new_size == old_size || !free_.set_limit(new_size) || !slots_.resize(new_size)) return false;
    for (std::size_t i = old_size; i < new_size; ++i) free_.add(i);
    return true;
}

std::int32_t vlt_file_table::vlt_file_slot_take(vlt_store& store, std::int32_t entry_index, std::uint32_t mode,
                                                bool exclusive) {
    const std::size_t slot = free_.lowest();
    vlt_file file{};
    file.mode = mode;
    file.exclusive = exclusive;
    file.entry_number = entry_index + 1;
    if (mode == VLT_MODE_APPEND) file.position = file.append_floor = store.entry(entry_index).size();
    store.open_files.add(entry_index, file.writes(), exclusive);
    free_.remove(slot);
    slots_[slot] = file;
    return static_cast<std::int32_t>(slot) + 1;
}

void vlt_file_table::release(vlt_store& store, std::int32_t number) {
    vlt_file& file = *at(number);
    if (file.free()) return;
    store.open_files.remove(file.entry_number - 1, file.writes(), file.exclusive != 0);
    file = {};
    free_.add(static_cast<std::size_t>(number) - 1);
}

void vlt_file_table::release_all(vlt_store& store) {
    for (std::int32_t number = 1; number <= capacity(); ++number) release(store, number);
}

bool vlt_file_check_share(vlt_store& store, std::int32_t entry_index, std::uint32_t mode, bool exclusive) {
    const vlt_open_entry* open = store.open_files.find(entry_index);
    if (!open) return true;
    const bool writes = mode == VLT_MODE_WRITE || mode == VLT_MODE_APPEND;
    return !exclusive && open->exclusive_opens == 0 && !(writes && open->writers > 0);
}
