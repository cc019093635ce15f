// SPDX-License-Identifier: MIT

// Row-column transform, each dimension by Stockham's self-sorting algorithm: passes of radix 4, and
// one of radix 2 where the size is no power of four, between two buffers. WIDTH transforms run side
// by side, as vectors of what every processor has: each lane does the same operations in the same
// order, whatever is beside it, and no wider or fused instruction is chosen by processor.
//
// Moving data costs as much as the arithmetic: both buffers together fit a cache of 32 KiB, the
// first pass takes the band from where it stands, and the last one, whose turns are all by nothing,
// puts its results where they are wanted.

#include "Fft.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>
#include <numbers>
#include <vector>

namespace ig {

namespace {

constexpr int WIDTH = 4;
/// Neighbouring results that the last pass hands on together. Four texels of four floats are a
/// line of the cache; the rows of a tile, 4 KiB apart, compete for the same few lines.
constexpr int RUN = 4;

/// The same element of WIDTH transforms; what is done with it is done to each.
using Vector = float __attribute__((vector_size(WIDTH * sizeof(float))));

struct Lanes {
    Vector re, im;
};
using Batch = std::vector<Lanes>;

struct Twiddle {
    float re, im;
};

/// The band of WIDTH transforms: frequency f at `pitch` · (f + band), with its neighbours beside.
struct Input {
    const float *re, *im;
    int pitch;
};

inline Input inputOf(const Lanes* band) {
    const auto* values = reinterpret_cast<const float*>(band);
    return {values, values + WIDTH, 2 * WIDTH};
}

inline Lanes turn(const Lanes& a, Twiddle w) {
    return {a.re * w.re - a.im * w.im, a.re * w.im + a.im * w.re};
}

/// Four elements to the sums of their turns by quarters.
inline void combine(const Lanes& a, const Lanes& b, const Lanes& c, const Lanes& d, Lanes& o0,
                    Lanes& o1, Lanes& o2, Lanes& o3) {
    const Vector sum_r = a.re + c.re, sum_i = a.im + c.im;
    const Vector dif_r = a.re - c.re, dif_i = a.im - c.im;
    const Vector odd_r = b.re + d.re, odd_i = b.im + d.im;
    const Vector rot_r = d.im - b.im, rot_i = b.re - d.re; // i (b − d)
    o0 = {sum_r + odd_r, sum_i + odd_i};
    o1 = {dif_r + rot_r, dif_i + rot_i};
    o2 = {sum_r - odd_r, sum_i - odd_i};
    o3 = {dif_r - rot_r, dif_i - rot_i};
}

} // namespace

struct Fft::Buffers {
    int size, band;
    std::vector<Twiddle> twiddles; ///< exp(2πi j / size)
    Batch data, scratch;
    Batch others; ///< results that wait for those of another transform
    /// [y / WIDTH][m + band]: transformed along n, with the lanes of the rows' transforms.
    Batch half, second_half;

    Buffers(int n, int b)
        : size(n), band(b), data(n), scratch(data.size()), others(data.size()),
          half((2 * b + 1) * n / WIDTH), second_half(half.size()) {
        for (int j = 0; j < n; j++) {
            const double angle = 2 * std::numbers::pi * j / n;
            twiddles.push_back(
                {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))});
        }
    }

    void transformColumns(Band in, Batch& to);
    template <class Sink>
    void transformRows(const Batch& from, int y, Sink sink);

    Input pad(const Input& input, int count);
    template <class Sink>
    void transform(const Input& input, Sink& sink);
    Lanes load(const Input& input, int frequency) const;
    void turnOut(const Lanes& a, const Lanes& b, const Lanes& c, const Lanes& d, Lanes* out,
                 int stride, int turns) const;
    void butterfly(const Lanes& a, const Lanes& b, const Lanes& c, const Lanes& d, Lanes* out,
                   int stride, int turns) const;
    void passFirst(const Input& input);
    int passOn();
    template <class Sink>
    void passLast(int stride, Sink& sink) const;
};

/// Copies an input that has fewer than WIDTH neighbours to the buffer that the first pass reads
/// nothing else from.
Input Fft::Buffers::pad(const Input& input, int count) {
    for (int f = 0; f <= 2 * band; f++)
        for (int j = 0; j < WIDTH; j++) {
            data[f].re[j] = j < count ? input.re[f * input.pitch + j] : 0;
            data[f].im[j] = j < count ? input.im[f * input.pitch + j] : 0;
        }
    return inputOf(data.data());
}

/// Transforms the WIDTH neighbours at the input's pointers; the sink takes the results.
template <class Sink>
void Fft::Buffers::transform(const Input& input, Sink& sink) {
    passFirst(input);
    passLast(passOn(), sink);
}

/// An element of the input, which is zero off the band.
inline Lanes Fft::Buffers::load(const Input& input, int frequency) const {
    Lanes lanes{};
    if (frequency < -band || frequency > band) return lanes;
    std::memcpy(&lanes.re, input.re + (frequency + band) * input.pitch, sizeof(Vector));
    std::memcpy(&lanes.im, input.im + (frequency + band) * input.pitch, sizeof(Vector));
    return lanes;
}

/// The end of a butterfly: each of the four turned once more than the one before.
inline void Fft::Buffers::turnOut(const Lanes& a, const Lanes& b, const Lanes& c, const Lanes& d,
                                  Lanes* out, int stride, int turns) const {
    out[0] = a;
    out[stride] = turn(b, twiddles[turns]);
    out[2 * stride] = turn(c, twiddles[2 * turns]);
    out[3 * stride] = turn(d, twiddles[3 * turns]);
}

inline void Fft::Buffers::butterfly(const Lanes& a, const Lanes& b, const Lanes& c, const Lanes& d,
                                    Lanes* out, int stride, int turns) const {
    Lanes sums[4];
    combine(a, b, c, d, sums[0], sums[1], sums[2], sums[3]);
    turnOut(sums[0], sums[1], sums[2], sums[3], out, stride, turns);
}

/// From the input to `data`. Where the band is a quarter of all, a butterfly has just one element
/// in it but for a few: the lowest frequencies' or the highest.
void Fft::Buffers::passFirst(const Input& input) {
    const int quarter = size / 4;
    for (int p = 0; p < quarter; p++) {
        Lanes* out = &scratch[4 * p];
        if (p < quarter - band && p > band - quarter) {
            const Lanes a = load(input, p);
            turnOut(a, a, a, a, out, 1, p);
        } else if (p > band) {
            const Lanes d = load(input, p - quarter);
            turnOut(d, {d.im, -d.re}, {-d.re, -d.im}, {-d.im, d.re}, out, 1, p);
        } else {
            butterfly(load(input, p), load(input, p + quarter), load(input, p - 2 * quarter),
                      load(input, p - quarter), out, 1, p);
        }
    }
    data.swap(scratch);
}

/// The passes between the first and the last, from `data` to `data`. Returns the last one's stride.
int Fft::Buffers::passOn() {
    int stride = 4;
    for (int length = size / 4; length >= 8; length /= 4, stride *= 4) {
        const int quarter = length / 4, step = stride * quarter;
        for (int p = 0; p < quarter; p++) {
            const Lanes* in = &data[stride * p];
            Lanes* out = &scratch[stride * 4 * p];
            for (int q = 0; q < stride; q++, in++, out++)
                butterfly(in[0], in[step], in[2 * step], in[3 * step], out, stride, p * stride);
        }
        data.swap(scratch);
    }
    return stride;
}

/// From `data` to the sink, RUN elements at a time.
template <class Sink>
void Fft::Buffers::passLast(int stride, Sink& sink) const {
    const bool four = 4 * stride == size;
    const Lanes* in = data.data();
    for (int q = 0; q < stride; q += RUN, in += RUN) {
        Lanes sums[4][RUN];
        for (int i = 0; i < RUN; i++)
            if (four) {
                combine(in[i], in[i + stride], in[i + 2 * stride], in[i + 3 * stride], sums[0][i],
                        sums[1][i], sums[2][i], sums[3][i]);
            } else {
                const Lanes &a = in[i], &b = in[i + stride];
                sums[0][i] = {a.re + b.re, a.im + b.im};
                sums[1][i] = {a.re - b.re, a.im - b.im};
            }
        for (int o = 0; o < (four ? 4 : 2); o++)
            sink.take(sums[o], q + o * stride);
    }
}

namespace {

/// Turns vectors of four lanes' elements into the four vectors of a lane each.
inline void transpose(const Vector in[4], Vector out[4]) {
    static_assert(WIDTH == 4 && RUN == 4);
    const Vector a = __builtin_shufflevector(in[0], in[1], 0, 4, 1, 5);
    const Vector b = __builtin_shufflevector(in[2], in[3], 0, 4, 1, 5);
    const Vector c = __builtin_shufflevector(in[0], in[1], 2, 6, 3, 7);
    const Vector d = __builtin_shufflevector(in[2], in[3], 2, 6, 3, 7);
    out[0] = __builtin_shufflevector(a, b, 0, 1, 4, 5);
    out[1] = __builtin_shufflevector(a, b, 2, 3, 6, 7);
    out[2] = __builtin_shufflevector(c, d, 0, 1, 4, 5);
    out[3] = __builtin_shufflevector(c, d, 2, 3, 6, 7);
}

/// Makes elements of one dimension lanes of the other.
struct ToHalf {
    Lanes* out;
    int pitch, count; ///< of the lanes, those that are wanted

    void take(const Lanes* run, int y) {
        const Vector re[] = {run[0].re, run[1].re, run[2].re, run[3].re};
        const Vector im[] = {run[0].im, run[1].im, run[2].im, run[3].im};
        Vector to_re[4], to_im[4];
        transpose(re, to_re);
        transpose(im, to_im);
        for (int j = 0; j < count; j++)
            out[y / WIDTH * pitch + j] = {to_re[j], to_im[j]};
    }
};

/// Keeps the elements as they are.
struct ToBatch {
    Lanes* out;

    void take(const Lanes* run, int x) { std::copy_n(run, RUN, out + x); }
};

/// Puts lane j's element x to [j][x] as a pair of floats.
struct ToPairs {
    float* out;
    int pitch; ///< floats

    void take(const Lanes* run, int x) {
        for (int i = 0; i < RUN; i += 2) {
            const Vector in[] = {run[i].re, run[i].im, run[i + 1].re, run[i + 1].im};
            Vector pairs[4];
            transpose(in, pairs);
            for (int j = 0; j < WIDTH; j++)
                std::memcpy(out + j * pitch + 2 * (x + i), &pairs[j], sizeof(Vector));
        }
    }
};

/// Puts lane j's element x to [j][x], with the one of another transform before it: four floats.
struct ToQuads {
    const Lanes* others;
    float* out;
    int pitch; ///< floats

    void take(const Lanes* run, int x) {
        Vector quads[RUN][WIDTH];
        for (int i = 0; i < RUN; i++) {
            const Lanes& other = others[x + i];
            const Vector in[] = {other.re, other.im, run[i].re, run[i].im};
            transpose(in, quads[i]);
        }
        for (int j = 0; j < WIDTH; j++)
            for (int i = 0; i < RUN; i++)
                std::memcpy(out + j * pitch + 4 * (x + i), &quads[i][j], sizeof(Vector));
    }
};

} // namespace

Fft::Fft(int size, int band) : m_buffers(std::make_unique<Buffers>(size, band)) {
    assert(size >= 16 && (size & (size - 1)) == 0 && size > 2 * band);
}

Fft::Fft(Fft&&) noexcept = default;

Fft::~Fft() = default;

int Fft::getSize() const { return m_buffers->size; }

/// From n to y, for each m of the band.
void Fft::Buffers::transformColumns(Band in, Batch& to) {
    const int columns = 2 * band + 1;
    for (int m = 0; m < columns; m += WIDTH) {
        const int count = std::min(WIDTH, columns - m);
        Input input{in.re + m, in.im + m, columns};
        if (count < WIDTH) input = pad(input, count);
        ToHalf sink{&to[m], columns, count};
        transform(input, sink);
    }
}

/// From m to x, for WIDTH rows from y on.
template <class Sink>
void Fft::Buffers::transformRows(const Batch& from, int y, Sink sink) {
    transform(inputOf(&from[y / WIDTH * (2 * band + 1)]), sink);
}

void Fft::inverse(Band in, float* out) {
    Buffers& b = *m_buffers;
    b.transformColumns(in, b.half);
    for (int y = 0; y < b.size; y += WIDTH)
        b.transformRows(b.half, y, ToPairs{out + 2 * y * b.size, 2 * b.size});
}

void Fft::begin(Band first, Band second) {
    m_buffers->transformColumns(first, m_buffers->half);
    m_buffers->transformColumns(second, m_buffers->second_half);
}

void Fft::finishRows(int y, float* out) {
    Buffers& b = *m_buffers;
    static_assert(ROWS == WIDTH);
    b.transformRows(b.half, y, ToBatch{b.others.data()});
    b.transformRows(b.second_half, y, ToQuads{b.others.data(), out + 4 * y * b.size, 4 * b.size});
}

} // namespace ig
