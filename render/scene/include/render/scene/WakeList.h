// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

#include <vector>

namespace ig {

class DecalOrtho;
struct FrameView;
class ParticleSystem;
struct ParticleCloud;

/// What a ship leaves on the water.
struct Wake {
    vec4 hull;   ///< place (E), unit vector ahead
    vec4 motion; ///< speed, length, beam, life of foam
};

/// A flat particle.
struct FoamPatch {
    vec2 place;            ///< E
    float radius, opacity; ///< m; 0 to 1
};

/// A frame's wakes, the nearest first and no more than `MOST_WAKES`, and patches of foam.
///
/// A wake is drawn for every decal that hangs below an object with a box for a rigid body, as long
/// and as wide as that box, for the speed that the body makes: a still ship leaves nothing. Flat
/// particles are patches of foam.
class WakeList {
public:
    /// `particles` may be null; `decals` are those without a picture.
    void gather(const FrameView& view, const ParticleSystem* particles,
                const std::vector<const DecalOrtho*>& decals);

    std::vector<Wake> wakes;
    std::vector<FoamPatch> patches;

private:
    void addPatches(const FrameView& view, const ParticleCloud& cloud);
    void addWake(const FrameView& view, const DecalOrtho& decal);
};

} // namespace ig
