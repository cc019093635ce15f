// SPDX-License-Identifier: MIT
#include "HeightStack.h"

#include <cassert>

namespace ig {

HeightStack::HeightStack(std::vector<std::unique_ptr<const HeightField>> fields) {
    for (auto& field : fields) {
        const TerrainGrid& grid = field->getGrid();
        assert(grid.parent < static_cast<int>(m_layers.size()));
        Layer layer;
        if (grid.parent >= 0) {
            const Layer& parent = m_layers[static_cast<std::size_t>(grid.parent)];
            layer.west = parent.west + grid.within.column / parent.columns;
            layer.north = parent.north + grid.within.row / parent.rows;
            layer.columns = parent.columns * (grid.columns - 1) / grid.within.columns;
            layer.rows = parent.rows * (grid.rows - 1) / grid.within.rows;
        }
        m_range.expand(grid.lowest, grid.highest);
        m_grids.push_back(grid);
        layer.field = std::move(field);
        m_layers.push_back(std::move(layer));
    }
    m_coarsest = m_layers.front().field.get();
    m_is_layered = m_layers.size() > 1;
}

/// Within a field its holes are the ground's; on its border the parent's surface counts too.
HeightField::Facet HeightStack::getLayeredFacet(double u, double v) const {
    for (auto layer = m_layers.rbegin(); layer != m_layers.rend(); ++layer) {
        const HeightField& field = *layer->field;
        const TerrainGrid& grid = field.getGrid();
        const double own_u = layer->toU(u), own_v = layer->toV(v);
        HeightField::Facet facet = field.getFacet(own_u, own_v);
        const double rim_u = field.getToleranceU(), rim_v = field.getToleranceV();
        if (!facet && !(own_u > rim_u && own_u < grid.columns - 1 - rim_u && own_v > rim_v &&
                        own_v < grid.rows - 1 - rim_v))
            continue;
        facet.slope_u *= layer->columns;
        facet.slope_v *= layer->rows;
        return facet;
    }
    return {};
}

HeightField::Range HeightStack::getRange(double u0, double u1, double v0, double v1) const {
    HeightField::Range range;
    for (const Layer& layer : m_layers) {
        const HeightField::Range own =
            layer.field->getRange(layer.toU(u0), layer.toU(u1), layer.toV(v0), layer.toV(v1));
        range.expand(own.lowest, own.highest);
    }
    return range;
}

BoundSphere HeightStack::getBounds() const {
    BoundSphere bounds = getCoarsest().getBounds();
    const TerrainGrid& grid = m_grids.front();
    bounds.radius +=
        static_cast<double>(std::max(m_range.highest - grid.highest, grid.lowest - m_range.lowest));
    return bounds;
}

} // namespace ig
