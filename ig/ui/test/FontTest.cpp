// SPDX-License-Identifier: MIT
#include "ig/ui/Font.h"
#include "ig/ui/Utf8Text.h"
#include "testkit/LogCapture.h"

#include <gtest/gtest.h>

namespace ig {
namespace {

TEST(Font, WithoutAFileWidthsAreThoseOfSquareIdeographs) {
    LogCapture log;
    Font none({"no_such_font.ttf", "ig/ui/test/FontTest.cpp"}); // the second is none
    EXPECT_EQ(log.lines.size(), 1u);
    EXPECT_EQ(none.getWidth(15.6f, "雷达 A1\xff"), 16 * (2 + 3 * 0.5f + 1));
    Font::Form form;
    EXPECT_FALSE(none.draw('A', 16, form));
}

TEST(Font, CharactersAreTakenOffNonsenseToo) {
    const auto all = [](std::string_view text) {
        std::u32string out;
        for (std::size_t i = 0; i < text.size();)
            out += utf8_text::decode(text, i);
        return out;
    };
    EXPECT_EQ(all("Aé雷😀"), U"Aé雷😀");
    EXPECT_EQ(all("\x80"), U"\xfffd");
    EXPECT_EQ(all("\xe9\x9b"), U"\xfffd\xfffd");           // cut short
    EXPECT_EQ(all("\xed\xa0\x80"), U"\xfffd\xfffd\xfffd"); // half a pair of another encoding
    EXPECT_EQ(all("\xff"
                  "B"),
              U"\xfffd"
              "B");
}

} // namespace
} // namespace ig
