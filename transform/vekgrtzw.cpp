// Goertzel detectors on 16-bit samples: the float recurrence of the s and c
// states, with the output narrowed under the scale modes.
#include "frame/report.hpp"
#include "goertzel.hpp"
#include "vector/scale.hpp"

namespace gz = vek::goertzel;

namespace {

constexpr char kModule[] = "vekgrtzw";

// The scale arguments, checked right after the state.
bool scale_ok(const vek::Site& site, int scaleMode, const int* scaleFactor) {
    if (!scaleFactor) return site.bad("Zero scale factor pointer"), false;
    if (*scaleFactor < -14 || *scaleFactor > 14) return site.bad("Too large scale factor"), false;
    if (scaleMode > 4) return site.bad("Erroneus scale mode"), false;
    return true;
}

template <class T>
bool block_ok(const vek::Site& site, const GoertzState* st, const T* inSamps, int len,
              int scaleMode, const int* scaleFactor) {
    if (!st) return site.bad("Null state pointer"), false;
    if (!scale_ok(site, scaleMode, scaleFactor)) return false;
    if (!inSamps) return site.bad("Null buffer pointer"), false;
    if (len < 1) return site.bad("Invalid array length"), false;
    return true;
}

CplxShort narrow(gz::Cplx y, int scaleMode, int* scaleFactor) {
    const float out[2] = {float(y.re), float(y.im)};
    std::int16_t s[2];
    vek::narrow_block(out, s, 2, scaleMode, scaleFactor);
    return CplxShort{s[0], s[1]};
}

}  // namespace

extern "C" {

VEK_API int vekwGoertzInit(float rfreq, GoertzState* stPtr) {
    VEK_SITE(kModule);
    return gz::checked_init(site, stPtr ? &stPtr->s : nullptr, rfreq);
}
VEK_API int vekvGoertzInit(float rfreq, GoertzState* stPtr) {
    VEK_SITE(kModule);
    return gz::checked_init(site, stPtr ? &stPtr->c : nullptr, rfreq);
}

VEK_API void vekwGoertzReset(GoertzState* stPtr) {
    VEK_SITE(kModule);
    gz::checked_reset(site, stPtr ? &stPtr->s : nullptr);
}
VEK_API void vekvGoertzReset(GoertzState* stPtr) {
    VEK_SITE(kModule);
    gz::checked_reset(site, stPtr ? &stPtr->c : nullptr);
}

VEK_API CplxShort vekwGoertz(GoertzState* stPtr, short sample, int scaleMode, int* scaleFactor) {
    VEK_SITE(kModule);
    if (!stPtr) return site.bad("Null state pointer"), CplxShort{0, 0};
    if (!scale_ok(site, scaleMode, scaleFactor)) return CplxShort{0, 0};
    return narrow(gz::run(stPtr->s, &sample, 1), scaleMode, scaleFactor);
}
VEK_API CplxShort vekvGoertz(GoertzState* stPtr, CplxShort sample, int scaleMode,
                             int* scaleFactor) {
    VEK_SITE(kModule);
    if (!stPtr) return site.bad("Null state pointer"), CplxShort{0, 0};
    if (!scale_ok(site, scaleMode, scaleFactor)) return CplxShort{0, 0};
    return narrow(gz::run(stPtr->c, &sample, 1), scaleMode, scaleFactor);
}

VEK_API CplxShort vekwbGoertz(GoertzState* stPtr, const short* inSamps, int len, int scaleMode,
                              int* scaleFactor) {
    VEK_SITE(kModule);
    if (!block_ok(site, stPtr, inSamps, len, scaleMode, scaleFactor)) return CplxShort{0, 0};
    return narrow(gz::run(stPtr->s, inSamps, len), scaleMode, scaleFactor);
}
VEK_API CplxShort vekvbGoertz(GoertzState* stPtr, const CplxShort* inSamps, int len, int scaleMode,
                              int* scaleFactor) {
    VEK_SITE(kModule);
    if (!block_ok(site, stPtr, inSamps, len, scaleMode, scaleFactor)) return CplxShort{0, 0};
    return narrow(gz::run(stPtr->c, inSamps, len), scaleMode, scaleFactor);
}

}  // extern "C"
