// SPDX-License-Identifier: MIT
#include "vlt/name_index.h"

bool vlt_name_index::set_limit(std::size_t entries) {
    if (!links_.resize(entries > links_.size() ? entries : links_.size())) return false;
    std::size_t heads = heads_.empty() ? 16 : heads_.size();
    while (heads < entries) heads *= 2;
    return heads == heads_.size() || rehash(heads);
}

bool vlt_name_index::rehash(std::size_t heads) {
    if (!heads_.reserve(heads)) return false;
    heads_.shrink(0);
    if (!heads_.resize(heads)) return false;
    for (std::size_t entry = 0; entry < links_.size(); ++entry)
        if (links_[entry].present) {
            links_[entry].present = false;
            add(static_cast<std::int32_t>(entry), links_[entry].hash);
        }
    return true;
}

void vlt_name_index::add(std::int32_t entry, std::uint32_t hash) {
    Link& link = links_[static_cast<std::size_t>(entry)];
    std::int32_t& head = heads_[hash & (heads_.size() - 1)];
    link = {hash, head, true};
    head = entry + 1;
}

void vlt_name_index::remove(std::int32_t entry) {
    Link& link = links_[static_cast<std::size_t>(entry)];
    if (!link.present) return;
    std::int32_t* at = &heads_[link.hash & (heads_.size() - 1)];
    while (*at != entry + 1) at = &links_[static_cast<std::size_t>(*at) - 1].next;
    *at = link.next;
    link.present = false;
}
