// SPDX-License-Identifier: MIT
// White water: how much of it lies on a pixel, and how it looks.
uniform vec2 uFoamOrigin; // nadir along and across the wind in the noise's period, m

// Whitecaps: a logistic of the breaking measure near by, its average over the pixel far away,
// dissolved with a lace whose values are evenly spread. `from_outside`: what wakes and downwash
// make, 0 to 1. In a gale another look takes its place.
Foam foamAt(Water w, Sea sea, float from_outside) {
    vec2 along = vec2(dot(w.plane, uWind.xy), dot(w.plane, vec2(-uWind.y, uWind.x))) + uFoamOrigin;
    vec2 coarse = noiseAt(along, vec2(36.0, 30.0), w.level).xy;
    vec3 fine = noiseAt(along.yx, vec2(9.0, 12.0), w.level).xyz;
    float streak = noiseAt(along, vec2(600.0, 48.0), w.level).y - 0.5;
    float breaking = sea.breaking + streak * uWind.w * uFoam.z * 1.1;
    float blur = uFoam.z * 0.6 * sqrt(sea.lost);
    float cover = 1.0 / (1.0 + exp(-(breaking - uFoam.x) / sqrt(uFoam.y * uFoam.y + blur * blur)));
    cover = max(clamp(cover * WHITECAP_GAIN - WHITECAP_LOSS, 0.0, 1.0), from_outside);
    Foam foam;
    foam.lace = 0.5 * (coarse.x + fine.x) + 0.35 * (fine.x - 0.5);
    float near = exp(-w.footprint * w.footprint * 3.0);
    foam.share = mix(cover * 0.8,
                     smoothstep(0.98 - cover, 1.38 - cover, foam.lace) * min(cover * 3.0, 1.0) *
                         (0.5 + 0.5 * cover),
                     near);
    foam.share = clamp(foam.share, 0.0, 0.96);
    foam.below = 0.0;
#ifdef STORM
    Foam storm = stormFoam(w, (breaking - uFoam.x) / uFoam.z, along, foam.lace, fine.z, from_outside);
    foam = Foam(mix(foam.share, storm.share, uStorm.x), mix(foam.lace, storm.lace, uStorm.x),
                storm.below * uStorm.x);
#endif
    return foam;
}

vec3 foamColor(Foam foam, vec3 normal, vec3 light) {
    return (uAmbient.rgb * 0.85 + light * max(dot(normal, uLightDirection.xyz), 0.0) * 0.30) *
           (0.62 + 0.2 * foam.lace);
}
