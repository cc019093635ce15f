// SPDX-License-Identifier: MIT

// Torpedoes, missiles, decoys, and the helicopter's own end.

#include "SignalRecorder.h"
#include "assets.h"
#include "common/ship/Ship.h"
#include "heli/logic/records.h"
#include "ig/physics/Body.h"
#include "ig/scene/SceneObjects.h"

#include <cmath>

namespace {

using namespace ig;

// By the closed forms: 1.5 s of free fall to the speed u, then against drag ½ρAv² with 8 m² and
// 235 kg, v² / g · log(cosh(gt / v) + u / v · sinh(gt / v)) for the terminal speed v.
TEST(Torpedo, EntersTheWaterWhenBallisticsTellsWithExactlyItsTwoEffects) {
    for (const auto& [height, fall] : {std::pair(30.0, 2.613), {150.0, 8.295}}) {
        SeaScene scene(height + 3, {70, 0, 0});
        const SignalRecorder& signals = *scene.signals;
        scene.logic->m_ocean->setBeaufort(5);
        scene.logic->emit_torpedo();
        const auto* prefab = scene.logic->m_torpedo_infos[0]->prefab;
        const Node* torpedo = prefab->getNodeByName("torpedo");
        EXPECT_NEAR(SeaScene::altitude(torpedo->getWorldPosition()), height, 1e-6);
        EXPECT_LT(length(prefab->getWgsHPR()), 1e-9);
        double time = 0;
        dvec3 last;
        for (int i = 0; i < 2000 && signals.effects.empty(); i++) {
            const float dt = height < 99 && i % 25 == 10 ? 0.1f : 1 / 60.0f; // with stalls
            last = torpedo->getWorldPosition();
            scene.frame(dt);
            time += static_cast<double>(dt);
        }
        EXPECT_NEAR(time, fall, 0.05 * fall);
        ASSERT_EQ(signals.effects.size(), 2u);
        EXPECT_EQ(signals.effects[0].what, "data/art/prefab/vfx/explosion_1/explosion_1.prefab 20");
        EXPECT_EQ(signals.effects[1].what,
                  "data/PELMAR_PROJECT/prefabs/vfx/water_explosion/water_explosion.prefab 3");
        const dvec3 splash = signals.effects[1].place;
        EXPECT_NEAR(SeaScene::altitude(splash), scene.sea(last) + 1, 0.05);
        EXPECT_LT(length(splash - last), 6); // above it
        EXPECT_LT(SeaScene::altitude(last), scene.sea(last) + 0.01);
        EXPECT_EQ(signals.removed, signals.added);
        // What is announced is shown, and the parachute's action is gone.
        EXPECT_EQ(scene.logic->m_action_manager.size(), 2);
        EXPECT_EQ(scene.effects(), (std::vector<dvec3>{last, splash}));
    }
}

TEST(Torpedo, EachIsTrackedAloneAndTheLastTakesTheFreedPlace) {
    SeaScene scene(1000);
    for (int i = 0; i < 3; i++)
        scene.logic->emit_torpedo();
    auto& infos = scene.logic->m_torpedo_infos;
    TorpedoInfo *second = infos[1], *third = infos[2];
    infos[0]->time_left = 0;
    second->prefab->setEnabled(false); // its time stands still
    scene.frame();
    ASSERT_EQ(infos.size(), 2);
    EXPECT_EQ(infos[0], third);
    EXPECT_EQ(infos[1], second);
    EXPECT_EQ(second->time_left, 40);
    EXPECT_LT(third->time_left, 40);
    EXPECT_TRUE(scene.signals->effects.empty());
}

TEST(Missile, NeverFliesThroughAShipAndExplodesOnce) {
    for (const float dt : {1 / 60.0f, 0.1f}) {
        SCOPED_TRACE(dt);
        SeaScene scene(0);
        scene.logic->m_ship1->setControlMode(0);
        const Node* ship = scene.world->getNodeByName("SM_055_CN_2023");
        for (const bool abeam : {false, true}) // from astern at hull, deck and hangar, or the side
            for (const double side : {-6.0, 7.0})
                for (const double height : {0.5, 5.0, 9.0}) {
                    const dvec3 from = abeam ? dvec3(8 * side, -400 - side, height / 2)
                                             : dvec3(side, -500 + 7 * side, height);
                    const dmat4 course(dquat(0.0, 0.0, abeam ? -90.0 : 0.0), {});
                    scene.logic->m_heli->set_transform(ship->getWGSTransform() * course *
                                                       translate(from));
                    scene.logic->emit_missile();
                }
        for (float t = 0; t < 3; t += dt)
            scene.frame(dt);
        ASSERT_EQ(scene.signals->effects.size(), 12u);
        for (const auto& effect : scene.signals->effects) {
            EXPECT_EQ(effect.what, "data/art/prefab/vfx/explosion/explosion.prefab 20");
            const dvec3 place = ship->toLocal(effect.place); // in the ship, or a step past it
            EXPECT_TRUE(place.x > -14 && place.x < 14 + 300 * dt) << place.x;
            EXPECT_TRUE(place.y > -84 && place.y < 80 + 300 * dt) << place.y;
        }
    }
}

TEST(Missile, FliesStraightForItsTimeExplodesOnceAndResetLeavesTheOthersHanging) {
    SeaScene scene(200, {30, -20, 0}); // down into the sea
    const SignalRecorder& signals = *scene.signals;
    auto& missiles = scene.logic->m_missiles;
    scene.logic->emit_missile();
    scene.frames(40, 0.1f);
    ASSERT_EQ(signals.effects.size(), 1u);
    const double step = 30 * std::sin(20 / 57.3);
    EXPECT_NEAR(SeaScene::altitude(signals.effects[0].place), -step / 2, step / 2 + 2);
    scene.place(500, {200, 10, 15}); // up into the sky
    const dmat4 launch = scene.logic->m_heli->get_world_transform();
    scene.logic->emit_missile();
    scene.logic->emit_missile();
    scene.logic->m_missile_callback.onContact(missiles[1]->getBody(), 0);
    ASSERT_EQ(signals.effects.size(), 2u); // once, though three were bound
    EXPECT_EQ(signals.effects[1].place, missiles[1]->getWorldPosition());
    ObjectPrefab* last = missiles[2];
    scene.frames(159, 0.1f);
    EXPECT_EQ(missiles.size(), 3);
    scene.frames(3, 0.1f); // 20 s after the first one's launch
    ASSERT_EQ(missiles.size(), 2);
    EXPECT_EQ(missiles[0], last); // took the freed place
    EXPECT_EQ(signals.removed, (std::vector<Node*>{signals.added[0]}));
    EXPECT_EQ(signals.effects.size(), 2u);
    const dvec3 place = launch * dvec3(0, 5 + 300 * 16.2, 0);
    EXPECT_LT(length(last->getWorldTransform().getX() - launch.getX()), 1e-9);
    scene.logic->reset();
    scene.frames(10);
    EXPECT_LT(length(last->getWorldPosition() - place), 0.02);
}

TEST(Decoys, LeaveAlongTheirDispensersAndVanishAfterTwentySeconds) {
    SeaScene scene(1500, {70, 5, -10});
    const auto& decoys = scene.logic->m_decoys;
    scene.logic->emit_decoy();
    ASSERT_EQ(decoys.size(), 6);
    int i = 0;
    for (const char* dispenser : {"dl_0", "dl_1", "dl_2", "dr_0", "dr_1", "dr_2"}) {
        ObjectPrefab& decoy = *decoys[i++];
        const dmat4 mount = scene.helicopterNode(dispenser)->getWorldTransform();
        EXPECT_LT(length(decoy.getWorldPosition() - mount.getTranslate()), 1e-6);
        const dvec3 velocity(decoy.getBodyRigid()->getLinearVelocity()); // 50 N s on 2 kg
        EXPECT_LT(length(velocity - mount.getX() * 25.0), 1e-3);
    }
    scene.frames(199, 0.1f);
    EXPECT_EQ(decoys.size(), 6);
    scene.frames(3, 0.1f);
    EXPECT_TRUE(decoys.empty());
    EXPECT_EQ(scene.signals->removed, scene.signals->added); // each once, in order
}

// What a prefab of another making may hold under the names that are looked for.
const char* const WRONG_KINDS = R"(node:
  name: wrong
  children: [{name: anchor}, {name: torpedo}, {name: sonar}, {name: sonar_mesh}, {name: obj},
    {name: rope, type: mesh, mesh: square.obj, intersect: false, body: {mass: 1}}]
)";

TEST(Equipment, WithoutFilesOrTheirPartsIsTrackedAndRemovedAllTheSame) {
    for (const char* const text : {"", "node: {name: bare}\n", WRONG_KINDS}) {
        SCOPED_TRACE(text);
        LogicScene scene; // its data folder has none of them
        for (const char* path : {TORPEDO, MISSILE, DECOY, SONOBUOY, DIPPING_SONAR, BASKET})
            if (*text) scene.folder.write(path, text);
        scene.addToWorld("name: ocean, type: ocean, beaufort: 0");
        ASSERT_TRUE(scene.start());
        Logic_Nerith_Heli_Final& logic = *scene.logic;
        const SignalRecorder signals(logic);
        const int before = scene.world->getNodes().size();
        const auto count = [&] { return scene.world->getNodes().size() - before; };
        logic.heli_explosion();
        logic.emit_torpedo();
        logic.emit_missile();
        logic.emit_decoy();
        logic.throw_sonar();
        logic.emit_sonar();
        logic.sonar_down(1);
        logic.break_sonar_joint();
        EXPECT_TRUE(signals.texts.empty());
        UdpRecvData record = LogicScene::record();
        record.hang_enable = 1;
        scene.tell(record);
        logic.winch_up(1);
        EXPECT_EQ(count(), 11);
        scene.frames(202, 0.1f);
        EXPECT_EQ(count(), 4); // missile and decoys are over
        scene.frames(201, 0.1f);
        EXPECT_EQ(count(), 3); // and the torpedo
        logic.reset();
        logic.release_winch();
        EXPECT_EQ(signals.removed.size(), 11u);
        EXPECT_EQ(count(), 0);
    }
}

TEST(Destruction, BurnsTurnsIntoTheWreckAndIsRepairedByReset) {
    SeaScene scene(300);
    const SignalRecorder& signals = *scene.signals;
    HelicopterCorax& heli = *scene.logic->m_heli;
    auto* flames = static_cast<ObjectParticles*>(scene.helicopterNode("fire_spe"));
    const auto expect = [&](bool fire, bool wreck) {
        EXPECT_EQ(scene.helicopterNode("fire")->isEnabled(), fire);
        EXPECT_EQ(scene.helicopterNode("normal")->isEnabled(), !wreck);
        EXPECT_EQ(scene.helicopterNode("destroyed")->isEnabled(), wreck);
    };
    scene.logic->emit_sonar();
    flames->stop();
    scene.logic->heli_explosion();
    ASSERT_EQ(signals.effects.size(), 1u);
    EXPECT_EQ(signals.effects[0].what, "data/art/prefab/vfx/explosion_1/explosion_1.prefab 6");
    EXPECT_LT(length(signals.effects[0].place - heli.get_world_position()), 1e-6);
    EXPECT_EQ(signals.removed.size(), 1u); // the sonar
    EXPECT_TRUE(flames->isEmitterEnabled());
    EXPECT_EQ(heli.get_collective_decay(), 0.98f);
    scene.frames(11);
    expect(true, false); // 0.183 s
    scene.frames(3);
    expect(true, true);
    scene.logic->heli_explosion(); // again, while wrecked
    const unsigned cleared = flames->getNumCleared();
    heli.m_collective = 5;
    scene.logic->reset();
    EXPECT_EQ(heli.m_collective, 0);
    EXPECT_EQ(heli.get_collective_decay(), 1);
    const dmat4 start = scene.world->getNodeByName("start_heli")->getWorldTransform();
    EXPECT_EQ(heli.get_world_transform(), start);
    expect(false, false);
    EXPECT_NE(flames->getNumCleared(), cleared);
    scene.frames(30);
    expect(false, false); // its timer is gone
}

} // namespace
