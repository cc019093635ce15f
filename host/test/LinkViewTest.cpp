// SPDX-License-Identifier: MIT

// What the operator sees of the link, in the picture and on the console, frame by frame.

#include "Channel.h"
#include "common/wire/UdpRecvData.h"
#include "heli/config/AppData.h"
#include "ig/ui/UIRoot.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"
#include "testkit/UdpPeer.h"

#include <cmath>
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace {

using namespace ig;

/// A channel that runs in real time at 60 frames a second, or slower: what shows up within 60
/// frames shows up within a second of frames that are never late.
struct LinkViewTest : testing::Test {
    static constexpr int SECOND = 60;

    LinkViewTest() {
        std::filesystem::create_symlink(folder.before() / "data", folder.path() / "data");
        for (const char* texts : {"config/texts.zh.yaml", "config/texts.en.yaml"}) {
            std::filesystem::create_directory(folder.path() / "config");
            std::filesystem::create_symlink(folder.before() / texts, folder.path() / texts);
        }
        folder.write("config/Logic_Nerith_Heli_Final.cfg",
                     "recv_from_flightSimulation_port: " + std::to_string(port) +
                         "\nsend_to_flightSimulation_port: " + std::to_string(host.port()) + "\n");
        Options options;
        options.renderer = "null";
        options.frame_rate = SECOND;
        options.language = "en";
        channel.emplace(options);
    }
    ~LinkViewTest() override {
        channel.reset();
        AppData::destroy_instance();
    }
    static UdpRecvData good() {
        UdpRecvData record{};
        record.latitude = 20;
        record.longitude = -155;
        record.altitude = 100;
        return record;
    }
    bool isDrawn(const std::string& part) {
        channel->getUIRoot()->draw(list);
        for (const UiDrawList::Command& command : list.commands())
            if (list.text(command).find(part) != std::string_view::npos) return true;
        return false;
    }
    /// Whether picture and status line say it within a second.
    void expectSeen(const std::string& text) {
        bool drawn = false;
        testing::internal::CaptureStdout();
        for (int i = 0; i < SECOND; i++) {
            ASSERT_TRUE(channel->runFrame());
            drawn = drawn || isDrawn(text);
        }
        channel->runFrame(); // sums of frame times fall short of a whole second
        channel->runFrame();
        EXPECT_TRUE(drawn) << text;
        EXPECT_NE(testing::internal::GetCapturedStdout().find(text), std::string::npos) << text;
    }

    WorkingFolder folder;
    LogCapture log;
    UdpPeer host;
    int port = UdpPeer::freePort();
    UiDrawList list;
    std::optional<Channel> channel;
};

TEST_F(LinkViewTest, WhatIsWrongIsSeenWithinASecondInPictureAndStatusLine) {
    ASSERT_TRUE(channel->open());
    expectSeen("no host yet on port " + std::to_string(port));
    const UdpRecvData record = good();
    host.send(&record, sizeof record, port);
    ASSERT_TRUE(channel->runFrame());
    ASSERT_TRUE(channel->runFrame());
    EXPECT_FALSE(isDrawn("no host yet"));
    expectSeen("host silent for 1 s");
    host.send(&record, 1489, port);
    expectSeen("1489 bytes, expected 1490, from 127.0.0.1:" + std::to_string(host.port()));
    UdpRecvData wild = good();
    wild.heading = std::nanf("");
    host.send(&wild, sizeof wild, port);
    expectSeen("heading nan from 127.0.0.1:" + std::to_string(host.port()) + " is implausible");
    const UdpPeer second;
    for (const UdpPeer* sender : std::initializer_list<const UdpPeer*>{&host, &second, &host})
        sender->send(&record, sizeof record, port);
    expectSeen("2 senders: 127.0.0.1:");
}

TEST_F(LinkViewTest, ADeafChannelDoesNotLookOpen) {
    const UdpPeer occupant;
    folder.write("config/Logic_Nerith_Heli_Final.cfg",
                 "recv_from_flightSimulation_port: " + std::to_string(occupant.port()) + "\n");
    ASSERT_TRUE(channel->open());
    expectSeen("not listening on " + std::to_string(occupant.port()) + ": Address already in use");
}

} // namespace
