// SPDX-License-Identifier: MIT
// Where a ray is in the layer of clouds, over the round earth; and the picture of them, of half as many
// pixels a side, at a pixel of the whole one.
uniform sampler2D uClouds; // premultiplied, and opacity
uniform sampler2D uReach;  // as far as each of its pixels looked, and where it saw them, m

// How far off a ray (unit, E) is at a height `h` above the eye: the earlier or the later time.
float crossing(vec3 d, float h, bool later) {
    float bend = max(uCloudPlace.w * dot(d.xy, d.xy), 1e-12), root = sqrt(max(d.z * d.z + 4.0 * bend * h, 0.0));
    if (!later) return 2.0 * h / (d.z - root - 1e-9);
    return d.z < 0.0 ? (root - d.z) / (2.0 * bend) : 2.0 * h / (d.z + root + 1e-9);
}
// From where to where it is in the layer, m; the same twice: nowhere.
vec2 cloudSpan(vec3 d) {
    const float FARTHEST = 5e5, LONGEST = 60000.0;
    float base = uCloudLayer.x, top = base + uCloudLayer.y, bend = 4.0 * uCloudPlace.w * dot(d.xy, d.xy);
    vec2 span = vec2(0.0);
    if (base > 0.0) { // somewhat below the horizon as well: the sea ends on pixels of its own
        if (d.z > -uAir.w - 0.002 - 6.0 * uTime.y) span = vec2(crossing(d, base, true), crossing(d, top, true));
    } else if (top > 0.0 || (d.z < 0.0 && d.z * d.z + bend * top > 0.0)) {
        span.x = top > 0.0 ? 0.0 : crossing(d, top, false);
        span.y = d.z < 0.0 && d.z * d.z + bend * base > 0.0 ? crossing(d, base, false) : crossing(d, top, true);
    }
    return span.x < FARTHEST ? vec2(span.x, min(span.y, span.x + LONGEST)) : vec2(0.0);
}
// How far a ray looks whose scene is that far away. What is before the layer hides clouds from the
// picture that uses them, not from the one that they are kept in.
float cloudReach(vec2 span, float limit) { return limit <= span.x ? span.y : min(span.y, limit); }
// Of the four pixels around, those that look as far count.
vec4 cloudsSeen(vec2 pixel, float reach) {
    vec2 at = pixel * 0.5 - 0.5, f = fract(at);
    ivec2 last = textureSize(uClouds, 0) - 1, from = ivec2(floor(at));
    vec4 sum = vec4(0.0);
    float weights = 0.0;
    for (int i = 0; i < 4; i++) {
        ivec2 way = ivec2(i & 1, i >> 1), texel = clamp(from + way, ivec2(0), last);
        vec2 near = mix(1.0 - f, f, vec2(way));
        float off = 20.0 * (texelFetch(uReach, texel, 0).x - reach) / (reach + 1.0);
        float weight = near.x * near.y / (1.0 + off * off) + 1e-6;
        sum += weight * texelFetch(uClouds, texel, 0);
        weights += weight;
    }
    return sum / weights;
}
// How far away the scene is along a ray of that length at unit distance. `nearFar`: the planes.
float sceneRange(float depth, vec2 nearFar, float stretch) {
    return depth <= 0.0 ? 1e9 : stretch * nearFar.x * nearFar.y / (depth * (nearFar.y - nearFar.x) + nearFar.x);
}
