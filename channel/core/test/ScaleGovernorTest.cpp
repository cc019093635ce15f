// SPDX-License-Identifier: MIT
#include "ScaleGovernor.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

constexpr double BUDGET = ScaleGovernor::BUDGET;

/// A renderer whose frames take a fixed time and one that grows with the pixels.
struct Renderer {
    double fixed, per_picture; ///< seconds; of a picture at full scale
    float scale = 1;
    ScaleGovernor governor{};

    double seconds() const {
        return fixed + per_picture * static_cast<double>(scale) * static_cast<double>(scale);
    }
    /// Draws so long, s. The number of changes of the scale, which is kept in the renderer's range.
    int run(double time) {
        int changes = 0;
        while (time > 0) {
            time -= seconds();
            const float before = scale;
            scale = std::clamp(governor.update(seconds(), scale), 0.25f, 1.0f);
            changes += scale != before;
        }
        return changes;
    }
};

TEST(ScaleGovernor, SoonHoldsTheRateWhereverSomeScaleAllowsItAndSettles) {
    for (double fixed : {0.0, 0.01, 0.03, 0.04})
        for (double per_picture = 0.005; per_picture < 0.4; per_picture *= 1.07) {
            Renderer r{fixed, per_picture};
            if (fixed + per_picture * 0.0625 > 0.95 * BUDGET) continue; // hardly any does
            r.run(6);
            EXPECT_LE(r.seconds(), BUDGET) << fixed << ' ' << per_picture;
            EXPECT_TRUE(r.seconds() > 0.6 * BUDGET || r.scale == 1) << fixed << ' ' << per_picture;
            EXPECT_EQ(r.run(60), 0) << fixed << ' ' << per_picture;
        }
}

TEST(ScaleGovernor, TheDetailComesBackWhenTheLoadGoes) {
    Renderer r{0.005, 0.2};
    r.run(6);
    EXPECT_LT(r.scale, 0.6f);
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
