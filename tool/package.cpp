// SPDX-License-Identifier: MIT
#include "tool/package.h"

#include <algorithm>
#include <utility>

#include "tool/failure.h"
#include "tool/seal.h"
#include "tool/sums.h"

namespace tool {

namespace {

static_assert(sizeof(vlt_wchar) == sizeof(char16_t));

const vlt_wchar* library_text(const std::u16string& wide) {
    return reinterpret_cast<const vlt_wchar*>(wide.c_str());
}

/// Calls the narrow or the wide twin of a function with a name.
template <typename Narrow, typename Wide, typename... Arguments>
auto call(bool wide, Narrow narrow_twin, Wide wide_twin, std::int32_t package, const std::string& name,
          Arguments... arguments) {
    if (!wide) return narrow_twin(package, name.c_str(), arguments...);
    return wide_twin(package, library_text(utf16_of_name(name)), arguments...);
}

// Longer than any word can be, so that it matches none: a writer must not be let in as a reader.
constexpr char kMatchesNothing[] = "longer than a word";

constexpr std::size_t kPiece = 1 << 30;  // lengths have 31 bits

}  // namespace

std::string StoredFile::subject() const {
    return package_.path() + ": " + package_.names().shown(name_);
}

std::size_t StoredFile::read(void* buffer, std::size_t length) {
    std::size_t done = 0;
    while (done < length && left_ > 0) {
        const auto wanted = static_cast<std::int32_t>(
            std::min({length - done, kPiece, static_cast<std::size_t>(std::min<std::int64_t>(left_, kPiece))}));
        const std::int32_t got = vlt_file_read(file_, static_cast<char*>(buffer) + done, wanted);
        if (got <= 0)
            throw StoredFailure(subject(), "cannot be read to its end; `vlt check` tells whether it is damaged");
        done += static_cast<std::size_t>(got);
        left_ -= got;
    }
    return done;
}

void StoredFile::write(const void* data, std::size_t length) {
    for (const char* at = static_cast<const char*>(data); length > 0;) {
        const std::size_t piece = std::min(length, kPiece);
        if (!vlt_file_write(file_, at, static_cast<std::int32_t>(piece)))
            throw Failure(subject(), "cannot be written; is the disk full?");
        at += piece;
        length -= piece;
    }
}

void StoredFile::seek(std::int64_t position) {
    if (!vlt_file_set_pos(file_, position)) throw Failure(subject(), "has no such place");
    left_ = std::max<std::int64_t>(size_ - position, 0);
}

void StoredFile::close() {
    vlt_file_close(file_);
    file_ = 0;
}

Package::Package(const PackageOptions& options, Access access) : options_(options) {
    const fs::path path = path_of(options_.path);
    if (file_status(path).kind == FileStatus::Kind::missing) throw Failure(options_.path, "there is no such file");
    if (!options_.no_lock)
        lock_ = std::make_unique<HostLock>(
            path, access == Access::read ? HostLock::Mode::shared : HostLock::Mode::exclusive);
    std::int32_t error = 0;
    handle_ = open(options_.words, access, &error);
    if (!handle_ && error == VLT_OPEN_CREDENTIALS)
        if (const auto word = ask_hidden("Word for " + options_.path + ": "))
            handle_ = open({*word, *word}, access, &error);
    if (!handle_) throw Failure(options_.path, open_error_text(error));
    names_.emplace(vlt_package_is_unicode_files(handle_) == 1, options_.encoding);
    sealed_ = access == Access::write && find(kSumsName);
}

Package::~Package() {
    try {
        if (handle_) close();  // what an ended verb has changed keeps its sums, too
    } catch (const std::exception&) {
        if (handle_) vlt_package_close(handle_);
    }
}

std::int32_t Package::open(const Credentials& words, Access access, std::int32_t* error) const {
    const bool reads = access == Access::read;
    const auto offset = static_cast<std::uint64_t>(options_.offset);
    return vlt_package_open_ex(library_path(path_of(options_.path)).c_str(), reads,
                               static_cast<std::uint32_t>(offset), static_cast<std::int32_t>(offset >> 32), reads, 0,
                               reads ? words.read.c_str() : kMatchesNothing, words.write.c_str(), nullptr, error);
}

void Package::close() {
    keep_sums(*this, std::exchange(changes_, {}));
    const std::int32_t handle = handle_;
    handle_ = 0;
    if (!vlt_package_close(handle)) throw Failure(options_.path, "cannot be closed");
    if (options_.sync) sync_file(path_of(options_.path));
}

Failure Package::failure(const std::string& name, const std::string& text) const {
    return Failure(options_.path, names_->shown(name) + ": " + text);
}

void Package::for_each(const std::function<void(const Entry&)>& visit) const {
    Entry entry;
    char narrow[VLT_NAME_MAX + 1];
    vlt_wchar wide_name[VLT_NAME_MAX + 1];
    std::uint32_t kind = 0;
    for (std::int32_t cursor = 0;;) {
        cursor = wide() ? vltw_package_enum(handle_, cursor, wide_name, &kind, &entry.size, &entry.created,
                                            &entry.accessed, &entry.written)
                        : vlt_package_enum(handle_, cursor, narrow, &kind, &entry.size, &entry.created,
                                           &entry.accessed, &entry.written);
        if (cursor == 0) return;
        entry.of_other_maker = kind == VLT_ENTRY_OTHER;
        entry.name = wide() ? name_of_utf16(reinterpret_cast<const char16_t*>(wide_name)) : narrow;
        visit(entry);
    }
}

std::vector<Entry> Package::entries() const {
    std::vector<Entry> result;
    for_each([&](const Entry& entry) { result.push_back(entry); });
    return result;
}

std::optional<Entry> Package::find(const std::string& name) const {
    Entry entry;
    entry.name = name;
    std::uint32_t kind = 0;
    if (!call(wide(), vlt_file_get_info, vltw_file_get_info, handle_, name, &kind, &entry.size, &entry.created,
              &entry.accessed, &entry.written))
        return std::nullopt;
    entry.of_other_maker = kind == VLT_ENTRY_OTHER;
    return entry;
}

Entry Package::entry_of_argument(const std::string& text) const {
    for (const auto& name : {names_->stored(text), names_->typed(text)})
        if (name)
            if (auto entry = find(*name)) return *entry;
    throw Failure(options_.path, "there is no '" + shown_text(text) + "' in it; `vlt ls` shows what there is");
}

std::uint32_t Package::open_file(const std::string& name, std::uint32_t mode, bool truncate) const {
    std::uint32_t error = 0;
    const auto file = static_cast<std::uint32_t>(call(wide(), vlt_file_open, vltw_file_open, handle_, name, mode, 0,
                                                      static_cast<std::int32_t>(truncate), &error));
    if (!file) throw failure(name, file_error_text(error));
    return file;
}

StoredFile Package::open_to_read(const Entry& entry) const {
    if (entry.of_other_maker) throw failure(entry.name, "an entry of another maker; only its name can be read");
    return {*this, entry.name, open_file(entry.name, VLT_MODE_READ, false), entry.size};
}

StoredFile Package::open_to_write(const std::string& name) {
    if (sealed_) changes_.written.insert(folded(name));
    return {*this, name, open_file(name, VLT_MODE_WRITE, true), 0};
}

StoredFile Package::open_to_change(const Entry& entry) {
    if (sealed_) changes_.written.insert(folded(entry.name));
    return {*this, entry.name, open_file(entry.name, VLT_MODE_WRITE, false), entry.size};
}

void Package::remove(const std::string& name) {
    if (!call(wide(), vlt_file_delete, vltw_file_delete, handle_, name))
        throw failure(name, "cannot be removed; only stored files can, in a package that may be written");
    if (!sealed_) return;
    changes_.written.erase(folded(name));
    changes_.removed.insert(folded(name));
}

void Package::set_times(const Entry& entry) {
    if (!call(wide(), vlt_file_set_time, vltw_file_set_time, handle_, entry.name, entry.created, entry.accessed,
              entry.written))
        throw failure(entry.name, "its times cannot be written");
    if (sealed_) changes_.retimed.insert(folded(entry.name));
}

}  // namespace tool
