// SPDX-License-Identifier: MIT
// How much of the key light reaches a place. Four maps share one texture, a quarter each: the sharper
// ones lie within the wider ones, and the sharpest that knows the place tells. Without branches, so
// that all maps together cost hardly more than one.
// HILLS: those of the hills count too.
uniform sampler2DShadow uShadowMap;
uniform sampler2D uHillMap;

// How far the shadow of hills reaches above a place, m, and how much of the light it takes.
float hillsAbove(vec3 p) {
    vec3 q = (uHills * vec4(p, 1.0)).xyz;
    return textureLod(uHillMap, q.xy, 0.0).r - q.z;
}
float hillShade(float above) { return smoothstep(0.0, 1.0, above * uHillShade.x); }

// Place in the texture and depth; a depth of 0, before which nothing casts, where no map reaches.
vec3 shadowPlace(vec3 p) {
    const float EDGE = 0.99; // what is looked up around a place must lie in the same map
    vec3 q = (uShadow * vec4(p, 1.0)).xyz;
    vec2 near = q.xy * uShadowNear.x + uShadowNear.yz, middle = q.xy * uShadowMiddle.x + uShadowMiddle.yz;
    vec2 far = q.xy * uShadowFar.x + uShadowFar.yz, farthest = q.xy * uShadowFarthest.x + uShadowFarthest.yz;
    vec3 place = vec3(farthest * 0.25 + vec2(0.75, 0.75), max(abs(farthest.x), abs(farthest.y)) < EDGE ? q.z : 0.0);
    place = max(abs(far.x), abs(far.y)) < EDGE ? vec3(far * 0.25 + vec2(0.25, 0.75), q.z) : place;
    place = max(abs(middle.x), abs(middle.y)) < EDGE ? vec3(middle * 0.25 + vec2(0.75, 0.25), q.z) : place;
    return max(abs(near.x), abs(near.y)) < EDGE ? vec3(near * 0.25 + 0.25, q.z) : place;
}
float lightReaching(vec3 p) {
    vec3 q = shadowPlace(p);
    vec2 texel = 1.0 / vec2(textureSize(uShadowMap, 0));
#ifdef PAVED // wide, and shades nothing itself
    float lit = 0.5 * (textureLod(uShadowMap, vec3(q.xy + texel * vec2(-0.45, -0.3), q.z), 0.0) +
                       textureLod(uShadowMap, vec3(q.xy + texel * vec2(0.45, 0.3), q.z), 0.0));
#else
    float lit = (textureLod(uShadowMap, vec3(q.xy + texel * vec2(-0.5, -0.3), q.z), 0.0) +
                 textureLod(uShadowMap, vec3(q.xy + texel * vec2(0.5, -0.3), q.z), 0.0) +
                 textureLod(uShadowMap, vec3(q.xy + texel * vec2(0.0, 0.55), q.z), 0.0)) / 3.0;
#endif
#ifdef HILLS
    lit *= 1.0 - hillShade(hillsAbove(p));
#endif
    return mix(1.0, lit, uLightDirection.w);
}
// By one look, for vertices and for what is too small for more.
float lightReachingOnce(vec3 p) {
    return mix(1.0, textureLod(uShadowMap, shadowPlace(p), 0.0) * (1.0 - hillShade(hillsAbove(p))), uLightDirection.w);
}
