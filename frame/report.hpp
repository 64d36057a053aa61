// The reporting helper every export uses for its checks.
#pragma once

#include "vek.h"

namespace vek {

// Where a report comes from: the export's name, its module and a line.
struct Site {
    const char* func;
    const char* module;
    int line;

    int report(int status, const char* message) const {
        return vekError(status, func, message, module, line);
    }
    int bad(const char* message) const { return report(VEK_StatusBadArgument, message); }
    int no_memory(const char* message) const { return report(VEK_StatusNoMemory, message); }
    int backtrace(const char* message = nullptr) const {
        return report(VEK_StatusBacktrace, message);
    }
    // The same site with a line of its own, for modules that number each check.
    Site at(int other_line) const { return Site{func, module, other_line}; }
};

// True when the calling thread's status holds a failure.
inline bool failed() { return vekGetErrStatus() < 0; }

// The argument checks that open most exports: an element count, then each
// pointer in argument order, as (pointer, message) pairs. The first failure
// is reported at `site` and the export returns without touching its outputs.
//
//     if (!vek::valid_args(site, n, "n<=0", src, "src==0", dst, "dst==0")) return;

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

// Declares `site` for the enclosing export: its own name and this line.
#define VEK_SITE(module) const ::vek::Site site{__func__, module, __LINE__}
