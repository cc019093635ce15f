// SPDX-License-Identifier: MIT
#include "common/ActionAttack/ActionPlaySpe.h"
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
using namespace logic_memory;

namespace {
const char* const TORPEDO = "data/PELMAR_PROJECT/prefabs/yulei_CORAXF/yulei.prefab";
const char* const EXPLOSION = "data/art/prefab/vfx/explosion_1/explosion_1.prefab";
const char* const SPLASH = "data/PELMAR_PROJECT/prefabs/vfx/water_explosion/water_explosion.prefab";
const char* const EMIT = "Logic_Nerith_Heli_Final::emit_torpedo";
constexpr double DROP_HEIGHT = 3;       ///< below the helicopter, metres
constexpr float TIME_LIMIT = 40;        ///< seconds
constexpr float PARACHUTE_DELAY = 1.5f; ///< seconds
constexpr double SPLASH_HEIGHT = 1;     ///< above the sea, metres
} // namespace

void Logic_Nerith_Heli_Final::emit_torpedo() {
    if (!m_heli) return;
    auto* prefab = create<ObjectPrefab>(EMIT, TORPEDO);
    if (!prefab) return;
    prefab->setWorldTransform(place_below_helicopter(DROP_HEIGHT));
    auto* info = create<TorpedoInfo>(EMIT);
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

/// The local frame, level and facing north, that many metres below the helicopter along the local
/// vertical.
dmat4 Logic_Nerith_Heli_Final::place_below_helicopter(double distance) const {
    const dmat4 frame = m_heli->m_prefab ? m_heli->m_prefab->getWGSTransform() : dmat4_identity;
    return Engine::get()->getEllipsoidModel()->getWGSTransform(
        frame.getTranslate() - frame.getZ() * distance, true);
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
    play_effect(EXPLOSION, 20, place);
    play_effect(SPLASH, 3, lift(surface, SPLASH_HEIGHT));
    return true;
}

dvec3 Logic_Nerith_Heli_Final::lift(const dvec3& world, double height) const {
    const EllipsoidModel& earth = *Engine::get()->getEllipsoidModel();
    dvec3 geodetic = earth.toWGS(world, true);
    geodetic.z += height;
    return earth.toWorld(geodetic, true);
}

void Logic_Nerith_Heli_Final::play_effect(const jString& path, float duration,
                                          const dvec3& position) {
    m_action_manager.addAction(ActionPlaySpe::Create(m_world, path, duration, position), false);
    announce_effect(path, duration, position);
}

void Logic_Nerith_Heli_Final::announce_effect(const jString& path, float duration,
                                              const dvec3& position) {
    SynCoder::CMDPlaySpeOnceInfo info{
        path, duration, Engine::get()->getEllipsoidModel()->getWGSTransform(position, true)};
    emit(m_sig_play_spe_once, &info);
}
