// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "ig/base/jString.h"

#include <map>

namespace ig {

/// The pictures that surfaces wear, read from their files, or models, when first asked for and kept
/// until the end. One that can't be read is named in the log once and shown as a magenta chequer;
/// one that isn't of colours counts as if it weren't there.
class TextureStore {
public:
    /// What the pixels are: colours, which are sRGB and become linear, directions, or values.
    enum class Use { color, normal, values };
    /// With mip levels, repeated beyond the edges, the first row of the file at the top (v = 1).
    const gl::Texture& get(const jString& path, Use use = Use::color);

private:
    void fill(gl::Texture& texture, const jString& path, Use use);

    std::map<jString, gl::Texture> m_textures[3]; ///< by use
    std::uint64_t m_bytes = 0;                    ///< on the device, mip levels too
};

} // namespace ig
