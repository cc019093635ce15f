// SPDX-License-Identifier: MIT
// The sky as all passes read it: scattering with its phase functions, clouds, overcast, the light of
// the night.
in vec2 vPlace;
uniform sampler2D uRayleigh, uMie, uMultiple;
uniform vec4 uClouds;     // cover, overcast, darkness of the overcast, drift
uniform vec3 uCloudLight; // the key light that reaches the clouds
uniform vec3 uNight;      // light of the night sky
out vec4 oColor;
void main() {
    vec2 q = (vPlace - 0.5) / 0.496;
    float r = min(length(q), 1.0), t = 1.0 - r * r, z = t * t;
    vec3 d = vec3(q / max(length(q), 1e-5) * sqrt(max(1.0 - z * z, 0.0)), z);
    float mu = dot(d, uSunDirection.xyz);
    float rayleigh = 3.0 / (16.0 * PI) * (1.0 + mu * mu);
    const float g = 0.76;
    float mie = min(3.0 / (8.0 * PI) * (1.0 - g * g) * (1.0 + mu * mu) /
                    ((2.0 + g * g) * pow(1.0 + g * g - 2.0 * g * mu, 1.5)), 3.0);
    float day = smoothstep(-0.1, 0.5, uSunDirection.z);
    vec3 sun = SUN_COLOR * SUN_IRRADIANCE;
    vec3 c = (texture(uRayleigh, vPlace).rgb * rayleigh + texture(uMie, vPlace).rgb * mie) * sun +
             texture(uMultiple, vPlace).rgb * vec3(0.62, 0.66, 0.74) * day * 1.15;
    c += uNight * (0.6 + 0.8 * exp(-6.0 * d.z));

    // Broken clouds on a plane, lit from the side that the light comes from, and cirrus above.
    float dusk = smoothstep(-0.1, 0.4, uSunDirection.z);
    vec3 shade = vec3(0.62, 0.76, 0.98) * 0.9 * dusk + uNight * 1.5;
    if (uClouds.x > 0.0) {
        vec2 p = d.xy / (d.z + 0.035) * 0.9 + uClouds.w;
        float n = fbm(p * 1.3 + 4.0, 6);
        float cover = smoothstep(0.62 - 0.30 * uClouds.x, 0.95 - 0.25 * uClouds.x, n);
        float beside = fbm(p * 1.3 + 4.0 + uLightDirection.xy * 0.10, 4);
        float lit = clamp(1.05 - (beside - n) * 2.2 - cover * 0.55, 0.15, 1.3);
        vec3 direct = mix(uCloudLight, vec3(dot(uCloudLight, vec3(0.33))), 0.5);
        float forward = min(mie, 1.2);
        vec3 cloud = direct * 0.14 * lit + shade + uCloudLight * 0.10 * forward * (1.0 - cover) * 2.0;
        float fade = exp(-0.09 / (d.z + 0.03));
        c = mix(c, cloud, cover * fade * 0.92);
        float cirrus = fbm(vec2(p.x * 0.25 + p.y * 0.1, p.y * 1.1) * 0.8 + 9.0, 5);
        c += (0.5 * dusk + uNight) * smoothstep(0.5, 0.9, cirrus) * 0.35 * fade * uClouds.x;
    }
    if (uClouds.y > 0.0) { // a closed layer: brightest at the zenith, as measured under overcast skies
        vec2 p = d.xy / (d.z + 0.12) * 1.1 + uClouds.w;
        float texture_ = mix(1.0, 0.55 + 0.9 * fbm(p, 5), 0.35 + 0.5 * uClouds.z);
        float brightness = 0.16 * dot(uCloudLight, vec3(0.33)) + 0.75 * dusk;
        vec3 layer = (vec3(0.93, 0.97, 1.0) * brightness + uNight * 0.8) * (1.0 + 2.0 * d.z) / 2.2 *
                     (1.0 - 0.62 * uClouds.z) * texture_;
        c = mix(c, layer, uClouds.y);
    }
    oColor = vec4(c, 1.0);
}
