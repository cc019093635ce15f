// SPDX-License-Identifier: MIT
in vec2 vCorner;
in float vOpacity;
out vec4 oColor;
void main() {
    float a = max(1.0 - dot(vCorner, vCorner), 0.0);
    oColor = vec4(0.0, 0.0, a * vOpacity, min(a * 2.0 * vOpacity, 1.0));
}
