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
    /// Colour of far haze by x, the cosine of the azimuth from the sun's, and the sun's glow g:
    /// mean + slope x + bend x² + glow g. Their w: unit vector towards the sun's azimuth, and its
    /// distance from the zenith, as a sine.
    vec4 haze_mean;
    vec4 haze_slope;
    vec4 haze_bend;
    vec4 haze_glow;
    vec4 cloud_place; ///< x, y: of the eye in the field of clouds; z: periods per metre;
                      ///< w: half the earth's curvature, 1/m
    vec4 cloud_layer; ///< base above the eye, m; thickness, m; thickness of the field where clouds
                      ///< begin, half the range of it over which they do
    vec4 cloud_light; ///< irradiance of the key light on them; w: 1 where they are closed
    vec4 cloud_sky;   ///< colour of what the sky lights of them; w: darkness of the closed layer
    vec4 cloud_haze;  ///< their mean colour from below; w: share of it in the haze
    vec4 cloud_shade; ///< x, y: how far a shadow falls to the side on 1 m; z: share of the key
                      ///< light that clouds take away; w: altitude of their bases, m
    vec4 cloud_air;   ///< x: extinction of the air on the way to them, 1/m; y: levels of the sky
                      ///< map that it lacks, the sharpest
    vec4 weather;     ///< x: rain, y: snow, z: cloud cover, w: overcast, or in the clouds
    vec4 time;        ///< x: scene time, s; y: angle of a pixel, rad; z: lightning, 0 to 1;
                      ///< w: gain of what shines by itself
    vec4 bolt;        ///< towards the bolt's foot (unit, level); z: its shape, 0 to 1;
                      ///< w: brightness
};

} // namespace ig
