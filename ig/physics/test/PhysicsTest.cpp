// SPDX-License-Identifier: MIT
#include "ig/physics/Physics.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "ig/physics/Body.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace ig {
namespace {

const EllipsoidModel EARTH;

dmat4 place(double altitude) {
    return EARTH.getWGSTransform(EARTH.toWorld({-155.06, 19.71, altitude}));
}
double altitude(const Body& body) { return EARTH.getAltitude(body.getTransform().getTranslate()); }

/// A 2 m box of 1000 kg.
struct Box : BodyRigid {
    explicit Box(float mass = 1000, vec3 center = {}) : BodyRigid(mass, center) {
        addShape(Shape::createBox({2, 2, 2}));
    }
};

TEST(Physics, FreeFallFollowsTheClosedFormOfItsOwnIntegratorAndLongFramesAreClamped) {
    Physics physics;
    Box box;
    const dmat4 start = place(1000);
    box.setTransform(start);
    physics.addBody(&box);
    for (int i = 0; i < 120; i++)
        physics.update(1 / 60.0f);
    // Semi-implicit Euler: g h² n (n + 1) / 2 with n = 120 substeps of 1/60 s.
    const double fall = 9.80665 / 3600 * 120 * 121 / 2;
    // Along the ellipsoid's normal, 4 cm from the way to the earth's centre; the frame time is
    // single precision.
    const dvec3 end = start.getTranslate() - start.getZ() * fall;
    EXPECT_LT(length(box.getTransform().getTranslate() - end), 1e-4);
    physics.update(5);
    EXPECT_NEAR(length(box.getLinearVelocity()), 9.80665 * 2.2, 1e-3);
}

TEST(Physics, DampingAboveOneIsNotClamped) {
    Physics physics;
    Box box;
    box.setTransform(place(1000));
    physics.addBody(&box);
    box.setAngularDamping(3.5f);
    box.setAngularVelocity({1, 0, 0});
    for (int i = 0; i < 60; i++)
        physics.update(1 / 60.0f);
    EXPECT_NEAR(length(box.getAngularVelocity()), std::pow(1 + 3.5 / 60, -60), 1e-4);
    box.setAngularDamping(-70); // would turn the motion round, or poison it
    box.setAngularDamping(std::nanf(""));
    EXPECT_EQ(box.getAngularDamping(), 3.5f);
}

TEST(Physics, ForcesAndVelocitiesAtAPointAreTakenAboutTheCentreOfMassForOneFrame) {
    // Lying over, with its stiff axes across Y.
    const dmat4 pose = place(1000) * dmat4(dquat(dvec3(1, 0, 0), 60), {});
    const dvec3 tip = pose * dvec3(0, 0, 2.5); // 2 m above the centre of mass
    const vec3 force = vec3(pose.getX()) * 6000.0f;
    for (const bool world_point : {false, true}) {
        Physics physics;
        BodyRigid box(1000, {0, 0, 0.5f});
        box.addShape(Shape::createBox({2, 40, 2}, mat4(translate(dvec3(0, 0, 0.5)))));
        box.setTransform(place(1000));
        box.addWorldForce(tip, {1e9f, 0, 0}); // outside a world it moves nothing
        EXPECT_EQ(box.getWorldVelocity(tip), vec3_zero);
        physics.addBody(&box);
        box.setTransform(pose);
        box.addWorldForce(tip, {1e9f, 0, 0});
        physics.update(0); // in no time it comes to nothing
        box.addWorldForce({std::nan(""), 0, 0}, {1e9f, 0, 0});
        if (world_point)
            box.addWorldForce(tip, force);
        else
            box.addForce(vec3(pose.getZ()) * 2.0f, force);
        physics.update(1 / 60.0f);
        EXPECT_NEAR(dot(box.getLinearVelocity(), vec3(pose.getX())), 6.0 / 60, 1e-5);
        // A box has m (a² + b²) / 12; the torque Z × X points along Y.
        const double spin = 12000 / (1000 * (2.0 * 2 + 2 * 2) / 12) / 60;
        EXPECT_NEAR(dot(box.getAngularVelocity(), vec3(pose.getY())), spin, 1e-4);
        const vec3 v = box.getWorldVelocity(box.getTransform() * dvec3(0, 0, 2.5));
        EXPECT_NEAR(dot(v, vec3(pose.getX())), 6.0 / 60 + spin * 2, 1e-3);
        physics.update(1 / 60.0f); // it is over
        EXPECT_NEAR(dot(box.getAngularVelocity(), vec3(pose.getY())), spin, 1e-4);
    }
}

TEST(Physics, DisabledBodyIsNeverMovedByForcesOrPreserveTransform) {
    Physics physics;
    Box box;
    const dmat4 pose = place(100);
    box.setTransform(pose);
    physics.addBody(&box);
    physics.update(1 / 60.0f);
    box.setEnabled(false);
    box.setTransform(pose);
    box.addForce({1e9f, 0, 0});
    box.addTorque({1e9f, 0, 0});
    box.setPreserveTransform(place(500));
    physics.update(0.1f);
    EXPECT_EQ(box.getTransform(), pose);
    box.setEnabled(true); // starts at rest from where it is
    EXPECT_NEAR(altitude(box), 100, 1e-6);
    EXPECT_EQ(length(box.getLinearVelocity()), 0);
    box.setLinearVelocity({3, 0, 0});
    box.setPreserveTransform(place(200));
    EXPECT_EQ(box.getLinearVelocity().x, 3);
    EXPECT_NEAR(altitude(box), 200, 1e-6);
}

TEST(Physics, AbsurdInputLeavesTheBodyWhereItIs) {
    Physics physics;
    Box box(-5); // a negative mass would fall upwards: static instead
    box.setTransform(place(10));
    physics.addBody(&box);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    box.addForce({nan, 0, 0});
    box.setTransform(dmat4(dmat3(), {std::nan(""), 0, 0}));
    physics.update(nan);
    physics.update(-1);
    physics.update(1);
    EXPECT_NEAR(altitude(box), 10, 1e-6);
}

/// A spring whose force is computed once per frame, as floating bodies have it: whatever the frame
/// rate, its swing doesn't grow, and gravity's share leaves its mean where it belongs.
TEST(Physics, SpringDrivenOncePerFrameKeepsItsSwingAtAnyFrameRate) {
    const double omega = 4, sag = 9.80665 / (omega * omega);
    for (const float dt : {1 / 144.0f, 1 / 60.0f, 1 / 30.0f, 0.1f, 0.2f}) {
        Physics physics;
        Box box;
        box.setTransform(place(1000 - sag + 0.5));
        physics.addBody(&box);
        double low = 1e9, high = -1e9, mean = 0;
        const int frames = static_cast<int>(60 / dt);
        for (int i = 0; i < frames; i++) {
            const double deflection = 1000 - altitude(box);
            const vec3 up(EARTH.getUp(box.getTransform().getTranslate()));
            box.addForce(up * static_cast<float>(1000 * omega * omega * deflection));
            physics.update(dt);
            const double swing = altitude(box) - (1000 - sag);
            low = std::min(low, swing);
            high = std::max(high, swing);
            mean += swing / frames;
        }
        EXPECT_NEAR(high, 0.5, 0.06) << dt;
        EXPECT_NEAR(low, -0.5, 0.06) << dt;
        EXPECT_NEAR(mean, 0, 0.03) << dt;
    }
}

} // namespace
} // namespace ig
