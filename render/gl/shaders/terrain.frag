// SPDX-License-Identifier: MIT
// What covers the ground goes by height, slope and noise of eight sizes: lush and dry grass, scrub,
// bare soil, scree, rock, beach. Each size fades out where the pixel is coarser than it, so that
// neither tiles nor borders show, and the wide ones keep the far hills from one plain colour.
// FAR: no pixel is near enough for grain, and one look tells its shadow.
// COVER: a land cover tells shares of other grounds, which replace the grass.
// IMAGERY: pictures from above give the colour; of the noise those sizes remain that they are too coarse for.
in vec3 vPosition;
in vec3 vNormal;
in vec3 vPlace;
in float vSlope;
in vec4 vHaze;
in float vSun;
uniform sampler2D uNoise;
uniform vec3 uTurf, uShore, uRock;
uniform vec4 uGround; // shore height, rock slope, wetness, ice
out vec4 oColor;

#ifdef COVER
in vec4 vWoodsToSand, vRockToWater;
#endif
#ifdef IMAGERY
in vec2 vMap;
uniform sampler2DArray uImagery; // colours times coverage; a texel in the middle of each edge
uniform vec4 uCells[PATCH_CELLS]; // to the layer: scale, offset; layer
uniform vec3 uPatchSize;          // columns, rows; metres of a texel of a cell of its own

// The picture here, and the metres that its texel covers.
vec4 lookAtPicture(out float texel) {
    const float EDGE = 512.0;
    vec2 dx = dFdx(vMap), dy = dFdy(vMap);
    vec2 cell = clamp(floor(vMap), vec2(0.0), uPatchSize.xy - 1.0);
    vec4 to = uCells[int(cell.x + cell.y * uPatchSize.x + 0.5)];
    float scale = to.x * (EDGE - 1.0) / EDGE;
    texel = uPatchSize.z / to.x;
    if (to.w < 0.0) return vec4(0.0);
    vec2 at = ((vMap - cell) * to.x + to.yz) * (EDGE - 1.0) / EDGE + 0.5 / EDGE;
    const vec4 DEVELOPED = vec4(vec3(0.7), 1.0); // pictures are exposed for the viewer: brighter than the ground
    return textureGrad(uImagery, vec3(at, to.w), dx * scale, dy * scale) * DEVELOPED;
}
#endif

void main() {
    float range = length(vPosition), footprint = range * uTime.y;
    vec2 p = vPlace.xy;
    float vast = texture(uNoise, p.yx / 2880.0).y, wide = texture(uNoise, p / 720.0).y;
    vec4 middle = texture(uNoise, p / 96.0), fine = texture(uNoise, p / 14.4);
    // Pushed about by the wide noises, the narrower ones no longer line up with their own repetition.
    vec2 warped = p.yx + vec2(vast, -wide) * 45.0;
    float patches = texture(uNoise, warped / 57.6).y, tufts = texture(uNoise, warped / 7.2).y;
    float near = smoothstep(0.5, 0.02, footprint);
#ifdef FAR
    vec2 grain = vec2(0.5);
#else
    vec2 grain = mix(vec2(0.5), vec2(texture(uNoise, p.yx / 1.8).y, texture(uNoise, p / 0.45).y),
                     smoothstep(0.06, 0.004, footprint));
#endif
    float rough = (fine.y - 0.5) * 0.5 + (grain.x - 0.5) * 0.35 + (grain.y - 0.5) * 0.25;

#ifdef IMAGERY
    float texel;
    vec4 picture = lookAtPicture(texel);
    // Shares of the noises of 96, 14.4 and 7.2 m that it leaves: all where it shows nothing of that size.
    vec3 left = mix(vec3(1.0), 1.0 - smoothstep(vec3(2.0 * texel), vec3(8.0 * texel), vec3(96.0, 14.4, 7.2)), picture.a);
    vec2 tilt = (fine.zw - 0.5) * (1.6 * near * left.y) + (middle.zw - 0.5) * left.x;
#else
    vec2 tilt = (fine.zw - 0.5) * (1.6 * near) + (middle.zw - 0.5);
#endif
    vec3 normal = normalize(normalize(vNormal) - vec3(tilt, 0.0));

    // Grass: greener in hollows of the noise, drier on the heights; clumps of scrub; trodden soil.
    float dryness = vast * 0.45 + wide * 0.35 + middle.y * 0.3 + rough * 0.5
                    + clamp(vPlace.z / 500.0, 0.0, 0.35) - 0.1;
    vec3 turf = mix(uTurf * vec3(0.36, 0.40, 0.45), uTurf * vec3(0.92, 0.68, 0.98), smoothstep(0.2, 0.8, dryness));
    float scrub = smoothstep(0.58, 0.70, vast * 0.2 + wide * 0.2 + patches * 0.4 + tufts * 0.2 - rough * 0.12);
    turf = mix(turf, uTurf * vec3(0.20, 0.23, 0.30), scrub * 0.8);
    float worn = smoothstep(0.66, 0.88, wide * 0.3 + middle.y * 0.25 + (1.0 - patches) * 0.2 + fine.y * 0.25 + rough * 0.25
                                        + smoothstep(0.12, 0.5, vSlope) * 0.22);
    vec3 soil = vec3(0.155, 0.115, 0.07) * (0.75 + 0.5 * fine.y);
    turf = mix(turf, soil, worn * 0.8);

    vec3 shore = uShore * (0.42 + 0.22 * middle.y + 0.12 * fine.y);
    vec3 rock = uRock * (0.55 + 0.7 * middle.x + 0.6 * fine.x);
#ifdef COVER
    // Between two samples one goes over into the other where the noise has it.
    float frayed = clamp((patches - 0.5) * 0.6 + rough * 0.4, -0.3, 0.3);
    vec4 first = clamp((vWoodsToSand - 0.5 + frayed) * 3.0 + 0.5, 0.0, 1.0);
    vec4 second = clamp((vRockToWater - 0.5 + frayed) * 3.0 + 0.5, 0.0, 1.0);
    turf = mix(turf, uTurf * vec3(0.18, 0.23, 0.26) * (0.6 + 0.8 * tufts), first.x);
    vec3 field = mix(uTurf * vec3(0.75, 0.80, 0.70), vec3(0.20, 0.165, 0.08), smoothstep(0.45, 0.55, wide));
    turf = mix(turf, field * (0.85 + 0.3 * fine.y), first.y);
    turf = mix(turf, soil * 1.2, first.z);
    turf = mix(turf, shore, first.w);
    turf = mix(turf, rock, second.x);
    turf = mix(turf, vec3(0.17, 0.165, 0.16) * (0.75 + 0.5 * patches), second.y);
    turf = mix(turf, vec3(0.66, 0.71, 0.77) * (0.85 + 0.3 * middle.y), second.z);
    turf = mix(turf, vec3(0.012, 0.026, 0.032), second.w);
#endif
    float edge = uGround.x * (0.65 + 0.35 * middle.y + 0.35 * fine.y);
    vec3 albedo = mix(shore, turf, smoothstep(edge * 0.85, edge * 1.15 + 0.3, vPlace.z));
    float steep = uGround.y * (0.45 + 0.5 * middle.y + 0.3 * fine.y);
    float bare = smoothstep(steep * 0.75, steep * 1.15, vSlope);
    bare = max(bare, smoothstep(-1.0, -4.0, vPlace.z)); // the sea bed
    albedo = mix(albedo, rock, bare);
#ifdef IMAGERY
    // The sea is where the ground is below it: along the shore a beach lies where pictures show water.
    vec3 pure = picture.rgb / max(picture.a, 0.01);
    float watery = smoothstep(0.0, 0.04, pure.b - pure.r) * (1.0 - smoothstep(edge * 0.85, edge * 1.15 + 0.3, vPlace.z));
    float shown = 1.0 - max(watery, smoothstep(edge * 0.5, edge * 0.15, vPlace.z));
    float detail = 1.0 + dot(left, vec3(0.5 * (middle.y - 0.5), 0.7 * (fine.y - 0.5), 0.6 * (tufts - 0.5)));
    albedo = albedo * (1.0 - picture.a * shown) + picture.rgb * (shown * detail);
#endif
    albedo *= 0.60 + 0.35 * grain.x + 0.45 * grain.y;
    float damp = smoothstep(1.1, 0.2, vPlace.z) * 0.45;
    float wet = max(damp, 0.5 * uGround.z);
    float frost = uGround.w * smoothstep(0.15, 0.55, normal.z - 0.35 * vSlope + (fine.y - 0.5) * 0.3);
    albedo = mix(albedo * (1.0 - wet), vec3(0.62, 0.68, 0.74) * (0.85 + 0.15 * grain.x), frost * 0.85);

#ifdef FAR
    float reaching = lightReachingOnce(vPosition + normal * 0.05);
#else
    float reaching = lightReaching(vPosition + normal * 0.05);
#endif
    vec3 light = uLight.rgb * vSun * reaching;
    vec3 ambient = uAmbient.rgb * mix(vec3(0.35), vec3(1.0), normal.z * 0.5 + 0.5);
    vec3 color = albedo * (ambient + light * max(dot(normal, uLightDirection.xyz), 0.0) / PI);
#ifdef LIGHTS
    color += albedo * lampLight(vPosition, normal);
#endif
    oColor = vec4(mix(vHaze.rgb, color, vHaze.w), 1.0);
}
