// SPDX-License-Identifier: MIT

// What weapons and cables cost in a frame.

#include "heli/logic/records.h"
#include "ig/physics/BodyRope.h"
#include "ratio.h"
#include "testkit/LogicScene.h"

namespace {

using namespace ig;

/// Something of fixed cost to compare with: the conversions of a floating ship's sample points.
struct Conversions {
    void operator()() const {
        for (int i = 0; i < 72; i++)
            benchmark::DoNotOptimize(earth.toWGS(place));
    }
    EllipsoidModel earth;
    dvec3 place = earth.toWorld({-155, 20, 10});
};

/// High over the sea, so that nothing comes down while it is measured.
void startHigh(LogicScene& scene) {
    scene.useProjectData();
    scene.start();
    scene.logic->m_heli->m_prefab->setWgsPosition({-155.0, 19.9, 6000});
    scene.frame();
}

using Operation = void (*)(Logic_Nerith_Heli_Final&);

/// Dropping what start-up has preloaded, against 72 conversions.
void drop(benchmark::State& state, Operation operation) {
    LogicScene scene;
    startHigh(scene);
    PairedTimes times;
    for (auto _ : state) {
        times.measure([&] { operation(*scene.logic); }, Conversions());
        scene.logic->release_winch();
        for (ObjectPrefab* missile : scene.logic->m_missiles)
            missile->setEnabled(false);
        scene.logic->update_missle();
        scene.logic->reset();
        scene.logic->m_heli->m_prefab->setWgsPosition({-155.0, 19.9, 6000});
    }
    times.report(state);
}
BENCHMARK_CAPTURE(drop, torpedo, [](Logic_Nerith_Heli_Final& l) { l.emit_torpedo(); })
    ->Iterations(500)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(drop, missile, [](Logic_Nerith_Heli_Final& l) { l.emit_missile(); })
    ->Iterations(500)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(drop, buoy, [](Logic_Nerith_Heli_Final& l) { l.throw_sonar(); })
    ->Iterations(500)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(drop, six_decoys, [](Logic_Nerith_Heli_Final& l) { l.emit_decoy(); })
    ->Iterations(500)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(drop, sonar, [](Logic_Nerith_Heli_Final& l) { l.emit_sonar(); })
    ->Iterations(500)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(drop, winch, [](Logic_Nerith_Heli_Final& l) { l.emit_winch(); })
    ->Iterations(500)
    ->Unit(benchmark::kMicrosecond);

/// Update and physics of a frame with 30 torpedoes, 20 buoys, 30 decoys and 20 missiles in the air,
/// against the same frame without them.
void hundredInTheAir(benchmark::State& state) {
    LogicScene full;
    startHigh(full);
    Logic_Nerith_Heli_Final& logic = *full.logic;
    const auto fill = [&] {
        for (int i = 0; i < 30; i++)
            logic.emit_torpedo();
        for (int i = 0; i < 20; i++) {
            logic.throw_sonar();
            logic.emit_missile();
        }
        for (int i = 0; i < 5; i++)
            logic.emit_decoy();
    };
    const auto frame = [&] { full.frame(); };
    // One scene in a process at a time: first without, then with them.
    std::vector<double> empty, busy;
    const auto measure = [&](std::vector<double>& into) {
        const auto begin = std::chrono::steady_clock::now();
        frame();
        into.push_back(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    };
    for (int i = 0; i < 300; i++)
        measure(empty);
    for (auto _ : state) {
        if (busy.size() % 300 == 0) { // 5 s, before anything reaches the sea
            for (ObjectPrefab* missile : logic.m_missiles)
                missile->setEnabled(false);
            logic.update_missle();
            logic.reset();
            logic.m_heli->m_prefab->setWgsPosition({-155.0, 19.9, 6000});
            fill();
        }
        measure(busy);
    }
    const auto median = [](std::vector<double>& v) {
        std::nth_element(v.begin(), v.begin() + static_cast<long>(v.size() / 2), v.end());
        return v[v.size() / 2] * 1e6;
    };
    const double with = median(busy), without = median(empty);
    state.counters["with_us"] = with;
    state.counters["without_us"] = without;
    state.counters["per_object_us"] = (with - without) / 100;
}
BENCHMARK(hundredInTheAir)->Iterations(900)->Unit(benchmark::kMicrosecond);

/// One frame of a moving cable, against 72 conversions.
void ropeFrame(benchmark::State& state) {
    const EllipsoidModel earth;
    const dmat4 place = earth.getWGSTransform(earth.toWorld({-155, 20, 100}));
    BodyRigid anchor(0, {});
    BodyRope rope(6, 1.5f);
    rope.setAnchor(&anchor);
    double t = 0;
    PairedTimes times;
    for (auto _ : state)
        times.measure(
            [&] {
                t += 1 / 60.0;
                anchor.setTransform(place * translate(dvec3(0, 60 * t, 0)));
                rope.step(1 / 60.0);
            },
            Conversions());
    times.report(state);
}
BENCHMARK(ropeFrame)->Iterations(2000)->Unit(benchmark::kMicrosecond);

} // namespace
