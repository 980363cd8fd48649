// SPDX-License-Identifier: MIT
#include "vlt/file_table.h"

#include <algorithm>

namespace vlt {

bool FileTable::reserve_slot() {
    if (free_.count() > 0) return true;
    const std::int32_t old_size = capacity();
    const std::int32_t new_size = std::min(old_size + VLT_FILE_TABLE_STEP, VLT_FILE_SLOTS_MAX);
    if (new_size == old_size || !free_.set_limit(new_size)) return false;
    if (!slots_.resize(static_cast<std::size_t>(new_size))) return false;
    for (std::int32_t i = old_size; i < new_size; ++i) free_.add(i);
    return true;
}

std::int32_t FileTable::take_slot(Store& store, std::int32_t entry_index, std::uint32_t mode, bool exclusive) {
    const std::int32_t number = free_.lowest() + 1;
    vlt_file file{};
    file.mode = mode;
    file.exclusive = exclusive;
    file.entry_number = entry_index + 1;
    if (mode == VLT_MODE_APPEND) file.position = file.append_floor = store.images.entry(entry_index).size();
    store.open_files.add(entry_index, file.writes(), exclusive);
    free_.remove(number - 1);
    *at(number) = file;
    return number;
}

void FileTable::release(Store& store, std::int32_t number) {
    vlt_file& file = *at(number);
    if (file.free()) return;
    store.open_files.remove(file.entry_index(), file.writes(), file.exclusive != 0);
    file = {};
    free_.add(number - 1);
}

void FileTable::release_all(Store& store) {
    for (std::int32_t number = 1; number <= capacity(); ++number) release(store, number);
}

}  // namespace vlt
