// Independent references for the transform tests: a long-double direct DFT
// and a long-double radix-2 FFT with exact twiddles.
#pragma once

#include <cmath>
#include <complex>
#include <cstdint>
#include <random>
#include <vector>

namespace vektest {

using cld = std::complex<long double>;

// exp(sign*2*pi*i*k/n) from an exact angle.
inline cld root(std::int64_t k, std::int64_t n, int sign) {
    const long double pi2 = 6.283185307179586476925286766559005768L;
    const long double a = pi2 * static_cast<long double>(k % n) / static_cast<long double>(n);
    return cld(std::cos(a), sign * std::sin(a));
}

// X[k] = sum x[j] * exp(sign*2*pi*i*j*k/n), O(n^2).
inline std::vector<cld> dft(const std::vector<cld>& x, int sign) {
    const std::int64_t n = std::int64_t(x.size());
    std::vector<cld> w(std::size_t(n), cld(0, 0));
    for (std::int64_t k = 0; k < n; ++k) w[std::size_t(k)] = root(k, n, sign);
    std::vector<cld> y(static_cast<std::size_t>(n));
    for (std::int64_t k = 0; k < n; ++k) {
        cld s(0, 0);
        for (std::int64_t j = 0; j < n; ++j) s += x[std::size_t(j)] * w[std::size_t((j * k) % n)];
        y[std::size_t(k)] = s;
    }
    return y;
}

// The same by decimation in time, for long inputs (n a power of two).
inline std::vector<cld> fft(std::vector<cld> x, int sign) {
    const std::size_t n = x.size();
    for (std::size_t i = 1, j = 0; i < n; ++i) {
        std::size_t bit = n >> 1;
        for (; j & bit; bit >>= 1) j ^= bit;
        j |= bit;
        if (i < j) std::swap(x[i], x[j]);
    }
    std::vector<cld> w(n / 2 + 1);
    for (std::size_t k = 0; k < n / 2; ++k) w[k] = root(std::int64_t(k), std::int64_t(n), sign);
    for (std::size_t len = 2; len <= n; len *= 2) {
        const std::size_t step = n / len;
        for (std::size_t i = 0; i < n; i += len)
            for (std::size_t k = 0; k < len / 2; ++k) {
                const cld u = x[i + k], v = x[i + k + len / 2] * w[k * step];
                x[i + k] = u + v;
                x[i + k + len / 2] = u - v;
            }
    }
    return x;
}

inline std::vector<cld> reference(const std::vector<cld>& x, int sign) {
    return x.size() <= 512 ? dft(x, sign) : fft(x, sign);
}

inline std::vector<cld> random_signal(std::size_t n, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::vector<cld> x(n);
    for (auto& v : x) v = cld(u(gen), u(gen));
    return x;
}

// sqrt(sum |y - ref|^2 / sum |ref|^2).
template <class C>
double rel_rms(const C* y, const std::vector<cld>& ref, long double scale = 1.0L) {
    long double num = 0, den = 0;
    for (std::size_t i = 0; i < ref.size(); ++i) {
        const cld r = ref[i] * scale;
        const cld d = cld(y[i].re, y[i].im) - r;
        num += std::norm(d);
        den += std::norm(r);
    }
    return den > 0 ? double(std::sqrt(num / den)) : double(std::sqrt(num));
}

}  // namespace vektest
