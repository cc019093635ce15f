// SPDX-License-Identifier: MIT

// The feedback's height over every kind of surface of the demo world, against answers that don't
// come from our own queries: the raster as GDAL itself reads it, the levels that the airfield was
// built to, the plane of a deck.

#include "ig/physics/Body.h"
#include "plugins/ocean/ObjectOcean.h"
#include "testkit/LogicScene.h"

#include <cmath>
#include <gdal_priv.h>
#include <gtest/gtest.h>

namespace {

using namespace ig;

constexpr double PAD_LONGITUDE = -155.0625125, PAD_LATITUDE = 19.7124631;

struct HeightTest : testing::Test {
    void SetUp() override {
        scene.useProjectData();
        ASSERT_TRUE(scene.start());
    }
    /// Puts the helicopter at a geodetic place and returns the feedback of that frame.
    UdpSendData at(double longitude, double latitude, double altitude) {
        UdpRecvData record = LogicScene::record();
        record.longitude = longitude;
        record.latitude = latitude;
        record.altitude = static_cast<float>(altitude);
        scene.send(record);
        scene.frame();
        own_altitude = double(record.altitude);
        return *scene.feedback();
    }
    /// The altitude of the ground that the feedback tells, after checking that it lies straight
    /// below.
    double groundAt(double longitude, double latitude, double altitude) {
        const UdpSendData feedback = at(longitude, latitude, altitude);
        EXPECT_NEAR(double(feedback.ground_longitude), longitude, 1e-7);
        EXPECT_NEAR(double(feedback.ground_latitude), latitude, 1e-7);
        return own_altitude - double(float(feedback.height_above_ground));
    }
    LogicScene scene;
    double own_altitude = 0;
};

TEST_F(HeightTest, PadAndRunwayHaveTheLevelsTheyWereBuiltTo) {
    EXPECT_NEAR(groundAt(PAD_LONGITUDE, PAD_LATITUDE, 60), 12.45, 0.01);
    // The runway lies 150 to 180 m east of the pad, from 780 m south to 420 m north of it.
    const double metres_east = 1 / 104790.0, metres_north = 1 / 110687.0; // degrees
    for (double north : {-770.0, 0.0, 410.0})
        EXPECT_NEAR(
            groundAt(PAD_LONGITUDE + 165 * metres_east, PAD_LATITUDE + north * metres_north, 80),
            12.44, 0.01)
            << north;
}

// The frigate's flight deck lies 6 m above its origin.
TEST_F(HeightTest, ADeckThatStandsAslopeIsMetWhereGeometryTells) {
    const EllipsoidModel earth;
    auto* ship = static_cast<Object*>(scene.world->getNodeByName("SM_055_CN_2023"));
    ship->getBody()->setEnabled(false); // it stays where it is put
    ship->setWgsPosition({-154, 21, 0});
    ship->setWgsHPR({50, 2, -3});
    const dmat4 pose = ship->getWorldTransform();
    const dvec3 on_deck = pose * dvec3(1, -60, 6);
    const dvec3 place = earth.toWGS(on_deck + earth.getUp(on_deck) * 25.0);
    const UdpSendData feedback = at(place.x, place.y, place.z);

    const dvec3 from = earth.toWorld({place.x, place.y, own_altitude});
    const dvec3 down = -earth.getUp(from), normal = pose.getZ();
    const double t = dot(on_deck - from, normal) / dot(down, normal);
    const dvec3 expected = earth.toWGS(from + down * t);
    EXPECT_NEAR(double(float(feedback.height_above_ground)), own_altitude - expected.z, 0.001);
    EXPECT_NEAR(double(feedback.ground_latitude), expected.y, 1e-9);
    EXPECT_NEAR(double(feedback.ground_longitude), expected.x, 1e-9);
}

TEST_F(HeightTest, HillsAgreeWithTheRasterAsGdalReadsIt) {
    GDALAllRegister();
    auto* raster =
        static_cast<GDALDataset*>(GDALOpen("data/PELMAR_PROJECT/terrain/coast.tif", GA_ReadOnly));
    ASSERT_NE(raster, nullptr);
    double transform[6];
    ASSERT_EQ(raster->GetGeoTransform(transform), CE_None);
    const int width = raster->GetRasterXSize(), height = raster->GetRasterYSize();
    constexpr double TALLEST = 25; // of the trees, whose crowns are met above the ground
    int compared = 0, grown_over = 0;
    for (int row = 5; row < height; row += 37)
        for (int column = 5; column < width; column += 41) {
            float sample = 0;
            ASSERT_EQ(raster->GetRasterBand(1)->RasterIO(GF_Read, column, row, 1, 1, &sample, 1, 1,
                                                         GDT_Float32, 0, 0),
                      CE_None);
            if (sample < 15) continue; // the sea, the beach and the airfield
            // Samples stand in the middle of their pixels.
            const double longitude = transform[0] + (column + 0.5) * transform[1];
            const double latitude = transform[3] + (row + 0.5) * transform[5];
            const double above = groundAt(longitude, latitude, 600) - double(sample);
            EXPECT_GT(above, -0.01);
            EXPECT_LT(above, TALLEST);
            grown_over += above > 0.01;
            compared++;
        }
    GDALClose(raster);
    EXPECT_GT(compared - grown_over, 50);
    EXPECT_LT(grown_over, compared / 4);
}

TEST_F(HeightTest, SeaIsMetWhereTheWavesStandInThatFrame) {
    const EllipsoidModel earth;
    double lowest = 1e9, highest = -1e9;
    for (int i = 0; i < 200; i++) {
        const double longitude = -155.03 + i * 1e-4, latitude = 19.75;
        const double ground = groundAt(longitude, latitude, 30);
        const dvec3 surface =
            scene.logic->m_ocean->getWorldPoint(earth.toWorld({longitude, latitude, 0}));
        EXPECT_NEAR(ground, earth.getAltitude(surface), 0.005);
        lowest = std::min(lowest, ground);
        highest = std::max(highest, ground);
    }
    EXPECT_GT(highest - lowest, 0.2); // there are waves
    EXPECT_TRUE(scene.logic->m_heli->is_over_water());
}

} // namespace
