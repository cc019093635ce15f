// SPDX-License-Identifier: MIT
#include "render/scene/CloudLayer.h"

#include "render/scene/HazeColor.h"
#include "render/scene/ShaderConstants.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

using namespace ig;

namespace {

/// Share of the field that is more than half covered.
double coveredShare(const CloudLayer& layer, float cover) {
    constexpr int EDGE = 97; // no divisor of the field's
    int covered = 0;
    for (int i = 0; i < EDGE * EDGE; i++) {
        const vec2 place{static_cast<float>(i % EDGE) / EDGE, static_cast<float>(i / EDGE) / EDGE};
        covered += layer.getDensity(place, 0, cover) > 0.5f;
    }
    return covered / static_cast<double>(EDGE * EDGE);
}

} // namespace

TEST(CloudsOf, ACoverCoversAsMuchOfTheEarth) {
    const CloudLayer layer;
    for (const float cover : {0.0f, 0.25f, 0.5f, 0.75f, 1.0f})
        EXPECT_NEAR(coveredShare(layer, cover), double{cover}, 0.03) << cover;
    FrameInfo frame; // a closed layer that forms
    frame.cloud_cover = 0.4f;
    frame.overcast = 0.5f;
    EXPECT_FLOAT_EQ(CloudLayer::getCover(frame), 0.7f);
    frame.overcast = 1;
    EXPECT_EQ(coveredShare(layer, CloudLayer::getCover(frame)), 1);
}

// However long the wind has blown.
TEST(CloudsOf, TheWindCarriesThemAlong) {
    CloudLayer layer;
    const dvec3 pad{-155.06, 19.71, 0};
    FrameInfo frame;
    frame.wind = {17, -9};
    frame.time = 3e6;
    layer.drift(frame);
    layer.follow(pad);
    const vec2 before = layer.getPlace(pad);
    frame.time += 10;
    layer.drift(frame);
    layer.drift(frame); // other eyes of the same frame
    const vec2 after = layer.getPlace(pad);
    const auto metres = [](float way) { return (way - std::round(way)) * CLOUD_PERIOD; };
    EXPECT_NEAR(metres(before.x - after.x), 170, 0.1);
    EXPECT_NEAR(metres(before.y - after.y), -90, 0.1);
    frame.wind = {-60, 60}; // turns: from here on, not from the beginning
    frame.time += 0.5;
    layer.drift(frame);
    EXPECT_NEAR(metres(after.x - layer.getPlace(pad).x), -30, 0.1);
}

TEST(CloudsOf, NothingJumpsWhereAnEyeFliesThroughThem) {
    const CloudLayer layer;
    float most = 0, least = 1;
    for (const float height : {0.0f, 0.4f, 0.9f}) {
        float last = layer.getDensity({0, 0.3f}, height, 0.5f);
        for (int i = 1; i <= 8192; i++) { // 3 m each, across the seam
            const float now =
                layer.getDensity({static_cast<float>(i % 8192) / 8192, 0.3f}, height, 0.5f);
            EXPECT_LE(std::abs(now - last), 0.12f) << i;
            last = now;
            most = std::max(most, now);
            least = std::min(least, now);
        }
    }
    EXPECT_EQ(most, 1);
    EXPECT_EQ(least, 0);
}

TEST(HazeOf, TheHorizonIsSmoothAndKeepsTheGlowAboutTheSun) {
    const vec3 sun = vec3(0.6f, 0.7f, 0.2f);
    std::vector<HazeColor::Sample> samples;
    const float low = std::hypot(sun.x, sun.y);
    for (int i = 0; i < 160; i++) {
        const float azimuth = 2 * PI * static_cast<float>(i) / 160;
        const vec2 d{std::sin(azimuth), std::cos(azimuth)};
        const float x = (d.x * sun.x + d.y * sun.y) / low;
        const float stripe = i % 8 == 0 ? 0.3f : 0; // a cloud that may not show
        samples.push_back({{3 * d.x, 3 * d.y}, {1 + 0.4f * x + stripe, 0.8f + 0.2f * x * x, 0.5f}});
    }
    const HazeColor haze = HazeColor::fit(samples, sun);
    const vec2 at{sun.x / low, sun.y / low};
    EXPECT_NEAR(haze.get(at).x, 1.44f, 0.03f);
    EXPECT_NEAR(haze.get({-5 * at.x, -5 * at.y}).x, 0.64f, 0.03f);
    EXPECT_NEAR(haze.get(at).y, 1.0f, 0.02f);
    EXPECT_NEAR(haze.get({at.y, -at.x}).y, 0.8f, 0.02f);
    const HazeColor even = haze.evened();
    EXPECT_NEAR(even.get(at).x, even.get({-at.x, -at.y}).x, 1e-5f);
    EXPECT_NEAR(even.get(at).y, 0.9f, 0.02f);

    // Under a sun that has no azimuth.
    const vec3 overhead = HazeColor::fit(samples, {0, 0, 1}).get({1, 0});
    EXPECT_NEAR(overhead.x, 1.04f, 0.05f);
}
