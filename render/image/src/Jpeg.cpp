// SPDX-License-Identifier: MIT
#include "render/image/Jpeg.h"

#include <csetjmp>
#include <cstdio>

#include <jerror.h>
#include <jpeglib.h>

namespace ig {

namespace {

constexpr int MOST_SCANS = 500; ///< of a progressive picture; more are made to cost time

/// The library's decoder, and where its failures go.
struct Decoder : jpeg_decompress_struct {
    jpeg_error_mgr errors{};
    jpeg_progress_mgr progress{};
    std::jmp_buf back{};
    std::string why;
};

Decoder& decoderOf(j_common_ptr info) {
    return *static_cast<Decoder*>(reinterpret_cast<j_decompress_ptr>(info));
}

/// Back to where `setjmp` was called, with the library's own words.
[[noreturn]] void giveUp(j_common_ptr info) {
    char text[JMSG_LENGTH_MAX];
    info->err->format_message(info, text);
    decoderOf(info).why = text;
    std::longjmp(decoderOf(info).back, 1);
}

/// The library would fill up with grey what a damaged file lacks, and only mention it.
void mention(j_common_ptr info, int level) {
    const int code = info->err->msg_code;
    if (level < 0 && (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER)) giveUp(info);
}

void countScans(j_common_ptr info) {
    if (decoderOf(info).input_scan_number <= MOST_SCANS) return;
    decoderOf(info).why = "more than " + std::to_string(MOST_SCANS) + " scans";
    std::longjmp(decoderOf(info).back, 1);
}

void readRows(Decoder& decoder, Image& image) {
    decoder.out_color_space = JCS_EXT_RGBA;
    jpeg_start_decompress(&decoder);
    while (decoder.output_scanline < decoder.output_height) {
        JSAMPROW row =
            image.rgba.data() + std::size_t{4} * decoder.output_width * decoder.output_scanline;
        jpeg_read_scanlines(&decoder, &row, 1);
    }
    jpeg_finish_decompress(&decoder);
}

/// False with the reason in the decoder. Nothing with a destructor may be made here: the library
/// comes back to the beginning when it fails.
bool decode(Decoder& decoder, std::span<const std::byte> bytes, Image& image) {
    constexpr std::uint64_t RATIO = 1024; // a block of 8 by 8 pixels may be a bit, or end early
    if (setjmp(decoder.back) != 0) return false;
    jpeg_create_decompress(&decoder);
    decoder.progress.progress_monitor = countScans;
    decoder.jpeg_decompress_struct::progress = &decoder.progress;
    jpeg_mem_src(&decoder, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    jpeg_read_header(&decoder, TRUE);
    if (decoder.num_components == 4) {
        decoder.why = "colours for print (CMYK): save it as RGB";
        return false;
    }
    if (!image.make(decoder.image_width, decoder.image_height, RATIO, bytes.size(), decoder.why))
        return false;
    readRows(decoder, image);
    return true;
}

} // namespace

bool decodeJpeg(std::span<const std::byte> bytes, Image& image, std::string& why) {
    Decoder decoder{};
    decoder.err = jpeg_std_error(&decoder.errors);
    decoder.errors.error_exit = giveUp;
    decoder.errors.emit_message = mention;
    const bool good = decode(decoder, bytes, image);
    why = decoder.why;
    jpeg_destroy_decompress(&decoder);
    return good;
}

} // namespace ig
