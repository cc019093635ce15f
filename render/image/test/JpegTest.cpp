// SPDX-License-Identifier: MIT
#include "render/image/ImageFile.h"

#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"
#include "testkit/jpegBytes.h"

#include <gtest/gtest.h>

using namespace ig;

namespace {

/// Red on the left, green on the right.
std::string makeJpeg(unsigned width, unsigned height, bool progressive, unsigned components = 3) {
    const auto color = [width](unsigned x, unsigned) {
        return x < width / 2 ? std::array<unsigned char, 3>{255, 0, 0}
                             : std::array<unsigned char, 3>{0, 255, 0};
    };
    return jpegBytes(width, height, color, progressive, components);
}

} // namespace

TEST(Jpeg, APictureIsReadWhole) {
    TempFolder folder;
    LogCapture log;
    for (const bool progressive : {false, true}) {
        Image image;
        ASSERT_TRUE(readImage(folder.write("a.jpg", makeJpeg(37, 19, progressive)).c_str(), image));
        ASSERT_TRUE(image.width == 37 && image.height == 19);
        const std::uint8_t* left = &image.rgba[4 * (37 * 18 + 3)];
        const std::uint8_t* right = &image.rgba[4 * (37 * 18 + 33)];
        EXPECT_TRUE(left[0] > 230 && left[1] < 30 && left[3] == 255);
        EXPECT_TRUE(right[0] < 30 && right[1] > 230 && right[3] == 255);
    }
    EXPECT_TRUE(log.lines.empty());
}

TEST(Jpeg, WhatCantBeReadIsOneMessageWithItsReason) {
    const std::string whole = makeJpeg(64, 64, false);
    std::string claim = whole; // that it were 65,500 by 60,000 pixels
    const std::size_t frame = claim.find("\xFF\xC0");
    ASSERT_NE(frame, std::string::npos);
    claim.replace(frame + 5, 4, "\xFF\xDC\xEA\x60");
    std::string large = whole; // 8000 by 8000
    large.replace(frame + 5, 4, "\x1F\x40\x1F\x40");
    const std::pair<std::string, const char*> files[] = {
        {claim, "more than a picture may have"},
        {large, "don't fit into"},
        {whole.substr(0, whole.size() / 2), "Premature end"},
        {makeJpeg(8, 8, false, 4), "CMYK"},
        {"\xFF\xD8\xFF rest", ""},
        {"RIFF1234WEBP", "WebP file: save it as PNG or JPEG"},
        {"text", "neither a PNG, a JPEG nor a DDS file"}};
    TempFolder folder;
    LogCapture log;
    for (const auto& [bytes, why] : files) {
        Image image;
        log.lines.clear();
        EXPECT_FALSE(readImage(folder.write("a.jpg", bytes).c_str(), image)) << why;
        ASSERT_EQ(log.lines.size(), 1U) << why;
        EXPECT_NE(log.lines[0].find("a.jpg"), std::string::npos) << log.lines[0];
        EXPECT_NE(log.lines[0].find(why), std::string::npos) << log.lines[0];
    }
}
