// SPDX-License-Identifier: MIT
#include "ig/scene/Mesh.h"

#include "GltfTree.h"
#include "ig/base/jLog.h"
#include "program/InputFile.h"

#include <assimp/DefaultIOSystem.h>
#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <cmath>
#include <map>
#include <set>
#include <string>

namespace ig {

namespace {

/// Axes of a file turned into ours.
struct Axes {
    bool y_up;
    vec3 operator()(const aiVector3D& v) const {
        return y_up ? vec3(v.x, -v.z, v.y) : vec3(v.x, v.y, v.z);
    }
};

/// The file that surfaces are taken from.
struct Source {
    const aiScene& scene;
    Axes axes;
    std::string folder; ///< with its closing slash, or empty
};

bool isGltf(const std::string& path) { return path.ends_with(".gltf") || path.ends_with(".glb"); }

/// Larger ones than the earth are mistakes, and would overflow what is computed from them.
constexpr float MAX_COORDINATE = 1e7f;

bool isSane(const aiMesh& mesh) {
    for (unsigned i = 0; i < mesh.mNumVertices; i++) {
        const aiVector3D& v = mesh.mVertices[i];
        for (float x : {v.x, v.y, v.z})
            if (!(std::abs(x) < MAX_COORDINATE)) return false;
    }
    return true;
}

/// Path of the base colour's picture, which stands beside the model. A picture packed into the
/// model itself keeps the importer's name, which no file has: it is missed where it is looked for.
jString texturePath(const aiMaterial& material, const std::string& folder) {
    aiString name;
    if (material.GetTexture(aiTextureType_BASE_COLOR, 0, &name) != aiReturn_SUCCESS &&
        material.GetTexture(aiTextureType_DIFFUSE, 0, &name) != aiReturn_SUCCESS)
        return {};
    return jString((folder + name.C_Str()).c_str());
}

void appendMesh(const Source& source, const aiMesh& mesh, const aiMatrix4x4& transform,
                std::vector<Mesh::Surface>& surfaces) {
    if (!(mesh.mPrimitiveTypes & aiPrimitiveType_TRIANGLE) || !mesh.HasNormals()) return;
    if (!isSane(mesh)) {
        jLog::error("Mesh::get: \"%s\" has coordinates beyond 1e7 m and is left out",
                    mesh.mName.C_Str());
        return;
    }
    Mesh::Surface surface;
    const aiMaterial& material = *source.scene.mMaterials[mesh.mMaterialIndex];
    surface.name = material.GetName().C_Str();
    surface.texture = texturePath(material, source.folder);
    aiMatrix3x3 turn(transform);
    turn.Inverse().Transpose(); // normals need the inverse transpose
    for (unsigned i = 0; i < mesh.mNumVertices; i++) {
        surface.positions.push_back(source.axes(transform * mesh.mVertices[i]));
        aiVector3D normal = turn * mesh.mNormals[i];
        surface.normals.push_back(source.axes(normal.NormalizeSafe()));
        if (mesh.HasTextureCoords(0))
            surface.uvs.push_back({mesh.mTextureCoords[0][i].x, mesh.mTextureCoords[0][i].y});
    }
    for (unsigned f = 0; f < mesh.mNumFaces; f++) {
        const aiFace& face = mesh.mFaces[f];
        if (face.mNumIndices != 3) continue; // points and lines
        surface.indices.insert(surface.indices.end(), face.mIndices, face.mIndices + 3);
    }
    if (!surface.indices.empty()) surfaces.push_back(std::move(surface));
}

void appendNode(const Source& source, const aiNode& node, const aiMatrix4x4& transform,
                std::vector<Mesh::Surface>& surfaces) {
    for (unsigned i = 0; i < node.mNumMeshes; i++)
        appendMesh(source, *source.scene.mMeshes[node.mMeshes[i]], transform, surfaces);
    for (unsigned i = 0; i < node.mNumChildren; i++)
        appendNode(source, *node.mChildren[i], transform * node.mChildren[i]->mTransformation,
                   surfaces);
}

/// What the importer may open: a model, and what it names, are regular files. Opening a pipe would
/// wait for its writer.
struct RegularFiles final : Assimp::DefaultIOSystem {
    Assimp::IOStream* Open(const char* file, const char* mode) override {
        return program::whyUnreadable(file).empty() ? DefaultIOSystem::Open(file, mode) : nullptr;
    }
};

/// An imported file, kept while its parts are being asked for: prefabs name many parts of one file
/// in a row, and reading it once per part would be felt at start-up.
struct Import {
    std::string path;
    Assimp::Importer importer;
    const aiScene* scene = nullptr;
};

int g_read = 0;

const aiScene* import(const std::string& path) {
    static Import last;
    static std::set<std::string> failed; // each is reported once
    if (last.scene && last.path == path) return last.scene;
    if (failed.contains(path)) return nullptr;
    g_read++;
    const auto fail = [&path](const std::string& why) {
        jLog::error("Mesh::get: \"%s\": %s", path.c_str(), why.c_str());
        last.scene = nullptr;
        failed.insert(path);
        return nullptr;
    };
    std::string why = program::whyUnreadable(path);
    if (why.empty() && isGltf(path)) why = whyUnfit(path);
    if (!why.empty()) return fail(why);
    last.path = path;
    if (!last.scene) last.importer.SetIOHandler(new RegularFiles); // which it owns
    last.scene = last.importer.ReadFile(path, aiProcess_Triangulate | aiProcess_GenNormals |
                                                  aiProcess_JoinIdenticalVertices);
    if (last.scene && last.scene->mRootNode) return last.scene;
    return fail(last.importer.GetErrorString());
}

std::shared_ptr<const Mesh> read(const std::string& reference) {
    const std::size_t hash = reference.find('#');
    const std::string path = reference.substr(0, hash);
    const aiScene* scene = import(path);
    if (!scene) return nullptr;
    const Source source{*scene, {isGltf(path)}, path.substr(0, path.find_last_of('/') + 1)};
    std::vector<Mesh::Surface> surfaces;
    if (hash == std::string::npos) {
        appendNode(source, *scene->mRootNode, scene->mRootNode->mTransformation, surfaces);
    } else {
        const std::string part = reference.substr(hash + 1);
        const aiNode* node = scene->mRootNode->FindNode(part.c_str());
        if (!node) {
            jLog::error("Mesh::get: \"%s\" has no part \"%s\"", path.c_str(), part.c_str());
            return nullptr;
        }
        appendNode(source, *node, aiMatrix4x4(), surfaces);
    }
    if (surfaces.empty()) {
        jLog::error("Mesh::get: \"%s\" has no triangles", reference.c_str());
        return nullptr;
    }
    return std::make_shared<const Mesh>(std::move(surfaces));
}

} // namespace

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
    return cache()[reference] = read(std::string(reference.view()));
}

std::shared_ptr<const Mesh> Mesh::getPlaceholder() {
    Surface cube;
    cube.name = "missing";
    cube.texture = MISSING_PICTURE;
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

int Mesh::getNumRead() { return g_read; }

void Mesh::release() { cache().clear(); }

Mesh::Mesh(std::vector<Surface> surfaces)
    : m_surfaces(std::move(surfaces)), m_trees(m_surfaces.size()) {
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
