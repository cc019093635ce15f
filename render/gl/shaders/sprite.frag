// SPDX-License-Identifier: MIT
in vec2 vCorner;
in vec4 vColor;
flat in float vKind;
out vec4 oColor;
void main() {
    float d = dot(vCorner, vCorner);
    float a = max(1.0 - d, 0.0);
    a = vKind > 0.5 ? a * a * a * a + 1.5 * smoothstep(0.06, 0.02, d) : a * a;
    oColor = vColor * a;
}
