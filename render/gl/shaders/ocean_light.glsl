// SPDX-License-Identifier: MIT
// Light on clean water: mirrored sky, glitter of the key light, and what comes back out of the
// depth. `light` is the key light's irradiance where it is not shaded.
const vec3 DEEP = vec3(0.006, 0.036, 0.052), CREST = vec3(0.010, 0.085, 0.070);

// Share of light that a rough surface mirrors (Bruneton, Neyret and Holzschuch 2010); `c` is the
// cosine of the angle between normal and line of sight.
float reflectance(float c, float variance, float sigma) {
    return 0.02 + 0.98 * pow(max(1.0 - c, 0.0), 5.0 * exp(-2.69 * sigma)) /
                      (1.0 + 22.7 * variance / sqrt(max(sigma, 1e-3)));
}

vec3 mirroredSky(Water w, vec3 normal, float c, float variance, float sigma) {
    vec3 mirrored = reflect(-w.toEye, normal);
    mirrored.z = sqrt(mirrored.z * mirrored.z + 0.012 + 0.35 * variance) + sigma * 0.25 * (1.0 - c);
    return skyAt(mirrored, clamp(1.5 + sigma * 12.0, 0.0, 6.0));
}

// Cox and Munk 1954: the share of a light's irradiance that facets mirror into the eye; `toLight` is
// a unit vector, `c` the cosine of the angle between normal and line of sight.
float glitterOf(vec3 toLight, Water w, Sea sea, float c) {
    vec3 half_way = normalize(w.toEye + toLight);
    half_way.z = max(half_way.z, 1e-3); // a light below the horizon
    vec2 miss = -half_way.xy / half_way.z - sea.slope;
    float glint = exp(-0.5 * dot(miss, miss) / sea.variance) / (2.0 * PI * sea.variance);
    float mirror = 0.02 + 0.98 * pow(1.0 - clamp(dot(w.toEye, half_way), 0.0, 1.0), 5.0);
    float hz2 = half_way.z * half_way.z;
    return min(glint * mirror / (4.0 * hz2 * hz2 * max(c, 0.06)), 120.0) *
           smoothstep(0.0, 0.05, toLight.z);
}

// Light that comes back out of the water, greener through thin crests against the light.
vec3 body(Water w, vec3 light, float c) {
    vec3 toLight = uLightDirection.xyz;
    float crest = clamp(0.35 * w.height / max(uWaves.w, 0.3) - 0.6 * w.divergence, 0.0, 0.6);
    float against = pow(max(dot(-w.toEye.xy, toLight.xy), 0.0), 2.0) * max(1.0 - c, 0.0);
    return DEEP * (uAmbient.rgb * 0.9 + light * max(toLight.z, 0.0) * 0.10) +
           CREST * light * (crest * (0.10 + 0.55 * against)) * 0.55;
}
