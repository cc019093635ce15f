// SPDX-License-Identifier: MIT
#include "assets.h"
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/Track.h"

using namespace ig;

namespace {

// ------------------------------------------------------------------ from the host

/// Rain, snow and hail share one table: a level is its own code.
void emitLevel(const SignalList<WEATHER_DETAIL>& list, int level) {
    if (level >= DETAIL_NONE && level <= DETAIL_HEAVY)
        emit(list, static_cast<WEATHER_DETAIL>(level));
}

} // namespace

void Logic_Nerith_Heli_Final::apply_system(UdpRecvData& record) {
    switch (record.system_cmd) {
    case 1:
        emit(m_sig_command, CMD_RUN);
        break;
    case 2:
        emit(m_sig_command, CMD_FREEZE);
        break;
    case 3:
        emit(m_sig_command, CMD_STOP);
        break;
    case 4:
        emit(m_sig_command, CMD_EXIT);
        break;
    default:
        break;
    }
}

void Logic_Nerith_Heli_Final::apply_weather(UdpRecvData& record) {
    switch (record.weather_type) {
    case 1:
        emit(m_sig_weather, WEATHER_CLEAR);
        break;
    case 2:
        emit(m_sig_weather, WEATHER_OVERCAST);
        break;
    case 3:
        emit(m_sig_weather, WEATHER_STORM);
        break;
    case 4:
        emit(m_sig_weather, WEATHER_FOG);
        break;
    default:
        break;
    }
}

void Logic_Nerith_Heli_Final::apply_rain(UdpRecvData& record) {
    emitLevel(m_sig_rain, record.rain_level);
}

void Logic_Nerith_Heli_Final::apply_snow(UdpRecvData& record) {
    emitLevel(m_sig_snow, record.snow_level);
}

void Logic_Nerith_Heli_Final::apply_hail(UdpRecvData& record) {
    emitLevel(m_sig_hail, record.hail_level);
}

void Logic_Nerith_Heli_Final::apply_cloud(UdpRecvData& record) {
    CloudInfo info;
    info.enable = record.cloud_enable != 0;
    info.param1 = record.cloud_param1;
    info.param2 = record.cloud_param2;
    info.base = record.cloud_base;
    info.thickness = record.cloud_top - record.cloud_base;
    info.ratio = record.cloud_percent / 100.0f;
    emit(m_sig_cloud, &info);
}

// ------------------------------------------------------------------ from the application

void Logic_Nerith_Heli_Final::setRain(float value) {
    if (m_heli && m_heli->m_prefab) {
        for (const char* name : {"glass_top_left", "windows"}) {
            Node* node = m_heli->m_prefab->getNodeByName(name);
            if (!node || !node->isObject()) continue;
            if (Material* glass = static_cast<Object*>(node)->getSurfaceMaterial(0))
                glass->setParameterSliderByName("rain_power", value);
        }
    }
    if (Track* wet = get_track(WET_RUNWAY)) wet->set(value);
    m_raining = value > 0;
}

void Logic_Nerith_Heli_Final::setSnow(float value) {
    if (Track* ice = get_track(ICY_RUNWAY)) ice->set(value);
}

void Logic_Nerith_Heli_Final::setTod(float value) {
    if (Track* lights = get_track(LIGHTS)) lights->set(value);
}
