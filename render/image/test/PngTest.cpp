// SPDX-License-Identifier: MIT
#include "render/image/Png.h"

#include "render/image/ImageFile.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <gtest/gtest.h>

using namespace ig;

TEST(Png, APictureSurvivesItsFile) {
    Picture picture{23, 17, {}};
    for (int i = 0; i < 3 * 23 * 17; i++)
        picture.rgb.push_back(static_cast<std::uint8_t>(i * i / 7));
    TempFolder folder;
    const std::string path = folder.file("picture.png").c_str();
    std::string message;
    ASSERT_TRUE(writePng(path, picture, message)) << message;
    Image image;
    ASSERT_TRUE(readImage(path, image));
    ASSERT_EQ(image.width, 23);
    ASSERT_EQ(image.height, 17);
    for (std::size_t i = 0; i < picture.rgb.size(); i++)
        ASSERT_EQ(image.rgba[i / 3 * 4 + i % 3], picture.rgb[i]);
    EXPECT_FALSE(writePng(folder.file("no_folder/picture.png").c_str(), picture, message));
    EXPECT_NE(message.find("no_folder/picture.png"), std::string::npos) << message;
}
