// SPDX-License-Identifier: MIT
#pragma once

#include "HeightField.h"

#include <memory>
#include <vector>

namespace ig {

/// The ground of several height fields, each of which replaces cells of a coarser one. Places are
/// told in grid coordinates of the coarsest; that one's cells are divided without a remainder, so
/// that what lies on a seam lies there in every field's own coordinates. Immutable.
class HeightStack {
public:
    /// From coarse to fine, at least one.
    explicit HeightStack(std::vector<std::unique_ptr<const HeightField>> fields);

    /// A field and where it lies: its own coordinates are (u − west) · columns and
    /// (v − north) · rows.
    struct Layer {
        std::unique_ptr<const HeightField> field;
        double west = 0, north = 0;
        double columns = 1, rows = 1; ///< cells in one of the coarsest field

        double toU(double u) const { return (u - west) * columns; }
        double toV(double v) const { return (v - north) * rows; }
    };
    /// From coarse to fine: the last that holds a place is the ground there.
    const std::vector<Layer>& getLayers() const { return m_layers; }
    const HeightField& getCoarsest() const { return *m_coarsest; }
    TerrainGrids getGrids() const { return m_grids; }

    /// As `HeightField::getFacet`, of the field that is the ground there; slopes in metres per
    /// sample of the coarsest.
    HeightField::Facet getFacet(double u, double v) const {
        return !m_is_layered ? getCoarsest().getFacet(u, v) : getLayeredFacet(u, v);
    }
    /// As `HeightField::getRange`; what is replaced counts too.
    HeightField::Range getRange(double u0, double u1, double v0, double v1) const;
    HeightField::Range getRange() const { return m_range; } ///< of all
    BoundSphere getBounds() const;

private:
    HeightField::Facet getLayeredFacet(double u, double v) const;

    std::vector<Layer> m_layers;
    const HeightField* m_coarsest = nullptr;
    bool m_is_layered = false;
    std::vector<TerrainGrid> m_grids;
    HeightField::Range m_range;
};

} // namespace ig
