// Complex FFT, single precision.
#include "cfft.hpp"

using vek::fft_exec;
using vek::fft_exec_split;
using vek::fft_flags_ok;
using vek::fft_order_ok;
using vek::fft_tables;

extern "C" {

VEK_API void vekcFft(CplxFloat* samps, int order, int flags) {
    VEK_SITE("vekffts");
    if (flags & VEK_Free) return vek::fft_free(vek::kKindC, order);
    if (!fft_order_ok(site, order)) return;
    vek::ThreadContext* ctx = fft_tables(site, vek::kKindC, order, false);
    if (!ctx) return;
    if (flags & VEK_Init) return;
    if (!samps) {
        site.bad("samps==0");
        return;
    }
    if (!fft_flags_ok(site, flags)) return;
    fft_exec(ctx, samps, samps, order, flags);
}

VEK_API void vekcFftNip(const CplxFloat* inSamps, CplxFloat* outSamps, int order, int flags) {
    VEK_SITE("vekffts");
    if (flags & VEK_Free) return vek::fft_free(vek::kKindC, order);
    if (!fft_order_ok(site, order)) return;
    vek::ThreadContext* ctx = fft_tables(site, vek::kKindC, order, false);
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

VEK_API void vekcrFft(float* reSamps, float* imSamps, int order, int flags) {
    VEK_SITE("vekffts");
    if (flags & VEK_Free) return vek::fft_free(vek::kKindC, order);
    if (!fft_order_ok(site, order)) return;
    vek::ThreadContext* ctx = fft_tables(site, vek::kKindC, order, true);
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

VEK_API void vekcrFftNip(const float* reInSamps, const float* imInSamps, float* reOutSamps,
                          float* imOutSamps, int order, int flags) {
    VEK_SITE("vekffts");
    if (flags & VEK_Free) return vek::fft_free(vek::kKindC, order);
    if (!fft_order_ok(site, order)) return;
    vek::ThreadContext* ctx = fft_tables(site, vek::kKindC, order, true);
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
