// SPDX-License-Identifier: MIT
// A tree from afar: a square that faces the eye, with one of the pictures of its kind, which show it
// from four heights. All light is told at the corners.
layout(location = 0) in vec4 aPlace; // of the middle in the eye's frame; w: half the edge, m
layout(location = 1) in vec4 aLook;  // first layer of the pictures; 0 to 1: grown; tone; ice
layout(location = 2) in vec4 aHaze;  // w: clearness of the air
layout(location = 3) in float aSun;  // share of the key light that clouds and hills let through
out vec3 vPlace; // in the picture, and its layer
out vec3 vAmbient, vLight; // on a white surface that faces up, and that faces the light
out vec3 vNormal; // not of unit length: of a ball in the middle of the square
flat out vec4 vHaze;
flat out vec4 vSurface; // tone, cover below which nothing is drawn, ice

void main() {
    vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1) * 2.0 - 1.0;
    vec3 toEye = -normalize(aPlace.xyz), right = normalize(vec3(-toEye.y, toEye.x, 0.0) + vec3(1e-5, 0.0, 0.0));
    vec3 up = cross(toEye, right);
    vec3 p = aPlace.xyz + (right * corner.x + up * corner.y) * aPlace.w;
    // Each tree changes from one picture to the next at another height.
    float steps = asin(clamp(toEye.z, 0.0, 1.0)) * (6.0 / PI);
    vPlace = vec3(corner * 0.5 + 0.5, aLook.x + min(floor(steps + 0.3 + 0.4 * aLook.z), 3.0));
    vLight = uLight.rgb * (aSun / PI);
    vAmbient = uAmbient.rgb;
#ifdef LIGHTS
    vAmbient += lampAround(p);
#endif
    vNormal = right * corner.x + up * corner.y + toEye * 0.6;
    vHaze = aHaze;
    vSurface = vec4(0.8 + 0.4 * aLook.z, mix(1.0, 0.3, aLook.y), aLook.w, 0.0);
    gl_Position = uProjection * vec4(mat3(uView) * p, 1.0);
}
