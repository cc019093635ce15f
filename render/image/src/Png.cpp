// SPDX-License-Identifier: MIT
#include "render/image/Png.h"

#include "program/OutputFile.h"

#include <cstdint>
#include <png.h>

namespace ig {

using program::OutputFile;

namespace {

/// Back to where `setjmp` was called; the library's own words would be a second message.
void giveUp(png_structp png, png_const_charp) { png_longjmp(png, 1); }

void hand(png_structp png, png_bytep bytes, png_size_t size) {
    auto* file = static_cast<OutputFile*>(png_get_io_ptr(png));
    if (!file->write({reinterpret_cast<const char*>(bytes), size})) png_error(png, "");
}

} // namespace

// The compression level and filter are the ones that cost least for rendered pictures: 44 ms
// instead of some 200 for 1280 × 720.
bool writePng(const std::string& path, const Picture& picture, std::string& message) {
    OutputFile file;
    if (!file.open(path, OutputFile::Kind::whole)) {
        message = file.getMessage();
        return false;
    }
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, giveUp, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!info || setjmp(png_jmpbuf(png))) { // the library comes back here when it fails
        message =
            file.isOpen() ? "cannot write \"" + path + "\": out of memory" : file.getMessage();
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_set_write_fn(png, &file, hand, nullptr);
    png_set_IHDR(png, info, picture.width, picture.height, 8, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(png, 1);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
    png_write_info(png, info);
    for (int y = 0; y < picture.height; y++)
        png_write_row(png, picture.at(0, y));
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    if (file.close()) return true;
    message = file.getMessage();
    return false;
}

bool decodePng(std::span<const std::byte> bytes, Image& image, std::string& why) {
    constexpr std::uint64_t RATIO = 8 * 1032; // pixels of one bit, deflated as far as can be
    png_image header{};
    header.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&header, bytes.data(), bytes.size())) {
        why = header.message;
        return false;
    }
    if (!image.make(header.width, header.height, RATIO, bytes.size(), why)) {
        png_image_free(&header);
        return false;
    }
    // Files of 16 bits count as those of 8 do, not as linear.
    header.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
    header.format = PNG_FORMAT_RGBA;
    if (png_image_finish_read(&header, nullptr, image.rgba.data(), 0, nullptr)) return true;
    why = header.message;
    png_image_free(&header);
    return false;
}

} // namespace ig
