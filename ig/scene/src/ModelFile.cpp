// SPDX-License-Identifier: MIT
#include "ModelFile.h"

#include "GltfCheck.h"
#include "ObjCheck.h"
#include "ig/base/jLog.h"
#include "program/InputFile.h"

#include <assimp/DefaultIOSystem.h>
#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <memory>
#include <set>

namespace ig {

namespace {

/// In small letters: some systems' programs write large ones.
std::string getSuffix(const std::string& path) {
    std::string suffix = std::filesystem::path(path).extension();
    std::ranges::transform(suffix, suffix.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return suffix;
}

bool isGltf(const std::string& path) {
    const std::string suffix = getSuffix(path);
    return suffix == ".gltf" || suffix == ".glb";
}

/// Why the importer must not see it: other formats have other axes and units, and ways to make it
/// take all memory.
std::string whyUnfit(const std::string& path) {
    if (isGltf(path)) return whyUnfitGltf(path);
    if (getSuffix(path) == ".obj") return whyUnfitObj(path);
    return "neither a glTF (.glb, .gltf) nor an OBJ file: export it as .glb";
}

/// What the importer may open: a model, and what it names, are regular files. Opening a pipe would
/// wait for its writer.
struct RegularFiles final : Assimp::DefaultIOSystem {
    Assimp::IOStream* Open(const char* file, const char* mode) override {
        return program::whyUnreadable(file).empty() ? DefaultIOSystem::Open(file, mode) : nullptr;
    }
};

/// The file read last: prefabs name many parts of one file in a row, and reading it once per part
/// would be felt at start-up.
struct Import {
    std::string path;
    Assimp::Importer importer;
    const aiScene* scene = nullptr;
};

int g_read = 0;
std::unique_ptr<Import> g_last;
std::set<std::string> g_failed; ///< each is reported once

const aiScene* fail(const std::string& path, const std::string& why) {
    jLog::error("Mesh::get: \"%s\": %s", path.c_str(), why.c_str());
    g_last.reset();
    g_failed.insert(path);
    return nullptr;
}

const aiScene* import(const std::string& path) {
    if (g_last && g_last->path == path) return g_last->scene;
    if (g_failed.contains(path)) return nullptr;
    g_read++;
    std::string why = program::whyUnreadable(path);
    if (why.empty()) why = whyUnfit(path);
    if (!why.empty()) return fail(path, why);
    g_last = std::make_unique<Import>();
    g_last->path = path;
    g_last->importer.SetIOHandler(new RegularFiles); // which it owns
    g_last->scene = g_last->importer.ReadFile(path, aiProcess_Triangulate | aiProcess_GenNormals |
                                                        aiProcess_JoinIdenticalVertices);
    if (g_last->scene && g_last->scene->mRootNode) return g_last->scene;
    return fail(path, g_last->importer.GetErrorString());
}

} // namespace

ModelFile readModel(const std::string& path) {
    return {import(path), path, path.substr(0, path.find_last_of('/') + 1), isGltf(path)};
}

int getNumModelsRead() { return g_read; }

void releaseModels() {
    g_last.reset();
    g_failed.clear();
}

} // namespace ig
