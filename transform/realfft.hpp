// Real FFTs through one complex FFT of half the length.
//
// The N real points x are read as M = N/2 complex points z[n] = x[2n] +
// i x[2n+1], transformed (Z), and recombined pair by pair:
//   X[k]   = h (Z[k] + conj Z[M-k]) + P_k (Z[k] - conj Z[M-k])
//   X[M-k] = conj(h (Z[k] + conj Z[M-k]) - P_k (Z[k] - conj Z[M-k]))
// with P_k = -(i/2) W^k (W = exp(-/+ 2 pi i / N) by direction). The inverse
// (spectrum to real) is the same map with P_k = i conj(W^k) and h = 1, so
// one kernel serves both; the caller's scale (1/N) is folded into h and P.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/report.hpp"
#include "tables.hpp"

namespace vek {

// Where a spectrum keeps X[0].re, X[N/2].re and X[1..N/2-1].
enum SpectrumLayout : int {
    kLayoutCcs,   // N+2 values: X[0..N/2] as complex values
    kLayoutPack,  // N values: X[0].re, X[1], ..., X[N/2-1], X[N/2].re
    kLayoutPerm   // N values: X[0].re, X[N/2].re, X[1], ..., X[N/2-1]
};

// The recombination of the pairs (k, M-k), k = 1..M/2, from src to dst
// (which may be equal): complex value k is read at src[2k - ish] and
// written at dst[2k - osh]. tw[k] = W_N^k for k = 0..M/2 (forward sign).
// The multiplier P_k has parts (c1 * tw[k].im, c2 * tw[k].re).
template <class R, class C>
using RecombFn = void (*)(const R* src, R* dst, std::size_t m, const C* tw, R h, R c1, R c2,
                          int ish, int osh);

struct RealFftOps {
    RecombFn<float, CplxFloat> recomb_s;
    RecombFn<double, CplxDouble> recomb_d;
    // dst[k] = a[k] * b[k] for n complex values at any offsets; dst may
    // equal a or b.
    void (*cmul_s)(const float* a, const float* b, float* dst, std::size_t n);
    void (*cmul_d)(const double* a, const double* b, double* dst, std::size_t n);
    // DCT, n a power of two >= 4 (see dct.hpp): the even/odd reordering,
    // its inverse, and the twiddle passes between the cosine and the real
    // spectrum in RCPerm layout, with tables tc[k], ts[k], k = 0..n/2.
    void (*dct_split_s)(const float* x, float* v, std::size_t n);
    void (*dct_split_d)(const double* x, double* v, std::size_t n);
    void (*dct_merge_s)(const float* v, float* x, std::size_t n);
    void (*dct_merge_d)(const double* v, double* x, std::size_t n);
    void (*dct_post_s)(const float* v, float* y, std::size_t n, const float* tc, const float* ts);
    void (*dct_post_d)(const double* v, double* y, std::size_t n, const double* tc,
                       const double* ts);
    void (*dct_pre_s)(const float* y, float* v, std::size_t n, const float* tc, const float* ts);
    void (*dct_pre_d)(const double* y, double* v, std::size_t n, const double* tc,
                      const double* ts);
    // y = sum of x[i] times row i of the n x n matrix m, n a power of two up
    // to 32; y may equal x.
    void (*dct_matrix_s)(const float* m, const float* x, float* y, std::size_t n);
    void (*dct_matrix_d)(const double* m, const double* x, double* y, std::size_t n);
};

namespace sse2 {
extern const RealFftOps realfft_ops;
}
namespace avx2 {
extern const RealFftOps realfft_ops;
}
namespace avx512 {
extern const RealFftOps realfft_ops;
}

const RealFftOps& realfft_ops();

// The complex plan, swap list and work area of order-1 and the
// recombination table of a real transform of this order (none below 2).
// One retry after releasing the kind's kernel tables; false when memory
// is short (no report).
bool rfft_acquire(ThreadContext* ctx, CplxKind kind, int order);

// The same with the report "No working Twd memory". Returns the thread's
// context, or null after the report.
ThreadContext* rfft_tables(const Site& site, CplxKind kind, int order);

// VEK_Free: the tables of this order and the FFT work area.
void rfft_free(CplxKind kind, int order);

// N = 2^order real values to their spectrum, after the checks and with
// the tables acquired; in may equal out (which then holds N+2 values for
// CCS). flags: the direction, VEK_NoScale.
void rfft_forward(ThreadContext* ctx, const float* in, float* out, int order, int flags,
                  SpectrumLayout layout);
void rfft_forward(ThreadContext* ctx, const double* in, double* out, int order, int flags,
                  SpectrumLayout layout);

// A conjugate-symmetric spectrum back to N real values; in may equal out.
void rfft_inverse(ThreadContext* ctx, const float* in, float* out, int order, int flags,
                  SpectrumLayout layout);
void rfft_inverse(ThreadContext* ctx, const double* in, double* out, int order, int flags,
                  SpectrumLayout layout);

// The exports' common body: checks in their documented order, tables,
// then the transform. In-place forms pass in == out and nip false.
struct RealCall {
    bool toSpectrum;  // RealFft forms (else CcsFft)
    bool low;         // layout from the flags: RCPack or RCPerm (else CCS)
    bool nip;         // pointer names inSamps/outSamps (else samps)
};
void real_fft(const Site& site, const float* in, float* out, int order, int flags, RealCall call);
// The direction checks, then for the l forms the layout checks.
bool real_flags_ok(const Site& site, int flags, RealCall call);
void real_fft(const Site& site, const double* in, double* out, int order, int flags, RealCall call);

// The packed products' body: order and pointer checks (srcA/srcB for the
// three-operand forms, src for the two-operand ones, which pass a = dst).
void spectrum_mul(const Site& site, const float* a, const float* b, float* dst, int order,
                  SpectrumLayout layout, bool three);
void spectrum_mul(const Site& site, const double* a, const double* b, double* dst, int order,
                  SpectrumLayout layout, bool three);

// The 16-bit products: the same checks, then in AUTO mode "scalefactor==0"
// for a null factor; each value narrowed by the element-wise product
// rules of its scale mode, AUTO with one factor for the spectrum.
void spectrum_mul(const Site& site, const short* a, const short* b, short* dst, int order,
                  SpectrumLayout layout, bool three, int scaleMode, int* scaleFactor);

}  // namespace vek
