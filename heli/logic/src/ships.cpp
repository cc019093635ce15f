// SPDX-License-Identifier: MIT

// The ships: found at start-up, advanced by the frame, put back by a reset.

#include "common/ship/FlagOper.h"
#include "common/ship/Flotation.h"
#include "common/ship/Ship.h"
#include "common/ship/Wakes.h"
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/base/jLog.h"
#include "ig/physics/Body.h"
#include "ig/scene/World.h"
#include "memory.h"
#include "nodes.h"

#include <algorithm>
#include <string>

using namespace ig;

namespace {

using Logic = Logic_Nerith_Heli_Final;

constexpr int FULL_AHEAD = 2;           ///< control mode
constexpr float FLAG_AMPLITUDE = 10.0f; ///< degrees
constexpr float FLAG_SPEED = 3.0f;      ///< degrees per second

/// A ship that the world may have. A new one is a row, and the two members that it names.
struct SceneShip {
    const char* node; ///< a prefab
    Ship* Logic::*ship;
    dmat4 Logic::*start;
    float thrust;    ///< N per m³
    float wake_life; ///< seconds
    struct {
        const char* node;
        FlagOper* Logic::*oper;
    } flags[2];
};

constexpr SceneShip SHIPS[] = {
    {"SM_055_CN_2023",
     &Logic::m_ship1,
     &Logic::m_ship1_start,
     700,
     30,
     {{"qizi1", &Logic::m_flag_qizi1}, {"qizi2", &Logic::m_flag_qizi2}}},
    {"LNJ_2023",
     &Logic::m_ship2,
     &Logic::m_ship2_start,
     300,
     40,
     {{"qizhi", &Logic::m_flag_qizhi}}},
};

/// Warns of a body that gravity takes through ground and sea.
void tell_when_loose(const Object& object) {
    const BodyRigid* body = object.getBodyRigid();
    if (!body || body->getMass() <= 0 || body->isLanding() || body->getNumJoints() > 0) return;
    if (!body->isEnabled() || !object.isVisible()) return;
    std::string ships;
    for (const SceneShip& row : SHIPS)
        ships += (ships.empty() ? "\"" : ", \"") + std::string(row.node) + '"';
    jLog::warning(
        "Logic_Nerith_Heli_Final::init: \"%s\" falls through ground and sea: only prefabs "
        "of the names %s float as ships. \"landing: true\" lets its body come to rest "
        "on the ground, \"floating: true\" on the sea too, and with mass 0 it stays where "
        "it is",
        object.getName().c_str(), ships.c_str());
}

/// For a node and those below it.
void tell_loose_bodies(const Node& node) {
    if (node.isObject()) tell_when_loose(static_cast<const Object&>(node));
    for (int i = 0; i < node.getNumChildren(); i++)
        tell_loose_bodies(*node.getChild(i));
}

} // namespace

void Logic_Nerith_Heli_Final::create_ships() {
    for (const SceneShip& row : SHIPS) {
        ObjectPrefab* prefab = asPrefab(m_world->getNodeByName(row.node));
        this->*row.ship = nullptr;
        if (!prefab) continue;
        prefab->moveBodyFromRoot();
        if (m_ocean) tellFlotation(*prefab);
        Ship* ship = create<Ship>("Logic_Nerith_Heli_Final::init", prefab, m_ocean);
        if (!ship) continue; // out of memory
        ship->setControlMode(FULL_AHEAD);
        ship->setThrust(row.thrust);
        if (Wakes* wakes = ship->getWakes()) wakes->setWakeLife(row.wake_life);
        this->*row.ship = ship;
        this->*row.start = prefab->getWorldTransform();
        for (const auto& flag : row.flags) {
            Node* node = flag.node ? prefab->getNodeByName(flag.node) : nullptr;
            if (node) (this->*flag.oper)->init(node, FLAG_AMPLITUDE, FLAG_SPEED);
        }
    }
    for (const Node* node : m_world->getNodes()) {
        const bool floats = std::ranges::any_of(SHIPS, [&](const SceneShip& row) {
            return this->*row.ship && (this->*row.ship)->getObject() == node;
        });
        if (!floats && node != m_heli->m_prefab) tell_loose_bodies(*node);
    }
}

void Logic_Nerith_Heli_Final::update_ships() {
    for (const SceneShip& row : SHIPS) {
        Ship* ship = this->*row.ship;
        if (!ship) continue;
        if (ship->getObject()->isEnabled() && ship->getWakes()) ship->getWakes()->update();
        ship->update();
    }
}

/// Back at their start poses, at rest.
void Logic_Nerith_Heli_Final::reset_ships() {
    for (const SceneShip& row : SHIPS)
        if (const Ship* ship = this->*row.ship)
            ship->getObject()->setWorldTransform(this->*row.start);
}
