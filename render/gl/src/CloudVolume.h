// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "Targets.h"
#include "render/scene/FrameView.h"

#include <vector>

namespace ig {

/// The layer of clouds as a volume, for devices that can: marched through by the rays of a picture
/// of half as many pixels a side, which is mended by those before it and then enlarged over the
/// scene by how far its pixels looked. `SkyPass` owns one where clouds are no sheets, and calls it
/// in this order: `march`, `bind` for what the background shows, `blend` for all else.
class CloudVolume {
public:
    /// Programs and targets; nothing is made afterwards.
    void init();

    /// Of an eye in a frame.
    struct Sight {
        vec2 place;            ///< of the eye in the field of clouds, periods
        float altitude = 0;    ///< of the eye, m
        bool is_main = false;  ///< the one eye whose pictures follow one another
        bool is_shown = false; ///< there are clouds, and the view has perspective
    };
    /// Draws the picture of the clouds, up to the scene whose depth that is; leaves the scene's
    /// target bound.
    void march(const FrameView& view, const Targets& canvas, const Sight& sight);
    /// The picture for the program in use, whose samplers are `getSamplers`.
    void bind(gl::Program& program) const;
    static std::vector<gl::Sampler> getSamplers();
    /// Over what of the scene lies behind clouds; leaves the scene's target bound.
    void blend(const FrameView& view, const Targets& canvas);
    /// The next picture has none before it.
    void forget();

private:
    struct Layers { ///< of one size
        int width = 0, height = 0;
        gl::Texture marched, reach, mended[2];
        gl::Framebuffer march_target, mended_targets[2];
        int shown = 0; ///< of `mended`
    };
    /// Where the last picture of the main eye was seen from.
    struct Before {
        int pictures = 0; ///< that followed one another until then
        Sight sight;
        vec4 to_clip[3]; ///< from E to x, y and w
    };

    static void make(Layers& layers, int width, int height);
    void mend(const FrameView& view, const Sight& sight);
    vec4 findMotion(const Sight& sight) const;

    gl::Program m_march, m_mend, m_blend;
    gl::VertexArray m_empty;
    Layers m_main, m_other;
    const Layers* m_drawn = nullptr; ///< of this frame's eye; null: no clouds
    Before m_before;
};

} // namespace ig
