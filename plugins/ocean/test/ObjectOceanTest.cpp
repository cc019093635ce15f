// SPDX-License-Identifier: MIT
#include "plugins/ocean/ObjectOcean.h"

#include "ig/app/Engine.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/package/Package.h"
#include "ig/scene/World.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace {

using namespace ig;
const EllipsoidModel EARTH;
constexpr dvec3 PLACE{-155, 19, 0};

class Ocean : public testing::Test {
protected:
    Ocean() {
        Engine::get()->reset();
        m_ocean.setWgsPosition(PLACE);
        m_ocean.setWgsHPR({30, 0, 0}); // its own frame must not matter
        jLog::setSink([this](LogLevel, std::string_view) { m_lines++; });
    }
    ~Ocean() override {
        jLog::setSink({});
        Engine::get()->reset();
    }
    double altitudeAt(double longitude, double latitude, double altitude = 0) const {
        return EARTH.toWGS(m_ocean.getWorldPoint(EARTH.toWorld({longitude, latitude, altitude}))).z;
    }
    /// First crossing between two geodetic places, as a geodetic place.
    bool query(dvec3 from, dvec3 to, dvec3* hit) const {
        const dvec3 a = m_ocean.toLocal(EARTH.toWorld(from));
        const dvec3 b = m_ocean.toLocal(EARTH.toWorld(to));
        if (!m_ocean.getIntersection(0, a, b, hit)) return false;
        *hit = EARTH.toWGS(m_ocean.toWorld(*hit));
        return true;
    }

    ObjectOcean m_ocean;
    int m_lines = 0;
};

TEST_F(Ocean, StillWaterLiesAtAltitudeZero) {
    m_ocean.setBeaufort(0);
    dvec3 hit;
    ASSERT_TRUE(query({-155.2, 19.3, 250}, {-155.2, 19.3, -100000}, &hit));
    EXPECT_NEAR(hit.z, 0, 1e-8);
    EXPECT_NEAR(hit.x, -155.2, 1e-12);
    EXPECT_NEAR(hit.y, 19.3, 1e-9);
    ASSERT_TRUE(query({-155.2, 19.3, -50}, {-155.2, 19.3, 50}, &hit)); // from below
    EXPECT_NEAR(hit.z, 0, 1e-8);
    ASSERT_TRUE(query({-155.2, 19.3, 30}, {-154.2, 19.3, -30}, &hit)); // the first of two crossings
    EXPECT_LT(hit.x, -154.7);
    EXPECT_NEAR(hit.z, 0, 1e-6);
    EXPECT_FALSE(query({-155.2, 19.3, 250}, {-155.2, 19.3, 1}, &hit));
    EXPECT_FALSE(query({-155.2, 19.3, -3047}, {-155.2, 19.3, -100000}, &hit));
    m_ocean.setIntersection(0, false);
    EXPECT_FALSE(query({-155.2, 19.3, 250}, {-155.2, 19.3, -100000}, &hit));
    EXPECT_NEAR(altitudeAt(12, -90, 800), 0, 1e-8);
}

TEST_F(Ocean, WorldPointIsStraightAboveOrBelowAndWhereARayDownMeetsTheSea) {
    m_ocean.setBeaufort(8);
    m_ocean.evolve(100);
    for (double altitude : {-3000.0, 0.0, 12000.0}) {
        const dvec3 g =
            EARTH.toWGS(m_ocean.getWorldPoint(EARTH.toWorld({-155.01, 19.02, altitude})));
        EXPECT_NEAR(g.x, -155.01, 1e-12);
        EXPECT_NEAR(g.y, 19.02, 1e-12);
        EXPECT_NEAR(g.z, altitudeAt(-155.01, 19.02), 1e-6);
        EXPECT_GT(std::abs(g.z), 1e-3);
    }
    std::mt19937 random(5);
    for (int i = 0; i < 300; i++) {
        const double longitude = -155 + random() * 1e-11, latitude = 19 - random() * 1e-11;
        const dvec3 top = EARTH.toWorld({longitude, latitude, 300});
        dvec3 hit;
        ASSERT_TRUE(query({longitude, latitude, 300}, {longitude, latitude, -99700}, &hit));
        ASSERT_LT(length(EARTH.toWorld(hit) - m_ocean.getWorldPoint(top)), 1e-3);
    }
}

TEST_F(Ocean, SlantedRayStopsAtTheFirstCrestInItsWay) {
    m_ocean.setBeaufort(7);
    m_ocean.evolve(100);
    std::mt19937 random(6);
    for (int i = 0; i < 30; i++) {
        // 2° to 50° down over up to 400 m, from 12 m.
        const double reach = 0.0001 + random() * 1e-12;
        const dvec3 from = EARTH.toWorld({-155 + i * 0.001, 19, 12});
        const dvec3 to = EARTH.toWorld({-155 + i * 0.001 + reach, 19 + reach, -12});
        const auto clearance = [&](double t) {
            const dvec3 p = from + (to - from) * t;
            return EARTH.getAltitude(p) - EARTH.getAltitude(m_ocean.getWorldPoint(p));
        };
        // By walking in steps of centimetres: the first water, and the first crest that the ray is
        // in for longer than the search may step.
        const double step = 0.02 / length(to - from), search_step = 0.25 / length(to - from);
        double first = 0;
        while (clearance(first) > 0)
            first += step;
        double broad = first;
        while (clearance(broad) > 0 || clearance(broad + search_step) > 0)
            broad += step;
        dvec3 hit;
        ASSERT_TRUE(m_ocean.getIntersection(0, m_ocean.toLocal(from), m_ocean.toLocal(to), &hit));
        const double found = length(m_ocean.toWorld(hit) - from) / length(to - from);
        EXPECT_GT(found, first - 1.5 * step) << i;
        EXPECT_LT(found, broad + step) << i;
        EXPECT_NEAR(clearance(found), 0, 1e-3) << i;
    }
}

TEST_F(Ocean, EvolvesOnceAFrameToTheRunningTime) {
    const double at_start = altitudeAt(-155, 19);
    const unsigned version = m_ocean.getFrame().version;
    EXPECT_EQ(altitudeAt(-155, 19), at_start);
    Engine::get()->beginFrame(0.5f);
    EXPECT_NE(altitudeAt(-155, 19), at_start);
    EXPECT_EQ(m_ocean.getFrame().version, version + 1);
    EXPECT_EQ(m_ocean.getFrame().time, 0.5);

    ObjectOcean late; // the time counts, not how it passed
    late.setWgsPosition(PLACE);
    const dvec3 below = EARTH.toWorld(PLACE);
    EXPECT_EQ(late.getWorldPoint(below), m_ocean.getWorldPoint(below));
}

TEST_F(Ocean, IsTheSameWhetherOrNotSomebodyDrawsIt) {
    ObjectOcean drawn;
    drawn.setWgsPosition(PLACE);
    for (int frame = 0; frame < 40; frame++) {
        Engine::get()->beginFrame(0.05f);
        for (ObjectOcean* ocean : {&m_ocean, &drawn}) // still on its way at the end
            ocean->setBeaufort(frame < 20 ? 6 : 4);
        const dvec3 below = EARTH.toWorld({-155.01 - frame * 1e-4, 19.02, 0});
        ASSERT_EQ(m_ocean.getWorldPoint(below), drawn.getWorldPoint(below));
        drawn.getFrame();
    }
    // Seen for the first time now, with the slopes of this moment and the foam of all of them.
    const OceanFrame &is = m_ocean.getFrame(), &expected = drawn.getFrame();
    for (int i = 0; i < OceanFrame::TILES; i++) {
        const OceanTile &a = is.tiles[i], &b = expected.tiles[i];
        const auto same = [count = a.resolution * a.resolution](const float* x, const float* y,
                                                                int floats) {
            return (!x && !y) || std::equal(x, x + floats * count, y);
        };
        EXPECT_TRUE(same(a.displacement, b.displacement, 4)) << i;
        EXPECT_TRUE(same(a.slope, b.slope, 2)) << i;
        EXPECT_TRUE(same(a.foam, b.foam, 1)) << i;
    }
}

TEST_F(Ocean, GoesWithTheTimeWhereNobodyAsks) {
    World world;
    auto *unasked = new ObjectOcean(), *away = new ObjectOcean();
    for (ObjectOcean* ocean : {unasked, away}) {
        world.addNode(ocean);
        ocean->setWgsPosition(PLACE);
    }
    away->setEnabled(false);
    const dvec3 below = EARTH.toWorld(PLACE);
    for (int frame = 0; frame < 40; frame++) {
        Engine::get()->beginFrame(0.5f);
        for (ObjectOcean* ocean : {&m_ocean, unasked, away})
            ocean->setBeaufort(frame < 30 ? 6 : 4);
        m_ocean.getWorldPoint(below);
        ObjectOcean::keepUp(world);
    }
    EXPECT_EQ(unasked->getWorldPoint(below), m_ocean.getWorldPoint(below));
    EXPECT_NE(away->getWorldPoint(below), m_ocean.getWorldPoint(below));
}

TEST_F(Ocean, WavesAreLaidOutAroundTheNode) {
    m_ocean.evolve(10);
    const OceanFrame& frame = m_ocean.getFrame();
    // A place 3 km away along each axis, against distances over the earth.
    for (const dvec3& g : {dvec3(-155.03, 19, 0), dvec3(-155, 19.03, 0)}) {
        const dvec2 place = frame.toPlane(g.x, g.y);
        EXPECT_NEAR(std::hypot(place.x, place.y), length(EARTH.toWorld(g) - EARTH.toWorld(PLACE)),
                    0.01);
    }
    EXPECT_LT(frame.toPlane(-155.03, 19).x, 0);
    EXPECT_GT(frame.toPlane(-155, 19.03).y, 0);
    // Across the date line the way round is the short one.
    m_ocean.setWgsPosition({179.99, 0, 0});
    EXPECT_NEAR(m_ocean.getFrame().toPlane(-179.99, 0).x, 0.02 * 111319.49, 0.1);
}

TEST_F(Ocean, AbsurdSettingsAreRefusedOrClampedWithOneWarningEach) {
    constexpr float INF = std::numeric_limits<float>::infinity();
    constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
    const auto expectSettings = [this](float speed, float angle, float beaufort) {
        EXPECT_EQ(m_ocean.getSpeed(), speed);
        EXPECT_EQ(m_ocean.getAngle(), angle);
        EXPECT_EQ(m_ocean.getBeaufort(), beaufort);
    };
    const auto set = [this](float speed, float angle, float beaufort) {
        m_ocean.setSpeed(speed);
        m_ocean.setAngle(angle);
        m_ocean.setBeaufort(beaufort);
    };
    set(9, 400, 4);
    EXPECT_EQ(m_lines, 0);
    for (float absurd : {INF, -INF, NOT_A_NUMBER})
        set(absurd, absurd, absurd);
    expectSettings(9, 40, 4);
    EXPECT_EQ(m_lines, 3);
    set(-20, -1e-9f, -3); // 360 after rounding, but told back as 0
    expectSettings(0, 0, 0);
    set(1e30f, -90, 99);
    expectSettings(75, 270, 12);
    m_ocean.evolve(30);
    m_ocean.evolve(60);
    EXPECT_LT(std::abs(altitudeAt(-155, 19)), 20);
    EXPECT_LE(m_ocean.getFrame().whitecap_cover, 0.6);
}

TEST_F(Ocean, PlacesThatAreNoneAnswerWithoutHarm) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    dvec3 hit;
    EXPECT_FALSE(isFinite(m_ocean.getWorldPoint({nan, 0, 0})));
    EXPECT_TRUE(isFinite(m_ocean.getWorldPoint({0, 0, 0})));
    EXPECT_FALSE(m_ocean.getIntersection(0, {nan, 0, 0}, {0, 0, nan}, &hit));
    EXPECT_FALSE(m_ocean.getIntersection(0, {1, 2, 3}, {1, 2, 3}, &hit));
}

TEST_F(Ocean, WhatIsSetBeforeAFramesFirstQueryHoldsInThatFrame) {
    m_ocean.setBeaufort(2);
    EXPECT_EQ(m_ocean.getFrame().wave_direction, 0);
    Engine::get()->beginFrame(1, false);
    m_ocean.setAngle(90);
    EXPECT_EQ(m_ocean.getFrame().wave_direction, 90);
    m_ocean.setAngle(180); // after it: from the next frame on
    EXPECT_EQ(m_ocean.getFrame().wave_direction, 90);
    Engine::get()->beginFrame(1, false);
    EXPECT_EQ(m_ocean.getFrame().wave_direction, 180);
}

TEST_F(Ocean, TakesItsSettingsFromTheWorldFile) {
    Package p;
    p.setString("type", "ocean");
    p.setInt("beaufort", 6);
    p.setInt("angle", 270);
    p.setString("speed", "brisk");
    const std::unique_ptr<Node> node(World::LoadNode(&p));
    const auto* sea = dynamic_cast<ObjectOcean*>(node.get());
    ASSERT_TRUE(sea);
    EXPECT_EQ(sea->getBeaufort(), 6);
    EXPECT_EQ(sea->getAngle(), 270);
    EXPECT_EQ(sea->getSpeed(), 0);
    EXPECT_EQ(m_lines, 1);
}

} // namespace
