// SPDX-License-Identifier: MIT
#pragma once

#include "render/scene/FrameView.h"
#include "render/scene/SceneList.h"
#include "render/scene/ShaderConstants.h"

#include <array>
#include <cstdint>
#include <vector>

namespace ig {

/// The lights as the shaders read them: the block `Lights` (std140) of lights.glsl.
struct LightBlock {
    vec4 places[MOST_LIGHTS]; ///< E; w: 1 / reach, 1/m
    vec4 colors[MOST_LIGHTS]; ///< cd, times LUX / PI; w: 1 / width of the cone's edge, by cosine
    vec4 axes[MOST_LIGHTS];   ///< of the cones; w: cosine beyond which nothing is lit
    vec4 slices;              ///< a distance d along the view lies in slice x · log2(d) + y
};

/// Tells which lights a place has to look at: the picture in columns and rows, its depth in slices
/// that get thicker with the distance, and for each of these cells the strongest lights that reach
/// into it (Olsson, Billeter and Assarsson 2012: Clustered Deferred and Forward Shading). With
/// parallel rays all depths are one slice. One grid is used over and over and keeps its memory.
class LightGrid {
public:
    static constexpr std::uint8_t NONE = 255;
    /// Numbers of lights, the strongest first, then NONE.
    using Cell = std::array<std::uint8_t, LIGHTS_A_CELL>;

    LightGrid();
    /// At most MOST_LIGHTS.
    void sort(const FrameView& view, const std::vector<LightItem>& lights);

    const LightBlock& getBlock() const { return m_block; }
    /// Column by column, row by row from below, slice by slice from the eye.
    const std::vector<Cell>& getCells() const { return m_cells; }

private:
    using Strengths = std::array<float, LIGHTS_A_CELL>;
    void clear();
    void pack(const LightItem& light, std::size_t number);
    void add(const FrameView& view, const LightItem& light, std::uint8_t number);
    void addToSlice(const FrameView& view, const LightItem& light, std::uint8_t number, int slice,
                    vec2 depth);
    void insert(std::size_t cell, std::uint8_t number, float strength);

    LightBlock m_block;
    std::vector<Cell> m_cells;
    std::vector<Strengths> m_strengths; ///< of the lights of each cell there
};

} // namespace ig
