// SPDX-License-Identifier: MIT
#include "ig/action/TimerManager.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

using namespace ig;

namespace {

/// A manager with one timer and its count of expiries.
struct Counted {
    explicit Counted(float seconds) {
        timer = timers.addTimer(seconds);
        timer->m_sig_expired.append(
            {this, [this](TimerManager::Timer* told) { count += told == timer; }});
    }
    TimerManager timers;
    TimerManager::Timer* timer = nullptr;
    int count = 0;
};

} // namespace

TEST(TimerManager, ExpiresInEveryFrameUpToItsOwnRateAndKeepsItsPeriodAbove) {
    for (double rate : {20.0, 59.94, 99.0, 100.0, 144.0, 333.0, 1000.0}) {
        SCOPED_TRACE(rate);
        Counted c(0.01f);
        std::mt19937 random(1);
        // Frame ends jitter by up to 15 % of a frame about their places.
        std::uniform_real_distribution<double> jitter(-0.15, 0.15);
        double end = 0;
        for (int frame = 1; frame <= 2000; frame++) {
            const double next = (frame + jitter(random)) / rate;
            const int before = c.count;
            c.timers.update(static_cast<float>(next - end));
            end = next;
            ASSERT_LE(c.count - before, 1);
            const bool in_time = std::abs(end - c.count * 0.01) < 1 / rate;
            ASSERT_TRUE(rate <= 100 ? c.count == frame : c.count == before || in_time);
        }
        EXPECT_NEAR(c.count, std::min(rate, 100.0) * 2000 / rate, 1);
    }
}

TEST(TimerManager, LongFramesExpireOnceAndKeepThePhase) {
    Counted c(1);
    // 3.75 missed 2 and 3. 4 itself is nearer to 4 than 3.875 is, and 4.75 nearer to 5 than 5.5.
    const std::pair<float, int> steps[] = {
        {3.75f, 1}, {0.125f, 1}, {0.125f, 2}, {0.75f, 3}, {0.25f, 3}};
    for (const auto& [dt, count] : steps) {
        c.timers.update(dt);
        EXPECT_EQ(c.count, count) << dt;
    }
}

TEST(TimerManager, BadTimesChangeNothing) {
    Counted c(1);
    c.timers.update(0.5f);
    for (float wrong : {NAN, INFINITY, -10.0f, 0.0f}) {
        c.timers.update(wrong);
        EXPECT_FALSE(c.timers.addTimer(wrong));
    }
    c.timers.update(0.5f);
    EXPECT_EQ(c.count, 1);
}

TEST(TimerManager, HandlersMayAddTimers) {
    TimerManager timers;
    std::string log;
    timers.addTimer(1)->m_sig_expired.append(
        {&log, [&](TimerManager::Timer*) {
             log += 'a';
             timers.addTimer(1)->m_sig_expired.append(
                 {&timers, [&](TimerManager::Timer*) { log += 'n'; }});
             timers.update(1); // ignored: an advance is under way
         }});
    timers.update(1);
    EXPECT_EQ(log, "a");
    timers.update(1);
    EXPECT_EQ(log, "aan");
}
