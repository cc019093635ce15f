// SPDX-License-Identifier: MIT
#include "FrameClock.h"
#include "SwapWatch.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace {

/// A channel in a window on a made-up display, in made-up time. Wake-ups are up to 0.2 ms late;
/// work varies by a millisecond at most, and takes three more in a frame of a hundred.
struct Show {
    double display = 60, told = display; ///< refresh rate, and what the window system says of it
    double asked = 60;                   ///< frames a second
    double work = 0.005;                 ///< s
    bool waits = true;                   ///< swaps do
    double noise = 1;                    ///< how much of this happens
    double phase = 0;                    ///< of the display's blanks, s
    double cost = 0.0003;                ///< of a swap besides, s
    double held = 0;                     ///< s that every swap is held back instead

    double now = 1000;
    std::uint64_t seed = 1;
    FrameClock clock{asked, 0, {[this] { return now; }, [this](double due) { sleep(due); }}};
    SwapWatch watch{};
    std::vector<double> begins{}, blanks{};
    std::vector<double> delays{}; ///< from the first to the second, ms
    double scene = 0;             ///< s
    double shortest = 1;          ///< length of a frame, s
    int late = 0;

    double random() { // 0 to 1
        seed = seed * 6364136223846793005u + 1442695040888963407u;
        return static_cast<double>(seed >> 40) / static_cast<double>(1 << 24);
    }
    void sleep(double due) { now = std::max(now, due) + 0.0002 * noise * random(); }

    void run(double seconds) {
        for (auto* times : {&begins, &blanks, &delays})
            times->clear();
        scene = late = 0;
        shortest = 1;
        for (const double end = now + seconds; now < end;) {
            const bool may_wait = watch.mayWait(now);
            clock.setRefreshRate(may_wait ? told : 0);
            const auto length = static_cast<double>(clock.beginFrame());
            scene += length;
            shortest = std::min(shortest, length);
            begins.push_back(now);
            now += work + noise * (0.001 * random() + (random() < 0.01 ? 0.003 : 0));
            const double finished = now;
            swap(may_wait);
            clock.endShown(finished, now);
            late += clock.isLate();
        }
    }
    void swap(bool may_wait) {
        const double before = now;
        now += cost;
        blanks.push_back(std::ceil((now - phase) * display) / display + phase);
        delays.push_back(1e3 * (blanks.back() - begins.back()));
        if (may_wait && held > 0) sleep(before + held);
        if (may_wait && waits && held == 0) sleep(blanks.back());
        if (may_wait) watch.addSwap(now - before, now);
    }
    double rate() const {
        return static_cast<double>(begins.size() - 1) / (begins.back() - begins.front());
    }
    /// Of 99 of 100 pictures at most, ms.
    double delay() {
        std::ranges::sort(delays);
        return delays[delays.size() * 99 / 100];
    }
    /// Share of these that follow the one before as they should.
    static double evenness(double period, const std::vector<double>& times) {
        int even = 0;
        for (std::size_t i = 1; i < times.size(); i++)
            even += std::abs(times[i] - times[i - 1] - period) < 0.001;
        return even / static_cast<double>(times.size() - 1);
    }
};

TEST(DisplayClock, FramesAreEvenAndAsLateAsTheirWorkAllowsOnEveryDisplay) {
    struct Case {
        double display, told, work, rate;
    };
    for (const Case& c :
         {Case{59.94, 60, 0.005, 59.94}, Case{60.02, 60, 0.005, 60.02},
          Case{59.94, 59, 0.005, 59.94}, Case{144, 144, 0.005, 48}, Case{75, 75, 0.005, 37.5},
          Case{30, 30, 0.005, 30}, Case{59.94, 60, 0.019, 29.97}, Case{144, 144, 0.015, 48}}) {
        Show show{.display = c.display, .told = c.told, .work = c.work};
        show.run(3);
        EXPECT_GT(show.clock.getRefreshRate(), 0) << c.display << " was not found";
        show.run(20); // slow frames have shown how early it has to be
        show.run(100);
        EXPECT_NEAR(show.clock.getRefreshRate(), c.display, 0.01);
        EXPECT_NEAR(show.rate(), c.rate, 0.02 * c.rate) << c.display;
        EXPECT_GT(show.evenness(1 / c.rate, show.blanks), 0.998) << c.display << ' ' << c.work;
        EXPECT_LT(show.delay(), 1e3 * c.work + 6) << c.display;
        EXPECT_EQ(show.late > 10, show.work > 1 / show.asked) << show.late;
        EXPECT_NEAR(show.scene, 100, 0.05);
        EXPECT_GT(show.shortest, 1 / c.rate - 0.0001) << "lengths are not those on the display";
    }
}

TEST(DisplayClock, OneWhoseBlanksComeJustAfterTheFramesOrVeryOftenIsFound) {
    for (const double display : {60, 240, 360})
        for (const double noise : {0.1, 1.0})
            for (int i = 0; i < 16; i++) {
                const double phase = (i + 0.6) / 16 / display;
                Show show{.display = display, .told = display, .noise = noise, .phase = phase};
                show.run(10);
                show.run(10);
                EXPECT_NEAR(show.clock.getRefreshRate(), display, 0.1) << noise << ' ' << phase;
                EXPECT_NEAR(show.rate(), 60, 0.1);
                EXPECT_GT(show.evenness(1 / 60.0, show.blanks), 0.95) << display << ' ' << noise;
                EXPECT_LT(show.delay(), 13) << display;
            }
}

TEST(DisplayClock, FramesKeepTheirOwnTimeWhereSwapsDontWait) {
    for (const double noise : {0, 1})
        for (const double cost : {0.0003, 0.003})
            for (const double work : {0.005, 0.012}) {
                Show show{.display = 59, .told = 60, .work = work, .waits = false};
                show.cost = cost;
                show.noise = noise;
                show.run(60);
                EXPECT_EQ(show.clock.getRefreshRate(), 0) << cost << ' ' << work;
                EXPECT_NEAR(show.rate(), 60, 0.3) << cost << ' ' << work;
                EXPECT_GT(show.evenness(1 / 60.0, show.begins), 0.95) << cost << ' ' << work;
                EXPECT_LE(show.late, 1) << cost << ' ' << work;
            }
}

TEST(DisplayClock, AnotherDisplayIsFoundAndOneThatCeasesToWaitIsLeft) {
    Show show;
    show.run(5);
    EXPECT_GT(show.clock.getRefreshRate(), 0);
    show.phase = 0.005; // switched to another mode
    show.run(0.5);
    EXPECT_GT(show.evenness(1 / 60.0, show.blanks), 0.7);
    show.run(5);
    EXPECT_LT(show.delay(), 11);
    show.waits = false; // without the compositor, say
    show.run(2);
    EXPECT_EQ(show.clock.getRefreshRate(), 0);
    EXPECT_GT(show.shortest, 0.012);
    show.waits = true;
    show.display = show.told = 75;
    show.run(3);
    EXPECT_NEAR(show.clock.getRefreshRate(), 75, 0.1);
}

TEST(DisplayClock, AWindowWhoseSwapsAreHeldBackGoesOnWithoutThem) {
    Show show;
    show.run(5);
    show.held = 1;
    show.run(60);
    EXPECT_GT(show.begins.size(), 57 * 60u); // two of them were waited for
    show.held = 0;
    show.run(5);
    EXPECT_EQ(show.clock.getRefreshRate(), 0); // nobody knows
    show.watch.noteSign();
    show.run(5);
    EXPECT_NEAR(show.clock.getRefreshRate(), 60, 0.1);
    show.held = 1; // for once: the driver was busy
    show.run(0.9);
    show.held = 0;
    show.run(10);
    EXPECT_NEAR(show.clock.getRefreshRate(), 60, 0.1);
}

} // namespace
