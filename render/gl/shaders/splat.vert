// SPDX-License-Identifier: MIT
// Foam seen from straight above, onto a map of effects around the eye.
layout(location = 0) in vec4 aPatch; // place from the eye, radius, m; opacity
uniform vec4 uMap;                   // corner from the nadir, edge
out vec2 vCorner;
out float vOpacity;
void main() {
    vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1) * 2.0 - 1.0;
    vCorner = corner;
    vec2 place = aPatch.xy + corner * max(aPatch.z, uMap.z / 700.0);
    vec2 inside = 1.0 - abs((aPatch.xy - uMap.xy) / uMap.z * 2.0 - 1.0);
    vOpacity = aPatch.w * min(aPatch.z / (uMap.z / 700.0), 1.0) * smoothstep(0.0, 0.06, min(inside.x, inside.y));
    gl_Position = vec4((place - uMap.xy) / uMap.z * 2.0 - 1.0, CLIP_Z(0.5), 1.0);
}
