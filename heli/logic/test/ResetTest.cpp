// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "heli/logic/records.h"

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

} // namespace
