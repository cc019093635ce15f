// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Object.h"
#include "plugins/terrain/LandCover.h"
#include "plugins/terrain/Scenery.h"
#include "plugins/terrain/TerrainGrid.h"

#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace ig {

class ObjectTerrain;

/// Trees and houses on the ground of the terrain that is its parent: trees grow by the terrain's
/// land cover, houses stand where a file lists them. Node type "scenery" in world files.
///
/// What stands where is decided cell by cell of `SceneryLattice`, by the cell's own number and the
/// seed, when a query or a picture first needs the cell: whoever asks first, and in whichever
/// order, finds the same. Main thread only.
///
/// Segment queries meet the triangles of what stands higher than `LEAST_MET`, like any model's; so
/// the height above the ground is that above the crown below.
class ObjectScenery : public Object {
public:
    static constexpr float LEAST_MET = 2;   ///< m: lower things, bushes, are brushed aside
    static constexpr float FARTHEST = 6000; ///< m: so far trees can be drawn at most, and houses

    /// Where one of the kinds grows.
    struct Stand {
        LandClass land = LandClass::none;
        int kind = 0;
        float density = 0;      ///< on a hectare, a square of 100 m
        vec2 altitude{3, 1e5f}; ///< from and to which, m
        float steepest = 0.6f;  ///< rise over run of the ground
    };
    /// Ground that is kept free: all that is nearer to the line between two places, degrees.
    struct Clearing {
        dvec2 from, to;
        double reach; ///< m
    };
    /// What somebody put somewhere.
    struct Site {
        dvec2 place;    ///< longitude, latitude
        double heading; ///< degrees, clockwise from north
        int kind;
    };
    /// All that makes one; paths and names are resolved.
    struct Plan {
        int seed = 0;
        float spacing = 6;     ///< m: no more than one tree in a square of this edge
        float distance = 2500; ///< m from the eye, to which trees are drawn
        std::vector<SceneryKind> kinds;
        std::vector<Stand> stands;
        std::vector<Clearing> clearings;
        std::vector<Site> sites;
    };
    explicit ObjectScenery(Plan plan);
    ~ObjectScenery() override;

    std::span<const SceneryKind> getKinds() const { return m_plan.kinds; }
    float getDistance() const { return m_plan.distance; }
    /// The ground; null when its parent is none, and then nothing stands anywhere.
    const ObjectTerrain* getTerrain() const;

    /// Cells with sites on them, in order.
    const std::vector<SceneryCellId>& getSiteCells() const { return m_site_cells; }
    /// What stands on a cell; null when nobody has asked for it.
    std::shared_ptr<const SceneryCell> findCell(SceneryCellId id) const;
    /// The same, which is planted when nobody has asked for it.
    std::shared_ptr<const SceneryCell> getCell(SceneryCellId id) const;

    /// First crossing with a tree or a house. Planting a cell for it takes some 50 µs.
    bool getIntersection(int surface, const dvec3& a, const dvec3& b, dvec3* out) const override;
    /// Leaves below trees; houses are hard.
    Ground getGroundAt(int surface, const dvec3& place) const override;

protected:
    BoundSphere getOwnBounds() const override;
    void onMoved() override;

private:
    struct CellHash {
        std::size_t operator()(const SceneryCellId& id) const {
            return static_cast<std::size_t>(id.row) * 0x9E3779B97F4A7C15u +
                   static_cast<std::size_t>(id.column);
        }
    };
    std::shared_ptr<const SceneryCell> plant(SceneryCellId id) const;
    double meetAround(const dvec3& from, const dvec3& to, double begin, double end) const;
    double meetCell(const SceneryCell& cell, const dvec3& from, const dvec3& to, double begin,
                    double end) const;
    double meetThing(const SceneryThing& thing, const dvec3& from, const dvec3& to) const;

    Plan m_plan;
    float m_reach = 0, m_tallest = 0; ///< of the largest thing, m
    std::unordered_multimap<SceneryCellId, const Site*, CellHash> m_sites;
    std::vector<SceneryCellId> m_site_cells;
    mutable std::unordered_map<SceneryCellId, std::shared_ptr<const SceneryCell>, CellHash> m_cells;
    mutable std::weak_ptr<const void> m_ground; ///< that they are planted on
};

} // namespace ig
