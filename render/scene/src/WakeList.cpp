// SPDX-License-Identifier: MIT
#include "render/scene/WakeList.h"

#include "ig/physics/Body.h"
#include "ig/physics/Shape.h"
#include "ig/scene/Material.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/scene/SceneObjects.h"
#include "render/scene/FrameView.h"
#include "render/scene/ShaderConstants.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {
constexpr float SLOWEST = 0.7f; ///< m/s that leave a wake
constexpr float FOAM_LIFE = 30; ///< s, of a wake without emitters
} // namespace

void WakeList::gather(const FrameView& view, const ParticleSystem* particles,
                      const std::vector<const DecalOrtho*>& decals) {
    patches.clear();
    wakes.clear();
    if (particles)
        particles->forEach([&](const ParticleCloud& cloud) {
            if (cloud.flat) addPatches(view, cloud);
        });
    for (const DecalOrtho* decal : decals)
        addWake(view, *decal);
    const auto distance = [](const Wake& w) { return std::hypot(w.hull.x, w.hull.y); };
    std::sort(wakes.begin(), wakes.end(),
              [&](const Wake& a, const Wake& b) { return distance(a) < distance(b); });
    if (wakes.size() > MOST_WAKES) wakes.resize(MOST_WAKES);
}

void WakeList::addPatches(const FrameView& view, const ParticleCloud& cloud) {
    const Material* material = cloud.emitter->getSurfaceMaterial(0);
    const float opacity = readValue(material, "diffuse_color", {1, 1, 1, 1}).w;
    const float size = readSlider(material, "particle_size", 0.3f);
    const float growth = readSlider(material, "particle_growth", 0);
    const mat4 to_frame = view.toFrame(dmat4(dmat3(), cloud.origin));
    for (const Particle& p : cloud.particles) {
        const vec3 place = to_frame * p.position;
        const float radius = size + growth * p.age, youth = p.age / p.life;
        patches.push_back({{place.x, place.y},
                           radius,
                           opacity * std::min(youth * 8, 1.0f) * (1 - youth) * size / radius});
    }
}

void WakeList::addWake(const FrameView& view, const DecalOrtho& decal) {
    const BodyRigid* body = nullptr;
    for (const Node* node = decal.getParent(); node && !body; node = node->getParent())
        if (node->isObject()) body = static_cast<const Object*>(node)->getBodyRigid();
    const Shape* hull = body ? body->getShape(0) : nullptr;
    if (!hull || hull->getType() != Shape::SHAPE_BOX) return;
    const dmat4 pose = body->getTransform();
    const vec3 ahead(view.toFrameDirection(pose.getY()));
    const vec3 velocity(view.toFrameDirection(dvec3(body->getLinearVelocity())));
    const vec3 place(view.toFrame(pose.getTranslate()));
    const float level = std::hypot(ahead.x, ahead.y);
    if (level < 0.1f) return; // it stands on end
    const float x = ahead.x / level, y = ahead.y / level;
    const float speed = velocity.x * x + velocity.y * y;
    if (!(speed > SLOWEST)) return;
    float life = FOAM_LIFE;
    if (decal.getNumChildren() > 0 && decal.getChild(0)->getType() == OBJECT_PARTICLES)
        life = static_cast<const ObjectParticles*>(decal.getChild(0))->getLife();
    if (!(life > 0)) return; // the sea is too rough for it
    wakes.push_back(
        {{place.x, place.y, x, y}, {speed, hull->getSize().y, hull->getSize().x, life}});
}

} // namespace ig
