// SPDX-License-Identifier: MIT
#pragma once

#include "common/ship/Buoyancy.h"
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
#include <memory>
#include <numbers>
#include <vector>

inline constexpr double LONGITUDE = -155.0563123, LATITUDE = 19.7196898;
inline const ig::EllipsoidModel EARTH;

/// A sea of 12 straight-crested deep-water waves, spread about north, whose heights add up to a
/// significant height and whose lengths lie about a peak period: a stand-in that shares no code
/// with the real one, and costs little. Without height: altitude `m_level` everywhere.
class SwellSea : public ObjectOcean {
public:
    float getBeaufort() const override { return m_beaufort; }
    ig::dvec3 getWorldPoint(const ig::dvec3& world) const override {
        ig::dvec3 g = EARTH.toWGS(world);
        const double x = (g.x - LONGITUDE) * 104800, y = (g.y - LATITUDE) * 110700;
        g.z = m_level;
        for (int i = 0; i < 12 && m_significant_height > 0; i++) {
            const double omega = 2 * std::numbers::pi / m_peak_period * (0.7 + 1.3 * i / 12);
            const double k = omega * omega / 9.81, direction = 0.3 * (i % 5 - 2);
            const double along = x * std::sin(direction) + y * std::cos(direction);
            // m0 = Hs² / 16 = Σ a² / 2
            g.z +=
                m_significant_height / std::sqrt(96) * std::cos(k * along + omega * m_time + i * i);
        }
        return EARTH.toWorld(g);
    }

    double m_time = 0, m_level = 0, m_significant_height = 0, m_peak_period = 1;
    float m_beaufort = 0;
};

/// A world with that sea, and ships in it.
class ShipScene : public ig::IApp {
public:
    static constexpr const char* FRIGATE =
        "data/PELMAR_PROJECT/prefabs/SM_055_CN_2023/SM_055_CN_2023.prefab";
    static constexpr const char* LANDING_SHIP =
        "data/PELMAR_PROJECT/prefabs/LNJ_2023/LNJ_2023.prefab";

    ShipScene() {
        ig::Engine::get()->setApp(this);
        sea = new SwellSea();
        world.addNode(sea);
    }
    ~ShipScene() override {
        ships.clear();
        world.clear();
        ig::MaterialManager::release();
        ig::PackageManager::release();
        ig::Engine::get()->reset();
    }

    /// A prefab of the project, full ahead at the thrust it has in the scene.
    Ship& addShip(const char* path, float thrust) {
        auto* prefab = new ig::ObjectPrefab(path);
        prefab->moveBodyFromRoot();
        place(prefab, 0);
        // 500 m abreast of the last one.
        prefab->setWgsPosition({LONGITUDE + 0.005 * double(ships.size()), LATITUDE, 0});
        ships.push_back(std::make_unique<Ship>(prefab, sea));
        ships.back()->setControlMode(2);
        ships.back()->setThrust(thrust);
        return *ships.back();
    }
    void place(ig::Object* object, double altitude) {
        object->setWgsPosition({LONGITUDE, LATITUDE, altitude});
        object->setWgsHPR({});
        world.addNode(object);
    }

    void frame(float dt) {
        ig::Engine::get()->beginFrame(dt);
        sea->m_time += static_cast<double>(dt);
        for (const auto& ship : ships) {
            if (ship->getWakes()) ship->getWakes()->update();
            ship->update();
        }
        world.updatePhysics(dt);
    }

    int getWidth() const override { return 1; }
    int getHeight() const override { return 1; }
    ig::ControlApp* getControl() override { return &control; }

    ig::ControlApp control;
    ig::World world;
    SwellSea* sea; ///< the world's
    std::vector<std::unique_ptr<Ship>> ships;
};

/// A ship's motion in the local frame.
struct ShipMotion {
    explicit ShipMotion(const Ship& ship) {
        const ig::Object& object = *ship.getObject();
        const ig::dmat3 to_local = transpose(object.getWGSTransform().getMat3());
        velocity = to_local * ig::dvec3(ship.getVelocity());
        hpr = object.getWgsHPR();
        altitude = EARTH.toWGS(object.getWorldPosition()).z;
    }
    ig::dvec3 velocity; ///< east, north, up
    ig::dvec3 hpr;
    double altitude;
};
