// SPDX-License-Identifier: MIT
#include "ShipScene.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

/// A ship without body whose wake, 10 m astern and 3 m to starboard, has a foam of 40 m with two
/// emitters, one below the other, and an emitter beside the foam.
struct WakesTest : testing::Test {
    WakesTest() {
        object = new Object(NODE_DUMMY);
        node = add<Node>(object, "wakes");
        node->setPosition({3, -10, 0});
        foam = add<DecalOrtho>(node, "foam");
        bow = add<ObjectParticles>(foam, "bow");
        bow->setPosition({0, 20, 0});
        stern = add<ObjectParticles>(bow, "stern");
        stern->setPosition({0, -40, 0});
        spray = add<ObjectParticles>(node, "spray");
        scene.place(object, 2);
    }
    template <class T>
    static T* add(Node* parent, const char* name) {
        auto* child = new T();
        child->setName(name);
        parent->addChild(child);
        return child;
    }
    ShipScene scene;
    Object* object;
    Node* node;
    DecalOrtho* foam;
    ObjectParticles *bow, *stern, *spray;
};

TEST_F(WakesTest, FollowsPlaceAndHeadingButNeitherPitchNorRoll) {
    Ship ship(object, scene.sea);
    for (const double heading : {0.0, 120.0, 300.0}) {
        object->setWgsHPR({heading, 12, -25});
        ship.getWakes()->update();
        const dvec3 hpr = node->getWgsHPR();
        EXPECT_NEAR(std::remainder(hpr.x - heading, 360), 0, 0.01);
        EXPECT_NEAR(hpr.y, 0, 0.01);
        EXPECT_NEAR(hpr.z, 0, 0.01);
        const dvec3 offset = transpose(object->getWGSTransform().getMat3()) *
                             (node->getWorldPosition() - object->getWorldPosition());
        EXPECT_LT(length(offset - dquat(0, 0, -heading) * dvec3(3, -10, 0)), 1e-6);
    }
}

TEST_F(WakesTest, FoamCoversItsEmittersButNeverMoreThan512Metres) {
    Ship ship(object, scene.sea);
    for (ObjectParticles* emitter : {bow, stern}) {
        emitter->setLife(0);
        emitter->setLinearVelocity(1);
    }
    ship.getWakes()->update();
    EXPECT_NEAR(foam->getWidth(), 40 * 1.1, 0.01); // the diagonal of a box around two points
    // From now on particles live 30 s: half a metre per second carries them 15 m to all sides.
    bow->setLinearVelocity(0.5f);
    stern->setLinearVelocity(-0.5f);
    ship.getWakes()->update();
    EXPECT_GT(foam->getWidth(), 70 * 1.1);
    bow->setLinearVelocity(1000);
    ship.getWakes()->update();
    EXPECT_EQ(foam->getWidth(), 512);
    EXPECT_EQ(foam->getHeight(), 512);
}

TEST_F(WakesTest, NoBurstInTheFirstNineFrames) {
    Ship ship(object, scene.sea);
    for (int frame = 1; frame <= 12; frame++) {
        Engine::get()->beginFrame(0.01f);
        const unsigned before = bow->getNumCleared();
        ship.getWakes()->update();
        EXPECT_EQ(bow->getNumCleared() > before, frame < 10) << frame;
    }
}

TEST_F(WakesTest, FoamLivesItsTimeInAnySeaUpToBeaufortTwelve) {
    Ship ship(object, scene.sea);
    const float before = spray->getLife();
    for (const auto& [beaufort, life] :
         {std::pair(0.0f, 30.0f), {12.0f, 30.0f}, {12.5f, 0.0f}, {-1.0f, 0.0f}}) {
        scene.sea->m_beaufort = beaufort;
        ship.getWakes()->update();
        EXPECT_EQ(stern->getLife(), life) << beaufort; // negative: left as it was
    }
    EXPECT_EQ(spray->getLife(), before);
}

} // namespace
