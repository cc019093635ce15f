// SPDX-License-Identifier: MIT
#include "render/scene/HillShadows.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "ig/scene/Camera.h"
#include "plugins/terrain/TerrainGrid.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

using namespace ig;

namespace {

/// A ridge 400 m high that runs through flat land 2 m above the sea, 20 km wide, at 20 degrees
/// north; the eye stands at the middle of the grid.
class HillShadowsOf : public testing::Test {
public:
    static constexpr int EDGE = 400;
    static constexpr float HEIGHT = 400;

    void makeRidge(bool from_south_to_north) {
        heights.assign(EDGE * EDGE, 2);
        for (int i = 0; i < EDGE; i++)
            for (int j = 196; j <= 203; j++)
                heights[static_cast<std::size_t>(from_south_to_north ? i * EDGE + j
                                                                     : j * EDGE + i)] = HEIGHT;
        hills = {}; // the new heights may lie where the last ones did
        grid = {EDGE, EDGE, -155, 20, 0.00048, 0.00045};
        grid.heights = heights.data();
        Camera camera;
        camera.setWgsPosition({-155 + 199.5 * 0.00048, 20 - 199.5 * 0.00045, 0});
        view = FrameView(camera, 360, true);
    }
    /// Light from a bearing and at a height, degrees.
    bool shine(double bearing, double height) {
        const double b = bearing * DEG_TO_RAD<double>, h = height * DEG_TO_RAD<double>;
        const bool changed =
            hills.update({&grid, 1}, view.frame * dvec3(std::cos(h) * std::sin(b),
                                                        std::cos(h) * std::cos(b), std::sin(h)));
        FrameBlock block;
        hills.fill(view, block);
        return changed;
    }
    float above(double east, double north) { return hills.getAbove(vec3(dvec3(east, north, 0))); }

    std::vector<float> heights;
    TerrainGrid grid;
    FrameView view;
    HillShadows hills;
};

} // namespace

// The ridge's shadow falls by the tangent of the light's height over each metre along the ground.
TEST_F(HillShadowsOf, ReachAsFarAsTheLightIsLow) {
    for (const double bearing : {90.0, 270.0, 0.0, 180.0}) {
        const bool along_east = std::abs(std::sin(bearing * DEG_TO_RAD<double>)) > 0.5;
        makeRidge(along_east);
        ASSERT_TRUE(shine(bearing, 6));
        EXPECT_TRUE(hills.isAny());
        const double away = bearing < 135 ? -1 : 1; // from the light
        for (const double range : {600.0, 2000.0, 3500.0}) {
            const double fall = (range - 180) * std::tan(6 * DEG_TO_RAD<double>);
            const float behind = along_east ? above(away * range, 0) : above(0, away * range);
            EXPECT_NEAR(behind, HEIGHT - fall, 12) << bearing << ", " << range;
            const float before = along_east ? above(-away * range, 0) : above(0, -away * range);
            EXPECT_LT(before, 3) << bearing << ", " << range;
        }
    }
    makeRidge(true);
    ASSERT_TRUE(shine(60, 6)); // aslant
    EXPECT_NEAR(
        above(-2000, 0),
        HEIGHT - 1820 / std::sin(60 * DEG_TO_RAD<double>) * std::tan(6 * DEG_TO_RAD<double>), 15);
}

// Of a large ground, which lies in a file, samples that lie close to each other are read: here only
// those, of every eighth, have the ridge.
TEST_F(HillShadowsOf, ReadNoMoreOfALargeGroundThanTheyShow) {
    struct Ridge final : TerrainOverview {
        HeightRange getSquareRange(int, int, int) const override { return {2, HEIGHT}; }
        float getHeight(int column, int, int step) const override {
            const int beyond = std::max({196 * 16 - column, column - 203 * 16, 0});
            return step == 8 ? std::max(HEIGHT - 12 * static_cast<float>(beyond), 2.0f) : 2;
        }
    };
    const Ridge ridge;
    heights.assign(std::size_t{EDGE} * 16 * 64, 2);
    grid = {EDGE * 16, 64, -155, 20, 0.00048 / 16, 0.00045 / 16};
    grid.heights = heights.data();
    grid.overview = &ridge;
    Camera camera;
    camera.setWgsPosition({-155 + 199.5 * 0.00048, 20 - 2 * 0.00045, 0});
    view = FrameView(camera, 360, true);
    ASSERT_TRUE(shine(90, 6));
    for (const double range : {600.0, 2000.0, 3500.0})
        EXPECT_NEAR(above(-range, 0), HEIGHT - (range - 180) * std::tan(6 * DEG_TO_RAD<double>),
                    12);
}

TEST_F(HillShadowsOf, AreNoneWhenTheLightIsHigh) {
    makeRidge(true);
    ASSERT_TRUE(shine(90, 6));
    EXPECT_TRUE(shine(90, 75)); // the last one must go from the device
    EXPECT_FALSE(hills.isAny());
    EXPECT_FALSE(shine(90, 80));
    EXPECT_EQ(above(-2000, 0), HillShadows::NONE);
    ASSERT_TRUE(shine(90, 6));
    EXPECT_FALSE(shine(90, 6)) << "nothing is new";
    EXPECT_TRUE(shine(90, 7));
    EXPECT_TRUE(hills.update({}, view.frame.getZ())); // another world, without land
    EXPECT_FALSE(hills.isAny());
}
