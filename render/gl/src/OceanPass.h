// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/FrameView.h"

#include <vector>

namespace ig {

class WakePass;
struct OceanFrame;

/// Draws the sea from the very arrays that queries read, so that what floats sits in the water
/// that one sees.
class OceanPass {
public:
    /// `columns` and `rows` of the fan of triangles.
    void init(int columns, int rows);

    /// Brings the waves to the device when they have changed.
    void upload(const OceanFrame& frame);
    /// The next sea is again the first.
    void forget();
    /// `downdraughts` as the `SceneList` has them; the nearest show.
    void draw(const FrameView& view, const OceanFrame& frame, const std::vector<vec4>& downdraughts,
              const WakePass& wakes);

private:
    static constexpr int TILES = 4, DISPLACED = 3;
    struct Fan { ///< part of the sea around the eye that the view can see
        float azimuth, azimuth_range, steepest, flattest, row_height;
    };

    void makeGrid();
    void uploadDisplacement(const OceanFrame& frame, int tile);
    void uploadSlopes(const OceanFrame& frame, int tile);
    void calibrateFoam(const OceanFrame& frame);
    static Fan fitFan(const FrameView& view, const OceanFrame& frame);
    void setWaveUniforms(const FrameView& view, const OceanFrame& frame);

    int m_columns = 0, m_rows = 0, m_num_indices = 0;
    gl::Program m_program;
    gl::VertexArray m_vertex_array;
    gl::Buffer m_vertices, m_indices;
    gl::Texture m_displacement[DISPLACED], m_slope[TILES];
    int m_edges[TILES] = {}; ///< texels along an edge that the textures were made for
    struct Stamp {           ///< tells one sea at one moment from another, be it another ocean's
        const float* arrays = nullptr;
        unsigned version = 0;
        double time = 0, height = 0, direction = 0;
        friend bool operator==(const Stamp&, const Stamp&) = default;
    };
    Stamp m_uploaded;
    float m_slope_scale[TILES] = {};
    /// Whitecaps: see calibrateFoam.
    float m_foam_threshold = 1, m_foam_width = 0.1f, m_foam_spread = 0.1f, m_foam_mean = 0;
    double m_foam_cover = -1, m_foam_time = -1e9;
    std::vector<float> m_levels;         ///< scratch for mip levels
    std::vector<std::uint32_t> m_texels; ///< scratch for the encoded slopes
    std::vector<float> m_measure;        ///< scratch for the foam's calibration
};

} // namespace ig
