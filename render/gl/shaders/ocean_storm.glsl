// SPDX-License-Identifier: MIT
// A sea in a gale, for programs with the word STORM: breaking crests are thick and white, what they
// leave behind is drawn out into streaks along the wind and thins to bubbles below the surface, and
// the light dances on ripples that no tile holds. All of it grows from nothing with `uStorm`, so
// that the first gust changes no picture.
uniform vec2 uStorm; // how much of a gale it is, and how much of a hurricane, 0 to 1

// Ripples finer than the tiles: the finest tile once more, smaller and turned, which takes its share
// of the variance from what the mirror is widened by.
void addRipples(Water w, inout Sea sea) {
    const float FINER = 5.7;
    float variance = uWind.z * w.patches * uStorm.x;
    vec4 s = textureLod(uSlope3, turn(w.plane) * (uTile[3].x * FINER) + uTile[3].zy,
                        w.level - uSlopes[3].z + log2(FINER));
    vec2 slope = (s.xy * 2.0 - 2.0 * LEVEL_SLOPE) * uSlopes[3].x;
    sea.slope += slope * sqrt(variance / max(uSlopes[3].y, 1e-5));
    sea.variance -= variance * (1.0 - s.z);
}

// A pixel holds too few facets that mirror a light to show their mean: some flash, most don't. So
// that most of what widens the mirror tilts whole pixels instead, eight times a second another way;
// far away, where pixels hold many facets, none of it.
Sea sparkling(Water w, Sea sea) {
    float tilted = 0.7 * uStorm.x / (1.0 + w.footprint * w.footprint);
    const float SPREAD = 0.111; // standard deviation of the noise's rise
    float level = floor(w.level), tick = mod(floor(uTime.x * 8.0), 97.0); // large numbers hash badly
    vec2 jump = vec2(hash(vec2(tick, level)), hash(vec2(level, tick)));
    vec2 tilt = textureLod(uNoise, w.plane * (8.0 / NOISE_EDGE * exp2(-level)) + jump, 0.0).zw - 0.5;
    sea.slope += tilt * sqrt(sea.variance * tilted) / SPREAD;
    sea.variance *= 1.0 - tilted;
    return sea;
}

// `excess` of the breaking measure over the whitecaps' threshold, in its spreads; `along`: place
// along and across the wind; `lace` and `grain` as the calmer sea's foam has them.
Foam stormFoam(Water w, float excess, vec2 along, float lace, float grain, float from_outside) {
    // Streaks are ten times as long as they are wide, and lie in bands.
    vec4 band = noiseAt(along, vec2(480.0, 60.0), w.level);
    vec4 coarse = noiseAt(along, vec2(144.0, 14.4), w.level);
    vec4 fine = noiseAt(along, vec2(28.8, 7.2), w.level);
    float streaks = 0.62 * coarse.x + 0.38 * fine.x;
    // Of what is white, only the freshest is thick.
    float fresh = smoothstep(0.7, 2.4, excess + 1.4 * (lace - 0.5));
    fresh = max(fresh, smoothstep(0.6, 1.0, from_outside));
    float old = smoothstep(-1.2, 1.8, excess) + (0.15 + 0.45 * uStorm.y) * smoothstep(0.3, 0.9, band.y);
    old = clamp(max(old, from_outside), 0.0, 1.0);
    float near = exp(-w.footprint * w.footprint * 0.6);
    float threads = mix(old * old, smoothstep(1.0 - old, 1.6 - old, streaks), near);
    Foam foam;
    foam.share = max(fresh * (0.5 + 0.5 * smoothstep(0.1, 0.7, lace)), threads * (0.12 + 0.42 * old));
    foam.lace = mix(0.5 * streaks - 0.3, 1.6 * lace + 2.5 * (grain - 0.5) - 0.9, fresh);
    foam.below = old * (1.0 - 0.5 * threads);
    return foam;
}

// What bubbles below the surface send back of the light.
vec3 milk(Foam foam, vec3 light) {
    return vec3(0.016, 0.062, 0.066) * foam.below *
           (uAmbient.rgb + light * max(uLightDirection.z, 0.0) * 0.32);
}
