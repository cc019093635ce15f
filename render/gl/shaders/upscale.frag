// SPDX-License-Identifier: MIT
// Enlarges the filtered picture: two looks, apart along a slanting edge, which plain interpolation
// would leave as stairs, and together where there is none.
in vec2 vPlace;
uniform sampler2D uPicture;
out vec4 oColor;
const float APART = 1.2; // of its pixels: more shows twice what ends there
void main() {
    vec4 here = textureLod(uPicture, vPlace, 0.0);
    float slant = 2.0 * here.a - 1.0;
    vec2 apart = vec2(abs(slant), -slant) * (APART * uScreen.zw);
    oColor = vec4(0.5 * (here.rgb + textureLod(uPicture, vPlace + apart, 0.0).rgb), 1.0);
}
