// SPDX-License-Identifier: MIT

// Weather from end to end: from a datagram to what the channel says that it shows.

#include "ChannelRun.h"

#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace std::chrono_literals;

TEST(WeatherSystem, RecordsSetTheWeatherAndOptionsWin) {
    UdpRecvData record{};
    record.system_cmd = 2;
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
    const auto shownWith = [&](const std::string& options) {
        ChannelRun run;
        EXPECT_TRUE(run.start("--renderer null --fps 30 --time-scale 0 " + options));
        for (int i = 0; i < 5; i++) {
            run.send(&record, sizeof record);
            std::this_thread::sleep_for(300ms);
        }
        EXPECT_EQ(run.stop(), 0);
        return run.output;
    };
    const std::string told = shownWith("--time-of-day 18.5");
    EXPECT_NE(told.find("| freeze 18:30 storm, rain 2, clouds 80 % at 700 m, sight 15.0 km, wind "
                        "060/11 m/s, sea 6 |"),
              std::string::npos)
        << told;
    const std::string asked = shownWith("--time 12 --weather fog --rain 0 --hail 1 --sea 2");
    EXPECT_NE(asked.find("| freeze 12:00 fog, hail 1, clouds 80 % at 700 m, sight 15.0 km, wind "
                         "060/11 m/s, sea 2 |"),
              std::string::npos)
        << asked;
}

} // namespace
