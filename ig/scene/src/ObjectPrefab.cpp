// SPDX-License-Identifier: MIT
#include "ig/scene/ObjectPrefab.h"

#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/PackageManager.h"
#include "ig/physics/Body.h"
#include "ig/scene/World.h"

namespace ig {

namespace {

/// Prefabs may hold prefabs; one that holds itself would never end.
constexpr int MAX_NESTING = 8;
int g_nesting = 0;

} // namespace

ObjectPrefab::ObjectPrefab(const jString& path) : Object(OBJECT_PREFAB), m_path(path) {
    const Package* file = PackageManager::get(path, "ObjectPrefab");
    if (!file) return;
    const Package* description = file->getPackage("node");
    if (!description || g_nesting >= MAX_NESTING) {
        jLog::error("ObjectPrefab: \"%s\" %s", path.c_str(),
                    description ? "holds itself" : "has no map \"node\"");
        return;
    }
    g_nesting++;
    m_root = World::LoadNode(description);
    g_nesting--;
    if (!m_root) return;
    addChild(m_root);
    collect(m_root);
}

void ObjectPrefab::collect(Node* node) {
    m_nodes.append(node);
    if (node->isObject()) m_objects.append(static_cast<Object*>(node));
    for (int i = 0; i < node->getNumChildren(); i++)
        collect(node->getChild(i));
}

Node* ObjectPrefab::getNodeByName(const jString& name) const {
    for (Node* node : m_nodes)
        if (node->getName() == name) return node;
    return nullptr;
}

void ObjectPrefab::moveBodyFromRoot() {
    if (!m_root || !m_root->isObject()) return;
    if (Body* body = static_cast<Object*>(m_root)->releaseBody()) setBody(body);
}

void ObjectPrefab::release() {
    m_nodes.destroy();
    m_objects.destroy();
}

} // namespace ig
