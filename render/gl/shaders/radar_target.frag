// SPDX-License-Identifier: MIT
in float vStrength;
uniform float uGain;
out vec4 oColor;
void main() {
    oColor = vec4(vec3(0.13, 1.0, 0.35) * min(vStrength * uGain, 1.0), 1.0);
}
