// The platform layer: everything that differs between POSIX and Windows.
// Only platform_posix.cpp and platform_win32.cpp implement it.
#pragma once

#include <cstddef>

namespace vek {
struct ThreadContext;
}

namespace vek::platform {

// The calling thread's context pointer, or null when it has none yet.
ThreadContext* slot_get();

// The same in a few instructions where the platform allows, else null
// (then slot_get answers).
#ifndef _WIN32
extern __thread ThreadContext* t_ctx __attribute__((tls_model("initial-exec")));
inline ThreadContext* slot_peek() { return t_ctx; }
#else
inline ThreadContext* slot_peek() { return nullptr; }
#endif
// Stores the calling thread's context pointer; false when the slot is unusable.
bool slot_set(ThreadContext* ctx);

// Zero-filled memory for context records, and its release.
void* zero_alloc(std::size_t bytes);
void zero_free(void* p);

// Shows text as a fatal error and ends the process at once.
[[noreturn]] void fatal_exit(const char* text);

enum class Buttons { OkCancel, YesNo };

// Asks a modal question. Returns true for the first button (OK or Yes),
// false for the second; `fallback` when there is nobody to ask.
bool ask(const char* title, const char* text, Buttons buttons, bool fallback);

// The library's module file name, for the version record.
extern const char kModuleName[];

}  // namespace vek::platform
