// SPDX-License-Identifier: MIT
#pragma once

// What a node is and has, for those that may be missing or of another kind.

#include "ig/physics/BodyRope.h"
#include "ig/scene/ObjectPrefab.h"

/// Null for a missing node and for one of another kind.
inline ig::ObjectPrefab* asPrefab(ig::Node* node) {
    return node && node->getType() == ig::OBJECT_PREFAB ? static_cast<ig::ObjectPrefab*>(node)
                                                        : nullptr;
}

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
