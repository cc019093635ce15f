// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/mat.h"

namespace ig {

/// What every pass knows about the frame. All positions and directions are in the eye's own
/// east-north-up frame E, its origin at the eye: nothing here is far from zero but the far.
///
/// The build makes the shaders' uniform block (std140) of these lines: `light_direction` is
/// `uLightDirection` there.
struct FrameBlock {
    mat4 projection;    ///< eye (x right, y up, looking along -z) to clip, reversed depth
    mat4 view;          ///< E to eye
    mat4 shadow;        ///< E to right and up in the shadow maps, m, and their depth, 0 to 1
    vec4 shadow_near;   ///< from there to each map's edges at -1 and 1: x: scale, yz: offset
    vec4 shadow_middle; ///< likewise, each wider than the one before
    vec4 shadow_far;
    vec4 shadow_farthest;
    mat4 hills;           ///< E to the unit square of the hills' map, and height above its plane, m
    vec4 hill_shade;      ///< x: 1 / height over which light comes back, 1/m; 0 without shadows
    vec4 light_direction; ///< towards the sun, or the moon at night; w: how dark shadows are
    vec4 light;           ///< irradiance of that light; w: exposure
    vec4 ambient;         ///< irradiance of the sky; w: extinction of the air at sea level, 1/m
    vec4 air;             ///< x: 1 / scale height of the haze, 1/m; y: haze at the eye;
                          ///< z: altitude, m; w: dip of the horizon, rad
    vec4 screen;          ///< width, height, and their inverses, pixels
    vec4 sun_direction;   ///< w: brightness of the disc
    vec4 moon_direction;  ///< w: brightness of the disc
    vec4 sky;             ///< x: gain of the sky map; y: stars; z: night-to-day turn of the
                          ///< stars, rad; w: haze that covers the sky itself
    vec4 weather;         ///< x: rain, y: snow, z: cloud cover, w: overcast, or in the clouds
    vec4 time;            ///< x: scene time, s; y: angle of a pixel, rad; z: lightning, 0 to 1
    vec4 bolt;            ///< towards the bolt's foot (unit, level); z: its shape, 0 to 1;
                          ///< w: brightness
};

} // namespace ig
