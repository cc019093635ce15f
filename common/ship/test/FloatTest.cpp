// SPDX-License-Identifier: MIT

// How ships float and steam, against closed forms and over long runs.

#include "ShipScene.h"
#include "common/ship/Buoyancy.h"
#include "common/ship/Flotation.h"
#include "testkit/LogCapture.h"

#include <algorithm>
#include <random>

namespace {

using namespace ig;

constexpr double SUBSTEP = 1 / 60.0; ///< of the physics

struct CubeTest : ShipScene {
    static constexpr double EDGE = 10, MASS = 1e5;

    /// Force and torque, in its own axes, on a cube that heads north and steers by the keyboard,
    /// beside what damps it: found from what one substep does. Its points are all immersed by the
    /// share `r` as long as it is level: their feet stand half its height, along the earth's axis,
    /// below its middle.
    std::pair<dvec3, dvec3> push(double r, double roll, const dvec3& v, int key) {
        auto* cube = new Object(NODE_DUMMY);
        auto* body = new BodyRigid(static_cast<float>(MASS), {});
        body->addShape(Shape::createBox(vec3(dvec3(EDGE, EDGE, EDGE))));
        cube->setBody(body);
        place(cube, EDGE / 2 * std::sin(LATITUDE * DEG_TO_RAD<double>) - EDGE * r);
        cube->setWgsHPR({0, 0, roll});
        const dmat3 axes = cube->getWorldTransform().getMat3(), own = transpose(axes);
        body->setLinearVelocity(vec3(axes * v));
        Ship ship(cube, sea);
        ship.setControlMode(1);
        control.keyDown(key);
        ship.update();
        control.releaseAll();
        const double s = std::clamp(r, 0.0, 1.0);
        EXPECT_NEAR(body->getLinearDamping(), 0.1 * s, 1e-5);
        EXPECT_NEAR(body->getAngularDamping(), 1.2 * s, 1e-4);
        world.updatePhysics(static_cast<float>(SUBSTEP));
        const dvec3 gained = own * dvec3(body->getLinearVelocity()) * (1 + 0.1 * s * SUBSTEP) - v;
        const dvec3 turned = own * dvec3(body->getAngularVelocity()) * (1 + 1.2 * s * SUBSTEP);
        world.removeNode(cube);
        return {gained * (MASS / SUBSTEP), turned * (MASS * EDGE * EDGE / 6 / SUBSTEP)};
    }
};

TEST_F(CubeTest, WaterLiftsWithTheSquareOfTheImmersionAndBrakesAndKeysPushTurnHeelAndTrim) {
    struct Case {
        double r, roll;
        dvec3 v; ///< own axes
        int key;
        double ahead; ///< force by the key for a whole share
        dvec3 torque; ///< likewise: trim, heel, turn
    };
    for (const auto& [r, roll, v, key, ahead, torque] :
         {Case{0.3, 0, {}, KEY_RIGHT, 0, {0, 3000, -5400}},
          {0.5, 0, {2, 3, -1}, KEY_DOWN, -2e6, {-2000, 0, 0}},
          {0.7, 0, {}, KEY_LEFT, 0, {0, -3000, 5400}},
          {3, 20, {}, KEY_UP, 1e6, {2000, 0, 0}}}) {
        const double s = std::clamp(r, 0.0, 1.0), weight = 9.80665 * MASS;
        const dvec3 fall = dquat(0, -roll, 0) * dvec3(0, 0, -weight);
        const dvec3 lift(0, 0, weight * s * s);              // of 100 kg for each m³
        const dvec3 points = v * (-24 * 0.3 * s * s * MASS); // in all directions, and the hull
        const dvec3 hull = dvec3(v.x, v.y, 0) * (-length(v) * s * 4000); // horizontally
        const auto [force, twist] = push(r, roll, v, 0);
        EXPECT_LT(length(force - fall - lift - points - hull), 300 + 300 * length(v)) << r;
        // Strongest half immersed, nothing under water.
        const double share = std::pow(0.5 - std::abs(0.5 - s), 2);
        const auto [steered_force, steered_twist] = push(r, roll, v, key);
        EXPECT_LT(length(steered_force - force - dvec3(0, ahead * share, 0)), 300) << r;
        EXPECT_LT(length(steered_twist - twist - torque * share), 20) << r;
    }
}

TEST_F(CubeTest, WhatIsNoBoxIsInertAndSaysSo) {
    LogCapture log;
    BodyRigid ball(10, {});
    ball.addShape(Shape::createSphere(1));
    Buoyancy(&ball, sea).update();
    EXPECT_EQ(log.lines, std::vector<std::string>{"Buoyancy::Buoyancy:first shape must be box"});
}

struct FlotationTest : ShipScene {
    /// A ship of that mass in a box of 100 x 14 x 4 m, heading north at a latitude; the box's
    /// middle is its origin.
    Object* makeShip(float mass, double latitude) {
        auto* ship = new Object(NODE_DUMMY);
        auto* body = new BodyRigid(mass, {});
        body->addShape(Shape::createBox({14, 100, 4}));
        ship->setBody(body);
        ship->setName("barge");
        place(ship, 0);
        ship->setWgsPosition({LONGITUDE, latitude, 0});
        return ship;
    }
    std::string tell(float mass, double latitude) {
        LogCapture log;
        tellFlotation(*makeShip(mass, latitude));
        return log.lines.empty() ? "" : log.lines[0];
    }
};

TEST_F(FlotationTest, TellsWhereABoxComesToRestAtAnyLatitude) {
    for (const auto& [mass, latitude] :
         {std::pair(60e3f, 19.7), {150e3f, -45.0}, {500e3f, 66.0}, {30e3f, -60.0}}) {
        Ship ship(makeShip(mass, latitude), sea);
        for (int i = 0; i < 60 * 60; i++) {
            Engine::get()->beginFrame(static_cast<float>(SUBSTEP));
            ship.update();
            world.updatePhysics(static_cast<float>(SUBSTEP));
        }
        const Flotation told(dvec3(14, 100, 4), static_cast<double>(mass), latitude);
        const double middle = EARTH.getAltitude(ship.getObject()->getWorldPosition());
        EXPECT_NEAR(told.middle, middle, 0.01) << latitude;
        EXPECT_NEAR(told.massFor(middle), static_cast<double>(mass), 0.01 * mass);
    }
}

TEST_F(FlotationTest, NamesAShipThatSinksOrIsAwashWithWhatWouldFloat) {
    // At 560 t it is all under water; (1 + sin 19.7°)²/4 of that leaves the deck at the water.
    EXPECT_EQ(
        tell(3000e3f, 19.7),
        "Ship: \"barge\" sinks: its 3000 t are more than the 560 t that its box of 14 x 100 x "
        "4 m can float: its deck is out of the water below 250.3 t, and its origin lies in "
        "the water with 15.91 t");
    EXPECT_NE(tell(500e3f, 19.7).find("deck 1.11 m under water: draught 5.11 m"),
              std::string::npos);
    EXPECT_NE(tell(60e3f, 19.7).find("origin 0.64 m below the water"), std::string::npos);
    EXPECT_EQ(tell(16e3f, 19.7), ""); // as it is drawn
    EXPECT_EQ(tell(0, 19.7), "");     // stays where it is
}

// ------------------------------------------------------------------ the project's ships

/// Where s² = mass / (100 · volume), and the root v of
/// s² · volume · thrust = 7.2 · mass · s² · v + 4000 · s · v² + 0.1 · s · mass · v.
struct Kind {
    const char* path;
    float thrust; ///< that it has in the scene
    double immersion, speed;
};
constexpr Kind KINDS[] = {
    {FRIGATE, 700, 0.35, 7.14},
    {"data/PELMAR_PROJECT/prefabs/LNJ_2023/LNJ_2023.prefab", 300, 0.28, 4.48}};

struct ShipsTest : ShipScene {
    /// Both, 500 m abreast.
    ShipsTest() {
        for (int i : {0, 1}) {
            auto* prefab = new ObjectPrefab(KINDS[i].path);
            prefab->moveBodyFromRoot();
            place(prefab, 0);
            prefab->setWgsPosition({LONGITUDE + 0.005 * i, LATITUDE, 0});
            ships[i].emplace(prefab, sea).setThrust(KINDS[i].thrust);
        }
    }
    /// A frame, at whose end `look` is called for each ship with its kind, its object, its velocity
    /// to the east, north and up, and its immersion, which its damping tells.
    template <class Look>
    void frame(double dt, int mode, Look look) {
        Engine::get()->beginFrame(static_cast<float>(dt));
        sea->m_time += dt;
        for (auto& ship : ships) {
            ship->setControlMode(mode);
            ship->update();
        }
        world.updatePhysics(static_cast<float>(dt));
        for (int i : {0, 1}) {
            const Object& object = *ships[i]->getObject();
            const dmat3 to_local = transpose(object.getWGSTransform().getMat3());
            look(KINDS[i], object, to_local * dvec3(ships[i]->getVelocity()),
                 object.getBodyRigid()->getLinearDamping() / 0.1);
        }
    }
    std::optional<Ship> ships[2];
};

TEST_F(ShipsTest, FloatStillAtTheirWaterlineAndSteamAtTheSpeedOfTheClosedForm) {
    for (int i = 1; i <= 2 * 3600; i++)
        frame(SUBSTEP, i <= 3600 ? 0 : 2,
              [i](auto& kind, auto& ship, const dvec3& v, double immersion) {
                  if (i % 3600) return; // not settled
                  const bool still = i == 3600;
                  const dvec3 hpr = ship.getWgsHPR();
                  EXPECT_NEAR(hpr.z, 0, 0.1);
                  EXPECT_LT(length(v - dvec3(0, still ? 0 : kind.speed, 0)), still ? 0.02 : 0.1);
                  EXPECT_NEAR(hpr.y, 0, still ? 0.1 : 1);
                  EXPECT_NEAR(immersion, kind.immersion, still ? 0.002 : 0.02);
                  // The hull is drawn for that waterline.
                  EXPECT_NEAR(EARTH.getAltitude(ship.getWorldPosition()), 0, still ? 0.01 : 0.1);
              });
}

TEST_F(ShipsTest, StayAfloatUprightAndOnCourseInAVeryRoughSeaAtEveryFrameRate) {
    sea->m_rough = true;
    std::mt19937 random(3);
    std::uniform_real_distribution<double> jitter(0.005, 0.03), stall(0.2, 0.5);
    for (const double fixed : {1 / 144.0, 0.1, 0.0}) // 0: random, with stalls
        for (double t = 0, dt = fixed; t < 120; t += dt) {
            if (fixed == 0) dt = random() % 100 == 0 ? stall(random) : jitter(random);
            frame(dt, 2, [t](auto&, auto& ship, const dvec3& v, double immersion) {
                if (t < 20) return; // not settled
                const dvec3 hpr = ship.getWgsHPR();
                ASSERT_TRUE(std::abs(hpr.z) < 5 && std::abs(hpr.y) < 4) << t;
                ASSERT_NEAR(std::remainder(hpr.x, 360), 0, 10) << t;
                ASSERT_GT(v.y, 1) << t;
                ASSERT_TRUE(immersion > 0.05 && immersion < 0.5) << immersion;
            });
        }
}

} // namespace
