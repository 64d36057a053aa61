// Bit reversal: the index function, its tables, and the permutations.
#include "bitrev.hpp"
#include "frame/report.hpp"
#include "tables.hpp"

namespace {

using vek::Site;

template <class T>
void permute1(const Site& site, T* vec, int order) {
    if (!vek::order_ok(site, order)) return;
    if (!vec) {
        site.bad("vec==0");
        return;
    }
    const std::int32_t* list = nullptr;
    if (order >= 3 && !(list = vek::swap_list(vek::context(), order))) {
        site.no_memory("NULL Pointer");
        return;
    }
    vek::bitrev_inplace(vec, order, list);
}

template <class T>
void permute2(const Site& site, const T* src, T* dst, int order) {
    if (!vek::order_ok(site, order)) return;
    if (!src) {
        site.bad("src==0");
        return;
    }
    if (!dst) {
        site.bad("dst==0");
        return;
    }
    const std::int32_t* list = nullptr;
    if (order >= 3 && !(list = vek::swap_list(vek::context(), order))) {
        site.no_memory("NULL Pointer");
        return;
    }
    vek::bitrev_copy(src, dst, order, list);
}

}  // namespace

extern "C" {

VEK_API int vekBitRev(int a, int order) {
    VEK_SITE("vekmisc");
    if (!vek::order_ok(site, order) || vek::failed()) return 0;
    unsigned r = 0;
    for (int i = 0; i < order; ++i) r = (r << 1) | ((unsigned(a) >> i) & 1u);
    return int(r);
}

VEK_API void vekCalcBitRevTbl(int* tbl, int order) {
    VEK_SITE("vekmisc");
    if (!vek::order_ok(site, order)) return;
    if (!tbl) {
        site.bad("tbl==0");
        return;
    }
    vek::calc_bitrev(reinterpret_cast<std::int32_t*>(tbl), order);
}

VEK_API int* vekGetBitRevTbl(int order) {
    VEK_SITE("vekmisc");
    if (!vek::order_ok(site, order) || vek::failed()) return nullptr;
    std::int32_t* t = vek::bitrev_table(vek::context(), order);
    if (!t) site.no_memory("NULL Pointer");
    return reinterpret_cast<int*>(t);
}

VEK_API void vekFreeBitRevTbls(void) { vek::release_bitrev(vek::context()); }

VEK_API void vekwbBitRev1(short* vec, int order) {
    VEK_SITE("vekmisc");
    permute1(site, vec, order);
}
VEK_API void vekvbBitRev1(CplxShort* vec, int order) {
    VEK_SITE("vekmisc");
    permute1(site, vec, order);
}
VEK_API void veksbBitRev1(float* vec, int order) {
    VEK_SITE("vekmisc");
    permute1(site, vec, order);
}
VEK_API void vekcbBitRev1(CplxFloat* vec, int order) {
    VEK_SITE("vekmisc");
    permute1(site, vec, order);
}
VEK_API void vekdbBitRev1(double* vec, int order) {
    VEK_SITE("vekmisc");
    permute1(site, vec, order);
}
VEK_API void vekzbBitRev1(CplxDouble* vec, int order) {
    VEK_SITE("vekmisc");
    permute1(site, vec, order);
}

VEK_API void vekwbBitRev2(const short* src, short* dst, int order) {
    VEK_SITE("vekmisc");
    permute2(site, src, dst, order);
}
VEK_API void vekvbBitRev2(const CplxShort* src, CplxShort* dst, int order) {
    VEK_SITE("vekmisc");
    permute2(site, src, dst, order);
}
VEK_API void veksbBitRev2(const float* src, float* dst, int order) {
    VEK_SITE("vekmisc");
    permute2(site, src, dst, order);
}
VEK_API void vekcbBitRev2(const CplxFloat* src, CplxFloat* dst, int order) {
    VEK_SITE("vekmisc");
    permute2(site, src, dst, order);
}
VEK_API void vekdbBitRev2(const double* src, double* dst, int order) {
    VEK_SITE("vekmisc");
    permute2(site, src, dst, order);
}
VEK_API void vekzbBitRev2(const CplxDouble* src, CplxDouble* dst, int order) {
    VEK_SITE("vekmisc");
    permute2(site, src, dst, order);
}

}  // extern "C"
