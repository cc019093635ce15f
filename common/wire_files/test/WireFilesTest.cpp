// SPDX-License-Identifier: MIT
#include "common/wire/UdpRecvData.h"
#include "common/wire/UdpSendData.h"
#include "visual_channel_wire.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace {

namespace fs = std::filesystem;

bool isAsTheTablesSay(const fs::path& folder) {
    const std::string command = PROGRAM_PATH " --check " + folder.string();
    return std::system(command.c_str()) == 0;
}

TEST(WireFiles, AreAsTheTablesSay) {
    EXPECT_TRUE(isAsTheTablesSay(".")) << "write them anew: wire_files .";

    const fs::path copy = fs::path(testing::TempDir()) / "wire_files_drifted";
    fs::remove_all(copy);
    for (const char* path : {"examples/visual_channel_wire.h", "examples/visual_channel.lua",
                             "examples/visual_channel.xml", "docs/connect.md"}) {
        fs::create_directories((copy / path).parent_path());
        fs::copy_file(path, copy / path);
    }
    for (const auto& entry : fs::recursive_directory_iterator(copy))
        if (entry.is_regular_file()) {
            std::ostringstream text;
            text << std::ifstream(entry.path()).rdbuf();
            std::string drifted = text.str();
            drifted.replace(drifted.rfind("height_above_ground"), 6, "depth");
            std::ofstream(entry.path()) << drifted;
            EXPECT_FALSE(isAsTheTablesSay(copy)) << entry.path();
            ASSERT_EQ(std::system((PROGRAM_PATH " " + copy.string()).c_str()), 0);
            EXPECT_TRUE(isAsTheTablesSay(copy)) << entry.path();
        }
    fs::remove(copy / "docs/connect.md");
    EXPECT_NE(std::system((PROGRAM_PATH " " + copy.string()).c_str()), 0);
    EXPECT_FALSE(fs::exists(copy / "docs/connect.md")) << "a page of bare tables";
    fs::remove_all(copy);
}

TEST(WireHeader, EncodesTheRecord) {
    vc_record record;
    vc_record_init(&record);
    UdpRecvData expected{};
    expected.system_cmd = 1;
    expected.weather_type = VC_WEATHER_TYPE_CLEAR;
    expected.sea_code = 2;
    expected.rotor_speed = 270;
    expected.radar_value = 1;
    expected.radar_sector_width = 90;
    expected.hang_mass = 80;
    expected.hang_length = 2;

    expected.command = record.command = 0xfedcba98;
    expected.cloud_param2 = record.cloud_param2 = -2;
    expected.weather_value_b = record.weather_value_b = -123456789;
    expected.longitude = record.longitude = -155.061234567891;
    expected.heading = record.heading = 359.25F;
    expected.hang_mass = record.hang_mass = -3;
    expected.hang_length = record.hang_length = 7.125F; // unaligned
    expected.hang_enable = record.hang_enable = 0xabcd;
    std::uint8_t bytes[VC_RECORD_SIZE];
    std::memset(bytes, 0xff, sizeof bytes);
    vc_record_encode(&record, bytes);
    ASSERT_EQ(sizeof expected, sizeof bytes);
    EXPECT_EQ(std::memcmp(&expected, bytes, sizeof bytes), 0);
}

TEST(WireHeader, DecodesTheFeedback) {
    UdpSendData sent{};
    sent.frame = -5;
    sent.ground_latitude = 19.7;
    sent.height_above_ground = 12.5F;
    sent.wheel_right.r = -4;
    sent.wheel_right.reserved = sent.reserved72[0] = 9;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&sent);
    vc_feedback feedback{};
    EXPECT_FALSE(vc_feedback_decode(&feedback, bytes, 107));
    EXPECT_EQ(feedback.frame, 0);
    ASSERT_TRUE(vc_feedback_decode(&feedback, bytes, sizeof sent));
    EXPECT_EQ(feedback.frame, -5);
    EXPECT_EQ(feedback.ground_latitude, 19.7);
    EXPECT_EQ(feedback.height_above_ground, 12.5F);
    EXPECT_EQ(feedback.wheel_right_r, -4);
}

} // namespace
