// SPDX-License-Identifier: MIT
// What ships leave on the water, onto a map of effects around the eye: the Kelvin waves of bow and
// stern, what the hull itself raises, foam on that, along the hull, in the bow waves' arms and where
// the screws churn, and the lane that lies calm astern. Where those of two ships overlap, each draws
// both. HULL is the water that a hull raises by itself, which ends near it.
in vec2 vPlane;
uniform vec4 uHull[MOST_WAKES];   // place from the eye; unit vector ahead
uniform vec4 uMotion[MOST_WAKES]; // speed, length, beam, life of foam, s
uniform vec4 uMap;          // corner from the nadir, edge, reach of wakes per m/s
uniform vec4 uNadir;        // in the noise's period; texel of the map, m; number of ships
uniform vec2 uExtent;       // of the Kelvin waves' map, in their lengths
uniform sampler2D uKelvin, uNoise;
layout(location = 0) out vec4 oColor;
layout(location = 1) out vec4 oHeight;

// Slopes outwards and ahead, height, m.
vec3 kelvin(float x, float behind, float wave_length) {
    vec2 place = vec2(abs(x), behind) / wave_length / uExtent;
    if (behind < 0.0 || place.x > 1.0 || place.y > 1.0) return vec3(0.0);
    float level = log2(max(uNadir.z / (wave_length * uExtent.y) * float(textureSize(uKelvin, 0).y), 1.0));
    vec3 wave = textureLod(uKelvin, place, level).xyz;
    return vec3(wave.x * sign(x), wave.y, wave.z * wave_length) * (1.0 - smoothstep(0.6, 1.0, place.y));
}
float bell(float x) { return exp(-x * x); }

void main() {
    float ragged = texture(uNoise, (vPlane + uNadir.xy) / 36.0).y;
    float fine = texture(uNoise, (vPlane + uNadir.xy).yx / 14.4).y;
    vec2 slope = vec2(0.0);
    float height = 0.0, foam = 0.0, calm = 0.0;
    for (int i = 0; i < int(uNadir.w); i++) {
        vec2 ahead = uHull[i].zw, d = vPlane - uHull[i].xy;
        float speed = uMotion[i].x, half_length = 0.5 * uMotion[i].y, beam = uMotion[i].z;
        float x = d.x * ahead.y - d.y * ahead.x, y = dot(d, ahead);
        float behind_bow = half_length - y, astern = -half_length - y;
        float outside = abs(x) - 0.4 * max(behind_bow, 0.0) - 2.0 * beam;
        if (behind_bow < -12.0 || astern > speed * uMap.w || outside > 0.0) continue;
        float moving = smoothstep(0.7, 6.0, speed);

        Hull hull = makeHull(uMotion[i]);
        vec3 s = kelvin(x, behind_bow - 0.04 * uMotion[i].y, hull.wave_length) +
                 0.7 * kelvin(x, astern + 0.04 * uMotion[i].y, hull.wave_length);
        s *= 0.1 * exp(-max(astern, 0.0) / (speed * 60.0 + 1.0));
#ifdef HULL
        const float STEP = 0.25;
        vec2 here = hullWave(hull, x, y);
        s += vec3(hullWave(hull, x + STEP, y).x - here.x, hullWave(hull, x, y + STEP).x - here.x, 0.0) / STEP;
        s.z += here.x;
        // Where the bow wave is highest, it breaks.
        foam = max(foam, moving * smoothstep(0.2, 0.7, here.y) * (0.5 + 0.6 * fine));
#endif
        s *= moving;
        slope += s.x * vec2(ahead.y, -ahead.x) + s.y * ahead;
        height += s.z;

        // Foam lies near the track; most of the wedge is waves only.
        float arm_half = 0.55 * beam + 0.17 * max(behind_bow, 0.0), arm_width = 1.2 + 0.035 * max(behind_bow, 0.0);
        float zone = behind_bow < 30.0 * speed ? arm_half + 3.0 * arm_width : 0.6 * beam + 1.1 * sqrt(max(astern, 0.0)) + 6.0;
        if (abs(x) > max(zone, 0.6 * beam + 6.0)) continue;

        if (astern < 0.0) {
            float off = abs(x) - halfBeam(hull, y), along = max(behind_bow, 0.0);
            float skirt = bell(max(off, 0.0) / (1.1 + 0.02 * along)) * step(-4.0, off);
            foam = max(foam, moving * skirt * (0.30 + 0.65 * exp(-along / (0.16 * uMotion[i].y))) *
                                 smoothstep(-2.0, 3.0, behind_bow));
        }
        float arm = abs(x) - (1.0 + arm_half - 0.55 * beam * (1.0 - smoothstep(0.0, 60.0, behind_bow)));
        foam = max(foam, moving * 0.75 * bell(arm / arm_width) *
                             exp(-max(behind_bow, 0.0) / (7.0 * speed + 1.0)) *
                             smoothstep(1.0, 9.0, behind_bow) * (0.35 + 0.9 * fine));
        if (astern > -6.0) {
            float age = max(astern, 0.0) / max(speed, 0.5), life = uMotion[i].w;
            float width = 0.42 * beam + 0.6 * sqrt(max(astern, 0.0)) + (3.0 + 0.03 * astern) * (ragged - 0.5);
            float across = abs(x) / width, squared = across * across;
            float lane = exp(-squared * squared * squared);
            float fading = smoothstep(1.0, 0.55, astern / (speed * uMap.w));
            float churn = 0.62 * exp(-age / (0.25 * life)) + 0.42 * exp(-age / (1.6 * life));
            float edges = 0.5 + 0.7 * squared;
            foam = max(foam, moving * lane * churn * edges * (0.35 + 0.6 * ragged + 0.7 * fine) *
                                 smoothstep(-6.0, 3.0, astern) * fading);
            calm = max(calm, moving * 0.9 * sqrt(lane) * fading);
        }
    }
    vec2 inside = 1.0 - abs((vPlane - uMap.xy) / uMap.z * 2.0 - 1.0);
    float edge = smoothstep(0.0, 0.06, min(inside.x, inside.y));
    oColor = vec4(slope * (edge / STEEPEST_WAKE * 0.5) + LEVEL_WAKE, vec2(foam, calm) * edge);
    oHeight = vec4(height * edge, 0.0, 0.0, 1.0);
}
