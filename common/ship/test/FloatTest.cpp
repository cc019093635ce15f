// SPDX-License-Identifier: MIT

// How ships float and steam, against closed forms and over long runs.

#include "ShipScene.h"
#include "testkit/LogCapture.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

constexpr double G = 9.80665;
constexpr float H = 1 / 60.0f; ///< one physics substep

/// The depth of the foot of every sample point below the box's mid-plane.
double footDepth(double height) { return height / 2 * std::sin(LATITUDE * DEG_TO_RAD<double>); }

struct BoxTest : testing::Test {
    static constexpr float MASS = 2e5f;
    static constexpr double VOLUME = 10 * 70 * 4;

    /// A box whose points are all immersed by the share `r`.
    Object* box(double r) { return scene.addBox({10, 70, 4}, MASS, footDepth(4) - 4 * r); }
    /// The acceleration that the forces give in one substep, without gravity, local frame.
    dvec3 step(Object* object) {
        const BodyRigid& body = *object->getBodyRigid();
        const dmat3 to_local = transpose(object->getWGSTransform().getMat3());
        const dvec3 before(body.getLinearVelocity());
        scene.world.updatePhysics(H);
        const dvec3 gained = to_local * (dvec3(body.getLinearVelocity()) - before);
        return gained / static_cast<double>(H) + dvec3(0, 0, G);
    }
    ShipScene scene;
};

TEST_F(BoxTest, LiftGrowsWithTheSquareOfTheImmersion) {
    const double full = G * VOLUME * 100 / MASS;
    for (const double r : {-0.5, 0.25, 0.5, 1.0, 3.0}) {
        Object* object = box(r);
        Buoyancy buoyancy(object->getBodyRigid(), scene.sea);
        buoyancy.update();
        const double immersed = std::clamp(r, 0.0, 1.0);
        EXPECT_NEAR(buoyancy.getSubmerged(), immersed, 1e-4);
        EXPECT_NEAR(step(object).z, full * immersed * immersed, full * 3e-4);
        scene.world.removeNode(object);
    }
}

TEST_F(BoxTest, PointsBrakeAgainstTheirOwnVelocity) {
    for (const double r : {0.5, 1.0}) {
        Object* object = box(r);
        Buoyancy buoyancy(object->getBodyRigid(), scene.sea);
        const dvec3 east = object->getWGSTransform().getX();
        object->getBodyRigid()->setLinearVelocity(vec3(east * 2.0));
        buoyancy.update();
        EXPECT_NEAR(step(object).x, -24 * 0.3 * r * r * 2, 0.01);
        scene.world.removeNode(object);
    }
}

TEST_F(BoxTest, PointsStandInThreeColumnsOfEightFromOneEndToTheOther) {
    const Object* object = box(0.5);
    const Buoyancy buoyancy(object->getBodyRigid(), scene.sea);
    ASSERT_EQ(buoyancy.getPoints().size(), 24);
    for (int i = 0; i < 8; i++)
        for (int j = 0; j < 3; j++)
            EXPECT_EQ(buoyancy.getPoints()[3 * i + j], dvec3(5.0 * (j - 1), 10.0 * i - 35, 0));
}

TEST_F(BoxTest, FlattenedSeaHasNoWavesForIt) {
    scene.sea->m_level = 3;
    Object* object = box(0);
    Buoyancy buoyancy(object->getBodyRigid(), scene.sea);
    buoyancy.update();
    EXPECT_NEAR(buoyancy.getSubmerged(), 0.75, 1e-4);
    Engine::get()->setEnvironment(ENVIRONMENT_FLATTENING, 1000);
    buoyancy.update();
    EXPECT_NEAR(buoyancy.getSubmerged(), 0.75, 1e-4); // still whole at the value itself
    Engine::get()->setEnvironment(ENVIRONMENT_FLATTENING, 1001);
    buoyancy.update();
    EXPECT_NEAR(buoyancy.getSubmerged(), 0, 1e-4);
}

TEST_F(BoxTest, WithoutWorldOrBoxItIsInertAndSaysSo) {
    LogCapture log;
    Object* object = box(1);
    ObjectOcean nowhere;
    Buoyancy first(object->getBodyRigid(), &nowhere), second(object->getBodyRigid(), nullptr);
    BodyRigid ball(10, {});
    ball.addShape(Shape::createSphere(1));
    Buoyancy third(&ball, scene.sea);
    for (Buoyancy* b : {&first, &second, &third}) {
        b->update();
        EXPECT_EQ(b->getSubmerged(), 0);
    }
    EXPECT_NEAR(length(step(object)), 0, 1e-3);
    EXPECT_EQ(log.lines,
              (std::vector<std::string>{"Buoyancy::Buoyancy:world", "Buoyancy::Buoyancy:world",
                                        "Buoyancy::Buoyancy:first shape must be box"}));
    EXPECT_EQ(log.levels.back(), LogLevel::warning);
}

TEST_F(BoxTest, PropulsionIsStrongestHalfImmersedAndNoneInTheAirOrUnderWater) {
    for (const auto& [r, share] : {std::pair(0.5, 0.25), {0.3, 0.09}, {0.0, 0.0}, {1.0, 0.0}}) {
        Object* object = box(r);
        Ship ship(object, scene.sea);
        ship.setControlMode(2);
        ship.setThrust(700);
        ship.update();
        EXPECT_NEAR(step(object).y, share * VOLUME * 700 / MASS, 5e-3) << r;
        scene.world.removeNode(object);
    }
}

TEST_F(BoxTest, KeysSteerAndMoveAsternWithTheirOwnPower) {
    Object* object = box(0.5);
    Ship ship(object, scene.sea);
    ship.setControlMode(1);
    ship.update();
    EXPECT_NEAR(step(object).y, 0, 1e-3);
    scene.control.keyDown(KEY_DOWN);
    ship.update();
    EXPECT_NEAR(step(object).y, -0.25 * VOLUME * 2000 / MASS, 0.05);
    scene.control.keyDown(KEY_LEFT);
    ship.update_control();
    EXPECT_NEAR(ship.getControl().x, -std::sqrt(0.5), 1e-6); // never longer than 1
    EXPECT_NEAR(ship.getControl().y, std::sqrt(0.5), 1e-6);
    scene.control.keyDown(KEY_UP); // against Down: the rudder is left
    for (int i = 0; i < 60; i++) {
        ship.update();
        scene.world.updatePhysics(H);
    }
    EXPECT_LT(std::remainder(object->getWgsHPR().x, 360), 0); // to the left
}

TEST_F(BoxTest, DisabledObjectAndOneWithoutBodyStayStill) {
    Object* object = box(0.5);
    Ship ship(object, scene.sea);
    object->setEnabled(false);
    ship.update();
    EXPECT_NEAR(length(step(object)), 0, 1e-3); // nothing but gravity
    auto* bare = new Object(NODE_DUMMY);
    scene.place(bare, 0, 0);
    Ship raft(bare, scene.sea);
    raft.setControlMode(2);
    raft.update();
    EXPECT_EQ(raft.getControl().x, 1);
    EXPECT_EQ(raft.getVelocity(), vec3_zero);
    EXPECT_EQ(raft.getBuoyancy(), nullptr);
    EXPECT_EQ(raft.getWakes(), nullptr);
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

TEST(Ships, StillShipFloatsAtItsWaterlineAndDoesNotDrift) {
    for (const Fleet& f : FLEET) {
        ShipScene scene;
        Ship& ship = scene.addShip(f.path, f.thrust);
        ship.setControlMode(0);
        for (int i = 0; i < 60 * 60; i++)
            scene.frame(H);
        EXPECT_NEAR(ship.getBuoyancy()->getSubmerged(), std::sqrt(f.mass / (100 * f.volume)),
                    0.002);
        const ShipMotion motion(ship);
        EXPECT_NEAR(motion.altitude, 0, 0.01); // the hull is drawn for that waterline
        EXPECT_NEAR(motion.hpr.y, 0, 0.1);
        EXPECT_NEAR(motion.hpr.z, 0, 0.01);
        EXPECT_LT(length(motion.velocity), 0.02);
        const double east = (EARTH.toWGS(ship.getObject()->getWorldPosition()).x - LONGITUDE);
        EXPECT_LT(std::abs(east) * 104800, 0.05);
    }
}

TEST(Ships, FullAheadInCalmWaterReachesTheSpeedOfTheClosedForm) {
    for (const Fleet& f : FLEET) {
        ShipScene scene;
        Ship& ship = scene.addShip(f.path, f.thrust);
        for (int i = 0; i < 60 * 60; i++)
            scene.frame(H);
        const ShipMotion motion(ship);
        EXPECT_NEAR(motion.velocity.y, cruisingSpeed(f), 0.05 * cruisingSpeed(f));
        EXPECT_NEAR(motion.velocity.x, 0, 0.05);
        EXPECT_NEAR(motion.hpr.z, 0, 0.1);
    }
}

struct LongRun {
    const char* name;
    float beaufort;
    double significant_height, peak_period;
    float dt; ///< 0: random, with stalls
    double heel_limit;
};
class LongRunTest : public testing::TestWithParam<LongRun> {};

/// Ten minutes at sea: afloat, upright, on course and under way all the time.
TEST_P(LongRunTest, ShipsStayAfloatAndUpright) {
    const LongRun& run = GetParam();
    ShipScene scene;
    scene.sea->setSea(run.beaufort, run.significant_height, run.peak_period);
    for (const Fleet& f : FLEET)
        scene.addShip(f.path, f.thrust);
    std::mt19937 random(3);
    std::uniform_real_distribution<float> jitter(0.005f, 0.03f), stall(0.2f, 0.5f);
    double heel = 0, trim = 0;
    float least = 1, most = 0;
    for (double t = 0; t < 600;) {
        float dt = run.dt;
        if (dt == 0) dt = random() % 100 == 0 ? stall(random) : jitter(random);
        scene.frame(dt);
        t += static_cast<double>(dt);
        if (t < 20) continue; // settled
        for (const auto& ship : scene.ships) {
            const ShipMotion motion(*ship);
            heel = std::max(heel, std::abs(motion.hpr.z));
            trim = std::max(trim, std::abs(motion.hpr.y));
            least = std::min(least, ship->getBuoyancy()->getSubmerged());
            most = std::max(most, ship->getBuoyancy()->getSubmerged());
        }
    }
    EXPECT_LT(heel, run.heel_limit);
    EXPECT_LT(trim, 5);
    EXPECT_GT(least, 0.05f);
    EXPECT_LT(most, 0.6f);
    for (const auto& ship : scene.ships) {
        const ShipMotion motion(*ship);
        EXPECT_GT(motion.velocity.y, 1);
        EXPECT_NEAR(std::remainder(motion.hpr.x, 360), 0, 10);
    }
}

INSTANTIATE_TEST_SUITE_P(Seas, LongRunTest,
                         testing::Values(LongRun{"CalmAt10Hz", 0, 0, 1, 0.1f, 0.2},
                                         LongRun{"ModerateAt144Hz", 4, 1, 5, 1 / 144.0f, 5},
                                         LongRun{"ModerateAt10Hz", 4, 1, 5, 0.1f, 5},
                                         LongRun{"GaleAt60Hz", 7, 4, 9.6, 1 / 60.0f, 8},
                                         LongRun{"GaleAt10Hz", 7, 4, 9.6, 0.1f, 8},
                    LongRun{"GaleAt5Hz", 7, 4, 9.6, 0.2f, 8},
                                         LongRun{"GaleWithStalls", 7, 4, 9.6, 0, 8}),
                         [](const auto& run) { return run.param.name; });

} // namespace
