// SPDX-License-Identifier: MIT

// Particles between the things of a scene.

#include "PictureScene.h"
#include "ig/scene/Material.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/scene/SceneObjects.h"

using namespace ig;

class SpriteOf : public PictureScene {
public:
    /// Dense grey puffs in the picture's middle, so many metres ahead.
    void addPuffs(double distance) {
        auto* emitter = new ObjectParticles();
        emitter->setTransform(m_camera.getWorldTransform() * translate(dvec3(0, 0, -distance)));
        emitter->setLife(10);
        emitter->setSpawnRate(20);
        Material* puff = material({0.6f, 0.6f, 0.6f, 4}, 0);
        puff->addSlider("particle_size", 1.5f);
        emitter->setSurfaceMaterial(0, puff);
        m_world.addNode(emitter);
        for (int i = 0; i < 4; i++) {
            m_world.updateParticles(0.5f);
            m_particles.advance(m_world, 0.5f);
        }
        m_frame.particles = &m_particles;
    }
    int brightnessInTheMiddle() {
        draw();
        const std::uint8_t* p = pixel(0.5, 0.5);
        return p[0] + p[1] + p[2];
    }

    ParticleSystem m_particles;
};

TEST_F(SpriteOf, ParticlesLieInTheShadowOfWhatStandsBeforeTheSun) {
    look(40, 0, 0);
    Node focus;
    focus.setTransform(m_camera.getWorldTransform() * translate(dvec3(0, 0, -30)));
    m_frame.focus = &focus;
    addPuffs(30);
    const int lit = brightnessInTheMiddle();
    auto* roof = new ObjectMesh(square(60)); // high enough to stay out of the picture
    const dvec3 above = focus.getWorldPosition() + m_frame.sun_direction * 40.0;
    roof->setTransform(dmat4(m_camera.getWorldTransform().getMat3(), above) *
                       dmat4(dquat(dvec3(1, 0, 0), -90), dvec3()));
    roof->setSurfaceMaterial(0, material({0.3f, 0.3f, 0.3f, 1}, 0));
    m_world.addNode(roof);
    const int shaded = brightnessInTheMiddle();
    EXPECT_LT(shaded, 0.93 * lit);
    EXPECT_GT(shaded, 0.4 * lit); // the sky still lights them
}

TEST_F(SpriteOf, WhatStandsBeforeThemHidesParticles) {
    look(40, 0, 0);
    addPuffs(30);
    auto* lamp = new ObjectLight(); // one that doesn't end softly
    lamp->setTransform(m_camera.getWorldTransform() * translate(dvec3(0, 0, -30)));
    Material* glow = material({1, 0.2f, 0.2f, 1}, 3);
    glow->addSlider("density", 50);
    lamp->setSurfaceMaterial(0, glow);
    m_world.addNode(lamp);
    addCard(20, 8, GREEN);
    draw();
    EXPECT_TRUE(isGreen(0.5, 0.5));
    addCard(35, 40, RED);
    draw();
    EXPECT_TRUE(isGreen(0.5, 0.5));
    EXPECT_TRUE(isRed(0.3, 0.5));
}

TEST_F(SpriteOf, LampsLightParticles) {
    setMidnight();
    look(40, 0, 0);
    addPuffs(30);
    const int dark = brightnessInTheMiddle();
    auto* lamp = new ObjectLight();
    lamp->setIntensity(20000, 100);
    lamp->setTransform(m_camera.getWorldTransform() * translate(dvec3(0, 15, -20)));
    m_world.addNode(lamp);
    EXPECT_GT(brightnessInTheMiddle(), dark + 60);
}
