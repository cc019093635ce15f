// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace ig {

/// Inverse discrete Fourier transform of a band of frequencies to size × size complex values in
/// single precision, without scaling:
///     out(x, y) = Σ over |m|, |n| ≤ band of in(m, n) · exp(2πi (m x + n y) / size).
/// The input holds the band only, whatever the size, real and imaginary parts in arrays of their
/// own: in[n + band][m + band], 2 band + 1 values along each edge. The output has the two floats of
/// a value side by side.
///
/// Owns its buffers: one object must not be used by two threads at a time.
class Fft {
public:
    /// `size`: a power of two, at least 16 and more than twice the band.
    Fft(int size, int band);
    Fft(Fft&&) noexcept;
    ~Fft();
    int getSize() const;

    struct Band {
        const float *re, *im;
    };
    /// One transform: out[2 · (y · size + x)] and the float after it.
    void inverse(Band in, float* out);

    /// Two, with their values beside each other: out[4 · (y · size + x)] and the three floats after
    /// it. The rows come in steps, ROWS at a time, so that they can be looked at while they are in
    /// the nearest cache: `begin`, then `finishRows` for each y that is a multiple of ROWS.
    void begin(Band first, Band second);
    void finishRows(int y, float* out);
    static constexpr int ROWS = 4;

private:
    struct Buffers;

    std::unique_ptr<Buffers> m_buffers;
};

} // namespace ig
