// SPDX-License-Identifier: MIT
#include "ig/scene/SceneObjects.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {
void clearBelow(Node* node) {
    for (int i = 0; i < node->getNumChildren(); i++) {
        Node* child = node->getChild(i);
        if (child->getType() == OBJECT_PARTICLES)
            static_cast<ObjectParticles*>(child)->clearParticles();
        else
            clearBelow(child);
    }
}
} // namespace

void ObjectParticles::clearParticles() {
    m_clears++;
    clearBelow(this);
}

WorldBoundBox ObjectParticles::getWorldBoundBox() const {
    const double reach = static_cast<double>((std::abs(m_velocity) + m_velocity_spread) *
                                             std::max(0.0f, m_life + m_life_spread));
    const dvec3 place = getWorldPosition(), half(reach, reach, reach);
    return {place - half, place + half};
}

} // namespace ig
