// SPDX-License-Identifier: MIT
// What lamps and fires add to a place, for programs with the word LIGHTS. A place in the picture
// looks at the lights of its cell only (render/scene, LightGrid).
layout(std140) uniform Lights {
    vec4 uLightPlaces[MOST_LIGHTS]; // in the eye's frame; w: 1 / reach
    vec4 uLightColors[MOST_LIGHTS]; // w: 1 / width of the cone's edge, by cosine
    vec4 uLightAxes[MOST_LIGHTS];   // w: cosine beyond which nothing is lit
    vec4 uLightSlices;              // a distance d along the view lies in slice x log2(d) + y
};
uniform usamplerBuffer uLightCells; // eight numbers of lights a byte each, the strongest first; 255: none

uvec2 lightsNear(vec3 p) {
    vec3 eye = mat3(uView) * p;
    vec4 clip = uProjection * vec4(eye, 1.0);
    vec3 cell = vec3((clip.xy / max(clip.w, 1e-3) * 0.5 + 0.5) * vec2(LIGHT_COLUMNS, LIGHT_ROWS),
                     uLightSlices.x * log2(max(-eye.z, 1e-3)) + uLightSlices.y);
    ivec3 at = ivec3(clamp(cell, vec3(0.0), vec3(LIGHT_COLUMNS, LIGHT_ROWS, LIGHT_SLICES) - 0.5));
    return texelFetch(uLightCells, (at.z * LIGHT_ROWS + at.y) * LIGHT_COLUMNS + at.x).xy;
}

// Takes the next number off the front; false when there is none.
bool nextLight(inout uvec2 near, out int number) {
    number = int(near.x & 255u);
    near = uvec2(near.x >> 8 | near.y << 24, near.y >> 8 | 0xff000000u);
    return number < MOST_LIGHTS;
}

// What of a light comes to p, by its distance, reach and cone, over PI; `way`: towards it.
vec3 lampAt(int number, vec3 p, out vec3 way) {
    const float SIZE = 0.2; // m: no lamp is a point
    vec4 place = uLightPlaces[number], color = uLightColors[number], axis = uLightAxes[number];
    vec3 to = place.xyz - p;
    float d2 = dot(to, to), far = d2 * place.w * place.w, window = max(1.0 - far * far, 0.0);
    way = to * inversesqrt(d2 + 1e-6);
    float spot = clamp((-dot(way, axis.xyz) - axis.w) * color.w, 0.0, 1.0);
    return color.rgb * (window * window * spot * spot / (d2 + SIZE * SIZE));
}

// Towards LAMP_SHOULDER over the exposure, its colour kept. A hyperbola with so low a bound would dim
// faint light, too: this one begins as x - DIMMED x², and bends the more the larger BEND is.
vec3 bearable(vec3 light) {
    const float DIMMED = 0.91, BEND = 0.5;
    float x = dot(light, vec3(0.3, 0.6, 0.1)) * uLight.w;
    return light * (1.0 + BEND * x) / (1.0 + (DIMMED + BEND) * x + BEND / LAMP_SHOULDER * x * x);
}

// Light from all sides, for what is small and has none.
vec3 lampAround(vec3 p) {
    vec3 sum = vec3(0.0), way;
    uvec2 near = lightsNear(p);
    for (int i = 0, number = 0; i < LIGHTS_A_CELL; i++) {
        if (!nextLight(near, number)) break;
        sum += lampAt(number, p, way);
    }
    return bearable(sum);
}

// Light that a matte place throws back, times its albedo.
vec3 lampLight(vec3 p, vec3 normal) {
    vec3 sum = vec3(0.0), way;
    uvec2 near = lightsNear(p);
    for (int i = 0, number = 0; i < LIGHTS_A_CELL; i++) {
        if (!nextLight(near, number)) break;
        vec3 light = lampAt(number, p, way);
        sum += light * max(dot(normal, way), 0.0);
    }
    return bearable(sum);
}

// The same, and the highlights of a surface so rough (alpha squared), times its Fresnel term.
vec3 lampLight(vec3 p, vec3 normal, vec3 toEye, float a2, out vec3 highlight) {
    vec3 sum = vec3(0.0), mirrored = vec3(0.0), way;
    uvec2 near = lightsNear(p);
    for (int i = 0, number = 0; i < LIGHTS_A_CELL; i++) {
        if (!nextLight(near, number)) break;
        vec3 light = lampAt(number, p, way) * max(dot(normal, way), 0.0);
        float nh = max(dot(normal, normalize(toEye + way)), 0.0), q = nh * nh * (a2 - 1.0) + 1.0;
        sum += light;
        mirrored += light * min(a2 / (q * q), 200.0);
    }
    highlight = bearable(mirrored * 0.25);
    return bearable(sum);
}
