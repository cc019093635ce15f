// SPDX-License-Identifier: MIT
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/scene/SceneObjects.h"

using namespace ig;

void Logic_Nerith_Heli_Final::update_deflector(Node* particles) {
    if (!m_heli || !particles || particles->getType() != OBJECT_PARTICLES) return;
    auto& emitter = static_cast<ObjectParticles&>(*particles);
    // The deflector stays above the cabin but rises to where the drops come from, so that none of
    // them is on its way down between the two.
    const dmat4 in_helicopter = m_heli->get_iworld_transform() * emitter.getWorldTransform();
    dvec3 place = m_deflector_mount.getTranslate();
    place.z = in_helicopter.getTranslate().z;
    m_deflector_mount.setTranslate(place);
    if (emitter.getNumDeflectors() > 0)
        emitter.setDeflectorTransform(0, m_heli->get_world_transform() * m_deflector_mount);
}
