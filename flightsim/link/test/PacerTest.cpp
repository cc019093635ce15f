// SPDX-License-Identifier: MIT
#include "flightsim/link/Pacer.h"
#include "program/Clock.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace flightsim {
namespace {

using program::NS_PER_MS;
using program::NS_PER_SECOND;

constexpr std::int64_t STEP_NS = 20 * NS_PER_MS;
constexpr std::int64_t START_NS = 5'000 * NS_PER_SECOND;

TEST(Pacer, LateSendsDoNotShiftWhatFollows) {
    Pacer pacer;
    std::mt19937 random(3);
    std::int64_t now_ns = START_NS;
    double squares = 0, worst = 0;
    constexpr int N = 10'000;
    for (int i = 0; i < N; i++) {
        const std::int64_t due_ns = pacer.due(7 + i * STEP_NS, now_ns);
        ASSERT_EQ(due_ns, START_NS + i * STEP_NS);
        const std::int64_t late_ns = i ? static_cast<std::int64_t>(random() % 9'000'000) : 0;
        now_ns = due_ns + late_ns;
        pacer.sent(now_ns);
        squares += double(late_ns) * double(late_ns);
        worst = std::max(worst, double(late_ns));
    }
    EXPECT_EQ(pacer.getStats().count, N);
    EXPECT_NEAR(pacer.getStats().rms_us(), std::sqrt(squares / N) * 1e-3, 1e-6);
    EXPECT_NEAR(pacer.getStats().max_us(), worst * 1e-3, 1e-6);
    EXPECT_EQ(pacer.getStats().moved, 0);
}

TEST(Pacer, CatchesUpWithoutBunchingAndGoesOnFromWhereALongStallEnded) {
    for (const std::int64_t stall_ns : {300 * NS_PER_MS, 60 * NS_PER_SECOND}) {
        const bool is_long = stall_ns > NS_PER_SECOND;
        Pacer pacer;
        std::int64_t sent_ns = START_NS;
        for (int i = 0; i < 100; i++) {
            std::int64_t due_ns = pacer.due(i * STEP_NS, sent_ns);
            if (i == 10) due_ns += stall_ns;
            ASSERT_GE(due_ns - sent_ns, i == 0 ? 0 : is_long && i > 11 ? STEP_NS : STEP_NS / 2);
            // Back on schedule, or still as late as the stall made it.
            const std::int64_t late_ns = due_ns - (START_NS + i * STEP_NS);
            EXPECT_TRUE(i < 46 || late_ns == (is_long ? stall_ns : 0)) << late_ns;
            pacer.sent(sent_ns = due_ns);
        }
        EXPECT_EQ(pacer.getStats().moved, is_long);
        EXPECT_NEAR(pacer.getStats().max_us(), double(stall_ns) * 1e-3, 1) << "the stall shows";
    }
}

} // namespace
} // namespace flightsim
