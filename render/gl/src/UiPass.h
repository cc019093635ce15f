// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/GlyphAtlas.h"

#include <map>
#include <string>

namespace ig {

class UiDrawList;
class ViewportPass;

/// Draws the user interface over the finished picture. Rectangles and texts between two images go
/// in one call.
class UiPass {
public:
    void init();
    /// Takes what to draw; null: nothing.
    void gather(const UiDrawList* list, const ViewportPass& viewports);
    /// Onto the bound framebuffer of that size, what was gathered last.
    void draw(int width, int height);

private:
    struct Vertex {
        vec2 place, texture;
        vec4 color;
    };
    struct Run {                  ///< of vertices with one texture
        const gl::Texture* image; ///< null: the atlas
        int first, count;
    };
    void addQuad(const gl::Texture* image, vec2 low, vec2 high, vec2 texture_low, vec2 texture_high,
                 const vec4& color);
    void addText(float x, float y, float size, const vec4& color, std::string_view utf8);
    void bindAtlas();
    const gl::Texture& findImage(std::string_view path);

    gl::Program m_program;
    gl::VertexArray m_vertex_array;
    gl::Buffer m_buffer;
    GlyphAtlas m_atlas;
    gl::Texture m_atlas_texture;
    std::map<std::string, gl::Texture, std::less<>> m_images;
    std::vector<Vertex> m_vertices;
    std::vector<Run> m_runs;
};

} // namespace ig
