// SPDX-License-Identifier: MIT
// The picture of clouds with those before it: where what it sees was then, there is what was seen of it,
// as far as the pixels around could show that now.
uniform vec4 uRay; // half width and height of the picture at unit distance, and its offset
uniform sampler2D uMarched, uBefore;
uniform vec4 uThen[3]; // from E then to x, y and w of its clip space
uniform vec4 uMotion;  // E to E then; w: share of the picture before
out vec4 oColor;

void main() {
    ivec2 pixel = ivec2(gl_FragCoord.xy), last = textureSize(uMarched, 0) - 1;
    vec4 now = 0.5 * texelFetch(uMarched, pixel, 0), least = vec4(1e9), most = vec4(0.0);
    vec2 range = vec2(0.0);
    for (int i = 0; i < 9; i++) {
        ivec2 way = ivec2(i % 3, i / 3) - 1;
        ivec2 texel = clamp(pixel + way, ivec2(0), last);
        vec4 near = texelFetch(uMarched, texel, 0);
        range += vec2(texelFetch(uReach, texel, 0).y, 1.0) * (near.a + 1e-3);
        now += near * (0.125 * (1.0 - 0.5 * abs(float(way.x))) * (1.0 - 0.5 * abs(float(way.y))));
        least = min(least, near);
        most = max(most, near);
    }
    vec2 n = gl_FragCoord.xy * 4.0 * uScreen.zw - 1.0;
    vec3 d = normalize(transpose(mat3(uView)) * vec3(n * uRay.xy + uRay.zw, -1.0));
    vec4 p = vec4(d * (range.x / range.y) + uMotion.xyz, 1.0);
    vec3 clip = vec3(dot(uThen[0], p), dot(uThen[1], p), dot(uThen[2], p));
    vec2 place = 0.5 + 0.5 * clip.xy / max(clip.z, 1e-3);
    bool seen = clip.z > 0.0 && all(lessThan(abs(place - 0.5), vec2(0.5)));
    vec4 before = texture(uBefore, place * uScreen.xy * 0.5 / vec2(last + 1));
    oColor = mix(now, clamp(before, least, most), seen ? uMotion.w : 0.0);
}
