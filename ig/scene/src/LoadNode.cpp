// SPDX-License-Identifier: MIT

// Builds nodes from their descriptions in world and prefab files. Every message names the file and
// the line; a node that makes no sense is left out with all below it, so that one slip in a file
// doesn't take the rest of the scene with it.

#include "LoadBody.h"
#include "NodeBudget.h"
#include "ig/base/jLog.h"
#include "ig/base/nearest.h"
#include "ig/package/Package.h"
#include "ig/scene/Camera.h"
#include "ig/scene/NodeReader.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace ig {

using enum NodeKeys::Kind;

namespace {

int g_loads = 0; ///< that are under way, one in the other
int g_nodes = 0; ///< of the outermost of them so far

NodeSchema& getNodeSchema() {
    static NodeSchema schema{"node", {}};
    return schema;
}

// ------------------------------------------------------------------ node types

Node* createNode(const NodeReader& r) {
    // A body needs an object to belong to.
    return r.has("body") ? new Object(NODE_DUMMY) : new Node();
}
const bool NODE = NodeFactory::add("node", createNode, {}); // first: of what names no type

/// Shows where something is missing, and keeps the node's name and children; nothing meets it.
Node* createPlaceholder() {
    auto* object = new ObjectMesh(Mesh::getPlaceholder());
    object->setIntersection(0, false);
    return object;
}

const NodeSchema SURFACE{"surface",
                         {{"surface", {{material, {"material"}}, {flag, {"intersect"}}}}}};

Node* createMesh(const NodeReader& r) {
    const jString& reference = r.getText("mesh");
    const auto mesh = Mesh::get(reference);
    if (!mesh) { // reported with the model's path, once for all who ask for it
        r.report("no mesh from", reference);
        return createPlaceholder();
    }
    auto* object = new ObjectMesh(mesh);
    const bool intersect = r.getFlag("intersect", true);
    for (int i = 0; i < object->getNumSurfaces(); i++)
        object->setIntersection(i, intersect);
    int i = 0;
    for (const NodeReader& surface : r.getMaps("surfaces")) {
        if (i == object->getNumSurfaces()) {
            surface.report("more surfaces than the mesh has in", reference);
            break;
        }
        object->setSurfaceMaterial(i, surface.getMaterial());
        object->setIntersection(i++, surface.getFlag("intersect", intersect));
    }
    return object;
}
const bool MESH = NodeFactory::add(
    "mesh", createMesh, {{text, {"mesh"}}, {flag, {"intersect"}}, {list, {"surfaces"}, &SURFACE}});

Node* createPrefab(const NodeReader& r) {
    return new ObjectPrefab(r.getText("path")); // an empty one stands in for a missing file
}
const bool PREFAB = NodeFactory::add("prefab", createPrefab, {{text, {"path"}}});

Ground::Kind readSurface(const NodeReader& r) {
    const jString& name = r.getText("surface");
    const Ground::Kind kind = Ground::find(name.view());
    if (kind == Ground::Kind::any && !name.empty()) r.report("unknown surface:", name);
    return kind;
}

Node* createParticles(const NodeReader& r) {
    dvec3 spread;
    vec2 half{2.5f, 2.5f}, ring;
    if (!r.readTriple("spread", spread) || !r.readPair("deflector_size", half) ||
        !r.readPair("ring", ring))
        return nullptr;
    auto* particles = new ObjectParticles();
    particles->setLife(r.getNumber("life", particles->getLife()));
    particles->setLifeSpread(r.getNumber("life_spread"));
    particles->setLinearVelocity(r.getNumber("velocity"));
    particles->setLinearVelocitySpread(r.getNumber("velocity_spread"));
    particles->setSpawnRate(r.getNumber("rate"));
    particles->setDuration(r.getNumber("duration"));
    particles->setBurst(r.getNumber("burst"));
    particles->setSpread(vec3(spread));
    particles->setSurface(readSurface(r));
    particles->setNumDeflectors(r.getWhole("deflectors"));
    particles->setDeflectorSize(half);
    particles->setRing(ring, r.getNumber("outflow"));
    particles->setSurfaceMaterial(0, r.getMaterial());
    particles->setIntersection(0, false);
    return particles;
}
const bool PARTICLES = NodeFactory::add("particles", createParticles,
                                        {{number,
                                          {"life", "life_spread", "velocity", "velocity_spread",
                                           "rate", "duration", "burst", "outflow"}},
                                         {triple, {"spread"}},
                                         {text, {"surface"}},
                                         {material, {"material"}},
                                         {whole, {"deflectors"}, nullptr, 0, 16},
                                         {pair, {"deflector_size"}, nullptr, 0.01},
                                         {pair, {"ring"}, nullptr, 0}});

Node* createDecal(const NodeReader& r) {
    auto* decal = new DecalOrtho();
    decal->setWidth(r.getNumber("width"));
    decal->setHeight(r.getNumber("height"));
    decal->setSurfaceMaterial(0, r.getMaterial());
    return decal;
}
const bool DECAL = NodeFactory::add("decal", createDecal,
                                    {{number, {"width", "height"}}, {material, {"material"}}});

constexpr float MOST_LIGHT = 1e9f;     ///< cd, m: beyond any lamp
constexpr float MOST_BRIGHTNESS = 100; ///< times the lamp's, so that a picture can hold it

/// Takes a number from 0 to `most`; false, reported, for another. True when the key is absent.
bool readWithin(const NodeReader& r, const char* key, float most, float& out) {
    const float value = r.getNumber(key, out);
    if (value >= 0 && value <= most) {
        out = value;
        return true;
    }
    r.report(most > MOST_BRIGHTNESS ? "a number from 0 to 1e9 is needed in"
             : most > 1             ? "a number from 0 to 100 is needed in"
                                    : "a number from 0 to 1 is needed in",
             key, key);
    return false;
}

const NodeSchema SECTOR{"sector",
                        {{"sector",
                          {{pair, {"azimuth"}, nullptr, -360, 360},
                           {pair, {"elevation"}, nullptr, -90, 90},
                           {triple, {"color"}},
                           {number, {"brightness"}}}}}};

/// Reported when it makes no sense.
bool readSector(const NodeReader& r, LightSector& out) {
    if (!r.readPair("azimuth", out.azimuth) || !r.readPair("elevation", out.elevation) ||
        !readWithin(r, "brightness", MOST_BRIGHTNESS, out.brightness))
        return false;
    if (!(out.azimuth.x < out.azimuth.y) || out.azimuth.y - out.azimuth.x > 360) {
        r.report("a sector goes clockwise, from a smaller to a larger angle, and at most once "
                 "round, in",
                 "azimuth", "azimuth");
        return false;
    }
    if (!(out.elevation.x < out.elevation.y)) {
        r.report("a sector goes up, from a smaller to a larger angle, in", "elevation",
                 "elevation");
        return false;
    }
    if (!r.has("color")) return true;
    dvec3 color;
    if (!r.readTriple("color", color)) return false;
    out.color = vec3(color);
    if (std::min({color.x, color.y, color.z}) >= 0 && std::max({color.x, color.y, color.z}) <= 1)
        return true;
    r.report("a sector's colour goes from 0 to 1 in", "color", "color");
    return false;
}

/// Where and when it is seen itself. False, reported, when that makes no sense.
bool readAppearance(const NodeReader& r, ObjectLight& light) {
    std::vector<LightSector> sectors;
    for (const NodeReader& sector : r.getMaps("sector"))
        if (!readSector(sector, sectors.emplace_back())) return false;
    float range = 0;
    vec2 flash;
    if (!readWithin(r, "nominal_range", MOST_LIGHT, range) || !r.readPair("flash", flash))
        return false;
    if (r.has("flash") && !(flash.y < flash.x)) {
        r.report("a flash is shorter than the period before it in", "flash", "flash");
        return false;
    }
    light.setSectors(std::move(sectors));
    light.setNominalRange(range);
    light.setFlash(flash);
    light.setStabilized(r.getFlag("stabilized"));
    return true;
}

Node* createLight(const NodeReader& r) {
    float intensity = 0, reach = 0, beam = 0, flicker = 0;
    vec2 cone = ObjectLight::ALL_ROUND;
    if (!readWithin(r, "intensity", MOST_LIGHT, intensity) ||
        !readWithin(r, "reach", MOST_LIGHT, reach) || !readWithin(r, "beam", 1, beam) ||
        !readWithin(r, "flicker", 1, flicker) || !r.readPair("cone", cone))
        return nullptr;
    if (cone.x > cone.y) {
        r.report("a light's inner angle isn't larger than its outer one in", "cone", "cone");
        return nullptr;
    }
    auto light = std::make_unique<ObjectLight>();
    if (!readAppearance(r, *light)) return nullptr;
    light->setSurfaceMaterial(0, r.getMaterial());
    light->setIntensity(intensity, reach);
    light->setCone(cone);
    light->setBeam(beam);
    light->setFlicker(flicker);
    return light.release();
}
const bool LIGHT =
    NodeFactory::add("light", createLight,
                     {{material, {"material"}},
                      {number, {"intensity", "reach", "beam", "flicker", "nominal_range"}},
                      {pair, {"cone"}, nullptr, 0, 180},
                      {list, {"sector"}, &SECTOR},
                      {pair, {"flash"}, nullptr, 0},
                      {flag, {"stabilized"}}});

Node* createRope(const NodeReader& r) {
    const float radius = r.getNumber("radius");
    if (!(radius > 0) || !std::isfinite(radius)) {
        r.report("a rope needs a positive radius, not", r.getPackage().getString("radius"));
        return nullptr;
    }
    return new ObjectRope(radius, r.getMaterial());
}
const bool ROPE =
    NodeFactory::add("rope", createRope, {{number, {"radius"}}, {material, {"material"}}});

Node* createField(const NodeReader& r) {
    dvec3 parameters;
    vec2 reach = NodeField::REACH;
    r.readTriple("parameters", parameters);
    r.readPair("reach", reach);
    auto* field = new NodeField(reach);
    field->setParameter(0, static_cast<float>(parameters.x));
    field->setParameter(1, static_cast<float>(parameters.y));
    field->setParameter(2, static_cast<float>(parameters.z));
    return field;
}
const bool FIELD = NodeFactory::add("field", createField,
                                    {{triple, {"parameters"}}, {pair, {"reach"}, nullptr, 0.01}});

Node* createDowndraught(const NodeReader& r) {
    const float radius = r.getNumber("radius");
    vec2 fades{8, 30};
    if (!r.readPair("fades", fades)) return nullptr;
    if (radius > 0 && std::isfinite(radius)) return new NodeDowndraught(radius, fades);
    r.report("a downdraught needs a positive radius, not", r.getPackage().getString("radius"));
    return nullptr;
}
const bool DOWNDRAUGHT = NodeFactory::add("downdraught", createDowndraught,
                                          {{number, {"radius"}}, {pair, {"fades"}, nullptr, 0}});

Node* createCamera(const NodeReader&) { return new Camera(); }
const bool CAMERA = NodeFactory::add("camera", createCamera, {});

// ------------------------------------------------------------------ what all nodes have

/// What to say of a place that isn't on the earth.
const char* wgsFault(const dvec3& wgs) {
    return std::abs(wgs.x) <= 90 && std::abs(wgs.y) <= 360
               ? "latitude and longitude are exchanged (\"wgs\" is longitude, latitude, altitude) "
                 "in"
               : "longitude within 360 and latitude within 90 degrees are needed in \"wgs\" of";
}

bool placeNode(const NodeReader& r, Node& node) {
    dvec3 position, rotation, wgs, hpr;
    if (!r.readTriple("position", position) || !r.readTriple("rotation", rotation) ||
        !r.readTriple("wgs", wgs) || !r.readTriple("hpr", hpr))
        return false;
    if (r.has("wgs")) {
        if (std::abs(wgs.x) > 360 || std::abs(wgs.y) > 90) {
            r.report(wgsFault(wgs), r.getText("name"), "wgs");
            return false;
        }
        node.setWgsPosition(wgs);
        node.setWgsHPR(hpr);
    } else {
        node.setTransform(dmat4(dquat(rotation.x, rotation.y, rotation.z), position));
    }
    return true;
}

/// A geodetic place would be taken for one in the parent's frame.
Node* loadChild(const NodeReader& child) {
    if (!child.has("wgs")) return World::LoadNode(&child.getPackage());
    child.report("\"wgs\" is for nodes without parent, not for", child.getText("name"), "wgs");
    return nullptr;
}

/// A body of the prefab's root belongs to the root; only objects have bodies.
void giveBody(const NodeReader& r, Node& node) {
    const auto description = r.getMap("body");
    if (!description) return;
    if (!node.isObject())
        description->report("this type of node can't have a body:", r.getText("type"));
    else if (Body* body = loadBody(*description))
        static_cast<Object&>(node).setBody(body);
}

} // namespace

bool NodeFactory::add(const char* type, Creator create, std::vector<NodeKeys> keys) {
    NodeSchema& schema = getNodeSchema();
    keys.insert(keys.begin(), {{text, {"name", "type"}},
                               {flag, {"enabled"}},
                               {triple, {"position", "rotation", "wgs", "hpr"}},
                               {list, {"children"}, &schema},
                               {map, {"body"}, &BODY_SCHEMA}});
    const auto known = std::ranges::find(schema.types, type, &NodeSchema::Type::name);
    auto& place = known == schema.types.end() ? schema.types.emplace_back() : *known;
    place = {type, std::move(keys), create};
    return true;
}

std::string NodeFactory::describe() { return getNodeSchema().describe(); }

NodeReader::NodeReader(const Package& node) : NodeReader(node, getNodeSchema()) {}

NodeBudget::NodeBudget() { g_loads++; }

NodeBudget::~NodeBudget() {
    if (--g_loads == 0) g_nodes = 0;
}

Node* World::LoadNode(const Package* package) {
    if (!package) return nullptr;
    const NodeReader r(*package);
    const NodeBudget budget;
    if (++g_nodes > NodeBudget::MOST) {
        if (g_nodes == NodeBudget::MOST + 1)
            r.report("too many nodes, prefabs in prefabs included: left out from",
                     r.getText("name"));
        return nullptr;
    }
    if (!r.getType()) {
        std::vector<std::string> types;
        for (const auto& type : getNodeSchema().types)
            types.push_back(type.name);
        jLog::error("World::LoadNode: %s:%d: unknown type of node \"%s\"%s; it is left out",
                    package->getPath().c_str(), package->getLine(), r.getText("type").c_str(),
                    nearest(r.getText("type").view(), types).c_str());
        return nullptr;
    }
    r.reportUnknownKeys();
    std::unique_ptr<Node> node(r.getType()->create(r));
    if (!node) return nullptr;
    node->setName(r.getText("name"));
    if (r.has("enabled")) node->setEnabled(r.getFlag("enabled"));
    if (!placeNode(r, *node)) return nullptr;
    for (const NodeReader& description : r.getMaps("children"))
        if (Node* child = loadChild(description)) node->addChild(child);
    giveBody(r, *node);
    return node.release();
}

} // namespace ig
