// SPDX-License-Identifier: MIT
#include "TileCodec.h"

#include "plugins/terrain/Imagery.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>

namespace ig {

namespace {

constexpr std::size_t EDGE = Imagery::EDGE, COUNT = EDGE * EDGE;
constexpr int QUALITY = 88; ///< a tile takes some 60 KB then, and no blocks show

/// The library ends the process on a fault unless its handler jumps away.
struct Errors : jpeg_error_mgr {
    std::jmp_buf back;

    Errors() {
        jpeg_std_error(this);
        error_exit = [](j_common_ptr info) {
            std::longjmp(static_cast<Errors*>(info->err)->back, 1);
        };
        output_message = [](j_common_ptr) {};
    }
};

/// Copies a sample's colours, unless there is one in its place.
void fill(std::vector<std::uint8_t>& samples, std::size_t from, std::size_t to) {
    if (samples[4 * to + 3] || !samples[4 * from + 3]) return;
    std::copy_n(&samples[4 * from], 4, &samples[4 * to]);
}

/// What isn't covered gets the colours of what is next to it in its row, or else its column: a
/// sharp edge would ring into what is covered.
void fillHoles(std::vector<std::uint8_t>& samples) {
    for (std::size_t i = 1; i < COUNT; i++)
        if (i % EDGE) fill(samples, i - 1, i);
    for (std::size_t i = COUNT - 1; i-- > 0;)
        if ((i + 1) % EDGE) fill(samples, i + 1, i);
    for (std::size_t i = EDGE; i < COUNT; i++)
        fill(samples, i - EDGE, i);
    for (std::size_t i = COUNT - EDGE; i-- > 0;)
        fill(samples, i + EDGE, i);
}

/// Rows of a picture of four bytes a sample.
std::vector<JSAMPROW> listRows(std::vector<std::uint8_t>& samples) {
    std::vector<JSAMPROW> rows;
    for (std::size_t row = 0; row < EDGE; row++)
        rows.push_back(samples.data() + 4 * EDGE * row);
    return rows;
}

/// Nothing with a destructor may be made between the jump's mark and the jump.
bool decompress(const std::string& bytes, const std::vector<JSAMPROW>& rows, std::size_t& rest) {
    Errors errors;
    jpeg_decompress_struct info;
    info.err = &errors;
    if (setjmp(errors.back)) {
        jpeg_destroy_decompress(&info);
        return false;
    }
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_EXT_RGBA;
    const bool fits = info.image_width == EDGE && info.image_height == EDGE;
    if (fits) {
        jpeg_start_decompress(&info);
        while (info.output_scanline < EDGE)
            jpeg_read_scanlines(&info, const_cast<JSAMPARRAY>(rows.data()) + info.output_scanline,
                                static_cast<JDIMENSION>(EDGE - info.output_scanline));
        jpeg_finish_decompress(&info);
        rest = info.src->bytes_in_buffer;
    }
    const bool is_whole = fits && errors.num_warnings == 0;
    jpeg_destroy_decompress(&info);
    return is_whole;
}

std::string compress(const std::vector<JSAMPROW>& rows) {
    Errors errors;
    jpeg_compress_struct info;
    info.err = &errors;
    unsigned char* volatile made = nullptr;
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    if (setjmp(errors.back)) { // out of memory: nothing else can fail
        jpeg_destroy_compress(&info);
        std::free(made);
        return {};
    }
    jpeg_create_compress(&info);
    jpeg_mem_dest(&info, &buffer, &size);
    info.image_width = info.image_height = static_cast<JDIMENSION>(EDGE);
    info.input_components = 4;
    info.in_color_space = JCS_EXT_RGBX;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, QUALITY, TRUE);
    jpeg_start_compress(&info, TRUE);
    jpeg_write_scanlines(&info, const_cast<JSAMPARRAY>(rows.data()), static_cast<JDIMENSION>(EDGE));
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    made = buffer;
    std::string bytes(reinterpret_cast<const char*>(buffer), size);
    std::free(made);
    return bytes;
}

} // namespace

std::string encodeTile(const std::vector<std::uint8_t>& samples) {
    std::string covered(COUNT / 8, '\0');
    bool has_holes = false;
    for (std::size_t i = 0; i < COUNT; i++) {
        if (samples[4 * i + 3])
            covered[i / 8] = static_cast<char>(covered[i / 8] | 1 << i % 8);
        else
            has_holes = true;
    }
    std::vector<std::uint8_t> filled = samples;
    if (has_holes) fillHoles(filled);
    const std::string bytes = compress(listRows(filled));
    return has_holes && !bytes.empty() ? bytes + covered : bytes;
}

bool decodeTile(const std::string& bytes, std::vector<std::uint8_t>& samples) {
    samples.resize(4 * COUNT);
    std::size_t rest = 0;
    if (!decompress(bytes, listRows(samples), rest) || (rest != 0 && rest != COUNT / 8))
        return false;
    if (rest == 0) return true;
    const std::size_t begin = bytes.size() - rest;
    for (std::size_t i = 0; i < COUNT; i++)
        if (!(bytes[begin + i / 8] >> i % 8 & 1))
            for (std::size_t c = 0; c < 4; c++)
                samples[4 * i + c] = 0;
    return true;
}

} // namespace ig
