// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"

namespace ig {

/// Where the picture comes into being: scene light and depth at the render scale, the toned picture
/// at the same size, without aliasing too where it is then enlarged, the finished one at full size.
/// The sea's fan shares the scene's depth and stencil and leaves in `water` what its shading must
/// know. `light_target` leaves the depth out, for passes that read it. `sky` holds what of the
/// background is soft, at half the scene's size.
class Targets {
public:
    /// (Re)makes all; sizes in pixels. False, logged, when the driver refuses.
    bool make(int width, int height, float scale);

    int getWidth() const { return m_width; } ///< of the finished picture
    int getHeight() const { return m_height; }
    int getSceneWidth() const { return m_scene_width; }
    int getSceneHeight() const { return m_scene_height; }
    int getSkyWidth() const { return (m_scene_width + 1) / 2; }
    int getSkyHeight() const { return (m_scene_height + 1) / 2; }
    /// Whether the finished picture has more pixels than the scene. Without, `filtered` is unused.
    bool isEnlarged() const { return m_scene_width < m_width || m_scene_height < m_height; }

    gl::Texture light, depth, water, sky, toned, filtered, finished;
    gl::Framebuffer scene_target, light_target, water_target, sky_target, toned_target,
        filtered_target, finished_target;

private:
    int m_width = 0, m_height = 0, m_scene_width = 0, m_scene_height = 0;
};

} // namespace ig
