// SPDX-License-Identifier: MIT
#include "plugins/ocean/ObjectOcean.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;
const EllipsoidModel EARTH;

TEST(GroundReference, HigherOfTerrainAndSeaDecides) {
    LogicScene scene;
    scene.addToWorld("name: ocean, type: ocean, beaufort: 5");
    auto* terrain = new FlatTerrain(7);
    terrain->setName("terrain");
    scene.before_init = [&](Logic_Nerith_Heli_Final&) { scene.world->addNode(terrain); };
    ASSERT_TRUE(scene.start());
    const HelicopterCorax& heli = *scene.logic->m_heli;
    const auto expect = [&](double ground, bool over_water) {
        EXPECT_NEAR(heli.get_ground_height(), ground, 1e-5);
        EXPECT_EQ(heli.is_over_water(), over_water) << ground;
    };
    scene.frame(0);
    expect(7, false);
    terrain->m_altitude = -20;
    scene.frame(0);
    expect(EARTH.getAltitude(scene.logic->m_ocean->getWorldPoint(heli.get_world_position())), true);
    terrain->m_exists = false;
    scene.logic->m_ocean = nullptr;
    scene.frame(0);
    expect(static_cast<double>(-1e9f), false);
}

TEST(Commander, HandsSwingBetweenTheirLimitsTogether) {
    LogicScene scene;
    scene.folder.write("cmder.prefab", "node: {name: r, children: [{name: left_hand}, "
                                       "{name: arm, children: [{name: right_hand}]}]}\n");
    scene.addToWorld("name: cmder, type: prefab, path: cmder.prefab");
    ASSERT_TRUE(scene.start());
    auto* commander = static_cast<ObjectPrefab*>(scene.world->getNodeByName("cmder"));
    for (const auto& [dt, angle] : {std::pair(0.25f, 30), {1, 45}, {1, -45}, {0.5f, 15}}) {
        scene.frame(dt); // turns round in the frame that reaches the end
        for (const char* name : {"left_hand", "right_hand"})
            EXPECT_NEAR(commander->getNodeByName(name)->getRotation().toEulerZXY().x, angle, 1e-4);
    }
}

} // namespace
