// SPDX-License-Identifier: MIT
// What all shaders share, after the constants and the block of the frame (render/scene).
uniform sampler2D uSkyMap;

// The sky map holds the upper half of the sky: the zenith in the middle, r = sqrt(1 - sqrt(z)),
// which spends most texels near the horizon. What is below the horizon reads the horizon.
vec2 skyMapPlace(vec3 d) {
    float z = max(d.z, 0.0) * inversesqrt(max(dot(d.xy, d.xy) + max(d.z, 0.0) * max(d.z, 0.0), 1e-12));
    float r = sqrt(max(1.0 - sqrt(z), 0.0));
    return d.xy * inversesqrt(max(dot(d.xy, d.xy), 1e-9)) * (r * 0.496) + 0.5;
}
// `lod`: 0 sharpest, each 1 twice as blurred, as surfaces ask for it; the maps' own levels begin at 1,
// or one later where they are small.
vec3 skyAt(vec3 d, float lod) {
    return textureLod(uSkyMap, skyMapPlace(d), max(lod - 1.0 - uCloudAir.y, 0.0)).rgb * uSky.x;
}
// The glow about the sun in hazy air, by the cosine of the angle from it: Cornette and Shanks (1992).
float glowAt(float cosine) {
    float u = inversesqrt(1.0 + GLOW_G * GLOW_G - 2.0 * GLOW_G * cosine);
    return 3.0 / (8.0 * PI) * (1.0 - GLOW_G * GLOW_G) / (2.0 + GLOW_G * GLOW_G) * (1.0 + cosine * cosine) * u * u * u;
}
// What is far away in a direction of E (any length): smooth over the azimuth, so that nothing draws
// stripes down haze and fog.
vec3 hazeColor(vec2 direction) {
    float x = dot(direction, vec2(uHazeMean.w, uHazeSlope.w)) * inversesqrt(max(dot(direction, direction), 1e-9));
    float glow = glowAt(x * uHazeBend.w);
    return max(uHazeMean.rgb + x * (uHazeSlope.rgb + x * uHazeBend.rgb) + glow * uHazeGlow.rgb, 0.0) * uSky.x;
}

// How much the air dims light on the way between the eye and so far above it, 1/m. The haze thins
// out with height.
float dimming(float above) {
    float k = above * uAir.x;
    float mean = abs(k) > 1e-3 ? (1.0 - exp(-k)) / k : 1.0;
    return uAmbient.w * uAir.y * mean;
}
// Share of light that crosses the air between the eye and p.
float clearness(vec3 p) { return exp(-dimming(p.z) * length(p)); }

float hash(vec2 p) {
    p = fract(p * vec2(123.34, 456.21));
    p += dot(p, p + 45.32);
    return fract(p.x * p.y);
}
float noise(vec2 p) {
    vec2 i = floor(p), f = fract(p);
    f = f * f * (3.0 - 2.0 * f);
    return mix(mix(hash(i), hash(i + vec2(1, 0)), f.x),
               mix(hash(i + vec2(0, 1)), hash(i + vec2(1, 1)), f.x), f.y);
}
float fbm(vec2 p, int octaves) {
    float amplitude = 0.5, sum = 0.0;
    for (int i = 0; i < octaves; i++) {
        sum += amplitude * noise(p);
        p = mat2(1.6, 1.2, -1.2, 1.6) * p + 3.1;
        amplitude *= 0.5;
    }
    return sum;
}
