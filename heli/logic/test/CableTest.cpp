// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "heli/logic/records.h"
#include "ig/physics/BodyRope.h"

#include <cmath>
#include <limits>

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
    void expectLost(const Node* hidden, const Body& body, const Node* rest) {
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
    SeaScene scene{60};
    SignalRecorder& signals = *scene.signals;
};

TEST_F(CableTest, SonarIsLoweredAndRaisedBetweenTwoAndSixteenMetres) {
    EXPECT_TRUE(scene.logic->emit_sonar());
    EXPECT_FALSE(sonar().prefab->isEnabled()); // until its first step
    EXPECT_FALSE(scene.helicopterNode("sonar")->isEnabled());
    scene.frame();
    EXPECT_TRUE(sonar().prefab->isEnabled());
    using Logic = Logic_Nerith_Heli_Final;
    Logic& logic = *scene.logic;
    const auto hold = [&](void (Logic::*move)(float), int n, float dt) {
        for (int i = 0; i < n; i++) {
            (logic.*move)(dt);
            scene.frame(dt);
        }
        return ropeOf(sonar().rope).getLength() * 1.5f;
    };
    EXPECT_NEAR(hold(&Logic::sonar_down, 120, 1 / 60.0f), 6, 1e-3); // 2 m/s from 2 m
    EXPECT_FLOAT_EQ(hold(&Logic::sonar_down, 60, 0.15f), 16);
    EXPECT_NEAR(hanging(sonar().sonar, "sonar"), 16, 0.01); // the cable follows
    EXPECT_FLOAT_EQ(hold(&Logic::sonar_up, 480, 1 / 60.0f), 2);
    // The drawn cable reaches from the mount to the load.
    const Node* rope = sonar().rope;
    const dmat4 first = rope->getChild(0)->getWorldTransform();
    const dmat4 last = rope->getChild(rope->getNumChildren() - 1)->getWorldTransform();
    const dvec3 mount = scene.helicopterNode("sonar")->getWorldPosition();
    EXPECT_LT(length(first.getTranslate() - mount), 1e-6);
    EXPECT_LT(length(last * dvec3(0, 0, 1) - sonar().sonar->getWorldPosition()), 1e-6);

    scene.logic->emit_sonar(); // in place of the first
    EXPECT_EQ(signals.removed, (std::vector<Node*>{signals.added[0]}));
    scene.place(70);
    scene.frame();
    EXPECT_LT(hanging(sonar().anchor, "sonar"), 1e-8);
    for (int i = 0; i < 2; i++)
        scene.logic->release_sonar();
    EXPECT_EQ(signals.removed.size(), 2u);
    EXPECT_TRUE(scene.helicopterNode("sonar")->isEnabled());
}

TEST_F(CableTest, DippedSonarSplashesOnlyOnceItIsCut) {
    scene.place(6);
    scene.logic->m_ocean->setBeaufort(4);
    scene.logic->emit_sonar();
    for (int i = 0; i < 360; i++) {
        scene.logic->sonar_down(1 / 60.0f);
        scene.frame();
    }
    EXPECT_LT(SeaScene::altitude(sonar().sonar_mesh->getWorldPosition()), -3);
    EXPECT_TRUE(signals.effects.empty());
    scene.logic->break_sonar_joint();
    EXPECT_EQ(signals.texts, std::vector<std::string>{"sonar"});
    scene.frame();
    expectLost(sonar().sonar_mesh, loadOf(sonar().sonar), sonar().sonar);
    EXPECT_TRUE(sonar().buoy->isVisible());
    EXPECT_LT(hanging(sonar().rope->getChild(0), "sonar"), 1e-6); // the cable stays
}

TEST_F(CableTest, ThrownBuoySplashesAndFloats) {
    scene.place(30);
    scene.logic->m_ocean->setBeaufort(4);
    scene.logic->throw_sonar();
    const SonarInfo& buoy = *scene.logic->m_thrown_sonars[0];
    EXPECT_NEAR(SeaScene::altitude(buoy.prefab->getWorldPosition()), 29, 1e-6);
    scene.frames(120);
    EXPECT_TRUE(signals.effects.empty());
    for (int i = 0; i < 60 && signals.effects.empty(); i++)
        scene.frame();
    expectLost(buoy.sonar, *buoy.prefab->getBody(), buoy.prefab);
}

TEST_F(CableTest, WinchFollowsTheHostsRecords) {
    scene.place(100);
    UdpRecvData record = LogicScene::record();
    record.altitude = 100;
    record.hang_enable = 1;
    record.hang_length = 9;
    record.hang_mass = 250;
    scene.tell(record);
    ASSERT_NE(winch().prefab, nullptr);
    EXPECT_EQ(ropeOf(winch().rope).getLength(), 6);
    EXPECT_EQ(loadOf(winch().obj).getMass(), 250);
    scene.log.lines.clear();
    for (int mass : {0, -5}) {
        record.hang_mass = static_cast<std::int16_t>(mass);
        record.latitude += 0.001;
        record.hang_length = 30; // beyond the buttons' reach
        scene.tell(record);
        EXPECT_EQ(loadOf(winch().obj).getMass(), 1);
        EXPECT_LT(hanging(winch().anchor, "winch"), 1e-8); // it goes where the host flies
    }
    EXPECT_EQ(scene.log.lines.size(), 1u); // one warning
    scene.frames(60 * 8);
    EXPECT_NEAR(hanging(winch().obj, "winch"), 30, 0.01);
    for (const float length : {16.0f, 15.0f}) {
        scene.logic->winch_up(0.5f);
        EXPECT_FLOAT_EQ(ropeOf(winch().rope).getLength(), length / 1.5f);
    }
    record.hang_length = std::numeric_limits<float>::quiet_NaN();
    scene.tell(record);
    EXPECT_FLOAT_EQ(ropeOf(winch().rope).getLength(), 10);
    EXPECT_EQ(signals.added.size(), 1u); // never deployed anew
    record.hang_enable = 0;
    scene.tell(record);
    EXPECT_EQ(winch().prefab, nullptr);
    EXPECT_EQ(signals.removed.size(), 1u);
    // The pose comes before the winch, whose load hangs where the helicopter is by then.
    record.hang_enable = 1;
    record.longitude += 0.01;
    scene.tell(record);
    ASSERT_NE(winch().prefab, nullptr);
    EXPECT_LT(length(winch().prefab->getWorldPosition() -
                     scene.helicopterNode("winch")->getWorldPosition()),
              1);
}

} // namespace
