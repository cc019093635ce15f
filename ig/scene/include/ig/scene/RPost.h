// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jAllocator.h"
#include "ig/base/jString.h"

namespace ig {

class Material;

/// The post-process materials, by name: the settings of what a finished picture passes through. A
/// name stands for the file "data/core/post/NAME.mat".
///
/// A material is shared. Whoever changes it for a picture of its own does so while that picture is
/// drawn and sets it back afterwards (`UISpriteViewport`); the renderer gets the material of a
/// viewport by its name, between the two, and reads it.
///
/// "post_radar" takes a picture seen straight from above, the radar in its middle, and shows the
/// half ahead as a fan, its apex at the middle of the lower edge: the directions from the slider
/// "min_angle" to the slider "max_angle", degrees clockwise from the left, so that 90 is ahead.
/// With the state "fan" 0 all directions are shown. The angles are taken as they are.
class RPost {
public:
    /// The material, for `owner` to use until `FreeMaterial`; null when there is none of that name
    /// (logged once). `site` names the user.
    static Material* GetMaterial(const jString& name, const void* owner, MemSite site);
    /// Ends one use by that owner. Nothing for a material that it does not use.
    static void FreeMaterial(Material* material, const void* owner);
    /// Uses that have not ended.
    static int getNumUses();
};

} // namespace ig
