// SPDX-License-Identifier: MIT
#include "inspect/entry.h"

#include <cmath>

namespace inspect {

Entry DecodeEntry(const std::uint8_t* bytes, bool wide, int index) {
    Entry entry;
    entry.index = index;
    entry.kind = bytes[0];
    entry.first_block = Load<std::uint32_t>(bytes + kFirstBlock);
    entry.size = Load<std::int64_t>(bytes + kSize);
    entry.created = LoadStamp(bytes + kCreated);
    entry.accessed = LoadStamp(bytes + kAccessed);
    entry.written = LoadStamp(bytes + kWritten);
    for (std::size_t i = 0; i <= kNameMax; ++i) {
        const auto unit = wide ? Load<std::uint16_t>(bytes + kName + 2 * i) : std::uint16_t{bytes[kName + i]};
        if (unit == 0) break;
        entry.name += static_cast<char16_t>(unit);
    }
    return entry;
}

namespace {

bool IsDate(double stamp) {
    if (!(stamp > 1000'99'99 && stamp < 3000'00'00)) return false;  // the years that a package can tell
    const auto date = static_cast<int>(stamp);
    const auto time = static_cast<int>(std::lround((stamp - date) * 1e6));
    const int month = date / 100 % 100, day = date % 100;
    const int hour = time / 10000, minute = time / 100 % 100, second = time % 100;
    return month >= 1 && month <= 12 && day >= 1 && day <= 31 && hour < 24 && minute < 60 && second < 60 &&
           stamp == date + time / 1000000.0;
}

}  // namespace

bool IsStamp(double stamp) {
    return stamp == 0 || IsDate(stamp);
}

bool LooksLikeEntry(const std::uint8_t* bytes) {
    return (bytes[0] == kStoredFile || bytes[0] == kOtherEntry) && IsDate(LoadStamp(bytes + kCreated)) &&
           IsDate(LoadStamp(bytes + kAccessed)) && IsDate(LoadStamp(bytes + kWritten));
}

bool MayBeEntry(const std::uint8_t* bytes) {
    return IsStamp(LoadStamp(bytes + kCreated)) + IsStamp(LoadStamp(bytes + kAccessed)) +
               IsStamp(LoadStamp(bytes + kWritten)) >=
           2;
}

std::u16string FoldedName(std::u16string name) {
    for (char16_t& unit : name)
        if (unit >= 'A' && unit <= 'Z') unit = static_cast<char16_t>(unit - 'A' + 'a');
    return name;
}

}  // namespace inspect
