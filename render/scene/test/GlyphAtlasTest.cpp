// SPDX-License-Identifier: MIT
#include "render/scene/GlyphAtlas.h"

#include <gtest/gtest.h>

using namespace ig;

TEST(Utf8, TakesCharactersAndSurvivesNonsense) {
    const auto all = [](std::string_view text) {
        std::vector<std::uint32_t> out;
        while (!text.empty())
            out.push_back(takeCharacter(text));
        return out;
    };
    EXPECT_EQ(all("Aé雷😀"), (std::vector<std::uint32_t>{'A', 0xe9, 0x96f7, 0x1f600}));
    EXPECT_EQ(all("\x80"), (std::vector<std::uint32_t>{0xfffd}));
    EXPECT_EQ(all("\xe9\x9b"), (std::vector<std::uint32_t>{0xfffd, 0xfffd})); // cut short
    EXPECT_EQ(all("\xff"
                  "B"),
              (std::vector<std::uint32_t>{0xfffd, 'B'}));
}
