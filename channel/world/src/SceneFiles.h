// SPDX-License-Identifier: MIT
#pragma once

#include <set>
#include <string>
#include <vector>

namespace ig {
class Item;
class Package;
} // namespace ig

namespace world_commands {

/// A node as a scene file describes it.
struct NodeEntry {
    std::string name, type; ///< the type is "node" where the file gives none
    std::string place;      ///< PATH:LINE
    const ig::Package* map; ///< the package manager's
};

/// A file that another one names.
struct Reference {
    enum class Kind { prefab, mesh, material, picture, folder, other };
    Kind kind;
    std::string path;  ///< of a mesh without its part
    std::string place; ///< PATH:LINE where it is named first
    std::string part;  ///< of a mesh; empty: all of it
};

/// The nodes of a world's or a prefab's file, depth first; of prefabs in it only the node itself.
std::vector<NodeEntry> listNodes(const std::string& path);

/// What a world's file names, and what is named in those files: prefabs, models, materials and
/// their pictures, rasters. Read by the package manager, which keeps what the engine has read.
class SceneFiles {
public:
    void addWorld(const std::string& path);
    /// A prefab that the logic brings.
    void addPrefab(const std::string& path);
    const std::vector<Reference>& getReferences() const { return m_references; }

private:
    void readNode(const ig::Package& node);
    void readMaterial(const std::string& path);
    void addPath(Reference::Kind kind, const ig::Package& map, const ig::Item& item);

    std::vector<Reference> m_references;
    std::set<std::string> m_known; ///< paths, with a mesh's part
};

} // namespace world_commands
