// SPDX-License-Identifier: MIT
#include <algorithm>

#include "vlt/chain_io.h"
#include "vlt/data_chain.h"
#include "vlt/directory.h"
#include "vlt/file_handle.h"
#include "vlt/package_hold.h"

namespace vlt {

namespace {

// ---- Reading and writing, with the package held ------------------------------------------------------------------

/// The chain of an open file, ready for use; null when the file owns no usable block.
KnownChain* begun_chain(Store& store, std::int32_t index) {
    KnownChain& chain = store.open_files.find(index)->chain;
    return begin_chain(store, chain, store.images.entry(index).first_block()) ? &chain : nullptr;
}

/// Stamps an entry that was read. A stamp that is in the host file already is not written again.
bool stamp_read(Store& store, std::int32_t index, bool in_memory) {
    vlt_dir_entry entry = store.images.entry(index);
    const double now = store.clock.stamp_now();
    const bool changed = entry.accessed() != now;
    entry.set_accessed(now);
    if (!in_memory) return vlt_dir_put_if(store, index, changed);
    if (changed) keep_stamp_here(store, index);
    return true;
}

std::int32_t read(Store& store, vlt_file& file, void* buffer, std::int32_t length, bool stamp_in_memory) {
    const std::int32_t index = file.entry_index();
    const std::int64_t size = store.images.entry(index).size();
    if (!stamp_read(store, index, stamp_in_memory)) return 0;
    if (file.position < 0 || file.position >= size) return 0;
    const auto count = static_cast<std::int32_t>(std::min<std::int64_t>(length, size - file.position));
    KnownChain* chain = begun_chain(store, index);
    if (!chain || !vlt_chain_read(store, *chain, file.position, buffer, count)) return 0;
    file.position += count;
    return count;
}

/// Allocates the blocks that the file needs more, for bytes from `position` to `end` to be written.
bool vlt_file_reserve(Store& store, std::int32_t index, std::int64_t position, std::int64_t end,
                      ChainExtension& extension) {
    const vlt_dir_entry entry = store.images.entry(index);
    const std::int64_t stored = blocks_for(entry.size());
    const std::int64_t wanted = blocks_for(end) - stored;
    if (wanted <= 0) return true;
    if (blocks_for(end) > VLT_BLOCKS_MAX) return false;
    KnownChain& chain = store.open_files.find(index)->chain;
    if (entry.first_block() != 0 && !begin_chain(store, chain, entry.first_block())) return false;
    return extension.allocate(static_cast<std::int32_t>(stored), static_cast<std::int32_t>(wanted),
                              position >= entry.size());
}

/// Enters what a write has changed.
bool enter_write(Store& store, std::int32_t index, const KnownChain& chain, std::int64_t end) {
    vlt_dir_entry entry = store.images.entry(index);
    const double now = store.clock.stamp_now();
    const auto first_block = static_cast<std::uint32_t>(chain.first_block()) + 1;
    const bool changed =
        end > entry.size() || entry.first_block() != first_block || entry.accessed() != now || entry.written() != now;
    entry.set_first_block(first_block);
    entry.set_size(std::max(entry.size(), end));
    entry.set_accessed(now);
    entry.set_written(now);
    return vlt_dir_put_if(store, index, changed);
}

bool write(Store& store, vlt_file& file, const void* data, std::int32_t length) {
    const std::int32_t index = file.entry_index();
    if (file.position < 0 || file.position > INT64_MAX - length) return false;
    const std::int64_t end = file.position + length;
    KnownChain& chain = store.open_files.find(index)->chain;
    ChainExtension extension(store, chain);
    if (!vlt_file_reserve(store, index, file.position, end, extension)) return false;
    if (chain.empty() && !begin_chain(store, chain, store.images.entry(index).first_block())) return false;
    if (!vlt_chain_write(store, chain, file.position, data, length)) return false;
    if (!extension.commit(end) || !enter_write(store, index, chain, end)) return false;
    file.position = end;
    return true;
}

// ---- Handles -----------------------------------------------------------------------------------------------------

/// Which slots an operation accepts: any of the table, or those with an open file.
enum class Accepts { any_slot, open_file };

/// Runs `use` on the slot of a file handle with the package held; `refused` for a handle that is refused.
template <typename Use>
std::int32_t with_file(std::uint32_t handle, Accepts accepted, std::int32_t refused, Use use) {
    vlt_package* slot = package_of_file(handle);
    if (!slot) return refused;
    PackageHold hold(*slot);
    vlt_file* file = slot->files->at(slot_of_file(handle));
    if (!file || (accepted == Accepts::open_file && file->free())) return refused;
    return use(hold, *file);
}

}  // namespace

}  // namespace vlt

using namespace vlt;

VLT_API std::int32_t VLT_CALL vlt_file_read(std::uint32_t file, void* buffer, std::int32_t length) {
    if (!buffer || length < 1) return 0;
    return with_file(file, Accepts::open_file, 0, [&](PackageHold& hold, vlt_file& open) {
        return read(hold.store(), open, buffer, length, hold.base_read_only());
    });
}

VLT_API std::int32_t VLT_CALL vlt_file_write(std::uint32_t file, const void* buffer, std::int32_t length) {
    if (!buffer || length < 1) return 1;
    return with_file(file, Accepts::open_file, 0, [&](PackageHold& hold, vlt_file& open) {
        const bool allowed = open.writes() && (open.mode != VLT_MODE_APPEND || open.position >= open.append_floor);
        return allowed && write(hold.store(), open, buffer, length) ? 1 : 0;
    });
}

VLT_API std::int32_t VLT_CALL vlt_file_set_pos(std::uint32_t file, std::int64_t position) {
    return with_file(file, Accepts::open_file, 0, [&](PackageHold& hold, vlt_file& open) {
        const std::int64_t size = hold.store().images.entry(open.entry_index()).size();
        open.position = position == 0 ? 0 : position < 0 || position > size ? size : position;
        return 1;
    });
}

VLT_API std::int32_t VLT_CALL vlt_file_set_pos_bof(std::uint32_t file) {
    return with_file(file, Accepts::any_slot, 0, [](PackageHold&, vlt_file& open) {
        open.position = 0;
        return 1;
    });
}

VLT_API std::int32_t VLT_CALL vlt_file_set_pos_eof(std::uint32_t file) {
    return vlt_file_set_pos(file, -1);
}

VLT_API std::int32_t VLT_CALL vlt_file_get_pos(std::uint32_t file, std::int64_t* position) {
    if (!position) return 0;
    *position = 0;
    return with_file(file, Accepts::any_slot, 0, [&](PackageHold&, vlt_file& open) {
        *position = open.position;
        return 1;
    });
}

VLT_API std::int32_t VLT_CALL vlt_file_is_eof(std::uint32_t file) {
    return with_file(file, Accepts::open_file, -1, [](PackageHold& hold, vlt_file& open) {
        return open.position >= hold.store().images.entry(open.entry_index()).size() ? 1 : 0;
    });
}

VLT_API std::int32_t VLT_CALL vlt_file_is_bof(std::uint32_t file) {
    return with_file(file, Accepts::any_slot, -1,
                     [](PackageHold&, vlt_file& open) { return open.position <= 0 ? 1 : 0; });
}
