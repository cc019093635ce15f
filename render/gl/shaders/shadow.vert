// SPDX-License-Identifier: MIT
layout(location = 0) in vec3 aPosition;
layout(location = 3) in vec4 aRow0;
layout(location = 4) in vec4 aRow1;
layout(location = 5) in vec4 aRow2;
uniform vec4 uPlane, uDepth; // near map's unit cube to the one drawn: scale and offset of xy, of z
void main() {
    vec4 p = vec4(aPosition, 1.0);
    vec3 place = vec3(dot(aRow0, p), dot(aRow1, p), dot(aRow2, p));
    vec3 q = (uShadow * vec4(place, 1.0)).xyz;
    q = vec3(q.xy * uPlane.xy + uPlane.zw, q.z * uDepth.x + uDepth.y);
    gl_Position = vec4(q.xy * 2.0 - 1.0, CLIP_Z(q.z), 1.0);
}
