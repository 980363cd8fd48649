// SPDX-License-Identifier: MIT
// Which directory entries bear a name, so that a file is found without a scan: a hash table whose buckets are
// balanced trees. A bucket holds an entry or two as a rule; where a directory was made of names that share a hash,
// finding one of n takes log n comparisons.
#pragma once

#include <cstdint>

#include "base/array.h"
#include "vlt/images.h"

namespace vlt {

class NameIndex {
public:
    explicit NameIndex(Images& images) : images_(images) {}

    bool built() const { return !buckets_.empty(); }

    /// Makes room for the entries below `limit`; false when memory runs out. Entries added before are kept.
    [[nodiscard]] bool set_limit(std::int32_t limit);

    /// Adds an entry; the limit must cover it.
    void add(std::int32_t entry);

    /// Removes an entry that was added, before its kind or its name changes.
    void remove(std::int32_t entry);

    /// The lowest stored file of a name, and the lowest entry in use; -1 for none. The name is as wide as those of
    /// the package, and ends with its terminator. The index must have been built.
    std::int32_t find_file(const std::uint8_t* name) const { return find(name, hash_of(name), VLT_ENTRY_FILE); }
    std::int32_t find_in_use(const std::uint8_t* name) const;

private:
    /// The node of an entry in the tree of its bucket. Nodes are numbered like entries; 0 is no node.
    struct Node {
        std::uint32_t hash;
        std::int32_t left, right;
        std::int32_t level;  // 0: not in a tree; children on the left are one lower, on the right one or none
    };
    using Place = std::int32_t&;

    std::uint32_t hash_of(const std::uint8_t* name) const;
    std::int32_t find(const std::uint8_t* name, std::uint32_t hash, int kind) const;
    int compare(const std::uint8_t* name, std::uint32_t hash, int kind, std::int32_t node) const;
    bool precedes(std::int32_t a, std::int32_t b) const;
    Place bucket(std::uint32_t hash) { return buckets_[hash & (buckets_.size() - 1)]; }
    Node& at(std::int32_t node) { return nodes_[static_cast<std::size_t>(node)]; }
    const Node& at(std::int32_t node) const { return nodes_[static_cast<std::size_t>(node)]; }

    void insert(std::int32_t node, std::uint32_t hash);
    std::int32_t inserted(std::int32_t tree, std::int32_t node);
    std::int32_t erased(std::int32_t tree, std::int32_t node);
    std::int32_t lowered(std::int32_t tree);
    std::int32_t skewed(std::int32_t tree);
    std::int32_t split(std::int32_t tree);

    Images& images_;
    Array<std::int32_t> buckets_;  // a power of two of them; the root of each, 0 for none
    Array<Node> nodes_;
    std::int32_t others_ = 0;  // entries of another maker among them; as a rule there are none
};

}  // namespace vlt
