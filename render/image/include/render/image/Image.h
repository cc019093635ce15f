// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ig {

/// Pixels of an image file: four bytes (red, green, blue, opacity) each, rows from the top.
struct Image {
    int width = 0, height = 0;
    std::vector<std::uint8_t> rgba;

    /// Makes room for that many pixels out of a file of `bytes` bytes. False, with `why`, for sizes
    /// that memory is not to be spent on: 0, more than 2^26 pixels, or more than `ratio` pixels a
    /// byte, which no picture of the file's kind has.
    bool make(std::uint64_t columns, std::uint64_t rows, std::uint64_t ratio, std::uint64_t bytes,
              std::string& why);
};

} // namespace ig
