// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ig {

// Tiles of imagery as bytes: a JPEG picture, and after its end, where not all of it is covered, a
// bit for each sample, from the lowest of each byte, that says whether it is.

/// `samples`: `Imagery::EDGE` squared of four bytes, the last of them 0 or 255.
std::string encodeTile(const std::vector<std::uint8_t>& samples);
/// False when the bytes are no tile.
bool decodeTile(const std::string& bytes, std::vector<std::uint8_t>& samples);

} // namespace ig
