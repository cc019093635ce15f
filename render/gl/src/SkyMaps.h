// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/FrameBlock.h"
#include "render/scene/HazeColor.h"

#include <array>
#include <vector>

namespace ig {

/// The upper half of the sky as two maps, without its clouds (the background) and with them
/// (reflections), and what follows from them: ambient light, colour of the haze. `SkyPass` owns one
/// and tells once a frame what there is to be seen; the maps are made anew only when sun, moon or
/// clouds have changed visibly.
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
class SkyMaps {
public:
    /// What maps show.
    struct Sight {
        vec3 sun, moon;               ///< towards them, E
        float cover = -1, closed = 0; ///< of the clouds, 0 to 1
        float darkness = 0, cirrus = 0;
        vec2 place;                    ///< of the eye in the field of clouds, periods
        float base = 0, thickness = 0; ///< of the clouds, above the eye, m
    };

    /// `software`: the processor bakes, at half the edge.
    void init(bool software);
    /// The level of a map of the full size that these begin at.
    float getFirstLevel() const { return m_size < FULL_SIZE ? 1.0f : 0.0f; }
    /// Bakes what this frame has to, in a block that has all but what comes of the maps. `shared`:
    /// other renderers show the frame too, after whatever other frames: the map is that of a
    /// rounded sight, which is the same for all, and is made at once.
    void update(const Sight& wanted, bool is_main, bool everything, bool shared,
                const FrameBlock& block);
    void bind() const;
    vec3 getAmbient() const;
    /// Without clouds.
    HazeColor getHaze() const;
    /// The next frame is again the first.
    void forget();

private:
    /// Edge, texels. What rough surfaces mirror of clouds is never sharp.
    static constexpr int FULL_SIZE = 256;
    static constexpr int SMALL = 32; ///< edge of the copies for the processor, texels
    using Small = std::array<vec4, SMALL * SMALL>;
    struct Map {
        gl::Texture clear, sky;
        gl::Framebuffer target;
        Sight shows;
        vec3 ambient;
        HazeColor haze;
    };
    struct Making { ///< a bake
        int map = 0;
        int step = -1;    ///< the next one, −1 when there is none under way
        FrameBlock frame; ///< that it began in
    };
    static constexpr int ELSEWHERE = 3; ///< the map of eyes that see another sky than the main one

    void makeMap(Map& map) const;
    const Map& shown() const { return m_maps[m_elsewhere ? ELSEWHERE : m_shown]; }
    const Map& before() const { return m_maps[(m_shown + 2) % 3]; }
    float getShareBefore() const;
    bool hasJumped(const Sight& wanted) const;
    void follow(const Sight& wanted, const FrameBlock& block);
    void makeNext(const Sight& wanted, const FrameBlock& block);
    void lookElsewhere(const Sight& wanted, const FrameBlock& block);
    void begin(int map, const Sight& wanted, const FrameBlock& block);
    void prepareStep();
    void doStep();
    void scatter(int stripe);
    void compose(int stripe);
    void makeLevels();
    void askBack(const Map& map) const;
    void finish();
    void fade();

    gl::Program m_scatter, m_compose, m_fade;
    gl::VertexArray m_empty;
    gl::Texture m_rayleigh, m_mie, m_multiple;
    gl::Framebuffer m_scatter_target;
    Map m_maps[4];     ///< what is shown, what was before, what is in the making; `ELSEWHERE`
    Map m_fading;      ///< from the map before to the one that is shown
    gl::Buffer m_back; ///< what the processor wants of the map in the making
    Small m_small;     ///< the same, when it has come
    std::vector<HazeColor::Sample> m_samples; ///< of the haze
    int m_size = FULL_SIZE;                   ///< edge of the maps, texels
    /// Of the first three; the next one is in the making, the one after was before.
    int m_shown = 0;
    bool m_elsewhere = false; ///< the eye that is drawn for sees `ELSEWHERE`
    int m_since = 0;          ///< steps since the map that is shown was finished
    Making m_making;
    Sight m_last; ///< what the last frame's main eye wanted
};

} // namespace ig
