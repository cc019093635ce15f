// SPDX-License-Identifier: MIT
#include "flightsim/mission/RecordFields.h"

#include <cstring>
#include <gtest/gtest.h>

namespace flightsim {
namespace {

Change change(double after, double over,
              std::initializer_list<std::pair<const char*, double>> values) {
    Change result{after, over, {}};
    for (const auto& [name, value] : values)
        result.values.emplace_back(findRecordField(name), value);
    return result;
}

TEST(RecordFields, WriteTheirOwnMembersAndNothingElse) {
    UdpRecvData record{};
    const auto set = [&](const char* name, double value) {
        findRecordField(name)->write(record, value);
    };
    set("command", 4294967295.0);
    set("cloud_param1", -32768);
    set("weather_value_b", -2147483648.0);
    set("hang_length", 7.25);
    set("hang_enable", 65535);
    set("sea_code", 2.6);
    UdpRecvData expected{};
    expected.command = 4294967295U;
    expected.cloud_param1 = -32768;
    expected.weather_value_b = -2147483648;
    expected.hang_length = 7.25F;
    expected.hang_enable = 65535;
    expected.sea_code = 3;
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);
    EXPECT_EQ(findRecordField("pitch"), nullptr) << "the pose is flown";
    for (const RecordField& field : recordFields()) {
        field.write(record, 7);
        EXPECT_EQ(field.read(record), 7) << field.name;
    }
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
