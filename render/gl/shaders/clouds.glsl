// SPDX-License-Identifier: MIT
// The layer of clouds along a ray, for whoever looks: a column stands on each place of the field that
// is thick enough, as high as the place is thick. A few sheets cut the columns at heights of their own,
// and what shifts between them gives clouds their bodies.
uniform sampler2D uCloudField;
const int SHEETS = 2;
const float GROWS_OVER = 0.35; // part of the layer's thickness over which a column ends

// How far away a ray (unit, E) meets a height `h` above the eye. Below 0: nowhere.
float cloudRange(vec3 d, float h) {
    float root = d.z * d.z + 4.0 * uCloudPlace.w * dot(d.xy, d.xy) * h;
    return root < 0.0 ? -1.0 : 2.0 * h / (d.z + (h < 0.0 ? -1.0 : 1.0) * (sqrt(root) + 1e-6));
}
vec2 cloudPlace(vec3 d, float t) { return uCloudPlace.xy + d.xy * (t * uCloudPlace.z); }
// 0.5 in the mean.
float cloudHeaps(vec2 place, float bias) { return texture(uCloudField, place * CLOUD_HEAPS, bias).g; }
// Share that is cloud. Far away a pixel sees much of the field, and the mean of it. A cloud is so much
// brighter than the sky that little of it counts as covered: that much is there at the threshold.
float cloudEdge(float rise, float t) {
    float x = clamp(rise * 0.30 / (uCloudLayer.w + t * 0.8e-5) + 0.14, 0.0, 1.0);
    return max(x * x * (3.0 - 2.0 * x), uCloudLight.w);
}
// What sheet `i` covers of a column as high as `top` at the height `f`, both shares of the thickness.
float sheetCover(int i, float edge, float top, float f) {
    if (i == 0) return edge;
    return edge * smoothstep(f - GROWS_OVER, f + GROWS_OVER, top);
}

// Colour, premultiplied, and opacity of the clouds above the eye along a ray (unit, E) that doesn't
// point down. `haze`: what they go over to far away.
vec4 cloudsAbove(vec3 d, vec3 haze, float bias) {
    float above = max(uCloudLayer.x + uCloudLayer.y, 1.0), farthest = cloudRange(d, above), each = farthest / above;
    float frayed = (cloudHeaps(cloudPlace(d, max(uCloudLayer.x, 0.0) * each), bias) - 0.5) * CLOUD_FRAY - uCloudLayer.z;
    float growth = 1.0 / (CLOUD_THICKEST - uCloudLayer.z);
    float forward = 0.2 * min(glowAt(dot(d, uLightDirection.xyz)), 1.2);
    float side = 0.14 - 0.035 * dot(d.xy, uLightDirection.xy), shade = 2.5 / (0.4 + 0.6 * max(uLightDirection.z, 0.0));
    vec3 closed = uCloudHaze.rgb * (1.0 + 2.0 * d.z); // brightest at the zenith, as measured
    vec3 sum = vec3(0.0);
    float through = 1.0;
    for (int i = 0; i < SHEETS; i++) {
        float f = (float(i) + 0.1) / float(SHEETS), h = uCloudLayer.x + uCloudLayer.y * f;
        float t = max(h, 0.0) * each;
        vec4 field = texture(uCloudField, cloudPlace(d, t), bias);
        float rise = field.r + frayed, edge = cloudEdge(rise, farthest);
        float thin = 1.0 - clamp(rise * growth, 0.0, 1.0), top = 1.0 - thin * thin;
        float cover = sheetCover(i, edge, top, f) * smoothstep(10.0, 250.0, t) * through;
        // What lies above and towards the light takes it away.
        float steep = dot(field.ba - 0.5, uLightDirection.xy);
        float lit = clamp(1.0 + 1.6 * steep, 0.3, 1.6) * side / (1.0 + shade * max(top - f, 0.0));
        vec3 color = uCloudLight.rgb * (lit + forward * (1.0 - edge)) + uCloudSky.rgb * (0.75 + 0.35 * f);
        float tone = 1.0 + (0.8 * field.r - 0.4 + 2.0 * frayed + 2.0 * uCloudLayer.z) * (0.4 + 0.4 * uCloudSky.w);
        sum += cover * mix(color, closed * tone, uCloudLight.w);
        through -= cover;
    }
    float alpha = 1.0 - through;
    return vec4(mix(haze * alpha, sum * uSky.x, exp(-farthest * uCloudAir.x)), alpha);
}

// The same below the eye, for a ray that points down: sheets from the tops to the base, each lit as the
// hilly surface that all of them make. `limit`: distance of what hides clouds behind it.
vec4 cloudsBelow(vec3 d, float limit, vec3 haze) {
    float growth = 1.0 / (CLOUD_THICKEST - uCloudLayer.z);
    vec3 sum = vec3(0.0);
    float through = 1.0;
    for (int i = SHEETS - 1; i >= 0; i--) {
        float f = (float(i) + 0.1) / float(SHEETS), h = min(uCloudLayer.x + uCloudLayer.y * f, -1.0);
        float t = cloudRange(d, h);
        vec2 place = cloudPlace(d, t);
        vec4 field = texture(uCloudField, place);
        float heaps = cloudHeaps(place, 0.0), rise = field.r + (heaps - 0.5) * CLOUD_FRAY - uCloudLayer.z;
        float edge = cloudEdge(rise, t);
        float thin = 1.0 - clamp(rise * growth, 0.0, 1.0), top = 1.0 - thin * thin;
        float cover = sheetCover(i, edge, top, f) * smoothstep(10.0, 250.0, t) * smoothstep(0.0, 150.0, limit - t) * through;
        vec2 slope = (field.ba - 0.5) * (4.0 * uCloudLayer.y * growth / CLOUD_RISE * (0.4 + thin));
        vec3 normal = normalize(vec3(-slope, 1.0));
        float lit = clamp(0.2 + 0.8 * dot(normal, uLightDirection.xyz), 0.0, 1.0) * (0.7 + 0.3 * top) * (0.7 + 0.6 * heaps);
        vec3 color = uCloudLight.rgb * (0.2 * lit) + uCloudSky.rgb * ((0.5 + 0.5 * normal.z) * (0.7 + 0.3 * heaps));
        sum += cover * mix(haze, color * uSky.x, exp(-t * uCloudAir.x));
        through -= cover;
    }
    return vec4(sum, 1.0 - through);
}
