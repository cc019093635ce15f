// SPDX-License-Identifier: MIT
#include "ig/app/Renderer.h"
#include "ig/math/quat.h"
#include "ig/scene/Camera.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "plugins/ocean/ObjectOcean.h"
#include "render/scene/GlintList.h"
#include "render/scene/LightGrid.h"
#include "render/scene/LightList.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

using namespace ig;

namespace {

constexpr float NIGHT = 0.005f, DAY = 4; ///< the ground's own light

/// All round, white, steady.
LightItem light(const vec3& position, float candela, float reach, int number = 0) {
    return {position, {0, 1, 0}, vec3(1, 1, 1) * candela, reach, {-1, -1.0001f}, 0, 0,
            number,   nullptr};
}

/// An eye that looks north, level.
class LightsIn : public testing::Test {
public:
    LightsIn() {
        camera.setPerspective(50, 16.0f / 9, 0.1, 1e6);
        camera.setWgsPosition({-155, 20, 100});
        camera.setWgsHPR({0, 0, 0});
        view = FrameView(camera, 720, true);
    }
    const std::vector<LightItem>& gather(const std::vector<LightItem>& items, float ground) {
        list.gather(view, frame, items, ground);
        return list.lights;
    }
    /// As a shader finds it for a place in E; null outside the picture.
    const LightGrid::Cell* cell(const vec3& place) const {
        const vec3 eye = view.view * place;
        const auto& p = view.projection.columns;
        const float w = p[2].w * eye.z + p[3].w;
        const float x = (p[0].x * eye.x + p[2].x * eye.z + p[3].x) / w;
        const float y = (p[1].y * eye.y + p[2].y * eye.z + p[3].y) / w;
        if (w <= 0 || std::abs(x) >= 1 || std::abs(y) >= 1) return nullptr;
        const vec4& s = grid.getBlock().slices;
        const float slice = std::floor(s.x * std::log2(std::max(-eye.z, 1e-3f)) + s.y);
        const int deep = static_cast<int>(std::clamp(slice, 0.0f, LIGHT_SLICES - 1.0f));
        const int column = static_cast<int>((x * 0.5f + 0.5f) * LIGHT_COLUMNS);
        const int row = static_cast<int>((y * 0.5f + 0.5f) * LIGHT_ROWS);
        return &grid.getCells()[static_cast<std::size_t>((deep * LIGHT_ROWS + row) * LIGHT_COLUMNS +
                                                         column)];
    }
    static bool holds(const LightGrid::Cell& cell, std::size_t number) {
        return std::find(cell.begin(), cell.end(), number) != cell.end();
    }
    /// Every place that a light reaches must find it, unless its cell is full of others.
    void expectAllFound() {
        std::mt19937 random(1);
        std::uniform_real_distribution<float> unit(-1, 1);
        const auto anywhere = [&](float size) {
            return vec3(unit(random), unit(random), unit(random)) * size;
        };
        std::vector<LightItem> lights;
        for (int i = 0; i < 40; i++) {
            lights.push_back(light(anywhere(60), 100, 20 + 15 * unit(random)));
            if (i % 2) continue;
            lights.back().axis = normalize(anywhere(1));
            lights.back().cone = {0.9f, 0.7f + 0.1f * unit(random)};
        }
        grid.sort(view, lights);
        int found = 0;
        for (int i = 0; i < 100000; i++) {
            const vec3 place = anywhere(70);
            const LightGrid::Cell* here = cell(place);
            if (!here || holds(*here, LightGrid::NONE) == false) continue;
            for (std::size_t n = 0; n < lights.size(); n++) {
                const vec3 off = place - lights[n].position;
                if (length(off) > lights[n].reach ||
                    dot(normalize(off), lights[n].axis) < lights[n].cone.y)
                    continue;
                found++;
                EXPECT_TRUE(holds(*here, n)) << place.x << " " << place.y << " " << place.z;
            }
        }
        EXPECT_GT(found, 1000);
    }

    Camera camera;
    FrameView view;
    FrameInfo frame;
    LightList list;
    LightGrid grid;
};

} // namespace

TEST_F(LightsIn, EveryPlaceFindsTheLightsThatReachIt) {
    expectAllFound();
    camera.setProjection(frustum(-0.05, 0.12, -0.04, 0.05, 0.1, 1e6, 0.3, -0.2));
    view = FrameView(camera, 720, true);
    expectAllFound();
    camera.setOrtho(40, 30, -50, 1000);
    view = FrameView(camera, 720, true);
    expectAllFound();
}

TEST_F(LightsIn, CellsKeepTheStrongestInOrderAndNoneElsewhere) {
    std::vector<LightItem> lights;
    for (int i = 0; i < 20; i++) // 7 and 20 share no factor: all differ
        lights.push_back(light({0, 100, 0}, 10.0f + static_cast<float>(i * 7 % 20), 5));
    lights.push_back(light({0, -10, 0}, 1, 5)); // behind the eye, out of reach
    grid.sort(view, lights);
    const LightGrid::Cell* here = cell({0, 100, 0});
    ASSERT_TRUE(here);
    for (int i = 0; i < LIGHTS_A_CELL; i++)
        EXPECT_EQ(lights.at((*here)[i]).color.x, 29.0f - static_cast<float>(i));
    int lit = 0;
    for (const LightGrid::Cell& c : grid.getCells())
        lit += c[0] != LightGrid::NONE;
    EXPECT_GE(lit, 1);
    EXPECT_LE(lit, 12);
    grid.sort(view, {});
    EXPECT_EQ((*here)[0], LightGrid::NONE) << "nothing stays from the frame before";
}

TEST_F(LightsIn, WhatIsLitEndsWhereThePictureIsBrightAnyway) {
    const std::vector<LightItem> lamp = {light({0, 50, 0}, 1000, 100)};
    ASSERT_EQ(gather(lamp, NIGHT).size(), 1U);
    EXPECT_EQ(list.lights[0].reach, 100);
    EXPECT_TRUE(list.reach({0, 170, 0}, 30));
    EXPECT_FALSE(list.reach({0, 190, 0}, 30));
    ASSERT_EQ(gather(lamp, DAY).size(), 1U);
    EXPECT_LT(list.lights[0].reach, 10);
    EXPECT_NEAR(list.lights[0].color.x, 1000 * DAY_LUX / LUX, 1) << "as bright as daylight's lux";
    EXPECT_TRUE(gather({light({0, 50, 0}, 2, 100)}, DAY).empty());
}

TEST_F(LightsIn, ConeReachesWhatItsAxisPointsAt) {
    LightItem spot = light({}, 1000, 100);
    spot.cone = {std::cos(10.0f * PI / 180), std::cos(16.0f * PI / 180)};
    EXPECT_TRUE(LightList::reaches(spot, {0, 50, 0}, 1));
    EXPECT_TRUE(LightList::reaches(spot, {15, 50, 0}, 1));  // 16.7 degrees off, 1.1 wide
    EXPECT_FALSE(LightList::reaches(spot, {17, 50, 0}, 1)); // 18.8
    EXPECT_TRUE(LightList::reaches(spot, {17, 50, 0}, 4));
    EXPECT_FALSE(LightList::reaches(spot, {0, -5, 0}, 2));
    EXPECT_TRUE(LightList::reaches(spot, {0, -5, 0}, 6));
}

TEST_F(LightsIn, MostImportantOnesAreKeptAlsoFromBehindTheEye) {
    std::vector<LightItem> lights;
    for (int i = 0; i < 100; i++)
        lights.push_back(light({0, 500, 0}, 50, 15, i));
    lights.push_back(light({0, -20, 0}, 50, 30, 100)); // reaches into the picture
    gather(lights, NIGHT);
    ASSERT_EQ(list.lights.size(), static_cast<std::size_t>(MOST_LIGHTS));
    EXPECT_EQ(list.lights[0].number, 100);
    EXPECT_EQ(list.lights[1].number, 0) << "equals as they came";
}

TEST_F(LightsIn, FlickerIsOfSceneTimeAndTheLightsOwn) {
    LightItem fire = light({0, 50, 0}, 1000, 100, 1), other = fire;
    fire.flicker = other.flicker = 1;
    other.number = 2;
    float least = 1e9f, most = 0, apart = 0;
    for (frame.time = 0; frame.time < 3; frame.time += 0.01) {
        gather({fire, other}, NIGHT);
        const float one = list.lights[0].color.x;
        least = std::min(least, one);
        most = std::max(most, one);
        apart = std::max(apart, std::abs(one - list.lights[1].color.x));
        gather({fire, other}, NIGHT);
        ASSERT_EQ(list.lights[0].color.x, one);
    }
    EXPECT_LT(least, 800);
    EXPECT_GT(least, 400);
    EXPECT_GT(most, 1200);
    EXPECT_LT(most, 1600);
    EXPECT_GT(apart, 200);
}

TEST_F(LightsIn, FireShinesWhereAndAsMuchAsItsParticlesDo) {
    World world;
    auto* fire = new ObjectParticles();
    fire->setTransform(camera.getWorldTransform() * translate(dvec3(0, 0, -50)));
    fire->setLife(2);
    fire->setLinearVelocity(5);
    fire->setSpawnRate(100);
    fire->setDuration(1);
    world.addNode(fire);
    LightItem glow = light({}, 10, 200);
    glow.emitter = fire;
    EXPECT_TRUE(gather({glow}, NIGHT).empty()) << "nothing burns";
    ParticleSystem particles;
    frame.particles = &particles;
    float most = 0;
    const auto burn = [&](int steps) {
        for (int i = 0; i < steps; i++) {
            world.updateParticles(0.05f);
            particles.advance(world, 0.05f);
            gather({glow}, NIGHT);
            most = std::max(most, list.lights.empty() ? 0 : list.lights[0].color.x);
        }
    };
    burn(20);
    ASSERT_EQ(list.lights.size(), 1U);
    EXPECT_GT(most, 10 * 40); // of 100 particles, up to half burnt
    EXPECT_LT(most, 10 * 75);
    EXPECT_NEAR(length(list.lights[0].position - vec3(0, 50, 0)), 2, 1) << "it rises with them";
    burn(24);
    ASSERT_EQ(list.lights.size(), 1U);
    EXPECT_LT(list.lights[0].color.x, most / 4);
    burn(30);
    EXPECT_TRUE(list.lights.empty()) << "burnt out";
}

TEST_F(LightsIn, LampsThatStandTogetherAreOnePathOfGlitterByNight) {
    const ObjectOcean sea;
    SceneList scene;
    scene.ocean = &sea;
    for (int i = 0; i < 10; i++) // a row along a deck
        scene.lamps.push_back({{static_cast<float>(i), 300, -90}, {1, 1, 1}, 1, 1, 1});
    for (int i = 0; i < 40; i++)
        scene.lamps.push_back({{0, 400 + 50.0f * static_cast<float>(i), -90}, {1, 0, 0}, 1, 0, 1});
    for (int i = 0; i < 40; i++) // nearer ones, whose paths lie behind the eye
        scene.lamps.push_back({{20.0f * static_cast<float>(i), -100, -90}, {1, 1, 1}, 1, 1, 1});
    GlintList glints;
    glints.gather(view, scene, NIGHT);
    ASSERT_EQ(glints.glints.size(), static_cast<std::size_t>(MOST_GLINTS));
    EXPECT_NEAR(glints.glints[0].place.x, 4.5, 1e-3);
    EXPECT_NEAR(glints.glints[0].color.y, 10 * 60 * LUX, 1e-3);
    EXPECT_NEAR(glints.glints[1].place.y, 400, 1) << "the nearest of equals";
    PictureParts paths;
    glints.addPaths(view, paths);
    ASSERT_EQ(paths.getRects().size(), 1U);
    const PictureRect& rect = paths.getRects()[0];
    EXPECT_LT(rect.low.y, -0.5f) << "down to the eye";
    EXPECT_GT(rect.low.x, -0.5f);
    EXPECT_LT(rect.high.x, 0.5f);
    glints.gather(view, scene, DAY);
    EXPECT_TRUE(glints.glints.empty());
    paths.clear();
    glints.addPaths(view, paths);
    EXPECT_TRUE(paths.getRects().empty());
}

/// What a lamp in a cockpit lights of the sea is the pool ahead, not all that the eye sees.
TEST_F(LightsIn, APoolOfLightOnTheSeaIsAPartOfThePicture) {
    camera.setWgsPosition({-155, 20, 25});
    view = FrameView(camera, 720, true);
    LightItem lamp = light({0, 4, -2}, 600000, 600);
    lamp.axis = normalize(vec3(-0.3f, 1, -0.3f));
    lamp.cone = {0.995f, 0.99f};
    list.lights = {lamp};
    PictureParts parts;
    list.addOnSea(view, 2, parts);
    ASSERT_EQ(parts.getRects().size(), 1U);
    const PictureRect& rect = parts.getRects()[0];
    const vec3 pool = lamp.position + lamp.axis * (23 / -lamp.axis.z); // its middle, on the water
    const vec3 at = view.view * pool;
    const auto& p = view.projection.columns;
    const vec2 middle{p[0].x * at.x / -at.z, p[1].y * at.y / -at.z};
    EXPECT_TRUE(rect.low.x < middle.x && middle.x < rect.high.x);
    EXPECT_TRUE(rect.low.y < middle.y && middle.y < rect.high.y);
    EXPECT_LT((rect.high.x - rect.low.x) * (rect.high.y - rect.low.y), 1) << "of 4";
    list.lights[0].axis = {0, 1, 0.3f}; // into the air
    parts.clear();
    list.addOnSea(view, 2, parts);
    EXPECT_TRUE(parts.getRects().empty());
}
