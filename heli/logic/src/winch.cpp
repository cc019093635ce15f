// SPDX-License-Identifier: MIT
#include "assets.h"
#include "cable.h"
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "heli/logic/records.h"
#include "memory.h"
#include "panel.h"

using namespace ig;

namespace {
/// Otherwise the button would seem to do nothing.
const char* const STOWED_BY_HOST =
    "吊索已由飞行仿真收回：数据包中 hang_enable 为 0\n"
    "The flight simulation stows the winch: its records say hang_enable 0";
} // namespace

bool Logic_Nerith_Heli_Final::emit_winch() {
    release_winch();
    if (!m_heli) return false;
    auto* prefab = create<ObjectPrefab>("Logic_Nerith_Heli_Final::emit_winch", BASKET);
    if (!prefab) return false;
    const dvec3 mount = add_below_mount(prefab, m_winch_mount, "_winch_");
    WinchInfo& info = *m_winch_info;
    info.prefab = prefab;
    info.root = prefab->getNodeByName("root");
    info.anchor = prefab->getNodeByName("anchor");
    info.rope = prefab->getNodeByName("rope");
    info.obj = prefab->getNodeByName("obj");
    if (info.anchor) info.anchor->setWorldPosition(mount);
    emit(m_sig_prefab_added, prefab, false);
    return true;
}

void Logic_Nerith_Heli_Final::release_winch() {
    if (!m_winch_info) return;
    if (m_winch_info->prefab) remove_from_scene(m_winch_info->prefab);
    *m_winch_info = {};
}

void Logic_Nerith_Heli_Final::winch_down(float dt) {
    if (m_winch_info) payOut(m_winch_info->rope, CABLE_SPEED * dt);
}

void Logic_Nerith_Heli_Final::winch_up(float dt) {
    if (m_winch_info) payOut(m_winch_info->rope, -CABLE_SPEED * dt);
}

// The hoist stays in sight while its cable is out.
void Logic_Nerith_Heli_Final::update_heli_winch_enable() {}

void Logic_Nerith_Heli_Final::apply_hang(UdpRecvData& record) {
    if (record.hang_enable == 0) {
        const UIRoot* ui = userInterface();
        if (ui && m_winch_info && m_winch_info->prefab) ui->tell(STOWED_BY_HOST);
        release_winch();
        return;
    }
    if (!m_winch_info) return;
    if (!m_winch_info->prefab) emit_winch();
    if (!m_winch_info->prefab) return; // the next record tries again
    if (BodyRope* rope = ropeOf(m_winch_info->rope))
        rope->setLength(record.hang_length / SHOWN_PER_LENGTH);
    const Body* load = bodyOf(m_winch_info->obj);
    if (Shape* shape = load ? load->getShape(0) : nullptr) shape->setMass(record.hang_mass);
}
