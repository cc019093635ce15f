// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"
#include "ig/scene/Bounds.h"
#include "ig/scene/Bvh.h"

#include <memory>
#include <vector>

namespace ig {

class Material;

/// Triangles of a model, cut into surfaces (one per material of the file), in the frame of the node
/// that shows them: X right, Y forward, Z up, metres. Immutable and shared by all that show it.
///
/// A model may bring levels of detail. All that is asked of the mesh, and every query, is the
/// finest level's; the others are there to be drawn.
class Mesh {
public:
    struct Surface {
        jString name; ///< the file's material name
        std::vector<vec3> positions;
        std::vector<vec3> normals; ///< as many as positions
        std::vector<vec2> uvs;     ///< as many as positions, or none; v runs up the picture
        /// Where the pictures lie that don't lie by the first coordinates: as many, or none.
        std::vector<vec2> second_uvs;
        unsigned second = 0; ///< which these are: a bit each, in the order of `Material::PICTURES`
        std::vector<vec4> colors; ///< as many as positions, or none; linear, times the base colour
        /// What the model's own material says, in the tags of material files; null: nothing. The
        /// object's material goes before it, tag by tag.
        std::shared_ptr<const Material> material;
        std::vector<std::uint32_t> indices;
        /// Of a coarser level: the finest level's surface of the same material, whose place in the
        /// object it takes; −1: there is none. Of the finest: not used.
        int stands_for = -1;
    };
    /// A mesh for where the whole looks smaller.
    struct Coarser {
        int level; ///< from 1
        std::shared_ptr<const Mesh> mesh;
    };

    /// The mesh of "file" or "file#part", read once and kept until `release`, so that what comes
    /// and goes during the scene costs no reading. OBJ coordinates are taken as they are; glTF (Y
    /// up) is turned so that its Y becomes Z and its −Z becomes Y. A part is a glTF node or an OBJ
    /// group of that name in its own coordinates. Null, with one log line, when file or part cannot
    /// be read.
    static std::shared_ptr<const Mesh> get(const jString& reference);

    /// What stands in for a mesh that can't be read: a cube of 2 m around the node's origin, with
    /// the picture `MISSING_PICTURE`.
    static std::shared_ptr<const Mesh> getPlaceholder();
    /// Name of no file: the renderer's own chequer that can't be overlooked.
    static constexpr const char* MISSING_PICTURE = "<missing>";

    /// Models that have been read from their files so far, or tried.
    static int getNumRead();
    /// Forgets all meshes, the pictures packed into their models, and failures; a mesh that
    /// somebody holds lives on with its holder.
    static void release();

    /// `coarser`: in rising order of the level.
    explicit Mesh(std::vector<Surface> surfaces, std::vector<Coarser> coarser = {});

    const std::vector<Coarser>& getCoarser() const { return m_coarser; }
    int getNumSurfaces() const { return static_cast<int>(m_surfaces.size()); }
    const Surface& getSurface(int i) const { return m_surfaces[static_cast<std::size_t>(i)]; }
    const BoundSphere& getBounds() const { return m_bounds; }
    /// The corners of the box around all positions, along the mesh's own axes; zero when there is
    /// none.
    const vec3& getLowest() const { return m_lowest; }
    const vec3& getHighest() const { return m_highest; }
    /// First crossing of a → b with a surface, as a parameter in [0, 1]; negative when none. Builds
    /// the surface's search tree on first use.
    double intersect(int surface, const dvec3& a, const dvec3& b) const;

private:
    std::vector<Surface> m_surfaces;
    std::vector<Coarser> m_coarser;
    BoundSphere m_bounds;
    vec3 m_lowest, m_highest;
    mutable std::vector<Bvh> m_trees; ///< one a surface
};

} // namespace ig
