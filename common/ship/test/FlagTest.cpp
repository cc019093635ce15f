// SPDX-License-Identifier: MIT
#include "ShipScene.h"
#include "common/ship/FlagOper.h"
#include "testkit/LogCapture.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

struct FlagTest : testing::Test {
    FlagTest() {
        prefab = new ObjectPrefab(ShipScene::FRIGATE);
        scene.place(prefab, 0, 0);
        flag.init(prefab->getNodeByName("qizi1"), 10, 3);
    }
    void wind(float direction, float strength) {
        Engine::get()->setWindDirection(direction);
        Engine::get()->setWindStrength(strength);
    }
    /// Turn of the flag on its staff, degrees counter-clockwise, in (−180, 180].
    double turn() {
        flag.update(0);
        const dvec3 x = flag.m_node->getTransform().getX();
        return std::atan2(x.y, x.x) * RAD_TO_DEG<double>;
    }
    /// Where the cloth points, degrees counter-clockwise from east.
    double pointsTo() {
        turn();
        const dvec3 cloth = transpose(prefab->getWGSTransform().getMat3()) *
                            -flag.m_node->getWorldTransform().getX();
        return std::atan2(cloth.y, cloth.x) * RAD_TO_DEG<double>;
    }
    ShipScene scene;
    ObjectPrefab* prefab;
    FlagOper flag;
};

TEST_F(FlagTest, CalmTurnsItWithTheHeading) {
    wind(123, 0);
    EXPECT_NEAR(turn(), -90, 1e-3); // heading north: angle to north 0
    prefab->setWgsHPR({90, 0, 0});  // heading east: north lies 90 to the left
    EXPECT_NEAR(turn(), 0, 1e-3);
    prefab->setWgsHPR({-30, 0, 0}); // north lies 30 to the right
    EXPECT_NEAR(turn(), -120, 1e-3);
    flag.m_phase = 4;
    flag.set_offset(20);
    EXPECT_NEAR(turn(), -96, 1e-3);
}

TEST_F(FlagTest, FullWindLaysItAlongTheWind) {
    for (const float direction : {0.0f, 35.0f, -100.0f, 170.0f}) {
        wind(direction, 10000);
        EXPECT_NEAR(std::remainder(pointsTo() - double(direction), 360), 0, 1e-2);
    }
    wind(35, 99999); // clamped, not carried past the wind
    EXPECT_NEAR(pointsTo(), 35, 1e-2);
    flag.m_phase = -6;
    EXPECT_NEAR(pointsTo(), 29, 1e-2);
}

TEST_F(FlagTest, HalfWindLiesHalfwayBetween) {
    wind(30, 5000); // calm −90, wind 30 + 180 = −150
    EXPECT_NEAR(turn(), -120, 1e-3);
}

TEST_F(FlagTest, SwingsBetweenItsLimitsAtItsRate) {
    const float dt = 1 / 30.0f;
    for (int i = 0; i < 100; i++) // 10/3 s to +10
        flag.update(dt);
    EXPECT_NEAR(flag.m_phase, 10, 1e-3);
    for (int i = 0; i < 200; i++) // 20/3 s to −10
        flag.update(dt);
    EXPECT_NEAR(flag.m_phase, -10, 0.11); // a frame may pass at the limit
    for (int i = 0; i < 100; i++)
        flag.update(dt);
    EXPECT_NEAR(flag.m_phase, 0, 0.21);
    flag.update(1000); // cut at the limit, and turned round in the same frame
    EXPECT_EQ(flag.m_phase, 10);
    EXPECT_EQ(flag.m_direction, -1);
    flag.update(1000);
    EXPECT_EQ(flag.m_phase, -10);
    EXPECT_EQ(flag.m_direction, 1);
    flag.update(std::nanf(""));
    EXPECT_EQ(flag.m_phase, -10);
}

TEST_F(FlagTest, WithoutNodeItIsInertAndWithoutPrefabItSaysSoEveryFrame) {
    LogCapture log;
    FlagOper none;
    none.update(1);
    EXPECT_TRUE(log.lines.empty());
    Node alone;
    FlagOper lost;
    lost.init(&alone, 10, 3);
    lost.update(1);
    lost.update(1);
    EXPECT_EQ(log.lines,
              (std::vector<std::string>{"FlagOper::update:root", "FlagOper::update:root"}));
    EXPECT_EQ(alone.getTransform(), dmat4_identity);
    EXPECT_EQ(lost.m_phase, 0);
}

} // namespace
