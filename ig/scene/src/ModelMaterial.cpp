// SPDX-License-Identifier: MIT
#include "ModelMaterial.h"

#include "ModelFile.h"
#include "ig/scene/Material.h"
#include "ig/scene/PackedPictures.h"
#include "program/InputFile.h"

#include <assimp/GltfMaterial.h>
#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

namespace ig {

// glTF 2.0, KHR_texture_transform: scaled, then turned about the origin against the clock (v runs
// down), then moved.
vec2 PicturePlace::operator()(const vec2& uv) const {
    const float c = std::cos(rotation), s = std::sin(rotation);
    const float u = uv.x * scale.x, v = uv.y * scale.y;
    return {c * u + s * v + offset.x, c * v - s * u + offset.y};
}

namespace {

// ------------------------------------------------------------------ pictures

bool isThere(const std::string& path) { return program::whyUnreadable(path).empty(); }

/// "%20" and the like become what they stand for.
std::string decodePercent(const std::string& text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); i++) {
        const std::string digits = text.substr(i, 3).erase(0, 1);
        char* end = nullptr;
        const long value = std::strtol(digits.c_str(), &end, 16);
        const bool is_code = text[i] == '%' && digits.size() == 2 && !*end && value > 0;
        decoded += is_code ? static_cast<char>(value) : text[i];
        if (is_code) i += 2;
    }
    return decoded;
}

/// A picture that stands beside the model. Exporters write names as addresses, with the slashes of
/// another system, or with a path on the machine that they ran on: then one of that name beside the
/// model counts. One that is nowhere is missed where it is looked for.
std::string findPicture(const std::string& folder, const std::string& name) {
    if (isThere(folder + name)) return folder + name;
    std::string plain = decodePercent(name);
    std::ranges::replace(plain, '\\', '/');
    if (isThere(folder + plain)) return folder + plain;
    const std::string beside = folder + plain.substr(plain.find_last_of('/') + 1);
    return isThere(beside) ? beside : folder + name;
}

/// Path of a picture, or the name that a packed one gets; empty when the material has none.
std::string readPicture(const ModelFile& file, const aiMaterial& source, aiTextureType type) {
    aiString name;
    if (source.GetTexture(type, 0, &name) != aiReturn_SUCCESS || name.length == 0) return {};
    const aiTexture* packed = file.scene->GetEmbeddedTexture(name.C_Str());
    if (!packed) return findPicture(file.folder, name.C_Str());
    if (packed->mHeight != 0) return {}; // pixels, which no file of the kinds that are read has
    const std::string key = file.path + name.C_Str();
    PackedPictures::add(
        jString(key.c_str()),
        std::as_bytes(std::span(reinterpret_cast<const char*>(packed->pcData), packed->mWidth)));
    return key;
}

/// The importer turns about the picture's middle, with v up; back to what the file says.
PicturePlace readPlace(const aiMaterial& source, aiTextureType type) {
    PicturePlace place;
    source.Get(AI_MATKEY_UVWSRC(type, 0), place.set);
    aiUVTransform moved;
    if (source.Get(AI_MATKEY_UVTRANSFORM(type, 0), moved) != aiReturn_SUCCESS) return place;
    place.scale = {moved.mScaling.x, moved.mScaling.y};
    place.rotation = -moved.mRotation;
    const float c = std::cos(place.rotation), s = std::sin(place.rotation);
    place.offset.x = moved.mTranslation.x - 0.5f * place.scale.x * (1 - c + s);
    place.offset.y = 0.5f * place.scale.y * (s + c - 1) + 1 - place.scale.y - moved.mTranslation.y;
    return place;
}

// ------------------------------------------------------------------ values

template <class T>
T read(const aiMaterial& source, const char* key, unsigned type, unsigned index, T otherwise) {
    source.Get(key, type, index, otherwise);
    return otherwise;
}

void addColor(Material& to, const char* tag, const aiColor4D& color) {
    to.addValue(tag, {color.r, color.g, color.b, color.a});
}

/// glTF's metallic-roughness model. Files that only name their materials get the format's defaults
/// from the importer, as white metal: such a material says nothing.
void readGltf(const aiMaterial& source, bool has_pictures, Material& to) {
    const aiColor4D white(1, 1, 1, 1);
    aiColor4D color = read(source, AI_MATKEY_BASE_COLOR, white);
    const float metal = read(source, AI_MATKEY_METALLIC_FACTOR, 1.0f);
    const float rough = read(source, AI_MATKEY_ROUGHNESS_FACTOR, 1.0f);
    const aiString mode = read(source, AI_MATKEY_GLTF_ALPHAMODE, aiString("OPAQUE"));
    if (mode == aiString("MASK")) {
        const float cutoff = read(source, AI_MATKEY_GLTF_ALPHACUTOFF, 0.5f);
        to.addSlider("alpha_cutoff", std::clamp(cutoff / std::max(color.a, 1e-3f), 0.001f, 1.0f));
    } else if (mode == aiString("BLEND")) {
        to.addSlider("blend", 1);
    }
    if (mode != aiString("BLEND")) color.a = 1;
    if (has_pictures || color != white || metal < 1 || rough < 1) {
        addColor(to, "diffuse_color", color);
        to.addSlider("metalness", std::clamp(metal, 0.0f, 1.0f));
        to.addSlider("roughness", std::clamp(rough, 0.0f, 1.0f));
    }
}

/// What an OBJ file's material library says; the importer's own grey says nothing.
void readMtl(const aiMaterial& source, bool has_pictures, Material& to) {
    const aiColor3D grey(0.6f, 0.6f, 0.6f), black(0, 0, 0), white(1, 1, 1);
    aiColor3D color = read(source, AI_MATKEY_COLOR_DIFFUSE, grey);
    const bool said = color != grey;
    // Exporters leave black, or nothing, where a picture gives the colour.
    if (has_pictures && (!said || color == black)) color = white;
    const float opacity = read(source, AI_MATKEY_OPACITY, 1.0f);
    if (said || has_pictures || opacity < 1)
        addColor(to, "diffuse_color", {color.r, color.g, color.b, opacity});
    float value = read(source, AI_MATKEY_METALLIC_FACTOR, -1.0f);
    if (value >= 0) to.addSlider("metalness", std::min(value, 1.0f));
    value = read(source, AI_MATKEY_ROUGHNESS_FACTOR, -1.0f);
    const float exponent = read(source, AI_MATKEY_SHININESS, 0.0f);
    // Blinn's exponent and the width of the microfacets' lobe: 2 / width² − 2.
    if (value < 0 && exponent > 0) value = std::pow(2 / (exponent + 2), 0.25f);
    if (value >= 0) to.addSlider("roughness", std::min(value, 1.0f));
}

} // namespace

ModelMaterial readMaterial(const ModelFile& file, const aiMaterial& source) {
    const bool is_gltf = file.y_up;
    const std::array<aiTextureType, 5> types{
        is_gltf ? aiTextureType_BASE_COLOR : aiTextureType_DIFFUSE, aiTextureType_NORMALS,
        aiTextureType_UNKNOWN, aiTextureType_EMISSIVE, aiTextureType_LIGHTMAP};
    ModelMaterial result;
    auto material = std::make_shared<Material>();
    bool has_pictures = false;
    for (std::size_t i = 0; i < types.size(); i++) {
        const std::string path = readPicture(file, source, types[i]);
        if (path.empty()) continue;
        has_pictures = true;
        material->setTexture(Material::PICTURES[i], jString(path.c_str()));
        result.places[i] = readPlace(source, types[i]);
    }
    is_gltf ? readGltf(source, has_pictures, *material) : readMtl(source, has_pictures, *material);
    const aiColor3D glow = read(source, AI_MATKEY_COLOR_EMISSIVE, aiColor3D(0, 0, 0));
    if (!glow.IsBlack()) addColor(*material, "emissive_color", {glow.r, glow.g, glow.b, 1});
    const float scale = read(source, AI_MATKEY_GLTF_TEXTURE_SCALE(aiTextureType_NORMALS, 0), 1.0f);
    if (scale != 1) material->addSlider("normal_scale", scale);
    const float strength =
        read(source, AI_MATKEY_GLTF_TEXTURE_STRENGTH(aiTextureType_LIGHTMAP, 0), 1.0f);
    if (strength != 1) material->addSlider("occlusion_strength", std::clamp(strength, 0.0f, 1.0f));
    if (read(source, AI_MATKEY_TWOSIDED, 0) != 0) material->addSlider("two_sided", 1);
    if (material->getNumParameters() > 0 || has_pictures) result.material = std::move(material);
    return result;
}

} // namespace ig
