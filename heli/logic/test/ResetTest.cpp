// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "heli/logic/records.h"
#include "ig/scene/Track.h"

namespace {

using namespace ig;

TEST(Reset, RemovesWhatIsDeployedInItsOrderAndLeavesMissilesAndWinch) {
    SeaScene scene(300);
    const SignalRecorder& signals = *scene.signals;
    const int before = scene.world->getNodes().size();
    scene.logic->emit_sonar();
    scene.logic->emit_decoy();
    scene.logic->throw_sonar();
    scene.logic->emit_torpedo();
    scene.logic->emit_winch();
    scene.logic->emit_torpedo();
    scene.logic->emit_missile();
    scene.logic->heli_explosion(); // takes the sonar
    scene.logic->emit_sonar();
    scene.frames(30);
    const auto& a = signals.added;
    std::vector<Node*> expected = {a[0], a[8], a[10], a[7]};
    expected.insert(expected.end(), a.begin() + 1, a.begin() + 7);
    expected.push_back(a[12]);
    scene.logic->reset();
    EXPECT_EQ(signals.removed, expected);
    EXPECT_EQ(signals.codes, (std::vector<int>{25, 26}));
    EXPECT_EQ(signals.removed_before_code, (std::vector<std::size_t>{1, 1})); // the explosion's
    EXPECT_TRUE(scene.logic->m_torpedo_infos.empty() && scene.logic->m_decoys.empty() &&
                scene.logic->m_thrown_sonars.empty());
    EXPECT_EQ(scene.logic->m_sonar_info->prefab, nullptr);
    EXPECT_TRUE(scene.helicopterNode("sonar")->isEnabled());
    EXPECT_EQ(scene.logic->m_missiles.size(), 1);
    EXPECT_EQ(scene.logic->m_winch_info->prefab, a[9]);
    EXPECT_EQ(scene.logic->m_action_manager.size(), 0);
    EXPECT_EQ(scene.world->getNodes().size(), before + 2);
    scene.logic->reset(); // again, with nothing left to remove
    EXPECT_EQ(signals.removed, expected);
    EXPECT_EQ(signals.codes.size(), 4u);
    scene.frames(10);
}

TEST(Tracks, AreKeptInOrderAndFoundByPath) {
    LogicScene scene;
    ASSERT_TRUE(scene.start());
    scene.log.lines.clear();
    scene.folder.write("a.anim", "channels: [{node: deck, keys: [[0, 1], [1, 0]]}]\n");
    for (const char* path : {"", "a.anim", "b.anim", "a.anim"})
        scene.logic->load_track(path);
    EXPECT_EQ(scene.logic->m_tracks.size(), 2);
    EXPECT_EQ(scene.logic->get_track("a.anim"), scene.logic->m_tracks[0]);
    EXPECT_EQ(scene.logic->get_track("b.anim"), nullptr);
    EXPECT_EQ(scene.log.lines, (std::vector<std::string>{
                                   "Logic_Nerith_Heli_Final::load_track:\"b.anim\" load failed"}));
    scene.logic->get_track("a.anim")->set(1);
    EXPECT_FALSE(scene.world->getNodeByName("deck")->isEnabled());
}

} // namespace
