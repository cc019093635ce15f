// SPDX-License-Identifier: MIT
#include "ShipScene.h"
#include "common/ship/FlagOper.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

struct FlagTest : testing::Test {
    FlagTest() {
        prefab = new ObjectPrefab(ShipScene::FRIGATE);
        scene.place(prefab, 0);
        flag.init(prefab->getNodeByName("qizi1"), 10, 3);
    }
    ShipScene scene;
    ObjectPrefab* prefab;
    FlagOper flag;
};

TEST_F(FlagTest, StreamsAsternInACalmAndDownwindInAFullWind) {
    // Turns of the staff, counter-clockwise: −90 streams astern, 0 to starboard, 90 ahead. The wind
    // blows from behind the starboard beam towards 120 degrees from east, or to the south.
    struct Case {
        double heading;
        float wind, strength, phase, offset;
        double turn;
    };
    const Case CASES[] = {{0, 123, 0, 0, 0, -90},  // astern, whatever the wind's direction
                          {90, 0, 0, 0, 0, 0},     // north lies 90 to the left of the bow
                          {-30, 0, 0, 4, 20, -96}, // 30 to the right; swung and turned
                          {0, 120, 10000, 0, 0, 120},
                          {0, 120, 99999, -6, 1, 115}, // clamped, not carried past the wind
                          {0, 30, 5000, 0, 0, -30}};   // halfway from −90 to 30
    for (const Case& c : CASES) {
        prefab->setWgsHPR({c.heading, 0, 0});
        Engine::get()->setWindDirection(c.wind);
        Engine::get()->setWindStrength(c.strength);
        flag.m_phase = c.phase;
        flag.set_offset(c.offset);
        flag.update(0);
        const dvec3 x = flag.m_node->getTransform().getX();
        EXPECT_NEAR(std::atan2(x.y, x.x) * RAD_TO_DEG<double>, c.turn, 1e-3);
    }
    // The cloth hangs on the side that this is about.
    EXPECT_GT(prefab->getNodeByName("ensign")->getBounds().center.x, 1);
}

TEST_F(FlagTest, SwingsBetweenItsLimitsAtItsRate) {
    const auto after = [&](int frames, float dt) {
        for (int i = 0; i < frames; i++)
            flag.update(dt);
        return flag.m_phase;
    };
    EXPECT_NEAR(after(50, 1 / 30.0f), 5, 1e-3); // 3 degrees a second
    EXPECT_EQ(after(1, 1000), 10); // cut at the limit, and turned round in the same frame
    EXPECT_EQ(after(1, 1000), -10);
    EXPECT_EQ(after(1, std::nanf("")), -10);
    EXPECT_EQ(after(1, 1000), 10);
}

} // namespace
