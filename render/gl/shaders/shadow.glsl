// SPDX-License-Identifier: MIT
// How much of the key light reaches a place: 0 in full shadow to 1. The near map is sharp around the
// focus; beyond it the far one knows what is large.
uniform sampler2DShadow uShadowMap, uShadowFarMap;
float lightReaching(vec3 p) {
    if (uLightDirection.w < 0.5) return 1.0;
    vec3 q = (uShadow * vec4(p, 1.0)).xyz;
    vec2 edge = abs(q.xy - 0.5) * 2.0;
    float inside = q.z >= 1.0 ? 1.0 : max(edge.x, edge.y);
    vec3 f = vec3(q.xy * uShadowFar.xy + uShadowFar.zw, q.z * uShadowFarDepth.x + uShadowFarDepth.y);
    bool known = uShadowFarDepth.w > 0.5 && max(abs(f.x - 0.5), abs(f.y - 0.5)) < 0.5 && f.z < 1.0;
    float far = known ? texture(uShadowFarMap, f) : 1.0;
    if (inside >= 1.0) return far;
    vec2 texel = 1.0 / vec2(textureSize(uShadowMap, 0));
    float lit = (texture(uShadowMap, vec3(q.xy + texel * vec2(-0.5, -0.3), q.z)) +
                 texture(uShadowMap, vec3(q.xy + texel * vec2(0.5, -0.3), q.z)) +
                 texture(uShadowMap, vec3(q.xy + texel * vec2(0.0, 0.55), q.z))) / 3.0;
    return mix(lit, far, smoothstep(0.85, 1.0, inside));
}
