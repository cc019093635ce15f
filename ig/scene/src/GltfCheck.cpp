// SPDX-License-Identifier: MIT
#include "GltfCheck.h"

#include "GltfDocument.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <utility>
#include <vector>

namespace ig {

namespace {

constexpr std::size_t DEEPEST = 500;   ///< brackets, nodes below nodes
constexpr double MOST_NODES = 100'000; ///< copies included; the importer takes 2 kB for each
// As much as a mesh may have; the importer copies what primitives share.
constexpr std::uint64_t MOST_VERTICES = std::uint64_t{1} << 24,
                        MOST_INDICES = std::uint64_t{1} << 26,
                        MOST_BYTES = std::uint64_t{1} << 30, ///< of the file, buffers, pictures
    MOST_TEXT = std::uint64_t{1} << 28;                      ///< with what is packed into it

constexpr std::uint64_t FLOAT = 5126;

/// A number that is not given is 0.
std::uint64_t orZero(std::uint64_t number) { return number == GltfDocument::NONE ? 0 : number; }

/// The text of a glTF file, of a binary one its first chunk. "", with `why`, when there is less of
/// it than it says.
std::string readText(const std::string& path, std::string& why) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    std::uint64_t begin = 0, size = file ? static_cast<std::uint64_t>(file.tellg()) : 0;
    if (size > MOST_BYTES) {
        why = "a file of more than 1 GiB is not read: export it in parts";
        return {};
    }
    char head[20] = {};
    if (size >= sizeof head) {
        file.seekg(0);
        file.read(head, sizeof head);
    }
    if (std::memcmp(head, "glTF", 4) == 0) {
        std::uint32_t whole = 0, length = 0;
        std::memcpy(&whole, head + 8, sizeof whole);
        std::memcpy(&length, head + 12, sizeof length);
        begin = sizeof head;
        if (whole > size || length > size - begin) {
            why = "the file is cut off: " + std::to_string(size) + " bytes of " +
                  std::to_string(std::max<std::uint64_t>(whole, length + begin));
            return {};
        }
        size = length;
    }
    if (size > MOST_TEXT) {
        why = "a text of more than 256 MiB is not read: export it as .glb";
        return {};
    }
    std::string text(size, '\0');
    file.seekg(static_cast<std::streamoff>(begin));
    file.read(text.data(), static_cast<std::streamsize>(size));
    return text;
}

/// Depth and size of each node's tree, children before parents, without recursion.
std::string whyUnfitTree(const GltfDocument& document) {
    const auto& children = document.children;
    enum class State { fresh, open, done };
    std::vector<State> states(children.size(), State::fresh);
    std::vector<std::size_t> depth(children.size(), 1);
    std::vector<double> total(children.size(), 1);
    std::vector<std::pair<std::size_t, std::size_t>> open; // node, next of its children
    for (std::size_t root = 0; root < children.size(); root++) {
        if (states[root] == State::fresh) open.emplace_back(root, 0);
        while (!open.empty()) {
            auto& [node, next] = open.back();
            states[node] = State::open;
            if (next < children[node].size()) {
                const std::uint64_t child = children[node][next++];
                if (child >= children.size()) continue;
                if (states[child] == State::open)
                    return "node " + std::to_string(child) + " is below itself";
                if (states[child] == State::fresh) open.emplace_back(child, 0);
                continue;
            }
            for (const std::uint64_t child : children[node]) {
                if (child >= children.size()) continue;
                depth[node] = std::max(depth[node], depth[child] + 1);
                total[node] += total[child];
            }
            if (depth[node] > DEEPEST)
                return "nodes below nodes are nested more than " + std::to_string(DEEPEST) +
                       " deep";
            states[node] = State::done;
            open.pop_back();
        }
    }
    double all = 0;
    for (const std::uint64_t root : document.roots)
        if (root < total.size()) all += total[root];
    return all > MOST_NODES ? "it has more than 100000 nodes, those that are shared counted each "
                              "time: export fewer, or in parts"
                            : "";
}

// ------------------------------------------------------------------ what is needed to read it

std::string whyUnfitExtensions(const GltfDocument& document) {
    constexpr std::string_view KNOWN[] = {"KHR_texture_transform", "KHR_lights_punctual",
                                          "KHR_materials_unlit"};
    for (const std::string& name : document.required) {
        if (std::ranges::find(KNOWN, name) != std::end(KNOWN)) continue;
        const auto has = [&](const char* part) { return name.find(part) != std::string::npos; };
        const char* remedy = "export it without";
        if (has("compression") || has("quantization"))
            remedy = "export it without compression";
        else if (has("texture_"))
            remedy = "export its pictures as PNG or JPEG";
        else if (has("pbrSpecularGlossiness"))
            remedy = "export its materials as metallic-roughness";
        else if (has("KHR_materials_")) // finer points of a material
            continue;
        return "the file needs the extension \"" + name + "\", which is not read: " + remedy;
    }
    return {};
}

// ------------------------------------------------------------------ ranges

std::uint64_t sizeOf(const GltfDocument::Accessor& accessor) {
    constexpr std::pair<std::string_view, std::uint64_t> KINDS[] = {
        {"SCALAR", 1}, {"VEC2", 2}, {"VEC3", 3}, {"VEC4", 4},
        {"MAT2", 4},   {"MAT3", 9}, {"MAT4", 16}};
    constexpr std::uint64_t BYTES[] = {1, 1, 2, 2, 0, 4, 4}; // by the component's type, from 5120
    const auto* const kind =
        std::ranges::find(KINDS, accessor.type, &std::pair<std::string_view, std::uint64_t>::first);
    const std::uint64_t type = accessor.componentType - 5120;
    return kind == std::end(KINDS) || type >= std::size(BYTES) ? 0 : kind->second * BYTES[type];
}

/// Numbers are at most 2^53, so that sums of them stay what they are.
std::string whyUnfitRanges(const GltfDocument& document) {
    std::uint64_t bytes = 0;
    for (const std::uint64_t length : document.buffers)
        bytes += orZero(length);
    for (const GltfDocument::View& view : document.views)
        if (view.buffer >= document.buffers.size() ||
            orZero(view.byteOffset) + orZero(view.byteLength) >
                orZero(document.buffers[view.buffer]))
            return "damaged: buffer view " + std::to_string(&view - document.views.data()) +
                   " reaches beyond its buffer";
    for (const std::uint64_t image : document.images)
        bytes += image < document.views.size() ? orZero(document.views[image].byteLength) : 0;
    if (bytes > MOST_BYTES)
        return "its buffers and pictures are more than 1 GiB: export it in parts";
    for (const GltfDocument::Accessor& accessor : document.accessors) {
        const std::string name =
            "accessor " + std::to_string(&accessor - document.accessors.data());
        if (accessor.has_sparse)
            return name + " is sparse, which is not read: export without shape keys";
        if (accessor.bufferView == GltfDocument::NONE) continue; // which the importer refuses
        const std::uint64_t size = sizeOf(accessor), count = orZero(accessor.count);
        if (size == 0) return "damaged: " + name + " is of no known type";
        if (accessor.bufferView >= document.views.size())
            return "damaged: " + name + " has no buffer view";
        const GltfDocument::View& view = document.views[accessor.bufferView];
        const std::uint64_t stride = orZero(view.byteStride) > 0 ? orZero(view.byteStride) : size;
        if (stride < size || stride > 252 || count > MOST_BYTES ||
            orZero(accessor.byteOffset) + (std::max<std::uint64_t>(count, 1) - 1) * stride + size >
                orZero(view.byteLength))
            return "damaged: " + name + " reaches beyond its buffer view";
    }
    return {};
}

// ------------------------------------------------------------------ triangles

std::string whyUnfit(const GltfDocument& document, const GltfDocument::Primitive& primitive) {
    constexpr std::uint64_t LINE_LOOP = 2, TRIANGLE_STRIP = 5;
    for (const auto& [name, number] : primitive.attributes) {
        if (number >= document.accessors.size()) return "damaged: there is no such " + name;
        const GltfDocument::Accessor& accessor = document.accessors[number];
        const bool is_place = name.starts_with("TEXCOORD");
        if ((is_place || name == "POSITION" || name == "NORMAL" || name == "TANGENT") &&
            accessor.componentType != FLOAT)
            return name + " in whole numbers is not read: export it as floats";
        if (accessor.type != (is_place ? "VEC2" : "VEC3") &&
            (is_place || name == "POSITION" || name == "NORMAL"))
            return "damaged: " + name + " is " + accessor.type;
    }
    const std::uint64_t mode = primitive.mode;
    if (mode == LINE_LOOP) return "loops of lines are not read: export triangles alone";
    if (primitive.indices == GltfDocument::NONE) return {};
    if (primitive.indices >= document.accessors.size())
        return "damaged: a primitive's indices don't exist";
    const GltfDocument::Accessor& indices = document.accessors[primitive.indices];
    if (indices.type != "SCALAR" || indices.componentType == FLOAT)
        return "damaged: a primitive's indices are none";
    if (mode != GltfDocument::NONE && mode >= TRIANGLE_STRIP && orZero(indices.count) < 3)
        return "damaged: a strip of less than a triangle";
    return {};
}

std::string whyUnfitTriangles(const GltfDocument& document) {
    std::uint64_t vertices = 0, indices = 0;
    for (const GltfDocument::Primitive& primitive : document.primitives) {
        const std::string why = whyUnfit(document, primitive);
        if (!why.empty()) return why;
        for (const auto& [name, number] : primitive.attributes)
            if (name == "POSITION") vertices += orZero(document.accessors[number].count);
        if (primitive.indices != GltfDocument::NONE)
            indices += orZero(document.accessors[primitive.indices].count);
    }
    if (vertices > MOST_VERTICES || indices > MOST_INDICES)
        return "it has " + std::to_string(vertices) + " vertices and " + std::to_string(indices) +
               " corners of triangles, more than 2^24 and 2^26: export fewer, or in parts";
    for (const GltfDocument::Skin& skin : document.skins)
        if (skin.matrices >= document.accessors.size() ||
            document.accessors[skin.matrices].type != "MAT4" ||
            orZero(document.accessors[skin.matrices].count) < skin.joints)
            return "a skin has no matrices for its joints: export without armatures";
    return {};
}

} // namespace

std::string whyUnfitGltf(const std::string& path) {
    std::string why;
    const std::string text = readText(path, why);
    GltfDocument document;
    if (why.empty()) why = readGltf(text, DEEPEST, document);
    for (const auto check : {whyUnfitTree, whyUnfitExtensions, whyUnfitRanges, whyUnfitTriangles})
        if (why.empty()) why = check(document);
    return why;
}

} // namespace ig
