// SPDX-License-Identifier: MIT
#include "MappedPrograms.h"

#include "render/scene/SurfaceLook.h"

#include <string>

namespace ig {

unsigned MappedPrograms::findFeatures(const SurfaceLook& look, const Surface& surface) {
    if (look.paint >= 0 || look.rotor.x > 0 || look.paving.x > 0) return 0;
    if (!look.isOpaque() && !look.isBlended()) return 0; // glass
    unsigned features = 0;
    const jString* const pictures[] = {look.texture, look.normal, look.metallic_roughness,
                                       look.emissive, look.occlusion};
    for (unsigned i = 0; i < NUM_PICTURES; i++)
        if (pictures[i]) features |= 1U << i;
    const bool glows = look.glow.x > 0 || look.glow.y > 0 || look.glow.z > 0;
    if (!glows) features &= ~EMISSIVE; // black times anything
    features |= (surface.second & features) << SECOND_SHIFT;
    const unsigned second = features >> SECOND_SHIFT;
    if (look.occlusion && look.metallic_roughness && *look.occlusion == *look.metallic_roughness &&
        !(second & OCCLUSION) == !(second & METALLIC_ROUGHNESS))
        features |= SHARED;
    if (glows) features |= GLOWING;
    if (surface.has_colors) features |= COLORED;
    if (look.alpha_cutoff > 0 && look.texture) features |= MASKED;
    if (look.isBlended()) features |= BLENDED;
    return features & ~BASE ? features : 0;
}

gl::Program& MappedPrograms::get(unsigned features) {
    gl::Program& program = m_programs[features];
    if (program) return program;
    constexpr const char* PICTURES[] = {"BASE", "NORMAL", "METALLIC_ROUGHNESS", "EMISSIVE",
                                        "OCCLUSION"};
    constexpr std::pair<unsigned, const char*> OTHERS[] = {{SHARED, " SHARED"},
                                                           {GLOWING, " GLOWING"},
                                                           {COLORED, " COLORED"},
                                                           {MASKED, " MASKED"},
                                                           {BLENDED, " BLENDED"},
                                                           {LIT, " LIGHTS"},
                                                           {31U << SECOND_SHIFT, " SECOND"}};
    std::string words = "MAPPED";
    for (unsigned i = 0; i < NUM_PICTURES; i++) {
        if (features >> i & 1) words += std::string(" ") + PICTURES[i] + "_MAP";
        if (features >> (i + SECOND_SHIFT) & 1) words += std::string(" ") + PICTURES[i] + "_SECOND";
    }
    for (const auto& [feature, word] : OTHERS)
        if (features & feature) words += word;
    program.start("cloudshade.glsl shadow.glsl mesh.vert",
                  features & LIT ? "shadow.glsl lights.glsl mesh.frag" : "shadow.glsl mesh.frag",
                  words);
    program.finish();
    return program;
}

} // namespace ig
