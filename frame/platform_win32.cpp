// Windows platform layer: the DLL entry point with kernel thread-local
// storage, LocalAlloc'd records, the message box and FatalAppExitA.
#include "platform.hpp"

#ifdef _WIN32

#include <windows.h>

#include "context.hpp"

namespace vek::platform {

const char kModuleName[] = "vek.dll";

namespace {

DWORD g_slot = TLS_OUT_OF_INDEXES;

BOOL attach_thread() {
    ThreadContext* ctx = new_context();
    if (!ctx) return FALSE;
    TlsSetValue(g_slot, ctx);
    return TRUE;
}

void detach_thread() {
    if (g_slot == TLS_OUT_OF_INDEXES) return;
    auto* ctx = static_cast<ThreadContext*>(TlsGetValue(g_slot));
    if (ctx) release_context(ctx);
    // The slot itself is not cleared: the thread is leaving.
}

}  // namespace

ThreadContext* slot_get() {
    if (g_slot == TLS_OUT_OF_INDEXES) return nullptr;
    return static_cast<ThreadContext*>(TlsGetValue(g_slot));
}

bool slot_set(ThreadContext* ctx) {
    return g_slot != TLS_OUT_OF_INDEXES && TlsSetValue(g_slot, ctx) != 0;
}

void* zero_alloc(std::size_t bytes) { return LocalAlloc(LPTR, bytes); }
void zero_free(void* p) {
    if (p) LocalFree(p);
}

void fatal_exit(const char* text) {
    FatalAppExitA(0, text);
    ExitProcess(3);  // not reached
}

bool ask(const char* title, const char* text, Buttons buttons, bool) {
    const UINT type =
        MB_SYSTEMMODAL | MB_ICONSTOP | (buttons == Buttons::OkCancel ? MB_OKCANCEL : MB_YESNO);
    const int answer = MessageBoxA(nullptr, text, title, type);
    return answer == IDOK || answer == IDYES;
}

}  // namespace vek::platform

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    using namespace vek::platform;
    switch (reason) {
    case DLL_PROCESS_ATTACH:
        g_slot = TlsAlloc();
        if (g_slot == TLS_OUT_OF_INDEXES) return FALSE;
        return attach_thread();
    case DLL_THREAD_ATTACH:
        return attach_thread();
    case DLL_THREAD_DETACH:
        detach_thread();
        break;
    case DLL_PROCESS_DETACH:
        detach_thread();
        TlsFree(g_slot);
        g_slot = TLS_OUT_OF_INDEXES;
        break;
    default:
        break;
    }
    return TRUE;
}

#endif  // _WIN32
