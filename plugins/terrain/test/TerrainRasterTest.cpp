// SPDX-License-Identifier: MIT
#include "RasterFiles.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/scene/World.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "testkit/LogCapture.h"

#include <arpa/inet.h>
#include <cpl_conv.h>
#include <gdal_alg.h>
#include <optional>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace ig;
const EllipsoidModel EARTH;

std::optional<double> getAltitude(const ObjectTerrain& terrain, double longitude, double latitude) {
    double altitude;
    if (!terrain.getAltitudeByLonLat(longitude, latitude, &altitude, nullptr)) return {};
    return altitude;
}

TEST(TerrainRaster, HeightsStandAtPixelMiddlesInEveryFormat) {
    const RasterFolder folder;
    const auto hills = [](int i, int j) {
        return std::floor(500 + 300 * std::sin(i * 0.11) * std::cos(j * 0.07));
    };
    RasterFile file = RasterFile::degrees(1201, 1201, -156, 20, 1 / 1200.0, hills);
    file.type = GDT_Int16;
    for (const auto& [name, format] : {std::pair("a.tif", "GTiff"), std::pair("level1.dt1", "DTED"),
                                       std::pair("N19W156.hgt", "SRTMHGT")}) {
        const LogCapture log;
        ObjectTerrain terrain;
        ASSERT_TRUE(terrain.load(folder.writeRaster(file, name, format))) << name;
        EXPECT_TRUE(log.lines.empty()) << log.lines[0];
        // A place errs by the last digit of a longitude, which is 3 nm.
        for (int n = 0; n <= 1200; n += 30)
            ASSERT_NEAR(
                getAltitude(terrain, -156 + n / 1200.0, 20 - n * 7 % 1201 / 1200.0).value_or(-1),
                hills(n, n * 7 % 1201), 1e-5)
                << name;
        EXPECT_EQ(terrain.getGrids()[0].highest, 799);
    }
}

TEST(TerrainRaster, APlaneIsReproducedWithItsNormalAlsoAcrossTheDateLineAndInSouthernOrder) {
    const RasterFolder folder;
    const auto plane = [](double u, double v) { return 100 + 0.5 * u - 0.25 * v; };
    // The middles of both lie beside the date line, on either side.
    RasterFile southern = RasterFile::degrees(41, 31, 179.979, 59.97, 0.001,
                                              [&](int i, int j) { return plane(i, 30 - j); });
    southern.transform[3] = 59.9695;
    southern.transform[5] = 0.001;
    for (const RasterFile& file :
         {RasterFile::degrees(41, 31, 179.981, 60, 0.001, plane), southern}) {
        const double west = file.transform[0] + 0.0005;
        const auto longitude = [&](double u) { return std::remainder(west + u * 0.001, 360); };
        ObjectTerrain terrain;
        ASSERT_TRUE(terrain.load(folder.writeRaster(file)));
        for (int n = 0; n < 500; n++) {
            const double u = std::fmod(n * 7.77, 40), v = std::fmod(n * 3.33, 30);
            double altitude;
            dvec3 normal;
            ASSERT_TRUE(
                terrain.getAltitudeByLonLat(longitude(u), 60 - v * 0.001, &altitude, &normal));
            EXPECT_NEAR(altitude, plane(u, v), 1e-8);
            // Across two small steps along the plane, in the world.
            const auto world = [&](double x, double y) {
                return EARTH.toWorld({west + x * 0.001, 60 - y * 0.001, plane(x, y)});
            };
            const dvec3 expected = normalize(cross(world(u, v + 0.01) - world(u, v - 0.01),
                                                   world(u + 0.01, v) - world(u - 0.01, v)));
            EXPECT_LT(length(normal - expected), 1e-7);
        }
        EXPECT_FALSE(getAltitude(terrain, longitude(-0.01), 59.99) ||
                     getAltitude(terrain, longitude(10), 60.00001) ||
                     getAltitude(terrain, NAN, 59.99));
    }
}

TEST(TerrainRaster, ScaleAndHolesAreHeededAndVerticalDatumsAreNot) {
    const RasterFolder folder;
    RasterFile file = RasterFile::degrees(9, 9, 10, 50, 0.01,
                                          [](int i, int j) { return i + j < 15 ? i + j : -999; });
    file.type = GDT_Int16;
    file.no_data = -999;
    file.scale = 0.5;
    file.offset = 100;
    for (const char* system : {"EPSG:4326+5773", "EPSG:4979", ""}) {
        file.system = system;
        const LogCapture log;
        ObjectTerrain terrain;
        ASSERT_TRUE(terrain.load(folder.writeRaster(file)));
        EXPECT_TRUE(log.lines.empty()) << system;
        EXPECT_NEAR(getAltitude(terrain, 10.03, 49.95).value(), 104, 1e-6);
        EXPECT_FALSE(getAltitude(terrain, 10.08, 49.92));
        EXPECT_EQ(terrain.getGrids()[0].lowest, 100);
        EXPECT_EQ(terrain.getGrids()[0].highest, 107);
    }
}

TEST(TerrainRaster, OtherGridsAreResampledWithOneMessage) {
    const RasterFolder folder;
    // A plane over a metric grid, one over a turned one, and one in an older datum (which lies
    // 300 m beside WGS84 here).
    const double c = 3e-4 * std::cos(0.3), s = 3e-4 * std::sin(0.3);
    const auto plane = [](double u, double v) { return 0.5 * u + 0.25 * v; };
    const RasterFile files[] = {
        {300, 280, {280000, 30, 0, 2190000, 0, -30}, plane, "EPSG:32605"},
        {300, 280, {-156, c, s, 20, s, -c}, plane, "EPSG:4326"},
        {300, 280, {-156, 3e-4, 0, 20, 0, -3e-4}, plane, "EPSG:4135"},
    };
    for (const RasterFile& file : files) {
        SCOPED_TRACE(file.system);
        const jString path = folder.writeRaster(file);
        ObjectTerrain terrain;
        const LogCapture log;
        ASSERT_TRUE(terrain.load(path));
        ASSERT_EQ(log.lines.size(), 1u);

        GDALDatasetH dataset = GDALOpen(path.c_str(), GA_ReadOnly);
        std::string to = "DST_SRS=EPSG:4326";
        char* options[] = {to.data(), nullptr};
        void* toWgs = GDALCreateGenImgProjTransformer2(dataset, nullptr, options);
        for (int n = 0; n < 200; n++) {
            const double u = 5 + std::fmod(n * 12.34, 290), v = 5 + std::fmod(n * 5.67, 270);
            double x = u + 0.5, y = v + 0.5, z = 0;
            int good = 0;
            ASSERT_TRUE(GDALGenImgProjTransform(toWgs, false, 1, &x, &y, &z, &good) && good);
            ASSERT_NEAR(getAltitude(terrain, x, y).value_or(-1), plane(u, v), 0.02);
        }
        GDALDestroyGenImgProjTransformer(toWgs);
        GDALClose(dataset);
    }
}

TEST(TerrainRaster, WhatCannotBeReadGivesOneMessageAndNoGround) {
    const RasterFolder folder;
    const RasterFile good = RasterFile::degrees(64, 64, 10, 50, 0.01, [](int, int) { return 5; });
    RasterFile metric = good, line = good;
    metric.system = "";
    metric.transform[0] = 500000;
    line.rows = 1;
    std::filesystem::resize_file(folder.writeRaster(good, "cut.tif").c_str(), 9000);
    const jString paths[] = {folder.file("missing.tif"), folder.file("cut.tif"),
                             folder.write("text.tif", "heights: none\n"),
                             folder.writeRaster(metric, "nowhere.tif"),
                             folder.writeRaster(line, "line.tif")};
    for (const jString& path : paths) {
        SCOPED_TRACE(path.c_str());
        ObjectTerrain terrain;
        ASSERT_TRUE(terrain.load(folder.writeRaster(good)));
        const LogCapture log;
        EXPECT_FALSE(terrain.load(path));
        ASSERT_EQ(log.lines.size(), 1u);
        EXPECT_NE(log.lines[0].find(path.c_str()), std::string::npos);
        EXPECT_FALSE(getAltitude(terrain, 10.1, 49.9));
    }
}

/// A port of this machine that counts who comes.
struct Door {
    Door() {
        socklen_t size = sizeof address;
        listener = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address);
        listen(listener, 10);
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
    }
    ~Door() { close(listener); }
    bool knocked() const { return accept(listener, nullptr, nullptr) >= 0; }
    std::string url() const {
        return "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/heights.tif";
    }
    int listener = -1;
    sockaddr_in address{};
};

TEST(TerrainRaster, OnlyFilesAndArchivesOfThisMachineAreRead) {
    const RasterFolder folder;
    const RasterFile good = RasterFile::degrees(64, 64, 10, 50, 0.01, [](int, int) { return 5; });
    const jString file = folder.writeRaster(good), zip = folder.file("heights.zip");
    const std::string inside = "/vsizip/" + std::string(zip.c_str()) + "/heights.tif";
    ASSERT_EQ(CPLCopyFile(inside.c_str(), file.c_str()), 0);
    ObjectTerrain terrain;
    EXPECT_TRUE(terrain.load(inside));

    const Door door;
    const jString pipe = folder.file("pipe.tif");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto writeMosaic = [&](const char* name, const std::string& source) {
        return folder.write(name,
                            "<VRTDataset rasterXSize=\"64\" rasterYSize=\"64\"><SRS>EPSG:4326</SRS>"
                            "<GeoTransform>9.995, 0.01, 0, 50.005, 0, -0.01</GeoTransform>"
                            "<VRTRasterBand dataType=\"Float32\" band=\"1\">" +
                                source + "</VRTRasterBand></VRTDataset>");
    };
    const auto nameSource = [](const std::string& path, int relative) {
        return "<SimpleSource><SourceFilename relativeToVRT=\"" + std::to_string(relative) + "\">" +
               path +
               "</SourceFilename><SourceBand>1</SourceBand><SrcRect xOff=\"0\" yOff=\"0\" "
               "xSize=\"64\" ySize=\"64\"/><DstRect xOff=\"0\" yOff=\"0\" xSize=\"64\" "
               "ySize=\"64\"/></SimpleSource>";
    };
    writeMosaic("near.vrt", nameSource("heights.tif", 1));
    EXPECT_TRUE(terrain.load(writeMosaic("nested.vrt", nameSource("near.vrt", 1))));
    EXPECT_EQ(terrain.getGrids()[0].highest, 5);
    const jString list = writeMosaic("far.vrt", nameSource("/vsicurl/" + door.url(), 0));
    const jString nested = writeMosaic("farther.vrt", nameSource("far.vrt", 1));
    const jString round = writeMosaic("round.vrt", nameSource("round.vrt", 1));
    const jString service = writeMosaic("service.vrt", nameSource("service.xml", 1));
    folder.write("service.xml", "<GDAL_WMS><Service name=\"TMS\"><ServerUrl>" + door.url() +
                                    "</ServerUrl></Service></GDAL_WMS>");
    for (const jString& path :
         {jString("/vsicurl/" + door.url()), jString("/vsizip//vsicurl/" + door.url()),
          jString(door.url()), list, nested, round, service, pipe}) {
        const LogCapture log;
        EXPECT_FALSE(terrain.load(path)) << path.c_str();
        EXPECT_EQ(log.lines.size(), 1u);
        EXPECT_FALSE(door.knocked()) << path.c_str();
    }
}

TEST(TerrainRaster, ANodesSourcesAreTakenAndWhatIsWrongIsToldWithItsLine) {
    const RasterFolder folder;
    folder.write("a.world", "nodes:\n"
                            "- {name: all, type: terrain, rasters: [a.tif, b.tif],\n"
                            "   heights: ellipsoid, geoid: g.gtx, imagery: c.tif, built: d,\n"
                            "   land_cover: {raster: l.tif, classes: {10: grass, 8x: rock}}}\n"
                            "- {name: wrong, type: terrain, rasters: [[e.tif]],\n"
                            "   raster: f.tif,\n"
                            "   heights: egm96,\n"
                            "   geoid: h.gtx, land_cover: i.tif}\n");
    World world;
    LogCapture log;
    ASSERT_TRUE(world.load(folder.file("a.world")));
    const auto* all = dynamic_cast<const ObjectTerrain*>(world.getNodeByName("all"));
    const TerrainSources& sources = all->getSources();
    EXPECT_EQ(sources.rasters, (std::vector<jString>{"a.tif", "b.tif"}));
    EXPECT_EQ(sources.heights, TerrainSources::Heights::ellipsoid);
    EXPECT_EQ(sources.geoid, jString("g.gtx"));
    EXPECT_EQ(sources.imagery, std::vector<jString>{"c.tif"});
    EXPECT_EQ(sources.built, jString("d"));
    ASSERT_EQ(sources.land_cover.classes.size(), 1u);
    EXPECT_EQ(sources.land_cover.classes[0].value, 10);
    std::erase_if(log.lines, [](const std::string& line) {
        return line.find("a.world:") == std::string::npos; // the rasters are missing
    });
    const std::vector<std::string> expected = {
        "a.world:4: classes of a land cover are whole numbers, not \"8x\"",
        "a.world:6: a terrain has either \"rasters\" or a \"raster\"",
        "a.world:7: \"heights\" are above mean_sea_level or the ellipsoid, not \"egm96\"",
        "a.world:8: a map is needed in \"land_cover\"",
        "a.world:8: not used without \"heights: ellipsoid\": \"geoid\""};
    ASSERT_EQ(log.lines.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); i++)
        EXPECT_NE(log.lines[i].find(expected[i]), std::string::npos) << log.lines[i];
}

TEST(TerrainRaster, ANodeOfAWorldIsFoundByItsBounds) {
    const RasterFolder folder;
    const auto height = [](int i, int j) { return 90.0 * i + j; };
    const jString raster = folder.writeRaster(RasterFile::degrees(33, 25, 170, 60, 0.25, height));
    folder.write("a.world", std::string("nodes:\n  - {name: terrain, type: terrain, raster: ") +
                                raster.c_str() + "}\n  - {name: bare, type: terrain}\n");
    World world;
    const LogCapture log;
    ASSERT_TRUE(world.load(folder.file("a.world")));
    ASSERT_EQ(log.lines.size(), 1u); // "bare" has no raster
    EXPECT_NE(log.lines[0].find("a.world:3"), std::string::npos);
    const BoundSphere& bounds = world.getNodeByName("terrain")->getBounds();
    for (int n = 0; n < 33 * 25; n++) {
        const int i = n % 33, j = n / 33;
        const dvec3 place = EARTH.toWorld({170 + i * 0.25, 60 - j * 0.25, height(i, j)});
        EXPECT_LE(length(place - bounds.center), bounds.radius);
    }
    EXPECT_LT(bounds.radius, 500e3); // the raster's diagonal is 860 km
}

} // namespace
