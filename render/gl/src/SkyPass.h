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
///
/// A whole bake takes longer than a frame may: while the sky changes little from frame to frame it
/// is done in steps, one a frame, into a map that nobody reads yet. The sky then goes over from the
/// last map to the new one in as many frames, the time in which the next one can be made, so that
/// neither sky nor ambient light nor exposure ever steps; meanwhile the passes read a mixture that
/// is painted once a frame. Where the sky jumps (the first picture, another hour, an eye far off)
/// the map is made at once.
///
/// All this goes with the main eye. Other eyes of a frame, those of viewports, see its sky where
/// theirs is nearly the same; else a map of their own, which is made at once.
class SkyPass {
public:
    /// `map_size` in texels: 512 or more looks right.
    void init(int map_size);

    /// Bakes what this frame has to, binds the maps, and fills in the frame block what is light and
    /// air. Once a frame for the main eye, any number of times before that for others.
    void update(const FrameView& view, const FrameInfo& frame, bool is_main, FrameBlock& block);
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
    struct Map {
        gl::Texture texture;
        gl::Framebuffer target;
        Bake shows;
        std::array<vec4, SMALL * SMALL> small; ///< a level of the map
        vec3 ambient;
    };

    struct Making { ///< a bake
        int map = 0;
        int step = -1;    ///< the next one, −1 when there is none under way
        FrameBlock frame; ///< that it began in
    };
    static constexpr int ELSEWHERE = 3; ///< the map of eyes that see another sky than the main one
    static constexpr int BACKGROUNDS = 4; ///< programs

    const Map& shown() const { return m_maps[m_elsewhere ? ELSEWHERE : m_shown]; }
    const Map& before() const { return m_maps[(m_shown + 2) % 3]; }
    static void makeMap(gl::Texture& texture, gl::Framebuffer& target, int size);
    static bool differ(const Bake& a, const Bake& b, float angle, float share);
    bool hasJumped(const Bake& wanted) const;
    void follow(const Bake& wanted, const FrameBlock& block);
    void lookElsewhere(const Bake& wanted, const FrameBlock& block);
    void begin(int map, const Bake& wanted, const FrameBlock& block);
    void prepareStep();
    void doStep();
    void scatter(int stripe);
    void compose(int stripe);
    void makeLevels();
    void askBack(const Map& map);
    void finish();
    void fade();
    float getShareBefore() const;
    FrameInfo seenFrom(const FrameView& view, const FrameInfo& frame);
    void bindMap() const;
    int chooseBackground(const FrameView& view) const;
    void uploadBlock(const FrameBlock& block);

    int m_size = 0;
    gl::Program m_scatter, m_compose, m_fade, m_deck;
    gl::Program m_backgrounds[BACKGROUNDS]; ///< each draws what those before it do, and more
    vec3 m_sun, m_moon;                     ///< towards them, E
    float m_stars = 0, m_haze = 0, m_flash = 0;
    float m_above = 0;               ///< height of the eye above the clouds' tops, m; 0 from below
    float m_within = 0;              ///< how much the eye is in the clouds, 0 to 1
    float m_cover = 0, m_closed = 0; ///< of the layer seen from above
    dvec2 m_anchor{1e9, 1e9};        ///< longitude, latitude that the deck is laid out from
    gl::VertexArray m_empty;
    gl::Texture m_rayleigh, m_mie, m_multiple;
    gl::Framebuffer m_scatter_target;
    Map m_maps[4];        ///< what is shown, what was before, what is in the making; `ELSEWHERE`
    gl::Texture m_fading; ///< from the map before to the one that is shown
    gl::Framebuffer m_fading_target;
    gl::Buffer m_back; ///< what the processor wants of the map in the making
    int m_shown =
        0; ///< of the first three; the next one is in the making, the one after was before
    bool m_elsewhere = false; ///< the eye that is drawn for sees `ELSEWHERE`
    int m_since = 0;          ///< steps since the map that is shown was finished
    Making m_making;
    Bake m_last; ///< what the last frame's main eye wanted
};

} // namespace ig
