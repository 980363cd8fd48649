// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstring>

#include "base/array.h"
#include "platform/disk_path.h"
#include "platform/disk_stream.h"
#include "vlt/format.h"

namespace vlt {

namespace {

bool fits_credential(const char* credential) {
    return !credential || std::strlen(credential) <= VLT_CREDENTIAL_MAX;
}

void put_credential(std::uint8_t* field, const char* credential) {
    std::uint8_t padded[VLT_CREDENTIAL_MAX] = {};
    if (credential) std::memcpy(padded, credential, std::strlen(credential));
    swap_credential(padded, field);
}

void put_word(std::uint8_t* header, std::int32_t block, std::uint32_t next) {
    store_at(header + VLT_MAP_OFFSET + 4 * static_cast<std::size_t>(block), VLT_BLOCK_USED | next);
}

/// The map of a new package: the directory is block 1, the header chain block 0 and then blocks 2, 3, ...
void put_map(std::uint8_t* header, std::int32_t header_blocks) {
    put_word(header, VLT_DIRECTORY_START, 0);
    put_word(header, VLT_HEADER_START, header_blocks > 1 ? 3 : 0);
    for (std::int32_t i = 2; i <= header_blocks && header_blocks > 1; ++i)
        put_word(header, i, i < header_blocks ? static_cast<std::uint32_t>(i) + 2 : 0);
}

/// Writes zeros in pieces of moderate size: a host file laid out in very large writes serves small ones worse.
bool write_zeros(std::FILE* stream, std::int64_t length) {
    static const char zeros[64 * 1024] = {};
    while (length > 0) {
        const auto piece = static_cast<std::size_t>(std::min<std::int64_t>(length, sizeof zeros));
        if (!disk_write(stream, zeros, piece)) return false;
        length -= static_cast<std::int64_t>(piece);
    }
    return true;
}

/// The host file in order: block 0, the empty directory, the rest of the prepared header, and zeros to the end.
bool write_package(std::FILE* stream, const Array<std::uint8_t>& header, std::int64_t blocks) {
    return disk_write(stream, header.data(), VLT_BLOCK_SIZE) && write_zeros(stream, VLT_BLOCK_SIZE) &&
           disk_write(stream, header.data() + VLT_BLOCK_SIZE, header.size() - VLT_BLOCK_SIZE) &&
           write_zeros(stream, blocks * VLT_BLOCK_SIZE - VLT_BLOCK_SIZE - static_cast<std::int64_t>(header.size()));
}

}  // namespace

}  // namespace vlt

using namespace vlt;

VLT_API std::int32_t VLT_CALL vlt_package_create(const char* path, std::int32_t wide_names, std::int32_t size_mb,
                                                 const char* read_credential, const char* write_credential) {
    if (!path || !fits_credential(read_credential) || !fits_credential(write_credential)) return 0;
    const std::int64_t blocks = std::max<std::int64_t>(std::int64_t{size_mb} * (1048576 / VLT_BLOCK_SIZE), 2);
    if (blocks > VLT_BLOCKS_MAX) return 0;

    const std::int32_t header_blocks = header_blocks_for(blocks);
    Array<std::uint8_t> header;  // up to the last word that is not zero
    const auto prepared = static_cast<std::size_t>(header_blocks_for(std::int64_t{header_blocks} + 1));
    if (!header.resize(prepared * VLT_BLOCK_SIZE)) return 0;
    std::memcpy(header.data(), wide_names ? "wvlt" : "vlt", 4);
    header[VLT_FORMAT_BYTE_OFFSET] = 1;
    put_credential(header.data() + VLT_READ_CREDENTIAL_OFFSET, read_credential);
    put_credential(header.data() + VLT_WRITE_CREDENTIAL_OFFSET, write_credential);
    put_map(header.data(), header_blocks);

    std::FILE* stream = disk_open(path, DiskMode::write);
    if (!stream) return 0;
    const bool written = write_package(stream, header, blocks);
    if (disk_close(stream) && written) return 1;
    disk_remove(path);
    return 0;
}
