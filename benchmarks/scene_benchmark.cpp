// SPDX-License-Identifier: MIT

// Geodesy and segment queries of the engine.

#include "ig/math/EllipsoidModel.h"
#include "ig/scene/Bvh.h"
#include "ratio.h"

#include <cmath>
#include <random>

namespace {

using namespace ig;

std::vector<dvec3> randomPlaces() {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> u(-1, 1);
    std::vector<dvec3> places;
    for (int i = 0; i < 4096; i++)
        places.push_back(
            EllipsoidModel().toWorld({180 * u(random), 89 * u(random), 5000 * (u(random) + 1)}));
    return places;
}

/// A thousand inverse conversions against two arc tangents and a root each.
void toWGS(benchmark::State& state) {
    const std::vector<dvec3> places = randomPlaces();
    const EllipsoidModel earth;
    PairedTimes times;
    for (auto _ : state)
        times.measure(
            [&] {
                for (const dvec3& p : places)
                    benchmark::DoNotOptimize(earth.toWGS(p));
            },
            [&] {
                for (const dvec3& p : places)
                    benchmark::DoNotOptimize(std::atan2(p.z, p.x) + std::atan2(p.y, p.x) +
                                             std::sqrt(p.x * p.x + p.y * p.y));
            });
    times.report(state);
}
BENCHMARK(toWGS)->Iterations(500)->Unit(benchmark::kMicrosecond);

/// A vertical segment through a mesh of 100,000 triangles; microseconds per query.
void segmentQuery(benchmark::State& state) {
    constexpr int N = 224;
    std::vector<vec3> positions;
    std::vector<std::uint32_t> indices;
    for (int y = 0; y <= N; y++)
        for (int x = 0; x <= N; x++)
            positions.push_back(
                {static_cast<float>(x), static_cast<float>(y),
                 std::sin(0.3f * static_cast<float>(x)) + std::cos(0.2f * static_cast<float>(y))});
    for (int y = 0; y < N; y++)
        for (int x = 0; x < N; x++) {
            const auto i = static_cast<std::uint32_t>(y * (N + 1) + x), j = i + N + 1;
            indices.insert(indices.end(), {i, i + 1, j + 1, i, j + 1, j});
        }
    Bvh tree;
    tree.build(positions, indices);
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> u(0, N);
    for (auto _ : state) {
        const double x = u(random), y = u(random);
        benchmark::DoNotOptimize(tree.intersect({x, y, 1000}, {x, y, -99000}));
    }
}
BENCHMARK(segmentQuery);

} // namespace
