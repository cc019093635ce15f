// SPDX-License-Identifier: MIT
#include "ScaleGovernor.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

/// A renderer whose frames take a fixed time and one that grows with the pixels.
struct Renderer {
    double fixed, per_picture; ///< seconds at full scale
    float scale = 1;
    ScaleGovernor governor{};

    double seconds() const {
        return fixed + per_picture * static_cast<double>(scale) * static_cast<double>(scale);
    }
    /// The number of changes of the scale, which the renderer keeps in its range.
    int run(int frames) {
        int changes = 0;
        for (int i = 0; i < frames; i++) {
            const float before = scale;
            scale = std::min(std::max(governor.update(seconds(), scale), 0.25f), 1.0f);
            changes += scale != before;
        }
        return changes;
    }
};

TEST(ScaleGovernor, HoldsTheRateWhereverSomeScaleAllowsIt) {
    for (double fixed : {0.0, 0.01, 0.03, 0.04})
        for (double per_picture = 0.005; per_picture < 0.3; per_picture *= 1.07) {
            Renderer r{fixed, per_picture};
            if (fixed + per_picture * 0.0625 > ScaleGovernor::BUDGET) continue; // none does
            r.run(20 * ScaleGovernor::FRAMES);
            EXPECT_LE(r.seconds(), ScaleGovernor::BUDGET) << fixed << ' ' << per_picture;
            EXPECT_EQ(r.run(50 * ScaleGovernor::FRAMES), 0) << fixed << ' ' << per_picture;
        }
}

TEST(ScaleGovernor, TheDetailComesBackWhenTheLoadGoes) {
    Renderer r{0.005, 0.2};
    r.run(20 * ScaleGovernor::FRAMES);
    EXPECT_LT(r.scale, 0.6f);
    r.per_picture = 0.01;
    r.run(20 * ScaleGovernor::FRAMES);
    EXPECT_EQ(r.scale, 1);
    r.per_picture = 10; // beyond all help: the least there is
    r.run(40 * ScaleGovernor::FRAMES);
    EXPECT_EQ(r.scale, 0.25f);
}

TEST(ScaleGovernor, ASlowFrameNowAndThenChangesNothing) {
    ScaleGovernor governor;
    for (int i = 0; i < 100 * ScaleGovernor::FRAMES; i++)
        EXPECT_EQ(governor.update(i % ScaleGovernor::FRAMES == 5 ? 5.0 : 0.04, 0.5f), 0.5f);
}

} // namespace
