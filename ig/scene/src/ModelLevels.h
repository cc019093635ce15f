// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

struct aiNode;

namespace ig {

/// The name of a node that is a level of detail: "hull_LOD2" is level 2 of "hull".
struct LevelName {
    std::string_view stem; ///< empty: the node is none
    int level = 0;         ///< 0, the finest, to 9
};
LevelName readLevelName(const aiNode& node);

/// Of some nodes those that one level shows: all that are no level of anything, and of each group
/// of levels the coarsest one up to that level, or else its finest.
std::vector<const aiNode*> chooseLevel(const std::vector<const aiNode*>& nodes, int level);

/// The children of a node.
std::vector<const aiNode*> getChildren(const aiNode& node);

/// The coarsest level of the nodes and all below them; 0: there are none but the finest.
int findCoarsestLevel(const std::vector<const aiNode*>& nodes);

/// The nodes that are the levels of a part, which has no node of its own name; none: it isn't
/// there.
std::vector<const aiNode*> findLevels(const aiNode& root, std::string_view part);

} // namespace ig
