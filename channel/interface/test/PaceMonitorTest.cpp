// SPDX-License-Identifier: MIT
#include "channel/interface/PaceMonitor.h"
#include "channel/interface/Texts.h"
#include "testkit/LogCapture.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

/// Frames at 50 a second, and records of a flight simulation, in made-up time.
struct PaceMonitorTest : testing::Test {
    PaceMonitorTest() { Texts::load("en"); }
    /// `age`: of the newest record at the hand-over; negative: no further record comes.
    void frame(double interval, bool late, double age = -1) {
        timing.begin += interval;
        timing.handed_over = timing.begin + 0.008;
        timing.late = late;
        if (age >= 0) {
            timing.records++;
            timing.last_record = timing.handed_over - age;
        }
        timing.silent = timing.begin > timing.last_record + 1;
        pace.addFrame(timing);
    }
    void frames(int count, bool late) {
        for (int i = 0; i < count; i++)
            frame(0.02, late);
    }
    std::vector<std::string> told() { return std::exchange(log.lines, {}); }
    void expectSummary(const std::string& part) {
        EXPECT_NE(pace.getSummary().find(part), std::string::npos) << pace.getSummary();
    }

    LogCapture log;
    PaceMonitor pace;
    FrameTiming timing{.begin = 100, .work = 0.03, .period = 0.02};
};

TEST_F(PaceMonitorTest, IntervalsAreToldBySizeAndAsShares) {
    frames(1, false);
    for (int i = 0; i < 96; i++)
        frame(0.0199, false);
    for (const double interval : {0.015, 0.025, 0.045, 0.1234})
        frame(interval, true);
    EXPECT_NE(pace.getStatistics().find("frame to frame 19.90 ms p50"), std::string::npos);
    frame(-1, false); // one in which a message box ran others
    frame(1.02, false);
    expectSummary("frame to frame: 19.90 ms p50, 45.0");
    expectSummary(" ms p99, 123.4 ms max; 4 frames late\n");
    expectSummary("in periods of 20.00 ms: up to 0.9: 1.0 %, to 1.1: 96.0 %, to 1.5: 1.0 %, to "
                  "2.5: 1.0 %, more: 1.0 %\n");
}

TEST_F(PaceMonitorTest, LateFramesAreToldOnceUntilTheyAreOver) {
    for (const int before : {1, 100}) {
        pace = {};
        frames(before, false);
        frames(11, true);
        EXPECT_TRUE(told().empty());
        frames(1, true);
        const std::string watched = before < 60 ? "13" : "60";
        EXPECT_EQ(told(), (std::vector<std::string>{
                              "pacing: frames are late: 12 of the last " + watched +
                              ": their work takes 30.0 of 20.0 ms; a lower --fps, a smaller "
                              "--size or --scale, or less else on this machine helps"}));
    }
    for (int i = 0; i < 10; i++) { // now more, now less
        frames(200, false);
        frames(40, true);
    }
    EXPECT_EQ(pace.getStatus(), "frames are late: 40 of the last 60");
    EXPECT_TRUE(told().empty());
    frames(502, false);
    EXPECT_EQ(told(), std::vector<std::string>{"pacing: frames are in time again"});
    EXPECT_EQ(pace.getStatus(), "");
}

TEST_F(PaceMonitorTest, WhoSetsThePaceIsToldWhenItChanges) {
    for (const double measured : {0.0, 59.94, 143.98, 143.99, 0.0}) {
        timing.refresh_rate = measured;
        if (measured > 0) timing.period = (measured > 100 ? 3 : 1) / measured;
        frames(10, false);
    }
    EXPECT_EQ(told(),
              (std::vector<std::string>{
                  "pacing: the display sets the pace: 59.94 Hz, 59.9 frames/s, --fps being a "
                  "limit",
                  "pacing: the display sets the pace: 143.98 Hz, every 3. picture a "
                  "frame, 48.0 frames/s, --fps being a limit",
                  "pacing: pictures no longer wait for the display: frames keep their own "
                  "time"}));
}

TEST_F(PaceMonitorTest, AgesCountWhileRecordsCome) {
    frames(10, false);
    EXPECT_LT(pace.getAge(), 0);
    for (int i = 0; i < 200; i++) {
        frame(0.02, false, 0.012);
        frame(0.02, false); // 20 ms older
    }
    EXPECT_NEAR(pace.getAge(), 0.032, 1e-6);
    frames(200, false); // the flight simulation has fallen silent
    EXPECT_NEAR(pace.getAge(), 4.032, 1e-6);
    frame(0.02, false, 0.012);
    expectSummary("age of the newest record at hand-over: 12.0 ms p50, 32.0 ms p99\n");
}

} // namespace
