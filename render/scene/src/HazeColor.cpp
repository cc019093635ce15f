// SPDX-License-Identifier: MIT
#include "render/scene/HazeColor.h"

#include "render/scene/ShaderConstants.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ig {

namespace {

constexpr int TERMS = 4;
constexpr double STIFFNESS = 1e-4; ///< keeps terms that the samples don't tell apart small

/// Cornette and Shanks (1992) by the cosine of the angle from the sun, as in common.glsl.
float glowAt(float cosine) {
    constexpr float G = GLOW_G;
    const float u = 1 / std::sqrt(1 + G * G - 2 * G * cosine);
    return 3 / (8 * PI) * (1 - G * G) / (2 + G * G) * (1 + cosine * cosine) * u * u * u;
}

std::array<float, TERMS> termsAt(vec2 direction, const vec3& sun) {
    const float length = std::max(std::hypot(direction.x, direction.y), 1e-6f);
    const float x = (direction.x * sun.x + direction.y * sun.y) / length;
    return {1, x, x * x, glowAt(x * sun.z)};
}

using Matrix = std::array<std::array<double, TERMS>, TERMS>;
using Column = std::array<double, TERMS>;

/// Of a symmetric, positive definite matrix, by elimination.
Column solve(Matrix m, Column b) {
    for (int i = 0; i < TERMS; i++)
        for (int j = i + 1; j < TERMS; j++) {
            const double factor = m[j][i] / m[i][i];
            for (int k = i; k < TERMS; k++)
                m[j][k] -= factor * m[i][k];
            b[j] -= factor * b[i];
        }
    for (int i = TERMS - 1; i >= 0; i--) {
        for (int k = i + 1; k < TERMS; k++)
            b[i] -= m[i][k] * b[k];
        b[i] /= m[i][i];
    }
    return b;
}

} // namespace

HazeColor HazeColor::fit(std::span<const Sample> samples, const vec3& sun) {
    HazeColor haze;
    const float across = std::hypot(sun.x, sun.y);
    haze.sun = across > 1e-3f ? vec3(sun.x / across, sun.y / across, across) : vec3();
    Matrix m{};
    std::array<Column, 3> sums{};
    for (const Sample& s : samples) {
        const std::array<float, TERMS> terms = termsAt(s.direction, haze.sun);
        const float color[] = {s.color.x, s.color.y, s.color.z};
        for (int i = 0; i < TERMS; i++) {
            for (int j = 0; j < TERMS; j++)
                m[i][j] += double{terms[i]} * double{terms[j]};
            for (int c = 0; c < 3; c++)
                sums[c][i] += double{terms[i]} * double{color[c]};
        }
    }
    for (int i = 0; i < TERMS; i++)
        m[i][i] += STIFFNESS * static_cast<double>(std::max<std::size_t>(samples.size(), 1));
    const Column red = solve(m, sums[0]), green = solve(m, sums[1]), blue = solve(m, sums[2]);
    vec3* parts[] = {&haze.mean, &haze.slope, &haze.bend, &haze.glow};
    for (int i = 0; i < TERMS; i++)
        *parts[i] = vec3(dvec3(red[i], green[i], blue[i]));
    return haze;
}

HazeColor HazeColor::evened() const {
    constexpr int DIRECTIONS = 16;
    vec3 sum;
    for (int i = 0; i < DIRECTIONS; i++) {
        const float azimuth = 2 * PI * static_cast<float>(i) / DIRECTIONS;
        sum += get({std::sin(azimuth), std::cos(azimuth)});
    }
    return even(sum / DIRECTIONS, sun);
}

HazeColor HazeColor::mix(const HazeColor& a, const HazeColor& b, float share) {
    HazeColor haze;
    for (vec3 HazeColor::*part :
         {&HazeColor::mean, &HazeColor::slope, &HazeColor::bend, &HazeColor::glow, &HazeColor::sun})
        haze.*part = a.*part * (1 - share) + b.*part * share;
    return haze;
}

vec3 HazeColor::get(vec2 direction) const {
    const std::array<float, TERMS> terms = termsAt(direction, sun);
    const vec3 color = mean + slope * terms[1] + bend * terms[2] + glow * terms[3];
    return {std::max(color.x, 0.0f), std::max(color.y, 0.0f), std::max(color.z, 0.0f)};
}

void HazeColor::fill(FrameBlock& block) const {
    block.haze_mean = {mean, sun.x};
    block.haze_slope = {slope, sun.y};
    block.haze_bend = {bend, sun.z};
    block.haze_glow = {glow, 0};
}

} // namespace ig
