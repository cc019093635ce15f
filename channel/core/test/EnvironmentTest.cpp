// SPDX-License-Identifier: MIT
#include "Environment.h"

#include "Options.h"
#include "Precipitation.h"
#include "ig/app/ControlApp.h"
#include "ig/app/Engine.h"
#include "ig/scene/Camera.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "plugins/ocean/ObjectOcean.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using namespace ig;

/// A logic that writes down what it is told.
struct ToldLogic : LogicBase {
    ToldLogic() : LogicBase(nullptr, nullptr) {}
    void setRain(float value) override { rain = value; }
    void setSnow(float value) override { snow = value; }
    void setTod(float value) override { hour = value; }
    float rain = -1, snow = -1, hour = -1;
};

struct EnvironmentTest : testing::Test {
    EnvironmentTest() {
        ocean = add<ObjectOcean>("ocean");
        ocean->setBeaufort(5);
        for (auto [name, emitter] : {std::pair("rain", &rain), {"snow", &snow}, {"hail", &hail}}) {
            *emitter = add<ObjectParticles>(name);
            (*emitter)->setSpawnRate(900);
            (*emitter)->setLinearVelocity(-9);
            (*emitter)->setLife(2);
        }
        camera.setWgsPosition({-155, 20, 300});
        options.time_of_day = 12;
    }
    ~EnvironmentTest() override { Engine::get()->reset(); }
    template <class T>
    T* add(const char* name) {
        auto* node = new T();
        node->setName(name);
        world.addNode(node);
        return node;
    }
    /// Begins with what `options` ask for.
    Environment& start() {
        environment.emplace(options);
        environment->connect(logic);
        environment->attach(world);
        precipitation.attach(world);
        frame();
        return *environment;
    }
    void frame(float dt = 1 / 60.0f) {
        environment->readKeys(keys);
        environment->update(dt);
        precipitation.update(dt, camera, *environment);
        environment->fillFrame(camera, nullptr, 0, picture);
    }
    void frames(double seconds) {
        for (int i = 0; i < static_cast<int>(seconds * 60); i++)
            frame();
    }
    void press(int key) {
        keys.keyDown(key);
        frame(0);
        keys.endFrame();
        keys.keyUp(key);
    }
    Options options;
    World world;
    Camera camera;
    ControlApp keys;
    ToldLogic logic;
    FrameInfo picture;
    ObjectOcean* ocean;
    ObjectParticles *rain, *snow, *hail;
    std::optional<Environment> environment;
    Precipitation precipitation;
};

TEST_F(EnvironmentTest, TheSceneKeepsItsOwnUntilTheFirstRecord) {
    start();
    EXPECT_FALSE(rain->isEnabled());
    EXPECT_EQ(picture.visibility, 60000);
    EXPECT_EQ(environment->describe(), "12:00");
    emit(logic.m_sig_weather, WEATHER_STORM);
    emit(logic.m_sig_rain, DETAIL_MEDIUM);
    emit(logic.m_sig_hail, DETAIL_HEAVY);
    emit(logic.m_sig_float_3, 10.0f);
    emit(logic.m_sig_float_2, -150.0f); // wind from 60 degrees
    emit(logic.m_sig_float_4, 0.1f);
    emit(logic.m_sig_sea, 6);
    CloudInfo clouds{true, 0, 0, 800, 600, 0.7f};
    emit(logic.m_sig_cloud, &clouds);
    clouds.ratio = 0.1f; // copied, not kept by address
    frame();
    EXPECT_EQ(ocean->getBeaufort(), 6);
    EXPECT_EQ(Engine::get()->getWindStrength(), 4000);
    EXPECT_TRUE(rain->isEnabled() && hail->isEnabled());
    EXPECT_FALSE(snow->isEnabled());
    EXPECT_FLOAT_EQ(rain->getSpawnRate(), 600);
    EXPECT_FLOAT_EQ(hail->getSpawnRate(), 900);
    EXPECT_FLOAT_EQ(logic.rain, 2 / 3.0f);
    EXPECT_GT(picture.cloud_darkness, 0.5f);
    EXPECT_EQ(picture.cloud_cover, 0.7f);
    EXPECT_EQ(picture.visibility, 2500) << "30 km without the hail";
    EXPECT_NEAR(picture.wind.x, -8.66, 0.01); // to the west-south-west
    EXPECT_NEAR(picture.wind.y, -5, 0.01);
    EXPECT_EQ(environment->describe(), "12:00 storm, rain 2, hail 3, clouds 70 % at 800 m, "
                                       "sight 2.5 km, wind 060/10 m/s, sea 6");
}

TEST_F(EnvironmentTest, WhatIsAskedOfTheSeaHoldsForTheQueriesAndThePictureOfTheSameFrame) {
    environment.emplace(options);
    environment->connect(logic);
    environment->attach(world);
    ObjectOcean expected; // told before anybody asks it for its surface
    const dvec3 place = EllipsoidModel().toWorld({-155, 20, 0});
    const int told[] = {8, 8, 8, 2, 2, 2, 2}, asked[] = {8, 8, 8, 2, 2, 0, 0};
    for (int i = 0; i < 7; i++) {
        Engine::get()->beginFrame(0.5f);
        if (i == 5) keys.keyDown('b'); // still water
        expected.setBeaufort(static_cast<float>(asked[i]));
        environment->readKeys(keys);
        emit(logic.m_sig_sea, told[i]);
        EXPECT_EQ(ocean->getWorldPoint(place), expected.getWorldPoint(place)) << i;
        environment->update(0.5f);
        EXPECT_EQ(ocean->getFrame().significant_height, expected.getFrame().significant_height);
        keys.endFrame();
    }
}

TEST_F(EnvironmentTest, LaterWeatherComesInItsOwnTimeUnlessTheSceneIsResetOrStandsStill) {
    const auto tell = [&](WEATHER_TYPE look, WEATHER_DETAIL showers) {
        emit(logic.m_sig_weather, look);
        emit(logic.m_sig_rain, showers);
        emit(logic.m_sig_snow, showers);
        emit(logic.m_sig_float_3, 5.0f);
        frame();
    };
    start();
    tell(WEATHER_CLEAR, DETAIL_NONE);
    tell(WEATHER_FOG, DETAIL_HEAVY);
    EXPECT_GT(picture.visibility, 50000);
    EXPECT_LT(rain->getSpawnRate(), 30);
    frames(10);
    EXPECT_EQ(picture.visibility, 700);
    EXPECT_FLOAT_EQ(rain->getSpawnRate(), 900);
    EXPECT_NEAR(logic.rain, 0.5, 0.01); // what lies outside gets wet and iced later
    EXPECT_NEAR(logic.snow, 0.25, 0.01);
    emit(logic.m_sig_code, 25);
    tell(WEATHER_CLEAR, DETAIL_NONE);
    EXPECT_EQ(picture.visibility, 60000);
    EXPECT_EQ(logic.rain, 0);
    EXPECT_FALSE(rain->isEnabled());
    tell(WEATHER_STORM, DETAIL_HEAVY); // from a blue sky comes no lightning
    for (int i = 0; i < 3 * 60; i++) {
        environment->update(1 / 60.0f);
        environment->fillFrame(camera, nullptr, i / 6.0, picture);
        ASSERT_EQ(picture.flash, 0);
    }
    const float on_the_way = picture.overcast;
    frame(0); // frozen: what comes stays on its way, what is told now holds at once
    EXPECT_EQ(picture.overcast, on_the_way);
    emit(logic.m_sig_rain, DETAIL_LIGHT);
    frame(0);
    EXPECT_EQ(picture.overcast, 1);
    EXPECT_FLOAT_EQ(rain->getSpawnRate(), 300);
}

TEST_F(EnvironmentTest, PrecipitationPassesTheEyeHoweverItMoves) {
    options.weather.rain = 3;
    options.weather.wind_speed = 5;
    options.weather.wind_direction = 30; // towards the east-north-east
    start();
    for (const double speed : {0.0, 60.0}) {
        camera.setWgsPosition({30, -60, 2000});
        frame();
        const dmat4 level = EllipsoidModel().getWGSTransform(camera.getWorldPosition());
        for (int i = 0; i < 120; i++) { // northwards
            camera.setWorldPosition(camera.getWorldPosition() + level.getY() * (speed / 60));
            frame();
        }
        // A drop that starts in the emitter's middle is at the eye in mid-life.
        const double half_life = static_cast<double>(rain->getLife()) / 2;
        const dvec3 fall =
            rain->getWorldTransform().getZ() * static_cast<double>(rain->getLinearVelocity());
        const dvec3 drop = rain->getWorldPosition() + fall * half_life;
        const dvec3 eye = camera.getWorldPosition() + level.getY() * (speed * half_life);
        EXPECT_LT(length(drop - eye), 0.3) << speed;
        EXPECT_NEAR(dot(fall, level.getX()), 4.33, 0.01);
        EXPECT_NEAR(dot(fall, level.getY()), 2.5, 0.01);
        EXPECT_NEAR(dot(fall, level.getZ()), -9, 0.01);
        // Shorter-lived when they pass quickly, but as many.
        EXPECT_LT(rain->getLife(), speed > 0 ? 1.05f : 2.05f);
        EXPECT_NEAR(rain->getSpawnRate() * rain->getLife(), 1800, 1);
        EXPECT_NEAR(length(precipitation.getEyeVelocity()), speed, 0.1);
    }
    camera.setWgsPosition({-155, 20, 300}); // a jump is no speed
    frame();
    EXPECT_EQ(length(precipitation.getEyeVelocity()), 0);
}

TEST_F(EnvironmentTest, AbsurdSignalsDoNoHarm) {
    start();
    const float nan = std::nanf(""), infinity = std::numeric_limits<float>::infinity();
    for (const float absurd : {nan, infinity, 3e38f, -3e38f}) {
        emit(logic.m_sig_float_2, absurd);
        emit(logic.m_sig_float_3, absurd);
        emit(logic.m_sig_float_4, absurd);
        CloudInfo clouds{true, 0, 0, absurd, absurd, absurd};
        emit(logic.m_sig_cloud, &clouds);
        frame();
        EXPECT_GT(picture.visibility, 0);
        EXPECT_LE(std::hypot(picture.wind.x, picture.wind.y), 101);
        EXPECT_TRUE(picture.cloud_cover >= 0 && picture.cloud_cover <= 1);
        EXPECT_TRUE(std::isfinite(Engine::get()->getWindOrigin()));
        EXPECT_GE(Engine::get()->getWindStrength(), 0);
    }
    emit(logic.m_sig_sea, -1);
    frame();
    EXPECT_EQ(ocean->getBeaufort(), 0);
    emit(logic.m_sig_sea, 32767);
    frame(nan);
    EXPECT_EQ(ocean->getBeaufort(), 12);
    EXPECT_GE(logic.hour, 0);
}

TEST_F(EnvironmentTest, WhatTheOperatorAsksForWinsUntilHeGivesItBack) {
    options.weather.beaufort = 8;
    start();
    EXPECT_EQ(ocean->getBeaufort(), 8);
    emit(logic.m_sig_sea, 3);
    emit(logic.m_sig_weather, WEATHER_CLEAR);
    emit(logic.m_sig_rain, DETAIL_LIGHT);
    frame();
    EXPECT_EQ(ocean->getBeaufort(), 8);
    press('b'); // past the highest: as told
    EXPECT_EQ(ocean->getBeaufort(), 3);
    press('b');
    EXPECT_EQ(ocean->getBeaufort(), 0);
    for (int look : {0, 1, 2, 3, -1, 0}) {
        press(KEY_F7);
        EXPECT_EQ(environment->getWeather().look, std::max(look, 0)); // told: clear
    }
    EXPECT_FLOAT_EQ(rain->getSpawnRate(), 300);
    for (const char* showers : {"1 0 0", "2 0 0", "3 0 0", "0 3 0", "0 0 3", "0 0 0", "1 -1 -1"}) {
        press(KEY_F8);
        const Weather w = environment->getWeather();
        EXPECT_EQ(std::to_string(w.rain) + ' ' + std::to_string(w.snow) + ' ' +
                      std::to_string(w.hail),
                  showers);
    }
}

TEST_F(EnvironmentTest, HourRunsAtItsScaleRoundTheClockAndByKey) {
    options.time_of_day = 23.5;
    options.time_scale = 3600;
    start();
    for (int i = 0; i < 59; i++)
        frame();
    EXPECT_NEAR(logic.hour, 0.5, 1e-3);
    const dvec3 night = picture.sun_direction;
    press('t');
    EXPECT_NEAR(logic.hour, 1.5, 1e-3);
    keys.keyDown(KEY_SHIFT);
    for (int i = 0; i < 3; i++)
        press('t');
    EXPECT_NEAR(logic.hour, 22.5, 1e-3);
    EXPECT_GT(length(picture.sun_direction - night), 0.1);
}

} // namespace
