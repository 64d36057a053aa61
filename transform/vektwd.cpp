// Twiddle tables of the FFT (per order) and of the DFT (per length), for
// complex float, double and 16-bit.
#include "frame/report.hpp"
#include "tables.hpp"

namespace {

using vek::CplxKind;
using vek::Site;

void calc_fft(const Site& site, CplxKind kind, void* tbl, int order) {
    if (!vek::order_ok(site, order)) return;
    if (!tbl) {
        site.bad("tbl==0");
        return;
    }
    vek::calc_fft_twiddles(kind, tbl, order);
}

void* get_fft(const Site& site, CplxKind kind, int order) {
    if (!vek::order_ok(site, order) || vek::failed()) return nullptr;
    void* t = vek::fft_twiddles(vek::context(), kind, order);
    if (!t) site.no_memory("NULL Pointer");
    return t;
}

void calc_dft(const Site& site, CplxKind kind, void* tbl, int length) {
    if (!tbl) {
        site.bad("tbl==0");
        return;
    }
    if (length <= 0) {
        site.bad("length<=0");
        return;
    }
    vek::calc_dft_twiddles(kind, tbl, length);
}

// The thread's list of DFT tables of one kind: the first entry of equal
// length, else a new one while the list has room.
void* get_dft(const Site& site, CplxKind kind, int length, std::size_t elemSize) {
    if (length <= 0) {
        site.bad("length<=0");
        return nullptr;
    }
    if (vek::failed()) return nullptr;
    vek::ThreadContext* ctx = vek::context();
    const int count = ctx->dftCount[kind];
    for (int i = 0; i < count; ++i)
        if (ctx->dftLength[kind][i] == length) return ctx->dftTbl[kind][i];
    if (count > 0 && count >= ctx->dftCapacity) {
        site.no_memory("Full Table");
        return nullptr;
    }
    void* t = vek::table_alloc(std::uint64_t(length) * elemSize);
    if (!t) {
        site.no_memory("NULL Pointer");
        return nullptr;
    }
    vek::calc_dft_twiddles(kind, t, length);
    ctx->dftLength[kind][count] = length;
    ctx->dftTbl[kind][count] = t;
    ctx->dftCount[kind] = count + 1;
    return t;
}

}  // namespace

extern "C" {

VEK_API void vekcCalcFftTwdTbl(CplxFloat* tbl, int order) {
    VEK_SITE("vektwd");
    calc_fft(site, vek::kKindC, tbl, order);
}
VEK_API void vekzCalcFftTwdTbl(CplxDouble* tbl, int order) {
    VEK_SITE("vektwd");
    calc_fft(site, vek::kKindZ, tbl, order);
}
VEK_API void vekvCalcFftTwdTbl(CplxShort* tbl, int order) {
    VEK_SITE("vektwd");
    calc_fft(site, vek::kKindV, tbl, order);
}

VEK_API CplxFloat* vekcGetFftTwdTbl(int order) {
    VEK_SITE("vektwd");
    return static_cast<CplxFloat*>(get_fft(site, vek::kKindC, order));
}
VEK_API CplxDouble* vekzGetFftTwdTbl(int order) {
    VEK_SITE("vektwd");
    return static_cast<CplxDouble*>(get_fft(site, vek::kKindZ, order));
}
VEK_API CplxShort* vekvGetFftTwdTbl(int order) {
    VEK_SITE("vektwd");
    return static_cast<CplxShort*>(get_fft(site, vek::kKindV, order));
}

VEK_API void vekcCalcDftTwdTbl(CplxFloat* tbl, int length) {
    VEK_SITE("vektwd");
    calc_dft(site, vek::kKindC, tbl, length);
}
VEK_API void vekzCalcDftTwdTbl(CplxDouble* tbl, int length) {
    VEK_SITE("vektwd");
    calc_dft(site, vek::kKindZ, tbl, length);
}
VEK_API void vekvCalcDftTwdTbl(CplxShort* tbl, int length) {
    VEK_SITE("vektwd");
    calc_dft(site, vek::kKindV, tbl, length);
}

VEK_API CplxFloat* vekcGetDftTwdTbl(int length) {
    VEK_SITE("vektwd");
    return static_cast<CplxFloat*>(get_dft(site, vek::kKindC, length, sizeof(CplxFloat)));
}
VEK_API CplxDouble* vekzGetDftTwdTbl(int length) {
    VEK_SITE("vektwd");
    return static_cast<CplxDouble*>(get_dft(site, vek::kKindZ, length, sizeof(CplxDouble)));
}
VEK_API CplxShort* vekvGetDftTwdTbl(int length) {
    VEK_SITE("vektwd");
    return static_cast<CplxShort*>(get_dft(site, vek::kKindV, length, sizeof(CplxShort)));
}

VEK_API void vekcFreeTwdTbls(void) { vek::release_twiddles(vek::context(), vek::kKindC); }
VEK_API void vekzFreeTwdTbls(void) { vek::release_twiddles(vek::context(), vek::kKindZ); }
VEK_API void vekvFreeTwdTbls(void) { vek::release_twiddles(vek::context(), vek::kKindV); }

}  // extern "C"
