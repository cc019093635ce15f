// SPDX-License-Identifier: MIT
// A lamp's beam: light that haze, rain and snow scatter once on the way from the eye through the cone.
// Samples lie at equal angles as the lamp sees them, so that its inverse square is exact (Kulla and
// Fajardo 2012: Importance Sampling Techniques for Path Tracing in Participating Media).
in vec3 vPosition;
uniform vec4 uPlace, uAxis; // as in beam.vert
uniform vec4 uPower;        // w: 1 / width of the cone's edge, by cosine
uniform float uNear, uFar;
uniform sampler2D uDepth;
out vec4 oColor;

// From where to where a ray from the eye is in the cone; the second before the first: nowhere.
vec2 within(vec3 ray) {
    vec3 axis = uAxis.xyz, from = -uPlace.xyz;
    float c2 = uAxis.w * uAxis.w, along = dot(ray, axis), start = dot(from, axis);
    float a = along * along - c2, b = along * start - dot(ray, from) * c2, c = start * start - dot(from, from) * c2;
    float q = b * b - a * c;
    if (q <= 0.0) return a > 0.0 && along > 0.0 ? vec2(0.0, 1e6) : vec2(1.0, 0.0);
    float root = sqrt(q), first = (-b - root) / a, second = (-b + root) / a;
    vec2 t = vec2(min(first, second), max(first, second));
    if (a > 0.0) t = along > 0.0 ? vec2(t.y, 1e6) : vec2(0.0, t.x);
    else if (start + along * 0.5 * (t.x + t.y) < 0.0) return vec2(1.0, 0.0); // the cone behind
    return t;
}

void main() {
    const int SAMPLES = 6;
    const float GAIN = 0.4, FORWARD = 0.5; // of the phase function (Schlick's)
    vec3 ray = normalize(vPosition);
    float depth = texelFetch(uDepth, ivec2(gl_FragCoord.xy), 0).x;
    float behind = uNear * uFar / (depth * (uFar - uNear) + uNear) / max(-(mat3(uView) * ray).z, 1e-3);
    vec2 t = within(ray);
    t = clamp(t, vec2(0.0), vec2(min(behind, length(uPlace.xyz) + uPlace.w)));

    float nearest = dot(uPlace.xyz, ray); // to the lamp
    float miss = max(length(uPlace.xyz - ray * nearest), 0.15);
    vec2 angle = atan((t - nearest) / miss);
    float drops = 1.5e-3 * uWeather.x + 4e-3 * uWeather.y;
    float thick = uAmbient.w * uAir.y + drops, sum = 0.0;
    for (int i = 0; i < SAMPLES; i++) {
        float at = mix(angle.x, angle.y, (float(i) + 0.5) / float(SAMPLES)), s = nearest + miss * tan(at);
        vec3 way = ray * s - uPlace.xyz;
        float d = length(way), turn = dot(way, -ray) / d, far = d / uPlace.w, near = max(1.0 - far * far, 0.0);
        float spot = clamp((dot(way, uAxis.xyz) / d - uAxis.w) * uPower.w, 0.0, 1.0);
        float phase = (1.0 - FORWARD * FORWARD) / (4.0 * PI * (1.0 - FORWARD * turn) * (1.0 - FORWARD * turn));
        sum += phase * spot * spot * near * near * exp(-thick * (s + d));
    }
    vec3 light = uPower.rgb * (GAIN * thick * sum * max(angle.y - angle.x, 0.0) / (float(SAMPLES) * miss));
    oColor = vec4(t.y > t.x ? light / (1.0 + dot(light, vec3(0.3, 0.6, 0.1)) * uLight.w) : vec3(0.0), 0.0);
}
