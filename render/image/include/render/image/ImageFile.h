// SPDX-License-Identifier: MIT
#pragma once

#include "render/image/Png.h"

namespace ig {

/// Reads a PNG file, or a DDS file of plain 32-bit pixels (blue, green, red, opacity in memory).
/// False, with one log line, when it can't be read.
bool readImage(const std::string& path, Image& image);

} // namespace ig
