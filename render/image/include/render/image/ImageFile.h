// SPDX-License-Identifier: MIT
#pragma once

#include "render/image/Image.h"

#include <cstddef>
#include <span>
#include <string>

namespace ig {

/// Reads a PNG or JPEG file, or a DDS file of plain 32-bit pixels (blue, green, red, opacity in
/// memory). False, with one log line, when it can't be read.
bool readImage(const std::string& path, Image& image);
/// The same from the bytes of such a file; `name` is what the log calls it.
bool readImage(const std::string& name, std::span<const std::byte> bytes, Image& image);

} // namespace ig
