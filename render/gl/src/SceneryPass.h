// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/FrameBlock.h"
#include "render/scene/SceneryList.h"

#include <vector>

namespace ig {

class HillShadows;
class ObjectScenery;
class SkyPass;

/// Trees from afar: squares that face the eye, each with pictures of its kind, which are made when
/// a scenery is first drawn.
class SceneryPass {
public:
    void init();
    /// Among the opaque things. `lit`: by lamps or fires, somewhere in the picture.
    void draw(const ObjectScenery& scenery, const SceneryList& list, const FrameBlock& block,
              const SkyPass& sky, const HillShadows& hills, bool lit);

private:
    struct Instance {
        CardItem card;
        vec4 haze; ///< w: clearness of the air
        float sun; ///< share of the key light
    };
    void makePictures(const ObjectScenery& scenery);

    gl::Program m_program, m_lit_program;
    gl::VertexArray m_vertex_array;
    gl::Buffer m_buffer;
    gl::Texture m_pictures;
    std::vector<Instance> m_instances;
    int m_made_of = -1; ///< the scenery's number
};

} // namespace ig
