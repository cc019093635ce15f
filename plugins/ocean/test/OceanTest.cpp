// SPDX-License-Identifier: MIT
#include "ig/math/EllipsoidModel.h"
#include "plugins/ocean/ObjectOcean.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;
const EllipsoidModel EARTH;

TEST(Ocean, SegmentMeetsTheSurfaceAtAltitudeZero) {
    ObjectOcean ocean;
    ocean.setWgsPosition({-155, 19, 0});
    ocean.setWgsHPR({30, 0, 0}); // its own frame must not matter
    const auto query = [&](dvec3 from, dvec3 to, dvec3* hit) {
        const dvec3 a = ocean.toLocal(EARTH.toWorld(from)), b = ocean.toLocal(EARTH.toWorld(to));
        if (!ocean.getIntersection(0, a, b, hit)) return false;
        *hit = EARTH.toWGS(ocean.toWorld(*hit));
        return true;
    };
    dvec3 hit;
    ASSERT_TRUE(query({-155.2, 19.3, 250}, {-155.2, 19.3, -100000}, &hit));
    EXPECT_NEAR(hit.z, 0, 1e-8);
    EXPECT_NEAR(hit.x, -155.2, 1e-12);
    EXPECT_NEAR(hit.y, 19.3, 1e-9);
    ASSERT_TRUE(query({-155.2, 19.3, -50}, {-155.2, 19.3, 50}, &hit)); // from below
    EXPECT_NEAR(hit.z, 0, 1e-8);
    ASSERT_TRUE(
        query({-155.2, 19.3, 30}, {-154.2, 19.3, -30}, &hit)); // grazing: the first crossing
    EXPECT_LT(hit.x, -154.7);
    EXPECT_FALSE(query({-155.2, 19.3, 250}, {-155.2, 19.3, 1}, &hit));
    EXPECT_FALSE(query({-155.2, 19.3, -3047}, {-155.2, 19.3, -100000}, &hit));
    ocean.setIntersection(0, false);
    EXPECT_FALSE(query({-155.2, 19.3, 250}, {-155.2, 19.3, -100000}, &hit));
}

TEST(Ocean, WorldPointLiesStraightBelow) {
    const ObjectOcean ocean;
    const dvec3 g = EARTH.toWGS(ocean.getWorldPoint(EARTH.toWorld({12, -45, 800})));
    EXPECT_NEAR(g.x, 12, 1e-12);
    EXPECT_NEAR(g.y, -45, 1e-12);
    EXPECT_NEAR(g.z, 0, 1e-8);
}

} // namespace
