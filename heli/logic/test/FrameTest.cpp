// SPDX-License-Identifier: MIT
#include "heli/logic/HandOper.h"
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
    scene.extra_nodes.push_back(terrain);
    ASSERT_TRUE(scene.start());
    const HelicopterCorax& heli = *scene.logic->m_heli;
    const auto expect = [&](double ground, bool over_water) {
        scene.frame(0);
        EXPECT_NEAR(heli.get_ground_height(), ground, 1e-5);
        EXPECT_EQ(heli.is_over_water(), over_water) << ground;
    };
    const auto expectSea = [&] {
        const dvec3 place = heli.get_world_position();
        expect(EARTH.getAltitude(scene.logic->m_ocean->getWorldPoint(place)), true);
    };
    expect(7, false);
    terrain->m_altitude = -20;
    expectSea();
    terrain->m_exists = false;
    expectSea();
    scene.logic->m_ocean = nullptr;
    expect(static_cast<double>(-1e9f), false);
    terrain->m_exists = true;
    expect(-20, false);
}

TEST(Commander, HandsSwingBetweenTheirLimitsTogether) {
    LogicScene scene;
    scene.folder.write("cmder.prefab", "node: {name: r, children: [{name: left_hand}, "
                                       "{name: arm, children: [{name: right_hand}]}]}\n");
    scene.addToWorld("name: cmder, type: prefab, path: cmder.prefab");
    ASSERT_TRUE(scene.start());
    HandOper& hands = *scene.logic->m_cmder;
    auto* commander = static_cast<ObjectPrefab*>(scene.world->getNodeByName("cmder"));
    scene.frame(0.25f);
    EXPECT_NEAR(hands.m_angle, 30, 1e-4);
    for (const char* name : {"left_hand", "right_hand"})
        EXPECT_NEAR(commander->getNodeByName(name)->getRotation().toEulerZXY().x, 30, 1e-4);
    for (const float end : {45, -45, 45}) { // and it turns round in the same frame
        scene.frame(1);
        EXPECT_EQ(hands.m_angle, end);
    }
}

} // namespace
