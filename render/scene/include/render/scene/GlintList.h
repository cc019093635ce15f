// SPDX-License-Identifier: MIT
#pragma once

#include "render/scene/FrameView.h"
#include "render/scene/PictureRect.h"
#include "render/scene/SceneList.h"

#include <vector>

namespace ig {

/// Lamps close to each other, as the water mirrors them.
struct Glint {
    vec3 place; ///< E
    vec3 color; ///< irradiance at 1 m
};

/// The lamps over water whose path of glitter towards the eye is worth drawing: by night alone, of
/// those whose path comes into view those that stand together as one, and the brightest of them.
/// Water lies below the eye: sectors and cones count as they are seen from there. One list is used
/// over and over.
class GlintList {
public:
    /// `ground`: radiance of a white ground under key light and sky.
    void gather(const FrameView& view, const SceneList& list, float ground);
    /// Adds where the paths lie in the picture.
    void addPaths(const FrameView& view, PictureParts& parts) const;

    std::vector<Glint> glints; ///< at most MOST_GLINTS
};

} // namespace ig
