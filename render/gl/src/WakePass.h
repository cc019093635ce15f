// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/FrameView.h"
#include "render/scene/WakeList.h"

namespace ig {

struct OceanFrame;

/// Paints what ships leave on the water onto two maps of effects around the eye, which the sea
/// reads: slopes east and north (128 is level, 255 the steepest), foam, calm. The near map shows
/// foam as fine as an eye over the deck sees it, and how high the water is raised; the far one
/// carries slopes and foam out to 1,800 m, and further from high above.
class WakePass {
public:
    struct Map {
        gl::Texture texture;
        gl::Texture height; ///< of the water over the sea's own, m; the near map's only
        gl::Framebuffer target;
        vec2 corner;           ///< in the waves' plane, from this frame's nadir, m
        float edge = 1;        ///< m
        double every = 0;      ///< s of scene time between paintings
        bool empty = false;    ///< holds nothing
        double painted = -1e9; ///< the sea's time then, s
        dvec2 place;           ///< of the corner in the waves' plane, m
        vec2 drift; ///< how far the nearest hull has gone since, and its raised water with it, m
    };

    /// `quick`: smaller maps, painted less often, for a renderer without a graphics processor.
    void init(bool quick);
    /// Brings both maps up to date, each at its own rate; the caller sets target and viewport back.
    void draw(const FrameView& view, const WakeList& list, const OceanFrame& ocean);
    /// The next painting is again the first.
    void forget();

    /// Whether a hull raises the water near the eye, as the near map's height tells.
    bool isRaised() const { return m_raised; }
    const Map& getNear() const { return m_near; }
    const Map& getFar() const { return m_far; }
    int getSize() const { return m_size; } ///< of both, texels

private:
    void bakeKelvin();
    static void makeMap(Map& map, int size, double every, bool has_height);
    void refresh(Map& map, const WakeList& list, float edge, dvec2 nadir, double time);
    void paintWakes(const Map& map, const std::vector<Wake>& wakes, dvec2 nadir);
    void paintPatches(const Map& map, const std::vector<FoamPatch>& patches);

    int m_size = 0;
    bool m_raised = false;
    gl::Program m_kelvin, m_wake, m_hull, m_patch;
    gl::VertexArray m_empty, m_vertex_array;
    gl::Buffer m_buffer;
    gl::Texture m_kelvin_map; ///< baked when the first ship moves
    Map m_near, m_far;
};

} // namespace ig
