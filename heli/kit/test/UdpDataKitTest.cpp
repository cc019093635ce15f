// SPDX-License-Identifier: MIT
#include "heli/kit/UdpDataKit.h"
#include "ig/net/SocketUDP.h"
#include "testkit/LogCapture.h"
#include "testkit/UdpPeer.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace {

using namespace ig;

/// A datagram of any size whose bytes tell their place and which datagram they belong to.
std::string datagram(std::size_t size, int seed) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; i++)
        bytes[i] = static_cast<char>(i * 7 + static_cast<std::size_t>(seed) * 31 + i / 256);
    return bytes;
}

/// The record that a datagram must become.
std::string expected(const std::string& bytes) {
    std::string record = bytes.substr(0, 1490);
    record.resize(1490, '\0');
    return record;
}

TEST(UdpRecvKit, EveryDatagramOfAnySizeBecomesOneRecordInOrder) {
    UdpRecvKit kit;
    const int port = UdpPeer::freePort();
    ASSERT_TRUE(kit.init(port));
    const UdpPeer peer;
    const std::size_t sizes[] = {1490, 2000, 10, 0, 1490, 4096, 5000, 65507, 1};
    std::vector<std::string> sent;
    for (std::size_t i = 0; i < std::size(sizes); i++) {
        const std::string bytes = datagram(sizes[i], static_cast<int>(i));
        peer.send(bytes.data(), bytes.size(), port);
        if (!bytes.empty()) sent.push_back(expected(bytes)); // an empty one is no record
    }
    EXPECT_EQ(kit.receive(), static_cast<int>(sent.size()));
    for (std::size_t i = 0; i < sent.size(); i++)
        EXPECT_EQ(std::memcmp(&kit.m_records[static_cast<int>(i)], sent[i].data(), 1490), 0) << i;
    peer.send("x", 1, port);
    EXPECT_EQ(kit.receive(), static_cast<int>(sent.size()) + 1); // those left from before count
}

TEST(UdpRecvKit, PortInUseIsLoggedAndTheKitStaysAnEmptyShell) {
    UdpPeer occupant;
    UdpRecvKit kit;
    LogCapture log;
    EXPECT_FALSE(kit.init(occupant.port()));
    EXPECT_EQ(log.lines.back(), "UdpRecvKit::init: failed to create upd");
    EXPECT_EQ(kit.m_socket, nullptr);
    EXPECT_EQ(kit.receive(), 0);
    kit.release();
}

TEST(UdpSendKit, SendsToItsDestinationWhetherOrNotSomebodyListens) {
    UdpSendKit kit;
    UdpPeer peer;
    ASSERT_TRUE(kit.init("127.0.0.1", peer.port()));
    ASSERT_EQ(kit.m_socket->write("feedback", 1, 8), 8);
    EXPECT_EQ(peer.receive(1000), "feedback");
    UdpSendKit lonely;
    ASSERT_TRUE(lonely.init("127.0.0.1", UdpPeer::freePort()));
    for (int i = 0; i < 10; i++)
        EXPECT_EQ(lonely.m_socket->write("x", 1, 1), 1);
    kit.release();
    EXPECT_EQ(kit.m_socket, nullptr);
}

} // namespace
