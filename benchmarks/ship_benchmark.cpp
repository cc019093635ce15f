// SPDX-License-Identifier: MIT

// What a floating ship costs per frame, against the geodetic conversions that its 24 points would
// need if each asked for its own height, the sea's and the sea's place: 72 of them.

#include "common/ship/Ship.h"
#include "common/ship/Wakes.h"
#include "ig/app/Engine.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/World.h"
#include "plugins/ocean/ObjectOcean.h"
#include "ratio.h"

#include <optional>

namespace {

using namespace ig;

constexpr int CONVERSIONS = 72;

struct Sea {
    Sea() {
        ocean = new ObjectOcean();
        ocean->setWgsPosition({-155.06, 19.72, 0});
        ocean->setBeaufort(5);
        world.addNode(ocean);
        auto* prefab = new ObjectPrefab("data/PELMAR_PROJECT/prefabs/SM_055_CN_2023/"
                                        "SM_055_CN_2023.prefab");
        prefab->moveBodyFromRoot();
        prefab->setWgsPosition({-155.05, 19.73, 0});
        world.addNode(prefab);
        ship.emplace(prefab, ocean);
        ship->setControlMode(2);
    }
    World world;
    ObjectOcean* ocean;
    std::optional<Ship> ship;
};

void shipStep(benchmark::State& state) {
    Sea sea;
    const EllipsoidModel earth;
    const dvec3 place = sea.ship->getObject()->getWorldPosition();
    PairedTimes times;
    for (auto _ : state) {
        Engine::get()->beginFrame(1 / 60.0f);
        sea.ocean->getWorldPoint(place); // the waves of this frame, which all queries share
        times.measure([&] { sea.ship->update(); },
                      [&] {
                          for (int i = 0; i < CONVERSIONS; i++)
                              benchmark::DoNotOptimize(
                                  earth.toWGS(place + dvec3(static_cast<double>(i), 0, 0)));
                      });
        sea.world.updatePhysics(1 / 60.0f);
    }
    times.report(state);
}
BENCHMARK(shipStep)->Iterations(5000)->Unit(benchmark::kMicrosecond);

/// The wake's own step; microseconds.
void wakeStep(benchmark::State& state) {
    Sea sea;
    for (int i = 0; i < 10; i++)
        Engine::get()->beginFrame(1 / 60.0f);
    for (auto _ : state)
        sea.ship->getWakes()->update();
}
BENCHMARK(wakeStep)->Unit(benchmark::kMicrosecond);

} // namespace
