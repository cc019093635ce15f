// SPDX-License-Identifier: MIT
#include "assets.h"
#include "heli/kit/HelicopterCorax.h"
#include "heli/kit/LogicActions.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "heli/logic/records.h"
#include "ig/base/jLog.h"
#include "ig/physics/Body.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/Track.h"
#include "ig/scene/World.h"
#include "memory.h"

using namespace ig;

jString Logic_Nerith_Heli_Final::getWorldPath() { return WORLD; }

void Logic_Nerith_Heli_Final::load_track(const jString& path) {
    static const char* const OPERATION = "Logic_Nerith_Heli_Final::load_track";
    if (path.empty()) return;
    Track* track = create<Track>(OPERATION);
    if (!track) return;
    if (!track->load(path, m_world)) {
        jLog::error("%s:\"%s\" load failed", OPERATION, path.c_str());
        track->release();
        destroy(track, OPERATION);
        return;
    }
    m_tracks.append(track);
    emit(m_sig_track_loaded, track);
}

Track* Logic_Nerith_Heli_Final::get_track(const jString& path) const {
    for (Track* track : m_tracks)
        if (track->getPath() == path) return track;
    return nullptr;
}

void Logic_Nerith_Heli_Final::reset() {
    m_action_manager.removeAllActions();
    reset_helicopter();
    reset_ships();
    clear_all_particles();
    // The application clears what it keeps of the old scene.
    emit(m_sig_code, 25);
    emit(m_sig_code, 26);
    for (TorpedoInfo* info : m_torpedo_infos) {
        m_action_manager.removeAction(info->action);
        remove_from_scene(info->prefab);
        destroy(info, "Logic_Nerith_Heli_Final::reset");
    }
    m_torpedo_infos.clear();
    for (SonarInfo* info : m_thrown_sonars) {
        remove_from_scene(info->prefab);
        destroy(info, "Logic_Nerith_Heli_Final::reset");
    }
    m_thrown_sonars.clear();
    for (ObjectPrefab* decoy : m_decoys)
        remove_from_scene(decoy);
    m_decoys.clear();
    release_sonar();
}

/// Intact, at rest, at the start marker.
void Logic_Nerith_Heli_Final::reset_helicopter() {
    m_heli->set_collective_decay(1.0f);
    m_heli->m_collective = 0;
    if (m_heli->m_body) {
        m_heli->m_body->setLinearVelocity(vec3_zero);
        m_heli->m_body->setAngularVelocity(vec3_zero);
    }
    show_airframe("fire", false);
    show_airframe("destroyed", false);
    show_airframe("normal", true);
    if (const Node* start = m_world->getNodeByName(getStartNode()))
        m_heli->set_transform(start->getWorldTransform());
}
