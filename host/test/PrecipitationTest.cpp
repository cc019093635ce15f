// SPDX-License-Identifier: MIT
#include "Environment.h"
#include "Lightning.h"
#include "Options.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/scene/SceneObjects.h"
#include "render/gl/RendererGL.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace ig;

constexpr int WIDTH = 320, HEIGHT = 180;
constexpr double INTERIOR = 3; ///< m: what is nearer to the pilot's eye belongs to the cabin
constexpr int REACH = 5;       ///< pixels that the edge filter mixes
constexpr float STEP = 1 / 30.0f;

/// The real helicopter over the sea in the worst of all weather, seen by its pilot.
struct PilotsView : testing::Test {
    PilotsView() {
        options.weather.rain = options.weather.snow = options.weather.hail = 3;
        options.weather.wind_speed = 12;
        options.weather.wind_direction = 20;
        scene.useProjectData();
        record.longitude = -155.05;
        record.latitude = 19.75;
        record.altitude = 120;
        record.rotor_speed = 200;
    }
    void SetUp() override {
        if (!renderer.init(WIDTH, HEIGHT)) GTEST_SKIP() << "no OpenGL without a display here";
        ASSERT_TRUE(scene.start());
        scene.logic->m_player_mode = Logic_Nerith_Heli_Final::PLAYER_MODE_FIRST;
        environment.emplace(options);
        environment->connect(*scene.logic);
        environment->attach(*scene.world);
        // All that falls in a shower of 44 m falls around the cabin.
        for (const char* name : {"rain", "snow", "hail"})
            emitter(name)->setSpread({8, 8, 8});
    }
    ObjectParticles* emitter(const char* name) {
        return static_cast<ObjectParticles*>(scene.world->getNodeByName(name));
    }
    void fly(double seconds, double north_speed) {
        for (int i = 0; i < static_cast<int>(seconds / static_cast<double>(STEP)); i++) {
            record.latitude += north_speed * static_cast<double>(STEP) / 110700;
            scene.send(record);
            scene.frame(STEP);
            environment->update(STEP, scene.camera, scene.control);
            particles.advance(*scene.world, STEP);
        }
        environment->fillFrame(scene.camera, scene.logic->m_heli->m_prefab, 1, frame);
    }
    Picture draw(const ParticleSystem* shown) {
        Picture picture;
        frame.particles = shown;
        renderer.render(*scene.world, scene.camera, frame);
        renderer.readPicture(picture);
        return picture;
    }
    /// By pixel, after a picture was drawn; all pixels within the edge filter's reach must be
    /// of the cabin too.
    std::vector<bool> cabin() {
        std::vector<bool> near, mask;
        for (int y = 0; y < HEIGHT; y++)
            for (int x = 0; x < WIDTH; x++)
                near.push_back(renderer.readDistance((x + 0.5) / WIDTH, (y + 0.5) / HEIGHT) <
                               INTERIOR);
        for (int y = 0; y < HEIGHT; y++)
            for (int x = 0; x < WIDTH; x++) {
                bool all = true;
                for (int v = std::max(y - REACH, 0); v <= std::min(y + REACH, HEIGHT - 1); v++)
                    for (int u = std::max(x - REACH, 0); u <= std::min(x + REACH, WIDTH - 1); u++)
                        all = all && near[static_cast<std::size_t>(v * WIDTH + u)];
                mask.push_back(all);
            }
        return mask;
    }
    /// Pixels that precipitation changes, within the cabin and outside, when it has been falling.
    void expectDryCabin(const char* when) {
        const Picture dry = draw(nullptr);
        const std::vector<bool> inside = cabin();
        const Picture wet = draw(&particles);
        int pixels[2] = {}, changed[2] = {};
        for (std::size_t i = 0; i < inside.size(); i++) {
            pixels[inside[i]]++;
            for (std::size_t c = 0; c < 3; c++)
                if (dry.rgb[3 * i + c] != wet.rgb[3 * i + c]) {
                    changed[inside[i]]++;
                    break;
                }
        }
        EXPECT_GT(pixels[1], WIDTH * HEIGHT / 20) << when; // there is a cabin to be seen
        EXPECT_EQ(changed[1], 0) << when;
        EXPECT_GT(changed[0], pixels[0] / 50) << when; // and weather outside
    }

    LogicScene scene;
    Options options;
    std::optional<Environment> environment;
    ParticleSystem particles;
    RendererGL renderer{RendererGL::Surface::none};
    FrameInfo frame;
    UdpRecvData record{};
};

TEST_F(PilotsView, NoPrecipitationWithinTheCabin) {
    fly(2.5, 0);
    expectDryCabin("in a hover");
    record.pitch = -12;
    record.roll = 15;
    fly(0.5, 0);
    expectDryCabin("leaning");
    record.roll = 0;
    fly(2, 60);
    expectDryCabin("at 60 m/s");
    // Without the deflectors the cabin would get wet: the test can tell.
    for (const char* name : {"rain", "snow", "hail"})
        emitter(name)->setNumDeflectors(0);
    fly(1, 60);
    const Picture dry = draw(nullptr);
    const std::vector<bool> inside = cabin();
    const Picture wet = draw(&particles);
    int changed = 0;
    for (std::size_t i = 0; i < inside.size(); i++)
        changed += inside[i] && dry.rgb[3 * i] != wet.rgb[3 * i];
    EXPECT_GT(changed, 20);
}

TEST(LightningTest, BoltsComeEveryFourToTwelveSecondsAndAreShort) {
    std::vector<double> begins;
    double lit = 0, before = 0;
    constexpr double STEP_S = 0.01;
    for (int i = 0; i < 60000; i++) {
        const double time = i * STEP_S;
        const Lightning light = Lightning::at(time);
        ASSERT_GE(light.flash, 0);
        ASSERT_LE(light.flash, 1);
        if (light.flash > 0.85f && time - before > 1) begins.push_back(time);
        if (light.flash > 0.85f) before = time;
        if (light.flash > 0.05f) lit += STEP_S;
    }
    ASSERT_GT(begins.size(), 50u);
    double shortest = 1e9, longest = 0;
    for (std::size_t i = 1; i < begins.size(); i++) {
        shortest = std::min(shortest, begins[i] - begins[i - 1]);
        longest = std::max(longest, begins[i] - begins[i - 1]);
    }
    EXPECT_GE(shortest, 4 - STEP_S);
    EXPECT_LE(longest, 12 + STEP_S);
    EXPECT_GT(longest - shortest, 3); // not by the clock
    EXPECT_LT(lit / static_cast<double>(begins.size()), 0.8);
    EXPECT_EQ(Lightning::at(std::nan("")).flash, 0);
}

} // namespace
