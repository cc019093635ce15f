// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "heli/logic/records.h"

#include <cmath>

namespace {

using namespace ig;

struct CableTest : testing::Test {
    SonarInfo& sonar() { return *scene.logic->m_sonar_info; }
    WinchInfo& winch() { return *scene.logic->m_winch_info; }
    float loadMass() {
        const Body* load = bodyOf(winch().obj);
        return load ? static_cast<const BodyRigid*>(load)->getMass() : 0;
    }
    double hanging(const Node* load, const char* mount) {
        const dvec3 top = scene.helicopterNode(mount)->getWorldPosition();
        return length(load->getWorldPosition() - top);
    }
    /// The sea has taken it: one splash was shown above the surface, and what is left rides on the
    /// waves.
    void expectLost(const Node* hidden, const Body* body, const Node* rest) {
        ASSERT_EQ(signals.effects.size(), 1u);
        const auto& [what, splash] = signals.effects[0];
        EXPECT_EQ(what, "data/PELMAR_PROJECT/prefabs/vfx/water_drop/water_drop.prefab 3");
        EXPECT_NEAR(SeaScene::altitude(splash), scene.sea(splash) + 1, 0.05);
        EXPECT_EQ(scene.effects(), std::vector<dvec3>(1, splash));
        EXPECT_FALSE(hidden->isEnabled() || body->isEnabled());
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
    const auto hold = [&](bool down, int n, float dt) {
        for (int i = 0; i < n; i++) {
            down ? scene.logic->sonar_down(dt) : scene.logic->sonar_up(dt);
            scene.frame(dt);
        }
        return shownLength(sonar().rope);
    };
    EXPECT_NEAR(hold(true, 120, 1 / 60.0f), 6, 1e-3); // 2 m/s from 2 m
    EXPECT_FLOAT_EQ(hold(true, 60, 0.15f), 16);
    EXPECT_NEAR(hanging(sonar().sonar, "sonar"), 16, 0.01); // the cable follows
    EXPECT_FLOAT_EQ(hold(false, 480, 1 / 60.0f), 2);
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
    scene.logic->sonar_down(99);
    scene.frames(360);
    EXPECT_LT(SeaScene::altitude(sonar().sonar_mesh->getWorldPosition()), -3);
    EXPECT_TRUE(signals.effects.empty());
    scene.logic->break_sonar_joint();
    EXPECT_EQ(signals.texts, std::vector<std::string>{"sonar"});
    scene.frame();
    expectLost(sonar().sonar_mesh, bodyOf(sonar().sonar), sonar().sonar);
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
    expectLost(buoy.sonar, buoy.prefab->getBody(), buoy.prefab);
}

TEST_F(CableTest, WinchFollowsTheHostsRecords) {
    UdpRecvData record = LogicScene::record();
    record.altitude = 100;
    const auto tell = [&](int enable, float length, int mass) {
        record.latitude += 0.001;
        record.hang_enable = static_cast<std::uint16_t>(enable);
        record.hang_length = length;
        record.hang_mass = static_cast<std::int16_t>(mass);
        scene.tell(record);
        EXPECT_EQ(winch().prefab != nullptr, enable != 0);
    };
    tell(1, 9, 250);
    EXPECT_EQ(shownLength(winch().rope), 9);
    EXPECT_EQ(loadMass(), 250);
    scene.log.lines.clear();
    for (int mass : {0, -5}) {
        tell(1, 30, mass); // beyond the buttons' reach
        EXPECT_EQ(loadMass(), 1);
        EXPECT_LT(hanging(winch().anchor, "winch"), 1e-8); // it goes where the host flies
    }
    EXPECT_EQ(scene.log.lines.size(), 1u); // one warning
    scene.frames(60 * 8);
    EXPECT_NEAR(hanging(winch().obj, "winch"), 30, 0.01);
    scene.logic->winch_up(0.5f);
    EXPECT_FLOAT_EQ(shownLength(winch().rope), 16);
    scene.logic->winch_up(0.5f);
    scene.logic->winch_down(0.25f);
    EXPECT_FLOAT_EQ(shownLength(winch().rope), 15.5f);
    tell(1, std::nanf(""), 80);
    EXPECT_FLOAT_EQ(shownLength(winch().rope), 15.5f);
    EXPECT_EQ(signals.added.size(), 1u); // never deployed anew
    tell(0, 9, 80);
    EXPECT_EQ(signals.removed.size(), 1u);
    // The pose comes before the winch, whose load hangs where the helicopter is by then.
    tell(1, 9, 80);
    EXPECT_LT(length(winch().prefab->getWorldPosition() -
                     scene.helicopterNode("winch")->getWorldPosition()),
              1);
}

} // namespace
