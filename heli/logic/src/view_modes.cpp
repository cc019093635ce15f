// SPDX-License-Identifier: MIT
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/scene/CameraControl.h"
#include "ig/ui/UIButton.h"

using namespace ig;

void Logic_Nerith_Heli_Final::set_player_mode(PLAYER_MODE mode) {
    if (mode == PLAYER_MODE_THIRD) {
        // Exactly as the last third-view placement left it, whatever the other modes did meanwhile.
        m_camera_control->m_rotation = m_third_cam_rot;
        m_camera_control->updateView();
        m_camera_control->m_position = m_third_cam_pos;
        m_camera_control->updateView();
    }
    static const char* const NAMES[] = {"第一视角", "第三视角", "自由视角"};
    if (m_btn_view && mode >= PLAYER_MODE_FIRST && mode <= PLAYER_MODE_FREE)
        m_btn_view->setText(NAMES[mode]);
    m_player_mode = mode;
}

void Logic_Nerith_Heli_Final::change_view() {
    set_player_mode(static_cast<PLAYER_MODE>((m_player_mode + 1) % 3));
}

void Logic_Nerith_Heli_Final::on_click_change_view(const UIEventMouse*, UIElement*) {
    change_view();
}

/// Puts the camera into the cockpit. Needs the helicopter.
void Logic_Nerith_Heli_Final::place_first_view() {
    dvec3 position, scale;
    dquat rotation;
    decomposeTransform(m_heli->get_world_transform() * m_first_view_transform, position, rotation,
                       scale);
    m_camera_control->m_position = position;
    m_camera_control->m_rotation = rotation;
    m_camera_control->updateView();
}
