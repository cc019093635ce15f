// SPDX-License-Identifier: MIT
#pragma once

#include "render/scene/FrameView.h"
#include "render/scene/PictureRect.h"
#include "render/scene/SceneList.h"

#include <vector>

namespace ig {

struct FrameInfo;

/// The lights that count in a frame: of those that the scene has, as bright as they are at the
/// moment, the ones that matter most in the picture. By day hardly any is left. One list is used
/// over and over and keeps its memory.
class LightList {
public:
    /// `ground`: radiance of a white ground under key light and sky, above 0; a light ends where it
    /// adds next to nothing to that.
    void gather(const FrameView& view, const FrameInfo& frame, const std::vector<LightItem>& items,
                float ground);
    /// Whether any of them may reach into a sphere (E).
    bool reach(const vec3& center, float radius) const;
    /// Whether that light may reach into a sphere (E): by distance, and by its cone.
    static bool reaches(const LightItem& light, const vec3& center, float radius);
    /// Adds the parts of the picture where they may be seen to light the sea, whose waves are so
    /// high, m.
    void addOnSea(const FrameView& view, float crest, PictureParts& parts) const;

    std::vector<LightItem> lights; ///< at most MOST_LIGHTS, the most important first
};

} // namespace ig
