// SPDX-License-Identifier: MIT
// The folders that the flat names of a package make when `/` parts them.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace tool {

/// Paths have no `/` at their start or end; the empty one is the root. What it holds grows with the names alone,
/// however many folders they stand for.
class MountTree {
public:
    enum class Kind { none, file, folder };

    /// Why a name can be no path; empty when it can.
    static std::string refusal_of(const std::string& path);

    Kind kind(const std::string& path) const;
    /// The stored name of a file that is there.
    const std::string& stored(const std::string& path) const { return paths_.at(path); }
    /// The names in a folder.
    std::vector<std::string> list(const std::string& folder) const;

    /// False when there is such a file.
    bool add_file(const std::string& path, const std::string& stored) { return paths_.emplace(path, stored).second; }
    void add_folder(const std::string& path) { paths_.emplace(path + "/", ""); }
    /// Takes away a file, or a folder that holds nothing. The folder it was in stays, though nothing may be left
    /// there.
    void remove(const std::string& path);
    bool holds_nothing(const std::string& folder) const { return list(folder).empty(); }

    /// Takes away the files that bear the name of a folder, and returns their stored names.
    std::vector<std::string> remove_files_named_as_folders();

private:
    std::map<std::string, std::string> paths_;  // stored names by path; "folder/" for one that is there by itself
};

}  // namespace tool
