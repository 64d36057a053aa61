#include "vector/convert.hpp"

namespace vek {

const ConvertOps& convert_ops() {
    static const ConvertOps* const kConvertTables[kIsaCount] = {
        &sse2::convert_ops, &avx2::convert_ops, &avx512::convert_ops};
    return pick(kConvertTables);
}

namespace {

// The rounding a flags word selects, or -1 unless exactly one rounding bit
// is set and nothing beyond the known bits.
int rounding_of(int flags) {
    constexpr int kKnown = VEK_RndNear | VEK_RndZero | VEK_RndFloor | VEK_RndCeil |
                           VEK_CvtUnsigned | VEK_CvtSaturate | VEK_CvtReport;
    if (flags & ~kKnown) return -1;
    switch (flags & (VEK_RndNear | VEK_RndZero | VEK_RndFloor | VEK_RndCeil)) {
        case VEK_RndNear:
            return kNear;
        case VEK_RndZero:
            return kZero;
        case VEK_RndFloor:
            return kFloor;
        case VEK_RndCeil:
            return kCeil;
        default:
            return -1;
    }
}

}  // namespace

int convert_checks(const Site& site, const void* src, const void* dst, int len, int intSize,
                   int flags, Direction direction) {
    // These exports start afresh: an earlier failure does not stop them. Every
    // check runs and reports; the call goes on only when none failed.
    vekSetErrStatus(VEK_StatusOk);
    bool ok = true;
    auto check = [&](bool good, const char* message) {
        if (!good) {
            site.bad(message);
            ok = false;
        }
    };
    check(len > 0, "len<=0");
    check(src != nullptr, "src==0");
    check(dst != nullptr, "dst==0");
    const int width = intSize == 8 ? 0 : intSize == 16 ? 1 : intSize == 32 ? 2 : -1;
    check(width >= 0, "Invalid size of an integer");
    const int rounding = direction == Direction::ToInt     ? rounding_of(flags)
                         : (flags & ~VEK_CvtUnsigned) == 0 ? 0
                                                           : -1;
    check(rounding >= 0, "Invalid conversion flag");
    if (!ok) return -1;
    return loop_index(rounding, (flags & VEK_CvtUnsigned) != 0, width);
}

}  // namespace vek
