// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/terrain/ObjectScenery.h"

#include <cstdint>

namespace ig {

/// Fills one cell: trees in the squares of a finer lattice, one at most in each, and what somebody
/// put there. For the one cell; reads nothing but the plan and the terrain.
class SceneryPlanting {
public:
    SceneryPlanting(const ObjectScenery::Plan& plan, const ObjectTerrain& terrain,
                    SceneryCellId id);

    void addSite(const ObjectScenery::Site& site);
    void addTrees();
    SceneryCell take(); ///< what has been added, in order

private:
    /// One of the plan's clearings, in metres from the cell's middle.
    struct Clearing {
        dvec2 from, to;
        double reach;
    };
    class Chance;

    dvec2 toMetres(const dvec2& degrees) const;
    void findClearings();
    bool isCleared(const dvec2& metres) const;
    const ObjectScenery::Stand* choose(LandClass land, double share) const;
    void addTree(const dvec2& place, Chance& chance);
    void add(int kind, const dvec2& place, double altitude, float heading_rad, float scale,
             float rank);

    const ObjectScenery::Plan& m_plan;
    const ObjectTerrain& m_terrain;
    SceneryCellId m_id;
    dvec2 m_middle; ///< longitude, latitude
    dvec2 m_degree; ///< lengths, m
    int m_squares;  ///< of the finer lattice along an edge
    std::vector<Clearing> m_clearings;
    SceneryCell m_cell;
};

} // namespace ig
