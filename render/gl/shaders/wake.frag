// SPDX-License-Identifier: MIT
// What ships leave on the water, onto a map of effects around the eye: the Kelvin waves of bow and
// stern, foam along the hull, in the bow waves' arms and where the screws churn, and the lane that
// lies calm astern. Where those of two ships overlap, each draws both.
in vec2 vPlane;
uniform vec4 uHull[MOST_WAKES];   // place from the eye; unit vector ahead
uniform vec4 uMotion[MOST_WAKES]; // speed, length, beam, life of foam, s
uniform vec4 uMap;          // corner from the nadir, edge, reach of wakes per m/s
uniform vec4 uNadir;        // in the noise's period; texel of the map, m; number of ships
uniform vec2 uExtent;       // of the Kelvin waves' map, in their lengths
uniform sampler2D uKelvin, uNoise;
out vec4 oColor;

vec2 kelvin(float x, float behind, float wave_length) {
    vec2 place = vec2(abs(x), behind) / wave_length / uExtent;
    if (behind < 0.0 || place.x > 1.0 || place.y > 1.0) return vec2(0.0);
    float level = log2(max(uNadir.z / (wave_length * uExtent.y) * float(textureSize(uKelvin, 0).y), 1.0));
    vec2 slope = textureLod(uKelvin, place, level).xy;
    return vec2(slope.x * sign(x), slope.y) * (1.0 - smoothstep(0.6, 1.0, place.y));
}
float bell(float x) { return exp(-x * x); }

void main() {
    float ragged = texture(uNoise, (vPlane + uNadir.xy) / 36.0).y;
    float fine = texture(uNoise, (vPlane + uNadir.xy).yx / 14.4).y;
    vec2 slope = vec2(0.0);
    float foam = 0.0, calm = 0.0;
    for (int i = 0; i < int(uNadir.w); i++) {
        vec2 ahead = uHull[i].zw, d = vPlane - uHull[i].xy;
        float speed = uMotion[i].x, half_length = 0.5 * uMotion[i].y, beam = uMotion[i].z;
        float x = d.x * ahead.y - d.y * ahead.x, y = dot(d, ahead);
        float behind_bow = half_length - y, astern = -half_length - y;
        float outside = abs(x) - 0.4 * max(behind_bow, 0.0) - 2.0 * beam;
        if (behind_bow < -12.0 || astern > speed * uMap.w || outside > 0.0) continue;
        float moving = smoothstep(0.7, 6.0, speed);

        float wave_length = 2.0 * PI * speed * speed / 9.81;
        vec2 s = kelvin(x, behind_bow - 0.04 * uMotion[i].y, wave_length) +
                 0.7 * kelvin(x, astern + 0.04 * uMotion[i].y, wave_length);
        s *= 0.115 * moving * exp(-max(astern, 0.0) / (speed * 60.0 + 1.0));
        slope += s.x * vec2(ahead.y, -ahead.x) + s.y * ahead;

        // Foam lies near the track; most of the wedge is waves only.
        float arm_half = 0.55 * beam + 0.17 * max(behind_bow, 0.0), arm_width = 1.2 + 0.035 * max(behind_bow, 0.0);
        float zone = behind_bow < 30.0 * speed ? arm_half + 3.0 * arm_width : 0.6 * beam + 1.1 * sqrt(max(astern, 0.0)) + 6.0;
        if (abs(x) > max(zone, 0.6 * beam + 6.0)) continue;

        // The waterline: full amidships, fine at the bow.
        float station = clamp(y / half_length, -1.0, 1.0);
        float fine_bow = max(station - 0.1, 0.0) / 0.9;
        float half_beam = 0.5 * beam * (1.0 - fine_bow * fine_bow);
        if (astern < 0.0) {
            float off = abs(x) - half_beam, along = max(behind_bow, 0.0);
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
    oColor = vec4(slope * (2.0 * edge) + LEVEL_WAKE, vec2(foam, calm) * edge);
}
