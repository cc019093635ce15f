// SPDX-License-Identifier: MIT
#include "render/scene/PictureRect.h"
#include "ig/math/quat.h"
#include "ig/scene/Camera.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace ig;

namespace {

/// Where the picture shows a place (E); w: not above 0 behind the eye.
vec4 project(const FrameView& view, const vec3& place) {
    const vec3 at = view.view * place;
    const auto& p = view.projection.columns;
    const float w = p[2].w * at.z + p[3].w;
    return {(p[0].x * at.x + p[2].x * at.z + p[3].x) / w,
            (p[1].y * at.y + p[2].y * at.z + p[3].y) / w, 0, w};
}

/// All that is seen of spheres all around lies in their parts of the picture, which are hardly
/// larger than need be.
void expectSpheresCovered(const Camera& camera) {
    const FrameView view(camera, 720, true);
    for (int i = 0; i < 400; i++) {
        const float angle = 0.7f * static_cast<float>(i), away = 4 + static_cast<float>(i % 40);
        const vec3 center(away * std::cos(angle), away * std::sin(angle),
                          static_cast<float>(i % 13) - 6);
        const float radius = 0.5f + static_cast<float>(i % 7) / 3;
        const PictureRect rect = PictureRect::of(view, center, radius);
        PictureRect seen;
        for (int j = 0; j < 500; j++) {
            const float z = 2 * (static_cast<float>(j) + 0.5f) / 500 - 1, r = std::sqrt(1 - z * z);
            const float turn = 2.39996f * static_cast<float>(j);
            const vec4 at =
                project(view, center + vec3(r * std::cos(turn), r * std::sin(turn), z) * radius);
            if (at.w <= 0 || std::abs(at.x) > 1 || std::abs(at.y) > 1) continue;
            seen.include({{at.x, at.y}, {at.x + 1e-5f, at.y + 1e-5f}});
            EXPECT_TRUE(at.x >= rect.low.x && at.x <= rect.high.x);
            EXPECT_TRUE(at.y >= rect.low.y && at.y <= rect.high.y);
        }
        const bool is_cut =
            std::max(-rect.low.x, rect.high.x) >= 1 || std::max(-rect.low.y, rect.high.y) >= 1;
        const auto area = [](const PictureRect& r) {
            return (r.high.x - r.low.x) * (r.high.y - r.low.y);
        };
        if (is_cut || seen.isEmpty()) continue;
        EXPECT_LT(area(rect), 2.5f * area(seen)) << i;
    }
}

} // namespace

TEST(PictureRect, HoldsWhatIsSeenOfASphere) {
    Camera camera;
    camera.setWgsPosition({-155, 19.7, 30});
    camera.setWgsHPR({30, 20, 10});
    camera.setPerspective(50, 16.0f / 9, 0.1, 1e6);
    expectSpheresCovered(camera);
    camera.setProjection(frustum(-0.05, 0.12, -0.04, 0.05, 0.1, 1e6, 0.3, -0.2));
    expectSpheresCovered(camera);
    camera.setOrtho(20, 12, -50, 1000);
    expectSpheresCovered(camera);
}

TEST(PictureRect, HoldsWhatIsSeenOfAFlatBoxThatReachesBelowTheEye) {
    Camera camera;
    camera.setWgsPosition({-155, 19.7, 30});
    camera.setWgsHPR({0, 10, 0}); // north, a little down
    camera.setPerspective(50, 16.0f / 9, 0.1, 1e6);
    const FrameView view(camera, 720, true);
    const vec3 center(20, 30, -30), half(15, 60, 1);
    const PictureRect rect = PictureRect::ofBox(view, center, half);
    PictureRect seen;
    for (int i = 0; i <= 100; i++)
        for (int j = 0; j <= 4000; j++) {
            const vec3 off(half.x * (static_cast<float>(i) / 50 - 1),
                           half.y * (static_cast<float>(j) / 2000 - 1), j % 2 ? half.z : -half.z);
            const vec4 at = project(view, center + off);
            if (at.w <= 0 || std::abs(at.x) > 1 || std::abs(at.y) > 1) continue;
            seen.include({{at.x, at.y}, {at.x + 1e-5f, at.y + 1e-5f}});
        }
    EXPECT_NEAR(rect.high.y, seen.high.y, 0.01f);
    EXPECT_LE(rect.low.x, seen.low.x + 1e-4f);
    EXPECT_LT(rect.high.y, 0.5f);
    EXPECT_GT(rect.low.x, -0.5f) << "nothing of it is on the left";
    EXPECT_EQ(rect.low.y, -1);
    EXPECT_EQ(rect.high.x, 1);
    EXPECT_TRUE(PictureRect::ofBox(view, {0, -99, -30}, half).isEmpty());
}

TEST(PictureRect, PartsThatLieApartStayApart) {
    PictureParts parts;
    parts.add({{-1, -1}, {-0.5f, 1}});
    parts.add({{0.5f, -1}, {1, 1}});
    EXPECT_EQ(parts.getRects().size(), 2U);
    parts.add({{-0.9f, -0.9f}, {-0.5f, 0}});
    EXPECT_EQ(parts.getRects().size(), 2U);
    parts.add({{-0.6f, -1}, {0.6f, 1}}); // joins them
    ASSERT_EQ(parts.getRects().size(), 1U);
    EXPECT_EQ(parts.getRects()[0].low.x, -1);
    EXPECT_EQ(parts.getRects()[0].high.x, 1);
}

TEST(PictureRect, IsAllOfItAroundTheEyeAndNothingBehind) {
    Camera camera;
    camera.setWgsPosition({-155, 19.7, 30});
    camera.setWgsHPR({0, 0, 0}); // north
    camera.setPerspective(50, 16.0f / 9, 0.1, 1e6);
    const FrameView view(camera, 720, true);
    const PictureRect around = PictureRect::of(view, {0, -1, 0}, 3);
    EXPECT_EQ(around.low.x, -1);
    EXPECT_EQ(around.high.y, 1);
    EXPECT_TRUE(PictureRect::of(view, {0, -9, 0}, 3).isEmpty());
    PictureRect sum;
    sum.include(PictureRect::of(view, {0, -9, 0}, 3));
    EXPECT_TRUE(sum.isEmpty());
}

// All that isn't below the horizon, and where that is level, hardly more.
TEST(PictureRect, HoldsTheSky) {
    constexpr float DIP = 0.05f;
    const auto areaAbove = [](double pitch, double roll) {
        Camera camera;
        camera.setWgsPosition({-155, 19.7, 30});
        camera.setWgsHPR({30, pitch, roll});
        camera.setPerspective(50, 16.0f / 9, 0.1, 1e6);
        const FrameView view(camera, 720, true);
        const PictureRect rect = PictureRect::above(view, DIP);
        const auto& p = view.projection.columns;
        for (int i = 0; i < 41 * 41; i++) {
            const vec2 at{static_cast<float>(i % 41) / 20 - 1, static_cast<float>(i / 41) / 20 - 1};
            const vec3 ray = normalize(vec3(at.x / p[0].x, at.y / p[1].y, -1));
            if (dot(ray, view.view.columns[2].xyz()) < -DIP) continue;
            EXPECT_TRUE(at.x >= rect.low.x && at.x <= rect.high.x);
            EXPECT_TRUE(at.y >= rect.low.y && at.y <= rect.high.y);
        }
        return rect.isEmpty() ? 0 : (rect.high.x - rect.low.x) * (rect.high.y - rect.low.y);
    };
    EXPECT_NEAR(areaAbove(0, 0), 2 * (1 + DIP / std::tan(0.436f)), 0.1f);
    for (const double roll : {-170.0, -60.0, 20.0, 90.0})
        for (const double pitch : {-40.0, 5.0, 24.0})
            EXPECT_GT(areaAbove(pitch, roll), 0);
    EXPECT_EQ(areaAbove(-90, 0), 4);
    EXPECT_EQ(areaAbove(60, 0), 0);
}
