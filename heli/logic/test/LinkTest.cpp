// SPDX-License-Identifier: MIT

// The host's records in, the feedback out.

#include "heli/kit/UdpDataKit.h"
#include "testkit/LogicScene.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

using namespace ig;

struct LinkTest : testing::Test {
    void SetUp() override { ASSERT_TRUE(scene.start()); }
    HelicopterCorax& heli() { return *scene.logic->m_heli; }
    LogicScene scene;
};

TEST_F(LinkTest, RecordPosesTheHelicopterInTheFrameAfterItsArrival) {
    UdpRecvData record = LogicScene::record();
    record.latitude = 30.0;
    record.longitude = 120.0;
    record.altitude = 77.5f;
    record.heading = 90;
    record.pitch = 5;
    record.roll = -3;
    record.rotor_speed = 50;
    scene.send(record);
    scene.frame();
    const dvec3 wgs = scene.helicopterWgs();
    EXPECT_NEAR(wgs.x, 120, 1e-12);
    EXPECT_NEAR(wgs.y, 30, 1e-12);
    EXPECT_NEAR(wgs.z, 77.5, 1e-8);
    const dvec3 hpr =
        heli().m_prefab->getWgsHPR(); // geodetic at the new place, half the earth away
    EXPECT_NEAR(hpr.x, 90, 1e-9);
    EXPECT_NEAR(hpr.y, 5, 1e-9);
    EXPECT_NEAR(hpr.z, -3, 1e-9);
    EXPECT_EQ(heli().get_rotor_speed(), 3000);
    EXPECT_TRUE(scene.helicopterNode("wing_plane")->isEnabled());
    EXPECT_FALSE(scene.helicopterNode("wing_mesh")->isEnabled());
    record.rotor_speed = 270;
    scene.send(record);
    scene.frame();
    EXPECT_EQ(heli().get_rotor_speed(), 16200);
    EXPECT_EQ(heli().m_collective, 1);
}

TEST_F(LinkTest, EveryWaitingRecordIsAppliedAndTheLastOneHolds) {
    UdpRecvData record = LogicScene::record();
    record.altitude = 50;
    scene.send(record);
    record.altitude = 60;
    record.radar_value = 2.5f;
    record.radar_sector_width = 120;
    record.radar_sector_offset = -20;
    scene.send(record);
    for (int i = 0; i < 2; i++) { // and without another datagram everything stays
        scene.frame();
        EXPECT_NEAR(scene.helicopterWgs().z, 60, 1e-8);
        EXPECT_EQ(scene.logic->m_radar_value, 2.5);
        EXPECT_EQ(scene.logic->m_radar_sector_width, 120);
        EXPECT_EQ(scene.logic->m_radar_sector_offset, -20);
        EXPECT_TRUE(scene.logic->m_udp_recv->m_records.empty());
    }
}

TEST_F(LinkTest, ResetComesBeforeTheRestOfItsRecord) {
    std::vector<int> codes;
    double altitude = 0;
    scene.logic->m_sig_code.append({&codes, [&](int code) {
                                        codes.push_back(code);
                                        altitude = scene.helicopterWgs().z;
                                    }});
    UdpRecvData record = LogicScene::record();
    record.command = 5;
    record.altitude = 500;
    scene.send(record);
    record.command = 6;
    record.altitude = 600;
    scene.send(record);
    scene.frame();
    EXPECT_EQ(codes, (std::vector<int>{25, 26}));
    EXPECT_NEAR(altitude, LogicScene::ALTITUDE, 1e-8); // at its start when announced
    EXPECT_NEAR(scene.helicopterWgs().z, 600, 1e-8);
}

TEST_F(LinkTest, ShortDatagramReadsAsZeroAndAWildOneKeepsTheLastPose) {
    const std::string half(100, '\0');
    scene.peer.send(half.data(), half.size(), scene.receive_port);
    scene.frame();
    EXPECT_NEAR(length(scene.helicopterWgs()), 0, 1e-8); // longitude, latitude, altitude 0
    scene.send(LogicScene::record());
    scene.frame();
    const dmat4 pose = heli().get_world_transform();
    const double nan = std::nan(""), infinity = std::numeric_limits<double>::infinity();
    for (double wild : {nan, infinity, -infinity}) {
        UdpRecvData record = LogicScene::record();
        record.latitude = record.longitude = wild;
        record.altitude = record.heading = record.pitch = record.roll = static_cast<float>(wild);
        record.rotor_speed = static_cast<float>(wild);
        record.radar_value = record.radar_sector_width = static_cast<float>(wild);
        record.weather_angle = record.weather_value_a = static_cast<float>(wild);
        scene.send(record);
        for (int i = 0; i < 3; i++)
            scene.frame();
    }
    EXPECT_EQ(heli().get_world_transform(), pose);
    EXPECT_GT(heli().m_prefab->getNumRefused(), 0);
    EXPECT_TRUE(isFinite(scene.camera.getTransform()));
    scene.send(LogicScene::record()); // and a good record heals everything
    scene.frame();
    EXPECT_TRUE(std::isfinite(heli().m_rotor_angle));
    EXPECT_TRUE(isFinite(scene.helicopterNode("wing")->getWorldTransform()));
    ASSERT_TRUE(scene.feedback().has_value());
    EXPECT_NEAR(heli().m_prefab->getWgsHPR().x, 0, 1e-9);
}

TEST_F(LinkTest, BitPatternsOfAllKindsNeverHurt) {
    std::string bytes(1490, '\0');
    std::uint32_t state = 12345;
    for (int round = 0; round < 200; round++) {
        for (char& byte : bytes) {
            state = state * 1664525 + 1013904223;
            byte = static_cast<char>(state >> 24);
        }
        scene.peer.send(bytes.data(), bytes.size(), scene.receive_port);
        scene.frame();
    }
    EXPECT_TRUE(isFinite(heli().get_world_transform()));
    EXPECT_TRUE(isFinite(scene.camera.getTransform()));
}

// ------------------------------------------------------------------ feedback

TEST_F(LinkTest, FeedbackTellsThePointBelowAndTheWheelsByteByByte) {
    UdpRecvData record = LogicScene::record();
    record.heading = 77;
    record.pitch = 2;
    record.altitude = 40;
    scene.send(record);
    Engine::get()->beginFrame(0); // so that the frame number is not 1
    scene.frame();
    std::string bytes;
    for (std::string next; !(next = scene.peer.receive()).empty();)
        bytes = next;
    ASSERT_EQ(bytes.size(), 108u);
    const auto at = [&]<class T>(std::size_t offset, T) {
        T value;
        std::memcpy(&value, bytes.data() + offset, sizeof value);
        return value;
    };
    EXPECT_EQ(at(0, std::int32_t()), 2);
    EXPECT_NEAR(at(4, double()), LogicScene::LATITUDE, 1e-9);
    EXPECT_NEAR(at(12, double()), LogicScene::LONGITUDE, 1e-9);
    EXPECT_NEAR(at(20, float()), 30, 1e-4); // the deck, not the helicopter's own belly
    // wheel_front hangs on a node turned by 90 degrees about Z, counter-clockwise.
    EXPECT_NEAR(at(24, float()), 77 - 90 + 360, 1e-3);
    EXPECT_NEAR(at(28, float()), 0, 1e-3);
    EXPECT_NEAR(at(32, float()), -2, 1e-3); // its right is the nose, and that is up
    EXPECT_NEAR(at(44, float()), 5, 1e-2);  // wheel_left: pitched by 5 on its own
    EXPECT_NEAR(at(56, float()), 77, 1e-3);
    EXPECT_NEAR(at(60, float()), 2, 1e-3);
    for (std::size_t offset : {36u, 52u, 68u})
        EXPECT_EQ(at(offset, std::int32_t()), 0);
    EXPECT_EQ(bytes.substr(72), std::string(36, '\0'));
    scene.frame();
    EXPECT_EQ(scene.feedback()->frame, 3);
}

TEST_F(LinkTest, NothingBelowReportsZeros) {
    UdpRecvData record = LogicScene::record();
    record.latitude += 1; // away from the deck
    scene.send(record);
    scene.frame();
    const UdpSendData feedback = *scene.feedback();
    EXPECT_EQ(double(feedback.ground_latitude), 0);
    EXPECT_EQ(double(feedback.ground_longitude), 0);
    EXPECT_EQ(float(feedback.height_above_ground), 0);
    EXPECT_NEAR(feedback.wheel_right.h, 0, 1e-3);
}

TEST(Feedback, MissingWheelLeavesItsBytesZeroAndOneDatagramGoesPerFrame) {
    LogicScene scene;
    std::string prefab = LogicScene::helicopterPrefab();
    prefab.replace(prefab.find("wheel_left"), 10, "wheel_oops");
    scene.folder.write(LogicScene::HELICOPTER, prefab);
    ASSERT_TRUE(scene.start());
    UdpRecvData record = LogicScene::record();
    record.heading = 10;
    scene.send(record);
    int frames = 0;
    for (int i = 0; i < 25; i++) {
        scene.frame(i % 2 ? 0.001f : 0.05f); // whatever the frame rate
        while (!scene.peer.receive().empty())
            frames++;
    }
    EXPECT_EQ(frames, 25);
    scene.frame();
    const UdpSendData feedback = *scene.feedback();
    EXPECT_EQ(feedback.wheel_left.h, 0);
    EXPECT_NEAR(feedback.wheel_right.h, 10, 1e-3);
}

TEST(Feedback, WithoutHelicopterItIsTheFrameNumberAndAnErrorLine) {
    LogicScene scene;
    ASSERT_TRUE(scene.start());
    HelicopterCorax* heli = scene.logic->m_heli;
    scene.logic->m_heli = nullptr;
    scene.log.lines.clear();
    scene.frame();
    EXPECT_EQ(scene.log.lines,
              (std::vector<std::string>{"Logic_Nerith_Heli_Final::send_udp:m_heli"}));
    const UdpSendData feedback = *scene.feedback();
    EXPECT_EQ(feedback.frame, 1);
    EXPECT_EQ(feedback.wheel_right.h, 0);
    scene.logic->m_heli = heli;
}

} // namespace
