// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"

#include <map>

namespace ig {

struct SurfaceLook;

/// The programs for surfaces that wear more than a picture of their base colour: one for each set
/// of features that the scene has, made when a surface first asks for it, which a rehearsal sees
/// to. What a surface doesn't have, none of its pixels pays for.
class MappedPrograms {
public:
    enum Feature : unsigned {
        BASE = 1, ///< these five as `Material::PICTURES`
        NORMAL = 2,
        METALLIC_ROUGHNESS = 4,
        EMISSIVE = 8,
        OCCLUSION = 16,
        NUM_PICTURES = 5,
        /// Of these pictures, those that lie by the second texture coordinates: shifted by so much.
        SECOND_SHIFT = 5,
        SHARED = 1 << 10, ///< occlusion stands in the picture of the roughness
        GLOWING = 1 << 11,
        COLORED = 1 << 12, ///< by its vertices
        MASKED = 1 << 13,  ///< what is less opaque than the cutoff isn't there
        BLENDED = 1 << 14,
        LIT = 1 << 15, ///< by lamps or fires
    };
    /// What a mesh's surface has of its own.
    struct Surface {
        unsigned second; ///< pictures that lie by the second coordinates, as `Feature`
        bool has_colors;
    };
    /// What drawing such a surface needs; 0 where the ordinary programs do.
    static unsigned findFeatures(const SurfaceLook& look, const Surface& surface);

    gl::Program& get(unsigned features);

private:
    std::map<unsigned, gl::Program> m_programs;
};

} // namespace ig
