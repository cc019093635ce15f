// SPDX-License-Identifier: MIT
#include "render/scene/SceneList.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/math/jMath.h"
#include "ig/scene/Mesh.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "plugins/ocean/ObjectOcean.h"
#include "plugins/terrain/ObjectScenery.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "render/scene/ShaderConstants.h"
#include "render/scene/shares.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace ig {

void SceneList::gather(const World& world, const FrameView& view, const ShadowPlace* shadows) {
    opaque.clear();
    transparent.clear();
    panes.clear();
    blades.clear();
    casters.clear();
    lamps.clear();
    lights.clear();
    cables.clear();
    decals.clear();
    pictures.clear();
    fields.clear();
    downdraughts.clear();
    ocean = nullptr;
    terrain = nullptr;
    scenery = nullptr;
    m_view = &view;
    m_shadows = shadows;
    m_levels.beginFrame();
    add(world);
}

void SceneList::add(const World& world) {
    for (const Node* node : world.getNodes())
        visit(*node);
}

void SceneList::visit(const Node& node) {
    if ((!node.isEnabled() && !m_view->everything) || &node == left_out) return;
    const bool outside = !m_in_focus;
    m_in_focus |= &node == focus;
    switch (node.getType()) {
    case OBJECT_MESH:
        addMesh(node);
        break;
    case OBJECT_ROPE:
        addCable(static_cast<const ObjectRope&>(node)); // sees to its pieces
        if (outside) m_in_focus = false;
        return;
    case OBJECT_LIGHT:
        addLamp(static_cast<const ObjectLight&>(node));
        break;
    case DECAL_ORTHO:
        addDecal(static_cast<const DecalOrtho&>(node));
        break;
    case NODE_FIELD:
        fields.push_back(static_cast<const NodeField*>(&node));
        break;
    case NODE_DOWNDRAUGHT:
        addDowndraught(static_cast<const NodeDowndraught&>(node));
        break;
    case OBJECT_OCEAN:
        ocean = static_cast<const ObjectOcean*>(&node);
        break;
    case OBJECT_TERRAIN:
        terrain = static_cast<const ObjectTerrain*>(&node);
        break;
    case OBJECT_SCENERY:
        scenery = static_cast<const ObjectScenery*>(&node);
        break;
    default:
        break;
    }
    for (int i = 0; i < node.getNumChildren(); i++)
        visit(*node.getChild(i));
    if (outside) m_in_focus = false;
}

void SceneList::addDecal(const DecalOrtho& decal) {
    const bool has_picture = SurfaceLook::read(decal.getSurfaceMaterial(0)).texture;
    (has_picture ? pictures : decals).push_back(&decal);
}

void SceneList::addMesh(const Node& node) {
    const auto& object = static_cast<const ObjectMesh&>(node);
    const dmat4& world = node.getWorldTransform();
    const BoundSphere bounds = object.getMesh()->getBounds().transformed(world);
    if (bounds.isEmpty()) return;
    const vec3 center(m_view->toFrame(bounds.center));
    const float radius = static_cast<float>(bounds.radius), distance = length(center);
    // Smaller than a third of a pixel: nothing to see.
    const bool seen = m_view->sees(center, radius) && (m_view->orthographic || m_view->everything ||
                                                       radius > distance * m_view->pixel_angle / 6);
    unsigned maps = m_shadows ? m_shadows->findMaps(bounds.center, bounds.radius) : 0;
    if (m_in_focus) maps &= 1;
    const float away = m_view->orthographic ? 1 : std::max(distance, 1e-3f);
    const float pixels = 2 * radius / (away * m_view->pixel_angle);
    const auto& mesh = m_view->everything ? object.getMesh()
                                          : m_levels.choose(object.getMesh(), node.getID(), pixels);
    if (maps) addCaster(object, {&mesh, -1, &world, bounds.center, bounds.radius, maps});
    constexpr float BESIDE = 4; // m: what a wiper has wiped may be seen where it isn't
    if (!seen && distance > BESIDE) return;
    MeshItem item{&mesh, 0, m_view->toFrame(world), distance, {}, {center, radius}};
    addSurfaces(object, item, seen);
    if (!m_view->everything) return;
    for (const Mesh::Coarser& coarser : object.getMesh()->getCoarser()) {
        item.mesh = &coarser.mesh;
        addSurfaces(object, item, seen);
    }
}

namespace {

/// The material that the object gives a surface of one of its mesh's levels.
const Material* findMaterial(const ObjectMesh& object, const Mesh& mesh, int surface) {
    const bool finest = &mesh == object.getMesh().get();
    return object.getSurfaceMaterial(finest ? surface : mesh.getSurface(surface).stands_for);
}

} // namespace

void SceneList::addSurfaces(const ObjectMesh& object, MeshItem item, bool seen) {
    const Mesh& mesh = **item.mesh;
    for (int i = 0; i < mesh.getNumSurfaces(); i++) {
        item.surface = i;
        const Mesh::Surface& surface = mesh.getSurface(i);
        item.look = SurfaceLook::read(findMaterial(object, mesh, i), surface.material.get());
        if (item.look.wipes > 0) addBlade(object, surface);
        if (!seen) continue;
        item.look.isOpaque() ? opaque.push_back(item) : addTransparent(item);
    }
}

/// As a whole where no light passes through any of it, which is one draw.
void SceneList::addCaster(const ObjectMesh& object, CasterItem item) {
    const Mesh& mesh = **item.mesh;
    const auto isOpaque = [&](int surface) {
        return SurfaceLook::isOpaque(findMaterial(object, mesh, surface),
                                     mesh.getSurface(surface).material.get());
    };
    const int count = mesh.getNumSurfaces();
    int surface = 0;
    while (surface < count && isOpaque(surface))
        surface++;
    if (surface == count) {
        casters.push_back(item);
        return;
    }
    for (item.surface = 0; item.surface < count; item.surface++)
        if (item.surface < surface || isOpaque(item.surface)) casters.push_back(item);
}

/// Panes that the eye is behind, or right before: from farther off no drop is to be told.
void SceneList::addTransparent(MeshItem item) {
    constexpr float REACH = 1.5f; // m from the mesh's sphere
    if (item.look.rain < 0 || item.distance > item.bounds.w + REACH) {
        transparent.push_back(item);
        return;
    }
    if (snow_on_glass)
        item.cover = PaneCover::snow;
    else if (item.look.rain > 0)
        item.cover = PaneCover::rain;
    panes.push_back(item);
}

/// Its angle counts about its mesh's Z from a way that is fixed in its prefab: the prefab's X, or
/// its Y where X is nearly the axis.
void SceneList::addBlade(const ObjectMesh& object, const Mesh::Surface& surface) {
    if (surface.positions.empty()) return;
    float inner = surface.positions.front().y, outer = inner;
    for (const vec3& p : surface.positions) {
        inner = std::min(inner, p.y);
        outer = std::max(outer, p.y);
    }
    const dmat4& pose = object.getWorldTransform();
    const dvec3 axis = normalize(pose.getZ()), along = normalize(pose.getY());
    const auto scale = static_cast<float>(length(pose.getY()));
    const Node* prefab = object.getPrefabRoot();
    const dmat4 carrier = prefab ? prefab->getWorldTransform() : dmat4();
    const dvec3 x = normalize(carrier.getX());
    const dvec3 from = std::abs(dot(x, axis)) < 0.9 ? x : normalize(carrier.getY());
    const dvec3 ahead = normalize(from - axis * dot(from, axis)), aside = cross(axis, ahead);
    blades.push_back({&object, vec3(m_view->toFrame(pose.getTranslate())),
                      vec3(m_view->toFrameDirection(ahead)), vec3(m_view->toFrameDirection(aside)),
                      static_cast<float>(std::atan2(dot(along, aside), dot(along, ahead))),
                      inner * scale, outer * scale});
}

/// Pieces less than a pixel and a half thick would break up into dots, or vanish: they become
/// lines.
void SceneList::addCable(const ObjectRope& rope) {
    constexpr float THINNEST = 0.75f; // radius, pixels
    for (int i = 0; i < rope.getNumChildren(); i++) {
        const Node& piece = *rope.getChild(i);
        if (!piece.isEnabled() && !m_view->everything) continue;
        const mat4 pose = m_view->toFrame(piece.getWorldTransform()); // from z 0 to 1
        const vec3 half = pose.columns[2].xyz() * 0.5f, middle = pose.columns[3].xyz() + half;
        const bool thin = rope.getRadius() < THINNEST * m_view->pixel_angle * length(middle);
        if (m_view->orthographic || !thin) {
            visit(piece);
        } else if (m_view->sees(middle, length(half))) {
            const Material* material = static_cast<const Object&>(piece).getSurfaceMaterial(0);
            cables.push_back(
                {middle, half, SurfaceLook::read(material).color.xyz(), rope.getRadius()});
        }
    }
}

namespace {

constexpr float LAMP_SIZE = 0.55f; ///< half the edge of a lamp's glow nearby, m

/// Cosines of a cone's half angles, the second less than the first.
vec2 cosines(const vec2& degrees) {
    const vec2 c{std::cos(degrees.x * (PI / 180)), std::cos(degrees.y * (PI / 180))};
    return {c.x, std::min(c.y, c.x - 1e-4f)};
}

/// What of a lamp is seen from the eye: beyond its cone what its glass and housing scatter.
float seenShare(const vec3& position, const vec3& axis, const vec2& cone) {
    constexpr float STRAY = 0.1f;
    const float along = -dot(axis, position) / std::max(length(position), 1e-3f);
    const float within = std::clamp((along - cone.y) / (cone.x - cone.y), 0.0f, 1.0f);
    return std::lerp(STRAY, 1.0f, within);
}

/// How a lamp looks from a distance. One that tells its nominal range looks as bright as the light
/// is that falls into the eye, which goes by the square of the distance, up to what a picture can
/// show; what is beyond that spreads in the eye, by one more step with each doubling.
struct Glow {
    float share, size; ///< of its power; half the edge, m
};
Glow glowAt(float distance, float nominal_range, float pixel_angle) {
    constexpr float JUST_SEEN = 0.01f;          // share, on a dark night
    constexpr float PIXELS = 1.7f, STEP = 0.2f; // of the faintest; how much more a step is
    if (!(nominal_range > 0)) return {1, LAMP_SIZE};
    const float ratio = nominal_range / std::max(distance, 1.0f);
    const float bright = JUST_SEEN * ratio * ratio;
    const float spread = PIXELS * (1 + STEP * std::log2(std::max(bright, 1.0f)));
    return {std::min(bright, 1.0f), std::max(LAMP_SIZE, spread * pixel_angle * distance)};
}

/// What an operator's switch says holds, else what the hour does.
float lampPower(const Material* material) {
    const float switched = readSlider(material, "override", 0);
    return switched != 0 ? switched : readSlider(material, "density", 1);
}

} // namespace

void SceneList::addLamp(const ObjectLight& light) {
    const Material* material = light.getSurfaceMaterial(0);
    const float power = lampPower(material);
    if (power < 0.01f || !(light.isLit(time) || m_view->everything)) return;
    const dmat4 pose = light.getLampTransform();
    const vec3 position(m_view->toFrame(pose.getTranslate()));
    const vec3 color = readValue(material, "diffuse_color", {1, 1, 1, 1}).xyz();
    const vec3 axis(m_view->toFrameDirection(normalize(pose.getMat3().getY())));
    const vec2 cone = cosines(light.getCone());
    const Node* parent = light.getParent();
    const auto* emitter = parent && parent->getType() == OBJECT_PARTICLES
                              ? static_cast<const ObjectParticles*>(parent)
                              : nullptr;
    const float range = m_view->orthographic ? 0 : light.getNominalRange();
    const Glow glow = glowAt(length(position), range, m_view->pixel_angle);
    const bool seen = m_view->sees(position, std::max(2.0f, glow.size));
    if (!emitter && (seen || length(position) < MIRRORED)) {
        const dvec3 to_eye = inverse(pose.getMat3()) * (m_view->eye - pose.getTranslate());
        const vec3 shown = mixSectors(light.getSectors(), to_eye, color);
        const float towards = power * seenShare(position, axis, cone);
        if (strongest(shown) > 0)
            lamps.push_back({position, shown, towards, seen ? towards * glow.share : 0, glow.size});
    }
    if (light.getIntensity() > 0 && m_view->sees(position, light.getReach()))
        lights.push_back({position, axis, color * (power * light.getIntensity()), light.getReach(),
                          cone, light.getBeam(), light.getFlicker(), light.getID(), emitter});
}

void SceneList::addDowndraught(const NodeDowndraught& wind) {
    const Node* prefab = wind.getPrefabRoot();
    const dvec3 source = (prefab ? prefab : &wind)->getWorldPosition();
    const vec3 place(m_view->toFrame(source));
    const auto altitude = static_cast<float>(EllipsoidModel().getAltitude(source));
    const float strength = jMath::getFadeOut(altitude, wind.getFades().y, wind.getFades().x);
    if (strength > 0) downdraughts.push_back({place.x, place.y, wind.getRadius(), strength});
}

namespace {
auto batchKey(const MeshItem& item) {
    const SurfaceLook& l = item.look;
    return std::make_tuple(item.mesh->get(), item.surface, l.color.x, l.color.y, l.color.z,
                           l.emission, l.wetness, l.ice, l.texture);
}

void number(std::vector<MeshItem>& items) {
    int order = 0;
    for (MeshItem& item : items)
        item.order = order++;
}
} // namespace

void SceneList::sort() {
    // Batches are told apart by addresses, which are others in every run.
    const auto by_batch = [](const MeshItem& a, const MeshItem& b) {
        const auto key = batchKey(a), other = batchKey(b);
        return key != other ? key < other : a.order < b.order;
    };
    for (std::vector<MeshItem>* items : {&opaque, &transparent, &panes})
        number(*items);
    std::sort(opaque.begin(), opaque.end(), by_batch);
    for (std::vector<MeshItem>* items : {&transparent, &panes})
        std::sort(items->begin(), items->end(), [](const MeshItem& a, const MeshItem& b) {
            return a.distance != b.distance ? a.distance > b.distance : a.order < b.order;
        });
    std::sort(blades.begin(), blades.end(), [](const BladeItem& a, const BladeItem& b) {
        const float first = length2(a.pivot), second = length2(b.pivot);
        return first != second ? first < second : a.node->getID() < b.node->getID();
    });
    std::sort(downdraughts.begin(), downdraughts.end(), [](const vec4& a, const vec4& b) {
        return std::hypot(a.x, a.y) < std::hypot(b.x, b.y);
    });
}

} // namespace ig
