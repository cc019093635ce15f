// SPDX-License-Identifier: MIT
// The background: what sky.frag has painted of it and, where these words are defined, DISC: sun and
// moon; STARS; BOLT; VOLUME: clouds, of which there is a picture of their own.
in vec2 vPlace;
uniform sampler2D uSoft;
uniform vec4 uSoftRect; // the part of it that is painted: low and high corner
uniform vec4 uRay;      // half width and height of the picture at unit distance, and its offset
#ifdef VOLUME
uniform float uShown; // 0: no clouds
#endif
out vec4 oColor;

#ifdef STARS
// Stars stand on a grid in a frame that turns with the hours about the celestial pole.
float stars(vec3 d) {
    vec3 a = abs(d);
    vec2 p;
    float face;
    if (a.x > a.y && a.x > a.z) { p = d.yz / a.x; face = d.x > 0.0 ? 1.0 : 2.0; }
    else if (a.y > a.z) { p = d.zx / a.y; face = d.y > 0.0 ? 3.0 : 4.0; }
    else { p = d.xy / a.z; face = d.z > 0.0 ? 5.0 : 6.0; }
    float cells = 90.0;
    vec2 cell = floor(p * cells) + face * 317.0, within = fract(p * cells);
    float chance = hash(cell * 0.37);
    if (chance < 0.93) return 0.0;
    vec2 place = 0.2 + 0.6 * vec2(hash(cell + 7.3), hash(cell + 19.1));
    float size = max(0.0011, uTime.y * 0.7) * cells;
    float magnitude = pow((chance - 0.93) / 0.07, 6.0) + 0.03;
    float spread = 0.0011 * cells / size;
    return magnitude * spread * spread * smoothstep(size, 0.0, length(within - place));
}
#endif

#ifdef BOLT
// A bolt from the clouds to the ground: a path whose every half strays half as far, and a branch.
float bolt(vec3 d) {
    float away = dot(d.xy, uBolt.xy) / max(length(d.xy), 1e-4);
    if (away < 0.9) return 0.0;
    float side = (d.x * uBolt.y - d.y * uBolt.x) / max(length(d.xy), 1e-4);
    float height = d.z / 0.16; // 0 at the foot, 1 in the clouds
    if (height < 0.0 || height > 1.3) return 0.0;
    float path = 0.0, stray = 0.035, cells = 3.0;
    for (int i = 0; i < 5; i++) {
        path += stray * (noise(vec2(height * cells, uBolt.z * 97.0 + float(i) * 7.0)) - 0.5);
        stray *= 0.55;
        cells *= 2.1;
    }
    float width = max(0.0011, uTime.y);
    float core = exp(-pow((side - path) / width, 2.0));
    float fork = path + 0.11 * max(0.62 - height, 0.0) * (uBolt.z < 0.5 ? 1.0 : -1.0) +
                 0.012 * (noise(vec2(height * 21.0, uBolt.z * 31.0)) - 0.5);
    float branch = height > 0.2 && height < 0.62 ? exp(-pow((side - fork) / width, 2.0)) : 0.0;
    float halo = 0.02 * exp(-abs(side - path) / 0.012);
    return (core + 0.45 * branch + halo) * smoothstep(1.3, 0.9, height);
}
#endif

void main() {
    vec4 soft = textureLod(uSoft, clamp(vPlace, uSoftRect.xy, uSoftRect.zw), 0.0);
    vec3 c = soft.rgb;
#if defined(DISC) || defined(VOLUME)
    vec2 n = vPlace * 2.0 - 1.0;
    vec3 d = normalize(transpose(mat3(uView)) * vec3(n * uRay.xy + uRay.zw, -1.0));
    vec3 lifted = d;
    lifted.z = d.z + uAir.w;
#endif
#ifdef VOLUME
    vec4 clouds = cloudsSeen(gl_FragCoord.xy, cloudSpan(d).y) * uShown;
    float clear = bankClearness(lifted.z);
    c = c * (1.0 - clouds.a) + clouds.rgb * clear + hazeColor(d.xy) * (clouds.a * (1.0 - clear));
    soft.a *= 1.0 - clouds.a;
#endif
#ifdef DISC
    float beyond = step(0.0, lifted.z) * soft.a;
    float mu = max(dot(d, uSunDirection.xyz), 0.0);
    float disc = smoothstep(0.99998, 0.999992, mu);
    c += uLight.rgb * uSunDirection.w * beyond * (disc * 60.0 + pow(mu, 900.0) * 0.35 + pow(mu, 60.0) * 0.03);
    float moon = max(dot(d, uMoonDirection.xyz), 0.0);
    disc = smoothstep(0.999984, 0.999988, moon);
    float seas = 0.65 + 0.5 * fbm(cross(d, uMoonDirection.xyz).xy * 700.0 + 3.0, 3);
    c += vec3(1.0, 0.96, 0.88) * uMoonDirection.w * beyond * (disc * seas + 0.03 * pow(moon, 9000.0) + 0.004 * pow(moon, 600.0));
#endif
#ifdef STARS
    float s = sin(uSky.z), k = cos(uSky.z);
    vec3 turned = vec3(k * d.x + s * d.z, d.y, k * d.z - s * d.x);
    c += vec3(0.9, 0.95, 1.0) * stars(turned) * uSky.y * beyond * smoothstep(0.0, 0.25, lifted.z);
#endif
#ifdef BOLT
    c += vec3(0.75, 0.82, 1.0) * bolt(lifted) * (uBolt.w * min(uTime.z * 1.5, 1.0) * bankClearness(lifted.z));
#endif
    oColor = vec4(c, 1.0);
}
