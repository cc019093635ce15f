// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

#include <array>
#include <memory>

struct aiMaterial;

namespace ig {

class Material;
struct ModelFile;

/// Where a picture lies on a surface: a set of the file's texture coordinates, moved.
struct PicturePlace {
    int set = 0;
    vec2 offset{0, 0}, scale{1, 1};
    float rotation = 0; ///< rad, as the file format counts it
    /// From a texture coordinate of the file to that of the picture; v runs down the picture.
    vec2 operator()(const vec2& uv) const;
    friend bool operator==(const PicturePlace&, const PicturePlace&) = default;
};

/// What a model's own material says, in the tags of material files, and where its pictures lie, in
/// the order of `Material::PICTURES`. Without material: it says nothing but its name.
struct ModelMaterial {
    std::shared_ptr<const Material> material;
    std::array<PicturePlace, 5> places;
};

/// Pictures that the model carries in itself go to the `PackedPictures`.
ModelMaterial readMaterial(const ModelFile& file, const aiMaterial& source);

} // namespace ig
