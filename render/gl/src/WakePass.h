// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/FrameView.h"

#include <vector>

namespace ig {

class DecalOrtho;
class ParticleSystem;
struct OceanFrame;
struct ParticleCloud;

/// Paints what ships leave on the water onto two maps of effects around the eye, which the sea
/// reads: slopes east and north (128 is level, 255 a slope of 1/4), foam, calm. The near map shows
/// foam as fine as an eye over the deck sees it, the far one carries it out to 1,800 m, and
/// further from high above.
///
/// A wake is drawn for every decal that hangs below an object with a box for a rigid body, as long
/// and as wide as that box, for the speed that the body makes: a still ship leaves nothing. Flat
/// particles are added as patches of foam.
class WakePass {
public:
    struct Map {
        gl::Texture texture;
        gl::Framebuffer target;
        vec2 corner;           ///< in the waves' plane, from this frame's nadir, m
        float edge = 1;        ///< m
        double every = 0;      ///< s of scene time between paintings
        bool empty = false;    ///< holds nothing
        double painted = -1e9; ///< the sea's time then, s
        dvec2 place;           ///< of the corner in the waves' plane, m
    };

    /// `map_size` in texels: 384 or more looks right.
    bool init(int map_size);
    /// Gathers the frame's wakes; `particles` may be null.
    void gather(const FrameView& view, const ParticleSystem* particles,
                const std::vector<const DecalOrtho*>& decals);
    /// Brings both maps up to date, each at its own rate; the caller sets target and viewport back.
    void draw(const FrameView& view, const OceanFrame& ocean);

    const Map& getNear() const { return m_near; }
    const Map& getFar() const { return m_far; }

private:
    struct Patch {
        vec2 place; ///< E
        float radius, opacity;
    };
    struct Wake {
        vec4 hull;   ///< place (E), unit vector ahead
        vec4 motion; ///< speed, length, beam, life of foam
    };
    void addPatches(const FrameView& view, const ParticleCloud& cloud);
    void addWake(const FrameView& view, const DecalOrtho& decal);
    void bakeKelvin();
    void refresh(Map& map, float edge, dvec2 nadir, double time);
    void paintWakes(const Map& map, dvec2 nadir);
    void paintPatches(const Map& map);

    int m_size = 0;
    gl::Program m_kelvin, m_wake, m_patch;
    gl::VertexArray m_empty, m_vertex_array;
    gl::Buffer m_buffer;
    gl::Texture m_kelvin_map; ///< baked when the first ship moves
    Map m_near, m_far;
    std::vector<Patch> m_patches;
    std::vector<Wake> m_wakes;
};

} // namespace ig
