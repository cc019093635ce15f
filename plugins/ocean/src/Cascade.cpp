// SPDX-License-Identifier: MIT
#include "Cascade.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace ig {

namespace {

constexpr int SUBCELLS = 4; ///< samples along each edge of a mode's cell in the wave-vector plane

/// Mixes the bits of a word so that neighbours have nothing in common (a bijection).
std::uint32_t mix(std::uint32_t h) {
    h ^= h >> 16;
    h *= 0x7feb352du;
    h ^= h >> 15;
    h *= 0x846ca68bu;
    return h ^ h >> 16;
}

/// The phase of a mode, in turns. Integers only: the same on every machine.
double phaseOf(int id, int m, int n) {
    std::uint32_t h = mix(id * 0x9e3779b9u + 1);
    h = mix(h ^ m * 0x85ebca6bu);
    h = mix(h ^ n * 0xc2b2ae35u);
    return h * 0x1p-32;
}

/// Takes off whole turns: the result lies in [−½, ½]. Adding 1.5 · 2⁵² leaves no bits for a
/// fraction, so that taking it off again rounds; unlike std::floor this vectorises everywhere.
/// Good to 2⁵¹ turns.
inline double wrapTurns(double turns) {
    constexpr double ROUNDER = 0x1.8p52;
    return turns - ((turns + ROUNDER) - ROUNDER);
}

/// Cosine and sine of an angle in turns within [−1, 1]. Taylor series at half the angle, then
/// doubled: errs by less than 1e-6, and consists of exactly rounded operations only, so that it
/// gives the same bits under every compiler and library.
inline void cosineSine(float turns, float& cosine, float& sine) {
    turns -= static_cast<float>(static_cast<int>(turns * 2)); // to [−½, ½]
    const float h = turns * std::numbers::pi_v<float>, h2 = h * h;
    const float s =
        h * (1 + h2 * (-1 / 6.f +
                       h2 * (1 / 120.f +
                             h2 * (-1 / 5040.f + h2 * (1 / 362880.f + h2 * (-1 / 39916800.f))))));
    const float c =
        1 + h2 * (-1 / 2.f + h2 * (1 / 24.f + h2 * (-1 / 720.f +
                                                    h2 * (1 / 40320.f + h2 * (-1 / 3628800.f +
                                                                              h2 / 479001600.f)))));
    cosine = 1 - 2 * s * s;
    sine = 2 * s * c;
}

/// What raises a wave of m periods along an axis of `resolution` texels against the damping by
/// bilinear interpolation. In the root mean square over the places between texels interpolation
/// keeps ((2 + cos 2πm / resolution) / 3)^½ of it. Dividing by that keeps the wave height, and the
/// error is greatest where the wave is raised most, at texels; the exponent a tenth smaller takes
/// about a tenth off the greatest error and at most 2 % off the height of a tile's shortest waves.
double compensate(int m, int resolution) {
    return std::pow((2 + std::cos(2 * std::numbers::pi * m / resolution)) / 3, -0.45);
}

/// The sum of a function over the sub-cells of a mode's cell, divided by their number.
template <class F>
double meanOverCell(int m, int n, const F& f) {
    double sum = 0;
    for (int j = 0; j < SUBCELLS; j++)
        for (int i = 0; i < SUBCELLS; i++)
            sum += f(m + (i + 0.5) / SUBCELLS - 0.5, n + (j + 0.5) / SUBCELLS - 0.5);
    return sum / (SUBCELLS * SUBCELLS);
}

} // namespace

Lattice::Lattice() {
    for (int n = 0; n <= BAND; n++)
        for (int m = -BAND; m <= BAND; m++) {
            if (n == 0 && m <= 0) continue;
            // A cell whose middle is beyond the band may still hold a corner of it.
            if (m * m + n * n > (BAND + 1) * (BAND + 1)) continue;
            pairs.push_back({m, n, (BAND + n) * SIDE + BAND + m, (BAND - n) * SIDE + BAND - m});
        }
}

CascadeWorkspace::CascadeWorkspace() : wave_re(lattice.pairs.size()), wave_im(wave_re.size()) {
    for (auto* array : {&first.re, &first.im, &second.re, &second.im})
        array->resize(Lattice::SIDE * Lattice::SIDE);
}

Fft& CascadeWorkspace::getTransform(int size) {
    for (Fft& fft : transforms)
        if (fft.getSize() == size) return fft;
    return transforms.emplace_back(size, Lattice::BAND);
}

Cascade::Cascade(const Settings& settings, const Lattice& lattice) : m_settings(settings) {
    const double dk = 2 * std::numbers::pi / settings.tile;
    const auto inBand = [&](double m, double n) {
        const double k = std::sqrt(m * m + n * n) * dk;
        return k >= settings.k_min && k < settings.k_max ? 1.0 : 0.0;
    };
    for (const Lattice::Pair& p : lattice.pairs) {
        const double kx = p.m * dk, ky = p.n * dk, k = std::sqrt(kx * kx + ky * ky);
        m_kx.push_back(static_cast<float>(kx));
        m_ky.push_back(static_cast<float>(ky));
        m_k.push_back(static_cast<float>(k));
        m_frequency.push_back(std::sqrt(GRAVITY * k) / (2 * std::numbers::pi)); // deep water
        m_compensation.push_back(static_cast<float>(compensate(p.m, settings.resolution) *
                                                    compensate(p.n, settings.resolution)));
        const float share = static_cast<float>(meanOverCell(p.m, p.n, inBand));
        for (int way = 0; way < 2; way++) {
            const int sign = way ? -1 : 1;
            m_share[way].push_back(share);
            m_phase[way].push_back(phaseOf(settings.id, sign * p.m, sign * p.n));
        }
    }
    for (int way = 0; way < 2; way++)
        for (auto* array : {&m_start[way], &m_rate[way], &m_target[way], &m_amplitude[way]})
            array->assign(lattice.pairs.size(), 0);
    const auto edge = static_cast<std::size_t>(settings.resolution), texels = edge * edge;
    m_slope.assign(2 * texels, 0);
    if (settings.slopes_only) return;
    m_displacement.assign(4 * texels, 0);
    m_foam.assign(texels, 0);
}

void Cascade::hold(const Easing& easing) {
    for (int way = 0; way < 2; way++)
        for (std::size_t i = 0; i < m_k.size(); i++) {
            float &start = m_start[way][i], &rate = m_rate[way][i];
            const float target = m_target[way][i];
            const float value = easing.value(start, rate, target);
            rate = easing.rate(start, rate, target);
            start = value;
        }
}

double Cascade::aim(const WaveSpectrum& spectrum, const Lattice& lattice) {
    const double dk = 2 * std::numbers::pi / m_settings.tile;
    const auto density = [&](double m, double n) { return spectrum.density(m * dk, n * dk); };
    double sum = 0;
    for (int way = 0; way < 2; way++)
        for (std::size_t i = 0; i < m_k.size(); i++) {
            const int m = way ? -lattice.pairs[i].m : lattice.pairs[i].m;
            const int n = way ? -lattice.pairs[i].n : lattice.pairs[i].n;
            double energy = 0;
            if (m_share[way][i] > 0) {
                // The longest waves stand few to the tile: the spectrum varies within a cell.
                const bool coarse = m * m + n * n < 64;
                energy = (coarse ? meanOverCell(m, n, density) : density(m, n)) * m_share[way][i] *
                         dk * dk;
            }
            m_target[way][i] = static_cast<float>(energy);
            sum += energy;
        }
    return sum;
}

void Cascade::scaleTarget(double factor) {
    for (auto& target : m_target)
        for (float& energy : target)
            energy = static_cast<float>(energy * factor);
}

void Cascade::blend(const Easing& easing) {
    m_measures = {};
    for (int way = 0; way < 2; way++)
        for (std::size_t i = 0; i < m_k.size(); i++) {
            // An energy that fell quickly towards a target that now stops it may run past zero.
            const float energy =
                std::max(0.f, easing.value(m_start[way][i], m_rate[way][i], m_target[way][i]));
            m_amplitude[way][i] = std::sqrt(energy / 2) * m_compensation[i];
            const double k = m_k[i], e = energy;
            m_measures.variance += e;
            m_measures.level_drop += k * e;
            m_measures.slope_variance += k * k * e;
        }
}

// ------------------------------------------------------------------ evolution

void Cascade::evolve(double time, double dt, CascadeWorkspace& w) {
    if (m_settings.slopes_only) return;
    m_highest = 0;
    const float decay = static_cast<float>(std::exp(-dt / m_settings.foam_decay));
    if (!isActive()) {
        std::fill(m_displacement.begin(), m_displacement.end(), 0.f);
        return finishTexels(0, m_foam.size(), decay);
    }
    computeWaves(time, w);
    scatterDisplacement(w);
    scatterHeight(w);
    Fft& fft = w.getTransform(m_settings.resolution);
    fft.begin(w.first.getBand(), w.second.getBand());
    for (int y = 0, edge = m_settings.resolution; y < edge; y += Fft::ROWS) {
        fft.finishRows(y, m_displacement.data());
        finishTexels(y * edge, (y + Fft::ROWS) * edge, decay);
    }
}

/// What is made of displaced texels while they are at hand: measures the highest of them, ages the
/// foam. The foam is part of what has happened to the sea, whether anybody was looking or not.
void Cascade::finishTexels(std::size_t begin, std::size_t end, float decay) {
    float highest[4] = {}; // one alone would have every texel wait for the one before
    for (std::size_t i = begin; i < end; i += 4)
        for (std::size_t j = 0; j < 4; j++)
            highest[j] = std::max(highest[j], std::abs(m_displacement[4 * (i + j) + 2]));
    m_highest = std::max<double>(m_highest, *std::max_element(highest, highest + 4));
    for (std::size_t i = begin; i < end; i++)
        m_foam[i] = std::max(-m_displacement[4 * i + 3], m_foam[i] * decay);
}

void Cascade::evolveSlopes(double time, CascadeWorkspace& w) {
    if (!isActive()) return std::fill(m_slope.begin(), m_slope.end(), 0.f);
    computeWaves(time, w);
    scatterSlopes(w);
    w.getTransform(m_settings.resolution).inverse(w.first.getBand(), m_slope.data());
}

/// The complex amplitude h of each pair at `time`: a wave towards +k and one against it, which
/// enters by its conjugate.
void Cascade::computeWaves(double time, CascadeWorkspace& w) const {
    for (std::size_t i = 0; i < m_k.size(); i++) {
        const double passed = wrapTurns(m_frequency[i] * time);
        float cos_a, sin_a, cos_b, sin_b;
        cosineSine(static_cast<float>(wrapTurns(m_phase[0][i] - passed)), cos_a, sin_a);
        cosineSine(static_cast<float>(wrapTurns(m_phase[1][i] - passed)), cos_b, sin_b);
        const float a = m_amplitude[0][i], b = m_amplitude[1][i];
        w.wave_re[i] = a * cos_a + b * cos_b;
        w.wave_im[i] = a * sin_a - b * sin_b;
    }
}

// Each spectrum packs two real fields as real + i · imaginary, which is how their pairs of floats
// stand in the texels. In terms of the surface's h:

/// Slope east and north, i k h.
void Cascade::scatterSlopes(CascadeWorkspace& w) const {
    float *out_re = w.first.re.data(), *out_im = w.first.im.data();
    for (std::size_t i = 0; i < m_k.size(); i++) {
        const Lattice::Pair& p = w.lattice.pairs[i];
        const float re = w.wave_re[i], im = w.wave_im[i], kx = m_kx[i], ky = m_ky[i];
        out_re[p.plus] = -re * ky - im * kx; // h (−ky + i kx)
        out_im[p.plus] = re * kx - im * ky;
        out_re[p.minus] = re * ky - im * kx; // h* (ky − i kx)
        out_im[p.minus] = -re * kx - im * ky;
    }
}

/// Displacement east and north, i (k / |k|) h: water moves towards the crests and sharpens them.
void Cascade::scatterDisplacement(CascadeWorkspace& w) const {
    float *out_re = w.first.re.data(), *out_im = w.first.im.data();
    for (std::size_t i = 0; i < m_k.size(); i++) {
        const Lattice::Pair& p = w.lattice.pairs[i];
        const float re = w.wave_re[i], im = w.wave_im[i];
        const float ux = m_kx[i] / m_k[i], uy = m_ky[i] / m_k[i];
        out_re[p.plus] = -re * uy - im * ux;
        out_im[p.plus] = re * ux - im * uy;
        out_re[p.minus] = re * uy - im * ux;
        out_im[p.minus] = -re * ux - im * uy;
    }
}

/// Height h, and divergence −k h of the displacement.
void Cascade::scatterHeight(CascadeWorkspace& w) const {
    float *out_re = w.second.re.data(), *out_im = w.second.im.data();
    for (std::size_t i = 0; i < m_k.size(); i++) {
        const Lattice::Pair& p = w.lattice.pairs[i];
        const float re = w.wave_re[i], im = w.wave_im[i], k = m_k[i];
        out_re[p.plus] = re + im * k; // h (1 − i k)
        out_im[p.plus] = im - re * k;
        out_re[p.minus] = re - im * k; // h* (1 − i k)
        out_im[p.minus] = -im - re * k;
    }
}

std::vector<Wave> Cascade::listWaves() const {
    std::vector<Wave> waves;
    const double dk = 2 * std::numbers::pi / m_settings.tile;
    const Lattice lattice;
    for (int way = 0; way < 2; way++)
        for (std::size_t i = 0; i < m_k.size(); i++) {
            const Lattice::Pair& p = lattice.pairs[i];
            const double half = m_amplitude[way][i] / m_compensation[i];
            if (!(half > 0)) continue;
            const double sign = way ? -dk : dk;
            waves.push_back(
                {sign * p.m, sign * p.n, m_frequency[i], m_phase[way][i], 2 * half * half});
        }
    return waves;
}

} // namespace ig
