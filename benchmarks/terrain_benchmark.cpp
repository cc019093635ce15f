// SPDX-License-Identifier: MIT

// The terrain's queries on the demo world's raster, run from the folder that holds data/.

#include "ig/math/EllipsoidModel.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "ratio.h"

#include <cstdlib>
#include <random>
#include <vector>

namespace {

using namespace ig;
const EllipsoidModel EARTH;

struct Segment {
    dvec3 from, to;
};

/// The demo world's ground and places over it, the same in every run.
struct Scene {
    Scene() {
        if (!terrain.load("data/PELMAR_PROJECT/terrain/coast.tif")) std::exit(1);
        const TerrainGrid& grid = terrain.getGrids()[0];
        std::mt19937 engine(1);
        std::uniform_real_distribution<> unit(0, 1);
        const auto place = [&](double altitude) {
            return EARTH.toWorld(
                {grid.west + unit(engine) * (grid.columns - 1) * grid.spacing_longitude,
                 grid.north - unit(engine) * (grid.rows - 1) * grid.spacing_latitude, altitude});
        };
        for (int i = 0; i < 1 << 16; i++) {
            const dvec3 from = place(400 + 600 * unit(engine));
            down.push_back({from, from - EARTH.getUp(from) * 100000.0});
            slanted.push_back({from, place(-100)});
            grazing.push_back({place(100), place(100)});
        }
    }
    ObjectTerrain terrain;
    std::vector<Segment> down, slanted, grazing;
};

const Scene& getScene() {
    static const Scene scene;
    return scene;
}

double interpolate(const TerrainGrid& grid, const dvec3& geodetic) {
    const double u = (geodetic.x - grid.west) / grid.spacing_longitude;
    const double v = (grid.north - geodetic.y) / grid.spacing_latitude;
    const int i = static_cast<int>(u), j = static_cast<int>(v);
    const double fu = u - i, fv = v - j;
    return (grid.getHeight(i, j) * (1 - fu) + grid.getHeight(i + 1, j) * fu) * (1 - fv) +
           (grid.getHeight(i, j + 1) * (1 - fu) + grid.getHeight(i + 1, j + 1) * fu) * fv;
}

/// A thousand queries straight down, as the feedback makes them, against what any terrain has to do
/// for one: convert the place and interpolate four samples. Goal: a ratio of at most 2.
void queryDown(benchmark::State& state) {
    const Scene& scene = getScene();
    PairedTimes times;
    std::size_t first = 0;
    for (auto _ : state) {
        // Each takes other places, so that neither finds them in the cache after the other.
        const auto forThousand = [&](auto measured) {
            for (const std::size_t end = first + 1000; first < end; first++)
                measured(scene.down[first & 0xffff]);
        };
        times.measure(
            [&] {
                forThousand([&](const Segment& segment) {
                    dvec3 hit;
                    scene.terrain.getIntersection(0, segment.from, segment.to, &hit);
                    benchmark::DoNotOptimize(hit);
                });
            },
            [&] {
                forThousand([&](const Segment& segment) {
                    const dvec3 geodetic = EARTH.toWGS(segment.from);
                    benchmark::DoNotOptimize(interpolate(scene.terrain.getGrids()[0], geodetic));
                });
            });
    }
    times.report(state);
}
BENCHMARK(queryDown)->Iterations(500)->Unit(benchmark::kMicrosecond);

void query(benchmark::State& state, const std::vector<Segment>& segments) {
    const ObjectTerrain& terrain = getScene().terrain;
    std::size_t i = 0, hits = 0;
    for (auto _ : state) {
        const Segment& segment = segments[i++ & 0xffff];
        dvec3 hit;
        hits += terrain.getIntersection(0, segment.from, segment.to, &hit);
        benchmark::DoNotOptimize(hit);
    }
    state.counters["hit"] = double(hits) / double(i);
}

/// From the air to the ground anywhere on the raster.
void querySlanted(benchmark::State& state) { query(state, getScene().slanted); }
BENCHMARK(querySlanted);

/// From 100 m above the sea to the same elsewhere, through the hills in between.
void queryGrazing(benchmark::State& state) { query(state, getScene().grazing); }
BENCHMARK(queryGrazing);

} // namespace
