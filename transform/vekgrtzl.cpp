// Goertzel detectors on float, double and complex samples.
#include "frame/report.hpp"
#include "goertzel.hpp"

namespace gz = vek::goertzel;

namespace {

constexpr char kModule[] = "vekgrtzl";

// Block form: the state, the buffer, the length; zero after a report.
template <class View, class T>
bool block_ok(const vek::Site& site, View* st, const T* inSamps, int len) {
    if (!st) return site.bad("Null state pointer"), false;
    if (!inSamps) return site.bad("Null buffer pointer"), false;
    if (len < 1) return site.bad("Invalid array length"), false;
    return true;
}

}  // namespace

extern "C" {

VEK_API int veksGoertzInit(float rfreq, GoertzState* stPtr) {
    VEK_SITE(kModule);
    return gz::checked_init(site, stPtr ? &stPtr->s : nullptr, rfreq);
}
VEK_API int vekcGoertzInit(float rfreq, GoertzState* stPtr) {
    VEK_SITE(kModule);
    return gz::checked_init(site, stPtr ? &stPtr->c : nullptr, rfreq);
}
VEK_API int vekdGoertzInit(double rfreq, GoertzState* stPtr) {
    VEK_SITE(kModule);
    return gz::checked_init(site, stPtr ? &stPtr->d : nullptr, rfreq);
}
VEK_API int vekzGoertzInit(double rfreq, GoertzState* stPtr) {
    VEK_SITE(kModule);
    return gz::checked_init(site, stPtr ? &stPtr->z : nullptr, rfreq);
}

VEK_API void veksGoertzReset(GoertzState* stPtr) {
    VEK_SITE(kModule);
    gz::checked_reset(site, stPtr ? &stPtr->s : nullptr);
}
VEK_API void vekcGoertzReset(GoertzState* stPtr) {
    VEK_SITE(kModule);
    gz::checked_reset(site, stPtr ? &stPtr->c : nullptr);
}
VEK_API void vekdGoertzReset(GoertzState* stPtr) {
    VEK_SITE(kModule);
    gz::checked_reset(site, stPtr ? &stPtr->d : nullptr);
}
VEK_API void vekzGoertzReset(GoertzState* stPtr) {
    VEK_SITE(kModule);
    gz::checked_reset(site, stPtr ? &stPtr->z : nullptr);
}

VEK_API CplxFloat veksGoertz(GoertzState* stPtr, float sample) {
    VEK_SITE(kModule);
    if (!stPtr) return site.bad("Null state pointer"), CplxFloat{0, 0};
    return gz::to_float(gz::run(stPtr->s, &sample, 1));
}
VEK_API CplxFloat vekcGoertz(GoertzState* stPtr, CplxFloat sample) {
    VEK_SITE(kModule);
    if (!stPtr) return site.bad("Null state pointer"), CplxFloat{0, 0};
    return gz::to_float(gz::run(stPtr->c, &sample, 1));
}
VEK_API CplxDouble vekdGoertz(GoertzState* stPtr, double sample) {
    VEK_SITE(kModule);
    if (!stPtr) return site.bad("Null state pointer"), CplxDouble{0, 0};
    return gz::to_double(gz::run(stPtr->d, &sample, 1));
}
VEK_API CplxDouble vekzGoertz(GoertzState* stPtr, CplxDouble sample) {
    VEK_SITE(kModule);
    if (!stPtr) return site.bad("Null state pointer"), CplxDouble{0, 0};
    return gz::to_double(gz::run(stPtr->z, &sample, 1));
}

VEK_API CplxFloat veksbGoertz(GoertzState* stPtr, const float* inSamps, int len) {
    VEK_SITE(kModule);
    if (!block_ok(site, stPtr, inSamps, len)) return CplxFloat{0, 0};
    return gz::to_float(gz::run(stPtr->s, inSamps, len));
}
VEK_API CplxFloat vekcbGoertz(GoertzState* stPtr, const CplxFloat* inSamps, int len) {
    VEK_SITE(kModule);
    if (!block_ok(site, stPtr, inSamps, len)) return CplxFloat{0, 0};
    return gz::to_float(gz::run(stPtr->c, inSamps, len));
}
VEK_API CplxDouble vekdbGoertz(GoertzState* stPtr, const double* inSamps, int len) {
    VEK_SITE(kModule);
    if (!block_ok(site, stPtr, inSamps, len)) return CplxDouble{0, 0};
    return gz::to_double(gz::run(stPtr->d, inSamps, len));
}
VEK_API CplxDouble vekzbGoertz(GoertzState* stPtr, const CplxDouble* inSamps, int len) {
    VEK_SITE(kModule);
    if (!block_ok(site, stPtr, inSamps, len)) return CplxDouble{0, 0};
    return gz::to_double(gz::run(stPtr->z, inSamps, len));
}

}  // extern "C"
