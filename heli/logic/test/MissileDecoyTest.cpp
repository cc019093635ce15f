// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "ig/physics/Body.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using namespace ig;

const char* const HIT = "data/art/prefab/vfx/explosion/explosion.prefab";

TEST(Missile, NeverFliesThroughAShipAndExplodesOnce) {
    for (const float dt : {1 / 144.0f, 1 / 60.0f, 0.1f})
        for (const double side : {-6.0, 0.0, 7.0})
            for (const double height : {0.5, 5.0, 9.0}) { // hull below and above the deck, hangar
                SeaScene scene;
                ASSERT_TRUE(scene.start());
                const Node* ship = scene.world->getNodeByName("SM_055_CN_2023");
                const double distance = 500 + 7 * side;
                scene.logic->m_heli->set_transform(ship->getWGSTransform() *
                                                   translate(dvec3(side, -distance, height)));
                SignalRecorder signals(*scene.logic);
                scene.logic->emit_missile();
                Object* missile = scene.logic->m_missiles[0];
                for (float t = 0; t < 3; t += dt)
                    scene.frame(dt);
                ASSERT_EQ(signals.effects.size(), 1u) << dt << " " << side << " " << height;
                EXPECT_EQ(signals.effects[0].path, HIT);
                EXPECT_EQ(signals.effects[0].duration, 20);
                EXPECT_FALSE(missile->getBody()->isEnabled());
                // In the ship, or past it by no more than the step.
                const dvec3 place = ship->toLocal(signals.effects[0].place);
                EXPECT_GT(place.y, -84) << dt << " " << side << " " << height;
                EXPECT_LT(place.y, 80 + 300 * static_cast<double>(dt));
                EXPECT_TRUE(missile->isEnabled()); // it flies on
            }
}

TEST(Missile, ExplodesAtTheSea) {
    for (const float dt : {1 / 60.0f, 0.1f}) {
        SeaScene scene;
        ASSERT_TRUE(scene.startAt(200));
        scene.place(200, {30, -20, 0});
        SignalRecorder signals(*scene.logic);
        scene.logic->emit_missile();
        for (float t = 0; t < 4; t += dt)
            scene.frame(dt);
        ASSERT_EQ(signals.effects.size(), 1u);
        const double step = 300 * static_cast<double>(dt) * std::sin(20 / 57.3);
        EXPECT_LT(SeaScene::altitude(signals.effects[0].place), 2);
        EXPECT_GT(SeaScene::altitude(signals.effects[0].place), -step - 2);
    }
}

TEST(Missile, ThatHitsNothingFliesStraightAndGoesAfterItsTime) {
    SeaScene scene;
    ASSERT_TRUE(scene.startAt(500));
    scene.place(500, {200, 10, 15});
    SignalRecorder signals(*scene.logic);
    const dmat4 launch = scene.logic->m_heli->get_world_transform();
    scene.logic->emit_missile();
    EXPECT_EQ(signals.added_flags, (std::vector<bool>{true}));
    const Node* missile = scene.logic->m_missiles[0];
    double time = 0;
    for (; time < 19.9; time += 0.1)
        scene.frame(0.1f);
    const dvec3 expected = launch * dvec3(0, 5 + 300 * time, 0);
    EXPECT_LT(length(missile->getWorldPosition() - expected), 0.02);
    EXPECT_LT(length(missile->getWorldTransform().getX() - launch.getX()), 1e-9);
    for (int i = 0; i < 3; i++)
        scene.frame(0.1f);
    EXPECT_TRUE(scene.logic->m_missiles.empty());
    EXPECT_EQ(signals.removed, (std::vector<Node*>{const_cast<Node*>(missile)}));
    EXPECT_TRUE(signals.effects.empty());
}

TEST(Missile, SecondContactFindsTheBodyDisabledAndHandlersAreBoundOnce) {
    SeaScene scene;
    ASSERT_TRUE(scene.startAt(500));
    SignalRecorder signals(*scene.logic);
    scene.logic->emit_missile();
    scene.logic->emit_missile();
    EXPECT_EQ(scene.logic->m_missile_callback.m_handlers.size(), 1);
    Body* body = scene.logic->m_missiles[0]->getBody();
    scene.logic->m_missile_callback.onContact(body, 0);
    scene.logic->m_missile_callback.onContact(body, 1);
    EXPECT_EQ(signals.effects.size(), 1u);
    // Of three the first goes and the last takes its place.
    scene.logic->emit_missile();
    auto& missiles = scene.logic->m_missiles;
    const auto before = missiles;
    missiles[0]->setEnabled(false);
    scene.frame();
    ASSERT_EQ(missiles.size(), 2);
    EXPECT_EQ(missiles[0], before[2]);
    EXPECT_EQ(missiles[1], before[1]);
    // Reset ends the flight and leaves the missiles where they are.
    const dvec3 place = missiles[0]->getWorldPosition();
    scene.logic->reset();
    for (int i = 0; i < 60; i++)
        scene.frame();
    ASSERT_EQ(missiles.size(), 2);
    EXPECT_EQ(missiles[0]->getWorldPosition(), place);
}

TEST(Decoys, LeaveAlongTheirDispensersAndVanishAfterTwentySeconds) {
    SeaScene scene;
    ASSERT_TRUE(scene.startAt(1500));
    scene.place(1500, {70, 5, -10});
    SignalRecorder signals(*scene.logic);
    scene.logic->emit_decoy();
    ASSERT_EQ(scene.logic->m_decoys.size(), 6);
    const char* const dispensers[] = {"dl_0", "dl_1", "dl_2", "dr_0", "dr_1", "dr_2"};
    for (int i = 0; i < 6; i++) {
        const Object* decoy = scene.logic->m_decoys[i];
        const dmat4 mount = scene.helicopterNode(dispensers[i])->getWorldTransform();
        EXPECT_LT(length(decoy->getWorldPosition() - mount.getTranslate()), 1e-6);
        // 50 N s on 2 kg.
        const dvec3 velocity(decoy->getBodyRigid()->getLinearVelocity());
        EXPECT_LT(length(velocity - mount.getX() * 25.0), 1e-3);
    }
    ObjectPrefab* last = scene.logic->m_decoys[5];
    scene.frame();
    EXPECT_GT(length(last->getWorldPosition() - scene.helicopterNode("dr_2")->getWorldPosition()),
              0.3);
    for (int i = 1; i < 199; i++)
        scene.frame(0.1f);
    EXPECT_EQ(scene.logic->m_decoys.size(), 6);
    for (int i = 0; i < 3; i++)
        scene.frame(0.1f);
    EXPECT_TRUE(scene.logic->m_decoys.empty());
    EXPECT_EQ(signals.removed, signals.added); // each once, in order
    EXPECT_EQ(scene.logic->m_action_manager.size(), 0);
}

TEST(Weapons, WithoutTheirFilesAreTrackedAndRemovedAllTheSame) {
    LogicScene scene; // its data folder has none of them
    ASSERT_TRUE(scene.start());
    SignalRecorder signals(*scene.logic);
    const int nodes = scene.world->getNodes().size();
    scene.logic->emit_missile();
    scene.logic->emit_decoy();
    EXPECT_EQ(scene.world->getNodes().size(), nodes + 7);
    for (int i = 0; i < 203; i++)
        scene.frame(0.1f);
    EXPECT_EQ(scene.world->getNodes().size(), nodes);
    EXPECT_EQ(signals.removed.size(), 7u);
    HelicopterCorax* heli = scene.logic->m_heli;
    scene.logic->m_heli = nullptr;
    scene.logic->emit_missile();
    scene.logic->emit_decoy();
    EXPECT_EQ(scene.world->getNodes().size(), nodes);
    scene.logic->m_heli = heli;
}

} // namespace
