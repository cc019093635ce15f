// SPDX-License-Identifier: MIT
#pragma once

#include "render/image/Image.h"

#include <cstddef>
#include <span>
#include <string>

namespace ig {

/// Takes a picture from the bytes of a JPEG file, on any thread: of greys or colours, baseline or
/// progressive. False, with the reason in `why`, when they are none that can be read, or end before
/// the picture does.
bool decodeJpeg(std::span<const std::byte> bytes, Image& image, std::string& why);

} // namespace ig
