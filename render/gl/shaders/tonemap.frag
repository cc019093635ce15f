// SPDX-License-Identifier: MIT
// Scene light to picture: the ACES curve as fitted by Narkowicz (2015). Alpha carries the luma for
// the edge filter.
in vec2 vPlace;
uniform sampler2D uPicture;
out vec4 oColor;
void main() {
    vec3 c = texture(uPicture, vPlace).rgb * uLight.w;
    c = clamp((c * (2.51 * c + 0.03)) / (c * (2.43 * c + 0.59) + 0.14), 0.0, 1.0);
    c = pow(c, vec3(1.0 / 2.2));
    oColor = vec4(c, dot(c, vec3(0.3, 0.6, 0.1)));
}
