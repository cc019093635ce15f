// SPDX-License-Identifier: MIT
#include "Fly.h"
#include "Recorder.h"
#include "Replay.h"
#include "flightsim/testkit/TestFiles.h"
#include "program/Clock.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <thread>

namespace flightsim {
namespace {

using program::NS_PER_MS;
using program::NS_PER_SECOND;
using program::steadyNow_ns;

/// Receives like the channel does, at a port that the system chooses.
class Receiver {
public:
    Receiver() {
        std::string message;
        EXPECT_TRUE(m_socket.bind(0, message)) << message;
    }
    std::string address() const { return "127.0.0.1:" + std::to_string(m_socket.getPort()); }
    /// Waits for `count` datagrams, for a minute at most.
    std::vector<TimedBytes> take(std::size_t count) {
        std::vector<TimedBytes> result;
        const std::int64_t end_ns = steadyNow_ns() + 60 * NS_PER_SECOND;
        while (result.size() < count && steadyNow_ns() < end_ns) {
            if (!m_socket.waitReadable(end_ns)) continue;
            if (const auto arrival = m_socket.receive(m_buffer))
                result.push_back({arrival->steady_ns,
                                  Bytes(m_buffer.begin(), m_buffer.begin() + long(arrival->size))});
        }
        return result;
    }

private:
    UdpSocket m_socket;
    Bytes m_buffer = Bytes(MAX_DATAGRAM_SIZE);
};

/// Sends to a port of this machine, like the host or the channel does.
class Sender {
public:
    explicit Sender(int port)
        : m_to(UdpAddress::parse("127.0.0.1:" + std::to_string(port), m_message)) {
        EXPECT_TRUE(m_to && m_socket.open(m_message)) << m_message;
    }
    bool send(const Bytes& bytes) { return m_socket.send(*m_to, bytes); }

private:
    std::string m_message;
    std::optional<UdpAddress> m_to;
    UdpSocket m_socket;
};

/// Datagrams of changing size and content, `step_ms` apart.
std::vector<TimedBytes> flight(int count, std::int64_t step_ms) {
    std::vector<TimedBytes> records;
    for (int i = 0; i < count; i++) {
        Bytes bytes(i % 7 == 3 ? 100 : 1490, static_cast<std::uint8_t>(i));
        bytes[0] = static_cast<std::uint8_t>(i >> 8);
        // The recording begins with silence, which a replay doesn't wait for.
        records.push_back({30 * NS_PER_SECOND + i * step_ms * NS_PER_MS, bytes});
    }
    return records;
}

/// What a test of a running program needs.
class Loopback : public testing::Test {
protected:
    ~Loopback() override { std::fclose(out); }
    ReplayOptions replayOptions(const std::string& file, const std::string& to) const {
        ReplayOptions options;
        options.file = file;
        options.link.to = to;
        options.link.listen = 0;
        options.link.out = out;
        return options;
    }
    /// Runs it in a thread of its own until the thread is joined.
    template <class Runnable>
    std::thread start(Runnable& runnable) {
        return std::thread([&] {
            std::string why;
            EXPECT_TRUE(runnable.run(stop, why)) << why;
        });
    }

    /// All have left, and none before it was due: a sender that doesn't wait is early on average.
    static void expectPaced(const HostLink& link, std::int64_t count) {
        EXPECT_EQ(link.getSent(), count);
        EXPECT_EQ(link.getPacing().count, count);
        EXPECT_GE(link.getPacing().mean_us(), 0);
    }

    std::FILE* out = std::fopen("/dev/null", "w"); ///< swallows what the programs print
    std::string message;
    StopFlag stop = false;
    Receiver receiver;
};

TEST_F(Loopback, AReplayIsRecordedUnchangedAndPassedOnInItsOwnTime) {
    TestFile in("sent"), recording("recorded");
    const auto records = flight(40, 10);
    writeRecording(in.path, RecordingFormat::compact, records);
    RecorderOptions options;
    options.file = recording.path;
    options.port = 0;
    options.forward = receiver.address();
    options.out = out;
    Recorder recorder;
    ASSERT_TRUE(recorder.open(options, message)) << message;
    std::thread thread = start(recorder);
    Replay replay;
    StopFlag never = false;
    const std::string to = "127.0.0.1:" + std::to_string(recorder.getPort());
    EXPECT_TRUE(replay.open(replayOptions(in.path, to), message)) << message;
    EXPECT_TRUE(replay.run(never, message)) << message;
    stop = true; // what waits in the socket is recorded all the same
    thread.join();
    const auto recorded = readRecording(recording.path), forwarded = receiver.take(records.size());
    ASSERT_EQ(recorded.size(), records.size());
    ASSERT_EQ(forwarded.size(), records.size());
    for (std::size_t i = 0; i < records.size(); i++) {
        ASSERT_EQ(recorded[i].bytes, records[i].bytes) << i;
        ASSERT_EQ(forwarded[i].bytes, records[i].bytes) << i;
    }
    EXPECT_EQ(recorder.getStats().unusual, 6); // 3, 10, 17 … 38
    RecordingReader reader;
    ASSERT_TRUE(reader.open(recording.path));
    EXPECT_NEAR(double(reader.getStartWall_ns()) * 1e-9, double(std::time(nullptr)), 3600)
        << "Unix time, not the time since the machine was started";
    expectPaced(replay.getLink(), 40);
}

TEST_F(Loopback, AReplayCountsFeedbackAndIsNotHeldUpByAFlood) {
    constexpr int FLOOD = 400;
    TestFile file("flooded"), csv("flood.csv");
    writeRecording(file.path, RecordingFormat::whole, flight(50, 0)); // without time to spare
    Replay replay;
    auto options = replayOptions(file.path, receiver.address());
    options.link.feedback_csv = csv.path;
    ASSERT_TRUE(replay.open(options, message)) << message;
    Sender channel(replay.getLink().getListenPort());
    std::vector<std::int32_t> numbers = {5, 6, 9, 9};
    numbers.resize(4 + FLOOD, 9);
    for (const std::int32_t frame : numbers)
        EXPECT_TRUE(channel.send(ByteBuilder().add(frame).add(Bytes(104)).bytes));
    channel.send(Bytes(3000));
    EXPECT_TRUE(replay.run(stop, message)) << message;
    expectPaced(replay.getLink(), 50);
    const FeedbackStats& stats = replay.getLink().getFeedback();
    EXPECT_EQ(stats.malformed, 1);
    EXPECT_EQ(stats.skipped, 2);
    EXPECT_EQ(stats.received, 4 + FLOOD);
    EXPECT_EQ(stats.duplicated, stats.received - 3);
    const Bytes bytes = csv.read();
    const std::string rows(bytes.begin(), bytes.end());
    EXPECT_EQ(std::ranges::count(rows, '\n'), stats.received + 1);
    int before_first = 0; // the second column: how many records had left
    for (std::size_t at = 0; (at = rows.find(",0,9,", at)) != std::string::npos; at++)
        before_first++;
    EXPECT_LE(before_first, 4) << "read before the first record";
}

TEST_F(Loopback, AReplayStopsWithinALongPause) {
    TestFile file("pause");
    writeRecording(file.path, RecordingFormat::whole, {{0, {1}}, {3600 * NS_PER_SECOND, {2}}});
    Replay replay;
    ASSERT_TRUE(replay.open(replayOptions(file.path, receiver.address()), message));
    std::thread thread = start(replay);
    EXPECT_EQ(receiver.take(1).size(), 1u);
    stop = true;
    thread.join();
    EXPECT_EQ(replay.getLink().getSent(), 1);
}

TEST_F(Loopback, ARecorderStopsAtItsSizeLimit) {
    TestFile recording("limited");
    RecorderOptions options;
    options.file = recording.path;
    options.port = 0;
    options.size_limit_mb = 1;
    options.seconds = 600;
    options.out = out;
    Recorder recorder;
    ASSERT_TRUE(recorder.open(options, message)) << message;
    Sender sender(recorder.getPort());
    std::atomic<bool> over = false;
    std::thread thread([&] {
        while (!over)
            sender.send(Bytes(60'000));
    });
    EXPECT_TRUE(recorder.run(stop, message)) << message;
    over = true;
    thread.join();
    EXPECT_LE(recording.read().size(), 1'000'000u);
    EXPECT_GT(recording.read().size(), 900'000u);
}

TEST_F(Loopback, AFlightSendsRecordsAtItsRateAboveTheGroundThatTheChannelReports) {
    const std::string text = "start: {longitude: -155, latitude: 19.7, surface: 12, rotor: 270}\n"
                             "set: {after: 0.5, weather_type: 3}\n"
                             "legs: [take_off: 5, hover: {seconds: 60, height: 5}]\n";
    TestFile mission("fly.yaml", Bytes(text.begin(), text.end())), flown("flown.hrec");
    FlyOptions options;
    options.file = mission.path;
    options.link = replayOptions("", receiver.address()).link;
    options.rate = 50;
    options.speed = 10;
    options.seconds = 20;
    options.wait = 5;
    options.record = flown.path;
    Fly fly;
    ASSERT_TRUE(fly.open(options, message)) << message;
    Sender channel(fly.getLink().getListenPort());
    std::thread thread = start(fly);
    const std::int64_t up_ns =
        steadyNow_ns() + NS_PER_SECOND / 4; // the channel takes time to start
    program::sleepUntil(up_ns);
    channel.send(Bytes(sizeof(UdpSendData)));
    std::vector<TimedBytes> received;
    UdpRecvData record{};
    while (received.size() < 100) {
        const auto next = receiver.take(1);
        if (next.empty() || next[0].bytes.size() != sizeof record) break;
        received.push_back(next[0]);
        std::memcpy(&record, next[0].bytes.data(), sizeof record);
        UdpSendData feedback{};
        feedback.ground_latitude = record.latitude;
        feedback.height_above_ground = record.altitude - 14;
        Bytes bytes(sizeof feedback);
        std::memcpy(bytes.data(), &feedback, sizeof feedback);
        channel.send(bytes);
    }
    thread.join();
    EXPECT_NEAR(record.altitude, 14 + 5, 0.3) << "17 by the mission alone";
    const auto recorded = readRecording(flown.path);
    ASSERT_EQ(received.size(), 100u); // 20 s of flight, ten times as fast as life
    ASSERT_EQ(recorded.size(), 100u);
    EXPECT_GE(received[0].time_ns, up_ns) << "the first one would be missed";
    expectPaced(fly.getLink(), 100);
    for (std::size_t i = 0; i < received.size(); i++) {
        ASSERT_EQ(recorded[i], (TimedBytes{std::int64_t(i) * 20 * NS_PER_MS, received[i].bytes}));
        std::memcpy(&record, received[i].bytes.data(), sizeof record);
        ASSERT_EQ(+record.command, i == 0 ? 6u : 0u) << i;
        ASSERT_EQ(+record.weather_type, i < 3 ? 1 : 3) << i; // 0.5 s after 2.5 records
        EXPECT_TRUE(i > 0 || record.altitude == 13.22F);
    }
}

/// Flight times in milliseconds and first bytes of what a source gives, up to `count` steps.
std::vector<std::pair<double, int>> steps(const ReplayOptions& options, int count) {
    ReplaySource source;
    std::string message;
    EXPECT_TRUE(source.open(options, message)) << message;
    std::vector<std::pair<double, int>> result;
    while (count-- > 0) {
        const auto step = source.next(message);
        if (!step) break;
        result.emplace_back(double(step->time_ns) * 1e-6, step->datagram[0]);
    }
    return result;
}

TEST(ReplaySource, SelectsScalesLoopsAndHolds) {
    using Steps = std::vector<std::pair<double, int>>;
    TestFile file("source");
    std::vector<TimedBytes> records;
    for (int i = 0; i < 10; i++)
        records.push_back({i * 100 * NS_PER_MS, {static_cast<std::uint8_t>(i)}});
    writeRecording(file.path, RecordingFormat::compact, records);
    ReplayOptions options;
    options.file = file.path;
    options.from = 0.25;
    options.seconds = 0.3;
    options.speed = 2;
    EXPECT_EQ(steps(options, 99), (Steps{{0, 3}, {50, 4}, {100, 5}}));
    options.speed = 1;
    options.loop = true;
    EXPECT_EQ(steps(options, 7),
              (Steps{{0, 3}, {100, 4}, {200, 5}, {300, 3}, {400, 4}, {500, 5}, {600, 3}}));
    options = {};
    options.file = file.path;
    options.hold = 7;
    EXPECT_EQ(steps(options, 3), (Steps{{0, 7}, {100, 7}, {200, 7}}));
    options.seconds = 0.15;
    EXPECT_EQ(steps(options, 99), (Steps{{0, 7}, {100, 7}}));

    std::string message;
    ReplaySource source;
    options.hold = 10;
    EXPECT_FALSE(source.open(options, message));
}

} // namespace
} // namespace flightsim
