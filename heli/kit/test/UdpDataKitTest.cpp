// SPDX-License-Identifier: MIT
#include "heli/kit/UdpDataKit.h"
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

} // namespace
