// SPDX-License-Identifier: MIT
#include "render/scene/LandAround.h"

#include "ig/math/EllipsoidModel.h"
#include "plugins/terrain/TerrainGrid.h"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

using namespace ig;

namespace {

/// Land 10 m high, 41 samples square, about 106 m apart, but for one sample ten to the east of the
/// middle.
struct Island {
    static constexpr double STEP = 0.001;
    explicit Island(float odd) : heights(41 * 41, 10) {
        heights[20 * 41 + 30] = odd;
        grid.columns = grid.rows = 41;
        grid.spacing_longitude = grid.spacing_latitude = STEP;
        grid.north = 0.02;
        grid.heights = heights.data();
    }
    /// Samples' worth of land around a place so many samples east of the middle.
    double find(double east, float crest) {
        constexpr double SAMPLE = STEP * EllipsoidModel::DEGREE;
        return land.find({&grid, 1}, {0.02 + east * STEP, 0, 50}, crest) / SAMPLE;
    }
    std::vector<float> heights;
    TerrainGrid grid;
    LandAround land;
};

TEST(LandAroundTest, TheNearestWaterOrHoleEndsIt) {
    for (const float odd : {-3.0f, 2.0f, std::numeric_limits<float>::quiet_NaN()}) {
        Island island(odd);
        for (const double east : {0.0, 0.8, 2.3, -4.9, 8.4}) {
            EXPECT_LE(island.find(east, 1.8f), 9 - east) << odd;
            EXPECT_GT(island.find(east, 1.8f), 9 - east - 3) << odd;
        }
    }
}

TEST(LandAroundTest, WavesAndTheTerrainsEdgeEndIt) {
    Island island(10);
    EXPECT_GT(island.find(0, 3), 17);
    EXPECT_EQ(island.find(0, 9.9f), 0) << "crests come over the land";
    EXPECT_GT(island.find(0, 3), 17);
    EXPECT_LE(island.find(17, 3), 3);
    EXPECT_EQ(island.find(25, 3), 0);
}

} // namespace
