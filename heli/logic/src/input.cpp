// SPDX-License-Identifier: MIT
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/app/ControlApp.h"
#include "ig/app/Engine.h"

using namespace ig;

namespace {
constexpr float MAX_THIRD_DIST = 1e7f; ///< metres: farther than the camera sees
} // namespace

void Logic_Nerith_Heli_Final::update_input() {
    IApp* app = Engine::get()->getApp();
    ControlApp* keys = app ? app->getControl() : nullptr;
    const float dt = Engine::get()->getFrameTime();
    const float sensitivity = keys ? keys->getMouseSensitivity() : 0;
    const float dx = keys ? keys->getMouseDX() * sensitivity : 0;
    const float dy = keys ? keys->getMouseDY() * sensitivity : 0;

    if (keys && keys->isKeyClick(KEY_F1)) {
        change_view();
        keys->clearKeyClick(KEY_F1);
    }
    const bool keyboard_flight =
        m_player_mode == PLAYER_MODE_FIRST || m_player_mode == PLAYER_MODE_THIRD;
    if (keyboard_flight && m_heli) m_heli->update_input(dt);
    if (m_heli) m_heli->update(dt);

    if (m_player_mode == PLAYER_MODE_FIRST && m_heli) {
        place_first_view();
    } else if (m_player_mode == PLAYER_MODE_THIRD && m_heli) {
        if (keys && keys->isLeftButtonDown()) rot_around(-dx, -dy);
        const auto zoom = [this](double factor) {
            const auto distance = static_cast<float>(static_cast<double>(m_third_dist) * factor);
            if (distance < MAX_THIRD_DIST) m_third_dist = distance;
        };
        if (keys && keys->isWheelButtonDown()) zoom(1.1);
        if (keys && keys->isWheelButtonUp()) zoom(0.9);
        update_third_view();
    } else if (m_player_mode == PLAYER_MODE_FREE) {
        cam_mov(dt);
        cam_free_rot(dx, dy);
    }
}
