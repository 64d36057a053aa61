// Status, error modes and the three report functions.
#include <cstdio>
#include <cstdlib>

#include "context.hpp"
#include "platform.hpp"

using vek::context;

namespace {

const char kUnknown[] = "Unknown error or status code";
const char kTerminate[] = "KOR Library:\nterminating the application";

}  // namespace

extern "C" {

VEK_API const char* vekErrorStr(int status) {
    switch (status) {
    case VEK_StatusOk: return "No Error";
    case VEK_StatusBacktrace: return "Backtrace";
    case VEK_StatusInternal: return "Internal error (bad state)";
    case VEK_StatusNoMemory: return "Out of memory";
    case VEK_StatusBadArgument: return "Bad argument";
    case VEK_StatusBadFunction: return "Unsupported function";
    case VEK_StatusNoConvergence: return "Iteration convergence failed";
    case VEK_StatusAutotrace: return "Autotrace call";
    default: return kUnknown;
    }
}

VEK_API int vekError(int status, const char* funcName, const char* ctxText, const char* file,
                     int line) {
    vek::ThreadContext* ctx = context();
    if (status != VEK_StatusBacktrace && status != VEK_StatusAutotrace) {
        ctx->status = status;
        if (status == VEK_StatusOk) return 0;
    }
    return ctx->reportFunc(status, funcName, ctxText, file, line);
}

VEK_API int vekGetErrStatus(void) { return context()->status; }
VEK_API void vekSetErrStatus(int status) { context()->status = status; }
VEK_API int vekGetErrMode(void) { return context()->errMode; }
VEK_API void vekSetErrMode(int mode) { context()->errMode = mode; }

VEK_API ErrorReportFunc vekRedirectError(ErrorReportFunc fn) {
    vek::ThreadContext* ctx = context();
    ErrorReportFunc previous = ctx->reportFunc;
    ctx->reportFunc = fn ? fn : vekGuiBoxReport;
    return previous;
}

VEK_API int vekGuiBoxReport(int status, const char* funcName, const char* ctxText,
                            const char* file, int line) {
    const int mode = context()->errMode;
    if (mode == VEK_ErrorModeSilent) return status;
    if (mode != VEK_ErrorModeLeaf && mode != VEK_ErrorModeParent) return status;

    if (!funcName) funcName = "<unknown>";
    if (!ctxText) ctxText = "";
    if (!file) file = "";
    if (line < 0) line = 0;
    const char* closing = mode == VEK_ErrorModeLeaf
                              ? "\n\nErrMode=VEK_ErrorModeLeaf\n\nTerminate the application?"
                              : "\n\nErrMode=VEK_ErrorModeParent\n\nContinue?";

    // The box texts are cut to fixed buffers of 200 and 100 characters.
    char text[200];
    char title[100];
    if (status == VEK_StatusBacktrace)
        std::snprintf(text, sizeof text, "called from [%s:%d]:%s():\n %s%s", file, line, funcName,
                      ctxText, closing);
    else if (status == VEK_StatusAutotrace)
        std::snprintf(text, sizeof text, "called from [%s:%d]:\n %s(%s)%s", file, line, funcName,
                      ctxText, closing);
    else
        std::snprintf(text, sizeof text, "in function [%s:%d]:%s():\n %s%s", file, line, funcName,
                      ctxText, closing);
    // The title names the stored status: for a re-report, the first failure.
    std::snprintf(title, sizeof title, "KOR Library Error: %s", vekErrorStr(context()->status));

    if (mode == VEK_ErrorModeParent) {
        if (!vek::platform::ask(title, text, vek::platform::Buttons::OkCancel, true))
            vek::platform::fatal_exit(kTerminate);
    } else {
        if (vek::platform::ask(title, text, vek::platform::Buttons::YesNo, true))
            vek::platform::fatal_exit(kTerminate);
    }
    return status;
}

VEK_API int vekStdErrReport(int status, const char* funcName, const char* ctxText,
                            const char* file, int line) {
    const int mode = context()->errMode;
    if (mode == VEK_ErrorModeSilent) return status;
    const bool trace = status == VEK_StatusBacktrace || status == VEK_StatusAutotrace;
    if (trace)
        std::fputs("\tcalled from", stderr);
    else
        std::fprintf(stderr, "\nKOR Library Error: %s \n\tin function", vekErrorStr(status));
    if (line >= 1 || file) std::fprintf(stderr, " [%s:%d]", file ? file : "(null)", line);
    std::fprintf(stderr, ":%s", funcName ? funcName : "<unknown>");
    if (ctxText) std::fprintf(stderr, status == VEK_StatusAutotrace ? "(%s)" : "(): %s", ctxText);
    std::fputs("\n", stderr);
    std::fflush(stderr);
    if (mode == VEK_ErrorModeLeaf) {
        std::fputs("KOR Library Error\nErrMode=VEK_ErrModeLeaf\nterminating the application",
                   stderr);
        std::fflush(stderr);
        std::exit(1);
    }
    return status;
}

VEK_API int vekNulDevReport(int status, const char*, const char*, const char*, int) {
    if (context()->errMode == VEK_ErrorModeLeaf) std::exit(1);
    return status;
}

}  // extern "C"
