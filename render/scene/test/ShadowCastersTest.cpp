// SPDX-License-Identifier: MIT
#include "render/scene/ShadowCasters.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "ig/scene/Camera.h"
#include "ig/scene/Mesh.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace ig;

namespace {

/// Things that stand on the sea by an eye, in the afternoon.
class ShadowsOf : public testing::Test {
public:
    static constexpr double DEGREE = 110700; // m, near enough

    static dvec3 at(double east, double north, double up = 0) {
        return EllipsoidModel().toWorld({-155 + east / (DEGREE * 0.94), 20 + north / DEGREE, up});
    }
    ShadowsOf() { setLight(40, 0); }
    /// The light's height, and turned by so much more, degrees.
    void setLight(double height, double turn) {
        const dmat3 frame = EllipsoidModel().getWGSTransform(at(0, 0)).getMat3();
        const double up = height * DEG_TO_RAD<double>, side = (70 + turn) * DEG_TO_RAD<double>;
        light = frame *
                dvec3(std::cos(up) * std::sin(side), std::cos(up) * std::cos(side), std::sin(up));
    }
    void stand(double east, double north, double radius = 10) {
        poses.push_back(EllipsoidModel().getWGSTransform(at(east, north)));
        radii.push_back(radius);
        meshes.push_back(Mesh::getPlaceholder());
    }
    void frame() {
        place.follow(eye, focus, light);
        std::vector<CasterItem> casters;
        for (std::size_t i = 0; i < poses.size(); i++) {
            const dvec3 center = poses[i].getTranslate();
            casters.push_back(
                {&meshes[i], -1, &poses[i], center, radii[i], place.findMaps(center, radii[i])});
        }
        shadows.plan(casters, place);
    }
    void frames(int count) {
        for (int i = 0; i < count; i++)
            frame();
    }
    std::size_t drawn(int map) const {
        std::size_t count = 0;
        for (const ShadowCasters::Job& job : shadows.getJobs())
            count += job.map == map;
        return count;
    }

    std::vector<dmat4> poses{};
    std::vector<double> radii;
    std::vector<std::shared_ptr<const Mesh>> meshes;
    dvec3 eye = at(0, 0, 20), focus = at(0, 0), light;
    ShadowPlace place{1024};
    ShadowCasters shadows;
};

/// Where a place lands: which map, and where in its unit cube.
std::pair<int, vec3> find(const FrameBlock& block, const vec3& p) {
    const vec3 q = block.shadow * p;
    int map = 0;
    for (const vec4& m :
         {block.shadow_near, block.shadow_middle, block.shadow_far, block.shadow_farthest}) {
        const vec2 t{q.x * m.x + m.y, q.y * m.x + m.z};
        if (std::max(std::abs(t.x), std::abs(t.y)) < 0.99f)
            return {map, {t.x / 2 + 0.5f, t.y / 2 + 0.5f, q.z}};
        map++;
    }
    return {-1, {}};
}

} // namespace

TEST_F(ShadowsOf, WhatIsLookedUpInAMapIsWhatWasDrawnIntoIt) {
    eye = at(130, -60, 400);
    place.follow(eye, focus, light);
    for (int map = 0; map < NUM_SHADOW_MAPS; map++)
        place.settle(map);
    Camera camera;
    camera.setTransform(dmat4(dmat3(), eye));
    const FrameView view(camera, 360, true);
    FrameBlock block;
    place.fill(view, block);
    for (const auto& [north, expected] :
         {std::pair(50.0, 0), {-300.0, 1}, {1000.0, 2}, {-4000.0, 3}, {9000.0, -1}}) {
        const dvec3 world = at(10, north);
        const auto [map, found] = find(block, vec3(view.toFrame(world)));
        ASSERT_EQ(map, expected) << north;
        if (map < 0) continue;
        const vec3 drawn = place.toMap(map, dmat4(dmat3(), world)) * vec3();
        EXPECT_NEAR(drawn.x, found.x, 1e-5) << north;
        EXPECT_NEAR(drawn.y, found.y, 1e-5) << north;
        EXPECT_GT(drawn.z, found.z) << north; // farther from the light, by less than a texel
        EXPECT_LT(drawn.z, found.z + place.getTexel(map) / 24000) << north;
        const vec3 higher = place.toMap(map, dmat4(dmat3(), world + light)) * vec3();
        EXPECT_NEAR(drawn.z - higher.z, 1.0 / 24000, 1e-6) << north;
    }
}

// All that the eye and a sun that goes on by a second may change is what must not show.
TEST_F(ShadowsOf, HoldStillWhileTheEyeMoves) {
    stand(5, 0);
    stand(0, 900, 60);
    frame();
    EXPECT_EQ(drawn(0), 2U); // what rests, and it once more
    for (int map = 1; map < NUM_SHADOW_MAPS; map++)
        EXPECT_EQ(drawn(map), 1U);
    const mat4 before = place.toMap(0, poses[0]), far_before = place.toMap(2, poses[1]);
    eye = at(7, -30, 25);
    focus = at(4, 3);
    setLight(40, 0.02);
    frames(2);
    EXPECT_TRUE(shadows.getJobs().empty());
    EXPECT_TRUE(place.toMap(0, poses[0]) == before && place.toMap(2, poses[1]) == far_before);

    focus = at(40, 0); // the first map goes along in whole texels
    frame();
    EXPECT_EQ(drawn(0), 2U);
    const vec3 moved = place.toMap(0, poses[0]).getTranslate() - before.getTranslate();
    EXPECT_GT(std::hypot(moved.x, moved.y), 0.1);
    for (const float texels : {moved.x * 1024, moved.y * 1024})
        EXPECT_NEAR(texels, std::round(texels), 0.01);
    setLight(40, 0.2);
    frames(8);
    EXPECT_TRUE(place.toMap(0, poses[0]) != before);
}

TEST_F(ShadowsOf, OnlyThePartOfWhatMovesIsDrawnAnew) {
    stand(0, 0);
    stand(40, 0, 2);
    frame();
    poses[1] = EllipsoidModel().getWGSTransform(at(42, 0));
    frame(); // no longer rests: once more all of it
    EXPECT_EQ(drawn(0), 2U);
    poses[1] = EllipsoidModel().getWGSTransform(at(44, 0));
    frame();
    ASSERT_EQ(drawn(0), 1U);
    const ShadowCasters::Job job = shadows.getJobs()[0];
    EXPECT_EQ(job.before, ShadowCasters::Job::RESTORE);
    EXPECT_EQ(job.count, 1);
    for (const double east : {42, 44}) { // where it was, and where it is
        const vec3 texels = place.toTexels(0, at(east, 0), 2);
        EXPECT_LE(static_cast<float>(job.x), texels.x - texels.z);
        EXPECT_LE(static_cast<float>(job.y), texels.y - texels.z);
        EXPECT_GE(static_cast<float>(job.x + job.width), texels.x + texels.z);
        EXPECT_GE(static_cast<float>(job.y + job.height), texels.y + texels.z);
    }
    EXPECT_LT(job.width * job.height, 40 * 40);
    frames(60); // at rest it joins the others, once
    EXPECT_TRUE(shadows.getJobs().empty());
    poses.pop_back(); // and what goes leaves no shadow
    frame();
    EXPECT_EQ(drawn(0), 2U);
    EXPECT_EQ(shadows.getJobs()[1].width, 1024);
}

TEST_F(ShadowsOf, WhatIsFarGoesByTexelsAndInTurn) {
    stand(0, 300, 60); // into three maps
    stand(0, 1200, 60);
    frame();
    std::size_t jobs[NUM_SHADOW_MAPS] = {};
    for (int i = 0; i < 120; i++) { // a ship at 6 m/s, 20 frames a second
        for (std::size_t k = 0; k < 2; k++)
            poses[k] = EllipsoidModel().getWGSTransform(at(0.3 * i, k ? 1200 : 300));
        frame();
        EXPECT_LE(shadows.getJobs().size(), 1U);
        for (int map = 0; map < NUM_SHADOW_MAPS; map++)
            jobs[map] += drawn(map);
    }
    EXPECT_NEAR(static_cast<double>(jobs[1]), 57, 5); // 0.35 of 0.88 m: every second frame
    EXPECT_NEAR(static_cast<double>(jobs[2]), 27, 5);
    EXPECT_NEAR(static_cast<double>(jobs[3]), 9, 3);
}
