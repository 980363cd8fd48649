// SPDX-License-Identifier: MIT
// Escaping: what is escaped can be unescaped again, in buffers of every size, under the fixed rules and any others.
#include <cstring>
#include <memory>

#include "fuzz/support.h"
#include "tests/support/escape_properties.h"

using namespace vlt;

namespace {

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
    Input input(data, size);
    const std::uint8_t kind = input.Byte();
    UseDoubleBytes(kind & 2);
    if (kind & 1) {
        SwapByAnyRules(input);
        return 0;
    }
    const std::size_t room = input.Number(2);
    const std::string text = input.Text();
    RequireNone(EscapeFault(text, kind & 2));
    RequireNone(SmallBufferFault(text, room % (2 * text.size() + 2), kind & 4));
    return 0;
}
