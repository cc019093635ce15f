// SPDX-License-Identifier: MIT
#include "TextureStore.h"

#include "ig/base/jLog.h"
#include "ig/scene/Mesh.h"
#include "ig/scene/PackedPictures.h"
#include "render/image/ImageFile.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace ig {

namespace {

/// Ground seen at a flat angle stays sharp; more costs, shows little.
constexpr float ANISOTROPY = 4;

/// The software renderer pays for every look at a texel.
bool hasAnisotropy() {
    const auto* device = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    return !std::strstr(device, "llvmpipe") &&
           (epoxy_gl_version() >= 46 ||
            epoxy_has_gl_extension("GL_EXT_texture_filter_anisotropic"));
}

/// What can't be overlooked: four by four fields of magenta and black; of others than colours what
/// changes nothing.
Image makePlaceholder(TextureStore::Use use) {
    if (use == TextureStore::Use::normal) return {1, 1, {128, 128, 255, 255}};
    if (use == TextureStore::Use::values) return {1, 1, {255, 255, 255, 255}};
    Image image{4, 4, {}};
    for (int i = 0; i < 16; i++) {
        const bool bright = (i + i / 4) % 2 == 0;
        for (const int value : {bright ? 255 : 0, 0, bright ? 255 : 0, 255})
            image.rgba.push_back(static_cast<std::uint8_t>(value));
    }
    return image;
}

/// The device's rows run upwards.
void flip(Image& image) {
    const auto row = static_cast<std::ptrdiff_t>(image.width) * 4;
    auto top = image.rgba.begin();
    for (int y = 0; y < image.height / 2; y++)
        std::swap_ranges(top + row * y, top + row * (y + 1), top + row * (image.height - 1 - y));
}

} // namespace

const gl::Texture& TextureStore::get(const jString& path, Use use) {
    gl::Texture& texture = m_textures[static_cast<std::size_t>(use)][path];
    if (!texture) fill(texture, path, use);
    return texture;
}

namespace {
bool read(const jString& path, Image& image) {
    if (path == Mesh::MISSING_PICTURE) return false;
    const std::span<const std::byte> packed = PackedPictures::find(path);
    return packed.empty() ? readImage(path.c_str(), image) : readImage(path.c_str(), packed, image);
}

/// "" when the device can take it beside the `held` bytes that it has.
std::string whyTooLarge(const Image& image, std::uint64_t held) {
    constexpr std::uint64_t MOST = std::uint64_t{2} << 30; // bytes, of all pictures together
    GLint longest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &longest);
    if (std::max(image.width, image.height) > longest)
        return std::to_string(image.width) + " by " + std::to_string(image.height) +
               " pixels are more than the " + std::to_string(longest) +
               " along an edge that the graphics device takes";
    if (held + image.rgba.size() > MOST)
        return "with it all pictures would take more than 2 GiB: make them smaller";
    return {};
}
} // namespace

void TextureStore::fill(gl::Texture& texture, const jString& path, Use use) {
    Image image;
    bool good = read(path, image);
    const std::string why = good ? whyTooLarge(image, m_bytes) : std::string();
    if (!why.empty()) {
        jLog::error("TextureStore::get: \"%s\": %s", path.c_str(), why.c_str());
        good = false;
    }
    if (!good) image = makePlaceholder(use);
    flip(image);
    gl::TextureFormat format{use == Use::color ? GL_SRGB8_ALPHA8 : GL_RGBA8, GL_RGBA,
                             GL_UNSIGNED_BYTE, GL_REPEAT};
    format.filter = good ? GL_LINEAR_MIPMAP_LINEAR : GL_NEAREST;
    gl::makeTexture(texture, image.width, image.height, format, image.rgba.data());
    if (!good) return;
    m_bytes += image.rgba.size() / 3 * 4;
    glGenerateMipmap(GL_TEXTURE_2D);
    if (hasAnisotropy()) glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, ANISOTROPY);
}

} // namespace ig
