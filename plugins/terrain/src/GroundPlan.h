// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/terrain/TerrainGrid.h"

#include <string>
#include <vector>

namespace ig {

/// Which grids a ground is made of, and which of its rasters each of them takes its samples from.
///
/// Rasters come from coarse to fine. One that is finer than what lies in its middle gets a grid of
/// its own, whose cells divide that grid's. Those about as fine as what they touch, or as the
/// coarsest, share a grid: tiles make one ground.
class GroundPlan {
public:
    struct Layer {
        TerrainGrid shape;        ///< size, place, parent
        std::vector<int> rasters; ///< places in the list, the last counts most
    };
    /// `rasters`: their own north-up grids in longitude and latitude, at least one.
    explicit GroundPlan(const std::vector<TerrainGrid>& rasters);

    /// From coarse to fine, each behind its parent.
    const std::vector<Layer>& getLayers() const { return m_layers; }
    /// Rasters that lie beside the coarsest: nothing is taken from them.
    const std::vector<int>& getOutside() const { return m_outside; }

private:
    /// A part of the globe in grid coordinates of the coarsest raster.
    struct Box {
        double west = 0, east = 0, north = 0, south = 0;

        bool isEmpty() const { return !(west < east && north < south); }
        Box joined(const Box& other) const;
        Box cut(const Box& other) const;
    };
    struct Draft {
        Box box;
        double cell_u, cell_v; ///< in cells of the coarsest raster
        int parent = -1;
        std::vector<int> rasters; ///< none: another draft has taken them
    };
    void place(int raster, Draft draft);
    int findCoarser(const Draft& draft) const;
    void join(std::size_t into, Draft& draft);
    void settle(const TerrainGrid& coarsest);
    static TerrainGrid::Cells snap(const Box& box, const Draft& parent, const TerrainGrid& grid);

    std::vector<Draft> m_drafts;
    std::vector<Layer> m_layers;
    std::vector<int> m_outside;
};

} // namespace ig
