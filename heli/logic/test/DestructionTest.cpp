// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "ig/scene/SceneObjects.h"

namespace {

using namespace ig;

TEST(Destruction, BurnsTurnsIntoTheWreckAndIsRepairedByReset) {
    SeaScene scene(300);
    SignalRecorder& signals = *scene.signals;
    scene.logic->emit_sonar();
    auto* flames = static_cast<ObjectParticles*>(scene.helicopterNode("fire_spe"));
    flames->stop();
    scene.logic->heli_explosion();
    ASSERT_EQ(signals.effects.size(), 1u);
    EXPECT_EQ(signals.effects[0].path, "data/art/prefab/vfx/explosion_1/explosion_1.prefab");
    EXPECT_LT(length(signals.effects[0].place - scene.logic->m_heli->get_world_position()), 1e-6);
    EXPECT_EQ(signals.removed.size(), 1u); // the sonar
    EXPECT_TRUE(scene.helicopterNode("fire")->isEnabled());
    EXPECT_TRUE(flames->isEmitterEnabled());
    EXPECT_EQ(scene.logic->m_heli->get_collective_decay(), 0.98f);
    scene.frames(11);
    EXPECT_TRUE(scene.helicopterNode("normal")->isEnabled()); // 0.183 s
    scene.frames(3);
    EXPECT_FALSE(scene.helicopterNode("normal")->isEnabled());
    EXPECT_TRUE(scene.helicopterNode("destroyed")->isEnabled());
    scene.logic->heli_explosion(); // again, while wrecked
    const unsigned cleared = flames->getNumCleared();
    scene.logic->m_heli->m_collective = 5;
    scene.logic->reset();
    EXPECT_EQ(scene.logic->m_heli->m_collective, 0);
    EXPECT_EQ(scene.logic->m_heli->get_collective_decay(), 1);
    const dmat4 start = scene.world->getNodeByName("start_heli")->getWorldTransform();
    EXPECT_EQ(scene.logic->m_heli->get_world_transform(), start);
    EXPECT_TRUE(scene.helicopterNode("normal")->isEnabled());
    EXPECT_FALSE(scene.helicopterNode("destroyed")->isEnabled());
    EXPECT_FALSE(scene.helicopterNode("fire")->isEnabled());
    EXPECT_NE(flames->getNumCleared(), cleared);
    scene.frames(30);
    EXPECT_TRUE(scene.helicopterNode("normal")->isEnabled()); // its timer is gone
}

} // namespace
