// SPDX-License-Identifier: MIT
#include "ig/app/Sky.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"

#include <gtest/gtest.h>

using namespace ig;

namespace {
/// Degrees above the horizon, and clockwise from north.
dvec2 sunAt(double hour, double longitude, double latitude, int day) {
    const dmat3 frame = EllipsoidModel()
                            .getWGSTransform(EllipsoidModel().toWorld({longitude, latitude, 0}))
                            .getMat3();
    const dvec3 sun = transpose(frame) * computeSky(hour, longitude, day).sun_direction;
    return {std::asin(sun.z) * RAD_TO_DEG<double>,
            std::fmod(std::atan2(sun.x, sun.y) * RAD_TO_DEG<double> + 360, 360)};
}
} // namespace

TEST(Sky, TheSunFollowsHourSeasonAndPlace) {
    // Noon: 90 degrees less latitude plus declination; at the equinox (day 81) that is 0.
    EXPECT_NEAR(sunAt(12, 30, 50, 81).x, 40, 0.5);
    EXPECT_NEAR(sunAt(12, 30, 50, 81).y, 180, 0.5);
    EXPECT_NEAR(sunAt(12, -155, 50, 172).x, 63.4, 0.5);
    EXPECT_NEAR(sunAt(12, -155, -30, 172).y, 0, 0.5); // in the north, south of the tropics
    EXPECT_NEAR(sunAt(6, 120, 35, 81).x, 0, 0.5);     // rises in the east
    EXPECT_NEAR(sunAt(6, 120, 35, 81).y, 90, 0.5);
    EXPECT_LT(sunAt(0, 120, 35, 81).x, -50);
}

TEST(Sky, TheMoonIsUpAtNight) {
    const dvec3 up = EllipsoidModel().getUp(EllipsoidModel().toWorld({10, 20, 0}));
    EXPECT_GT(dot(computeSky(23, 10, 172).moon_direction, up), 0.3);
    EXPECT_LT(dot(computeSky(12, 10, 172).moon_direction, up), 0);
}
