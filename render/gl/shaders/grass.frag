// SPDX-License-Identifier: MIT
in vec3 vColor;
in vec4 vHaze;
out vec4 oColor;
void main() { oColor = vec4(mix(vHaze.rgb, vColor, vHaze.w), 1.0); }
