// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/ocean/OceanFrame.h"

namespace ig {

/// Reads the surface out of a frame record, and out of nothing else: what it answers is what a
/// renderer draws that follows the record.
class SurfaceSampler {
public:
    /// Looks at this frame from now on; again after every change of it. The record's arrays must
    /// outlive the sampler.
    void setFrame(const OceanFrame& frame);

    struct Point {
        double x = 0, y = 0; ///< where the water rests, m in the plane
        double altitude = 0; ///< where it is now, m
        double residual = 0; ///< how far, horizontally, it is from the place asked for, m
    };
    /// The water found above or below a place of the plane: the inverse of the parametric surface,
    /// by fixed-point iteration q ← p − D(q). Where a breaking crest folds over, one of its layers.
    Point find(double x, double y) const;
    /// Where the water that rests at a place is now: displacement east and north, altitude.
    void displace(double x, double y, double out[3]) const;

private:
    /// One of the samplings that add up to the surface: a tile, possibly turned and shifted.
    struct Layer {
        const float* texels;
        int resolution; ///< texels along the edge of the tile
        double cosine, sine, offset_x, offset_y;
        double scale; ///< texels per metre
        float weight;
    };
    /// A place in the texels of every layer.
    struct Place {
        double u[OceanFrame::TILES], v[OceanFrame::TILES];
    };

    Place locate(double x, double y) const;
    void sample(const Place& place, double dx, double dy, float out[3]) const;

    Layer m_layers[OceanFrame::TILES];
    int m_count = 0;
    double m_mean_level = 0;
};

} // namespace ig
