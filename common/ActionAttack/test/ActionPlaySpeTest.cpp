// SPDX-License-Identifier: MIT
#include "common/ActionAttack/ActionPlaySpe.h"

#include "ig/action/ActionManager.h"
#include "ig/app/Engine.h"
#include "ig/package/PackageManager.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

struct PlaySpe : testing::Test {
    PlaySpe() {
        folder.write("effect.prefab", "node: {type: particles, rate: 9, duration: 1, burst: 0.5, "
                                      "children: [{type: particles, rate: 5}]}\n");
        Engine::get()->setWorld(&world);
    }
    ~PlaySpe() override {
        manager.removeAllActions();
        world.clear();
        PackageManager::release();
        Engine::get()->reset();
    }
    ObjectParticles* effect() { return static_cast<ObjectParticles*>(world.getNodes()[0]); }
    void frame(float dt) {
        manager.update(dt);
        world.updateParticles(dt);
    }
    const dvec3 place = EllipsoidModel().toWorld({-155, 20, 7});
    WorkingFolder folder;
    LogCapture log;
    World world;
    ActionManager manager;
};

TEST_F(PlaySpe, ShowsTheEffectUprightAtItsPlaceForItsDuration) {
    manager.addAction(ActionPlaySpe::Create(&world, "effect.prefab", 3, place), false);
    ASSERT_EQ(world.getNodes().size(), 1);
    const dmat4 pose = effect()->getWorldTransform();
    EXPECT_LT(length(pose.getTranslate() - place), 1e-9);
    EXPECT_NEAR(dot(pose.getZ(), EllipsoidModel().getUp(place)), 1, 1e-12);
    auto* child = static_cast<ObjectParticles*>(effect()->getChild(0));
    int starts = 0;
    bool running = false;
    for (int i = 0; i < 46; i++) {                 // to 2.875 s
        EXPECT_TRUE(i > 3 || running == (i == 3)); // 0.1 s are over
        frame(0.0625f);
        if (effect()->isEmitterEnabled() && !running) {
            starts++;
            EXPECT_EQ(effect()->getPresentRate(), 9);
            EXPECT_TRUE(child->isEmitterEnabled());
        }
        running = effect()->isEmitterEnabled();
    }
    EXPECT_EQ(starts, 3);                     // the effect lasts 1 s
    EXPECT_EQ(effect()->getPresentRate(), 0); // its burst is over
    EXPECT_EQ(child->getPresentRate(), 5);
    effect()->stop();
    EXPECT_FALSE(child->isEmitterEnabled());
    frame(0.0625f);
    frame(0.0625f);
    EXPECT_EQ(manager.size(), 0);
    EXPECT_TRUE(world.getNodes().empty());
}

TEST_F(PlaySpe, WhatIsNoEffectIsRefusedSilently) {
    folder.write("node.prefab", "node: {name: plain}\n");
    folder.write("empty.prefab", "other: 1\n");
    const std::size_t memory = memCount();
    for (const char* path : {"none.prefab", "node.prefab", "empty.prefab"})
        EXPECT_EQ(ActionPlaySpe::Create(&world, path, 3, place), nullptr);
    EXPECT_TRUE(world.getNodes().empty());
    EXPECT_EQ(memCount(), memory);
    EXPECT_TRUE(log.lines.empty());
}

} // namespace
