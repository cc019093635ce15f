// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "ig/base/jString.h"

#include <map>

namespace ig {

/// The pictures that surfaces wear, read from their files, or models, when first asked for and kept
/// until the end. One that can't be read is named in the log once and shown as a magenta chequer.
class TextureStore {
public:
    /// Colours are taken as sRGB and become linear; with mip levels, repeated beyond the edges, the
    /// first row of the file at the top (v = 1).
    const gl::Texture& get(const jString& path);

private:
    static void fill(gl::Texture& texture, const jString& path);

    std::map<jString, gl::Texture> m_textures;
};

} // namespace ig
