// SPDX-License-Identifier: MIT
#include "LoadBody.h"

#include "ig/math/quat.h"
#include "ig/package/Package.h"
#include "ig/physics/Body.h"
#include "ig/physics/BodyRope.h"
#include "ig/physics/Joint.h"
#include "ig/scene/NodeReader.h"
#include "ig/scene/ObjectPrefab.h"

#include <cmath>
#include <memory>

namespace ig {

using enum NodeKeys::Kind;

namespace {

const NodeSchema SHAPE{"shape",
                       {{"shape",
                         {{text, {"type"}},
                          {triple, {"size", "position", "rotation"}},
                          {number, {"radius", "height"}}}}}};
const NodeSchema DRAG{"drag", {{"drag", {{text, {"node"}}, {number, {"area"}}}}}};
const NodeSchema JOINT{"joint", {{"joint", {{text, {"name", "rope"}}}}}};

} // namespace

const NodeSchema BODY_SCHEMA{
    "body",
    {{"rigid",
      {{text, {"type"}},
       {number, {"mass", "linear_damping", "angular_damping"}},
       {triple, {"center"}},
       {flag, {"enabled", "sensor", "landing", "floating"}},
       {list, {"drag"}, &DRAG},
       {list, {"joints"}, &JOINT},
       {list, {"shapes"}, &SHAPE}}},
     {"rope", {{text, {"type", "anchor"}}, {number, {"length", "factor"}}}}}};

namespace {

Shape* loadShape(const NodeReader& r) {
    dvec3 position, rotation, size;
    if (!r.readTriple("position", position) || !r.readTriple("rotation", rotation) ||
        !r.readTriple("size", size))
        return nullptr;
    const mat4 transform(dmat4(dquat(rotation.x, rotation.y, rotation.z), position));
    const jString& type = r.getText("type");
    const auto length = [&r](const char* key) {
        const float value = r.getNumber(key);
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
    r.report("unknown shape, or one without positive dimensions:", type);
    return nullptr;
}

Body* loadRope(const NodeReader& r) {
    const float length = r.getNumber("length"), factor = r.getNumber("factor", 1);
    if (length > 0 && std::isfinite(length) && factor > 0 && std::isfinite(factor))
        return new BodyRope(length, factor);
    r.report("a rope needs a positive length and factor, not a length of",
             r.getPackage().getString("length"));
    return nullptr;
}

Body* loadRigid(const NodeReader& r) {
    dvec3 center;
    if (!r.readTriple("center", center)) return nullptr;
    auto body = std::make_unique<BodyRigid>(r.getNumber("mass"), vec3(center));
    for (const NodeReader& description : r.getMaps("shapes"))
        if (Shape* shape = loadShape(description)) body->addShape(shape);
    body->setLinearDamping(r.getNumber("linear_damping"));
    body->setAngularDamping(r.getNumber("angular_damping"));
    body->setSensor(r.getFlag("sensor"));
    body->setLanding(r.getFlag("landing"));
    body->setFloating(r.getFlag("floating"));
    body->setEnabled(r.getFlag("enabled", true));
    return body.release();
}

Body* findBody(const ObjectPrefab& prefab, const jString& name) {
    Node* node = prefab.getNodeByName(name);
    return node && node->isObject() ? static_cast<Object*>(node)->getBody() : nullptr;
}

BodyRope* findRope(const ObjectPrefab& prefab, const jString& name) {
    Body* body = findBody(prefab, name);
    return body && body->getType() == Body::BODY_ROPE ? static_cast<BodyRope*>(body) : nullptr;
}

void hangRope(const NodeReader& r, BodyRope& rope, const ObjectPrefab& prefab) {
    if (!r.has("anchor")) return;
    if (const Body* anchor = findBody(prefab, r.getText("anchor")))
        rope.setAnchor(anchor);
    else
        r.report("no node with a body to hang the rope from:", r.getText("anchor"));
}

void connectRigid(const NodeReader& r, Object& object, const ObjectPrefab& prefab) {
    for (const NodeReader& joint : r.getMaps("joints")) {
        BodyRope* rope = findRope(prefab, joint.getText("rope"));
        if (!Joint::create(joint.getText("name"), object.getBodyRigid(), rope))
            joint.report("no rope to hang the body from:", joint.getText("rope"));
    }
    for (const NodeReader& drag : r.getMaps("drag")) {
        const Node* node = prefab.getNodeByName(drag.getText("node"));
        const float area = drag.getNumber("area");
        if (node && area > 0 && std::isfinite(area))
            object.addDrag(node, area);
        else
            drag.report("drag needs a node and a positive area:", drag.getText("node"));
    }
}

} // namespace

Body* loadBody(const NodeReader& body) {
    if (body.getType()) return body.getType()->name == "rope" ? loadRope(body) : loadRigid(body);
    body.report("unknown type of body", body.getText("type"));
    return nullptr;
}

void connectBodies(const NodeReader& node, const ObjectPrefab& prefab) {
    const jString& name = node.getText("name");
    const auto body = node.getMap("body");
    if (const Body* owned = findBody(prefab, name); owned && body && body->getType()) {
        const bool rope = body->getType()->name == "rope";
        if (rope && findRope(prefab, name))
            hangRope(*body, *findRope(prefab, name), prefab);
        else if (!rope && owned->getType() != Body::BODY_ROPE)
            connectRigid(*body, static_cast<Object&>(*prefab.getNodeByName(name)), prefab);
        else if (!name.empty())
            body->report("another type of body already has the name", name);
    }
    for (const Package* child : node.getPackage().getPackages("children"))
        connectBodies(NodeReader(*child), prefab);
}

} // namespace ig
