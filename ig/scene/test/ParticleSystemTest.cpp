// SPDX-License-Identifier: MIT
#include "ig/scene/ParticleSystem.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace ig;

namespace {

struct Particles : testing::Test {
    Particles() {
        emitter = new ObjectParticles();
        emitter->setWgsPosition({-155, 19.7, 100});
        emitter->setWgsHPR({0, 0, 0});
        emitter->setLife(2);
        emitter->setLinearVelocity(3);
        emitter->setSpawnRate(100);
        world.addNode(emitter);
    }
    void run(double seconds) {
        for (int i = 0; i < static_cast<int>(seconds * 50); i++)
            system.advance(world, 0.02f);
    }
    /// Altitudes of all particles.
    std::vector<double> altitudes() const {
        std::vector<double> out;
        system.forEach([&out](const ParticleCloud& cloud) {
            for (const Particle& p : cloud.particles)
                out.push_back(EllipsoidModel().getAltitude(cloud.origin + dvec3(p.position)));
        });
        return out;
    }

    World world;
    ObjectParticles* emitter;
    ParticleSystem system;
};

} // namespace

TEST_F(Particles, RateTimesLifeAreAlive) {
    run(1);
    EXPECT_NEAR(system.getNumParticles(), 100, 2);
    run(5);
    EXPECT_NEAR(system.getNumParticles(), 200, 4);
    emitter->setSpawnRate(0);
    run(2.1);
    EXPECT_EQ(system.getNumParticles(), 0);
}

TEST_F(Particles, ABurstGivesAllItHasInLongAndShortSteps) {
    emitter->setBurst(0.3f);
    for (const float dt : {0.01f, 0.1f, 0.4f}) {
        emitter->clearParticles();
        emitter->play();
        for (float time = 0; time < 0.79f; time += dt) {
            emitter->advance(dt); // as the world does
            system.advance(world, dt);
        }
        EXPECT_NEAR(system.getNumParticles(), 30, 1) << dt;
    }
}

TEST_F(Particles, FlyAlongTheEmittersAxis) {
    run(4);
    double highest = 0;
    for (const double altitude : altitudes()) {
        EXPECT_GE(altitude, 100 - 1e-3);
        highest = std::max(highest, altitude);
    }
    EXPECT_NEAR(highest, 106, 0.2); // 3 m/s for 2 s
}

TEST_F(Particles, StayWhereTheyAreWhenTheEmitterMovesOn) {
    emitter->setLinearVelocity(0);
    emitter->setLife(60);
    run(1);
    for (int i = 0; i < 40; i++) { // 4 km up: the origin has to follow
        emitter->setWgsPosition({-155, 19.7, 100 + 100.0 * i});
        system.advance(world, 0.02f);
    }
    const std::vector<double> all = altitudes();
    const auto stayed =
        std::count_if(all.begin(), all.end(), [](double a) { return std::abs(a - 100) < 0.002; });
    EXPECT_NEAR(static_cast<double>(stayed), 102,
                1); // of the first second and the climb's first step
}

TEST_F(Particles, FoamLiesWhereAHullHasGoneAndNotAroundAStillOne) {
    auto* decal = new DecalOrtho();
    auto* foam = new ObjectParticles();
    foam->setLife(60);
    foam->setSpawnRate(100);
    decal->addChild(foam);
    world.removeNode(emitter);
    world.addNode(decal);
    decal->setWgsPosition({-155, 19.7, 0});
    run(3);
    EXPECT_EQ(system.getNumParticles(), 0);
    for (int i = 1; i <= 100; i++) { // 10 m/s
        decal->setWorldPosition(decal->getWorldPosition() +
                                decal->getWorldTransform().getY() * 0.2);
        system.advance(world, 0.02f);
    }
    EXPECT_NEAR(system.getNumParticles(), 200, 3);
    run(2);
    EXPECT_NEAR(system.getNumParticles(), 200, 3); // it stays, and no more comes
}

TEST_F(Particles, DeflectorsClearTheirWholeColumn) {
    emitter->setSpread({10, 10, 0});
    emitter->setNumDeflectors(1);
    Node below; // 50 m under the emitter
    below.setWgsPosition({-155, 19.7, 50});
    below.setWgsHPR({0, 0, 0});
    emitter->setDeflectorTransform(0, below.getWorldTransform());
    run(3);
    int within = 0;
    system.forEach([&](const ParticleCloud& cloud) {
        for (const Particle& p : cloud.particles) {
            const dvec3 local = below.toLocal(cloud.origin + dvec3(p.position));
            within += std::hypot(local.x, local.y) < 2.4;
        }
    });
    EXPECT_EQ(within, 0);
    EXPECT_GT(system.getNumParticles(), 150);
}

TEST_F(Particles, ARingSendsThemOutwardsFromBetweenItsCircles) {
    emitter->setLinearVelocity(0);
    emitter->setRing({4, 9}, 5);
    run(0.02 * 3);
    const auto expectWithin = [this](double nearest, double farthest) {
        system.forEach([&](const ParticleCloud& cloud) {
            for (const Particle& p : cloud.particles) {
                const dvec3 local = emitter->toLocal(cloud.origin + dvec3(p.position));
                const double r = std::hypot(local.x, local.y);
                EXPECT_GT(r, nearest);
                EXPECT_LT(r, farthest);
            }
        });
    };
    expectWithin(4, 9.5);
    emitter->setSpawnRate(0);
    run(1);
    expectWithin(9, 14.5);
}

TEST_F(Particles, DragBringsThemToTheWindsSpeed) {
    Material material;
    material.addSlider("drag", 4);
    material.addSlider("wind", 1);
    emitter->setSurfaceMaterial(0, &material);
    emitter->setLife(100);
    run(0.1);
    emitter->setSpawnRate(0);
    system.setWind(90, 12); // towards the north
    run(5);
    const dmat4 level = EllipsoidModel().getWGSTransform(emitter->getWorldPosition());
    int count = 0;
    system.forEach([&](const ParticleCloud& cloud) {
        for (const Particle& p : cloud.particles) {
            EXPECT_NEAR(dot(dvec3(p.velocity), level.getY()), 12, 0.01);
            EXPECT_NEAR(length(p.velocity), 12, 0.01);
            count++;
        }
    });
    EXPECT_GT(count, 5);
    world.clear(); // before the material goes
}

TEST_F(Particles, AHiddenOrRemovedEmitterHasNone) {
    run(1);
    emitter->setEnabled(false);
    run(0.1);
    EXPECT_EQ(system.getNumParticles(), 0);
    emitter->setEnabled(true);
    run(1);
    world.removeNode(emitter);
    system.advance(world, 0.02f);
    EXPECT_EQ(system.getNumParticles(), 0);
}

TEST_F(Particles, StoppedAndClearedEmittersObey) {
    run(1);
    emitter->stop();
    run(0.5);
    EXPECT_NEAR(system.getNumParticles(), 100, 2); // what lives lives on
    emitter->clearParticles();
    system.advance(world, 0.02f);
    EXPECT_EQ(system.getNumParticles(), 0);
    emitter->play();
    run(0.5);
    EXPECT_NEAR(system.getNumParticles(), 50, 2);
}

TEST_F(Particles, StrangeSettingsDoNoHarm) {
    emitter->setLife(-1);
    run(1);
    EXPECT_EQ(system.getNumParticles(), 0);
    emitter->setLife(1e6f);
    emitter->setSpawnRate(1e9f);
    system.advance(world, 0.02f);
    EXPECT_LE(system.getNumParticles(), 12000);
    system.advance(world, -1);
    system.advance(world, 1e9f);
}
