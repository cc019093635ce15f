// SPDX-License-Identifier: MIT

// How ships float and steam, against closed forms and over long runs.

#include "ShipScene.h"
#include "ig/physics/Body.h"
#include "testkit/LogCapture.h"

#include <gtest/gtest.h>
#include <random>

namespace {

using namespace ig;

constexpr double G = 9.80665;
constexpr float H = 1 / 60.0f; ///< one physics substep

struct BoxTest : testing::Test {
    static constexpr double X = 10, Y = 70, Z = 4, VOLUME = X * Y * Z, MASS = 2e5;
    static constexpr double FULL_LIFT = G * VOLUME * 100;

    /// A box whose points are all immersed by the share `r` as long as it is level: their feet
    /// stand half its height, along the earth's axis, below its middle.
    Object* box(double r) {
        auto* object = new Object(NODE_DUMMY);
        auto* body = new BodyRigid(static_cast<float>(MASS), {});
        body->addShape(Shape::createBox(vec3(dvec3(X, Y, Z))));
        object->setBody(body);
        scene.place(object, Z / 2 * std::sin(LATITUDE * DEG_TO_RAD<double>) - Z * r);
        return object;
    }
    /// Force and torque on a body in its own axes, found from what one substep does to it, without
    /// gravity and damping.
    struct Push {
        dvec3 force, torque;
    };
    Push step(Object* object) {
        const BodyRigid& body = *object->getBodyRigid();
        const dmat3 to_body = transpose(object->getWorldTransform().getMat3());
        const dvec3 gravity = to_body * object->getWGSTransform().getZ() * -G;
        const dvec3 v(body.getLinearVelocity()), w(body.getAngularVelocity());
        scene.world.updatePhysics(H);
        const double h = static_cast<double>(H);
        const auto gained = [&](const vec3& now, const dvec3& before, float damping) {
            return to_body * (dvec3(now) * (1 + static_cast<double>(damping) * h) - before) / h;
        };
        const dvec3 turn = gained(body.getAngularVelocity(), w, body.getAngularDamping());
        const Push push = {
            (gained(body.getLinearVelocity(), v, body.getLinearDamping()) - gravity) * MASS,
            dvec3(turn.x * (Y * Y + Z * Z), turn.y * (X * X + Z * Z), turn.z * (X * X + Y * Y)) *
                (MASS / 12)};
        scene.world.removeNode(object);
        return push;
    }
    ShipScene scene;
};

TEST_F(BoxTest, WaterLiftsAlongTheBoxsUpWithTheSquareOfTheImmersionAndBrakes) {
    struct Case {
        double r, roll;
        dvec3 v; ///< own axes
    };
    for (const auto& [r, roll, v] : {Case{-0.5, 0, {}},
                                     {0.25, 0, {}},
                                     {0.5, 0, {2, 3, -1}},
                                     {1, 0, {2, 3, -1}},
                                     {3, 20, {}}}) {
        Object* object = box(r);
        object->setWgsHPR({0, 0, roll});
        BodyRigid& body = *object->getBodyRigid();
        body.setLinearVelocity(vec3(object->getWGSTransform().getMat3() * v));
        Ship ship(object, scene.sea);
        ship.update();
        const double s = std::clamp(r, 0.0, 1.0);
        EXPECT_NEAR(ship.getBuoyancy()->getSubmerged(), s, 1e-4);
        EXPECT_NEAR(static_cast<double>(body.getLinearDamping()), 0.1 * s, 1e-4);
        EXPECT_NEAR(static_cast<double>(body.getAngularDamping()), 1.2 * s, 1e-3);
        const dvec3 points = v * (-24 * 0.3 * s * s * MASS); // in all directions, and the hull
        const dvec3 hull = dvec3(v.x, v.y, 0) * (-length(v) * s * 4000); // horizontally
        const dvec3 expected = dvec3(0, 0, FULL_LIFT * s * s) + points + hull;
        EXPECT_LT(length(step(object).force - expected), 800 + 600 * length(v)) << r; // of 54,000 N
    }
}

// Strongest half immersed, nothing in the air or under water: (0.5 − |0.5 − r|)², here `share`.
TEST_F(BoxTest, KeysPushTurnHeelAndTrimByTheirShare) {
    struct Case {
        int key;
        double r, ahead; ///< force ahead for each m³ and share
        dvec3 torque;    ///< for a whole share: trim, heel, turn
    };
    const Case CASES[] = {{KEY_UP, 0.7, 1000, {2000, 0, 0}},
                          {KEY_DOWN, 0.5, -2000, {-2000, 0, 0}},
                          {KEY_LEFT, 0.5, 0, {0, -3000, 5400}},
                          {KEY_RIGHT, 0.3, 0, {0, 3000, -5400}}};
    const auto push = [&](double r) {
        Object* object = box(r);
        Ship ship(object, scene.sea);
        ship.setControlMode(1);
        ship.update();
        return step(object);
    };
    for (const Case& c : CASES) {
        const Push without = push(c.r);
        scene.control.keyDown(c.key);
        const Push with = push(c.r);
        scene.control.keyUp(c.key);
        scene.control.endFrame(); // a press counts to the end of its frame
        const double share = std::pow(0.5 - std::abs(0.5 - c.r), 2);
        const dvec3 force(0, c.ahead * VOLUME * share, 0);
        EXPECT_LT(length(with.force - without.force - force), 500) << c.key << ' ' << c.r;
        EXPECT_LT(length(with.torque - without.torque - c.torque * share), 20) << c.key;
    }
}

TEST_F(BoxTest, WithoutABoxItIsInertAndSaysSo) {
    LogCapture log;
    BodyRigid ball(10, {});
    ball.addShape(Shape::createSphere(1));
    Buoyancy(&ball, scene.sea).update();
    EXPECT_EQ(log.lines, std::vector<std::string>{"Buoyancy::Buoyancy:first shape must be box"});
}

// ------------------------------------------------------------------ the project's ships

struct Fleet {
    const char* path;
    float thrust;
    double volume, mass;
};
const Fleet FLEET[] = {{ShipScene::FRIGATE, 700, 20 * 160 * 4, 156800},
                       {ShipScene::LANDING_SHIP, 300, 16 * 130 * 4, 65229}};

/// Where thrust meets drag: the root of s²VP = 7.2 m s² v + 4000 s v² + 0.1 s m v.
double cruisingSpeed(const Fleet& f) {
    const double s = std::sqrt(f.mass / (100 * f.volume));
    const double a = 4000 * s, b = (7.2 * s + 0.1) * s * f.mass;
    const double thrust = s * s * f.volume * static_cast<double>(f.thrust);
    return (std::sqrt(b * b + 4 * a * thrust) - b) / (2 * a);
}

TEST(Ships, FloatStillAtTheirWaterlineAndSteamAtTheSpeedOfTheClosedForm) {
    for (const Fleet& f : FLEET) {
        ShipScene scene;
        Ship& ship = scene.addShip(f.path, f.thrust);
        const auto run = [&](int mode) {
            ship.setControlMode(mode);
            for (int i = 0; i < 60 * 60; i++)
                scene.frame(H);
            return ShipMotion(ship);
        };
        const ShipMotion still = run(0);
        EXPECT_NEAR(ship.getBuoyancy()->getSubmerged(), std::sqrt(f.mass / (100 * f.volume)),
                    0.002);
        EXPECT_NEAR(still.altitude, 0, 0.01); // the hull is drawn for that waterline
        EXPECT_NEAR(still.hpr.y, 0, 0.1);
        EXPECT_LT(length(still.velocity), 0.02);

        const ShipMotion ahead = run(2);
        EXPECT_NEAR(ahead.velocity.y, cruisingSpeed(f), 0.05 * cruisingSpeed(f));
        EXPECT_NEAR(ahead.velocity.x, 0, 0.05);
        EXPECT_NEAR(ahead.hpr.z, 0, 0.1);
    }
}

TEST(Ships, StayAfloatUprightAndOnCourseInAVeryRoughSeaAtEveryFrameRate) {
    for (const float fixed : {1 / 144.0f, 0.1f, 0.0f}) { // 0: random, with stalls
        SCOPED_TRACE(fixed);
        ShipScene scene;
        scene.sea->m_significant_height = 4;
        scene.sea->m_peak_period = 9.6;
        for (const Fleet& f : FLEET)
            scene.addShip(f.path, f.thrust);
        std::mt19937 random(3);
        std::uniform_real_distribution<float> jitter(0.005f, 0.03f), stall(0.2f, 0.5f);
        for (double t = 0; t < 120;) {
            float dt = fixed;
            if (dt == 0) dt = random() % 100 == 0 ? stall(random) : jitter(random);
            scene.frame(dt);
            t += static_cast<double>(dt);
            if (t < 20) continue; // settled
            for (const auto& ship : scene.ships) {
                const ShipMotion motion(*ship);
                const float immersion = ship->getBuoyancy()->getSubmerged();
                ASSERT_LT(std::abs(motion.hpr.z), 5) << t;
                ASSERT_LT(std::abs(motion.hpr.y), 4) << t;
                ASSERT_TRUE(immersion > 0.05f && immersion < 0.5f) << immersion;
                ASSERT_GT(motion.velocity.y, 1) << t;
                ASSERT_NEAR(std::remainder(motion.hpr.x, 360), 0, 10) << t;
            }
        }
    }
}

} // namespace
