// SPDX-License-Identifier: MIT
#include "PictureScene.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "render/image/Png.h"
#include "testkit/TempFolder.h"

#include <functional>
#include <sstream>

using namespace ig;

/// Level ground 50 m above the sea, 0.02 degrees wide, 40 m between its samples.
class GroundImagery : public PictureScene {
public:
    static constexpr double EDGE = 0.02;

    void SetUp() override {
        PictureScene::SetUp();
        if (IsSkipped()) return;
        m_frame.cloud_cover = 0;
        restart();
    }
    /// Forgets the ground of the test before, and what has been read of this one.
    static void restart() {
        s_renderer->release();
        ASSERT_TRUE(s_renderer->init(WIDTH, HEIGHT));
    }
    /// A raster of text: what stands in the middle of `edge`² squares of the ground.
    jString writeGrid(const std::string& name, int edge, double margin,
                      const std::function<int(int, int)>& value) const {
        std::ostringstream text;
        text.precision(12);
        const double cell = EDGE / edge;
        text << "ncols " << edge << "\nnrows " << edge << "\nxllcorner "
             << LONGITUDE - EDGE / 2 - margin * cell << "\nyllcorner "
             << LATITUDE - EDGE / 2 - margin * cell << "\ncellsize "
             << cell * (1 + 2 * margin / edge) << "\nNODATA_value -9999\n";
        for (int row = 0; row < edge; row++)
            for (int column = 0; column < edge; column++)
                text << value(column, row) << (column == edge - 1 ? '\n' : ' ');
        return m_folder.write(name, text.str());
    }
    /// A picture of the whole ground, of `edge`² pixels.
    jString writePicture(const std::string& name, int edge,
                         const std::function<vec3(int, int)>& color) const {
        Picture picture{edge, edge, {}};
        for (int row = 0; row < edge; row++)
            for (int column = 0; column < edge; column++) {
                const vec3 c = color(column, row);
                for (const float value : {c.x, c.y, c.z})
                    picture.rgb.push_back(static_cast<std::uint8_t>(value * 255));
            }
        std::string message;
        EXPECT_TRUE(writePng(m_folder.file(name + ".png").c_str(), picture, message)) << message;
        std::ostringstream place;
        place.precision(12);
        const double cell = EDGE / edge;
        place << cell << "\n0\n0\n"
              << -cell << '\n'
              << LONGITUDE - EDGE / 2 + cell / 2 << '\n'
              << LATITUDE + EDGE / 2 - cell / 2 << '\n';
        m_folder.write(name + ".pgw", place.str());
        return m_folder.file(name + ".png");
    }
    ObjectTerrain* addGround(TerrainSources sources) {
        sources.rasters = {writeGrid("ground.asc", 60, 0.5, [](int, int) { return 50; })};
        auto* terrain = new ObjectTerrain();
        EXPECT_TRUE(terrain->load(sources));
        m_world.addNode(terrain);
        return terrain;
    }
    const Picture& draw() {
        PictureScene::draw();
        s_renderer->readPicture(m_picture);
        return m_picture;
    }
    /// A place of the last picture, 0 to 1 from its upper left corner: which colour leads.
    char getLeader(double x, double y) const {
        const std::uint8_t* p =
            m_picture.at(static_cast<int>(x * WIDTH), static_cast<int>(y * HEIGHT));
        if (p[0] > p[1] + 12 && p[0] > p[2] + 12) return 'r';
        if (p[1] > p[0] + 12 && p[1] > p[2] + 12) return 'g';
        if (p[2] > p[0] + 12 && p[2] > p[1] + 12) return 'b';
        return '-';
    }

    TempFolder m_folder;
};

/// Quarters of three colours and none, finely divided into tiles, seen from above, from near and
/// far: their borders lie where the ground has them.
TEST_F(GroundImagery, LiesOnTheGroundWhereItShould) {
    constexpr int PIXELS = 1400; // of 1.5 m
    const auto quarters = [](int column, int row) {
        const bool east = column >= PIXELS / 2, south = row >= PIXELS / 2;
        return south ? (east ? vec3(0.4f, 0.4f, 0.4f) : vec3(0.1f, 0.1f, 0.7f))
                     : (east ? vec3(0.1f, 0.6f, 0.1f) : vec3(0.7f, 0.1f, 0.1f));
    };
    TerrainSources sources;
    sources.imagery = {writePicture("quarters", PIXELS, quarters)};
    addGround(sources);
    for (const double altitude : {150.0, 400.0, 1200.0}) {
        look(altitude, 0, 90); // north is up
        draw();
        constexpr double NEAR = 0.03; // of the picture: beyond what pixels of two colours share
        for (const double far : {NEAR, 0.2, 0.4}) {
            SCOPED_TRACE(std::to_string(altitude) + " " + std::to_string(far));
            EXPECT_EQ(getLeader(0.5 - far, 0.5 - NEAR), 'r');
            EXPECT_EQ(getLeader(0.5 + far, 0.5 - NEAR), 'g');
            EXPECT_EQ(getLeader(0.5 - NEAR, 0.5 + far), 'b');
            EXPECT_EQ(getLeader(0.5 + NEAR, 0.5 + far), '-');
        }
    }
}

/// Wherever the eye was before, the picture is the same; a hurried one becomes the same in the end,
/// and begins with the coarse tiles.
TEST_F(GroundImagery, HurriedPicturesBecomeTheSame) {
    TerrainSources sources;
    sources.imagery = {writePicture("stripes", 1400, [](int column, int row) {
        return (column / 4 + row / 4) % 2 ? vec3(0.8f, 0.7f, 0.6f) : vec3(0.1f, 0.15f, 0.1f);
    })};
    addGround(sources);
    look(300, 0, 60);
    const std::vector<std::uint8_t> patient = draw().rgb;
    look(100, 90, 30, 400);
    draw();
    look(300, 0, 60);
    EXPECT_TRUE(draw().rgb == patient);
    restart();
    m_frame.hurried = true;
    EXPECT_FALSE(draw().rgb == patient);
    constexpr int MOST = 500; // pictures: the thread may be slow
    int drawn = 0;
    while (draw().rgb != patient && drawn < MOST)
        drawn++;
    EXPECT_LT(drawn, MOST);
}

TEST_F(GroundImagery, LandCoverChoosesWhatTheGroundShows) {
    TerrainSources sources;
    sources.land_cover = {writeGrid("cover.asc", 8, 0,
                                    [](int column, int) {
                                        constexpr int CLASSES[] = {80, 80, 30, 30, 70, 70, 50, 50};
                                        return CLASSES[column];
                                    }),
                          {}};
    addGround(sources);
    look(2600, 0, 90);
    draw();
    const auto brightness = [this](double x) {
        int sum = 0;
        for (int row = HEIGHT / 4; row < HEIGHT / 2; row++)
            sum += m_picture.at(static_cast<int>(x * WIDTH), row)[1];
        return sum / (HEIGHT / 4);
    };
    const double scale = EDGE / 8 * 104600 / (2550 * 2 * HALF_HEIGHT * WIDTH / HEIGHT);
    const auto column = [&](double i) { return brightness(0.5 + (i - 4) * scale); };
    const int water = column(1), grass = column(3), snow = column(5), houses = column(7);
    EXPECT_LT(water + 15, grass);
    EXPECT_LT(grass + 15, snow);
    EXPECT_LT(houses + 30, snow);
    EXPECT_GT(houses, water + 15);
}
