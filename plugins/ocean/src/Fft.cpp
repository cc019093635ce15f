// SPDX-License-Identifier: MIT

// Row-column transform, each dimension by Stockham's self-sorting algorithm: passes of radix 4, and
// one of radix 2 where the size is no power of four, between two buffers. WIDTH transforms run side
// by side, so that the inner loops work on neighbouring floats whatever the stride of the pass; the
// compiler turns them into vector instructions, and since every lane does the same operations in
// the same order, the result doesn't depend on how wide those are.

#include "Fft.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numbers>
#include <vector>

namespace ig {

namespace {

constexpr int WIDTH = 16;

/// One element of the WIDTH transforms that run side by side.
struct alignas(64) Lanes {
    float re[WIDTH], im[WIDTH];
};
using Batch = std::vector<Lanes>;

struct Twiddle {
    float re, im;
};

/// One butterfly of radix 4: four elements `step` apart, turned by powers of w, to elements
/// `stride` apart.
inline void butterfly4(const Lanes* in, int step, Lanes* out, int stride, Twiddle w1, Twiddle w2,
                       Twiddle w3) {
    const Lanes &a = in[0], &b = in[step], &c = in[2 * step], &d = in[3 * step];
    Lanes &o0 = out[0], &o1 = out[stride], &o2 = out[2 * stride], &o3 = out[3 * stride];
    for (int j = 0; j < WIDTH; j++) {
        const float sum_r = a.re[j] + c.re[j], sum_i = a.im[j] + c.im[j];
        const float dif_r = a.re[j] - c.re[j], dif_i = a.im[j] - c.im[j];
        const float odd_r = b.re[j] + d.re[j], odd_i = b.im[j] + d.im[j];
        const float rot_r = d.im[j] - b.im[j], rot_i = b.re[j] - d.re[j]; // i (b − d)
        const float r1 = dif_r + rot_r, i1 = dif_i + rot_i;
        const float r2 = sum_r - odd_r, i2 = sum_i - odd_i;
        const float r3 = dif_r - rot_r, i3 = dif_i - rot_i;
        o0.re[j] = sum_r + odd_r;
        o0.im[j] = sum_i + odd_i;
        o1.re[j] = r1 * w1.re - i1 * w1.im;
        o1.im[j] = r1 * w1.im + i1 * w1.re;
        o2.re[j] = r2 * w2.re - i2 * w2.im;
        o2.im[j] = r2 * w2.im + i2 * w2.re;
        o3.re[j] = r3 * w3.re - i3 * w3.im;
        o3.im[j] = r3 * w3.im + i3 * w3.re;
    }
}

inline void butterfly2(const Lanes& a, const Lanes& b, Lanes& sum, Lanes& difference) {
    for (int j = 0; j < WIDTH; j++) {
        sum.re[j] = a.re[j] + b.re[j];
        sum.im[j] = a.im[j] + b.im[j];
        difference.re[j] = a.re[j] - b.re[j];
        difference.im[j] = a.im[j] - b.im[j];
    }
}

} // namespace

struct Fft::Buffers {
    int size;
    std::vector<Twiddle> twiddles; ///< exp(2πi j / size)
    Batch data, scratch;
    std::vector<float> half_re, half_im; ///< [m + band][y]: transformed along n

    Buffers(int n, int rows)
        : size(n), data(n), scratch(data.size()), half_re(rows * n), half_im(half_re.size()) {
        for (int j = 0; j < n; j++) {
            const double angle = 2 * std::numbers::pi * j / n;
            twiddles.push_back(
                {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))});
        }
    }

    void clear() { std::fill(data.begin(), data.end(), Lanes{}); }

    /// Where `count` lanes of the element of a frequency go in.
    void load(int frequency, const float* re, const float* im, int count) {
        Lanes& lanes = data[(frequency + size) % size];
        std::copy_n(re, count, lanes.re);
        std::copy_n(im, count, lanes.im);
    }

    void transform();
};

/// Transforms `data` in place; `scratch` is lost.
void Fft::Buffers::transform() {
    int stride = 1;
    for (int length = size; length >= 4; length /= 4, stride *= 4) {
        const int quarter = length / 4;
        for (int p = 0; p < quarter; p++) {
            const Twiddle* w = twiddles.data();
            const int turn = p * stride;
            for (int q = 0; q < stride; q++)
                butterfly4(&data[q + stride * p], stride * quarter, &scratch[q + stride * 4 * p],
                           stride, w[turn], w[2 * turn], w[3 * turn]);
        }
        data.swap(scratch);
    }
    if (stride == size) return;
    for (std::size_t q = 0, half = data.size() / 2; q < half; q++)
        butterfly2(data[q], data[q + half], scratch[q], scratch[q + half]);
    data.swap(scratch);
}

Fft::Fft(int size, int band)
    : m_size(size), m_band(band), m_buffers(std::make_unique<Buffers>(size, 2 * band + 1)) {
    assert(size >= WIDTH && (size & (size - 1)) == 0 && size > 2 * band);
}

Fft::Fft(Fft&&) noexcept = default;

Fft::~Fft() = default;

void Fft::inverse(const float* in_re, const float* in_im, float* out, int stride) {
    transformColumns(in_re, in_im);
    transformRows(out, stride);
}

/// From n to y, for each m of the band.
void Fft::transformColumns(const float* in_re, const float* in_im) {
    Buffers& b = *m_buffers;
    const int columns = 2 * m_band + 1;
    for (int m0 = 0; m0 < columns; m0 += WIDTH) {
        const int count = std::min(WIDTH, columns - m0);
        b.clear();
        for (int n = -m_band; n <= m_band; n++) {
            const int from = (n + m_band) * columns + m0;
            b.load(n, in_re + from, in_im + from, count);
        }
        b.transform();
        for (int j = 0; j < count; j++) {
            const std::size_t row = (m0 + j) * b.data.size();
            for (std::size_t y = 0; y < b.data.size(); y++) {
                b.half_re[row + y] = b.data[y].re[j];
                b.half_im[row + y] = b.data[y].im[j];
            }
        }
    }
}

/// From m to x, for each y.
void Fft::transformRows(float* out, int stride) {
    Buffers& b = *m_buffers;
    for (int y0 = 0; y0 < m_size; y0 += WIDTH) {
        b.clear();
        for (int m = -m_band; m <= m_band; m++) {
            const int from = (m + m_band) * m_size + y0;
            b.load(m, b.half_re.data() + from, b.half_im.data() + from, WIDTH);
        }
        b.transform();
        for (int j = 0; j < WIDTH; j++) {
            float* to = out + stride * (y0 + j) * m_size;
            for (const Lanes& lanes : b.data) {
                to[0] = lanes.re[j];
                to[1] = lanes.im[j];
                to += stride;
            }
        }
    }
}

} // namespace ig
