// Complex and real FFTs, double precision.
#include "cfft.hpp"
#include "realfft.hpp"

using vek::fft_exec;
using vek::fft_exec_split;
using vek::fft_flags_ok;
using vek::fft_order_ok;
using vek::fft_tables;
using vek::RealCall;

extern "C" {

VEK_API void vekzFft(CplxDouble* samps, int order, int flags) {
    VEK_SITE("vekfftd");
    if (flags & VEK_Free) return vek::fft_free(vek::kKindZ, order);
    if (!fft_order_ok(site, order)) return;
    vek::ThreadContext* ctx = fft_tables(site, vek::kKindZ, order, false);
    if (!ctx) return;
    if (flags & VEK_Init) return vek::fft_init_orderings(ctx, vek::kKindZ, order, flags);
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
    if (flags & VEK_Init) return vek::fft_init_orderings(ctx, vek::kKindZ, order, flags);
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
    if (flags & VEK_Init) return vek::fft_init_orderings(ctx, vek::kKindZ, order, flags);
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
    if (flags & VEK_Init) return vek::fft_init_orderings(ctx, vek::kKindZ, order, flags);
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

// ---------------------------------------------------------------- real FFTs

VEK_API void vekdRealFft(double* samps, int order, int flags) {
    VEK_SITE("vekfftd");
    vek::real_fft(site, samps, samps, order, flags, RealCall{true, false, false});
}

VEK_API void vekdRealFftNip(const double* inSamps, double* outSamps, int order, int flags) {
    VEK_SITE("vekfftd");
    vek::real_fft(site, inSamps, outSamps, order, flags, RealCall{true, false, true});
}

VEK_API void vekdCcsFft(double* samps, int order, int flags) {
    VEK_SITE("vekfftd");
    vek::real_fft(site, samps, samps, order, flags, RealCall{false, false, false});
}

VEK_API void vekdCcsFftNip(const double* inSamps, double* outSamps, int order, int flags) {
    VEK_SITE("vekfftd");
    vek::real_fft(site, inSamps, outSamps, order, flags, RealCall{false, false, true});
}

VEK_API void vekdRealFftl(double* samps, int order, int flags) {
    VEK_SITE("vekfftd");
    vek::real_fft(site, samps, samps, order, flags, RealCall{true, true, false});
}

VEK_API void vekdRealFftlNip(const double* inSamps, double* outSamps, int order, int flags) {
    VEK_SITE("vekfftd");
    vek::real_fft(site, inSamps, outSamps, order, flags, RealCall{true, true, true});
}

VEK_API void vekdCcsFftl(double* samps, int order, int flags) {
    VEK_SITE("vekfftd");
    vek::real_fft(site, samps, samps, order, flags, RealCall{false, true, false});
}

VEK_API void vekdCcsFftlNip(const double* inSamps, double* outSamps, int order, int flags) {
    VEK_SITE("vekfftd");
    vek::real_fft(site, inSamps, outSamps, order, flags, RealCall{false, true, true});
}

// Two signals: one call each (the tables are shared, so VEK_Init and
// VEK_Free make only the first), the status examined once after both.
VEK_API void vekdReal2Fft(double* xSamps, double* ySamps, int order, int flags) {
    VEK_SITE("vekfftd");
    vekdRealFft(xSamps, order, flags);
    if (!(flags & (VEK_Init | VEK_Free))) vekdRealFft(ySamps, order, flags);
    if (vek::failed()) site.backtrace("out vekdRealFft");
}

VEK_API void vekdReal2FftNip(const double* xInSamps, double* xOutSamps, const double* yInSamps,
                             double* yOutSamps, int order, int flags) {
    VEK_SITE("vekfftd");
    vekdRealFftNip(xInSamps, xOutSamps, order, flags);
    if (!(flags & (VEK_Init | VEK_Free))) vekdRealFftNip(yInSamps, yOutSamps, order, flags);
    if (vek::failed()) site.backtrace("out vekdRealFftNip");
}

VEK_API void vekdCcs2Fft(double* xSamps, double* ySamps, int order, int flags) {
    VEK_SITE("vekfftd");
    vekdCcsFft(xSamps, order, flags);
    if (!(flags & (VEK_Init | VEK_Free))) vekdCcsFft(ySamps, order, flags);
    if (vek::failed()) site.backtrace("out vekdCcsFft");
}

VEK_API void vekdCcs2FftNip(const double* xInSamps, double* xOutSamps, const double* yInSamps,
                            double* yOutSamps, int order, int flags) {
    VEK_SITE("vekfftd");
    vekdCcsFftNip(xInSamps, xOutSamps, order, flags);
    if (!(flags & (VEK_Init | VEK_Free))) vekdCcsFftNip(yInSamps, yOutSamps, order, flags);
    if (vek::failed()) site.backtrace("out vekdCcsFftNip");
}

// ---------------------------------------------------------------- packed products

VEK_API void vekdMpyRCPack2(const double* src, double* dst, int order) {
    VEK_SITE("vekfftd");
    vek::spectrum_mul(site, nullptr, src, dst, order, vek::kLayoutPack, false);
}

VEK_API void vekdMpyRCPack3(const double* srcA, const double* srcB, double* dst, int order) {
    VEK_SITE("vekfftd");
    vek::spectrum_mul(site, srcA, srcB, dst, order, vek::kLayoutPack, true);
}

VEK_API void vekdMpyRCPerm2(const double* src, double* dst, int order) {
    VEK_SITE("vekfftd");
    vek::spectrum_mul(site, nullptr, src, dst, order, vek::kLayoutPerm, false);
}

VEK_API void vekdMpyRCPerm3(const double* srcA, const double* srcB, double* dst, int order) {
    VEK_SITE("vekfftd");
    vek::spectrum_mul(site, srcA, srcB, dst, order, vek::kLayoutPerm, true);
}

}  // extern "C"
