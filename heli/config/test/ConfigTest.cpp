// SPDX-License-Identifier: MIT
#include "heli/config/AppData.h"
#include "heli/config/StringTable.h"
#include "ig/scene/Camera.h"
#include "ig/scene/CameraControl.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

struct AppDataTest : testing::Test {
    ~AppDataTest() override { AppData::destroy_instance(); }
    WorkingFolder folder;
    LogCapture log;

    AppData& load(const std::string& text) {
        folder.write("config/Logic_Nerith_Heli_Final.cfg", text);
        EXPECT_TRUE(AppData::instance()->load());
        return *AppData::instance();
    }
};

TEST_F(AppDataTest, MissingFileWarnsOnceAndTheDefaultsHold) {
    AppData& data = *AppData::instance();
    EXPECT_FALSE(data.load());
    EXPECT_EQ(log.lines, (std::vector<std::string>{
                             "Open config file failed:config/Logic_Nerith_Heli_Final.cfg, use "
                             "default config"}));
    EXPECT_EQ(data.recv_from_flightSimulation_port(), 10004);
}

TEST_F(AppDataTest, ValuesAreReadAndZeroOrEmptyMeansTheDefault) {
    AppData& data = load("flightSimulation_ip: 10.1.2.3\nrecv_from_flightSimulation_port: 7\n"
                         "send_to_flightsimulation_frequency: 0.05\nvsync: true\n"
                         "send_to_flightSimulation_port: 0\nfps_limit: 0\n");
    EXPECT_EQ(data.flightSimulation_ip(), "10.1.2.3");
    EXPECT_EQ(data.recv_from_flightSimulation_port(), 7);
    EXPECT_EQ(data.send_to_flightSimulation_port(), 10005);
    EXPECT_EQ(data.send_to_flightsimulation_frequency(), 0.05f);
    EXPECT_EQ(data.fps_limit(), 6000.0);
    EXPECT_TRUE(data.vsync());
    load("flightSimulation_ip: ''\n"); // a second load replaces everything
    EXPECT_EQ(data.flightSimulation_ip(), "127.0.0.1");
    EXPECT_FALSE(data.vsync());
}

TEST_F(AppDataTest, KeysThatNothingReadsAreNamedWithTheOneThatIsMeant) {
    load("flightSimulation_ip: 10.1.2.3\nrecv_from_flightsimulation_port: 7\nvsync: true\n");
    EXPECT_EQ(log.lines, (std::vector<std::string>{
                             "AppData::load: config/Logic_Nerith_Heli_Final.cfg:2: unknown key "
                             "\"recv_from_flightsimulation_port\"; nearest is "
                             "\"recv_from_flightSimulation_port\""}));
}

TEST_F(AppDataTest, ShearOfAChannelReachesTheProjection) {
    AppData& data = load("slaves: {left: {shear: [0.5, -0.25]}, plain: {}}\n");
    Camera camera;
    CameraControl control(&camera);
    control.updateProjection();
    const dmat4 straight = camera.getProjection();
    EXPECT_FALSE(data.apply_slave_shear("right", &control));
    EXPECT_TRUE(data.apply_slave_shear("left", &control));
    EXPECT_DOUBLE_EQ(camera.getProjection().columns[2].x - straight.columns[2].x, 0.5);
    EXPECT_DOUBLE_EQ(camera.getProjection().columns[2].y - straight.columns[2].y, -0.25);
    EXPECT_TRUE(data.apply_slave_shear("plain", &control)); // no values: straight again
    EXPECT_EQ(camera.getProjection(), straight);
}

// One test, because the table of the process stays loaded once it is.
TEST(StringTable, MissesAreLoggedAndAnsweredWithTheKey) {
    WorkingFolder folder;
    LogCapture log;
    EXPECT_EQ(tr("OK"), "OK");
    EXPECT_EQ(tr("OK"), "OK");
    EXPECT_EQ(log.lines, (std::vector<std::string>(
                             2, "tr:string file not found:config/string.txt"))); // tried again
    folder.write("config/string.txt", "OK: 确定\nEmpty:\n");
    log.lines.clear();
    EXPECT_EQ(tr("OK"), "确定");
    EXPECT_TRUE(log.lines.empty());
    EXPECT_EQ(tr("Cancel"), "Cancel");
    EXPECT_EQ(log.lines, (std::vector<std::string>{"tr:key[Cancel] not found in string file"}));
    EXPECT_EQ(tr("Empty"), ""); // whoever leaves a label empty wants it so
}

} // namespace
