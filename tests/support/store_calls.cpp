// SPDX-License-Identifier: MIT
#include "tests/support/store_calls.h"

#include <ctime>

namespace {

bool IsWide(std::int32_t package) {
    return vlt_package_is_unicode_files(package) == 1;
}

}  // namespace

std::uint32_t OpenFile(std::int32_t package, const std::string& name, std::uint32_t mode, OpenHow how,
                       std::uint32_t* error) {
    return static_cast<std::uint32_t>(
        IsWide(package) ? vltw_file_open(package, Widen(name).c_str(), mode, how.exclusive, how.truncate, error)
                        : vlt_file_open(package, name.c_str(), mode, how.exclusive, how.truncate, error));
}

std::uint32_t OpenError(std::int32_t package, const std::string& name, std::uint32_t mode, OpenHow how) {
    std::uint32_t error = 99;
    const std::uint32_t file = OpenFile(package, name, mode, how, &error);
    if (file != 0) vlt_file_close(file);
    return (file != 0) == (error == 0) ? error : 99;
}

std::int32_t GetInfo(std::int32_t package, const std::string& name, FileInfo* info) {
    return IsWide(package) ? vltw_file_get_info(package, Widen(name).c_str(), &info->kind, &info->size,
                                                &info->created, &info->accessed, &info->written)
                           : vlt_file_get_info(package, name.c_str(), &info->kind, &info->size, &info->created,
                                               &info->accessed, &info->written);
}

std::int32_t SetTime(std::int32_t package, const std::string& name, double created, double accessed, double written) {
    return IsWide(package) ? vltw_file_set_time(package, Widen(name).c_str(), created, accessed, written)
                           : vlt_file_set_time(package, name.c_str(), created, accessed, written);
}

std::int32_t Delete(std::int32_t package, const std::string& name) {
    return IsWide(package) ? vltw_file_delete(package, Widen(name).c_str()) : vlt_file_delete(package, name.c_str());
}

std::int32_t Enumerate(std::int32_t package, std::int32_t cursor, FileInfo* info) {
    vlt_wchar wide[VLT_NAME_MAX + 1] = {};
    char narrow[VLT_NAME_MAX + 1] = {};
    const bool is_wide = IsWide(package);
    const std::int32_t next = is_wide ? vltw_package_enum(package, cursor, wide, &info->kind, &info->size,
                                                          &info->created, &info->accessed, &info->written)
                                      : vlt_package_enum(package, cursor, narrow, &info->kind, &info->size,
                                                         &info->created, &info->accessed, &info->written);
    info->name.clear();
    for (int i = 0; is_wide ? wide[i] != 0 : narrow[i] != 0; ++i)
        info->name += is_wide ? static_cast<char>(wide[i]) : narrow[i];
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

double StampNow() {
    const std::time_t now = std::time(nullptr);
    const std::tm* t = std::localtime(&now);
    const double date = (t->tm_year + 1900) * 10000.0 + (t->tm_mon + 1) * 100.0 + t->tm_mday;
    return date + (t->tm_hour * 10000.0 + t->tm_min * 100.0 + t->tm_sec) / 1000000.0;
}
