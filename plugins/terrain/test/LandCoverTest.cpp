// SPDX-License-Identifier: MIT
#include "plugins/terrain/LandCover.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using namespace ig;

TEST(LandCover, PiecesReachFromEdgeToEdgeAlsoAcrossTheDateLine) {
    using enum LandClass;
    const LandCover cover({3, 2, 179.99, -10, 0.01, 0.02}, {grass, sand, rock, snow, water, crop});
    constexpr double HAIR = 1e-9;
    EXPECT_EQ(cover.getClass(179.99 + HAIR, -10 - HAIR), grass);
    EXPECT_EQ(cover.getClass(180 - HAIR, -10.02 + HAIR), grass);
    EXPECT_EQ(cover.getClass(-180 + HAIR, -10.02 + HAIR), sand);
    EXPECT_EQ(cover.getClass(180 + HAIR, -10.02 - HAIR), water);
    EXPECT_EQ(cover.getClass(-179.98 - HAIR, -10.04 + HAIR), crop);
    EXPECT_EQ(cover.getClass(-179.98 + HAIR, -10.03), none);
    EXPECT_EQ(cover.getClass(179.99 - HAIR, -10.01), none);
    EXPECT_EQ(cover.getClass(180, -10 + HAIR), none);
    EXPECT_EQ(cover.getClass(180, -10.04 - HAIR), none);
    EXPECT_EQ(cover.getClass(NAN, -10.01), none);
}

} // namespace
