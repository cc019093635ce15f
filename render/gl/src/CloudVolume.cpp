// SPDX-License-Identifier: MIT
#include "CloudVolume.h"

#include "render/scene/ShaderConstants.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr int TURNS = 8; ///< pictures whose steps begin at places of their own
/// Fewest steps of a ray: where pictures before help, and without them.
constexpr float STEPS = 24, STEPS_ALONE = 40;
constexpr float LEAST_NEW = 0.1f; ///< share of the new picture, standing still
constexpr float JUMP = 300;       ///< m from one picture to the next: no flight
constexpr int OTHER_EDGE = 8;     ///< pixels, until a viewport asks for more
constexpr int UNIT_DEPTH = gl::UNIT_FIRST_OWN, UNIT_PICTURE = gl::UNIT_FIRST_OWN + 1,
              UNIT_REACH = gl::UNIT_FIRST_OWN + 2, UNIT_BEFORE = gl::UNIT_FIRST_OWN + 3;

} // namespace

void CloudVolume::init() {
    m_march.start("screen.vert", "cloudspan.glsl cloudvolume.frag", {}, {{"uDepth", UNIT_DEPTH}});
    m_mend.start("screen.vert", "cloudspan.glsl cloudresolve.frag", {},
                 {{"uMarched", UNIT_PICTURE}, {"uReach", UNIT_REACH}, {"uBefore", UNIT_BEFORE}});
    std::vector<gl::Sampler> samplers = getSamplers();
    samplers.push_back({"uDepth", UNIT_DEPTH});
    m_blend.start("screen.vert", "cloudspan.glsl cloudblend.frag", {}, std::move(samplers));
    m_empty.create();
    for (Layers* layers : {&m_main, &m_other}) {
        make(*layers, OTHER_EDGE, OTHER_EDGE);
        gl::attach(layers->march_target, layers->marched);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT1, GL_TEXTURE_2D,
                               layers->reach.getId(), 0);
        constexpr GLenum BOTH[] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1};
        glDrawBuffers(2, BOTH);
        for (int i = 0; i < 2; i++)
            gl::attach(layers->mended_targets[i], layers->mended[i]);
    }
}

std::vector<gl::Sampler> CloudVolume::getSamplers() {
    return {{"uClouds", UNIT_PICTURE}, {"uReach", UNIT_REACH}};
}

void CloudVolume::forget() { m_before = {}; }

void CloudVolume::make(Layers& layers, int width, int height) {
    layers.width = width;
    layers.height = height;
    const gl::TextureFormat light{GL_RGBA16F, GL_RGBA, GL_FLOAT};
    gl::TextureFormat range{GL_RG32F, GL_RG, GL_FLOAT};
    range.filter = GL_NEAREST;
    gl::makeTexture(layers.marched, width, height, light);
    gl::makeTexture(layers.reach, width, height, range);
    for (gl::Texture& mended : layers.mended)
        gl::makeTexture(mended, width, height, light);
}

// ------------------------------------------------------------------ a frame

void CloudVolume::march(const FrameView& view, const Targets& canvas, const Sight& sight) {
    m_drawn = nullptr;
    if (!sight.is_shown) {
        if (sight.is_main) forget();
        return;
    }
    Layers& layers = sight.is_main ? m_main : m_other;
    const int width = (canvas.getSceneWidth() + 1) / 2, height = (canvas.getSceneHeight() + 1) / 2;
    if (layers.width != width || layers.height != height) {
        make(layers, width, height);
        if (sight.is_main) forget();
    }
    glDisable(GL_DEPTH_TEST);
    glViewport(0, 0, width, height);
    glBindVertexArray(m_empty.getId());
    glBindFramebuffer(GL_FRAMEBUFFER, layers.march_target.getId());
    m_march.use();
    gl::bindTexture(UNIT_DEPTH, canvas.depth);
    m_march.set("uRay", view.getRay());
    m_march.set("uNearFar", vec2(static_cast<float>(view.near), static_cast<float>(view.far)));
    const float turn = sight.is_main ? static_cast<float>(m_before.pictures % TURNS) : 0;
    m_march.set("uSteps", vec2(sight.is_main ? STEPS : STEPS_ALONE, turn));
    glDrawArrays(GL_TRIANGLES, 0, 3);
    mend(view, sight);
    m_drawn = &layers;
    glBindFramebuffer(GL_FRAMEBUFFER, canvas.scene_target.getId());
    glViewport(0, 0, canvas.getSceneWidth(), canvas.getSceneHeight());
    glEnable(GL_DEPTH_TEST);
}

/// Viewports, whose pictures are seldom, go through it without one before.
void CloudVolume::mend(const FrameView& view, const Sight& sight) {
    Layers& layers = sight.is_main ? m_main : m_other;
    const gl::Texture& before = layers.mended[layers.shown];
    layers.shown = 1 - layers.shown;
    glBindFramebuffer(GL_FRAMEBUFFER, layers.mended_targets[layers.shown].getId());
    m_mend.use();
    gl::bindTexture(UNIT_PICTURE, layers.marched);
    gl::bindTexture(UNIT_REACH, layers.reach);
    gl::bindTexture(UNIT_BEFORE, before);
    m_mend.set("uRay", view.getRay());
    m_mend.set("uThen", m_before.to_clip, 3);
    m_mend.set("uMotion", sight.is_main ? findMotion(sight) : vec4());
    glDrawArrays(GL_TRIANGLES, 0, 3);
    if (!sight.is_main) return;

    const auto& p = view.projection.columns;
    const auto& v = view.view.columns;
    const auto row = [&v](const vec3& of_eye) {
        return vec4(dot(of_eye, v[0].xyz()), dot(of_eye, v[1].xyz()), dot(of_eye, v[2].xyz()), 0);
    };
    m_before = {m_before.pictures + 1,
                sight,
                {row({p[0].x, p[1].x, p[2].x}), row({p[0].y, p[1].y, p[2].y}), row({0, 0, -1})}};
}

/// By the field, which is what one sees: the eye's own motion and the drift in one.
vec4 CloudVolume::findMotion(const Sight& sight) const {
    const auto along = [](float from, float to) {
        return (to - from - std::round(to - from)) * CLOUD_PERIOD;
    };
    const Sight& then = m_before.sight;
    const vec3 motion(along(then.place.x, sight.place.x), along(then.place.y, sight.place.y),
                      sight.altitude - then.altitude);
    if (m_before.pictures == 0 || dot(motion, motion) > JUMP * JUMP) return {};
    const float next = 1 / static_cast<float>(m_before.pictures + 1);
    return {motion, 1 - std::max(next, LEAST_NEW)};
}

void CloudVolume::bind(gl::Program& program) const {
    program.set("uShown", m_drawn ? 1.0f : 0.0f);
    if (!m_drawn) return;
    gl::bindTexture(UNIT_PICTURE, m_drawn->mended[m_drawn->shown]);
    gl::bindTexture(UNIT_REACH, m_drawn->reach);
}

void CloudVolume::blend(const FrameView& view, const Targets& canvas) {
    if (!m_drawn) return;
    glBindFramebuffer(GL_FRAMEBUFFER, canvas.light_target.getId()); // without the depth it reads
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    m_blend.use();
    bind(m_blend);
    gl::bindTexture(UNIT_DEPTH, canvas.depth);
    m_blend.set("uRay", view.getRay());
    m_blend.set("uNearFar", vec2(static_cast<float>(view.near), static_cast<float>(view.far)));
    glBindVertexArray(m_empty.getId());
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glDisable(GL_BLEND);
    glEnable(GL_DEPTH_TEST);
    glBindFramebuffer(GL_FRAMEBUFFER, canvas.scene_target.getId());
}

} // namespace ig
