// SPDX-License-Identifier: MIT
#include "render/scene/DecalStore.h"

#include "ig/scene/Mesh.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace ig {

namespace {

constexpr float CELL = 1;         ///< m between the points that are let down, at most MOST_CELLS
constexpr int MOST_CELLS = 12;    ///< along an edge
constexpr double LIFT = 0.015;    ///< m above what it lies on, where paint lies too
constexpr int KEPT = 600;         ///< frames that a sheet outlives its last use
constexpr float LEAST_PIXELS = 3; ///< what is smaller in the picture is left out

int countCells(float edge) {
    return std::clamp(static_cast<int>(std::ceil(edge / CELL)), 1, MOST_CELLS);
}

} // namespace

void DecalStore::gather(const World& world, const FrameView& view, SceneList& list) {
    m_frame++;
    purge();
    bool may_lay = true;
    for (const DecalOrtho* decal : list.pictures) {
        SurfaceLook look = SurfaceLook::read(decal->getSurfaceMaterial(0));
        look.paint = 0;
        const vec2 size{decal->getWidth(), decal->getHeight()};
        if (!(size.x > 0) || !(size.y > 0)) continue;
        const mat4 transform = view.toFrame(decal->getWorldTransform());
        const vec3 place = transform.getTranslate();
        const float radius = std::hypot(size.x, size.y) / 2 + static_cast<float>(REACH);
        const float distance = length(place);
        if (view.everything) {
            if (!m_level) m_level = makeLevel();
            list.transparent.push_back({&m_level, 0, transform, distance, look, {place, radius}});
            continue;
        }
        if (!view.sees(place, radius) || 2 * radius < LEAST_PIXELS * view.pixel_angle * distance)
            continue;
        Sheet& sheet = m_sheets[decal];
        if (sheet.size.x != size.x || sheet.size.y != size.y) { // a new one has none
            if (!may_lay) continue;
            may_lay = false;
            sheet = {lay(world, *decal), size, 0};
        }
        sheet.last_used = m_frame;
        if (sheet.mesh)
            list.transparent.push_back(
                {&sheet.mesh, 0, transform, distance, look, {place, radius}});
    }
}

std::shared_ptr<const Mesh> DecalStore::makeLevel() {
    Mesh::Surface sheet;
    sheet.positions = {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}};
    sheet.normals.assign(3, {0, 0, 1});
    sheet.uvs = {{0, 0}, {1, 0}, {1, 1}};
    sheet.indices = {0, 1, 2};
    return std::make_shared<const Mesh>(std::vector<Mesh::Surface>{std::move(sheet)});
}

/// A grid of points on what is met, with texture coordinates from the lower left; cells with a
/// corner that met nothing are left out.
std::shared_ptr<const Mesh> DecalStore::lay(const World& world, const DecalOrtho& decal) {
    const int columns = countCells(decal.getWidth()), rows = countCells(decal.getHeight());
    const dmat4& pose = decal.getWorldTransform();
    const dmat4 to_node = inverse(pose);
    Mesh::Surface sheet;
    std::vector<bool> met;
    for (int row = 0; row <= rows; row++)
        for (int column = 0; column <= columns; column++) {
            const vec2 uv{static_cast<float>(column) / static_cast<float>(columns),
                          static_cast<float>(row) / static_cast<float>(rows)};
            const dvec3 from((uv.x - 0.5f) * decal.getWidth(), (uv.y - 0.5f) * decal.getHeight(),
                             0);
            dvec3 hit;
            met.push_back(world.meet(pose * from, pose * (from - dvec3(0, 0, REACH)), false, &hit));
            const double height = met.back() ? (to_node * hit).z + LIFT : 0;
            sheet.positions.push_back(vec3(from + dvec3(0, 0, height)));
            sheet.normals.push_back({0, 0, 1});
            sheet.uvs.push_back(uv);
        }
    const int stride = columns + 1;
    for (int row = 0; row < rows; row++)
        for (int column = 0; column < columns; column++) {
            const int low = row * stride + column, high = low + stride;
            const int corners[6] = {low, low + 1, high + 1, low, high + 1, high};
            if (std::all_of(corners, corners + 6, [&met](int i) { return met[i]; }))
                for (const int i : corners)
                    sheet.indices.push_back(i);
        }
    if (sheet.indices.empty()) return nullptr;
    return std::make_shared<const Mesh>(std::vector<Mesh::Surface>{std::move(sheet)});
}

void DecalStore::purge() {
    if (m_frame % KEPT) return;
    std::erase_if(m_sheets,
                  [this](const auto& entry) { return entry.second.last_used < m_frame - KEPT; });
}

} // namespace ig
