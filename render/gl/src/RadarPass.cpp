// SPDX-License-Identifier: MIT
#include "RadarPass.h"

#include "ig/app/Renderer.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/scene/Mesh.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "plugins/ocean/ObjectOcean.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "render/scene/remainders.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace ig {

namespace {

constexpr float LEAST_TEXELS = 2.2f;   ///< half the edge of the smallest rectangle
constexpr float BLIND_RANGE = 150;     ///< m: the radar still sends when nearer echoes come back
constexpr float FLAT = 2;              ///< m: what is lower reflects everything away
constexpr float FULL_SIDE = 20;        ///< m: edge of a wall that is as bright as can be
constexpr float LEAST_STRENGTH = 0.1f; ///< weaker targets are lost in the noise

// Periods of the two layers of noise that make the cells, m. Not in a simple ratio, so that the sum
// doesn't repeat within a picture.
constexpr double CELLS_WIDE = 41000, CELLS_FINE = 17300;
constexpr float GRAIN = 60; ///< smallest edge of the speckle's grains, m
constexpr double DEGREE = EllipsoidModel::DEGREE;
constexpr int UNIT_HORIZON = gl::UNIT_FIRST_OWN + 1;

void makeHorizonTexture(gl::Texture& texture, const float* lowest) {
    gl::makeTexture(texture, RadarHorizon::BEARINGS, RadarHorizon::RANGES,
                    {GL_R32F, GL_RED, GL_FLOAT, GL_REPEAT}, lowest); // bearings go round
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

} // namespace

void RadarPass::init() {
    m_empty.create();
    m_corner_array.create();
    m_corner_buffer.create();
    glBindVertexArray(m_corner_array.getId());
    glBindBuffer(GL_ARRAY_BUFFER, m_corner_buffer.getId());
    glEnableVertexAttribArray(0);
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, sizeof(Corner), nullptr);
    glVertexAttribPointer(1, 1, GL_FLOAT, GL_FALSE, sizeof(Corner),
                          reinterpret_cast<const void*>(offsetof(Corner, strength)));
    m_ground.start("screen.vert", "radar.frag", {},
                   {{"uLand", gl::UNIT_FIRST_OWN}, {"uHorizon", UNIT_HORIZON}});
    makeHorizonTexture(m_horizon_texture, nullptr);
    m_target.start("radar_target.vert", "radar_target.frag");
}

void RadarPass::draw(const World& world, const FrameView& view, const FrameInfo& frame,
                     const gl::Texture& noise, float gain, const ObjectOcean* sea) {
    m_drawn.pictures++;
    gain = std::clamp(gain, 0.0f, 1e6f);
    m_corners.clear();
    m_ocean = nullptr;
    m_terrain = nullptr;
    for (const Node* node : world.getNodes())
        findGround(*node);
    updateHorizon(view);
    for (const Node* node : world.getNodes())
        gather(*node, frame, view);
    if (sea) m_ocean = sea;
    if (view.everything) addRectangle({0, 0, -1000}, {1, 0, 0}, {0, 1, 0}, 1, view);
    m_land.adopt(m_terrain);
    moveCells(view, frame);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    drawGround(view, frame, noise, gain);
    drawTargets(gain);
}

// ------------------------------------------------------------------ what the world holds

void RadarPass::findGround(const Node& node) {
    if (!node.isEnabled()) return;
    if (node.getType() == OBJECT_OCEAN)
        m_ocean = static_cast<const ObjectOcean*>(&node);
    else if (node.getType() == OBJECT_TERRAIN)
        m_terrain = static_cast<const ObjectTerrain*>(&node);
    for (int i = 0; i < node.getNumChildren(); i++)
        findGround(*node.getChild(i));
}

void RadarPass::updateHorizon(const FrameView& view) {
    if (m_horizon.update(m_terrain ? m_terrain->getGrids() : TerrainGrids(), view.geodetic))
        makeHorizonTexture(m_horizon_texture, m_horizon.getMap().data());
}

void RadarPass::gather(const Node& node, const FrameInfo& frame, const FrameView& view) {
    if (!node.isEnabled() || &node == frame.focus) return;
    if (node.getType() == OBJECT_MESH) addTarget(static_cast<const ObjectMesh&>(node), view);
    for (int i = 0; i < node.getNumChildren(); i++)
        gather(*node.getChild(i), frame, view);
}

/// The footprint of the mesh's bounds: a rectangle along its own X and Y, taken as level.
void RadarPass::addTarget(const ObjectMesh& object, const FrameView& view) {
    const Mesh& mesh = *object.getMesh();
    if (mesh.getBounds().isEmpty()) return;
    const vec3 half = (mesh.getHighest() - mesh.getLowest()) / 2;
    const mat4 transform = view.toFrame(object.getWorldTransform());
    const vec3 center = transform * ((mesh.getHighest() + mesh.getLowest()) / 2);
    const vec3 x = transform.getX() * half.x, y = transform.getY() * half.y;
    const float height =
        2 * (std::abs(x.z) + std::abs(y.z) + std::abs(transform.getZ().z * half.z));
    const float width = 2 * std::max(std::hypot(x.x, x.y), std::hypot(y.x, y.y));
    const float seen = getShareSeen(center, height, view);
    const float strength = seen * std::min(std::sqrt(height * width) / FULL_SIDE, 1.0f);
    if (height < FLAT || strength < LEAST_STRENGTH) return;
    if (std::hypot(center.x, center.y) < BLIND_RANGE + width / 2) return;
    const float texel = view.pixel_angle * (view.orthographic ? 1 : length(center));
    const float least = LEAST_TEXELS * texel;
    const auto widen = [least](const vec3& edge, const vec3& otherwise) {
        const float now = std::hypot(edge.x, edge.y);
        return now > 1e-3f ? vec3(edge.x, edge.y, 0) * std::max(1.0f, least / now)
                           : otherwise * least;
    };
    addRectangle(center, widen(x, {1, 0, 0}), widen(y, {0, 1, 0}), strength, view);
}

/// How much of something that high stands above what hides it; what is under water doesn't count.
float RadarPass::getShareSeen(const vec3& center, float height, const FrameView& view) const {
    const double away = std::hypot(center.x, center.y);
    const double drop = away * away / (2 * EllipsoidModel::MEAN_RADIUS);
    const auto middle = static_cast<float>(view.geodetic.z + center.z + drop);
    const float top = middle + height / 2, foot = std::max(middle - height / 2, 0.0f);
    const float hidden = m_horizon.getLowest({center.x, center.y});
    return top > foot ? std::clamp((top - hidden) / (top - foot), 0.0f, 1.0f) : 0;
}

/// From its middle and the way to the middle of two of its sides (E).
void RadarPass::addRectangle(const vec3& center, const vec3& x, const vec3& y, float strength,
                             const FrameView& view) {
    const auto& p = view.projection.columns;
    const auto add = [&](const vec3& corner) {
        const vec3 eye = view.view * corner;
        m_corners.push_back({{p[0].x * eye.x + p[2].x * eye.z + p[3].x,
                              p[1].y * eye.y + p[2].y * eye.z + p[3].y, p[2].w * eye.z + p[3].w},
                             strength});
    };
    for (const auto& [a, b] : {std::pair(x, y), std::pair(-x, -y)}) {
        add(center + a + b);
        add(center + a - b);
        add(center - a + b);
    }
}

// ------------------------------------------------------------------ the sea

/// Clutter at the radar itself, where it ends, and where the waves come from.
void RadarPass::setSea(float texel) {
    vec4 sea;
    if (m_ocean) {
        const OceanFrame& frame = m_ocean->getFrame();
        const auto height = static_cast<float>(frame.significant_height);
        const double from = frame.wave_direction * DEG_TO_RAD<double>;
        sea = vec4(std::min(0.1f + 0.4f * height, 0.95f) * std::min(height / 0.1f, 1.0f),
                   std::min(2000 + 3000 * height, 14000.0f), static_cast<float>(std::sin(from)),
                   static_cast<float>(std::cos(from)));
    }
    m_ground.set("uSea", sea);
    // The speckle is another one in each picture.
    const double step = m_drawn.pictures * 0.618033988749895;
    m_ground.set("uSpeckle",
                 vec3(1 / std::max(texel, GRAIN), 91 * fraction(step), 91 * fraction(1.7 * step)));
}

// ------------------------------------------------------------------ precipitation

/// The cells lie in a plane of metres east and north that belongs to the earth, and drift in it.
void RadarPass::moveCells(const FrameView& view, const FrameInfo& frame) {
    if (std::abs(view.geodetic.y - m_drawn.cells_latitude) > 3)
        m_drawn.cells_latitude = view.geodetic.y;
    const double step = std::clamp(frame.time - m_drawn.drift_time, 0.0, 3600.0);
    m_drawn.drift.x += frame.wind.x * step;
    m_drawn.drift.y += frame.wind.y * step;
    m_drawn.drift_time = frame.time;
    const double longitude_scale = DEGREE * std::cos(m_drawn.cells_latitude * DEG_TO_RAD<double>);
    m_drawn.cells_place = {view.geodetic.x * longitude_scale - m_drawn.drift.x,
                           view.geodetic.y * DEGREE - m_drawn.drift.y};
}

/// The field of noise is spread evenly between 0 and 1: the threshold is the share that stays dry.
void RadarPass::setCells(const FrameInfo& frame) {
    const float amount = std::clamp(std::max({frame.rain, frame.snow, frame.hail}), 0.0f, 1.0f);
    const float power = std::max({frame.rain, 0.3f * frame.snow, 1.3f * frame.hail});
    m_ground.set("uRain",
                 vec4(0.74f - 0.34f * amount, amount > 0 ? 0.45f + 0.85f * power : 0, 0, 0));
    const dvec2& p = m_drawn.cells_place;
    m_ground.set("uCells", vec4(fraction(p.x / CELLS_WIDE), fraction(p.y / CELLS_WIDE),
                                fraction(p.y / CELLS_FINE), fraction(p.x / CELLS_FINE)));
    m_ground.set("uCellScale",
                 vec2{static_cast<float>(1 / CELLS_WIDE), static_cast<float>(1 / CELLS_FINE)});
}

// ------------------------------------------------------------------ drawing

void RadarPass::drawGround(const FrameView& view, const FrameInfo& frame, const gl::Texture& noise,
                           float gain) {
    m_ground.use();
    m_ground.set("uRay", view.getRay());
    const auto& c = view.view.columns; // its rows are the eye's axes in E
    m_ground.set("uRight", vec3(c[0].x, c[1].x, c[2].x));
    m_ground.set("uUp", vec3(c[0].y, c[1].y, c[2].y));
    m_ground.set("uBack", vec3(c[0].z, c[1].z, c[2].z));
    const auto altitude = static_cast<float>(view.geodetic.z);
    const float texel = view.pixel_angle * (view.orthographic ? 1 : std::max(altitude, 1.0f));
    m_ground.set("uSite", vec4(altitude, static_cast<float>(0.5 / EllipsoidModel::MEAN_RADIUS),
                               texel, gain));
    m_ground.set("uParallel", view.orthographic ? 1 : 0);
    m_ground.set("uBlind", BLIND_RANGE);
    m_land.bind(m_ground, view, texel);
    gl::bindTexture(UNIT_HORIZON, m_horizon_texture);
    m_ground.set("uReach", RadarHorizon::REACH);
    setSea(texel);
    setCells(frame);
    gl::bindTexture(gl::UNIT_NOISE, noise);
    glBindVertexArray(m_empty.getId());
    glDrawArrays(GL_TRIANGLES, 0, 3);
}

/// Of two echoes from one place the stronger counts.
void RadarPass::drawTargets(float gain) {
    if (m_corners.empty()) return;
    m_target.use();
    m_target.set("uGain", gain);
    gl::stream(m_corner_array, m_corner_buffer, std::as_bytes(std::span(m_corners)));
    glEnable(GL_BLEND);
    glBlendEquation(GL_MAX);
    glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(m_corners.size()));
    glBlendEquation(GL_FUNC_ADD);
    glDisable(GL_BLEND);
}

} // namespace ig
