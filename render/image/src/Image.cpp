// SPDX-License-Identifier: MIT
#include "render/image/Image.h"

#include <new>

namespace ig {

bool Image::make(std::uint64_t columns, std::uint64_t rows, std::uint64_t ratio,
                 std::uint64_t bytes, std::string& why) {
    constexpr std::uint64_t MOST = std::uint64_t{1} << 26; // 256 MiB in memory
    const std::string size = std::to_string(columns) + " by " + std::to_string(rows) + " pixels";
    if (columns == 0 || rows == 0 || columns > MOST || rows > MOST || columns * rows > MOST) {
        why = size + " are none, or more than a picture may have: 2^26";
        return false;
    }
    if (columns * rows > ratio * bytes) {
        why = "damaged: " + size + " don't fit into its " + std::to_string(bytes) + " bytes";
        return false;
    }
    try {
        rgba.resize(4 * columns * rows);
    } catch (const std::bad_alloc&) {
        why = "out of memory";
        return false;
    }
    width = static_cast<int>(columns);
    height = static_cast<int>(rows);
    return true;
}

} // namespace ig
