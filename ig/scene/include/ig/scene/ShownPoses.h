// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Node.h"

namespace ig {

/// Poses that nodes have in one picture only: the scene goes on as if they had never been moved.
/// Whoever draws moves them before the picture and puts them back after it; in between no node of
/// theirs may be posed, added or removed. Bodies don't follow.
class ShownPoses {
public:
    ShownPoses() = default;
    ShownPoses(const ShownPoses&) = delete;
    ShownPoses& operator=(const ShownPoses&) = delete;
    ~ShownPoses() { putBack(); }

    /// Shows a node at a finite transform in the world, and with it all below.
    void move(Node& node, const dmat4& transform);
    /// Every node where it was, to the last bit.
    void putBack();

private:
    struct Kept {
        Node* node;
        dmat4 transform, world_transform;
    };
    void keep(Node& node);

    jVector<Kept> m_kept;
};

} // namespace ig
