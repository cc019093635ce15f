// SPDX-License-Identifier: MIT
#include "WakePass.h"

#include "plugins/ocean/OceanFrame.h"
#include "render/scene/remainders.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace ig {

namespace {

constexpr float NEAR_EDGE = 800, FAR_EDGE = 3600;      ///< m
constexpr float FAR_ALTITUDE = 1500;                   ///< m, above which the far map grows
constexpr int KELVIN_WIDTH = 160, KELVIN_LENGTH = 512; ///< texels
constexpr vec2 KELVIN_EXTENT{7.5f, 20};                ///< to the side and behind, wave lengths
constexpr float REACH = 110;                           ///< m that a wake is long per m/s

constexpr double NEAR_EVERY = 0.08, NEAR_SELDOM = 0.12, FAR_EVERY = 0.5; ///< s between paintings

} // namespace

void WakePass::init(bool quick) {
    m_size = quick ? 384 : 512;
    m_kelvin.start("screen.vert", "kelvin.frag");
    m_wake.start("wake.vert", "hullwave.glsl wake.frag");
    m_hull.start("wake.vert", "hullwave.glsl wake.frag", "HULL");
    m_patch.start("splat.vert", "splat.frag");
    m_empty.create();
    m_buffer.create();
    m_vertex_array.create();
    glBindVertexArray(m_vertex_array.getId());
    glBindBuffer(GL_ARRAY_BUFFER, m_buffer.getId());
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 4, GL_FLOAT, GL_FALSE, sizeof(FoamPatch), nullptr);
    glVertexAttribDivisor(0, 1);
    makeMap(m_near, m_size, quick ? NEAR_SELDOM : NEAR_EVERY, true);
    makeMap(m_far, m_size, FAR_EVERY, false);
}

void WakePass::makeMap(Map& map, int size, double every, bool has_height) {
    gl::TextureFormat format;
    format.filter = GL_LINEAR_MIPMAP_LINEAR;
    gl::makeTexture(map.texture, size, size, format);
    glGenerateMipmap(GL_TEXTURE_2D);
    gl::attach(map.target, map.texture);
    if (has_height) {
        gl::makeTexture(map.height, size, size, {GL_R16F, GL_RED, GL_FLOAT});
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT1, GL_TEXTURE_2D,
                               map.height.getId(), 0);
    }
    map.every = every;
}

// ------------------------------------------------------------------ painting

void WakePass::bakeKelvin() {
    const gl::TextureFormat format{GL_RGBA16F, GL_RGBA, GL_FLOAT, GL_CLAMP_TO_EDGE,
                                   GL_LINEAR_MIPMAP_LINEAR};
    gl::makeTexture(m_kelvin_map, KELVIN_WIDTH, KELVIN_LENGTH, format);
    gl::Framebuffer target;
    gl::attach(target, m_kelvin_map);
    glViewport(0, 0, KELVIN_WIDTH, KELVIN_LENGTH);
    m_kelvin.use();
    m_kelvin.set("uExtent", KELVIN_EXTENT);
    glBindVertexArray(m_empty.getId());
    glDrawArrays(GL_TRIANGLES, 0, 3);
    gl::bindTexture(gl::UNIT_FIRST_OWN, m_kelvin_map);
    glGenerateMipmap(GL_TEXTURE_2D);
}

void WakePass::draw(const FrameView& view, const WakeList& list, const OceanFrame& ocean) {
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    if (!list.wakes.empty() && !m_kelvin_map) bakeKelvin();
    const dvec2 nadir = ocean.toPlane(view.geodetic.x, view.geodetic.y);
    refresh(m_near, list, NEAR_EDGE, nadir, ocean.time);
    const auto altitude = static_cast<float>(view.geodetic.z);
    m_raised = !list.wakes.empty() && // the nearest comes first
               length(vec3(list.wakes[0].hull.x, list.wakes[0].hull.y, altitude)) < NEAR_EDGE;
    // In doublings, so that texels don't crawl while the eye climbs.
    const float high = altitude / FAR_ALTITUDE;
    const float doublings = std::ceil(std::log2(std::clamp(high, 1.0f, 64.0f)));
    refresh(m_far, list, FAR_EDGE * std::exp2(doublings), nadir, ocean.time);
}

void WakePass::forget() {
    for (Map* map : {&m_near, &m_far}) {
        map->empty = false;
        map->painted = -1e9;
    }
}

/// Paints a map anew when it has become old or the eye has left its middle.
void WakePass::refresh(Map& map, const WakeList& list, float edge, dvec2 nadir, double time) {
    const auto update_corner = [&] {
        map.corner = {static_cast<float>(map.place.x - nadir.x),
                      static_cast<float>(map.place.y - nadir.y)};
        map.drift = {};
        if (list.wakes.empty()) return;
        const Wake& nearest = list.wakes.front();
        const float gone = nearest.motion.x * static_cast<float>(time - map.painted);
        map.drift = {nearest.hull.z * gone, nearest.hull.w * gone};
    };
    update_corner();
    const bool empty = list.wakes.empty() && list.patches.empty();
    if (empty && map.empty) return;
    const float off =
        std::max(std::abs(map.corner.x + edge / 2), std::abs(map.corner.y + edge / 2));
    if (!empty && edge == map.edge && off < 0.03f * edge &&
        std::abs(time - map.painted) < map.every)
        return;
    map.edge = edge;
    map.empty = empty;
    map.painted = time;
    // Texels stay on their places in the water, else foam would shimmer as the eye moves.
    const double texel = static_cast<double>(edge) / m_size;
    map.place = {nadir.x - static_cast<double>(edge) / 2, nadir.y - static_cast<double>(edge) / 2};
    map.place = {std::floor(map.place.x / texel) * texel, std::floor(map.place.y / texel) * texel};
    update_corner();
    glBindFramebuffer(GL_FRAMEBUFFER, map.target.getId());
    glViewport(0, 0, m_size, m_size);
    constexpr GLenum BUFFERS[] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1};
    constexpr float LEVEL[] = {LEVEL_WAKE, LEVEL_WAKE, 0, 0}, ZERO[4] = {};
    glDrawBuffers(map.height ? 2 : 1, BUFFERS);
    glClearBufferfv(GL_COLOR, 0, LEVEL);
    if (map.height) glClearBufferfv(GL_COLOR, 1, ZERO);
    if (!list.wakes.empty()) paintWakes(map, list.wakes, nadir);
    glDrawBuffers(1, BUFFERS); // foam raises nothing
    if (!list.patches.empty()) paintPatches(map, list.patches);
    gl::bindTexture(gl::UNIT_FIRST_OWN, map.texture);
    glGenerateMipmap(GL_TEXTURE_2D);
}

void WakePass::paintWakes(const Map& map, const std::vector<Wake>& wakes, dvec2 nadir) {
    vec4 hulls[MOST_WAKES], motions[MOST_WAKES];
    for (std::size_t i = 0; i < wakes.size(); i++) {
        hulls[i] = wakes[i].hull;
        motions[i] = wakes[i].motion;
    }
    const auto count = static_cast<GLsizei>(wakes.size());
    gl::bindTexture(gl::UNIT_FIRST_OWN, m_kelvin_map);
    glBindVertexArray(m_empty.getId());
    for (gl::Program* program : {&m_wake, &m_hull}) { // near the hulls, both go over the first
        program->use();
        program->set("uHull", hulls, count);
        program->set("uMotion", motions, count);
        program->set("uMap", vec4(map.corner.x, map.corner.y, map.edge, REACH));
        program->set("uNadir",
                     vec4(toNoise(nadir.x), toNoise(nadir.y), map.edge / static_cast<float>(m_size),
                          static_cast<float>(count)));
        program->set("uExtent", KELVIN_EXTENT);
        program->set("uKelvin", gl::UNIT_FIRST_OWN);
        glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, count);
    }
}

void WakePass::paintPatches(const Map& map, const std::vector<FoamPatch>& patches) {
    gl::stream(m_vertex_array, m_buffer, std::as_bytes(std::span(patches)));
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    m_patch.use();
    m_patch.set("uMap", vec4(map.corner.x, map.corner.y, map.edge, 0));
    glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, static_cast<GLsizei>(patches.size()));
    glDisable(GL_BLEND);
}

} // namespace ig
