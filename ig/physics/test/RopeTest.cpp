// SPDX-License-Identifier: MIT
#include "ig/physics/BodyRope.h"

#include "Level.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/physics/Joint.h"
#include "ig/physics/Physics.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <random>

namespace ig {
namespace {

const EllipsoidModel EARTH;
const dmat4 PLACE = EARTH.getWGSTransform(EARTH.toWorld({-155.06, 19.71, 300}));

/// A cable, hung from a body that the test moves, with a load of 80 kg.
struct Rig {
    explicit Rig(float length = 4) : rope(length, 1.5f) {
        load.addShape(Shape::createSphere(0.3f));
        joint = Joint::create("load", &load, &rope);
        rope.setAnchor(&anchor);
        anchor.setTransform(PLACE);
        for (Body* body :
             {static_cast<Body*>(&anchor), static_cast<Body*>(&rope), static_cast<Body*>(&load)})
            physics.addBody(body);
    }
    /// Anchor `p` metres east, north and up of the start.
    void frame(const dvec3& p, double dt) {
        anchor.setTransform(PLACE * translate(p));
        physics.update(static_cast<float>(dt));
    }
    /// Load relative to the anchor: east, north, up.
    dvec3 relative() const {
        return transpose(PLACE.getMat3()) *
               (load.getTransform().getTranslate() - anchor.getTransform().getTranslate());
    }
    double altitude() const { return EARTH.getAltitude(load.getTransform().getTranslate()); }

    Physics physics;
    BodyRigid anchor{0, {}};
    BodyRope rope;
    BodyRigid load{80, {}};
    Joint* joint;
};

/// What an observer on the helicopter sees of the load while the anchor flies `path`, sent at 100
/// Hz and shown in frames of about 1/60 s.
struct Watch {
    double acceleration = 0; ///< the greatest, relative to the anchor, m/s²
    double angle = 0;        ///< the greatest off the vertical, degrees
    double stretch = 0;      ///< the greatest length beyond the cable's, m
};

Watch fly(Rig& rig, double seconds, const std::function<dvec3(double)>& path,
          const std::function<void(double)>& command = {}, double stall = 0) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> jitter(-0.002, 0.002);
    Watch watch;
    dvec3 before, before_that;
    double last_dt = 0;
    int frames = 0;
    for (double t = 0; t < seconds; frames++) {
        const double dt = frames % 200 == 199 && stall > 0 ? stall : 1 / 60.0 + jitter(random);
        t += dt;
        if (command) command(t);
        const double record = std::floor((t + jitter(random)) * 100) / 100;
        rig.frame(path(record), dt);
        const dvec3 r = rig.relative();
        if (frames > 1) {
            const dvec3 a =
                ((r - before) / dt - (before - before_that) / last_dt) * 2.0 / (dt + last_dt);
            watch.acceleration = std::max(watch.acceleration, length(a));
        }
        watch.angle = std::max(watch.angle, std::atan2(std::hypot(r.x, r.y), -r.z) * 57.29578);
        watch.stretch = std::max(watch.stretch, length(r) - rig.rope.getHangingLength());
        before_that = before;
        before = r;
        last_dt = dt;
    }
    return watch;
}

TEST(Rope, LoadIsSmoothUnderAJitteringHostThroughStallsJumpsAndLengthSteps) {
    for (const bool rough : {false, true}) {
        Rig rig((rough ? 2 : 9) / 1.5f);
        double shortest = 1e9, longest = 0;
        const Watch watch = fly(
            rig, 30,
            [&](double t) {
                return rough ? dvec3(t > 10 ? 1000 : 0, 60 * t, t > 20 ? 1000 : 0)
                             : dvec3(0, 60 * t, 0);
            },
            [&](double t) {
                if (rough) rig.rope.setLength((t > 5 && t < 17 ? 20 : 2) / 1.5f);
                shortest = std::min(shortest, rig.rope.getHangingLength());
                longest = std::max(longest, rig.rope.getHangingLength());
            },
            rough ? 0.2 : 0);
        EXPECT_LT(watch.acceleration, 15);
        EXPECT_LT(watch.stretch, 1e-6);
        EXPECT_TRUE(rough || watch.angle < 10); // put out in flight, it does not fall behind
        EXPECT_NEAR(longest, rough ? 20 : 9, 1e-3);
        EXPECT_GT(shortest, rough ? 1.9 : 8.9); // reeling in doesn't overshoot
        EXPECT_NEAR(rig.rope.getHangingLength(), rough ? 2 : 9, 1e-3);
    }
}

TEST(Rope, HangsBackAsFarAsTheAccelerationTells) {
    Rig rig(4);
    fly(rig, 25, [](double t) { return dvec3(0, t * t, 0); }); // 2 m/s²
    const dvec3 r = rig.relative();
    EXPECT_NEAR(std::atan2(-r.y, -r.z), std::atan2(2, 9.80665), 0.02);
    EXPECT_NEAR(length(r), 6, 1e-3);
}

TEST(Rope, SwingsWithThePeriodOfAPendulum) {
    Rig rig(8); // 12 m
    // A burst of speed sets it swinging.
    fly(rig, 3, [](double t) { return dvec3(0, 5 * std::max(0.0, t - 1), 0); });
    std::vector<double> crossings;
    double y = rig.relative().y;
    for (int i = 0; i < 60 * 20; i++) {
        rig.frame({0, 10 + 5 * i / 60.0, 0}, 1 / 60.0);
        const double next = rig.relative().y;
        if (y < 0 && next >= 0) crossings.push_back(i / 60.0);
        y = next;
    }
    ASSERT_GE(crossings.size(), 3u);
    // Small swings, damped with 0.4 1/s.
    const double period = 2 * 3.14159265 / std::sqrt(9.80665 / 12 - 0.2 * 0.2);
    EXPECT_NEAR(crossings[2] - crossings[1], period, 0.01 * period);
}

TEST(Rope, BrokenLoadKeepsItsSpeedAndFallsFreely) {
    Rig rig(4);
    fly(rig, 8, [](double t) { return dvec3(0, 60 * t, 0); });
    rig.joint->setBroken(true);
    const vec3 start = rig.load.getLinearVelocity();
    EXPECT_NEAR(dot(dvec3(start), PLACE.getY()), 60, 2);
    const double altitude = rig.altitude();
    for (int i = 0; i < 60; i++)
        rig.frame({0, 480, 0}, 1 / 60.0);
    // Semi-implicit Euler's g h² n (n + 1) / 2, less what the forward speed gains over the round
    // earth, v² / 2R.
    const double rise = dot(dvec3(start), EARTH.getUp(PLACE.getTranslate()));
    EXPECT_NEAR(altitude - rig.altitude(), 9.80665 / 3600 * 60 * 61 / 2 - rise, 0.02);
    rig.joint->setBroken(false); // caught again, wherever it is
    rig.frame({0, 480, 0}, 1 / 60.0);
    EXPECT_NEAR(length(rig.relative()), rig.rope.getHangingLength(), 0.5);
}

TEST(Rope, ElsewhereOnTheEarthItHangsByTheLocalVertical) {
    Rig rig(4);
    fly(rig, 2, [](double) { return dvec3(); });
    const dmat4 far = EARTH.getWGSTransform(EARTH.toWorld({120, -60, 100}));
    rig.anchor.setTransform(far);
    rig.physics.update(1 / 60.0f);
    const dvec3 r =
        transpose(far.getMat3()) * (rig.load.getTransform().getTranslate() - far.getTranslate());
    EXPECT_LT(length(r - dvec3(0, 0, -6)), 0.01);
    // The chain runs from the anchor to the load without a kink.
    EXPECT_LT(length(rig.rope.getPoint(0)), 1e-9);
    EXPECT_LT(length(rig.rope.getPoint(BodyRope::SEGMENTS / 2) - dvec3(0, 0, -3)), 0.3);
    EXPECT_LT(length(rig.rope.getPoint(BodyRope::SEGMENTS) - r), 1e-6);
}

TEST(Rope, LandingLoadStandsOnTheSurfaceWhileTheCableIsSlack) {
    Level surfaces;
    Rig rig(6); // 9 m
    rig.physics.setSurfaces(&surfaces);
    rig.load.setLanding(true);
    surfaces.sea = 295; // 5 m below the anchor
    const auto foot = [&] { return rig.altitude() - 0.3; };
    const auto hover = [&](double seconds) { fly(rig, seconds, [](double) { return dvec3(); }); };
    hover(2);
    EXPECT_NEAR(length(rig.relative()), 9, 1e-6); // it sinks in the sea
    rig.load.setFloating(true);
    rig.frame({20, 0, 0}, 1 / 60.0); // put elsewhere, it is on the surface
    hover(1);
    EXPECT_NEAR(foot(), 295, 1e-3);
    for (int i = 0; i < 300; i++) { // on a swell
        surfaces.sea = 295 + std::sin(i * 6.2832 / 300);
        rig.frame({}, 1 / 60.0);
        EXPECT_NEAR(foot(), surfaces.sea, 1e-3);
        EXPECT_GT(dot(rig.load.getTransform().getZ(), PLACE.getZ()), 0.99999); // upright
        // Slack cable gathers on the load.
        EXPECT_GT(rig.rope.getPoint(BodyRope::SEGMENTS - 1).z, rig.relative().z - 1e-3);
    }
    // A climb at 5 m/s, shown in steps of 0, 1 or 2 records: it stands until the cable is taut.
    surfaces.sea = 295;
    for (int i = 0; i < 180; i++) {
        const double height = 0.05 * std::floor(i / 60.0 * 100 + 0.4 * std::sin(i * 7.0));
        rig.frame({0, 0, height}, 1 / 60.0);
        EXPECT_TRUE(height > 3 || std::abs(foot() - 295) < 1e-3) << height;
        EXPECT_LE(length(rig.relative()), 9 + 1e-6);
    }
    EXPECT_GT(foot(), 300);
    // Put where it would hang below the ground, at last without room to stand on it.
    surfaces.ground = 400;
    for (const double height : {105.0, 100.4}) {
        rig.frame({20 * height, 0, height}, 1 / 60.0);
        EXPECT_NEAR(rig.relative().z, height > 101 ? -4.7 : -BodyRope::MIN_LENGTH, 0.5);
        EXPECT_GT(dot(rig.load.getTransform().getZ(), PLACE.getZ()), 0.99);
    }
}

TEST(Rope, LengthsAndMassesFromAHostAreTakenWithCare) {
    Rig rig(4);
    rig.rope.setLength(std::numeric_limits<float>::quiet_NaN());
    rig.rope.setLength(std::numeric_limits<float>::infinity());
    EXPECT_EQ(rig.rope.getLength(), 4);
    rig.rope.setLength(-5);
    fly(rig, 6, [](double) { return dvec3(); });
    EXPECT_NEAR(rig.rope.getHangingLength(), BodyRope::MIN_LENGTH, 1e-3);
    rig.rope.setLength(3e38f); // runs out as fast as any other
    fly(rig, 6, [](double) { return dvec3(); });
    EXPECT_TRUE(isFinite(rig.relative()));
    EXPECT_LT(rig.rope.getHangingLength(), 60);

    for (float mass : {0.0f, -5.0f, std::nanf("")}) {
        rig.load.getShape(0)->setMass(mass);
        EXPECT_EQ(rig.load.getMass(), 1);
    }
    rig.anchor.addShape(Shape::createSphere(1));
    rig.anchor.getShape(0)->setMass(10);
    EXPECT_EQ(rig.anchor.getMass(), 0); // a static body stays static
}

TEST(Rope, JointGoesWithEitherBody) {
    auto rope = std::make_unique<BodyRope>(2, 1);
    {
        BodyRigid load(5, {});
        Joint::create("a", &load, rope.get());
    }
    EXPECT_EQ(rope->getNumJoints(), 0);
    BodyRigid load(5, {});
    Joint::create("b", &load, rope.get());
    rope.reset();
    EXPECT_EQ(load.getNumJoints(), 0);
    EXPECT_EQ(Joint::create("c", &load, nullptr), nullptr);
}

} // namespace
} // namespace ig
