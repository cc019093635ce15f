// SPDX-License-Identifier: MIT

// What lamps light, in pictures of a wall at midnight.

#include "PictureScene.h"
#include "ig/scene/SceneObjects.h"
#include "plugins/ocean/ObjectOcean.h"

using namespace ig;

namespace {

class LampLight : public PictureScene {
public:
    static constexpr double AHEAD = 40; ///< m, the wall's distance

    void SetUp() override {
        PictureScene::SetUp();
        if (IsSkipped()) return;
        const Sky sky = computeSky(0, LONGITUDE, 80);
        m_frame.sun_direction = sky.sun_direction;
        m_frame.moon_direction = -sky.sun_direction; // no shadows of it either
        look(100, 0, 0);
        wall = addCard(AHEAD, 60, {0.4f, 0.4f, 0.4f, 1});
        wall->setSurfaceMaterial(0, material({0.4f, 0.4f, 0.4f, 1}, 0));
        lamp = new ObjectLight();
        lamp->setIntensity(80000, 100);
        lamp->setCone({4, 6});
        // From behind the eye, its Y along the view.
        lamp->setTransform(m_camera.getWorldTransform() * translate(dvec3(0, 0, 5)) *
                           dmat4(dquat(-90, 0, 0), dvec3()));
        m_world.addNode(lamp);
    }
    int brightness(double x, double y) {
        const std::uint8_t* p = pixel(x, y);
        return p[0] + p[1] + p[2];
    }
    /// Of the middle, where the lamp points, and beside it.
    std::pair<int, int> drawWall() {
        draw();
        return {brightness(0.5, 0.5), brightness(0.6, 0.5)};
    }

    ObjectMesh* wall = nullptr;
    ObjectLight* lamp = nullptr;
};

} // namespace

TEST_F(LampLight, FallsWhereTheConePointsAndNowhereElse) {
    const auto [lit, beside] = drawWall();
    lamp->setEnabled(false);
    const auto [dark, dark_beside] = drawWall();
    EXPECT_GT(lit, dark + 200);
    EXPECT_NEAR(beside, dark_beside, 3);

    lamp->setEnabled(true);
    lamp->setIntensity(80000, 40); // the wall is 45 m away
    EXPECT_NEAR(drawWall().first, dark, 3);

    lamp->setIntensity(80000, 100);
    Material* const red = material(RED, 0);
    red->addSlider("density", 0.5f);
    lamp->setSurfaceMaterial(0, red);
    EXPECT_LT(drawWall().first, lit - 60);
    const std::uint8_t* p = pixel(0.5, 0.5);
    EXPECT_GT(p[0], p[1] + 60);
}

TEST_F(LampLight, EverySurfaceIsLit) {
    for (const char* tag : {"paving", "wetness", "paint"}) {
        Material* look = material({0.4f, 0.4f, 0.4f, 1}, 0);
        if (tag != std::string_view("paint")) look->addValue("paving", {2, 2, 0.01f, 0.1f});
        if (tag != std::string_view("paving")) look->addSlider(tag, tag[0] == 'w' ? 1 : 0);
        wall->setSurfaceMaterial(0, look);
        lamp->setEnabled(true);
        const int on = drawWall().first;
        lamp->setEnabled(false);
        EXPECT_GT(on, drawWall().first + 100) << tag;
    }
}

TEST_F(LampLight, BleachesNothing) {
    lamp->setIntensity(8e6f, 100);
    const auto shine = [&](float tone) {
        wall->setSurfaceMaterial(0, material({tone, tone, tone, 1}, 0));
        return drawWall().first;
    };
    const int grey = shine(0.4f), pale = shine(0.5f);
    EXPECT_LT(pale, 3 * 200);
    EXPECT_GT(pale, grey + 32);
}

TEST_F(LampLight, DrownsByDay) {
    const Sky sky = computeSky(12, LONGITUDE, 80);
    m_frame.sun_direction = sky.sun_direction;
    m_frame.moon_direction = sky.moon_direction;
    const int on = drawWall().first;
    lamp->setEnabled(false);
    EXPECT_NEAR(on, drawWall().first, 6);
}

TEST_F(LampLight, BeamShowsInFogAndEndsAtTheWall) {
    m_frame.visibility = 400;
    const auto across = [&](float beam) { // a beam that crosses the view, 20 m ahead
        lamp->setBeam(beam);
        lamp->setTransform(m_camera.getWorldTransform() * translate(dvec3(-15, 0, -20)) *
                           dmat4(dquat(0, 0, -90), dvec3()));
        draw();
        return std::pair(brightness(0.5, 0.5), brightness(0.5, 0.2));
    };
    const auto [dark, dark_above] = across(0);
    const auto [bright, above] = across(1);
    EXPECT_GT(bright, dark + 15);
    EXPECT_NEAR(above, dark_above, 3);
    wall->setTransform(m_camera.getWorldTransform() * translate(dvec3(0, 0, -10)));
    EXPECT_NEAR(across(1).first, across(0).first, 3) << "the wall hides it";
}

TEST_F(LampLight, SeaMirrorsLampsTowardsTheEye) {
    m_world.removeNode(wall);
    m_world.addNode(new ObjectOcean());
    look(15, 0, 3);
    const auto paths = [&](float density) { // of a lamp above the water, 150 m away
        m_world.removeNode(lamp);
        lamp = new ObjectLight();
        Material* const red = material(RED, 0);
        red->addSlider("density", density);
        lamp->setSurfaceMaterial(0, red);
        lamp->setTransform(m_camera.getWorldTransform() * translate(dvec3(0, -3, -150)));
        m_world.addNode(lamp);
        draw();
        int middle = 0, beside = 0;
        s_renderer->readPicture(m_picture);
        for (int y = HEIGHT * 6 / 10; y < HEIGHT; y++)
            for (int x = -10; x <= 10; x++) {
                middle += m_picture.at(WIDTH / 2 + x, y)[0];
                beside += m_picture.at(WIDTH / 4 + x, y)[0];
            }
        return std::pair(middle, beside);
    };
    const auto [dark, dark_beside] = paths(0);
    const auto [lit, beside] = paths(10);
    EXPECT_GT(lit, dark * 1.15);
    EXPECT_NEAR(beside, dark_beside, 0.02 * dark_beside);
}

// The glitter's program also reads what lights the water.
TEST_F(LampLight, OfLampsThatAreGoneStaysNoLight) {
    m_world.removeNode(wall);
    m_world.addNode(new ObjectOcean());
    look(15, 0, 3);
    auto* mirrored = new ObjectLight();
    Material* const white = material({1, 1, 1, 1}, 0);
    white->addSlider("density", 10);
    mirrored->setSurfaceMaterial(0, white);
    mirrored->setTransform(m_camera.getWorldTransform() * translate(dvec3(0, -3, -150)));
    m_world.addNode(mirrored);
    lamp->setCone({60, 80});
    lamp->setTransform(m_camera.getWorldTransform() * translate(dvec3(0, -5, -60)) *
                       dmat4(dquat(180, 0, 0), dvec3())); // down
    const auto shoot = [&](bool on) {
        lamp->setEnabled(on);
        draw();
        s_renderer->readPicture(m_picture);
        return m_picture.rgb;
    };
    shoot(false); // the sky comes to rest
    const auto before = shoot(false), lit = shoot(true), after = shoot(false);
    EXPECT_TRUE(before != lit);
    EXPECT_TRUE(before == after);
}
