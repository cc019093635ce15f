// SPDX-License-Identifier: MIT

// Row-column transform, each dimension by Stockham's self-sorting algorithm: three passes of radix
// 4 and one of radix 2 between two buffers. WIDTH transforms run side by side, so that the inner
// loops work on neighbouring floats whatever the stride of the pass; the compiler turns them into
// vector instructions, and since every lane does the same operations in the same order, the result
// doesn't depend on how wide those are.

#include "Fft.h"

#include <cmath>
#include <cstring>
#include <numbers>

namespace ocean {

namespace {

constexpr int N = Fft::SIZE;
constexpr int WIDTH = 16;

struct Batch {
    alignas(64) float re[N][WIDTH];
    alignas(64) float im[N][WIDTH];
};

struct Twiddles {
    float re[N], im[N]; // exp(2πi j / N)

    Twiddles() {
        for (int j = 0; j < N; j++) {
            re[j] = static_cast<float>(std::cos(2 * std::numbers::pi * j / N));
            im[j] = static_cast<float>(std::sin(2 * std::numbers::pi * j / N));
        }
    }
};
const Twiddles W;

/// One butterfly of radix 4: rows a to d of `in`, `step` rows apart, to rows `stride` apart.
inline void butterfly4(const Batch& in, int a, int step, Batch& out, int o, int stride, int turn) {
    const int b = a + step, c = b + step, d = c + step;
    const float w1r = W.re[turn], w1i = W.im[turn];
    const float w2r = W.re[2 * turn], w2i = W.im[2 * turn];
    const float w3r = W.re[3 * turn], w3i = W.im[3 * turn];
    for (int j = 0; j < WIDTH; j++) {
        const float sum_r = in.re[a][j] + in.re[c][j], sum_i = in.im[a][j] + in.im[c][j];
        const float dif_r = in.re[a][j] - in.re[c][j], dif_i = in.im[a][j] - in.im[c][j];
        const float odd_r = in.re[b][j] + in.re[d][j], odd_i = in.im[b][j] + in.im[d][j];
        const float rot_r = in.im[d][j] - in.im[b][j], rot_i = in.re[b][j] - in.re[d][j]; // i (b−d)
        const float r1 = dif_r + rot_r, i1 = dif_i + rot_i;
        const float r2 = sum_r - odd_r, i2 = sum_i - odd_i;
        const float r3 = dif_r - rot_r, i3 = dif_i - rot_i;
        out.re[o][j] = sum_r + odd_r;
        out.im[o][j] = sum_i + odd_i;
        out.re[o + stride][j] = r1 * w1r - i1 * w1i;
        out.im[o + stride][j] = r1 * w1i + i1 * w1r;
        out.re[o + 2 * stride][j] = r2 * w2r - i2 * w2i;
        out.im[o + 2 * stride][j] = r2 * w2i + i2 * w2r;
        out.re[o + 3 * stride][j] = r3 * w3r - i3 * w3i;
        out.im[o + 3 * stride][j] = r3 * w3i + i3 * w3r;
    }
}

void passRadix4(const Batch& in, Batch& out, int length, int stride) {
    const int quarter = length / 4;
    for (int p = 0; p < quarter; p++)
        for (int q = 0; q < stride; q++)
            butterfly4(in, q + stride * p, stride * quarter, out, q + stride * 4 * p, stride,
                       p * stride);
}

void passRadix2(const Batch& in, Batch& out) {
    constexpr int HALF = N / 2;
    for (int q = 0; q < HALF; q++)
        for (int j = 0; j < WIDTH; j++) {
            out.re[q][j] = in.re[q][j] + in.re[q + HALF][j];
            out.im[q][j] = in.im[q][j] + in.im[q + HALF][j];
            out.re[q + HALF][j] = in.re[q][j] - in.re[q + HALF][j];
            out.im[q + HALF][j] = in.im[q][j] - in.im[q + HALF][j];
        }
}

/// Transforms the WIDTH columns of `data` in place.
void transform(Batch& data, Batch& scratch) {
    passRadix4(data, scratch, N, 1);
    passRadix4(scratch, data, N / 4, 4);
    passRadix4(data, scratch, N / 16, 16);
    passRadix2(scratch, data);
}

} // namespace

struct Fft::Buffers {
    Batch data, scratch;
    alignas(64) float re[N][N], im[N][N]; // [n][x]: half transformed
};

Fft::Fft(int band) : m_band(band), m_buffers(std::make_unique<Buffers>()) {
    std::memset(m_buffers->re, 0, sizeof m_buffers->re);
    std::memset(m_buffers->im, 0, sizeof m_buffers->im);
}

Fft::~Fft() = default;

void Fft::inverse(const float* in_re, const float* in_im, float* out_re, float* out_im) {
    Buffers& b = *m_buffers;
    constexpr std::size_t ROW = WIDTH * sizeof(float);
    for (int n0 = 0; n0 < N; n0 += WIDTH) {
        if (n0 > m_band && n0 + WIDTH <= N - m_band) continue; // stays zero
        for (int m = 0; m < N; m++) {
            std::memcpy(b.data.re[m], in_re + m * N + n0, ROW);
            std::memcpy(b.data.im[m], in_im + m * N + n0, ROW);
        }
        transform(b.data, b.scratch);
        for (int j = 0; j < WIDTH; j++)
            for (int x = 0; x < N; x++) {
                b.re[n0 + j][x] = b.data.re[x][j];
                b.im[n0 + j][x] = b.data.im[x][j];
            }
    }
    for (int x0 = 0; x0 < N; x0 += WIDTH) {
        for (int n = 0; n < N; n++) {
            std::memcpy(b.data.re[n], &b.re[n][x0], ROW);
            std::memcpy(b.data.im[n], &b.im[n][x0], ROW);
        }
        transform(b.data, b.scratch);
        for (int y = 0; y < N; y++) {
            std::memcpy(out_re + y * N + x0, b.data.re[y], ROW);
            std::memcpy(out_im + y * N + x0, b.data.im[y], ROW);
        }
    }
}

} // namespace ocean
