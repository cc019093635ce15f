// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Renderer.h"
#include "render/image/Image.h"

#include <cstddef>
#include <span>
#include <string>

namespace ig {

/// Writes a picture, on any thread. False, with the path and the reason in `message`, when the file
/// can't be written.
bool writePng(const std::string& path, const Picture& picture, std::string& message);

/// Takes a picture from the bytes of a PNG file, on any thread; 16-bit values are halved. False,
/// with the reason in `why`, when they are none that can be read.
bool decodePng(std::span<const std::byte> bytes, Image& image, std::string& why);

} // namespace ig
