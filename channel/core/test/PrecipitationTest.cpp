// SPDX-License-Identifier: MIT
#include "Precipitation.h"
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
struct Flight {
    static constexpr float STEP = 1 / 30.0f; ///< s

    Flight() {
        options.weather.rain = options.weather.snow = options.weather.hail = 3;
        options.weather.wind_speed = 12;
        options.weather.wind_direction = 20;
        scene.useProjectData();
        record.longitude = -155.05;
        record.latitude = 19.75;
        record.altitude = 120;
        EXPECT_TRUE(scene.start());
        scene.logic->m_player_mode = Logic_Nerith_Heli_Final::PLAYER_MODE_FIRST;
        environment.emplace(options);
        environment->connect(*scene.logic);
        environment->attach(*scene.world);
        precipitation.attach(*scene.world);
        // All that falls in a shower of 44 m falls around the cabin.
        for (const char* name : {"rain", "snow", "hail"})
            emitter(name)->setSpread({8, 8, 8});
    }
    ObjectParticles* emitter(const char* name) {
        return static_cast<ObjectParticles*>(scene.world->getNodeByName(name));
    }
    void frame() {
        scene.send(record);
        scene.frame(STEP);
        environment->update(STEP);
        precipitation.update(STEP, eye ? *eye : scene.camera, *environment);
        particles.advance(*scene.world, STEP);
    }
    /// How often a drop was within the cabin.
    int fly(double seconds, double north_speed) {
        int within = 0;
        for (double time = 0; time < seconds; time += static_cast<double>(STEP)) {
            record.latitude += north_speed * static_cast<double>(STEP) / 110700;
            frame();
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
    Precipitation precipitation;
    const Camera* eye = nullptr; ///< null: the logic's
    ParticleSystem particles;
    UdpRecvData record{};
};

TEST(PrecipitationTest, DoesNotFallIntoTheCabin) {
    Flight flight;
    EXPECT_EQ(flight.fly(2.5, 0), 0) << "in a hover";
    flight.record.pitch = -12;
    EXPECT_EQ(flight.fly(2, 60), 0) << "at 60 m/s";
    EXPECT_GT(flight.particles.getNumParticles(), 1000);
    for (const char* name : {"rain", "snow", "hail"}) // it would: the test can tell
        flight.emitter(name)->setNumDeflectors(0);
    EXPECT_GT(flight.fly(1, 60), 50);
}

TEST(PrecipitationTest, TellsNothingOfItsDisplaysEyeToTheScene) {
    /// Places of all nodes and particles of the scene, and of the display's own.
    struct Places {
        std::vector<dvec3> scene, display;
    };
    const auto fly = [](const Camera* eye) {
        Places places;
        Flight flight;
        flight.eye = eye;
        flight.record.altitude = 9; // in its own spray
        flight.record.rotor_speed = 265;
        flight.fly(1, 10);
        const auto visit = [&places](const auto& self, const Node& node) -> void {
            const bool own = node.getType() == OBJECT_PARTICLES &&
                             static_cast<const ObjectParticles&>(node).isOfDisplay();
            (own ? places.display : places.scene).push_back(node.getWorldPosition());
            for (int i = 0; i < node.getNumChildren(); i++)
                self(self, *node.getChild(i));
        };
        for (const Node* node : flight.scene.world->getNodes())
            visit(visit, *node);
        flight.particles.forEach([&places](const ParticleCloud& cloud) {
            for (const Particle& p : cloud.particles)
                (cloud.emitter->isOfDisplay() ? places.display : places.scene)
                    .push_back(cloud.origin + dvec3(p.position));
        });
        return places;
    };
    Camera ashore;
    ashore.setWgsPosition({-155.0625, 19.7125, 30});
    const Places here = fly(nullptr), there = fly(&ashore);
    EXPECT_EQ(here.scene, there.scene);
    EXPECT_GT(here.scene.size(), 500u);
    EXPECT_NE(here.display, there.display);
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
