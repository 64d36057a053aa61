// DCT of any length: float, double, and 16-bit through float.
#include "dct.hpp"
#include "frame/report.hpp"
#include "tables.hpp"

namespace {

template <class R>
void dct(const vek::Site& site, const R* src, R* dst, int len, int flags) {
    if (flags == VEK_Free) return vek::dct_release(vek::context());
    if (!src || !dst) return void(site.bad("\nNull pointer to data buffer\n"));
    if (len < 1) return void(site.bad("\nBad value of data buffer size\n"));
    if (((flags & VEK_Forw) != 0) == ((flags & VEK_Inv) != 0))
        return void(site.bad("\nBad value of the transform flag\n"));
    if (!vek::dct(src, dst, len, (flags & VEK_Inv) != 0))
        site.no_memory("\nMemory allocation problem\n");
}

}  // namespace

extern "C" {

VEK_API void veksDct(const float* src, float* dst, int len, int flags) {
    VEK_SITE("vekdct");
    dct(site, src, dst, len, flags);
}

VEK_API void vekdDct(const double* src, double* dst, int len, int flags) {
    VEK_SITE("vekdct");
    dct(site, src, dst, len, flags);
}

// Each check with a line of its own.
VEK_API void vekwDct(const short* src, short* dst, int len, int flags) {
    VEK_SITE("vekdct");
    if (flags == VEK_Free) return vek::dct_release(vek::context());
    if (!src || !dst) return void(site.at(__LINE__).bad("\nNull pointer to data buffer\n"));
    if (len < 1) return void(site.at(__LINE__).bad("\nBad value of data buffer size\n"));
    if (((flags & VEK_Forw) != 0) == ((flags & VEK_Inv) != 0))
        return void(site.at(__LINE__).bad("\nBad value of the transform flag\n"));
    float* work = vek::dct_floats(2 * std::uint64_t(len));
    if (!work) return void(site.at(__LINE__).no_memory("\nMemory allocation problem\n"));
    veksbIntToFloat(src, work, len, 16, 0);
    veksDct(work, work + len, len, flags);
    if (vek::failed())
        site.at(__LINE__).backtrace();
    else
        veksbFloatToInt(work + len, dst, len, 16, 4224);  // round to nearest, saturate
    vek::table_free(work);
}

}  // extern "C"
