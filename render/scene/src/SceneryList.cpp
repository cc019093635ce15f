// SPDX-License-Identifier: MIT
#include "render/scene/SceneryList.h"

#include "plugins/terrain/ObjectScenery.h"
#include "render/scene/CardPictures.h"
#include "render/scene/ShaderConstants.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr std::size_t PLANTED_A_FRAME = 12; ///< cells; what bounds the cost when the eye moves fast
constexpr std::size_t PLANTED_AT_ONCE = 8000; ///< cells of a scenery that is new
constexpr float SMALLEST = 2;  ///< pixels of height in the picture; below there is nothing to see
constexpr float DENSE = 260;   ///< m from the eye, from where on fewer trees stand for all
constexpr float GROWTH = 0.7f; ///< share of its distance from which on a card grows
constexpr unsigned HOUSE_MAPS = 0b0111; ///< that they cast into
constexpr unsigned NEAR_TREES = 0b0001, SOME_TREES = 0b0011;
constexpr float SOME = 0.4f;    ///< rank up to which trees cast into more than the nearest map
constexpr float CASTING = 2.5f; ///< m: no shadow of lower things is missed

/// From 1 to 0 where trees end.
float endAt(float distance, float farthest) {
    return std::clamp((farthest - distance) / (0.2f * farthest), 0.0f, 1.0f);
}

/// Share of the trees that is drawn at a distance: so falling, each ring of ground has as many as
/// the next but for a root.
float shareAt(float distance, float farthest) {
    const float near = DENSE / std::max(distance, DENSE);
    return near * std::sqrt(near) * endAt(distance, farthest);
}

} // namespace

void SceneryList::gather(const FrameView& view, const ShadowPlace* shadows, SceneList& list) {
    cards.clear();
    groups.clear();
    m_casters.clear();
    m_poses.clear();
    if (list.scenery != m_scenery) {
        m_cells.clear();
        m_missing.clear();
        m_at = {-1, -1};
    }
    m_scenery = list.scenery;
    if (!m_scenery || view.orthographic) return;
    m_looks.clear();
    m_first_look.clear();
    m_ices.clear();
    for (const SceneryKind& kind : m_scenery->getKinds()) {
        m_first_look.push_back(m_looks.size());
        m_ices.push_back(0);
        for (int i = 0; i < kind.mesh->getNumSurfaces(); i++) {
            const SurfaceLook look = SurfaceLook::read(kind.materials[static_cast<std::size_t>(i)],
                                                       kind.mesh->getSurface(i).material.get());
            m_ices.back() = std::max(m_ices.back(), look.ice);
            m_looks.push_back(look);
        }
    }
    follow(view);
    if (view.everything) {
        rehearse(list);
        return;
    }
    for (const Cell& cell : m_cells)
        addCell(*cell, view, shadows, list);
    for (std::size_t i = 0; i < m_casters.size(); i++) { // the poses stay where they are now
        m_casters[i].pose = &m_poses[i];
        list.casters.push_back(m_casters[i]);
    }
}

/// One of each kind, and a card: nothing else is drawn for a rehearsal.
void SceneryList::rehearse(SceneList& list) {
    for (std::size_t kind = 0; kind < m_first_look.size(); kind++)
        addMesh({{}, 0, 1, static_cast<std::uint16_t>(kind), 0}, mat4(), vec4(0, 0, 0, 1), 1, list);
    cards.push_back({vec4(0, 5, 0, 1), 0, 1, 0, 0});
    groups.push_back({vec3(0, 5, 0), 0, 1});
}

/// Keeps the cells around the eye.
void SceneryList::follow(const FrameView& view) {
    const bool is_new = m_at == SceneryCellId{-1, -1};
    const SceneryCellId at = SceneryLattice::getCell(view.geodetic.x, view.geodetic.y);
    if (at != m_at) {
        m_at = at;
        m_cells.clear();
        m_missing.clear();
        const auto take = [this](SceneryCellId id) {
            Cell cell = m_scenery->findCell(id);
            if (!cell)
                m_missing.push_back(id);
            else if (!cell->things.empty())
                m_cells.push_back(std::move(cell));
        };
        SceneryLattice::visitAround(view.geodetic.x, view.geodetic.y, m_scenery->getDistance(),
                                    take);
        for (const SceneryCellId id : m_scenery->getSiteCells()) // houses are seen from farther
            if (!SceneryLattice::isAround(id, view.geodetic.x, view.geodetic.y,
                                          m_scenery->getDistance()) &&
                SceneryLattice::isAround(id, view.geodetic.x, view.geodetic.y,
                                         ObjectScenery::FARTHEST))
                take(id);
        const auto getDistance = [at](SceneryCellId id) {
            return std::hypot(id.row - at.row, id.column - at.column); // nearly, and for the order
        };
        std::ranges::sort(m_missing, [&](SceneryCellId a, SceneryCellId b) {
            const double first = getDistance(a), second = getDistance(b);
            return first != second ? first > second : a < b;
        });
    }
    const std::size_t most = is_new ? PLANTED_AT_ONCE : PLANTED_A_FRAME;
    for (std::size_t i = 0; i < most && !m_missing.empty(); i++) {
        Cell cell = m_scenery->getCell(m_missing.back());
        m_missing.pop_back();
        if (!cell->things.empty()) m_cells.push_back(std::move(cell));
    }
}

void SceneryList::addCell(const SceneryCell& cell, const FrameView& view,
                          const ShadowPlace* shadows, SceneList& list) {
    const dvec3 middle = cell.frame * dvec3(cell.middle);
    if (shadows) addCasters(cell, *shadows, shadows->findMaps(middle, cell.radius));
    const vec3 in_eye(view.toFrame(middle));
    if (!view.sees(in_eye, cell.radius)) return;
    const float nearest = std::max(length(in_eye) - cell.radius, 0.0f);
    if (cell.tallest < SMALLEST * nearest * view.pixel_angle) return;
    const float share = shareAt(nearest, m_scenery->getDistance());
    const mat4 to_eye = view.toFrame(cell.frame);
    const std::size_t first = cards.size();
    for (const SceneryThing& thing : cell.things) {
        if (thing.rank > share) break;
        addThing(thing, to_eye, view, list);
    }
    if (cards.size() > first)
        groups.push_back({in_eye, static_cast<int>(first), static_cast<int>(cards.size() - first)});
}

void SceneryList::addThing(const SceneryThing& thing, const mat4& to_eye, const FrameView& view,
                           SceneList& list) {
    const SceneryKind& kind = m_scenery->getKinds()[thing.kind];
    const BoundSphere& own = kind.mesh->getBounds();
    const float height = kind.getModelHeight() * thing.scale;
    const vec3 middle =
        to_eye * (thing.place + vec3(0, 0, static_cast<float>(own.center.z) * thing.scale));
    const vec4 bounds{middle, static_cast<float>(own.radius) * thing.scale};
    const float distance = length(middle), pixels = height / (distance * view.pixel_angle);
    if (pixels < SMALLEST || !view.sees(middle, bounds.w)) return;
    if (kind.is_tree) addCard(thing, bounds, pixels, distance);
    if (!kind.is_tree || pixels > CARD_PIXELS)
        addMesh(thing, to_eye * SceneryCell::getPose(thing), bounds, distance, list);
}

void SceneryList::addMesh(const SceneryThing& thing, const mat4& pose, const vec4& bounds,
                          float distance, SceneList& list) {
    const SceneryKind& kind = m_scenery->getKinds()[thing.kind];
    MeshItem item{&kind.mesh, 0, pose, distance, {}, bounds};
    for (; item.surface < kind.mesh->getNumSurfaces(); item.surface++) {
        item.look = m_looks[m_first_look[thing.kind] + static_cast<std::size_t>(item.surface)];
        (item.look.isOpaque() ? list.opaque : list.transparent).push_back(item);
    }
}

/// From `GROWTH` of the distance at which the model goes, so that nothing is seen to change.
void SceneryList::addCard(const SceneryThing& thing, const vec4& bounds, float pixels,
                          float distance) {
    const float to_go = CARD_PIXELS / pixels; // 1 where the model goes
    const float share = shareAt(distance, m_scenery->getDistance());
    const float thinned = std::min((share - thing.rank) / (0.25f * share + 1e-6f), 1.0f);
    const float whole =
        std::min({(to_go - GROWTH) / (1 - GROWTH), thinned,
                  endAt(distance, m_scenery->getDistance()), 2 * (pixels / SMALLEST - 1)});
    if (whole <= 0) return;
    cards.push_back({bounds, static_cast<float>(thing.kind * CardPictures::TILES),
                     std::clamp(whole, 0.0f, 1.0f), thing.heading_rad / (2 * PI),
                     m_ices[thing.kind]});
}

/// All that may cast, whether in view or not: what the maps show goes by places alone. `reached`:
/// the maps that the cell as a whole comes into.
void SceneryList::addCasters(const SceneryCell& cell, const ShadowPlace& shadows,
                             unsigned reached) {
    if (!(reached & HOUSE_MAPS)) return;
    for (const SceneryThing& thing : cell.things) {
        const SceneryKind& kind = m_scenery->getKinds()[thing.kind];
        const unsigned wanted = reached & (!kind.is_tree       ? HOUSE_MAPS
                                           : thing.rank < SOME ? SOME_TREES
                                                               : NEAR_TREES);
        if (!wanted || kind.getModelHeight() * thing.scale < CASTING) continue;
        const BoundSphere& own = kind.mesh->getBounds();
        const dvec3 center =
            cell.frame *
            dvec3(thing.place + vec3(0, 0, static_cast<float>(own.center.z) * thing.scale));
        const double radius = own.radius * thing.scale;
        const unsigned maps = shadows.findMaps(center, radius) & wanted;
        if (!maps) continue;
        m_poses.push_back(cell.frame * dmat4(SceneryCell::getPose(thing)));
        m_casters.push_back({&kind.mesh, -1, nullptr, center, radius, maps});
    }
}

} // namespace ig
