// SPDX-License-Identifier: MIT
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/app/ControlApp.h"
#include "ig/app/Engine.h"

#include <cstdlib>

using namespace ig;

namespace {
constexpr float MAX_THIRD_DIST = 1e7f; ///< metres: farther than the camera sees
} // namespace

void Logic_Nerith_Heli_Final::update_input() {
    IApp* app = Engine::get()->getApp();
    ControlApp* keys = app ? app->getControl() : nullptr;
    const float dt = Engine::get()->getSceneStep();

    if (keys) {
        if (keys->isKeyPress(KEY_F4) && keys->isKeyPress(KEY_ALT)) std::_Exit(0); // at once
        act_on_command_keys(*keys);
        set_speed_by_keys(*keys);
        level_or_move_sonar(*keys, dt);
    }
    const bool keyboard_flight =
        m_player_mode == PLAYER_MODE_FIRST || m_player_mode == PLAYER_MODE_THIRD;
    if (keyboard_flight && m_heli) m_heli->update_input(dt);
    if (m_heli) m_heli->update(dt);
    place_camera_by_input(keys, Engine::get()->getFrameTime());
}

/// One command per frame: of several clicked keys the first in this order acts, and one press acts
/// once.
void Logic_Nerith_Heli_Final::act_on_command_keys(ControlApp& keys) {
    using Logic = Logic_Nerith_Heli_Final;
    struct Command {
        int key;
        void (*act)(Logic&);
    };
    static constexpr Command COMMANDS[] = {
        {KEY_F1, [](Logic& logic) { logic.change_view(); }},
        {KEY_F5, [](Logic& logic) { logic.heli_explosion(); }},
        {KEY_F6, [](Logic& logic) { logic.emit_torpedo(); }},
        {KEY_F2, [](Logic& logic) { logic.emit_sonar(); }},
        {KEY_F3, [](Logic& logic) { logic.break_sonar_joint(); }},
        {KEY_SPACE, [](Logic& logic) { logic.emit_missile(); }},
    };
    for (const Command& command : COMMANDS) {
        if (!keys.isKeyClick(command.key)) continue;
        command.act(*this);
        keys.clearKeyClick(command.key);
        return;
    }
}

void Logic_Nerith_Heli_Final::set_speed_by_keys(ControlApp& keys) {
    struct Speed {
        int key;
        int speed; ///< metres per second
    };
    static constexpr Speed SPEEDS[] = {
        {'1', 10}, {'2', 200}, {'3', 1000}, {'4', 10000}, {'5', 10000}};
    for (const Speed& speed : SPEEDS) {
        if (!keys.isKeyClick(speed.key)) continue;
        m_cam_speed = speed.speed;
        keys.clearKeyClick(speed.key);
        return;
    }
}

/// The frame in which Return is clicked does not move the sonar.
void Logic_Nerith_Heli_Final::level_or_move_sonar(ControlApp& keys, float dt) {
    if (keys.isKeyClick(KEY_RETURN)) {
        adjust_geo_rotation_forward();
        keys.clearKeyClick(KEY_RETURN);
    } else if (keys.isKeyPress(KEY_DOWN)) {
        sonar_down(dt);
    } else if (keys.isKeyPress(KEY_UP)) {
        sonar_up(dt);
    }
}

void Logic_Nerith_Heli_Final::place_camera_by_input(const ControlApp* keys, float dt) {
    const float sensitivity = keys ? keys->getMouseSensitivity() : 0;
    const float dx = keys ? keys->getMouseDX() * sensitivity : 0;
    const float dy = keys ? keys->getMouseDY() * sensitivity : 0;
    if (m_player_mode == PLAYER_MODE_FIRST && m_heli) {
        place_first_view();
    } else if (m_player_mode == PLAYER_MODE_THIRD && m_heli) {
        if (keys && keys->isLeftButtonDown()) rot_around(-dx, -dy);
        const auto zoom = [this](double factor) {
            const auto distance = static_cast<float>(m_third_dist * factor);
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
