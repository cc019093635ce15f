// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "ig/base/jAllocator.h"
#include "testkit/AllocationCounter.h"

namespace {

using namespace ig;

/// What a scene holds.
struct Holdings {
    std::size_t engine_memory, engine_objects, heap_blocks;
    int nodes, bodies, actions, weapons;
    friend bool operator==(const Holdings&, const Holdings&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Holdings& h) {
        return out << h.engine_memory << " bytes in " << h.engine_objects << " objects, "
                   << h.heap_blocks << " blocks of the heap, " << h.nodes << " nodes, " << h.bodies
                   << " bodies, " << h.actions << " actions, " << h.weapons << " weapons";
    }
};

int countNodes(const Node& node) {
    int count = 1;
    for (int i = 0; i < node.getNumChildren(); i++)
        count += countNodes(*node.getChild(i));
    return count;
}

Holdings look(LogicScene& scene) {
    const Logic_Nerith_Heli_Final& logic = *scene.logic;
    Holdings h{};
    h.engine_memory = jAllocator::get()->getUsed();
    h.engine_objects = memCount();
    h.heap_blocks = AllocationCounter::live();
    for (const Node* node : scene.world->getNodes())
        h.nodes += countNodes(*node);
    h.bodies = scene.world->getPhysics().getBodies().size();
    h.actions = logic.m_action_manager.size();
    h.weapons = logic.m_torpedo_infos.size() + logic.m_thrown_sonars.size() +
                logic.m_missiles.size() + logic.m_decoys.size();
    return h;
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
    scene.signals->forget();
}

} // namespace

TEST(Cycles, DeploymentsLeaveNothingBehind) {
    SeaScene scene(60);
    for (int i = 0; i < 100; i++) // caches and arrays reach their sizes
        cycle(scene, i);
    const Holdings before = look(scene);
    EXPECT_EQ(before.weapons, 0);
    EXPECT_EQ(before.actions, 0);
    for (int i = 0; i < 100; i++)
        cycle(scene, i);
    EXPECT_EQ(look(scene), before);
}
