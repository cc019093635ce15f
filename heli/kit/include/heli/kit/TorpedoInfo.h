// SPDX-License-Identifier: MIT
#pragma once

namespace ig {
class Node;
class ObjectPrefab;
} // namespace ig

class ActionEmitTorpedo;

/// One dropped torpedo, from the drop to its entry into the water or the end of its time. The
/// logic owns the record.
struct TorpedoInfo {
    ig::ObjectPrefab* prefab = nullptr;  ///< the world's
    ig::Node* parachute = nullptr;       ///< hidden at the drop
    ig::Node* torpedo = nullptr;         ///< the body that falls
    ActionEmitTorpedo* action = nullptr; ///< the action manager's; null once it has ended
    float time_left = 0;                 ///< seconds until it is given up; 40 at the drop
};
