// SPDX-License-Identifier: MIT
#include "ig/math/EllipsoidModel.h"
#include "ig/math/jMath.h"
#include "ig/scene/SceneObjects.h"

namespace ig {

dvec3 NodeDowndraught::getSource() const {
    const Node* prefab = getPrefabRoot();
    return (prefab ? prefab : this)->getWorldPosition();
}

float NodeDowndraught::getStrength() const {
    const auto altitude = static_cast<float>(EllipsoidModel().getAltitude(getSource()));
    return jMath::getFadeOut(altitude, m_fades.y, m_fades.x);
}

} // namespace ig
