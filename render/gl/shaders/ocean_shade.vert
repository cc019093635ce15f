// SPDX-License-Identifier: MIT
// One triangle that covers the picture, with the lines of sight of its pixels.
uniform vec4 uRay; // half width and height of the picture at unit distance, and its offset
out vec3 vAcross;  // E: from the view axis to the pixel, at unit distance, or everywhere for
                   // parallel rays
void main() {
    vec2 n = vec2((gl_VertexID << 1) & 2, gl_VertexID & 2) * 2.0 - 1.0;
    vAcross = vec3(n * uRay.xy + uRay.zw, 0.0) * mat3(uView);
    gl_Position = vec4(n, CLIP_Z(0.0), 1.0);
}
