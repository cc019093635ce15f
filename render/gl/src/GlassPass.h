// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/GlassFilm.h"

namespace ig {

class MeshPass;
class Targets;

/// Panes right around the eye, over the finished scene. On wet and snowy ones drops show it turned
/// upside down, and a film of water blurs it; dry ones are let through, with what they mirror.
/// Those that are far off are ordinary transparent surfaces.
class GlassPass {
public:
    void init();
    /// The film moves on with the main eye's frame, once a frame.
    void update(const SceneList& list, const FrameView& view, const FrameInfo& frame);
    /// Whether panes show snow in that frame.
    bool isSnowy(const FrameInfo& frame) const;
    /// The list's panes, over all else that the canvas shows; not without one. `is_main`: for the
    /// eye of `update`, in whose frame the wiped sectors lie; others see panes that nothing wipes.
    void draw(MeshPass& meshes, const SceneList& list, const FrameView& view, const Targets& canvas,
              bool is_main);
    /// The next frame is again the first.
    void forget() { m_film.forget(); }

    /// Has the program in use, one for panes, read what lies on them.
    void bind(gl::Program& program) const;

private:
    static constexpr int WIDTH = 160, HEIGHT = 90; ///< of what drops show, whatever the picture's

    void shrink(const FrameView& view, const Targets& canvas);

    GlassFilm m_film;
    bool m_changed = true; ///< since the device got it
    bool m_is_main = true; ///< of the eye that is drawn for
    gl::Program m_shrink;
    gl::Texture m_drops, m_sectors, m_behind;
    gl::Framebuffer m_behind_target;
    gl::VertexArray m_empty;
};

} // namespace ig
