// SPDX-License-Identifier: MIT
// The clouds as a volume over the scene; what is sky has them from the background's program.
uniform vec4 uRay;     // half width and height of the picture at unit distance, and its offset
uniform vec2 uNearFar; // planes, m
uniform sampler2D uDepth;
out vec4 oColor;

void main() {
    vec2 n = gl_FragCoord.xy * 2.0 * uScreen.zw - 1.0;
    vec3 eye = vec3(n * uRay.xy + uRay.zw, -1.0);
    float depth = texelFetch(uDepth, ivec2(gl_FragCoord.xy), 0).x;
    float limit = sceneRange(depth, uNearFar, length(eye));
    vec2 span = cloudSpan(normalize(transpose(mat3(uView)) * eye));
    float before = clamp((limit - span.x) / 30.0, 0.0, 1.0) * smoothstep(10.0, 250.0, limit);
    oColor = cloudsSeen(gl_FragCoord.xy, cloudReach(span, limit)) * (depth > 0.0 ? before : 0.0);
}
