// SPDX-License-Identifier: MIT

// The renderer's own work, with a driver that only counts.

#include "ig/app/Engine.h"
#include "ig/app/Sky.h"
#include "ig/math/quat.h"
#include "ig/scene/Camera.h"
#include "ig/scene/Material.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "ig/ui/UILabel.h"
#include "ig/ui/UIRoot.h"
#include "ig/ui/UiDrawList.h"
#include "plugins/ocean/ObjectOcean.h"
#include "render/gl/RendererGL.h"
#include "testkit/AllocationCounter.h"
#include "testkit/CountingDriver.h"

#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>

using namespace ig;

namespace {

class CountedFrames : public testing::Test {
public:
    static constexpr double LONGITUDE = -155.0625, LATITUDE = 19.7125; ///< the demo world's helipad
    static constexpr float STEP = 1 / 30.0f;

    void SetUp() override {
        const Sky sky = computeSky(12, LONGITUDE, 80);
        frame.sun_direction = sky.sun_direction;
        frame.moon_direction = sky.moon_direction;
        frame.particles = &particles;
        camera.setPerspective(50, 16.0f / 9, 0.1, 1e7);
        camera.setWgsPosition({LONGITUDE, LATITUDE, 60});
        ASSERT_TRUE(renderer.init(640, 360));
    }
    void TearDown() override {
        renderer.release();
        EXPECT_EQ(renderer.getResources().getTotal(), 0);
        world.clear();
        Engine::get()->reset();
    }

    void draw() { renderer.render(world, camera, frame); }
    /// What one more picture asks of the driver.
    CountingDriver::Counts countPicture() {
        CountingDriver::counts() = {};
        draw();
        return CountingDriver::counts();
    }

    CountingDriver driver;
    RendererGL renderer{RendererGL::Surface::window};
    World world;
    Camera camera;
    ParticleSystem particles;
    FrameInfo frame;
};

} // namespace

TEST_F(CountedFrames, EqualThingsGoInOneCallHoweverManyTheyAre) {
    Mesh::Surface surface;
    surface.positions = {{-1, -1, 0}, {1, -1, 0}, {0, 1, 0}};
    surface.normals.assign(3, {0, 0, 1});
    surface.indices = {0, 1, 2};
    const auto mesh = std::make_shared<Mesh>(std::vector<Mesh::Surface>{surface});
    const auto add = [&](int count) {
        for (int i = 0; i < count; i++) {
            auto* object = new ObjectMesh(mesh);
            object->setTransform(camera.getWorldTransform() *
                                 translate(dvec3(i % 40 - 20, i / 40 % 25 - 12, -300)));
            world.addNode(object);
        }
    };
    add(100);
    draw(); // the mesh goes to the device
    const CountingDriver::Counts hundred = countPicture();
    add(900);
    for (int i = 0; i < 4; i++) // their shadows, one map a frame
        draw();
    const CountingDriver::Counts thousand = countPicture();
    EXPECT_EQ(thousand.calls, hundred.calls);
    EXPECT_EQ(thousand.draws, hundred.draws);
    EXPECT_EQ(thousand.instances - hundred.instances, 900U);
    const std::uint64_t bytes_each = (thousand.bytes - hundred.bytes) / 900;
    EXPECT_GE(bytes_each, 48U); // a transform
    EXPECT_LE(bytes_each, 76U); // and what light is there
}

TEST_F(CountedFrames, WhatIsOutOfViewIsNotDrawn) {
    camera.setWgsHPR({0, 0, 0});
    ASSERT_TRUE(world.load("data/PELMAR_PROJECT/PELMAR_PROJECT.world"));
    draw();
    const CountingDriver::Counts towards = countPicture();
    camera.setWgsPosition({LONGITUDE, LATITUDE, 20000});
    camera.setWgsHPR({0, -90, 0}); // straight up
    const CountingDriver::Counts away = countPicture();
    EXPECT_GT(towards.draws, 20U);
    EXPECT_LT(away.draws, towards.draws / 2);
}

TEST_F(CountedFrames, ASkyThatNeverRestsIsMadeAStepAFrame) {
    draw();
    const std::uint64_t steady = countPicture().draws;
    std::uint64_t most = 0, all = 0;
    for (int i = 0; i < 90; i++) {
        frame.overcast = static_cast<float>(i) / 100;
        const std::uint64_t draws = countPicture().draws - steady;
        most = std::max(most, draws);
        all += draws;
    }
    EXPECT_EQ(most, 2U); // and the sky on its way to the map before that
    EXPECT_GT(all, 60U); // and it is made over and over
}

// The demo world with a helicopter, its wash and heavy rain, waves, and texts that change.
TEST_F(CountedFrames, ASteadyFrameAllocatesNothing) {
    Engine::get()->setWorld(&world);
    ASSERT_TRUE(world.load("data/PELMAR_PROJECT/PELMAR_PROJECT.world"));
    auto* helicopter = new ObjectPrefab(
        "data/PELMAR_PROJECT/prefabs/KZ_CORAX_CN_NERITH/KZ_CORAX_CN_NERITH.prefab");
    world.addNode(helicopter);
    frame.focus = helicopter;
    world.getNodeByName("rain")->setEnabled(true);
    for (Node* node : helicopter->getNodes())
        node->setEnabled(true);
    frame.wind = {100, 50}; // the sky is made over and over
    UIRoot ui;
    auto* label = new UILabel(&ui, "");
    ui.addChild(label);
    ui.resize(640, 360);
    UiDrawList list;
    frame.ui = &list;

    const auto step = [&](int i) {
        Engine::get()->beginFrame(STEP);
        const double t = (i % 30) / 30.0;
        helicopter->setWgsPosition({LONGITUDE, LATITUDE + 1e-4 * t, 14});
        camera.setWgsPosition({LONGITUDE, LATITUDE - 5e-4, 30 + 5 * t});
        camera.setWgsHPR({20 * t, 5, 0});
        frame.time = i / 30.0;
        world.updateParticles(STEP);
        particles.advance(world, STEP);
        char text[64];
        std::snprintf(text, sizeof text, "纬度 %.7f 高度 %.3f m", LATITUDE + 1e-4 * t, 14 + t);
        label->setText(text);
        ui.update(STEP);
        ui.draw(list);
        draw();
    };
    int i = 0;
    for (; i < 150; i++)
        step(i);
    const AllocationCounter allocations;
    for (; i < 305; i++) // the foam is calibrated every 5 s, meshes are looked through every 4 s
        step(i);
    EXPECT_EQ(allocations.count(), 0U);
    EXPECT_GT(particles.getNumParticles(), 8000);
}
