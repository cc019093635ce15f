// SPDX-License-Identifier: MIT
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/scene/Node.h"
#include "memory.h"

using namespace ig;

namespace {
constexpr int LEVEL_CAMERA = 654321; ///< identifier of the UI message
constexpr int PROJECTOR_KEY = 'g';
} // namespace

extern "C" LOGIC_API LogicBase* CreateLogic(World* world, CameraControl* camera) {
    return create<Logic_Nerith_Heli_Final>("CreateLogic", world, camera);
}

Logic_Nerith_Heli_Final::Logic_Nerith_Heli_Final(World* world, CameraControl* camera)
    : LogicBase(world, camera) {
    MsgNode::attach();
}

Logic_Nerith_Heli_Final::Logic_Nerith_Heli_Final(const Logic_Nerith_Heli_Final&) = default;
Logic_Nerith_Heli_Final&
Logic_Nerith_Heli_Final::operator=(const Logic_Nerith_Heli_Final&) = default;

Logic_Nerith_Heli_Final::~Logic_Nerith_Heli_Final() { MsgNode::detach(); }

void Logic_Nerith_Heli_Final::onKeyRelease(const GUIEventKey& event, IApp*) {
    if (event.key != PROJECTOR_KEY || !m_heli || !m_heli->m_front_proj) return;
    m_heli->m_front_proj->setEnabled(!m_heli->m_front_proj->isEnabled());
}

void Logic_Nerith_Heli_Final::onMouseWheel(const GUIEventWheel& event, IApp*) {
    if (!m_heli || m_player_mode != PLAYER_MODE_THIRD) return;
    const float s = event.delta / 120.0f * event.flag;
    on_third_view_wheel(s == 0 ? -1.0f : 1.0f);
}

void Logic_Nerith_Heli_Final::processMsg(UiMsg* message) {
    if (message->id == LEVEL_CAMERA) adjust_geo_rotation_forward();
    MsgNode::processMsg(message);
}
