// SPDX-License-Identifier: MIT
#include "heli/logic/records.h"
#include "ig/base/jAllocator.h"
#include "testkit/AllocationCounter.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>

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

void deployEverything(Logic_Nerith_Heli_Final& logic) {
    logic.emit_torpedo();
    logic.emit_torpedo();
    logic.emit_missile();
    logic.emit_missile();
    logic.throw_sonar();
    logic.emit_sonar();
    logic.emit_winch();
    logic.emit_decoy();
}

/// In the order in which an operator can: missiles end before a reset, which leaves them alone.
void removeEverything(Logic_Nerith_Heli_Final& logic) {
    for (ObjectPrefab* missile : logic.m_missiles)
        missile->setEnabled(false);
    logic.update_missle();
    logic.release_winch();
    logic.reset();
}

} // namespace

TEST(Cycles, AThousandDeploymentsLeaveNothingBehind) {
    LogicScene scene;
    scene.useProjectData();
    ASSERT_TRUE(scene.start());
    const auto cycle = [&] {
        deployEverything(*scene.logic);
        ASSERT_EQ(scene.logic->m_decoys.size(), 6);
        ASSERT_GT(scene.logic->m_action_manager.size(), 6);
        scene.frame();
        scene.frame(0.1f);
        removeEverything(*scene.logic);
    };
    for (int i = 0; i < 50; i++) // caches and arrays reach their sizes
        cycle();
    const Holdings before = look(scene);
    EXPECT_EQ(before.weapons, 0);
    for (int i = 0; i < 1000; i++)
        cycle();
    EXPECT_EQ(look(scene), before);
}
