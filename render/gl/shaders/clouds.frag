// SPDX-License-Identifier: MIT
// The layer of clouds as it looks from above: a curved deck at the height of its tops, thick where
// noise of four sizes says so, bright where it slopes towards the light.
in vec2 vPlace;
uniform vec4 uRay;      // half width and height of the picture at unit distance, and its offset
uniform vec4 uLayer;    // eye above the tops, m; cover; closed layer 0 to 1; half the earth's curvature, 1/m
uniform vec4 uAnchor;   // nadir in the noise's period
uniform vec4 uNearFar;
uniform sampler2D uDepth, uNoise;
out vec4 oColor;

float lumps(vec2 p, float footprint) {
    float n = 0.50 * texture(uNoise, p / NOISE_PERIOD).y + 0.27 * texture(uNoise, p.yx / 4800.0).y;
    n += 0.15 * mix(texture(uNoise, p / 1600.0).y, 0.5, smoothstep(80.0, 400.0, footprint));
    return n + 0.08 * mix(texture(uNoise, p.yx / 450.0).y, 0.5, smoothstep(20.0, 100.0, footprint));
}

void main() {
    vec2 n = vPlace * 2.0 - 1.0;
    vec3 eye = vec3(n * uRay.xy + uRay.zw, -1.0);
    vec3 d = normalize(transpose(mat3(uView)) * eye);
    float root = d.z * d.z - 4.0 * uLayer.w * dot(d.xy, d.xy) * uLayer.x;
    if (d.z >= 0.0 || root < 0.0) discard;
    float range = 2.0 * uLayer.x / (sqrt(root) - d.z);
    vec3 p = d * range;
    float depth = texelFetch(uDepth, ivec2(gl_FragCoord.xy), 0).x;
    float behind = uNearFar.x * uNearFar.y / (depth * (uNearFar.y - uNearFar.x) + uNearFar.x);
    float beyond = behind * length(eye) - range;
    if (beyond < 0.0) discard;

    float footprint = range * uTime.y / max(-d.z, 0.05);
    vec2 place = p.xy + uAnchor.xy;
    float here = lumps(place, footprint);
    float threshold = mix(0.66, 0.34, uLayer.y);
    float cover = smoothstep(threshold - 0.03, threshold + 0.13, here);
    cover = mix(cover, 1.0, uLayer.z);
    float slope = here - lumps(place + uLightDirection.xy * 350.0, footprint);
    float lit = clamp(0.62 + 4.5 * slope + 0.9 * (here - threshold) * (1.0 - 0.5 * uLayer.z), 0.2, 1.25);
    vec3 color = uLight.rgb * (0.05 + 0.17 * max(uLightDirection.z, 0.0)) * lit + uAmbient.rgb * (0.45 + 0.3 * lit);
    color = mix(hazeColor(p.xy), color, clearness(p));
    float alpha = cover * smoothstep(0.0, 200.0, beyond) * smoothstep(20.0, 250.0, range) * 0.97;
    oColor = vec4(color * alpha, alpha);
}
