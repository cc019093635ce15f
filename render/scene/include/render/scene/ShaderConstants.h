// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

/// What the renderer's C++ and its shaders must agree on. The build makes a shader text of these
/// lines: each a constant of a plain type, an array of floats, or a vector.
namespace ig {

constexpr float PI = 3.14159265f;
constexpr float NOISE_PERIOD = 14400;       ///< m; a multiple of all scales that noise is asked at
constexpr int NOISE_EDGE = 256;             ///< texels of the noise along an edge
constexpr float HALF_CURVATURE = 7.848e-8f; ///< half the earth's, 1/m
constexpr float LEVEL_SLOPE = 128 / 255.0f; ///< how no slope is encoded in the sea's tiles
constexpr float LEVEL_WAKE = 0.50196078f;   ///< and in the maps of wakes
constexpr float STEEPEST_WAKE = 0.5f;       ///< slope that they can hold
constexpr float HULL_WAVES = 1.2f; ///< reach of what a hull raises by itself, in 2 pi U^2 / g
/// How much each of the sea's tiles counts in the measure of breaking crests.
constexpr float BREAKING_WEIGHTS[] = {1.6f, 1.1f, 0.45f};
/// Whitecaps: the logistic of that measure, stretched and cut, goes all the way from 0 to 1.
constexpr float WHITECAP_GAIN = 1.08f, WHITECAP_LOSS = 0.04f;
constexpr int MOST_WAKES = 4;          ///< drawn at once, the nearest
constexpr int MOST_DOWNDRAUGHTS = 4;   ///< likewise
constexpr float CLOUD_PERIOD = 24576;  ///< m, after which the clouds repeat
constexpr float CLOUD_HEAPS = 12;      ///< heaps are laid on so many times as small
constexpr float CLOUD_FRAY = 0.22f;    ///< how far heaps move the clouds' edges, of their thickness
constexpr float CLOUD_THICKEST = 1.1f; ///< of the field, heaps laid on: clouds reach their tops
constexpr float CLOUD_RISE = 384;      ///< m, over which the clouds' slopes are taken
constexpr float GLOW_G = 0.76f;        ///< how much hazy air scatters forwards
constexpr int MOST_BLADES = 2;         ///< of wipers, at once
constexpr float DOWNWASH_REACH = 4.5f; ///< of rings in the water, radii of the downdraught
constexpr float SUN_IRRADIANCE = 20;   ///< above the air
/// Irradiance of 1 lx from a lamp by night, which is drawn brighter than it is: its moonlight has
/// 0.2 a lux. Daylight has DAY_LUX, and so have lamps by day.
constexpr float LUX = 0.01f, DAY_LUX = 1.6e-4f;
/// What lamps add to the picture nears this, times PI over the exposure: the eye gets used to it.
constexpr float LAMP_SHOULDER = 0.65f;
constexpr int MOST_LIGHTS = 64;      ///< that light what is around them in a frame, see LightGrid
constexpr int LIGHTS_A_CELL = 8;     ///< of its cells
constexpr int MOST_GLINTS = 12;      ///< lamps that the sea mirrors as paths of glitter
constexpr float GLINT_WIDTH = 0.15f; ///< rad to each side of its lamp, where a path ends
constexpr int LIGHT_COLUMNS = 16, LIGHT_ROWS = 9, LIGHT_SLICES = 24;
constexpr int CHUNK_CELLS = 32;  ///< along a chunk of ground, whose vertices have a ring of skirt
constexpr int PATCH_CELLS = 100; ///< of tiles of imagery on a chunk, at most
constexpr vec3 SUN_COLOR{1, 0.97f, 0.92f};

} // namespace ig
