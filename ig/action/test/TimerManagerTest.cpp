// SPDX-License-Identifier: MIT
#include "ig/action/TimerManager.h"

#include "ig/base/jLog.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

using namespace ig;

namespace {

constexpr float period = 0.01f;

/// A manager with one timer and its count of expiries.
struct Counted {
    explicit Counted(float seconds = period) {
        timer = timers.addTimer(seconds);
        timer->m_sig_expired.append({this, [this](TimerManager::Timer*) { count++; }});
    }
    TimerManager timers;
    TimerManager::Timer* timer = nullptr;
    int count = 0;
};

} // namespace

TEST(TimerManager, expires_once_in_every_frame_down_to_its_own_rate) {
    for (double rate : {20.0, 30.0, 59.94, 60.0, 90.0, 99.0, 100.0}) {
        SCOPED_TRACE(rate);
        Counted c;
        std::mt19937 random(1);
        // Frame ends jitter by up to 15 % of a frame about their places.
        std::uniform_real_distribution<double> jitter(-0.15, 0.15);
        double end = 0;
        int missed = 0;
        for (int frame = 1; frame <= 2000; frame++) {
            const double next = (frame + jitter(random)) / rate;
            const int before = c.count;
            c.timers.update(static_cast<float>(next - end));
            end = next;
            missed += c.count - before != 1;
        }
        EXPECT_EQ(missed, 0);
    }
}

TEST(TimerManager, keeps_its_period_on_average_at_higher_frame_rates) {
    for (double rate : {120.0, 144.0, 333.0, 1000.0}) {
        SCOPED_TRACE(rate);
        Counted c;
        double worst = 0;
        for (int frame = 1; frame <= 10 * static_cast<int>(rate); frame++) {
            const int before = c.count;
            c.timers.update(static_cast<float>(1 / rate));
            ASSERT_LE(c.count - before, 1);
            if (c.count != before)
                worst = std::max(worst, std::abs(frame / rate - c.count * double(period)));
        }
        EXPECT_NEAR(c.count, 1000, 1);
        // Nearest frame end: at most half a frame off, plus the rounding of the frame time.
        EXPECT_LE(worst, 0.5 / rate + 1e-5);
    }
}

TEST(TimerManager, long_frames_expire_once_and_keep_the_phase) {
    Counted c(1);
    c.timers.update(3.75f);
    EXPECT_EQ(c.count, 1);
    c.timers.update(0.125f); // due at 4, now 3.875: the next advance ends nearer
    EXPECT_EQ(c.count, 1);
    c.timers.update(0.125f);
    EXPECT_EQ(c.count, 2);
    c.timers.update(0.75f);
    EXPECT_EQ(c.count, 3) << "4.75 is nearer to 5 than 5.5 is";
    c.timers.update(0.25f);
    EXPECT_EQ(c.count, 3) << "5 was answered early";
}

TEST(TimerManager, bad_frame_times_change_nothing) {
    Counted c(1);
    c.timers.update(0.5f);
    for (float dt : {std::numeric_limits<float>::quiet_NaN(),
                     std::numeric_limits<float>::infinity(), -10.0f, 0.0f})
        c.timers.update(dt);
    EXPECT_EQ(c.count, 0);
    c.timers.update(0.5f);
    EXPECT_EQ(c.count, 1);
}

TEST(TimerManager, refuses_what_is_no_period) {
    TimerManager timers;
    int errors = 0;
    jLog::setSink([&](LogLevel level, std::string_view) { errors += level == LogLevel::error; });
    for (float wrong : {0.0f, -1.0f, std::numeric_limits<float>::quiet_NaN(),
                        std::numeric_limits<float>::infinity()})
        EXPECT_FALSE(timers.addTimer(wrong));
    jLog::setSink({});
    EXPECT_EQ(errors, 4);
}

TEST(TimerManager, handlers_may_remove_and_add_timers) {
    TimerManager timers;
    std::string log;
    const auto connect = [&](TimerManager::Timer* timer, std::function<void()> handler) {
        timer->m_sig_expired.append({&log, [handler](TimerManager::Timer*) { handler(); }});
    };
    TimerManager::Timer* a = timers.addTimer(1);
    TimerManager::Timer* b = timers.addTimer(1);
    connect(a, [&] {
        log += 'a';
        timers.removeTimer(a);
        timers.removeTimer(b);
        for (int i = 0; i < 50; i++)
            connect(timers.addTimer(1), [&] { log += 'n'; });
        timers.update(1); // ignored: an advance is under way
    });
    connect(a, [&] { log += '!'; });
    connect(b, [&] { log += 'b'; });
    timers.update(1);
    EXPECT_EQ(log, "a");
    timers.update(1);
    EXPECT_EQ(log, "a" + std::string(50, 'n'));
    timers.removeTimer(a); // dangling: only compared
    timers.removeTimer(nullptr);
}

TEST(TimerManager, signals_tell_the_timer_and_copies_start_empty) {
    Counted c(1);
    TimerManager::Timer* told = nullptr;
    c.timer->m_sig_expired.append({&told, [&](TimerManager::Timer* timer) { told = timer; }});
    TimerManager copy(c.timers);
    copy.update(5);
    EXPECT_EQ(c.count, 0);
    c.timers = copy;
    c.timers.update(1);
    EXPECT_EQ(c.count, 1);
    EXPECT_EQ(told, c.timer);
    EXPECT_EQ(told->getPeriod(), 1);
}
