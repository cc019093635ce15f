// SPDX-License-Identifier: MIT
#include "heli/logic/HandOper.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

using Mode = Logic_Nerith_Heli_Final;

TEST(GroundReference, HigherOfTerrainAndSeaDecides) {
    LogicScene scene;
    scene.addToWorld("name: ocean, type: ocean, beaufort: 0"); // still water
    auto* terrain = new FlatTerrain(7);
    terrain->setName("terrain");
    scene.extra_nodes.push_back(terrain);
    ASSERT_TRUE(scene.start());
    const HelicopterCorax& heli = *scene.logic->m_heli;
    const auto expect = [&](double ground, bool over_water) {
        scene.frame();
        EXPECT_NEAR(heli.get_ground_height(), ground, 1e-6);
        EXPECT_EQ(heli.is_over_water(), over_water) << ground;
    };
    expect(7, false);
    terrain->m_altitude = -20;
    expect(0, true);
    terrain->m_exists = false;
    expect(0, true);
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
    scene.frame(1);
    EXPECT_EQ(hands.m_angle, 45);
    EXPECT_EQ(hands.m_swing_dir, -1);
    scene.frame(1);
    EXPECT_EQ(hands.m_angle, -45);
    EXPECT_EQ(hands.m_swing_dir, 1);
}

TEST(Views, CycleAndEachModePlacesTheCamera) {
    LogicScene scene;
    ASSERT_TRUE(scene.start());
    Logic_Nerith_Heli_Final& logic = *scene.logic;
    scene.frame();
    const dmat4 third = scene.camera.getTransform();
    logic.change_view();
    scene.frame();
    EXPECT_EQ(logic.m_player_mode, Mode::PLAYER_MODE_FREE);
    EXPECT_EQ(scene.camera.getTransform(), third); // starts from the present view
    UdpRecvData record = LogicScene::record();
    record.altitude = 200;
    record.heading = 130;
    scene.send(record);
    scene.frame();
    EXPECT_EQ(scene.camera.getTransform(), third); // nobody moves it
    logic.change_view();
    scene.frame();
    EXPECT_EQ(logic.m_player_mode, Mode::PLAYER_MODE_FIRST);
    const dmat4 eye = scene.helicopterNode("cam_first_player")->getWorldTransform();
    EXPECT_LT(length(scene.camera.getTransform().getTranslate() - eye.getTranslate()), 1e-8);
    EXPECT_LT(length(scene.camera.getTransform().getZ() - eye.getZ()), 1e-9);
    logic.change_view();
    EXPECT_EQ(logic.m_player_mode, Mode::PLAYER_MODE_THIRD);
    // First exactly where the third view left it, then after the helicopter again.
    EXPECT_LT(length(scene.camera.getTransform().getTranslate() - third.getTranslate()), 1e-8);
    scene.frame();
    EXPECT_NEAR(
        length(scene.camera.getTransform().getTranslate() - logic.m_heli->get_world_position()), 25,
        1e-8);
}

TEST(Events, WheelZoomsTheThirdViewOnlyDownToAMetre) {
    LogicScene scene;
    ASSERT_TRUE(scene.start());
    Logic_Nerith_Heli_Final& logic = *scene.logic;
    logic.onMouseWheel({-120, 0}, nullptr); // down: farther
    EXPECT_EQ(logic.m_third_dist, 26);
    EXPECT_NEAR(length(logic.m_third_cam_pos - logic.m_heli->get_world_position()), 26, 1e-8);
    for (int i = 0; i < 40; i++)
        logic.onMouseWheel({120, 1}, nullptr);
    EXPECT_EQ(logic.m_third_dist, 1);
    logic.set_player_mode(Mode::PLAYER_MODE_FREE);
    logic.onMouseWheel({-120, 0}, nullptr);
    EXPECT_EQ(logic.m_third_dist, 1);
}

TEST(Events, Message654321LevelsTheCamera) {
    LogicScene scene;
    ASSERT_TRUE(scene.start());
    scene.camera_control.m_rotation =
        normalize(scene.camera_control.m_rotation * dquat(dvec3(0, 0, 1), 25));
    scene.camera_control.updateView();
    UiMsg other{123456}, level{654321};
    MsgMngr::get()->send(&other);
    const auto tilt = [&] {
        return dot(scene.camera.getTransform().getY(), normalize(scene.camera.getPosition()));
    };
    EXPECT_LT(tilt(), 0.95);
    MsgMngr::get()->send(&level);
    EXPECT_NEAR(tilt(), 1, 1e-12);
}

} // namespace
