// Complex FFT of 16-bit data: converted to single precision, transformed,
// and narrowed back under the caller's scale mode.
#include <cstring>
#include <initializer_list>

#include "cfft.hpp"
#include "vector/scale.hpp"

namespace {

using vek::Site;

constexpr int kRoundNearSaturate = 4224;  // round to nearest, saturate

// The checks of every 16-bit form after its pointer checks.
bool flags_and_scale_ok(const Site& site, int flags, int scaleMode, const int* scaleFactor) {
    if (!vek::fft_flags_ok(site, flags)) return false;
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

bool order_and_core_ok(const Site& site, int order, int flags) {
    if (!vek::fft_order_ok(site, order)) return false;
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
    vek::ScratchSet& set = ctx->scratch[vek::kKindV];
    for (int slot : {vek::kScratchWork1, vek::kScratchWork2}) {
        vek::table_free(set.buffer[slot]);
        set.buffer[slot] = nullptr;
        set.length[slot] = 0;
    }
}

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
        if (!samps) {
            site.bad("samps==0");
            return;
        }
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
    if (!inSamps) {
        site.bad("inSamps==0");
        return;
    }
    if (!outSamps) {
        site.bad("outSamps==0");
        return;
    }
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
        if (!reSamps) {
            site.bad("reSamps==0");
            return;
        }
        if (!imSamps) {
            site.bad("imSamps==0");
            return;
        }
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
    if (!flags_and_scale_ok(site, flags, scaleMode, scaleFactor)) return;
    if (!work_floats(site, std::uint64_t(2) << order)) return;
    std::memmove(reOutSamps, reInSamps, sizeof(short) << order);
    std::memmove(imOutSamps, imInSamps, sizeof(short) << order);
    vekvrFft(reOutSamps, imOutSamps, order, flags, scaleMode, scaleFactor);
    if (vek::failed()) site.backtrace("out vekvrFft");
}

}  // extern "C"
