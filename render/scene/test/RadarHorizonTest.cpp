// SPDX-License-Identifier: MIT
#include "render/scene/RadarHorizon.h"

#include "plugins/terrain/TerrainGrid.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

using namespace ig;

namespace {

/// Sea by a coast at 20 degrees north, a sample every 50 m or so; a wall runs from west to east.
struct Wall {
    static constexpr int EDGE = 400;
    explicit Wall(float height) : heights(EDGE * EDGE) {
        for (int column = 0; column < EDGE; column++)
            for (int row = 200; row < 206; row++)
                heights[static_cast<std::size_t>(row * EDGE + column)] = height;
        grid = {EDGE, EDGE, -155, 20, 0.00048, 0.00045};
        grid.heights = heights.data();
        grid.highest = height;
    }
    std::vector<float> heights;
    TerrainGrid grid;
};

} // namespace

TEST(RadarHorizon, AWallHidesWhatIsBelowTheLineOverIt) {
    const Wall wall(300);
    RadarHorizon horizon;
    // 5,000 m south of the wall's middle, 100 m up.
    const double wall_latitude = 20 - 202.5 * 0.00045, degree = 110700;
    const dvec3 site(-155 + 200 * 0.00048, wall_latitude - 5000 / degree, 100);
    ASSERT_TRUE(horizon.update({&wall.grid, 1}, site));
    EXPECT_LT(horizon.getLowest({0, 4000}), 0); // before it
    // Over the foot's near side, 150 m before the middle, and down with the earth's bend.
    const double over = 100 + 200 * 7500 / 4860.0 + 3;
    EXPECT_NEAR(horizon.getLowest({0, 7500}), over, 6);
    EXPECT_NEAR(horizon.getLowest({2000, 7500}), over, 6); // a level crest
    EXPECT_LT(horizon.getLowest({0, -7500}), 5);           // behind the radar
    EXPECT_LT(horizon.getLowest({9000, 2000}), 10);

    EXPECT_FALSE(horizon.update({&wall.grid, 1}, site + dvec3(5 / degree, 0, 1)));
    EXPECT_TRUE(horizon.update({&wall.grid, 1}, site + dvec3(150 / degree, 0, 0)));
    EXPECT_TRUE(horizon.update({}, site));
    EXPECT_LT(horizon.getLowest({0, 7500}), 5);
}

TEST(RadarHorizon, TheSeaEndsWhereTheEarthBendsAway) {
    RadarHorizon horizon;
    ASSERT_TRUE(horizon.update({}, {-155, 20, 10}));
    // In usual air the horizon is 4.12 √h km away; beyond it d²/2kR hides what is lower.
    EXPECT_LE(horizon.getLowest({0, 12000}), 0.1f);
    EXPECT_NEAR(horizon.getLowest({20000, 0}), 2.85, 0.5); // (20.0 − 13.0)² km² / 17.0 Mm
    EXPECT_NEAR(horizon.getLowest({0, -28000}), 13.2, 0.8);
}
