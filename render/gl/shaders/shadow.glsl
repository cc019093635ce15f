// SPDX-License-Identifier: MIT
// How much of the key light reaches a place: 0 in full shadow to 1.
uniform sampler2DShadow uShadowMap;
float lightReaching(vec3 p) {
    if (uLightDirection.w < 0.5) return 1.0;
    vec3 q = (uShadow * vec4(p, 1.0)).xyz;
    vec2 edge = abs(q.xy - 0.5) * 2.0;
    float inside = max(edge.x, edge.y);
    if (inside >= 1.0 || q.z >= 1.0) return 1.0;
    vec2 texel = 1.0 / vec2(textureSize(uShadowMap, 0));
    float lit = 0.25 * (texture(uShadowMap, vec3(q.xy + texel * vec2(-0.5, -0.25), q.z)) +
                        texture(uShadowMap, vec3(q.xy + texel * vec2(0.25, -0.5), q.z)) +
                        texture(uShadowMap, vec3(q.xy + texel * vec2(0.5, 0.25), q.z)) +
                        texture(uShadowMap, vec3(q.xy + texel * vec2(-0.25, 0.5), q.z)));
    return mix(lit, 1.0, smoothstep(0.85, 1.0, inside));
}
