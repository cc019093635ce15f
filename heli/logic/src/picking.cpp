// SPDX-License-Identifier: MIT
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/app/Engine.h"
#include "ig/base/jLog.h"
#include "ig/scene/Camera.h"
#include "ig/scene/CameraControl.h"
#include "ig/scene/World.h"
#include "nodes.h"

using namespace ig;

namespace {

struct Hit {
    dvec3 point; ///< world
    Object* object;
};

bool isShown(const Node* node) { return node->isEnabled() && node->isVisible(); }

/// The objects that can be seen among the candidates, in their order.
jVector<Object*> visibleObjects(const jVector<Node*>& nodes) {
    jVector<Object*> objects;
    objects.reserve(nodes.size());
    for (Node* node : nodes) {
        if (!isShown(node)) continue;
        if (const ObjectPrefab* prefab = asPrefab(node)) {
            for (Object* object : prefab->getObjects())
                if (isShown(object)) objects.append(object);
        } else if (node->isObject()) {
            objects.append(static_cast<Object*>(node));
        }
    }
    return objects;
}

} // namespace

Object* Logic_Nerith_Heli_Final::select_object(const dvec3& p0, const dvec3& p1,
                                               dvec3* hitPoint) const {
    if (!m_world) {
        jLog::error("%s:%s", "Logic_Nerith_Heli_Final::select_object", "world");
        return nullptr;
    }
    jVector<Node*> nodes;
    if (!m_world->getIntersection(p0, p1, nodes)) return nullptr;

    jVector<Hit> hits;
    hits.reserve(nodes.size());
    for (Object* object : visibleObjects(nodes)) {
        const int surfaces = object->getNumSurfaces();
        if (surfaces == 0) continue;
        const dvec3 a = object->toLocal(p0), b = object->toLocal(p1);
        for (int surface = 0; surface < surfaces; surface++) {
            dvec3 point;
            if (object->getIntersection(surface, a, b, &point))
                hits.append({object->toWorld(point), object});
        }
    }

    const Hit* nearest = nullptr;
    double bound = 1e30;
    for (const Hit& hit : hits) {
        const double distance2 = length2(hit.point - p0);
        if (!(distance2 < bound)) continue; // of equal distances the earliest wins
        bound = distance2;
        nearest = &hit;
    }
    if (!nearest) return nullptr;
    if (hitPoint) *hitPoint = nearest->point;
    return nearest->object;
}

dvec3 Logic_Nerith_Heli_Final::get_ray_to(double x, double y) const {
    const IApp* app = Engine::get()->getApp();
    const Camera* camera = m_camera_control->getCamera();
    if (!app || !camera) return m_camera_control->m_position;
    return camera->getRayTo(x / app->getWidth(), y / app->getHeight(), camera->getZFar());
}
