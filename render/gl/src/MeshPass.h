// SPDX-License-Identifier: MIT
#pragma once

#include "FrameBlock.h"
#include "GlObjects.h"
#include "SceneList.h"
#include "TextureStore.h"

#include <unordered_map>

class SkyPass;

/// Draws the meshes of the scene, lit by the key light and the sky. Keeps a copy of each mesh on
/// the device as long as the scene holds it.
class MeshPass {
public:
    bool init();
    void release();

    /// Brings the instances of this frame to the device; before the draws.
    void upload(const SceneList& list, const SkyPass& sky);
    void drawOpaque();
    void drawTransparent();
    /// Depth only, into the shadow maps that the frame block places.
    void drawCasters();
    void drawFarCasters(const FrameBlock& block);

private:
    struct DeviceMesh {
        std::shared_ptr<const ig::Mesh> mesh;
        gl::VertexArray vertex_array;
        gl::Buffer vertices, indices;
        struct Range {
            std::size_t first; ///< byte of the first index
            int count;
            bool has_places; ///< texture coordinates
        };
        std::vector<Range> surfaces;
    };
    /// Items that one call draws.
    struct Batch {
        const DeviceMesh* mesh;
        const MeshItem* item; ///< the first, for surface and look
        int first, count;     ///< instances
        float distance;
        const DeviceMesh::Range& getRange() const {
            return mesh->surfaces[static_cast<std::size_t>(item->surface)];
        }
    };
    struct Instance {
        ig::vec4 rows[3];
        ig::vec4 haze;
    };

    /// Ways to shade, one program each: what a surface doesn't need, no pixel of it pays for.
    enum Shading { PLAIN, TEXTURED, PAVED, SOAKED, PAINTED, DECAL, GLASS, ROTOR, NUM_SHADINGS };
    static Shading choose(const SurfaceLook& look);

    const DeviceMesh& find(const std::shared_ptr<const ig::Mesh>& mesh);
    static void fill(DeviceMesh& device, const ig::Mesh& mesh);
    void addBatches(const std::vector<MeshItem>& items, std::vector<Batch>& batches,
                    const SkyPass& sky);
    void bindInstances(const Batch& batch);
    void draw(const std::vector<Batch>& batches);
    void drawDepth(const std::vector<Batch>& batches, const ig::vec4& plane, const ig::vec4& depth);
    void setLook(gl::Program& program, const SurfaceLook& look, bool has_places);
    void purge();

    gl::Program m_programs[NUM_SHADINGS], m_depth_program;
    TextureStore m_textures;
    gl::Buffer m_instance_buffer;
    std::unordered_map<const ig::Mesh*, DeviceMesh> m_meshes;
    std::vector<Instance> m_instances;
    std::vector<Batch> m_opaque, m_transparent, m_casters, m_far_casters;
    int m_frames = 0;
};
