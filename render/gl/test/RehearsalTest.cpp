// SPDX-License-Identifier: MIT

// What the renderer does before the first picture, so that no later one waits.

#include "ig/app/Engine.h"
#include "ig/app/Sky.h"
#include "ig/math/quat.h"
#include "ig/scene/Camera.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/World.h"
#include "ig/ui/UIRoot.h"
#include "ig/ui/UISpriteViewport.h"
#include "ig/ui/UiDrawList.h"
#include "plugins/ocean/ObjectOcean.h"
#include "render/gl/RendererGL.h"
#include "testkit/CountingDriver.h"

#include <gtest/gtest.h>

using namespace ig;

namespace {

/// The demo world and its helicopter at the pad, with two viewports, and a world of what comes
/// later.
class RehearsedScene : public testing::Test {
public:
    static constexpr double LONGITUDE = -155.0625, LATITUDE = 19.7125;
    static constexpr const char* PREFABS = "data/PELMAR_PROJECT/prefabs/";

    RehearsedScene() {
        const Sky sky = computeSky(12, LONGITUDE, 80);
        frame.sun_direction = sky.sun_direction;
        frame.moon_direction = sky.moon_direction;
        frame.ui = &list;
        frame.ui_root = &ui;
        camera.setPerspective(50, 16.0f / 9, 0.1, 1e7);
        camera.setWgsPosition({LONGITUDE + 0.005, LATITUDE + 0.0055, 15}); // towards the frigate
        camera.setWgsHPR({30, 8, 0});
        radar_camera.setWgsPosition({LONGITUDE, LATITUDE, 100});
        radar_camera.setWgsHPR({0, 90, 0});
        for (const Camera* eye : {&radar_camera, &camera}) {
            auto* viewport = new UISpriteViewport(&ui, 64, 64);
            viewport->setWorld(&world);
            viewport->setCamera(eye);
            viewport->setAlignFree(true); // beside each other
            viewport->setPosition(70 * viewport->getId(), 0);
            ui.addChild(viewport);
        }
        ui.getViewports()[0]->setVisionMode(VISION_RADAR);
        ui.getViewports()[0]->setPostMaterials("post_radar");
        ui.resize(320, 180);
        ui.update(0);
        ui.draw(list);
        fill();
    }
    ~RehearsedScene() override {
        world.clear();
        Engine::get()->reset();
    }
    /// The world anew, at the engine's beginning.
    void fill() {
        world.clear();
        Engine::get()->reset();
        Engine::get()->setWorld(&world);
        Engine::get()->setEnvironment(ENVIRONMENT_SENSOR_GAIN, 1);
        world.load("data/PELMAR_PROJECT/PELMAR_PROJECT.world");
        helicopter = add(world, "KZ_CORAX_CN_NERITH/KZ_CORAX_CN_NERITH.prefab");
        helicopter->setWgsPosition({LONGITUDE, LATITUDE, 14});
        frame.focus = helicopter;
        frame.time = 0;
    }
    static ObjectPrefab* add(World& to, const char* path) {
        auto* prefab = new ObjectPrefab(jString(PREFABS) + path);
        to.addNode(prefab);
        return prefab;
    }
    void prepare(RendererGL& renderer) {
        const Node::BorrowedIds ids;
        World later;
        add(later, "rope_car/rope_car.prefab");
        add(later, "vfx/water_explosion/water_explosion.prefab");
        renderer.prepare({world, later, camera, frame, nullptr});
    }
    void draw(RendererGL& renderer) {
        Engine::get()->beginFrame(0.05f);
        frame.time += 0.05;
        renderer.render(world, camera, frame);
    }

    World world;
    ObjectPrefab* helicopter = nullptr;
    Camera camera, radar_camera{NODE_CAMERA_RADAR};
    UIRoot ui;
    UiDrawList list;
    FrameInfo frame;
};

} // namespace

TEST_F(RehearsedScene, EveryProgramIsDrawnWithAndNothingIsMadeAfterwards) {
    const CountingDriver driver;
    RendererGL renderer(RendererGL::Surface::window);
    const int before = renderer.getMade().programs;
    ASSERT_TRUE(renderer.init(320, 180));
    CountingDriver::counts() = {};
    prepare(renderer);
    const RenderResources made = renderer.getMade();
    EXPECT_EQ(CountingDriver::counts().programs.size(),
              static_cast<std::size_t>(made.programs - before));

    add(world, "rope_car/rope_car.prefab")->setWgsPosition({LONGITUDE, LATITUDE, 14});
    for (Node* node : helicopter->getNodes())
        node->setEnabled(true);
    for (const double altitude : {17.0, 60.0, 3000.0}) {
        camera.setWgsPosition({LONGITUDE, LATITUDE - 1e-4, altitude});
        for (int i = 0; i < 4; i++)
            draw(renderer);
    }
    EXPECT_EQ(renderer.getMade().programs, made.programs);
    EXPECT_EQ(renderer.getMade().textures, made.textures);
}

// Sea, wakes, sky, grass, radar: none may know that there was a rehearsal.
TEST_F(RehearsedScene, TheFirstPicturesAreTheSameAsWithoutIt) {
    Picture pictures[2];
    for (const bool rehearse : {false, true}) {
        fill();
        RendererGL renderer(RendererGL::Surface::none);
        if (!renderer.init(320, 180)) GTEST_SKIP() << "no OpenGL without a display here";
        const Node last;
        if (rehearse) prepare(renderer);
        EXPECT_EQ(Node().getID(), last.getID() + 1);
        // What is asked of the sea before its first frame holds at once.
        dynamic_cast<ObjectOcean*>(world.getNodeByName("ocean"))->setBeaufort(7);
        for (int i = 0; i < 3; i++)
            draw(renderer);
        ASSERT_TRUE(renderer.readPicture(pictures[rehearse]));
    }
    EXPECT_EQ(pictures[0].rgb, pictures[1].rgb);
}
