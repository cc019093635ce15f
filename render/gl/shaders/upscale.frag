// SPDX-License-Identifier: MIT
// Enlarges the filtered picture: two looks, 1.5 of its pixels apart along a slanting edge, which
// plain interpolation would leave as stairs, and together where there is none.
in vec2 vPlace;
uniform sampler2D uPicture;
out vec4 oColor;
void main() {
    float slant = 2.0 * textureLod(uPicture, vPlace, 0.0).a - 1.0;
    vec2 apart = vec2(abs(slant), -slant) * (0.75 * uScreen.zw);
    vec3 c = textureLod(uPicture, vPlace - apart, 0.0).rgb + textureLod(uPicture, vPlace + apart, 0.0).rgb;
    oColor = vec4(0.5 * c, 1.0);
}
