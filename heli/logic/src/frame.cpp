// SPDX-License-Identifier: MIT
#include "common/ship/FlagOper.h"
#include "heli/kit/HeliEffectsKitCorax.h"
#include "heli/kit/HelicopterCorax.h"
#include "heli/kit/UdpDataKit.h"
#include "heli/logic/HandOper.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "heli/logic/records.h"
#include "ig/app/Engine.h"
#include "ig/app/IApp.h"
#include "ig/scene/Camera.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/ui/UILayout.h"
#include "ig/ui/UISpriteViewport.h"
#include "memory.h"
#include "plugins/ocean/ObjectOcean.h"
#include "plugins/terrain/ObjectTerrain.h"

#include <algorithm>

using namespace ig;

namespace {
const char* const RELEASE = "Logic_Nerith_Heli_Final::release";
constexpr float NO_GROUND = -1e9f;    ///< neither terrain nor sea below the helicopter
constexpr double RADAR_HEIGHT = 10.0; ///< of the radar camera above the helicopter, metres
} // namespace

void Logic_Nerith_Heli_Final::update(float dt) {
    // Applies the host's records, also while the scene stands still.
    m_timers.update(dt > 0 ? dt : Engine::get()->getFrameTime());
    update_flags(dt);
    if (m_cmder) m_cmder->update(dt);
    place_panels();
    if (m_heli) {
        update_ground_reference();
        update_precipitation_deflector();
        update_radar_camera();
    }
    update_ships();
    update_input();
    update_torpedo(dt);
    update_sonar();
    update_sonar_op();
    update_missle();
    poll_hold_buttons(dt);
    update_effects();
    m_action_manager.update(dt);
    if (m_heli && m_sonar_info && m_sonar_info->prefab)
        pin_cable(m_sonar_info->anchor, m_sonar_mount);
    if (m_heli && m_winch_info && m_winch_info->prefab)
        pin_cable(m_winch_info->anchor, m_winch_mount);
    send_udp();
}

void Logic_Nerith_Heli_Final::update_flags(float dt) {
    for (FlagOper* flag : {m_flag_qizi1, m_flag_qizi2, m_flag_qizhi})
        if (flag) flag->update(dt);
}

/// Keeps the panels in the window's corners, whatever its size.
void Logic_Nerith_Heli_Final::place_panels() {
    const IApp* app = Engine::get()->getApp();
    if (!app) return;
    const int width = app->getWidth(), height = app->getHeight();
    if (m_btn_panel)
        m_btn_panel->setPosition(width - m_btn_panel->getWidth(),
                                 height - m_btn_panel->getHeight());
    if (m_cam_panel) m_cam_panel->setPosition(0, height - m_cam_panel->getHeight());
    if (m_radar_panel) m_radar_panel->setPosition(width - m_radar_panel->getWidth(), 0);
}

/// Measures what lies below the helicopter, for the model and its effects.
void Logic_Nerith_Heli_Final::update_ground_reference() {
    const EllipsoidModel* earth = Engine::get()->getEllipsoidModel();
    const dvec3 position = m_heli->get_world_position();
    const dvec3 geodetic = earth->toWGS(position, true);
    float ground = NO_GROUND;
    m_heli->set_over_water(false);
    double altitude = 0;
    if (m_terrain && m_terrain->getAltitudeByLonLat(geodetic.x, geodetic.y, &altitude, nullptr))
        ground = std::max(NO_GROUND, static_cast<float>(altitude));
    if (m_ocean) {
        const double sea = earth->toWGS(m_ocean->getWorldPoint(position), true).z;
        if (sea > ground) {
            m_heli->set_over_water(true);
            ground = static_cast<float>(sea);
        }
    }
    m_heli->set_ground_height(ground);
}

void Logic_Nerith_Heli_Final::update_precipitation_deflector() {
    for (Node* weather : {m_rain, m_hail, m_snow})
        update_deflector(weather);
}

/// Carries the radar camera above the helicopter, looking straight down, its top ahead.
void Logic_Nerith_Heli_Final::update_radar_camera() {
    if (!m_radar_object) return;
    dvec3 geodetic = Engine::get()->getEllipsoidModel()->toWGS(m_heli->get_world_position(), true);
    geodetic.z += RADAR_HEIGHT;
    const double heading = m_heli->m_prefab ? m_heli->m_prefab->getWgsHPR().x : 0;
    m_radar_object->setWgsHPR({heading, 90.0, 0.0});
    m_radar_object->setWgsPosition(geodetic);
}

/// The downwash is stronger with more collective, and weaker over high ground.
void Logic_Nerith_Heli_Final::update_effects() {
    if (!m_effects || !m_heli) return;
    m_effects->update();
    m_effects->update_fade((10.0f - m_heli->get_ground_height() / 25.0f) * m_heli->m_collective);
}

void Logic_Nerith_Heli_Final::pin_cable(Node* anchor, const dmat4& mount) {
    if (anchor) anchor->setWorldPosition(m_heli->get_world_transform() * mount.getTranslate());
}

void Logic_Nerith_Heli_Final::swap() {
    if (!m_heli) return;
    if (m_player_mode == PLAYER_MODE_FIRST)
        place_first_view();
    else if (m_player_mode == PLAYER_MODE_THIRD)
        update_third_view();
}

void Logic_Nerith_Heli_Final::getHanging(jVector<Hanging>& hanging) {
    if (const SonarInfo* sonar = m_sonar_info; sonar && sonar->anchor) {
        if (is_break_sonar_joint()) {
            hanging.append({sonar->anchor, sonar->anchor});
            if (sonar->rope) hanging.append({sonar->rope, sonar->anchor});
        } else {
            hanging.append({sonar->prefab, sonar->anchor});
        }
    }
    if (const WinchInfo* winch = m_winch_info; winch && winch->anchor)
        hanging.append({winch->prefab, winch->anchor});
}

void Logic_Nerith_Heli_Final::release() {
    if (m_udp_recv) m_udp_recv->release();
    destroy(m_udp_recv, RELEASE);
    if (m_udp_send) m_udp_send->release();
    destroy(m_udp_send, RELEASE);
    if (m_radar_object) {
        if (m_radar_viewport) m_radar_viewport->setCamera(nullptr); // the interface is still there
        m_radar_object->release();
    }
    destroy(m_radar_object, RELEASE);
    destroy(m_effects, RELEASE);
    if (m_heli) m_heli->remove_prefab();
    destroy(m_heli, RELEASE);
    destroy(m_sonar_info, RELEASE);
    destroy(m_winch_info, RELEASE);
    destroy(m_flag_qizhi, RELEASE);
    destroy(m_flag_qizi1, RELEASE);
    destroy(m_flag_qizi2, RELEASE);
    destroy(m_cmder, RELEASE);
}
