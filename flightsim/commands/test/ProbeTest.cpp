// SPDX-License-Identifier: MIT
#include "Probe.h"
#include "flightsim/testkit/TestFiles.h"
#include "program/Clock.h"

#include <cstring>
#include <thread>

namespace flightsim {
namespace {

using program::NS_PER_MS;
using program::NS_PER_SECOND;

UdpSendData reported(std::int32_t frame, float height) {
    UdpSendData feedback{};
    feedback.frame = frame;
    feedback.height_above_ground = height;
    return feedback;
}

TEST(StepMeter, TimesWhatAnswersAStepAndCountsWhatNothingAnswers) {
    StepMeter meter;
    const auto take = [&](std::int64_t ms, float height) {
        meter.take(reported(static_cast<std::int32_t>(ms / 20), height), ms * NS_PER_MS);
    };
    take(20, 180);
    meter.sent(30 * NS_PER_MS, 50);
    take(20, 230); // had come before
    take(40, 181); // a swell
    take(50, 120); // the other way: no answer
    take(60, 231);
    take(80, 229);
    meter.sent(90 * NS_PER_MS, -50);
    take(100, 179.5F);
    meter.sent(110 * NS_PER_MS, 50); // frozen
    take(2100, 180);
    meter.giveUp();
    meter.giveUp();
    EXPECT_EQ(meter.getDelays_ns(), (std::vector{30 * NS_PER_MS, 10 * NS_PER_MS}));
    EXPECT_EQ(meter.getMissed(), 1);
    EXPECT_DOUBLE_EQ(meter.getFrame_ns(), 20.0 * NS_PER_MS);
}

TEST(DelayReport, MissedStepsAreTheLongest) {
    DelayReport report{{}, 0, 20.0 * NS_PER_MS, 100};
    EXPECT_FALSE(report.isKept()) << "nothing was measured";
    for (int i = 1; i <= 99; i++)
        report.delays_ns.push_back(i * NS_PER_MS);
    report.missed = 1;
    EXPECT_EQ(report.percentile_ms(0.5), 50);
    EXPECT_EQ(report.percentile_ms(0.99), 99);
    EXPECT_TRUE(report.isKept());
    EXPECT_NE(report.text().find("p50 2.50, p95 4.75, p99 4.95, greatest inf of 20.00 ms"),
              std::string::npos)
        << report.text();
    EXPECT_NE(report.text().find("99 of 100 steps, 1 were"), std::string::npos) << report.text();
    report.missed = 2;
    EXPECT_FALSE(report.isKept());
}

/// Answers each record with the height of `lag` records before, above a ground of altitude 10. The
/// one of number `elsewhere` as if another host had sent it, and none after `last`.
void answer(UdpSocket& socket, const UdpAddress& to, int lag, const StopFlag& stop,
            std::size_t elsewhere = SIZE_MAX, std::size_t last = SIZE_MAX) {
    std::vector<UdpRecvData> records;
    UdpSocket sender;
    std::string message;
    EXPECT_TRUE(sender.open(message)) << message;
    while (!stop) {
        Bytes bytes(sizeof(UdpRecvData));
        if (!socket.waitReadable(program::steadyNow_ns() + NS_PER_SECOND / 10)) continue;
        if (!socket.receive(bytes)) continue;
        std::memcpy(&records.emplace_back(), bytes.data(), bytes.size());
        const UdpRecvData& shown =
            records[records.size() - 1 - std::min<std::size_t>(lag, records.size() - 1)];
        auto feedback = reported(static_cast<std::int32_t>(records.size()), shown.altitude - 10.0F);
        if (records.size() > last) continue;
        feedback.ground_latitude = shown.latitude + (records.size() == elsewhere ? 1 : 0);
        feedback.ground_longitude = shown.longitude;
        sender.send(to, {reinterpret_cast<const std::uint8_t*>(&feedback), sizeof feedback});
    }
}

TEST(Probe, MeasuresAChannelThatShowsEachRecordThreeRecordsLater) {
    TestFile plot("delay.svg");
    UdpSocket channel;
    std::string message;
    ASSERT_TRUE(channel.bind(0, message)) << message;
    ProbeOptions options;
    options.link.to = "127.0.0.1:" + std::to_string(channel.getPort());
    options.link.listen = 0;
    options.link.quiet = true;
    options.link.out = std::fopen("/dev/null", "w");
    options.steps = 4;
    options.rate = 200;
    options.wait = 60;
    options.plot = plot.path;
    Probe probe;
    ASSERT_TRUE(probe.open(options, message)) << message;
    const auto to =
        UdpAddress::parse("127.0.0.1:" + std::to_string(probe.getLink().getListenPort()), message);
    StopFlag stop = false, never = false;
    std::thread thread([&] { answer(channel, *to, 3, stop); });
    EXPECT_TRUE(probe.run(never, message)) << message;
    stop = true;
    thread.join();
    std::fclose(options.link.out);
    const DelayReport report = probe.getReport();
    ASSERT_EQ(report.delays_ns.size(), 4u);
    EXPECT_GT(report.delays_ns.front(), 7 * NS_PER_MS) << "three records: 15 ms, bunched 7.5";
    const Bytes drawn = plot.read();
    const std::string svg(drawn.begin(), drawn.end());
    EXPECT_NE(svg.find("</svg>"), std::string::npos) << svg;
}

TEST(Probe, FailsWhenTheChannelDiesOrAnotherHostSendsMeanwhile) {
    const std::tuple<std::size_t, std::size_t, const char*> cases[] = {
        {SIZE_MAX, 1, "the feedback has stopped"}, // before the first step
        {SIZE_MAX, 20, "the feedback has stopped"},
        {20, SIZE_MAX, "another place meanwhile"}};
    for (const auto& [elsewhere, last, text] : cases) {
        UdpSocket channel;
        Probe probe;
        std::string message;
        ASSERT_TRUE(channel.bind(0, message)) << message;
        ProbeOptions options;
        options.link.to = "127.0.0.1:" + std::to_string(channel.getPort());
        options.link.listen = 0;
        options.link.quiet = true;
        options.link.out = std::fopen("/dev/null", "w");
        options.steps = 4;
        options.rate = 200;
        options.wait = 3;
        ASSERT_TRUE(probe.open(options, message)) << message;
        const auto to = UdpAddress::parse(
            "127.0.0.1:" + std::to_string(probe.getLink().getListenPort()), message);
        StopFlag stop = false, never = false;
        std::thread thread([&] { answer(channel, *to, 0, stop, elsewhere, last); });
        EXPECT_FALSE(probe.run(never, message));
        EXPECT_NE(message.find(text), std::string::npos) << message;
        stop = true;
        thread.join();
        std::fclose(options.link.out);
    }
}

} // namespace
} // namespace flightsim
