// SPDX-License-Identifier: MIT

// How evenly the channel's frames begin without a window, against bare sleeps in turn with them,
// and what they pay for being watched.

#include "Channel.h"
#include "channel/interface/Texts.h"
#include "program/Clock.h"
#include "ratio.h"
#include "testkit/ChannelFolder.h"
#include "testkit/LogicScene.h"

#include <cmath>
#include <fstream>
#include <string>

namespace {

constexpr double PERIOD = 1 / 60.0; ///< s
constexpr int ROUND = 120;          ///< frames, and then as many sleeps

/// Differences from the period of the intervals between times, s, round by round.
class Errors {
public:
    void add(double time) {
        const bool first = m_count++ % ROUND == 0;
        if (!first) m_errors.push_back(std::abs(time - m_last - PERIOD));
        m_last = time;
    }
    double getRms() const {
        double sum = 0;
        for (const double error : m_errors)
            sum += error * error;
        return std::sqrt(sum / static_cast<double>(m_errors.size()));
    }
    double getShareWithin(double most) const {
        const auto within =
            std::count_if(m_errors.begin(), m_errors.end(), [=](double e) { return e <= most; });
        return static_cast<double>(within) / static_cast<double>(m_errors.size());
    }
    double getMedian() const { return median(m_errors); }

private:
    std::vector<double> m_errors;
    int m_count = 0;
    double m_last = 0;
};

void sleepRound(Errors& errors) {
    double due = program::steadyNow();
    for (int i = 0; i < ROUND; i++) {
        program::sleepUntil(std::llround(due * program::NS_PER_SECOND));
        errors.add(program::steadyNow());
        due += PERIOD;
    }
}

/// The begins that the trace holds.
void readTrace(const std::string& path, Errors& errors) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line); // the heading
    while (std::getline(file, line)) {
        double begin = 0;
        if (std::sscanf(line.c_str(), "%*d,%*f,%lf", &begin) == 1) errors.add(begin);
    }
}

/// 60 frames a second of the demo world with the null renderer: 0.2 ms rms on a quiet machine.
void interval(benchmark::State& state) {
    ChannelFolder folder;
    Options options;
    options.renderer = "null";
    options.frame_rate = 1 / PERIOD;
    options.quiet = true;
    options.trace = "trace.csv";
    Channel channel(options);
    if (!channel.open()) state.SkipWithError("the channel does not open");
    Errors frames, sleeps;
    for (auto _ : state) {
        for (int i = 0; i < ROUND; i++)
            channel.runFrame();
        sleepRound(sleeps);
    }
    channel.close();
    readTrace("trace.csv", frames);
    state.counters["rms_us"] = frames.getRms() * 1e6;
    state.counters["floor_rms_us"] = sleeps.getRms() * 1e6;
    state.counters["goal_us"] = 200;
    state.counters["median_us"] = frames.getMedian() * 1e6;
    state.counters["floor_median_us"] = sleeps.getMedian() * 1e6;
    state.counters["within_goal"] = frames.getShareWithin(200e-6);
    state.counters["floor_within_goal"] = sleeps.getShareWithin(200e-6);
}
BENCHMARK(interval)->Iterations(4)->Unit(benchmark::kMillisecond);

/// What monitoring costs in a second of 60 frames, the demo world's count included, in the time
/// that the thread takes of the processor.
void metrics(benchmark::State& state) {
    LogicScene scene;
    scene.useProjectData();
    if (!scene.start()) return state.SkipWithError("the scene does not start");
    scene.frames(60);
    ig::ParticleSystem particles;
    particles.advance(*scene.world, 0.5f);
    Texts::load("en");
    FrameMetrics metrics("null");
    LinkMonitor link;
    PaceMonitor pace;
    LogicListener listener;
    FrameTiming timing;
    CpuTimes times;
    for (auto _ : state)
        times.measure([&] {
            for (int i = 0; i < 60; i++) {
                timing.begin += PERIOD;
                timing.work = 0.0005 * (i % 40);
                metrics.addFrame(timing, pace, link, listener);
                metrics.addScene(timing.begin, *scene.world, particles);
            }
        });
    times.report(state, 60);
    scene.stop();
}
BENCHMARK(metrics)->Iterations(1000)->Unit(benchmark::kMicrosecond);

} // namespace
