// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"

#include <cstdint>
#include <vector>

namespace ig {

struct OceanFrame;

/// The waves on the device: the very arrays that queries read as textures with all their levels,
/// and the measure of how much of the sea is white.
class OceanTiles {
public:
    static constexpr int TILES = 4, DISPLACED = 3;

    /// Brings the waves to the device when they have changed.
    void upload(const OceanFrame& frame);
    /// The next sea is again the first.
    void forget();

    const gl::Texture& getDisplacement(int tile) const {
        return m_sets[m_shown].displacement[tile];
    }
    const gl::Texture& getSlope(int tile) const { return m_sets[m_shown].slope[tile]; }
    /// Of a tile's slopes: what the texels' 0 and 255 stand for.
    float getSlopeScale(int tile) const { return m_slope_scale[tile]; }
    /// Whitecaps: threshold, width and spread of the breaking measure; mean foam of tile 2.
    vec4 getFoam() const { return {m_foam_threshold, m_foam_width, m_foam_spread, m_foam_mean}; }

private:
    void uploadDisplacement(const OceanFrame& frame, int tile);
    void uploadSlopes(const OceanFrame& frame, int tile);
    void calibrateFoam(const OceanFrame& frame);

    struct Set {
        gl::Texture displacement[DISPLACED], slope[TILES];
    };
    Set m_sets[2]; ///< in turn: the device may still be drawing the frame before from the other
    int m_shown = 0;
    int m_edges[TILES] = {}; ///< texels along an edge that the textures were made for
    struct Stamp {           ///< tells one sea at one moment from another, be it another ocean's
        const float* arrays = nullptr;
        unsigned version = 0;
        double time = 0, height = 0, direction = 0;
        friend bool operator==(const Stamp&, const Stamp&) = default;
    };
    Stamp m_uploaded;
    float m_slope_scale[TILES] = {};
    float m_foam_threshold = 1, m_foam_width = 0.1f, m_foam_spread = 0.1f, m_foam_mean = 0;
    double m_foam_cover = -1, m_foam_time = -1e9;
    std::vector<float> m_levels;         ///< scratch for mip levels
    std::vector<std::uint32_t> m_texels; ///< scratch for the encoded slopes
    std::vector<float> m_measure;        ///< scratch for the foam's calibration
};

} // namespace ig
