// SPDX-License-Identifier: MIT

// What the logic costs per frame and per record, against the system calls that it can't do without.

#include "common/wire/UdpSendData.h"
#include "heli/kit/HeliEffectsKitCorax.h"
#include "heli/kit/UdpDataKit.h"
#include "ig/net/SocketUDP.h"
#include "ig/ui/UiDrawList.h"
#include "ratio.h"
#include "scenes.h"
#include "testkit/AllocationCounter.h"
#include "testkit/TakeIn.h"

#include <random>

namespace {

/// One update without a waiting record, against one bare send of the feedback plus one bare query.
void updateWithoutRecord(benchmark::State& state) {
    DemoScene scene;
    ig::SocketUDP* socket = scene.logic->m_udp_send->m_socket;
    const ig::dvec3 from = scene.logic->m_heli->get_world_position();
    const ig::dvec3 to = from - scene.logic->m_heli->m_prefab->getWGSTransform().getZ() * 1e5;
    PairedTimes times;
    for (auto _ : state) {
        // Always in the same engine frame: the waves' evolution is the ocean's own benchmark.
        times.measure([&] { scene.logic->update(1 / 60.0f); },
                      [&] {
                          UdpSendData datagram{};
                          ig::dvec3 hit;
                          benchmark::DoNotOptimize(scene.logic->select_object(from, to, &hit));
                          socket->write(&datagram, 1, sizeof datagram);
                      });
        while (!scene.peer.receive().empty()) {
        }
    }
    times.report(state);
}
BENCHMARK(updateWithoutRecord)->Iterations(20000)->Unit(benchmark::kMicrosecond);

/// The query of the feedback, 100 km straight down, at random places of the demo world.
void selectObject(benchmark::State& state) {
    DemoScene scene;
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> u(-0.03, 0.03);
    const ig::EllipsoidModel earth;
    std::vector<double> times;
    int missed = 0;
    for (auto _ : state) {
        const ig::dvec3 from = earth.toWorld({-155.0625 + u(random), 19.7125 + u(random), 500});
        const ig::dvec3 to = from - earth.getUp(from) * 1e5;
        ig::dvec3 hit;
        times.push_back(
            measureSeconds([&] { missed += !scene.logic->select_object(from, to, &hit); }));
    }
    state.counters["median_us"] = median(times) * 1e6;
    state.counters["missed"] = missed;
}
BENCHMARK(selectObject)->Iterations(20000)->Unit(benchmark::kMicrosecond);

/// Receiving and applying a batch of records, against receiving alone; per record. The dearest ones
/// reset the scene, and put the winch's load out and stow it in turn.
void applyRecord(benchmark::State& state) {
    constexpr int BATCH = 50;
    DemoScene scene;
    const bool dearest = state.range(0);
    UdpRecvData record = LogicScene::record();
    record.command = dearest ? 6 : 0;
    UdpRecvKit& kit = *scene.logic->m_udp_recv;
    const auto fill = [&] {
        for (int i = 0; i < BATCH; i++) {
            record.hang_enable = dearest && i % 2;
            scene.send(record);
        }
        takeIn();
    };
    std::vector<double> differences;
    for (auto _ : state) {
        fill();
        const double both = measureSeconds([&] { scene.logic->recv_udp(nullptr); });
        fill();
        const double receiving = measureSeconds([&] { kit.receive(); });
        kit.m_records.clear();
        differences.push_back((both - receiving) / BATCH);
    }
    state.counters["apply_us_per_record"] = median(differences) * 1e6;
}
BENCHMARK(applyRecord)
    ->ArgName("dearest")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(2000)
    ->Unit(benchmark::kMicrosecond);

/// The downwash at 4 m over the sea, where all of it is shown, against placing one node; at most
/// 200 µs are allowed.
void effectsKit(benchmark::State& state) {
    DemoScene scene;
    scene.hoverOverSea();
    HeliEffectsKitCorax& kit = *scene.logic->m_effects;
    ig::Node node;
    PairedTimes times;
    for (auto _ : state)
        times.measure(
            [&] {
                kit.update();
                kit.update_fade(0.8f);
            },
            [&] {
                node.setWgsPosition({-155, 19, 4});
            });
    times.report(state);
}
BENCHMARK(effectsKit)->Iterations(20000)->Unit(benchmark::kMicrosecond);

/// The emitters' step in the same place: four of them ask what lies below them.
void emitterStep(benchmark::State& state) {
    DemoScene scene;
    scene.hoverOverSea();
    ig::Node* const downwash = scene.helicopterNode("downwash");
    PairedTimes times;
    for (auto _ : state)
        times.measure([&] { scene.world->updateParticles(1 / 60.0f); },
                      [&] {
                          downwash->setEnabled(false);
                          scene.world->updateParticles(1 / 60.0f);
                          downwash->setEnabled(true);
                      });
    times.report(state);
}
BENCHMARK(emitterStep)->Iterations(20000)->Unit(benchmark::kMicrosecond);

/// One frame of the user interface with the camera on the move, so that all its fields change,
/// against writing the same numbers; at most 300 µs are allowed.
void userInterface(benchmark::State& state) {
    DemoScene scene;
    ig::UiDrawList list;
    PairedTimes times;
    std::uint64_t allocations = 0;
    ig::dvec3 place(LogicScene::LONGITUDE, LogicScene::LATITUDE, 100);
    for (auto _ : state) {
        place = place + ig::dvec3(1e-5, 1e-5, 0.1);
        scene.logic->set_cam_pos_geo(place);
        const AllocationCounter counter;
        times.measure(
            [&] {
                scene.ui->update(1 / 60.0f);
                scene.ui->draw(list);
                allocations = counter.count();
            },
            [&] {
                for (const double number : {place.x, place.y, place.z})
                    benchmark::DoNotOptimize(ig::ToString(number));
            });
    }
    state.counters["allocations"] = static_cast<double>(allocations); // in the last frame
    times.report(state);
}
BENCHMARK(userInterface)->Iterations(20000)->Unit(benchmark::kMicrosecond);

} // namespace
