// SPDX-License-Identifier: MIT
// A tuft: five blades, each a triangle of its own, coloured as the ground that it stands on.
layout(location = 0) in vec4 aPlace; // foot in the eye's frame; w: height, m
layout(location = 1) in vec4 aLook;  // place in the ground's noise, m; chance
uniform sampler2D uNoise;
uniform vec3 uTurf;
uniform float uReach;
uniform vec4 uField;       // place in the eye's frame; w: radius, m; 0: none
uniform vec4 uFieldMotion; // lean, shiver, press; height where its force ends, m
out vec3 vColor;
out vec4 vHaze;

// Lean of a blade, rad, and where to.
vec3 wind(vec3 foot, float chance) {
    vec2 push = 0.12 * vec2(sin(uTime.x * 1.3 + foot.x * 0.4 + chance * 6.0), cos(uTime.x * 1.1 + foot.y * 0.4));
    if (uField.w > 0.0) {
        vec3 away = foot - uField.xyz;
        float out_ = length(away.xy) / uField.w, below = -away.z / uFieldMotion.w;
        float force = exp(-out_ * out_) * clamp(1.0 - below, 0.0, 1.0);
        vec2 outwards = away.xy / max(length(away.xy), 0.1);
        float beat = sin(uTime.x * 23.0 - out_ * 9.0 + chance * 2.0);
        push += outwards * force * (1.2 * uFieldMotion.x + 0.5 * uFieldMotion.y * beat);
        push += vec2(-outwards.y, outwards.x) * force * uFieldMotion.y * 0.4 * sin(uTime.x * 31.0 + chance * 40.0);
        return vec3(push, 1.0 - 0.5 * clamp(force * uFieldMotion.z, 0.0, 1.0));
    }
    return vec3(push, 1.0);
}

void main() {
    int blade = gl_VertexID / 3, corner = gl_VertexID - 3 * blade;
    vec3 foot = aPlace.xyz;
    float chance = aLook.z, range = length(foot);
    float turn = 6.2832 * (chance * 7.0 + float(blade) * 0.236), own = fract(chance * 91.0 + float(blade) * 0.618);
    vec2 way = vec2(cos(turn), sin(turn));
    foot.xy += way * (0.03 + 0.25 * own);
    // Not thinner than a pixel: what is far away gets broader and keeps its share of the picture.
    float half_width = max(0.006 + 0.007 * own, 0.6 * range * uTime.y);
    vec3 push = wind(foot, fract(chance * 17.0 + float(blade) * 0.37));
    vec2 lean = push.xy + way * 0.35;
    float angle = min(length(lean), 1.45), height = aPlace.w * push.z * (0.6 + 0.6 * own) * (1.0 + 0.5 * smoothstep(0.2, 1.0, range / uReach));
    vec3 p = foot;
    if (corner == 2)
        p += height * vec3(lean * (sin(angle) / max(length(lean), 1e-3)), cos(angle));
    else
        p.xy += normalize(vec2(-foot.y, foot.x) + 1e-4) * (corner == 0 ? -half_width : half_width);

    float dryness = textureLod(uNoise, aLook.yx / 2880.0, 0.0).y * 0.45 + textureLod(uNoise, aLook.xy / 720.0, 0.0).y * 0.35 + 0.05;
    vec3 turf = mix(uTurf * vec3(0.36, 0.40, 0.45), uTurf * vec3(0.92, 0.68, 0.98), smoothstep(0.2, 0.8, dryness + 0.3 * (chance - 0.5)));
    turf *= corner == 2 ? 1.35 : 0.75;
    vec3 light = uLight.rgb * cloudShade(foot) * lightReachingOnce(foot + vec3(0.0, 0.0, 0.2));
    float facing = max(uLightDirection.z, 0.0) * 0.75 + 0.2;
    vColor = turf * (uAmbient.rgb + light * facing / PI);
#ifdef LIGHTS
    vColor += turf * 0.6 * lampAround(foot + vec3(0.0, 0.0, 0.1));
#endif
    vHaze = vec4(hazeColor(p.xy), clearness(p));
    gl_Position = uProjection * vec4(mat3(uView) * p, 1.0);
}
