// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Object.h"

namespace ig {

/// A tree of nodes read from a file, placed and removed as one. The tree's root is the prefab's
/// only child and lies in it with the transform of the file, normally none.
class ObjectPrefab : public Object {
public:
    /// Reads the file (cached by the package manager). A file that cannot be read leaves an empty
    /// prefab, which can be placed, tracked and removed like any other; logged once per path.
    explicit ObjectPrefab(const jString& path);

    bool isLoaded() const { return m_root != nullptr; }
    const jString& getPath() const { return m_path; }
    /// The root of the tree; null when not loaded.
    Node* getRoot() const { return m_root; }
    /// The first node of that name in the tree, root included, depth first; null when none.
    Node* getNodeByName(const jString& name) const;
    /// All nodes of the tree, parents before children, children in order.
    const jVector<Node*>& getNodes() const { return m_nodes; }
    /// Those of them that are objects.
    const jVector<Object*>& getObjects() const { return m_objects; }
    /// Hands the body of the root to the prefab itself, so that the physics moves the whole prefab.
    /// Nothing without such a body.
    void moveBodyFromRoot();
    /// Gives back what the prefab holds beyond its nodes; called before it is deleted.
    void release();

private:
    void collect(Node* node);

    jString m_path;
    Node* m_root = nullptr;
    jVector<Node*> m_nodes;
    jVector<Object*> m_objects;
};

} // namespace ig
