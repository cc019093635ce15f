// SPDX-License-Identifier: MIT
#include "WorldCheck.h"

#include "ig/base/nearest.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/package/Package.h"
#include "ig/scene/Mesh.h"
#include "ig/scene/Object.h"
#include "ig/scene/World.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "program/InputFile.h"
#include "render/image/ImageFile.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>

using namespace ig;

namespace world_commands {

namespace {

/// Triangles of one model that a software renderer shows at some frames a second only.
constexpr std::size_t HEAVY = 2'000'000;
constexpr int LARGE = 8192; ///< pixels along an edge: what most graphics devices take is 16384
/// Samples of a ground that is read at every start, which takes seconds and 256 MiB.
constexpr std::int64_t MANY = std::int64_t{1} << 26;
constexpr double FAR = 500'000; ///< m from the start that no visual range reaches
constexpr double SUNK = 0.5;    ///< m below the ground that a node's origin may lie

const ObjectTerrain* findTerrain(const World& world) {
    return dynamic_cast<const ObjectTerrain*>(world.getNodeByName("terrain"));
}

std::string meters(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.1f m", value);
    return text;
}

/// Names in the folder of a missing file.
std::vector<std::string> listFolder(const std::filesystem::path& path) {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(
             path.has_parent_path() ? path.parent_path() : ".", error))
        names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
}

} // namespace

// ------------------------------------------------------------------ names

void WorldCheck::checkNames(const LogicWorld& asked) {
    const std::vector<NodeEntry> nodes = listNodes(m_path);
    for (const LogicWorld::Name& name : asked.names)
        checkName(name, m_path, nodes);
    for (const LogicWorld::Prefab& prefab : asked.prefabs) {
        const std::vector<NodeEntry> parts = listNodes(prefab.path);
        if (parts.empty() && !m_findings.mention(prefab.path))
            m_findings.add(prefab.path + ": the logic brings this prefab, which holds nothing");
        for (const LogicWorld::Name& name : prefab.names)
            if (!parts.empty()) checkName(name, prefab.path, parts);
    }
}

void WorldCheck::checkName(const LogicWorld::Name& name, const std::string& path,
                           const std::vector<NodeEntry>& nodes) {
    const auto node = std::ranges::find(nodes, name.name, &NodeEntry::name);
    if (node == nodes.end()) {
        std::vector<std::string> names;
        for (const NodeEntry& other : nodes)
            names.push_back(other.name);
        if (!m_findings.mention("no node \"" + name.name + '"'))
            m_findings.add(path + ": no node \"" + name.name + '"' + nearest(name.name, names) +
                           (name.needed ? ": nothing starts without it" : ""));
        return;
    }
    if (!name.type.empty() && node->type != name.type)
        m_findings.add(node->place + ": \"" + name.name + "\" is of type \"" + node->type +
                       "\" where the logic looks for \"" + name.type + '"');
    if (node->type != "prefab" || name.holds.empty()) return;
    const std::string prefab = node->map->getString("path").c_str();
    const std::vector<NodeEntry> parts = listNodes(prefab);
    for (const std::string& held : name.holds)
        if (!parts.empty()) checkName({held, "", false, {}}, prefab, parts);
}

// ------------------------------------------------------------------ files

void WorldCheck::checkFiles(const LogicWorld& asked) {
    SceneFiles files;
    files.addWorld(m_path);
    for (const LogicWorld::Prefab& prefab : asked.prefabs)
        files.addPrefab(prefab.path);
    for (const Reference& file : files.getReferences())
        checkFile(file);
}

void WorldCheck::checkFile(const Reference& file) {
    if (file.path.starts_with("/vsi")) return; // GDAL's, which has opened it
    const std::string quoted = '"' + file.path + '"';
    if (file.kind == Reference::Kind::folder) { // of which the terrain has told
        m_findings.locate(quoted, file.place);
        return;
    }
    if (const std::string why = program::whyUnreadable(file.path); !why.empty()) {
        const std::filesystem::path path(file.path);
        m_findings.drop("cannot open " + quoted); // without a place
        m_findings.add(file.place + ": cannot open " + quoted + ": " + why +
                       nearest(path.filename().string(), listFolder(path)));
        return;
    }
    if (Image image; file.kind == Reference::Kind::picture && readImage(file.path, image) &&
                     std::max(image.width, image.height) > LARGE)
        m_findings.add(file.place + ": " + quoted + " is heavy: " + std::to_string(image.width) +
                       " by " + std::to_string(image.height) + " pixels, an edge of more than " +
                       std::to_string(LARGE));
    std::shared_ptr<const Mesh> mesh;
    if (file.kind == Reference::Kind::mesh)
        mesh = Mesh::get(file.path + (file.part.empty() ? "" : '#' + file.part));
    if (!mesh) m_findings.locate(quoted, file.place); // what was said of the file, if anything
    std::size_t triangles = 0;
    for (int i = 0; mesh && i < mesh->getNumSurfaces(); i++)
        triangles += mesh->getSurface(i).indices.size() / 3;
    if (triangles > HEAVY)
        m_findings.add(file.place + ": \"" + file.path +
                       "\" is heavy: " + std::to_string(triangles) + " triangles, more than " +
                       std::to_string(HEAVY));
}

// ------------------------------------------------------------------ places

void WorldCheck::checkPlaces(const std::string& start) {
    for (const NodeEntry& node : listNodes(m_path)) {
        if (node.map->getItem("wgs")) checkPlace(node, start);
        if (node.name == "terrain" && node.map->getString("built").empty()) checkGround(node);
    }
}

/// That it is small enough to be read at every start.
void WorldCheck::checkGround(const NodeEntry& node) {
    std::int64_t samples = 0;
    if (const ObjectTerrain* terrain = findTerrain(m_world))
        for (const TerrainGrid& grid : terrain->getGrids())
            samples += std::int64_t{grid.columns} * grid.rows;
    if (samples > MANY)
        m_findings.add(node.place + ": \"" + node.name + "\" is heavy: its rasters' " +
                       std::to_string(samples) + " samples, more than " + std::to_string(MANY) +
                       ", are read at every start: give it a folder by \"built\" and run "
                       "\"visual_channel world build\"");
}

void WorldCheck::checkPlace(const NodeEntry& node, const std::string& start) {
    const ObjectTerrain* terrain = findTerrain(m_world);
    const Node* begin = m_world.getNodeByName(start);
    if (!node.name.empty())
        m_findings.locate('"' + node.name + '"', node.place, Findings::Where::beginning);
    const EllipsoidModel earth;
    dvec3 wgs;
    if (node.map->getItem("wgs")->getDoubles(&wgs.x, 3) != 3) return;
    const std::string named = node.place + ": \"" + node.name + "\" ";
    const double way = begin ? length(earth.toWorld(wgs) - begin->getWorldPosition()) : 0;
    if (way > FAR) {
        m_findings.add(named + "lies " + std::to_string(std::lround(way / 1000)) + " km from \"" +
                       start + "\": \"wgs\" is longitude, latitude, altitude");
        return;
    }
    double ground = 0;
    const bool above_ground =
        terrain && terrain->getAltitudeByLonLat(wgs.x, wgs.y, &ground, nullptr);
    if (node.name == start && terrain && !above_ground) {
        double other = 0;
        const bool exchanged = terrain->getAltitudeByLonLat(wgs.y, wgs.x, &other, nullptr);
        m_findings.add(named + "has no terrain below it" +
                       (exchanged ? ": longitude and latitude are exchanged" : ""));
    }
    if (!above_ground || node.type == "ocean" || node.type == "terrain") return;
    const Node* placed = m_world.getNodeByName(node.name);
    const bool floats =
        placed && placed->isObject() && static_cast<const Object*>(placed)->getBodyRigid();
    if (floats && ground > 0)
        m_findings.add(named + "would float where there is land, " + meters(ground) +
                       " above the sea");
    else if (!floats && ground - wgs.z > SUNK && ground > 0)
        m_findings.add(named + "lies " + meters(ground - wgs.z) + " under ground");
}

} // namespace world_commands
