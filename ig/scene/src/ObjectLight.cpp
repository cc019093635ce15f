// SPDX-License-Identifier: MIT
#include "ig/math/EllipsoidModel.h"
#include "ig/scene/SceneObjects.h"

#include <cmath>

namespace ig {

bool ObjectLight::isLit(double time) const {
    const auto period = static_cast<double>(m_flash.x), lit = static_cast<double>(m_flash.y);
    return period <= 0 || std::fmod(time, period) < lit;
}

dmat4 ObjectLight::getLampTransform() const {
    const Node* mount = getParent();
    if (!m_stabilized || !mount) return getWorldTransform();
    const dmat4& pose = mount->getWorldTransform();
    const dvec3 place = pose.getTranslate(), up = EllipsoidModel().getUp(place);
    const dvec3 right = cross(pose.getMat3().getY(), up);
    if (length(right) < 1e-6) return getWorldTransform(); // on end, it has no heading
    const dvec3 x = normalize(right);
    return dmat4({x, cross(up, x), up}, place) * getTransform();
}

} // namespace ig
