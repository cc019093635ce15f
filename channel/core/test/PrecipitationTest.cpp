// SPDX-License-Identifier: MIT
#include "Environment.h"
#include "Lightning.h"
#include "Options.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/scene/SceneObjects.h"
#include "testkit/LogicScene.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using namespace ig;

/// The real helicopter over the sea in the worst of all weather.
struct CabinTest : testing::Test {
    CabinTest() {
        options.weather.rain = options.weather.snow = options.weather.hail = 3;
        options.weather.wind_speed = 12;
        options.weather.wind_direction = 20;
        scene.useProjectData();
        record.longitude = -155.05;
        record.latitude = 19.75;
        record.altitude = 120;
    }
    void SetUp() override {
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
    /// How often a drop was within the cabin.
    int fly(double seconds, double north_speed) {
        constexpr double STEP = 1 / 30.0;
        int within = 0;
        for (double time = 0; time < seconds; time += STEP) {
            record.latitude += north_speed * STEP / 110700;
            scene.send(record);
            scene.frame(STEP);
            environment->update(STEP, scene.camera);
            particles.advance(*scene.world, STEP);
            within += countInCabin();
        }
        return within;
    }
    int countInCabin() const {
        int count = 0;
        particles.forEach([&](const ParticleCloud& cloud) {
            for (const Particle& p : cloud.particles) {
                const dvec3 at =
                    scene.logic->m_heli->m_prefab->toLocal(cloud.origin + dvec3(p.position));
                count += std::abs(at.x) < 0.8 && std::abs(at.y - 2.3) < 1.3 &&
                         std::abs(at.z - 0.6) < 0.8;
            }
        });
        return count;
    }

    LogicScene scene;
    Options options;
    std::optional<Environment> environment;
    ParticleSystem particles;
    UdpRecvData record{};
};

TEST_F(CabinTest, NoPrecipitationFallsInIt) {
    EXPECT_EQ(fly(2.5, 0), 0) << "in a hover";
    record.pitch = -12;
    EXPECT_EQ(fly(2, 60), 0) << "at 60 m/s";
    EXPECT_GT(particles.getNumParticles(), 1000);
    for (const char* name : {"rain", "snow", "hail"}) // it would: the test can tell
        emitter(name)->setNumDeflectors(0);
    EXPECT_GT(fly(1, 60), 50);
}

TEST(LightningTest, BoltsComeEveryFourToTwelveSecondsAndAreShort) {
    constexpr double STEP_S = 0.01;
    double begin = -1, shortest = 1e9, longest = 0, lit = 0;
    int bolts = 0;
    for (double time = 0; time < 600; time += STEP_S) {
        const float flash = Lightning::at(time).flash;
        ASSERT_TRUE(flash >= 0 && flash <= 1);
        if (flash > 0.05f) lit += STEP_S;
        if (flash <= 0.85f || time < begin + 1) continue; // they flicker
        if (bolts++ > 0) {
            shortest = std::min(shortest, time - begin);
            longest = std::max(longest, time - begin);
        }
        begin = time;
    }
    ASSERT_GT(bolts, 50);
    EXPECT_GE(shortest, 4 - STEP_S);
    EXPECT_LE(longest, 12 + STEP_S);
    EXPECT_GT(longest - shortest, 3); // not by the clock
    EXPECT_LT(lit / bolts, 0.8);
    EXPECT_EQ(Lightning::at(std::nan("")).flash, 0);
}

} // namespace
