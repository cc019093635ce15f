// SPDX-License-Identifier: MIT
#include "Utf8.h"

#include <cstdint>

namespace ig {

namespace {

// Length of the sequence that `lead` begins, 0 when it can't begin one; `smallest` is the first
// code point that needs that length.
std::size_t sequenceLength(unsigned char lead, std::uint32_t& point, std::uint32_t& smallest) {
    if (lead < 0x80) return point = lead, smallest = 0, 1;
    if (lead >> 5 == 0x06) return point = lead & 0x1f, smallest = 0x80, 2;
    if (lead >> 4 == 0x0e) return point = lead & 0x0f, smallest = 0x800, 3;
    if (lead >> 3 == 0x1e) return point = lead & 0x07, smallest = 0x10000, 4;
    return 0;
}

} // namespace

std::size_t findInvalidUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        std::uint32_t point = 0, smallest = 0;
        const std::size_t length = sequenceLength(text[i], point, smallest);
        if (!length || length > text.size() - i) return i;
        for (std::size_t k = 1; k < length; k++) {
            const auto byte = static_cast<unsigned char>(text[i + k]);
            if (byte >> 6 != 2) return i;
            point = point << 6 | (byte & 0x3f);
        }
        if (point < smallest || point > 0x10ffff || (point >= 0xd800 && point < 0xe000)) return i;
        i += length;
    }
    return text.size();
}

} // namespace ig
