// The argument checks that open most vector exports: the element count,
// then each pointer in argument order. The first failure is reported at
// `site` and the export returns without touching its outputs.
#pragma once

#include <initializer_list>

#include "frame/report.hpp"

namespace vek {

struct PtrArg {
    const void* ptr;
    const char* message;  // "src==0", ...
};

inline bool valid_args(const Site& site, int n, const char* countMessage,
                       std::initializer_list<PtrArg> ptrs) {
    if (n <= 0) {
        site.bad(countMessage);
        return false;
    }
    for (const PtrArg& p : ptrs) {
        if (!p.ptr) {
            site.bad(p.message);
            return false;
        }
    }
    return true;
}

}  // namespace vek
