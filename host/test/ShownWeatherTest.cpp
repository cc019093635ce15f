// SPDX-License-Identifier: MIT
#include "ShownWeather.h"

#include "Weather.h"
#include "common/logic/SignalTypes.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

Weather weather(int look, int rain, int snow, int hail, float visibility) {
    Weather w;
    w.look = look;
    w.rain = rain;
    w.snow = snow;
    w.hail = hail;
    w.visibility = visibility;
    return w;
}

TEST(ShownWeather, OneSeesAsFarAsTheWorstOfItAllowsUnlessTheOperatorSaysHowFar) {
    const Weather nothing;
    struct Case {
        Weather told, asked;
        float least, most; ///< m
    };
    const Case cases[] = {
        {nothing, nothing, 60000, 60000},
        {weather(WEATHER_CLEAR, 0, 0, 0, 80000), nothing, 80000, 80000},
        // Every record says how far one sees.
        {weather(WEATHER_FOG, 0, 0, 0, 60000), nothing, 100, 1000},
        {weather(WEATHER_FOG, 0, 0, 0, 150), nothing, 150, 150},
        {weather(WEATHER_CLEAR, 0, 0, 0, 60000), weather(WEATHER_FOG, -1, -1, -1, -1), 100, 1000},
        {weather(WEATHER_FOG, 0, 0, 0, 60000), weather(WEATHER_CLEAR, -1, -1, -1, -1), 60000,
         60000},
        {weather(WEATHER_FOG, 3, 3, 3, 60000), weather(-1, -1, -1, -1, 12000), 12000, 12000},
        {weather(WEATHER_STORM, 3, 0, 0, 60000), nothing, 2000, 5000},
        {weather(WEATHER_STORM, 3, 0, 0, 60000), weather(-1, 0, -1, -1, -1), 60000, 60000},
        {weather(WEATHER_CLEAR, 1, 3, 1, 60000), nothing, 300, 1000},
        {weather(WEATHER_CLEAR, 0, 0, 3, 60000), nothing, 1000, 4000},
        {weather(99, 99, 99, 99, 1e9f), nothing, 100, 1000},
    };
    for (const Case& c : cases) {
        const float sight = ShownWeather::of(c.told, c.asked).visibility;
        EXPECT_TRUE(sight >= c.least && sight <= c.most) << sight << " m: " << c.told.describe();
    }
}

TEST(ShownWeather, ChangesTakeSecondsWetnessAndIceTensOfThemAtAnyFrameRate) {
    const ShownWeather fair, foul = ShownWeather::of(weather(WEATHER_STORM, 3, 3, 3, 600), {});
    struct Part {
        float ShownWeather::*value;
        double comes, goes; ///< s
    };
    const Part parts[] = {{&ShownWeather::overcast, 8, 8},  {&ShownWeather::darkness, 6.8, 6.8},
                          {&ShownWeather::rain, 6, 6},      {&ShownWeather::visibility, 6, 6},
                          {&ShownWeather::wetness, 20, 60}, {&ShownWeather::ice, 40, 80}};
    for (const double rate : {10.0, 60.0})
        for (const bool comes : {true, false}) {
            const ShownWeather& target = comes ? foul : fair;
            ShownWeather shown = comes ? fair : foul;
            double arrived[std::size(parts)] = {};
            for (double time = 0; time < 90; time += 1 / rate) {
                const ShownWeather before = shown;
                shown.approach(target, static_cast<float>(1 / rate));
                // Nothing leaps, and the sight changes evenly to the eye.
                EXPECT_LT(std::abs(shown.overcast - before.overcast), 0.15 / rate);
                EXPECT_LT(std::abs(std::log(shown.visibility / before.visibility)), 0.8 / rate);
                for (std::size_t i = 0; i < std::size(parts); i++)
                    if (shown.*parts[i].value != target.*parts[i].value) arrived[i] = time;
            }
            EXPECT_EQ(shown, target);
            for (std::size_t i = 0; i < std::size(parts); i++)
                EXPECT_NEAR(arrived[i], comes ? parts[i].comes : parts[i].goes, 0.25) << i;
        }
    ShownWeather stalled;
    for (const float dt : {0.0f, -1.0f, std::nanf("")})
        stalled.approach(foul, dt);
    EXPECT_EQ(stalled, fair);
    stalled.approach(foul, 1e6f);
    EXPECT_EQ(stalled, foul);
}

} // namespace
