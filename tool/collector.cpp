// SPDX-License-Identifier: MIT
#include "tool/collector.h"

#include <algorithm>
#include <optional>

#include "tool/failure.h"
#include "tool/patterns.h"

namespace tool {

namespace {

const char* kind_text(FileStatus::Kind kind) {
    switch (kind) {
        case FileStatus::Kind::missing:
            return "cannot be looked at";
        case FileStatus::Kind::link:
            return "a link";
        default:
            return "neither file nor folder";
    }
}

}  // namespace

std::string name_of_path(const fs::path& path) {
    std::string name;
    for (const fs::path& part : path.lexically_normal().relative_path())
        if (part != "." && part != ".." && !part.empty()) name += (name.empty() ? "" : "/") + text_of(part);
    return name;
}

bool Collector::is_excluded(const std::string& name) const {
    if (excluded.empty()) return false;
    const std::string last = name.substr(name.rfind('/') + 1);
    return std::any_of(excluded.begin(), excluded.end(),
                       [&](const std::string& pattern) { return matches(pattern, name) || matches(pattern, last); });
}

void Collector::collect(const fs::path& path, const std::string& name) {
    if (name.empty()) return walk(path, name);
    if (is_excluded(name)) return;
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    take({std::make_shared<const fs::path>(folder), path.filename().native(), name, file_status(path)});
}

/// The size tells nearly always, and is at hand; the name does not, for a file may have several.
bool Collector::is_not_this(const SourceFile& file) {
    std::error_code missing, unequal;
    if (!not_this_size_) not_this_size_ = static_cast<std::int64_t>(fs::file_size(not_this, missing));
    return file.status.size == *not_this_size_ && fs::equivalent(file.path(), not_this, unequal);
}

void Collector::take(SourceFile file) {
    check_interrupt();
    const FileStatus::Kind kind = file.status.kind;
    if (kind == FileStatus::Kind::folder) return walk(file.path(), file.name);
    if (kind != FileStatus::Kind::file) return left_out.push_back({file.name, kind_text(kind)});
    if (is_not_this(file)) return left_out.push_back({file.name, "the package itself"});
    bytes += static_cast<std::uint64_t>(file.status.size);
    files.push_back(std::move(file));
}

void Collector::walk(const fs::path& folder, const std::string& name) {
    for (SourceFile& file : look_at(folder, name)) take(std::move(file));
}

/// What is in a folder and not excluded. The folder is closed when this returns: folders may be nested deeper than
/// files may be open.
std::vector<SourceFile> Collector::look_at(const fs::path& folder, const std::string& name) {
    std::error_code error;
    std::vector<PathText> names;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
        names.push_back(it->path().filename().native());
    if (error) left_out.push_back({name, "a folder that cannot be read"});
    std::vector<SourceFile> found;
    if (names.empty()) return found;
    // The order of the directory differs from system to system.
    std::sort(names.begin(), names.end());
    const auto shared = std::make_shared<const fs::path>(folder);
    std::optional<HostFolder> opened;
    try {
        opened.emplace(folder);
    } catch (const Failure&) {  // it was there a moment ago
        left_out.push_back({name, "a folder that cannot be read"});
        return found;
    }
    for (const PathText& last : names) {
        SourceFile file{shared, last, (name.empty() ? "" : name + "/") + text_of(last), {}};
        if (is_excluded(file.name)) continue;
        file.status = opened->status(last);
        found.push_back(std::move(file));
    }
    return found;
}

}  // namespace tool
