// SPDX-License-Identifier: MIT
#include "flight_model.h"
#include "heli/kit/HelicopterCorax.h"
#include "ig/app/Engine.h"
#include "ig/physics/Body.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using namespace ig;

const EllipsoidModel EARTH;

/// A helicopter of the small prefab at 500 m, alone in a world.
struct HelicopterTest : testing::Test {
    HelicopterCorax& make(bool controllable, const char* path = LogicScene::HELICOPTER) {
        Engine::get()->setApp(&scene);
        scene.world.emplace();
        helicopter.emplace(&*scene.world, path, controllable);
        helicopter->set_transform(EARTH.getWGSTransform(EARTH.toWorld({-155, 20, 500})));
        return *helicopter;
    }
    void fly(int frames) {
        for (int i = 0; i < frames; i++) {
            helicopter->update(1 / 60.0f);
            scene.world->updatePhysics(1 / 60.0f);
        }
    }
    double turnOf(const char* name) { return node(name)->getRotation().toEulerZXY().z; }
    Node* node(const char* name) { return helicopter->m_prefab->getNodeByName(name); }
    float density() {
        const Material* material = helicopter->m_tail_light->getSurfaceMaterial(0);
        return material->getParameterSlider(material->findParameterIDByTag("density"));
    }
    LogicScene scene; // without its logic
    std::optional<HelicopterCorax> helicopter;
};

TEST_F(HelicopterTest, RotorsShowBladesBelow3000AndTurnAboutTheirAxes) {
    HelicopterCorax& heli = make(false);
    heli.set_rotor_speed(2999.9f);
    heli.update(0);
    const auto shown = [&] {
        std::string names;
        for (const char* name : {"wing_mesh", "tail_mesh", "wing_plane", "tail_plane"})
            if (node(name)->isEnabled()) names += std::string(name) + ' ';
        return names;
    };
    EXPECT_EQ(shown(), "wing_mesh tail_mesh ");
    heli.set_rotor_speed(3000);
    heli.update(0.01f); // 30 degrees
    EXPECT_EQ(shown(), "wing_plane tail_plane ");
    const dvec3 ahead(0, 1, 0), c(0, std::sqrt(0.75), 0); // clockwise from above, and from the left
    EXPECT_LT(length(node("wing")->getRotation() * ahead - (c + dvec3(0.5, 0, 0))), 1e-6);
    EXPECT_LT(length(node("tail")->getRotation() * ahead - (c + dvec3(0, 0, 0.5))), 1e-6);
}

TEST_F(HelicopterTest, AbsurdRotorSpeedDoesNotPoisonTheAngle) {
    HelicopterCorax& heli = make(false);
    for (float speed : {std::numeric_limits<float>::quiet_NaN(),
                        std::numeric_limits<float>::infinity(), 3e38f, 16200.0f}) {
        heli.set_rotor_speed(speed);
        heli.update(1 / 60.0f);
    }
    EXPECT_TRUE(std::isfinite(heli.m_rotor_angle));
    EXPECT_TRUE(scene.log.lines.empty()); // no pose was refused
    // After ten hours the angle still has the digits to turn by a degree.
    for (int i = 0; i < 36000; i++)
        heli.update(1);
    const float before = heli.m_rotor_angle;
    heli.set_rotor_speed(60);
    heli.update(1 / 60.0f);
    EXPECT_NEAR(heli.m_rotor_angle - before, 1, 0.01);
}

TEST_F(HelicopterTest, TailLightFlashesAtTheEndOfEverySecond) {
    HelicopterCorax& heli = make(false);
    heli.update(0.85f);
    EXPECT_FLOAT_EQ(density(), 0.001f);
    heli.update(0.075f);
    EXPECT_NEAR(density(), 0.5, 1e-5);
    heli.update(0.1f); // 1.025: the next cycle
    EXPECT_FLOAT_EQ(density(), 0.001f);
    EXPECT_NEAR(heli.m_blink_phase, 0.025, 1e-5);
    // The lamp has a material of its own: the shared one is untouched.
    const Material* shared = MaterialManager::get("light.mat");
    EXPECT_EQ(shared->getParameterSlider(shared->findParameterIDByTag("density")), 0.5f);
}

TEST_F(HelicopterTest, WipersParkAndSweepAboutTheGlassNormal) {
    HelicopterCorax& heli = make(false);
    heli.update(0);
    EXPECT_NEAR(turnOf("wiper_left"), -23.1428, 1e-3);
    EXPECT_NEAR(turnOf("wiper_right"), 23.1428, 1e-3);
    heli.toggle_wiper();
    Engine::get()->beginFrame(0.8f); // the far end of the sweep
    heli.update(0.8f);
    EXPECT_NEAR(turnOf("wiper_left"), -90.704, 1e-3);
    EXPECT_NEAR(turnOf("wiper_right"), 90.704, 1e-3);
    const Material* glass = static_cast<Object*>(node("glass_top_left"))->getSurfaceMaterial(0);
    const int wiper = glass->findParameterIDByTag("wiper");
    EXPECT_EQ(glass->getParameterSlider(wiper), 1);
    heli.toggle_wiper();
    EXPECT_EQ(glass->getParameterSlider(wiper), 0);
}

TEST_F(HelicopterTest, HostFlownModelIgnoresKeysAndForcesButClampsItsInputs) {
    HelicopterCorax& heli = make(false);
    const dmat4 pose = heli.get_world_transform();
    scene.control.keyDown('r');
    heli.m_yaw = 90;
    heli.m_pitch = std::numeric_limits<float>::quiet_NaN();
    heli.m_roll = -30;
    heli.m_collective = 1.5f;
    fly(30);
    EXPECT_EQ(heli.m_yaw, 1);
    EXPECT_EQ(heli.m_pitch, 0);
    EXPECT_EQ(heli.m_roll, -7);
    EXPECT_EQ(heli.m_collective, 1);
    EXPECT_EQ(heli.get_world_transform(), pose);
}

TEST_F(HelicopterTest, KeyboardFlightSteersAndReturnsToNeutral) {
    HelicopterCorax& heli = make(true);
    const auto expectInputs = [&](float collective, float pitch, float roll) {
        heli.update_input(0.1f);
        EXPECT_FLOAT_EQ(heli.m_collective, collective);
        EXPECT_FLOAT_EQ(heli.m_pitch, pitch);
        EXPECT_FLOAT_EQ(heli.m_roll, roll);
    };
    for (const int key : {'r', 'w', 'd'})
        scene.control.keyDown(key);
    heli.m_collective = -0.5f;
    expectInputs(0.003f, 0.15f, -0.15f);
    scene.control.releaseAll();
    heli.set_collective_decay(0.98f);
    expectInputs(0.003f * 0.98f, 0.15f * 0.05f, -0.15f * 0.1f * 0.05f);
}

TEST_F(HelicopterTest, ControllableModelLevelsItselfAndFliesWhereItIsSteered) {
    HelicopterCorax& heli = make(true);
    const dmat4 local = heli.get_world_transform();
    heli.m_prefab->setWgsHPR({0, 20, 10});
    fly(300);
    EXPECT_GT(dot(normalize(heli.get_world_transform().getZ()), local.getZ()), 0.9998); // 1 degree
    heli.m_pitch = heli.m_roll = heli.m_yaw = 1;
    fly(60);
    const vec3 velocity = heli.get_linear_velocity();
    EXPECT_GT(dot(velocity, vec3(local.getY())), 0.1f);                           // forward
    EXPECT_LT(dot(velocity, vec3(local.getX())), -0.01f);                         // to the left
    EXPECT_GT(dot(heli.m_body->getAngularVelocity(), vec3(local.getZ())), 0.01f); // and round
}

TEST(FlightModel, AttitudeIsLimitedAndRotationTowardsTheLimitSlowsDown) {
    EXPECT_EQ(limitAttitude({30, -30, 400}, 1, 1), dvec3(25, -17, 400));
    EXPECT_EQ(limitAttitude({10, 10, 0}, 0, 1), dvec3(9.8, 10, 0));         // roll is neutral
    EXPECT_EQ(limitRate(-1, 25, SLOW_ANGLE_X, MAX_ANGLE_X), 0);             // at the limit: stopped
    EXPECT_FLOAT_EQ(limitRate(-1, 20, SLOW_ANGLE_X, MAX_ANGLE_X), -0.875f); // half way: 1 − 1/8
    EXPECT_EQ(limitRate(1, 20, SLOW_ANGLE_X, MAX_ANGLE_X), 1);              // away from it
    EXPECT_FLOAT_EQ(limitRate(1, -12, SLOW_ANGLE_Y, MAX_ANGLE_Y), 0.875f);
}

TEST_F(HelicopterTest, AMissingPrefabIsNamed) {
    make(false, "none.prefab");
    ASSERT_EQ(scene.log.lines.size(), 2u); // why, and what follows from it
    EXPECT_EQ(scene.log.lines[1],
              "HelicopterCorax::HelicopterCorax: \"none.prefab\" can not be loaded");
}

} // namespace
