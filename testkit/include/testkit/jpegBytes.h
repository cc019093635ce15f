// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <jpeglib.h>

/// A JPEG file of a picture whose pixels `color(x, y)` tells; with 4 `components` in colours for
/// print.
template <class Color>
std::string jpegBytes(unsigned width, unsigned height, const Color& color, bool progressive = false,
                      unsigned components = 3) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = width;
    info.image_height = height;
    info.input_components = static_cast<int>(components);
    info.in_color_space = components == 4 ? JCS_CMYK : JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 95, TRUE);
    if (progressive) jpeg_simple_progression(&info);
    jpeg_start_compress(&info, TRUE);
    std::vector<unsigned char> row(std::size_t{components} * width);
    JSAMPROW rows[] = {row.data()};
    for (unsigned y = 0; y < height; y++) {
        for (unsigned x = 0; x < width; x++) {
            const std::array<unsigned char, 3> pixel = color(x, y);
            std::copy(pixel.begin(), pixel.end(), row.begin() + components * x);
        }
        jpeg_write_scanlines(&info, rows, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::string file(reinterpret_cast<char*>(bytes), size);
    free(bytes);
    return file;
}
