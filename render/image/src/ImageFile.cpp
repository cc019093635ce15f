// SPDX-License-Identifier: MIT
#include "render/image/ImageFile.h"

#include "ig/base/jLog.h"
#include "program/InputFile.h"
#include "render/image/Jpeg.h"
#include "render/image/Png.h"

#include <cstring>
#include <fstream>
#include <string_view>

namespace ig {

namespace {

constexpr std::size_t HEADER = 128;          ///< bytes before the pixels
constexpr std::uint32_t RGB_WITH_ALPHA = 65; ///< flags of the pixel format: 0x41

std::uint32_t wordAt(std::span<const std::byte> bytes, std::size_t offset) {
    unsigned char b[4];
    std::memcpy(b, bytes.data() + offset, 4);
    return b[0] | b[1] << 8 | b[2] << 16 | b[3] << 24;
}

bool isPlainBgra(std::span<const std::byte> header) {
    return wordAt(header, 4) == 124 && wordAt(header, 80) == RGB_WITH_ALPHA &&
           wordAt(header, 88) == 32 && wordAt(header, 92) == 0xFF0000 &&
           wordAt(header, 100) == 0xFF && wordAt(header, 104) == 0xFF000000;
}

bool decodeDds(std::span<const std::byte> bytes, Image& image, std::string& why) {
    why = "not a DDS file of 32-bit pixels";
    if (bytes.size() < HEADER || !isPlainBgra(bytes)) return false;
    if (!image.make(wordAt(bytes, 16), wordAt(bytes, 12), 1, bytes.size() / 4, why)) return false;
    if (bytes.size() < HEADER + image.rgba.size()) return false;
    std::memcpy(image.rgba.data(), bytes.data() + HEADER, image.rgba.size());
    for (std::size_t i = 0; i < image.rgba.size(); i += 4)
        std::swap(image.rgba[i], image.rgba[i + 2]);
    return true;
}

bool beginsWith(std::span<const std::byte> bytes, std::string_view magic) {
    return bytes.size() >= magic.size() &&
           std::memcmp(bytes.data(), magic.data(), magic.size()) == 0;
}

/// What other files begin with that pictures are often exported as, and their names.
constexpr std::pair<std::string_view, const char*> OTHERS[] = {
    {"\xABKTX", "KTX"}, {"RIFF", "WebP"},       {"GIF8", "GIF"},
    {"BM", "BMP"},      {{"II*\0", 4}, "TIFF"}, {{"MM\0*", 4}, "TIFF"}};

bool decode(std::span<const std::byte> bytes, Image& image, std::string& why) {
    if (beginsWith(bytes, "DDS ")) return decodeDds(bytes, image, why);
    if (beginsWith(bytes, "\xFF\xD8\xFF")) return decodeJpeg(bytes, image, why);
    if (beginsWith(bytes, "\x89PNG")) return decodePng(bytes, image, why);
    why = "neither a PNG, a JPEG nor a DDS file";
    for (const auto& [magic, name] : OTHERS)
        if (beginsWith(bytes, magic))
            why = std::string("a ") + name + " file: save it as PNG or JPEG";
    return false;
}

/// All of a file's bytes. False, with `why`.
bool load(const std::string& path, std::vector<std::byte>& bytes, std::string& why) {
    constexpr std::streamoff MOST = std::streamoff{1} << 29; // more than any picture takes
    why = program::whyUnreadable(path);
    if (!why.empty()) return false;
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::streamoff size = file.tellg();
    if (size > MOST) {
        why = "a file of more than 512 MiB is no picture";
        return false;
    }
    if (size > 0) bytes.resize(static_cast<std::size_t>(size));
    file.seekg(0);
    if (size >= 0 && file.read(reinterpret_cast<char*>(bytes.data()), size)) return true;
    why = "can't be read";
    return false;
}

bool tell(const std::string& name, const std::string& why) {
    jLog::error("readImage: \"%s\": %s", name.c_str(), why.c_str());
    return false;
}

} // namespace

bool readImage(const std::string& path, Image& image) {
    std::vector<std::byte> bytes;
    std::string why;
    return load(path, bytes, why) ? readImage(path, bytes, image) : tell(path, why);
}

bool readImage(const std::string& name, std::span<const std::byte> bytes, Image& image) {
    std::string why;
    return decode(bytes, image, why) || tell(name, why);
}

} // namespace ig
