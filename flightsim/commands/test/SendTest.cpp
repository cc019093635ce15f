// SPDX-License-Identifier: MIT
#include "Send.h"
#include "flightsim/testkit/TestFiles.h"
#include "program/Clock.h"

#include <cmath>
#include <cstring>

namespace flightsim {
namespace {

SendOptions valued(std::vector<std::string> values) {
    SendOptions options;
    options.values = std::move(values);
    return options;
}

TEST(Send, TakesNumbersAndNamesOfCodesAndSaysWhatIsWrongWithOthers) {
    const std::pair<const char*, const char*> wrong[] = {
        {"wether_type=3", "no field \"wether_type\"; nearest is \"weather_type\""},
        {"sea_code", "\"sea_code\" is not FIELD=VALUE"},
        {"weather_type=70000", "takes uint16 from 0 to 65535, or clear, overcast, storm, fog"},
        {"hang_mass=2.5", "hang_mass=2.5: the field takes int16 from -32768 to 32767"},
        {"heading=north", "heading=north: the field takes float32"},
        {"reserved52=1", "is reserved"},
    };
    std::string message;
    for (const auto& [value, text] : wrong) {
        Send send;
        EXPECT_FALSE(send.open(valued({value}), message));
        EXPECT_NE(message.find(text), std::string::npos) << message;
    }
    Send twice, good, quiet;
    EXPECT_FALSE(twice.open(valued({"heading=1", "heading=2"}), message));
    ASSERT_TRUE(good.open(valued({"weather_type=storm", "heading=-3.5", "cloud_top=nan",
                                  "sea_code=40", "command=3", "weather_value_b=10"}),
                          message))
        << message;
    EXPECT_EQ(+good.getRecord().weather_type, 3);
    EXPECT_EQ(good.getRecord().heading, -3.5F);
    EXPECT_TRUE(std::isnan(good.getRecord().cloud_top)) << "to see what the channel makes of it";
    EXPECT_EQ(+good.getRecord().system_cmd, 1U) << "running, unless told otherwise";
    for (const char* part :
         {"heading=-3.5 is not from 0 to 360", "sea_code=40 is not from 0",
          "command=3 means nothing: 6 resets", "weather_value_b=10 is not 20 and more: "})
        EXPECT_NE(good.getWarning().find(part), std::string::npos) << good.getWarning();
    ASSERT_TRUE(quiet.open(
        valued({"command=reset", "system_cmd=0", "weather_value_b=0", "hang_enable=2"}), message))
        << message;
    EXPECT_EQ(quiet.getWarning(), "");
}

TEST(Send, AStreamRepeatsARecordOfARecordingButNotItsCommand) {
    UdpRecvData recorded{};
    recorded.command = 6;
    recorded.altitude = 70;
    Bytes bytes(sizeof recorded);
    std::memcpy(bytes.data(), &recorded, sizeof recorded);
    TestFile file("base");
    writeRecording(file.path, RecordingFormat::whole, {{0, Bytes(108)}, {1, bytes}});
    UdpSocket channel;
    std::string message;
    ASSERT_TRUE(channel.bind(0, message)) << message;
    SendOptions options = valued({"altitude=80"});
    options.base = file.path;
    EXPECT_FALSE(Send().open(options, message)) << "no host data record";
    options.base_record = 2;
    EXPECT_FALSE(Send().open(options, message));
    EXPECT_NE(message.find("no record 2"), std::string::npos) << message;
    options.base_record = 1;
    options.link.to = "127.0.0.1:" + std::to_string(channel.getPort());
    options.link.feedback = false;
    options.link.out = std::fopen("/dev/null", "w");
    options.seconds = 0.03;
    const StopFlag stop = false;
    for (const double rate : {100.0, 0.0}) { // 0: one record
        options.rate = rate;
        Send send;
        ASSERT_TRUE(send.open(options, message)) << message;
        EXPECT_TRUE(send.run(stop, message)) << message;
        for (int i = 0; i < (rate > 0 ? 3 : 1); i++) {
            UdpRecvData record{};
            ASSERT_TRUE(channel.receive(
                {reinterpret_cast<std::uint8_t*>(&record), sizeof record})); // on loopback at once
            EXPECT_EQ(+record.command, i == 0 ? 6U : 0U) << i;
            EXPECT_EQ(record.altitude, 80);
        }
        EXPECT_FALSE(channel.waitReadable(program::steadyNow_ns()));
    }
    std::fclose(options.link.out);
}

} // namespace
} // namespace flightsim
