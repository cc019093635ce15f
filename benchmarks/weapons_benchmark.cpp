// SPDX-License-Identifier: MIT

// What weapons cost in a frame.

#include "ig/physics/Body.h"
#include "ratio.h"
#include "scenes.h"

namespace {

using namespace ig;

using Operation = void (*)(Logic_Nerith_Heli_Final&);

/// Dropping what start-up has preloaded; at most 1 ms is allowed.
void drop(benchmark::State& state, Operation operation) {
    DemoScene scene;
    scene.climb();
    CpuTimes times;
    for (auto _ : state) {
        times.measure([&] { operation(*scene.logic); });
        scene.removeDropped();
    }
    times.report(state, 1000);
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

/// The first time that something is dropped, after a fresh start; at most 1 ms is allowed for what
/// start-up preloads.
void firstDrop(benchmark::State& state, Operation operation) {
    CpuTimes times;
    for (auto _ : state) {
        DemoScene scene;
        scene.climb();
        times.measure([&] { operation(*scene.logic); });
    }
    times.report(state, 1000);
}
BENCHMARK_CAPTURE(firstDrop, torpedo, [](Logic_Nerith_Heli_Final& l) { l.emit_torpedo(); })
    ->Iterations(5)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(firstDrop, missile, [](Logic_Nerith_Heli_Final& l) { l.emit_missile(); })
    ->Iterations(5)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(firstDrop, six_decoys, [](Logic_Nerith_Heli_Final& l) { l.emit_decoy(); })
    ->Iterations(5)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(firstDrop, winch, [](Logic_Nerith_Heli_Final& l) { l.emit_winch(); })
    ->Iterations(5)
    ->Unit(benchmark::kMicrosecond);

/// Update and physics of a frame with 30 torpedoes, 20 buoys, 30 decoys and 20 missiles in the air;
/// at most 4 ms are allowed. `without_us` is the same frame without them.
void hundredInTheAir(benchmark::State& state) {
    DemoScene scene;
    scene.climb();
    Logic_Nerith_Heli_Final& logic = *scene.logic;
    const auto fill = [&] {
        for (int i = 0; i < 30; i++) {
            scene.climb(20 * i); // one after the other along the flight
            logic.emit_torpedo();
            if (i < 20) logic.throw_sonar();
            if (i < 20) logic.emit_missile();
            if (i < 5) logic.emit_decoy();
        }
    };
    const auto frame = [&](CpuTimes& times) {
        Engine::get()->beginFrame(1 / 60.0f);
        times.measure([&] {
            logic.update(1 / 60.0f);
            scene.world->updatePhysics(1 / 60.0f);
        });
        scene.world->updateParticles(1 / 60.0f);
    };
    CpuTimes empty, busy;
    for (int i = 0; i < 300; i++)
        frame(empty);
    int frames = 0;
    for (auto _ : state) {
        if (frames++ % 300 == 0) { // 5 s, before anything reaches the sea
            scene.removeDropped();
            fill();
        }
        frame(busy);
    }
    state.counters["without_us"] = empty.getMedian() * 1e6;
    busy.report(state, 4000);
}
BENCHMARK(hundredInTheAir)->Iterations(900)->Unit(benchmark::kMicrosecond);

/// Looking for what a missile has met on the 5 m that it flew in a frame, on its way to a ship:
/// what it adds to the physics of the same frame, against the ray that a click or the feedback asks
/// for. Goal: a ratio of at most 2.5.
void missileSweep(benchmark::State& state) {
    DemoScene scene;
    scene.logic->emit_missile();
    ObjectPrefab* missile = scene.logic->m_missiles[0];
    struct : BodyContactCallbackBase {
        void onContact(Body*, int) override { count++; }
        int count = 0;
    } contacts;
    const dmat4 target = scene.world->getNodeByName("SM_055_CN_2023")->getWGSTransform();
    const auto way = [&](int step) { // from 250 m off down to the hull
        return target * dvec3(0, -300 + 5 * step, 52 - step);
    };
    Physics& physics = scene.world->getPhysics();
    PairedTimes with, without;
    int frame = 0;
    for (auto _ : state) {
        const int step = frame++ % 50 + 1;
        missile->setWorldPosition(way(step - 1));
        missile->getBody()->setContactCallback(nullptr);
        physics.update(1 / 60.0f); // the sweep begins here
        missile->setWorldPosition(way(step));
        const bool on = frame / 50 % 2;
        missile->getBody()->setContactCallback(on ? &contacts : nullptr);
        (on ? with : without)
            .measure([&] { physics.update(1 / 60.0f); },
                     [&] {
                         dvec3 hit;
                         benchmark::DoNotOptimize(
                             scene.logic->select_object(way(step - 1), way(step), &hit));
                     });
    }
    const double sweep = with.getSubject() - without.getSubject();
    state.counters["contacts"] = contacts.count;
    state.counters["update_us"] = without.getSubject() * 1e6;
    state.counters["sweep_us"] = sweep * 1e6;
    state.counters["ray_us"] = with.getFloor() * 1e6;
    state.counters["ratio"] = sweep / with.getFloor();
}
BENCHMARK(missileSweep)->Iterations(20000)->Unit(benchmark::kMicrosecond);

} // namespace
