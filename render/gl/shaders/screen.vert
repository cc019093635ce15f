// SPDX-License-Identifier: MIT
// One triangle that covers the picture, at the far end of the reversed depth range.
out vec2 vPlace;
void main() {
    vPlace = vec2((gl_VertexID << 1) & 2, gl_VertexID & 2);
    gl_Position = vec4(vPlace * 2.0 - 1.0, CLIP_Z(0.0), 1.0);
}
