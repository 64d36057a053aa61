// Normalisation of float, double and complex vectors: (src - offset) / factor.
#include "frame/report.hpp"
#include "vector/arith.hpp"
#include "vector/checks.hpp"

namespace {

template <class T, class R>
void normalize(const vek::Site& site, void (*kernel)(const T*, T*, int, T, R), const T* src, T* dst,
               int n, T offset, R factor) {
    if (!vek::valid_args(site, n, "n<=0", src, "src==0", dst, "dst==0")) return;
    if (factor == 0) {
        site.bad("factor == 0");
        return;
    }
    kernel(src, dst, n, offset, factor);
}

}  // namespace

extern "C" {

VEK_API void veksbNormalize(const float* src, float* dst, int n, float offset, float factor) {
    VEK_SITE("veknorm");
    normalize(site, vek::arith().s.normalize, src, dst, n, offset, factor);
}
VEK_API void vekdbNormalize(const double* src, double* dst, int n, double offset, double factor) {
    VEK_SITE("veknorm");
    normalize(site, vek::arith().d.normalize, src, dst, n, offset, factor);
}
VEK_API void vekcbNormalize(const CplxFloat* src, CplxFloat* dst, int n, CplxFloat offset,
                            float factor) {
    VEK_SITE("veknorm");
    normalize(site, vek::arith().c.normalize, src, dst, n, offset, factor);
}
VEK_API void vekzbNormalize(const CplxDouble* src, CplxDouble* dst, int n, CplxDouble offset,
                            double factor) {
    VEK_SITE("veknorm");
    normalize(site, vek::arith().z.normalize, src, dst, n, offset, factor);
}

}  // extern "C"
