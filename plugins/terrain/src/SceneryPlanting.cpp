// SPDX-License-Identifier: MIT
#include "SceneryPlanting.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "plugins/terrain/ObjectTerrain.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

const EllipsoidModel EARTH;
constexpr double HECTARE = 1e4; ///< m²
/// Share of a square's edge along which its tree may stand: neighbours keep apart by the rest.
constexpr double PLAY = 0.7;
constexpr double VERGE = 1; ///< m between a house and the nearest trunk

double distance(const dvec2& p, const dvec2& from, const dvec2& to) {
    const dvec2 along{to.x - from.x, to.y - from.y}, off{p.x - from.x, p.y - from.y};
    const double length2 = along.x * along.x + along.y * along.y;
    const double s =
        length2 > 0 ? std::clamp((off.x * along.x + off.y * along.y) / length2, 0.0, 1.0) : 0;
    return std::hypot(off.x - along.x * s, off.y - along.y * s);
}

} // namespace

/// Numbers from 0 to 1 that go by seed, cell and square alone: S. Steele, D. Lea, C. Flood, "Fast
/// Splittable Pseudorandom Number Generators" (2014).
class SceneryPlanting::Chance {
public:
    Chance(int seed, SceneryCellId id, int square) {
        for (const int part : {seed, id.row, id.column, square})
            m_state = mix(m_state + static_cast<std::uint32_t>(part));
    }
    double next() {
        m_state += GOLDEN;
        return static_cast<double>(mix(m_state) >> 11) * 0x1p-53;
    }

private:
    static constexpr std::uint64_t GOLDEN = 0x9E3779B97F4A7C15u;
    static std::uint64_t mix(std::uint64_t z) {
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    std::uint64_t m_state = GOLDEN;
};

SceneryPlanting::SceneryPlanting(const ObjectScenery::Plan& plan, const ObjectTerrain& terrain,
                                 SceneryCellId id)
    : m_plan(plan), m_terrain(terrain), m_id(id), m_middle(SceneryLattice::getPlace(id, 0.5, 0.5)),
      m_degree(EARTH.getDegreeLengths(m_middle.y)),
      m_squares(std::max(static_cast<int>(SceneryLattice::EDGE / plan.spacing), 1)) {
    m_cell.frame = EARTH.getWGSTransform(EARTH.toWorld({m_middle.x, m_middle.y, 0}));
    findClearings();
}

dvec2 SceneryPlanting::toMetres(const dvec2& degrees) const {
    return {std::remainder(degrees.x - m_middle.x, 360) * m_degree.x,
            (degrees.y - m_middle.y) * m_degree.y};
}

/// Those that come into the cell.
void SceneryPlanting::findClearings() {
    constexpr double REACH = SceneryLattice::EDGE; // beyond a corner, and what cells are wider
    const auto add = [this](const dvec2& from, const dvec2& to, double reach) {
        if (distance({}, from, to) < reach + REACH) m_clearings.push_back({from, to, reach});
    };
    for (const ObjectScenery::Clearing& c : m_plan.clearings)
        add(toMetres(c.from), toMetres(c.to), c.reach);
    for (const ObjectScenery::Site& site : m_plan.sites) {
        const SceneryKind& kind = m_plan.kinds[static_cast<std::size_t>(site.kind)];
        const dvec2 place = toMetres(site.place);
        if (!kind.is_tree) add(place, place, kind.getReach() + VERGE);
    }
}

bool SceneryPlanting::isCleared(const dvec2& metres) const {
    return std::ranges::any_of(
        m_clearings, [&](const Clearing& c) { return distance(metres, c.from, c.to) < c.reach; });
}

void SceneryPlanting::addTrees() {
    if (m_plan.stands.empty()) return;
    for (int square = 0; square < m_squares * m_squares; square++) {
        Chance chance(m_plan.seed, m_id, square);
        const double u = square % m_squares + 0.5 + (chance.next() - 0.5) * PLAY;
        const double v = square / m_squares + 0.5 + (chance.next() - 0.5) * PLAY;
        addTree(SceneryLattice::getPlace(m_id, u / m_squares, v / m_squares), chance);
    }
}

/// The stand that a share of the square's chances, 0 to 1, falls to; null: none.
const ObjectScenery::Stand* SceneryPlanting::choose(LandClass land, double share) const {
    const double square = SceneryLattice::EDGE / m_squares;
    for (const ObjectScenery::Stand& stand : m_plan.stands) {
        if (stand.land != land) continue;
        share -= stand.density * square * square / HECTARE;
        if (share < 0) return &stand;
    }
    return nullptr;
}

void SceneryPlanting::addTree(const dvec2& place, Chance& chance) {
    const LandCover* cover = m_terrain.getLandCover().get();
    const LandClass land = cover ? cover->getClass(place.x, place.y) : LandClass::none;
    const ObjectScenery::Stand* stand = choose(land, chance.next());
    if (!stand || isCleared(toMetres(place))) return;
    double altitude = 0;
    dvec3 normal;
    if (!m_terrain.getAltitudeByLonLat(place.x, place.y, &altitude, &normal)) return;
    if (altitude < stand->altitude.x || altitude > stand->altitude.y) return;
    const double least_up = 1 / std::hypot(1.0, static_cast<double>(stand->steepest));
    if (dot(normal, m_cell.frame.getZ()) < least_up) return;
    const SceneryKind& kind = m_plan.kinds[static_cast<std::size_t>(stand->kind)];
    const auto turn = static_cast<float>(360 * DEG_TO_RAD<double> * chance.next());
    const auto size = static_cast<float>(chance.next());
    const float scale = kind.height.y > 0
                            ? std::lerp(kind.height.x, kind.height.y, size) / kind.getModelHeight()
                            : 1;
    add(stand->kind, place, altitude, turn, scale, static_cast<float>(chance.next()));
}

void SceneryPlanting::addSite(const ObjectScenery::Site& site) {
    double altitude = 0;
    if (!m_terrain.getAltitudeByLonLat(site.place.x, site.place.y, &altitude, nullptr)) return;
    const SceneryKind& kind = m_plan.kinds[static_cast<std::size_t>(site.kind)];
    const float height = (kind.height.x + kind.height.y) / 2;
    add(site.kind, site.place, altitude, static_cast<float>(site.heading * DEG_TO_RAD<double>),
        height > 0 ? height / kind.getModelHeight() : 1, 0);
}

void SceneryPlanting::add(int kind, const dvec2& place, double altitude, float heading_rad,
                          float scale, float rank) {
    const dvec3 world = EARTH.toWorld({place.x, place.y, altitude});
    const dvec3 in_cell = transpose(m_cell.frame.getMat3()) * (world - m_cell.frame.getTranslate());
    m_cell.things.push_back(
        {vec3(in_cell), heading_rad, scale, static_cast<std::uint16_t>(kind), rank});
}

SceneryCell SceneryPlanting::take() {
    std::ranges::stable_sort(m_cell.things, {}, &SceneryThing::rank);
    BoundSphere bounds;
    for (const SceneryThing& thing : m_cell.things) {
        const SceneryKind& kind = m_plan.kinds[thing.kind];
        const Mesh& mesh = *kind.mesh;
        m_cell.tallest = std::max(m_cell.tallest, kind.getModelHeight() * thing.scale);
        bounds.expand(mesh.getBounds().transformed(dmat4(SceneryCell::getPose(thing))));
    }
    m_cell.middle = vec3(bounds.center);
    m_cell.radius = static_cast<float>(std::max(bounds.radius, 0.0));
    return std::move(m_cell);
}

} // namespace ig
