// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"
#include "plugins/terrain/TerrainGrid.h"

namespace ig {

/// How far it is to the nearest water, so that none is drawn where land hides it all.
class LandAround {
public:
    /// Metres around a geodetic place within which all ground stands above `crest`, an altitude;
    /// 0 for none, and at most a few dozen samples' worth. Seldom looks at the samples again while
    /// the place moves on; never tells too much.
    float find(TerrainGrids grids, const dvec3& place, float crest);

private:
    void look(TerrainGrids grids, const TerrainGrid& grid, dvec2 at, float level);

    TerrainGrid m_made_of; ///< what was looked at
    dvec2 m_place;         ///< about where, samples to the east and to the south
    float m_level = 0;     ///< above which altitude
    int m_rings = 0;       ///< whole samples around it that stand above
};

} // namespace ig
