// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace ocean {

/// Inverse discrete Fourier transform of SIZE × SIZE complex values in single precision, without
/// scaling:
///     out(x, y) = Σ over m, n of in(m, n) · exp(2πi (m x + n y) / SIZE).
/// Real and imaginary parts lie in arrays of their own. The input holds m by n, negative
/// frequencies from the end: in[m mod SIZE][n mod SIZE]; the output is out[y][x].
///
/// Owns its buffers: one object must not be used by two threads at a time.
class Fft {
public:
    static constexpr int SIZE = 128;

    /// The caller promises that the input is zero where |m| or |n| is above `band`.
    explicit Fft(int band);
    ~Fft();

    void inverse(const float* in_re, const float* in_im, float* out_re, float* out_im);

private:
    struct Buffers;
    int m_band;
    std::unique_ptr<Buffers> m_buffers;
};

} // namespace ocean
