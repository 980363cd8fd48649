// SPDX-License-Identifier: MIT
#include "vlt/name_index.h"

#include <algorithm>

#include "vlt/stored_name.h"

namespace vlt {

bool NameIndex::set_limit(std::int32_t limit) {
    if (!nodes_.resize(static_cast<std::size_t>(limit) + 1)) return false;
    std::size_t wanted = buckets_.empty() ? 32 : buckets_.size();
    while (wanted < static_cast<std::size_t>(limit)) wanted *= 2;
    if (wanted == buckets_.size()) return true;
    Array<std::int32_t> larger;
    if (!larger.resize(wanted)) return false;
    larger.swap(buckets_);
    // A node that was in a tree has a level, and loses its place there before it gets one in its new bucket.
    for (std::int32_t node = 1; static_cast<std::size_t>(node) < nodes_.size(); ++node)
        if (at(node).level > 0) insert(node, at(node).hash);
    return true;
}

void NameIndex::add(std::int32_t entry) {
    if (images_.entry(entry).kind() == VLT_ENTRY_OTHER) ++others_;
    insert(entry + 1, hash_of(images_.entry(entry).name()));
}

void NameIndex::remove(std::int32_t entry) {
    if (images_.entry(entry).kind() == VLT_ENTRY_OTHER) --others_;
    Place root = bucket(at(entry + 1).hash);
    root = erased(root, entry + 1);
    at(entry + 1) = {};
}

std::int32_t NameIndex::find_in_use(const std::uint8_t* name) const {
    const std::uint32_t hash = hash_of(name);
    const std::int32_t file = find(name, hash, VLT_ENTRY_FILE);
    const std::int32_t other = others_ > 0 ? find(name, hash, VLT_ENTRY_OTHER) : -1;
    return file < 0 || (other >= 0 && other < file) ? other : file;
}

std::int32_t NameIndex::find(const std::uint8_t* name, std::uint32_t hash, int kind) const {
    std::int32_t found = 0;
    for (std::int32_t node = buckets_[hash & (buckets_.size() - 1)]; node != 0;) {
        const int order = compare(name, hash, kind, node);
        if (order == 0) found = node;
        node = order <= 0 ? at(node).left : at(node).right;
    }
    return found - 1;
}

// ---- The order in a bucket: by hash, name, kind and number -------------------------------------------------------

std::uint32_t NameIndex::hash_of(const std::uint8_t* name) const {
    return images_.wide_names ? hash_name<char16_t>(name) : hash_name<char>(name);
}

int NameIndex::compare(const std::uint8_t* name, std::uint32_t hash, int kind, std::int32_t node) const {
    if (hash != at(node).hash) return hash < at(node).hash ? -1 : 1;
    const vlt_dir_entry entry = images_.entry(node - 1);
    const int order =
        images_.wide_names ? compare_names<char16_t>(name, entry.name()) : compare_names<char>(name, entry.name());
    return order != 0 ? order : kind - entry.kind();
}

bool NameIndex::precedes(std::int32_t a, std::int32_t b) const {
    const vlt_dir_entry entry = images_.entry(a - 1);
    const int order = compare(entry.name(), at(a).hash, entry.kind(), b);
    return order != 0 ? order < 0 : a < b;
}

// ---- The trees ---------------------------------------------------------------------------------------------------
// Of Andersson's kind: a node's left child is one level lower, its right child one level lower or none, and its right
// grandchild is lower. Each function below takes the root of a tree and returns the new one.

void NameIndex::insert(std::int32_t node, std::uint32_t hash) {
    at(node) = {hash, 0, 0, 1};
    Place root = bucket(hash);
    root = inserted(root, node);
}

std::int32_t NameIndex::skewed(std::int32_t tree) {
    const std::int32_t left = at(tree).left;
    if (left == 0 || at(left).level != at(tree).level) return tree;
    at(tree).left = at(left).right;
    at(left).right = tree;
    return left;
}

std::int32_t NameIndex::split(std::int32_t tree) {
    const std::int32_t right = at(tree).right;
    if (right == 0 || at(right).right == 0 || at(at(right).right).level != at(tree).level) return tree;
    at(tree).right = at(right).left;
    at(right).left = tree;
    ++at(right).level;
    return right;
}

std::int32_t NameIndex::inserted(std::int32_t tree, std::int32_t node) {
    if (tree == 0) return node;
    if (precedes(node, tree))
        at(tree).left = inserted(at(tree).left, node);
    else
        at(tree).right = inserted(at(tree).right, node);
    return split(skewed(tree));
}

std::int32_t NameIndex::erased(std::int32_t tree, std::int32_t node) {
    if (tree == 0) return 0;
    if (tree == node) {
        if (at(tree).left == 0 || at(tree).right == 0) return at(tree).left + at(tree).right;
        std::int32_t next = at(tree).right;
        while (at(next).left != 0) next = at(next).left;
        const std::int32_t right = erased(at(tree).right, next);
        at(next) = {at(next).hash, at(tree).left, right, at(tree).level};
        return lowered(next);
    }
    if (precedes(node, tree))
        at(tree).left = erased(at(tree).left, node);
    else
        at(tree).right = erased(at(tree).right, node);
    return lowered(tree);
}

/// Restores the order of levels in a tree of which a branch may have become one lower.
std::int32_t NameIndex::lowered(std::int32_t tree) {
    const std::int32_t wanted = std::min(at(at(tree).left).level, at(at(tree).right).level) + 1;
    if (wanted >= at(tree).level) return tree;
    at(tree).level = wanted;
    if (at(tree).right != 0 && at(at(tree).right).level > wanted) at(at(tree).right).level = wanted;
    tree = skewed(tree);
    const std::int32_t right = at(tree).right;
    if (right != 0) {
        at(tree).right = skewed(right);
        const std::int32_t skewed_right = at(tree).right;
        if (at(skewed_right).right != 0) at(skewed_right).right = skewed(at(skewed_right).right);
    }
    tree = split(tree);
    if (at(tree).right != 0) at(tree).right = split(at(tree).right);
    return tree;
}

}  // namespace vlt
