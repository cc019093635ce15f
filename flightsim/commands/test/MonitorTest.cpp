// SPDX-License-Identifier: MIT
#include "Monitor.h"
#include "common/wire/UdpRecvData.h"
#include "flightsim/testkit/TestFiles.h"
#include "program/Clock.h"

#include <thread>

namespace flightsim {
namespace {

using program::NS_PER_MS;
using program::NS_PER_SECOND;

void expectIn(const std::string& text, std::initializer_list<const char*> parts) {
    for (const char* part : parts)
        EXPECT_NE(text.find(part), std::string::npos) << part << " in\n" << text;
}

TEST(TrafficMeter, TellsRatesGapsSizesAndSendersSinceTheLastLine) {
    TrafficMeter meter(4);
    std::int64_t now_ns = 1000 * NS_PER_SECOND;
    expectIn(meter.line(now_ns), {"nothing has come yet"});
    for (int i = 0; i < 100; i++) {
        // 50 Hz with its jitter; the fortieth to forty-second are missing.
        now_ns += (i == 40 ? 80 : i % 2 ? 12 : 28) * NS_PER_MS;
        meter.take(Bytes(i == 50 ? 3 : 4, static_cast<std::uint8_t>(i)),
                   i < 90 ? "10.0.0.1:7" : "10.0.0.2:7", now_ns);
    }
    expectIn(meter.line(now_ns + 10 * NS_PER_MS),
             {"100 received, 48.5 a second, the last 0.01 s ago; longest interval 80.0 ms, 1 gaps, "
              "1 not of 4 bytes; from 10.0.0.2:7 (one of 2 senders)"});
    EXPECT_EQ(meter.getLast(), Bytes(4, 99));
    for (int i = 0; i < 60; i++) // a slower sender is no row of gaps for ever
        meter.take(Bytes(4), "10.0.0.2:7", now_ns += 100 * NS_PER_MS);
    expectIn(meter.line(now_ns), {"160 received, 10.0 a second", " 13 gaps"});
}

TEST(TrafficMeter, ShowsEveryFieldAndMarksWhatIsNotPlausible) {
    UdpRecvData record{};
    record.weather_type = 3;
    record.latitude = 123;
    const std::string text =
        fieldColumns(false, {reinterpret_cast<const std::uint8_t*>(&record), sizeof record});
    expectIn(text, {"weather_type        3 (storm)", "latitude            123.0000000 deg !",
                    "longitude           0.0000000 deg ", "hang_enable         0 (off)\n"});
    EXPECT_EQ(std::ranges::count(text, '!'), 1);
}

TEST(Monitor, PassesBothDirectionsOnAndShowsThem) {
    char* text = nullptr;
    std::size_t size = 0;
    UdpSocket channel, host;
    std::string message;
    ASSERT_TRUE(channel.bind(0, message) && host.bind(0, message)) << message;
    const auto local = [](int port) { return "127.0.0.1:" + std::to_string(port); };
    MonitorOptions options;
    options.records = {true, 0, local(channel.getPort())};
    options.feedback = {true, 0, local(host.getPort())};
    options.out = open_memstream(&text, &size);
    Monitor monitor, second;
    ASSERT_TRUE(monitor.open(options, message)) << message;
    auto taken = options;
    taken.records.port = monitor.getPort(false);
    EXPECT_FALSE(second.open(taken, message));
    expectIn(message, {"in use; to look at", "--port 10014 --forward 127.0.0.1:10004"});
    StopFlag stop = false;
    std::thread thread([&] { EXPECT_TRUE(monitor.run(stop, message)) << message; });
    Bytes record(1490, 1), feedback(108, 2), buffer(2000);
    for (const auto& [socket, feedback_side, bytes] :
         {std::tuple(&channel, false, &record), {&host, true, &feedback}}) {
        const auto to = UdpAddress::parse(local(monitor.getPort(feedback_side)), message);
        UdpSocket& sender = feedback_side ? channel : host;
        EXPECT_TRUE(to && sender.send(*to, *bytes));
        EXPECT_TRUE(socket->waitReadable(program::steadyNow_ns() + 60 * NS_PER_SECOND));
        const auto arrival = socket->receive(buffer);
        EXPECT_EQ(arrival.value_or(Arrival{}).size, bytes->size());
        EXPECT_TRUE(std::equal(bytes->begin(), bytes->end(), buffer.begin()));
    }
    stop = true;
    thread.join();
    std::fclose(options.out);
    expectIn(std::string(text, size), {"in all: 1 received", "command             16843009",
                                       "frames: 0 skipped", "frame               33686018"});
    std::free(text);
}

} // namespace
} // namespace flightsim
