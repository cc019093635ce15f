// SPDX-License-Identifier: MIT
#include "ig/scene/Track.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

struct ResetTest : testing::Test {
    void SetUp() override { ASSERT_TRUE(scene.start()); }
    LogicScene scene;
};

TEST_F(ResetTest, HelicopterIsRepairedAndBackAtItsMarker) {
    UdpRecvData record = LogicScene::record();
    record.altitude = 300;
    record.rotor_speed = 200;
    scene.send(record);
    scene.frame();
    scene.helicopterNode("normal")->setEnabled(false);
    scene.helicopterNode("destroyed")->setEnabled(true);
    scene.helicopterNode("fire")->setEnabled(true);
    scene.helicopterNode("sonar")->setEnabled(false);
    scene.logic->m_heli->set_collective_decay(0.98f);
    scene.logic->reset();
    EXPECT_NEAR(scene.helicopterWgs().z, LogicScene::ALTITUDE, 1e-8);
    EXPECT_NEAR(scene.logic->m_heli->m_prefab->getWgsHPR().x, 30, 1e-9);
    EXPECT_TRUE(scene.helicopterNode("normal")->isEnabled());
    EXPECT_FALSE(scene.helicopterNode("destroyed")->isEnabled());
    EXPECT_FALSE(scene.helicopterNode("fire")->isEnabled());
    EXPECT_TRUE(scene.helicopterNode("sonar")->isEnabled());
    EXPECT_EQ(scene.logic->m_heli->get_collective_decay(), 1);
    EXPECT_EQ(scene.logic->m_heli->m_collective, 0);
}

TEST(Reset, MissingMarkerAndStatesAreSkipped) {
    LogicScene scene;
    scene.folder.write(LogicScene::HELICOPTER, "node: {name: bare}\n");
    ASSERT_TRUE(scene.start());
    scene.world->removeNode(scene.world->getNodeByName("start_heli"));
    UdpRecvData record = LogicScene::record();
    record.altitude = 99;
    scene.send(record);
    scene.frame();
    scene.logic->reset();
    EXPECT_NEAR(scene.helicopterWgs().z, 99, 1e-8);
}

TEST_F(ResetTest, TracksAreKeptInOrderAndFoundByPath) {
    const int before = scene.logic->m_tracks.size();
    scene.log.lines.clear();
    scene.logic->load_track("");
    EXPECT_TRUE(scene.log.lines.empty());
    scene.folder.write("a.anim", "channels: [{node: deck, keys: [[0, 1], [1, 0]]}]\n");
    scene.logic->load_track("a.anim");
    scene.logic->load_track("a.anim");
    ASSERT_EQ(scene.logic->m_tracks.size(), before + 2);
    EXPECT_EQ(scene.logic->get_track("a.anim"), scene.logic->m_tracks[before]);
    EXPECT_EQ(scene.logic->get_track("b.anim"), nullptr);
    scene.logic->load_track("b.anim");
    EXPECT_EQ(scene.log.lines, (std::vector<std::string>{
                                   "Logic_Nerith_Heli_Final::load_track:\"b.anim\" load failed"}));
    EXPECT_EQ(scene.logic->m_tracks.size(), before + 2);
    scene.logic->get_track("a.anim")->set(1);
    EXPECT_FALSE(scene.world->getNodeByName("deck")->isEnabled());
}

} // namespace
