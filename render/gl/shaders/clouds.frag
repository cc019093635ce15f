// SPDX-License-Identifier: MIT
// The clouds at or below the eye's height, over the scene.
in vec2 vPlace;
uniform vec4 uRay;      // half width and height of the picture at unit distance, and its offset
uniform vec4 uNearFar;
uniform sampler2D uDepth;
out vec4 oColor;

void main() {
    vec2 n = vPlace * 2.0 - 1.0;
    vec3 eye = vec3(n * uRay.xy + uRay.zw, -1.0);
    vec3 d = normalize(transpose(mat3(uView)) * eye);
    float depth = texelFetch(uDepth, ivec2(gl_FragCoord.xy), 0).x;
    float behind = uNearFar.x * uNearFar.y / (depth * (uNearFar.y - uNearFar.x) + uNearFar.x);
    oColor = cloudsBelow(d, behind * length(eye), hazeColor(d.xy));
    if (d.z >= 0.0) oColor = vec4(0.0); // no earlier: levels of detail go by neighbours
}
