// SPDX-License-Identifier: MIT

// The link from end to end: real records over a real socket, the shown poses against an independent
// decoding, the feedback against geometry.

#include "ChannelRun.h"
#include "common/wire/UdpSendData.h"
#include "flightsim/Recording.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"

#include <cmath>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>
#include <thread>

namespace {

using namespace std::chrono_literals;

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
    EXPECT_TRUE(reader.open("data/recordings/helicopter_flight.hrec")) << reader.message();
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

// Record 311 carries the reset; from 250 on the flight hops on and above the pad.
TEST(Link, RecordedFlightIsShownRecordByRecordInTheFirstFrameAfterItsArrival) {
    const std::vector<TimedRecord> flight = recordedFlight(250, 5);
    ASSERT_GT(flight.size(), 200u);
    ChannelRun run;
    ASSERT_TRUE(run.start("--fps 100"));
    std::vector<std::string> feedback;
    const auto drain = [&] {
        for (std::string bytes; !(bytes = run.peer.receive()).empty();)
            feedback.push_back(bytes);
    };
    std::vector<double> sent; // when the send had returned: the datagram waits in the socket
    const double begin = steadyNow() + 0.1;
    for (const TimedRecord& record : flight) {
        std::this_thread::sleep_for(
            std::chrono::duration<double>(begin + record.time - steadyNow()));
        run.send(record.bytes.data(), record.bytes.size());
        sent.push_back(steadyNow());
        drain(); // the kernel keeps only some hundreds
    }
    std::this_thread::sleep_for(100ms);
    ASSERT_EQ(run.stop(), 0) << run.output;
    drain();
    EXPECT_NE(run.output.find("1 resets"), std::string::npos) << run.output;

    const auto frames = run.readTrace();
    ASSERT_GT(frames.size(), 150u); // fewer than 500 where instrumented
    std::size_t arrived = 0;
    for (const ChannelRun::Frame& frame : frames) {
        while (arrived < sent.size() && sent[arrived] < frame.begin)
            arrived++;
        ASSERT_GE(frame.records, static_cast<int>(arrived)) << "frame " << frame.number;
        if (frame.records > 0)
            expectPose(frame, flight[static_cast<std::size_t>(frame.records) - 1].bytes);
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

TEST(Link, HeightOverADeckThatStandsAslopeAgreesWithGeometry) {
    // The flight deck of the first ship lies 6 m above its origin; the ship is put at a heading, a
    // pitch and a roll, far from everything.
    ChannelRun run;
    std::filesystem::remove(run.folder.path() / "data");
    std::filesystem::create_directories(run.folder.path() / "data/PELMAR_PROJECT");
    std::filesystem::create_symlink(std::filesystem::current_path() / "data/art",
                                    run.folder.path() / "data/art");
    for (const char* part : {"prefabs", "materials", "ANIM"})
        std::filesystem::create_symlink(std::filesystem::current_path() / "data/PELMAR_PROJECT" /
                                            part,
                                        run.folder.path() / "data/PELMAR_PROJECT" / part);
    std::ifstream ship("data/PELMAR_PROJECT/prefabs/SM_055_CN_2023/SM_055_CN_2023.prefab");
    std::ostringstream prefab;
    prefab << ship.rdbuf();
    run.folder.write("still.prefab", // without mass it stays where it is put
                     std::regex_replace(prefab.str(), std::regex("mass: [0-9.]+"), "mass: 0"));
    run.folder.write(
        "data/PELMAR_PROJECT/PELMAR_PROJECT.world",
        "nodes:\n- {name: start_heli, wgs: [-154, 21, 30]}\n- {name: ship, type: prefab, path: "
        "still.prefab, wgs: [-154, 21, 0], hpr: [50, 2, -3]}\n");
    ASSERT_TRUE(run.start("--fps 100"));

    // The point of the deck's plane below a place over the deck, by solving for the plane.
    const ig::EllipsoidModel earth;
    const ig::dvec3 origin = earth.toWorld({-154, 21, 0});
    const ig::dmat3 attitude =
        earth.getWGSTransform(origin).getMat3() * ig::composeHPR({50, 2, -3});
    const ig::dvec3 on_deck = origin + attitude * ig::dvec3(1, -60, 6);
    const ig::dvec3 place = on_deck + earth.getUp(on_deck) * 25.0;
    const ig::dvec3 geodetic = earth.toWGS(place);
    UdpRecvData record{};
    record.longitude = geodetic.x;
    record.latitude = geodetic.y;
    record.altitude = static_cast<float>(geodetic.z);
    run.send(&record, sizeof record);
    std::this_thread::sleep_for(200ms);
    ASSERT_EQ(run.stop(), 0) << run.output;

    const ig::dvec3 from = earth.toWorld({geodetic.x, geodetic.y, double(record.altitude)});
    const ig::dvec3 down = -earth.getUp(from), normal = attitude.getZ();
    const double t = ig::dot(origin + normal * 6.0 - from, normal) / ig::dot(down, normal);
    const ig::dvec3 expected = earth.toWGS(from + down * t);
    std::string bytes;
    for (std::string next; !(next = run.peer.receive()).empty();)
        bytes = next;
    ASSERT_EQ(bytes.size(), 108u);
    EXPECT_NEAR(field<float>(bytes, 20), double(record.altitude) - expected.z, 0.001);
    EXPECT_NEAR(field<double>(bytes, 4), expected.y, 1e-9);
    EXPECT_NEAR(field<double>(bytes, 12), expected.x, 1e-9);
}

TEST(Link, NoneOfAThousandRecordsASecondIsLostThroughAStall) {
    ChannelRun run;
    ASSERT_TRUE(run.start("--fps 60"));
    UdpRecvData record{};
    record.longitude = -155;
    record.latitude = 20;
    const int count = 3000;
    const double begin = steadyNow();
    for (int i = 0; i < count; i++) {
        if (i == 1000) run.program->signal(SIGSTOP);
        if (i == 1150) run.program->signal(SIGCONT);
        record.altitude = static_cast<float>(i);
        run.send(&record, sizeof record);
        std::this_thread::sleep_for(std::chrono::duration<double>(begin + i * 1e-3 - steadyNow()));
    }
    std::this_thread::sleep_for(100ms);
    ASSERT_EQ(run.stop(), 0) << run.output;
    const auto frames = run.readTrace();
    EXPECT_EQ(frames.back().records, count) << run.output;
    EXPECT_NEAR(frames.back().altitude, count - 1, 1e-4);
}

TEST(Link, AFloodHoldsNoFrameLongerThanTwentyMilliseconds) {
    ChannelRun run;
    ASSERT_TRUE(run.start("--fps 60"));
    UdpRecvData record{};
    record.command = 6; // the dearest kind: every one resets the scene
    const double end = steadyNow() + 1;
    int sent = 0;
    for (; steadyNow() < end; sent++)
        run.send(&record, sizeof record);
    ASSERT_EQ(run.stop(), 0);
    ASSERT_GT(sent, 20000);
    // "… ms worst" of the summary.
    const std::size_t place = run.output.find(" ms mean, ");
    ASSERT_NE(place, std::string::npos) << run.output;
    const double worst = std::stod(run.output.substr(place + 10));
#ifndef __SANITIZE_ADDRESS__
    EXPECT_LT(worst, 20) << run.output;
#endif
    EXPECT_GT(worst, 0);
}

} // namespace
