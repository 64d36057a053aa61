#include <cmath>

#include "native.hpp"

namespace native {

void float_to_short_sat(const float* src, short* dst, int n) {
    for (int i = 0; i < n; ++i) {
        float x = src[i];
        x = x > 32767.f ? 32767.f : x < -32768.f ? -32768.f : x;
        dst[i] = short(lrintf(x));
    }
}

void float_to_short(const float* src, short* dst, int n) {
    for (int i = 0; i < n; ++i) {
        const float x = src[i];
        if (x >= -32768.f && x <= 32767.f) dst[i] = short(lrintf(x));
    }
}

void short_to_float(const short* src, float* dst, int n) {
    for (int i = 0; i < n; ++i) dst[i] = src[i];
}

}  // namespace native
