// SPDX-License-Identifier: MIT
#include "channel/interface/LinkMonitor.h"
#include "channel/interface/Texts.h"
#include "testkit/LogCapture.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace {

using namespace ig;

/// A link whose statistics and time the test makes up.
struct LinkMonitorTest : testing::Test {
    LinkMonitorTest() {
        Texts::load("en");
        sample.listening = true;
        sample.port = 10004;
        sample.in.expected_size = 1490;
        sample.in.asked_buffer = sample.in.receive_buffer = 2 << 20;
    }
    /// `frames` frames at 60 a second, with `records` arriving in each.
    void run(int frames, int records = 1) {
        for (int i = 0; i < frames; i++) {
            now += 1 / 60.0;
            if (records > 0) {
                if (sample.in.datagrams_received == 0) sample.in.first_received = now;
                sample.in.datagrams_received += static_cast<std::uint64_t>(records);
                sample.in.last_received = sample.in.senders[0].last_received = now;
            }
            monitor.update(sample, now);
        }
    }
    /// The log's lines since the last call, one after another.
    std::string told() {
        std::string all;
        for (const std::string& line : log.lines)
            all += line + '\n';
        log.lines.clear();
        return all;
    }
    bool isInSummary(const std::string& line) {
        return monitor.getSummary(7, 1).find("\nlink: " + line + "\n") != std::string::npos;
    }
    /// That views agree on what is wrong, and that it goes when it is over.
    void expectEverywhere(const std::string& text) {
        EXPECT_EQ(monitor.getStatus(), text);
        EXPECT_EQ(monitor.getPictureText(), text);
        EXPECT_TRUE(isInSummary(text)) << monitor.getSummary(7, 1);
    }

    LogCapture log;
    LinkSample sample;
    LinkMonitor monitor;
    double now = 1000;
    const SocketSender one{0x0100007f, 4001, 0}, two{0x0200007f, 4002, 0};
};

TEST_F(LinkMonitorTest, NobodyThereSilenceAndReturnAreToldOnceEach) {
    sample.in.senders[0] = one;
    run(60, 0);
    EXPECT_EQ(told(), "link: no host yet on port 10004\n");
    expectEverywhere("no host yet on port 10004");
    run(300);
    EXPECT_EQ(told(), "link: records come from 127.0.0.1:4001\n");
    EXPECT_EQ(monitor.getStatus(), "");
    EXPECT_EQ(monitor.getPictureText(), "");
    run(40, 0); // 0.67 s: a pause
    EXPECT_EQ(monitor.getStatus(), "");
    run(20, 0);
    EXPECT_EQ(monitor.getStatus(), "host silent for 1 s");
    run(390, 0);
    EXPECT_EQ(told(), "link: host silent for 1 s\n");
    expectEverywhere("host silent for 7 s");
    run(60);
    EXPECT_EQ(told(), "link: records come again after 7.5 s\n");
    run(120, 0);
    run(1);
    EXPECT_TRUE(isInSummary("host silent for 7 s, 2 times")) << monitor.getSummary(0, 0);
    EXPECT_FALSE(isInSummary("no host yet on port 10004"));
}

TEST_F(LinkMonitorTest, AHostThatSendsOnceASecondIsMissedAfterItsThird) {
    for (int second = 0; second < 5; second++) {
        run(1);
        run(59, 0);
    }
    told();
    run(60, 0);
    EXPECT_EQ(monitor.getStatus(), "");
    run(60, 0);
    EXPECT_EQ(monitor.getStatus(), "host silent for 2 s");
}

TEST_F(LinkMonitorTest, ADeafChannelAndARefusedDestinationStandEverywhere) {
    sample.listening = false;
    sample.refusal = "Address already in use";
    sample.out.refused_destination = "hostname.example";
    sample.out.send_error = EDESTADDRREQ;
    run(600, 0);
    EXPECT_EQ(told(), "link: not listening on 10004: Address already in use; no record can arrive: "
                      "free the port or configure another one, then start again\n"
                      "link: no feedback: \"hostname.example\" is not an address; a dotted IPv4 "
                      "address or localhost is needed\n");
    EXPECT_EQ(monitor.getStatus(), "not listening on 10004: Address already in use; no feedback: "
                                   "\"hostname.example\" is not an address");
    sample.out.refused_destination.clear();
    sample.out.send_error = ENETUNREACH;
    run(2, 0);
    sample.out.send_error = 0;
    run(2, 0);
    EXPECT_EQ(told(), "link: feedback fails: Network is unreachable\n"
                      "link: the feedback goes out again\n");
}

TEST_F(LinkMonitorTest, WrongRecordsAreToldOncePerCauseWhileTheyComeAndKeptForTheSummary) {
    run(1);
    told();
    const auto wrongSize = [&](int size) {
        (size < 1490 ? sample.in.too_short : sample.in.too_long)++;
        sample.in.wrong_size = size;
        sample.in.wrong_sender = one;
        run(1);
    };
    for (int i = 0; i < 200; i++)
        wrongSize(1489 + i % 2 * 2);
    EXPECT_EQ(told(),
              "link: 1489 bytes, expected 1490, from 127.0.0.1:4001; what is missing counts "
              "as 0, what is too much is cut\n"
              "link: 1491 bytes, expected 1490, from 127.0.0.1:4001; what is missing counts "
              "as 0, what is too much is cut\n");
    run(290);
    expectEverywhere("1491 bytes, expected 1490, from 127.0.0.1:4001");
    run(20);
    EXPECT_EQ(monitor.getStatus(), "");
    wrongSize(1489);
    EXPECT_NE(told(), "") << "a new episode";
    EXPECT_TRUE(isInSummary("1489 bytes, expected 1490, from 127.0.0.1:4001, 2 times"));

    run(400);
    for (int size = 0; size < 100; size++)
        wrongSize(size);
    EXPECT_EQ(log.lines.size(), 8u) << "however many causes";
    sample.in.implausible++;
    sample.in.complaint = {"latitude", 123, "big-endian?", two};
    run(1);
    EXPECT_EQ(monitor.getPictureText(), "99 bytes, expected 1490, from 127.0.0.1:4001\n"
                                        "latitude 123 from 127.0.0.2:4002 is implausible");
}

TEST_F(LinkMonitorTest, SendersLossesAndSmallRoom) {
    sample.in.receive_buffer = 2 * 212992;
    sample.in.senders[0] = one;
    run(10);
    EXPECT_NE(told().find("sysctl -w net.core.rmem_max=1048576"), std::string::npos);
    EXPECT_NE(monitor.getStatistics().find("room for 212992 bytes"), std::string::npos);
    sample.in.senders[0] = two;
    sample.in.senders[1] = one;
    sample.in.senders[1].last_received = now - 3;
    sample.in.taken_over++;
    run(10);
    expectEverywhere("records now from 127.0.0.2:4002, before from 127.0.0.1:4001");
    sample.in.senders[1].last_received = now;
    sample.in.senders[2] = {0x0300007f, 4003, now - 3}; // no longer there
    sample.in.interleaved++;
    run(1);
    expectEverywhere("2 senders: 127.0.0.1:4001, 127.0.0.2:4002");
    run(400);
    told();
    for (int i = 0; i < 50; i++) {
        sample.in.lost += 3;
        run(1);
    }
    EXPECT_EQ(log.lines.size(), 1u);
    expectEverywhere("150 records lost");
}

} // namespace
