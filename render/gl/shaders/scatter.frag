// SPDX-License-Identifier: MIT
// Single scattering of sunlight in a clear atmosphere, for every direction of the upper half of the
// sky, without the phase functions: those vary too fast for this map's size and come later. The
// coefficients are those of Nishita et al. (1993) and Bruneton (2008), with ozone.
in vec2 vPlace;
layout(location = 0) out vec4 oRayleigh;
layout(location = 1) out vec4 oMie;
layout(location = 2) out vec4 oMultiple; // in-scattering of light that was scattered before
const vec3 RAYLEIGH = vec3(5.8, 13.5, 33.1) * 1e-6;
const vec3 OZONE = vec3(0.65, 1.88, 0.085) * 1e-6;
const float MIE = 3.0e-6;
const float GROUND = 6360e3, TOP = 6420e3;
const int STEPS = 24, LIGHT_STEPS = 6;

vec2 density(float h) { return vec2(exp(-h / 8000.0), exp(-h / 1200.0)); }
float pathToSphere(float r, float cosine, float sphere) {
    return -r * cosine + sqrt(max(r * r * (cosine * cosine - 1.0) + sphere * sphere, 0.0));
}
vec2 depthTowardsSun(vec3 p, float r) {
    float path = pathToSphere(r, dot(p / r, uSunDirection.xyz), TOP);
    vec2 sum = vec2(0.0);
    for (int j = 0; j < LIGHT_STEPS; j++) {
        float n = float(LIGHT_STEPS), a = float(j) / n, b = float(j + 1) / n, m = (float(j) + 0.5) / n;
        sum += density(length(p + uSunDirection.xyz * (path * m * m)) - GROUND) * (path * (b * b - a * a));
    }
    return sum;
}
void main() {
    vec2 q = (vPlace - 0.5) / 0.496;
    float r = min(length(q), 1.0), t = 1.0 - r * r, z = t * t;
    vec3 d = vec3(q / max(length(q), 1e-5) * sqrt(max(1.0 - z * z, 0.0)), z);
    float start = GROUND + 20.0, path = pathToSphere(start, d.z, TOP), before = 0.0;
    vec2 depth = vec2(0.0);
    vec3 rayleigh = vec3(0.0), mie = vec3(0.0), multiple = vec3(0.0);
    for (int i = 0; i < STEPS; i++) {
        float a = float(i + 1) / float(STEPS), after = path * a * a, step_ = after - before;
        vec3 p = vec3(0.0, 0.0, start) + d * (before + step_ * 0.5);
        before = after;
        float rr = length(p);
        vec2 here = density(rr - GROUND);
        depth += here * step_;
        vec2 total = depth + depthTowardsSun(p, rr);
        vec3 passed = exp(-(RAYLEIGH * total.x + MIE * 1.1 * total.y + OZONE * total.x * 0.8));
        rayleigh += passed * RAYLEIGH * here.x * step_;
        mie += passed * MIE * here.y * step_;
        vec3 passed_view = exp(-(RAYLEIGH * depth.x + MIE * 1.1 * depth.y));
        multiple += passed_view * (RAYLEIGH * here.x + MIE * here.y) * step_;
    }
    oRayleigh = vec4(rayleigh, 1.0);
    oMie = vec4(mie, 1.0);
    oMultiple = vec4(multiple, 1.0);
}
