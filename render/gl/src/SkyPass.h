// SPDX-License-Identifier: MIT
#pragma once

#include "CloudVolume.h"
#include "SkyMaps.h"
#include "ig/app/Renderer.h"
#include "render/scene/CloudLayer.h"
#include "render/scene/FrameView.h"

#include <optional>

namespace ig {

/// The sky, the clouds, and the light that comes from both.
///
/// `SkyMaps` knows the sky. Clouds are a layer of the field of `CloudLayer`, the same for all who
/// look: the background draws what of it is above the eye, the deck what is at its height or below,
/// over the scene; shadows, reflections and the fog within the clouds come of it, too. So nothing
/// jumps where an eye climbs through.
class SkyPass {
public:
    /// `volume`: clouds are one (`CloudVolume`), for devices that can; else sheets.
    void init(bool volume, bool software);

    /// Bakes what this frame has to, binds the maps, and fills in the frame block what is light and
    /// air. Once a frame for the main eye, any number of times before that for others.
    void update(const FrameView& view, const FrameInfo& frame, bool is_main, FrameBlock& block);
    /// The next frame is again the first.
    void forget();
    /// Paints what of the background is soft, at half the size; before the scene's passes. Leaves
    /// another framebuffer and viewport bound.
    void paint(const FrameView& view, const Targets& targets);
    /// Fills the picture where nothing is; last of the opaque passes.
    void drawBackground(const FrameView& view, const Targets& targets);
    /// Clouds at the eye's height and below, over the scene, whose target is bound afterwards.
    /// Sheets: nothing from below all clouds.
    void drawClouds(const FrameView& view, const Targets& targets);

    /// Colour of what is far away in a direction of E (any length).
    vec3 getHaze(vec2 direction) const { return m_haze.get(direction) * m_gain; }
    /// Share of the key light that clouds let through to a place of E.
    float getCloudShade(const vec3& place) const;

private:
    /// The clouds as this frame's eye sees them.
    struct Clouds {
        float cover = 0;     ///< share of the sky, 0 to 1
        float closed = 0;    ///< 0 to 1: no gap, whence what is below has no sun
        float above = 1;     ///< share of the layer that is above the eye
        float within = 0;    ///< how much the eye is in a cloud, 0 to 1
        float base = 0;      ///< above the eye, m
        float thickness = 1; ///< m
        float darkness = 0;  ///< of the closed layer
        vec2 place;          ///< of the eye in the field
    };
    static constexpr int BACKGROUNDS = 4; ///< programs

    Clouds lookAtClouds(const FrameView& view, const FrameInfo& frame) const;
    void fillLight(const FrameView& view, const FrameInfo& frame, FrameBlock& block);
    void fillAir(const FrameView& view, const FrameInfo& frame, FrameBlock& block) const;
    void fillClouds(const FrameInfo& frame, FrameBlock& block);
    void fillExposure(FrameBlock& block) const;
    int chooseBackground(const FrameView& view) const;
    void drawDeck(const FrameView& view, const Targets& to);

    SkyMaps m_maps;
    CloudLayer m_layer;
    std::optional<CloudVolume> m_volume; ///< in the deck's place
    gl::Program m_soft;
    gl::Program m_deck;
    gl::Program m_backgrounds[BACKGROUNDS]; ///< each draws what those before it do, and more
    gl::VertexArray m_empty;
    gl::Texture m_field;

    // Of the eye that is drawn for.
    Clouds m_clouds;
    HazeColor m_haze;
    vec4 m_shade;         ///< as in the frame block
    float m_altitude = 0; ///< of the eye, m
    float m_dip = 0;      ///< of its horizon, rad
    float m_gain = 1;     ///< lightning
    vec3 m_sun, m_moon;   ///< towards them, E
    bool m_is_main = false;
    bool m_starry = false, m_flashes = false;
    vec4 m_painted; ///< part of the sky's picture: low and high corner, 0 to 1
};

} // namespace ig
