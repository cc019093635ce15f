// SPDX-License-Identifier: MIT

// Built worlds: the folder that a builder fills, and the ground that is read from it.

#include "BuiltGround.h"
#include "GroundEyes.h"
#include "HeightField.h"
#include "HeightFile.h"
#include "RasterFiles.h"
#include "ig/math/EllipsoidModel.h"
#include "plugins/terrain/Imagery.h"
#include "plugins/terrain/LandCover.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "plugins/terrain/WorldBuilder.h"
#include "testkit/LogCapture.h"

#include <bit>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

using namespace ig;

namespace {

using Result = WorldBuilder::Result;
constexpr int COLUMNS = 1500, ROWS = 1301;

/// Hills, the sea, and a patch without data.
RasterFile makeRaster() {
    return RasterFile::degrees(COLUMNS, ROWS, 10, 44, 1e-4, [](int column, int row) {
        const bool is_hole = std::abs(column - 700) < 9 && std::abs(row - 300) < 7;
        return is_hole ? -32767.0 : 90 * std::sin(column * 0.013) * std::cos(row * 0.0171) + 30;
    });
}

struct BuiltWorldTest : testing::Test {
    RasterFolder folder;
    TerrainSources sources;
    std::string failure;

    BuiltWorldTest() {
        sources.rasters = {folder.writeRaster(makeRaster())};
        sources.built = folder.file("built");
    }
    /// `most`: steps after which it is told to stop; −1: none.
    Result build(int most = -1) {
        failure.clear();
        int made = -1; // the beginning is told too
        return WorldBuilder(sources).build([&](const char*, int, int) { return ++made != most; },
                                           failure);
    }
    /// What is said when the ground is loaded.
    std::string tellLoad() const {
        const LogCapture log;
        ObjectTerrain().load(sources);
        std::string said;
        for (const std::string& line : log.lines)
            said += line + '\n';
        return said;
    }
    /// A picture and a land cover in a projection, over a part of the ground.
    void addLooks() {
        const auto write = [&](const char* name, int edge, double pixel, auto value) {
            RasterFile file{edge, edge, {581000, pixel, 0, 4871000, 0, -pixel}, value};
            file.system = "EPSG:32632";
            file.type = GDT_Byte;
            file.no_data = 0;
            return folder.writeRaster(file, name);
        };
        sources.imagery = {write("picture.tif", 800, 10, [](int i, int j) {
            return 120 + 100 * std::sin(i * 0.1) * std::cos(j * 0.07);
        })};
        sources.land_cover.raster =
            write("cover.tif", 300, 30, [](int i, int j) { return (i / 10 + j / 7) % 3 + 1; });
        sources.land_cover.classes = {{1, "forest"}, {2, "built_up"}, {3, "water"}};
    }
    /// All files of the built world by their paths.
    std::map<std::string, std::string> readAll() const {
        std::map<std::string, std::string> all;
        const std::filesystem::path built = folder.path() / "built";
        for (const auto& entry : std::filesystem::recursive_directory_iterator(built))
            if (entry.is_regular_file()) {
                const std::string name = entry.path().lexically_relative(built).string();
                all[name] = read(name);
            }
        return all;
    }
    std::string read(const std::string& name) const {
        std::ostringstream read;
        read << std::ifstream(folder.path() / "built" / name, std::ios::binary).rdbuf();
        return read.str();
    }
};

} // namespace

TEST_F(BuiltWorldTest, IsTheSameGround) {
    ASSERT_EQ(build(), Result::built) << failure;
    EXPECT_EQ(build(), Result::up_to_date);
    ObjectTerrain built, loaded;
    ASSERT_TRUE(built.load(sources));
    ASSERT_TRUE(loaded.load(sources.rasters.front()));
    const TerrainGrid &a = built.getGrids().front(), &b = loaded.getGrids().front();
    ASSERT_EQ(a.columns, COLUMNS);
    EXPECT_TRUE(a.has_holes);
    for (int row = 0; row < ROWS; row++)
        for (int column = 0; column < COLUMNS; column++)
            ASSERT_EQ(std::bit_cast<std::uint32_t>(a.getHeight(column, row)),
                      std::bit_cast<std::uint32_t>(b.getHeight(column, row)))
                << column << ' ' << row;
    for (int step = 2; step <= 1024; step *= 2)
        for (int row = 0; row < ROWS; row += step)
            for (int column = 0; column < COLUMNS; column += step)
                ASSERT_EQ(std::bit_cast<std::uint32_t>(a.getHeight(column, row, step)),
                          std::bit_cast<std::uint32_t>(b.getHeight(column, row)))
                    << step << ' ' << column << ' ' << row;
    std::mt19937 engine(3);
    std::uniform_real_distribution<> longitude(9.99, 10.16), latitude(43.86, 44.01);
    const EllipsoidModel earth;
    int met = 0;
    for (int i = 0; i < 3000; i++) {
        const dvec3 from = earth.toWorld({longitude(engine), latitude(engine), 200});
        const dvec3 to = earth.toWorld({longitude(engine), latitude(engine), -70});
        dvec3 hit_a, hit_b;
        const bool meets = built.getIntersection(0, from, to, &hit_a);
        ASSERT_EQ(meets, loaded.getIntersection(0, from, to, &hit_b));
        ASSERT_EQ(hit_a, hit_b);
        met += meets;
    }
    EXPECT_GT(met, 1000);
}

/// Whatever a run had finished when it was ended, the next one makes the same files.
TEST_F(BuiltWorldTest, IsTakenUpAgain) {
    ASSERT_EQ(build(), Result::built) << failure;
    const std::string whole = read("heights_0.f32");
    ASSERT_GT(whole.size(), 4u * COLUMNS * ROWS);
    const std::filesystem::path built = folder.path() / "built";
    const auto part = built / "heights_0.part.f32", notes = built / "building.txt";
    for (const bool loses_part : {false, true}) {
        std::filesystem::remove_all(built);
        ASSERT_EQ(build(3), Result::stopped);
        EXPECT_NE(tellLoad().find("has not come to its end"), std::string::npos) << tellLoad();
        // The end came in the middle of a step, and of its note.
        std::filesystem::resize_file(part, (std::filesystem::file_size(part) + 4095) / 4096 * 4096);
        std::ofstream(part, std::ios::app) << "half a step";
        std::ofstream(notes, std::ios::app) << "heights 3";
        if (loses_part) std::filesystem::remove(part);
        int made = 0, of = 0;
        const auto count = [&](const char*, int, int steps) {
            of = steps;
            return ++made > 0;
        };
        EXPECT_EQ(WorldBuilder(sources).build(count, failure), Result::built) << failure;
        EXPECT_EQ(made - 1, loses_part ? of : of - 3);
        EXPECT_TRUE(read("heights_0.f32") == whole);
        EXPECT_FALSE(std::filesystem::exists(notes));
    }
}

/// Also when each run does but a little, and ends in the middle of something.
TEST_F(BuiltWorldTest, LooksAreTakenUpAgainAndAreThoseOfTheSources) {
    addLooks();
    ASSERT_EQ(build(), Result::built) << failure;
    const auto whole = readAll();
    ASSERT_GT(whole.size(), 12u); // tiles
    ObjectTerrain built, loaded;
    ASSERT_TRUE(built.load(sources));
    TerrainSources unbuilt = sources;
    unbuilt.built = {};
    ASSERT_TRUE(loaded.load(unbuilt));
    ASSERT_TRUE(built.getLandCover() && built.getImagery());
    std::mt19937 engine(3);
    std::uniform_real_distribution<> longitude(9.99, 10.16), latitude(43.86, 44.01);
    int classes[3] = {};
    for (int i = 0; i < 3000; i++) {
        const double x = longitude(engine), y = latitude(engine);
        const LandClass land = loaded.getLandCover()->getClass(x, y);
        ASSERT_EQ(built.getLandCover()->getClass(x, y), land) << x << ' ' << y;
        classes[land == LandClass::forest ? 0 : land == LandClass::water ? 1 : 2]++;
    }
    EXPECT_GT(std::min({classes[0], classes[1], classes[2]}), 100);
    std::vector<std::uint8_t> a, b;
    int tiles = 0;
    for (int level = 0; level < 5; level++)
        for (int n = 0; n < 1 << 2 * level; n++) {
            const ImageTile tile{level, n >> level, n % (1 << level)};
            ASSERT_EQ(built.getImagery()->has(tile), loaded.getImagery()->has(tile));
            if (!built.getImagery()->has(tile)) continue;
            ASSERT_TRUE(built.getImagery()->read(tile, a) && loaded.getImagery()->read(tile, b));
            ASSERT_TRUE(a == b) << level << ' ' << n;
            tiles++;
        }
    EXPECT_GT(tiles, 8);

    std::filesystem::remove_all(folder.path() / "built");
    Result result = Result::stopped;
    for (int run = 0; run < 15 && result == Result::stopped; run++) {
        result = build(5); // a few steps, since each stage's beginning is told too
        const auto part = folder.path() / "built/land_cover.part.u8";
        if (std::filesystem::exists(part)) std::ofstream(part, std::ios::app) << "half a step";
    }
    ASSERT_EQ(result, Result::built) << failure;
    EXPECT_TRUE(readAll() == whole);
    for (const char* source : {"picture.tif", "cover.tif"}) // given away without them
        std::filesystem::remove(folder.path() / source);
    EXPECT_EQ(tellLoad(), "");
    std::filesystem::resize_file(folder.path() / "built/land_cover.u8", 5000);
    std::filesystem::remove(folder.path() / "built/imagery/index");
    EXPECT_NE(tellLoad().find("no land cover: "), std::string::npos) << tellLoad();
    EXPECT_NE(tellLoad().find("no imagery: "), std::string::npos) << tellLoad();
}

/// A page a row. What is asked is 512 rows from other ends: as much may be mapped at once.
TEST_F(BuiltWorldTest, StaysInMemoryNearEyesAlone) {
    constexpr int WIDTH = 1024, ALL_ROWS = 8000;
    sources.rasters = {folder.writeRaster(
        RasterFile::degrees(WIDTH, ALL_ROWS, 10, 44, 1e-4, [](int i, int j) { return i + j; }))};
    ASSERT_EQ(build(), Result::built) << failure;
    const HeightStack ground(openBuiltGround(sources, failure));
    const TerrainGrid& grid = ground.getGrids().front();
    const auto read = [&] { return std::vector(grid.heights, grid.heights + WIDTH * ALL_ROWS); };
    const auto is_there = [&](int row) { // mapped: what isn't may still be known to the system
        std::ifstream pages;
        pages.rdbuf()->pubsetbuf(nullptr, 0); // whole entries alone can be read
        pages.open("/proc/self/pagemap", std::ios::binary);
        std::uint64_t entry = 0;
        pages.seekg(static_cast<std::streamoff>(
            reinterpret_cast<std::uintptr_t>(grid.heights + WIDTH * row) / 4096 * sizeof entry));
        pages.read(reinterpret_cast<char*>(&entry), sizeof entry);
        return (entry >> 63) != 0;
    };
    const auto look = [](GroundEyes& eyes, int row) { eyes.lookFrom(10.05, 44 - row * 1e-4); };
    const std::vector<float> before = read();
    GroundEyes eyes; // of two views in turn: both stay
    for (const int row : {6000, 1500, 6002, 1500})
        look(eyes, row);
    eyes.release(ground);
    for (const int row : {1100, 1500, 1900, 5600, 6000, 6400})
        EXPECT_TRUE(is_there(row)) << row;
    for (const int row : {3750, 7900})
        EXPECT_FALSE(is_there(row)) << row;
    EXPECT_TRUE(read() == before);
    for (int period = 0; period < 8; period++) { // one of them ends
        look(eyes, 1500);
        eyes.endPeriod();
    }
    look(eyes, 1500);
    eyes.release(ground);
    EXPECT_TRUE(is_there(1500));
    EXPECT_FALSE(is_there(6000));

    GroundEyes flying; // north, to 2,000 rows from here in ten seconds
    for (int row = 4000; row >= 3950; row -= 2)
        look(flying, row);
    GroundEyes().release(ground);
    flying.fetch(ground);
    for (const int row : {1650, 1950, 2250, 3800, 3950, 4100})
        EXPECT_TRUE(is_there(row)) << row;
    EXPECT_FALSE(is_there(2950));
    GroundEyes jumping; // leads nowhere
    look(jumping, 6000);
    jumping.endPeriod();
    look(jumping, 5940);
    GroundEyes().release(ground);
    jumping.fetch(ground);
    EXPECT_TRUE(is_there(5940));
    EXPECT_FALSE(is_there(3540));
    EXPECT_TRUE(read() == before);
}

TEST_F(BuiltWorldTest, SaysWhenItsSourcesHaveChanged) {
    ASSERT_EQ(build(), Result::built);
    EXPECT_EQ(tellLoad(), "");
    const TerrainSources before = sources;
    sources.heights = TerrainSources::Heights::ellipsoid;
    EXPECT_NE(tellLoad().find("names other sources"), std::string::npos) << tellLoad();
    sources = before;
    const std::string whole = read("heights_0.f32");
    RasterFile other = makeRaster();
    other.height = [](int column, int row) { return column + row; };
    folder.writeRaster(other);
    EXPECT_NE(tellLoad().find("heights.tif\" has changed"), std::string::npos) << tellLoad();
    ASSERT_EQ(build(), Result::built) << failure;
    EXPECT_EQ(tellLoad(), "");
    EXPECT_FALSE(read("heights_0.f32") == whole);
    sources.heights = TerrainSources::Heights::ellipsoid;
    EXPECT_EQ(build(3), Result::stopped); // what was there goes before
    EXPECT_NE(tellLoad().find("has not come to its end"), std::string::npos) << tellLoad();
    sources.heights = before.heights;
    ASSERT_EQ(build(), Result::built) << failure;
    std::filesystem::remove(folder.path() / "heights.tif"); // given away without it
    EXPECT_EQ(tellLoad(), "");
}

TEST_F(BuiltWorldTest, WhatIsNoneIsRefused) {
    EXPECT_NE(tellLoad().find("no built world"), std::string::npos) << tellLoad();
    ASSERT_EQ(build(), Result::built);
    const std::filesystem::path heights = folder.file("built/heights_0.f32").c_str();
    const std::string whole = read("heights_0.f32");
    const auto put = [&](std::string bytes) {
        std::ofstream(heights, std::ios::binary) << bytes;
        return tellLoad();
    };
    const auto changed = [&](std::size_t at) {
        std::string bytes = whole;
        bytes[at] = static_cast<char>(bytes[at] ^ 1);
        return bytes;
    };
    const struct {
        std::string bytes;
        const char* said;
    } cases[] = {{whole.substr(0, whole.size() - 4096), "in place of"},
                 {whole.substr(0, 20), "no heights"},
                 {changed(offsetof(HeightHeader, purpose)), "no heights"},
                 {changed(offsetof(HeightHeader, version)), "another version"},
                 {changed(offsetof(HeightHeader, byte_order)), "byte order"},
                 {changed(offsetof(HeightHeader, rows)), "in place of"},
                 {changed(offsetof(HeightHeader, columns) + 3), "damaged"}};
    for (const auto& c : cases)
        EXPECT_NE(put(c.bytes).find(c.said), std::string::npos) << c.said << ": " << tellLoad();
    EXPECT_EQ(put(whole), "");
    // A folder of other things is not built into, nor one that somebody builds into.
    sources.built = folder.path().string();
    EXPECT_EQ(build(), Result::failed);
    EXPECT_NE(failure.find("other things"), std::string::npos) << failure;
    sources.built = folder.file("other");
    std::string second;
    WorldBuilder(sources).build(
        [&](const char*, int, int) {
            EXPECT_EQ(WorldBuilder(sources).build([](auto...) { return true; }, second),
                      Result::failed);
            return false;
        },
        failure);
    EXPECT_NE(second.find("another process"), std::string::npos) << second;
}
