// SPDX-License-Identifier: MIT
#include "ig/scene/Mesh.h"

#include "MeshReader.h"
#include "ModelFile.h"
#include "ig/scene/Material.h"
#include "ig/scene/PackedPictures.h"

#include <cmath>
#include <map>
#include <string>

namespace ig {

namespace {
/// A null mesh is a failure that has been reported.
std::map<jString, std::shared_ptr<const Mesh>>& cache() {
    static std::map<jString, std::shared_ptr<const Mesh>> meshes;
    return meshes;
}
} // namespace

std::shared_ptr<const Mesh> Mesh::get(const jString& reference) {
    const auto known = cache().find(reference);
    if (known != cache().end()) return known->second;
    return cache()[reference] = readMesh(std::string(reference.view()));
}

std::shared_ptr<const Mesh> Mesh::getPlaceholder() {
    Surface cube;
    cube.name = "missing";
    auto missing = std::make_shared<Material>();
    missing->setTexture(Material::PICTURES[0], MISSING_PICTURE);
    cube.material = std::move(missing);
    for (int face = 0; face < 6; face++) {
        float axes[3][3] = {}; // along the face, up the face, out of it
        const float sign = face < 3 ? 1.0f : -1.0f;
        for (int i = 0; i < 3; i++)
            axes[i][(face + 1 + i) % 3] = i == 1 ? 1 : sign;
        const auto vector = [&axes](int i) { return vec3(axes[i][0], axes[i][1], axes[i][2]); };
        const auto first = static_cast<std::uint32_t>(cube.positions.size());
        for (const vec2& corner : {vec2{0, 0}, vec2{1, 0}, vec2{1, 1}, vec2{0, 1}}) {
            cube.positions.push_back(vector(0) * (2 * corner.x - 1) +
                                     vector(1) * (2 * corner.y - 1) + vector(2));
            cube.normals.push_back(vector(2));
            cube.uvs.push_back(corner);
        }
        for (const std::uint32_t i : {0u, 1u, 2u, 0u, 2u, 3u})
            cube.indices.push_back(first + i);
    }
    return std::make_shared<const Mesh>(std::vector<Surface>{std::move(cube)});
}

int Mesh::getNumRead() { return getNumModelsRead(); }

void Mesh::release() {
    cache().clear();
    releaseModels();
    PackedPictures::release();
}

Mesh::Mesh(std::vector<Surface> surfaces, std::vector<Coarser> coarser)
    : m_surfaces(std::move(surfaces)), m_coarser(std::move(coarser)), m_trees(m_surfaces.size()) {
    vec3 min(1e30f, 1e30f, 1e30f), max = -min;
    for (const Surface& surface : m_surfaces)
        for (const vec3& p : surface.positions) {
            min = {std::min(min.x, p.x), std::min(min.y, p.y), std::min(min.z, p.z)};
            max = {std::max(max.x, p.x), std::max(max.y, p.y), std::max(max.z, p.z)};
        }
    if (min.x > max.x) return;
    m_lowest = min;
    m_highest = max;
    m_bounds.center = dvec3(min + max) / 2.0;
    m_bounds.radius = 0;
    for (const Surface& surface : m_surfaces)
        for (const vec3& p : surface.positions)
            m_bounds.radius = std::max(m_bounds.radius, length(dvec3(p) - m_bounds.center));
}

double Mesh::intersect(int surface, const dvec3& a, const dvec3& b) const {
    Bvh& tree = m_trees[surface];
    const Surface& s = m_surfaces[surface];
    if (tree.empty()) tree.build(s.positions, s.indices);
    return tree.intersect(a, b);
}

} // namespace ig
