// SPDX-License-Identifier: MIT
#include "common/wire/WireField.h"
#include "common/wire/UdpRecvData.h"
#include "common/wire/UdpSendData.h"

#include <array>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <set>

namespace {

const WireField& field(const char* name) { return *findField(recordFields(), name); }

TEST(WireField, WritesItsOwnMemberAndNothingElse) {
    UdpRecvData record{}, expected{};
    const auto set = [&](const char* name, double value) {
        EXPECT_TRUE(field(name).write(bytesOf(record), value)) << name;
        EXPECT_EQ(field(name).read(bytesOf(record)), value) << name;
    };
    set("command", 4294967295.0);
    set("cloud_param1", -32768);
    set("weather_value_b", -2147483648.0);
    set("latitude", -19.7);
    set("hang_length", 7.25);
    set("hang_enable", 65535);
    expected.command = 4294967295U;
    expected.cloud_param1 = -32768;
    expected.weather_value_b = -2147483648;
    expected.latitude = -19.7;
    expected.hang_length = 7.25F;
    expected.hang_enable = 65535;
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);

    UdpSendData feedback{};
    feedback.wheel_left.p = 4;
    EXPECT_EQ(findField(feedbackFields(), "wheel_left_p")->read(bytesOf(feedback)), 4);
    EXPECT_EQ(findField(feedbackFields(), "latitude"), nullptr);
}

TEST(WireField, RefusesWhatItCannotHold) {
    UdpRecvData record{};
    const auto bytes = bytesOf(record);
    const auto refuses = [&](const char* name, double value) {
        return !field(name).write(bytes, value);
    };
    EXPECT_TRUE(refuses("hang_enable", 65536) && refuses("hang_enable", -1));
    EXPECT_TRUE(refuses("sea_code", 2.5) && refuses("sea_code", NAN));
    EXPECT_TRUE(refuses("altitude", 1e39));
    EXPECT_TRUE(refuses("reserved52", 0));
    EXPECT_FALSE(refuses("altitude", NAN)) << "a float can say that";
    EXPECT_FALSE(field("latitude").write(bytes.first(131), 1)) << "a byte is missing";
    EXPECT_FALSE(field("latitude").read(bytes.first(131)));
    EXPECT_TRUE(field("latitude").read(bytes.first(132)));
    EXPECT_EQ(field("latitude").getText(bytes.first(131)), "");
}

TEST(WireField, ReadsTextsAsItWritesThem) {
    UdpRecvData record{};
    const auto bytes = bytesOf(record);
    for (const auto& [name, text] : std::initializer_list<std::pair<const char*, const char*>>{
             {"altitude", "0.1"}, {"latitude", "-19.712345678901"}, {"command", "4294967295"}}) {
        ASSERT_TRUE(field(name).write(bytes, field(name).parse(text).value())) << name;
        EXPECT_EQ(field(name).getText(bytes), text);
    }
    record.reserved20[1] = 0xa5;
    EXPECT_EQ(field("reserved20").getText(bytes), "00a50000");
    EXPECT_EQ(field("weather_type").parse("storm"), 3);
    EXPECT_EQ(field("weather_type").getCodeName(3), "storm");
    EXPECT_EQ(field("weather_type").parse("+2"), 2);
    for (const char* wrong : {"", "rainy", "2x", "+-2", "2.5", "65536", "nan"})
        EXPECT_FALSE(field("weather_type").parse(wrong)) << wrong;
}

/// What the table says must be possible: a row edited carelessly is found here.
TEST(WireTables, HoldTogether) {
    for (const auto fields : {recordFields(), feedbackFields()}) {
        std::set<std::string_view> names;
        for (const WireField& f : fields) {
            const bool reserved = f.use == WireField::Use::RESERVED;
            EXPECT_TRUE(names.insert(f.name).second) << f.name << " twice";
            EXPECT_EQ(reserved, f.name.find("reserved") != f.name.npos) << f.name;
            if (reserved) continue;
            EXPECT_TRUE(!f.meaning.empty() && !f.zero.empty()) << f.name;
            EXPECT_TRUE(f.plausible.has(f.range.low)) << f.name;
            EXPECT_TRUE(f.plausible.has(f.range.high) || std::isinf(f.range.high)) << f.name;
            for (const WireCode& code : f.codes)
                EXPECT_TRUE(f.range.has(double(code.value))) << f.name << ' ' << code.name;
        }
    }
}

} // namespace
