// SPDX-License-Identifier: MIT
#include "wall/WallNetwork.h"

#include <chrono>
#include <gtest/gtest.h>
#include <net/if.h>
#include <set>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

extern "C" wall::WallNetwork* CreateWallNetwork(const wall::Network& network, std::string& message);

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr double PATIENCE = 60; ///< s, on a loaded machine

/// Both ends in one process, over the loopback interface, in a domain of their own.
struct WallNetworkTest : testing::Test {
    void SetUp() override {
        std::string message;
        network.reset(CreateWallNetwork({.domain = 1 + getpid() % 200}, message));
        ASSERT_TRUE(network) << message;
    }
    std::unique_ptr<wall::Subscriber> subscribe() {
        std::string message;
        auto subscriber = network->subscribe(message);
        EXPECT_TRUE(subscriber) << message;
        return subscriber;
    }
    std::unique_ptr<wall::Publisher> publish(std::uint64_t run) {
        std::string message;
        auto publisher = network->publish(run, message);
        EXPECT_TRUE(publisher) << message;
        return publisher;
    }
    /// The run's bytes as they come, until there are so many.
    static Bytes receive(wall::Subscriber& from, std::uint64_t run, std::size_t size) {
        Bytes bytes;
        const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(PATIENCE);
        while (bytes.size() < size && std::chrono::steady_clock::now() < end) {
            from.wait(0.1);
            const std::uint64_t before = from.getRun();
            const Bytes more = from.take();
            if (from.getRun() != before) bytes.clear();
            if (from.getRun() == run) bytes.insert(bytes.end(), more.begin(), more.end());
        }
        return bytes;
    }
    static Bytes frame(int number) {
        Bytes bytes(static_cast<std::size_t>(50 + number * 37 % 300));
        for (std::size_t i = 0; i < bytes.size(); i++)
            bytes[i] = static_cast<std::uint8_t>(i * 7 + static_cast<std::size_t>(number));
        return bytes;
    }
    std::unique_ptr<wall::WallNetwork> network;
};

TEST_F(WallNetworkTest, DisplaysGetAllOfTheStreamEarlyLateAndAgain) {
    auto early = subscribe();
    auto publisher = publish(100);
    Bytes sent;
    for (int i = 0; i < 300; i++) {
        const Bytes bytes = i == 3 ? Bytes(200000, 9) : frame(i); // one that is many packets
        publisher->append(bytes);
        sent.insert(sent.end(), bytes.begin(), bytes.end());
        if (i % 10 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_EQ(publisher->getSize(), sent.size());
    EXPECT_EQ(receive(*early, 100, sent.size()), sent);
    auto late = subscribe();
    EXPECT_EQ(receive(*late, 100, sent.size()), sent);
    EXPECT_TRUE(late->isConnected());
    EXPECT_EQ(publisher->getDisplays(), 2);
    late->restart();
    EXPECT_EQ(receive(*late, 100, sent.size()), sent);

    publisher.reset();
    publisher = publish(101);
    publisher->append(frame(1));
    EXPECT_EQ(receive(*early, 101, frame(1).size()), frame(1));
    EXPECT_EQ(early->getRun(), 101u);
    EXPECT_EQ(publisher->takeComplaint(), "");
}

TEST_F(WallNetworkTest, TheBarrierHoldsWhoIsAheadAndNotForLong) {
    std::string message;
    const auto a = network->join("a", message), b = network->join("b", message);
    ASSERT_TRUE(a && b) << message;
    bool met = false; // both have heard of each other
    std::uint64_t frame = 1;
    for (; !met && frame < 1000; frame++) {
        std::jthread other([&] { b->wait(7, frame, 0.1); });
        a->wait(7, frame, 0.1);
        other.join();
        met = !a->wait(7, frame + 1, 0.01); // b is not there yet
    }
    ASSERT_TRUE(met);
    bool opened = false;
    std::jthread waits([&] { opened = a->wait(7, frame + 1, PATIENCE); });
    EXPECT_TRUE(b->wait(7, frame + 1, PATIENCE));
    waits.join();
    EXPECT_TRUE(opened);
    EXPECT_TRUE(a->wait(8, frame + 9, 0)) << "who is at another run is not waited for";
}

/// Where the process's UDP sockets may speak: empty for one that may anywhere.
std::multiset<std::string> listInterfacesOfSockets() {
    std::multiset<std::string> interfaces;
    for (int file = 0; file < 64; file++) {
        int type = 0, family = 0;
        socklen_t size = sizeof(int);
        if (getsockopt(file, SOL_SOCKET, SO_TYPE, &type, &size) != 0) continue;
        getsockopt(file, SOL_SOCKET, SO_DOMAIN, &family, &size);
        if (type != SOCK_DGRAM || family != AF_INET) continue;
        char name[IF_NAMESIZE] = {};
        size = sizeof name;
        getsockopt(file, SOL_SOCKET, SO_BINDTODEVICE, name, &size);
        interfaces.insert(name);
    }
    return interfaces;
}

TEST_F(WallNetworkTest, NothingComesInOrLeavesByAnotherInterface) {
    EXPECT_GE(listInterfacesOfSockets().count("lo"), 3u);
    EXPECT_EQ(listInterfacesOfSockets().count(""), 0u);
}

TEST(WallNetwork, AnInterfaceThatThereIsNotIsToldWithThoseThatThereAre) {
    std::string message;
    EXPECT_EQ(CreateWallNetwork({.interface = "none0"}, message), nullptr);
    EXPECT_NE(message.find("\"none0\""), std::string::npos) << message;
    EXPECT_NE(message.find("lo"), std::string::npos) << message;
}

} // namespace
