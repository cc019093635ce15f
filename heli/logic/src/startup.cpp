// SPDX-License-Identifier: MIT
#include "assets.h"
#include "common/ship/FlagOper.h"
#include "heli/config/AppData.h"
#include "heli/kit/HeliEffectsKitCorax.h"
#include "heli/kit/HelicopterCorax.h"
#include "heli/kit/UdpDataKit.h"
#include "heli/logic/HandOper.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "heli/logic/records.h"
#include "ig/base/jLog.h"
#include "ig/scene/CameraControl.h"
#include "ig/scene/World.h"
#include "ig/ui/UIButton.h"
#include "memory.h"
#include "nodes.h"
#include "plugins/ocean/ObjectOcean.h"
#include "plugins/terrain/ObjectTerrain.h"

#include <cstdio>

using namespace ig;

namespace {

const char* const INIT = "Logic_Nerith_Heli_Final::init";

constexpr float RECEIVE_PERIOD = 0.01f; ///< seconds

} // namespace

bool Logic_Nerith_Heli_Final::init() {
    AppData::instance();
    AppData::instance()->load(); // without a file the defaults hold
    const Node* start = m_world->getNodeByName(getStartNode());
    if (!start) return false;

    if (!create_helicopter(*start)) return out_of_memory();
    read_mounts();
    find_weather_and_surfaces();
    if (!create_effects()) return out_of_memory();
    update_third_view();
    init_ui_cam();
    init_ui_btns();
    init_ui_radar();
    place_start_camera();
    if (!create_records()) return out_of_memory();
    create_ships();
    find_commander();
    announce_glass();
    load_tracks();
    preload_prefabs();
    return open_link() || out_of_memory();
}

bool Logic_Nerith_Heli_Final::create_helicopter(const Node& start) {
    // Not controllable: the host flies it.
    m_heli = create<HelicopterCorax>(INIT, m_world, HELICOPTER, false);
    if (!m_heli || !m_heli->m_prefab) return false;
    m_heli->set_transform(start.getWorldTransform());
    if (m_heli->m_tail_light) emit(m_sig_object, m_heli->m_tail_light, 0);
    emit(m_sig_prefab_added, m_heli->m_prefab, true);
    if (m_heli->m_front_proj) m_heli->m_front_proj->setEnabled(false);
    return true;
}

void Logic_Nerith_Heli_Final::read_mounts() {
    m_deflector_mount = m_first_view_transform = m_sonar_mount = m_winch_mount = dmat4_identity;
    const auto read = [this](const char* name, dmat4& transform) {
        if (const Node* node = m_heli->m_prefab->getNodeByName(name))
            transform = node->getTransform();
    };
    read("cam_first_player", m_first_view_transform);
    const char* const dispensers[] = {"dl_0", "dl_1", "dl_2", "dr_0", "dr_1", "dr_2"};
    for (int i = 0; i < 6; i++)
        read(dispensers[i], m_dispensers[i]);
    read("sonar", m_sonar_mount);
    read("winch", m_winch_mount);
    read("deflector", m_deflector_mount);
}

void Logic_Nerith_Heli_Final::find_weather_and_surfaces() {
    m_rain = m_world->getNodeByName("rain");
    if (m_rain) m_raining = m_rain->isEnabled();
    m_hail = m_world->getNodeByName("hail");
    m_snow = m_world->getNodeByName("snow");
    m_third_cam_pos = dvec3_zero;
    m_third_cam_rot = dquat_identity;
    m_terrain = dynamic_cast<ObjectTerrain*>(m_world->getNodeByName("terrain"));
    m_ocean = dynamic_cast<ObjectOcean*>(m_world->getNodeByName("ocean"));
    if (m_ocean) m_ocean->setUseGlobalWind(false); // the host drives it
}

/// A helicopter without downwash has said so, and shows none.
bool Logic_Nerith_Heli_Final::create_effects() {
    m_effects = create<HeliEffectsKitCorax>(INIT);
    if (m_effects && m_effects->init(m_heli)) m_effects->announce(m_sig_object);
    return m_effects != nullptr;
}

void Logic_Nerith_Heli_Final::place_start_camera() {
    m_camera_control->m_rotation = m_third_cam_rot;
    m_camera_control->updateView();
    m_camera_control->m_position = m_third_cam_pos;
    m_camera_control->updateView();
    if (m_btn_view) m_btn_view->setText("第三视角");
    m_player_mode = PLAYER_MODE_THIRD;
}

bool Logic_Nerith_Heli_Final::create_records() {
    m_sonar_info = create<SonarInfo>(INIT);
    m_winch_info = create<WinchInfo>(INIT);
    m_flag_qizi1 = create<FlagOper>(INIT);
    m_flag_qizi2 = create<FlagOper>(INIT);
    m_flag_qizhi = create<FlagOper>(INIT);
    m_cmder = create<HandOper>(INIT);
    return m_sonar_info && m_winch_info && m_flag_qizi1 && m_flag_qizi2 && m_flag_qizhi && m_cmder;
}

void Logic_Nerith_Heli_Final::find_commander() {
    m_cmder->init(asPrefab(m_world->getNodeByName("cmder")));
}

void Logic_Nerith_Heli_Final::announce_glass() {
    for (const char* name : {"glass_top_left", "windows"}) {
        Node* glass = m_heli->m_prefab->getNodeByName(name);
        if (glass && glass->isObject()) emit(m_sig_object, static_cast<Object*>(glass), 0);
    }
}

void Logic_Nerith_Heli_Final::load_tracks() {
    for (const char* path : TRACKS)
        load_track(path);
}

void Logic_Nerith_Heli_Final::preload_prefabs() {
    for (const char* path : PRELOADED) {
        if (ObjectPrefab* prefab = create<ObjectPrefab>(INIT, path)) {
            prefab->release();
            delete prefab;
        }
        emit(m_sig_preload, jString(path));
    }
}

bool Logic_Nerith_Heli_Final::open_link() {
    AppData& config = *AppData::instance();
    const int port = config.recv_from_flightSimulation_port();
    m_udp_recv = create<UdpRecvKit>(INIT);
    if (!m_udp_recv) return false;
    m_udp_recv->init(port); // a kit that failed has said so and receives nothing
    std::printf("接收飞仿数据端口：%d\n", port);
    const jString ip = config.flightSimulation_ip();
    m_udp_send = create<UdpSendKit>(INIT);
    if (!m_udp_send) return false;
    m_udp_send->init(ip, config.send_to_flightSimulation_port());
    std::printf("飞仿IP：%s\n", ip.c_str());
    std::fflush(stdout);
    m_timers.addTimer(RECEIVE_PERIOD)
        ->m_sig_expired.append({this, &Logic_Nerith_Heli_Final::recv_udp});
    return true;
}

bool Logic_Nerith_Heli_Final::out_of_memory() {
    jLog::error("%s: out of memory", INIT);
    return false;
}
