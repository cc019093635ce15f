// SPDX-License-Identifier: MIT

// Weather and sea: from the host's record to the signals, from the application to the scene.

#include "ig/scene/Material.h"
#include "ig/scene/Object.h"
#include "plugins/ocean/ObjectOcean.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

using namespace ig;

/// Writes down every signal of the weather, in the order of emission.
struct WeatherLog {
    explicit WeatherLog(Logic_Nerith_Heli_Final& logic) {
        logic.m_sig_command.append({this, &WeatherLog::command});
        logic.m_sig_weather.append({this, &WeatherLog::weather});
        logic.m_sig_rain.append({this, &WeatherLog::rain});
        logic.m_sig_snow.append({this, &WeatherLog::snow});
        logic.m_sig_hail.append({this, &WeatherLog::hail});
        logic.m_sig_cloud.append({this, &WeatherLog::cloud});
        logic.m_sig_float_2.append({this, &WeatherLog::direction});
        logic.m_sig_float_3.append({this, &WeatherLog::speed});
        logic.m_sig_float_4.append({this, &WeatherLog::visibility});
        logic.m_sig_sea.append({this, &WeatherLog::sea});
    }
    void note(const char* what, int value) {
        heard.push_back(std::string(what) + " " + std::to_string(value));
    }
    void command(CMD_TYPE v) { note("command", v); }
    void weather(WEATHER_TYPE v) { note("weather", v); }
    void rain(WEATHER_DETAIL v) { note("rain", v); }
    void snow(WEATHER_DETAIL v) { note("snow", v); }
    void hail(WEATHER_DETAIL v) { note("hail", v); }
    void cloud(CloudInfo* v) {
        heard.emplace_back("cloud");
        clouds = *v;
    }
    void direction(float) { heard.emplace_back("direction"); }
    void speed(float) { heard.emplace_back("speed"); }
    void visibility(float) { heard.emplace_back("visibility"); }
    void sea(int v) { note("sea", v); }

    std::vector<std::string> heard;
    CloudInfo clouds{};
};

using Heard = std::vector<std::string>;

struct WeatherTest : testing::Test {
    void start() {
        ASSERT_TRUE(scene.start());
        log.emplace(*scene.logic);
    }
    LogicScene scene;
    std::optional<WeatherLog> log;
};

TEST_F(WeatherTest, OneRecordSignalsInItsFixedOrder) {
    start();
    UdpRecvData record = LogicScene::record();
    record.system_cmd = 1;
    record.weather_type = 4;
    record.rain_level = 1;
    record.snow_level = 2;
    record.hail_level = 3;
    record.sea_code = -1;
    scene.send(record);
    scene.frame();
    EXPECT_EQ(log->heard, (Heard{"command 2", "weather 3", "rain 1", "snow 2", "hail 3", "cloud",
                                 "speed", "direction", "visibility", "sea -1"}));
}

TEST_F(WeatherTest, CodesAreMappedAndThoseOutsideTheirTablesAreSilent) {
    start();
    Logic_Nerith_Heli_Final& logic = *scene.logic;
    Heard& heard = log->heard;
    const auto heardFor = [&logic, &heard](auto change, auto apply) {
        heard.clear();
        UdpRecvData record = LogicScene::record();
        change(record);
        (logic.*apply)(record);
        return heard.empty() ? std::string() : heard.front();
    };
    using Logic = Logic_Nerith_Heli_Final;
    const char* const commands[] = {"", "command 2", "command 1", "command 3", "command 4", ""};
    const char* const weathers[] = {"", "weather 0", "weather 1", "weather 2", "weather 3", ""};
    for (unsigned code = 0; code < 6; code++) {
        EXPECT_EQ(heardFor([&](auto& r) { r.system_cmd = code; }, &Logic::apply_system),
                  commands[code]);
        EXPECT_EQ(heardFor([&](auto& r) { r.weather_type = static_cast<std::uint16_t>(code); },
                           &Logic::apply_weather),
                  weathers[code]);
    }
    EXPECT_EQ(heardFor([](auto& r) { r.system_cmd = 0x80000001; }, &Logic::apply_system), "");
    for (const std::uint16_t level : {0, 1, 2, 3, 4, 0xFFFF}) {
        const std::string tail = std::string(" ").append(std::to_string(level));
        const auto expected = [&](const char* kind) { return level < 4 ? kind + tail : ""; };
        EXPECT_EQ(heardFor([&](auto& r) { r.rain_level = level; }, &Logic::apply_rain),
                  expected("rain"));
        EXPECT_EQ(heardFor([&](auto& r) { r.snow_level = level; }, &Logic::apply_snow),
                  expected("snow"));
        EXPECT_EQ(heardFor([&](auto& r) { r.hail_level = level; }, &Logic::apply_hail),
                  expected("hail"));
    }
}

TEST_F(WeatherTest, CloudBlockBecomesALayer) {
    start();
    UdpRecvData record = LogicScene::record();
    record.cloud_enable = 1;
    record.cloud_param1 = -7;
    record.cloud_param2 = 300;
    record.cloud_top = 3000;
    record.cloud_base = 1200;
    record.cloud_percent = 75;
    scene.logic->apply_cloud(record);
    EXPECT_TRUE(log->clouds.enable);
    EXPECT_EQ(log->clouds.param1, -7);
    EXPECT_EQ(log->clouds.param2, 300);
    EXPECT_EQ(log->clouds.base, 1200);
    EXPECT_EQ(log->clouds.thickness, 1800);
    EXPECT_EQ(log->clouds.ratio, 0.75f);
    record.cloud_enable = 0;
    record.cloud_percent = -50;
    scene.logic->apply_cloud(record);
    EXPECT_FALSE(log->clouds.enable);
    EXPECT_EQ(log->clouds.ratio, -0.5f);
}

TEST_F(WeatherTest, SeaBlockDrivesTheOceanAndSurvivesNonsense) {
    scene.addToWorld("name: ocean, type: ocean");
    start();
    const ObjectOcean& ocean = *scene.logic->m_ocean;
    UdpRecvData record = LogicScene::record();
    record.sea_code = 4;
    record.sea_speed = 500;
    record.sea_angle = 30;
    scene.send(record);
    scene.frame();
    EXPECT_EQ(log->heard.back(), "sea 4");
    EXPECT_EQ(ocean.getSpeed(), 5);
    EXPECT_EQ(ocean.getAngle(), 30);
    record.sea_speed = 0;
    scene.send(record);
    scene.frame();
    EXPECT_EQ(ocean.getSpeed(), 0);
    const float infinity = std::numeric_limits<float>::infinity();
    for (const float absurd : {infinity, -infinity, std::nanf(""), 3e38f, -3e38f}) {
        record.sea_speed = record.sea_angle = absurd;
        scene.send(record);
        scene.frame();
        const dvec3 below = ocean.getWorldPoint(scene.logic->m_heli->get_world_position());
        EXPECT_LT(std::abs(EllipsoidModel().toWGS(below).z), 20);
    }
}

TEST_F(WeatherTest, WithoutOceanTheSeaIsOnlyAnnounced) {
    start();
    UdpRecvData record = LogicScene::record();
    record.sea_code = 9;
    scene.logic->apply_ocean(record);
    EXPECT_EQ(log->heard, (Heard{"sea 9"}));
}

// ------------------------------------------------------------------ from the application

TEST_F(WeatherTest, RainWetsGlassAndRunwayAndSnowAndHourMoveTheirTracks) {
    const auto track = [&](const char* name, const char* node) {
        scene.folder.write(std::string("data/PELMAR_PROJECT/ANIM/") + name,
                           "channels: [{node: " + std::string(node) +
                               ", keys: [[0, 0], [1, 0], [1.1, 1]]}]\n");
        scene.addToWorld("name: " + std::string(node));
    };
    track("runway_ssr.anim", "wet");
    track("runway_ice.anim", "ice");
    track("light.anim", "lit");
    start();
    const auto on = [&](const char* name) { return scene.world->getNodeByName(name)->isEnabled(); };
    const Material* glass =
        static_cast<Object*>(scene.helicopterNode("glass_top_left"))->getSurfaceMaterial(0);
    const int rain_power = glass->findParameterIDByTag("rain_power");
    scene.logic->setRain(2);
    EXPECT_EQ(glass->getParameterSlider(rain_power), 2);
    EXPECT_TRUE(on("wet"));
    EXPECT_TRUE(scene.logic->m_raining);
    scene.logic->setRain(0.3f);
    EXPECT_EQ(glass->getParameterSlider(rain_power), 0.3f);
    EXPECT_FALSE(on("wet"));
    EXPECT_TRUE(scene.logic->m_raining);
    scene.logic->setRain(0);
    EXPECT_EQ(glass->getParameterSlider(rain_power), 0);
    EXPECT_FALSE(scene.logic->m_raining);
    scene.logic->setSnow(2);
    EXPECT_TRUE(on("ice"));
    scene.logic->setSnow(0);
    EXPECT_FALSE(on("ice"));
    scene.logic->setTod(20);
    EXPECT_TRUE(on("lit"));
    EXPECT_FALSE(on("wet") || on("ice"));
}

TEST_F(WeatherTest, MissingTracksGlassAndHelicopterAreSkipped) {
    std::string prefab = LogicScene::helicopterPrefab();
    prefab.replace(prefab.find("material: glass.mat"), 19, "material: light.mat"); // no rain_power
    scene.folder.write(LogicScene::HELICOPTER, prefab);
    start();
    scene.log.lines.clear();
    scene.logic->setRain(1);
    scene.logic->setSnow(1);
    scene.logic->setTod(12);
    EXPECT_TRUE(scene.logic->m_raining);
    scene.logic->release();
    scene.logic->setRain(0);
    EXPECT_FALSE(scene.logic->m_raining);
    EXPECT_TRUE(scene.log.lines.empty());
}

} // namespace
