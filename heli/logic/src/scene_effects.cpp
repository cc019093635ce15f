// SPDX-License-Identifier: MIT

// What torpedoes, missiles, decoys, sonars and the winch have in common: where they begin, how they
// go, and the effects of it; and the states that the airframe shows.

#include "common/ActionAttack/ActionPlaySpe.h"
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/app/Engine.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/World.h"

using namespace ig;

namespace {

constexpr float SPLASH_TIME = 3;    ///< seconds
constexpr double SPLASH_HEIGHT = 1; ///< above the sea, metres

const EllipsoidModel& earth() { return *Engine::get()->getEllipsoidModel(); }

} // namespace

/// The local frame, level and facing north, that many metres below the helicopter along the local
/// vertical.
dmat4 Logic_Nerith_Heli_Final::place_below_helicopter(double distance) const {
    const dmat4 frame = m_heli->m_prefab ? m_heli->m_prefab->getWGSTransform() : dmat4_identity;
    return earth().getWGSTransform(frame.getTranslate() - frame.getZ() * distance, true);
}

/// Names a cable's prefab, places it level at a mount of the helicopter and adds it to the world;
/// returns the mount's place.
dvec3 Logic_Nerith_Heli_Final::add_below_mount(ObjectPrefab* prefab, const dmat4& mount,
                                               const char* name) {
    const dvec3 place = m_heli->get_world_transform() * mount.getTranslate();
    prefab->setWorldTransform(earth().getWGSTransform(place, true));
    prefab->setName(name);
    m_world->addNode(prefab);
    return place;
}

/// Announces that a prefab goes and lets the world remove and destroy it.
void Logic_Nerith_Heli_Final::remove_from_scene(ObjectPrefab* prefab) {
    emit(m_sig_node_removed, prefab);
    m_world->removeNode(prefab);
}

/// Shows or hides one of the airframe's states, a direct child of the prefab's root.
void Logic_Nerith_Heli_Final::show_airframe(const char* state, bool on) {
    const Node* root = m_heli && m_heli->m_prefab ? m_heli->m_prefab->getRoot() : nullptr;
    Node* node = root ? root->getChildByName(state, false) : nullptr;
    if (node) node->setEnabled(on);
}

void Logic_Nerith_Heli_Final::play_effect(const jString& path, float duration,
                                          const dvec3& position) {
    m_action_manager.addAction(ActionPlaySpe::Create(m_world, path, duration, position), false);
    announce_effect(path, duration, position);
}

void Logic_Nerith_Heli_Final::announce_effect(const jString& path, float duration,
                                              const dvec3& position) {
    SynCoder::CMDPlaySpeOnceInfo info{path, duration, earth().getWGSTransform(position, true)};
    emit(m_sig_play_spe_once, &info);
}

/// Shows what is thrown up where something falls into the sea: a little above that point of it.
void Logic_Nerith_Heli_Final::play_splash(const jString& path, const dvec3& surface) {
    dvec3 geodetic = earth().toWGS(surface, true);
    geodetic.z += SPLASH_HEIGHT;
    play_effect(path, SPLASH_TIME, earth().toWorld(geodetic, true));
}
