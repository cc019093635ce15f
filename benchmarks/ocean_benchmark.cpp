// SPDX-License-Identifier: MIT

// What the sea costs: a query of the surface against the geodetic conversion it contains, a frame's
// evolution against the bare transforms. Goals: query 0.6 µs, evolution 1.5 ms in the median on a
// desktop core. The counters are medians in microseconds and their ratio; "hash" folds the results,
// so that a faster sea that is another sea shows.

#include "Fft.h"
#include "WaveField.h"
#include "ig/math/EllipsoidModel.h"
#include "plugins/ocean/ObjectOcean.h"
#include "ratio.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using namespace ig;
const EllipsoidModel EARTH;

void report(benchmark::State& state, const PairedTimes& times, double hash) {
    times.report(state);
    state.counters["hash"] = hash;
}

/// getWorldPoint at random places within 30 km, in batches; floor: toWGS of the same places.
void query(benchmark::State& state) {
    constexpr int BATCH = 500;
    ObjectOcean ocean;
    ocean.setWgsPosition({-155, 19, 0});
    ocean.setBeaufort(static_cast<float>(state.range(0)));
    ocean.evolve(100);
    std::mt19937 random(1);
    std::vector<dvec3> places(BATCH * 64);
    for (dvec3& p : places)
        p = EARTH.toWorld({-155.3 + random() * 1.4e-10, 18.7 + random() * 1.4e-10, 50});
    PairedTimes times(BATCH);
    double sum = 0;
    std::size_t at = 0;
    while (state.KeepRunning()) {
        const dvec3* batch = &places[at];
        const auto forAll = [batch](auto ask) {
            for (int i = 0; i < BATCH; i++)
                benchmark::DoNotOptimize(ask(batch[i]));
        };
        times.measure([&] { forAll([&](const dvec3& p) { return ocean.getWorldPoint(p); }); },
                      [&] { forAll([&](const dvec3& p) { return EARTH.toWGS(p); }); });
        at = (at + BATCH) % places.size();
    }
    for (const dvec3& p : places)
        sum += std::round(EARTH.getAltitude(ocean.getWorldPoint(p)) * 1e3);
    report(state, times, sum);
}
BENCHMARK(query)->ArgName("beaufort")->Arg(3)->Arg(5)->Arg(8)->Iterations(1000);

/// A segment 100 km straight down, as the feedback to the flight simulation asks for every frame;
/// floor: one query of the surface.
void rayDown(benchmark::State& state) {
    constexpr int BATCH = 200;
    ObjectOcean ocean;
    ocean.setWgsPosition({-155, 19, 0});
    ocean.setBeaufort(static_cast<float>(state.range(0)));
    ocean.evolve(100);
    std::mt19937 random(1);
    std::vector<dvec3> places(BATCH), ends;
    for (dvec3& p : places) {
        p = EARTH.toWorld({-155.3 + random() * 1.4e-10, 18.7 + random() * 1.4e-10, 50});
        ends.push_back(ocean.toLocal(p - EARTH.getUp(p) * 1e5));
        p = ocean.toLocal(p);
    }
    PairedTimes times(BATCH);
    double sum = 0;
    while (state.KeepRunning()) {
        dvec3 hit;
        sum = 0;
        times.measure(
            [&] {
                for (int i = 0; i < BATCH; i++) {
                    ocean.getIntersection(0, places[i], ends[i], &hit);
                    sum += std::round(length(hit - places[i]) * 1e3);
                }
            },
            [&] {
                for (const dvec3& p : places)
                    benchmark::DoNotOptimize(ocean.getWorldPoint(ocean.toWorld(p)));
            });
    }
    report(state, times, sum);
}
BENCHMARK(rayDown)->ArgName("beaufort")->Arg(5)->Iterations(1000);

/// One 60 Hz frame's evolution; floor: the transforms in it, ten of a `drawn` sea and six of one
/// that is only asked. With `turning`, the waves' angle changes every frame, so that spectra are
/// made and amplitudes blended all the time.
void evolution(benchmark::State& state) {
    const bool drawn = state.range(0) != 0, turning = state.range(1) != 0;
    WaveField sea({5, 8, 230});
    CascadeWorkspace workspace;
    std::vector<int> sizes; // of slopes, displacement, height and divergence
    std::size_t largest = 0;
    for (const Cascade& cascade : sea.getCascades()) {
        largest = std::max(largest, static_cast<std::size_t>(cascade.getResolution()));
        for (int i = drawn ? 0 : 1; i < (cascade.isSlopesOnly() ? 1 : 3); i++)
            sizes.push_back(cascade.getResolution());
    }
    constexpr std::size_t IN = Lattice::SIDE * Lattice::SIDE;
    std::vector<float> in(2 * IN), out(2 * largest * largest);
    PairedTimes times;
    int frame = 0;
    while (state.KeepRunning()) {
        frame++;
        if (turning) sea.set({5, 8, 230.0 + frame % 90});
        times.measure(
            [&] {
                sea.evolve(frame / 60.0);
                if (drawn) sea.evolveSlopes();
            },
            [&] {
                for (const int size : sizes)
                    workspace.getTransform(size).inverse({in.data(), in.data() + IN}, out.data());
            });
    }
    state.counters["worst_us"] = times.getWorst() * 1e6;
    report(state, times, std::round(sea.getSurface().find(100, 200).altitude * 1e4));
}
BENCHMARK(evolution)
    ->ArgNames({"drawn", "turning"})
    ->ArgsProduct({{0, 1}, {0, 1}})
    ->Iterations(1000);

} // namespace
