// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "PostPass.h"
#include "RadarPass.h"
#include "Targets.h"

#include <functional>
#include <memory>
#include <vector>

namespace ig {

class Camera;
class ObjectOcean;
class UISpriteViewport;
class UiDrawList;
class UIRoot;
class World;
struct FrameInfo;

/// The pictures of the user interface's viewports: second views, each drawn into a texture of its
/// own, at a rate of its own, and shown where the draw list says. A viewport that the draw list
/// doesn't show costs nothing; its last picture is kept until the viewport itself goes.
///
/// At most one picture is drawn in a frame, the one most overdue, so that several viewports don't
/// come due in the same frame for ever.
class ViewportPass {
public:
    /// Draws the ordinary scene, without user interface.
    using DrawScene =
        std::function<void(const World& world, const Camera& camera, Targets& targets)>;

    void init();
    /// Once per frame, before the main view: `draw_scene` uses the passes that the main view uses.
    void update(const FrameInfo& frame, const gl::Texture& noise, const DrawScene& draw_scene);
    /// Draws every viewport of the list once. Radars see that sea instead of the world's, which is
    /// left as it is. What is made for it stays; the next picture of each is again its first.
    void rehearse(const FrameInfo& frame, const gl::Texture& noise, const DrawScene& draw_scene,
                  const ObjectOcean& sea);
    /// The last picture of the viewport of that id; null when it has none.
    const gl::Texture* find(int viewport) const;

private:
    struct Picture {
        int viewport = 0; ///< its id
        int width = 0, height = 0;
        double due = 0; ///< scene time of the next drawing, s
        int echo_width = 0, echo_height = 0;
        gl::Texture echo, shown; ///< of the radar; what came out of the post-process material
        gl::Framebuffer echo_target, shown_target;
        Targets scene;                         ///< of the plain view
        const gl::Texture* finished = nullptr; ///< which of them is shown; null: none yet
    };
    struct Wanted { ///< a viewport that the draw list shows
        UISpriteViewport* viewport = nullptr;
        int width = 0, height = 0;
    };

    void dropGone(const UIRoot* root);
    Wanted findMostOverdue(const FrameInfo& frame);
    Picture& obtain(int viewport);
    void draw(Picture& picture, const Wanted& wanted, const FrameInfo& frame,
              const gl::Texture& noise, const DrawScene& draw_scene);
    void drawRadar(Picture& picture, const UISpriteViewport& viewport, const FrameInfo& frame,
                   const gl::Texture& noise);

    const ObjectOcean* m_sea = nullptr; ///< of a rehearsal
    RadarPass m_radar;
    PostPass m_post;
    std::vector<std::unique_ptr<Picture>> m_pictures;
};

} // namespace ig
