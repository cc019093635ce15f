// SPDX-License-Identifier: MIT
#include "SkyPass.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "render/scene/remainders.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace ig {

namespace {

constexpr int SCATTER_SIZE = 128; ///< texels; scattering without its phase functions is smooth
/// A bake's steps, each 1 to 2 ms of the software renderer: stripes of scattering and of the map,
/// one for the map's levels, and one for what the processor wants of them.
constexpr int SCATTER_STRIPES = 4, MAP_STRIPES = 8, LEVELS_STEP = SCATTER_STRIPES + MAP_STRIPES,
              STEPS = LEVELS_STEP + 2;
constexpr double CLOUD_EDGE = 60;        ///< m over which clouds thicken
constexpr double CLOUD_VISIBILITY = 120; ///< m within them
constexpr double EARTH_RADIUS = EllipsoidModel::MEAN_RADIUS;
constexpr float FLASH_GAIN = 1.5f;      ///< of the sky's light at the height of a lightning flash
constexpr float CLEAR_EXPOSURE = 0.24f; ///< at noon under a clear sky
constexpr float CLEAR_LUMINANCE = 4.0f; ///< of a white ground then
constexpr float DAY_BOLT = 12.8f, NIGHT_BOLT = 0.128f; ///< brightness of lightning's bolts
constexpr float SUN_GLARE = 0.45f, MOON_GLARE = 0.14f; ///< sine of how far about them, rad
/// Of the programs that draw the background. Each word costs all pixels, whatever shows.
constexpr const char* BACKGROUND_WORDS[] = {"", "DISC", "DISC HAZE STARS", "DISC HAZE STARS BOLT"};
const vec3 NIGHT_GLOW{0.0022f, 0.0032f, 0.0055f};
const vec3 MOONLIGHT{0.045f, 0.052f, 0.062f};

float smoothStep(float low, float high, float x) {
    const float t = std::clamp((x - low) / (high - low), 0.0f, 1.0f);
    return t * t * (3 - 2 * t);
}
float luminance(const vec3& c) { return 0.3f * c.x + 0.6f * c.y + 0.1f * c.z; }
vec3 mix(const vec3& a, const vec3& b, float share) { return a * (1 - share) + b * share; }
vec3 multiply(const vec3& a, const vec3& b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }

/// What the air lets through from a height above the horizon given by its sine: Rayleigh, aerosol
/// and ozone over Kasten and Young's (1989) air mass.
vec3 transmittance(float sine) {
    const float elevation =
        std::max(std::asin(std::clamp(sine, -1.0f, 1.0f)) * RAD_TO_DEG<float>, -1.0f);
    const float mass = 1 / (std::max(sine, 0.0f) + 0.15f * std::pow(elevation + 3.885f, -1.253f));
    const vec3 depth(5.8e-6f * 8000 + 3.3e-6f * 1200 + 0.65e-6f * 6400,
                     13.5e-6f * 8000 + 3.3e-6f * 1200 + 1.88e-6f * 6400,
                     33.1e-6f * 8000 + 3.3e-6f * 1200 + 0.085e-6f * 6400);
    return {std::exp(-depth.x * mass), std::exp(-depth.y * mass), std::exp(-depth.z * mass)};
}

/// Direct light of the sun: none a degree below the horizon.
vec3 sunlight(const vec3& direction) {
    return multiply(transmittance(direction.z), SUN_COLOR) *
           (SUN_IRRADIANCE * smoothStep(-0.018f, 0.012f, direction.z));
}
vec3 moonlight(const vec3& direction) {
    return multiply(transmittance(direction.z), MOONLIGHT) * smoothStep(-0.02f, 0.05f, direction.z);
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

bool sunRules(const vec3& sun) { return sun.z > -0.02f; }

/// Halfway, by its logarithm, from night to day between 12 degrees below and 3 above the horizon.
float boltBrightness(const vec3& sun) {
    const float day = std::clamp((sun.z + 0.2f) / 0.25f, 0.0f, 1.0f);
    return NIGHT_BOLT * std::pow(DAY_BOLT / NIGHT_BOLT, day);
}

} // namespace

void SkyPass::init(int map_size) {
    m_size = map_size;
    m_scatter.start("screen.vert", "scatter.frag");
    m_compose.start("screen.vert", "skymap.frag");
    m_fade.start("screen.vert", "skyfade.frag", "",
                 {{"uBefore", gl::UNIT_FIRST_OWN}, {"uNow", gl::UNIT_FIRST_OWN + 1}});
    for (int i = 0; i < BACKGROUNDS; i++)
        m_backgrounds[i].start("screen.vert", "sky.frag", BACKGROUND_WORDS[i]);
    m_deck.start("screen.vert", "clouds.frag");
    m_empty.create();
    const gl::TextureFormat half{GL_RGBA16F, GL_RGBA, GL_FLOAT};
    m_scatter_target.create();
    glBindFramebuffer(GL_FRAMEBUFFER, m_scatter_target.getId());
    const GLenum attachments[] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1, GL_COLOR_ATTACHMENT2};
    gl::Texture* textures[] = {&m_rayleigh, &m_mie, &m_multiple};
    for (int i = 0; i < 3; i++) {
        gl::makeTexture(*textures[i], SCATTER_SIZE, SCATTER_SIZE, half);
        glFramebufferTexture2D(GL_FRAMEBUFFER, attachments[i], GL_TEXTURE_2D, textures[i]->getId(),
                               0);
    }
    glDrawBuffers(3, attachments);
    for (Map& map : m_maps)
        makeMap(map.texture, map.target, m_size);
    makeMap(m_fading, m_fading_target, m_size);
    m_back.create();
    glBindBuffer(GL_PIXEL_PACK_BUFFER, m_back.getId());
    glBufferData(GL_PIXEL_PACK_BUFFER, sizeof(Map::small), nullptr, GL_STREAM_READ);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
}

/// Half floats: eight bits draw bands across a sky that changes so slowly.
void SkyPass::makeMap(gl::Texture& texture, gl::Framebuffer& target, int size) {
    gl::TextureFormat format{GL_RGBA16F, GL_RGBA, GL_FLOAT};
    format.filter = GL_LINEAR_MIPMAP_LINEAR;
    gl::makeTexture(texture, size, size, format);
    glGenerateMipmap(GL_TEXTURE_2D);
    gl::attach(target, texture);
}

// ------------------------------------------------------------------ the map

/// Whether sun or moon have turned by more than an angle (rad), or the clouds changed by more than
/// a share.
bool SkyPass::differ(const Bake& a, const Bake& b, float angle, float share) {
    const auto turned = [angle](const vec3& x, const vec3& y) { return length(x - y) > angle; };
    const auto changed = [share](float x, float y) { return std::abs(x - y) > share; };
    return turned(a.sun, b.sun) || turned(a.moon, b.moon) ||
           changed(a.cloud_cover, b.cloud_cover) || changed(a.overcast, b.overcast) ||
           changed(a.darkness, b.darkness) || changed(a.drift, b.drift);
}

/// From one frame to the next, or so fast that steps would show a sky of long ago.
bool SkyPass::hasJumped(const Bake& wanted) const {
    return differ(wanted, m_last, 0.05f, 0.2f) ||
           length(wanted.sun - m_maps[m_shown].shows.sun) > 0.2f;
}

/// Brings the maps nearer to what the frame wants: by a step, or all the way.
void SkyPass::follow(const Bake& wanted, const FrameBlock& block) {
    const bool jumped = hasJumped(wanted);
    const int next = (m_shown + 1) % 3;
    m_last = wanted;
    m_since = std::min(m_since + 1, STEPS);
    if (jumped) {
        begin(next, wanted, block);
        while (m_making.step >= 0)
            doStep();
        m_since = STEPS;
        return;
    }
    if (m_making.step < 0 && differ(wanted, shown().shows, 0.004f, 0.02f))
        begin(next, wanted, block);
    if (m_making.step >= 0) doStep();
    if (getShareBefore() > 0) fade();
}

/// Leaves the main eye's maps, and how far it has come with them, as they are.
void SkyPass::lookElsewhere(const Bake& wanted, const FrameBlock& block) {
    if (!differ(wanted, m_maps[ELSEWHERE].shows, 0.004f, 0.02f)) return;
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

void SkyPass::begin(int map, const Bake& wanted, const FrameBlock& block) {
    m_maps[map].shows = wanted;
    m_making = {map, 0, block};
}

void SkyPass::prepareStep() {
    uploadBlock(m_making.frame);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glBindVertexArray(m_empty.getId());
}

void SkyPass::doStep() {
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

void SkyPass::scatter(int stripe) {
    glBindFramebuffer(GL_FRAMEBUFFER, m_scatter_target.getId());
    m_scatter.use();
    drawStripe(SCATTER_SIZE, stripe, SCATTER_STRIPES);
}

void SkyPass::compose(int stripe) {
    const Map& map = m_maps[m_making.map];
    glBindFramebuffer(GL_FRAMEBUFFER, map.target.getId());
    m_compose.use();
    const gl::Texture* textures[] = {&m_rayleigh, &m_mie, &m_multiple};
    const char* names[] = {"uRayleigh", "uMie", "uMultiple"};
    for (int i = 0; i < 3; i++) {
        gl::bindTexture(gl::UNIT_FIRST_OWN + i, *textures[i]);
        m_compose.set(names[i], gl::UNIT_FIRST_OWN + i);
    }
    const Bake& b = map.shows;
    m_compose.set("uClouds", vec4(b.cloud_cover, b.overcast, b.darkness, b.drift));
    m_compose.set("uCloudLight", sunRules(b.sun) ? sunlight(b.sun) : moonlight(b.moon));
    m_compose.set("uNight", NIGHT_GLOW * (1 + 1.5f * std::max(b.moon.z, 0.0f)));
    drawStripe(m_size, stripe, MAP_STRIPES);
}

void SkyPass::makeLevels() {
    const Map& map = m_maps[m_making.map];
    gl::bindTexture(gl::UNIT_SKY, map.texture);
    glGenerateMipmap(GL_TEXTURE_2D);
    askBack(map);
}

/// Has a small level of the map copied to where the processor can read it, and doesn't wait.
void SkyPass::askBack(const Map& map) {
    int level = 0;
    while (m_size >> level > SMALL)
        level++;
    gl::bindTexture(gl::UNIT_SKY, map.texture);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, m_back.getId());
    glGetTexImage(GL_TEXTURE_2D, level, GL_RGBA, GL_FLOAT, nullptr);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
}

/// Sums up the light of the whole sky. The main eye's new map is the one that is shown from now on,
/// at first with no share yet.
void SkyPass::finish() {
    Map& map = m_maps[m_making.map];
    glBindBuffer(GL_PIXEL_PACK_BUFFER, m_back.getId());
    glGetBufferSubData(GL_PIXEL_PACK_BUFFER, 0, sizeof map.small, map.small.data());
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    vec3 sum;
    float weights = 0;
    for (int i = 0; i < SMALL * SMALL; i++) {
        const float x = (static_cast<float>(i % SMALL) + 0.5f) / (SMALL / 2) - 1;
        const float y = (static_cast<float>(i / SMALL) + 0.5f) / (SMALL / 2) - 1;
        const float r2 = x * x + y * y;
        if (r2 >= 1) continue;
        // Height z = (1 − r²)²; a texel covers a solid angle as dz/d(r²), seen at the sine z.
        const float weight = (1 - r2) * (1 - r2) * 2 * (1 - r2);
        sum += map.small[i].xyz() * weight;
        weights += weight;
    }
    map.ambient = sum / weights;
    if (m_making.map == ELSEWHERE) return;
    m_shown = m_making.map;
    m_since = 0;
}

/// Paints the sky between two maps.
void SkyPass::fade() {
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glBindVertexArray(m_empty.getId());
    glBindFramebuffer(GL_FRAMEBUFFER, m_fading_target.getId());
    m_fade.use();
    m_fade.set("uShare", getShareBefore());
    gl::bindTexture(gl::UNIT_FIRST_OWN, before().texture);
    gl::bindTexture(gl::UNIT_FIRST_OWN + 1, shown().texture);
    drawStripe(m_size, 0, 1);
    gl::bindTexture(gl::UNIT_SKY, m_fading);
    glGenerateMipmap(GL_TEXTURE_2D);
}

void SkyPass::bindMap() const {
    gl::bindTexture(gl::UNIT_SKY, getShareBefore() > 0 ? m_fading : shown().texture);
}

/// Of the map before the one that is shown: falls to nothing while another one could be made.
float SkyPass::getShareBefore() const {
    return m_elsewhere ? 0 : 1 - static_cast<float>(m_since) / STEPS;
}

vec3 SkyPass::getHaze(vec2 direction) const {
    const float scale = 0.47f / std::max(std::hypot(direction.x, direction.y), 1e-6f);
    const auto place = [&](float v) {
        return std::clamp(static_cast<int>((v * scale + 0.5f) * SMALL), 0, SMALL - 1);
    };
    const int i = place(direction.y) * SMALL + place(direction.x);
    return mix(shown().small[i].xyz(), before().small[i].xyz(), getShareBefore());
}

// ------------------------------------------------------------------ a frame

/// Above the clouds the sky is open; within them one sees no further than fog allows.
FrameInfo SkyPass::seenFrom(const FrameView& view, const FrameInfo& frame) {
    FrameInfo seen = frame;
    const double above = view.geodetic.z - frame.cloud_base - frame.cloud_thickness;
    const double into = std::min(view.geodetic.z - frame.cloud_base, -above);
    const float thick = std::max(frame.overcast, frame.cloud_cover * frame.cloud_cover);
    const float depth = static_cast<float>((into + CLOUD_EDGE) / (2 * CLOUD_EDGE));
    m_within = thick * smoothStep(0, 1, depth);
    // Halfway through, where nothing is seen, the one picture takes over from the other.
    m_above = view.geodetic.z > frame.cloud_base + frame.cloud_thickness / 2
                  ? static_cast<float>(std::max(above, 1.0))
                  : 0;
    m_cover = frame.cloud_cover;
    m_closed = frame.overcast;
    if (m_above > 0) seen.overcast = seen.cloud_cover = seen.cloud_darkness = 0;
    return seen;
}

void SkyPass::update(const FrameView& view, const FrameInfo& told, bool is_main,
                     FrameBlock& block) {
    const FrameInfo frame = seenFrom(view, told);
    const vec3 sun(view.toFrameDirection(frame.sun_direction));
    const vec3 moon(view.toFrameDirection(frame.moon_direction));
    const bool day = sunRules(sun);
    const float open = 1 - 0.97f * frame.overcast;
    const vec3 light = (day ? sunlight(sun) : moonlight(moon)) * open;
    block.light_direction = {day ? sun : moon, block.light_direction.w};
    block.light = {light, block.light.w};
    block.sun_direction = {sun, sun.z > -0.05f ? 1.0f : 0.0f};
    block.moon_direction = {moon, 0.25f * smoothStep(0.1f, -0.12f, sun.z) + 0.12f};
    const float stars = smoothStep(-0.06f, -0.2f, sun.z) * 0.06f;
    block.sky = {1, stars, static_cast<float>(frame.sidereal_angle * DEG_TO_RAD<double>), 0};
    block.weather = {frame.rain, frame.snow, frame.cloud_cover, std::max(frame.overcast, m_within)};

    // Koschmieder: contrast falls to 2 % at the meteorological visibility. Fog is shallow.
    float extinction = static_cast<float>(3.912 / std::max(frame.visibility, 10.0));
    const auto sight = static_cast<float>(frame.visibility);
    const float scale_height = std::lerp(300.0f, 1200.0f, smoothStep(2000, 4000, sight));
    const float altitude = static_cast<float>(std::max(view.geodetic.z, 0.0));
    constexpr float CLEAR_AIR = 8e-5f; // what the scattering itself shows already
    block.air = {1 / scale_height, std::exp(-altitude / scale_height), altitude,
                 std::sqrt(2 * std::max(altitude, 1.0f) / static_cast<float>(EARTH_RADIUS))};
    extinction += m_within * static_cast<float>(3.912 / CLOUD_VISIBILITY) / block.air.y;
    block.sky.w = std::max(extinction - CLEAR_AIR, 0.0f) * scale_height;

    const Bake wanted{sun,
                      moon,
                      frame.cloud_cover,
                      frame.overcast,
                      frame.cloud_darkness,
                      static_cast<float>(std::floor(frame.time / 20) * 0.012)};
    const bool leads = is_main || m_last.cloud_cover < 0; // or nobody has been before it
    m_elsewhere = !leads && hasJumped(wanted);
    if (leads)
        follow(wanted, block);
    else if (m_elsewhere)
        lookElsewhere(wanted, block);
    if (view.everything) fade();
    const float share = getShareBefore();
    const vec3 ambient = mix(shown().ambient, before().ambient, share);
    // Lightning lights the clouds from within, and they light all else. The exposure is too slow.
    const float lit = 1 + FLASH_GAIN * frame.flash;
    const float azimuth = frame.bolt_azimuth * DEG_TO_RAD<float>;
    block.time.z = frame.flash;
    block.bolt = {std::sin(azimuth), std::cos(azimuth), frame.bolt_shape,
                  boltBrightness(sun) * lit};
    block.sky.x = lit;
    block.ambient = {ambient * lit, extinction};
    const float ground =
        luminance(ambient) + luminance(light) * std::max(block.light_direction.z, 0.0f) / 3.1416f;
    const float gain = std::pow(CLEAR_LUMINANCE / std::max(ground, 1e-4f), 0.66f);
    block.light.w = CLEAR_EXPOSURE * (1 - 0.3f * frame.overcast) * std::clamp(gain, 0.6f, 300.0f);
    bindMap();
    m_sun = sun;
    m_moon = moon;
    m_stars = stars;
    m_haze = block.sky.w;
    m_flash = frame.flash;
}

void SkyPass::forget() {
    m_last = m_maps[ELSEWHERE].shows = {}; // from nothing every sky is a jump
    m_anchor = {1e9, 1e9};
}

/// The bake reads the block's directions.
void SkyPass::uploadBlock(const FrameBlock& block) {
    glBufferData(GL_UNIFORM_BUFFER, sizeof block, &block, GL_STREAM_DRAW);
}

/// The leanest program that draws all that shows.
int SkyPass::chooseBackground(const FrameView& view) const {
    constexpr float FAR_OFF = 1e6f; // m
    if (m_flash > 0) return 3;
    if (m_haze > 0 || m_stars > 0) return 2;
    const bool disc = view.orthographic || view.sees(m_sun * FAR_OFF, SUN_GLARE * FAR_OFF) ||
                      view.sees(m_moon * FAR_OFF, MOON_GLARE * FAR_OFF);
    return disc ? 1 : 0;
}

void SkyPass::drawBackground(const FrameView& view) {
    const auto& p = view.projection.columns;
    glDepthMask(GL_FALSE);
    glBindVertexArray(m_empty.getId());
    const int chosen = chooseBackground(view);
    for (int i = view.everything ? 0 : chosen; i <= chosen; i++) {
        gl::Program& program = m_backgrounds[i];
        program.use();
        program.set("uRay", vec4(1 / p[0].x, 1 / p[1].y, p[2].x / p[0].x, p[2].y / p[1].y));
        glDrawArrays(GL_TRIANGLES, 0, 3);
    }
    glDepthMask(GL_TRUE);
}

void SkyPass::drawClouds(const FrameView& view, const gl::Texture& depth) {
    const bool readable = gl::hasClipControl() && !view.orthographic;
    if (m_above <= 0 || !readable || std::max(m_cover, m_closed) < 0.02f) return;
    constexpr double METRES = EARTH_RADIUS * DEG_TO_RAD<double>, FARTHEST = 2; // degrees
    dvec2 off{view.geodetic.x - m_anchor.x, view.geodetic.y - m_anchor.y};
    if (!(std::abs(off.x) < FARTHEST && std::abs(off.y) < FARTHEST)) {
        m_anchor = {view.geodetic.x, view.geodetic.y};
        off = {};
    }
    const auto& p = view.projection.columns;
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    m_deck.use();
    gl::bindTexture(gl::UNIT_FIRST_OWN, depth);
    m_deck.set("uDepth", gl::UNIT_FIRST_OWN);
    m_deck.set("uRay", vec4(1 / p[0].x, 1 / p[1].y, p[2].x / p[0].x, p[2].y / p[1].y));
    m_deck.set("uLayer",
               vec4(m_above, m_cover, m_closed, static_cast<float>(1 / (2 * EARTH_RADIUS))));
    m_deck.set("uAnchor", vec4(toNoise(off.x * METRES * std::cos(m_anchor.y * DEG_TO_RAD<double>)),
                               toNoise(off.y * METRES), 0, 0));
    m_deck.set("uNearFar", vec4(static_cast<float>(view.near), static_cast<float>(view.far), 0, 0));
    glBindVertexArray(m_empty.getId());
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glDisable(GL_BLEND);
    glEnable(GL_DEPTH_TEST);
}

} // namespace ig
