// SPDX-License-Identifier: MIT
#pragma once

namespace ig {

class Body;
class NodeReader;
class ObjectPrefab;
struct NodeSchema;

/// Of what stands under "body" in a node.
extern const NodeSchema BODY_SCHEMA;

/// The body of that description, without what names other nodes of the prefab. Null, reported, when
/// it makes no sense.
Body* loadBody(const NodeReader& body);

/// Ties the bodies of a prefab to the nodes that their descriptions name: ropes to their anchors,
/// loads to their ropes, and what brakes a body to the node that must be seen for it. Names that
/// lead nowhere are reported with file and line and left out. `node` describes the prefab's root.
void connectBodies(const NodeReader& node, const ObjectPrefab& prefab);

} // namespace ig
