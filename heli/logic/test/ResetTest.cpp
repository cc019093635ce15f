// SPDX-License-Identifier: MIT
#include "heli/logic/records.h"
#include "ig/action/ActionInterval.h"
#include "ig/base/jAllocator.h"
#include "ig/scene/Track.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

const MemSite SITE = {"test", "ResetTest"};

struct ResetTest : testing::Test {
    void SetUp() override { ASSERT_TRUE(scene.start()); }
    ObjectPrefab* drop() {
        auto* prefab = memNew<ObjectPrefab>(SITE, "none.prefab");
        scene.world->addNode(prefab);
        return prefab;
    }
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

TEST_F(ResetTest, RemovesWhatWasThrownInOrderAndLeavesMissilesAndWinch) {
    struct Listener {
        std::vector<Node*> removed;
        std::vector<int> codes;
        void onRemoved(Node* node) { removed.push_back(node); }
        void onCode(int code) { codes.push_back(code); }
    } listener;
    scene.logic->m_sig_node_removed.append({&listener, &Listener::onRemoved});
    scene.logic->m_sig_code.append({&listener, &Listener::onCode});
    const std::size_t memory = memCount();
    std::vector<Node*> expected;
    auto* thrown = memNew<SonarInfo>(SITE);
    thrown->prefab = drop();
    scene.logic->m_thrown_sonars.append(thrown);
    expected.push_back(thrown->prefab);
    for (int i = 0; i < 3; i++) {
        scene.logic->m_decoys.append(drop());
        expected.push_back(scene.logic->m_decoys.back());
    }
    scene.logic->m_sonar_info->prefab = drop();
    scene.logic->m_sonar_info->anchor = scene.logic->m_sonar_info->prefab;
    expected.push_back(scene.logic->m_sonar_info->prefab);
    ObjectPrefab* missile = drop();
    scene.logic->m_missiles.append(missile);
    scene.logic->m_winch_info->prefab = drop();
    scene.logic->m_action_manager.addAction(ActionInterval::Create(5), false);
    const int nodes = scene.world->getNodes().size();

    scene.logic->reset();
    EXPECT_EQ(listener.removed, expected);
    EXPECT_EQ(listener.codes, (std::vector<int>{25, 26}));
    EXPECT_TRUE(scene.logic->m_thrown_sonars.empty() && scene.logic->m_decoys.empty());
    EXPECT_EQ(scene.logic->m_sonar_info->prefab, nullptr);
    EXPECT_EQ(scene.logic->m_sonar_info->anchor, nullptr);
    EXPECT_EQ(scene.world->getNodes().size(), nodes - 5);
    EXPECT_GE(scene.world->getNodes().find(missile), 0);
    EXPECT_EQ(scene.logic->m_missiles.size(), 1);
    EXPECT_NE(scene.logic->m_winch_info->prefab, nullptr);
    EXPECT_EQ(scene.logic->m_action_manager.size(), 0);
    EXPECT_EQ(memCount(), memory + 2); // missile and winch load

    listener = {};
    scene.logic->reset(); // again, with nothing left to remove
    EXPECT_TRUE(listener.removed.empty());
    EXPECT_EQ(listener.codes.size(), 2u);
    scene.frame();
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
