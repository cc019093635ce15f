// SPDX-License-Identifier: MIT
#include "common/wire/UdpSendData.h"
#include "heli/kit/HelicopterCorax.h"
#include "heli/kit/UdpDataKit.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/app/Engine.h"
#include "ig/base/jLog.h"
#include "ig/net/SocketUDP.h"
#include "ig/scene/ObjectPrefab.h"

using namespace ig;

namespace {

constexpr double QUERY_DEPTH = 100000.0; ///< metres straight down

const jString WHEEL_FRONT = "wheel_front", WHEEL_LEFT = "wheel_left", WHEEL_RIGHT = "wheel_right";

void fillWheel(const Node* root, const jString& name, UdpWheelAttitude& wheel) {
    const Node* node = root ? root->getChildByName(name, true) : nullptr;
    if (!node) return;
    const dvec3 hpr = node->getWgsHPR();
    wheel.h = static_cast<float>(hpr.x);
    if (wheel.h >= 360) wheel.h = 0; // what narrowing has rounded up
    wheel.p = static_cast<float>(hpr.y);
    wheel.r = static_cast<float>(hpr.z);
}

} // namespace

void Logic_Nerith_Heli_Final::send_udp() {
    UdpSendData datagram{};
    datagram.frame = Engine::get()->getFrame();
    if (!m_heli) {
        jLog::error("%s:%s", "Logic_Nerith_Heli_Final::send_udp", "m_heli");
    } else if (const ObjectPrefab* prefab = m_heli->m_prefab) {
        const EllipsoidModel* earth = Engine::get()->getEllipsoidModel();
        const dvec3 up = prefab->getWGSTransform().getZ();
        const dvec3 position = prefab->getPosition();
        dvec3 hit;
        if (select_object(position, position - up * QUERY_DEPTH, &hit)) {
            const dvec3 ground = earth->toWGS(hit, true);
            const dvec3 own = earth->toWGS(position, true);
            datagram.ground_latitude = ground.y;
            datagram.ground_longitude = ground.x;
            datagram.height_above_ground = static_cast<float>(own.z - ground.z);
        }
        const Node* root = prefab->getRoot();
        fillWheel(root, WHEEL_FRONT, datagram.wheel_front);
        fillWheel(root, WHEEL_LEFT, datagram.wheel_left);
        fillWheel(root, WHEEL_RIGHT, datagram.wheel_right);
    }
    if (m_udp_send && m_udp_send->m_socket)
        m_udp_send->m_socket->write(&datagram, 1, sizeof datagram);
}
