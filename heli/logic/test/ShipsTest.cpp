// SPDX-License-Identifier: MIT

// The ships in the logic's scene: found at start-up, advanced by the frame, put back by a reset.

#include "common/ship/Buoyancy.h"
#include "common/ship/FlagOper.h"
#include "common/ship/Ship.h"
#include "common/ship/Wakes.h"
#include "ig/physics/Body.h"
#include "ig/scene/SceneObjects.h"
#include "plugins/ocean/ObjectOcean.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

/// A ship of 40 m × 10 m × 4 m that floats at an immersion of 0.4, with a wake and one flag.
std::string shipPrefab(const char* flag) {
    return R"(node:
  name: ship
  body: {mass: 25600, shapes: [{type: box, size: [10, 40, 4], position: [0, 0, -0.9]}]}
  children:
  - {name: )" +
           std::string(flag) + R"(, position: [0, -20, 5]}
  - name: wakes
    children:
    - {name: foam, type: decal, children: [{name: stern, type: particles, life: 1, rate: 5}]}
)";
}

struct ShipsTest : testing::Test {
    ShipsTest() {
        scene.folder.write("first.prefab", shipPrefab("qizi1"));
        scene.folder.write("second.prefab", shipPrefab("qizhi"));
        scene.addToWorld("name: ocean, type: ocean, beaufort: 0");
    }
    void addShip(const char* name, const char* path, double longitude) {
        scene.addToWorld("name: " + std::string(name) + ", type: prefab, path: " + path +
                         ", wgs: [" + std::to_string(longitude) + ", 19.72, 0]");
    }
    void addBoth() {
        addShip("SM_055_CN_2023", "first.prefab", -155.05);
        addShip("LNJ_2023", "second.prefab", -155.04);
    }
    void run(double seconds) {
        for (int i = 0; i < seconds * 60; i++)
            scene.frame();
    }
    LogicScene scene;
};

TEST_F(ShipsTest, StartUpFindsShipsAndFlagsAndSendsThemFullAhead) {
    addBoth();
    ASSERT_TRUE(scene.start());
    const Logic_Nerith_Heli_Final& logic = *scene.logic;
    ASSERT_TRUE(logic.m_ship1 && logic.m_ship2);
    EXPECT_EQ(logic.m_ship1->getThrust(), 700);
    EXPECT_EQ(logic.m_ship2->getThrust(), 300);
    EXPECT_EQ(logic.m_ship1->getControlMode(), 2);
    EXPECT_EQ(logic.m_ship2->getControlMode(), 2);
    EXPECT_EQ(logic.m_ship1->getWakes()->getWakeLife(), 30);
    EXPECT_EQ(logic.m_ship2->getWakes()->getWakeLife(), 40);
    const auto* first = static_cast<ObjectPrefab*>(logic.m_ship1->getObject());
    EXPECT_EQ(logic.m_ship1_start, first->getWorldTransform());
    EXPECT_EQ(logic.m_flag_qizi1->m_node, first->getNodeByName("qizi1"));
    EXPECT_EQ(logic.m_flag_qizi1->m_amplitude, 10);
    EXPECT_EQ(logic.m_flag_qizi1->m_speed, 3);
    EXPECT_EQ(logic.m_flag_qizi2->m_node, nullptr); // this ship has none
    EXPECT_NE(logic.m_flag_qizhi->m_node, nullptr);
    EXPECT_NE(first->getBodyRigid(), nullptr); // the whole prefab floats, not its root alone
}

TEST_F(ShipsTest, TheySteamAheadWithTheirWakeAndFlagsSwing) {
    addBoth();
    ASSERT_TRUE(scene.start());
    run(30);
    for (const Ship* ship : {scene.logic->m_ship1, scene.logic->m_ship2}) {
        const Object& object = *ship->getObject();
        EXPECT_NEAR(ship->getBuoyancy()->getSubmerged(), 0.4, 0.01);
        EXPECT_GT(dot(dvec3(ship->getVelocity()), object.getWorldTransform().getY()), 1);
        const Node* wakes = static_cast<const ObjectPrefab&>(object).getNodeByName("wakes");
        // The wake was placed before this frame's physics moved the ship.
        EXPECT_LT(length(wakes->getWorldPosition() - object.getWorldPosition()), 0.3);
        EXPECT_NEAR(wakes->getWgsHPR().y, 0, 1e-3);
    }
    EXPECT_NE(scene.logic->m_flag_qizi1->m_phase, 0);
    const auto* prefab = static_cast<ObjectPrefab*>(scene.logic->m_ship2->getObject());
    const auto* stern = static_cast<ObjectParticles*>(prefab->getNodeByName("stern"));
    EXPECT_EQ(stern->getLife(), 40);
}

TEST_F(ShipsTest, ResetPutsThemBackAtRest) {
    addBoth();
    ASSERT_TRUE(scene.start());
    run(10);
    scene.logic->reset();
    const auto expectAtStart = [](const Ship* ship, const dmat4& start) {
        const Object& object = *ship->getObject();
        EXPECT_LT(length(object.getWorldPosition() - start.getTranslate()), 1e-9);
        EXPECT_LT(length(object.getWorldTransform().getY() - start.getY()), 1e-12);
        EXPECT_LT(
            length(object.getBodyRigid()->getTransform().getTranslate() - start.getTranslate()),
            1e-8);
        EXPECT_EQ(ship->getVelocity(), vec3_zero);
        EXPECT_EQ(object.getBodyRigid()->getAngularVelocity(), vec3_zero);
    };
    expectAtStart(scene.logic->m_ship1, scene.logic->m_ship1_start);
    expectAtStart(scene.logic->m_ship2, scene.logic->m_ship2_start);
    scene.frame(); // and they start again from there
    EXPECT_LT(length(scene.logic->m_ship1->getObject()->getWorldPosition() -
                     scene.logic->m_ship1_start.getTranslate()),
              0.05);
    run(5);
    EXPECT_GT(length(scene.logic->m_ship1->getVelocity()), 0.5);
}

TEST_F(ShipsTest, DisabledShipNeitherSteamsNorLeavesAWake) {
    addBoth();
    ASSERT_TRUE(scene.start());
    const auto* prefab = static_cast<ObjectPrefab*>(scene.logic->m_ship1->getObject());
    scene.logic->m_ship1->getObject()->setEnabled(false);
    const auto* stern = static_cast<ObjectParticles*>(prefab->getNodeByName("stern"));
    run(1);
    EXPECT_EQ(stern->getLife(), 1);
    EXPECT_EQ(scene.logic->m_ship1->getBuoyancy()->getSubmerged(), 0);
    EXPECT_GT(scene.logic->m_ship2->getBuoyancy()->getSubmerged(), 0.2f);
}

TEST_F(ShipsTest, WhatIsMissingOrNoPrefabIsSkipped) {
    scene.addToWorld("name: SM_055_CN_2023"); // exists, but is no prefab
    scene.folder.write("second.prefab", "node: {name: bare}\n");
    addShip("LNJ_2023", "second.prefab", -155.04); // neither body nor wake nor flag
    ASSERT_TRUE(scene.start());
    EXPECT_EQ(scene.logic->m_ship1, nullptr);
    EXPECT_EQ(scene.logic->m_flag_qizi1->m_node, nullptr);
    ASSERT_NE(scene.logic->m_ship2, nullptr);
    EXPECT_EQ(scene.logic->m_ship2->getWakes(), nullptr);
    EXPECT_EQ(scene.logic->m_flag_qizhi->m_node, nullptr);
    scene.log.lines.clear();
    run(0.2);
    scene.logic->reset();
    EXPECT_TRUE(scene.log.lines.empty());
}

} // namespace
