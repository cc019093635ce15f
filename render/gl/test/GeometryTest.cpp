// SPDX-License-Identifier: MIT
#include "PictureScene.h"
#include "plugins/ocean/ObjectOcean.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "testkit/TempFolder.h"

#include <cmath>
#include <sstream>

using namespace ig;

using Geometry = PictureScene;

TEST_F(Geometry, PointsAppearWhereTheProjectionPutsThem) {
    look(100, 30, 0);
    addCard(200, 8, RED, 60, -40); // metres from the axis
    draw();
    const auto place = [](double right, double up) { // in the picture
        return dvec2{0.5 + right / 200 / (2 * HALF_HEIGHT) * HEIGHT / WIDTH,
                     0.5 - up / 200 / (2 * HALF_HEIGHT)};
    };
    for (const double d : {-3.0, 3.0}) // within the card
        EXPECT_TRUE(isRed(place(60 + d, -40 + d).x, place(60 + d, -40 + d).y));
    for (const double d : {-6.0, 6.0}) // beside it
        EXPECT_FALSE(isRed(place(60 + d, -40).x, place(60, -40).y));

    m_camera.setProjection(
        projection(0.4, -0.2)); // in half widths: the picture moves the other way
    draw();
    EXPECT_TRUE(isRed(place(60, -40).x - 0.2, place(60, -40).y - 0.1));
}

TEST_F(Geometry, FiveCentimetresTellNearFromFarAtFiveKilometres) {
    look(3000, 0, 10);
    addCard(5000, 1500, GREEN, -100);
    addCard(5000.05, 1500, RED, 100);
    draw();
    EXPECT_TRUE(isGreen(0.5, 0.5)); // both cover the middle
    EXPECT_TRUE(isRed(0.5 + 750 / 5000.0 * HEIGHT / WIDTH, 0.5));
    m_world.clear();
    addCard(5000, 1500, RED, 100); // the other way round
    addCard(5000.05, 1500, GREEN, -100);
    draw();
    EXPECT_TRUE(isRed(0.5, 0.5));
}

TEST_F(Geometry, AMillimetreOfTheCameraIsAMillimetreInThePicture) {
    look(50, 70, 0);
    const dmat4 start = m_camera.getWorldTransform();
    addCard(2, 1, RED);
    for (int step = 0; step <= 20; step++) {
        m_camera.setTransform(start * translate(dvec3(0, 0, -step * 0.001)));
        draw();
        EXPECT_NEAR(s_renderer->readDistance(0.5, 0.5), 2 - step * 0.001, 2e-5);
    }
}

TEST_F(Geometry, TheHorizonStandsAtItsDip) {
    auto* sea = new ObjectOcean();
    sea->setBeaufort(0);
    m_world.addNode(sea);
    for (const double altitude : {30.0, 1500.0}) {
        look(altitude, 45, 0);
        draw();
        const double dip = std::sqrt(2 * altitude / 6371000);
        const double row = (0.5 + std::tan(dip) / (2 * HALF_HEIGHT)) * HEIGHT;
        int first = 0;
        while (first < HEIGHT && std::isinf(s_renderer->readDistance(0.5, (first + 0.5) / HEIGHT)))
            first++;
        EXPECT_NEAR(first, row, 1.5) << altitude;
    }
}

TEST_F(Geometry, ADeckStandsAtItsAltitude) {
    addFloor(23.4, 60);
    look(83.4, 10, 90);
    draw();
    EXPECT_NEAR(s_renderer->readDistance(0.5, 0.5), 60, 0.001);
}

TEST_F(Geometry, TheGroundStandsWhereQueriesMeetIt) {
    auto* terrain = new ObjectTerrain();
    ASSERT_TRUE(terrain->load("data/PELMAR_PROJECT/terrain/coast.tif"));
    m_world.addNode(terrain);
    int checked = 0;
    for (int i = 0; i < 25; i++) {
        m_frame.hurried = i % 2 == 1; // also at the first look at a place
        const double longitude = -155.09 + 0.0017 * i, latitude = 19.70 - 0.0013 * (i % 5);
        double altitude = 0;
        if (!terrain->getAltitudeByLonLat(longitude, latitude, &altitude, nullptr)) continue;
        if (altitude < 0) continue;
        m_camera.setWgsPosition({longitude, latitude, altitude + 55});
        m_camera.setWgsHPR({0, 90, 0});
        draw();
        // The middle of the pixel beside the middle of the picture: half a pixel is 0.15 m.
        EXPECT_NEAR(s_renderer->readDistance(0.5, 0.5), 55, 0.25) << longitude << " " << latitude;
        const dvec3 met = m_camera.getRayTo(0.5 + 0.5 / WIDTH, 0.5 + -0.5 / HEIGHT,
                                            s_renderer->readDistance(0.5, 0.499));
        const dvec3 geodetic = EllipsoidModel().toWGS(met);
        ASSERT_TRUE(terrain->getAltitudeByLonLat(geodetic.x, geodetic.y, &altitude, nullptr));
        EXPECT_NEAR(geodetic.z, altitude, 0.05);
        checked++;
    }
    EXPECT_GT(checked, 10);
}

/// Rough heights in degrees, as an ASCII grid.
jString writeHeights(const TempFolder& folder, const char* name, int size, double west,
                     double south, double step, double height) {
    std::ostringstream text;
    text.precision(12);
    text << "ncols " << size << "\nnrows " << size << "\nxllcorner " << west << "\nyllcorner "
         << south << "\ncellsize " << step << '\n';
    for (int i = 0; i < size * size; i++)
        text << height + 9 * std::sin(i * 1.7) << (i % size == size - 1 ? '\n' : ' ');
    return folder.write(name, text.str());
}

TEST_F(Geometry, AFinerGridIsDrawnInPlaceOfTheCoarserOneAcrossTheDateLine) {
    constexpr double STEP = 0.001;
    const TempFolder folder;
    TerrainSources sources;
    sources.rasters = {writeHeights(folder, "coarse.asc", 40, 180 - 20 * STEP, 60, STEP, 20),
                       writeHeights(folder, "fine.asc", 60, 180 - 3 * STEP, 60.017, STEP / 10, 60)};
    auto* terrain = new ObjectTerrain();
    ASSERT_TRUE(terrain->load(sources));
    m_world.addNode(terrain);
    // Through the finer one's middle from west to east, over both of its seams.
    int checked = 0;
    for (int i = 0; i < 60; i++) {
        const double longitude = std::remainder(180 + (i - 30) * 0.00017, 360), latitude = 60.0201;
        double altitude = 0;
        ASSERT_TRUE(terrain->getAltitudeByLonLat(longitude, latitude, &altitude, nullptr));
        m_camera.setWgsPosition({longitude, latitude, altitude + 55});
        m_camera.setWgsHPR({0, 90, 0});
        draw();
        for (const double x : {0.1, 0.5, 0.9}) {
            const int px = static_cast<int>(x * WIDTH), py = HEIGHT / 3;
            const dvec2 pixel{(px + 0.5) / WIDTH, (py + 0.5) / HEIGHT};
            const double distance = s_renderer->readDistance(pixel.x, pixel.y);
            const dvec3 met = EllipsoidModel().toWGS(m_camera.getRayTo(pixel.x, pixel.y, distance));
            ASSERT_TRUE(terrain->getAltitudeByLonLat(met.x, met.y, &altitude, nullptr));
            EXPECT_NEAR(met.z, altitude, 0.05) << met.x << " " << met.y;
            checked += terrain->getGrids()[1].contains(terrain->getGrids()[1].getColumn(met.x),
                                                       terrain->getGrids()[1].getRow(met.y));
        }
    }
    EXPECT_GT(checked, 40); // and as many beside it
    EXPECT_LT(checked, 140);
}

/// What a frame that waits for nothing shows of a place that the eye has jumped to, and what it
/// shows in the end.
TEST_F(Geometry, GroundThatIsBeingMadeHasNoHoleAndEndsAsItWouldBe) {
    constexpr double EDGE = 0.1 * HALF_HEIGHT / 5; // a long lens shows much far detail
    m_camera.setProjection(
        frustum(-EDGE * WIDTH / HEIGHT, EDGE * WIDTH / HEIGHT, -EDGE, EDGE, 0.1, 1e7, 0, 0));
    const auto ray = [](int i) { return dvec2{(i % 20 + 0.5) / 20, (i / 20 + 0.5) / 10}; };
    const auto lookAt = [&](int place) {
        m_camera.setWgsPosition({-155.085 + 0.006 * place, 19.702, 500});
        m_camera.setWgsHPR({90.0 * place, 14, 0});
        draw();
        std::vector<double> distances;
        for (int i = 0; i < 200; i++)
            distances.push_back(s_renderer->readDistance(ray(i).x, ray(i).y));
        return distances;
    };
    const auto addTerrain = [&] {
        m_world.clear();
        auto* terrain = new ObjectTerrain();
        EXPECT_TRUE(terrain->load("data/PELMAR_PROJECT/terrain/coast.tif"));
        m_world.addNode(terrain);
        return terrain;
    };
    addTerrain();
    std::vector<std::vector<double>> whole;
    for (int place = 0; place < 4; place++)
        whole.push_back(lookAt(place));
    const auto* terrain = addTerrain();
    m_frame.hurried = true;
    int coarser = 0, met = 0;
    for (int place = 0; place < 4; place++) {
        const std::vector<double> first = lookAt(place);
        coarser += first != whole[place];
        for (int i = 0; i < 200; i++) {
            dvec3 hit;
            if (!terrain->getIntersection(0, m_camera.getWorldPosition(),
                                          m_camera.getRayTo(ray(i).x, ray(i).y, 9000), &hit) ||
                EllipsoidModel().getAltitude(hit) < 5)
                continue;
            EXPECT_NEAR(first[i] / length(hit - m_camera.getWorldPosition()), 1, 0.5) << i;
            met++;
        }
        int looks = 0;
        while (looks < 2000 && lookAt(place) != whole[place])
            looks++;
        EXPECT_LT(looks, 2000);
    }
    EXPECT_GT(met, 100);
    EXPECT_GT(coarser, 0);
}

/// What is seen of the sea lies where queries find the water: within the error that straight lines
/// between the fan's vertices make.
TEST_F(Geometry, TheSeaIsDrawnWhereItFloatsShips) {
    auto* sea = new ObjectOcean();
    sea->setBeaufort(5);
    m_world.addNode(sea);
    double squares = 0, worst = 0;
    int points = 0;
    std::uint32_t random = 7;
    const auto next = [&random] { // 0 to 1
        random = random * 1664525u + 1013904223u;
        return (random >> 8) / 16777216.0;
    };
    for (int frame = 0; frame < 10; frame++) {
        sea->evolve(5.3 * frame);
        look(12, 36 * frame, 40, 70 * frame);
        draw();
        for (int i = 0; i < 100; i++) {
            const int px = static_cast<int>(next() * WIDTH), py = static_cast<int>(next() * HEIGHT);
            const double x = (px + 0.5) / WIDTH, y = (py + 0.5) / HEIGHT;
            const double distance = s_renderer->readDistance(x, y);
            if (distance > 30) continue;
            const dvec3 seen = m_camera.getRayTo(x, y, distance);
            const double error = EllipsoidModel().getAltitude(seen) -
                                 EllipsoidModel().getAltitude(sea->getWorldPoint(seen));
            squares += error * error;
            worst = std::max(worst, std::abs(error));
            points++;
        }
    }
    ASSERT_GT(points, 500);
    EXPECT_LT(std::sqrt(squares / points), 0.02);
    EXPECT_LT(worst, 0.12);
}
