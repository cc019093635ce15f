// SPDX-License-Identifier: MIT
#pragma once

#include "heli/kit/TorpedoInfo.h"

namespace ig {
class Node;
class ObjectPrefab;
} // namespace ig

/// The dipping sonar while it is deployed, or one thrown sonar buoy. All null when there is none.
/// The world owns the nodes.
struct SonarInfo {
    ig::ObjectPrefab* prefab = nullptr; ///< the whole assembly
    ig::Node* sonar_root = nullptr;
    ig::Node* anchor = nullptr; ///< upper end of the cable, pinned to the helicopter every frame
    ig::Node* sonar = nullptr;  ///< the body, held by the joint of that name
    ig::Node* buoy = nullptr;
    ig::Node* rope = nullptr; ///< the cable
    ig::Node* sonar_mesh = nullptr;
};

/// The rescue winch's load while it is deployed. All null when there is none. The world owns the
/// nodes.
struct WinchInfo {
    ig::ObjectPrefab* prefab = nullptr; ///< cable and load
    ig::Node* root = nullptr;
    ig::Node* anchor = nullptr; ///< upper end of the cable, pinned to the helicopter every frame
    ig::Node* rope = nullptr;
    ig::Node* obj = nullptr; ///< the load
};
