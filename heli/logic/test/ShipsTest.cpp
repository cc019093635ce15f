// SPDX-License-Identifier: MIT

// The ships in the logic's scene: found at start-up, advanced by the frame, put back by a reset;
// and the one sea that they share with the picture and the feedback.

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

const EllipsoidModel EARTH;

/// A ship of 40 m × 10 m × 4 m that floats at an immersion of 0.4, with a wake and one flag.
std::string shipPrefab(const std::string& flag) {
    return R"(node:
  name: ship
  body: {mass: 25600, shapes: [{type: box, size: [10, 40, 4], position: [0, 0, -0.9]}]}
  children:
  - {name: )" +
           flag + R"(, position: [0, -20, 5]}
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

TEST_F(ShipsTest, StartUpFindsThemAndTheySteamAheadWithWakesAndFlags) {
    startWithBoth();
    const Logic_Nerith_Heli_Final& logic = *scene.logic;
    ASSERT_TRUE(logic.m_ship1 && logic.m_ship2);
    EXPECT_EQ(logic.m_ship1->getThrust(), 700);
    EXPECT_EQ(logic.m_ship2->getThrust(), 300);
    EXPECT_EQ(logic.m_flag_qizi1->m_node, prefabOf(logic.m_ship1).getNodeByName("qizi1"));
    EXPECT_EQ(logic.m_flag_qizi2->m_node, nullptr); // this ship has none
    EXPECT_EQ(logic.m_flag_qizhi->m_node, prefabOf(logic.m_ship2).getNodeByName("qizhi"));
    run(2);
    for (const FlagOper* flag : {logic.m_flag_qizi1, logic.m_flag_qizhi})
        EXPECT_NEAR(flag->m_phase, 6, 1e-3); // 3 degrees per second
    run(28);
    for (const Ship* ship : {logic.m_ship1, logic.m_ship2}) {
        const ObjectPrefab& prefab = prefabOf(ship);
        EXPECT_NEAR(ship->getBuoyancy()->getSubmerged(), 0.4, 0.01);
        EXPECT_GT(dot(dvec3(ship->getVelocity()), prefab.getWorldTransform().getY()), 1);
        // The wake was placed before this frame's physics moved the ship.
        const Node* wakes = prefab.getNodeByName("wakes");
        EXPECT_LT(length(wakes->getWorldPosition() - prefab.getWorldPosition()), 0.3);
    }
    EXPECT_EQ(foamLife(logic.m_ship1), 30);
    EXPECT_EQ(foamLife(logic.m_ship2), 40);
}

TEST_F(ShipsTest, ResetPutsThemBackAtRest) {
    startWithBoth();
    const std::pair<const Ship*, const dmat4*> both[] = {
        {scene.logic->m_ship1, &scene.logic->m_ship1_start},
        {scene.logic->m_ship2, &scene.logic->m_ship2_start}};
    run(10);
    scene.logic->reset();
    for (const auto& [ship, start] : both) {
        const Object& object = *ship->getObject();
        const BodyRigid& body = *object.getBodyRigid();
        EXPECT_LT(length(object.getWorldPosition() - start->getTranslate()), 1e-9);
        EXPECT_LT(length(object.getWorldTransform().getY() - start->getY()), 1e-12);
        EXPECT_LT(length(body.getTransform().getTranslate() - start->getTranslate()), 1e-8);
        EXPECT_EQ(ship->getVelocity(), vec3_zero);
        EXPECT_EQ(body.getAngularVelocity(), vec3_zero);
    }
}

TEST_F(ShipsTest, DisabledShipNeitherMovesNorLeavesAWake) {
    startWithBoth();
    Object& object = *scene.logic->m_ship1->getObject();
    object.setEnabled(false);
    run(1);
    EXPECT_EQ(object.getWorldTransform(), scene.logic->m_ship1_start); // nor falls
    EXPECT_EQ(foamLife(scene.logic->m_ship1), 1);
    EXPECT_EQ(scene.logic->m_ship1->getBuoyancy()->getSubmerged(), 0);
    EXPECT_GT(scene.logic->m_ship2->getBuoyancy()->getSubmerged(), 0.2f);
    object.setEnabled(true);
    run(1);
    EXPECT_GT(length(scene.logic->m_ship1->getVelocity()), 0.1);
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

// ------------------------------------------------------------------ one sea

/// Displacement east and north and height of the water that rests at a place of a tile, between
/// the four texels around it.
dvec3 texelAt(const OceanTile& tile, double x, double y) {
    const double u = x / tile.tile * tile.resolution, v = y / tile.tile * tile.resolution;
    const double a = u - std::floor(u), b = v - std::floor(v);
    const auto at = [&](double i, double j) {
        const auto wrap = [&](double k) {
            return static_cast<int>(std::floor(k) -
                                    std::floor(std::floor(k) / tile.resolution) * tile.resolution);
        };
        const float* texel = tile.displacement + 4 * (wrap(j) * tile.resolution + wrap(i));
        return dvec3(vec3(texel[0], texel[1], texel[2]));
    };
    return at(u, v) * ((1 - a) * (1 - b)) + at(u + 1, v) * (a * (1 - b)) +
           at(u, v + 1) * ((1 - a) * b) + at(u + 1, v + 1) * (a * b);
}

/// The altitude at which the sea is drawn at a place, from the record that the renderer is given.
double drawnAltitude(const OceanFrame& frame, double longitude, double latitude) {
    const double c = OceanFrame::SECOND_COSINE, s = OceanFrame::SECOND_SINE;
    const dvec2 place = frame.toPlane(longitude, latitude);
    dvec3 moved;
    for (int step = 0; step < 60; step++) {
        const double x = place.x - moved.x, y = place.y - moved.y;
        const dvec3 first = texelAt(frame.tiles[0], x, y);
        const dvec3 second = texelAt(frame.tiles[0], c * x - s * y + OceanFrame::SECOND_OFFSET_X,
                                     s * x + c * y + OceanFrame::SECOND_OFFSET_Y);
        moved =
            (first + dvec3(c * second.x + s * second.y, c * second.y - s * second.x, second.z)) *
                std::sqrt(0.5) +
            texelAt(frame.tiles[1], x, y) + texelAt(frame.tiles[2], x, y);
    }
    return moved.z + frame.mean_level;
}

TEST(OneSea, IsWhatShipsFloatOnWhatIsDrawnAndWhatTheFeedbackMeets) {
    LogicScene scene;
    scene.addToWorld("name: ocean, type: ocean, beaufort: 6");
    // A thin pole, 8 m high, held with its foot at altitude −3: its immersion tells the sea there.
    const dvec3 foot(-155.05, 19.72, -3);
    auto* pole = new Object(NODE_DUMMY);
    auto* body = new BodyRigid(1, {});
    body->addShape(Shape::createBox({0.001f, 0.001f, 8}));
    body->setEnabled(false);
    pole->setBody(body);
    pole->setWorldPosition(EARTH.toWorld(foot) + dvec3(0, 0, 4));
    scene.extra_nodes.push_back(pole);
    ASSERT_TRUE(scene.start());
    Buoyancy buoyancy(body, scene.logic->m_ocean);
    UdpRecvData record = LogicScene::record();
    record.longitude = foot.x;
    record.latitude = foot.y;
    double lowest = 9, highest = -9;
    for (int i = 0; i < 40; i++) {
        scene.send(record);
        scene.frame(0.25f);
        buoyancy.update();
        const double met = static_cast<double>(record.altitude) -
                           static_cast<double>(scene.feedback()->height_above_ground);
        const double floated = foot.z + 8 * static_cast<double>(buoyancy.getSubmerged());
        EXPECT_NEAR(floated, met, 2e-3);
        EXPECT_NEAR(drawnAltitude(scene.logic->m_ocean->getFrame(), foot.x, foot.y), met, 2e-3);
        EXPECT_NEAR(static_cast<double>(scene.logic->m_heli->get_ground_height()), met, 2e-3);
        lowest = std::min(lowest, met);
        highest = std::max(highest, met);
    }
    EXPECT_GT(highest - lowest, 1); // of a significant height of 3 m
}

} // namespace
