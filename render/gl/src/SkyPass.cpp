// SPDX-License-Identifier: MIT
#include "SkyPass.h"

#include "Targets.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "render/scene/PictureRect.h"
#include "render/scene/ShaderConstants.h"
#include "render/scene/SkyLight.h"
#include "render/scene/remainders.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr double CLOUD_EDGE = 60;        ///< m over which clouds thicken
constexpr double CLOUD_VISIBILITY = 120; ///< m within them
constexpr double EARTH_RADIUS = EllipsoidModel::MEAN_RADIUS;
constexpr float FLASH_GAIN = 1.5f;      ///< of the sky's light at the height of a lightning flash
constexpr float CLEAR_EXPOSURE = 0.24f; ///< at noon under a clear sky
constexpr float CLEAR_LUMINANCE = 4.0f; ///< of a white ground then
constexpr float LEAST_THICKNESS = 50;   ///< m, of clouds
constexpr float NEARLY_CLOSED = 0.9f;   ///< cover from which on the gaps close
/// What thick broken clouds leave of the sun's light, and how low it may stand to cast their
/// shadows.
constexpr float LET_THROUGH = 0.3f, LOWEST_SHADOW = 0.05f;
constexpr float FULL_DARKNESS = 0.85f;      ///< of clouds, a thunderstorm's
constexpr float CLEAR_SIGHT = 1 / 25000.0f; ///< 1/m: how fast clouds go over to the sky far away
constexpr float SUN_GLARE = 0.45f, MOON_GLARE = 0.14f; ///< sine of how far about them
/// Of the programs that draw the background. Each word costs all pixels, whatever shows.
constexpr const char* BACKGROUND_WORDS[] = {"", "DISC", "DISC STARS", "DISC STARS BOLT"};

/// What `paint` has painted, beside the clouds' own units.
constexpr int UNIT_SOFT = gl::UNIT_FIRST_OWN + 4;

} // namespace

void SkyPass::init(bool volume, bool software) {
    m_maps.init(software);
    m_soft.start("screen.vert", "clouds.glsl bank.glsl sky.frag", volume ? "VOLUME" : "");
    std::vector<gl::Sampler> samplers{{"uSoft", UNIT_SOFT}};
    if (volume) {
        m_volume.emplace().init();
        for (const gl::Sampler& sampler : CloudVolume::getSamplers())
            samplers.push_back(sampler);
    } else {
        m_deck.start("screen.vert", "clouds.glsl clouds.frag", {},
                     {{"uDepth", gl::UNIT_FIRST_OWN}});
    }
    const std::string files =
        volume ? "bank.glsl cloudspan.glsl background.frag" : "bank.glsl background.frag";
    for (int i = 0; i < BACKGROUNDS; i++)
        m_backgrounds[i].start("screen.vert", files,
                               BACKGROUND_WORDS[i] + std::string(volume ? " VOLUME" : ""),
                               samplers);
    m_empty.create();
    gl::TextureFormat format{GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, GL_REPEAT};
    format.filter = volume ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR_MIPMAP_NEAREST;
    const Pattern& field = m_layer.getField();
    gl::makeTexture(m_field, field.edge, field.edge, format, field.texels.data());
    glGenerateMipmap(GL_TEXTURE_2D);
}

void SkyPass::forget() {
    m_maps.forget();
    m_layer.forget();
    if (m_volume) m_volume->forget();
}

// ------------------------------------------------------------------ a frame

void SkyPass::update(const FrameView& view, const FrameInfo& frame, bool is_main,
                     FrameBlock& block) {
    m_layer.drift(frame);
    if (is_main) m_layer.follow(view.geodetic);
    m_is_main = is_main;
    m_clouds = lookAtClouds(view, frame);
    fillLight(view, frame, block);
    fillAir(view, frame, block);
    fillClouds(frame, block);
    gl::bindTexture(gl::UNIT_CLOUDS, m_field);

    const Clouds& c = m_clouds;
    m_maps.update({m_sun, m_moon, c.cover, c.closed * c.above, c.darkness, frame.cloud_cover,
                   c.place, c.base, c.thickness},
                  is_main, view.everything, frame.shared, block);
    m_maps.bind();
    const HazeColor clear = m_maps.getHaze();
    m_haze = HazeColor::mix(clear, clear.evened(),
                            smoothStep(4000, 500, static_cast<float>(frame.visibility)));
    m_haze = HazeColor::mix(m_haze, HazeColor::even(block.cloud_haze.xyz(), clear.sun),
                            block.cloud_haze.w);
    m_haze.fill(block);
    // Lightning lights the clouds from within, and they light all else. The exposure is too slow.
    m_gain = block.sky.x = 1 + FLASH_GAIN * frame.flash;
    fillExposure(block);
}

SkyPass::Clouds SkyPass::lookAtClouds(const FrameView& view, const FrameInfo& frame) const {
    Clouds c;
    c.cover = CloudLayer::getCover(frame);
    c.closed = smoothStep(NEARLY_CLOSED, 1, c.cover);
    c.darkness = frame.cloud_darkness * c.closed;
    c.place = m_layer.getPlace(view.geodetic);
    c.thickness = std::max(static_cast<float>(frame.cloud_thickness), LEAST_THICKNESS);
    c.base = static_cast<float>(frame.cloud_base - view.geodetic.z);
    const double into = std::min(-static_cast<double>(c.base),
                                 static_cast<double>(c.base) + static_cast<double>(c.thickness));
    const float height = std::clamp(-c.base / c.thickness, 0.0f, 1.0f);
    c.above = 1 - smoothStep(0, 1, height);
    c.within = smoothStep(0, 1, static_cast<float>((into + CLOUD_EDGE) / (2 * CLOUD_EDGE))) *
               std::lerp(m_layer.getDensity(c.place, height, c.cover), 1.0f, c.closed);
    return c;
}

void SkyPass::fillLight(const FrameView& view, const FrameInfo& frame, FrameBlock& block) {
    m_sun = vec3(view.toFrameDirection(frame.sun_direction));
    m_moon = vec3(view.toFrameDirection(frame.moon_direction));
    const bool day = sunRules(m_sun);
    const vec3 light = day ? sunlight(m_sun) : moonlight(m_moon);
    block.light_direction = {day ? m_sun : m_moon, block.light_direction.w};
    block.light = {light * (1 - 0.97f * m_clouds.closed * m_clouds.above), block.light.w};
    block.cloud_light = {light, m_clouds.closed};
    block.sun_direction = {m_sun, m_sun.z > -0.05f ? 1.0f : 0.0f};
    block.moon_direction = {m_moon, 0.25f * smoothStep(0.1f, -0.12f, m_sun.z) + 0.12f};
    const float stars = smoothStep(-0.06f, -0.2f, m_sun.z) * 0.06f;
    block.sky = {1, stars, static_cast<float>(frame.sidereal_angle * DEG_TO_RAD<double>), 0};
    const float azimuth = frame.bolt_azimuth * DEG_TO_RAD<float>;
    block.time.z = frame.flash;
    block.bolt = {std::sin(azimuth), std::cos(azimuth), frame.bolt_shape,
                  boltBrightness(m_sun) * (1 + FLASH_GAIN * frame.flash)};
    m_starry = stars > 0;
    m_flashes = frame.flash > 0;
}

void SkyPass::fillAir(const FrameView& view, const FrameInfo& frame, FrameBlock& block) const {
    // Koschmieder: contrast falls to 2 % at the meteorological visibility. Fog is shallow.
    float extinction = static_cast<float>(3.912 / std::max(frame.visibility, 10.0));
    const auto sight = static_cast<float>(frame.visibility);
    const float scale_height = std::lerp(300.0f, 1200.0f, smoothStep(2000, 4000, sight));
    const float altitude = static_cast<float>(std::max(view.geodetic.z, 0.0));
    constexpr float CLEAR_AIR = 8e-5f; // what the scattering itself shows already
    block.air = {1 / scale_height, std::exp(-altitude / scale_height), altitude,
                 std::sqrt(2 * std::max(altitude, 1.0f) / static_cast<float>(EARTH_RADIUS))};
    // What one sees thins out by factors: a cloud's fog sets in slowly.
    const float fog = m_clouds.within * m_clouds.within * m_clouds.within;
    extinction += fog * static_cast<float>(3.912 / CLOUD_VISIBILITY) / block.air.y;
    block.ambient.w = extinction;
    block.sky.w = std::max(extinction - CLEAR_AIR, 0.0f) * scale_height;
    block.weather = {frame.rain, frame.snow, frame.cloud_cover,
                     std::max(m_clouds.closed * m_clouds.above, m_clouds.within)};
}

void SkyPass::fillClouds(const FrameInfo& frame, FrameBlock& block) {
    const Clouds& c = m_clouds;
    block.cloud_place = {c.place.x, c.place.y, 1 / CLOUD_PERIOD,
                         static_cast<float>(1 / (2 * EARTH_RADIUS))};
    block.cloud_layer = {c.base, c.thickness, m_layer.getThreshold(c.cover),
                         CloudLayer::getSoftness(c.cover)};
    // The mean haze between the eye and the layer's middle, and what of the air the sky shows
    // already.
    const float rise = (c.base + c.thickness / 2) * block.air.x;
    const float mean = std::abs(rise) > 1e-3f ? (1 - std::exp(-rise)) / rise : 1;
    block.cloud_air = {block.ambient.w * block.air.y * mean + CLEAR_SIGHT, m_maps.getFirstLevel(),
                       0, 0};
    // What the sky lights, and a closed layer from below at the horizon.
    const float dusk = smoothStep(-0.1f, 0.4f, m_sun.z);
    const vec3 night = nightGlow(m_moon), light = block.cloud_light.xyz();
    const vec3 sky = vec3(0.56f, 0.68f, 0.88f) * dusk + night * 1.5f;
    const float grey = 0.16f * (light.x + light.y + light.z) / 3 + 0.75f * dusk;
    const vec3 closed = (vec3(0.93f, 0.97f, 1) * grey + night * 0.8f) *
                        ((1 - 0.81f * std::min(c.darkness / FULL_DARKNESS, 1.0f)) / 2.2f);
    block.cloud_sky = {sky, c.darkness};
    block.cloud_haze = {(light * 0.08f + sky * 0.85f) * (1 - c.closed) + closed * c.closed,
                        std::lerp(0.25f * c.cover, 1.0f, c.closed) * std::max(c.above, c.within)};

    const vec3 towards = block.light_direction.xyz();
    const float height = std::max(towards.z, LOWEST_SHADOW);
    const float taken = std::lerp(1 - LET_THROUGH, 1.0f, smoothStep(0.5f, 1, c.cover)) *
                        smoothStep(LOWEST_SHADOW, 3 * LOWEST_SHADOW, towards.z) *
                        (c.cover > 0 ? 1.0f : 0.0f);
    block.cloud_shade = {towards.x / height, towards.y / height, taken,
                         static_cast<float>(frame.cloud_base)};
    m_shade = block.cloud_shade;
    m_altitude = block.air.z;
    m_dip = block.air.w;
}

/// As cloudshade.glsl has it.
float SkyPass::getCloudShade(const vec3& place) const {
    if (m_shade.z <= 0) return 1;
    const float below = m_shade.w - (place.z + m_altitude);
    const auto along = [&](float from, float step, float at) {
        return fraction(double{from + (at + step * std::max(below, 0.0f)) / CLOUD_PERIOD});
    };
    const vec2 shaded_by{along(m_clouds.place.x, m_shade.x, place.x),
                         along(m_clouds.place.y, m_shade.y, place.y)};
    return 1 - m_shade.z * m_layer.getDensity(shaded_by, 0, m_clouds.cover) *
                   smoothStep(-m_clouds.thickness, 0, below);
}

void SkyPass::fillExposure(FrameBlock& block) const {
    const vec3 ambient = m_maps.getAmbient();
    block.ambient = {ambient * m_gain, block.ambient.w};
    const float ground = luminance(ambient) + luminance(block.light.xyz()) *
                                                  std::max(block.light_direction.z, 0.0f) / PI;
    const float gain = std::pow(CLEAR_LUMINANCE / std::max(ground, 1e-4f), 0.66f);
    block.light.w = CLEAR_EXPOSURE *
                    (1 - (0.3f * m_clouds.closed + 0.33f * m_clouds.darkness) * m_clouds.above) *
                    std::clamp(gain, 0.6f, 300.0f);
}

// ------------------------------------------------------------------ drawing

/// The leanest program that draws all that shows.
int SkyPass::chooseBackground(const FrameView& view) const {
    constexpr float FAR_OFF = 1e6f; // m
    if (m_flashes) return 3;
    if (m_starry) return 2;
    const bool disc = view.orthographic || view.sees(m_sun * FAR_OFF, SUN_GLARE * FAR_OFF) ||
                      view.sees(m_moon * FAR_OFF, MOON_GLARE * FAR_OFF);
    return disc ? 1 : 0;
}

/// Only above the horizon; what is below takes its colour. A view of none of it has a bit of it.
void SkyPass::paint(const FrameView& view, const Targets& targets) {
    constexpr float MARGIN = 0.02f; // rad: what the enlargement reads beside a pixel
    PictureRect rect = PictureRect::above(view, m_dip + MARGIN);
    if (rect.isEmpty()) rect = {{-0.1f, -0.1f}, {0.1f, 0.1f}};
    const auto w = static_cast<float>(targets.getSkyWidth());
    const auto h = static_cast<float>(targets.getSkyHeight());
    const auto left = static_cast<GLint>((rect.low.x * 0.5f + 0.5f) * w);
    const auto bottom = static_cast<GLint>((rect.low.y * 0.5f + 0.5f) * h);
    const auto right = static_cast<GLint>(std::ceil((rect.high.x * 0.5f + 0.5f) * w));
    const auto top = static_cast<GLint>(std::ceil((rect.high.y * 0.5f + 0.5f) * h));
    const auto middle = [](GLint texel, float size) {
        return (static_cast<float>(texel) + 0.5f) / size;
    };
    m_painted = {middle(left, w), middle(bottom, h), middle(right - 1, w), middle(top - 1, h)};
    glBindFramebuffer(GL_FRAMEBUFFER, targets.sky_target.getId());
    glViewport(0, 0, targets.getSkyWidth(), targets.getSkyHeight());
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_SCISSOR_TEST);
    glScissor(left, bottom, right - left, top - bottom);
    glBindVertexArray(m_empty.getId());
    m_soft.use();
    m_soft.set("uRay", view.getRay());
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glDisable(GL_SCISSOR_TEST);
    glEnable(GL_DEPTH_TEST);
}

void SkyPass::drawBackground(const FrameView& view, const Targets& targets) {
    if (m_volume)
        m_volume->march(
            view, targets,
            {m_clouds.place, m_altitude, m_is_main, m_clouds.cover > 0 && !view.orthographic});
    glDepthMask(GL_FALSE);
    gl::bindTexture(UNIT_SOFT, targets.sky);
    glBindVertexArray(m_empty.getId());
    const int chosen = chooseBackground(view);
    for (int i = view.everything ? 0 : chosen; i <= chosen; i++) {
        gl::Program& program = m_backgrounds[i];
        program.use();
        program.set("uRay", view.getRay());
        program.set("uSoftRect", m_painted);
        if (m_volume) m_volume->bind(program);
        glDrawArrays(GL_TRIANGLES, 0, 3);
    }
    glDepthMask(GL_TRUE);
}

void SkyPass::drawClouds(const FrameView& view, const Targets& targets) {
    if (m_volume)
        m_volume->blend(view, targets);
    else
        drawDeck(view, targets);
}

void SkyPass::drawDeck(const FrameView& view, const Targets& targets) {
    const bool readable = gl::hasClipControl() && !view.orthographic;
    if (m_clouds.base >= 0 || m_clouds.cover <= 0 || !readable) return;
    glBindFramebuffer(GL_FRAMEBUFFER, targets.light_target.getId()); // it reads the depth
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    m_deck.use();
    gl::bindTexture(gl::UNIT_FIRST_OWN, targets.depth);
    m_deck.set("uRay", view.getRay());
    m_deck.set("uNearFar", vec4(static_cast<float>(view.near), static_cast<float>(view.far), 0, 0));
    glBindVertexArray(m_empty.getId());
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glDisable(GL_BLEND);
    glEnable(GL_DEPTH_TEST);
    glBindFramebuffer(GL_FRAMEBUFFER, targets.scene_target.getId());
}

} // namespace ig
