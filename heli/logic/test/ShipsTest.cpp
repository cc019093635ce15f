// SPDX-License-Identifier: MIT

// The ships in the logic's scene: found at start-up, advanced by the frame, put back by a reset.

#include "common/ship/FlagOper.h"
#include "common/ship/Ship.h"
#include "common/ship/Wakes.h"
#include "ig/physics/Body.h"
#include "ig/scene/SceneObjects.h"
#include "plugins/ocean/ObjectOcean.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace ig;

/// A ship of 40 m × 10 m × 4 m that floats at an immersion of 0.4, with a wake and two flags.
std::string shipPrefab(const std::string& flag, const std::string& second = "other") {
    return R"(node:
  name: ship
  body: {mass: 25600, shapes: [{type: box, size: [10, 40, 4], position: [0, 0, -0.9]}]}
  children:
  - {name: )" +
           flag + R"(, position: [0, -20, 5]}
  - {name: )" +
           second + R"(, position: [0, -20, 7]}
  - name: wakes
    children:
    - {name: foam, type: decal, children: [{name: stern, type: particles, life: 1, rate: 5}]}
)";
}

struct ShipsTest : testing::Test {
    ShipsTest() {
        scene.folder.write("first.prefab", shipPrefab("qizi1", "qizi2"));
        scene.folder.write("second.prefab", shipPrefab("qizhi"));
        scene.addToWorld("name: ocean, type: ocean, beaufort: 0");
    }
    void addShip(const std::string& name, const std::string& path, double longitude) {
        scene.addToWorld("name: " + name + ", type: prefab, path: " + path + ", wgs: [" +
                         std::to_string(longitude) + ", 19.72, 0]");
    }
    void startWithBoth() {
        addShip("SM_055_CN_2023", "first.prefab", -155.05);
        addShip("LNJ_2023", "second.prefab", -155.04);
        ASSERT_TRUE(scene.start());
    }
    void run(double seconds) {
        for (int i = 0; i < seconds * 60; i++)
            scene.frame();
    }
    static ObjectPrefab& prefabOf(const Ship* ship) {
        return static_cast<ObjectPrefab&>(*ship->getObject());
    }
    static float foamLife(const Ship* ship) {
        return static_cast<ObjectParticles*>(prefabOf(ship).getNodeByName("stern"))->getLife();
    }
    LogicScene scene;
};

TEST_F(ShipsTest, StartUpFindsThemAndTheFrameMovesThemWithWakesAndFlags) {
    startWithBoth();
    const Logic_Nerith_Heli_Final& logic = *scene.logic;
    ASSERT_TRUE(logic.m_ship1 && logic.m_ship2);
    std::vector<std::pair<const Ship*, dmat4>> both;
    for (const Ship* ship : {logic.m_ship1, logic.m_ship2})
        both.emplace_back(ship, ship->getObject()->getWorldTransform());
    EXPECT_EQ(logic.m_ship1->getThrust(), 700);
    EXPECT_EQ(logic.m_ship2->getThrust(), 300);
    EXPECT_NE(logic.m_flag_qizi1->m_node, nullptr);
    EXPECT_NE(logic.m_flag_qizi2->m_node, nullptr);
    EXPECT_NE(logic.m_flag_qizhi->m_node, nullptr);
    run(2);
    for (const FlagOper* flag : {logic.m_flag_qizi1, logic.m_flag_qizi2, logic.m_flag_qizhi}) {
        EXPECT_NEAR(flag->m_phase, 6, 1e-3); // 3 degrees per second
        EXPECT_EQ(flag->m_amplitude, 10);
    }
    for (const Ship* ship : {logic.m_ship1, logic.m_ship2}) {
        const ObjectPrefab& prefab = prefabOf(ship);
        EXPECT_GT(dot(dvec3(ship->getVelocity()), prefab.getWorldTransform().getY()), 0.1);
        // The wake was placed before this frame's physics moved the ship.
        const Node* wakes = prefab.getNodeByName("wakes");
        EXPECT_LT(length(wakes->getWorldPosition() - prefab.getWorldPosition()), 0.3);
    }
    EXPECT_EQ(foamLife(logic.m_ship1), 30);
    EXPECT_EQ(foamLife(logic.m_ship2), 40);

    scene.logic->reset();
    for (const auto& [ship, start] : both) {
        const Object& object = *ship->getObject();
        const BodyRigid& body = *object.getBodyRigid();
        EXPECT_LT(length(object.getWorldPosition() - start.getTranslate()), 1e-9);
        EXPECT_LT(length(object.getWorldTransform().getY() - start.getY()), 1e-12);
        EXPECT_EQ(ship->getVelocity(), vec3_zero);
        EXPECT_EQ(body.getAngularVelocity(), vec3_zero);
    }
}

TEST_F(ShipsTest, WhatIsMissingOrNoPrefabIsSkipped) {
    scene.addToWorld("name: SM_055_CN_2023"); // exists, but is no prefab
    scene.folder.write("second.prefab", "node: {name: bare}\n");
    addShip("LNJ_2023", "second.prefab", -155.04); // neither body nor wake nor flag
    ASSERT_TRUE(scene.start());
    EXPECT_EQ(scene.logic->m_ship1, nullptr);
    ASSERT_NE(scene.logic->m_ship2, nullptr);
    scene.log.lines.clear();
    run(0.2);
    scene.logic->reset();
    EXPECT_TRUE(scene.log.lines.empty());
}

} // namespace
