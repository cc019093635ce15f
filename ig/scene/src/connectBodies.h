// SPDX-License-Identifier: MIT
#pragma once

namespace ig {

class ObjectPrefab;
class Package;

/// Ties the bodies of a prefab to the nodes that their descriptions name: ropes to their anchors,
/// loads to their ropes, and what brakes a body to the node that must be seen for it. Names that
/// lead nowhere are reported with file and line and left out.
void connectBodies(const Package& description, const ObjectPrefab& prefab);

} // namespace ig
