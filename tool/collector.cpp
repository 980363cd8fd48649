// SPDX-License-Identifier: MIT
#include "tool/collector.h"

#include <algorithm>

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
    const std::string last = name.substr(name.rfind('/') + 1);
    return std::any_of(excluded.begin(), excluded.end(),
                       [&](const std::string& pattern) { return matches(pattern, name) || matches(pattern, last); });
}

void Collector::collect(const fs::path& path, const std::string& name) {
    if (!name.empty())
        take(path, name);
    else
        walk(path, name);
}

void Collector::take(const fs::path& path, const std::string& name) {
    check_interrupt();
    if (is_excluded(name)) return;
    const FileStatus status = file_status(path);
    if (status.kind == FileStatus::Kind::folder) return walk(path, name);
    if (status.kind != FileStatus::Kind::file) {
        left_out.push_back({name, kind_text(status.kind)});
        return;
    }
    std::error_code unequal;
    if (path.filename() == not_this.filename() && fs::equivalent(path, not_this, unequal)) {
        left_out.push_back({name, "the package itself"});
        return;
    }
    files.push_back({path, name, status});
    bytes += static_cast<std::uint64_t>(status.size);
}

void Collector::walk(const fs::path& folder, const std::string& name) {
    std::error_code error;
    std::vector<fs::path> found;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
        found.push_back(it->path());
    if (error) left_out.push_back({name, "a folder that cannot be read"});
    // The order of the directory differs from system to system.
    std::sort(found.begin(), found.end());
    for (const fs::path& path : found) take(path, (name.empty() ? "" : name + "/") + text_of(path.filename()));
}

}  // namespace tool
