// SPDX-License-Identifier: MIT
#include "heli/kit/LogicActions.h"

#include "heli/kit/TorpedoInfo.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/scene/Node.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

const EllipsoidModel EARTH;

struct Torpedo : testing::Test {
    Torpedo() {
        torpedo.addChild(parachute);
        info.torpedo = &torpedo;
        info.parachute = parachute;
        info.time_left = 40;
        setAltitude(100);
        info.action = ActionEmitTorpedo::Create(&info, 1.5f);
        info.action->start();
    }
    ~Torpedo() override { delete info.action; }
    void setAltitude(double altitude) {
        torpedo.setWorldTransform(EARTH.getWGSTransform(EARTH.toWorld({-155, 20, altitude})));
    }
    Node torpedo;
    Node* parachute = new Node();
    TorpedoInfo info;
};

TEST_F(Torpedo, ParachuteOpensStrictlyAfterTheDelayWhereTheTorpedoIs) {
    EXPECT_FALSE(parachute->isEnabled());
    parachute->setPosition({5, 5, 5});
    for (int i = 0; i < 3; i++)
        EXPECT_TRUE(info.action->step(0.5f));
    EXPECT_FALSE(parachute->isEnabled()); // exactly 1.5 s
    info.action->setPause(true);
    EXPECT_FALSE(info.action->step(10));
    info.action->setPause(false);
    info.action->step(0.25f);
    EXPECT_TRUE(parachute->isEnabled());
    EXPECT_LT(length(parachute->getPosition()), 1e-6);
    EXPECT_FALSE(info.action->isDone());
}

TEST_F(Torpedo, ParachuteIsHiddenInTheWaterAndAtTheLimit) {
    info.action->step(2);
    setAltitude(-0.001);
    info.action->step(0.1f);
    EXPECT_FALSE(parachute->isEnabled());
    EXPECT_TRUE(info.action->isDone());

    info.action->start();
    setAltitude(10);
    parachute->setEnabled(true);
    info.action->step(39.75f);
    EXPECT_TRUE(parachute->isEnabled());
    info.action->step(0.25f);
    EXPECT_FALSE(parachute->isEnabled());
    EXPECT_TRUE(info.action->isDone());
}

TEST_F(Torpedo, WaterInTheStepOfTheDelayHidesFirstAndShowsThen) {
    setAltitude(-1);
    info.action->step(2);
    EXPECT_TRUE(info.action->isDone());
    EXPECT_TRUE(parachute->isEnabled());
}

TEST_F(Torpedo, RecordForgetsTheActionWhenItGoes) {
    delete info.action;
    EXPECT_EQ(info.action, nullptr);
    info.parachute = info.torpedo = nullptr; // a prefab without them
    info.action = ActionEmitTorpedo::Create(&info, 1.5f);
    EXPECT_TRUE(info.action->step(50));
    EXPECT_TRUE(info.action->isDone());
    EXPECT_EQ(ActionEmitTorpedo::Create(nullptr, 1.5f), nullptr);
}

TEST(Missile, FliesAlongItsLaunchDirectionUntilItsTimeIsOver) {
    Node node;
    const dmat4 launch =
        EARTH.getWGSTransform(EARTH.toWorld({-155, 20, 100})) * dmat4(dquat(10, 20, 30), dvec3());
    node.setWorldTransform(launch);
    ActionEmitMissile* action = ActionEmitMissile::Create(&node, 300, 2);
    node.setWorldTransform(dmat4_identity);
    action->start();                  // back to the launch
    node.setRotation(dquat_identity); // turning it doesn't steer it
    action->step(0.5f);
    EXPECT_LT(length(node.getPosition() - (launch.getTranslate() + launch.getY() * 150.0)), 1e-6);
    action->setPause(true);
    EXPECT_TRUE(action->step(0.5f));
    action->setPause(false);
    action->step(1.25f);
    EXPECT_FALSE(action->isDone());
    action->step(0.25f);
    EXPECT_TRUE(action->isDone());
    EXPECT_FALSE(node.isEnabled());
    const dvec3 end = node.getPosition();
    EXPECT_LT(length(end - (launch.getTranslate() + launch.getY() * 600.0)), 1e-6);
    action->step(1);
    EXPECT_EQ(node.getPosition(), end);
    delete action;
    EXPECT_EQ(ActionEmitMissile::Create(nullptr, 300, 2), nullptr);
}

} // namespace
