// SPDX-License-Identifier: MIT
// A pane around the eye, and what lies on it. RAINY: beads, drops that run, a film of water; SNOWY:
// snow, and the drops of what melts.
in vec4 vPane;
out vec4 oColor;
#if defined(RAINY) || defined(SNOWY)
#define COVERED
in float vRim;
in vec4 vPlaces;
in vec4 vTilt;
in vec4 vSweeps;
in vec2 vOff;
uniform vec4 uCover;   // z: rain on glass
uniform vec4 uFlow;    // see GlassFilm::getFlow
uniform vec4 uBlades[3 * MOST_BLADES];
uniform sampler2D uDrops;   // tilt, height, number; see makeDropPattern
uniform sampler2D uBehind;  // the scene in few pixels
uniform sampler2D uNoise;
uniform sampler2D uSectors; // of the wipers: water, snow

// Share of the open pane's water, and height of the snow, that are back where a wiper has been.
vec2 sinceWiped() {
    bool second = dot(vSweeps.zw, vSweeps.zw) < dot(vSweeps.xy, vSweeps.xy); // the nearer one's
    vec2 q = second ? vSweeps.zw : vSweeps.xy;
    float inner = second ? uBlades[3].w : uBlades[0].w, outer = second ? uBlades[4].w : uBlades[1].w;
    float there = second ? uBlades[5].w : uBlades[2].w, off = second ? vOff.y : vOff.x;
    float r = length(q), t = q.y / (abs(q.x) + abs(q.y) + 1e-6); // see GlassFilm::toTurn
    vec2 place = vec2(0.25 * (q.x < 0.0 ? 2.0 - t : t), second ? 0.75 : 0.25);
    vec2 left = textureLod(uSectors, place, 0.0).xy, open = vec2(1.0, uFlow.w);
    float within = there * clamp(min(r - inner, outer - r) * 80.0 + 0.5, 0.0, 1.0) * step(abs(off), 0.1);
    return mix(open, min(open, left), within);
}

// Cover of a pattern's drops: each comes with so much water, and goes when its time is over.
float bead(vec4 t, float water, float life) {
    float age = fract(t.a + uTime.x * life);
    float size = clamp((1.25 * water - fract(t.a * 7.0) + 0.05) * 3.5, 0.0, 1.0) * clamp(min(age * 12.0, 25.0 - age * 25.0), 0.0, 1.0);
    return clamp((t.b - 1.0 + size) / (0.15 + 0.05 * size), 0.0, 1.0);
}

// A drop that runs in each cell of a column. x, y: tilt; z: cover; w: how far it clears its way.
vec4 runner(vec2 q, float water) {
    float driven = uFlow.y, wide = driven > 0.5 ? 0.024 : 0.055, apart = driven > 0.5 ? 0.42 : 0.33;
    float across = q.x / wide, column = floor(across), own = hash(vec2(column, 7.0));
    float cells = (q.y - uFlow.x * (0.55 + 0.9 * own)) / apart + own * 13.0, cell = floor(cells), f = cells - cell;
    float kind = hash(vec2(column, cell)), size = 0.55 + 0.9 * fract(kind * 57.0);
    float sway = (driven > 0.5 ? 0.06 : 0.22) * sin(q.y * (19.0 + 20.0 * own) + 40.0 * own) + (kind - 0.3) * 0.4;
    float radius = size * (driven > 0.5 ? 0.0036 : 0.0065);
    vec2 d = vec2((across - column - 0.5 - sway) * wide, (f - 0.9) * apart * (driven > 0.5 ? 0.3 : 0.75)) / radius;
    float there = clamp((uFlow.z * (0.15 + 0.75 * water) - kind) * 30.0, 0.0, 1.0) * clamp(water * 6.0, 0.0, 1.0);
    float head = clamp(2.5 - 2.5 * dot(d, d), 0.0, 1.0);
    float behind = there * clamp((0.92 - f) * 25.0, 0.0, 1.0) * clamp(f * 1.4, 0.0, 1.0), away = abs(d.x);
    float trail = behind * clamp(1.9 - 2.5 * away, 0.0, 1.0) * (driven > 0.5 ? 0.85 : 0.25);
    head *= there;
    return vec4(d * head + vec2(d.x * trail, 0.0), max(head, trail), behind * clamp(2.0 - 1.25 * away, 0.0, 1.0));
}

// Light that comes through what lies on the pane, and how much of it that covers.
vec4 onGlass() {
    vec2 here = sinceWiped();
    float water = max(uCover.z, 0.35 * uFlow.w) * here.x; // some of the snow melts
    vec4 run = runner(vPlaces.zw, water);
    // Running drops take up what they meet, and the airstream takes what is large.
    float left = water * (1.0 - 0.85 * run.w) * (1.0 - 0.55 * uFlow.y * uFlow.z);
    // Driven beads are drawn out along their way, and creep.
    bool creeps = uFlow.y * uFlow.z > 0.5;
    vec4 large = texture(uDrops, creeps ? vec2(vPlaces.z * 3.6, vPlaces.w * 1.2 - uFlow.x * 0.12) : vPlaces.xy * 2.6);
    vec4 small = texture(uDrops, (mat2(0.8, 0.6, -0.6, 0.8) * vPlaces.xy) * 4.7);
    float cover = bead(large, left, 1.0 / 11.0), fine = bead(small, left * 1.2, 1.0 / 6.0);
    vec2 tilt = mix(small.xy, large.xy, cover) * 2.0 - 256.0 / 255.0;
    cover = max(cover, fine);
    tilt = mix(tilt * cover, run.xy, run.z);
    cover = max(cover, run.z);
    // A drop is a lens: it shows the scene upside down.
    vec2 place = gl_FragCoord.xy * uScreen.zw - 0.55 * (tilt.x * vTilt.xy + tilt.y * vTilt.zw);
    vec3 light = textureLod(uBehind, place, 0.0).rgb * (1.0 - 0.35 * dot(tilt, tilt) * cover);
    vec4 wet = vec4(light, 1.0) * max(cover * 0.93, water * 0.55);
#ifdef SNOWY
    // Snow gathers from the rims.
    float grain = dot(texture(uNoise, vPlaces.xy * 4.3).xy, vec2(0.2, 0.8));
    float snow = clamp((here.y * 2.2 - vRim * 4.0 - grain + 0.1) * 5.0, 0.0, 1.0) * clamp(here.y * 20.0, 0.0, 1.0);
    vec3 white = uAmbient.rgb * (0.32 + 0.25 * grain); // what comes through
    return mix(wet, vec4(white, 1.0), snow * 0.94);
#else
    return wet;
#endif
}

#endif

void main() {
    oColor = vPane;
#ifdef COVERED
    vec4 cover = onGlass();
    oColor = oColor * (1.0 - cover.a) + cover;
#endif
}
