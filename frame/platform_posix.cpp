// POSIX platform layer: the thread-local slot as a pthread key, the modal
// question on the controlling terminal, and the fatal exit on stderr.
#include "platform.hpp"

#ifndef _WIN32

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "context.hpp"

namespace vek::platform {

const char kModuleName[] = "libvek.so";

// The key's value, cached where one instruction reads it: every export that
// touches per-thread state looks it up. The key stays the owner, for its
// destructor at thread exit.
__thread ThreadContext* t_ctx __attribute__((tls_model("initial-exec")));

namespace {

pthread_key_t g_key;
std::atomic<bool> g_key_valid{false};
std::mutex g_key_mutex;

void on_thread_exit(void* p) {
    t_ctx = nullptr;
    release_context(static_cast<ThreadContext*>(p));
}

void create_key() {
    std::lock_guard<std::mutex> lock(g_key_mutex);
    if (g_key_valid.load(std::memory_order_acquire)) return;
    if (pthread_key_create(&g_key, on_thread_exit) != 0)
        fatal_exit("VEKlib. Problem to allocate memory for TLS VEK context.");
    g_key_valid.store(true, std::memory_order_release);
}

// Library load: the slot, then the loading thread's record.
__attribute__((constructor)) void on_load() {
    create_key();
    if (!pthread_getspecific(g_key)) {
        if (ThreadContext* ctx = new_context()) slot_set(ctx);
    }
}

// Library unload: the calling thread's record, then the slot. Calls after
// this (from other libraries' destructors) get a new slot lazily.
__attribute__((destructor)) void on_unload() {
    std::lock_guard<std::mutex> lock(g_key_mutex);
    if (!g_key_valid.load(std::memory_order_acquire)) return;
    auto* ctx = static_cast<ThreadContext*>(pthread_getspecific(g_key));
    pthread_setspecific(g_key, nullptr);
    t_ctx = nullptr;
    release_context(ctx);
    pthread_key_delete(g_key);
    g_key_valid.store(false, std::memory_order_release);
}

}  // namespace

ThreadContext* slot_get() {
    if (ThreadContext* ctx = t_ctx) return ctx;
    if (!g_key_valid.load(std::memory_order_acquire)) create_key();
    return t_ctx = static_cast<ThreadContext*>(pthread_getspecific(g_key));
}

bool slot_set(ThreadContext* ctx) {
    if (!g_key_valid.load(std::memory_order_acquire)) create_key();
    if (pthread_setspecific(g_key, ctx) != 0) return false;
    t_ctx = ctx;
    return true;
}

void* zero_alloc(std::size_t bytes) { return std::calloc(1, bytes); }
void zero_free(void* p) { std::free(p); }

void fatal_exit(const char* text) {
    std::fflush(stderr);
    std::fprintf(stderr, "%s\n", text);
    std::fflush(stderr);
    std::_Exit(3);
}

namespace {

void write_all(int fd, const char* s) {
    std::size_t left = std::strlen(s);
    while (left > 0) {
        const ssize_t n = write(fd, s, left);
        if (n <= 0) return;
        s += n;
        left -= std::size_t(n);
    }
}

// Reads one line from fd into buf; false at end of input or on error.
bool read_line(int fd, char* buf, std::size_t size) {
    std::size_t used = 0;
    for (;;) {
        char c;
        const ssize_t n = read(fd, &c, 1);
        if (n <= 0) return false;
        if (c == '\n' || c == '\r') break;
        if (used + 1 < size) buf[used++] = char(std::tolower(static_cast<unsigned char>(c)));
    }
    buf[used] = '\0';
    return true;
}

bool answer_is(const char* got, const char* word) {
    // The word itself or its first letter.
    return std::strcmp(got, word) == 0 || (got[0] == word[0] && got[1] == '\0');
}

}  // namespace

bool ask(const char* title, const char* text, Buttons buttons, bool fallback) {
    const int fd = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) return fallback;
    const bool okCancel = buttons == Buttons::OkCancel;
    const char* first = okCancel ? "ok" : "yes";
    const char* second = okCancel ? "cancel" : "no";
    write_all(fd, "\n*** ");
    write_all(fd, title);
    write_all(fd, " ***\n");
    write_all(fd, text);
    write_all(fd, "\n");
    bool answer = fallback;
    for (int tries = 0; tries < 5; ++tries) {
        write_all(fd, okCancel ? "[OK/Cancel] " : "[Yes/No] ");
        char got[32];
        if (!read_line(fd, got, sizeof got)) break;
        if (answer_is(got, first)) {
            answer = true;
            break;
        }
        if (answer_is(got, second)) {
            answer = false;
            break;
        }
    }
    close(fd);
    return answer;
}

}  // namespace vek::platform

#endif  // !_WIN32
