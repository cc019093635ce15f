// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"
#include "render/scene/shares.h"

namespace ig {

/// Light of sun and moon as it comes through the air, irradiances; directions towards them in E.
vec3 sunlight(const vec3& direction);
vec3 moonlight(const vec3& direction);
/// Whether the sun is the light that casts shadows; else the moon is.
bool sunRules(const vec3& sun);
/// Of the night sky.
vec3 nightGlow(const vec3& moon);
/// How bright lightning's bolts are, in the sky's measure: they must outshine day and night alike.
float boltBrightness(const vec3& sun);

float luminance(const vec3& color);

} // namespace ig
