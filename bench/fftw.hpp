// FFTW's float and double interfaces under one name, for the benchmarks
// that time vek beside it (FFTW_MEASURE plans; never linked into the
// library).
#pragma once

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
    // Real to complex, in place (buf holds n + 2 values).
    static Plan r2c(int n, void* buf) {
        return fftwf_plan_dft_r2c_1d(n, static_cast<float*>(buf), static_cast<fftwf_complex*>(buf),
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
    static Plan r2c(int n, void* buf) {
        return fftw_plan_dft_r2c_1d(n, static_cast<double*>(buf), static_cast<fftw_complex*>(buf),
                                    FFTW_MEASURE);
    }
};

}  // namespace fftw
