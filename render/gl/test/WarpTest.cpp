// SPDX-License-Identifier: MIT
#include "PictureScene.h"

#include <cmath>
#include <limits>

using namespace ig;

namespace {

struct WarpTest : PictureScene {
    void TearDown() override {
        if (s_drawable) s_renderer->setWarp({});
        PictureScene::TearDown();
    }
    /// Each pixel shows the one that `place` says for its middle.
    template <class Place>
    static Warp meshOf(Place&& place) {
        Warp warp{.width = WIDTH, .height = HEIGHT, .places = {}, .mask = {}};
        for (int y = 0; y < HEIGHT; y++)
            for (int x = 0; x < WIDTH; x++)
                warp.places.push_back(place((float(x) + 0.5f) / WIDTH, (float(y) + 0.5f) / HEIGHT));
        return warp;
    }
    Picture draw() {
        s_renderer->render(m_world, m_camera, m_frame);
        Picture picture;
        EXPECT_TRUE(s_renderer->readPicture(picture));
        return picture;
    }
};

TEST_F(WarpTest, BendsThePictureDimsItAndLeavesItAloneWithout) {
    look(50, 30, 10);
    addCard(10, 2, {1, 0, 0, 1}, -4, 2);
    const Picture plain = draw();

    s_renderer->setWarp(meshOf([](float x, float y) { return vec2(x, y); }));
    EXPECT_EQ(draw().rgb, plain.rgb);

    const float none = std::numeric_limits<float>::quiet_NaN();
    Warp warp = meshOf([&](float x, float y) { // the other way round; nothing at the right edge
        return x > 0.9f ? vec2(none, none) : vec2(1 - x, y);
    });
    warp.mask = {.width = 1, .height = 2, .rgb = {255, 255, 255, 128, 255, 0}}; // over the height
    s_renderer->setWarp(warp);
    const Picture bent = draw();
    for (int y : {4, 30, HEIGHT - 5})
        for (int x : {3, 60, 200, 310})
            for (int c = 0; c < 3; c++) {
                const float light = y < HEIGHT / 2 ? 1 : float(warp.mask.at(0, 1)[c]) / 255;
                const float picture = x > 0.9f * WIDTH ? 0 : plain.at(WIDTH - 1 - x, y)[c];
                EXPECT_NEAR(bent.at(x, y)[c], picture * std::pow(light, 1 / 2.2f), 1.5)
                    << x << ' ' << y << ' ' << c;
            }
    s_renderer->setWarp({});
    EXPECT_EQ(draw().rgb, plain.rgb);
}

} // namespace
