// SPDX-License-Identifier: MIT
// What ships and helicopters do to the waves: wakes out of the two maps around the eye, and
// downwash.
uniform vec4 uDowndraughts[MOST_DOWNDRAUGHTS]; // place in the plane from the nadir, radius, strength;
                                               // those that there are not are far away
uniform sampler2D uEffects, uFarEffects;      // slopes, foam and calm of wakes around the eye
uniform vec4 uEffectsPlace, uFarEffectsPlace; // corner in the plane from the nadir, 1 / edge,
                                              // log2 of a texel, m

// Near the eye the fine map of effects, beyond it the coarse one.
vec4 effectsAt(Water w) {
    vec2 place = (w.plane - uEffectsPlace.xy) * uEffectsPlace.z;
    vec2 far_place = (w.plane - uFarEffectsPlace.xy) * uFarEffectsPlace.z;
    vec2 off = abs(place - 0.5) * 2.0;
    float beyond = smoothstep(0.84, 0.94, max(off.x, off.y));
    vec4 near = textureLod(uEffects, place, w.level - uEffectsPlace.w);
    vec4 far = textureLod(uFarEffects, far_place, w.level - uFarEffectsPlace.w);
    return mix(near, far, beyond);
}

// Waves and calm of wakes; returns their foam.
float addWakes(Water w, inout Sea sea) {
    vec4 effects = effectsAt(w);
    sea.slope = sea.slope * (1.0 - 0.5 * effects.w) + (effects.xy - LEVEL_WAKE) * (2.0 * STEEPEST_WAKE);
    sea.variance *= 1.0 - 0.75 * effects.w;
    return min(effects.z * 1.15, 1.0);
}

// The one whose rings are the strongest. Chosen before any of them is drawn, and by constant
// indices: a loop over all would cost software renderers four times as much.
vec4 strongestDowndraught(Water w) {
    vec4 strongest = uDowndraughts[0];
    vec2 q = (w.plane - strongest.xy) / strongest.z;
    float least = dot(q, q);
    for (int i = 1; i < MOST_DOWNDRAUGHTS; i++) {
        vec4 wind = uDowndraughts[i];
        q = (w.plane - wind.xy) / wind.z;
        float off = dot(q, q);
        strongest = off < least ? wind : strongest;
        least = min(off, least);
    }
    return strongest;
}

// Rings that run outwards under wind from above, and the foam that they tear off. Returns the foam.
float addDownwash(Water w, inout Sea sea) {
    vec4 wind = strongestDowndraught(w);
    vec2 q = w.plane - wind.xy;
    float r = max(length(q), 0.01), x = r / wind.z;
    vec2 outward = q / r;
    // The noise goes round 7 and 19 times, so that a metre of water is as much of it as the larger
    // of what lies along the circle and along the radius.
    float turn = atan(q.y, q.x) / (2.0 * PI), level = w.level + log2(NOISE_EDGE);
    float ripple = textureLod(uNoise, vec2(turn * 7.0, r / 22.0 - uTime.x * 0.45),
                              level + log2(max(7.0 / (2.0 * PI * r), 1.0 / 22.0))).x;
    float torn = textureLod(uNoise, vec2(turn * 19.0, r / 9.0 - uTime.x * 1.1),
                            level + log2(max(19.0 / (2.0 * PI * r), 1.0 / 9.0))).x;
    float strength = smoothstep(0.15, 0.7, x) * exp(-max(x - 1.0, 0.0) * 1.1) * wind.w *
                     step(x, DOWNWASH_REACH);
    float near = r * 3.9 - uTime.x * 13.0 + 1.6 * ripple, far = r * 1.9 - uTime.x * 8.5 - 1.3 * ripple;
    sea.slope = mix(sea.slope, sea.slope * 0.5, strength) +
                outward * strength * (0.20 * cos(near) + 0.16 * cos(far));
    sea.variance += 0.02 * strength;
    float annulus = (x - 1.05) / 0.4;
    return strength * (0.42 * exp(-annulus * annulus) * (0.4 + 0.8 * torn) +
                       0.35 * smoothstep(0.2, 1.0, sin(near)) * exp(-max(x - 0.8, 0.0) * 0.7) * torn);
}
