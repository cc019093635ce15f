// SPDX-License-Identifier: MIT

// What it costs a frame to be logged.

#include "flightsim/recording/Recording.h"
#include "frames/FrameLog.h"
#include "ratio.h"

#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <unistd.h>

namespace {

using frames::FrameInput;

constexpr double RATE = 60; ///< frames a second

/// The recorded flight as it comes to a channel, whose frames begin with some jitter.
std::vector<FrameInput> recordedFlight() {
    flightsim::RecordingReader reader;
    flightsim::Record record;
    std::vector<FrameInput> inputs;
    std::mt19937 random(1);
    std::normal_distribution<double> jitter(0, 2e-4); // s
    if (!reader.open("data/recordings/helicopter_flight.hrec")) return inputs;
    bool more = reader.next(record) == flightsim::ReadStatus::record;
    while (more) {
        FrameInput input{.number = inputs.size()};
        input.begin = static_cast<double>(inputs.size() + 1) / RATE + jitter(random);
        if (!inputs.empty()) input.length = static_cast<float>(input.begin - inputs.back().begin);
        for (double arrival; more; more = reader.next(record) == flightsim::ReadStatus::record) {
            arrival = static_cast<double>(record.time_ns) * 1e-9;
            if (arrival > input.begin) break;
            input.datagrams.push_back(
                {0, arrival, 0x0100007f, 40000, {record.datagram.begin(), record.datagram.end()}});
        }
        inputs.push_back(input);
    }
    return inputs;
}

/// Making bytes of a frame of the recorded flight, compressing and writing them; at most 1 % of the
/// frame is allowed, and 10 kB a second.
void logFrame(benchmark::State& state) {
    const std::vector<FrameInput> inputs = recordedFlight();
    const std::string path = "/tmp/frames_benchmark_" + std::to_string(getpid());
    std::uintmax_t size = 0;
    CpuTimes times;
    for (auto _ : state) {
        frames::LogWriter writer;
        if (inputs.empty() || !writer.open(path, {.width = 640, .height = 480}))
            return state.SkipWithError("no flight, no log");
        for (const FrameInput& input : inputs)
            times.measure([&] { writer.append(input); });
        if (!writer.close()) return state.SkipWithError(writer.getMessage().c_str());
        size = std::filesystem::file_size(path);
        std::remove(path.c_str());
    }
    times.report(state, 0.01 / RATE * 1e6);
    state.counters["kB_per_s"] =
        static_cast<double>(size) / 1e3 / (static_cast<double>(inputs.size()) / RATE);
}
BENCHMARK(logFrame)->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace
