// SPDX-License-Identifier: MIT
// What covers the ground goes by height and slope, broken up by noise of three sizes so that
// neither tiles nor borders show.
in vec3 vPosition;
in vec3 vNormal;
in vec3 vPlace;
in float vSlope;
in vec4 vHaze;
uniform sampler2D uNoise;
uniform vec3 uTurf, uShore, uRock;
uniform vec4 uGround; // shore height, rock slope, wetness, ice
out vec4 oColor;
void main() {
    float range = length(vPosition), footprint = range * uTime.y;
    vec2 wide = texture(uNoise, vPlace.xy / 720.0).xy, middle = texture(uNoise, vPlace.xy / 48.0).xy;
    float near = smoothstep(0.5, 0.02, footprint);
    vec2 fine = mix(vec2(0.5), texture(uNoise, vPlace.xy / 9.0).xy, near);
    float grain = mix(0.5, texture(uNoise, vPlace.yx / 1.5).x, smoothstep(0.06, 0.004, footprint));
    float mottle = wide.y * 0.45 + middle.y * 0.35 + fine.y * 0.2;

    // Bumps that light plays on, where the pixel is finer than they are.
    vec2 step_ = vec2(0.9, 0.0);
    float bump_x = texture(uNoise, (vPlace.xy + step_.xy) / 9.0).y - fine.y;
    float bump_y = texture(uNoise, (vPlace.xy + step_.yx) / 9.0).y - fine.y;
    vec3 normal = normalize(normalize(vNormal) - vec3(bump_x, bump_y, 0.0) * 0.7 * near);

    vec3 turf = uTurf * mix(vec3(0.34, 0.40, 0.36), vec3(0.80, 0.74, 0.70), mottle);
    turf = mix(turf, vec3(0.15, 0.13, 0.065), smoothstep(0.55, 0.95, wide.x * 0.5 + middle.x * 0.5) * 0.55);
    vec3 shore = uShore * mix(0.50, 0.72, middle.y);
    vec3 rock = uRock * mix(0.55, 1.6, middle.x * 0.5 + fine.x * 0.5);
    float edge = uGround.x * (0.7 + 0.6 * mottle);
    vec3 albedo = mix(shore, turf, smoothstep(edge * 0.85, edge * 1.15 + 0.3, vPlace.z));
    float steep = uGround.y * (0.75 + 0.5 * mottle);
    float bare = smoothstep(steep * 0.8, steep * 1.15, vSlope);
    bare = max(bare, smoothstep(-1.0, -4.0, vPlace.z)); // the sea bed
    albedo = mix(albedo, rock, bare);
    albedo *= 0.82 + 0.36 * grain;
    float damp = smoothstep(1.1, 0.2, vPlace.z) * 0.45;
    float wet = max(damp, 0.5 * uGround.z);
    albedo = mix(albedo * (1.0 - wet), vec3(0.62, 0.68, 0.74), uGround.w * 0.8);

    vec3 light = uLight.rgb * lightReaching(vPosition + normal * 0.05);
    vec3 ambient = uAmbient.rgb * mix(vec3(0.35), vec3(1.0), normal.z * 0.5 + 0.5);
    vec3 color = albedo * (ambient + light * max(dot(normal, uLightDirection.xyz), 0.0) / PI);
    oColor = vec4(mix(vHaze.rgb, color, vHaze.w), 1.0);
}
