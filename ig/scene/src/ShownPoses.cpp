// SPDX-License-Identifier: MIT
#include "ig/scene/ShownPoses.h"

namespace ig {

void ShownPoses::move(Node& node, const dmat4& transform) {
    // What is above keeps the bounds that it has: asked for while the picture is drawn, they would
    // be those of the picture, and stay.
    for (const Node* above = node.m_parent; above; above = above->m_parent)
        above->getBounds();
    keep(node);
    node.m_transform = node.m_parent ? node.m_parent->getIWorldTransform() * transform : transform;
}

void ShownPoses::keep(Node& node) {
    m_kept.append({&node, node.m_transform, node.getWorldTransform()});
    for (Node* child : node.m_children)
        keep(*child);
    node.m_world_transform_valid = false; // no change of the scene: the version stays
}

// In reverse: one that was moved with another, and again by itself, ends where it began.
void ShownPoses::putBack() {
    for (; !m_kept.empty(); m_kept.pop()) {
        const Kept& kept = m_kept.back();
        kept.node->m_transform = kept.transform;
        kept.node->m_world_transform = kept.world_transform;
        kept.node->m_world_transform_valid = true;
    }
}

} // namespace ig
