// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Material.h"

namespace ig {

/// What the mesh shaders take from a material. docs/worlds.md lists the tags.
struct SurfaceLook {
    vec4 color{0.6f, 0.6f, 0.6f, 1}; ///< linear; w: opacity
    float roughness = 0.8f, metalness = 0, emission = 0;
    float wetness = 0, ice = 0; ///< 0 to 1
    float rain = -1;            ///< drops on glass, 0 to 1; negative: none are ever to be seen
    float wipes = 0;            ///< above 0: a wiper's blade, along its mesh's Y from the axis Z
    bool two_sided = false;
    vec4 paving;      ///< slab's edges along X and Y, m, half a joint, m, spread of tones; 0: none
    float paint = -1; ///< width over which paint frays, m; negative: no paint
    vec4 rotor;       ///< radius, chord, m, blades, 1 where it turns about X, not Z; 0: none
    float tile = 0;   ///< m of one texture's edge on meshes without texture coordinates
    /// Base colour's picture file, or null; the material's or the mesh's own.
    const jString* texture = nullptr;
    // The other pictures, likewise: the way that the surface faces, roughness (green) and metalness
    // (blue), what it gives off, and how much of the sky it sees (red).
    const jString *normal = nullptr, *metallic_roughness = nullptr, *emissive = nullptr,
                  *occlusion = nullptr;
    float normal_scale = 1, occlusion_strength = 1;
    vec3 glow;              ///< that it gives off, whatever its colour
    float alpha_cutoff = 0; ///< where the texture is less opaque than that there is nothing
    bool blend = false;     ///< the texture's opacity counts

    /// Tags that the material lacks are the model's, if any, and those that both lack keep their
    /// defaults; either may be null.
    static SurfaceLook read(const Material* material, const Material* model = nullptr);
    /// Of these materials, by the tags that matter alone.
    static bool isOpaque(const Material* material, const Material* model);
    bool isOpaque() const { return color.w >= 0.999f && paint < 0 && rotor.x <= 0 && !isBlended(); }
    /// As opaque as its texture is.
    bool isBlended() const { return blend && texture; }
    friend bool operator==(const SurfaceLook&, const SurfaceLook&) = default;
};

} // namespace ig
