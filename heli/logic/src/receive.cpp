// SPDX-License-Identifier: MIT
#include "heli/kit/UdpDataKit.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"

using namespace ig;

namespace {
constexpr std::uint32_t COMMAND_RESET = 6;
constexpr float VISIBILITY_SCALE = 300000.0f; ///< metres that count as 1
} // namespace

void Logic_Nerith_Heli_Final::recv_udp(TimerManager::Timer*) {
    if (!m_udp_recv) return; // released
    m_udp_recv->receive();
    // Every record re-applies everything it carries; the reset comes first, so that the rest of its
    // record is applied on top of the reset scene.
    for (UdpRecvData& record : m_udp_recv->m_records) {
        apply_status(record);
        apply_system(record);
        apply_weather(record);
        apply_rain(record);
        apply_snow(record);
        apply_hail(record);
        apply_cloud(record);
        emit(m_sig_float_3, float(record.weather_value_a));
        emit(m_sig_float_2, -90.0f - record.weather_angle);
        emit(m_sig_float_4, static_cast<float>(record.weather_value_b) / VISIBILITY_SCALE);
        apply_ocean(record);
        apply_heli(record);
        apply_leida(record);
        apply_hang(record);
    }
    m_udp_recv->m_records.clear();
}

void Logic_Nerith_Heli_Final::apply_status(const UdpRecvData& record) {
    if (record.command == COMMAND_RESET) reset();
}

void Logic_Nerith_Heli_Final::apply_leida(UdpRecvData& record) {
    m_radar_value = record.radar_value;
    m_radar_sector_width = record.radar_sector_width;
    m_radar_sector_offset = record.radar_sector_offset;
}

// Nothing of these blocks is shown.
void Logic_Nerith_Heli_Final::apply_leader(UdpRecvData&) {}
void Logic_Nerith_Heli_Final::apply_task(UdpRecvData&) {}
void Logic_Nerith_Heli_Final::apply_other_craft(UdpRecvData&) {}
void Logic_Nerith_Heli_Final::apply_targets(UdpRecvData&) {}
void Logic_Nerith_Heli_Final::apply_lights(UdpRecvData&) {}
void Logic_Nerith_Heli_Final::apply_monit(UdpRecvData&) {}
void Logic_Nerith_Heli_Final::apply_pnvs(UdpRecvData&) {}
void Logic_Nerith_Heli_Final::apply_ssds(UdpRecvData&) {}
void Logic_Nerith_Heli_Final::apply_ships(UdpRecvData&) {}
void Logic_Nerith_Heli_Final::apply_observe_mode(UdpRecvData&) {}
void Logic_Nerith_Heli_Final::apply_ship_state(UdpRecvData&) {}
void Logic_Nerith_Heli_Final::apply_ground_state(UdpRecvData&) {}
void Logic_Nerith_Heli_Final::apply_fog(UdpRecvData&) {}
