// SPDX-License-Identifier: MIT
// Scene light to picture: the ACES curve as fitted by Narkowicz (2015). Alpha carries the luma for
// the edge filter. Grain of less than a level, the same in every frame, hides the steps that eight
// bits leave in slow gradients: interleaved gradient noise (Jimenez 2014), green against the others
// so that it is a matter of colour, which the eye hardly resolves.
uniform sampler2D uPicture;
out vec4 oColor;
void main() {
    // Light beyond what the picture's numbers hold must not become NaN.
    vec3 c = min(texelFetch(uPicture, ivec2(gl_FragCoord.xy), 0).rgb, 6e4) * uLight.w;
    c = clamp((c * (2.51 * c + 0.03)) / (c * (2.43 * c + 0.59) + 0.14), 0.0, 1.0);
    c = pow(c, vec3(1.0 / 2.2));
    float grain = fract(52.9829189 * fract(dot(gl_FragCoord.xy, vec2(0.06711056, 0.00583715)))) - 0.5;
    oColor = vec4(c + vec3(grain, -grain, grain) / 255.0, dot(c, vec3(0.3, 0.6, 0.1)));
}
