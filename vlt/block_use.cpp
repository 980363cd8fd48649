// SPDX-License-Identifier: MIT
#include "vlt/block_use.h"

#include <algorithm>

#include "vlt/store.h"

namespace vlt {

// ---- Contested blocks --------------------------------------------------------------------------------------------

void ContestedBlocks::settle(std::int32_t existing) {
    std::sort(linked_.begin(), linked_.end(), [](const Linked& a, const Linked& b) { return a.block < b.block; });
    std::size_t count = 0;
    for (const Linked& linked : linked_) {
        if (count > 0 && linked_[count - 1].block == linked.block)
            ++linked_[count - 1].links;
        else
            linked_[count++] = {linked.block, linked.block < existing ? 2 : 1};
    }
    linked_.shrink(count);
}

const ContestedBlocks::Linked* ContestedBlocks::find(std::int32_t block) const {
    const Linked* found = std::lower_bound(linked_.begin(), linked_.end(), block,
                                           [](const Linked& linked, std::int32_t b) { return linked.block < b; });
    return found != linked_.end() && found->block == block ? found : nullptr;
}

std::int32_t ContestedBlocks::links_to(std::int32_t block) const {
    const Linked* linked = find(block);
    return linked ? linked->links : 0;
}

bool ContestedBlocks::lose_link_to_contested(std::int32_t block) {
    const Linked* linked = find(block);
    if (!linked || linked->links == 0) return true;
    return --linked_[static_cast<std::size_t>(linked - linked_.begin())].links == 0;
}

// ---- The search --------------------------------------------------------------------------------------------------

namespace {

/// Looks at every word and every entry of a package.
class Search {
public:
    explicit Search(Store& store)
        : store_(store),
          images_(store.images),
          mapped_(store.mapped_blocks()),
          words_(store.images.map_capacity()),
          entries_(store.images.vlt_dir_count()) {}

    bool run() {
        if (!named_.set_limit(words_ + 1) || !store_.blocks.free.set_limit(mapped_)) return false;
        name_all();
        if (damaged_ && !follow_all()) return false;
        for (std::int32_t block = 0; block < mapped_; ++block)
            if (!is_used(images_.word(block)) && !images_.own_blocks.contains(block) && !named_.contains(block))
                store_.blocks.free.add(block);
        return true;
    }

private:
    /// Names what used words and entries name, and notices whether the package is damaged: a block is named twice, or
    /// is not there, or looks free. Where it is not, no chain can meet another.
    void name_all() {
        name(VLT_HEADER_START);
        name(VLT_DIRECTORY_START);
        for (std::int32_t block = 0; block < words_; ++block) {
            const std::uint32_t word = images_.word(block);
            if (is_used(word)) name(next_of(word));
        }
        for (std::int32_t i = 0; i <= entries_; ++i) name(first_block(i));
    }

    void name(std::int32_t block) {
        if (block < 0) return;
        if (block >= mapped_ || !is_used(images_.word(block)) || named_.contains(block)) damaged_ = true;
        if (block <= words_) named_.add(block);
    }

    /// Follows the chain of every entry, as reading its file would, and notes where it leads to a block that another
    /// one reached before. A block that looks free has a next one, too.
    bool follow_all() {
        IndexSet reached;
        if (!reached.set_limit(words_ + 1)) return false;
        for (std::int32_t i = 0; i <= entries_; ++i)
            for (std::int32_t block = first_block(i); block >= 0; block = next_of(word_in_time(block))) {
                if (images_.own_blocks.contains(block)) break;
                const bool again = reached.contains(block);
                if ((again || block >= mapped_) && !store_.blocks.contested.note(block)) return false;
                if (again || block > words_) break;
                reached.add(block);
                named_.add(block);
            }
        store_.blocks.contested.settle(mapped_);
        return true;
    }

    /// The word of a block, also of one that comes into being later: of the word that begins in the header's last
    /// bytes, those.
    std::uint32_t word_in_time(std::int32_t block) {
        if (block < words_) return images_.word(block);
        std::uint8_t bytes[4] = {};
        std::copy(images_.word_at(block), images_.header.bytes.end(), bytes);
        return load_at<std::uint32_t>(bytes);
    }

    /// The first block of an entry in use; also of the one that begins in the directory's last bytes, and comes into
    /// being when it grows.
    std::int32_t first_block(std::int32_t entry) {
        std::uint8_t bytes[5] = {};
        const std::uint8_t* at = images_.entry_at(entry);
        std::copy_n(at, std::min<std::ptrdiff_t>(sizeof bytes, images_.directory.bytes.end() - at), bytes);
        const vlt_dir_entry begun(bytes);
        return begun.in_use() ? begun.first_index() : -1;
    }

    Store& store_;
    Images& images_;
    const std::int32_t mapped_;
    const std::int32_t words_;    // whole ones in the header
    const std::int32_t entries_;  // whole ones in the directory
    IndexSet named_;
    bool damaged_ = false;
};

}  // namespace

bool search_blocks(Store& store) {
    if (store.blocks.searched) return true;
    store.blocks.free.clear();  // what a search that ran out of memory left
    store.blocks.contested.clear();
    store.blocks.searched = Search(store).run();
    return store.blocks.searched;
}

bool reserve_blocks(Store& store, std::int32_t limit) {
    return store.blocks.free.set_limit(limit);
}

void add_new_block(Store& store, std::int32_t block) {
    if (block < store.mapped_blocks() && !is_used(store.images.word(block)) &&
        !store.blocks.contested.contains(block))
        store.blocks.free.add(block);
}

void take_block(Store& store, std::int32_t block) {
    store.blocks.free.remove(block);
}

void give_block_back(Store& store, std::int32_t block) {
    store.blocks.free.add(block);
}

}  // namespace vlt
