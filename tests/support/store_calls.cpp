// SPDX-License-Identifier: MIT
#include "tests/support/store_calls.h"

#include <cstring>
namespace {

template <typename Narrow, typename Wide, typename... Rest>
std::int32_t CallTwin(Narrow narrow, Wide wide, std::int32_t package, const std::string& name, Rest... rest) {
    return vlt_package_is_unicode_files(package) == 1 ? wide(package, Widen(name).c_str(), rest...)
                                                      : narrow(package, name.c_str(), rest...);
}

}  // namespace

std::uint32_t OpenFile(std::int32_t package, const std::string& name, std::uint32_t mode, OpenHow how,
                       std::uint32_t* error) {
    return static_cast<std::uint32_t>(
        CallTwin(vlt_file_open, vltw_file_open, package, name, mode, how.exclusive, how.truncate, error));
}

std::uint32_t OpenError(std::int32_t package, const std::string& name, std::uint32_t mode, OpenHow how) {
    std::uint32_t error = 99;
    const std::uint32_t file = OpenFile(package, name, mode, how, &error);
    if (file != 0) vlt_file_close(file);
    return (file != 0) == (error == 0) ? error : 99;
}

std::int32_t GetInfo(std::int32_t package, const std::string& name, FileInfo* info) {
    return CallTwin(vlt_file_get_info, vltw_file_get_info, package, name, &info->kind, &info->size, &info->created,
                    &info->accessed, &info->written);
}

std::int32_t SetTime(std::int32_t package, const std::string& name, double created, double accessed, double written) {
    return CallTwin(vlt_file_set_time, vltw_file_set_time, package, name, created, accessed, written);
}

std::int32_t Delete(std::int32_t package, const std::string& name) {
    return CallTwin(vlt_file_delete, vltw_file_delete, package, name);
}

std::int32_t Enumerate(std::int32_t package, std::int32_t cursor, FileInfo* info) {
    char narrow[VLT_NAME_MAX + 1];
    vlt_wchar wide[VLT_NAME_MAX + 1];
    std::memset(narrow, 'x', sizeof narrow);
    std::memset(wide, 'x', sizeof wide);
    wide[0] = narrow[0] = 0;  // nothing else ends a name but what is written
    const std::int32_t next = vlt_package_is_unicode_files(package) == 1
                                  ? vltw_package_enum(package, cursor, wide, &info->kind, &info->size, &info->created,
                                                      &info->accessed, &info->written)
                                  : vlt_package_enum(package, cursor, narrow, &info->kind, &info->size,
                                                     &info->created, &info->accessed, &info->written);
    const WideName wide_name = wide;
    info->name = wide_name.empty() ? narrow : std::string(wide_name.begin(), wide_name.end());
    return next;
}

bool WriteTo(std::uint32_t file, const Bytes& bytes) {
    return vlt_file_write(file, bytes.data(), static_cast<std::int32_t>(bytes.size())) == 1;
}

Bytes ReadFrom(std::uint32_t file, std::int32_t length) {
    Bytes bytes(static_cast<std::size_t>(length), 0xEE);
    bytes.resize(static_cast<std::size_t>(vlt_file_read(file, bytes.data(), length)));
    return bytes;
}

std::int64_t PositionOf(std::uint32_t file) {
    std::int64_t position = -1;
    return vlt_file_get_pos(file, &position) == 1 ? position : -1;
}

Bytes Pattern(const std::string& seed, std::size_t length) {
    std::uint32_t state = 2166136261u;
    for (const char c : seed) state = (state ^ static_cast<unsigned char>(c)) * 16777619u;
    Bytes bytes(length);
    for (std::uint8_t& byte : bytes) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return bytes;
}

double StampOf(std::time_t second) {
    const std::tm* t = std::localtime(&second);
    const double date = (t->tm_year + 1900) * 10000.0 + (t->tm_mon + 1) * 100.0 + t->tm_mday;
    return date + (t->tm_hour * 10000.0 + t->tm_min * 100.0 + t->tm_sec) / 1000000.0;
}
