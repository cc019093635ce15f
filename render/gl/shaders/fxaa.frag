// SPDX-License-Identifier: MIT
// Fast approximate anti-aliasing in the manner of Lottes (2009): blurs along the edges that the luma
// of a pixel and its four neighbours tells of. A single bright pixel has none and stays as it is.
// SMALL: the picture is going to be enlarged. Contrast that this costs is given to it here, where
// pixels are few, and alpha tells upscale.frag how the edge lies: from 0 rising to the right to 1
// falling, 0.5 level, upright or none.
uniform sampler2D uPicture;
out vec4 oColor;
const float SHARPNESS = 0.7;
float lumaAt(ivec2 at) {
    return texelFetch(uPicture, clamp(at, ivec2(0), ivec2(uScreen.xy) - 1), 0).a;
}
void main() {
    ivec2 at = ivec2(gl_FragCoord.xy);
    vec4 m = texelFetch(uPicture, at, 0);
    float n = lumaAt(at + ivec2(0, 1)), s = lumaAt(at - ivec2(0, 1));
    float e = lumaAt(at + ivec2(1, 0)), w = lumaAt(at - ivec2(1, 0));
    float low = min(m.a, min(min(n, s), min(e, w))), high = max(m.a, max(max(n, s), max(e, w)));
    vec2 rise = vec2(e - w, n - s), along = vec2(rise.y, -rise.x);
    float reduce = max((n + s + e + w) * 0.03125, 0.0078);
    along = clamp(along / (min(abs(along.x), abs(along.y)) + reduce), -1.0, 1.0);
    vec2 p = gl_FragCoord.xy * uScreen.zw, step = along * (0.5 * uScreen.zw);
    vec3 blurred = 0.5 * (textureLod(uPicture, p - step, 0.0).rgb + textureLod(uPicture, p + step, 0.0).rgb);
    vec3 c = high - low < max(0.05, high * 0.12) ? m.rgb : blurred;
#ifdef SMALL
    float luma = dot(c, vec3(0.3, 0.6, 0.1));
    float sharp = clamp(luma + SHARPNESS * (m.a - 0.25 * (n + s + e + w)), low, high);
    float slant = rise.x * rise.y / max(dot(rise, rise), 0.01);
    oColor = vec4(c * (sharp / max(luma, 0.02)), 0.5 + slant);
#else
    oColor = vec4(c, 1.0);
#endif
}
