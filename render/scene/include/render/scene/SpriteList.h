// SPDX-License-Identifier: MIT
#pragma once

#include "render/scene/FrameView.h"

#include <vector>

namespace ig {

struct CableItem;
struct FrameInfo;
class ObjectParticles;
struct Particle;
struct ParticleCloud;
struct LampItem;

/// A square that faces the eye, or lies along its flight.
struct Sprite {
    vec3 position;            ///< E
    float size;               ///< half the edge, m
    vec4 color;               ///< linear; w: opacity
    float turn;               ///< rad
    float emission, additive; ///< light of its own; 1 adds light only, 0 covers what is behind
    float kind; ///< below 0 a cable, 0 a disc, 1 a lamp, from 2 on the shapes of `makePuffPattern`
    vec3 stretch; ///< half the length along the flight, m; zero: round
    float youth;  ///< 0 at birth, 1 at the end
    float depth;  ///< along the view, for the order
};

/// A frame's particles, lamps and thin cables, far to near. Flat particles belong to the sea.
class SpriteList {
public:
    /// The frame's `particles` may be null.
    void gather(const FrameView& view, const FrameInfo& frame, const std::vector<LampItem>& lamps,
                const std::vector<CableItem>& cables);

    std::vector<Sprite> sprites;

private:
    struct Look { ///< what an emitter's material says
        vec4 color;
        float size, growth, emission, soot, streak, exposure;
        int sheet; ///< 0 discs, 1 puffs, 2 flames, 3 drops
    };
    static Look readLook(const ObjectParticles& emitter);
    static float shapeOf(int sheet, const Particle& particle);
    static vec3 cooled(const Look& look, float youth);
    void addCloud(const FrameView& view, const ParticleCloud& cloud, const vec3& eye_velocity);
};

} // namespace ig
