// SPDX-License-Identifier: MIT

// How ships float and steam, against closed forms and over long runs.

#include "ShipScene.h"
#include "testkit/LogCapture.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

constexpr double G = 9.80665;
constexpr float H = 1 / 60.0f; ///< one physics substep

struct BoxTest : testing::Test {
    static constexpr double X = 10, Y = 70, Z = 4, VOLUME = X * Y * Z, MASS = 2e5;

    /// A box whose points are all immersed by the share `r` as long as it is level: their feet
    /// stand half its height, along the earth's axis, below its middle.
    Object* box(double r) {
        const double foot = Z / 2 * std::sin(LATITUDE * DEG_TO_RAD<double>);
        return scene.addBox(vec3(dvec3(X, Y, Z)), static_cast<float>(MASS), foot - Z * r);
    }
    /// Force and torque on a body in its own axes, found from what one substep does to it, without
    /// gravity and damping.
    struct Push {
        dvec3 force, torque;
    };
    Push step(const Object* object) {
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
        return {
            (gained(body.getLinearVelocity(), v, body.getLinearDamping()) - gravity) * MASS,
            dvec3(turn.x * (Y * Y + Z * Z), turn.y * (X * X + Z * Z), turn.z * (X * X + Y * Y)) *
                (MASS / 12)};
    }
    ShipScene scene;
};

TEST_F(BoxTest, LiftGrowsWithTheSquareOfTheImmersionAlongTheBoxsOwnUp) {
    const double full = G * VOLUME * 100;
    struct Case {
        double r, roll;
    };
    for (const auto& [r, roll] : {Case{-0.5, 0}, {0.25, 0}, {0.5, 0}, {1, 0}, {3, 0}, {3, 20}}) {
        Object* object = box(r);
        object->setWgsHPR({0, 0, roll});
        Buoyancy buoyancy(object->getBodyRigid(), scene.sea);
        buoyancy.update();
        const double immersed = std::clamp(r, 0.0, 1.0);
        EXPECT_NEAR(buoyancy.getSubmerged(), immersed, 1e-4);
        const dvec3 lift = step(object).force;
        EXPECT_LT(length(lift - dvec3(0, 0, full * immersed * immersed)), full * 3e-4) << r;
        scene.world.removeNode(object);
    }
}

TEST_F(BoxTest, WaterBrakesPointsInAllDirectionsAndTheHullHorizontally) {
    for (const double r : {0.5, 1.0}) {
        Object* object = box(r);
        BodyRigid& body = *object->getBodyRigid();
        const dvec3 v(2, 3, -1); // 3.74 m/s
        body.setLinearVelocity(vec3(object->getWGSTransform().getMat3() * v));
        Ship ship(object, scene.sea);
        ship.update();
        const dvec3 points = v * (-24 * 0.3 * r * r * MASS);
        const dvec3 hull = dvec3(v.x, v.y, 0) * (-std::sqrt(14.0) * r * 4000);
        const dvec3 lift(0, 0, G * VOLUME * 100 * r * r);
        EXPECT_LT(length(step(object).force - points - hull - lift), 3000) << r; // of 54,000 N
        EXPECT_NEAR(static_cast<double>(body.getLinearDamping()), 0.1 * r, 1e-4);
        EXPECT_NEAR(static_cast<double>(body.getAngularDamping()), 1.2 * r, 1e-3);
        scene.world.removeNode(object);
    }
}

// Strongest half immersed, nothing in the air or under water: (0.5 − |0.5 − r|)², here `share`.
TEST_F(BoxTest, KeysPushTurnHeelAndTrimByTheirShare) {
    struct Case {
        int key;
        double r, ahead; ///< force ahead for each m³ and share
        dvec3 torque;    ///< for a whole share: trim, heel, turn
    };
    const Case CASES[] = {
        {KEY_UP, 0.5, 1000, {2000, 0, 0}},    {KEY_DOWN, 0.5, -2000, {-2000, 0, 0}},
        {KEY_LEFT, 0.5, 0, {0, -3000, 5400}}, {KEY_RIGHT, 0.3, 0, {0, 3000, -5400}},
        {KEY_UP, 0.7, 1000, {2000, 0, 0}},    {KEY_UP, 0, 1000, {2000, 0, 0}},
        {KEY_UP, 1, 1000, {2000, 0, 0}}};
    const auto push = [&](double r) {
        Object* object = box(r);
        Ship ship(object, scene.sea);
        ship.setControlMode(1);
        ship.update();
        const Push result = step(object);
        scene.world.removeNode(object);
        return result;
    };
    for (const Case& c : CASES) {
        const Push without = push(c.r);
        scene.control.keyDown(c.key);
        const Push with = push(c.r);
        scene.control.keyUp(c.key);
        const double share = std::pow(0.5 - std::abs(0.5 - c.r), 2);
        const dvec3 force(0, c.ahead * VOLUME * share, 0);
        EXPECT_LT(length(with.force - without.force - force), 500) << c.key << ' ' << c.r;
        EXPECT_LT(length(with.torque - without.torque - c.torque * share), 20)
            << c.key << ' ' << c.r;
    }
    scene.control.keyDown(KEY_DOWN);
    scene.control.keyDown(KEY_LEFT);
    Ship ship(box(0.5), scene.sea);
    ship.setControlMode(1);
    ship.update_control();
    EXPECT_NEAR(ship.getControl().x, -std::sqrt(0.5), 1e-6); // never longer than 1
    EXPECT_NEAR(ship.getControl().y, std::sqrt(0.5), 1e-6);
}

TEST_F(BoxTest, PointsStandInThreeColumnsOfEightFromOneEndToTheOther) {
    const Buoyancy buoyancy(box(0.5)->getBodyRigid(), scene.sea);
    ASSERT_EQ(buoyancy.getPoints().size(), 24);
    for (int i = 0; i < 24; i++)
        EXPECT_EQ(buoyancy.getPoints()[i], dvec3(5.0 * (i % 3 - 1), 10.0 * (i / 3) - 35, 0));
}

TEST_F(BoxTest, FlattenedSeaHasNoWavesForIt) {
    scene.sea->m_level = 3;
    Buoyancy buoyancy(box(0)->getBodyRigid(), scene.sea);
    const float nan = std::nanf("");
    for (const auto& [flattening, immersed] :
         {std::pair(0.0f, 0.75), {1000, 0.75}, {1001, 0}, {nan, 0}}) {
        Engine::get()->setEnvironment(ENVIRONMENT_FLATTENING, flattening);
        buoyancy.update();
        EXPECT_NEAR(buoyancy.getSubmerged(), immersed, 1e-4) << flattening;
    }
}

TEST_F(BoxTest, WithoutWorldBoxOrBodyItIsInertAndSaysSo) {
    LogCapture log;
    Object* object = box(1);
    ObjectOcean nowhere;
    BodyRigid ball(10, {});
    ball.addShape(Shape::createSphere(1));
    Buoyancy first(object->getBodyRigid(), &nowhere), second(object->getBodyRigid(), nullptr),
        third(&ball, scene.sea);
    for (Buoyancy* b : {&first, &second, &third}) {
        b->update();
        EXPECT_EQ(b->getSubmerged(), 0);
    }
    EXPECT_EQ(log.lines,
              (std::vector<std::string>{"Buoyancy::Buoyancy:world", "Buoyancy::Buoyancy:world",
                                        "Buoyancy::Buoyancy:first shape must be box"}));
    EXPECT_EQ(log.levels.back(), LogLevel::warning);
    Ship hidden(object, scene.sea);
    object->setEnabled(false);
    const dmat4 pose = object->getWorldTransform();
    hidden.update();
    scene.world.updatePhysics(H);
    EXPECT_EQ(object->getWorldTransform(), pose); // it neither floats nor falls
    Object bare(NODE_DUMMY);
    Ship raft(&bare, scene.sea);
    raft.setControlMode(2);
    raft.update();
    EXPECT_EQ(raft.getControl().x, 1);
    EXPECT_EQ(raft.getVelocity(), vec3_zero);
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
    const double thrust = s * s * f.volume * static_cast<double>(f.thrust);
    double low = 0, high = 100;
    for (int i = 0; i < 60; i++) {
        const double v = (low + high) / 2;
        const double drag = 7.2 * f.mass * s * s * v + 4000 * s * v * v + 0.1 * s * f.mass * v;
        (drag < thrust ? low : high) = v;
    }
    return low;
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
        EXPECT_NEAR(still.hpr.z, 0, 0.01);
        EXPECT_LT(length(still.velocity), 0.02);
        const double east = EARTH.toWGS(ship.getObject()->getWorldPosition()).x - LONGITUDE;
        EXPECT_LT(std::abs(east) * 104800, 0.05);

        const ShipMotion ahead = run(2);
        EXPECT_NEAR(ahead.velocity.y, cruisingSpeed(f), 0.05 * cruisingSpeed(f));
        EXPECT_NEAR(ahead.velocity.x, 0, 0.05);
        EXPECT_NEAR(ahead.hpr.z, 0, 0.1);
    }
}

struct Sea {
    float beaufort;
    double significant_height, peak_period;
    double heel, trim;    ///< at most, degrees
    float least, deepest; ///< immersion
};
struct Rate {
    const char* name;
    float dt; ///< 0: random, with stalls
};
const Sea GALE = {7, 4, 9.6, 5, 4, 0.05f, 0.5f};
class LongRunTest : public testing::TestWithParam<std::tuple<Sea, Rate>> {};

/// Runs for that time and expects the ships afloat, upright, on course and under way.
void steam(ShipScene& scene, double duration, const Sea& sea, const Rate& rate) {
    for (const Fleet& f : FLEET)
        scene.addShip(f.path, f.thrust);
    std::mt19937 random(3);
    std::uniform_real_distribution<float> jitter(0.005f, 0.03f), stall(0.2f, 0.5f);
    double heel = 0, trim = 0;
    float least = 1, deepest = 0;
    for (double t = 0; t < duration;) {
        float dt = rate.dt;
        if (dt == 0) dt = random() % 100 == 0 ? stall(random) : jitter(random);
        scene.frame(dt);
        t += static_cast<double>(dt);
        if (t < 20) continue; // settled
        for (const auto& ship : scene.ships) {
            const ShipMotion motion(*ship);
            heel = std::max(heel, std::abs(motion.hpr.z));
            trim = std::max(trim, std::abs(motion.hpr.y));
            least = std::min(least, ship->getBuoyancy()->getSubmerged());
            deepest = std::max(deepest, ship->getBuoyancy()->getSubmerged());
        }
    }
    EXPECT_LT(heel, sea.heel);
    EXPECT_LT(trim, sea.trim);
    EXPECT_GT(least, sea.least);
    EXPECT_LT(deepest, sea.deepest);
    for (const auto& ship : scene.ships) {
        const ShipMotion motion(*ship);
        EXPECT_GT(motion.velocity.y, 1);
        EXPECT_NEAR(std::remainder(motion.hpr.x, 360), 0, 10);
    }
}

TEST_P(LongRunTest, ShipsStayAfloatAndUprightForTenMinutes) {
    const auto& [sea, rate] = GetParam();
    ShipScene scene;
    scene.sea->setSea(sea.beaufort, sea.significant_height, sea.peak_period);
    steam(scene, 600, sea, rate);
}

TEST(Ships, RideTheChannelsOwnSea) {
    ShipScene scene;
    scene.useOwnSea(7);
    steam(scene, 60, GALE, {"", 0.1f});
}

INSTANTIATE_TEST_SUITE_P(
    Seas, LongRunTest,
    testing::Combine(testing::Values(Sea{0, 0, 1, 0.01, 0.1, 0.27f, 0.36f},
                                     Sea{4, 1, 5, 4, 1, 0.05f, 0.5f}, GALE),
                     testing::Values(Rate{"At144Hz", 1 / 144.0f}, Rate{"At60Hz", 1 / 60.0f},
                                     Rate{"At10Hz", 0.1f}, Rate{"WithStalls", 0})),
    [](const auto& run) {
        return "Beaufort" + std::to_string(int(std::get<0>(run.param).beaufort)) +
               std::get<1>(run.param).name;
    });

} // namespace
