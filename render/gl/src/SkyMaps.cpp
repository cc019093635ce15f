// SPDX-License-Identifier: MIT
#include "SkyMaps.h"

#include "ig/math/quat.h"
#include "render/scene/ShaderConstants.h"
#include "render/scene/SkyLight.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace ig {

namespace {

constexpr int SCATTER_SIZE = 128; ///< texels; scattering without its phase functions is smooth
/// A bake's steps: stripes of scattering and of the maps, one for the maps' levels, and one for
/// what the processor wants of them.
constexpr int SCATTER_STRIPES = 4, MAP_STRIPES = 4, LEVELS_STEP = SCATTER_STRIPES + MAP_STRIPES,
              STEPS = LEVELS_STEP + 2;
constexpr float NEAR_CLOUDS = 300; ///< m: clouds are looked at from at least so far away
constexpr float HORIZON = 0.8f;    ///< squared distance from the maps' middle where the haze begins

/// How much one sky differs from another.
struct Difference {
    float angle;  ///< by which sun or moon turn, rad
    float share;  ///< of the clouds' cover and light
    float motion; ///< of the clouds, as a share of how far away they are
};
constexpr Difference VISIBLE{0.004f, 0.02f, 0.15f}, JUMP{0.05f, 0.2f, 4};

bool differ(const SkyMaps::Sight& a, const SkyMaps::Sight& b, const Difference& by) {
    const auto turned = [&](const vec3& x, const vec3& y) { return length(x - y) > by.angle; };
    const auto changed = [&](float x, float y) { return std::abs(x - y) > by.share; };
    if (turned(a.sun, b.sun) || turned(a.moon, b.moon) || changed(a.cover, b.cover) ||
        changed(a.closed, b.closed) || changed(a.darkness, b.darkness) ||
        changed(a.cirrus, b.cirrus))
        return true;
    if (std::min(a.cover, b.cover) <= 0) return false;
    const auto apart = [](float x, float y) { return x - y - std::round(x - y); };
    const float moved =
        CLOUD_PERIOD * std::hypot(apart(a.place.x, b.place.x), apart(a.place.y, b.place.y));
    const float near = by.motion * std::max(std::abs(a.base), NEAR_CLOUDS);
    return moved > near || std::abs(a.base - b.base) > near ||
           std::abs(a.thickness - b.thickness) > near;
}

/// By less than is VISIBLE.
SkyMaps::Sight rounded(SkyMaps::Sight sight) {
    const auto round = [](float& value, float step) { value = std::round(value / step) * step; };
    const auto turn = [&round](vec3& direction) {
        for (float* value : {&direction.x, &direction.y, &direction.z})
            round(*value, VISIBLE.angle / 2);
    };
    turn(sight.sun);
    turn(sight.moon);
    for (float* share : {&sight.cover, &sight.closed, &sight.darkness, &sight.cirrus})
        round(*share, VISIBLE.share / 2);
    constexpr float NEAR = VISIBLE.motion * NEAR_CLOUDS; // m
    round(sight.place.x, 2 * NEAR / CLOUD_PERIOD);
    round(sight.place.y, 2 * NEAR / CLOUD_PERIOD);
    round(sight.base, NEAR);
    round(sight.thickness, NEAR);
    return sight;
}

/// The part of a picture of size² pixels that a stripe of it covers; the shader's places stay those
/// of the whole.
void drawStripe(int size, int stripe, int stripes) {
    glViewport(0, 0, size, size);
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, size * stripe / stripes, size, size / stripes);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glDisable(GL_SCISSOR_TEST);
}

/// A framebuffer of several textures, in the order of the shader's outputs.
void attachAll(gl::Framebuffer& target, std::initializer_list<const gl::Texture*> textures) {
    target.create();
    glBindFramebuffer(GL_FRAMEBUFFER, target.getId());
    std::vector<GLenum> points;
    for (const gl::Texture* texture : textures) {
        points.push_back(GL_COLOR_ATTACHMENT0 + static_cast<GLenum>(points.size()));
        glFramebufferTexture2D(GL_FRAMEBUFFER, points.back(), GL_TEXTURE_2D, texture->getId(), 0);
    }
    glDrawBuffers(static_cast<GLsizei>(points.size()), points.data());
}

/// Where texel i of a small copy lies: from −1 to 1 across the map.
vec2 placeOf(int i, int edge) {
    return {(static_cast<float>(i % edge) + 0.5f) / static_cast<float>(edge) * 2 - 1,
            (static_cast<float>(i / edge) + 0.5f) / static_cast<float>(edge) * 2 - 1};
}

/// The light of the whole sky on a level place, from a small copy of its map.
vec3 sumUp(std::span<const vec4> texels, int edge) {
    vec3 sum;
    float weights = 0;
    for (int i = 0; i < edge * edge; i++) {
        const vec2 p = placeOf(i, edge);
        const float r2 = p.x * p.x + p.y * p.y;
        if (r2 >= 1) continue;
        // Height z = (1 − r²)²; a texel covers a solid angle as dz/d(r²), seen at the sine z.
        const float weight = (1 - r2) * (1 - r2) * 2 * (1 - r2);
        sum += texels[i].xyz() * weight;
        weights += weight;
    }
    return sum / weights;
}

/// `samples` is used over and over.
HazeColor fitHaze(std::span<const vec4> texels, int edge, const vec3& sun,
                  std::vector<HazeColor::Sample>& samples) {
    samples.clear();
    for (int i = 0; i < edge * edge; i++) {
        const vec2 p = placeOf(i, edge);
        const float r2 = p.x * p.x + p.y * p.y;
        if (r2 > HORIZON && r2 < 1) samples.push_back({p, texels[i].xyz()});
    }
    return HazeColor::fit(samples, sun);
}

} // namespace

void SkyMaps::init(bool software) {
    m_size = software ? FULL_SIZE / 2 : FULL_SIZE;
    m_scatter.start("screen.vert", "scatter.frag");
    m_compose.start("screen.vert", "clouds.glsl skymap.frag", "",
                    {{"uRayleigh", gl::UNIT_FIRST_OWN},
                     {"uMie", gl::UNIT_FIRST_OWN + 1},
                     {"uMultiple", gl::UNIT_FIRST_OWN + 2}});
    m_fade.start("screen.vert", "skyfade.frag", "",
                 {{"uClearBefore", gl::UNIT_FIRST_OWN},
                  {"uClearNow", gl::UNIT_FIRST_OWN + 1},
                  {"uBefore", gl::UNIT_FIRST_OWN + 2},
                  {"uNow", gl::UNIT_FIRST_OWN + 3}});
    m_empty.create();
    const gl::TextureFormat half{GL_RGBA16F, GL_RGBA, GL_FLOAT};
    for (gl::Texture* texture : {&m_rayleigh, &m_mie, &m_multiple})
        gl::makeTexture(*texture, SCATTER_SIZE, SCATTER_SIZE, half);
    attachAll(m_scatter_target, {&m_rayleigh, &m_mie, &m_multiple});
    for (Map& map : m_maps)
        makeMap(map);
    makeMap(m_fading);
    m_back.create();
    glBindBuffer(GL_PIXEL_PACK_BUFFER, m_back.getId());
    glBufferData(GL_PIXEL_PACK_BUFFER, 2 * sizeof m_small, nullptr, GL_STREAM_READ);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    m_samples.reserve(m_small.size());
}

/// Half floats: eight bits draw bands across a sky that changes so slowly.
void SkyMaps::makeMap(Map& map) const {
    gl::TextureFormat format{GL_RGBA16F, GL_RGBA, GL_FLOAT};
    gl::makeTexture(map.clear, m_size, m_size, format);
    glGenerateMipmap(GL_TEXTURE_2D);
    format.filter = GL_LINEAR_MIPMAP_LINEAR;
    gl::makeTexture(map.sky, m_size, m_size, format);
    glGenerateMipmap(GL_TEXTURE_2D);
    attachAll(map.target, {&map.clear, &map.sky});
}

// ------------------------------------------------------------------ which map

void SkyMaps::update(const Sight& wanted, bool is_main, bool everything, bool shared,
                     const FrameBlock& block) {
    const bool leads = is_main || m_last.cover < 0; // or nobody has been before it
    m_elsewhere = !leads && hasJumped(wanted);
    if (leads && shared) {
        const Sight sight = rounded(wanted);
        if (differ(sight, m_last, {})) makeNext(sight, block);
        m_last = sight;
    } else if (leads)
        follow(wanted, block);
    else if (m_elsewhere)
        lookElsewhere(wanted, block);
    if (everything) fade();
}

/// From one frame to the next, or so fast that steps would show a sky of long ago.
bool SkyMaps::hasJumped(const Sight& wanted) const {
    return differ(wanted, m_last, JUMP) || length(wanted.sun - m_maps[m_shown].shows.sun) > 0.2f;
}

/// Brings the maps nearer to what the frame wants: by a step, or all the way.
void SkyMaps::follow(const Sight& wanted, const FrameBlock& block) {
    const bool jumped = hasJumped(wanted);
    const bool rests = !differ(wanted, m_last, {});
    const int next = (m_shown + 1) % 3;
    m_last = wanted;
    m_since = std::min(m_since + 1, STEPS);
    if (jumped) return makeNext(wanted, block);
    // A sky that rests is shown as it is, however little is missing.
    if (m_making.step < 0 && differ(wanted, shown().shows, rests ? Difference{} : VISIBLE))
        begin(next, wanted, block);
    if (m_making.step >= 0) doStep();
    if (getShareBefore() > 0) fade();
}

/// At once.
void SkyMaps::makeNext(const Sight& wanted, const FrameBlock& block) {
    begin((m_shown + 1) % 3, wanted, block);
    while (m_making.step >= 0)
        doStep();
    m_since = STEPS;
}

/// Leaves the main eye's maps, and how far it has come with them, as they are.
void SkyMaps::lookElsewhere(const Sight& wanted, const FrameBlock& block) {
    if (!differ(wanted, m_maps[ELSEWHERE].shows, VISIBLE)) return;
    const Making of_main = m_making;
    begin(ELSEWHERE, wanted, block);
    while (m_making.step >= 0)
        doStep();
    m_making = of_main;
    if (of_main.step <= 0) return;
    prepareStep(); // both have scattered into the same textures, and read back through one buffer
    for (int stripe = 0; stripe < std::min(of_main.step, SCATTER_STRIPES); stripe++)
        scatter(stripe);
    if (of_main.step > LEVELS_STEP) askBack(m_maps[of_main.map]);
}

void SkyMaps::forget() {
    m_last = m_maps[ELSEWHERE].shows = {}; // from nothing every sky is a jump
}

// ------------------------------------------------------------------ a bake

void SkyMaps::begin(int map, const Sight& wanted, const FrameBlock& block) {
    m_maps[map].shows = wanted;
    m_making = {map, 0, block};
}

/// The bake reads the block of the frame that it began in.
void SkyMaps::prepareStep() {
    glBufferData(GL_UNIFORM_BUFFER, sizeof m_making.frame, &m_making.frame, GL_STREAM_DRAW);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glBindVertexArray(m_empty.getId());
}

void SkyMaps::doStep() {
    prepareStep();
    if (m_making.step < SCATTER_STRIPES)
        scatter(m_making.step);
    else if (m_making.step < LEVELS_STEP)
        compose(m_making.step - SCATTER_STRIPES);
    else if (m_making.step == LEVELS_STEP)
        makeLevels();
    else
        finish();
    if (++m_making.step == STEPS) m_making.step = -1;
}

void SkyMaps::scatter(int stripe) {
    glBindFramebuffer(GL_FRAMEBUFFER, m_scatter_target.getId());
    m_scatter.use();
    drawStripe(SCATTER_SIZE, stripe, SCATTER_STRIPES);
}

void SkyMaps::compose(int stripe) {
    const Map& map = m_maps[m_making.map];
    glBindFramebuffer(GL_FRAMEBUFFER, map.target.getId());
    m_compose.use();
    gl::bindTexture(gl::UNIT_FIRST_OWN, m_rayleigh);
    gl::bindTexture(gl::UNIT_FIRST_OWN + 1, m_mie);
    gl::bindTexture(gl::UNIT_FIRST_OWN + 2, m_multiple);
    m_compose.set("uNight", nightGlow(map.shows.moon));
    m_compose.set("uCirrus", map.shows.cirrus);
    drawStripe(m_size, stripe, MAP_STRIPES);
}

void SkyMaps::makeLevels() {
    const Map& map = m_maps[m_making.map];
    for (const gl::Texture* texture : {&map.clear, &map.sky}) {
        gl::bindTexture(gl::UNIT_SKY, *texture);
        glGenerateMipmap(GL_TEXTURE_2D);
    }
    askBack(map);
}

/// Has small levels of the maps copied to where the processor can read them, and doesn't wait.
void SkyMaps::askBack(const Map& map) const {
    int level = 0;
    while (m_size >> level > SMALL)
        level++;
    glBindBuffer(GL_PIXEL_PACK_BUFFER, m_back.getId());
    std::size_t place = 0; // within the buffer
    for (const gl::Texture* texture : {&map.clear, &map.sky}) {
        gl::bindTexture(gl::UNIT_SKY, *texture);
        glGetTexImage(GL_TEXTURE_2D, level, GL_RGBA, GL_FLOAT, reinterpret_cast<void*>(place));
        place += sizeof m_small;
    }
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
}

/// The main eye's new map is the one that is shown from now on, at first with no share yet.
void SkyMaps::finish() {
    Map& map = m_maps[m_making.map];
    glBindBuffer(GL_PIXEL_PACK_BUFFER, m_back.getId());
    glGetBufferSubData(GL_PIXEL_PACK_BUFFER, 0, sizeof m_small, m_small.data());
    map.haze = fitHaze(m_small, SMALL, map.shows.sun, m_samples);
    glGetBufferSubData(GL_PIXEL_PACK_BUFFER, sizeof m_small, sizeof m_small, m_small.data());
    map.ambient = sumUp(m_small, SMALL);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    if (m_making.map == ELSEWHERE) return;
    m_shown = m_making.map;
    m_since = 0;
}

// ------------------------------------------------------------------ what is shown

/// Of the map before the one that is shown: falls to nothing while another one could be made.
float SkyMaps::getShareBefore() const {
    return m_elsewhere ? 0 : 1 - static_cast<float>(m_since) / STEPS;
}

/// Paints the sky between two maps.
void SkyMaps::fade() {
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glBindVertexArray(m_empty.getId());
    glBindFramebuffer(GL_FRAMEBUFFER, m_fading.target.getId());
    m_fade.use();
    m_fade.set("uShare", getShareBefore());
    const gl::Texture* textures[] = {&before().clear, &shown().clear, &before().sky, &shown().sky};
    for (int i = 0; i < 4; i++)
        gl::bindTexture(gl::UNIT_FIRST_OWN + i, *textures[i]);
    drawStripe(m_size, 0, 1);
    gl::bindTexture(gl::UNIT_SKY, m_fading.sky);
    glGenerateMipmap(GL_TEXTURE_2D);
}

void SkyMaps::bind() const {
    const Map& map = getShareBefore() > 0 ? m_fading : shown();
    gl::bindTexture(gl::UNIT_SKY, map.sky);
    gl::bindTexture(gl::UNIT_SKY_CLEAR, map.clear);
}

vec3 SkyMaps::getAmbient() const {
    const float share = getShareBefore();
    return shown().ambient * (1 - share) + before().ambient * share;
}

HazeColor SkyMaps::getHaze() const {
    return HazeColor::mix(shown().haze, before().haze, getShareBefore());
}

} // namespace ig
