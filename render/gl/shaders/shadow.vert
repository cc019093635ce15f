// SPDX-License-Identifier: MIT
layout(location = 0) in vec3 aPosition;
layout(location = 3) in vec4 aRow0; // mesh to the map's unit cube
layout(location = 4) in vec4 aRow1;
layout(location = 5) in vec4 aRow2;
void main() {
    vec4 p = vec4(aPosition, 1.0);
    vec3 q = vec3(dot(aRow0, p), dot(aRow1, p), dot(aRow2, p));
    gl_Position = vec4(q.xy * 2.0 - 1.0, CLIP_Z(q.z), 1.0);
}
