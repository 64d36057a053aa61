// FFTW's float and double interfaces under one name, for the benchmarks
// that time vek beside it (FFTW_MEASURE plans; never linked into the
// library). Which FFTW is linked (Debian's, or one built for the whole
// instruction set: bench/CMakeLists.txt) shows in the benchmark's context
// line "fftw", with the codelet sets it was built with.
#pragma once

#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <cstddef>

namespace fftw {

template <class R>
struct Api;

template <>
struct Api<float> {
    using Plan = fftwf_plan;
    static void* alloc(std::size_t bytes) { return fftwf_malloc(bytes); }
    static void free(void* p) { fftwf_free(p); }
    static void exec(Plan p) { fftwf_execute(p); }
    static void destroy(Plan p) { fftwf_destroy_plan(p); }
    // Complex, n points, dir FFTW_FORWARD or FFTW_BACKWARD.
    static Plan dft(int n, void* in, void* out, int dir) {
        return fftwf_plan_dft_1d(n, static_cast<fftwf_complex*>(in),
                                 static_cast<fftwf_complex*>(out), dir, FFTW_MEASURE);
    }
    // Real to complex, in place (buf holds n + 2 values), or from in (n
    // values, kept) to out (n / 2 + 1 complex values).
    static Plan r2c(int n, void* buf) { return r2c(n, buf, buf); }
    static Plan r2c(int n, void* in, void* out) {
        return fftwf_plan_dft_r2c_1d(n, static_cast<float*>(in), static_cast<fftwf_complex*>(out),
                                     FFTW_MEASURE);
    }
};

template <>
struct Api<double> {
    using Plan = fftw_plan;
    static void* alloc(std::size_t bytes) { return fftw_malloc(bytes); }
    static void free(void* p) { fftw_free(p); }
    static void exec(Plan p) { fftw_execute(p); }
    static void destroy(Plan p) { fftw_destroy_plan(p); }
    static Plan dft(int n, void* in, void* out, int dir) {
        return fftw_plan_dft_1d(n, static_cast<fftw_complex*>(in), static_cast<fftw_complex*>(out),
                                dir, FFTW_MEASURE);
    }
    static Plan r2c(int n, void* buf) { return r2c(n, buf, buf); }
    static Plan r2c(int n, void* in, void* out) {
        return fftw_plan_dft_r2c_1d(n, static_cast<double*>(in), static_cast<fftw_complex*>(out),
                                    FFTW_MEASURE);
    }
};

// FFTW's version and codelet sets in the context lines of the output.
inline const bool kVersionNoted = [] {
    benchmark::AddCustomContext("fftw", fftwf_version);
    return true;
}();

// A buffer from fftw_malloc, as FFTW's users allocate them.
template <class T>
class Buf {
public:
    explicit Buf(int n) : p_(static_cast<T*>(fftw_malloc(sizeof(T) * std::size_t(n)))) {}
    ~Buf() { fftw_free(p_); }
    Buf(const Buf&) = delete;
    Buf& operator=(const Buf&) = delete;
    T* data() const { return p_; }
    T& operator[](int i) const { return p_[i]; }

private:
    T* p_;
};

}  // namespace fftw
