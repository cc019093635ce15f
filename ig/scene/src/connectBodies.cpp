// SPDX-License-Identifier: MIT
#include "connectBodies.h"

#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/physics/BodyRope.h"
#include "ig/physics/Joint.h"
#include "ig/scene/ObjectPrefab.h"
#include "readList.h"

#include <cmath>

namespace ig {

namespace {

const char* const READER = "ObjectPrefab";

void report(const Package& p, const char* what, const jString& subject) {
    jLog::error("%s: %s:%d: %s \"%s\"", READER, p.getPath().c_str(), p.getLine(), what,
                subject.c_str());
}

Body* findBody(const ObjectPrefab& prefab, const jString& name) {
    Node* node = prefab.getNodeByName(name);
    return node && node->isObject() ? static_cast<Object*>(node)->getBody() : nullptr;
}

BodyRope* findRope(const ObjectPrefab& prefab, const jString& name) {
    Body* body = findBody(prefab, name);
    return body && body->getType() == Body::BODY_ROPE ? static_cast<BodyRope*>(body) : nullptr;
}

void hangRope(const Package& p, BodyRope& rope, const ObjectPrefab& prefab) {
    if (!p.getItem("anchor")) return;
    if (const Body* anchor = findBody(prefab, p.getString("anchor")))
        rope.setAnchor(anchor);
    else
        report(p, "no node with a body to hang the rope from:", p.getString("anchor"));
}

void connectRigid(const Package& p, Object& object, const ObjectPrefab& prefab) {
    for (const Package* joint : readList(p, "joints", READER)) {
        BodyRope* rope = findRope(prefab, joint->getString("rope"));
        if (!Joint::create(joint->getString("name"), object.getBodyRigid(), rope))
            report(*joint, "no rope to hang the body from:", joint->getString("rope"));
    }
    for (const Package* drag : readList(p, "drag", READER)) {
        const Node* node = prefab.getNodeByName(drag->getString("node"));
        const float area = drag->getFloat("area");
        if (node && area > 0 && std::isfinite(area))
            object.addDrag(node, area);
        else
            report(*drag, "drag needs a node and a positive area:", drag->getString("node"));
    }
}

} // namespace

void connectBodies(const Package& description, const ObjectPrefab& prefab) {
    if (const Package* body = description.getPackage("body")) {
        Node* node = prefab.getNodeByName(description.getString("name"));
        Object* object = node && node->isObject() ? static_cast<Object*>(node) : nullptr;
        if (object && object->getBodyRigid())
            connectRigid(*body, *object, prefab);
        else if (object && object->getBody())
            hangRope(*body, static_cast<BodyRope&>(*object->getBody()), prefab);
    }
    for (const Package* child : description.getPackages("children"))
        connectBodies(*child, prefab);
}

} // namespace ig
