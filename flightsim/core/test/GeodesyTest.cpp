// SPDX-License-Identifier: MIT
#include "flightsim/Geodesy.h"

#include <array>
#include <gtest/gtest.h>

namespace flightsim {
namespace {

constexpr double a = 6378137.0;
constexpr double e2 = 6.69437999014e-3;

/// Earth-centred position by the closed formula, which `offset` and `moved` don't use.
std::array<double, 3> earthCentred(const Geodetic& g) {
    const double s = std::sin(g.latitude * radians), c = std::cos(g.latitude * radians);
    const double n = a / std::sqrt(1 - e2 * s * s);
    return {(n + g.altitude) * c * std::cos(g.longitude * radians),
            (n + g.altitude) * c * std::sin(g.longitude * radians),
            (n * (1 - e2) + g.altitude) * s};
}

double chord(const Geodetic& from, const Geodetic& to) {
    const auto p = earthCentred(from), q = earthCentred(to);
    return std::hypot(p[0] - q[0], p[1] - q[1], p[2] - q[2]);
}

TEST(Geodesy, OffsetsHaveTheLengthOfTheChord) {
    for (const double latitude : {-70.0, -35.0, 0.0, 19.7, 52.0}) {
        const Geodetic from{-155.06, latitude, 30};
        for (const Enu& by : {Enu{1000, 0, 0}, Enu{0, 1000, 0}, Enu{-600, 800, 0}, Enu{3, -4, 0}}) {
            const Geodetic to = moved(from, by);
            // An arc of 1 km is 1 micrometre longer than its chord.
            EXPECT_NEAR(chord(from, to), by.length(), 1e-5) << latitude;
            const Enu back = offset(from, to);
            EXPECT_NEAR((back - by).length(), 0, 1e-7) << latitude;
        }
    }
}

TEST(Geodesy, ManySmallStepsAddUpToTheArcs) {
    Geodetic place{10, 40, 100};
    constexpr int steps = 10'000;
    for (int i = 0; i < steps; i++)
        place = moved(place, {0, 10, 0});
    // The meridian's arc by Simpson's rule over its radius of curvature.
    const auto radius = [](double latitude) {
        const double s = std::sin(latitude * radians);
        return a * (1 - e2) / std::pow(1 - e2 * s * s, 1.5) + 100;
    };
    const double middle = (40 + place.latitude) / 2;
    const double arc = (radius(40) + 4 * radius(middle) + radius(place.latitude)) / 6 *
                       (place.latitude - 40) * radians;
    EXPECT_NEAR(arc, 100'000, 0.01);
    EXPECT_EQ(place.longitude, 10);

    const double s = std::sin(place.latitude * radians);
    const double parallel =
        (a / std::sqrt(1 - e2 * s * s) + 100) * std::cos(place.latitude * radians);
    for (int i = 0; i < steps; i++)
        place = moved(place, {10, 0, 0});
    EXPECT_NEAR((place.longitude - 10) * radians * parallel, 100'000, 0.01);
}

TEST(Geodesy, CrossesTheDateLine) {
    const Geodetic west{179.9999, 10, 0};
    const Geodetic east = moved(west, {100, 0, 0});
    EXPECT_LT(east.longitude, -179.99);
    EXPECT_NEAR(offset(west, east).east, 100, 1e-6);
    EXPECT_NEAR(offset(east, west).east, -100, 1e-6);
}

} // namespace
} // namespace flightsim
