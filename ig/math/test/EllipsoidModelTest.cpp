// SPDX-License-Identifier: MIT
#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"

#include <gtest/gtest.h>
#include <random>

namespace ig {
namespace {

const EllipsoidModel EARTH;

// Independent answer: iterate tan φ = (z + e² N sin φ) / p in long double until it stands still.
struct Reference {
    double latitude, altitude;
};
Reference reference(const dvec3& w) {
    const long double a = 6378137.0L, f = 1.0L / 298.257223563L, e2 = f * (2 - f);
    const long double p = std::hypot(static_cast<long double>(w.x), static_cast<long double>(w.y));
    long double lat = std::atan2(static_cast<long double>(w.z), p * (1 - e2));
    long double n = a;
    for (int i = 0; i < 60; i++) {
        n = a / std::sqrt(1 - e2 * std::sin(lat) * std::sin(lat));
        lat = std::atan2(w.z + e2 * n * std::sin(lat), p);
    }
    const long double s = std::sin(lat), c = std::cos(lat);
    const long double h = p * c + w.z * s - a * std::sqrt(1 - e2 * s * s);
    return {static_cast<double>(lat), static_cast<double>(h)};
}

TEST(EllipsoidModel, InverseAgreesWithTheConvergedIterationToTenNanometres) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> unit(-1, 1);
    for (int i = 0; i < 20000; i++) {
        const double h = -5000 + 52500 * (unit(random) + 1);
        const dvec3 geodetic{180 * unit(random), RAD_TO_DEG<double> * std::asin(unit(random)), h};
        const dvec3 w = EARTH.toWorld(geodetic);
        const Reference ref = reference(w);
        const dvec3 g = EARTH.toWGS(w);
        ASSERT_NEAR(g.y * DEG_TO_RAD<double> * 6.4e6, ref.latitude * 6.4e6, 1e-8);
        ASSERT_NEAR(g.z, ref.altitude, 1e-8);
        ASSERT_NEAR(EARTH.getAltitude(w), ref.altitude, 1e-8);
        ASSERT_LT(length(EARTH.toWorld(g) - w), 1e-8);
    }
}

TEST(EllipsoidModel, AxisAndCentreAreGuarded) {
    const dvec3 pole = EARTH.toWGS({0, 0, 6356752.314245179 + 10});
    EXPECT_NEAR(pole.y, 90, 1e-12);
    EXPECT_NEAR(pole.z, 10, 1e-8);
    EXPECT_EQ(pole.x, 0);
    EXPECT_NEAR(EARTH.toWGS({0, 0, -6356752.314245179}).y, -90, 1e-12);
    const dvec3 centre = EARTH.toWGS({0, 0, 0});
    EXPECT_TRUE(isFinite(centre));
    const dmat4 frame = EARTH.getWGSTransform({0, 0, 6356752.3});
    EXPECT_NEAR(frame.getZ().z, 1, 1e-12);
    EXPECT_TRUE(isFinite(frame));
}

TEST(EllipsoidModel, LocalFrameIsEastNorthUp) {
    const dvec3 geodetic{-155.06, 19.71, 12};
    const dvec3 w = EARTH.toWorld(geodetic);
    const dmat4 frame = EARTH.getWGSTransform(w);
    // Differences of geodetic positions, not of trigonometry: each axis is where the coordinate
    // grows.
    const auto towards = [&](dvec3 step) { return normalize(EARTH.toWorld(geodetic + step) - w); };
    EXPECT_LT(length(frame.getX() - towards({1e-5, 0, 0})), 1e-6);
    EXPECT_LT(length(frame.getY() - towards({0, 1e-5, 0})), 1e-6);
    EXPECT_LT(length(frame.getZ() - towards({0, 0, 1})), 1e-6);
    EXPECT_EQ(frame.getTranslate(), w);
    EXPECT_LT(length(EARTH.getUp(w) - frame.getZ()), 1e-15);
}

TEST(EllipsoidModel, DegreesAreAsLongAsTheirChords) {
    constexpr double STEP = 1e-3; // degrees: a chord is shorter than its arc by 5e-11 of it
    for (const dvec3 place : {dvec3(-155, 19.7, 0), dvec3(20, -75, 4000), dvec3(0, 0, -50)}) {
        const auto chord = [&](dvec3 half) {
            return length(EARTH.toWorld(place + half) - EARTH.toWorld(place - half)) / STEP;
        };
        const dvec2 degree = EARTH.getDegreeLengths(place.y, place.z);
        EXPECT_NEAR(degree.x, chord({STEP / 2, 0, 0}), 1e-4);
        EXPECT_NEAR(degree.y, chord({0, STEP / 2, 0}), 1e-4);
    }
}

TEST(EllipsoidModel, FlagFalseMeansRadians) {
    const dvec3 w = EARTH.toWorld({30, 20, 100});
    const dvec3 g = EARTH.toWGS(w, false);
    EXPECT_NEAR(g.x * RAD_TO_DEG<double>, 30, 1e-12);
    EXPECT_LT(length(EARTH.toWorld(g, false) - w), 1e-8);
}

} // namespace
} // namespace ig
