// SPDX-License-Identifier: MIT

// Weather and sea: from the host's record to the signals, from the application to the scene.

#include "SignalRecorder.h"
#include "ig/scene/Material.h"

#include <cmath>
#include <sstream>

namespace {

using namespace ig;

std::string write(CloudInfo* c) {
    std::ostringstream text;
    text << c->enable << ' ' << c->param1 << ' ' << c->param2 << ' ' << c->base << ' '
         << c->thickness << ' ' << c->ratio;
    return text.str();
}
std::string write(float value) { return (std::ostringstream() << value).str(); }

/// Writes down every signal of the weather, in the order of emission.
struct WeatherTest : testing::Test {
    void start() {
        ASSERT_TRUE(scene.start());
        Logic_Nerith_Heli_Final& logic = *scene.logic;
        const auto listen = [this](auto& list, const std::string& what) {
            list.append({this, [=, this](auto told) { heard += what + ' ' + write(told) + ", "; }});
        };
        listen(logic.m_sig_command, "command");
        listen(logic.m_sig_weather, "weather");
        listen(logic.m_sig_rain, "rain");
        listen(logic.m_sig_snow, "snow");
        listen(logic.m_sig_hail, "hail");
        listen(logic.m_sig_float_2, "direction");
        listen(logic.m_sig_float_3, "speed");
        listen(logic.m_sig_float_4, "visibility");
        listen(logic.m_sig_sea, "sea");
        listen(logic.m_sig_cloud, "cloud");
    }
    LogicScene scene;
    std::string heard;
};

TEST_F(WeatherTest, RecordsSignalInTheirFixedOrderWhatTheirTablesHold) {
    start(); // without an ocean: the sea is announced all the same
    const std::string rest = "cloud 1 -7 300 3000 -1800 -0.75, speed 7, direction 10, "
                             "visibility 0.5, sea 300, "; // has no table
    for (const auto& [code, of_tables] : std::initializer_list<std::pair<unsigned, const char*>>{
             {0, "rain 0, snow 0, hail 0, "},
             {1, "command 2, weather 0, rain 1, snow 1, hail 1, "},
             {2, "command 1, weather 1, rain 2, snow 2, hail 2, "},
             {3, "command 3, weather 2, rain 3, snow 3, hail 3, "},
             {4, "command 4, weather 3, "},
             {5, ""}}) {
        UdpRecvData record = LogicScene::record();
        record.system_cmd = code;
        const auto level = static_cast<std::uint16_t>(code);
        record.weather_type = record.rain_level = record.snow_level = record.hail_level = level;
        record.weather_value_a = 7;
        record.weather_angle = -100;
        record.weather_value_b = 150000;
        record.sea_code = 300;
        record.cloud_enable = 256;
        record.cloud_param1 = -7;
        record.cloud_param2 = 300;
        record.cloud_top = 1200;
        record.cloud_base = 3000; // above the top: what the host says, sense or nonsense
        record.cloud_percent = -75;
        heard.clear();
        scene.tell(record);
        scene.frame(); // no datagram, no signal
        EXPECT_EQ(heard, of_tables + rest) << code;
    }
}

TEST_F(WeatherTest, SeaBlockDrivesTheOceanAndSurvivesNonsense) {
    scene.addToWorld("name: ocean, type: ocean");
    start();
    const ObjectOcean& ocean = *scene.logic->m_ocean;
    EXPECT_FALSE(ocean.getUseGlobalWind()); // but the host's
    for (const auto& [speed, angle, expected] :
         {std::tuple(500.0f, 30.0f, 5), {0, 30, 0}, {HUGE_VALF, std::nanf(""), 0}}) {
        UdpRecvData record = LogicScene::record();
        record.sea_speed = speed;
        record.sea_angle = angle;
        scene.tell(record);
        EXPECT_EQ(ocean.getSpeed(), expected);
        EXPECT_EQ(ocean.getAngle(), 30);
    }
}

// ------------------------------------------------------------------ from the application

TEST_F(WeatherTest, RainWetsGlassAndRunwayAndSnowAndHourMoveTheirTracks) {
    for (const std::string name : {"runway_ssr", "runway_ice", "light"}) {
        scene.folder.write("data/PELMAR_PROJECT/ANIM/" + name + ".anim",
                           "channels: [{node: " + name + ", keys: [[0, 0], [1, 0], [1.1, 1]]}]\n");
        scene.addToWorld("name: " + name + ", enabled: false");
    }
    start();
    const auto on = [&](const char* name) { return scene.world->getNodeByName(name)->isEnabled(); };
    scene.logic->setRain(2);
    EXPECT_TRUE(on("runway_ssr") && !on("runway_ice") && !on("light") && scene.logic->m_raining);
    scene.logic->setSnow(2);
    scene.logic->setRain(0);
    EXPECT_TRUE(!on("runway_ssr") && on("runway_ice") && !on("light") && !scene.logic->m_raining);
    scene.logic->setSnow(0);
    scene.logic->setTod(20);
    EXPECT_TRUE(!on("runway_ssr") && !on("runway_ice") && on("light"));
    scene.logic->setRain(0.3f);
    const Material* glass =
        static_cast<Object*>(scene.helicopterNode("glass_top_left"))->getSurfaceMaterial(0);
    EXPECT_EQ(glass->getParameterSlider(glass->findParameterIDByTag("rain_power")), 0.3f);
}

} // namespace
