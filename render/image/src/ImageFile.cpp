// SPDX-License-Identifier: MIT
#include "render/image/ImageFile.h"

#include "ig/base/jLog.h"
#include "program/InputFile.h"

#include <cstring>
#include <fstream>

namespace ig {

namespace {

constexpr std::size_t HEADER = 128;          ///< bytes before the pixels
constexpr std::uint32_t MAX_SIZE = 16384;    ///< pixels along an edge
constexpr std::uint32_t RGB_WITH_ALPHA = 65; ///< flags of the pixel format: 0x41

std::uint32_t wordAt(const char* bytes, std::size_t offset) {
    unsigned char b[4];
    std::memcpy(b, bytes + offset, 4);
    return b[0] | b[1] << 8 | b[2] << 16 | b[3] << 24;
}

bool isPlainBgra(const char* header) {
    return wordAt(header, 4) == 124 && wordAt(header, 80) == RGB_WITH_ALPHA &&
           wordAt(header, 88) == 32 && wordAt(header, 92) == 0xFF0000 &&
           wordAt(header, 100) == 0xFF && wordAt(header, 104) == 0xFF000000;
}

bool readDds(std::istream& file, Image& image) {
    char header[HEADER];
    if (!file.read(header, HEADER) || !isPlainBgra(header)) return false;
    const std::uint32_t height = wordAt(header, 12), width = wordAt(header, 16);
    if (width - 1 >= MAX_SIZE || height - 1 >= MAX_SIZE) return false; // 0 wraps around
    const std::size_t size = std::size_t{4} * width * height;
    file.seekg(0, std::ios::end); // before memory is spent on what isn't there
    if (static_cast<std::size_t>(file.tellg()) < HEADER + size) return false;
    file.seekg(HEADER);
    image.rgba.resize(size);
    if (!file.read(reinterpret_cast<char*>(image.rgba.data()), size)) return false;
    image.width = width;
    image.height = height;
    for (std::size_t i = 0; i < size; i += 4)
        std::swap(image.rgba[i], image.rgba[i + 2]);
    return true;
}

} // namespace

bool readImage(const std::string& path, Image& image) {
    std::ifstream file;
    char magic[4] = {};
    // The other reader tells why it can't be read.
    if (program::whyUnreadable(path).empty()) file.open(path, std::ios::binary);
    if (!file.is_open() || !file.read(magic, 4) || std::memcmp(magic, "DDS ", 4) != 0)
        return readPng(path, image);
    file.seekg(0);
    if (readDds(file, image)) return true;
    jLog::error("readImage: \"%s\": not a DDS file of 32-bit pixels", path.c_str());
    return false;
}

} // namespace ig
