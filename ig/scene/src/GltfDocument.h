// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ig {

/// What a glTF file says of the things whose sizes and numbers the importer would believe, by the
/// format's own names. Where a key stands twice the first counts, as it does for the importer.
struct GltfDocument {
    static constexpr std::uint64_t NONE = UINT64_MAX;
    struct View {
        std::uint64_t buffer = NONE, byteOffset = NONE, byteLength = NONE, byteStride = NONE;
    };
    struct Accessor {
        std::uint64_t bufferView = NONE, byteOffset = NONE, count = NONE, componentType = NONE;
        std::string type;
        bool has_sparse = false;
    };
    struct Primitive {
        std::uint64_t mode = NONE, indices = NONE;
        std::vector<std::pair<std::string, std::uint64_t>> attributes;
    };
    struct Skin {
        std::uint64_t matrices = NONE, joints = 0;
    };
    std::vector<std::string> required;  ///< extensions
    std::vector<std::uint64_t> buffers; ///< their lengths
    std::vector<View> views;
    std::vector<Accessor> accessors;
    std::vector<Primitive> primitives; ///< of all meshes
    std::vector<Skin> skins;
    std::vector<std::uint64_t> images;                ///< views of those that are packed
    std::vector<std::vector<std::uint64_t>> children; ///< of the nodes
    std::vector<std::uint64_t> roots;                 ///< of all scenes
};

/// Reads a document. Why it can't be, when brackets are nested deeper than that, or there are more
/// values than any model has; else "". Whether the text is well formed else is the importer's
/// business.
std::string readGltf(std::string_view text, std::size_t deepest, GltfDocument& document);

} // namespace ig
