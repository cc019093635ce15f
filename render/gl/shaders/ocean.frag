// SPDX-License-Identifier: MIT
// Light on the sea: the slopes that the picture can resolve tilt the mirror, those that it can't
// widen it (Cox and Munk 1954; Bruneton, Neyret and Holzschuch 2010); whitecaps lie on top.
in vec3 vPosition;
in vec2 vPlane;
in vec4 vWave;
in vec3 vHaze;
uniform vec4 uTile[4];
uniform vec4 uTurned;
uniform vec4 uSlopeScale;    // of the encoded slopes, per tile
uniform vec4 uSlopeVariance; // of each tile, each axis
uniform vec4 uFoam;          // threshold, width and spread of the breaking measure; mean of tile 2
uniform vec4 uWind;          // where it blows (unit), slope variance of the ripples, streaks 0 to 1
uniform vec4 uFoamOrigin;    // nadir along and across the wind in the noise's period; crest height;
uniform vec4 uDowndraughts[MOST_DOWNDRAUGHTS]; // place in the plane from the nadir, radius, strength
uniform int uNumDowndraughts;
uniform sampler2D uSlope0, uSlope1, uSlope2, uSlope3;
uniform sampler2D uNoise;
uniform sampler2D uEffects, uFarEffects;       // slopes, foam and calm of wakes around the eye
uniform vec4 uEffectsPlace, uFarEffectsPlace; // corner in the plane from the nadir, 1 / edge
out vec4 oColor;

const vec3 WATER = vec3(0.006, 0.036, 0.052), CREST = vec3(0.010, 0.085, 0.070);
const float ZERO = 2.0 * LEVEL_SLOPE;

struct Sea {
    vec2 slope;
    float variance; // of the slopes that this pixel can't resolve, each axis
    float breaking; // how much the crests here have broken
    float lost;     // share of that which the mip levels have averaged away
};

Sea waves(float footprint) {
    Sea sea;
    vec4 s = texture(uSlope0, vPlane * uTile[0].x + uTile[0].yz);
    vec2 turned = vec2(uTurned.x * vPlane.x - uTurned.y * vPlane.y,
                       uTurned.y * vPlane.x + uTurned.x * vPlane.y);
    vec4 e = texture(uSlope0, turned * uTile[0].x + uTurned.zw);
    vec2 a = s.xy * 2.0 - ZERO, b = e.xy * 2.0 - ZERO;
    b = vec2(uTurned.x * b.x + uTurned.y * b.y, uTurned.x * b.y - uTurned.y * b.x);
    s.zw = (s.zw + e.zw) * 0.5;
    sea.slope = (a + b) * (0.70710678 * uSlopeScale.x);
    sea.variance = s.z * uSlopeVariance.x;
    sea.breaking = s.w * BREAKING_WEIGHTS[0];
    sea.lost = s.z * 0.35;
    s = texture(uSlope1, vPlane * uTile[1].x + uTile[1].yz);
    sea.slope += (s.xy * 2.0 - ZERO) * uSlopeScale.y;
    sea.variance += s.z * uSlopeVariance.y;
    sea.breaking += s.w * BREAKING_WEIGHTS[1];
    sea.lost += s.z * 0.45;
    // The two fine tiles only where the pixel is smaller than they are.
    if (footprint * uTile[2].x < 0.4) {
        s = texture(uSlope2, vPlane * uTile[2].x + uTile[2].yz);
        sea.slope += (s.xy * 2.0 - ZERO) * uSlopeScale.z;
        sea.variance += s.z * uSlopeVariance.z;
        sea.breaking += s.w * BREAKING_WEIGHTS[2];
        sea.lost += s.z * 0.2;
    } else {
        sea.variance += uSlopeVariance.z;
        sea.breaking += uFoam.w * BREAKING_WEIGHTS[2];
        sea.lost += 0.2;
    }
    float patches = vWave.z;
    if (footprint * uTile[3].x < 0.4) {
        s = texture(uSlope3, vPlane * uTile[3].x + uTile[3].yz);
        sea.slope += (s.xy * 2.0 - ZERO) * (uSlopeScale.w * patches);
        sea.variance += s.z * uSlopeVariance.w * patches * patches;
    } else {
        sea.variance += uSlopeVariance.w * patches * patches;
    }
    sea.variance += uWind.z * patches + 1e-5;
    sea.slope /= max(0.35, 1.0 + 0.5 * vWave.x); // slopes are told over the water at rest
    return sea;
}

/// Near the eye the fine map of effects, beyond it the coarse one.
vec4 effectsHere() {
    vec2 place = (vPlane - uEffectsPlace.xy) * uEffectsPlace.z;
    vec2 far_place = (vPlane - uFarEffectsPlace.xy) * uFarEffectsPlace.z;
    vec2 off = abs(place - 0.5) * 2.0;
    float beyond = smoothstep(0.84, 0.94, max(off.x, off.y));
    vec4 near = texture(uEffects, place), far = texture(uFarEffects, far_place);
    return mix(near, far, beyond);
}

/// Rings that run outwards under wind from above, and the foam that they tear off. Returns the foam.
float downdraught(vec4 wind, inout Sea sea) {
    vec2 q = vPlane - wind.xy;
    float r = length(q), x = r / max(wind.z, 0.1);
    if (x > 4.5) return 0.0;
    vec2 outward = q / max(r, 0.01);
    float angle = atan(q.y, q.x) / (2.0 * PI);
    float ripple = texture(uNoise, vec2(angle * 7.0, r / 22.0 - uTime.x * 0.45)).x;
    float strength = smoothstep(0.15, 0.7, x) * exp(-max(x - 1.0, 0.0) * 1.1) * wind.w;
    float near = r * 3.9 - uTime.x * 13.0 + 1.6 * ripple, far = r * 1.9 - uTime.x * 8.5 - 1.3 * ripple;
    sea.slope = mix(sea.slope, sea.slope * 0.5, strength) +
                outward * strength * (0.20 * cos(near) + 0.16 * cos(far));
    sea.variance += 0.02 * strength;
    float torn = texture(uNoise, vec2(angle * 19.0, r / 9.0 - uTime.x * 1.1)).x;
    float annulus = (x - 1.05) / 0.4;
    return strength * (0.42 * exp(-annulus * annulus) * (0.4 + 0.8 * torn) +
                       0.35 * smoothstep(0.2, 1.0, sin(near)) * exp(-max(x - 0.8, 0.0) * 0.7) * torn);
}

void main() {
    float range = length(vPosition), footprint = range * uTime.y;
    vec3 toEye = -vPosition / range;
    Sea sea = waves(footprint);
    vec4 effects = effectsHere();
    sea.slope = sea.slope * (1.0 - 0.5 * effects.w) + (effects.xy - LEVEL_WAKE) * 0.5;
    sea.variance *= 1.0 - 0.75 * effects.w;
    float torn_off = 0.0;
    for (int i = 0; i < uNumDowndraughts; i++)
        torn_off = max(torn_off, downdraught(uDowndraughts[i], sea));

    vec3 normal = normalize(vec3(-sea.slope, 1.0));
    float c = max(dot(normal, toEye), 0.02), sigma = sqrt(sea.variance);
    float fresnel = 0.02 + 0.98 * pow(1.0 - c, 5.0 * exp(-2.69 * sigma)) /
                               (1.0 + 22.7 * sea.variance / sqrt(max(sigma, 1e-3)));
    vec3 mirrored = reflect(-toEye, normal);
    mirrored.z = sqrt(mirrored.z * mirrored.z + 0.012 + 0.35 * sea.variance) + sigma * 0.25 * (1.0 - c);
    vec3 reflection = skyAt(mirrored, clamp(1.5 + sigma * 12.0, 0.0, 6.0));

    vec3 light = uLight.rgb * lightReaching(vPosition);
    vec3 toLight = uLightDirection.xyz;
    vec3 half_way = normalize(toEye + toLight);
    vec2 miss = -half_way.xy / half_way.z - sea.slope;
    float glint = exp(-0.5 * dot(miss, miss) / sea.variance) / (2.0 * PI * sea.variance);
    float mirror = 0.02 + 0.98 * pow(1.0 - max(dot(toEye, half_way), 0.0), 5.0);
    float hz2 = half_way.z * half_way.z;
    vec3 glitter = light * min(glint * mirror / (4.0 * hz2 * hz2 * max(c, 0.06)), 120.0) *
                   smoothstep(0.0, 0.05, toLight.z);

    // Light that comes back out of the water, greener through thin crests against the light.
    float crest = clamp(0.35 * vWave.y / max(uFoamOrigin.z, 0.3) - 0.6 * vWave.x, 0.0, 0.6);
    float against = pow(max(dot(-toEye.xy, toLight.xy), 0.0), 2.0) * max(1.0 - c, 0.0);
    vec3 body = WATER * (uAmbient.rgb * 0.9 + light * max(toLight.z, 0.0) * 0.10) +
                CREST * light * (crest * (0.10 + 0.55 * against)) * 0.55;
    vec3 color = mix(body, reflection, fresnel) + glitter;

    // Whitecaps: a logistic of the breaking measure near by, its average over the pixel far away,
    // dissolved with a lace whose values are evenly spread.
    vec2 along = vec2(dot(vPlane, uWind.xy), dot(vPlane, vec2(-uWind.y, uWind.x))) + uFoamOrigin.xy;
    vec2 coarse = texture(uNoise, along / vec2(36.0, 30.0)).xy;
    vec2 fine = texture(uNoise, along.yx / vec2(9.0, 12.0)).xy;
    float streak = texture(uNoise, along / vec2(600.0, 48.0)).y - 0.5;
    float breaking = sea.breaking + streak * uWind.w * uFoam.z * 1.1;
    float blur = uFoam.z * 0.6 * sqrt(sea.lost);
    float cover = 1.0 / (1.0 + exp(-(breaking - uFoam.x) / sqrt(uFoam.y * uFoam.y + blur * blur)));
    cover = clamp(cover * WHITECAP_GAIN - WHITECAP_LOSS, 0.0, 1.0);
    cover = max(max(cover, min(effects.z * 1.15, 1.0)), torn_off);
    float lace = 0.5 * (coarse.x + fine.x) + 0.35 * (fine.x - 0.5);
    float near = exp(-footprint * footprint * 3.0);
    float foam = mix(cover * 0.8,
                     smoothstep(0.98 - cover, 1.38 - cover, lace) * min(cover * 3.0, 1.0) * (0.5 + 0.5 * cover),
                     near);
    vec3 foam_color = (uAmbient.rgb * 0.85 + light * max(dot(normal, toLight), 0.0) * 0.30) *
                      (0.62 + 0.2 * lace);
    color = mix(color, foam_color, clamp(foam, 0.0, 0.96));
    oColor = vec4(mix(vHaze, color, vWave.w), 1.0);
}
