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
    /// Places of all particles in the world.
    std::vector<dvec3> places() const {
        std::vector<dvec3> out;
        system.forEach([&out](const ParticleCloud& cloud) {
            for (const Particle& p : cloud.particles)
                out.push_back(cloud.origin + dvec3(p.position));
        });
        return out;
    }
    std::vector<double> altitudes() const {
        std::vector<double> out;
        for (const dvec3& place : places())
            out.push_back(EllipsoidModel().getAltitude(place));
        return out;
    }
    /// Their distances from the Z axis of a node.
    std::vector<double> distances(const Node& from) const {
        std::vector<double> out;
        for (const dvec3& place : places()) {
            const dvec3 local = from.toLocal(place);
            out.push_back(std::hypot(local.x, local.y));
        }
        return out;
    }

    World world;
    ObjectParticles* emitter;
    ParticleSystem system;
};

} // namespace

TEST_F(Particles, RateTimesLifeAreAliveUntilTheirEmitterIsClearedHiddenOrRemoved) {
    run(1);
    EXPECT_NEAR(system.getNumParticles(), 100, 2);
    run(5);
    EXPECT_NEAR(system.getNumParticles(), 200, 4);
    emitter->stop();
    run(0.5);
    EXPECT_NEAR(system.getNumParticles(), 150, 4); // what lives lives on
    emitter->clearParticles();
    emitter->play();
    run(0.5);
    EXPECT_NEAR(system.getNumParticles(), 50, 2);
    emitter->setEnabled(false);
    run(0.02);
    EXPECT_EQ(system.getNumParticles(), 0);
    emitter->setEnabled(true);
    run(1);
    world.removeNode(emitter);
    run(0.02);
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
    const auto [lowest, highest] = std::ranges::minmax(altitudes());
    EXPECT_NEAR(lowest, 100, 0.1);
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
    // Of the first second and the climb's first step.
    const auto stayed = [](double altitude) { return std::abs(altitude - 100) < 0.002; };
    EXPECT_NEAR(static_cast<double>(std::ranges::count_if(altitudes(), stayed)), 102, 1);
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
    EXPECT_GE(std::ranges::min(distances(below)), 2.4);
    EXPECT_GT(system.getNumParticles(), 150);
}

TEST_F(Particles, ARingSendsThemOutwardsFromBetweenItsCircles) {
    emitter->setLinearVelocity(0);
    emitter->setRing({4, 9}, 5);
    run(0.02 * 3);
    const auto expectWithin = [this](double least, double most) {
        const auto [nearest, farthest] = std::ranges::minmax(distances(*emitter));
        EXPECT_GT(nearest, least);
        EXPECT_LT(farthest, most);
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

TEST_F(Particles, OfTheSceneAreTheSameWhateverFallsAroundADisplay) {
    auto* shower = new ObjectParticles();
    shower->setWorldTransform(emitter->getWorldTransform());
    shower->setOfDisplay(true);
    world.addNode(shower);
    for (ObjectParticles* each : {emitter, shower}) {
        each->setLife(2);
        each->setLinearVelocity(0);
        each->setLinearVelocitySpread(2);
        each->setSpawnRate(100);
    }
    const auto velocities = [this](const ObjectParticles* of) {
        std::vector<vec3> out;
        system.forEach([&](const ParticleCloud& cloud) {
            for (const Particle& p : cloud.particles)
                if (cloud.emitter == of) out.push_back(p.velocity);
        });
        return out;
    };
    const auto runAfter = [&](bool showers) {
        system = {};
        emitter->setEnabled(false);
        shower->setEnabled(showers);
        run(0.1);
        emitter->setEnabled(true);
        run(1);
        return velocities(emitter);
    };
    const std::vector<vec3> alone = runAfter(false);
    EXPECT_EQ(runAfter(true), alone);
    shower->setOfDisplay(false); // but two that begin together are no copies
    system = {};
    run(1);
    EXPECT_NE(velocities(shower), velocities(emitter));
}

TEST_F(Particles, StrangeSettingsDoNoHarm) {
    emitter->setLife(-1);
    run(1);
    EXPECT_EQ(system.getNumParticles(), 0);
    emitter->setLife(1e6f);
    emitter->setSpawnRate(1e9f);
    system.advance(world, 0.02f);
    EXPECT_LE(system.getNumParticles(), 12000);
}
