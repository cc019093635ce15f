// SPDX-License-Identifier: MIT
#include "ig/net/SocketUDP.h"

#include "ig/base/jLog.h"

#include <arpa/inet.h>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

using namespace ig;

namespace {

/// A receiving socket on a free port and, aimed at it, one of ours and one of the bare system's.
class SocketTest : public testing::Test {
protected:
    SocketTest() {
        jLog::setSink([this](LogLevel, std::string_view line) { lines.emplace_back(line); });
        EXPECT_TRUE(in.create() && in.bind() && in.recv(65507) && in.nonblock());
        out.create();
        out.setSendIP("127.0.0.1");
        out.setSendPort(in.getPort());
        EXPECT_TRUE(out.send(65507) && out.nonblock() && out.bind());
        raw = ::socket(AF_INET, SOCK_DGRAM, 0);
        to.sin_family = AF_INET;
        to.sin_port = htons(static_cast<std::uint16_t>(in.getPort()));
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    }
    ~SocketTest() override {
        ::close(raw);
        jLog::setSink({});
    }
    /// Makes the bare socket anew, to send from that address.
    void bindRaw(in_addr_t address) {
        ::close(raw);
        raw = ::socket(AF_INET, SOCK_DGRAM, 0);
        sockaddr_in local{};
        local.sin_family = AF_INET;
        local.sin_addr.s_addr = htonl(address);
        ASSERT_EQ(::bind(raw, reinterpret_cast<sockaddr*>(&local), sizeof local), 0);
    }
    /// Sends `length` bytes, each `fill`, from the bare socket.
    void sendRaw(std::size_t length, char fill = 0) {
        const std::string data(length, fill);
        EXPECT_EQ(
            ::sendto(raw, data.data(), length, 0, reinterpret_cast<sockaddr*>(&to), sizeof to),
            static_cast<ssize_t>(length));
    }
    int read() { return in.read(buffer, 1, sizeof buffer); }
    const SocketStatistics& received() { return in.getStatistics(); }

    SocketUDP in, out;
    int raw = -1;
    sockaddr_in to{};
    char buffer[4096] = {};
    std::vector<std::string> lines;
};

} // namespace

TEST_F(SocketTest, datagrams_arrive_whole_and_in_order) {
    const char* texts[] = {"first", "second one", "3"};
    for (const char* text : texts)
        EXPECT_EQ(out.write(text, 1, std::strlen(text)), static_cast<int>(std::strlen(text)));
    for (const char* text : texts) {
        ASSERT_EQ(read(), static_cast<int>(std::strlen(text)));
        EXPECT_EQ(std::memcmp(buffer, text, std::strlen(text)), 0);
    }
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(received().datagrams_received, 3u);
    EXPECT_EQ(received().bytes_received, 16u);
    EXPECT_EQ(received().smallest, 1);
    EXPECT_EQ(received().largest, 10);
    EXPECT_EQ(received().last_sender_address, "127.0.0.1");
    EXPECT_EQ(received().last_sender_port, out.getPort());
    EXPECT_GT(received().first_received, 0);
    EXPECT_GE(received().last_received, received().first_received);
    EXPECT_EQ(out.getStatistics().datagrams_sent, 3u);
    EXPECT_EQ(out.getStatistics().bytes_sent, 16u);
    EXPECT_TRUE(lines.empty());
}

TEST_F(SocketTest, largest_datagram_passes_and_longer_ones_are_cut_to_the_buffer) {
    std::vector<char> big(65508, 'x');
    ASSERT_EQ(out.write(big.data(), 1, 65507), 65507);
    EXPECT_EQ(in.read(big.data(), 1, big.size()), 65507);
    EXPECT_EQ(received().truncated, 0u);
    sendRaw(2000, 'a');
    sendRaw(5, 'b');
    char small[1490 + 1] = {};
    EXPECT_EQ(in.read(small, 1490, 1), 1490);
    EXPECT_EQ(small[1489], 'a');
    EXPECT_EQ(small[1490], 0);
    EXPECT_EQ(in.read(small, 1, 1490), 5) << "the rest of a cut datagram must not follow";
    EXPECT_EQ(received().truncated, 1u);
    EXPECT_EQ(received().largest, 65507);
    EXPECT_EQ(out.write(big.data(), 1, 65508), -1);
    EXPECT_EQ(out.getStatistics().send_failures, 1u);
}

TEST_F(SocketTest, empty_datagrams_do_not_end_a_drain) {
    sendRaw(0);
    sendRaw(7);
    sendRaw(0);
    EXPECT_EQ(read(), 7);
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(received().empty, 2u);
    EXPECT_EQ(received().datagrams_received, 1u);
}

TEST_F(SocketTest, a_flood_is_interrupted_after_1024_datagrams) {
    const auto refill = [this](int n, std::size_t length) {
        for (int i = 0; i < n; i++)
            sendRaw(length);
    };
    int taken = 0;
    for (; taken < 5000; taken++) {
        if (taken % 100 == 0) refill(100, 4); // so that datagrams always wait
        if (read() <= 0) break;
    }
    EXPECT_EQ(taken, 1024);
    EXPECT_EQ(read(), 4) << "the rest comes with the next drain";
    while (read() > 0) {
    }
    // The pause counts what was passed over too.
    for (int i = 0; i < 3; i++)
        refill(100, 0);
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(received().empty, 300u);
    // An empty answer starts the count anew.
    for (int round = 0; round < 12; round++) {
        refill(100, 4);
        for (int i = 0; i < 100; i++)
            ASSERT_EQ(read(), 4) << round;
        ASSERT_EQ(read(), 0);
    }
}

TEST_F(SocketTest, waiting_datagrams_survive_a_stall) {
    int limit = 0;
    std::ifstream("/proc/sys/net/core/rmem_max") >> limit;
    EXPECT_GE(received().receive_buffer, std::min(1 << 20, limit));
    if (received().receive_buffer < 1 << 20) GTEST_SKIP() << "the system allows " << limit;
    for (int i = 0; i < 400; i++)
        sendRaw(1490, static_cast<char>(i));
    for (int i = 0; i < 400; i++) {
        ASSERT_EQ(read(), 1490);
        ASSERT_EQ(buffer[0], static_cast<char>(i));
    }
}

TEST_F(SocketTest, only_the_allowed_sender_is_heard) {
    EXPECT_TRUE(in.setAllowedSender("127.0.0.2"));
    sendRaw(3);
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(received().filtered, 1u);
    EXPECT_EQ(received().last_sender_address, "");
    bindRaw(INADDR_LOOPBACK + 1);
    out.write("no", 1, 2);
    sendRaw(4);
    EXPECT_EQ(read(), 4);
    EXPECT_EQ(received().last_sender_address, "127.0.0.2");
    EXPECT_FALSE(in.setAllowedSender("not an address"));
    out.write("no", 1, 2);
    EXPECT_EQ(read(), 0) << "a refused filter leaves the former one";
    EXPECT_TRUE(in.setAllowedSender(""));
    out.write("yes", 1, 3);
    EXPECT_EQ(read(), 3);
    EXPECT_EQ(received().filtered, 3u);
}

TEST_F(SocketTest, a_port_in_use_is_refused_and_told) {
    SocketUDP second;
    ASSERT_TRUE(second.create());
    EXPECT_FALSE(second.bind(in.getPort()));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find(std::to_string(in.getPort())), std::string::npos);
    const int port = in.getPort();
    in.close();
    EXPECT_EQ(in.getPort(), 0);
    EXPECT_TRUE(second.bind(port)) << "a closed socket gives its port back at once";
    for (int wrong : {0, -1, 65536})
        EXPECT_FALSE(second.bind(wrong));
}

TEST_F(SocketTest, wrong_destinations_are_refused_and_the_former_one_stays) {
    for (const char* wrong : {"256.1.1.1", "", "1.2.3", "no such host"}) {
        lines.clear();
        EXPECT_FALSE(out.setSendIP(wrong)) << wrong;
        ASSERT_EQ(lines.size(), 1u) << wrong;
        EXPECT_NE(lines[0].find(wrong), std::string::npos);
    }
    EXPECT_FALSE(out.setSendPort(0));
    EXPECT_FALSE(out.setSendPort(65536));
    EXPECT_EQ(out.write("a", 1, 1), 1);
    EXPECT_TRUE(out.setSendIP("localhost"));
    EXPECT_EQ(out.write("b", 1, 1), 1);
    EXPECT_EQ(read(), 1);
    EXPECT_EQ(read(), 1);
}

TEST_F(SocketTest, an_absent_peer_never_fails_a_write) {
    in.close();
    for (int i = 0; i < 20; i++)
        ASSERT_EQ(out.write("record", 1, 6), 6);
    EXPECT_EQ(out.getStatistics().send_failures, 0u);
}

TEST_F(SocketTest, failed_writes_are_counted_and_reported_once_a_second) {
    SocketUDP aimless;
    ASSERT_TRUE(aimless.create());
    for (int i = 0; i < 50; i++)
        EXPECT_EQ(aimless.write("x", 1, 1), -1);
    EXPECT_EQ(aimless.getStatistics().send_failures, 50u);
    EXPECT_EQ(lines.size(), 1u);
    EXPECT_EQ(aimless.write("x", 1, 0), 0);
}

TEST_F(SocketTest, a_closed_socket_answers_quietly_and_can_be_created_again) {
    ASSERT_EQ(SocketUDP::getOpenSockets().size(), 2);
    EXPECT_EQ(SocketUDP::getOpenSockets()[0], &in);
    sendRaw(3);
    EXPECT_EQ(read(), 3);
    in.close();
    in.close();
    EXPECT_FALSE(in.isOpened());
    EXPECT_EQ(SocketUDP::getOpenSockets().size(), 1);
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(in.write("x", 1, 1), -1);
    EXPECT_FALSE(in.bind());
    EXPECT_FALSE(in.recv(65507));
    EXPECT_FALSE(in.nonblock());
    EXPECT_EQ(received().datagrams_received, 1u) << "closing keeps the statistics";
    EXPECT_TRUE(in.create() && in.bind());
    in.release();
    EXPECT_FALSE(in.isOpened());
    EXPECT_EQ(received().datagrams_received, 0u);
    {
        SocketUDP passing;
        passing.create();
        EXPECT_EQ(SocketUDP::getOpenSockets().size(), 2);
    }
    EXPECT_EQ(SocketUDP::getOpenSockets().size(), 1);
}

// Programs that the process starts must not inherit the port.
TEST_F(SocketTest, sockets_close_on_exec) {
    int sockets = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const int descriptor = std::stoi(entry.path().filename());
        sockaddr_in local{};
        socklen_t length = sizeof local;
        if (descriptor == raw ||
            getsockname(descriptor, reinterpret_cast<sockaddr*>(&local), &length) != 0 ||
            local.sin_family != AF_INET)
            continue;
        const int port = ntohs(local.sin_port);
        if (port != in.getPort() && port != out.getPort()) continue;
        sockets++;
        EXPECT_TRUE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC);
    }
    EXPECT_EQ(sockets, 2);
}
