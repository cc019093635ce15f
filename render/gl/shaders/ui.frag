// SPDX-License-Identifier: MIT
in vec2 vPlace;
in vec4 vColor;
uniform sampler2D uTexture;
uniform int uIsText; // the texture holds coverage only
out vec4 oColor;
void main() {
    vec4 t = texture(uTexture, vPlace);
    vec4 c = uIsText != 0 ? vec4(vColor.rgb, vColor.a * t.r) : vColor * t;
    oColor = vec4(c.rgb * c.a, c.a);
}
