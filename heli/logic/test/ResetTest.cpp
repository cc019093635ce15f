// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "heli/logic/records.h"
#include "ig/base/jAllocator.h"
#include "testkit/AllocationCounter.h"

#include <array>

namespace {

using namespace ig;

TEST(Reset, RemovesWhatIsDeployedInItsOrderAndLeavesMissilesAndWinch) {
    SeaScene scene(300);
    const SignalRecorder& signals = *scene.signals;
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
    const std::vector<bool> flags = {false, true,  true,  true,  true, true, true,
                                     true,  false, false, false, true, false};
    EXPECT_EQ(signals.added_flags, flags);
    const auto& a = signals.added;
    std::vector<Node*> expected = {a[0], a[8], a[10], a[7]};
    expected.insert(expected.end(), a.begin() + 1, a.begin() + 7);
    expected.push_back(a[12]);
    scene.logic->reset();
    EXPECT_EQ(signals.removed, expected);
    // Announced before anything of it goes; the first sonar went with the explosion.
    EXPECT_EQ(signals.codes, (std::vector<std::pair<int, std::size_t>>{{25, 1}, {26, 1}}));
    EXPECT_TRUE(scene.helicopterNode("sonar")->isEnabled());
    EXPECT_EQ(scene.logic->m_missiles.size(), 1);
    EXPECT_EQ(scene.logic->m_winch_info->prefab, a[9]);
    EXPECT_EQ(scene.logic->m_action_manager.size(), 0);
    scene.logic->reset(); // again, with nothing left to remove
    EXPECT_EQ(signals.removed, expected);
}

/// What a scene holds: bytes and objects of the engine, blocks of the heap.
std::array<std::size_t, 3> holdings() {
    return {jAllocator::get()->getUsed(), memCount(), AllocationCounter::live()};
}

/// Everything is deployed, used in one way or another, and taken away; now and then there is time
/// for splashes. Missiles end before the reset, which leaves them alone.
void cycle(SeaScene& scene, int i) {
    Logic_Nerith_Heli_Final& logic = *scene.logic;
    logic.emit_torpedo();
    logic.emit_sonar();
    logic.emit_winch();
    logic.throw_sonar();
    logic.emit_decoy();
    logic.emit_missile();
    logic.emit_missile();
    if (i % 4 == 0) logic.heli_explosion();
    scene.frame();
    ASSERT_EQ(logic.m_decoys.size(), 6);
    logic.sonar_down(1);
    if (i % 2) logic.break_sonar_joint();
    for (int frame = 0; i % 50 == 0 && frame < 40; frame++)
        scene.frame(0.1f);
    if (i % 3 == 0) logic.release_sonar();
    for (ObjectPrefab* missile : logic.m_missiles)
        missile->setEnabled(false);
    logic.update_missle();
    logic.release_winch();
    logic.reset();
    scene.place(60);
    scene.signals->effects.clear(); // their paths are blocks of the heap
}

TEST(Cycles, DeploymentsLeaveNothingBehind) {
    SeaScene scene(60);
    for (int i = 0; i < 100; i++) // caches and arrays reach their sizes
        cycle(scene, i);
    const auto before = holdings();
    for (int i = 0; i < 100; i++)
        cycle(scene, i);
    EXPECT_EQ(holdings(), before);
}

} // namespace
