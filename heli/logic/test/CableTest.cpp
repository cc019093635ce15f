// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "heli/logic/records.h"
#include "ig/physics/BodyRope.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

using namespace ig;
const char* const DROP = "data/PELMAR_PROJECT/prefabs/vfx/water_drop/water_drop.prefab";

struct CableTest : testing::Test {
    SonarInfo& sonar() { return *scene.logic->m_sonar_info; }
    WinchInfo& winch() { return *scene.logic->m_winch_info; }
    // Of nodes that are known to have them.
    static BodyRope& ropeOf(Node* node) {
        return static_cast<BodyRope&>(*static_cast<Object*>(node)->getBody());
    }
    static BodyRigid& loadOf(Node* node) {
        return static_cast<BodyRigid&>(*static_cast<Object*>(node)->getBody());
    }
    double hanging(const Node* load, const char* mount) {
        const dvec3 top = scene.helicopterNode(mount)->getWorldPosition();
        return length(load->getWorldPosition() - top);
    }
    /// The sea has taken it: one splash was shown above the surface, and what is left rides on the
    /// waves.
    void expectLost(const SignalRecorder& signals, const Node* hidden, const Body& body,
                    const Node* rest) {
        ASSERT_EQ(signals.effects.size(), 1u);
        const auto& [path, duration, splash] = signals.effects[0];
        EXPECT_EQ(path, DROP);
        EXPECT_EQ(duration, 3);
        EXPECT_NEAR(SeaScene::altitude(splash), scene.sea(splash) + 1, 0.05);
        EXPECT_EQ(scene.effects(), std::vector<dvec3>(1, splash));
        EXPECT_FALSE(hidden->isEnabled() || body.isEnabled());
        for (int i = 0; i < 4; i++) {
            scene.frames(15);
            const dvec3 place = rest->getWorldPosition();
            EXPECT_NEAR(SeaScene::altitude(place), scene.sea(place), 0.05);
        }
        EXPECT_EQ(signals.effects.size(), 1u);
    }
    SeaScene scene;
};

TEST_F(CableTest, SonarIsLoweredAndRaisedBetweenTwoAndSixteenMetres) {
    ASSERT_TRUE(scene.startAt(60));
    SignalRecorder signals(*scene.logic);
    EXPECT_TRUE(scene.logic->emit_sonar());
    EXPECT_EQ(signals.added_flags, (std::vector<bool>{false}));
    EXPECT_EQ(sonar().prefab->getName(), "_sonar_");
    EXPECT_FALSE(sonar().prefab->isEnabled()); // until its first step
    EXPECT_FALSE(scene.helicopterNode("sonar")->isEnabled());
    scene.frame();
    EXPECT_TRUE(sonar().prefab->isEnabled());
    Logic_Nerith_Heli_Final& logic = *scene.logic;
    const auto hold = [&](void (Logic_Nerith_Heli_Final::*move)(float), int n, float dt) {
        for (int i = 0; i < n; i++) {
            (logic.*move)(dt);
            scene.frame(dt);
        }
        return ropeOf(sonar().rope).getLength() * 1.5f;
    };
    using Logic = Logic_Nerith_Heli_Final;
    EXPECT_NEAR(hold(&Logic::sonar_down, 120, 1 / 60.0f), 6, 1e-3); // 2 m/s from 2 m
    EXPECT_NEAR(hanging(sonar().sonar, "sonar"), 6, 0.6);           // and the cable follows
    EXPECT_FLOAT_EQ(hold(&Logic::sonar_down, 60, 0.15f), 16);
    EXPECT_NEAR(hanging(sonar().sonar, "sonar"), 16, 0.01);
    EXPECT_FLOAT_EQ(hold(&Logic::sonar_up, 600, 1 / 60.0f), 2);
    EXPECT_NEAR(hanging(sonar().sonar, "sonar"), 2, 0.01);
    // The drawn cable reaches from the mount to the load.
    const Node* rope = sonar().rope;
    const dmat4 first = rope->getChild(0)->getWorldTransform();
    const dmat4 last = rope->getChild(rope->getNumChildren() - 1)->getWorldTransform();
    const dvec3 mount = scene.helicopterNode("sonar")->getWorldPosition();
    EXPECT_LT(length(first.getTranslate() - mount), 1e-6);
    EXPECT_LT(length(last * dvec3(0, 0, 1) - sonar().sonar->getWorldPosition()), 1e-6);

    const Node* before = sonar().prefab;
    scene.logic->emit_sonar(); // in place of the first
    EXPECT_EQ(signals.removed, (std::vector<Node*>{const_cast<Node*>(before)}));
    scene.logic->release_sonar();
    EXPECT_EQ(signals.removed.size(), 2u);
    EXPECT_EQ(sonar().prefab, nullptr);
    EXPECT_TRUE(scene.helicopterNode("sonar")->isEnabled());
    scene.logic->release_sonar();
    scene.logic->sonar_down(1);
    scene.logic->break_sonar_joint();
    EXPECT_FALSE(scene.logic->is_break_sonar_joint());
    EXPECT_EQ(signals.removed.size(), 2u);
    EXPECT_TRUE(signals.texts.empty());
}

TEST_F(CableTest, SonarCutAboveTheSeaFallsSplashesAndFloats) {
    ASSERT_TRUE(scene.startAt(60));
    SignalRecorder signals(*scene.logic);
    scene.logic->emit_sonar();
    scene.frames(60);
    const double start = SeaScene::altitude(sonar().sonar->getWorldPosition());
    EXPECT_FALSE(scene.logic->is_break_sonar_joint());
    scene.logic->break_sonar_joint();
    scene.logic->break_sonar_joint();
    EXPECT_TRUE(scene.logic->is_break_sonar_joint());
    EXPECT_EQ(signals.texts, (std::vector<std::string>{"sonar", "sonar"}));
    double time = 0;
    for (; time < 10 && signals.effects.empty(); time += 1 / 60.0)
        scene.frame();
    // Free fall with the body's damping of 0.1 1/s: about t²·g/2·(1 − 0.1 t/3).
    const double fall = std::sqrt(2 * start / 9.80665);
    EXPECT_NEAR(time, fall * (1 + 0.1 * fall / 6), 0.05 * fall);
    expectLost(signals, sonar().sonar_mesh, loadOf(sonar().sonar), sonar().sonar);
    EXPECT_TRUE(sonar().buoy->isVisible());
}

TEST_F(CableTest, DippedSonarSplashesOnlyOnceItIsCut) {
    ASSERT_TRUE(scene.startAt(6));
    SignalRecorder signals(*scene.logic);
    scene.logic->emit_sonar();
    for (int i = 0; i < 360; i++) {
        scene.logic->sonar_down(1 / 60.0f);
        scene.frame();
    }
    EXPECT_LT(SeaScene::altitude(sonar().sonar_mesh->getWorldPosition()), -3);
    EXPECT_TRUE(signals.effects.empty());
    scene.logic->break_sonar_joint();
    scene.frame();
    expectLost(signals, sonar().sonar_mesh, loadOf(sonar().sonar), sonar().sonar);
    // The cable stays with the helicopter and hangs free.
    scene.place(40);
    scene.frames(300);
    const Node* rope = sonar().rope;
    EXPECT_LT(hanging(rope->getChild(0), "sonar"), 1e-6);
    const double end = SeaScene::altitude(rope->getChild(15)->getWorldPosition());
    EXPECT_NEAR(end, 40 - 0.7 - 13.7, 1); // 14 m hang, of which the last piece begins above
}

TEST_F(CableTest, ThrownBuoySplashesAndFloats) {
    ASSERT_TRUE(scene.startAt(30));
    SignalRecorder signals(*scene.logic);
    scene.logic->throw_sonar();
    ASSERT_EQ(scene.logic->m_thrown_sonars.size(), 1);
    const SonarInfo& buoy = *scene.logic->m_thrown_sonars[0];
    EXPECT_EQ(buoy.sonar, buoy.sonar_mesh);
    EXPECT_NEAR(SeaScene::altitude(buoy.prefab->getWorldPosition()), 29, 1e-6);
    scene.frames(120);
    EXPECT_TRUE(signals.effects.empty());
    scene.frames(60);
    expectLost(signals, buoy.sonar, *buoy.prefab->getBody(), buoy.prefab);
}

TEST_F(CableTest, WinchFollowsTheHostsRecords) {
    ASSERT_TRUE(scene.startAt(100));
    SignalRecorder signals(*scene.logic);
    UdpRecvData record = LogicScene::record();
    record.longitude = SeaScene::SEA_LONGITUDE;
    record.latitude = SeaScene::SEA_LATITUDE;
    record.altitude = 100;
    record.hang_enable = 1;
    record.hang_length = 9;
    record.hang_mass = 250;
    scene.tell(record);
    ASSERT_NE(winch().prefab, nullptr);
    EXPECT_EQ(winch().prefab->getName(), "_winch_");
    EXPECT_TRUE(winch().prefab->isEnabled());
    EXPECT_EQ(ropeOf(winch().rope).getLength(), 6);
    EXPECT_EQ(loadOf(winch().obj).getMass(), 250);
    scene.log.lines.clear();
    for (int mass : {0, -5}) {
        record.hang_mass = static_cast<std::int16_t>(mass);
        record.hang_length = 30; // beyond the buttons' reach
        scene.tell(record);
        EXPECT_EQ(loadOf(winch().obj).getMass(), 1);
    }
    EXPECT_EQ(scene.log.lines.size(), 1u); // one warning
    EXPECT_EQ(ropeOf(winch().rope).getLength(), 20);
    scene.frames(60 * 8);
    EXPECT_NEAR(hanging(winch().obj, "winch"), 30, 0.01);
    scene.logic->winch_up(1 / 60.0f);
    EXPECT_FLOAT_EQ(ropeOf(winch().rope).getLength(), 16 / 1.5f);
    record.hang_length = std::numeric_limits<float>::quiet_NaN();
    scene.tell(record);
    EXPECT_FLOAT_EQ(ropeOf(winch().rope).getLength(), 16 / 1.5f);
    EXPECT_EQ(signals.added.size(), 1u); // never deployed anew
    record.hang_enable = 0;
    scene.tell(record);
    EXPECT_EQ(winch().prefab, nullptr);
    EXPECT_EQ(signals.removed.size(), 1u);
    EXPECT_TRUE(scene.logic->emit_winch()); // by the operator, while the host says otherwise
    scene.frame();
    EXPECT_NE(winch().prefab, nullptr);
    scene.tell(record);
    EXPECT_EQ(winch().prefab, nullptr);
    // The reset comes first, the rest of its record after it.
    record.command = 6;
    record.hang_enable = 1;
    scene.tell(record);
    ASSERT_NE(winch().prefab, nullptr);
    EXPECT_NEAR(scene.helicopterWgs().z, 100, 1e-6);
    // And the pose before the winch, whose load hangs where the helicopter is by then.
    EXPECT_LT(length(winch().prefab->getWorldPosition() -
                     scene.helicopterNode("winch")->getWorldPosition()),
              1);
}

TEST_F(CableTest, LoadHangsSmoothlyBelowAHelicopterThatAHostFliesAtSixtyMetresPerSecond) {
    ASSERT_TRUE(scene.startAt(100));
    std::mt19937 random(11);
    std::uniform_real_distribution<double> jitter(0, 0.004);
    UdpRecvData record = LogicScene::record();
    record.longitude = SeaScene::SEA_LONGITUDE;
    record.altitude = 100;
    record.hang_enable = 1;
    record.hang_mass = 300;
    double sent = 0, now = 0, last_dt = 1 / 60.0, worst = 0, angle = 0;
    dvec3 before, before_that;
    int seen = 0;
    for (int frame = 0; now < 30; frame++) {
        const double dt = frame % 200 == 150 ? 0.15 : 1 / 60.0; // with stalls
        now += dt;
        for (; sent + jitter(random) <= now; sent += 0.01) { // 100 Hz: none to three a frame
            record.latitude = SeaScene::SEA_LATITUDE + 60 * sent / 110700 +
                              (sent > 12 ? 1000 / 110700.0 : 0); // with a jump
            record.hang_length = sent > 6 && sent < 18 ? 20 : 2;
            scene.send(record);
        }
        scene.frame(static_cast<float>(dt));
        if (!winch().prefab) continue; // a loaded machine may deliver the first record late
        seen++;
        const dmat4 local = scene.logic->m_heli->m_prefab->getWGSTransform();
        const dvec3 r =
            transpose(local.getMat3()) *
            (winch().obj->getWorldPosition() - scene.helicopterNode("winch")->getWorldPosition());
        ASSERT_LT(hanging(winch().anchor, "winch"), 1e-8);
        const dvec3 change = (r - before) / dt - (before - before_that) / last_dt;
        if (seen > 3) worst = std::max(worst, length(change) * 2 / (dt + last_dt));
        angle = std::max(angle, std::atan2(std::hypot(r.x, r.y), -r.z) * 57.3);
        before_that = before;
        before = r;
        last_dt = dt;
    }
    EXPECT_GT(seen, 1600);
    EXPECT_LT(worst, 15);
    EXPECT_LT(angle, 10);
    EXPECT_NEAR(length(before), 2, 0.01);
}

TEST_F(CableTest, BasketStandsOnTheSeaAndOnADeckUnderWay) {
    ASSERT_TRUE(scene.startAt(12));
    const double height = 1.30; // of the basket below the cable's end
    scene.logic->emit_winch();
    ropeOf(winch().rope).setLength(16 / 1.5f);
    for (int i = 0; i < 600; i++) {
        scene.place(12);
        scene.frame();
        if (i < 360) continue;
        const dvec3 place = winch().obj->getWorldPosition();
        EXPECT_NEAR(SeaScene::altitude(place) - height, scene.sea(place), 0.1);
    }
    const Node* ship = scene.world->getNodeByName("SM_055_CN_2023");
    dvec3 first;
    for (int i = 0; i < 600; i++) {
        const dvec3 over_deck = ship->getWorldTransform() * dvec3(0, -66, 18);
        scene.logic->m_heli->m_prefab->setWgsHPR({});
        scene.logic->m_heli->m_prefab->setWorldPosition(over_deck);
        scene.frame();
        const dvec3 foot = ship->toLocal(winch().obj->getWorldPosition() -
                                         ship->getWGSTransform().getZ() * height);
        if (i == 360) first = foot;
        if (i < 360) continue;
        EXPECT_LT(std::hypot(foot.x - first.x, foot.y - first.y), 0.5);
        EXPECT_NEAR(foot.z, 6, 0.15);
    }
}

} // namespace
