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

}  // namespace vek

// Declares `site` for the enclosing export: its own name and this line.
#define VEK_SITE(module) const ::vek::Site site{__func__, module, __LINE__}
