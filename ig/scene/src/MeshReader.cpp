// SPDX-License-Identifier: MIT
#include "MeshReader.h"

#include "ModelFile.h"
#include "ModelLevels.h"
#include "ModelMaterial.h"
#include "ig/base/jLog.h"
#include "ig/scene/Material.h"
#include "ig/scene/Mesh.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <utility>

namespace ig {

namespace {

/// Larger ones than the earth are mistakes, and would overflow what is computed from them.
constexpr float MAX_COORDINATE = 1e7f;
// More are made to exhaust the memory: nodes may share their triangles, which then count anew.
constexpr std::size_t MOST_VERTICES = std::size_t{1} << 24, MOST_INDICES = std::size_t{1} << 26,
                      MOST_SURFACES = 10'000;

bool isSane(const aiMesh& mesh) {
    for (unsigned i = 0; i < mesh.mNumVertices; i++) {
        const aiVector3D& v = mesh.mVertices[i];
        for (float x : {v.x, v.y, v.z})
            if (!(std::abs(x) < MAX_COORDINATE)) return false;
    }
    return true;
}

std::vector<vec2> readPlaces(const aiMesh& mesh, const PicturePlace& place) {
    std::vector<vec2> uvs;
    const auto set = static_cast<unsigned>(place.set);
    if (!mesh.HasTextureCoords(set)) return uvs;
    for (unsigned i = 0; i < mesh.mNumVertices; i++) {
        const aiVector3D& uv = mesh.mTextureCoords[set][i];
        const vec2 placed = place({uv.x, 1 - uv.y});
        uvs.push_back({placed.x, 1 - placed.y});
    }
    return uvs;
}

/// Pictures that lie alike share their coordinates. There are two sets of these; what lies by a
/// third is laid by the first.
void appendPlaces(const aiMesh& mesh, const ModelMaterial& material, Mesh::Surface& surface) {
    const PicturePlace *first = nullptr, *second = nullptr;
    for (std::size_t i = 0; i < material.places.size(); i++) {
        const PicturePlace& place = material.places[i];
        if (!material.material || !material.material->findTexture(Material::PICTURES[i])) continue;
        if (!first) first = &place;
        if (place == *first) continue;
        if (!second) second = &place;
        if (place == *second)
            surface.second |= 1U << i;
        else
            jLog::warning("Mesh::get: material \"%s\" lays its pictures in more than two ways: "
                          "\"%s\" is laid like the first",
                          surface.name.c_str(), Material::PICTURES[i]);
    }
    surface.uvs = readPlaces(mesh, first ? *first : PicturePlace());
    if (second && !surface.uvs.empty()) surface.second_uvs = readPlaces(mesh, *second);
    if (surface.second_uvs.empty()) surface.second = 0;
}

/// The importer gives colours without opacity one of 0.
void appendColors(const aiMesh& mesh, Mesh::Surface& surface) {
    if (!mesh.HasVertexColors(0)) return;
    bool has_opacity = false;
    for (unsigned i = 0; i < mesh.mNumVertices; i++) {
        const aiColor4D& c = mesh.mColors[0][i];
        has_opacity |= c.a > 0;
        surface.colors.push_back({c.r, c.g, c.b, c.a});
    }
    if (has_opacity) return;
    for (vec4& color : surface.colors)
        color.w = 1;
}

/// Gathers the surfaces of one level of a mesh after the other.
class Reader {
public:
    explicit Reader(const ModelFile& file) : m_file(file) {}

    /// A node and all below it.
    void append(const aiNode& node, const aiMatrix4x4& transform, int level);
    /// The surfaces since the last call.
    std::vector<Mesh::Surface> take() { return std::exchange(m_surfaces, {}); }
    bool isTooMuch() const { return m_too_many; }
    /// Changes with every mesh of the file that was appended since it was asked for last.
    std::size_t takeTrace() { return std::exchange(m_trace, 0); }

private:
    void append(const aiMesh& mesh, const aiMatrix4x4& transform);
    void appendVertices(const aiMesh& mesh, const aiMatrix4x4& transform,
                        Mesh::Surface& surface) const;
    const ModelMaterial& findMaterial(unsigned index);
    /// Axes of the file turned into ours.
    vec3 turn(const aiVector3D& v) const {
        return m_file.y_up ? vec3(v.x, -v.z, v.y) : vec3(v.x, v.y, v.z);
    }

    const ModelFile& m_file;
    std::map<unsigned, ModelMaterial> m_materials; ///< by their numbers
    std::vector<Mesh::Surface> m_surfaces;
    std::size_t m_vertices = 0, m_indices = 0;
    std::size_t m_trace = 0;
    bool m_too_many = false;
};

void Reader::append(const aiNode& node, const aiMatrix4x4& transform, int level) {
    for (unsigned i = 0; i < node.mNumMeshes; i++)
        append(*m_file.scene->mMeshes[node.mMeshes[i]], transform);
    for (const aiNode* child : chooseLevel(getChildren(node), level))
        append(*child, transform * child->mTransformation, level);
}

void Reader::append(const aiMesh& mesh, const aiMatrix4x4& transform) {
    if (!(mesh.mPrimitiveTypes & aiPrimitiveType_TRIANGLE) || !mesh.HasNormals() || m_too_many)
        return;
    if (!isSane(mesh)) {
        jLog::error("Mesh::get: \"%s\" has coordinates beyond 1e7 m and is left out",
                    mesh.mName.C_Str());
        return;
    }
    m_trace = m_trace * 31 + std::hash<const void*>()(&mesh);
    m_vertices += mesh.mNumVertices;
    m_indices += std::size_t{3} * mesh.mNumFaces;
    m_too_many = m_vertices > MOST_VERTICES || m_indices > MOST_INDICES ||
                 m_surfaces.size() == MOST_SURFACES;
    if (m_too_many) return;
    const ModelMaterial& material = findMaterial(mesh.mMaterialIndex);
    Mesh::Surface surface;
    surface.name = m_file.scene->mMaterials[mesh.mMaterialIndex]->GetName().C_Str();
    surface.material = material.material;
    appendVertices(mesh, transform, surface);
    appendPlaces(mesh, material, surface);
    appendColors(mesh, surface);
    const bool mirrored = transform.Determinant() < 0; // which turns triangles inside out
    for (unsigned f = 0; f < mesh.mNumFaces; f++) {
        const aiFace& face = mesh.mFaces[f];
        if (face.mNumIndices != 3) continue; // points and lines
        surface.indices.insert(surface.indices.end(), face.mIndices, face.mIndices + 3);
        if (mirrored) std::swap(surface.indices.back(), *(surface.indices.end() - 2));
    }
    if (!surface.indices.empty()) m_surfaces.push_back(std::move(surface));
}

void Reader::appendVertices(const aiMesh& mesh, const aiMatrix4x4& transform,
                            Mesh::Surface& surface) const {
    aiMatrix3x3 turned(transform);
    turned.Inverse().Transpose(); // normals need the inverse transpose
    for (unsigned i = 0; i < mesh.mNumVertices; i++) {
        surface.positions.push_back(turn(transform * mesh.mVertices[i]));
        aiVector3D normal = turned * mesh.mNormals[i];
        surface.normals.push_back(turn(normal.NormalizeSafe()));
    }
}

const ModelMaterial& Reader::findMaterial(unsigned index) {
    const auto [entry, is_new] = m_materials.try_emplace(index);
    if (is_new) entry->second = readMaterial(m_file, *m_file.scene->mMaterials[index]);
    return entry->second;
}

/// What a reference names: the whole file, a node, or the levels of a part, each in its own
/// coordinates.
struct Part {
    std::vector<const aiNode*> nodes;
    bool is_whole;
};

/// Without nodes, with one log line, when there is no such part.
Part findPart(const ModelFile& file, const std::string& reference) {
    const aiNode* root = file.scene->mRootNode;
    const std::size_t hash = reference.find('#');
    if (hash == std::string::npos) return {{root}, true};
    const std::string name = reference.substr(hash + 1);
    if (const aiNode* node = root->FindNode(name.c_str())) return {{node}, false};
    Part part{findLevels(*root, name), false};
    if (part.nodes.empty())
        jLog::error("Mesh::get: \"%s\" has no part \"%s\"", file.path.c_str(), name.c_str());
    return part;
}

/// The surfaces of a level take the places of the finest level's that have the same material.
void assignSurfaces(std::vector<Mesh::Surface>& surfaces,
                    const std::vector<Mesh::Surface>& finest) {
    for (Mesh::Surface& surface : surfaces) {
        const auto alike = std::ranges::find(finest, surface.name, &Mesh::Surface::name);
        if (alike != finest.end()) surface.stands_for = static_cast<int>(alike - finest.begin());
    }
}

} // namespace

std::shared_ptr<const Mesh> readMesh(const std::string& reference) {
    const ModelFile file = readModel(reference.substr(0, reference.find('#')));
    if (!file.scene) return nullptr;
    const Part part = findPart(file, reference);
    if (part.nodes.empty()) return nullptr;
    Reader reader(file);
    const auto readLevel = [&](int level) {
        for (const aiNode* node : chooseLevel(part.nodes, level))
            reader.append(*node, part.is_whole ? node->mTransformation : aiMatrix4x4(), level);
        return reader.take();
    };
    std::vector<Mesh::Surface> finest = readLevel(0);
    std::vector<Mesh::Coarser> coarser;
    std::size_t before = reader.takeTrace();
    // A node that is itself asked for by its name is no level of anything.
    const bool is_level = part.nodes.size() == 1 && !readLevelName(*part.nodes[0]).stem.empty();
    const int coarsest =
        is_level ? findCoarsestLevel(getChildren(*part.nodes[0])) : findCoarsestLevel(part.nodes);
    for (int level = 1; level <= coarsest; level++) {
        std::vector<Mesh::Surface> surfaces = readLevel(level);
        const std::size_t trace = reader.takeTrace();
        if (surfaces.empty() || trace == before) continue; // none of that number
        before = trace;
        assignSurfaces(surfaces, finest);
        coarser.push_back({level, std::make_shared<const Mesh>(std::move(surfaces))});
    }
    if (reader.isTooMuch())
        jLog::error("Mesh::get: \"%s\" has more than %zu vertices, %zu corners of triangles or %zu "
                    "surfaces: export fewer, or in parts",
                    reference.c_str(), MOST_VERTICES, MOST_INDICES, MOST_SURFACES);
    else if (finest.empty())
        jLog::error("Mesh::get: \"%s\" has no triangles", reference.c_str());
    else
        return std::make_shared<const Mesh>(std::move(finest), std::move(coarser));
    return nullptr;
}

} // namespace ig
