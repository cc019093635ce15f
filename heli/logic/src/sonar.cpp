// SPDX-License-Identifier: MIT
#include "assets.h"
#include "cable.h"
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "heli/logic/records.h"
#include "ig/app/Engine.h"
#include "ig/physics/Joint.h"
#include "ig/scene/World.h"
#include "memory.h"
#include "plugins/ocean/ObjectOcean.h"

using namespace ig;

namespace {
const char* const JOINT = "sonar"; ///< what holds the sonar body
constexpr double DROP_HEIGHT = 1;  ///< of a thrown buoy below the helicopter, metres
} // namespace

// ------------------------------------------------------------------ the dipping sonar

bool Logic_Nerith_Heli_Final::emit_sonar() {
    release_sonar();
    if (!m_heli) return false;
    auto* prefab = create<ObjectPrefab>("Logic_Nerith_Heli_Final::emit_sonar", DIPPING_SONAR);
    if (!prefab) return false;
    const dvec3 mount = add_below_mount(prefab, m_sonar_mount, "_sonar_");
    prefab->setEnabled(false); // until its first step has measured the sea
    SonarInfo& info = *m_sonar_info;
    info.prefab = prefab;
    info.sonar_root = prefab->getNodeByName("sonar_root");
    info.sonar = prefab->getNodeByName("sonar");
    info.sonar_mesh = prefab->getNodeByName("sonar_mesh");
    info.anchor = prefab->getNodeByName("anchor");
    info.rope = prefab->getNodeByName("rope");
    info.buoy = prefab->getNodeByName("buoy");
    if (info.anchor) info.anchor->setWorldPosition(mount);
    emit(m_sig_prefab_added, prefab, false);
    update_heli_sonar_enable();
    return true;
}

void Logic_Nerith_Heli_Final::release_sonar() {
    if (!m_sonar_info) return;
    if (m_sonar_info->prefab) remove_from_scene(m_sonar_info->prefab);
    *m_sonar_info = {};
    update_heli_sonar_enable();
}

void Logic_Nerith_Heli_Final::break_sonar_joint() {
    const Body* body = m_sonar_info ? bodyOf(m_sonar_info->sonar) : nullptr;
    if (!body) return;
    for (int i = 0; i < body->getNumJoints(); i++)
        if (body->getJoint(i)->getName() == JOINT) body->getJoint(i)->setBroken(true);
    emit(m_sig_node_text, m_sonar_info->sonar, jString(JOINT));
}

bool Logic_Nerith_Heli_Final::is_break_sonar_joint() {
    const Body* body = m_sonar_info ? bodyOf(m_sonar_info->sonar) : nullptr;
    for (int i = 0; body && i < body->getNumJoints(); i++)
        if (body->getJoint(i)->getName() == JOINT) return body->getJoint(i)->isBroken();
    return false;
}

void Logic_Nerith_Heli_Final::sonar_down(float dt) {
    if (m_sonar_info) payOut(m_sonar_info->rope, CABLE_SPEED * dt);
}

void Logic_Nerith_Heli_Final::sonar_up(float dt) {
    if (m_sonar_info) payOut(m_sonar_info->rope, -CABLE_SPEED * dt);
}

void Logic_Nerith_Heli_Final::update_heli_sonar_enable() {
    if (!m_heli || !m_heli->m_prefab || !m_sonar_info) return;
    if (Node* stowed = m_heli->m_prefab->getNodeByName("sonar"))
        stowed->setEnabled(!m_sonar_info->prefab);
}

void Logic_Nerith_Heli_Final::update_sonar_op() {
    if (!m_ocean || !m_sonar_info || !m_sonar_info->prefab || !m_sonar_info->sonar_mesh) return;
    const SonarInfo& info = *m_sonar_info;
    if (!info.prefab->isEnabled()) info.prefab->setEnabled(true);
    const EllipsoidModel& earth = *Engine::get()->getEllipsoidModel();
    const dvec3 place = info.sonar_mesh->getWorldPosition();
    const dvec3 surface = m_ocean->getWorldPoint(place);
    if (!info.sonar_mesh->isEnabled()) { // lost to the sea: it rides on the waves
        if (info.sonar) info.sonar->setWorldTransform(earth.getWGSTransform(surface, true));
        return;
    }
    // While it hangs, the sea closes over it without a splash.
    if (!(earth.toWGS(surface, true).z > earth.toWGS(place, true).z) || !is_break_sonar_joint())
        return;
    info.sonar_mesh->setEnabled(false);
    if (Body* body = bodyOf(info.sonar)) body->setEnabled(false);
    play_splash(SPLASH, surface);
}

// ------------------------------------------------------------------ thrown buoys

void Logic_Nerith_Heli_Final::throw_sonar() {
    static const char* const OPERATION = "Logic_Nerith_Heli_Final::throw_sonar";
    if (!m_heli) return;
    auto* prefab = create<ObjectPrefab>(OPERATION, SONOBUOY);
    if (!prefab) return;
    prefab->moveBodyFromRoot();
    prefab->setWorldTransform(place_below_helicopter(DROP_HEIGHT));
    auto* info = create<SonarInfo>(OPERATION);
    if (!info) {
        delete prefab;
        return;
    }
    info->prefab = prefab;
    info->sonar = info->sonar_mesh = prefab->getNodeByName("sonar");
    m_thrown_sonars.append(info);
    m_world->addNode(prefab);
    emit(m_sig_prefab_added, prefab, true);
}

void Logic_Nerith_Heli_Final::update_sonar() {
    if (!m_ocean) return;
    const EllipsoidModel& earth = *Engine::get()->getEllipsoidModel();
    for (const SonarInfo* info : m_thrown_sonars) {
        if (!info->sonar) return;
        const dvec3 place = info->sonar->getWorldPosition();
        const dvec3 surface = m_ocean->getWorldPoint(place);
        if (!info->sonar->isEnabled()) {
            info->prefab->setWorldTransform(earth.getWGSTransform(surface, true));
        } else if (earth.toWGS(surface, true).z > earth.toWGS(place, true).z) {
            info->sonar->setEnabled(false);
            if (Body* body = info->prefab->getBody()) body->setEnabled(false);
            play_splash(SPLASH, surface);
        }
    }
}
