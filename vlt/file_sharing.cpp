// SPDX-License-Identifier: MIT
#include "vlt/file_sharing.h"

namespace vlt {

bool vlt_file_check_share(const Store& store, std::int32_t entry_index, std::uint32_t mode, bool exclusive) {
    const OpenFile* open = store.open_files.find(entry_index);
    if (!open) return true;
    const bool writes = mode == VLT_MODE_WRITE || mode == VLT_MODE_APPEND;
    return !exclusive && open->exclusive_opens == 0 && !(writes && open->writers > 0);
}

}  // namespace vlt
