// SPDX-License-Identifier: MIT
#pragma once

#include "common/ship/Ship.h"
#include "common/ship/Wakes.h"
#include "ig/app/ControlApp.h"
#include "ig/app/Engine.h"
#include "ig/app/IApp.h"
#include "ig/package/PackageManager.h"
#include "ig/scene/Material.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "plugins/ocean/ObjectOcean.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <optional>

inline constexpr double LONGITUDE = -155.0563123, LATITUDE = 19.7196898;
inline const ig::EllipsoidModel EARTH;
inline const char* const FRIGATE =
    "data/PELMAR_PROJECT/prefabs/SM_055_CN_2023/SM_055_CN_2023.prefab";

/// A stand-in for the sea that shares no code with the real one, and costs little: still water, or
/// 12 straight-crested deep-water waves, spread about north, of 4 m significant height and with
/// their peak at 9.6 s.
class SwellSea : public ig::ObjectOcean {
public:
    float getBeaufort() const override { return m_beaufort; }
    ig::dvec3 getWorldPoint(const ig::dvec3& world) const override {
        ig::dvec3 g = EARTH.toWGS(world);
        const double x = (g.x - LONGITUDE) * 104800, y = (g.y - LATITUDE) * 110700;
        g.z = 0;
        for (int i = 0; i < 12 && m_rough; i++) {
            const double omega = 2 * std::numbers::pi / 9.6 * (0.7 + 1.3 * i / 12);
            const double k = omega * omega / 9.81, direction = 0.3 * (i % 5 - 2);
            const double along = x * std::sin(direction) + y * std::cos(direction);
            // m0 = Hs² / 16 = Σ a² / 2
            g.z += 4 / std::sqrt(96) * std::cos(k * along + omega * m_time + i * i);
        }
        return EARTH.toWorld(g);
    }

    double m_time = 0;
    float m_beaufort = 0;
    bool m_rough = false;
};

/// A world with that sea, and whatever a test puts there.
struct ShipScene : testing::Test, ig::IApp {
    ShipScene() {
        ig::Engine::get()->setApp(this);
        world.addNode(sea);
    }
    ~ShipScene() override {
        world.clear();
        ig::MaterialManager::release();
        ig::PackageManager::release();
        ig::Engine::get()->reset();
    }
    void place(ig::Object* object, double altitude) {
        object->setWgsPosition({LONGITUDE, LATITUDE, altitude});
        object->setWgsHPR({});
        world.addNode(object);
    }
    int getWidth() const override { return 1; }
    int getHeight() const override { return 1; }
    ig::ControlApp* getControl() override { return &control; }

    ig::ControlApp control;
    ig::World world;
    SwellSea* sea = new SwellSea(); ///< the world's
};
