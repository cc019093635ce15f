// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "ig/base/jAllocator.h"
#include "testkit/AllocationCounter.h"

#include <array>

namespace {

using namespace ig;

std::size_t countNodes(const Node& node) {
    std::size_t count = 1;
    for (int i = 0; i < node.getNumChildren(); i++)
        count += countNodes(*node.getChild(i));
    return count;
}

/// What a scene holds: bytes and objects of the engine, blocks of the heap, nodes, bodies, actions,
/// weapons.
std::array<std::size_t, 7> look(LogicScene& scene) {
    const Logic_Nerith_Heli_Final& logic = *scene.logic;
    std::size_t nodes = 0;
    for (const Node* node : scene.world->getNodes())
        nodes += countNodes(*node);
    const int bodies = scene.world->getPhysics().getBodies().size();
    const int actions = logic.m_action_manager.size();
    const int weapons = logic.m_torpedo_infos.size() + logic.m_thrown_sonars.size() +
                        logic.m_missiles.size() + logic.m_decoys.size();
    return {jAllocator::get()->getUsed(),     memCount(),
            AllocationCounter::live(),        nodes,
            static_cast<std::size_t>(bodies), static_cast<std::size_t>(actions),
            static_cast<std::size_t>(weapons)};
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
    const auto before = look(scene);
    for (int i = 0; i < 100; i++)
        cycle(scene, i);
    EXPECT_EQ(look(scene), before);
}
