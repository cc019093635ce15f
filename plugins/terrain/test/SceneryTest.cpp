// SPDX-License-Identifier: MIT
#include "plugins/terrain/ObjectScenery.h"

#include "RasterFiles.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/package/Package.h"
#include "ig/package/PackageManager.h"
#include "ig/scene/World.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "testkit/LogCapture.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <set>

namespace {

using namespace ig;

const EllipsoidModel EARTH;

/// A column, its foot at the origin.
std::shared_ptr<const Mesh> makeColumn(float half, float height) {
    Mesh::Surface s;
    for (int i = 0; i < 8; i++)
        s.positions.push_back({i & 1 ? half : -half, i & 2 ? half : -half, i & 4 ? height : 0});
    s.normals.assign(8, {0, 0, 1});
    s.indices = {4, 5, 7, 4, 7, 6, 0, 1, 5, 0, 5, 4, 1, 3, 7, 1, 7, 5,
                 3, 2, 6, 3, 6, 7, 2, 0, 4, 2, 4, 6, 0, 3, 1, 0, 2, 3};
    return std::make_shared<Mesh>(std::vector<Mesh::Surface>{s});
}

/// Ground of a kilometre around a place, which rises from 10 m below the sea in the west to 50 m;
/// its northern tenth is a cliff. Forest in the south, grass in the north.
class Scenery : public testing::Test {
public:
    static constexpr double LATITUDE = 60, STEP = 0.0005;

    void makeGround(double longitude) {
        m_longitude = longitude;
        terrain = std::make_unique<ObjectTerrain>();
        TerrainSources sources;
        sources.rasters = {folder.writeRaster(RasterFile::degrees(
            41, 21, longitude - 20 * STEP, LATITUDE + 10 * STEP, STEP,
            [](int i, int j) { return i * 1.5 - 10 + (j < 3 ? (3 - j) * 100 : 0); }))};
        RasterFile cover =
            RasterFile::degrees(80, 40, longitude - 19.75 * STEP, LATITUDE + 9.75 * STEP, STEP / 2,
                                [](int, int j) { return j < 20 ? 30 : 10; });
        cover.type = GDT_Byte;
        cover.no_data = 0;
        sources.land_cover.raster = folder.writeRaster(cover, "cover.tif");
        ASSERT_TRUE(terrain->load(sources));
    }
    ObjectScenery::Plan getPlan() const {
        ObjectScenery::Plan plan;
        plan.kinds = {{"tree", makeColumn(0.3f, 5), {}, {4, 12}},
                      {"bush", makeColumn(1, 1), {}, {1, 1.9f}},
                      {"house", makeColumn(4, 6), {}, {}, false}};
        plan.stands = {{LandClass::forest, 0, 120}, {LandClass::grass, 1, 200}};
        return plan;
    }
    /// Belongs to the terrain.
    ObjectScenery& add(ObjectScenery::Plan plan) {
        auto* scenery = new ObjectScenery(std::move(plan));
        terrain->addChild(scenery);
        return *scenery;
    }
    std::vector<SceneryCellId> getCells() const {
        std::vector<SceneryCellId> cells;
        SceneryLattice::visitAround(m_longitude, LATITUDE, 600,
                                    [&](SceneryCellId id) { cells.push_back(id); });
        return cells;
    }
    /// Of all things in these cells: kind, and geodetic place of the foot.
    struct Found {
        int kind;
        dvec3 place, world;
        float scale;
    };
    static std::vector<Found> list(const ObjectScenery& scenery,
                                   const std::vector<SceneryCellId>& cells) {
        std::vector<Found> found;
        for (const SceneryCellId id : cells) {
            const auto cell = scenery.getCell(id);
            for (const SceneryThing& thing : cell->things) {
                const dvec3 world = cell->frame * dvec3(thing.place);
                found.push_back({thing.kind, EARTH.toWGS(world), world, thing.scale});
            }
        }
        return found;
    }
    double getDegree() const { return EARTH.getDegreeLengths(LATITUDE).x; }

    const RasterFolder folder;
    std::unique_ptr<ObjectTerrain> terrain;
    double m_longitude = 0;
};

TEST_F(Scenery, StandsTheSameWhoeverLooksFirst) {
    makeGround(180); // across the date line
    const auto cells = getCells();
    EXPECT_EQ(std::set(cells.begin(), cells.end()).size(), cells.size());
    ObjectScenery& first = add(getPlan());
    const auto expected = list(first, cells);
    ASSERT_GT(expected.size(), 1000u);
    ObjectScenery& second = add(getPlan());
    list(second, {cells.rbegin(), cells.rend()});
    const auto found = list(second, cells);
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); i++)
        ASSERT_TRUE(found[i].world == expected[i].world && found[i].scale == expected[i].scale)
            << i;
    auto other = getPlan();
    other.seed = 1;
    const auto others = list(add(other), cells);
    EXPECT_TRUE(others.size() != expected.size() || others[0].world != expected[0].world);
}

TEST_F(Scenery, GrowsWhereItMayAsDenseAsAskedAndStandsOnTheGround) {
    makeGround(10);
    ObjectScenery::Plan plan = getPlan();
    const dvec2 from{10.002, 59.999}, to{10.006, 59.997};
    plan.clearings = {{from, to, 20}};
    plan.sites = {{{10.004, 59.9965}, 30, 2}};
    const auto found = list(add(plan), getCells());
    int trees = 0, houses = 0;
    const auto toMetres = [&](const dvec2& p) {
        return dvec2{p.x * getDegree(), p.y * EARTH.getDegreeLengths(LATITUDE).y};
    };
    const dvec2 a = toMetres(from), b = toMetres(to), house = toMetres(plan.sites[0].place);
    for (const Found& thing : found) {
        double altitude = 0;
        dvec3 normal;
        ASSERT_TRUE(terrain->getAltitudeByLonLat(thing.place.x, thing.place.y, &altitude, &normal));
        EXPECT_NEAR(thing.place.z, altitude, 1e-4);
        if (thing.kind == 2) houses++;
        if (thing.kind == 2) continue;
        EXPECT_GE(altitude, 3 - 1e-4);
        EXPECT_GT(dot(normal, EARTH.getUp(thing.world)), std::cos(std::atan(0.6)) - 1e-9);
        EXPECT_EQ(thing.kind, thing.place.y > LATITUDE ? 1 : 0) << thing.place.y;
        const dvec2 p = toMetres({thing.place.x, thing.place.y});
        const dvec2 along{b.x - a.x, b.y - a.y}, off{p.x - a.x, p.y - a.y};
        const double length = std::hypot(along.x, along.y);
        const double s = (off.x * along.x + off.y * along.y) / length;
        if (s > 0 && s < length) {
            EXPECT_GT(std::abs(off.x * along.y - off.y * along.x) / length, 20 - 0.1);
        }
        EXPECT_GT(std::hypot(p.x - house.x, p.y - house.y), 4.0);
        trees += thing.kind == 0;
    }
    EXPECT_EQ(houses, 1);
    // Forest from 3 m upwards: 31.3 of 40 steps wide, 10 high, without the clearing's 287 m x 40 m.
    const double hectares =
        (31.3 * STEP * getDegree() * 10 * STEP * EARTH.getDegreeLengths(LATITUDE).y - 300 * 40) /
        1e4;
    EXPECT_NEAR(trees, 120 * hectares, 0.1 * 120 * hectares);
}

TEST_F(Scenery, SegmentsMeetTreesAndHousesButNoBushes) {
    makeGround(10);
    ObjectScenery& scenery = add(getPlan());
    int met = 0;
    for (const Found& thing : list(scenery, getCells())) {
        const SceneryKind& kind = scenery.getKinds()[thing.kind];
        const double height = kind.getModelHeight() * thing.scale;
        const dvec3 up = EARTH.getUp(thing.world);
        dvec3 hit;
        const bool down =
            scenery.getIntersection(0, thing.world + up * 500, thing.world - up * 99500, &hit);
        ASSERT_EQ(down, height >= 2) << kind.name.c_str() << height;
        if (!down) continue;
        met++;
        EXPECT_NEAR(dot(hit - thing.world, up), height, 1e-3);
        // A level one, through all that stands in the way, at half the height.
        const dvec3 east = normalize(cross(dvec3(0, 0, 1), up));
        const dvec3 middle = thing.world + up * (height / 2);
        ASSERT_TRUE(scenery.getIntersection(0, middle - east * 300, middle, &hit));
        EXPECT_LE(dot(hit - middle, east), -0.3 * thing.scale * 0.99);
    }
    EXPECT_GT(met, 1000);
    // The nearest of all counts, whichever cells are looked at on the way.
    const double south = LATITUDE - 0.003;
    const dvec3 a = EARTH.toWorld({10 - 0.005, south, 8}),
                b = EARTH.toWorld({10.008, south + 0.001, 46});
    dvec3 forth, back;
    ASSERT_TRUE(scenery.getIntersection(0, a, b, &forth));
    ASSERT_TRUE(scenery.getIntersection(0, b, a, &back));
    for (int i = 0; i < 20; i++) { // nothing before the first
        const dvec3 end = a + (forth - a) * 0.99999;
        ASSERT_FALSE(scenery.getIntersection(0, a + (end - a) * (i / 20.0), end, nullptr));
    }
    EXPECT_GT(length(back - a), length(forth - a));
}

TEST_F(Scenery, AWorldFileTellsItAndNamesWhatItGotWrong) {
    makeGround(10);
    const auto write = [this](const char* name, const std::string& text) {
        const std::string path = folder.file(name).c_str();
        std::ofstream(path) << text;
        return path;
    };
    const std::string model = write("post.obj", "v -1 -1 3\nv 1 -1 3\nv 0 1 3\nf 1 2 3\n");
    const std::string places =
        write("places.yaml", "clearings:\n  - {from: [10, 60, 0], width: 30}\n"
                             "sites:\n  - {kind: hut, at: [10.004, 60.001, 90]}\n"
                             "  - {kind: hat, at: [10.004, 60.001, 90]}\n");
    const std::string world =
        write("one.world", std::string("nodes:\n  - type: terrain\n    raster: ") +
                               folder.file("heights.tif").c_str() +
                               "\n    children:\n      - type: scenery\n        places: " + places +
                               "\n        kinds:\n          - {name: hut, mesh: " + model +
                               ", tree: false}\n        stands:\n"
                               "          - {land: woods, kind: hut}\n"
                               "          - {land: forest, kind: hut, density: -1}\n");
    const LogCapture log;
    World scene;
    ASSERT_TRUE(scene.load(world.c_str()));
    ASSERT_EQ(log.lines.size(), 3u);
    EXPECT_NE(log.lines[0].find("one.world:10: unknown class of land \"woods\""), std::string::npos)
        << log.lines[0];
    EXPECT_NE(log.lines[1].find("one.world:11: a number above 0"), std::string::npos)
        << log.lines[1];
    EXPECT_NE(log.lines[2].find("places.yaml:5: "), std::string::npos) << log.lines[2];
    EXPECT_NE(log.lines[2].find("nearest is \"hut\""), std::string::npos) << log.lines[2];
    const dvec3 at{10.004, 60.001, 100}, below{10.004, 60.001, 0};
    dvec3 hit;
    ASSERT_TRUE(scene.meet(EARTH.toWorld(at), EARTH.toWorld(below), false, &hit));
    const auto& ground = static_cast<const ObjectTerrain&>(*scene.getNodes()[0]);
    double altitude = 0;
    ASSERT_TRUE(ground.getAltitudeByLonLat(at.x, at.y, &altitude, nullptr));
    EXPECT_NEAR(EARTH.getAltitude(hit), altitude + 3, 1e-3);
    scene.clear();
    PackageManager::release();
    Mesh::release();
}

} // namespace
