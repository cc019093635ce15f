// SPDX-License-Identifier: MIT
// The cone of a lamp as a pyramid that holds it: twelve sides, and twelve triangles of its base.
uniform vec4 uPlace; // in the eye's frame; w: reach, m
uniform vec4 uAxis;  // w: cosine of the half angle
out vec3 vPosition;
void main() {
    const float SIDES = 12.0;
    int triangle = gl_VertexID / 3, corner = gl_VertexID - 3 * triangle;
    bool base = triangle >= 12;
    // A side: apex and two corners of the base; a triangle of the base: its middle, the other way.
    float turn = float(triangle) + (corner == 1 ? (base ? 1.0 : 0.0) : (base ? 0.0 : 1.0));
    vec3 axis = uAxis.xyz, across = normalize(abs(axis.z) < 0.9 ? cross(axis, vec3(0, 0, 1)) : cross(axis, vec3(1, 0, 0)));
    vec3 up = cross(across, axis);
    float angle = turn * (2.0 * PI / SIDES);
    float wide = uPlace.w * sqrt(1.0 - uAxis.w * uAxis.w) / uAxis.w / cos(PI / SIDES);
    vPosition = uPlace.xyz;
    if (corner > 0) vPosition += axis * uPlace.w + (across * cos(angle) + up * sin(angle)) * wide;
    else if (base) vPosition += axis * uPlace.w;
    gl_Position = uProjection * vec4(mat3(uView) * vPosition, 1.0);
}
