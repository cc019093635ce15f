// SPDX-License-Identifier: MIT
// The waves behind a point that moves steadily over deep water (Kelvin 1887), lengths in units of
// 2 pi U^2 / g, by stationary phase: at every place two of all waves that keep up with the point add
// up, a transverse and a diverging one; on the edge of the wedge they merge, where the width of the
// Airy function keeps them finite and lets them die outside. Slopes are the height's own
// differences, so that what is raised and what is lit are one surface.
in vec2 vPlace;
uniform vec2 uExtent; // of the map: to the side, and behind
out vec4 oColor;      // slopes outwards and ahead; height

const float STEP = 2e-3; // half of what the slopes are differences over

float wave(float t, float phase_shift, float x, float b, float root) {
    float secant = sqrt(1.0 + t * t);
    float phase = 2.0 * PI * secant * (x * t - b) + phase_shift;
    // A hull isn't a point: it makes no waves much shorter than its beam. Being slender, it spends
    // more on the diverging waves than on the transverse ones.
    float source = exp(-0.022 * pow(secant, 4.0)) * (1.0 - 0.8 / (secant * secant));
    float curvature = 2.0 * PI * secant * secant * secant * root;
    return cos(phase) * source / sqrt(curvature);
}

float height(float x, float b) {
    x = abs(x);
    float beyond = sqrt(8.0) * x - b; // above 0: outside the wedge
    float airy = pow(b, 0.3333) * 0.294; // k^(-2/3)
    float root = sqrt(max(b * b - 8.0 * x * x, 0.0) + 1.2 * b * airy);
    float s = beyond < 0.0 ? sqrt(b * b - 8.0 * x * x) : 0.0;
    float side = max(x, 1e-3);
    float sum = wave(min((b - s) / (4.0 * side), 3.0), -PI / 4.0, x, b, root);
    float diverging = (b + s) / (4.0 * side);
    if (diverging < 6.0) sum += wave(diverging, PI / 4.0, x, b, root);
    return sum * exp(-pow(max(beyond, 0.0) / (1.6 * airy), 1.5)) * smoothstep(0.0, 0.6, b);
}

void main() {
    float x = vPlace.x * uExtent.x, b = max(vPlace.y * uExtent.y, 0.02);
    vec2 slope = vec2(height(x + STEP, b) - height(x - STEP, b),
                      height(x, b - STEP) - height(x, b + STEP)) / (2.0 * STEP);
    oColor = vec4(slope, height(x, b), 1.0);
}
