// Complex and real FFTs of 16-bit data: converted to single precision,
// transformed, and narrowed back under the caller's scale mode.
#include <cstring>

#include "cfft.hpp"
#include "realfft.hpp"
#include "vector/scale.hpp"

namespace {

using vek::Site;

constexpr int kRoundNearSaturate = 4224;  // round to nearest, saturate

// The scale-mode checks of every 16-bit form, after its flag checks.
bool scale_ok(const Site& site, int scaleMode, const int* scaleFactor) {
    if ((scaleMode & 0x0002) && (scaleMode & 0x0004)) {
        site.bad("(scaleMode & 0x0002) && (scaleMode & 0x0004)");
        return false;
    }
    if (scaleMode == VEK_AUTO_SCALE && !scaleFactor) {
        site.bad("scaleFactor==0");
        return false;
    }
    return true;
}

// The checks of every 16-bit complex form after its pointer checks.
bool flags_and_scale_ok(const Site& site, int flags, int scaleMode, const int* scaleFactor) {
    return vek::fft_flags_ok(site, flags) && scale_ok(site, scaleMode, scaleFactor);
}

bool order_and_core_ok(const Site& site, int order, int flags) {
    if (!vek::order_ok(site, order)) return false;
    if ((flags & VEK_DoIntCore) && (flags & VEK_DoFloatCore)) {
        site.bad("(flags & 8192) && (flags & 16384)");
        return false;
    }
    return true;
}

// `count` floats of the kind's slot 1; one retry after releasing every
// transform cache of the thread.
float* work_floats(const Site& site, std::uint64_t count) {
    vek::ThreadContext* ctx = vek::context();
    void* p = vek::scratch(ctx, vek::kKindV, vek::kScratchWork1, count * sizeof(float));
    if (!p) {
        vek::release_all(ctx);
        p = vek::scratch(ctx, vek::kKindV, vek::kScratchWork1, count * sizeof(float));
    }
    if (!p) site.no_memory("No working memory");
    return static_cast<float*>(p);
}

// 16 bits from floats: modes 0 and 1 round to nearest and saturate, the
// others follow the scale mode over the whole block.
void narrow(const float* src, short* dst, int n, int scaleMode, int* scaleFactor) {
    if (scaleMode == VEK_NO_SCALE || scaleMode == VEK_SATURATE)
        veksbFloatToInt(src, dst, n, 16, kRoundNearSaturate);
    else
        vek::narrow_block(src, reinterpret_cast<std::int16_t*>(dst), n, scaleMode, scaleFactor);
}

void release_integer_forms(int order) {
    vek::ThreadContext* ctx = vek::context();
    if (order >= 0 && order < vek::kOrders) {
        vek::table_free(ctx->swapList[order]);
        ctx->swapList[order] = nullptr;
    }
    vek::scratch_release(ctx, vek::kKindV, vek::kScratchWork1);
    vek::scratch_release(ctx, vek::kKindV, vek::kScratchWork2);
}

// One 16-bit real transform form: the single-precision export it runs on
// the work block (for one signal or two) and its backtrace messages.
struct RealForm {
    vek::RealCall call;
    void (*one)(float*, int, int);
    void (*two)(float*, float*, int, int);
    const char* init;  // "out veksRealFft VEK_Init"
    const char* calc;  // "out veksRealFft calc. FFT"
};

// A signal's input and output and the messages of their null checks
// (inName null: in place, in == out).
struct RealIo {
    const short* in;
    short* out;
    const char* inName;
    const char* outName;
};

// The 16-bit real transforms: checks, the signals converted into one float
// block (slot 1, N+2 values each), the single-precision export on it, and
// the results narrowed with one factor for all signals.
void real_w(const Site& site, const RealForm& form, const RealIo* io, int signals, int order,
            int flags, int scaleMode, int* scaleFactor) {
    if (flags & VEK_Free) {
        if (signals == 1)
            form.one(nullptr, order, flags);
        else
            form.two(nullptr, nullptr, order, flags);
        // The buffers of the 16-bit forms; the half-length swap list is
        // already gone with the tables.
        return release_integer_forms(order - 1);
    }
    if (!order_and_core_ok(site, order, flags)) return;
    const bool init = flags & VEK_Init;
    if (!init) {
        for (int s = 0; s < signals; ++s) {
            if (io[s].inName && !io[s].in) return void(site.bad(io[s].inName));
            if (!io[s].out) return void(site.bad(io[s].outName));
        }
        if (!vek::real_flags_ok(site, flags, form.call) || !scale_ok(site, scaleMode, scaleFactor))
            return;
    }
    // Counted in 64 bits: two signals of the largest order overflow 32.
    float* buf = work_floats(site, ((std::uint64_t(1) << order) + 2) * std::uint64_t(signals));
    if (!buf) return;
    const std::size_t n = std::size_t(1) << order, stride = n + 2;
    if (init) {
        if (signals == 1)
            form.one(nullptr, order, flags);
        else
            form.two(nullptr, nullptr, order, flags);
        if (vek::failed()) site.backtrace(form.init);
        return;
    }
    // What the transform reads and writes: N reals; a CCS spectrum of N+2
    // values (of which order 0 has X[0] and 0 only); N packed values.
    const bool ccs = !form.call.low;
    const std::size_t spectrum = ccs ? (order == 0 ? 2 : stride) : n;
    const std::size_t inCount = form.call.toSpectrum ? n : ccs && order == 0 ? 1 : spectrum;
    const std::size_t outCount = form.call.toSpectrum ? spectrum : n;
    for (int s = 0; s < signals; ++s)
        veksbIntToFloat(io[s].inName ? io[s].in : io[s].out, buf + s * stride, int(inCount), 16, 0);
    if (signals == 1)
        form.one(buf, order, flags);
    else
        form.two(buf, buf + stride, order, flags);
    if (vek::failed()) return void(site.backtrace(form.calc));
    if (signals == 1 || scaleMode == VEK_NO_SCALE || scaleMode == VEK_SATURATE) {
        for (int s = 0; s < signals; ++s)
            narrow(buf + s * stride, io[s].out, int(outCount), scaleMode, scaleFactor);
        return;
    }
    // One factor for both: the results side by side, narrowed into a 16-bit
    // copy, then split.
    std::memmove(buf + outCount, buf + stride, outCount * sizeof(float));
    auto* out = static_cast<short*>(vek::scratch(vek::context(), vek::kKindV, vek::kScratchWork2,
                                                 2 * outCount * sizeof(short)));
    if (!out) return void(site.no_memory("No working memory"));
    narrow(buf, out, int(2 * outCount), scaleMode, scaleFactor);
    std::memcpy(io[0].out, out, outCount * sizeof(short));
    std::memcpy(io[1].out, out + outCount, outCount * sizeof(short));
}

constexpr RealForm kRealFft = {{true, false, false},
                               veksRealFft,
                               nullptr,
                               "out veksRealFft VEK_Init",
                               "out veksRealFft calc. FFT"};
constexpr RealForm kCcsFft = {{false, false, false},
                              veksCcsFft,
                              nullptr,
                              "out veksCcsFft VEK_Init",
                              "out veksCcsFft calc. FFT"};
constexpr RealForm kRealFftl = {{true, true, false},
                                veksRealFftl,
                                nullptr,
                                "out veksRealFftl VEK_Init",
                                "out veksRealFftl calc. FFT"};
constexpr RealForm kCcsFftl = {{false, true, false},
                               veksCcsFftl,
                               nullptr,
                               "out veksCcsFftl VEK_Init",
                               "out veksCcsFftl calc. FFT"};
constexpr RealForm kReal2Fft = {{true, false, false},
                                nullptr,
                                veksReal2Fft,
                                "out veksReal2Fft VEK_Init",
                                "out veksReal2Fft calc. FFT"};
constexpr RealForm kCcs2Fft = {{false, false, false},
                               nullptr,
                               veksCcs2Fft,
                               "out veksCcs2Fft VEK_Init",
                               "out veksCcs2Fft calc. FFT"};

}  // namespace

extern "C" {

VEK_API void vekvFft(CplxShort* samps, int order, int flags, int scaleMode, int* scaleFactor) {
    VEK_SITE("vekfftw");
    if (flags & VEK_Free) {
        vekcFft(nullptr, order, flags);
        return release_integer_forms(order);
    }
    if (!order_and_core_ok(site, order, flags)) return;
    const bool init = flags & VEK_Init;
    if (!init) {
        if (!vek::pointers_set(site, samps, "samps==0")) return;
        if (!flags_and_scale_ok(site, flags, scaleMode, scaleFactor)) return;
    }
    const int n = 2 << order;  // 16-bit values
    float* buf = nullptr;
    if (order > 0 || !init) {
        buf = work_floats(site, std::uint64_t(2) << order);
        if (!buf) return;
    }
    if (init) {
        if (order == 0) return;
        vekcFft(nullptr, order, flags);
        if (vek::failed()) site.backtrace("out vekcFft VEK_Init");
        return;
    }
    veksbIntToFloat(samps, buf, n, 16, 0);
    if (order > 0) {
        vekcFft(reinterpret_cast<CplxFloat*>(buf), order, flags);
        if (vek::failed()) {
            site.backtrace("out vekcFft calc. FFT");
            return;
        }
    }
    narrow(buf, &samps->re, n, scaleMode, scaleFactor);
}

VEK_API void vekvFftNip(const CplxShort* inSamps, CplxShort* outSamps, int order, int flags,
                        int scaleMode, int* scaleFactor) {
    VEK_SITE("vekfftw");
    if (flags & (VEK_Free | VEK_Init)) {
        vekvFft(nullptr, order, flags, scaleMode, scaleFactor);
        if (vek::failed()) site.backtrace("out vekvFft");
        return;
    }
    if (!order_and_core_ok(site, order, flags)) return;
    if (!vek::pointers_set(site, inSamps, "inSamps==0", outSamps, "outSamps==0")) return;
    if (!flags_and_scale_ok(site, flags, scaleMode, scaleFactor)) return;
    // The work area first, so that a shortage leaves the output unwritten.
    if (!work_floats(site, std::uint64_t(2) << order)) return;
    std::memmove(outSamps, inSamps, sizeof(CplxShort) << order);
    vekvFft(outSamps, order, flags, scaleMode, scaleFactor);
    if (vek::failed()) site.backtrace("out vekvFft");
}

VEK_API void vekvrFft(short* reSamps, short* imSamps, int order, int flags, int scaleMode,
                      int* scaleFactor) {
    VEK_SITE("vekfftw");
    if (flags & VEK_Free) {
        vekcrFft(nullptr, nullptr, order, flags);
        return release_integer_forms(order);
    }
    if (!order_and_core_ok(site, order, flags)) return;
    const bool init = flags & VEK_Init;
    if (!init) {
        if (!vek::pointers_set(site, reSamps, "reSamps==0", imSamps, "imSamps==0")) return;
        if (!flags_and_scale_ok(site, flags, scaleMode, scaleFactor)) return;
    }
    // Real parts, then imaginary parts, in one block of floats, so that
    // automatic scaling finds one factor for both.
    const int n = 1 << order;
    float* buf = nullptr;
    if (order > 0 || !init) {
        buf = work_floats(site, std::uint64_t(2) << order);
        if (!buf) return;
    }
    if (init) {
        if (order == 0) return;
        vekcrFft(nullptr, nullptr, order, flags);
        if (vek::failed()) site.backtrace("out vekcrFft VEK_Init");
        return;
    }
    float* re = buf;
    float* im = buf + n;
    veksbIntToFloat(reSamps, re, n, 16, 0);
    veksbIntToFloat(imSamps, im, n, 16, 0);
    if (order > 0) {
        vekcrFft(re, im, order, flags);
        if (vek::failed()) {
            site.backtrace("out vekcrFft calc. FFT");
            return;
        }
    }
    if (scaleMode == VEK_NO_SCALE || scaleMode == VEK_SATURATE) {
        narrow(re, reSamps, n, scaleMode, scaleFactor);
        narrow(im, imSamps, n, scaleMode, scaleFactor);
        return;
    }
    // One factor for the block: narrow into a 16-bit copy, then split it.
    vek::ThreadContext* ctx = vek::context();
    auto* out = static_cast<short*>(
        vek::scratch(ctx, vek::kKindV, vek::kScratchWork2, std::uint64_t(4) << order));
    if (!out) {
        site.no_memory("No working memory");
        return;
    }
    narrow(buf, out, 2 * n, scaleMode, scaleFactor);
    std::memcpy(reSamps, out, sizeof(short) * std::size_t(n));
    std::memcpy(imSamps, out + n, sizeof(short) * std::size_t(n));
}

VEK_API void vekvrFftNip(const short* reInSamps, const short* imInSamps, short* reOutSamps,
                         short* imOutSamps, int order, int flags, int scaleMode, int* scaleFactor) {
    VEK_SITE("vekfftw");
    if (flags & (VEK_Free | VEK_Init)) {
        vekvrFft(nullptr, nullptr, order, flags, scaleMode, scaleFactor);
        if (vek::failed()) site.backtrace("out vekvrFft");
        return;
    }
    if (!order_and_core_ok(site, order, flags)) return;
    if (!vek::pointers_set(site, reInSamps, "reInSamps==0", imInSamps, "imInSamps==0", reOutSamps,
                           "reOutSamps==0", imOutSamps, "imOutSamps==0"))
        return;
    if (!flags_and_scale_ok(site, flags, scaleMode, scaleFactor)) return;
    if (!work_floats(site, std::uint64_t(2) << order)) return;
    std::memmove(reOutSamps, reInSamps, sizeof(short) << order);
    std::memmove(imOutSamps, imInSamps, sizeof(short) << order);
    vekvrFft(reOutSamps, imOutSamps, order, flags, scaleMode, scaleFactor);
    if (vek::failed()) site.backtrace("out vekvrFft");
}

// ---------------------------------------------------------------- real FFTs

VEK_API void vekwRealFft(short* samps, int order, int flags, int scaleMode, int* scaleFactor) {
    VEK_SITE("vekfftw");
    const RealIo io{samps, samps, nullptr, "samps==0"};
    real_w(site, kRealFft, &io, 1, order, flags, scaleMode, scaleFactor);
}

VEK_API void vekwRealFftNip(const short* inSamps, short* outSamps, int order, int flags,
                            int scaleMode, int* scaleFactor) {
    VEK_SITE("vekfftw");
    const RealIo io{inSamps, outSamps, "inSamps==0", "outSamps==0"};
    real_w(site, kRealFft, &io, 1, order, flags, scaleMode, scaleFactor);
}

VEK_API void vekwCcsFft(short* samps, int order, int flags, int scaleMode, int* scaleFactor) {
    VEK_SITE("vekfftw");
    const RealIo io{samps, samps, nullptr, "samps==0"};
    real_w(site, kCcsFft, &io, 1, order, flags, scaleMode, scaleFactor);
}

VEK_API void vekwCcsFftNip(const short* inSamps, short* outSamps, int order, int flags,
                           int scaleMode, int* scaleFactor) {
    VEK_SITE("vekfftw");
    const RealIo io{inSamps, outSamps, "inSamps==0", "outSamps==0"};
    real_w(site, kCcsFft, &io, 1, order, flags, scaleMode, scaleFactor);
}

VEK_API void vekwRealFftl(short* samps, int order, int flags, int scaleMode, int* scaleFactor) {
    VEK_SITE("vekfftw");
    const RealIo io{samps, samps, nullptr, "samps==0"};
    real_w(site, kRealFftl, &io, 1, order, flags, scaleMode, scaleFactor);
}

VEK_API void vekwRealFftlNip(const short* inSamps, short* outSamps, int order, int flags,
                             int scaleMode, int* scaleFactor) {
    VEK_SITE("vekfftw");
    const RealIo io{inSamps, outSamps, "inSamps==0", "outSamps==0"};
    real_w(site, kRealFftl, &io, 1, order, flags, scaleMode, scaleFactor);
}

VEK_API void vekwCcsFftl(short* samps, int order, int flags, int scaleMode, int* scaleFactor) {
    VEK_SITE("vekfftw");
    const RealIo io{samps, samps, nullptr, "samps==0"};
    real_w(site, kCcsFftl, &io, 1, order, flags, scaleMode, scaleFactor);
}

VEK_API void vekwCcsFftlNip(const short* inSamps, short* outSamps, int order, int flags,
                            int scaleMode, int* scaleFactor) {
    VEK_SITE("vekfftw");
    const RealIo io{inSamps, outSamps, "inSamps==0", "outSamps==0"};
    real_w(site, kCcsFftl, &io, 1, order, flags, scaleMode, scaleFactor);
}

VEK_API void vekwReal2Fft(short* xSamps, short* ySamps, int order, int flags, int scaleMode,
                          int* scaleFactor) {
    VEK_SITE("vekfftw");
    const RealIo io[2] = {{xSamps, xSamps, nullptr, "xSamps==0"},
                          {ySamps, ySamps, nullptr, "ySamps==0"}};
    real_w(site, kReal2Fft, io, 2, order, flags, scaleMode, scaleFactor);
}

VEK_API void vekwReal2FftNip(const short* xInSamps, short* xOutSamps, const short* yInSamps,
                             short* yOutSamps, int order, int flags, int scaleMode,
                             int* scaleFactor) {
    VEK_SITE("vekfftw");
    const RealIo io[2] = {{xInSamps, xOutSamps, "xInSamps==0", "xOutSamps==0"},
                          {yInSamps, yOutSamps, "yInSamps==0", "yOutSamps==0"}};
    real_w(site, kReal2Fft, io, 2, order, flags, scaleMode, scaleFactor);
}

VEK_API void vekwCcs2Fft(short* xSamps, short* ySamps, int order, int flags, int scaleMode,
                         int* scaleFactor) {
    VEK_SITE("vekfftw");
    const RealIo io[2] = {{xSamps, xSamps, nullptr, "xSamps==0"},
                          {ySamps, ySamps, nullptr, "ySamps==0"}};
    real_w(site, kCcs2Fft, io, 2, order, flags, scaleMode, scaleFactor);
}

VEK_API void vekwCcs2FftNip(const short* xInSamps, short* xOutSamps, const short* yInSamps,
                            short* yOutSamps, int order, int flags, int scaleMode,
                            int* scaleFactor) {
    VEK_SITE("vekfftw");
    const RealIo io[2] = {{xInSamps, xOutSamps, "xInSamps==0", "xOutSamps==0"},
                          {yInSamps, yOutSamps, "yInSamps==0", "yOutSamps==0"}};
    real_w(site, kCcs2Fft, io, 2, order, flags, scaleMode, scaleFactor);
}

// ---------------------------------------------------------------- packed products

VEK_API void vekwMpyRCPack2(const short* src, short* dst, int order, int scaleMode,
                            int* scaleFactor) {
    VEK_SITE("vekfftw");
    vek::spectrum_mul(site, nullptr, src, dst, order, vek::kLayoutPack, false, scaleMode,
                      scaleFactor);
}

VEK_API void vekwMpyRCPack3(const short* srcA, const short* srcB, short* dst, int order,
                            int scaleMode, int* scaleFactor) {
    VEK_SITE("vekfftw");
    vek::spectrum_mul(site, srcA, srcB, dst, order, vek::kLayoutPack, true, scaleMode, scaleFactor);
}

VEK_API void vekwMpyRCPerm2(const short* src, short* dst, int order, int scaleMode,
                            int* scaleFactor) {
    VEK_SITE("vekfftw");
    vek::spectrum_mul(site, nullptr, src, dst, order, vek::kLayoutPerm, false, scaleMode,
                      scaleFactor);
}

VEK_API void vekwMpyRCPerm3(const short* srcA, const short* srcB, short* dst, int order,
                            int scaleMode, int* scaleFactor) {
    VEK_SITE("vekfftw");
    vek::spectrum_mul(site, srcA, srcB, dst, order, vek::kLayoutPerm, true, scaleMode, scaleFactor);
}

}  // extern "C"
