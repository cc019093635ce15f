// SPDX-License-Identifier: MIT
#include "SurfaceSampler.h"

#include <cmath>
#include <numbers>

namespace ig {

namespace {

constexpr double TOLERANCE = 0.002; ///< m, last step of the search for the water at a place
/// 3 to 5 steps are usual; the steepest crests of a hurricane take more.
constexpr int MAX_STEPS = 24;

/// Places in texels start this many tiles from 0, so that what the water moves never makes them
/// negative: then a cast to int rounds down, and the low bits are the texel's index.
constexpr double SAFE_TILES = 16;

double wrapToTexels(double texels, int resolution) {
    const double tiles = texels / resolution;
    return (tiles - std::floor(tiles) + SAFE_TILES) * resolution;
}

/// Bilinear interpolation of all four floats: one more than needed, for the sake of vector
/// instructions.
inline void bilinear(const float* texels, int resolution, double u, double v, float out[4]) {
    const int i = static_cast<int>(u), j = static_cast<int>(v);
    const float a = static_cast<float>(u - i), b = static_cast<float>(v - j);
    const int last = resolution - 1; // the bits of an index
    const int i0 = i & last, i1 = (i + 1) & last;
    const int j0 = (j & last) * resolution, j1 = ((j + 1) & last) * resolution;
    const float *p00 = texels + 4 * (j0 + i0), *p10 = texels + 4 * (j0 + i1);
    const float *p01 = texels + 4 * (j1 + i0), *p11 = texels + 4 * (j1 + i1);
    for (int c = 0; c < 4; c++) {
        const float low = p00[c] + (p10[c] - p00[c]) * a;
        const float high = p01[c] + (p11[c] - p01[c]) * a;
        out[c] = low + (high - low) * b;
    }
}

} // namespace

void SurfaceSampler::setFrame(const OceanFrame& frame) {
    m_count = 0;
    m_mean_level = frame.mean_level;
    for (int i = 0; i < OceanFrame::TILES; i++) {
        const OceanTile& tile = frame.tiles[i];
        if (!tile.active || !tile.displacement) continue;
        const double scale = tile.resolution / tile.tile;
        const float weight = i == 0 ? std::numbers::sqrt2_v<float> / 2 : 1;
        m_layers[m_count++] = {tile.displacement, tile.resolution, 1, 0, 0, 0, scale, weight};
        if (i == 0)
            m_layers[m_count++] = {tile.displacement,
                                   tile.resolution,
                                   OceanFrame::SECOND_COSINE,
                                   OceanFrame::SECOND_SINE,
                                   OceanFrame::SECOND_OFFSET_X,
                                   OceanFrame::SECOND_OFFSET_Y,
                                   scale,
                                   weight};
    }
}

SurfaceSampler::Place SurfaceSampler::locate(double x, double y) const {
    Place place;
    for (int n = 0; n < m_count; n++) {
        const Layer& l = m_layers[n];
        place.u[n] = wrapToTexels((l.cosine * x - l.sine * y + l.offset_x) * l.scale, l.resolution);
        place.v[n] = wrapToTexels((l.sine * x + l.cosine * y + l.offset_y) * l.scale, l.resolution);
    }
    return place;
}

/// Displacement and height of the water that rests (dx, dy) metres from a place.
void SurfaceSampler::sample(const Place& place, double dx, double dy, float out[3]) const {
    out[0] = out[1] = out[2] = 0;
    for (int n = 0; n < m_count; n++) {
        const Layer& l = m_layers[n];
        float d[4];
        bilinear(l.texels, l.resolution, place.u[n] + (l.cosine * dx - l.sine * dy) * l.scale,
                 place.v[n] + (l.sine * dx + l.cosine * dy) * l.scale, d);
        const float cosine = static_cast<float>(l.cosine), sine = static_cast<float>(l.sine);
        out[0] += l.weight * (cosine * d[0] + sine * d[1]);
        out[1] += l.weight * (cosine * d[1] - sine * d[0]);
        out[2] += l.weight * d[2];
    }
}

void SurfaceSampler::displace(double x, double y, double out[3]) const {
    float d[3];
    sample(locate(x, y), 0, 0, d);
    out[0] = d[0];
    out[1] = d[1];
    out[2] = d[2] + m_mean_level;
}

SurfaceSampler::Point SurfaceSampler::find(double x, double y) const {
    // Not a place, or so far away that texels can't be told apart: the mean sea.
    if (!(std::abs(x) < 1e9 && std::abs(y) < 1e9)) return {x, y, 0, 0};
    const Place place = locate(x, y);
    double dx = 0, dy = 0;
    float d[3];
    sample(place, dx, dy, d);
    for (int step = 0; step < MAX_STEPS; step++) {
        const double move_x = -static_cast<double>(d[0]) - dx;
        const double move_y = -static_cast<double>(d[1]) - dy;
        dx += move_x;
        dy += move_y;
        sample(place, dx, dy, d);
        if (move_x * move_x + move_y * move_y < TOLERANCE * TOLERANCE) break;
    }
    const double off_x = dx + d[0], off_y = dy + d[1];
    return {x + dx, y + dy, d[2] + m_mean_level, std::sqrt(off_x * off_x + off_y * off_y)};
}

} // namespace ig
