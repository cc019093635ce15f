// SPDX-License-Identifier: MIT
// The water of a pixel, and the waves on it: those that the picture can resolve as slopes, those
// that it can't as variance. Nothing here asks for a level of detail implicitly: neighbours in the
// picture may be other waves, or no water.
uniform vec4 uSlopes[4]; // per tile: scale of the encoded slopes; their variance, each axis; log2 of
                         // a texel, m
uniform vec4 uFoam; // threshold, width and spread of the breaking measure; mean of tile 2
uniform vec4 uWind; // where it blows (unit), slope variance of the ripples, streaks 0 to 1
uniform sampler2D uSlope0, uSlope1, uSlope2, uSlope3;
uniform sampler2D uNoise;

struct Water {
    vec3 position; // E, m
    vec3 toEye;
    vec2 plane;    // in the waves' plane, from the nadir, at rest
    float height, divergence;
    float patches; // of the ripples
    float footprint; // of the pixel across the line of sight, m
    float level;   // log2 of what it covers along the water, m
};

struct Sea {
    vec2 slope;
    float variance; // of the slopes that this pixel can't resolve, each axis
    float breaking; // how much the crests here have broken
    float lost;     // share of that which the mip levels have averaged away
};

struct Foam {
    float share; // of the pixel, 0 to 1
    float lace;  // 0 to 1: dense where it is high
    float below; // bubbles under the surface, 0 to 1
};

// The noise laid out so that it repeats after `period` metres.
vec4 noiseAt(vec2 place, vec2 period, float level) {
    return textureLod(uNoise, place / period, level + log2(NOISE_EDGE / min(period.x, period.y)));
}

Sea waves(Water w) {
    const float ZERO = 2.0 * LEVEL_SLOPE;
    Sea sea;
    vec4 s = textureLod(uSlope0, w.plane * uTile[0].x + uTile[0].yz, w.level - uSlopes[0].z);
    vec4 e = textureLod(uSlope0, turn(w.plane) * uTile[0].x + uTurned.zw, w.level - uSlopes[0].z);
    s.zw = (s.zw + e.zw) * 0.5;
    sea.slope = (s.xy * 2.0 - ZERO + turnBack(e.xy * 2.0 - ZERO)) * (0.70710678 * uSlopes[0].x);
    sea.variance = s.z * uSlopes[0].y;
    sea.breaking = s.w * BREAKING_WEIGHTS[0];
    sea.lost = s.z * 0.35;
    s = textureLod(uSlope1, w.plane * uTile[1].x + uTile[1].yz, w.level - uSlopes[1].z);
    sea.slope += (s.xy * 2.0 - ZERO) * uSlopes[1].x;
    sea.variance += s.z * uSlopes[1].y;
    sea.breaking += s.w * BREAKING_WEIGHTS[1];
    sea.lost += s.z * 0.45;
    s = textureLod(uSlope2, w.plane * uTile[2].x + uTile[2].yz, w.level - uSlopes[2].z);
    sea.slope += (s.xy * 2.0 - ZERO) * uSlopes[2].x;
    sea.variance += s.z * uSlopes[2].y;
    sea.breaking += s.w * BREAKING_WEIGHTS[2];
    sea.lost += s.z * 0.2;
    s = textureLod(uSlope3, w.plane * uTile[3].x + uTile[3].yz, w.level - uSlopes[3].z);
    sea.slope += (s.xy * 2.0 - ZERO) * (uSlopes[3].x * w.patches);
    sea.variance += s.z * uSlopes[3].y * w.patches * w.patches + uWind.z * w.patches + 1e-5;
    sea.slope /= max(0.35, 1.0 + 0.5 * w.divergence); // slopes are told over the water at rest
    return sea;
}
