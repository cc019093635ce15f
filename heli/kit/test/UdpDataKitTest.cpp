// SPDX-License-Identifier: MIT
#include "heli/kit/UdpDataKit.h"
#include "heli/kit/RecordCheck.h"
#include "ig/net/SocketUDP.h"
#include "testkit/LogCapture.h"
#include "testkit/TakeIn.h"
#include "testkit/UdpPeer.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace ig;

/// A datagram of any size whose bytes tell their place and which datagram they belong to.
std::string datagram(std::size_t size, int seed) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; i++)
        bytes[i] = static_cast<char>(i * 7 + static_cast<std::size_t>(seed) * 31 + i / 256);
    return bytes;
}

TEST(UdpRecvKit, EveryDatagramOfAnySizeBecomesOneRecordInOrder) {
    UdpRecvKit kit;
    const int port = UdpPeer::freePort();
    ASSERT_TRUE(kit.init(port));
    const UdpPeer peer;
    std::vector<std::string> sent;
    for (const std::size_t size : {1490, 2000, 10, 1490, 5000, 65507, 1}) {
        sent.push_back(datagram(size, static_cast<int>(sent.size())));
        peer.send(sent.back().data(), size, port);
    }
    takeIn();
    EXPECT_EQ(kit.receive(), 7);
    for (std::size_t i = 0; i < sent.size(); i++) {
        sent[i].resize(1490, '\0'); // cut, or filled with zeros
        EXPECT_EQ(std::memcmp(&kit.m_records[static_cast<int>(i)], sent[i].data(), 1490), 0) << i;
    }
    peer.send("x", 1, port);
    takeIn();
    EXPECT_EQ(kit.receive(), 8); // those left from before count
    const SocketStatistics& statistics = kit.m_socket->getStatistics();
    EXPECT_EQ(statistics.too_short, 3u);
    EXPECT_EQ(statistics.too_long, 3u);

    LogCapture log;
    UdpRecvKit deaf; // the port is taken
    EXPECT_FALSE(deaf.init(port));
    EXPECT_EQ(log.lines.back(), "UdpRecvKit::init: failed to create upd");
    EXPECT_EQ(deaf.receive(), 0);
}

UdpRecvData plainRecord() {
    UdpRecvData record{};
    record.latitude = 19.71246;
    record.longitude = -155.06251;
    record.altitude = 40;
    return record;
}

TEST(UdpRecvKit, ImplausibleRecordsAreKeptAndComplainedAboutAndDearOnesEndADrainSooner) {
    UdpRecvKit kit;
    const int port = UdpPeer::freePort();
    ASSERT_TRUE(kit.init(port));
    const UdpPeer peer;
    UdpRecvData record = plainRecord();
    record.latitude = 123;
    peer.send(&record, sizeof record, port);
    peer.send(&record, 140, port); // its size says enough
    takeIn();
    EXPECT_EQ(kit.receive(), 2);
    const SocketStatistics& statistics = kit.m_socket->getStatistics();
    EXPECT_EQ(statistics.implausible, 1u);
    EXPECT_STREQ(statistics.complaint.field, "latitude");
    EXPECT_EQ(statistics.complaint.value, 123);
    EXPECT_EQ(statistics.complaint.sender.port, peer.port());

    kit.m_records.clear();
    for (int i = 0; i < 130; i++) { // a reset 2, a load put out or stowed 5, both 6
        record.command = 6;
        record.hang_enable = i % 2 == 0;
        peer.send(&record, sizeof record, port);
    }
    takeIn();
    EXPECT_EQ(kit.receive(), (SocketUDP::DRAIN + 5) / 6);
    EXPECT_EQ(kit.receive(), 130);
    record.command = 0;
    kit.m_records.clear();
    for (int i = 0; i < 130; i++) // which stays where it is
        peer.send(&record, sizeof record, port);
    takeIn();
    EXPECT_EQ(kit.receive(), 130);
}

TEST(UdpSendKit, AFailureSaysSoAndASocketNeverWaits) {
    UdpSendKit kit;
    const int next = dup(0); // the descriptor that comes next
    close(next);
    ASSERT_TRUE(kit.init("127.0.0.1", 10005));
    const int flags = fcntl(next, F_GETFL);
    EXPECT_TRUE(flags >= 0 && flags & O_NONBLOCK);
    kit.release();
    rlimit before{}, none{}; // no descriptor is to be had
    getrlimit(RLIMIT_NOFILE, &before);
    none.rlim_max = before.rlim_max;
    setrlimit(RLIMIT_NOFILE, &none);
    LogCapture log;
    EXPECT_FALSE(kit.init("127.0.0.1", 10005));
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(log.lines.back(), "UdpSendKit::init: failed to create udp");
    EXPECT_EQ(kit.m_socket, nullptr);
}

void swapBytes(UdpRecvData& record, std::size_t offset, std::size_t size) {
    auto* bytes = reinterpret_cast<unsigned char*>(&record) + offset;
    std::reverse(bytes, bytes + size);
}

TEST(RecordCheck, NamesTheFieldAndGuessesTheCause) {
    struct Case {
        const char *field, *hint;
        std::function<void(UdpRecvData&)> change;
    };
    const Case cases[] = {
        {nullptr, "", [](UdpRecvData&) {}},
        {nullptr, "", [](UdpRecvData& r) { r.latitude = -90, r.longitude = 359, r.heading = 360; }},
        {nullptr, "", [](UdpRecvData& r) { r.latitude = r.longitude = 0; }},
        {nullptr, "", [](UdpRecvData& r) { r.roll = 3e-41f; }},                     // dies away
        {nullptr, "", [](UdpRecvData& r) { r.cloud_top = r.hang_length = -1e9f; }}, // not in use
        {"latitude", "", [](UdpRecvData& r) { r.latitude = 123, r.longitude = 100; }},
        {"latitude", "exchanged", [](UdpRecvData& r) { r.latitude = -155, r.longitude = 19; }},
        {"latitude", "big-endian", [](UdpRecvData& r) { swapBytes(r, 124, 8); }},
        {"latitude", "big-endian",
         [](UdpRecvData& r) { r.latitude = r.longitude = 20, swapBytes(r, 124, 8); }},
        {"position", "are 0", [](UdpRecvData& r) { r = {}; }},
        {"altitude", "big-endian",
         [](UdpRecvData& r) { r.altitude = 12.3f, swapBytes(r, 140, 4); }},
        {"weather_value_a", "", [](UdpRecvData& r) { r.weather_value_a = NAN; }},
        {"sea_angle", "", [](UdpRecvData& r) { r.sea_angle = -INFINITY; }},
        {"cloud_base", "", [](UdpRecvData& r) { r.cloud_enable = 1, r.cloud_base = NAN; }},
        {"hang_length", "", [](UdpRecvData& r) { r.hang_enable = 1, r.hang_length = -1; }},
        {"command", "big-endian", [](UdpRecvData& r) { r.command = 6, swapBytes(r, 4, 4); }},
    };
    for (const Case& c : cases) {
        UdpRecvData record = plainRecord();
        c.change(record);
        const SocketComplaint complaint = checkRecord(record);
        EXPECT_STREQ(complaint.field, c.field);
        EXPECT_NE(std::string(complaint.hint).find(c.hint), std::string::npos) << complaint.hint;
    }
}

} // namespace
