// SPDX-License-Identifier: MIT
#include "ScaleGovernor.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

constexpr double BUDGET = 1 / 20.0; // s
constexpr float LEAST = 0.5f;

/// A renderer whose frames take a fixed time and one that grows with the pixels.
struct Renderer {
    double fixed, per_picture; ///< seconds; of a picture at full scale
    float scale = 1;
    ScaleGovernor governor{};

    double seconds() const {
        return fixed + per_picture * static_cast<double>(scale) * static_cast<double>(scale);
    }
    /// Draws so long, s. The number of changes of the scale.
    int run(double time) {
        int changes = 0;
        while (time > 0) {
            time -= seconds();
            const float before = scale;
            scale = governor.update(seconds(), scale);
            changes += scale != before;
        }
        return changes;
    }
};

TEST(ScaleGovernor, SoonHoldsTheRateWhereverSomeScaleAllowsItAndSettles) {
    for (const float start : {1.0f, 0.5f})
        for (double fixed : {0.0, 0.01, 0.02, 0.03, 0.04})
            for (double per_picture = 0.005; per_picture < 0.4; per_picture *= 1.07) {
                Renderer r{fixed, per_picture, start};
                if (fixed + per_picture * 0.25 > 0.9 * BUDGET) continue; // hardly any does
                r.run(6);
                EXPECT_LE(r.seconds(), BUDGET) << fixed << ' ' << per_picture;
                EXPECT_TRUE(r.seconds() > 0.65 * BUDGET || r.scale == 1)
                    << fixed << ' ' << per_picture;
                EXPECT_EQ(r.run(60), 0) << fixed << ' ' << per_picture;
            }
}

TEST(ScaleGovernor, NeverGoesBelowWhatHelps) {
    for (double per_picture = 0.005; per_picture < 1; per_picture *= 1.3)
        for (double fixed : {0.06, 0.1, 0.2}) { // no scale will do
            Renderer r{fixed, per_picture};
            r.run(30);
            EXPECT_GE(r.scale, LEAST);
            const double least = fixed + 0.25 * per_picture;
            EXPECT_LE(r.seconds(), 1.12 * least) << fixed << ' ' << per_picture;
            if (fixed + per_picture < 1.02 * least) { // all of the pixels are worth less
                EXPECT_GT(r.scale, 0.8f) << fixed << ' ' << per_picture;
            }
        }
}

TEST(ScaleGovernor, TheDetailComesBackWhenTheLoadGoes) {
    Renderer r{0.005, 0.2};
    r.run(6);
    EXPECT_LT(r.scale, 0.6f);
    EXPECT_GE(r.scale, LEAST);
    r.per_picture = 0.01;
    r.run(6);
    EXPECT_EQ(r.scale, 1);
}

TEST(ScaleGovernor, ASlowFrameNowAndThenChangesNothing) {
    ScaleGovernor governor;
    for (int i = 0; i < 1200; i++)
        EXPECT_EQ(governor.update(i % 12 == 5 ? 5.0 : 0.04, 0.5f), 0.5f);
}

} // namespace
