// Complex and real FFTs, single precision.
#include "cfft.hpp"
#include "realfft.hpp"

using vek::RealCall;

extern "C" {

VEK_API void vekcFft(CplxFloat* samps, int order, int flags) {
    VEK_SITE("vekffts");
    vek::complex_fft(site, samps, samps, order, flags, samps, "samps==0");
}

VEK_API void vekcFftNip(const CplxFloat* inSamps, CplxFloat* outSamps, int order, int flags) {
    VEK_SITE("vekffts");
    vek::complex_fft(site, inSamps, outSamps, order, flags, inSamps, "inSamps==0", outSamps,
                     "outSamps==0");
}

VEK_API void vekcrFft(float* reSamps, float* imSamps, int order, int flags) {
    VEK_SITE("vekffts");
    vek::complex_fft_split(site, reSamps, imSamps, reSamps, imSamps, order, flags, reSamps,
                           "reSamps==0", imSamps, "imSamps==0");
}

VEK_API void vekcrFftNip(const float* reInSamps, const float* imInSamps, float* reOutSamps,
                         float* imOutSamps, int order, int flags) {
    VEK_SITE("vekffts");
    vek::complex_fft_split(site, reInSamps, imInSamps, reOutSamps, imOutSamps, order, flags,
                           reInSamps, "reInSamps==0", imInSamps, "imInSamps==0", reOutSamps,
                           "reOutSamps==0", imOutSamps, "imOutSamps==0");
}

// ---------------------------------------------------------------- real FFTs

VEK_API void veksRealFft(float* samps, int order, int flags) {
    VEK_SITE("vekffts");
    vek::real_fft(site, samps, samps, order, flags, RealCall{true, false, false});
}

VEK_API void veksRealFftNip(const float* inSamps, float* outSamps, int order, int flags) {
    VEK_SITE("vekffts");
    vek::real_fft(site, inSamps, outSamps, order, flags, RealCall{true, false, true});
}

VEK_API void veksCcsFft(float* samps, int order, int flags) {
    VEK_SITE("vekffts");
    vek::real_fft(site, samps, samps, order, flags, RealCall{false, false, false});
}

VEK_API void veksCcsFftNip(const float* inSamps, float* outSamps, int order, int flags) {
    VEK_SITE("vekffts");
    vek::real_fft(site, inSamps, outSamps, order, flags, RealCall{false, false, true});
}

VEK_API void veksRealFftl(float* samps, int order, int flags) {
    VEK_SITE("vekffts");
    vek::real_fft(site, samps, samps, order, flags, RealCall{true, true, false});
}

VEK_API void veksRealFftlNip(const float* inSamps, float* outSamps, int order, int flags) {
    VEK_SITE("vekffts");
    vek::real_fft(site, inSamps, outSamps, order, flags, RealCall{true, true, true});
}

VEK_API void veksCcsFftl(float* samps, int order, int flags) {
    VEK_SITE("vekffts");
    vek::real_fft(site, samps, samps, order, flags, RealCall{false, true, false});
}

VEK_API void veksCcsFftlNip(const float* inSamps, float* outSamps, int order, int flags) {
    VEK_SITE("vekffts");
    vek::real_fft(site, inSamps, outSamps, order, flags, RealCall{false, true, true});
}

// Two signals: one call each (the tables are shared, so VEK_Init and
// VEK_Free make only the first), the status examined once after both.
VEK_API void veksReal2Fft(float* xSamps, float* ySamps, int order, int flags) {
    VEK_SITE("vekffts");
    veksRealFft(xSamps, order, flags);
    if (!(flags & (VEK_Init | VEK_Free))) veksRealFft(ySamps, order, flags);
    if (vek::failed()) site.backtrace("out veksRealFft");
}

VEK_API void veksReal2FftNip(const float* xInSamps, float* xOutSamps, const float* yInSamps,
                             float* yOutSamps, int order, int flags) {
    VEK_SITE("vekffts");
    veksRealFftNip(xInSamps, xOutSamps, order, flags);
    if (!(flags & (VEK_Init | VEK_Free))) veksRealFftNip(yInSamps, yOutSamps, order, flags);
    if (vek::failed()) site.backtrace("out veksRealFftNip");
}

VEK_API void veksCcs2Fft(float* xSamps, float* ySamps, int order, int flags) {
    VEK_SITE("vekffts");
    veksCcsFft(xSamps, order, flags);
    if (!(flags & (VEK_Init | VEK_Free))) veksCcsFft(ySamps, order, flags);
    if (vek::failed()) site.backtrace("out veksCcsFft");
}

VEK_API void veksCcs2FftNip(const float* xInSamps, float* xOutSamps, const float* yInSamps,
                            float* yOutSamps, int order, int flags) {
    VEK_SITE("vekffts");
    veksCcsFftNip(xInSamps, xOutSamps, order, flags);
    if (!(flags & (VEK_Init | VEK_Free))) veksCcsFftNip(yInSamps, yOutSamps, order, flags);
    if (vek::failed()) site.backtrace("out veksCcsFftNip");
}

// ---------------------------------------------------------------- packed products

VEK_API void veksMpyRCPack2(const float* src, float* dst, int order) {
    VEK_SITE("vekffts");
    vek::spectrum_mul(site, nullptr, src, dst, order, vek::kLayoutPack, false);
}

VEK_API void veksMpyRCPack3(const float* srcA, const float* srcB, float* dst, int order) {
    VEK_SITE("vekffts");
    vek::spectrum_mul(site, srcA, srcB, dst, order, vek::kLayoutPack, true);
}

VEK_API void veksMpyRCPerm2(const float* src, float* dst, int order) {
    VEK_SITE("vekffts");
    vek::spectrum_mul(site, nullptr, src, dst, order, vek::kLayoutPerm, false);
}

VEK_API void veksMpyRCPerm3(const float* srcA, const float* srcB, float* dst, int order) {
    VEK_SITE("vekffts");
    vek::spectrum_mul(site, srcA, srcB, dst, order, vek::kLayoutPerm, true);
}

}  // extern "C"
