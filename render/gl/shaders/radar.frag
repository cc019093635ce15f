// SPDX-License-Identifier: MIT
// What returns to a radar from the ground and the air over it, one texel a place on earth. Places
// are metres east and north of the nadir.
in vec2 vPlace;
uniform vec4 uRay;        // place in the picture, -1 to 1, to the eye's x and y: scale, shift
uniform vec3 uRight, uUp, uBack; // the eye's axes
uniform int uParallel;    // the rays are parallel; else they leave the eye
uniform vec4 uSite;       // altitude, m; half the earth's curvature, 1/m; edge of a texel, m; gain
uniform float uBlind;     // m
uniform vec4 uRaster;     // the nadir's place in the land; texture coordinates per metre
uniform vec2 uBend;       // second-order terms of that
uniform vec4 uSea;        // clutter at the radar; its reach, m; where the waves come from
uniform vec3 uSpeckle;    // 1 / edge of a grain, 1/m; shift
uniform float uDetail;    // level of detail of the land
uniform vec4 uRain;       // share that stays dry; strength
uniform vec4 uCells;      // the nadir's place in the two layers of cells
uniform vec2 uCellScale;  // 1/m
uniform float uHighest;   // altitude of the land's highest place, m
uniform float uReach;     // of the horizon's map, m
uniform sampler2D uLand, uNoise, uHorizon;
out vec4 oColor;

// How much of what stands up to an altitude the radar meets at a place: hills hide the rest.
float seenAt(vec2 p, float altitude) {
    const float SOFT = 12.0; // m
    vec2 place = vec2(atan(p.x, p.y) / (2.0 * PI), min(length(p) / uReach, 1.0));
    return smoothstep(-SOFT, SOFT, altitude + SOFT - textureLod(uHorizon, place, 0.0).r);
}

// What rises away from the radar faces it.
float landEcho(vec2 p, vec2 outward, float speckle) {
    vec2 place = uRaster.xy + (p + vec2(p.x * p.y * uBend.x, -p.x * p.x * uBend.y)) * uRaster.zw;
    vec2 border = step(abs(place - 0.5), vec2(0.5));
    vec4 land = textureLod(uLand, place, uDetail);
    float rise = dot(land.xy * 2.0 - 1.0, outward);
    float echo = clamp((0.24 + 3.2 * rise) * (0.75 + 0.5 * speckle), 0.05, 0.85);
    return land.z * border.x * border.y * echo * seenAt(p, land.w * uHighest);
}

float seaEcho(vec2 p, vec2 outward, float range, float speckle) {
    float near = max(1.0 - range / max(uSea.y, 1.0), 0.0);
    float against = 1.0 + 0.35 * dot(outward, uSea.zw);
    return uSea.x * near * near * against * (0.2 + 1.5 * speckle * speckle) * seenAt(p, 0.0);
}

// Four steps, as a radar's display tells them apart. The speckle hides the field's own 256 steps,
// which would draw contours where it is flat.
float rainEcho(vec2 p, float speckle) {
    float wide = textureLod(uNoise, p * uCellScale.x + uCells.xy, 0.0).y;
    float fine = textureLod(uNoise, p.yx * uCellScale.y + uCells.zw, 0.0).y;
    float field = 0.62 * wide + 0.38 * fine + 0.01 * (speckle - 0.5);
    float echo = clamp((field - uRain.x) * 2.6, 0.0, 1.0) * uRain.y * uSite.w;
    float steps = min(ceil(min(echo, 1.0) * 4.0 - 0.2), 4.0);
    return steps > 0.0 ? 0.12 + 0.17 * steps : 0.0;
}

void main() {
    vec2 eye = (vPlace * 2.0 - 1.0) * uRay.xy + uRay.zw;
    vec3 across = eye.x * uRight + eye.y * uUp;
    vec3 origin = uParallel != 0 ? across : vec3(0.0), along = (uParallel != 0 ? vec3(0.0) : across) - uBack;
    // Where the ray meets the sea, which bends away: once for the level, once for the bend.
    float down = min(along.z, -1e-4);
    vec2 p = origin.xy - along.xy * (uSite.x + origin.z) / down;
    p = origin.xy - along.xy * (uSite.x + dot(p, p) * uSite.y + origin.z) / down;
    float range = length(p);
    vec2 outward = p / max(range, 1.0);

    float speckle = hash(floor(p * uSpeckle.x) + uSpeckle.yz);
    float land = landEcho(p, outward, speckle);
    float sea = land > 0.0 ? 0.0 : seaEcho(p, outward, range, speckle);
    float echo = max(clamp(max(land, sea) * uSite.w, 0.0, 0.9), rainEcho(p, speckle));
    bool seen = range > uBlind && along.z < -0.01 * length(along);
    oColor = vec4(vec3(0.13, 1.0, 0.35) * (seen ? echo : 0.0), 1.0);
}
