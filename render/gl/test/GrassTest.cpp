// SPDX-License-Identifier: MIT
#include "PictureScene.h"
#include "ig/scene/SceneObjects.h"
#include "plugins/terrain/ObjectTerrain.h"

#include <cstdlib>
#include <numeric>

using namespace ig;

/// An eye low over the meadow south of the demo world's airfield.
class GrassOf : public PictureScene {
public:
    static constexpr dvec3 PLACE{-155.0625125, 19.7100, 0};

    void SetUp() override {
        PictureScene::SetUp();
        if (IsSkipped()) return;
        s_renderer->release(); // forgets the meadow of the test before
        ASSERT_TRUE(s_renderer->init(WIDTH, HEIGHT));
        auto* terrain = new ObjectTerrain();
        ASSERT_TRUE(terrain->load("data/PELMAR_PROJECT/terrain/coast.tif"));
        ASSERT_TRUE(terrain->getAltitudeByLonLat(PLACE.x, PLACE.y, &m_ground, nullptr));
        m_world.addNode(terrain);
        m_camera.setWgsPosition({PLACE.x, PLACE.y, m_ground + 1.2});
        m_camera.setWgsHPR({180, 8, 0});
    }
    /// The picture once all squares around the eye have been planted.
    Picture settled() {
        s_renderer->resize(16, 9); // nobody looks at these
        for (int i = 0; i < 45; i++)
            draw();
        s_renderer->resize(WIDTH, HEIGHT);
        return now();
    }
    Picture now() {
        draw();
        s_renderer->readPicture(m_picture);
        return m_picture;
    }
    /// A field 6 m ahead, so many metres above the ground.
    NodeField* addField(double height) {
        auto* field = new NodeField();
        field->setWgsPosition({PLACE.x, PLACE.y - 6 / 110700.0, m_ground + height});
        m_world.addNode(field);
        return field;
    }
    static void blow(NodeField* field, float strength) {
        for (int i = 0; i < 3; i++)
            field->setParameter(i, strength);
    }
    static int countDifferent(const Picture& a, const Picture& b) {
        int count = 0;
        for (std::size_t i = 0; i < a.rgb.size(); i += 3)
            count += std::abs(a.rgb[i] - b.rgb[i]) + std::abs(a.rgb[i + 1] - b.rgb[i + 1]) > 12;
        return count;
    }
    double m_ground = 0;
};

TEST_F(GrassOf, BladesLeanWhileTheFieldBlowsLowAndStandUpAgain) {
    NodeField* field = addField(60);
    const Picture calm = settled();
    blow(field, 1);
    EXPECT_EQ(countDifferent(calm, now()), 0);
    m_world.removeNode(field);
    field = addField(2);
    blow(field, 1);
    EXPECT_GT(countDifferent(calm, now()), 300);
    blow(field, 0);
    EXPECT_EQ(countDifferent(calm, now()), 0);
}

TEST_F(GrassOf, NoneGrowsThroughASlab) {
    auto* slab = new ObjectMesh(square(200));
    slab->setWgsPosition({PLACE.x, PLACE.y, m_ground + 0.6}); // above all unevenness, below the eye
    slab->setWgsHPR({0, 0, 0});
    slab->setSurfaceMaterial(0, material({0.4f, 0.4f, 0.4f, 1}, 0));
    m_world.addNode(slab);
    NodeField* field = addField(2);
    const Picture calm = settled();
    slab->setEnabled(false); // what it kept clear stays clear
    const Picture bare = now();
    blow(field, 1);
    EXPECT_EQ(countDifferent(bare, now()), 0);
    EXPECT_GT(countDifferent(calm, bare), 300);
}

TEST_F(GrassOf, LampsLightGroundAndBlades) {
    setMidnight();
    const Picture dark = settled();
    auto* lamp = new ObjectLight();
    lamp->setIntensity(60000, 100);
    lamp->setWgsPosition({PLACE.x, PLACE.y - 6 / 110700.0, m_ground + 12});
    m_world.addNode(lamp);
    const Picture lit = now();
    int brighter = 0, all = 0;
    for (int y = HEIGHT * 6 / 10; y < HEIGHT; y++)
        for (int x = 0; x < WIDTH; x++, all++)
            brighter += lit.at(x, y)[1] > dark.at(x, y)[1] + 25;
    EXPECT_GT(brighter, 0.99 * all); // blades cover 4 % of it
}

TEST_F(GrassOf, CloudsShadeTheBlades) {
    constexpr double SWAY = 4096; // s: after which blades stand as they did
    m_frame.cloud_cover = 0.5f;
    m_frame.wind = {1.3f, 0.5f};
    settled();
    const auto lightOf = [](const Picture& picture) {
        return std::accumulate(picture.rgb.end() - WIDTH * HEIGHT, picture.rgb.end(), 0);
    };
    Picture sunny = now(), shaded = sunny;
    for (int i = 0; i < 12; i++) {
        m_frame.time += SWAY;
        const Picture picture = now();
        if (lightOf(picture) > lightOf(sunny)) sunny = picture;
        if (lightOf(picture) < lightOf(shaded)) shaded = picture;
    }
    int darker = 0, all = 0;
    for (int y = HEIGHT * 6 / 10; y < HEIGHT; y++)
        for (int x = 0; x < WIDTH; x++, all++)
            darker += shaded.at(x, y)[1] < 0.9 * sunny.at(x, y)[1];
    EXPECT_GT(darker, 0.99 * all);
}
