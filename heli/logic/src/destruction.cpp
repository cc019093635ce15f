// SPDX-License-Identifier: MIT
#include "assets.h"
#include "common/ActionAttack/ActionPlaySpe.h"
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/action/ActionMulti.h"
#include "ig/math/jMath.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "nodes.h"

using namespace ig;

namespace {

constexpr float EXPLOSION_TIME = 6;       ///< seconds
constexpr float WRECK_DELAY = 0.2f;       ///< seconds until the airframe turns into its wreck
constexpr float TUMBLE_TORQUE = 300000;   ///< N·m about each of the two axes
constexpr float COLLECTIVE_DECAY = 0.98f; ///< per input step of keyboard flight

/// Pushes the airframe over, to either side.
void tumble(HelicopterCorax& heli) {
    if (!heli.m_body) return;
    const dmat4 world = heli.get_world_transform();
    for (const dvec3& axis : {world.getZ(), world.getX()}) {
        const float side = jMath::sign(static_cast<float>(2 * jRandReal() - 1));
        heli.m_body->addTorque(vec3(axis) * (TUMBLE_TORQUE * side));
    }
}

void clearIfParticles(Node* node) {
    if (node->getType() == OBJECT_PARTICLES) static_cast<ObjectParticles*>(node)->clearParticles();
}

} // namespace

bool Logic_Nerith_Heli_Final::heli_explosion() {
    if (!m_heli) return true;
    jVector<ActionInterval*> actions;
    actions.append(
        ActionPlaySpe::Create(m_world, EXPLOSION, EXPLOSION_TIME, m_heli->get_world_position()));
    actions.append(
        ActionInterval::Create(WRECK_DELAY, {this, &Logic_Nerith_Heli_Final::on_heli_destory}));
    m_action_manager.addAction(ActionMulti::Create(actions), false);
    m_heli->set_collective_decay(COLLECTIVE_DECAY);
    tumble(*m_heli);
    if (Node* root = m_heli->m_prefab ? m_heli->m_prefab->getRoot() : nullptr) {
        if (Node* fire = root->getChildByName("fire", false)) fire->setEnabled(true);
        Node* flames = root->getChildByName("fire_spe", true);
        if (flames && flames->getType() == OBJECT_PARTICLES)
            static_cast<ObjectParticles*>(flames)->play();
    }
    announce_effect(EXPLOSION, EXPLOSION_TIME, m_heli->get_world_position());
    release_sonar();
    return true;
}

void Logic_Nerith_Heli_Final::on_heli_destory(Action*) {
    show_airframe("destroyed", true);
    show_airframe("normal", false);
}

void Logic_Nerith_Heli_Final::clear_all_particles() {
    for (Node* node : m_world->getNodes()) {
        clearIfParticles(node);
        if (const ObjectPrefab* prefab = asPrefab(node))
            for (Node* part : prefab->getNodes())
                clearIfParticles(part);
    }
}
