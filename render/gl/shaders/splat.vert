// SPDX-License-Identifier: MIT
// Foam seen from straight above, onto the map of effects around the eye.
layout(location = 0) in vec4 aPlace; // in the map, -1 to 1; half edge; turn
layout(location = 1) in vec4 aColor; // w: opacity
out vec2 vCorner;
out float vOpacity;
void main() {
    vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1) * 2.0 - 1.0;
    vCorner = corner;
    vOpacity = aColor.a;
    gl_Position = vec4(aPlace.xy + corner * aPlace.z, CLIP_Z(0.5), 1.0);
}
