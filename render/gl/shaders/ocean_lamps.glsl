// SPDX-License-Identifier: MIT
// Lamps and fires on the sea, for programs with the word LIGHTS: what they light, as on land, and the
// paths of glitter that lead from lamps over the water to the eye, also far beyond what they light.
#ifdef LIGHTS
uniform int uGlints;
uniform vec4 uGlintPlaces[MOST_GLINTS]; // in the eye's frame
uniform vec4 uGlintColors[MOST_GLINTS]; // irradiance at 1 m

vec3 lampGlitter(Water w, Sea sea, float c) {
    vec3 sum = vec3(0.0), way;
    uvec2 near = lightsNear(w.position);
    for (int i = 0, number = 0; i < LIGHTS_A_CELL; i++) {
        if (!nextLight(near, number)) break;
        vec3 light = PI * lampAt(number, w.position, way);
        sum += light * glitterOf(way, w, sea, c);
    }
    vec2 ahead = w.position.xy * inversesqrt(dot(w.position.xy, w.position.xy) + 1e-3);
    for (int i = 0; i < uGlints; i++) {
        vec3 to = uGlintPlaces[i].xyz - w.position;
        float d2 = dot(to, to) + 1.0;
        // Paths end softly before the part of the picture does that is drawn with them.
        vec2 side = uGlintPlaces[i].xy * inversesqrt(dot(uGlintPlaces[i].xy, uGlintPlaces[i].xy) + 1e-3) - ahead;
        float edge = max(1.0 - dot(side, side) / (GLINT_WIDTH * GLINT_WIDTH), 0.0);
        sum += uGlintColors[i].rgb * (edge / d2 * glitterOf(to * inversesqrt(d2), w, sea, c));
    }
    return bearable(sum);
}
#endif
