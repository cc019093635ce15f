// SPDX-License-Identifier: MIT
#include "flightsim/mission/RecordFields.h"

#include <gtest/gtest.h>

namespace flightsim {
namespace {

Change change(double after, double over,
              std::initializer_list<std::pair<const char*, double>> values) {
    Change result{after, over, {}};
    for (const auto& [name, value] : values)
        result.values.emplace_back(findField(recordFields(), name), value);
    return result;
}

TEST(RecordSchedule, RampsQuantitiesAndSwitchesCodes) {
    RecordSchedule schedule;
    UdpRecvData record{};
    schedule.add(change(0, 0, {{"sea_speed", 100}}), 10);
    schedule.add(change(0, 4, {{"sea_speed", 300}, {"weather_type", 3}, {"sea_code", 4}}), 10);
    schedule.add(change(3, 2, {{"sea_speed", 0}}), 10); // takes over where the other has led: 250
    const auto at = [&](double time) {
        schedule.apply(time, record);
        return record.sea_speed;
    };
    EXPECT_EQ(at(9.99), 0);
    EXPECT_EQ(at(10), 100);
    EXPECT_EQ(+record.weather_type, 3);
    EXPECT_EQ(at(11), 150);
    EXPECT_EQ(+record.sea_code, 1);
    EXPECT_EQ(at(12), 200);
    EXPECT_EQ(at(14), 125);
    EXPECT_EQ(+record.sea_code, 4);
    EXPECT_EQ(at(99), 0);
    record.sea_speed = 5; // it's over: nothing writes any more
    EXPECT_EQ(at(100), 5);
}

} // namespace
} // namespace flightsim
