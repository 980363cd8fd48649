// SPDX-License-Identifier: MIT
#include <algorithm>

#include "vlt/directory.h"
#include "vlt/file_handle.h"

namespace {

// ---- Reading and writing, with the package held ------------------------------------------------------------------

/// The chain of an open file, ready for use; null when the file owns no usable block.
vlt_chain* data_chain(vlt_store& store, std::int32_t index) {
    vlt_chain& chain = store.open_files.find(index)->chain;
    return vlt_chain_begin(store, chain, store.entry(index).first_block()) ? &chain : nullptr;
}

/// Stamps an entry that was read. A stamp that is in the host file already is not written again.
bool stamp_read(vlt_store& store, std::int32_t index, bool in_memory) {
    vlt_dir_entry entry = store.entry(index);
    const double now = store.clock.vlt_stamp_now();
    const bool changed = entry.accessed() != now;
    entry.set_accessed(now);
    if (in_memory) {
        store.directory_ahead = store.directory_ahead || changed;
        return true;
    }
    return (!changed && !store.directory_ahead) || vlt_dir_put(store, index);
}

std::int32_t read(vlt_store& store, vlt_file& file, void* buffer, std::int32_t length, bool stamp_in_memory) {
    const std::int32_t index = file.entry_number - 1;
    const std::int64_t size = store.entry(index).size();
    if (!stamp_read(store, index, stamp_in_memory)) return 0;
    if (file.position < 0 || file.position >= size) return 0;
    const auto count = static_cast<std::int32_t>(std::min<std::int64_t>(length, size - file.position));
    vlt_chain* chain = data_chain(store, index);
    if (!chain || !vlt_chain_read(store, *chain, file.position, buffer, count)) return 0;
    file.position += count;
    return count;
}

/// Takes the blocks that the file needs more, for bytes from `position` to `end` to be written.
bool vlt_file_reserve(vlt_store& store, std::int32_t index, std::int64_t position, std::int64_t end,
                      vlt_chain_extension& extension) {
    const vlt_dir_entry entry = store.entry(index);
    const std::int64_t kept = vlt_blocks_for(entry.size());
    const std::int64_t wanted = vlt_blocks_for(end) - kept;
    if (wanted <= 0) return true;
    if (vlt_blocks_for(end) > VLT_BLOCKS_MAX) return false;
    vlt_chain& chain = store.open_files.find(index)->chain;
    if (entry.first_block() != 0 && !vlt_chain_begin(store, chain, entry.first_block())) return false;
    return extension.take(static_cast<std::int32_t>(kept), static_cast<std::int32_t>(wanted),
                          position >= entry.size());
}

/// Enters what a write has changed, and writes the entry unless its bytes are in the host file already.
bool finish_write(vlt_store& store, std::int32_t index, const vlt_chain& chain, std::int64_t end) {
    vlt_dir_entry entry = store.entry(index);
    const double now = store.clock.vlt_stamp_now();
    const auto first_block = static_cast<std::uint32_t>(chain.first_block()) + 1;
    const bool changed =
        end > entry.size() || entry.first_block() != first_block || entry.accessed() != now || entry.written() != now;
    entry.set_first_block(first_block);
    entry.set_size(std::max(entry.size(), end));
    entry.set_accessed(now);
    entry.set_written(now);
    return (!changed && !store.directory_ahead) || vlt_dir_put(store, index);
}

bool write(vlt_store& store, vlt_file& file, const void* data, std::int32_t length) {
    const std::int32_t index = file.entry_number - 1;
    if (file.position < 0 || file.position > INT64_MAX - length) return false;
    const std::int64_t end = file.position + length;
    vlt_chain& chain = store.open_files.find(index)->chain;
    vlt_chain_extension extension(store, chain);
    if (!vlt_file_reserve(store, index, file.position, end, extension)) return false;
    if (chain.empty() && !vlt_chain_begin(store, chain, store.entry(index).first_block())) return false;
    if (!vlt_chain_write(store, chain, file.position, data, length)) return false;
    if (!extension.finish(end) || !finish_write(store, index, chain, end)) return false;
    file.position = end;
    return true;
}

// ---- Handles -----------------------------------------------------------------------------------------------------

/// Which slots an operation accepts.
enum class vlt_slots { any, open };

/// Runs `use` on the slot of a file handle with the package held; `failure` for a handle that is refused.
template <typename Use>
std::int32_t with_file(std::uint32_t handle, vlt_slots accepted, std::int32_t failure, Use use) {
    vlt_package* slot = vlt_package_of_file(handle);
    if (!slot) return failure;
    vlt_package_hold hold(*slot);
    vlt_file* file = slot->files->at(vlt_slot_of_file(handle));
    if (!file || (accepted == vlt_slots::open && file->free())) return failure;
    return use(hold, *file);
}

}  // namespace

std::int32_t vlt_file_read(std::uint32_t file, void* buffer, std::int32_t length) {
    if (!buffer || length < 1) return 0;
    return with_file(file, vlt_slots::open, 0, [&](vlt_package_hold& hold, vlt_file& open) {
        return read(hold.store(), open, buffer, length, hold.base_read_only());
    });
}

std::int32_t vlt_file_write(std::uint32_t file, const void* buffer, std::int32_t length) {
    if (!buffer || length < 1) return 1;
    return with_file(file, vlt_slots::open, 0, [&](vlt_package_hold& hold, vlt_file& open) -> std::int32_t {
        if (!open.writes()) return 0;
        if (open.mode == VLT_MODE_APPEND && open.position < open.append_floor) return 0;
        return write(hold.store(), open, buffer, length) ? 1 : 0;
    });
}

std::int32_t vlt_file_set_pos(std::uint32_t file, std::int64_t position) {
    return with_file(file, vlt_slots::open, 0, [&](vlt_package_hold& hold, vlt_file& open) {
        const std::int64_t size = hold.store().entry(open.entry_number - 1).size();
        open.position = position == 0 ? 0 : position < 0 || position > size ? size : position;
        return 1;
    });
}

std::int32_t vlt_file_set_pos_bof(std::uint32_t file) {
    return with_file(file, vlt_slots::any, 0, [](vlt_package_hold&, vlt_file& open) {
        open.position = 0;
        return 1;
    });
}

std::int32_t vlt_file_set_pos_eof(std::uint32_t file) {
    return vlt_file_set_pos(file, -1);
}

std::int32_t vlt_file_get_pos(std::uint32_t file, std::int64_t* position) {
    if (!position) return 0;
    *position = 0;
    return with_file(file, vlt_slots::any, 0, [&](vlt_package_hold&, vlt_file& open) {
        *position = open.position;
        return 1;
    });
}

std::int32_t vlt_file_is_eof(std::uint32_t file) {
    return with_file(file, vlt_slots::open, -1, [](vlt_package_hold& hold, vlt_file& open) {
        return open.position >= hold.store().entry(open.entry_number - 1).size() ? 1 : 0;
    });
}

std::int32_t vlt_file_is_bof(std::uint32_t file) {
    return with_file(file, vlt_slots::any, -1,
                     [](vlt_package_hold&, vlt_file& open) { return open.position <= 0 ? 1 : 0; });
}
