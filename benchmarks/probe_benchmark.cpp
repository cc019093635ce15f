// SPDX-License-Identifier: MIT

// How long a record takes through the channel and back: `flight_sim probe` and a channel without
// pictures, in two threads of one process, over the loopback interface.

#include "Channel.h"
#include "Probe.h"
#include "ratio.h"
#include "testkit/ChannelFolder.h"

#include <atomic>
#include <thread>

namespace {

/// At 60 frames a second, in frames: at best a record waits for its frame, half a one in the mean.
void transportDelay(benchmark::State& state) {
    WorkingFolder folder;
    flightsim::ProbeOptions options;
    const int records_port = UdpPeer::freePort();
    options.link.listen = UdpPeer::freePort();
    options.link.to = "127.0.0.1:" + std::to_string(records_port);
    options.link.quiet = true;
    options.link.out = stderr; // the table of the benchmarks goes to the standard output
    fillChannelFolder(folder, folder.before(), records_port, options.link.listen);
    Options channel_options;
    channel_options.renderer = "null";
    channel_options.frame_rate = 60;
    channel_options.quiet = true;
    Channel channel(channel_options);
    flightsim::Probe probe;
    std::string message;
    const flightsim::StopFlag stop = false;
    if (!channel.open() || !probe.open(options, message)) state.SkipWithError("cannot open");
    for (auto _ : state) {
        std::atomic<bool> done = false;
        bool good = false;
        std::thread host([&] {
            good = probe.run(stop, message);
            done = true;
        });
        while (!done)
            channel.runFrame();
        host.join();
        if (!good) state.SkipWithError(message.c_str());
    }
    channel.close();
    const flightsim::DelayReport report = probe.getReport();
    const auto frames = [&](double part) {
        return report.percentile_ms(part) * double(program::NS_PER_MS) / report.frame_ns;
    };
    state.counters["p50_frames"] = frames(0.5);
    state.counters["p95_frames"] = frames(0.95);
    state.counters["p99_frames"] = frames(0.99);
    state.counters["greatest_frames"] = frames(1);
    state.counters["goal_frames"] = 2;
    state.counters["p99_ms"] = report.percentile_ms(0.99);
    state.counters["steps"] = double(options.steps);
}
BENCHMARK(transportDelay)->Iterations(1)->Unit(benchmark::kSecond);

} // namespace
