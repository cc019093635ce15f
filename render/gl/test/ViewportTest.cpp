// SPDX-License-Identifier: MIT

// Second views in the user interface, and what the weather radar's shows.

#include "PictureScene.h"
#include "ig/app/Engine.h"
#include "ig/scene/RPost.h"
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
        draw(); // lets the pictures go
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
    /// Green summed over the viewport.
    double light() const {
        double sum = 0;
        for (int y = 0; y < SIZE; y++)
            for (int x = 0; x < SIZE; x++)
                sum += echo(x, y);
        return sum;
    }
    /// A box of 120 m × 16 m × 14 m on the water, in the scene of the viewport.
    ObjectMesh* addShip(double east, double north, double heading) {
        Mesh::Surface s;
        for (const float z : {0.0f, 14.0f})
            for (const float y : {-60.0f, 60.0f})
                for (const float x : {-8.0f, 8.0f})
                    s.positions.push_back({x, y, z});
        s.normals.assign(8, {0, 0, 1});
        s.indices = {0, 1, 2};
        auto* ship = new ObjectMesh(std::make_shared<Mesh>(std::vector<Mesh::Surface>{s}));
        ship->setWgsPosition({LONGITUDE + east / (DEGREE * 0.9428), LATITUDE + north / DEGREE, 0});
        ship->setWgsHPR({heading, 0, 0});
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
    static double angleOf(int x, int y) {
        return std::atan2(SIZE - (y + 0.5), SIZE / 2.0 - (x + 0.5)) * RAD_TO_DEG<double>;
    }
    static double radiusOf(int x, int y) {
        return std::hypot(SIZE - (y + 0.5), SIZE / 2.0 - (x + 0.5));
    }
    /// Middle of what is bright between two angles, away from the rings.
    std::optional<double> findLine(double from, double to) const {
        double sum = 0, weights = 0;
        for (int y = 0; y < SIZE; y++)
            for (int x = 0; x < SIZE; x++) {
                const double ring = radiusOf(x, y) / RADIUS * 4, angle = angleOf(x, y);
                if (radiusOf(x, y) < 40 || std::abs(ring - std::round(ring)) < 0.06) continue;
                if (angle < from || angle > to || echo(x, y) < 60) continue;
                sum += angle * echo(x, y);
                weights += echo(x, y);
            }
        if (weights == 0) return std::nullopt;
        return sum / weights;
    }

    /// Middle of what is brighter than rings, between the lines at two angles; none when that is
    /// less than a ship's few pixels.
    std::optional<dvec2> findShip(double from, double to) const {
        dvec2 sum{0, 0};
        int number = 0;
        for (int y = 0; y < SIZE; y++)
            for (int x = 0; x < SIZE; x++) {
                if (echo(x, y) < 140 || radiusOf(x, y) < 20) continue; // the lines meet
                if (angleOf(x, y) < from + 2 || angleOf(x, y) > to - 2) continue;
                number++;
                sum.x += x + 0.5;
                sum.y += y + 0.5;
            }
        if (number < 6) return std::nullopt;
        return dvec2{sum.x / number, sum.y / number};
    }

    float m_from = 0, m_to = 180, m_gain = 1, m_saved = 0;
    int m_begun = 0, m_ended = 0;
};

TEST_F(RadarOf, FanStandsAtTheCommandedAngles) {
    struct Case {
        float from, to;
    };
    for (const Case& c : {Case{60, 120}, Case{85, 145}, Case{10, 50}, Case{89, 94}, Case{-20, 40},
                          Case{150, 215}, Case{61.3f, 118.7f}, Case{380, 440}}) {
        drawFan(c.from, c.to);
        const double from = std::fmod(c.from, 360), to = std::fmod(c.to, 360),
                     middle = (from + to) / 2;
        const auto left = findLine(0, middle), right = findLine(middle, 180);
        ASSERT_EQ(left.has_value(), from > 0) << c.from;
        ASSERT_EQ(right.has_value(), to < 180) << c.to;
        EXPECT_NEAR(left.value_or(from), from, 0.3) << c.from << " to " << c.to;
        EXPECT_NEAR(right.value_or(to), to, 0.3) << c.from << " to " << c.to;
        // Nothing outside, the dark green ground of the display inside.
        for (int y = 0; y < SIZE; y++)
            for (int x = 0; x < SIZE; x++) {
                const double angle = angleOf(x, y), radius = radiusOf(x, y);
                if (radius < 40) continue;
                const bool outside = angle < from - 2 || angle > to + 2 || radius > RADIUS + 2;
                const bool inside = angle > from + 2 && angle < to - 2 && radius < RADIUS - 2;
                ASSERT_TRUE(!outside || echo(x, y) < 4) << x << ' ' << y;
                ASSERT_TRUE(!inside || echo(x, y) > 4) << x << ' ' << y;
            }
    }
    drawFan(70, 70); // no width: one line
    EXPECT_NEAR(findLine(0, 180).value_or(0), 70, 0.3);
    drawFan(230, 300); // all of it behind
    EXPECT_EQ(light(), 0);
}

TEST_F(RadarOf, WithoutFanTheWholeHalfIsShown) {
    drawFan(80, 100);
    const double sector = light();
    m_viewport->m_sig_update_begin.clear(); // the material stays as everybody else sees it
    m_viewport->m_sig_update_end.clear();
    drawAnew();
    EXPECT_FALSE(findLine(20, 160)); // no lines
    EXPECT_GT(light(), 3 * sector);
}

TEST_F(RadarOf, AShipAppearsAtItsBearingAndRange) {
    struct Case {
        double heading, bearing, range; // the bearing is off the nose
    };
    for (const Case& c :
         {Case{0, 0, 5000}, Case{70, 25, 8000}, Case{250, -35, 12500}, Case{305, 12, 18000}}) {
        m_scene.clear();
        const double course = (c.heading + c.bearing) * DEG_TO_RAD<double>;
        addShip(c.range * std::sin(course), c.range * std::cos(course), 33);
        placeRadar(c.heading);
        drawFan(40, 140);
        const std::optional<dvec2> place = findShip(40, 140);
        ASSERT_TRUE(place) << c.range; // although the ship is half a pixel long
        const double x = place->x, y = place->y;
        const double angle = std::atan2(SIZE - y, SIZE / 2.0 - x) * RAD_TO_DEG<double>;
        const double range = std::hypot(SIZE - y, SIZE / 2.0 - x) / RADIUS * Camera::RADAR_RANGE;
        EXPECT_NEAR(angle, 90 + c.bearing, 1.2) << c.range;
        EXPECT_NEAR(range, c.range, 150);
    }
}

TEST_F(RadarOf, ShipsBehindFlatThingsAndTheRadarsOwnHelicopterAreNotSeen) {
    ObjectMesh* ship = addShip(0, -5000, 0);
    drawFan(20, 160);
    EXPECT_FALSE(findShip(20, 160));
    ship->setWgsPosition({LONGITUDE, LATITUDE + 5000 / DEGREE, 0});
    drawAnew();
    EXPECT_TRUE(findShip(20, 160));
    m_frame.focus = ship;
    drawAnew();
    EXPECT_FALSE(findShip(20, 160));
    m_frame.focus = nullptr;
    ship->setEnabled(false);
    auto* runway = new ObjectMesh(square(2000));
    runway->setWgsPosition({LONGITUDE, LATITUDE + 6000 / DEGREE, 5});
    runway->setWgsHPR({0, 0, 0});
    m_scene.addNode(runway);
    drawAnew();
    EXPECT_FALSE(findShip(20, 160));
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
        for (int y = 0; y < SIZE; y++)
            for (int x = 0; x < SIZE; x++)
                wet += echo(x, y) > 20;
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
    m_radar.setWgsPosition({-155.06, 19.74, 300});
    m_radar.setWgsHPR({205, 90, 0});
    drawAnew();
    int land = 0, sea = 0, wrong = 0;
    for (int y = 2; y < SIZE; y += 3)
        for (int x = 2; x < SIZE; x += 3) {
            // Clear cases only: land or sea in the texel and its neighbours.
            bool all_land = true, all_sea = true;
            for (const auto& [dx, dy] :
                 {std::pair(0.5, 0.5), {-1.0, -1.0}, {2.0, -1.0}, {-1.0, 2.0}, {2.0, 2.0}}) {
                const dvec3 place =
                    EllipsoidModel().toWGS(m_radar.getRayTo((x + dx) / SIZE, (y + dy) / SIZE, 300));
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

// ------------------------------------------------------------------ when they are drawn

TEST_F(RadarOf, KeepsItsRateWhateverTheFramesDo) {
    for (const double rate : {60.0, 17.0}) {
        m_begun = m_ended = 0;
        m_frame.time = 1000 * rate;
        const int frames = static_cast<int>(3 * rate);
        for (int i = 0; i < frames; i++) {
            drawFrame();
            EXPECT_EQ(m_begun, m_ended);
            m_frame.time += 1 / rate;
        }
        EXPECT_NEAR(m_begun, 15, 1) << rate;
    }
    const int before = m_begun;
    m_frame.time = 3; // the scene's time begins anew
    drawFrame();
    EXPECT_EQ(m_begun, before + 1);
}

TEST_F(RadarOf, SeveralTakeTurns) {
    int others = 0;
    UISpriteViewport* other = addViewport(SIZE);
    const auto count = [&others](UISpriteViewport*) { others++; };
    other->m_sig_update_begin.append({&others, count});
    for (int i = 0; i < 60; i++) {
        const int before = m_begun + others;
        drawFrame();
        EXPECT_LE(m_begun + others, before + 1);
        m_frame.time += 1 / 60.0;
    }
    EXPECT_NEAR(m_begun, 5, 1);
    EXPECT_NEAR(others, 5, 1);
}

TEST_F(RadarOf, AHiddenOneCostsNothing) {
    m_viewport->setHidden(true);
    m_viewport->setPostMaterials("post_radar");
    m_frame.ui_root = nullptr;
    draw();
    const int before = s_renderer->getResources().total();
    for (int i = 0; i < 5; i++)
        drawAnew();
    EXPECT_EQ(m_begun, 0);
    EXPECT_EQ(s_renderer->getResources().total(), before);
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
    m_viewport->setHidden(true);
    drawFan(40, 140);
    m_viewport->setHidden(false);
    drawAnew();
    m_viewport->setHidden(true);
    drawAnew();
    const int before = s_renderer->getResources().total(); // with one picture
    UISpriteViewport* plain = addViewport(SIZE);
    plain->setVisionMode(VISION_PLAIN);
    plain->setPostMaterials("post_radar");
    drawAnew();
    EXPECT_GT(s_renderer->getResources().total(), before);
    for (const int size : {100, 200}) { // a new size replaces the old one
        plain->setFixSize(size, size);
        drawAnew();
        drawAnew();
    }
    m_root->removeChild(plain);
    delete plain;
    drawAnew();
    EXPECT_EQ(s_renderer->getResources().total(), before);

    m_viewport->setHidden(false);
    drawAnew();
    s_renderer->release();
    EXPECT_EQ(s_renderer->getResources().total(), 0);
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

TEST_F(ViewportOf, APlainOneShowsItsOwnCamerasSceneWithoutInterface) {
    look(400, 0, 0);
    m_viewport->setVisionMode(VISION_PLAIN);
    Camera camera;
    camera.setPerspective(60, 1, 0.1, 1e6);
    camera.setWgsPosition({LONGITUDE, LATITUDE, 500});
    camera.setWgsHPR({200, 0, 0});
    m_viewport->setCamera(&camera);
    auto* card = new ObjectMesh(square(20));
    card->setTransform(camera.getWorldTransform() * translate(dvec3(10, 10, -50)));
    card->setSurfaceMaterial(0, material(RED, 3));
    m_scene.addNode(card);
    drawAnew();
    const auto red = [this](double right, double up, double pixels) { // metres; pixels per metre
        const std::uint8_t* p = m_picture.at(static_cast<int>(SIZE / 2.0 + right * pixels),
                                             static_cast<int>(SIZE / 2.0 - up * pixels));
        return p[0] > 150 && p[1] < 90;
    };
    const double at_card = SIZE / 2.0 / (50 * std::tan(30 * DEG_TO_RAD<double>));
    EXPECT_TRUE(red(1, 1, at_card) && red(19, 19, at_card));
    EXPECT_FALSE(red(-1, 1, at_card) || red(19, -1, at_card));
    // The main view still is the main camera's: the card would be within it.
    EXPECT_EQ(s_renderer->readDistance(0.6, 0.4), std::numeric_limits<double>::infinity());

    // Parallel rays: metres are metres at any distance.
    camera.setOrtho(40, 40, 1, 1000);
    card->setTransform(camera.getWorldTransform() * translate(dvec3(10, 10, -500)));
    drawAnew();
    EXPECT_TRUE(red(1, 1, SIZE / 80.0) && red(19, 19, SIZE / 80.0));
    EXPECT_FALSE(red(-1, 1, SIZE / 80.0) || red(21, 10, SIZE / 80.0));
}
