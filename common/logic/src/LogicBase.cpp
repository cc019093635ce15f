// SPDX-License-Identifier: MIT
#include "common/logic/LogicBase.h"

#include "ig/scene/Camera.h"
#include "ig/scene/CameraControl.h"

using namespace ig;

LogicBase::LogicBase(World* world, CameraControl* camera)
    : m_camera_control(camera), m_world(world) {}

LogicBase::LogicBase(const LogicBase&) = default;
LogicBase& LogicBase::operator=(const LogicBase&) = default;

void LogicBase::adjust_geo_rotation_forward() {
    if (!m_camera_control || !m_camera_control->getCamera()) return;
    const dmat4& m = m_camera_control->getCamera()->getTransform();
    const dvec3 up = normalize(m.getTranslate());
    dvec3 z = m.getZ();
    dvec3 x = cross(up, z);
    if (length2(x) > 9.999999974752427e-07) { // 1e-6 in single precision
        z = cross(x, up);
    } else { // looking along the vertical
        z = cross(up, m.getX());
        x = cross(up, z);
    }
    const dmat3 level(normalize(x), up, normalize(z));
    m_camera_control->m_rotation = normalize(level.getQuat());
    m_camera_control->updateView();
}
