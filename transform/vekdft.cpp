// DFT of any length, float, double and 16-bit.
#include "dft.hpp"
#include "frame/report.hpp"
#include "tables.hpp"
#include "vector/scale.hpp"

namespace {

constexpr char kModule[] = "vekdft";

template <class C>
void dft(const vek::Site& site, vek::CplxKind kind, const C* src, C* dst, int length, int flags,
         const C* tbl) {
    vek::ThreadContext* ctx = vek::context();
    C* buff = length > 0 ? static_cast<C*>(vek::scratch(ctx, kind, vek::kScratchWork1,
                                                        std::uint64_t(length) * sizeof(C)))
                         : nullptr;
    if (length <= 0) return void(site.bad("length<=0"));
    if (!tbl) return void(site.bad("TwdTbl==0"));
    if (!buff) return void(site.bad("buff==0"));
    if (flags & VEK_Init) {
        // The plan and its buffer too, when memory allows (else the
        // transform sums directly).
        if (const void* plan = vek::dft_plan(ctx, kind, length))
            vek::dft_conv_buffer(ctx, kind, plan);
        return;
    }
    if (flags & VEK_Free) {
        vek::scratch_release(ctx, kind, vek::kScratchWork1);
        vek::scratch_release(ctx, kind, vek::kScratchWork2);
        return;
    }
    if (!src) return void(site.bad("src==0"));
    if (!dst) return void(site.bad("dst==0"));
    const bool inverse = (flags & VEK_Inv) != 0;
    if (inverse == ((flags & VEK_Forw) != 0))
        return void(site.bad("VEK_Forw or VEK_Inv must be as a flag"));
    const double scale = inverse && !(flags & VEK_NoScale) ? 1.0 / length : 1.0;
    vek::dft_exec(ctx, src, dst, buff, tbl, length, inverse, scale);
}

}  // namespace

extern "C" {

VEK_API void vekcDft(const CplxFloat* src, CplxFloat* dst, int length, int flags) {
    VEK_SITE(kModule);
    // The table getter reports a bad length itself; the check below repeats it.
    dft(site, vek::kKindC, src, dst, length, flags, vekcGetDftTwdTbl(length));
}

VEK_API void vekzDft(const CplxDouble* src, CplxDouble* dst, int length, int flags) {
    VEK_SITE(kModule);
    dft(site, vek::kKindZ, src, dst, length, flags, vekzGetDftTwdTbl(length));
}

VEK_API void vekvDft(const CplxShort* src, CplxShort* dst, int length, int flags, int scaleMode,
                     int* scaleFactor) {
    VEK_SITE(kModule);
    if (length <= 0) return void(site.bad("length<=0"));
    if (!vekcGetDftTwdTbl(length)) return void(site.bad("TwidleTbl==0"));
    // Table building and release are the float transform's.
    if (flags & (VEK_Init | VEK_Free)) return vekcDft(nullptr, nullptr, length, flags);
    if (!src) return void(site.bad("src==0"));
    if (!dst) return void(site.bad("dst==0"));
    if (((flags & VEK_Forw) != 0) == ((flags & VEK_Inv) != 0))
        return void(site.bad("VEK_Forw or VEK_Inv must be as a flag"));
    if ((scaleMode & VEK_FIXED_SCALE) && (scaleMode & VEK_AUTO_SCALE))
        return void(site.bad("scaleMode & VEK_FIXED_SCALE && scaleMode & VEK_AUTO_SCALE"));
    if ((scaleMode & VEK_AUTO_SCALE) && !scaleFactor)
        return void(site.bad("scaleMode & VEK_AUTO_SCALE && scaleFactor==NULL"));

    const int values = 2 * length;
    if (length == 1) {
        const std::int32_t v[2] = {src[0].re, src[0].im};
        vek::narrow_block(v, reinterpret_cast<std::int16_t*>(dst), 2, scaleMode, scaleFactor);
        return;
    }
    vek::ThreadContext* ctx = vek::context();
    const std::uint64_t bytes = std::uint64_t(values) * sizeof(float);
    auto buffers = [&](float*& in, float*& out) {
        in = static_cast<float*>(vek::scratch(ctx, vek::kKindV, vek::kScratchWork1, bytes));
        out = static_cast<float*>(vek::scratch(ctx, vek::kKindV, vek::kScratchWork2, bytes));
        return in && out;
    };
    float *in, *out;
    if (!buffers(in, out)) {
        vekcFreeTwdTbls();
        if (!buffers(in, out)) return void(site.no_memory("No working memory"));
    }
    const auto* samples = reinterpret_cast<const std::int16_t*>(src);
    for (int i = 0; i < values; ++i) in[i] = samples[i];
    vekcDft(reinterpret_cast<const CplxFloat*>(in), reinterpret_cast<CplxFloat*>(out), length,
            flags);
    if (vek::failed()) return void(site.backtrace("vekvDft float core error"));
    vek::narrow_block(out, reinterpret_cast<std::int16_t*>(dst), values, scaleMode, scaleFactor);
}

}  // extern "C"
