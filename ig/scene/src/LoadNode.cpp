// SPDX-License-Identifier: MIT

// Builds nodes from their descriptions in world and prefab files. Every message names the file and
// the line; a node that makes no sense is left out with all below it, so that one slip in a file
// doesn't take the rest of the scene with it.

#include "NodeBudget.h"
#include "ig/base/jLog.h"
#include "ig/base/nearest.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/package/Package.h"
#include "ig/physics/Body.h"
#include "ig/scene/Camera.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "readList.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <string_view>

namespace ig {

namespace {

using Creator = NodeFactory::Creator;

int g_loads = 0; ///< that are under way, one in the other
int g_nodes = 0; ///< of the outermost of them so far

void report(const Package& p, int line, const char* what, const jString& subject) {
    jLog::error("World::LoadNode: %s:%d: %s \"%s\"", p.getPath().c_str(), line, what,
                subject.c_str());
}

/// Three numbers under `key`. True when the key is absent (`out` unchanged) or good.
bool readVec3(const Package& p, const char* key, dvec3& out) {
    const Item* item = p.getItem(key);
    if (!item) return true;
    double v[3];
    if (item->getDoubles(v, 3) != 3 || item->getCount() != 3 ||
        !isFinite(dvec3(v[0], v[1], v[2]))) {
        report(p, item->getLine(), "three numbers are needed in", key);
        return false;
    }
    out = {v[0], v[1], v[2]};
    return true;
}

/// Reports keys that nothing reads, so that a misspelt one is noticed.
void reportUnknownKeys(const Package& p, std::initializer_list<std::string_view> own,
                       bool is_node = false) {
    std::vector<std::string> known(own.begin(), own.end());
    if (is_node)
        known.insert(known.end(), {"name", "type", "enabled", "position", "rotation", "wgs", "hpr",
                                   "children", "body"});
    p.warnUnknownKeys("World::LoadNode", known);
}

// ------------------------------------------------------------------ bodies

Shape* loadShape(const Package& p) {
    reportUnknownKeys(p, {"type", "size", "radius", "height", "position", "rotation"});
    dvec3 position, rotation, size;
    if (!readVec3(p, "position", position) || !readVec3(p, "rotation", rotation) ||
        !readVec3(p, "size", size))
        return nullptr;
    const mat4 transform(dmat4(dquat(rotation.x, rotation.y, rotation.z), position));
    const jString& type = p.getString("type");
    const auto length = [&p](const char* key) {
        const float value = p.getFloat(key);
        return std::isfinite(value) ? value : 0;
    };
    const float radius = length("radius"), height = length("height");
    if (type == "box" && size.x > 0 && size.y > 0 && size.z > 0)
        return Shape::createBox(vec3(size), transform);
    if (type == "sphere" && radius > 0) return Shape::createSphere(radius, transform);
    if (type == "capsule" && radius > 0 && height > 0)
        return Shape::createCapsule(radius, height, transform);
    if (type == "cylinder" && radius > 0 && height > 0)
        return Shape::createCylinder(radius, height, transform);
    report(p, p.getLine(), "unknown shape, or one without positive dimensions:", type);
    return nullptr;
}

Body* loadRope(const Package& p) {
    reportUnknownKeys(p, {"type", "length", "factor", "anchor"});
    const float length = p.getFloat("length");
    const float factor = p.getItem("factor") ? p.getFloat("factor") : 1;
    if (length > 0 && std::isfinite(length) && factor > 0 && std::isfinite(factor))
        return new BodyRope(length, factor);
    report(p, p.getLine(), "a rope needs a positive length and factor, not a length of",
           p.getString("length"));
    return nullptr;
}

/// Without what names other nodes of the prefab: `connectBodies` adds that.
Body* loadBody(const Package& p) {
    if (p.getString("type") == "rope") return loadRope(p);
    reportUnknownKeys(p, {"type", "mass", "center", "linear_damping", "angular_damping", "enabled",
                          "sensor", "landing", "floating", "drag", "joints", "shapes"});
    if (p.getItem("type") && p.getString("type") != "rigid") {
        report(p, p.getLine(), "unknown type of body", p.getString("type"));
        return nullptr;
    }
    dvec3 center;
    if (!readVec3(p, "center", center)) return nullptr;
    auto body = std::make_unique<BodyRigid>(p.getFloat("mass"), vec3(center));
    for (const Package* description : readList(p, "shapes", "World::LoadNode"))
        if (Shape* shape = loadShape(*description)) body->addShape(shape);
    body->setLinearDamping(p.getFloat("linear_damping"));
    body->setAngularDamping(p.getFloat("angular_damping"));
    body->setSensor(p.getBool("sensor"));
    body->setLanding(p.getBool("landing"));
    body->setFloating(p.getBool("floating"));
    if (p.getItem("enabled")) body->setEnabled(p.getBool("enabled"));
    return body.release();
}

// ------------------------------------------------------------------ node types

Material* loadMaterial(const Package& p) {
    const jString& path = p.getString("material");
    return path.empty() ? nullptr : MaterialManager::get(path);
}

Node* createNode(const Package& p) {
    reportUnknownKeys(p, {}, true);
    // A body needs an object to belong to.
    return p.getItem("body") ? new Object(NODE_DUMMY) : new Node();
}

/// Shows where something is missing, and keeps the node's name and children; nothing meets it.
Node* createPlaceholder() {
    auto* object = new ObjectMesh(Mesh::getPlaceholder());
    object->setIntersection(0, false);
    return object;
}

Node* createMesh(const Package& p) {
    reportUnknownKeys(p, {"mesh", "intersect", "surfaces"}, true);
    const jString& reference = p.getString("mesh");
    const auto mesh = Mesh::get(reference);
    if (!mesh) { // reported with the model's path, once for all who ask for it
        report(p, p.getLine(), "no mesh from", reference);
        return createPlaceholder();
    }
    auto* object = new ObjectMesh(mesh);
    const bool intersect = !p.getItem("intersect") || p.getBool("intersect");
    for (int i = 0; i < object->getNumSurfaces(); i++)
        object->setIntersection(i, intersect);
    const jVector<const Package*> surfaces = readList(p, "surfaces", "World::LoadNode");
    if (surfaces.size() > object->getNumSurfaces())
        report(p, surfaces.back()->getLine(), "more surfaces than the mesh has in", reference);
    for (int i = 0; i < std::min(surfaces.size(), object->getNumSurfaces()); i++) {
        reportUnknownKeys(*surfaces[i], {"material", "intersect"});
        object->setSurfaceMaterial(i, loadMaterial(*surfaces[i]));
        if (surfaces[i]->getItem("intersect"))
            object->setIntersection(i, surfaces[i]->getBool("intersect"));
    }
    return object;
}

Node* createPrefab(const Package& p) {
    reportUnknownKeys(p, {"path"}, true);
    return new ObjectPrefab(p.getString("path")); // an empty one stands in for a missing file
}

Ground::Kind readSurface(const Package& p) {
    const jString& name = p.getString("surface");
    const Ground::Kind kind = Ground::find(name.view());
    if (kind == Ground::Kind::any && !name.empty())
        report(p, p.getLine(), "unknown surface:", name);
    return kind;
}

/// Two numbers under `key`, both at least `least`. True when the key is absent (`out` unchanged) or
/// good.
bool readVec2(const Package& p, const char* key, double least, vec2& out) {
    const Item* item = p.getItem(key);
    if (!item) return true;
    double v[2];
    if (item->getDoubles(v, 2) != 2 || item->getCount() != 2 || !(v[0] >= least && v[1] >= least) ||
        !std::isfinite(v[0] + v[1])) {
        report(p, item->getLine(), "two numbers, not too small, are needed in", key);
        return false;
    }
    out = {static_cast<float>(v[0]), static_cast<float>(v[1])};
    return true;
}

Node* createParticles(const Package& p) {
    reportUnknownKeys(p,
                      {"life", "life_spread", "velocity", "velocity_spread", "rate", "spread",
                       "duration", "burst", "surface", "material", "deflectors", "deflector_size",
                       "ring", "outflow"},
                      true);
    dvec3 spread;
    if (!readVec3(p, "spread", spread)) return nullptr;
    vec2 half{2.5f, 2.5f}, ring;
    if (!readVec2(p, "deflector_size", 0.01, half) || !readVec2(p, "ring", 0, ring)) return nullptr;
    auto* particles = new ObjectParticles();
    if (p.getItem("life")) particles->setLife(p.getFloat("life"));
    particles->setLifeSpread(p.getFloat("life_spread"));
    particles->setLinearVelocity(p.getFloat("velocity"));
    particles->setLinearVelocitySpread(p.getFloat("velocity_spread"));
    particles->setSpawnRate(p.getFloat("rate"));
    particles->setDuration(p.getFloat("duration"));
    particles->setBurst(p.getFloat("burst"));
    particles->setSpread(vec3(spread));
    particles->setSurface(readSurface(p));
    particles->setNumDeflectors(std::clamp(p.getInt("deflectors"), 0, 16));
    particles->setDeflectorSize(half);
    particles->setRing(ring, p.getFloat("outflow"));
    particles->setSurfaceMaterial(0, loadMaterial(p));
    particles->setIntersection(0, false);
    return particles;
}

Node* createDecal(const Package& p) {
    reportUnknownKeys(p, {"width", "height", "material"}, true);
    auto* decal = new DecalOrtho();
    decal->setWidth(p.getFloat("width"));
    decal->setHeight(p.getFloat("height"));
    decal->setSurfaceMaterial(0, loadMaterial(p));
    return decal;
}

Node* createLight(const Package& p) {
    reportUnknownKeys(p, {"material"}, true);
    auto* light = new ObjectLight();
    light->setSurfaceMaterial(0, loadMaterial(p));
    return light;
}

Node* createRope(const Package& p) {
    reportUnknownKeys(p, {"radius", "material"}, true);
    const float radius = p.getFloat("radius");
    if (!(radius > 0) || !std::isfinite(radius)) {
        report(p, p.getLine(), "a rope needs a positive radius, not", p.getString("radius"));
        return nullptr;
    }
    return new ObjectRope(radius, loadMaterial(p));
}

Node* createField(const Package& p) {
    reportUnknownKeys(p, {"parameters"}, true);
    auto* field = new NodeField();
    dvec3 parameters;
    readVec3(p, "parameters", parameters);
    field->setParameter(0, static_cast<float>(parameters.x));
    field->setParameter(1, static_cast<float>(parameters.y));
    field->setParameter(2, static_cast<float>(parameters.z));
    return field;
}

Node* createCamera(const Package& p) {
    reportUnknownKeys(p, {}, true);
    return new Camera();
}

std::map<jString, Creator>& creators() {
    static std::map<jString, Creator> map = {
        {"", createNode},         {"node", createNode},   {"mesh", createMesh},
        {"prefab", createPrefab}, {"decal", createDecal}, {"particles", createParticles},
        {"light", createLight},   {"field", createField}, {"camera", createCamera},
        {"rope", createRope},
    };
    return map;
}

// ------------------------------------------------------------------ what all nodes have

/// What to say of a place that isn't on the earth.
const char* wgsFault(const dvec3& wgs) {
    return std::abs(wgs.x) <= 90 && std::abs(wgs.y) <= 360
               ? "latitude and longitude are exchanged (\"wgs\" is longitude, latitude, altitude) "
                 "in"
               : "longitude within 360 and latitude within 90 degrees are needed in \"wgs\" of";
}

bool placeNode(const Package& p, Node& node) {
    dvec3 position, rotation, wgs, hpr;
    if (!readVec3(p, "position", position) || !readVec3(p, "rotation", rotation) ||
        !readVec3(p, "wgs", wgs) || !readVec3(p, "hpr", hpr))
        return false;
    if (const Item* item = p.getItem("wgs")) {
        if (std::abs(wgs.x) > 360 || std::abs(wgs.y) > 90) {
            report(p, item->getLine(), wgsFault(wgs), p.getString("name"));
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
Node* loadChild(const Package& parent, const Package& description) {
    if (const Item* wgs = description.getItem("wgs"))
        report(parent, wgs->getLine(), "\"wgs\" is for nodes without parent, not for",
               description.getString("name"));
    else
        return World::LoadNode(&description);
    return nullptr;
}

/// A body of the prefab's root belongs to the root; only objects have bodies.
void giveBody(const Package& p, Node& node) {
    const Package* description = p.getPackage("body");
    if (!description) return;
    if (!node.isObject())
        report(p, description->getLine(),
               "this type of node can't have a body:", p.getString("type"));
    else if (Body* body = loadBody(*description))
        static_cast<Object&>(node).setBody(body);
}

} // namespace

bool NodeFactory::add(const char* type, Creator create) {
    creators()[type] = create;
    return true;
}

NodeFactory::Creator NodeFactory::find(const jString& type) {
    const auto entry = creators().find(type);
    return entry == creators().end() ? nullptr : entry->second;
}

NodeBudget::NodeBudget() { g_loads++; }

NodeBudget::~NodeBudget() {
    if (--g_loads == 0) g_nodes = 0;
}

Node* World::LoadNode(const Package* package) {
    if (!package) return nullptr;
    const Package& p = *package;
    const NodeBudget budget;
    if (++g_nodes > NodeBudget::MOST) {
        if (g_nodes == NodeBudget::MOST + 1)
            report(p, p.getLine(), "too many nodes, prefabs in prefabs included: left out from",
                   p.getString("name"));
        return nullptr;
    }
    const Creator create = NodeFactory::find(p.getString("type"));
    if (!create) {
        std::vector<std::string> types;
        for (const auto& [type, known] : creators())
            types.push_back(type.c_str());
        jLog::error("World::LoadNode: %s:%d: unknown type of node \"%s\"%s; it is left out",
                    p.getPath().c_str(), p.getLine(), p.getString("type").c_str(),
                    nearest(p.getString("type").view(), types).c_str());
        return nullptr;
    }
    std::unique_ptr<Node> node(create(p));
    if (!node) return nullptr;
    node->setName(p.getString("name"));
    if (p.getItem("enabled")) node->setEnabled(p.getBool("enabled"));
    if (!placeNode(p, *node)) return nullptr;
    for (const Package* description : readList(p, "children", "World::LoadNode"))
        if (Node* child = loadChild(p, *description)) node->addChild(child);
    giveBody(p, *node);
    return node.release();
}

} // namespace ig
