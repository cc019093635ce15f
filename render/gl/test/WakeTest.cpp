// SPDX-License-Identifier: MIT
#include "PictureScene.h"
#include "ig/app/Engine.h"
#include "ig/physics/Body.h"
#include "ig/physics/Shape.h"
#include "ig/scene/SceneObjects.h"
#include "plugins/ocean/ObjectOcean.h"

#include <cmath>

using namespace ig;

/// A hull of 160 m heads east in the middle of the picture; nothing but its wake is drawn of it.
class WakeOf : public PictureScene {
public:
    static constexpr double ALTITUDE = 250, DISTANCE = 1500;

    void SetUp() override {
        PictureScene::SetUp();
        if (IsSkipped()) return;
        m_world.addNode(sea = new ObjectOcean());
        m_frame.cloud_cover = 0; // nothing but wakes makes one water brighter than another
        hull = new Object(NODE_DUMMY);
        hull->setWgsPosition({LONGITUDE, LATITUDE, 0});
        hull->setWgsHPR({90, 0, 0});
        body = new BodyRigid(100000, {});
        body->addShape(Shape::createBox({20, 160, 4}));
        hull->setBody(body);
        hull->addChild(new DecalOrtho());
        m_world.addNode(hull);
        look(ALTITUDE, 0, std::atan2(ALTITUDE, DISTANCE) * RAD_TO_DEG<double>, -DISTANCE);
    }
    /// A second later: maps of wakes are as old as their rate allows.
    void steam(double speed) {
        body->setLinearVelocity(vec3(hull->getWorldTransform().getY() * speed));
        Engine::get()->beginFrame(1);
    }
    /// Mean brightness of the sea from `first` to `last` metres east of the hull's middle.
    double brightness(double first, double last) {
        draw();
        double sum = 0;
        for (int i = 0; i <= 20; i++) {
            const double east = std::lerp(first, last, i / 20.0);
            const double across = east / std::hypot(ALTITUDE, DISTANCE) / (2 * HALF_HEIGHT);
            const std::uint8_t* p = pixel(0.5 + across * HEIGHT / WIDTH, 0.5);
            sum += (p[0] + p[1] + p[2]) / (3 * 21.0);
        }
        return sum;
    }
    /// Altitude of the drawn water so many metres ahead of the stem and off the middle line, seen
    /// from straight above.
    double level(double ahead, double off) {
        constexpr double HIGH = 60;
        const dmat4& pose = hull->getWorldTransform();
        const dvec3 place = pose * dvec3(off, ahead + 80, 0);
        dvec3 wgs = EllipsoidModel().toWGS(place);
        m_camera.setWgsPosition({wgs.x, wgs.y, HIGH});
        m_camera.setWgsHPR({0, 90, 0});
        draw();
        return HIGH - s_renderer->readDistance(0.5, 0.5);
    }
    Object* hull = nullptr;
    ObjectOcean* sea = nullptr;
    BodyRigid* body = nullptr;
};

TEST_F(WakeOf, AMovingHullIsSeenFromFarAndOnlyAstern) {
    const double astern = brightness(-250, -100), ahead = brightness(110, 250);
    steam(7);
    EXPECT_GT(brightness(-250, -100), astern + 12);
    EXPECT_NEAR(brightness(110, 250), ahead, 3);
}

TEST_F(WakeOf, TheWakeFollowsTheSpeedAndFadesWithItsLength) {
    const double still = brightness(-200, -100);
    steam(0.5); // no more than a hull that rides the waves
    EXPECT_NEAR(brightness(-200, -100), still, 1);
    steam(3);
    const double slow = brightness(-200, -100);
    steam(8);
    const double fast = brightness(-200, -100), far = brightness(-600, -500);
    EXPECT_GT(slow, still + 3);
    EXPECT_GT(fast, slow + 3);
    EXPECT_GT(fast, far + 5);
    steam(-4); // astern there is no such wake
    EXPECT_NEAR(brightness(-200, -100), still, 1);
}

// A length of 2 pi U^2 / g lies from crest to crest: 16 m at 5 m/s, 41 m at 8 m/s.
TEST_F(WakeOf, TheWaterIsHighAtTheStemAndLowHalfAWaveBehind) {
    sea->setBeaufort(0);
    steam(5);
    EXPECT_NEAR(level(30, 0), 0, 0.02);
    EXPECT_LT(level(-11, 3), -0.1);
    EXPECT_GT(level(-22, 5), 0.05);
    const double slow = level(-3, 1);
    EXPECT_GT(slow, 0.3);
    steam(8);
    EXPECT_GT(level(-3, 1), slow + 0.3);
    EXPECT_LT(level(-3, 1), 2); // foredecks are higher
    EXPECT_GT(level(-11, 3), 0.2);
    EXPECT_LT(level(-25, 6), -0.3);
    hull->setWgsPosition({LONGITUDE - 300 / 104800.0, LATITUDE, 0}); // it leaves nothing behind
    steam(8);
    EXPECT_NEAR(level(297, 1), 0, 0.02);
    steam(0);
    EXPECT_NEAR(level(-3, 1), 0, 0.02);
}

TEST_F(WakeOf, ParallelRaysShowItWhereItLies) {
    constexpr double HALF_WIDTH = 400;
    look(ALTITUDE, 0, 90); // straight down on the hull, north above
    m_camera.setOrtho(HALF_WIDTH, HALF_WIDTH * HEIGHT / WIDTH, 1, 1000);
    steam(7);
    draw();
    const auto brightest = [&](double east) { // over the track's width
        double most = 0;
        for (double north = -12; north <= 12; north += 4) {
            const std::uint8_t* p = pixel(0.5 + east / (2 * HALF_WIDTH),
                                          0.5 - north / (2 * HALF_WIDTH) * WIDTH / HEIGHT);
            most = std::max(most, (p[0] + p[1] + p[2]) / 3.0);
        }
        return most;
    };
    for (const double astern : {-120.0, -160.0, -200.0})
        EXPECT_GT(brightest(astern), brightest(-astern) + 20) << astern;
}
