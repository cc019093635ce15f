// SPDX-License-Identifier: MIT
#include "GlassPass.h"

#include "MeshPass.h"
#include "Targets.h"
#include "ig/app/Renderer.h"
#include "render/scene/Patterns.h"

#include <algorithm>
#include <type_traits>

namespace ig {

namespace {
constexpr gl::TextureFormat SECTORS{GL_RG8, GL_RG, GL_UNSIGNED_BYTE, GL_REPEAT, GL_NEAREST};
} // namespace

void GlassPass::init() {
    m_shrink.start("screen.vert", "glass_behind.frag", {},
                   {{"uPicture", gl::UNIT_FIRST_OWN}, {"uDepth", gl::UNIT_FIRST_OWN + 1}});
    m_empty.create();
    const Pattern drops = makeDropPattern();
    gl::TextureFormat format{GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, GL_REPEAT};
    format.filter = GL_LINEAR_MIPMAP_NEAREST;
    gl::makeTexture(m_drops, drops.edge, drops.edge, format, drops.texels.data());
    glGenerateMipmap(GL_TEXTURE_2D);
    gl::makeTexture(m_sectors, GlassFilm::BINS, MOST_BLADES, SECTORS, m_film.getTexels().data());
    gl::makeTexture(m_behind, WIDTH, HEIGHT, {GL_RGBA16F, GL_RGBA, GL_FLOAT});
    gl::attach(m_behind_target, m_behind);
}

void GlassPass::update(const SceneList& list, const FrameView& view, const FrameInfo& frame) {
    m_film.update(list.blades, view, frame);
    m_changed = true;
}

bool GlassPass::isSnowy(const FrameInfo& frame) const { return frame.snow > 0 || m_film.hasSnow(); }

void GlassPass::draw(MeshPass& meshes, const SceneList& list, const FrameView& view,
                     const Targets& canvas, bool is_main) {
    m_is_main = is_main;
    const auto covered = [](const MeshItem& pane) { return pane.cover != PaneCover::nothing; };
    if (std::any_of(list.panes.begin(), list.panes.end(), covered)) {
        shrink(view, canvas);
        gl::bindTexture(gl::UNIT_FIRST_OWN, m_drops);
        gl::bindTexture(gl::UNIT_FIRST_OWN + 1, m_behind);
        gl::bindTexture(gl::UNIT_FIRST_OWN + 2, m_sectors);
        if (m_changed)
            glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, GlassFilm::BINS, MOST_BLADES, SECTORS.format,
                            SECTORS.type, m_film.getTexels().data());
        m_changed = false;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, canvas.scene_target.getId());
    meshes.drawPanes(*this);
}

void GlassPass::shrink(const FrameView& view, const Targets& canvas) {
    glDisable(GL_DEPTH_TEST);
    glBindFramebuffer(GL_FRAMEBUFFER, m_behind_target.getId());
    glViewport(0, 0, WIDTH, HEIGHT);
    glBindVertexArray(m_empty.getId());
    m_shrink.use();
    m_shrink.set("uTexel", vec2{1.0f / WIDTH, 1.0f / HEIGHT});
    const bool readable = gl::hasClipControl() && !view.orthographic;
    m_shrink.set("uNear", vec3(static_cast<float>(view.near), static_cast<float>(view.far),
                               readable ? 1.0f : 0.0f));
    gl::bindTexture(gl::UNIT_FIRST_OWN, canvas.light);
    gl::bindTexture(gl::UNIT_FIRST_OWN + 1, canvas.depth);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glViewport(0, 0, canvas.getSceneWidth(), canvas.getSceneHeight());
    glEnable(GL_DEPTH_TEST);
}

void GlassPass::bind(gl::Program& program) const {
    program.set("uDrops", gl::UNIT_FIRST_OWN);
    program.set("uBehind", gl::UNIT_FIRST_OWN + 1);
    program.set("uSectors", gl::UNIT_FIRST_OWN + 2);
    program.set("uFlow", m_film.getFlow());
    program.set("uStream", m_film.getAir());
    static constexpr std::remove_cvref_t<decltype(m_film.getPlaces())> NO_BLADES{};
    const auto& blades = m_is_main ? m_film.getPlaces() : NO_BLADES;
    program.set("uBlades", blades.data(), static_cast<int>(blades.size()));
}

} // namespace ig
