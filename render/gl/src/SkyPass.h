// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "ig/app/Renderer.h"
#include "render/scene/FrameBlock.h"
#include "render/scene/FrameView.h"

#include <array>

namespace ig {

/// The sky and the light that comes from it. Scattering and clouds are baked into one map of the
/// upper half of the sky, which the background, reflections, haze and ambient light read; the map
/// is made anew only when sun, moon or clouds have changed visibly.
class SkyPass {
public:
    /// `map_size` in texels: 512 or more looks right.
    void init(int map_size);

    /// Bakes when needed, binds the map, and fills in the frame block what is light and air.
    void update(const FrameView& view, const FrameInfo& frame, FrameBlock& block);
    /// The next frame is again the first.
    void forget();
    /// Fills the picture where nothing is; last of the opaque passes.
    void drawBackground(const FrameView& view);
    /// The layer of clouds below the eye, over the scene whose depth that is; nothing from below,
    /// whence clouds are part of the sky.
    void drawClouds(const FrameView& view, const gl::Texture& depth);

    /// Colour of what is far away in a direction of E (any length).
    vec3 getHaze(vec2 direction) const;

private:
    struct Bake { ///< what the map shows
        vec3 sun, moon;
        float cloud_cover = -1, overcast = 0, darkness = 0, drift = 0;
    };
    static constexpr int SMALL = 32; ///< edge of the copy for the processor, texels

    bool isStale(const Bake& wanted) const;
    FrameInfo seenFrom(const FrameView& view, const FrameInfo& frame);
    void bake(const Bake& wanted, const FrameBlock& block);
    void readBack();
    void uploadBlock(const FrameBlock& block);

    int m_size = 0;
    gl::Program m_scatter, m_compose, m_background, m_deck;
    float m_above = 0;               ///< height of the eye above the clouds' tops, m; 0 from below
    float m_within = 0;              ///< how much the eye is in the clouds, 0 to 1
    float m_cover = 0, m_closed = 0; ///< of the layer seen from above
    dvec2 m_anchor{1e9, 1e9};        ///< longitude, latitude that the deck is laid out from
    gl::VertexArray m_empty;
    gl::Texture m_rayleigh, m_mie, m_multiple, m_map;
    gl::Framebuffer m_scatter_target, m_map_target;
    Bake m_baked;
    float m_range = 1;
    std::array<vec3, SMALL * SMALL> m_small; ///< the map, decoded
    vec3 m_ambient;
};

} // namespace ig
