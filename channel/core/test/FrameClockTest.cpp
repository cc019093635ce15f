// SPDX-License-Identifier: MIT
#include "FrameClock.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

/// A clock that only waiting and the test itself move on.
struct FrameClockTest : testing::Test {
    FrameClock::Time time{[this] { return now; },
                          [this](double until) {
                              waits++;
                              now = std::max(now, until);
                          }};
    double now = 1000;
    int waits = 0;
};

TEST_F(FrameClockTest, AFixedStepWithoutRateNeedsNoRealTime) {
    FrameClock clock(0, 0.02, time);
    for (int i = 0; i < 600; i++)
        EXPECT_EQ(clock.beginFrame(), 0.02f);
    EXPECT_EQ(waits, 0);
}

TEST_F(FrameClockTest, FramesKeepToTheRateAndAStallIsNotMadeUpFor) {
    FrameClock clock(100, 0, time);
    for (int i = 0; i < 100; i++) {
        EXPECT_NEAR(clock.beginFrame(), 0.01, 1e-6);
        EXPECT_NEAR(now, 1000 + i * 0.01, 1e-6) << "late frames would add up";
        EXPECT_FALSE(clock.isLate());
        now += 0.003; // work
        EXPECT_FALSE(clock.isBehind());
    }
    EXPECT_EQ(waits, 99);
    now += 0.5;
    EXPECT_TRUE(clock.isBehind());
    EXPECT_NEAR(clock.beginFrame(), 0.503, 1e-6);
    EXPECT_TRUE(clock.isLate());
    EXPECT_NEAR(clock.beginFrame(), 0.01, 1e-6);
    EXPECT_FALSE(clock.isLate());
}

} // namespace
