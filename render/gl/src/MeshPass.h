// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "SceneList.h"

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
    /// Depth only, through the frame block's shadow transform.
    void drawCasters();

    int getNumDraws() const { return m_draws; } ///< calls in this frame

private:
    struct DeviceMesh {
        std::shared_ptr<const ig::Mesh> mesh;
        gl::VertexArray vertex_array;
        gl::Buffer vertices, indices;
        struct Range {
            std::size_t first; ///< byte of the first index
            int count;
        };
        std::vector<Range> surfaces;
    };
    /// Items that one call draws.
    struct Batch {
        const DeviceMesh* mesh;
        const MeshItem* item; ///< the first, for surface and look
        int first, count;     ///< instances
        float distance;
    };
    struct Instance {
        ig::vec4 rows[3];
        ig::vec4 haze;
    };

    const DeviceMesh& find(const std::shared_ptr<const ig::Mesh>& mesh);
    static void fill(DeviceMesh& device, const ig::Mesh& mesh);
    void addBatches(const std::vector<MeshItem>& items, std::vector<Batch>& batches,
                    const SkyPass& sky);
    void bindInstances(const Batch& batch);
    void draw(const std::vector<Batch>& batches, bool opaque);
    void purge();

    gl::Program m_program, m_depth_program;
    gl::Buffer m_instance_buffer;
    std::unordered_map<const ig::Mesh*, DeviceMesh> m_meshes;
    std::vector<Instance> m_instances;
    std::vector<Batch> m_opaque, m_transparent, m_casters;
    int m_draws = 0;
    int m_frames = 0;
};
