// SPDX-License-Identifier: MIT
// Escaping: what is escaped can be unescaped again, in buffers of every size, under the fixed rules and any others.
#include <cstring>
#include <memory>

#include "fuzz/support.h"
#include "include/offline.h"
#include "offline/tables/escape.h"

namespace {

struct Swapped {
    std::int32_t result;
    std::string text;
};

/// Swaps into a buffer of exactly `size` bytes; the buffer is left terminated inside.
Swapped Swap(const std::string& text, std::size_t size, int direction) {
    const std::unique_ptr<char[]> room(new char[size]);
    const std::int32_t result =
        KOfflineDb_StrSwap(text.c_str(), room.get(), static_cast<std::int32_t>(size), direction);
    Require(result == 0 || result == 1);
    return {result, size ? std::string(room.get()) : ""};
}

void CheckRoundTrip(const std::string& text, bool double_bytes) {
    const Swapped encoded = Swap(text, 2 * text.size() + 1, 1);
    Require(encoded.result == 1);
    if (!double_bytes) {
        Require(encoded.text.find_first_of(",\t\r\n") == std::string::npos);
        Require(encoded.text.find("//") == std::string::npos);
    }
    const Swapped decoded = Swap(encoded.text, encoded.text.size() + 1, 0);
    Require(decoded.result == 1 && decoded.text == text);
}

/// What fits is whole or is the beginning of what would have come out.
void CheckSmallBuffer(const std::string& text, std::size_t size, int direction) {
    const Swapped whole = Swap(text, 2 * text.size() + 1, direction);
    const Swapped part = Swap(text, size, direction);
    if (size > whole.text.size() || text.empty()) {
        Require(part.result == whole.result && part.text == whole.text);
    } else {
        Require(part.result == 0 && whole.text.compare(0, part.text.size(), part.text) == 0);
    }
}

/// In place, and by the fast way of the data files: the same text.
void CheckInPlace(const std::string& text, bool double_bytes) {
    const Swapped plain = Swap(text, text.size() + 1, 0);
    std::string same = text;
    Require(KOfflineDb_StrSwap(same.data(), same.data(), static_cast<std::int32_t>(same.size()) + 1, 0) ==
            plain.result);
    Require(plain.text == same.c_str());
    std::string fast = text;
    const std::size_t length = escape_decode(fast.data(), fast.size(), !double_bytes);
    Require(length == plain.text.size() && plain.text == fast.c_str());
}

void SwapByAnyRules(Input& input) {
    const auto escape = static_cast<char>(input.Byte());
    const auto entry = static_cast<char>(input.Byte()), pair = static_cast<char>(input.Byte());
    const std::size_t size = input.Number(2) % 1024;
    const int direction = input.Flag();
    const std::string table = input.Text(), text = input.Text();
    const std::unique_ptr<char[]> room(new char[size]);
    const std::int32_t result = KText_Swap(text.c_str(), escape, table.c_str(), entry, pair, room.get(),
                                           static_cast<std::int32_t>(size), direction);
    Require((result == 1) == (entry == pair) && result <= 2);
    Require(result >= 0 || static_cast<std::size_t>(-result) <= text.size());
    if (size && result != 1) Require(std::memchr(room.get(), 0, size) != nullptr);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ResetHost();
    Input input(data, size);
    const std::uint8_t kind = input.Byte();
    const bool double_bytes = (kind & 2) != 0;
    UseDoubleBytes(double_bytes);
    if (kind & 1) {
        SwapByAnyRules(input);
        return 0;
    }
    const std::size_t room = input.Number(2);
    const std::string text = input.Text();
    CheckRoundTrip(text, double_bytes);
    CheckSmallBuffer(text, room % (2 * text.size() + 2), kind & 4);
    CheckInPlace(text, double_bytes);
    return 0;
}
