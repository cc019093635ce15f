// SPDX-License-Identifier: MIT
#include "UiPass.h"

#include "ViewportPass.h"
#include "ig/ui/Font.h"
#include "ig/ui/UiDrawList.h"
#include "ig/ui/Utf8Text.h"
#include "render/image/ImageFile.h"

#include <cmath>
#include <cstddef>

namespace ig {

void UiPass::init() {
    m_program.start("ui.vert", "ui.frag", {}, {{"uTexture", gl::UNIT_FIRST_OWN}});
    gl::makeTexture(m_atlas_texture, GlyphAtlas::SIZE, GlyphAtlas::SIZE,
                    {GL_R8, GL_RED, GL_UNSIGNED_BYTE});
    m_vertex_array.create();
    m_buffer.create();
    glBindVertexArray(m_vertex_array.getId());
    glBindBuffer(GL_ARRAY_BUFFER, m_buffer.getId());
    glEnableVertexAttribArray(0);
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(0, 4, GL_FLOAT, GL_FALSE, sizeof(Vertex), nullptr);
    glVertexAttribPointer(1, 4, GL_FLOAT, GL_FALSE, sizeof(Vertex),
                          reinterpret_cast<const void*>(offsetof(Vertex, color)));
}

/// A file that can't be read, reported once, shows as a chequered square.
const gl::Texture& UiPass::findImage(std::string_view path) {
    const auto known = m_images.find(path);
    if (known != m_images.end()) return known->second;
    gl::Texture& texture = m_images[std::string(path)];
    Image image;
    if (readImage(std::string(path), image)) {
        gl::makeTexture(texture, image.width, image.height, {}, image.rgba.data());
    } else {
        const std::uint8_t chequers[] = {255, 0, 255, 255, 0,   0, 0,   255,
                                         0,   0, 0,   255, 255, 0, 255, 255};
        gl::TextureFormat format;
        format.filter = GL_NEAREST;
        gl::makeTexture(texture, 2, 2, format, chequers);
    }
    return texture;
}

void UiPass::addQuad(const gl::Texture* image, vec2 low, vec2 high, vec2 texture_low,
                     vec2 texture_high, const vec4& color) {
    if (m_runs.empty() || m_runs.back().image != image)
        m_runs.push_back({image, static_cast<int>(m_vertices.size()), 0});
    const Vertex corners[4] = {{low, texture_low, color},
                               {{high.x, low.y}, {texture_high.x, texture_low.y}, color},
                               {high, texture_high, color},
                               {{low.x, high.y}, {texture_low.x, texture_high.y}, color}};
    for (const int i : {0, 1, 2, 0, 2, 3})
        m_vertices.push_back(corners[i]);
    m_runs.back().count += 6;
}

/// Characters stand on whole pixels, so that they stay sharp.
void UiPass::addText(float x, float y, float size, const vec4& color, std::string_view utf8) {
    const int em = Font::getEm(size);
    float pen = std::round(x);
    const float line = std::round(y + Font::get().getAscent(em));
    for (std::size_t i = 0; i < utf8.size();) {
        const Glyph* glyph = m_atlas.find(utf8_text::decode(utf8, i), em);
        if (!glyph) continue;
        const float left = std::round(pen) + static_cast<float>(glyph->left);
        const float top = line - static_cast<float>(glyph->top);
        addQuad(nullptr, {left, top},
                {left + static_cast<float>(glyph->width), top + static_cast<float>(glyph->height)},
                glyph->low, glyph->high, color);
        pen += glyph->advance;
    }
}

/// With the characters that are new.
void UiPass::bindAtlas() {
    gl::bindTexture(gl::UNIT_FIRST_OWN, m_atlas_texture);
    int first = 0, end = 0;
    if (!m_atlas.takeChanges(first, end)) return;
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, first, GlyphAtlas::SIZE, end - first, GL_RED,
                    GL_UNSIGNED_BYTE, m_atlas.getRow(first));
}

void UiPass::gather(const UiDrawList* list, const ViewportPass& viewports) {
    m_vertices.clear();
    m_runs.clear();
    if (!list) return;
    for (const UiDrawList::Command& c : list->getCommands()) {
        const vec2 low{c.x, c.y}, high{c.x + c.w, c.y + c.h}, solid = m_atlas.getSolid();
        switch (c.kind) {
        case UiDrawList::Kind::rect:
            addQuad(nullptr, low, high, solid, solid, c.rgba);
            break;
        case UiDrawList::Kind::text:
            addText(c.x, c.y, c.h, c.rgba, list->text(c));
            break;
        case UiDrawList::Kind::image:
            addQuad(&findImage(list->text(c)), low, high, {0, 0}, {1, 1}, c.rgba);
            break;
        case UiDrawList::Kind::viewport: // a rendered picture's rows come from the bottom
            if (const gl::Texture* picture = viewports.find(c.viewport))
                addQuad(picture, low, high, {0, 1}, {1, 0}, c.rgba);
            else
                addQuad(nullptr, low, high, solid, solid, {0, 0, 0, 1});
            break;
        }
    }
}

void UiPass::draw(int width, int height) {
    if (m_vertices.empty()) return;
    m_program.use();
    m_program.set("uSize", vec2{static_cast<float>(width), static_cast<float>(height)});
    gl::stream(m_vertex_array, m_buffer, std::as_bytes(std::span(m_vertices)));
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    for (const Run& run : m_runs) {
        if (run.image)
            gl::bindTexture(gl::UNIT_FIRST_OWN, *run.image);
        else
            bindAtlas();
        m_program.set("uIsText", run.image ? 0 : 1);
        glDrawArrays(GL_TRIANGLES, run.first, run.count);
    }
    glDisable(GL_BLEND);
}

} // namespace ig
