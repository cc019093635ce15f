// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "common/ship/Ship.h"
#include "heli/logic/records.h"
#include "ig/physics/Body.h"

#include <cmath>

namespace {

using namespace ig;

const char* const HIT = "data/art/prefab/vfx/explosion/explosion.prefab";

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
            EXPECT_EQ(effect.path, HIT);
            const dvec3 place = ship->toLocal(effect.place); // in the ship, or a step past it
            const double step = 300 * static_cast<double>(dt);
            EXPECT_TRUE(place.x > -14 && place.x < 14 + step) << place.x;
            EXPECT_TRUE(place.y > -84 && place.y < 80 + step) << place.y;
        }
    }
}

TEST(Missile, ThatHitsNothingFliesStraightAndGoesAfterItsTime) {
    SeaScene scene(500, {200, 10, 15});
    const dmat4 launch = scene.logic->m_heli->get_world_transform();
    scene.logic->emit_missile();
    const Node* missile = scene.logic->m_missiles[0];
    scene.frames(199, 0.1f);
    const dvec3 expected = launch * dvec3(0, 5 + 300 * 19.9, 0);
    EXPECT_LT(length(missile->getWorldPosition() - expected), 0.02);
    EXPECT_LT(length(missile->getWorldTransform().getX() - launch.getX()), 1e-9);
    scene.frames(3, 0.1f);
    EXPECT_TRUE(scene.logic->m_missiles.empty());
    EXPECT_EQ(scene.signals->removed, scene.signals->added);
    EXPECT_TRUE(scene.signals->effects.empty());
}

TEST(Missile, ExplodesOnceAtItsPlaceAndResetLeavesTheOthersHanging) {
    SeaScene scene(200, {30, -20, 0}); // down into the sea
    auto& missiles = scene.logic->m_missiles;
    scene.logic->emit_missile();
    scene.frames(40, 0.1f);
    ASSERT_EQ(scene.signals->effects.size(), 1u);
    const double step = 30 * std::sin(20 / 57.3);
    EXPECT_NEAR(SeaScene::altitude(scene.signals->effects[0].place), -step / 2, step / 2 + 2);
    scene.place(500, {0, 20, 0}); // up into the sky
    scene.logic->emit_missile();
    scene.logic->emit_missile();
    scene.logic->m_missile_callback.onContact(missiles[1]->getBody(), 0);
    ASSERT_EQ(scene.signals->effects.size(), 2u); // once, though three were bound
    EXPECT_EQ(scene.signals->effects[1].place, missiles[1]->getWorldPosition());
    ObjectPrefab* last = missiles[2];
    for (int i = 0; i < 200 && missiles.size() == 3; i++)
        scene.frame(0.1f);
    ASSERT_EQ(missiles.size(), 2);
    EXPECT_EQ(missiles[0], last); // took the freed place
    const dvec3 place = last->getWorldPosition();
    scene.logic->reset();
    scene.frames(10);
    EXPECT_EQ(last->getWorldPosition(), place);
}

TEST(Decoys, LeaveAlongTheirDispensersAndVanishAfterTwentySeconds) {
    SeaScene scene(1500, {70, 5, -10});
    const auto& decoys = scene.logic->m_decoys;
    scene.logic->emit_decoy();
    ASSERT_EQ(decoys.size(), 6);
    const char* const dispensers[] = {"dl_0", "dl_1", "dl_2", "dr_0", "dr_1", "dr_2"};
    for (int i = 0; i < 6; i++) {
        const dmat4 mount = scene.helicopterNode(dispensers[i])->getWorldTransform();
        EXPECT_LT(length(decoys[i]->getWorldPosition() - mount.getTranslate()), 1e-6);
        // 50 N s on 2 kg.
        const dvec3 velocity(decoys[i]->getBodyRigid()->getLinearVelocity());
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
        for (const char* path : {"yulei_CORAXF/yulei", "missile/missile", "vfx/decoy/decoy",
                                 "sonar/sonar", "sonar/sonar_rope", "rope_car/rope_car"})
            if (*text)
                scene.folder.write(std::string("data/PELMAR_PROJECT/prefabs/") + path + ".prefab",
                                   text);
        scene.addToWorld("name: ocean, type: ocean, beaufort: 0");
        ASSERT_TRUE(scene.start());
        Logic_Nerith_Heli_Final& logic = *scene.logic;
        SignalRecorder signals(logic);
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

} // namespace
