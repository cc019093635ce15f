// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "ig/base/jAllocator.h"
#include "testkit/AllocationCounter.h"

#include <array>

namespace {

using namespace ig;

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

} // namespace

TEST(Cycles, DeploymentsLeaveNothingBehind) {
    SeaScene scene(60);
    for (int i = 0; i < 100; i++) // caches and arrays reach their sizes
        cycle(scene, i);
    const auto before = holdings();
    for (int i = 0; i < 100; i++)
        cycle(scene, i);
    EXPECT_EQ(holdings(), before);
}
