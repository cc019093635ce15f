// SPDX-License-Identifier: MIT
// The sky as all passes read it: scattering with its phase functions and the light of the night, and
// the same with clouds.
in vec2 vPlace;
uniform sampler2D uRayleigh, uMie, uMultiple;
uniform vec3 uNight; // light of the night sky
uniform float uCirrus;
layout(location = 0) out vec4 oClear;
layout(location = 1) out vec4 oColor;

vec3 clearSky(vec3 d, vec2 place) {
    float mu = dot(d, uSunDirection.xyz);
    float rayleigh = 3.0 / (16.0 * PI) * (1.0 + mu * mu);
    float day = smoothstep(-0.1, 0.5, uSunDirection.z);
    vec3 sun = SUN_COLOR * SUN_IRRADIANCE;
    vec3 c = (texture(uRayleigh, place).rgb * rayleigh + texture(uMie, place).rgb * glowAt(mu)) * sun +
             texture(uMultiple, place).rgb * vec3(0.62, 0.66, 0.74) * day * 1.15;
    return c + uNight * (0.6 + 0.8 * exp(-6.0 * d.z));
}

void main() {
    vec2 q = (vPlace - 0.5) / 0.496;
    float r = min(length(q), 1.0), t = 1.0 - r * r, z = t * t;
    vec2 level = q / max(length(q), 1e-5);
    vec3 d = vec3(level * sqrt(max(1.0 - z * z, 0.0)), z);
    vec3 c = clearSky(d, vPlace);
    // Cirrus, high above the other clouds.
    vec2 p = d.xy / (d.z + 0.035) * 0.9;
    float cirrus = fbm(vec2(p.x * 0.25 + p.y * 0.1, p.y * 1.1) * 0.8 + 9.0, 5);
    c += (0.6 * uCloudSky.rgb) * smoothstep(0.5, 0.9, cirrus) * 0.35 * exp(-0.09 / (d.z + 0.03)) * uCirrus;
    oClear = vec4(c, 1.0);
    vec3 horizon = clearSky(vec3(level, 0.012), level * (0.496 * 0.94) + 0.5);
    vec4 clouds = cloudsAbove(d, mix(horizon, uCloudHaze.rgb, uCloudHaze.w), 0.0);
    oColor = vec4(c * (1.0 - clouds.a) + clouds.rgb, 1.0);
}
