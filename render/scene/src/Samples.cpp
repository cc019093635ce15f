// SPDX-License-Identifier: MIT
#include "render/scene/Samples.h"

#include "ig/scene/Mesh.h"
#include "render/scene/ShaderConstants.h"

#include <utility>

namespace ig {

Samples::Samples() : m_mesh(Mesh::getPlaceholder()), m_picture(Mesh::MISSING_PICTURE) {}

void Samples::addTo(SceneList& list) const {
    constexpr float AHEAD = 5; // m
    MeshItem item{&m_mesh, 0, mat4(), AHEAD, {}, {0, AHEAD, 0, 2}};
    item.transform.columns[3] = {0, AHEAD, 0, 1};
    const auto add = [&](auto change) {
        item.look = {};
        change(item.look);
        (item.look.isOpaque() ? list.opaque : list.transparent).push_back(item);
    };
    const vec4 slabs(1, 1, 0.01f, 0.1f);
    add([](SurfaceLook&) {});
    list.casters.push_back({&m_mesh, -1, &m_pose, {}, 1, (1U << NUM_SHADOW_MAPS) - 1});
    add([&](SurfaceLook& look) { look.texture = &m_picture; });
    add([&](SurfaceLook& look) { look.paving = slabs; });
    add([&](SurfaceLook& look) {
        look.paving = slabs;
        look.wetness = 1;
    });
    add([](SurfaceLook& look) { look.paint = 0.01f; });
    add([&](SurfaceLook& look) {
        look.paint = 0;
        look.texture = &m_picture;
    });
    add([](SurfaceLook& look) { look.color.w = 0.5f; });
    item.look.color.w = 0.5f;
    item.look.rain = 1;
    for (const PaneCover cover : {PaneCover::nothing, PaneCover::rain, PaneCover::snow}) {
        item.cover = cover;
        list.panes.push_back(item);
    }
    add([](SurfaceLook& look) { look.rotor = {5, 0.3f, 4, 0}; });
}

void Samples::addTo(SpriteList& list) {
    list.sprites.push_back({{0, 5, 0}, 1, {1, 1, 1, 0.5f}, 0, 0, 0, 0, {}, 0, 5});
}

void Samples::addTo(LightList& list) {
    constexpr float FAR = 1e5f; // m: everything is lit
    LightItem light{{0, 5, 2}, {0, 1, 0}, {FAR, FAR, FAR}, FAR, {-1, -1.1f}, 0, 0, 0, nullptr};
    list.lights = {light};
    light.cone = {0.9f, 0.8f};
    light.beam = 1;
    list.lights.push_back(light);
}

void Samples::addTo(WakeList& list) {
    if (list.wakes.size() < MOST_WAKES) list.wakes.emplace_back();
    list.wakes.back() = {{0, 0, 0, 1}, {5, 100, 12, 30}};
    std::swap(list.wakes.front(), list.wakes.back()); // below the eye, where it raises the water
    list.patches.push_back({{0, 0}, 1, 0.5f});
}

} // namespace ig
