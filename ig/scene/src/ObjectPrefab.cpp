// SPDX-License-Identifier: MIT
#include "ig/scene/ObjectPrefab.h"

#include "LoadBody.h"
#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/PackageManager.h"
#include "ig/physics/Body.h"
#include "ig/scene/NodeReader.h"
#include "ig/scene/World.h"

#include <set>

namespace ig {

namespace {
/// The prefabs that are being loaded, outermost first: prefabs may hold prefabs, and one that holds
/// itself would never end.
jVector<jString> g_loading;

struct Loading {
    explicit Loading(const jString& path) { g_loading.append(path); }
    ~Loading() { g_loading.pop(); } // also when memory ran out
    Loading(const Loading&) = delete;
};

/// Whether something is wrong with the prefab's file, which is then reported the first time.
bool isRefused(const jString& path, const Package* description) {
    static std::set<jString> reported;
    const bool holds_itself = g_loading.find(path) >= 0;
    if (description && !holds_itself) return false;
    if (reported.insert(path).second)
        jLog::error("ObjectPrefab: %s:1: %s", path.c_str(),
                    holds_itself ? "the prefab holds itself" : "there is no map \"node\"");
    return true;
}
} // namespace

ObjectPrefab::ObjectPrefab(const jString& path) : Object(OBJECT_PREFAB), m_path(path) {
    const Package* file = PackageManager::get(path, "ObjectPrefab");
    if (!file) return;
    const Package* description = file->getPackage("node");
    if (isRefused(path, description)) return;
    file->warnUnknownKeys("ObjectPrefab", {"node"});
    const Loading loading(path);
    m_root = World::LoadNode(description);
    if (!m_root) return;
    addChild(m_root);
    collect(m_root);
    connectBodies(NodeReader(*description), *this);
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
