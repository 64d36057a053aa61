// Complex and real FFTs, double precision.
#include "cfft.hpp"
#include "realfft.hpp"

using vek::RealCall;

extern "C" {

VEK_API void vekzFft(CplxDouble* samps, int order, int flags) {
    VEK_SITE("vekfftd");
    vek::complex_fft(site, samps, samps, order, flags, samps, "samps==0");
}

VEK_API void vekzFftNip(const CplxDouble* inSamps, CplxDouble* outSamps, int order, int flags) {
    VEK_SITE("vekfftd");
    vek::complex_fft(site, inSamps, outSamps, order, flags, inSamps, "inSamps==0", outSamps,
                     "outSamps==0");
}

VEK_API void vekzrFft(double* reSamps, double* imSamps, int order, int flags) {
    VEK_SITE("vekfftd");
    vek::complex_fft_split(site, reSamps, imSamps, reSamps, imSamps, order, flags, reSamps,
                           "reSamps==0", imSamps, "imSamps==0");
}

VEK_API void vekzrFftNip(const double* reInSamps, const double* imInSamps, double* reOutSamps,
                         double* imOutSamps, int order, int flags) {
    VEK_SITE("vekfftd");
    vek::complex_fft_split(site, reInSamps, imInSamps, reOutSamps, imOutSamps, order, flags,
                           reInSamps, "reInSamps==0", imInSamps, "imInSamps==0", reOutSamps,
                           "reOutSamps==0", imOutSamps, "imOutSamps==0");
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
