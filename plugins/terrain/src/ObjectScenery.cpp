// SPDX-License-Identifier: MIT
#include "plugins/terrain/ObjectScenery.h"

#include "SceneryPlanting.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "plugins/terrain/ObjectTerrain.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

const EllipsoidModel EARTH;
constexpr double NONE = -1;
/// Cells that are kept: some 8 km around; what nobody holds then goes.
constexpr std::size_t MOST_CELLS = 32768;
/// Pieces in which a segment is followed, m: as long as cells are wide, hardly any is met twice.
constexpr double PIECE = SceneryLattice::EDGE;

HeightRange getHeights(const ObjectTerrain& terrain) {
    HeightRange range;
    for (const TerrainGrid& grid : terrain.getGrids())
        range.expand(grid.lowest, grid.highest);
    return range;
}

} // namespace

ObjectScenery::ObjectScenery(Plan plan) : Object(OBJECT_SCENERY), m_plan(std::move(plan)) {
    setNumSurfaces(1);
    for (const SceneryKind& kind : m_plan.kinds) {
        m_reach = std::max(m_reach, kind.getReach());
        m_tallest = std::max({m_tallest, kind.height.y, kind.getModelHeight()});
    }
    for (const Site& site : m_plan.sites)
        m_sites.emplace(SceneryLattice::getCell(site.place.x, site.place.y), &site);
    for (const auto& site : m_sites)
        m_site_cells.push_back(site.first);
    std::ranges::sort(m_site_cells);
    m_site_cells.erase(std::ranges::unique(m_site_cells).begin(), m_site_cells.end());
}

ObjectScenery::~ObjectScenery() = default;

const ObjectTerrain* ObjectScenery::getTerrain() const {
    const Node* parent = getParent();
    return parent && parent->getType() == OBJECT_TERRAIN ? static_cast<const ObjectTerrain*>(parent)
                                                         : nullptr;
}

// ------------------------------------------------------------------ what stands where

std::shared_ptr<const SceneryCell> ObjectScenery::findCell(SceneryCellId id) const {
    const auto known = m_cells.find(id);
    return known == m_cells.end() ? nullptr : known->second;
}

std::shared_ptr<const SceneryCell> ObjectScenery::getCell(SceneryCellId id) const {
    const ObjectTerrain* terrain = getTerrain();
    if (const auto ground = terrain ? terrain->getOwner() : nullptr; ground != m_ground.lock()) {
        m_ground = ground;
        m_cells.clear();
    }
    if (auto known = findCell(id)) return known;
    if (m_cells.size() >= MOST_CELLS)
        std::erase_if(m_cells, [](const auto& cell) { return cell.second.use_count() == 1; });
    return m_cells[id] = plant(id);
}

std::shared_ptr<const SceneryCell> ObjectScenery::plant(SceneryCellId id) const {
    static const auto EMPTY = std::make_shared<const SceneryCell>();
    const ObjectTerrain* terrain = getTerrain();
    if (!terrain) return EMPTY;
    SceneryPlanting planting(m_plan, *terrain, id);
    // In the order of the file, whatever the table's is.
    std::vector<const Site*> sites;
    const auto [first, last] = m_sites.equal_range(id);
    for (auto site = first; site != last; ++site)
        sites.push_back(site->second);
    std::ranges::sort(sites);
    for (const Site* site : sites)
        planting.addSite(*site);
    planting.addTrees();
    SceneryCell cell = planting.take();
    return cell.things.empty() ? EMPTY : std::make_shared<const SceneryCell>(std::move(cell));
}

// ------------------------------------------------------------------ queries

bool ObjectScenery::getIntersection(int surface, const dvec3& a, const dvec3& b, dvec3* out) const {
    const ObjectTerrain* terrain = getTerrain();
    if (!isIntersection(surface) || !terrain || terrain->getGrids().empty()) return false;
    const dvec3 from = toWorld(a), to = toWorld(b);
    const HeightRange heights = getHeights(*terrain);
    const auto margin = [](double altitude) { return 1 + 0.01 * std::abs(altitude); };
    EllipsoidModel::Stretch stretches[2];
    const double bottom = heights.lowest, top = heights.highest + m_tallest;
    const int count =
        EARTH.cutShell(from, to, bottom - margin(bottom), top + margin(top), stretches);
    double t = NONE;
    for (int i = 0; i < count && t < 0; i++)
        t = meetAround(from, to, stretches[i].begin, stretches[i].end);
    if (t < 0) return false;
    if (out) *out = a + (b - a) * t;
    return true;
}

/// First meeting on a stretch of the segment, as a parameter of the whole; it is followed in pieces
/// from cell to cell.
double ObjectScenery::meetAround(const dvec3& from, const dvec3& to, double begin,
                                 double end) const {
    const dvec3 along = to - from;
    const dvec3 up = EARTH.getUp(from + along * begin);
    // Steep ones stay among the same cells; what leans by the earth's curvature alone is level.
    const double steep = std::abs(dot(along, up)) / std::max(length(along), 1e-9);
    const double across =
        length(along) * (end - begin) * std::sqrt(std::max(1 - steep * steep, 0.0));
    const int pieces = std::max(static_cast<int>(std::ceil(across / PIECE)), 1);
    const double step = (end - begin) / pieces, reach = across / pieces / 2 + m_reach;
    for (int i = 0; i < pieces; i++) {
        const double piece_begin = begin + i * step, piece_end = piece_begin + step;
        const dvec3 middle = EARTH.toWGS(from + along * ((piece_begin + piece_end) / 2));
        double t = NONE;
        SceneryLattice::visitAround(middle.x, middle.y, reach, [&](SceneryCellId id) {
            const auto cell = getCell(id);
            if (cell->things.empty()) return;
            const double met = meetCell(*cell, from, to, piece_begin, piece_end);
            if (met >= 0 && (t < 0 || met < t)) t = met;
        });
        if (t >= 0) return t;
    }
    return NONE;
}

double ObjectScenery::meetCell(const SceneryCell& cell, const dvec3& from, const dvec3& to,
                               double begin, double end) const {
    const dmat3 turn = transpose(cell.frame.getMat3());
    const dvec3 a = turn * (from - cell.frame.getTranslate());
    const dvec3 b = turn * (to - cell.frame.getTranslate()), along = b - a;
    const vec3 first(a + along * begin), last(a + along * end);
    const auto apart = [](float p, float q, float at, float reach) {
        return std::max(p, q) < at - reach || std::min(p, q) > at + reach;
    };
    double t = NONE;
    for (const SceneryThing& thing : cell.things) {
        const SceneryKind& kind = m_plan.kinds[thing.kind];
        const float height = kind.getModelHeight() * thing.scale;
        if (!kind.is_met || height < LEAST_MET || apart(first.x, last.x, thing.place.x, m_reach) ||
            apart(first.y, last.y, thing.place.y, m_reach) ||
            std::min(first.z, last.z) > thing.place.z + height)
            continue;
        const double met = meetThing(thing, a, b);
        if (met >= 0 && (t < 0 || met < t)) t = met;
    }
    return t;
}

/// `from`, `to`: in the cell's frame.
double ObjectScenery::meetThing(const SceneryThing& thing, const dvec3& from,
                                const dvec3& to) const {
    const dmat4 to_model = inverse(dmat4(SceneryCell::getPose(thing)));
    const dvec3 a = to_model * from, b = to_model * to;
    const Mesh& mesh = *m_plan.kinds[thing.kind].mesh;
    if (!mesh.getBounds().intersectsSegment(a, b)) return NONE;
    double t = NONE;
    for (int surface = 0; surface < mesh.getNumSurfaces(); surface++) {
        const double met = mesh.intersect(surface, a, b);
        if (met >= 0 && (t < 0 || met < t)) t = met;
    }
    return t;
}

Ground ObjectScenery::getGroundAt(int, const dvec3& place) const {
    const dvec3 at = EARTH.toWGS(place);
    const auto cell = getCell(SceneryLattice::getCell(at.x, at.y));
    const dvec3 in_cell = inverse(cell->frame) * place;
    for (const SceneryThing& thing : cell->things) {
        const SceneryKind& kind = m_plan.kinds[thing.kind];
        const double away = std::hypot(in_cell.x - thing.place.x, in_cell.y - thing.place.y);
        if (!kind.is_tree && away < kind.getReach()) return Ground::of(Ground::Kind::hard);
    }
    return Ground::of(Ground::Kind::grass);
}

/// Around the whole terrain.
BoundSphere ObjectScenery::getOwnBounds() const {
    constexpr double WIDEST = 20; // degrees: beyond, all of the earth
    const ObjectTerrain* terrain = getTerrain();
    if (!terrain || terrain->getGrids().empty()) return {};
    const TerrainGrid& grid = terrain->getGrids().front(); // the others lie within
    const HeightRange heights = getHeights(*terrain);
    const double width = (grid.columns - 1) * grid.spacing_longitude;
    const double height = (grid.rows - 1) * grid.spacing_latitude;
    if (std::max(width, height) > WIDEST) return BoundSphere::unbounded();
    BoundSphere bounds;
    for (int i = 0; i < 9; i++)
        for (const float altitude : {heights.lowest, heights.highest + m_tallest})
            bounds.expand({EARTH.toWorld({grid.west + width * (i % 3) / 2.0,
                                          grid.north - height * (i / 3) / 2.0, altitude}),
                           m_reach + 0.0});
    // Between the nine the earth bulges by less than this share.
    constexpr double BULGE = 1.05;
    return {toLocal(bounds.center), bounds.radius * BULGE};
}

void ObjectScenery::onMoved() {
    Object::onMoved();
    invalidateBounds(); // the ground stays where it is, so it moves in the node's frame
}

} // namespace ig
