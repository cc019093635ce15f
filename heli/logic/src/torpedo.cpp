// SPDX-License-Identifier: MIT
#include "assets.h"
#include "heli/kit/HelicopterCorax.h"
#include "heli/kit/LogicActions.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "heli/logic/records.h"
#include "ig/app/Engine.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/World.h"
#include "memory.h"
#include "plugins/ocean/ObjectOcean.h"

using namespace ig;

namespace {
const char* const EMIT_TORPEDO = "Logic_Nerith_Heli_Final::emit_torpedo";
constexpr double DROP_HEIGHT = 3;       ///< below the helicopter, metres
constexpr float TIME_LIMIT = 40;        ///< seconds
constexpr float PARACHUTE_DELAY = 1.5f; ///< seconds
constexpr float EXPLOSION_TIME = 20;    ///< seconds
} // namespace

void Logic_Nerith_Heli_Final::emit_torpedo() {
    if (!m_heli) return;
    auto* prefab = create<ObjectPrefab>(EMIT_TORPEDO, TORPEDO);
    if (!prefab) return;
    prefab->setWorldTransform(place_below_helicopter(DROP_HEIGHT));
    auto* info = create<TorpedoInfo>(EMIT_TORPEDO);
    if (!info) {
        delete prefab;
        return;
    }
    info->prefab = prefab;
    info->torpedo = prefab->getNodeByName("torpedo");
    info->parachute = prefab->getNodeByName("parachute");
    if (info->parachute) info->parachute->setEnabled(false);
    info->time_left = TIME_LIMIT;
    m_torpedo_infos.append(info);
    m_world->addNode(prefab);
    info->action = ActionEmitTorpedo::Create(info, PARACHUTE_DELAY);
    m_action_manager.addAction(info->action, false);
    emit(m_sig_prefab_added, prefab, false);
}

void Logic_Nerith_Heli_Final::update_torpedo(float dt) {
    if (!m_ocean) return;
    for (int i = 0; i < m_torpedo_infos.size();) {
        TorpedoInfo* info = m_torpedo_infos[i];
        if (!is_torpedo_over(*info, dt)) {
            i++;
            continue;
        }
        emit(m_sig_node_removed, info->prefab);
        m_action_manager.removeAction(info->action);
        m_world->removeNode(info->prefab);
        destroy(info, "Logic_Nerith_Heli_Final::update_torpedo");
        m_torpedo_infos.removeFast(i); // the last one comes next
    }
}

/// Advances one torpedo; true when it is to be removed, at the end of its time or in the water,
/// with the effects of its entry.
bool Logic_Nerith_Heli_Final::is_torpedo_over(TorpedoInfo& info, float dt) {
    if (!info.prefab->isEnabled()) return false;
    info.time_left -= dt;
    if (info.time_left < 0) return true;
    if (!info.torpedo) return false;
    const EllipsoidModel& earth = *Engine::get()->getEllipsoidModel();
    const dvec3 place = info.torpedo->getWorldPosition();
    const dvec3 surface = m_ocean->getWorldPoint(place);
    if (earth.toWGS(surface, true).z < earth.toWGS(place, true).z) return false;
    play_effect(EXPLOSION, EXPLOSION_TIME, place);
    play_splash(COLUMN_OF_WATER, surface);
    return true;
}
