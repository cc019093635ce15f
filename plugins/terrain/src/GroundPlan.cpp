// SPDX-License-Identifier: MIT
#include "GroundPlan.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ig {

namespace {

/// Of two rasters whose cells differ by less, neither is finer.
constexpr double AS_FINE = 1.5;
/// Of a cell: what lies on a line lies on it.
constexpr double SLACK = 1e-6;

int area(const TerrainGrid::Cells& cells) {
    return cells.columns > 0 && cells.rows > 0 ? cells.columns * cells.rows : 0;
}

/// The largest of the rectangles that are left of one when another is taken away.
TerrainGrid::Cells without(const TerrainGrid::Cells& cells, const TerrainGrid::Cells& taken) {
    const int east = cells.column + cells.columns, south = cells.row + cells.rows;
    const int taken_east = taken.column + taken.columns, taken_south = taken.row + taken.rows;
    if (east <= taken.column || taken_east <= cells.column || south <= taken.row ||
        taken_south <= cells.row)
        return cells;
    std::array<TerrainGrid::Cells, 4> left{cells, cells, cells, cells};
    left[0].columns = taken.column - cells.column;
    left[1].column = taken_east;
    left[1].columns = east - taken_east;
    left[2].rows = taken.row - cells.row;
    left[3].row = taken_south;
    left[3].rows = south - taken_south;
    return *std::ranges::max_element(left, {}, area);
}

} // namespace

GroundPlan::Box GroundPlan::Box::joined(const Box& other) const {
    return {std::min(west, other.west), std::max(east, other.east), std::min(north, other.north),
            std::max(south, other.south)};
}

GroundPlan::Box GroundPlan::Box::cut(const Box& other) const {
    return {std::max(west, other.west), std::min(east, other.east), std::max(north, other.north),
            std::min(south, other.south)};
}

GroundPlan::GroundPlan(const std::vector<TerrainGrid>& rasters) {
    const TerrainGrid& coarsest = rasters.front();
    for (std::size_t i = 0; i < rasters.size(); i++) {
        const TerrainGrid& raster = rasters[i];
        Draft draft;
        draft.cell_u = raster.spacing_longitude / coarsest.spacing_longitude;
        draft.cell_v = raster.spacing_latitude / coarsest.spacing_latitude;
        const double width = (raster.columns - 1) * draft.cell_u;
        const double middle = raster.west + (raster.columns - 1) * 0.5 * raster.spacing_longitude;
        draft.box.west = i == 0 ? 0 : coarsest.getColumn(middle) - width / 2;
        draft.box.east = draft.box.west + width;
        draft.box.north = coarsest.getRow(raster.north);
        draft.box.south = draft.box.north + (raster.rows - 1) * draft.cell_v;
        place(static_cast<int>(i), std::move(draft));
    }
    settle(coarsest);
}

/// The finest draft in the raster's middle; the first where there is none.
int GroundPlan::findCoarser(const Draft& draft) const {
    const double u = (draft.box.west + draft.box.east) / 2;
    const double v = (draft.box.north + draft.box.south) / 2;
    for (std::size_t i = m_drafts.size(); i-- > 0;) {
        const Box& box = m_drafts[i].box;
        if (!m_drafts[i].rasters.empty() && u >= box.west && u <= box.east && v >= box.north &&
            v <= box.south)
            return static_cast<int>(i);
    }
    return 0;
}

void GroundPlan::place(int raster, Draft draft) {
    draft.rasters = {raster};
    if (m_drafts.empty()) {
        m_drafts.push_back(std::move(draft));
        return;
    }
    const auto parent = static_cast<std::size_t>(findCoarser(draft));
    if (draft.cell_v * AS_FINE > m_drafts[parent].cell_v) {
        join(parent, draft);
        return;
    }
    draft.box = draft.box.cut(m_drafts[parent].box);
    if (draft.box.isEmpty()) {
        m_outside.push_back(raster);
        return;
    }
    draft.parent = static_cast<int>(parent);
    m_drafts.push_back(std::move(draft));
    // Neighbours become one.
    Draft& last = m_drafts.back();
    for (std::size_t i = 1; i + 1 < m_drafts.size(); i++) {
        const Draft& other = m_drafts[i];
        const double reach_u = m_drafts[parent].cell_u, reach_v = m_drafts[parent].cell_v;
        const Box around{other.box.west - reach_u, other.box.east + reach_u,
                         other.box.north - reach_v, other.box.south + reach_v};
        if (other.rasters.empty() || other.parent != last.parent ||
            last.cell_v * AS_FINE < other.cell_v || other.cell_v * AS_FINE < last.cell_v ||
            around.cut(last.box).isEmpty())
            continue;
        join(i, last);
        break;
    }
}

/// Leaves the draft without rasters.
void GroundPlan::join(std::size_t into, Draft& draft) {
    Draft& joined = m_drafts[into];
    joined.box = joined.box.joined(draft.box);
    if (joined.parent >= 0)
        joined.box = joined.box.cut(m_drafts[static_cast<std::size_t>(joined.parent)].box);
    joined.rasters.insert(joined.rasters.end(), draft.rasters.begin(), draft.rasters.end());
    draft.rasters.clear();
}

/// The parent's cells that a box touches.
TerrainGrid::Cells GroundPlan::snap(const Box& box, const Draft& parent, const TerrainGrid& grid) {
    const auto down = [](double cell, int most) {
        return std::clamp(static_cast<int>(std::floor(cell + SLACK)), 0, most);
    };
    const auto up = [](double cell, int most) {
        return std::clamp(static_cast<int>(std::ceil(cell - SLACK)), 0, most);
    };
    const int west = down((box.west - parent.box.west) / parent.cell_u, grid.columns - 1);
    const int north = down((box.north - parent.box.north) / parent.cell_v, grid.rows - 1);
    return {west, north, up((box.east - parent.box.west) / parent.cell_u, grid.columns - 1) - west,
            up((box.south - parent.box.north) / parent.cell_v, grid.rows - 1) - north};
}

/// From drafts to grids: each on the lines of its parent, none over another.
void GroundPlan::settle(const TerrainGrid& coarsest) {
    std::vector<int> places(m_drafts.size(), -1);
    for (std::size_t i = 0; i < m_drafts.size(); i++) {
        Draft& draft = m_drafts[i];
        if (draft.rasters.empty()) continue;
        TerrainGrid shape = coarsest;
        shape.heights = nullptr;
        if (draft.parent < 0) {
            const double west = std::floor(draft.box.west + SLACK);
            const double north = std::floor(draft.box.north + SLACK);
            shape.columns = static_cast<int>(std::ceil(draft.box.east - SLACK) - west) + 1;
            shape.rows = static_cast<int>(std::ceil(draft.box.south - SLACK) - north) + 1;
            shape.west += west * coarsest.spacing_longitude;
            shape.north -= north * coarsest.spacing_latitude;
            draft.box.west = west;
            draft.box.north = north;
        } else {
            const Draft& parent = m_drafts[static_cast<std::size_t>(draft.parent)];
            shape.parent = places[static_cast<std::size_t>(draft.parent)];
            if (shape.parent < 0) continue; // it lay over another
            const TerrainGrid& coarse = m_layers[static_cast<std::size_t>(shape.parent)].shape;
            shape.within = snap(draft.box, parent, coarse);
            for (const Layer& other : m_layers)
                if (other.shape.parent == shape.parent)
                    shape.within = without(shape.within, other.shape.within);
            if (area(shape.within) == 0) {
                m_outside.insert(m_outside.end(), draft.rasters.begin(), draft.rasters.end());
                continue;
            }
            const int along_u = std::max(static_cast<int>(parent.cell_u / draft.cell_u + 0.5), 1);
            const int along_v = std::max(static_cast<int>(parent.cell_v / draft.cell_v + 0.5), 1);
            shape.columns = shape.within.columns * along_u + 1;
            shape.rows = shape.within.rows * along_v + 1;
            shape.spacing_longitude = coarse.spacing_longitude / along_u;
            shape.spacing_latitude = coarse.spacing_latitude / along_v;
            shape.west = coarse.west + shape.within.column * coarse.spacing_longitude;
            shape.north = coarse.north - shape.within.row * coarse.spacing_latitude;
            draft.cell_u = parent.cell_u / along_u;
            draft.cell_v = parent.cell_v / along_v;
            draft.box.west = parent.box.west + shape.within.column * parent.cell_u;
            draft.box.north = parent.box.north + shape.within.row * parent.cell_v;
        }
        places[i] = static_cast<int>(m_layers.size());
        m_layers.push_back({shape, draft.rasters});
    }
}

} // namespace ig
