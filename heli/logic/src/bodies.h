// SPDX-License-Identifier: MIT
#pragma once

#include "ig/physics/BodyRope.h"
#include "ig/scene/Object.h"

namespace logic_bodies {

/// The body of a node; null for a missing node and for one without.
inline ig::Body* bodyOf(ig::Node* node) {
    return node && node->isObject() ? static_cast<ig::Object*>(node)->getBody() : nullptr;
}

/// The rope body of a node; null for anything else.
inline ig::BodyRope* ropeOf(ig::Node* node) {
    ig::Body* body = bodyOf(node);
    return body && body->getType() == ig::Body::BODY_ROPE ? static_cast<ig::BodyRope*>(body)
                                                          : nullptr;
}

} // namespace logic_bodies
