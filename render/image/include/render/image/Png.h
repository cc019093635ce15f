// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Renderer.h"

#include <string>

namespace ig {

/// Writes a picture, on any thread. False, with the path and the reason in `message`, when the file
/// can't be written.
bool writePng(const std::string& path, const Picture& picture, std::string& message);

/// Pixels of an image file: four bytes (red, green, blue, opacity) each, rows from the top.
struct Image {
    int width = 0, height = 0;
    std::vector<std::uint8_t> rgba;
};
/// Reads an image. False, with one log line, when it can't be read.
bool readPng(const std::string& path, Image& image);

} // namespace ig
