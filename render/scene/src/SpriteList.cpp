// SPDX-License-Identifier: MIT
#include "render/scene/SpriteList.h"

#include "ig/app/Renderer.h"
#include "ig/scene/Material.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/scene/SceneObjects.h"
#include "render/scene/SceneList.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {
constexpr float LONGEST_STREAK = 2.5f;  ///< m: longer ones would reach through the cabin's walls
constexpr float LEAST_OPACITY = 0.012f; ///< what is fainter isn't drawn
constexpr float LAMP_LIGHT = 9;         ///< at density 1
constexpr float CABLE = -1;             ///< the shader's kind of sprite
} // namespace

void SpriteList::gather(const FrameView& view, const FrameInfo& frame,
                        const std::vector<LampItem>& lamps, const std::vector<CableItem>& cables) {
    sprites.clear();
    const vec3 eye_velocity(view.toFrameDirection(frame.eye_velocity));
    if (frame.particles)
        frame.particles->forEach([&](const ParticleCloud& cloud) {
            if (!cloud.flat) addCloud(view, cloud, eye_velocity);
        });
    for (const LampItem& lamp : lamps) {
        if (!(lamp.glow > 0)) continue;
        sprites.push_back({lamp.position,
                           lamp.size,
                           vec4(lamp.color, 1),
                           0,
                           LAMP_LIGHT * lamp.glow,
                           1,
                           1,
                           {},
                           0,
                           0});
    }
    for (const CableItem& cable : cables)
        sprites.push_back(
            {cable.middle, cable.radius, vec4(cable.color, 1), 0, 0, 0, CABLE, cable.half, 0, 0});
    const auto& c = view.view.columns;
    const vec3 axis(c[0].z, c[1].z, c[2].z); // backwards, in E
    for (Sprite& sprite : sprites)
        sprite.depth = -dot(axis, sprite.position);
    std::sort(sprites.begin(), sprites.end(),
              [](const Sprite& a, const Sprite& b) { return a.depth > b.depth; });
}

SpriteList::Look SpriteList::readLook(const ObjectParticles& emitter) {
    const Material* material = emitter.getSurfaceMaterial(0);
    Look look;
    look.color = readValue(material, "diffuse_color", {1, 1, 1, 1});
    look.color.w *= readSlider(material, "opacity", 1);
    if (const float tint = readSlider(material, "ground_tint", 0); tint > 0) {
        const vec4& ground = emitter.getGround();
        look.color = {look.color.xyz() + (ground.xyz() - look.color.xyz()) * tint,
                      look.color.w * std::lerp(1.0f, ground.w, tint)};
    }
    look.size = readSlider(material, "particle_size", 0.3f);
    look.growth = readSlider(material, "particle_growth", 0);
    look.emission = readSlider(material, "emission", 0);
    look.soot = readSlider(material, "soot", 0);
    look.streak = readSlider(material, "streak", 0);
    look.exposure = look.streak / std::max(std::abs(emitter.getLinearVelocity()), 0.1f);
    look.sheet = static_cast<int>(readSlider(material, "sheet", 0));
    return look;
}

/// The number of a particle's shape, as the shader counts: 0 a disc, from 2 on those of the sheet.
float SpriteList::shapeOf(int sheet, const Particle& p) {
    constexpr int PUFFS = 8, FRAMES = 4;
    constexpr float RATE = 14; // of a flame's frames, 1/s
    const int variety = static_cast<int>(p.variety * PUFFS) % PUFFS;
    if (sheet == 1) return static_cast<float>(2 + variety);
    if (sheet == 2)
        return static_cast<float>(2 + PUFFS + (variety + static_cast<int>(p.age * RATE)) % FRAMES);
    if (sheet == 3) return static_cast<float>(2 + PUFFS + FRAMES + variety % FRAMES);
    return 0;
}

/// Sooty flames burn out: from their own colour through red to soot.
vec3 SpriteList::cooled(const Look& look, float youth) {
    const float heat = 1 - youth, soot = 0.04f * youth;
    const vec3 flame(look.color.x, look.color.y * (0.35f + 0.65f * heat), look.color.z * heat);
    return flame * heat + vec3(soot, soot, soot);
}

void SpriteList::addCloud(const FrameView& view, const ParticleCloud& cloud,
                          const vec3& eye_velocity) {
    const Look look = readLook(*cloud.emitter);
    if (look.color.w < LEAST_OPACITY) return;
    const mat4 to_frame = view.toFrame(dmat4(dmat3(), cloud.origin));
    const mat3 turn = to_frame.getMat3();
    for (const Particle& p : cloud.particles) {
        const vec3 place = to_frame * p.position;
        const float radius = look.size + look.growth * p.age, youth = p.age / p.life;
        if (!view.sees(place, radius + LONGEST_STREAK)) continue;
        // In quickly, out slowly; what spreads thins out.
        float opacity = look.color.w * std::min(youth * 8, 1.0f) * (1 - youth) * look.size / radius;
        vec3 stretch;
        if (look.streak > 0) { // as long as it passes the eye while the eye looks
            const vec3 passing = turn * p.velocity - eye_velocity;
            const float speed = length(passing);
            const float trail = std::min(look.exposure * speed, LONGEST_STREAK);
            if (trail > 2 * radius) stretch = passing * (trail / (2 * std::max(speed, 1e-3f)));
            opacity *= std::min(std::sqrt(look.streak / std::max(trail, look.streak)), 1.0f);
        }
        // Nothing pops up right before the eye.
        const float near = std::clamp(length(place) / (2 * radius) - 0.4f, 0.0f, 1.0f);
        if (opacity * near < LEAST_OPACITY) continue;
        const bool burns = look.soot > 0;
        sprites.push_back(
            {place, radius,
             vec4(burns ? cooled(look, youth) : look.color.xyz(), std::min(opacity * near, 1.0f)),
             p.turn, look.emission * (burns ? 1 - youth : 1),
             look.emission > 0 ? 1 - look.soot : 0.0f, shapeOf(look.sheet, p), stretch, youth, 0});
    }
}

} // namespace ig
