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
#include <string>

namespace {

using namespace ig;

TEST(PlaySpe, ShowsWhatIsAnEffectUprightAtItsPlaceForItsDuration) {
    const WorkingFolder folder;
    folder.write("node.prefab", "node: {name: plain}\n");
    folder.write("effect.prefab", "node: {type: particles, duration: 1}\n");
    World world;
    ActionManager manager;
    Engine::get()->setWorld(&world);
    const dvec3 place = EllipsoidModel().toWorld({-155, 20, 7});
    const std::size_t memory = memCount();
    LogCapture log;
    for (const char* path : {"none.prefab", "none.prefab", "node.prefab"})
        EXPECT_EQ(ActionPlaySpe::Create(&world, path, 3, place), nullptr);
    EXPECT_EQ(log.lines, std::vector<std::string>{"ActionPlaySpe::initWithDuration: cannot open "
                                                  "\"none.prefab\""});
    EXPECT_TRUE(world.getNodes().empty());
    EXPECT_EQ(memCount(), memory);

    manager.addAction(ActionPlaySpe::Create(&world, "effect.prefab", 3, place), false);
    ASSERT_EQ(world.getNodes().size(), 1);
    const auto& effect = static_cast<ObjectParticles&>(*world.getNodes()[0]);
    const dmat4 pose = effect.getWorldTransform();
    EXPECT_LT(length(pose.getTranslate() - place), 1e-9);
    EXPECT_NEAR(dot(pose.getZ(), EllipsoidModel().getUp(place)), 1, 1e-12);
    std::string starts;            // of an effect that lasts 1 s
    for (int i = 0; i < 46; i++) { // to 2.875 s
        const bool running = effect.isEmitterEnabled();
        manager.update(0.0625f);
        if (effect.isEmitterEnabled() && !running) starts += std::to_string(i) + ' ';
        world.updateParticles(0.0625f);
    }
    EXPECT_EQ(starts, "2 18 34 "); // from 0.1 s on
    manager.update(0.125f);
    EXPECT_EQ(manager.size(), 0);
    EXPECT_TRUE(world.getNodes().empty());
    PackageManager::release();
    Engine::get()->reset();
}

} // namespace
