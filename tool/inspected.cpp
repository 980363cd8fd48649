// SPDX-License-Identifier: MIT
#include "tool/inspected.h"

#include <nlohmann/json.hpp>

#include "tool/failure.h"

namespace tool {

namespace {

std::unique_ptr<HostLock> lock_to_read(const PackageOptions& options) {
    const fs::path path = path_of(options.path);
    const auto kind = file_status(path).kind;
    if (kind == FileStatus::Kind::missing) throw Failure(options.path, "there is no such file");
    if (kind == FileStatus::Kind::folder) throw Failure(options.path, "is a folder, not a package");
    return options.no_lock ? nullptr : std::make_unique<HostLock>(path, HostLock::Mode::shared);
}

}  // namespace

std::string stored_name(const std::u16string& name, bool wide) {
    if (wide) return name_of_utf16(name);
    std::string narrow;
    for (const char16_t unit : name) narrow += static_cast<char>(unit);
    return narrow;
}

Inspected::Inspected(const PackageOptions& options)
    : path_(options.path),
      lock_(lock_to_read(options)),
      host_(library_path(path_of(options.path))),
      package(host_, static_cast<std::uint64_t>(options.offset)),
      names_(package.wide(), options.encoding) {}

std::u16string Inspected::package_name(const std::string& stored) const {
    if (package.wide()) return utf16_of_name(stored);
    std::u16string name;
    for (const char c : stored) name += static_cast<unsigned char>(c);
    return name;
}

void Inspected::add_name(Json& object, const char* key, const std::string& stored) const {
    object[key] = names_.shown(stored);
    if (!names_.is_text(stored)) object[std::string(key) + "_hex"] = names_.hex(stored);
}

void Inspected::require_package() const {
    if (!package.is_package())
        throw Failure(path_, "does not begin like a package; `vlt salvage` brings back what it may hold");
}

inspect::Entry Inspected::entry_of_argument(const std::string& text) const {
    for (const auto& name : {names_.stored(text), names_.typed(text)}) {
        inspect::Entry found;
        found.index = -1;
        if (!name) continue;
        const std::string wanted = folded(*name);
        package.ForEachEntry([&](const inspect::Entry& entry) {
            if (found.index < 0 && entry.used() && folded(stored(entry.name)) == wanted) found = entry;
        });
        if (found.index >= 0) return found;
    }
    throw Failure(path_, "there is no '" + shown_text(text) + "' in it; `vlt ls` shows what there is");
}

}  // namespace tool
