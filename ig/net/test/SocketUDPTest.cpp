// SPDX-License-Identifier: MIT
#include "ig/net/SocketUDP.h"

#include "ig/base/jLog.h"
#include "program/Clock.h"
#include "testkit/TakeIn.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
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
        EXPECT_TRUE(out.create() && out.bind() && out.send(65507) && out.nonblock());
        EXPECT_TRUE(out.setSendIP("127.0.0.1") && out.setSendPort(in.getPort()));
        local.sin_addr.s_addr = htonl(INADDR_LOOPBACK + 1);
        EXPECT_EQ(::bind(raw, reinterpret_cast<sockaddr*>(&local), sizeof local), 0);
    }
    ~SocketTest() override {
        ::close(raw);
        jLog::setSink({});
    }
    /// Sends datagrams of `length` bytes, each `fill`, from 127.0.0.2.
    void sendRaw(std::size_t length, char fill = 0, int count = 1) {
        sockaddr_in to = local;
        to.sin_port = htons(static_cast<std::uint16_t>(in.getPort()));
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const std::string data(length, fill);
        while (count-- > 0)
            ASSERT_EQ(
                ::sendto(raw, data.data(), length, 0, reinterpret_cast<sockaddr*>(&to), sizeof to),
                static_cast<ssize_t>(length));
    }
    /// The next datagram, of those delivered or waiting; empty when there is none.
    std::string read() {
        takeIn();
        const int length = in.read(buffer.data(), 1, buffer.size());
        return length > 0 ? buffer.substr(0, static_cast<std::size_t>(length)) : "";
    }
    int write(const std::string& text) { return out.write(text.data(), 1, text.size()); }

    SocketUDP in, out;
    int raw = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in local{AF_INET, 0, {}, {}};
    std::string buffer = std::string(65507, 0);
    std::vector<std::string> lines;
    const SocketStatistics& received = in.getStatistics();
};

} // namespace

TEST_F(SocketTest, DatagramsArriveWholeAndInOrderAndLongerOnesAreCut) {
    const std::string texts[] = {"first", std::string(65507, 'x'), "3"};
    for (const std::string& text : texts)
        EXPECT_EQ(write(text), static_cast<int>(text.size()));
    for (const std::string& text : texts)
        EXPECT_EQ(read(), text);
    EXPECT_EQ(read(), "");
    EXPECT_EQ(received.datagrams_received, 3u);
    EXPECT_EQ(received.bytes_received, 65513u);
    EXPECT_EQ(out.getStatistics().bytes_sent, 65513u);
    sendRaw(2000, 'a');
    takeIn();
    EXPECT_EQ(in.read(buffer.data(), 1490, 1), 1490);
    EXPECT_EQ(read(), "") << "the rest of a cut datagram must not follow";
    EXPECT_EQ(received.truncated, 1u);
}

TEST_F(SocketTest, EmptyDatagramsDoNotEndADrainAndAFloodDoesByCountAndByWork) {
    sendRaw(0);
    sendRaw(7);
    EXPECT_EQ(read().size(), 7u);
    EXPECT_EQ(read(), "") << "which starts the count anew";
    for (int work : {1, 4}) { // of each delivered datagram
        const std::uint64_t before = received.empty + work * received.datagrams_received;
        for (int taken = 0; taken < 5000; taken++) {
            if (taken % 25 == 0) { // so that datagrams always wait, empty ones among them
                sendRaw(0, 0, 10);
                sendRaw(4, 0, 25);
            }
            if (read().empty()) break;
            in.charge(work - 1);
        }
        const std::uint64_t done = received.empty + work * received.datagrams_received - before;
        EXPECT_GE(done, 512u);
        EXPECT_LT(done, 512u + work);
    }
    EXPECT_EQ(read().size(), 4u) << "the rest comes with the next drain";
}

TEST_F(SocketTest, SizesSendersAndComplaintsAreCountedWithWhoItWas) {
    const std::string ours = "127.0.0.1:" + std::to_string(out.getPort());
    in.setExpectedSize(4);
    for (int i = 0; i < 3; i++) {
        write("four");
        sendRaw(3);
        for (int datagram = 0; datagram < 2; datagram++)
            EXPECT_NE(read(), "");
    }
    EXPECT_EQ(received.taken_over, 1u) << "the second sender was new";
    EXPECT_EQ(received.interleaved, 4u);
    EXPECT_EQ(received.senders[0].getText().view().substr(0, 10), "127.0.0.2:");
    EXPECT_EQ(received.senders[1].getText(), ours.c_str());
    EXPECT_EQ(received.too_short, 3u);
    EXPECT_EQ(received.wrong_size, 3);
    EXPECT_EQ(received.wrong_sender, received.senders[0]);
    write("five5");
    read();
    in.complain({"latitude", 123, "", {}});
    EXPECT_EQ(received.too_long, 1u);
    EXPECT_EQ(received.implausible, 1u);
    EXPECT_EQ(received.complaint.sender.getText(), ours.c_str());
    EXPECT_TRUE(in.setAllowedSender("127.0.0.2"));
    write("no");
    sendRaw(4);
    EXPECT_EQ(read().size(), 4u);
    EXPECT_EQ(received.filtered, 1u);
}

TEST_F(SocketTest, WhatTheSystemDropsIsCountedAlsoAfterTheLastDatagram) {
    int limit = 0;
    std::ifstream("/proc/sys/net/core/rmem_max") >> limit;
    EXPECT_GE(received.receive_buffer, std::min(1 << 20, limit));
    const int sent = received.receive_buffer / 1490 + 1; // more than there is room for
    sendRaw(1490, 'x', sent);
    EXPECT_EQ(received.lost, 0u);
    for (int drains = 0; drains < 10; drains++)
        while (!read().empty()) {
        }
    EXPECT_EQ(received.datagrams_received + received.lost, static_cast<std::uint64_t>(sent));
    const std::uint64_t lost = received.lost;
    ASSERT_TRUE(in.create() && in.bind() && in.recv(65507) && in.nonblock());
    read();
    EXPECT_EQ(received.lost, lost) << "a new descriptor begins with none";
}

TEST_F(SocketTest, AFloodWaitsInTheSystemAndWithinAFrameNothingArrives) {
    sendRaw(1, 'x', SocketUDP::DRAIN + 8);
    EXPECT_EQ(takeIn().datagrams.size(), 512u);
    EXPECT_EQ(takeIn().datagrams.size(), 0u) << "nobody has read";
    for (int i = 0; i < 5; i++)
        EXPECT_EQ(in.read(buffer.data(), 1, 1), 1);
    EXPECT_EQ(takeIn().datagrams.size(), 5u);
    sendRaw(1);
    for (int drains = 0; drains < 2; drains++)
        while (in.read(buffer.data(), 1, 1) > 0) {
        }
    EXPECT_EQ(received.datagrams_received, 517u);
}

// However late they are collected. A system that nobody asked for stamps before takes a moment
// until it gives them.
TEST_F(SocketTest, ArrivalsAreTheSystemsStampsSinceTheStartOfTheRun) {
    const double start = program::steadyNow() - 1000;
    constexpr double CLOCKS_APART = 0.001; // at most, as they are compared
    const auto now = [start] { return program::steadyNow() - start; };
    bool stamped = false;
    for (int tries = 0; tries < 500 && !stamped; tries++) {
        const double before = now() - CLOCKS_APART;
        write("x");
        const double after = now() + CLOCKS_APART;
        while (now() < after + CLOCKS_APART) {
        }
        frames::FrameInput input;
        SocketUDP::collect(input, start);
        SocketUDP::deliver(input);
        EXPECT_EQ(in.read(buffer.data(), 1, 1), 1);
        EXPECT_EQ(received.last_received, input.datagrams.at(0).arrival);
        stamped = received.last_received > before && received.last_received < after;
    }
    EXPECT_TRUE(stamped);
}

TEST_F(SocketTest, TheSameInputsGiveTheSameWithoutASystem) {
    std::vector<frames::FrameInput> inputs;
    // A socket on a port that is taken, one that receives, one that sends where it may not. All
    // that can be known of them.
    const auto fly = [&](bool live) {
        SocketUDP refused, receiver, sender;
        std::ostringstream known;
        known << (refused.create() && refused.bind(in.getPort())) << ' ';
        EXPECT_TRUE(receiver.create() && receiver.bind() && receiver.recv(9));
        EXPECT_TRUE(sender.create() && sender.setSendIP("127.255.255.255") &&
                    sender.setSendPort(9) && sender.send(9) && sender.bind() && sender.nonblock());
        out.setSendPort(receiver.getPort());
        for (std::size_t frame = 0; frame < 3; frame++) {
            if (live) {
                write("frame " + std::to_string(frame));
                SocketUDP::collect(inputs.emplace_back());
            }
            SocketUDP::deliver(inputs[frame]);
            while (receiver.read(buffer.data(), 1, 7) > 0)
                known << buffer.substr(0, 7) << ' ';
            EXPECT_EQ(sender.write("feedback", 1, 4 + frame), static_cast<int>(4 + frame));
        }
        const SocketStatistics &heard = receiver.getStatistics(), &sent = sender.getStatistics();
        known << sent.send_error << ' ' << sent.send_failures << ' ' << sent.bytes_sent << ' '
              << sent.sent_digest << ' ' << receiver.getPort() << ' ' << heard.receive_buffer << ' '
              << std::hexfloat << heard.last_received << ' ' << heard.senders[0].getText().c_str();
        return known.str();
    };
    SocketUDP::setOnline();
    const std::string live = fly(true);
    const int next = dup(raw);
    SocketUDP::setOffline();
    SocketUDP::addAnswers(inputs[0].answers);
    const std::string again = fly(false);
    SocketUDP::setOnline();
    const int after = dup(raw);
    EXPECT_EQ(after, next + 1) << "no descriptor in between";
    ::close(next), ::close(after);
    EXPECT_EQ(again, live);
    EXPECT_EQ(lines[0], lines[1]);
    const std::string refusals =
        std::to_string(EACCES) + " 2 6 "; // the last one's is not known yet
    EXPECT_EQ(live.find("0 frame 0 frame 1 frame 2 " + refusals), 0u) << live;
}

TEST_F(SocketTest, WrongPortsAndAddressesAreRefusedWithOneLineAndTheFormerOnesStay) {
    SocketUDP second;
    ASSERT_TRUE(second.create());
    const int port = in.getPort();
    for (int wrong : {port, 0, -1, 65536}) {
        EXPECT_FALSE(second.bind(wrong)) << wrong;
        EXPECT_NE(lines.back().find(std::to_string(wrong)), std::string::npos);
        EXPECT_TRUE(wrong == port || !out.setSendPort(wrong));
    }
    for (const char* wrong : {"256.1.1.1", "", "1.2.3", "no such host"}) {
        EXPECT_FALSE(out.setSendIP(wrong)) << wrong;
        EXPECT_NE(lines.back().find(wrong), std::string::npos);
    }
    EXPECT_EQ(lines.size(), 11u);
    EXPECT_EQ(out.getStatistics().refused_destination, "no such host");
    EXPECT_EQ(SocketUDP::getRefusedPorts().size(), 4);
    EXPECT_EQ(SocketUDP::getRefusedPorts()[0].port, port);
    EXPECT_EQ(write("a"), 1);
    EXPECT_EQ(read(), "a");
    EXPECT_TRUE(out.setSendIP("localhost"));
    EXPECT_EQ(out.getStatistics().refused_destination, "");
    in.close();
    EXPECT_TRUE(second.bind(port)) << "a closed socket gives its port back at once";
    EXPECT_EQ(SocketUDP::getRefusedPorts().size(), 3);
}

TEST_F(SocketTest, AnAbsentPeerNeverFailsAWriteAndFailuresAreCountedWithTheirReason) {
    in.close();
    for (int i = 0; i < 20; i++)
        ASSERT_EQ(write("record"), 6);
    EXPECT_EQ(write(std::string(65508, 'x')), -1);
    EXPECT_EQ(out.getStatistics().send_error, EMSGSIZE);
    EXPECT_EQ(write("y"), 1);
    EXPECT_EQ(out.getStatistics().send_error, 0);
    EXPECT_EQ(out.getStatistics().datagrams_sent, 21u);
    for (int i = 0; i < 50; i++)
        EXPECT_EQ(in.write("x", 1, 1), -1) << "closed";
    EXPECT_EQ(in.getStatistics().send_failures, 50u);
    EXPECT_TRUE(lines.empty());
}

TEST_F(SocketTest, AClosedSocketAnswersQuietlyAndCanBeCreatedAgain) {
    write("one");
    read();
    EXPECT_EQ(SocketUDP::getOpenSockets().size(), 2);
    in.close();
    EXPECT_EQ(SocketUDP::getOpenSockets().size(), 1);
    EXPECT_EQ(read(), "");
    EXPECT_FALSE(in.bind() || in.recv(65507) || in.nonblock());
    EXPECT_EQ(received.datagrams_received, 1u) << "closing keeps the statistics";
    const int next = dup(raw); // the descriptor that comes next
    ::close(next);
    EXPECT_TRUE(in.create() && in.create() && in.bind());
    EXPECT_EQ(fcntl(next, F_GETFD), FD_CLOEXEC) << "programs that we start inherit the port";
    EXPECT_EQ(SocketUDP::getOpenSockets().size(), 2) << "what was open is closed first";
    in.release();
    EXPECT_EQ(received.datagrams_received, 0u);
}
