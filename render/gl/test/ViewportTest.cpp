// SPDX-License-Identifier: MIT

// Second views in the user interface, and what the weather radar's shows.

#include "PictureScene.h"
#include "ig/app/Engine.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/scene/RPost.h"
#include "ig/scene/SceneObjects.h"
#include "ig/ui/UIRoot.h"
#include "ig/ui/UISpriteViewport.h"
#include "ig/ui/UiDrawList.h"
#include "plugins/ocean/ObjectOcean.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <algorithm>
#include <cmath>
#include <optional>

using namespace ig;

namespace {

const MemSite HERE = {"test", "test"};
constexpr double DEGREE = 110700; ///< metres of latitude, near enough

float gain() { return Engine::get()->getEnvironment(ENVIRONMENT_SENSOR_GAIN); }

} // namespace

/// A viewport of SIZE × SIZE in the upper left corner over an empty main view.
class ViewportOf : public PictureScene {
public:
    static constexpr int SIZE = 256;
    static constexpr double RADIUS = 0.94 * SIZE; ///< of the radar's outer ring, pixels

    void SetUp() override {
        PictureScene::SetUp();
        if (IsSkipped()) return;
        s_renderer->resize(2 * SIZE, SIZE);
        s_renderer->setScale(0.25f); // of the main view, which nobody looks at
        m_root.emplace();
        m_root->resize(2 * SIZE, SIZE);
        m_viewport = addViewport(0);
        look(400, 0, 0);
        m_frame.time = 100; // not the 0 that everything begins with
    }
    void TearDown() override {
        m_scene.clear();
        PictureScene::TearDown();
        if (!s_drawable) return;
        m_frame.ui_root = nullptr;
        m_frame.particles = nullptr; // whose emitters are gone
        draw();                      // lets the pictures go
        s_renderer->resize(WIDTH, HEIGHT);
        s_renderer->setScale(1);
        Engine::get()->setEnvironment(ENVIRONMENT_SENSOR_GAIN, 0);
    }
    UISpriteViewport* addViewport(int x) {
        auto* viewport = new UISpriteViewport(&*m_root, SIZE, SIZE);
        viewport->setWorld(&m_scene);
        viewport->setCamera(&m_radar);
        viewport->setVisionMode(VISION_RADAR);
        viewport->setAlignFree(true);
        viewport->setPosition(x, 0);
        m_root->addChild(viewport);
        return viewport;
    }
    void drawFrame() {
        m_root->update(0);
        m_root->draw(m_ui);
        m_frame.ui = &m_ui;
        m_frame.ui_root = &*m_root;
        draw();
        s_renderer->readPicture(m_picture);
    }
    /// A new picture at once, whatever the rate.
    void drawAnew() {
        m_frame.time += 10;
        drawFrame();
    }
    void placeRadar(double heading, double altitude = 400) {
        m_radar.setWgsPosition({LONGITUDE, LATITUDE, altitude});
        m_radar.setWgsHPR({heading, 90, 0});
    }
    int echo(int x, int y) const { return m_picture.at(x, y)[1]; }
    template <class Visitor>
    static void forEachPixel(Visitor&& visit) {
        for (int y = 0; y < SIZE; y++)
            for (int x = 0; x < SIZE; x++)
                visit(x, y);
    }
    /// Green summed over the viewport.
    double light() const {
        double sum = 0;
        forEachPixel([&](int x, int y) { sum += echo(x, y); });
        return sum;
    }
    /// A wall of 40 m × 40 m in the water, in the scene of the viewport.
    ObjectMesh* addShip(double east, double north, double heading) {
        auto* ship = new ObjectMesh(square(40));
        ship->setWgsPosition({LONGITUDE + east / (DEGREE * 0.9428), LATITUDE + north / DEGREE, 0});
        ship->setWgsHPR({heading, 90, 0});
        m_scene.addNode(ship);
        return ship;
    }

    World m_scene; ///< of the viewports
    Camera m_radar{NODE_CAMERA_RADAR};
    std::optional<UIRoot> m_root;
    UISpriteViewport* m_viewport = nullptr;
    UiDrawList m_ui;
};

/// Behaves as the owner of a radar display does around each of its pictures.
class RadarOf : public ViewportOf {
public:
    void SetUp() override {
        ViewportOf::SetUp();
        if (IsSkipped()) return;
        m_viewport->m_sig_update_begin.append({this, &RadarOf::onBegin});
        m_viewport->m_sig_update_end.append({this, &RadarOf::onEnd});
        placeRadar(0);
    }
    void onBegin(UISpriteViewport*) {
        m_begun++;
        EXPECT_EQ(m_begun, m_ended + 1);
        setSector(1, m_from, m_to);
        m_saved = ::gain();
        Engine::get()->setEnvironment(ENVIRONMENT_SENSOR_GAIN, m_gain);
    }
    void onEnd(UISpriteViewport*) {
        m_ended++;
        Engine::get()->setEnvironment(ENVIRONMENT_SENSOR_GAIN, m_saved);
        setSector(0, 0, 180);
    }
    void setSector(int fan, float from, float to) {
        if (m_viewport->getPostMaterials().empty()) return;
        Material* m = RPost::GetMaterial(m_viewport->getPostMaterials(), this, HERE);
        if (!m) return;
        m->setStateValue(m->findStateID("fan"), fan);
        m->setParameterSliderByName("min_angle", from);
        m->setParameterSliderByName("max_angle", to);
        RPost::FreeMaterial(m, this);
    }
    void drawFan(float from, float to) {
        m_viewport->setPostMaterials("post_radar");
        m_from = from;
        m_to = to;
        drawAnew();
    }
    /// Degrees clockwise from the left, of a pixel's middle as seen from the apex.
    static double angleOf(double x, double y) {
        return std::atan2(SIZE - (y + 0.5), SIZE / 2.0 - (x + 0.5)) * RAD_TO_DEG<double>;
    }
    static double radiusOf(double x, double y) {
        return std::hypot(SIZE - (y + 0.5), SIZE / 2.0 - (x + 0.5));
    }
    /// Mean place of what is bright between two angles, none when that is less than a ship's few
    /// pixels. The apex, where all lines meet, doesn't count.
    std::optional<dvec2> findBright(int least, double from, double to, bool rings = true) const {
        double x_sum = 0, y_sum = 0;
        int number = 0;
        forEachPixel([&](int x, int y) {
            const double ring = radiusOf(x, y) / RADIUS * 4, angle = angleOf(x, y);
            if (echo(x, y) < least || radiusOf(x, y) < 20 || angle < from || angle > to) return;
            if (!rings && std::abs(ring - std::round(ring)) < 0.06) return;
            number++;
            x_sum += x;
            y_sum += y;
        });
        if (number < 6) return std::nullopt;
        return dvec2{x_sum / number, y_sum / number};
    }
    /// The angle of a line between two others.
    std::optional<double> findLine(double from, double to) const {
        const auto place = findBright(60, from, to, false);
        return place ? std::optional(angleOf(place->x, place->y)) : std::nullopt;
    }
    /// The place of what is brighter than rings in the fan from 40 to 140 degrees.
    std::optional<dvec2> findShip() const { return findBright(140, 42, 138); }

    float m_from = 0, m_to = 180, m_gain = 1, m_saved = 0;
    int m_begun = 0, m_ended = 0;
};

TEST_F(RadarOf, FanStandsAtTheCommandedAngles) {
    for (const auto& [sent_from, sent_to] :
         {std::pair(60.0f, 120.0f), {89, 94}, {-20, 40}, {150, 215}, {61.3f, 118.7f}, {380, 440}}) {
        drawFan(sent_from, sent_to);
        const double from = std::fmod(sent_from, 360), to = std::fmod(sent_to, 360),
                     middle = (from + to) / 2;
        const auto left = findLine(0, middle), right = findLine(middle, 180);
        ASSERT_EQ(left.has_value(), from > 0) << from;
        ASSERT_EQ(right.has_value(), to < 180) << to;
        EXPECT_NEAR(left.value_or(from), from, 0.3) << from << " to " << to;
        EXPECT_NEAR(right.value_or(to), to, 0.3) << from << " to " << to;
        // Nothing outside, the dark green ground of the display inside.
        int wrong = 0;
        forEachPixel([&](int x, int y) {
            const double angle = angleOf(x, y), radius = radiusOf(x, y);
            if (radius < 40) return;
            const bool outside = angle < from - 2 || angle > to + 2 || radius > RADIUS + 2;
            const bool inside = angle > from + 2 && angle < to - 2 && radius < RADIUS - 2;
            wrong += (outside && echo(x, y) >= 4) || (inside && echo(x, y) <= 4);
        });
        EXPECT_EQ(wrong, 0) << from << " to " << to;
    }
    drawFan(70, 70); // no width: one line
    EXPECT_NEAR(findLine(0, 180).value_or(0), 70, 0.3);
    drawFan(230, 300); // all of it behind
    EXPECT_EQ(light(), 0);

    drawFan(80, 100);
    const double sector = light();
    m_viewport->m_sig_update_begin.clear(); // without fan: as everybody else sees the material
    m_viewport->m_sig_update_end.clear();
    drawAnew();
    EXPECT_FALSE(findLine(20, 160)); // the whole half, no lines
    EXPECT_GT(light(), 3 * sector);
}

TEST_F(RadarOf, AShipAppearsAtItsBearingAndRange) {
    for (const auto& [heading, bearing, range] : {dvec3(70, 25, 5000), dvec3(305, -35, 18000)}) {
        m_scene.clear();
        const double course = (heading + bearing) * DEG_TO_RAD<double>; // bearings are off the nose
        addShip(range * std::sin(course), range * std::cos(course), 33);
        placeRadar(heading);
        drawFan(40, 140);
        const std::optional<dvec2> place = findShip();
        ASSERT_TRUE(place) << range; // although the ship is a fraction of a pixel
        EXPECT_NEAR(angleOf(place->x, place->y), 90 + bearing, 1.2) << range;
        EXPECT_NEAR(radiusOf(place->x, place->y) / RADIUS * Camera::RADAR_RANGE, range, 150);
    }
}

TEST_F(RadarOf, ShipsBehindFlatThingsAndTheRadarsOwnHelicopterAreNotSeen) {
    ObjectMesh* ship = addShip(0, -5000, 0);
    drawFan(40, 140);
    EXPECT_FALSE(findShip());
    ship->setWgsPosition({LONGITUDE, LATITUDE + 5000 / DEGREE, 0});
    drawAnew();
    EXPECT_TRUE(findShip());
    m_frame.focus = ship;
    drawAnew();
    EXPECT_FALSE(findShip());
    m_frame.focus = nullptr;
    ship->setEnabled(false);
    auto* runway = new ObjectMesh(square(2000));
    runway->setWgsPosition({LONGITUDE, LATITUDE + 6000 / DEGREE, 5});
    runway->setWgsHPR({0, 0, 0});
    m_scene.addNode(runway);
    drawAnew();
    EXPECT_FALSE(findShip());
}

TEST_F(RadarOf, GainScalesTheEchoesAndIsPutBack) {
    Engine::get()->setEnvironment(ENVIRONMENT_SENSOR_GAIN, 0.25f);
    addShip(0, 10000, 0);
    const auto ship = [this](float gain) { // without post-process material: the echo itself
        m_gain = gain;
        drawAnew();
        EXPECT_EQ(::gain(), 0.25f);
        return echo(SIZE / 2, SIZE / 4);
    };
    const int full = ship(1);
    EXPECT_GT(full, 250);
    EXPECT_NEAR(ship(0.5f), full / 2, 2);
    EXPECT_EQ(ship(0), 0);
    EXPECT_EQ(light(), 0);
    EXPECT_EQ(ship(50), full);
    EXPECT_EQ(ship(-3), 0);
    EXPECT_EQ(m_begun, m_ended);
}

TEST_F(RadarOf, PrecipitationGrowsWithItsLevelAndDriftsWithTheWind) {
    const auto cover = [this](float rain, float snow) {
        m_frame.rain = rain;
        m_frame.snow = snow;
        drawAnew();
        int wet = 0;
        forEachPixel([&](int x, int y) { wet += echo(x, y) > 20; });
        return wet / double(SIZE * SIZE);
    };
    EXPECT_EQ(cover(0, 0), 0);
    const double light_rain = cover(1 / 3.0f, 0), light_sum = light();
    const double heavy_rain = cover(1, 0), heavy_sum = light();
    EXPECT_GT(light_rain, 0.05);
    EXPECT_GT(heavy_rain, 1.5 * light_rain);
    EXPECT_GT(heavy_sum / heavy_rain, 1.2 * light_sum / light_rain); // harder where it rains
    EXPECT_NEAR(cover(0, 1), heavy_rain, 0.1);
    EXPECT_LT(light(), 0.8 * heavy_sum); // snow returns less

    cover(1, 0);
    const Picture before = m_picture;
    // Ten texels of 40 km / 256 to the east in 10 s, four to the north.
    m_frame.wind = {156.25f, 62.5f};
    drawAnew();
    int same = 0, still = 0, all = 0;
    for (int y = 8; y < SIZE - 8; y++)
        for (int x = 16; x < SIZE - 16; x++) {
            const int now = echo(x, y);
            all++;
            same += std::abs(now - before.at(x - 10, y + 4)[1]) < 10;
            still += std::abs(now - before.at(x, y)[1]) < 10;
        }
    EXPECT_GT(same, 0.95 * all);
    EXPECT_LT(still, 0.8 * all);
}

TEST_F(RadarOf, SeaClutterSurroundsTheRadarAndGrowsWithTheWaves) {
    auto* sea = new ObjectOcean();
    m_scene.addNode(sea);
    double last = 0;
    for (const float beaufort : {0.0f, 3.0f, 6.0f}) {
        sea->setBeaufort(beaufort);
        sea->evolve(1000 * (1 + static_cast<double>(beaufort))); // until the waves have followed
        sea->evolve(1000 * (1 + static_cast<double>(beaufort)) + 500);
        drawAnew();
        if (beaufort == 0) {
            EXPECT_EQ(light(), 0);
            continue;
        }
        EXPECT_GT(light(), 1.5 * last + 500);
        last = light();
        double near = 0, far = 0;
        for (int i = 4; i < 10; i++) {
            near += echo(SIZE / 2 + i, SIZE / 2);
            far += echo(SIZE / 2 + 12 * i, SIZE / 2);
        }
        EXPECT_GT(near, 3 * far + 30) << beaufort;
    }
}

TEST_F(RadarOf, LandReturnsWhereTheTerrainIs) {
    auto* terrain = new ObjectTerrain();
    ASSERT_TRUE(terrain->load("data/PELMAR_PROJECT/terrain/coast.tif"));
    m_scene.addNode(terrain);
    constexpr double ALTITUDE = 3000; // hills hide nothing
    m_radar.setWgsPosition({-155.06, 19.74, ALTITUDE});
    m_radar.setWgsHPR({205, 90, 0});
    drawAnew();
    int land = 0, sea = 0, wrong = 0;
    for (int y = 2; y < SIZE; y += 3)
        for (int x = 2; x < SIZE; x += 3) {
            // Clear cases only: land or sea in the texel and its neighbours.
            bool all_land = true, all_sea = true;
            for (const auto& [dx, dy] :
                 {std::pair(0.5, 0.5), {-1.0, -1.0}, {2.0, -1.0}, {-1.0, 2.0}, {2.0, 2.0}}) {
                const dvec3 place = EllipsoidModel().toWGS(
                    m_radar.getRayTo((x + dx) / SIZE, (y + dy) / SIZE, ALTITUDE));
                double altitude = -100;
                terrain->getAltitudeByLonLat(place.x, place.y, &altitude, nullptr);
                all_land &= altitude > 4;
                all_sea &= altitude < -4;
            }
            land += all_land;
            sea += all_sea;
            wrong += (all_land && echo(x, y) < 10) || (all_sea && echo(x, y) > 15);
        }
    EXPECT_GT(land, 100);
    EXPECT_GT(sea, 500);
    EXPECT_EQ(wrong, 0);
}

TEST_F(RadarOf, HillsHideWhatLiesBehindThem) {
    auto* terrain = new ObjectTerrain();
    ASSERT_TRUE(terrain->load("data/PELMAR_PROJECT/terrain/coast.tif"));
    m_scene.addNode(terrain);
    const auto landSeen = [&](double altitude) {
        m_radar.setWgsPosition({-155.06, 19.74, altitude}); // off the island's coast
        m_radar.setWgsHPR({205, 90, 0});
        drawAnew();
        return light();
    };
    auto* ship = new ObjectMesh(square(40)); // 15 km straight ahead, across the island
    ship->setWgsPosition({-155.121, 19.617, 0});
    ship->setWgsHPR({25, 90, 0});
    m_scene.addNode(ship);
    const double all = landSeen(3000);
    EXPECT_GT(echo(SIZE / 2, SIZE / 8), 200);
    EXPECT_LT(landSeen(100), 0.7 * all);
    EXPECT_GT(light(), 0.1 * all); // the slopes on this side
    EXPECT_LT(echo(SIZE / 2, SIZE / 8), 10);
}

// ------------------------------------------------------------------ when they are drawn

TEST_F(RadarOf, TwoTakeTurnsAndKeepTheirRateWhateverTheFramesDo) {
    int others = 0;
    const auto count = [&others](UISpriteViewport*) { others++; };
    addViewport(SIZE)->m_sig_update_begin.append({&others, count});
    for (const double rate : {60.0, 17.0}) {
        m_begun = m_ended = others = 0;
        m_frame.time = 1000 * rate;
        for (int i = 0; i < 2 * rate; i++) {
            const int before = m_begun + others;
            drawFrame();
            EXPECT_LE(m_begun + others, before + 1);
            m_frame.time += 1 / rate;
        }
        EXPECT_NEAR(m_begun, 10, 1) << rate;
        EXPECT_NEAR(others, 10, 1) << rate;
    }
    const int before = m_begun + others;
    m_frame.time = 3; // the scene's time begins anew
    drawFrame();
    EXPECT_EQ(m_begun + others, before + 1);
}

TEST_F(RadarOf, AHiddenOneCostsNothing) {
    m_viewport->setHidden(true);
    m_viewport->setPostMaterials("post_radar");
    m_frame.ui_root = nullptr;
    draw();
    const int before = s_renderer->getResources().getTotal();
    for (int i = 0; i < 5; i++)
        drawAnew();
    EXPECT_EQ(m_begun, 0);
    EXPECT_EQ(s_renderer->getResources().getTotal(), before);
    m_viewport->setHidden(false);
    m_viewport->setCamera(nullptr); // its owner is gone
    drawAnew();
    EXPECT_EQ(m_begun, 0);
    m_viewport->setCamera(&m_radar);
    drawFrame();
    EXPECT_EQ(m_begun, 1);
    EXPECT_GT(light(), 0);
}

TEST_F(RadarOf, TheResourcesGoWithTheViewport) {
    drawFan(40, 140);
    m_viewport->setHidden(true);
    drawAnew();
    const int before = s_renderer->getResources().getTotal(); // with one picture
    UISpriteViewport* plain = addViewport(SIZE);
    plain->setVisionMode(VISION_PLAIN);
    plain->setPostMaterials("post_radar");
    for (const int size : {SIZE, 100, 200}) { // a new size replaces the old one
        plain->setFixSize(size, size);
        drawAnew();
        drawAnew();
    }
    EXPECT_GT(s_renderer->getResources().getTotal(), before);
    delete plain;
    drawAnew();
    EXPECT_EQ(s_renderer->getResources().getTotal(), before);

    m_viewport->setHidden(false);
    drawAnew();
    s_renderer->release();
    EXPECT_EQ(s_renderer->getResources().getTotal(), 0);
    s_renderer->init(2 * SIZE, SIZE);
    drawAnew();
    EXPECT_GT(light(), 0);
}

// ------------------------------------------------------------------ materials and plain views

TEST_F(RadarOf, WithoutItsMaterialTheViewIsShownUnfilteredAndThatIsSaidOnce) {
    addShip(0, 10000, 0);
    WorkingFolder folder;
    folder.write("data/core/post/post_odd.mat", "parameters: {strength: 1}\n");
    for (const char* name : {"post_missing", "post_odd"}) { // no file; no shader
        LogCapture log;
        m_viewport->setPostMaterials(name);
        for (int i = 0; i < 3; i++) {
            drawAnew();
            EXPECT_GT(echo(SIZE / 2, SIZE / 4), 250);
            EXPECT_EQ(::gain(), 0);
        }
        EXPECT_EQ(std::count_if(log.lines.begin(), log.lines.end(),
                                [name](const std::string& line) {
                                    return line.find(name) != std::string::npos;
                                }),
                  1);
        EXPECT_EQ(RPost::getNumUses(), 0);
    }
    MaterialManager::release();
}

/// The ordinary scene through a camera of its own.
class PlainViewOf : public ViewportOf {
public:
    void SetUp() override {
        ViewportOf::SetUp();
        if (IsSkipped()) return;
        m_viewport->setVisionMode(VISION_PLAIN);
        m_viewport->setCamera(&m_eye);
        m_eye.setPerspective(60, 1, 0.1, 1e6);
    }
    void place(double altitude, double pitch) {
        m_eye.setWgsPosition({LONGITUDE, LATITUDE, altitude});
        m_eye.setWgsHPR({200, pitch, 0});
    }
    bool isRed(double x, double y) const {
        const std::uint8_t* p = m_picture.at(static_cast<int>(x), static_cast<int>(y));
        return p[0] > 150 && p[1] < 90;
    }
    Camera m_eye;
    ParticleSystem m_particles;
};

TEST_F(PlainViewOf, ShowsItsOwnCamerasSceneWithoutInterface) {
    place(500, 0);
    auto* card = new ObjectMesh(square(20));
    card->setTransform(m_eye.getWorldTransform() * translate(dvec3(10, 10, -50)));
    card->setSurfaceMaterial(0, material(RED, 3));
    m_scene.addNode(card);
    drawAnew();
    const auto red = [this](double right, double up, double pixels) { // metres; pixels per metre
        return isRed(SIZE / 2.0 + right * pixels, SIZE / 2.0 - up * pixels);
    };
    const double at_card = SIZE / 2.0 / (50 * std::tan(30 * DEG_TO_RAD<double>));
    EXPECT_TRUE(red(1, 1, at_card) && red(19, 19, at_card));
    EXPECT_FALSE(red(-1, 1, at_card) || red(19, -1, at_card));
    // The main view still is the main camera's: the card would be within it.
    EXPECT_EQ(s_renderer->readDistance(0.6, 0.4), std::numeric_limits<double>::infinity());

    // Parallel rays: metres are metres at any distance.
    m_eye.setOrtho(40, 40, 1, 1000);
    card->setTransform(m_eye.getWorldTransform() * translate(dvec3(10, 10, -500)));
    drawAnew();
    EXPECT_TRUE(red(1, 1, SIZE / 80.0) && red(19, 19, SIZE / 80.0));
    EXPECT_FALSE(red(-1, 1, SIZE / 80.0) || red(21, 10, SIZE / 80.0));
}

TEST_F(PlainViewOf, ItsEyeLeavesTheMainOnesSkyAsItGoes) {
    const auto cloudOver = [this](Camera* eye) {
        m_viewport->setCamera(eye);
        m_frame.time = 100;
        m_frame.overcast = 0;
        for (double hour : {3.0, 17.0}) { // from a jump
            m_frame.sun_direction = computeSky(hour, LONGITUDE, 80).sun_direction;
            drawAnew();
        }
        std::vector<int> greens; // of the main view
        for (int i = 0; i < 40; i++) {
            m_frame.overcast = static_cast<float>(std::min(i, 20)) * 0.02f;
            drawAnew();
            greens.push_back(m_picture.at(SIZE * 3 / 2, SIZE / 3)[1]);
        }
        return greens;
    };
    place(400, 0);
    Camera far_off;
    far_off.setPerspective(60, 1, 0.1, 1e6);
    far_off.setWgsPosition({LONGITUDE + 60, LATITUDE, 400}); // there it is night
    const std::vector<int> alone = cloudOver(nullptr);
    EXPECT_NE(alone.front(), alone.back());
    EXPECT_EQ(cloudOver(&m_eye), alone);
    EXPECT_EQ(cloudOver(&far_off), alone);
}

// Each move of theirs draws all that casts: a view beyond them has none.
TEST_F(PlainViewOf, FindsTheShadowMapsWhereTheMainEyeHasThem) {
    m_viewport->setWorld(&m_world);
    place(300, 90);
    addFloor(10, 1000);
    addFloor(60, 60);
    const auto darkest = [this](double main_eye) { // so many degrees east; share of the brightest
        m_camera.setWgsPosition({LONGITUDE + main_eye, LATITUDE, 400});
        for (int i = 0; i < 5; i++) // of three maps one moves in a frame
            drawAnew();
        int low = 255, high = 0;
        forEachPixel([&](int x, int y) {
            low = std::min(low, echo(x, y));
            high = std::max(high, echo(x, y));
        });
        return low / static_cast<double>(high);
    };
    EXPECT_LT(darkest(0), 0.6);
    EXPECT_GT(darkest(0.2), 0.9);
}

TEST_F(PlainViewOf, WhatStandsCloseInTheMainViewHidesNeitherItsCloudsNorItsParticles) {
    s_renderer->setScale(1); // so that every pixel of it has one of the main view's
    place(3000, 60);
    m_scene.addNode(new ObjectOcean());
    m_frame.overcast = 1;
    m_frame.cloud_base = 1000;
    m_frame.cloud_thickness = 400;
    auto* emitter = new ObjectParticles();
    emitter->setTransform(m_eye.getWorldTransform() * translate(dvec3(0, 0, -30)));
    emitter->setLife(10);
    emitter->setSpawnRate(20);
    Material* puff = material({1, 0.01f, 0.01f, 4}, 0);
    puff->addSlider("particle_size", 3);
    emitter->setSurfaceMaterial(0, puff);
    m_scene.addNode(emitter);
    for (int i = 0; i < 4; i++) {
        m_scene.updateParticles(0.5f);
        m_particles.advance(m_scene, 0.5f);
    }
    m_frame.particles = &m_particles;
    drawAnew();
    EXPECT_TRUE(isRed(SIZE / 2, SIZE / 2));
    const int deck = echo(SIZE / 4, SIZE / 2);
    addCard(1, 10, GREEN);
    drawAnew();
    drawAnew(); // viewports come before the main view
    EXPECT_TRUE(isRed(SIZE / 2, SIZE / 2));
    EXPECT_NEAR(echo(SIZE / 4, SIZE / 2), deck, 20);
}
