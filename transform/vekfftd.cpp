// Complex FFT, double precision.
#include "cfft.hpp"

using vek::fft_exec;
using vek::fft_exec_split;
using vek::fft_flags_ok;
using vek::fft_order_ok;
using vek::fft_tables;

extern "C" {

VEK_API void vekzFft(CplxDouble* samps, int order, int flags) {
    VEK_SITE("vekfftd");
    if (flags & VEK_Free) return vek::fft_free(vek::kKindZ, order);
    if (!fft_order_ok(site, order)) return;
    vek::ThreadContext* ctx = fft_tables(site, vek::kKindZ, order, false);
    if (!ctx) return;
    if (flags & VEK_Init) return;
    if (!samps) {
        site.bad("samps==0");
        return;
    }
    if (!fft_flags_ok(site, flags)) return;
    fft_exec(ctx, samps, samps, order, flags);
}

VEK_API void vekzFftNip(const CplxDouble* inSamps, CplxDouble* outSamps, int order, int flags) {
    VEK_SITE("vekfftd");
    if (flags & VEK_Free) return vek::fft_free(vek::kKindZ, order);
    if (!fft_order_ok(site, order)) return;
    vek::ThreadContext* ctx = fft_tables(site, vek::kKindZ, order, false);
    if (!ctx) return;
    if (flags & VEK_Init) return;
    if (!inSamps) {
        site.bad("inSamps==0");
        return;
    }
    if (!outSamps) {
        site.bad("outSamps==0");
        return;
    }
    if (!fft_flags_ok(site, flags)) return;
    fft_exec(ctx, inSamps, outSamps, order, flags);
}

VEK_API void vekzrFft(double* reSamps, double* imSamps, int order, int flags) {
    VEK_SITE("vekfftd");
    if (flags & VEK_Free) return vek::fft_free(vek::kKindZ, order);
    if (!fft_order_ok(site, order)) return;
    vek::ThreadContext* ctx = fft_tables(site, vek::kKindZ, order, true);
    if (!ctx) return;
    if (flags & VEK_Init) return;
    if (!reSamps) {
        site.bad("reSamps==0");
        return;
    }
    if (!imSamps) {
        site.bad("imSamps==0");
        return;
    }
    if (!fft_flags_ok(site, flags)) return;
    fft_exec_split(ctx, reSamps, imSamps, reSamps, imSamps, order, flags);
}

VEK_API void vekzrFftNip(const double* reInSamps, const double* imInSamps, double* reOutSamps,
                          double* imOutSamps, int order, int flags) {
    VEK_SITE("vekfftd");
    if (flags & VEK_Free) return vek::fft_free(vek::kKindZ, order);
    if (!fft_order_ok(site, order)) return;
    vek::ThreadContext* ctx = fft_tables(site, vek::kKindZ, order, true);
    if (!ctx) return;
    if (flags & VEK_Init) return;
    if (!reInSamps) {
        site.bad("reInSamps==0");
        return;
    }
    if (!imInSamps) {
        site.bad("imInSamps==0");
        return;
    }
    if (!reOutSamps) {
        site.bad("reOutSamps==0");
        return;
    }
    if (!imOutSamps) {
        site.bad("imOutSamps==0");
        return;
    }
    if (!fft_flags_ok(site, flags)) return;
    fft_exec_split(ctx, reInSamps, imInSamps, reOutSamps, imOutSamps, order, flags);
}

}  // extern "C"
