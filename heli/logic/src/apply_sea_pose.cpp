// SPDX-License-Identifier: MIT
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/app/Engine.h"
#include "ig/scene/ObjectPrefab.h"
#include "plugins/ocean/ObjectOcean.h"

using namespace ig;

namespace {
constexpr float ROTOR_SPEED_SCALE = 60.0f; ///< the host's rotor value to degrees per second
constexpr float FULL_COLLECTIVE = 270.0f;  ///< the rotor value that stands for full collective
constexpr double SEA_SPEED_SCALE = 0.01;   ///< the host's sea speed to m/s
} // namespace

void Logic_Nerith_Heli_Final::apply_ocean(UdpRecvData& record) {
    emit(m_sig_sea, static_cast<int>(record.sea_code));
    if (!m_ocean) return;
    m_ocean->setSpeed(static_cast<float>(record.sea_speed * SEA_SPEED_SCALE));
    m_ocean->setAngle(record.sea_angle);
}

void Logic_Nerith_Heli_Final::apply_heli(UdpRecvData& record) {
    if (!m_heli) return;
    m_heli->m_yaw = record.heading;
    m_heli->m_pitch = record.pitch;
    m_heli->m_roll = record.roll;
    if (ObjectPrefab* prefab = m_heli->m_prefab) {
        // Attitude first: it is geodetic, and the node keeps it so when it is moved.
        prefab->setWgsHPR({record.heading, record.pitch, record.roll});
        const dvec3 geodetic(record.longitude, record.latitude, record.altitude);
        prefab->setWorldPosition(Engine::get()->getEllipsoidModel()->toWorld(geodetic, true));
    }
    m_heli->set_rotor_speed(record.rotor_speed * ROTOR_SPEED_SCALE);
    m_heli->m_collective = record.rotor_speed / FULL_COLLECTIVE;
}
