// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace ig {

/// Inverse discrete Fourier transform of a band of frequencies to size × size complex values in
/// single precision, without scaling:
///     out(x, y) = Σ over |m|, |n| ≤ band of in(m, n) · exp(2πi (m x + n y) / size).
/// The input holds the band only, whatever the size, real and imaginary parts in arrays of their
/// own: in[n + band][m + band], 2 band + 1 values along each edge. The output goes where it is
/// needed, a pair of floats for each place: out[stride · (y · size + x)] and the float after it.
///
/// Owns its buffers: one object must not be used by two threads at a time.
class Fft {
public:
    /// `size`: a power of two, at least 16 and more than twice the band.
    Fft(int size, int band);
    Fft(Fft&&) noexcept;
    ~Fft();

    /// `stride` in floats, 2 or more.
    void inverse(const float* in_re, const float* in_im, float* out, int stride);

private:
    struct Buffers;

    void transformColumns(const float* in_re, const float* in_im);
    void transformRows(float* out, int stride);

    int m_size, m_band;
    std::unique_ptr<Buffers> m_buffers;
};

} // namespace ig
