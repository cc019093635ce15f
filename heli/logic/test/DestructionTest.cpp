// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "heli/logic/records.h"
#include "ig/base/jAllocator.h"
#include "ig/physics/Body.h"
#include "ig/scene/SceneObjects.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

TEST(Destruction, BurnsTurnsIntoTheWreckAndIsRepairedByReset) {
    SeaScene scene;
    ASSERT_TRUE(scene.startAt(300));
    scene.logic->emit_sonar();
    SignalRecorder signals(*scene.logic);
    auto* flames = static_cast<ObjectParticles*>(scene.helicopterNode("fire_spe"));
    flames->stop();
    EXPECT_TRUE(scene.logic->heli_explosion());
    ASSERT_EQ(signals.effects.size(), 1u);
    EXPECT_EQ(signals.effects[0].path, "data/art/prefab/vfx/explosion_1/explosion_1.prefab");
    EXPECT_EQ(signals.effects[0].duration, 6);
    EXPECT_LT(length(signals.effects[0].place - scene.logic->m_heli->get_world_position()), 1e-6);
    EXPECT_EQ(signals.removed.size(), 1u); // the sonar
    EXPECT_TRUE(scene.helicopterNode("sonar")->isEnabled());
    EXPECT_TRUE(scene.helicopterNode("fire")->isEnabled());
    EXPECT_TRUE(flames->isEmitterEnabled());
    EXPECT_EQ(scene.logic->m_heli->get_collective_decay(), 0.98f);
    for (int i = 0; i < 11; i++)
        scene.frame();
    EXPECT_TRUE(scene.helicopterNode("normal")->isEnabled()); // 0.183 s
    for (int i = 0; i < 3; i++)
        scene.frame();
    EXPECT_FALSE(scene.helicopterNode("normal")->isEnabled());
    EXPECT_TRUE(scene.helicopterNode("destroyed")->isEnabled());
    const int nodes = scene.world->getNodes().size();
    for (int i = 0; i < 355; i++)
        scene.frame();
    EXPECT_EQ(scene.world->getNodes().size(), nodes - 1); // the explosion is over
    scene.logic->heli_explosion();                        // again, while wrecked
    EXPECT_EQ(signals.effects.size(), 2u);
    const unsigned cleared = flames->getNumCleared();
    scene.logic->reset();
    EXPECT_TRUE(scene.helicopterNode("normal")->isEnabled());
    EXPECT_FALSE(scene.helicopterNode("destroyed")->isEnabled());
    EXPECT_FALSE(scene.helicopterNode("fire")->isEnabled());
    EXPECT_NE(flames->getNumCleared(), cleared);
    for (int i = 0; i < 30; i++)
        scene.frame();
    EXPECT_TRUE(scene.helicopterNode("normal")->isEnabled()); // its timer is gone
}

TEST(Destruction, TumblesABodyThatIsEnabledAboutItsOwnAxes) {
    SeaScene scene;
    ASSERT_TRUE(scene.startAt(300));
    BodyRigid& body = *scene.logic->m_heli->m_body;
    body.setEnabled(true);
    int left = 0, right = 0;
    for (int i = 0; i < 20; i++) {
        const dmat4 pose = scene.logic->m_heli->get_world_transform();
        body.setAngularVelocity({});
        body.setAngularDamping(0);
        scene.logic->heli_explosion();
        scene.world->updatePhysics(1 / 60.0f);
        const dvec3 spin = transpose(pose.getMat3()) * dvec3(body.getAngularVelocity());
        EXPECT_GT(std::abs(spin.x), 0.01);
        EXPECT_GT(std::abs(spin.z), 0.01);
        (spin.z > 0 ? left : right)++;
    }
    EXPECT_GT(left, 0);
    EXPECT_GT(right, 0);
}

TEST(Destruction, WithoutEffectAndStatesOnlyTheTimerRuns) {
    LogicScene scene; // its data folder has no explosion
    ASSERT_TRUE(scene.start());
    const int nodes = scene.world->getNodes().size();
    EXPECT_TRUE(scene.logic->heli_explosion());
    EXPECT_EQ(scene.world->getNodes().size(), nodes);
    for (int i = 0; i < 13; i++)
        scene.frame();
    EXPECT_TRUE(scene.helicopterNode("destroyed")->isEnabled());
    EXPECT_EQ(scene.logic->m_action_manager.size(), 0);
}

TEST(Reset, WithEverythingDeployedRemovesItInItsOrder) {
    SeaScene scene;
    ASSERT_TRUE(scene.startAt(300));
    SignalRecorder signals(*scene.logic);
    scene.logic->emit_sonar();
    scene.logic->emit_decoy();
    scene.logic->throw_sonar();
    scene.logic->emit_torpedo();
    scene.logic->emit_winch();
    scene.logic->emit_torpedo();
    scene.logic->emit_missile();
    for (int i = 0; i < 30; i++)
        scene.frame();
    const auto& a = signals.added;
    std::vector<Node*> expected = {a[8], a[10], a[7]};
    expected.insert(expected.end(), a.begin() + 1, a.begin() + 7);
    expected.push_back(a[0]);
    scene.logic->reset();
    EXPECT_EQ(signals.removed, expected);
    EXPECT_TRUE(scene.logic->m_torpedo_infos.empty() && scene.logic->m_decoys.empty() &&
                scene.logic->m_thrown_sonars.empty());
    EXPECT_EQ(scene.logic->m_missiles.size(), 1);
    EXPECT_EQ(scene.logic->m_winch_info->prefab, a[9]);
    EXPECT_EQ(scene.logic->m_action_manager.size(), 0);
    for (int i = 0; i < 10; i++)
        scene.frame();
}

} // namespace
