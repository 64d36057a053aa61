// The argument checks that open most vector exports: the element count,
// then each pointer in argument order, as (pointer, message) pairs. The
// first failure is reported at `site` and the export returns without
// touching its outputs.
//
//     if (!vek::valid_args(site, n, "n<=0", src, "src==0", dst, "dst==0")) return;
#pragma once

#include "frame/report.hpp"

namespace vek {

// Out of line and cold: a passing check costs its compare and nothing else.
[[gnu::cold, gnu::noinline]] inline void report_bad(Site site, const char* message) {
    site.bad(message);
}

inline bool pointers_set(const Site&) { return true; }

template <class... Rest>
inline bool pointers_set(const Site& site, const void* ptr, const char* message, Rest... rest) {
    if (__builtin_expect(ptr == nullptr, 0)) {
        report_bad(site, message);
        return false;
    }
    return pointers_set(site, rest...);
}

template <class... Pointers>
inline bool valid_args(const Site& site, int n, const char* countMessage, Pointers... pointers) {
    if (__builtin_expect(n <= 0, 0)) {
        report_bad(site, countMessage);
        return false;
    }
    return pointers_set(site, pointers...);
}

}  // namespace vek
