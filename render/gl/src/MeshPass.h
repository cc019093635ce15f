// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "MappedPrograms.h"
#include "TextureStore.h"
#include "render/scene/SceneList.h"

#include <unordered_map>

namespace ig {

class GlassPass;
class HillShadows;
class LightList;
class SkyPass;

/// Draws the meshes of the scene, lit by the key light and the sky. Keeps a copy of each mesh on
/// the device as long as the scene holds it.
class MeshPass {
public:
    /// What shines on the meshes of a frame, or keeps the light away.
    struct Light {
        const LightList& lights;
        const HillShadows& hills;
        const SkyPass& sky;
    };

    void init();

    /// Brings what the jobs need to the device; before `drawCasters`.
    void upload(const ShadowCasters& casters);
    /// Depth only: the items of one of the jobs.
    void drawCasters(const ShadowCasters::Job& job);

    /// Brings the instances of this frame to the device; after the casters, before the other draws.
    void upload(const SceneList& list, const Light& light);
    void drawOpaque();
    void drawTransparent();
    /// Panes around the eye, last of all, with what lies on them.
    void drawPanes(const GlassPass& glass);

private:
    struct DeviceMesh {
        std::shared_ptr<const Mesh> mesh;
        gl::VertexArray vertex_array;
        gl::Buffer vertices, indices, extras;
        struct Range {
            std::size_t first; ///< byte of the first index
            int count;
            bool has_places; ///< texture coordinates
            MappedPrograms::Surface surface;
        };
        std::vector<Range> surfaces;
        Range whole; ///< all of them
    };
    /// Items that one call draws.
    struct Batch {
        const DeviceMesh* mesh;
        const MeshItem* item; ///< the first, for surface and look
        int first, count;     ///< instances
        float distance;
        bool lit; ///< by lamps or fires
        const DeviceMesh::Range& getRange() const {
            return mesh->surfaces[static_cast<std::size_t>(item->surface)];
        }
    };
    /// Casters that one call draws.
    struct CasterBatch {
        const DeviceMesh* mesh;
        const DeviceMesh::Range* range;
        int first, count; ///< instances
    };
    struct Instance {
        vec4 rows[3];
        vec4 haze;
        vec3 sun;
    };
    static Instance toInstance(const mat4& transform, const vec4& haze, const vec3& sun);
    static vec3 shadeAcross(const vec4& bounds, const SkyPass& sky);

    /// Ways to shade, one program each: what a surface doesn't need, no pixel of it pays for.
    /// Lamps and fires light the first ones, by further programs.
    enum Shading { PLAIN, TEXTURED, PAVED, SOAKED, PAINTED, DECAL, GLASS, ROTOR, NUM_SHADINGS };
    static constexpr int NUM_LIT = GLASS;
    static Shading choose(const SurfaceLook& look);
    static constexpr int NUM_COVERS = 3; ///< of panes

    const DeviceMesh& find(const std::shared_ptr<const Mesh>& mesh);
    void fill(DeviceMesh& device, const Mesh& mesh) const;
    static void fillExtras(DeviceMesh& device, const Mesh& mesh);
    void pointToInstances(int first) const;
    void addBatches(const std::vector<MeshItem>& items, std::vector<Batch>& batches,
                    const Light& light);
    void uploadInstances() const;
    void drawInstances(const DeviceMesh& mesh, const DeviceMesh::Range& range, int first,
                       int count) const;
    void draw(const std::vector<Batch>& batches);
    static void beginTransparent();
    static void endTransparent();
    gl::Program& choose(const Batch& batch, unsigned features);
    void setLook(gl::Program& program, const SurfaceLook& look, bool has_places);
    void setMaps(gl::Program& program, const SurfaceLook& look, bool has_places);
    void purge();

    static bool isLit(const MeshItem& item, const DeviceMesh& mesh, const LightList& lights);

    gl::Program m_programs[NUM_SHADINGS], m_lit_programs[NUM_LIT], m_depth_program;
    gl::Program m_pane_programs[NUM_COVERS];
    MappedPrograms m_mapped_programs;
    TextureStore m_textures;
    gl::Buffer m_instance_buffer;
    std::unordered_map<const Mesh*, DeviceMesh> m_meshes;
    std::vector<Instance> m_instances;
    std::vector<Batch> m_opaque, m_transparent, m_panes;
    std::vector<CasterBatch> m_casters; ///< in the order of the items
    bool m_has_base_instance = false;   ///< a draw can tell its first instance
    int m_frames = 0;
};

} // namespace ig
