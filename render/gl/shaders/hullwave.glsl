// SPDX-License-Identifier: MIT
// The water that a hull piles up at its stem, draws down along its sides and lets rise again
// astern, in the hull's frame: a steady profile in lengths of 2 pi U^2 / g, the length of the waves
// that keep up with it, which the Kelvin waves farther out go on from. Height and place of the bow
// wave's crest after Noblesse, Delhommeau, Guilbaud, Hendrix and Yang (2008), for a hull that draws
// a quarter of its beam.
struct Hull {
    float speed, half_length, beam;
    float wave_length; // 2 pi U^2 / g, m
    float crest;       // height of the bow wave, m
    float crest_at;    // its distance behind the stem, m
};

Hull makeHull(vec4 motion) {
    Hull h = Hull(motion.x, 0.5 * motion.y, motion.z, 0.0, 0.0, 0.0);
    float scale = h.speed * h.speed / 9.81;
    float draught = 1.0 + h.speed * inversesqrt(9.81 * 0.25 * h.beam);
    float entrance = h.beam / (0.9 * h.half_length); // of the waterline below, as a tangent
    h.wave_length = 2.0 * PI * scale;
    // No higher than a low foredeck lets pass.
    float most = 0.1 * h.beam, free = 2.2 * entrance / draught * scale;
    h.crest = most * free * inversesqrt(most * most + free * free);
    h.crest_at = min(1.1 / draught * scale, 0.25 * h.half_length);
    return h;
}

/// Half the waterline's width at y ahead of the middle: full amidships, fine at the bow.
float halfBeam(Hull h, float y) {
    float fine_bow = max(clamp(y / h.half_length, -1.0, 1.0) - 0.1, 0.0) / 0.9;
    return 0.5 * h.beam * (1.0 - fine_bow * fine_bow);
}

/// Height at x to the side and y ahead of the hull's middle, m, and how near it is to the bow wave's
/// crest, 1 there. Nothing is left at HULL_WAVES wave lengths from the hull.
vec2 hullWave(Hull h, float x, float y) {
    float behind_bow = h.half_length - y, v = (-h.half_length - y) / h.wave_length;
    float off = max(abs(x) - halfBeam(h, y) * step(0.0, behind_bow), 0.0);
    off = length(vec2(off, min(behind_bow, 0.0)));
    // The crest peels off the side; beyond it the water is still level, within it falls to a trough.
    float q = behind_bow - h.crest_at - 1.8 * off, u = q / h.wave_length;
    float rise = q / (h.crest_at + 0.06 * h.beam + 0.3 + 0.5 * off);
    float profile = q < 0.0 ? exp(-rise * rise) : cos(2.0 * PI * u) / (1.0 + 9.0 * u * u);
    float bow = profile * exp(-off / (0.3 * h.wave_length));

    float station = y / (0.95 * h.half_length), level = max(1.0 - station * station, 0.0);
    float drawn_down = 0.1 * level * exp(-2.0 * off / h.beam);

    float side = x / (0.5 * h.beam);
    float stern = 0.4 * cos(2.0 * PI * (v + 0.125)) / (1.0 + 3.0 * v * v) *
                  smoothstep(-0.25, 0.15, v) * exp(-side * side);
    float fading = smoothstep(HULL_WAVES, 0.7 * HULL_WAVES, max(off / h.wave_length, v));
    return vec2(h.crest * (bow - drawn_down + stern), bow) * fading;
}
