// SPDX-License-Identifier: MIT
#include "SceneFiles.h"

#include "ig/package/Package.h"
#include "ig/package/PackageManager.h"

#include <filesystem>
#include <utility>

using namespace ig;

namespace world_commands {

namespace {

std::string placeOf(const Package& map, int line) {
    return std::string(map.getPath().c_str()) + ':' + std::to_string(line);
}

/// Of a file that is there; what is missing is told by whoever needs it.
const Package* open(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(path, error) ? PackageManager::get(path, nullptr) : nullptr;
}

void collect(const Package& map, std::vector<NodeEntry>& nodes) {
    const jString& type = map.getString("type");
    nodes.push_back({map.getString("name").c_str(), type.empty() ? "node" : type.c_str(),
                     placeOf(map, map.getLine()), &map});
    for (const Package* child : map.getPackages("children"))
        collect(*child, nodes);
}

} // namespace

std::vector<NodeEntry> listNodes(const std::string& path) {
    std::vector<NodeEntry> nodes;
    const Package* file = open(path);
    if (!file) return nodes;
    if (const Package* root = file->getPackage("node")) collect(*root, nodes);
    for (const Package* node : file->getPackages("nodes"))
        collect(*node, nodes);
    return nodes;
}

void SceneFiles::addWorld(const std::string& path) {
    const Package* file = open(path);
    if (!file) return;
    for (const Package* node : file->getPackages("nodes"))
        readNode(*node);
    if (const Item* later = file->getItem("later"))
        for (int i = 0; i < later->getCount(); i++)
            addPath(Reference::Kind::prefab, *file, later->getElement(i));
}

void SceneFiles::addPrefab(const std::string& path) {
    if (!m_known.insert(path).second) return;
    const Package* file = open(path);
    if (const Package* node = file ? file->getPackage("node") : nullptr) readNode(*node);
}

/// The keys of the engine's and the terrain's nodes that name files.
void SceneFiles::readNode(const Package& node) {
    using enum Reference::Kind;
    constexpr std::pair<const char*, Reference::Kind> KEYS[] = {
        {"path", prefab},   {"mesh", mesh},   {"material", material}, {"raster", other},
        {"rasters", other}, {"geoid", other}, {"imagery", other},     {"built", folder}};
    for (const auto& [key, kind] : KEYS)
        if (const Item* item = node.getItem(key)) {
            if (item->getKind() == Item::Kind::value) addPath(kind, node, *item);
            for (int i = 0; i < item->getCount(); i++)
                addPath(kind, node, item->getElement(i));
        }
    if (const Package* cover = node.getPackage("land_cover"))
        if (const Item* item = cover->getItem("raster")) addPath(other, *cover, *item);
    for (const char* key : {"surfaces", "children"})
        for (const Package* below : node.getPackages(key))
            readNode(*below);
}

void SceneFiles::readMaterial(const std::string& path) {
    const Package* file = open(path);
    const Package* textures = file ? file->getPackage("textures") : nullptr;
    for (int i = 0; textures && i < textures->getItemCount(); i++)
        addPath(Reference::Kind::picture, *textures, textures->getItemAt(i));
}

void SceneFiles::addPath(Reference::Kind kind, const Package& map, const Item& item) {
    std::string path = item.getString().c_str(), part;
    if (path.empty()) return;
    const std::size_t hash = path.find('#');
    if (kind == Reference::Kind::mesh && hash != std::string::npos) {
        part = path.substr(hash + 1);
        path.erase(hash);
    }
    if (kind == Reference::Kind::prefab) addPrefab(path);
    const bool known = kind != Reference::Kind::prefab && !m_known.insert(path + '#' + part).second;
    if (known) return;
    m_references.push_back({kind, path, placeOf(map, item.getLine()), part});
    if (kind == Reference::Kind::material) readMaterial(path);
}

} // namespace world_commands
