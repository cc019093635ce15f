// SPDX-License-Identifier: MIT

// The ships in the logic's scene: found at start-up, advanced by the frame, put back by a reset.

#include "SignalRecorder.h"
#include "common/ship/FlagOper.h"
#include "common/ship/Ship.h"
#include "ig/physics/Body.h"
#include "ig/scene/SceneObjects.h"

#include <tuple>

namespace {

using namespace ig;

TEST(LogicShips, StartUpFindsThemTheFrameMovesThemWithWakesAndFlagsAndResetPutsThemBack) {
    SeaScene scene(60);
    const Logic_Nerith_Heli_Final& logic = *scene.logic;
    ASSERT_TRUE(logic.m_ship1 && logic.m_ship2);
    const dmat4 start1 = logic.m_ship1->getObject()->getWorldTransform();
    const dmat4 start2 = logic.m_ship2->getObject()->getWorldTransform();
    const auto stern = [](const Ship* ship) {
        const auto& prefab = static_cast<const ObjectPrefab&>(*ship->getObject());
        return static_cast<ObjectParticles*>(prefab.getNodeByName("wake_stern"));
    };
    for (const Ship* ship : {logic.m_ship1, logic.m_ship2})
        stern(ship)->setLife(1);
    scene.frames(120);
    for (const FlagOper* flag : {logic.m_flag_qizi1, logic.m_flag_qizi2, logic.m_flag_qizhi}) {
        ASSERT_NE(flag->m_node, nullptr);
        EXPECT_NEAR(flag->m_phase, 6, 1e-3); // 3 degrees per second
        EXPECT_EQ(flag->m_amplitude, 10);
    }
    for (const auto& [ship, thrust, life] :
         {std::tuple(logic.m_ship1, 700, 30), {logic.m_ship2, 300, 40}}) {
        const dvec3 ahead = ship->getObject()->getWorldTransform().getY();
        EXPECT_GT(dot(dvec3(ship->getVelocity()), ahead), 0.1);
        EXPECT_EQ(ship->getThrust(), thrust);
        EXPECT_EQ(stern(ship)->getLife(), life);
    }

    scene.logic->reset();
    for (const auto& [ship, start] : {std::pair(logic.m_ship1, start1), {logic.m_ship2, start2}}) {
        const Object& object = *ship->getObject();
        EXPECT_EQ(object.getWorldTransform(), start);
        EXPECT_EQ(ship->getVelocity(), vec3_zero);
        EXPECT_EQ(object.getBodyRigid()->getAngularVelocity(), vec3_zero);
    }
}

TEST(LogicShips, WhatIsMissingOrNoPrefabIsSkipped) {
    LogicScene scene;
    scene.folder.write("bare.prefab", "node: {name: bare}\n"); // neither body nor wake nor flag
    scene.addToWorld("name: ocean, type: ocean, beaufort: 0");
    scene.addToWorld("name: SM_055_CN_2023"); // exists, but is no prefab
    scene.addToWorld("name: LNJ_2023, type: prefab, path: bare.prefab");
    ASSERT_TRUE(scene.start());
    EXPECT_EQ(scene.logic->m_ship1, nullptr);
    ASSERT_NE(scene.logic->m_ship2, nullptr);
    scene.log.lines.clear();
    scene.frames(10);
    scene.logic->reset();
    EXPECT_TRUE(scene.log.lines.empty());
}

TEST(LogicShips, WhatFallsThroughTheSeaIsNamedOnce) {
    LogicScene scene;
    const std::string body = "body: {mass: 9e6, shapes: [{type: box, size: [14, 100, 4]}]";
    scene.folder.write("barge.prefab", "node: {name: hull, " + body + "}}\n");
    scene.addToWorld("name: ocean, type: ocean, beaufort: 0");
    scene.addToWorld("name: SM_055_CN_2023, type: prefab, path: barge.prefab");
    scene.addToWorld("name: tug, type: prefab, path: barge.prefab");
    scene.addToWorld("name: buoy, " + body + ", landing: true, floating: true}");
    scene.addToWorld("name: rock, enabled: false, " + body + "}");
    ASSERT_TRUE(scene.start());
    std::string told;
    for (const std::string& line : scene.log.lines)
        for (const char* name : {"\"SM_055_CN_2023\" (barge.prefab) sinks", "\"hull\" falls",
                                 "\"buoy\"", "\"rock\"", "\"helicopter\""})
            if (line.find(name) != std::string::npos) told += name;
    EXPECT_EQ(told, "\"SM_055_CN_2023\" (barge.prefab) sinks\"hull\" falls");
}

} // namespace
