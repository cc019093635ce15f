// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"
#include "render/scene/LightList.h"
#include "render/scene/SceneList.h"
#include "render/scene/SpriteList.h"
#include "render/scene/WakeList.h"

#include <memory>

namespace ig {

/// One of each kind of thing that a frame's lists may hold, a few metres from the eye. A rehearsal
/// adds them to what the scene has, so that everything that can be drawn is drawn once before the
/// first picture, whether or not the scene shows it now.
class Samples {
public:
    Samples();
    /// Surfaces in every look that is drawn in a way of its own; before the list is sorted. They
    /// are valid as long as the samples.
    void addTo(SceneList& list) const;
    static void addTo(SpriteList& list);
    static void addTo(WakeList& list);
    /// A light that reaches all there is, one with a beam, and nothing else.
    static void addTo(LightList& list);

private:
    std::shared_ptr<const Mesh> m_mesh;
    dmat4 m_pose;
    jString m_picture;
};

} // namespace ig
