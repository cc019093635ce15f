// SPDX-License-Identifier: MIT
#include "ShipScene.h"

namespace {

using namespace ig;

/// A ship without body whose wake, 10 m astern and 3 m to starboard, has a foam of 40 m with two
/// emitters, one below the other, and an emitter beside the foam.
struct WakesTest : ShipScene {
    WakesTest() {
        node->setPosition({3, -10, 0});
        bow->setPosition({0, 20, 0});
        stern->setPosition({0, -40, 0});
        place(object, 2);
        ship.emplace(object, sea);
    }
    template <class T>
    static T* add(Node* parent, const char* name) {
        auto* child = new T();
        child->setName(name);
        parent->addChild(child);
        return child;
    }
    void update() { ship->getWakes()->update(); }
    Object* object = new Object(NODE_DUMMY);
    Node* node = add<Node>(object, "wakes");
    DecalOrtho* foam = add<DecalOrtho>(node, "foam");
    ObjectParticles* bow = add<ObjectParticles>(foam, "bow");
    ObjectParticles* stern = add<ObjectParticles>(bow, "stern");
    ObjectParticles* spray = add<ObjectParticles>(node, "spray");
    std::optional<Ship> ship;
};

TEST_F(WakesTest, FollowsPlaceAndHeadingButNeitherPitchNorRoll) {
    for (const double heading : {0.0, 120.0, 300.0}) {
        object->setWgsHPR({heading, 12, -25});
        update();
        const dmat3 level = object->getWGSTransform().getMat3() * dquat(0, 0, -heading).getMat3();
        const dmat4 wake = node->getWorldTransform();
        const dvec3 offset = wake.getTranslate() - object->getWorldPosition();
        EXPECT_LT(length(offset - level * dvec3(3, -10, 0)), 1e-6);
        EXPECT_LT(length(wake.getY() - level.getY()), 1e-4);
        EXPECT_LT(length(wake.getZ() - level.getZ()), 1e-4);
    }
}

TEST_F(WakesTest, FoamCoversItsEmittersButNeverMoreThan512Metres) {
    const auto width = [&](float ahead, float astern) {
        bow->setLinearVelocity(ahead);
        stern->setLinearVelocity(astern);
        update();
        EXPECT_EQ(foam->getWidth(), foam->getHeight());
        return foam->getWidth();
    };
    bow->setLife(0);
    stern->setLife(0);
    EXPECT_NEAR(width(1, 1), 40 * 1.1, 0.01); // the diagonal of a box around two points
    // From now on particles live 30 s: half a metre per second carries them 15 m to all sides.
    EXPECT_GT(width(0.5f, -0.5f), 70 * 1.1);
    EXPECT_EQ(width(1000, 0), 512);
}

TEST_F(WakesTest, NoBurstInTheFirstNineFramesAndFoamInAnySeaUpToBeaufortTwelve) {
    for (int frame = 1; frame <= 12; frame++) {
        Engine::get()->beginFrame(0.01f);
        const unsigned before = bow->getNumCleared();
        update();
        EXPECT_EQ(bow->getNumCleared() > before, frame < 10) << frame;
    }
    const float before = spray->getLife();
    for (const auto& [beaufort, life] :
         {std::pair(0.0f, 30.0f), {12.0f, 30.0f}, {12.5f, 0.0f}, {-1.0f, 0.0f}}) {
        sea->m_beaufort = beaufort;
        update();
        EXPECT_EQ(stern->getLife(), life) << beaufort; // negative: left as it was
    }
    EXPECT_EQ(spray->getLife(), before);
}

} // namespace
