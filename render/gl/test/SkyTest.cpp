// SPDX-License-Identifier: MIT

// Clouds and haze as the picture shows them.

#include "PictureScene.h"
#include "plugins/ocean/ObjectOcean.h"
#include "plugins/terrain/ObjectTerrain.h"

#include <algorithm>
#include <cmath>

using namespace ig;

class SkyOf : public PictureScene {
public:
    static constexpr int SMALL_WIDTH = 80, SMALL_HEIGHT = 45;

    void SetUp() override {
        PictureScene::SetUp();
        if (!IsSkipped()) s_renderer->resize(SMALL_WIDTH, SMALL_HEIGHT);
    }
    void TearDown() override {
        s_renderer->resize(WIDTH, HEIGHT);
        PictureScene::TearDown();
    }
    Picture shoot() {
        draw();
        Picture picture;
        s_renderer->readPicture(picture);
        return picture;
    }
    static double mean(const Picture& picture) {
        double sum = 0;
        for (const std::uint8_t byte : picture.rgb)
            sum += byte;
        return sum / static_cast<double>(picture.rgb.size());
    }
    static double meanDifference(const Picture& a, const Picture& b) {
        double sum = 0;
        for (std::size_t i = 0; i < a.rgb.size(); i++)
            sum += std::abs(a.rgb[i] - b.rgb[i]);
        return sum / static_cast<double>(a.rgb.size());
    }
    /// Share of the picture's middle that is more cloud than blue.
    static double getCovered(const Picture& picture) {
        int covered = 0, all = 0;
        for (int y = picture.height / 3; y < picture.height * 2 / 3; y++)
            for (int x = picture.width / 3; x < picture.width * 2 / 3; x++, all++)
                covered += picture.at(x, y)[2] < 1.35 * picture.at(x, y)[0];
        return covered / static_cast<double>(all);
    }
};

TEST_F(SkyOf, TheCoverSeenOverheadIsTheCoverTold) {
    s_renderer->resize(2 * SMALL_WIDTH, 2 * SMALL_HEIGHT); // clouds are painted at half the size
    look(0, 0, -90);
    m_frame.cloud_base = 7000; // so that a picture shows many
    m_frame.wind = {24576 / 7.37f, 24576 / 8.13f};
    for (const float cover : {0.0f, 0.25f, 0.5f, 0.75f, 1.0f}) {
        m_frame.cloud_cover = cover;
        double sum = 0;
        constexpr int PICTURES = 100;
        for (int i = 0; i < PICTURES; i++) { // all of the field drifts past
            m_frame.time += 1;
            sum += getCovered(shoot());
        }
        EXPECT_NEAR(sum / PICTURES, double{cover}, 0.03) << cover;
    }
}

TEST_F(SkyOf, CloudsDriftAtOneRateForTwoMinutes) {
    look(0, 0, -50);
    m_frame.wind = {12, 5};
    Picture last = shoot();
    std::vector<double> differences;
    for (int second = 0; second < 120; second++) {
        m_frame.time += 1;
        Picture now = shoot();
        differences.push_back(meanDifference(now, last));
        last = std::move(now);
    }
    double sum = 0;
    for (const double d : differences)
        sum += d;
    const double mean = sum / static_cast<double>(differences.size());
    EXPECT_GT(mean, 0.3); // it moves
    // What is in view changes slowly; a cut or a pause would stand out among ten seconds.
    for (std::size_t i = 5; i + 5 < differences.size(); i++) {
        double near = 0;
        for (std::size_t k = i - 5; k <= i + 5; k++)
            near += differences[k] / 11;
        EXPECT_NEAR(differences[i], near, 0.2 * near) << i;
    }
}

TEST_F(SkyOf, AnEyeThatClimbsThroughTheLayerSeesNothingJump) {
    m_world.addNode(new ObjectOcean());
    m_frame.cloud_base = 600;
    m_frame.cloud_thickness = 300;
    for (const float cover : {0.5f, 1.0f})
        for (const double pitch : {-25, 20}) {
            m_frame.cloud_cover = cover;
            look(500, 30, pitch);
            Picture last = shoot();
            for (double altitude = 502.5; altitude < 1000; altitude += 2.5) {
                look(altitude, 30, pitch);
                Picture now = shoot();
                EXPECT_LT(meanDifference(now, last), 12) << cover << " at " << altitude;
                last = std::move(now);
            }
        }
}

TEST_F(SkyOf, AClosedLayerTakesTheSunAndAStormIsDark) {
    const auto brightest = [](const Picture& picture) {
        return *std::max_element(picture.rgb.begin(), picture.rgb.end());
    };
    m_frame.cloud_cover = 0;
    look(0, 180, -60);
    const int sun = brightest(shoot());
    look(0, 0, -60);
    EXPECT_GT(sun, brightest(shoot()) + 60);
    m_frame.cloud_cover = 1;
    const int away = brightest(shoot());
    look(0, 180, -60);
    EXPECT_NEAR(brightest(shoot()), away, 6);
    look(0, 0, -10);
    m_frame.overcast = 1;
    m_frame.cloud_darkness = 0.15f;
    const double overcast = mean(shoot());
    m_frame.cloud_darkness = 0.85f;
    const double storm = mean(shoot());
    EXPECT_GT(overcast, 150);
    EXPECT_LT(storm, 112);
    m_frame.flash = 1;
    EXPECT_GT(mean(shoot()), storm + 25);
}

TEST_F(SkyOf, NoCloudDrawsCurtainsDownFogOrHaze) {
    m_frame.cloud_cover = 0.6f;
    struct Air {
        double visibility, altitude;
        float overcast;
    };
    for (const Air& air : {Air{200, 20, 0.5f}, {3000, 20, 1}, {60000, 1150, 1}}) {
        m_frame.visibility = air.visibility;
        m_frame.overcast = air.overcast;
        look(air.altitude, 60, 0);
        const Picture picture = shoot();
        for (int x = 1; x < SMALL_WIDTH; x++)
            for (const int y : {SMALL_HEIGHT * 2 / 5, SMALL_HEIGHT / 2})
                EXPECT_NEAR(picture.at(x, y)[1], picture.at(x - 1, y)[1], 2) << x;
    }
}

TEST_F(SkyOf, ShadowsOfCloudsWanderOverTheSea) {
    m_world.addNode(new ObjectOcean());
    addFloor(2, 8000)->setWgsPosition({LONGITUDE + 4000 / 104600.0, LATITUDE, 2}); // to the right
    m_frame.cloud_base = 3000;
    look(2500, 0, 90);
    m_frame.cloud_cover = 0;
    struct Half {
        double sunny = 0;
        int lit = 0, shaded = 0;
    } halves[2]; // sea, ground
    const auto measure = [&](int half) {
        double sum = 0;
        for (int y = 0; y < SMALL_HEIGHT; y++)
            for (int x = 0; x < SMALL_WIDTH / 2 - 2; x++)
                for (int i = 0; i < 3; i++)
                    sum += m_picture.at(half == 0 ? x : SMALL_WIDTH - 1 - x, y)[i];
        return sum;
    };
    m_picture = shoot();
    for (int half = 0; half < 2; half++)
        halves[half].sunny = measure(half);
    m_frame.cloud_cover = 0.5f;
    m_frame.wind = {1000, 400};
    for (int i = 0; i < 40; i++) {
        m_frame.time += 1;
        m_picture = shoot();
        for (int half = 0; half < 2; half++) {
            const double now = measure(half);
            halves[half].lit += now > 0.9 * halves[half].sunny;
            halves[half].shaded += now < 0.8 * halves[half].sunny;
        }
    }
    for (const Half& half : halves) {
        EXPECT_GT(half.lit, 4);
        EXPECT_GT(half.shaded, 4);
    }
}

// From straight above: ground, a paved slab and a house side by side, each with one end in the sun
// and the other in a shadow at some time.
TEST_F(SkyOf, EdgesOfCloudsShadowsLieAcrossAllThatIsLarge) {
    auto* terrain = new ObjectTerrain();
    ASSERT_TRUE(terrain->load("data/PELMAR_PROJECT/terrain/coast.tif"));
    m_world.addNode(terrain);
    constexpr double EAST = -155.0625, NORTH = 19.71;
    Material* const paved = material({0.4f, 0.4f, 0.4f, 1}, 0);
    paved->addValue("paving", {5, 5, 0.01f, 0.1f});
    ObjectMesh* const slab = addFloor(0, 250);
    slab->setSurfaceMaterial(0, paved);
    slab->setWgsPosition({EAST, NORTH, 40});
    addFloor(0, 250)->setWgsPosition({EAST + 300 / 104800.0, NORTH, 40});
    m_camera.setWgsPosition({EAST, NORTH, 600});
    m_camera.setWgsHPR({0, 90, 0});
    m_frame.cloud_cover = 0;
    const Picture sunny = shoot();
    const auto brightness = [](const Picture& picture, int x0) { // of a strip across 60 m
        double sum = 0;
        for (int y = SMALL_HEIGHT / 3; y < SMALL_HEIGHT * 2 / 3; y++)
            for (int x = x0; x < x0 + 5; x++)
                sum += picture.at(x, y)[1];
        return sum;
    };
    m_frame.cloud_cover = 0.5f;
    m_frame.wind = {1000, 400};
    constexpr int WEST_ENDS[] = {8, 32, 54}, ACROSS = 13; // pixels
    double most[] = {0, 0, 0};
    for (int i = 0; i < 40; i++) {
        m_frame.time += 1;
        const Picture now = shoot();
        for (int k = 0; k < 3; k++) {
            const auto share = [&](int x) { return brightness(now, x) / brightness(sunny, x); };
            const double between = share(WEST_ENDS[k]) - share(WEST_ENDS[k] + ACROSS);
            most[k] = std::max(most[k], std::abs(between));
        }
    }
    for (const double between : most)
        EXPECT_GT(between, 0.1);
}
