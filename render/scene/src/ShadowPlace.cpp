// SPDX-License-Identifier: MIT
#include "render/scene/ShadowPlace.h"

#include "ig/math/quat.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr double DEPTH = 12000;     // m each way along the light; 1.4 mm in 24 bits
constexpr double LEVEL_STEP = 1000; // m
constexpr int TEXELS_A_STEP = 64;   // of a middle: a sixteenth of the smallest map
constexpr double BIAS = 0.33;       // texels: a lit surface must not shade itself
constexpr double UP_THE_LIGHT = 1500, DOWN_THE_LIGHT = 400; // m: what casts into the first map

// The sun turns by this in 10 s; the end of a shadow of 50 m moves by 3 cm across the light.
constexpr double TURN = 0.04 * DEG_TO_RAD<double>, JUMP = 1 * DEG_TO_RAD<double>;
constexpr int LEAST_AGE = 8; // frames: a quick sun doesn't have all maps drawn in every frame

/// Stays where it is until it is a step off.
double snap(double held, double wanted, double step) {
    return std::abs(wanted - held) < 0.75 * step ? held : std::round(wanted / step) * step;
}

dvec3 along(const dmat3& axes, const dvec3& v) {
    return {dot(axes.columns[0], v), dot(axes.columns[1], v), dot(axes.columns[2], v)};
}

} // namespace

void ShadowPlace::follow(const dvec3& eye, const dvec3& focus, const dvec3& light) {
    const double turned = length(cross(m_axes.getZ(), light));
    m_new = m_age < 0 || turned > JUMP || dot(m_axes.getZ(), light) < 0 ||
            (turned > TURN && m_age >= LEAST_AGE);
    m_age++;
    if (m_new) {
        // Sun and moon never stand over a pole.
        const dvec3 pole = std::abs(light.z) < 0.99 ? dvec3(0, 0, 1) : dvec3(1, 0, 0);
        const dvec3 right = normalize(cross(pole, light));
        m_axes = {right, cross(light, right), light};
        m_age = 0;
    }
    const dvec3 at_eye = along(m_axes, eye);
    const double level = m_level;
    m_level = snap(level, at_eye.z, LEVEL_STEP);
    m_new |= m_level != level;
    m_focus = along(m_axes, focus);
    for (int map = 0; map < NUM_SHADOW_MAPS; map++) {
        const dvec3& about = map == 0 ? m_focus : at_eye;
        const double step = TEXELS_A_STEP * getTexel(map);
        m_wanted[map] = {snap(m_shown[map].x, about.x, step), snap(m_shown[map].y, about.y, step)};
    }
}

bool ShadowPlace::isElsewhere(int map) const {
    return m_wanted[map].x != m_shown[map].x || m_wanted[map].y != m_shown[map].y;
}

unsigned ShadowPlace::findMaps(const dvec3& center, double radius) const {
    const dvec3 c = along(m_axes, center);
    unsigned maps = 0;
    for (int map = 0; map < NUM_SHADOW_MAPS; map++) {
        const double reach = SHADOW_RADII[map] + radius;
        if (std::abs(c.x - m_wanted[map].x) > reach || std::abs(c.y - m_wanted[map].y) > reach)
            continue;
        const double up = c.z - m_focus.z;
        const bool counts = map == 0 ? up < UP_THE_LIGHT + radius && up > -DOWN_THE_LIGHT - radius
                                     : radius > getTexel(map);
        if (counts) maps |= 1U << map;
    }
    return maps;
}

mat4 ShadowPlace::toMap(int map, const dmat4& pose) const {
    const dmat3 turned = transpose(m_axes) * pose.getMat3();
    const dvec3 place = along(m_axes, pose.getTranslate());
    const double across = 0.5 / SHADOW_RADII[map], depth = 0.5 / DEPTH;
    const auto scale = [&](const dvec3& v) {
        return dvec3(v.x * across, v.y * across, -v.z * depth);
    };
    const dvec2& middle = m_wanted[map];
    const dvec3 off(place.x - middle.x, place.y - middle.y,
                    place.z - m_level - BIAS * getTexel(map));
    return mat4(dmat4({scale(turned.getX()), scale(turned.getY()), scale(turned.getZ())},
                      scale(off) + dvec3(0.5, 0.5, 0.5)));
}

vec3 ShadowPlace::toTexels(int map, const dvec3& center, double radius) const {
    const dvec3 c = along(m_axes, center);
    const double texel = getTexel(map), half = m_size / 2.0;
    return vec3(dvec3((c.x - m_wanted[map].x) / texel + half,
                      (c.y - m_wanted[map].y) / texel + half, radius / texel));
}

void ShadowPlace::fill(const FrameView& view, FrameBlock& block) const {
    const dmat3 rows = transpose(m_axes) * view.frame; // its columns: E's axes along the light's
    const dvec3 eye = along(m_axes, view.eye);
    for (int i = 0; i < 3; i++)
        block.shadow.columns[i] = vec4(
            vec3(dvec3(rows.columns[i].x, rows.columns[i].y, -rows.columns[i].z * 0.5 / DEPTH)), 0);
    block.shadow.columns[3] = {0, 0, static_cast<float>(0.5 - (eye.z - m_level) * 0.5 / DEPTH), 1};
    vec4* const places[] = {&block.shadow_near, &block.shadow_middle, &block.shadow_far,
                            &block.shadow_farthest};
    for (int map = 0; map < NUM_SHADOW_MAPS; map++) {
        const double scale = 1 / SHADOW_RADII[map];
        *places[map] = vec4(
            vec3(dvec3(scale, (eye.x - m_shown[map].x) * scale, (eye.y - m_shown[map].y) * scale)),
            0);
    }
}

} // namespace ig
