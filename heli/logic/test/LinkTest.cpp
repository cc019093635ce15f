// SPDX-License-Identifier: MIT

// The host's records in, the feedback out.

#include "SignalRecorder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace {

using namespace ig;

using LinkTest = LogicTest;

TEST_F(LinkTest, EveryWaitingRecordIsAppliedAndTheLastOneHolds) {
    UdpRecvData record = LogicScene::record();
    scene.send(record);
    record.latitude = 30.0; // half the earth away: the attitude is that of the new place
    record.longitude = 120.0;
    record.altitude = 77.5f;
    record.heading = 90;
    record.pitch = 5;
    record.roll = -3;
    record.rotor_speed = 135;
    scene.send(record);
    for (int i = 0; i < 2; i++) { // and without another datagram everything stays
        scene.frame();
        EXPECT_LT(length(scene.helicopterWgs() - dvec3(120, 30, 77.5)), 1e-8);
        EXPECT_LT(length(heli().m_prefab->getWgsHPR() - dvec3(90, 5, -3)), 1e-9);
        EXPECT_EQ(heli().get_rotor_speed(), 8100);
        EXPECT_EQ(heli().m_collective, 0.5f);
    }
}

TEST_F(LinkTest, ResetComesBeforeTheRestOfItsRecord) {
    double announced_at = 0;
    logic().m_sig_code.append({this, [&](int) { announced_at = scene.helicopterWgs().z; }});
    UdpRecvData record = LogicScene::record();
    record.command = 5;
    record.altitude = 500;
    scene.tell(record);
    EXPECT_EQ(announced_at, 0);
    record.command = 6;
    record.altitude = 600;
    scene.tell(record);
    EXPECT_NEAR(announced_at, LogicScene::ALTITUDE, 1e-8); // at its start
    EXPECT_NEAR(scene.helicopterWgs().z, 600, 1e-8);
}

TEST_F(LinkTest, ShortDatagramReadsAsZeroAndWildOnesKeepTheLastPose) {
    UdpRecvData record = LogicScene::record();
    scene.peer.send(&record, 100, scene.receive_port);
    scene.frame();
    EXPECT_NEAR(length(scene.helicopterWgs()), 0, 1e-8); // longitude, latitude, altitude 0
    scene.tell(record);
    const dmat4 pose = heli().get_world_transform();
    for (double wild : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        record.latitude = record.longitude = wild;
        record.altitude = record.heading = record.pitch = record.roll = record.rotor_speed =
            static_cast<float>(wild);
        scene.tell(record);
    }
    EXPECT_EQ(heli().get_world_transform(), pose);
    std::mt19937 random(12345);
    std::array<std::uint32_t, (sizeof(UdpRecvData) + 3) / 4> bits;
    for (int round = 0; round < 200; round++) { // patterns of all kinds
        std::ranges::generate(bits, random);
        scene.peer.send(bits.data(), sizeof(UdpRecvData), scene.receive_port);
        scene.frame();
    }
    EXPECT_TRUE(isFinite(scene.camera.getTransform()));
    scene.tell(LogicScene::record()); // and a good record heals everything
    EXPECT_TRUE(isFinite(scene.helicopterNode("wing")->getWorldTransform()));
    EXPECT_NEAR(heli().m_prefab->getWgsHPR().x, 0, 1e-9);
}

TEST_F(LinkTest, RecordsAreAppliedAndTheOperatorLooksAroundWhileTheSceneStandsStill) {
    UdpRecvData record = LogicScene::record();
    record.rotor_speed = 200;
    scene.tell(record);
    const float angle = heli().m_rotor_angle;
    const dvec3 camera = scene.camera.getWorldPosition();
    logic().m_player_mode = Logic_Nerith_Heli_Final::PLAYER_MODE_FREE;
    scene.control.setLeftButton(true);
    scene.control.keyDown('w');
    record.altitude += 1;
    scene.send(record);
    scene.frame(0.1f, true);
    EXPECT_NEAR(scene.helicopterWgs().z, record.altitude, 1e-6);
    EXPECT_EQ(heli().m_rotor_angle, angle);
    EXPECT_GT(length(scene.camera.getWorldPosition() - camera), 1);
}

// ------------------------------------------------------------------ feedback

TEST_F(LinkTest, FeedbackTellsThePointBelowAndTheWheels) {
    UdpRecvData record = LogicScene::record();
    record.heading = 77;
    record.pitch = 2;
    scene.tell(record);
    UdpSendData feedback = *scene.feedback();
    EXPECT_EQ(feedback.frame, 2);
    EXPECT_NEAR(feedback.ground_latitude, LogicScene::LATITUDE, 1e-9);
    EXPECT_NEAR(feedback.ground_longitude, LogicScene::LONGITUDE, 1e-9);
    EXPECT_NEAR(feedback.height_above_ground, 30, 1e-4); // the deck, not the own belly
    // wheel_front hangs on a node turned by 90 degrees about Z, counter-clockwise.
    EXPECT_NEAR(feedback.wheel_front.h, 77 - 90 + 360, 1e-3);
    EXPECT_NEAR(feedback.wheel_front.p, 0, 1e-3);
    EXPECT_NEAR(feedback.wheel_front.r, -2, 1e-3); // its right is the nose, and that is up
    EXPECT_NEAR(feedback.wheel_left.p, 5, 1e-2);   // pitched by 5 on its own
    EXPECT_NEAR(feedback.wheel_right.h, 77, 1e-3);
    EXPECT_NEAR(feedback.wheel_right.p, 2, 1e-3);
    record.altitude = 90000; // looks 100 km deep
    record.heading = -1e-6f; // 359.999999, which is 360 in single precision
    scene.tell(record);
    feedback = *scene.feedback();
    EXPECT_NEAR(feedback.height_above_ground, 89990, 0.01);
    EXPECT_EQ(feedback.wheel_right.h, 0);
    record.latitude += 1; // away from the deck
    scene.tell(record);
    feedback = *scene.feedback();
    const double latitude = feedback.ground_latitude; // which is not aligned
    EXPECT_EQ(latitude, 0);
    EXPECT_EQ(feedback.height_above_ground, 0);
}

TEST(Feedback, GoesToTheConfiguredAddressWhichTheConsoleShowsWithThePort) {
    LogicScene scene;
    const UdpPeer host("127.0.0.2");
    const std::string port = std::to_string(scene.receive_port);
    scene.folder.write("config/Logic_Nerith_Heli_Final.cfg",
                       "flightSimulation_ip: 127.0.0.2\nrecv_from_flightSimulation_port: " + port +
                           "\nsend_to_flightSimulation_port: " + std::to_string(host.port()) +
                           "\n");
    testing::internal::CaptureStdout();
    ASSERT_TRUE(scene.start());
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "接收飞仿数据端口：" + port + "\n飞仿IP：127.0.0.2\n");
    scene.frame();
    EXPECT_EQ(host.receive().size(), 108u);
}

} // namespace
