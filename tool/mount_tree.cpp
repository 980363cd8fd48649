// SPDX-License-Identifier: MIT
#include "tool/mount_tree.h"

namespace tool {

namespace {

constexpr std::size_t kLongestPart = 255;  // bytes that programs expect a file's name to have at most

}  // namespace

std::string MountTree::refusal_of(const std::string& path) {
    for (std::size_t at = 0, end = 0; end != path.npos; at = end + 1) {
        end = path.find('/', at);
        const std::string part = path.substr(at, end == path.npos ? end : end - at);
        if (part.empty()) return "a part of its name is empty";
        if (part == "." || part == "..") return "a part of its name is '" + part + "'";
        if (part.size() > kLongestPart) return "a part of its name is longer than 255 bytes";
    }
    return "";
}

MountTree::Kind MountTree::kind(const std::string& path) const {
    if (path.empty()) return Kind::folder;
    if (paths_.count(path)) return Kind::file;
    const auto inside = paths_.lower_bound(path + "/");
    return inside != paths_.end() && inside->first.starts_with(path + "/") ? Kind::folder : Kind::none;
}

std::vector<std::string> MountTree::list(const std::string& folder) const {
    const std::string start = folder.empty() ? "" : folder + "/";
    std::vector<std::string> names;
    for (auto at = paths_.lower_bound(start); at != paths_.end() && at->first.starts_with(start);) {
        const std::size_t slash = at->first.find('/', start.size());
        const std::string name = at->first.substr(start.size(), slash == start.npos ? slash : slash - start.size());
        if (!name.empty()) names.push_back(name);
        // '0' follows '/': what else lies in a folder is passed over.
        at = slash == start.npos ? std::next(at) : paths_.lower_bound(start + name + "0");
    }
    return names;
}

void MountTree::remove(const std::string& path) {
    paths_.erase(path);
    paths_.erase(path + "/");
    const std::size_t slash = path.rfind('/');
    if (slash != path.npos) add_folder(path.substr(0, slash));
}

std::vector<std::string> MountTree::remove_files_named_as_folders() {
    std::vector<std::string> removed;
    for (auto at = paths_.begin(); at != paths_.end();) {
        const auto inside = paths_.lower_bound(at->first + "/");
        if (at->first.back() != '/' && inside != paths_.end() && inside->first.starts_with(at->first + "/")) {
            removed.push_back(at->second);
            at = paths_.erase(at);
        } else {
            ++at;
        }
    }
    return removed;
}

}  // namespace tool
