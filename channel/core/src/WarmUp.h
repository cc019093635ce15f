// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Renderer.h"
#include "ig/base/jString.h"

#include <functional>
#include <string>
#include <vector>

/// Gets ready, before the first frame, what the frames of a flight need: the prefabs that will come
/// into the scene are read, and the renderer draws, unseen, all that it may have to draw. It takes
/// a part of a second to some seconds and tells how far it is. Knows afterwards what had to be made
/// in flight all the same; a texture that only got another size there, with the window or the
/// scale, doesn't count.
class WarmUp {
public:
    /// What there is to get ready; see `ig::Preparation`.
    struct Scene {
        const ig::World& world;
        const ig::Camera& camera;
        const ig::FrameInfo& frame;
        std::vector<ig::jString> later; ///< prefabs
    };
    /// `keep_window` shows what was drawn, and notes what has happened; false: it is to close.
    /// False when that came.
    bool run(ig::Renderer& renderer, const Scene& scene, const std::function<bool()>& keep_window);
    /// From now on what is made counts as made in flight: before the first frame.
    void end(const ig::Renderer& renderer);
    /// What was made since then: a line for the summary.
    std::string getSummary(const ig::Renderer& renderer) const;

private:
    bool tell(double done, const std::function<bool()>& keep_window);
    static int countRead();

    double m_told = 0, m_shown = 0; ///< s on the steady clock
    ig::RenderResources m_made;
    int m_read = 0;
};
