// SPDX-License-Identifier: MIT

// Weather and the scene's time from end to end: from a datagram to what the channel says and
// answers.

#include "ChannelRun.h"

#include "common/wire/UdpSendData.h"

#include <cstring>
#include <gtest/gtest.h>
#include <set>

namespace {

TEST(WeatherSystem, RecordsSetTheWeatherAndOptionsWin) {
    UdpRecvData record{};
    record.weather_type = 3;
    record.rain_level = 2;
    record.snow_level = 9; // no such level: nothing is said of snow
    record.weather_angle = 60;
    record.weather_value_a = 11;
    record.weather_value_b = 15000;
    record.cloud_enable = 1;
    record.cloud_percent = 80;
    record.cloud_base = 700;
    record.cloud_top = 1900;
    record.sea_code = 6;
    ChannelRun run;
    ASSERT_TRUE(
        run.start("--renderer null --time 18.5 --time-scale 0 --weather fog --hail 1 --sea 2"));
    run.send(&record, sizeof record);
    const std::string line = run.program->waitFor(", 1 applied");
    EXPECT_NE(line.find("| run 18:30 fog, rain 2, hail 1, clouds 80 % at 700 m, sight 800 m, wind "
                        "060/11 m/s, sea 2 |"),
              std::string::npos)
        << line;
    EXPECT_EQ(run.stop(), 0);
}

TEST(WeatherSystem, AFrozenSceneStandsStillAndAnswersUntilItRunsAndExitEndsItIfItMay) {
    ChannelRun run;
    ASSERT_TRUE(run.start("--step 0.02 --fps 100 --obey-exit"));
    UdpRecvData record{};
    record.longitude = -155.03; // over open sea
    record.latitude = 19.75;
    record.altitude = 30;
    record.sea_code = 5;
    // The different heights above the waves that the channel answers, once the command has come.
    const auto heightsAfter = [&](std::uint32_t command) {
        record.system_cmd = command;
        std::set<float> heights;
        for (int i = 0; i < 60; i++) {
            run.send(&record, sizeof record);
            const std::string bytes = run.peer.receive(5000);
            UdpSendData answer{};
            if (bytes.size() == sizeof answer) std::memcpy(&answer, bytes.data(), sizeof answer);
            if (i >= 20) heights.insert(answer.height_above_ground);
        }
        return heights;
    };
    EXPECT_GT(heightsAfter(0).size(), 30u);
    EXPECT_EQ(heightsAfter(2).size(), 1u) << "frozen";
    EXPECT_EQ(heightsAfter(0).size(), 1u) << "and nothing new commanded";
    EXPECT_GT(heightsAfter(1).size(), 30u);
    record.system_cmd = 4;
    run.send(&record, sizeof record);
    EXPECT_EQ(run.program->finish(&run.output), 0);
    EXPECT_NE(run.output.find("the flight simulation ends the channel (system_cmd 4)"),
              std::string::npos);
    EXPECT_NE(run.output.find("records: "), std::string::npos) << "the summary";
}

} // namespace
