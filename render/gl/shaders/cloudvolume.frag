// SPDX-License-Identifier: MIT
// The layer of clouds as a volume: one ray a pixel of a picture of half as many pixels a side goes
// through it in steps whose length grows with the distance. Steps begin at another place in each pixel
// and picture; what that leaves of noise, pictures before take away (cloudresolve.frag).
uniform vec4 uRay;     // half width and height of the picture at unit distance, and its offset
uniform vec2 uNearFar; // planes, m
uniform vec2 uSteps;   // fewest of a ray; number of the picture, of those that begin elsewhere
uniform sampler2D uDepth, uCloudField;
layout(location = 0) out vec4 oColor; // premultiplied, and opacity
layout(location = 1) out vec2 oReach; // how far it looked, and the mean distance of what it saw, m

const float DEPTH = 18.0;      // optical, of a column as high as the layer
const float EDGE = 0.25;       // share of the thickness over which a column becomes dense from its top
const float OVERHANG = 0.04, NARROWING = 0.06; // of the field: what heaps cover to the sides is as much less
const float TEXEL = log2(CLOUD_PERIOD / 512.0), HEAP_LEVELS = log2(CLOUD_HEAPS);

// Density, 0 to 1, at a place of the field and a height, a share of the thickness; what the field and
// the heaps say there. Heaps are looked at along two slants, so that they bulge on the sides, too.
vec3 densityAt(vec2 place, float f, float level) {
    float field = textureLod(uCloudField, place, level).r;
    vec2 slant = vec2(0.8, 0.6) * (f * uCloudLayer.y * uCloudPlace.z * CLOUD_HEAPS), at = place * CLOUD_HEAPS;
    float heaps = 0.7 * (textureLod(uCloudField, at + slant, level + HEAP_LEVELS).g +
                         textureLod(uCloudField, at - slant.yx * vec2(1.0, -1.0), level + HEAP_LEVELS).g) - 0.2;
    float rise = field + (heaps - 0.5) * CLOUD_FRAY * (1.0 + f) - OVERHANG - NARROWING * f - uCloudLayer.z;
    float thin = 1.0 - clamp(rise / (CLOUD_THICKEST - uCloudLayer.z), 0.0, 1.0);
    float top = max(1.0 - thin * thin, 0.45 * uCloudLight.w);
    return vec3(smoothstep(0.0, EDGE, top - f) * smoothstep(0.0, 0.06, f), field, heaps);
}
// Optical depth towards the light.
float depthToLight(vec2 place, float f, float level) {
    const vec4 MIDDLES = vec4(0.05, 0.175, 0.375, 0.75), LENGTHS = vec4(0.1, 0.15, 0.25, 0.5);
    vec2 way = uLightDirection.xy * (uCloudLayer.y * uCloudPlace.z);
    float sum = 0.0;
    for (int i = 0; i < 4; i++) {
        float height = f + uLightDirection.z * MIDDLES[i];
        if (height > 0.0 && height < 1.0) sum += LENGTHS[i] * densityAt(place + way * MIDDLES[i], height, level + float(i) * 0.5).x;
    }
    return sum * DEPTH;
}
// What a place sends to the eye. Light is scattered often: some of it comes through what takes the rest.
vec3 lightAt(vec3 d, vec2 place, float f, vec3 there, float level) {
    float toLight = depthToLight(place, f, level), forward = min(glowAt(dot(d, uLightDirection.xyz)), 1.2);
    float spread = 0.4 * exp(-0.4 * toLight) + 0.6 * exp(-0.08 * toLight);
    float powder = 1.0 - 0.3 * exp(-6.0 * there.x);
    vec3 color = uCloudLight.rgb * (0.2 * spread * powder + 0.25 * forward * exp(-toLight));
    color += uCloudSky.rgb * (0.62 + 0.4 * f + 0.4 * (there.z - 0.5));
    float tone = 1.0 + (0.8 * there.y - 0.4 + 2.0 * CLOUD_FRAY * (there.z - 0.5)) * (0.4 + 0.4 * uCloudSky.w);
    vec3 closed = uCloudHaze.rgb * (1.0 + 2.0 * max(d.z, 0.0)) * tone; // seen from below
    return mix(color, closed, uCloudLight.w * smoothstep(-0.05, 0.05, d.z));
}

void main() {
    ivec2 pixel = ivec2(gl_FragCoord.xy), last = ivec2(uScreen.xy) - 1;
    vec2 n = gl_FragCoord.xy * 2.0 * uScreen.zw * 2.0 - 1.0;
    vec3 eye = vec3(n * uRay.xy + uRay.zw, -1.0), d = normalize(transpose(mat3(uView)) * eye);
    float depth = 1.0; // the farthest of four
    for (int i = 0; i < 4; i++)
        depth = min(depth, texelFetch(uDepth, min(2 * pixel + ivec2(i & 1, i >> 1), last), 0).x);
    vec2 span = cloudSpan(d);
    float reach = cloudReach(span, sceneRange(depth, uNearFar, length(eye)));

    const float SHORT = 0.5, FINEST = 200.0; // m: near the eye steps are as if so far away
    float turn = fract(52.9829189 * fract(dot(gl_FragCoord.xy + 5.588238 * uSteps.y, vec2(0.06711056, 0.00583715)))); // Jimenez 2014
    float growth = log((FINEST + reach) / (FINEST + span.x)), through = 1.0, middle = 0.0;
    vec3 sum = vec3(0.0);
    float steps = reach > span.x ? floor(clamp(20.0 * growth, uSteps.x, 112.0)) : 0.0, stride = 1.0, empty = 0.0;
    float bend = uCloudPlace.w * dot(d.xy, d.xy), along = length(d.xy);
    // Long strides until a cloud is met, from one back shorter ones until it has been left.
    for (float i = turn; i < steps && through > 0.01; i += stride) {
        float t = (FINEST + span.x) * exp(growth * i / steps) - FINEST, stretch = (t + FINEST) * growth / steps * stride;
        float f = (t * (d.z + bend * t) - uCloudLayer.x) / uCloudLayer.y;
        vec2 place = uCloudPlace.xy + d.xy * (t * uCloudPlace.z);
        float level = max(log2(max(0.5 * stretch * along, 2.0 * t * uTime.y)) - TEXEL, -HEAP_LEVELS);
        vec3 there = densityAt(place, f, level);
        float thick = there.x * smoothstep(10.0, 250.0, t); // nearer, the fog is the cloud
        empty = thick > 0.001 ? 0.0 : empty + 1.0;
        if (empty == 0.0 && stride == 1.0) {
            i = max(i - 1.0, SHORT * (turn - 1.0));
            stride = SHORT;
        } else if (empty == 0.0) {
            float cover = through * (1.0 - exp(-thick * stretch * DEPTH / uCloudLayer.y));
            sum += cover * lightAt(d, place, f, there, level);
            middle += cover * t;
            through -= cover;
        } else if (empty > 2.0) {
            stride = 1.0;
        }
    }
    float alpha = 1.0 - through;
    float range = alpha > 0.01 ? middle / alpha : 0.5 * (span.x + min(reach, span.x + 4.0 * uCloudLayer.y));
    oReach = vec2(reach, range);
    oColor = vec4(mix(hazeColor(d.xy) * alpha, sum * uSky.x, exp(-range * uCloudAir.x)), alpha);
}
