// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "heli/logic/records.h"
#include "plugins/ocean/ObjectOcean.h"

#include <cmath>

namespace {

using namespace ig;

/// When a torpedo dropped at that height is down, by the closed forms: 1.5 s of free fall, then
/// fall against drag ½ρAv² from the speed reached.
double fallTime(double height) {
    const double g = 9.80665, free = 1.5, speed = g * free;
    if (height < speed * free / 2) return std::sqrt(2 * height / g);
    const double end = std::sqrt(2 * 235 * g / (1.225 * 8)); // terminal speed
    const double rest = height - speed * free / 2;
    double low = 0, high = 600;
    for (int i = 0; i < 60; i++) {
        const double t = (low + high) / 2, x = g * t / end;
        const double way = end * end / g * std::log(std::cosh(x) + speed / end * std::sinh(x));
        (way < rest ? low : high) = t;
    }
    return free + low;
}

TEST(Torpedo, EntersTheWaterWhenBallisticsTellsWithExactlyItsTwoEffects) {
    for (const auto& [height, stalls] : {std::pair(30.0, true), {150.0, false}}) {
        SeaScene scene(height + 3, {70, 0, 0});
        const SignalRecorder& signals = *scene.signals;
        scene.logic->m_ocean->setBeaufort(5);
        scene.logic->emit_torpedo();
        const auto* prefab = scene.logic->m_torpedo_infos[0]->prefab;
        const Node* torpedo = prefab->getNodeByName("torpedo");
        EXPECT_NEAR(SeaScene::altitude(torpedo->getWorldPosition()), height, 1e-6);
        EXPECT_LT(length(prefab->getWgsHPR()), 1e-9);
        double time = 0;
        dvec3 last;
        for (int i = 0; i < 2000 && signals.effects.empty(); i++) {
            const float dt = stalls && i % 25 == 10 ? 0.1f : 1 / 60.0f;
            last = torpedo->getWorldPosition();
            scene.frame(dt);
            time += static_cast<double>(dt);
        }
        EXPECT_NEAR(time, fallTime(height), 0.05 * fallTime(height));
        ASSERT_EQ(signals.effects.size(), 2u);
        EXPECT_EQ(signals.effects[0].path, "data/art/prefab/vfx/explosion_1/explosion_1.prefab");
        EXPECT_EQ(signals.effects[1].path,
                  "data/PELMAR_PROJECT/prefabs/vfx/water_explosion/water_explosion.prefab");
        const dvec3 splash = signals.effects[1].place;
        EXPECT_NEAR(SeaScene::altitude(splash), scene.sea(last) + 1, 0.05);
        EXPECT_LT(length(splash - last), 6); // above it
        EXPECT_EQ(signals.removed, signals.added);
        // What is announced is shown, and the parachute's action is gone.
        EXPECT_EQ(scene.logic->m_action_manager.size(), 2);
        EXPECT_EQ(scene.effects(), (std::vector<dvec3>{last, splash}));
    }
}

TEST(Torpedo, EachIsTrackedAloneAndTheLastTakesTheFreedPlace) {
    SeaScene scene(1000);
    for (int i = 0; i < 3; i++)
        scene.logic->emit_torpedo();
    auto& infos = scene.logic->m_torpedo_infos;
    TorpedoInfo* second = infos[1];
    TorpedoInfo* third = infos[2];
    infos[0]->time_left = 0;
    second->prefab->setEnabled(false); // its time stands still
    scene.frame();
    ASSERT_EQ(infos.size(), 2);
    EXPECT_EQ(infos[0], third);
    EXPECT_EQ(infos[1], second);
    EXPECT_EQ(second->time_left, 40);
    EXPECT_LT(third->time_left, 40);
    EXPECT_TRUE(scene.signals->effects.empty());
}

} // namespace
