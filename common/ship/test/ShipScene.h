// SPDX-License-Identifier: MIT
#pragma once

#include "common/ship/Buoyancy.h"
#include "common/ship/Ship.h"
#include "common/ship/Wakes.h"
#include "ig/app/ControlApp.h"
#include "ig/app/Engine.h"
#include "ig/app/IApp.h"
#include "ig/package/PackageManager.h"
#include "ig/physics/Body.h"
#include "ig/scene/Material.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "plugins/ocean/ObjectOcean.h"

#include <cmath>
#include <memory>
#include <numbers>
#include <optional>
#include <random>
#include <vector>

inline constexpr double LONGITUDE = -155.0563123, LATITUDE = 19.7196898;
inline const ig::EllipsoidModel EARTH;

/// A sea of 12 straight-crested deep-water waves, spread about one direction, whose heights add up
/// to a significant height and whose lengths lie about a peak period: a stand-in that shares no
/// code with the real one. Beaufort 0: altitude `m_level` everywhere.
class SwellSea : public ObjectOcean {
public:
    void setSea(float beaufort, double significant_height, double peak_period) {
        m_beaufort = beaufort;
        m_waves.clear();
        if (significant_height == 0) return;
        constexpr int COUNT = 12;
        std::mt19937 random(7);
        std::uniform_real_distribution<double> u(-1, 1);
        for (int i = 0; i < COUNT; i++) {
            const double omega = 2 * std::numbers::pi / peak_period * (0.7 + 1.3 * i / COUNT);
            const double k = omega * omega / 9.81, direction = 0.6 * u(random);
            // m0 = Hs² / 16 = Σ a² / 2
            const double a = significant_height / 4 * std::sqrt(2.0 / COUNT);
            m_waves.push_back({a, k * std::sin(direction), k * std::cos(direction), omega,
                               std::numbers::pi * u(random)});
        }
    }
    float getBeaufort() const override { return m_beaufort; }

    double getHeight(const ig::dvec3& geodetic) const {
        double height = m_level;
        const double x = (geodetic.x - LONGITUDE) * 104800, y = (geodetic.y - LATITUDE) * 110700;
        for (const Wave& w : m_waves)
            height += w.a * std::cos(w.kx * x + w.ky * y + w.omega * m_time + w.phase);
        return height;
    }
    ig::dvec3 getWorldPoint(const ig::dvec3& world) const override {
        ig::dvec3 g = EARTH.toWGS(world);
        g.z = getHeight(g);
        return EARTH.toWorld(g);
    }

    double m_time = 0, m_level = 0;
    float m_beaufort = 0;

private:
    struct Wave {
        double a, kx, ky, omega, phase;
    };
    std::vector<Wave> m_waves;
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

    /// A box-shaped object floating on its own, its origin at `altitude`.
    ig::Object* addBox(const ig::vec3& size, float mass, double altitude) {
        auto* object = new ig::Object(ig::NODE_DUMMY);
        auto* body = new ig::BodyRigid(mass, {});
        body->addShape(ig::Shape::createBox(size));
        object->setBody(body);
        place(object, altitude);
        return object;
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
