// SPDX-License-Identifier: MIT
#include "assets.h"
#include "heli/kit/HelicopterCorax.h"
#include "heli/kit/LogicActions.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/action/ActionInterval.h"
#include "ig/physics/Body.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/World.h"
#include "memory.h"

using namespace ig;

namespace {
constexpr double LAUNCH_DISTANCE = 5;  ///< ahead of the helicopter, metres
constexpr float MISSILE_SPEED = 300;   ///< m/s
constexpr float MISSILE_LIFETIME = 20; ///< seconds
constexpr float EXPLOSION_TIME = 20;   ///< seconds
constexpr float DECOY_IMPULSE = 50;    ///< N·s
constexpr float DECOY_LIFETIME = 20;   ///< seconds
} // namespace

void Logic_Nerith_Heli_Final::MissileCallback::onContact(Body* body, int contact) {
    emit(m_handlers, body, contact);
}

void Logic_Nerith_Heli_Final::emit_missile() {
    if (!m_heli) return;
    auto* prefab = create<ObjectPrefab>("Logic_Nerith_Heli_Final::emit_missile", MISSILE);
    if (!prefab) return;
    prefab->moveBodyFromRoot();
    if (Body* body = prefab->getBody()) body->setContactCallback(&m_missile_callback);
    addUnique(m_missile_callback.m_handlers, {this, &Logic_Nerith_Heli_Final::on_missile_hit});
    prefab->setTransform(m_heli->get_world_transform() * translate(dvec3(0, LAUNCH_DISTANCE, 0)));
    m_action_manager.addAction(ActionEmitMissile::Create(prefab, MISSILE_SPEED, MISSILE_LIFETIME),
                               false);
    m_world->addNode(prefab);
    emit(m_sig_prefab_added, prefab, true);
    m_missiles.append(prefab);
}

void Logic_Nerith_Heli_Final::on_missile_hit(Body* body, int) {
    if (!body->isEnabled()) return; // it has exploded already
    const auto* object = static_cast<const Object*>(body->getOwner());
    body->setEnabled(false);
    play_effect(MISSILE_HIT, EXPLOSION_TIME, object->getWorldPosition());
}

void Logic_Nerith_Heli_Final::update_missle() {
    for (int i = 0; i < m_missiles.size();) {
        ObjectPrefab* missile = m_missiles[i];
        if (missile->isEnabled()) {
            i++;
            continue;
        }
        remove_from_scene(missile);
        m_missiles.removeFast(i); // the last one comes next
    }
}

void Logic_Nerith_Heli_Final::emit_decoy() {
    for (const dmat4& dispenser : m_dispensers) {
        if (!m_heli) return;
        auto* prefab = create<ObjectPrefab>("Logic_Nerith_Heli_Final::emit_decoy", DECOY);
        if (!prefab) return;
        prefab->moveBodyFromRoot();
        prefab->setTransform(m_heli->get_world_transform() * dispenser);
        if (BodyRigid* body = prefab->getBodyRigid())
            body->addImpulse(vec3_zero, vec3(prefab->getWorldTransform().getX()) * DECOY_IMPULSE);
        auto* timer = ActionInterval::Create(DECOY_LIFETIME,
                                             {this, &Logic_Nerith_Heli_Final::on_decoy_delete});
        if (timer) timer->setData(prefab);
        m_action_manager.addAction(timer, false);
        m_world->addNode(prefab);
        m_decoys.append(prefab);
        emit(m_sig_prefab_added, prefab, true);
    }
}

void Logic_Nerith_Heli_Final::on_decoy_delete(Action* action) {
    auto* decoy = static_cast<ObjectPrefab*>(action->getData());
    const int i = m_decoys.find(decoy);
    if (i >= 0) m_decoys.removeFast(i);
    remove_from_scene(decoy);
}
