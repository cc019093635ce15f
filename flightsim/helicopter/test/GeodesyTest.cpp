// SPDX-License-Identifier: MIT
#include "flightsim/helicopter/Geodesy.h"

#include <array>
#include <gtest/gtest.h>

namespace flightsim {
namespace {

constexpr double A = 6378137.0;
constexpr double E2 = 6.69437999014e-3;

/// Earth-centred position by the closed formula, which `offset` and `moved` don't use.
std::array<double, 3> earthCentred(const Geodetic& g) {
    const double s = std::sin(g.latitude * RADIANS), c = std::cos(g.latitude * RADIANS);
    const double n = A / std::sqrt(1 - E2 * s * s);
    return {(n + g.altitude) * c * std::cos(g.longitude * RADIANS),
            (n + g.altitude) * c * std::sin(g.longitude * RADIANS),
            (n * (1 - E2) + g.altitude) * s};
}

double chord(const Geodetic& from, const Geodetic& to) {
    const auto p = earthCentred(from), q = earthCentred(to);
    return std::hypot(p[0] - q[0], p[1] - q[1], p[2] - q[2]);
}

TEST(Geodesy, OffsetsHaveTheLengthOfTheChordAlsoAcrossTheDateLine) {
    for (const double latitude : {-70.0, -35.0, 0.0, 19.7, 52.0}) {
        const Geodetic from{179.995, latitude, 30};
        for (const Enu& by : {Enu{1000, 0, 0}, Enu{0, 1000, 0}, Enu{-600, 800, 0}, Enu{3, -4, 0}}) {
            const Geodetic to = moved(from, by);
            EXPECT_LT(std::abs(to.longitude), 180) << latitude;
            // An arc of 1 km is 1 micrometre longer than its chord.
            EXPECT_NEAR(chord(from, to), by.length(), 1e-5) << latitude;
            EXPECT_NEAR((offset(from, to) - by).length(), 0, 1e-7) << latitude;
        }
    }
}

} // namespace
} // namespace flightsim
