// SPDX-License-Identifier: MIT
#include "PictureScene.h"
#include "ig/scene/SceneObjects.h"
#include "ig/ui/UIRoot.h"
#include "ig/ui/UiDrawList.h"
#include "plugins/ocean/ObjectOcean.h"
#include "testkit/LogCapture.h"

#include <algorithm>
#include <cmath>

using namespace ig;

class PictureOf : public PictureScene {
public:
    int brightness(double x, double y) {
        const std::uint8_t* p = pixel(x, y);
        return p[0] + p[1] + p[2];
    }
    void setHour(double hour) {
        const Sky sky = computeSky(hour, LONGITUDE, 80);
        m_frame.sun_direction = sky.sun_direction;
        m_frame.moon_direction = sky.moon_direction;
    }
};

TEST_F(PictureOf, WhatStandsInTheSunCastsAShadow) {
    addFloor(10, 200);
    auto* roof = new ObjectMesh(square(20));
    roof->setWgsPosition({LONGITUDE, LATITUDE, 16});
    roof->setWgsHPR({0, 0, 0});
    roof->setSurfaceMaterial(0, material({0.3f, 0.3f, 0.3f, 1}, 0));
    m_world.addNode(roof);
    Node focus;
    focus.setWgsPosition({LONGITUDE, LATITUDE, 10});
    m_frame.focus = &focus;
    look(14, 0, 20, -30); // under the roof's edge
    draw();
    const auto place = [&](double north) { // rows of the floor in the picture
        const double pitch = 20 * DEG_TO_RAD<double>, down = std::atan2(4, north + 30);
        return 0.5 + std::tan(down - pitch) / (2 * HALF_HEIGHT);
    };
    const int lit = brightness(0.5, place(-18)), shaded = brightness(0.5, place(0));
    EXPECT_LT(shaded, 0.75 * lit);
    EXPECT_GT(shaded, 30); // the sky still lights it

    focus.setWgsPosition({LONGITUDE, LATITUDE - 0.01, 10}); // 1.1 km away: the far map's matter
    draw();
    EXPECT_LT(brightness(0.5, place(0)), 0.75 * brightness(0.5, place(-18)));
}

TEST_F(PictureOf, NightIsDarkerThanDayAndFogHidesTheFarCard) {
    m_world.addNode(new ObjectOcean());
    look(40, 90, 5);
    draw();
    const int day = brightness(0.3, 0.2);
    setHour(0);
    draw();
    EXPECT_LT(brightness(0.3, 0.2), 0.7 * day);
    EXPECT_GT(brightness(0.3, 0.2), 20); // and still there

    setHour(12);
    m_world.clear();
    look(40, 90, 0);
    auto* card = addCard(900, 300, RED);
    card->setSurfaceMaterial(0, material({0.9f, 0.01f, 0.01f, 1}, 0.5f));
    const auto redness = [&] {
        draw();
        const std::uint8_t* p = pixel(0.5, 0.5);
        return p[0] - p[2];
    };
    const int clear = redness();
    m_frame.visibility = 300;
    EXPECT_GT(clear, 60);
    EXPECT_LT(redness(), clear / 5);
}

// From a clear evening to a clouded dusk, six minutes a second at twenty frames.
TEST_F(PictureOf, ASkyThatChangesGoesOverSmoothlyToWhatAJumpShowsAtOnce) {
    look(100, 280, -5);
    setHour(17.9);
    draw();
    int last = brightness(0.5, 0.3), most = 0;
    const int bright = last;
    for (int i = 1; i <= 130; i++) {
        const int changed = std::min(i, 80); // then it stands still
        setHour(17.9 + changed * 0.005);
        m_frame.overcast = static_cast<float>(changed) / 100;
        draw();
        const int now = brightness(0.5, 0.3);
        most = std::max(most, std::abs(now - last));
        last = now;
    }
    const std::vector<std::uint8_t> arrived = m_picture.rgb;
    EXPECT_GT(std::abs(last - bright), 60);
    EXPECT_LE(most, 15); // 107 if the new map simply took the place of the old one
    setHour(3);
    draw();
    setHour(17.9 + 80 * 0.005);
    draw();
    pixel(0, 0);
    EXPECT_TRUE(m_picture.rgb == arrived);
}

TEST_F(PictureOf, TheEyeClimbsThroughTheClouds) {
    m_world.addNode(new ObjectOcean());
    m_frame.overcast = 1;
    m_frame.cloud_base = 1000;
    m_frame.cloud_thickness = 400;
    const auto downAndUp = [&](double altitude) {
        look(altitude, 0, 60);
        draw();
        const int down = brightness(0.5, 0.5);
        look(altitude, 0, -30);
        draw();
        return std::pair(down, brightness(0.5, 0.5));
    };
    const auto [sea, layer] = downAndUp(800);
    EXPECT_LT(sea, 0.7 * layer); // a dark sea under a grey sky
    const auto [within_down, within_up] = downAndUp(1200);
    EXPECT_NEAR(within_down, within_up, 30); // grey all around
    const auto [deck, open] = downAndUp(3000);
    EXPECT_GT(deck, 1.3 * open); // white below, blue above
    const std::uint8_t* sky = pixel(0.5, 0.5);
    EXPECT_GT(sky[2], sky[0] + 30);
    // What stands above the tops hides them; what lies below is hidden.
    look(3000, 0, 60);
    addCard(1000, 200, RED);
    draw();
    EXPECT_TRUE(isRed(0.5, 0.5));
    addCard(2700, 3000, GREEN);
    draw();
    EXPECT_FALSE(isGreen(0.3, 0.5));
}

TEST_F(PictureOf, HiddenNodesAreNotDrawn) {
    look(100, 0, 0);
    ObjectMesh* card = addCard(50, 20, RED);
    draw();
    EXPECT_TRUE(isRed(0.5, 0.5));
    card->setEnabled(false);
    draw();
    EXPECT_FALSE(isRed(0.5, 0.5));
}

TEST_F(PictureOf, TheUserInterfaceLiesOnTop) {
    look(100, 0, 0);
    LogCapture log;
    UiDrawList ui;
    ui.addRect(10, 20, 30, 10, {1, 0, 0, 1});
    ui.addText(100, 50, 16, {1, 1, 1, 1}, "雷达 A");
    ui.addImage(200, 100, 40, 40, "no_such_picture.png");
    m_frame.ui = &ui;
    draw();
    EXPECT_TRUE(isRed(25.0 / WIDTH, 25.0 / HEIGHT));
    EXPECT_FALSE(isRed(45.0 / WIDTH, 25.0 / HEIGHT));
    int white = 0;
    for (int y = 50; y < 68; y++)
        for (int x = 100; x < 160; x++) {
            const std::uint8_t* p = m_picture.at(x, y);
            white += p[0] > 240 && p[1] > 240 && p[2] > 240;
        }
    EXPECT_GT(white, 40); // three characters' strokes
    const std::uint8_t* missing = m_picture.at(205, 105);
    EXPECT_TRUE(missing[0] > 200 && missing[1] < 50 && missing[2] > 200);
    draw();
    const auto tells = [](const std::string& line) {
        return line.find("no_such_picture.png") != std::string::npos;
    };
    EXPECT_EQ(std::count_if(log.lines.begin(), log.lines.end(), tells), 1); // not once per frame
}

TEST_F(PictureOf, TextsAreAsWideAsTheirElementsMeasureThem) {
    look(100, 0, 0);
    const UIRoot root;
    for (const char* text : {"雷达 -155.06999", "iiiiiiiiiiiiiiiN", "\xff\xff\xff"}) {
        UiDrawList ui;
        ui.addRect(0, 0, WIDTH, HEIGHT, {0, 0, 0, 1});
        ui.addText(10, 50, 15.6f, {1, 1, 1, 1}, text);
        m_frame.ui = &ui;
        draw();
        s_renderer->readPicture(m_picture);
        int last = 0;
        for (int i = 0; i < WIDTH * 30; i++) {
            const int x = i % WIDTH, y = 45 + i / WIDTH;
            if (m_picture.at(x, y)[1] > 60) last = std::max(last, x);
        }
        // A character's ink ends within its advance.
        EXPECT_NEAR(static_cast<float>(last), 10 + root.getTextWidth(15.6f, text) - 2, 2) << text;
    }
}

TEST_F(PictureOf, ResizingAndScalingKeepThePicture) {
    look(100, 0, 0);
    addCard(50, 20, RED);
    s_renderer->setScale(0.5f);
    draw();
    EXPECT_TRUE(isRed(0.5, 0.5));
    s_renderer->setScale(1);
    s_renderer->resize(WIDTH / 2, HEIGHT / 2);
    draw();
    ASSERT_TRUE(s_renderer->readPicture(m_picture));
    EXPECT_EQ(m_picture.width, WIDTH / 2);
    s_renderer->resize(WIDTH, HEIGHT);
}

TEST_F(PictureOf, NothingPilesUpOnTheDevice) {
    s_renderer->resize(16, 9);
    m_world.addNode(new ObjectOcean());
    look(100, 0, 0);
    draw();
    const int before = s_renderer->getResources().getTotal();
    for (int i = 0; i < 26; i++) {
        ObjectMesh* card = addCard(50, 20, RED);
        draw();
        m_world.removeNode(card);
    }
    EXPECT_GT(s_renderer->getResources().getTotal(), before + 26);
    m_world.clear();
    for (int i = 0; i < 125; i++) // unused meshes are given back every 120 frames
        draw();
    EXPECT_LE(s_renderer->getResources().getTotal(), before);
    s_renderer->resize(WIDTH, HEIGHT);
}

TEST(RendererLife, EverythingIsFreedAtTheEnd) {
    {
        PictureScene::s_renderer.reset();
        RendererGL renderer(RendererGL::Surface::none);
        if (!renderer.init(64, 36)) GTEST_SKIP() << "no OpenGL without a display here";
        EXPECT_GT(renderer.getResources().getTotal(), 10);
        renderer.release();
        EXPECT_EQ(renderer.getResources().getTotal(), 0);
        EXPECT_TRUE(renderer.init(64, 36)); // and it may begin again
    }
    EXPECT_EQ(RendererGL(RendererGL::Surface::none).getResources().getTotal(), 0);
}

TEST_F(PictureOf, TheSeaFeelsAllTheWindsThatBlowDownOnIt) {
    m_world.addNode(new ObjectOcean());
    look(60, 0, 90);
    draw();
    s_renderer->readPicture(m_picture);
    const Picture calm = m_picture;
    for (const double east : {-30, 30}) {
        auto* wind = new NodeDowndraught(8, {8, 30});
        wind->setTransform(m_camera.getWorldTransform() * translate(dvec3(east, 0, -55)));
        m_world.addNode(wind);
    }
    draw();
    s_renderer->readPicture(m_picture);
    int changed[2] = {};
    for (int y = 0; y < HEIGHT; y++)
        for (int x = 0; x < WIDTH; x++)
            changed[x >= WIDTH / 2] += std::abs(m_picture.at(x, y)[1] - calm.at(x, y)[1]) > 8;
    EXPECT_GT(changed[0], 300);
    EXPECT_GT(changed[1], 300);
}
