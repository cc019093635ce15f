// SPDX-License-Identifier: MIT
#include "ShownWeather.h"

#include "Weather.h"
#include "common/logic/SignalTypes.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

Weather weather(int look, int rain, int snow, int hail, float visibility) {
    return {.look = look, .rain = rain, .snow = snow, .hail = hail, .visibility = visibility};
}

TEST(ShownWeather, OneSeesAsFarAsTheWorstOfItAllowsUnlessTheOperatorSaysHowFar) {
    const Weather nothing, fog = weather(WEATHER_FOG, 0, 0, 0, 60000); // as every record says
    struct Case {
        Weather told, asked;
        float sight; ///< m
    };
    const Case cases[] = {{nothing, nothing, 60000},
                          {fog, nothing, 800},
                          {weather(WEATHER_FOG, 0, 0, 0, 150), nothing, 150},
                          {weather(0, 0, 0, 0, 60000), weather(WEATHER_FOG, -1, -1, -1, -1), 800},
                          {fog, weather(WEATHER_CLEAR, -1, -1, -1, -1), 60000},
                          {fog, weather(-1, 3, 3, 3, 12000), 12000},
                          {weather(WEATHER_STORM, 3, 0, 0, 60000), nothing, 4000},
                          {weather(WEATHER_CLEAR, 1, 3, 1, 60000), nothing, 700},
                          {weather(99, 99, 99, 99, 1e9f), nothing, 700}};
    for (const Case& c : cases)
        EXPECT_EQ(ShownWeather::of(c.told, c.asked).visibility, c.sight) << c.told.describe();
}

TEST(ShownWeather, ChangesTakeSecondsWetnessAndIceTensOfThemAtAnyFrameRate) {
    const ShownWeather fair, foul = ShownWeather::of(weather(WEATHER_STORM, 3, 3, 3, 600), {});
    struct Part {
        float ShownWeather::*value;
        double comes, goes; ///< s
    };
    const Part parts[] = {{&ShownWeather::overcast, 8, 8},
                          {&ShownWeather::rain, 6, 6},
                          {&ShownWeather::visibility, 6, 6},
                          {&ShownWeather::wetness, 20, 60},
                          {&ShownWeather::ice, 40, 80}};
    for (const double rate : {10.0, 60.0})
        for (const Part& part : parts) {
            ShownWeather shown;
            const auto secondsTo = [&](const ShownWeather& target) {
                int frames = 0;
                for (; shown.*part.value != target.*part.value; frames++)
                    shown.approach(target, static_cast<float>(1 / rate));
                return frames / rate;
            };
            EXPECT_NEAR(secondsTo(foul), part.comes, 0.2);
            EXPECT_NEAR(secondsTo(fair), part.goes, 0.2);
        }
    ShownWeather stalled;
    for (const float dt : {0.0f, -1.0f, std::nanf("")})
        stalled.approach(foul, dt);
    EXPECT_EQ(stalled, fair);
    stalled.approach(foul, 1e6f);
    EXPECT_EQ(stalled, foul);
}

} // namespace
