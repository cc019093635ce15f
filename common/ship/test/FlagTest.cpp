// SPDX-License-Identifier: MIT
#include "ShipScene.h"
#include "common/ship/FlagOper.h"

#include <array>

namespace {

using namespace ig;

struct FlagTest : ShipScene {
    FlagTest() {
        place(prefab, 0);
        flag.init(prefab->getNodeByName("qizi1"), 10, 3);
    }
    ObjectPrefab* prefab = new ObjectPrefab(FRIGATE);
    FlagOper flag;
};

TEST_F(FlagTest, StreamsAsternInACalmAndDownwindInAFullWindAndSwingsBetweenItsLimits) {
    // Turns of the staff, counter-clockwise: −90 streams astern, 0 to starboard, 90 ahead. The wind
    // blows from behind the starboard beam towards 120 degrees from east, or to the south.
    for (const auto& [heading, wind, strength, phase, offset, turn] :
         {std::array{0.0f, 123.0f, 0.0f, 0.0f, 0.0f, -90.0f}, // astern, whatever the wind's course
          {-30, 0, 0, 4, 20, -96},                            // 30 to the right; swung and turned
          {0, 120, 99999, -6, 1, 115},                        // clamped, not carried past the wind
          {0, 30, 5000, 0, 0, -30}}) {                        // halfway from −90 to 30
        prefab->setWgsHPR({heading, 0, 0});
        Engine::get()->setWindDirection(wind);
        Engine::get()->setWindStrength(strength);
        flag.m_phase = phase;
        flag.set_offset(offset);
        flag.update(0);
        const dvec3 x = flag.m_node->getTransform().getX();
        EXPECT_NEAR(std::atan2(x.y, x.x) * RAD_TO_DEG<double>, turn, 1e-3);
    }
    flag.m_phase = 0; // swings at 3 degrees a second; cut, and turned round in the same frame
    for (const auto& [dt, phase] :
         {std::pair(5 / 3.0f, 5), {1000, 10}, {std::nanf(""), 10}, {1000, -10}, {5 / 3.0f, -5}}) {
        flag.update(dt);
        EXPECT_NEAR(flag.m_phase, phase, 1e-5);
    }
    // The cloth hangs on the side that this is about.
    EXPECT_GT(prefab->getNodeByName("ensign")->getBounds().center.x, 1);
}

} // namespace
