// SPDX-License-Identifier: MIT
#include "render/scene/LightList.h"

#include "ig/app/Renderer.h"
#include "ig/scene/ParticleSystem.h"
#include "render/scene/ShaderConstants.h"
#include "render/scene/shares.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr float NOTICED = 0.02f;    ///< share of the ground's own light that is seen to be added
constexpr float NIGHT = 0.06f;      ///< ground below which lamps have all of their light
constexpr float LEAST_REACH = 0.5f; ///< m; what reaches less far isn't worth a light

/// A fire's unrest: no two alike, by scene time, about 1.
float unrest(const LightItem& light, double time) {
    const double phase = 2.4 * light.number;
    const double wave = std::sin(time * 17.3 + phase) + std::sin(time * 29.1 + 2.1 * phase) +
                        std::sin(time * 43.7 + 3.7 * phase);
    return 1 + light.flicker * static_cast<float>(wave / 6);
}

/// A light below an emitter: in the middle of what burns, and as bright, the young ones most.
void burn(LightItem& light, const FrameView& view, const ParticleSystem* particles) {
    float sum = 0;
    if (particles)
        particles->forEach([&](const ParticleCloud& cloud) {
            if (cloud.emitter != light.emitter) return;
            vec3 middle;
            for (const Particle& p : cloud.particles) {
                const float heat = std::max(1 - p.age / p.life, 0.0f);
                sum += heat * heat;
                middle += p.position * (heat * heat);
            }
            light.position =
                vec3(view.toFrame(cloud.origin + dvec3(middle / std::max(sum, 1e-3f))));
        });
    light.color = light.color * sum;
}

/// How much it counts in the picture: what it gives at the eye, were that just within its reach.
float importance(const LightItem& light) {
    const float distance = std::max(length(light.position) - 0.5f * light.reach, 1.0f);
    return strongest(light.color) / (distance * distance);
}

} // namespace

void LightList::gather(const FrameView& view, const FrameInfo& frame,
                       const std::vector<LightItem>& items, float ground) {
    lights.clear();
    const float lux = std::clamp(NIGHT / ground, DAY_LUX / LUX, 1.0f);
    for (LightItem light : items) {
        if (light.emitter) burn(light, view, frame.particles);
        light.color = light.color * (lux * unrest(light, frame.time));
        const float far = strongest(light.color) * LUX / (PI * NOTICED * ground);
        light.reach = std::min(light.reach, std::sqrt(far));
        if (light.reach < LEAST_REACH || !view.sees(light.position, light.reach)) continue;
        lights.push_back(light);
    }
    std::sort(lights.begin(), lights.end(), [](const LightItem& a, const LightItem& b) {
        const float first = importance(a), second = importance(b);
        return first != second ? first > second : a.number < b.number;
    });
    if (lights.size() > MOST_LIGHTS) lights.erase(lights.begin() + MOST_LIGHTS, lights.end());
}

bool LightList::reach(const vec3& center, float radius) const {
    return std::any_of(lights.begin(), lights.end(),
                       [&](const LightItem& light) { return reaches(light, center, radius); });
}

bool LightList::reaches(const LightItem& light, const vec3& center, float radius) {
    const vec3 off = center - light.position;
    const float square = length2(off), most = light.reach + radius;
    if (square > most * most) return false;
    const float cosine = light.cone.y;
    if (cosine <= 0) return true; // half of the space and more: not worth a look
    // How far the sphere's middle lies from the cone's surface (Wronski 2017).
    const float along = dot(off, light.axis);
    const float across = std::sqrt(std::max(square - along * along, 0.0f));
    const float sine = std::sqrt(1 - cosine * cosine);
    return cosine * across - along * sine <= radius && along >= -radius;
}

namespace {

/// What a sphere (E) holds of the sea's waves.
PictureRect findOnSea(const FrameView& view, float crest, const vec3& center, float radius) {
    const vec3 level(center.x, center.y, view.getSeaLevel(center));
    const float off = std::max(std::abs(center.z - level.z) - crest, 0.0f);
    if (off >= radius) return {};
    const float wide = std::sqrt(radius * radius - off * off);
    return PictureRect::ofBox(view, level, {wide, wide, crest});
}

} // namespace

void LightList::addOnSea(const FrameView& view, float crest, PictureParts& parts) const {
    constexpr float NARROW = 0.7f, FIRST = 4, STEP = 1.5f; // cosine; m; of lengths along a cone
    for (const LightItem& light : lights) {
        const float cosine = light.cone.y;
        if (cosine < NARROW) {
            parts.add(findOnSea(view, crest, light.position, light.reach));
            continue;
        }
        // Slice by slice, so that what is in the air between lamp and water doesn't count.
        const float tangent = std::sqrt(1 - cosine * cosine) / cosine;
        PictureRect rect;
        for (float from = 0, to = FIRST; from < light.reach; from = to, to *= STEP) {
            const float end = std::min(to, light.reach), half = (end - from) / 2;
            rect.include(findOnSea(view, crest, light.position + light.axis * (from + half),
                                   std::hypot(half, end * tangent)));
        }
        parts.add(rect);
    }
}

} // namespace ig
