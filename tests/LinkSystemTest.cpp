// SPDX-License-Identifier: MIT

// The link from end to end: real records over a real socket, the shown poses against an independent
// decoding, the feedback against geometry.

#include "ChannelRun.h"
#include "flightsim/recording/Recording.h"
#include "program/Clock.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <regex>
#include <sys/wait.h>

namespace {

constexpr int PATIENCE = 20000; ///< ms that a loaded machine may take for a frame

/// Reads a field at its place in the datagram, without our record type.
template <class T>
T field(const std::string& bytes, std::size_t offset) {
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

struct TimedRecord {
    double time; ///< since the first, seconds
    std::string bytes;
};

/// The recorded flight from record `first` on, for `seconds`.
std::vector<TimedRecord> recordedFlight(std::int64_t first, double seconds) {
    std::vector<TimedRecord> records;
    flightsim::RecordingReader reader;
    EXPECT_TRUE(reader.open("data/recordings/helicopter_flight.hrec")) << reader.getMessage();
    flightsim::Record record;
    double start = -1;
    while (reader.next(record) == flightsim::ReadStatus::record) {
        if (record.number < first) continue;
        const double time = static_cast<double>(record.time_ns) * 1e-9;
        if (start < 0) start = time;
        if (time - start > seconds) break;
        records.push_back({time - start, {record.datagram.begin(), record.datagram.end()}});
    }
    return records;
}

double degreesApart(double a, double b) { return std::abs(std::remainder(a - b, 360.0)); }

void expectPose(const ChannelRun::Frame& frame, const std::string& bytes) {
    EXPECT_NEAR(frame.latitude, field<double>(bytes, 124), 1e-9);
    EXPECT_NEAR(frame.longitude, field<double>(bytes, 132), 1e-9);
    EXPECT_NEAR(frame.altitude, field<float>(bytes, 140), 1e-4);
    EXPECT_LT(degreesApart(frame.pitch, field<float>(bytes, 144)), 1e-4);
    EXPECT_LT(degreesApart(frame.roll, field<float>(bytes, 148)), 1e-4);
    EXPECT_LT(degreesApart(frame.heading, field<float>(bytes, 152)), 1e-4);
}

/// What the picture shows had arrived between the return of its send and that of the one before.
void expectAge(const ChannelRun::Frame& frame, const std::vector<double>& sent) {
    EXPECT_GT(frame.shown, frame.begin);
    if (frame.records == 0) return;
    const auto newest = static_cast<std::size_t>(frame.records) - 1;
    const double arrival = frame.shown - frame.age, allowance = 0.001; // of the stamps' clocks
    const double before = newest > 0 ? sent[newest - 1] : 0;
    EXPECT_LT(arrival, sent[newest] + allowance) << "frame " << frame.number;
    EXPECT_GT(arrival, before - allowance) << "frame " << frame.number;
}

// Record 311 carries the reset; from 250 on the flight hops on and above the pad.
TEST(Link, RecordedFlightIsShownRecordByRecordSoonAfterItsArrival) {
    const std::vector<TimedRecord> flight = recordedFlight(250, 5);
    ASSERT_GT(flight.size(), 200u);
    ChannelRun run;
    ASSERT_TRUE(run.start("--fps 100"));
    std::vector<std::string> feedback;
    const auto awaitFrame = [&] { feedback.push_back(run.peer.receive(PATIENCE)); };
    std::vector<double> sent; // when the send had returned: the datagram waits in the socket
    for (const TimedRecord& record : flight) {
        run.send(record.bytes.data(), record.bytes.size());
        sent.push_back(program::steadyNow());
        awaitFrame();
    }
    const auto drain = [&] {
        for (std::string bytes; !(bytes = run.peer.receive()).empty();)
            feedback.push_back(bytes);
    };
    drain();
    for (int i = 0; i < 4; i++) // the second from now on began after the last record
        awaitFrame();
    ASSERT_EQ(run.stop(), 0) << run.output;
    drain();
    for (const char* part : {"1 resets", "frame to frame: ", "age of the newest record"})
        EXPECT_NE(run.output.find(part), std::string::npos) << run.output;

    // In the first frame that begins after its arrival, or, where that is a short one after a late
    // one, in the next.
    const auto frames = run.readTrace();
    ASSERT_FALSE(frames.empty());
    std::size_t arrived = 0, arrived_before = 0;
    for (const ChannelRun::Frame& frame : frames) {
        arrived_before = arrived;
        while (arrived < sent.size() && sent[arrived] < frame.begin)
            arrived++;
        ASSERT_GE(frame.records, static_cast<int>(arrived_before)) << "frame " << frame.number;
        if (frame.records > 0)
            expectPose(frame, flight[static_cast<std::size_t>(frame.records) - 1].bytes);
        expectAge(frame, sent);
        if (HasFailure()) break;
    }
    EXPECT_EQ(frames.back().records, static_cast<int>(flight.size()));

    // One feedback a frame, in order; the height is that above the pad, a plane at 12.45 m.
    ASSERT_EQ(feedback.size(), frames.size());
    std::size_t over_pad = 0;
    for (std::size_t i = 0; i < frames.size(); i++) {
        const std::string& bytes = feedback[i];
        ASSERT_EQ(bytes.size(), 108u);
        const ChannelRun::Frame& frame = frames[i];
        EXPECT_EQ(field<std::int32_t>(bytes, 0), frame.number);
        const double east = (frame.longitude + 155.0625125) * 104785, // metres per degree there
            north = (frame.latitude - 19.7124631) * 110690;
        if (std::abs(east) > 14 || std::abs(north) > 14) continue;
        over_pad++;
        EXPECT_NEAR(field<float>(bytes, 20), frame.altitude - 12.45, 0.01);
        EXPECT_NEAR(field<double>(bytes, 4), frame.latitude, 1e-7);
        EXPECT_NEAR(field<double>(bytes, 12), frame.longitude, 1e-7);
    }
    EXPECT_GT(over_pad, frames.size() / 2);
}

/// Stops the program for as long as it takes to send that many records.
void sendDuringStall(ChannelRun& run, int count, UdpRecvData record,
                     const std::function<void(UdpRecvData&, int)>& change) {
    run.program->signal(SIGSTOP);
    waitpid(run.program->id(), nullptr, WUNTRACED);
    for (int i = 0; i < count; i++) {
        change(record, i);
        run.send(&record, sizeof record);
    }
    run.program->signal(SIGCONT);
}

UdpRecvData recordInTheAir() {
    UdpRecvData record{};
    record.longitude = -155;
    record.latitude = 20;
    record.altitude = 100;
    return record;
}

TEST(Link, AStallLosesNothingThatThereIsRoomFor) {
    ChannelRun run;
    ASSERT_TRUE(run.start("--fps 60"));
    const int count = 150; // 184 have room also where little is granted
    sendDuringStall(run, count, recordInTheAir(), [](UdpRecvData& record, int i) {
        record.altitude = static_cast<float>(i + 1);
    });
    ASSERT_NE(run.program->waitFor(" 150 received, 150 applied"), "");
    ASSERT_EQ(run.stop(), 0) << run.output;
    EXPECT_NEAR(run.readTrace().back().altitude, count, 1e-4);
    EXPECT_NE(run.output.find(" 0 lost"), std::string::npos) << run.output;
}

TEST(Link, AFloodOfTheDearestRecordsIsSpreadOverFramesAndWhatIsLostIsCounted) {
    ChannelRun run;
    ASSERT_TRUE(run.start("--fps 60"));
    const int count = 2000; // more than there is room for
    sendDuringStall(run, count, recordInTheAir(), [](UdpRecvData& record, int i) {
        record.command = 6;
        record.hang_enable = i % 2;
        record.hang_length = std::nanf("");
    });
    const std::regex status("records (\\d+) received, (\\d+) applied.* (\\d+) records lost");
    int applied = 0, lost = 0;
    for (int lines = 0; lines < 30 && applied + lost < count; lines++) {
        const std::string line = run.program->line();
        std::smatch numbers;
        if (!std::regex_search(line, numbers, status)) continue;
        EXPECT_EQ(numbers[1], numbers[2]);
        applied = std::stoi(numbers[2]);
        lost = std::stoi(numbers[3]);
    }
    EXPECT_EQ(applied + lost, count);
    ASSERT_EQ(run.stop(), 0) << run.output;
    const std::string summary =
        std::to_string(applied) + " applied, " + std::to_string(lost) + " lost";
    EXPECT_NE(run.output.find(summary), std::string::npos) << run.output;
    int before = 0;
    for (const ChannelRun::Frame& frame : run.readTrace()) {
        EXPECT_LE(frame.records - before, 100) << "frame " << frame.number; // 512 plain ones
        before = frame.records;
    }
}

/// What a channel says, read as it comes.
struct Listener {
    /// Reads on until a status line holds the text; false when none of the next does.
    bool waitForStatus(const std::string& text) {
        for (int lines = 0; lines < 40;) {
            const std::string line = run.program->line();
            said += line;
            if (line.empty()) return false;
            if (line.find(" fps | ") == std::string::npos) continue;
            if (line.find(text) != std::string::npos) return true;
            lines++;
        }
        return false;
    }
    ChannelRun& run;
    std::string said;
};

TEST(Link, WrongRecordsALostHostAndASecondOneAreWarnedOfOnceShownAndSummedUp) {
    ChannelRun run;
    ASSERT_TRUE(run.start("--fps 60 --step 0.1")); // a status line every ten frames
    Listener channel{run, ""};
    EXPECT_TRUE(channel.waitForStatus(" | link: no host yet on port "));
    const std::string from = " from 127.0.0.1:" + std::to_string(run.peer.port());
    const UdpRecvData good = recordInTheAir();
    const auto bytes = [](const UdpRecvData& record, std::size_t size = 1490) {
        std::string text(reinterpret_cast<const char*>(&record), sizeof record);
        text.resize(size);
        return text;
    };
    UdpRecvData no_number = good, big_endian = good, wild = good;
    no_number.weather_value_a = std::nanf("");
    wild.latitude = 123;
    std::string swapped = bytes(big_endian);
    std::reverse(swapped.begin() + 124, swapped.begin() + 132);
    std::vector<std::string> told;
    for (const auto& [datagram, text] :
         {std::pair(bytes(good, 1489), "1489 bytes, expected 1490," + from),
          {bytes(good, 1491), "1491 bytes, expected 1490," + from},
          {bytes(good, 100), "100 bytes, expected 1490," + from},
          {swapped, "latitude 6.60862e-320" + from +
                        " is implausible (plausible with its bytes "
                        "swapped: does the host send big-endian?)"},
          {bytes(wild), "latitude 123" + from + " is implausible"},
          {bytes(no_number), "weather_value_a nan" + from + " is implausible"},
          {std::string(1490, '\0'), "position 0" + from + " is implausible"}}) {
        for (int i = 0; i < 20; i++)
            run.send(datagram.data(), datagram.size());
        EXPECT_TRUE(channel.waitForStatus(text)) << channel.said;
        told.push_back(text);
    }
    EXPECT_TRUE(channel.waitForStatus("link: host silent for "));
    const UdpPeer second;
    for (int i = 0; i < 20; i++) {
        second.send(&good, sizeof good, run.receive_port);
        run.send(&good, sizeof good);
    }
    EXPECT_TRUE(channel.waitForStatus("2 senders: 127.0.0.1:"));
    told.push_back("2 senders: 127.0.0.1:");
    EXPECT_EQ(run.stop(), 0);
    for (const std::string& text : told) {
        EXPECT_EQ(countOf(channel.said, "warning: link: " + text), 1) << text;
        EXPECT_NE(run.output.find("\nlink: " + text), std::string::npos) << text << run.output;
    }
    EXPECT_NE(run.output.find("\nlink: host silent for "), std::string::npos) << run.output;
    EXPECT_NE(run.output.find(" 40 short, 20 long, 80 implausible, "), std::string::npos)
        << run.output;
}

TEST(Link, AQuietChannelThatIsDeafOrHasNowhereToAnswerSaysSoAllTheSame) {
    ChannelRun run;
    const UdpPeer occupant;
    const std::string port = std::to_string(occupant.port());
    run.folder.write(
        "config/Logic_Nerith_Heli_Final.cfg",
        "flightSimulation_ip: hostname.example\nrecv_from_flightSimulation_port: " + port + "\n");
    ASSERT_TRUE(run.start("--fps 60 --quiet"));
    const std::string deaf = "link: not listening on " + port + ": Address already in use";
    const std::string mute = "link: no feedback: \"hostname.example\" is not an address";
    EXPECT_NE(run.program->waitFor("warning: " + deaf), "");
    EXPECT_NE(run.program->waitFor("warning: " + mute), "");
    EXPECT_EQ(run.stop(), 0);
    EXPECT_NE(run.output.find("\n" + deaf + "\n" + mute + "\n"), std::string::npos) << run.output;
    EXPECT_EQ(run.output.find(" fps | "), std::string::npos);
    EXPECT_EQ(run.output.find("write: "), std::string::npos) << "nothing for each frame";
}

} // namespace
