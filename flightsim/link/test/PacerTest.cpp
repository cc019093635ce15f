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

TEST(Pacer, AfterTenMinutesRecordsAreAsExactAsAtTheStart) {
    constexpr std::int64_t FLIGHT_NS = 600 * NS_PER_SECOND;
    for (const int rate : {48, 60, 90, 250}) {
        Pacer pacer;
        std::mt19937 random(3);
        std::int64_t now_ns = START_NS; // of a clock that only the sender's waits move
        double squares = 0;
        for (int i = 0; i <= 600 * rate; i++) {
            now_ns = std::max(now_ns, pacer.due(recordTime_ns(i, rate), now_ns));
            // Waking up takes what it takes, now and then more than the time to the next record.
            const std::int64_t late_ns = i == 0 ? 0
                                         : i % 1000 == 1
                                             ? 1500 * NS_PER_MS / rate
                                             : static_cast<std::int64_t>(random() % 1'900'000);
            now_ns += late_ns;
            pacer.sent(now_ns);
            const double exact_ns = double(START_NS) + double(NS_PER_SECOND) * i / rate;
            squares += (double(now_ns) - exact_ns) * (double(now_ns) - exact_ns);
        }
        EXPECT_GE(now_ns, START_NS + FLIGHT_NS);
        EXPECT_LE(now_ns, START_NS + FLIGHT_NS + 2 * NS_PER_MS) << rate << " records a second";
        const double count = 600 * rate + 1;
        EXPECT_EQ(double(pacer.getStats().count), count);
        EXPECT_NEAR(pacer.getStats().rms_us(), std::sqrt(squares / count) * 1e-3, 1e-3);
        EXPECT_EQ(pacer.getStats().moved, 0);
    }
}

TEST(Pacer, CatchesUpWithoutBunchingAndGoesOnFromWhereALongStallEnded) {
    for (const std::int64_t stall_ns : {900 * NS_PER_MS, 60 * NS_PER_SECOND}) {
        const bool is_long = stall_ns > NS_PER_SECOND;
        Pacer pacer;
        std::int64_t sent_ns = START_NS;
        for (int i = 0; i < 150; i++) {
            std::int64_t due_ns = pacer.due(i * STEP_NS, sent_ns);
            if (i == 10) due_ns += stall_ns;
            ASSERT_GE(due_ns - sent_ns, i == 0 ? 0 : is_long && i > 11 ? STEP_NS : STEP_NS / 2);
            // Back on schedule, or still as late as the stall made it.
            const std::int64_t late_ns = due_ns - (START_NS + i * STEP_NS);
            EXPECT_TRUE(i < 106 || late_ns == (is_long ? stall_ns : 0)) << late_ns;
            pacer.sent(sent_ns = due_ns);
        }
        EXPECT_EQ(pacer.getStats().moved, is_long);
        EXPECT_NEAR(pacer.getStats().max_us(), double(stall_ns) * 1e-3, 1) << "the stall shows";
    }
}

} // namespace
} // namespace flightsim
